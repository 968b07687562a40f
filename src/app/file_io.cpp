#include "app/file_io.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>

#if defined(__unix__) || defined(__APPLE__)
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>
#define KORVATEK_HAVE_MMAP 1
#endif

namespace korvatek::app {

using settings::MessageKey;

namespace {

Error openError(const std::string& path, int errorNumber) {
    const ErrorCode code = (errorNumber == ENOENT || errorNumber == ENOTDIR || errorNumber == ENAMETOOLONG)
                               ? ErrorCode::FileMissing
                               : ErrorCode::FileUnreadable;
    return makeError(code, MessageKey::MsgCannotOpenFile, path + ": " + systemErrorText(errorNumber));
}

}  // namespace

std::filesystem::path toPath(std::string_view utf8) {
    return std::filesystem::path(std::u8string(reinterpret_cast<const char8_t*>(utf8.data()), utf8.size()));
}

std::string pathText(const std::filesystem::path& path) {
    const std::u8string text = path.u8string();
    return std::string(reinterpret_cast<const char*>(text.data()), text.size());
}

std::string systemErrorText(int errorNumber) { return std::strerror(errorNumber); }

Result<std::shared_ptr<const ReadOnlyFile>> ReadOnlyFile::open(const std::string& path) {
    std::shared_ptr<ReadOnlyFile> file(new ReadOnlyFile());
    file->m_path = path;
#ifdef KORVATEK_HAVE_MMAP
    const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) return openError(path, errno);
    struct stat st {};
    if (::fstat(fd, &st) != 0) {
        const int e = errno;
        ::close(fd);
        return openError(path, e);
    }
    if (!S_ISREG(st.st_mode)) {
        ::close(fd);
        return openError(path, S_ISDIR(st.st_mode) ? EISDIR : EINVAL);
    }
    file->m_size = static_cast<std::size_t>(st.st_size);
    if (file->m_size > 0) {
        void* map = ::mmap(nullptr, file->m_size, PROT_READ, MAP_PRIVATE, fd, 0);
        if (map == MAP_FAILED) {
            const int e = errno;
            ::close(fd);
            return openError(path, e);
        }
        file->m_mapping = map;
        file->m_data = static_cast<const std::uint8_t*>(map);
    }
    ::close(fd);
    return std::shared_ptr<const ReadOnlyFile>(std::move(file));
#else
    auto bytes = readFile(path);
    if (!bytes) return bytes.error();
    file->m_copy = std::move(*bytes);
    file->m_data = file->m_copy.data();
    file->m_size = file->m_copy.size();
    return std::shared_ptr<const ReadOnlyFile>(std::move(file));
#endif
}

ReadOnlyFile::~ReadOnlyFile() {
#ifdef KORVATEK_HAVE_MMAP
    if (m_mapping != nullptr) ::munmap(m_mapping, m_size);
#endif
}

Result<Bytes> readFile(const std::string& path) {
#ifdef KORVATEK_HAVE_MMAP
    // One open, one fstat and one read for the usual small file.
    const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) return openError(path, errno);
    struct stat st {};
    if (::fstat(fd, &st) != 0 || !S_ISREG(st.st_mode)) {
        const int e = S_ISDIR(st.st_mode) ? EISDIR : (errno ? errno : EINVAL);
        ::close(fd);
        return openError(path, e);
    }
    Bytes data(static_cast<std::size_t>(st.st_size));
    std::size_t done = 0;
    while (done < data.size()) {
        const ssize_t n = ::read(fd, data.data() + done, data.size() - done);
        if (n < 0 && errno == EINTR) continue;
        if (n < 0) {
            const int e = errno;
            ::close(fd);
            return openError(path, e);
        }
        if (n == 0) break;  // the file shrank while it was read
        done += static_cast<std::size_t>(n);
    }
    ::close(fd);
    data.resize(done);
    return data;
#else
    std::error_code ec;
    if (std::filesystem::is_directory(path, ec)) return openError(path, EISDIR);
    std::FILE* f = std::fopen(path.c_str(), "rb");
    if (f == nullptr) return openError(path, errno);
    Bytes data;
    std::uint8_t buffer[1 << 16];
    std::size_t n;
    while ((n = std::fread(buffer, 1, sizeof buffer, f)) > 0) data.insert(data.end(), buffer, buffer + n);
    const bool failed = std::ferror(f) != 0;
    const int e = errno;
    std::fclose(f);
    if (failed) return openError(path, e);
    return data;
#endif
}

Status writeFile(const std::string& path, ByteView bytes) {
    // Written under a temporary name beside the target and renamed into place when complete,
    // so that a failure or a full disk never leaves a half-written file under the user's name.
#ifdef KORVATEK_HAVE_MMAP
    const std::string temporary = path + ".korvatek-" + std::to_string(::getpid()) + ".part";
#else
    const std::string temporary = path + ".korvatek.part";
#endif
    const auto failed = [&](int errorNumber) {
        std::remove(temporary.c_str());
        return makeError(ErrorCode::FileUnwritable, MessageKey::MsgCannotWriteFile,
                         path + ": " + systemErrorText(errorNumber));
    };
    std::FILE* f = std::fopen(temporary.c_str(), "wb");
    if (f == nullptr) return failed(errno);
    const bool written = bytes.empty() || std::fwrite(bytes.data(), 1, bytes.size(), f) == bytes.size();
    int e = errno;
    const bool closed = std::fclose(f) == 0;
    if (!closed && written) e = errno;
    if (!written || !closed) return failed(e);
    std::error_code ec;
    std::filesystem::rename(temporary, path, ec);
    if (ec) return failed(ec.value());
    return success();
}

Status writeFile(const std::string& path, std::string_view text) {
    return writeFile(path, ByteView(reinterpret_cast<const std::uint8_t*>(text.data()), text.size()));
}

bool CheckFexist(const std::string& path) {
    if (path.empty()) return true;
    std::error_code ec;
    const auto status = std::filesystem::status(path, ec);
    if (ec) {
        return ec == std::errc::no_such_file_or_directory || ec == std::errc::invalid_argument ||
               ec == std::errc::filename_too_long || ec == std::errc::not_a_directory;
    }
    return status.type() == std::filesystem::file_type::not_found;
}

bool deleteFile(const std::string& path) {
    std::error_code ec;
    std::filesystem::remove(path, ec);
    return !std::filesystem::exists(path, ec);
}

std::string joinPath(const std::string& folder, const std::string& name) {
    if (folder.empty()) return name;
    const char last = folder.back();
    if (last == '/' || last == std::filesystem::path::preferred_separator) return folder + name;
    return folder + static_cast<char>(std::filesystem::path::preferred_separator) + name;
}

std::string temporaryFolder() {
    for (const char* name : {"TMP", "TMPDIR"}) {
        const char* value = std::getenv(name);
        if (value != nullptr && *value != '\0') return value;
    }
    std::error_code ec;
    auto folder = std::filesystem::temp_directory_path(ec);
    return ec ? std::string("/tmp") : folder.string();
}

std::string temporaryPath(const std::string& suffix) {
    std::string rest = suffix;
    // On Windows the suffix is joined as written; elsewhere a leading backslash is the separator.
    if (!rest.empty() && rest.front() == '\\' && std::filesystem::path::preferred_separator == '/') rest.front() = '/';
    return temporaryFolder() + rest;
}

}  // namespace korvatek::app

#include "base/file_io.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <new>
#include <random>

#ifdef _WIN32
#include <fcntl.h>
#include <io.h>
#include <share.h>
#include <sys/stat.h>
#include <windows.h>
#else
#include <fcntl.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace korvatek::app {

namespace fs = std::filesystem;

std::filesystem::path toPath(std::string_view utf8) {
    return std::filesystem::path(std::u8string(reinterpret_cast<const char8_t*>(utf8.data()), utf8.size()));
}

std::string pathText(const std::filesystem::path& path) {
    const std::u8string text = path.u8string();
    return std::string(reinterpret_cast<const char*>(text.data()), text.size());
}

std::string systemErrorText(int errorNumber) { return std::strerror(errorNumber); }

std::string limitText(std::uint64_t bytes) {
    if (bytes >= (1u << 20) && bytes % (1u << 20) == 0) return std::to_string(bytes >> 20) + " MiB";
    if (bytes >= (1u << 10) && bytes % (1u << 10) == 0) return std::to_string(bytes >> 10) + " KiB";
    return std::to_string(bytes) + " bytes";
}

namespace {

Error openError(const std::string& path, int errorNumber) {
    const ErrorCode code = (errorNumber == ENOENT || errorNumber == ENOTDIR || errorNumber == ENAMETOOLONG)
                               ? ErrorCode::FileMissing
                               : ErrorCode::FileUnreadable;
    return makeError(code, path + ": " + systemErrorText(errorNumber));
}

Error writeError(const std::string& path, int errorNumber) {
    return makeError(ErrorCode::FileUnwritable, path + ": " + systemErrorText(errorNumber));
}

Error tooLargeError(const std::string& path, std::uint64_t limit) {
    // The message row carries "%1" for the limit; the path follows it.
    return Error{ErrorCode::FileTooLarge, path, std::nullopt, limit};
}

std::string randomSuffix() {
    static std::mt19937_64 generator{std::random_device{}()};
    static std::mutex lock;
    static constexpr char kLetters[] = "abcdefghijklmnopqrstuvwxyz0123456789";
    std::lock_guard<std::mutex> guard(lock);
    std::string text;
    for (int i = 0; i < 12; ++i) text += kLetters[generator() % (sizeof kLetters - 1)];
    return text;
}

#ifdef _WIN32
int currentProcessId() { return static_cast<int>(::GetCurrentProcessId()); }
bool processIsRunning(int pid) {
    // Another user's process cannot be asked; its files in our folders could not be removed
    // while it writes them anyway (they are open without sharing).
    HANDLE process = ::OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION, FALSE, static_cast<DWORD>(pid));
    if (process == nullptr) return false;
    DWORD code = 0;
    const bool running = ::GetExitCodeProcess(process, &code) && code == STILL_ACTIVE;
    ::CloseHandle(process);
    return running;
}
#else
int currentProcessId() { return static_cast<int>(::getpid()); }
bool processIsRunning(int pid) { return pid > 0 && (::kill(pid, 0) == 0 || errno == EPERM); }
#endif

// The process number in a name of ours ("...-PID-RANDOM..."), read from `start` up to the dash.
std::optional<int> processNumberAt(const std::string& name, std::size_t start) {
    const std::size_t dash = name.find('-', start);
    if (dash == std::string::npos || dash == start || dash - start > 9) return std::nullopt;
    int pid = 0;
    for (std::size_t i = start; i < dash; ++i) {
        if (name[i] < '0' || name[i] > '9') return std::nullopt;
        pid = pid * 10 + (name[i] - '0');
    }
    return pid;
}

// An open input: a descriptor on a regular file and its size.
struct InputFile {
    int fd = -1;
    std::uint64_t size = 0;
    InputFile() = default;
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;
    ~InputFile() {
#ifdef _WIN32
        if (fd >= 0) ::_close(fd);
#else
        if (fd >= 0) ::close(fd);
#endif
    }
};

Status openInput(const std::string& path, std::uint64_t limit, InputFile& file) {
#ifdef _WIN32
    std::error_code ec;
    const auto status = fs::status(toPath(path), ec);
    if (ec) return openError(path, ec.value() == ERROR_FILE_NOT_FOUND || ec.value() == ERROR_PATH_NOT_FOUND ? ENOENT : EACCES);
    if (status.type() == fs::file_type::directory) return openError(path, EISDIR);
    if (status.type() != fs::file_type::regular)
        return makeError(ErrorCode::NotRegularFile, path);
    if (::_wsopen_s(&file.fd, toPath(path).c_str(), _O_RDONLY | _O_BINARY, _SH_DENYNO, 0) != 0)
        return openError(path, errno);
    struct _stat64 st {};
    if (::_fstat64(file.fd, &st) != 0) return openError(path, errno);
    file.size = static_cast<std::uint64_t>(st.st_size);
#else
    // Opened without waiting: a pipe with no writer would otherwise block here for ever. The flag
    // means nothing for a regular file, and nothing else is read.
    file.fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    if (file.fd < 0) {
        const int e = errno;
        struct stat st {};
        if (e == ENXIO && ::stat(path.c_str(), &st) == 0 && S_ISSOCK(st.st_mode))  // a socket cannot be opened
            return makeError(ErrorCode::NotRegularFile, path);
        return openError(path, e);
    }
    struct stat st {};
    if (::fstat(file.fd, &st) != 0) return openError(path, errno);
    if (S_ISDIR(st.st_mode)) return openError(path, EISDIR);
    if (!S_ISREG(st.st_mode)) return makeError(ErrorCode::NotRegularFile, path);
    file.size = static_cast<std::uint64_t>(st.st_size);
#endif
    if (file.size > limit) return tooLargeError(path, limit);
    return success();
}

// Reads up to `size` bytes; fewer only at the end of the file. -1 on an error (errno set).
long long readSome(int fd, std::uint8_t* out, std::size_t size) {
    std::size_t done = 0;
    while (done < size) {
#ifdef _WIN32
        const int n = ::_read(fd, out + done, static_cast<unsigned>(std::min<std::size_t>(size - done, 1u << 30)));
#else
        const ssize_t n = ::read(fd, out + done, size - done);
        if (n < 0 && errno == EINTR) continue;
#endif
        if (n < 0) return -1;
        if (n == 0) break;
        done += static_cast<std::size_t>(n);
    }
    return static_cast<long long>(done);
}

}  // namespace

Result<Bytes> readFile(const std::string& path, std::uint64_t limit) {
    InputFile file;
    if (const Status opened = openInput(path, limit, file); !opened) return opened.error();
    // One read for the usual case; a file that grew since is read on up to the limit.
    Bytes data(static_cast<std::size_t>(file.size));
    const long long n = readSome(file.fd, data.data(), data.size());
    if (n < 0) return openError(path, errno);
    data.resize(static_cast<std::size_t>(n));
    if (data.size() == file.size) {
        std::uint8_t more[4096];
        for (long long extra; (extra = readSome(file.fd, more, sizeof more)) > 0;) {
            if (data.size() + static_cast<std::uint64_t>(extra) > limit) return tooLargeError(path, limit);
            data.insert(data.end(), more, more + extra);
            if (extra < static_cast<long long>(sizeof more)) break;
        }
    }
    return data;
}

Status readFileChunks(const std::string& path, std::uint64_t limit, std::size_t chunkSize,
                      const std::function<void(ByteView)>& onChunk) {
    InputFile file;
    if (const Status opened = openInput(path, limit, file); !opened) return opened;
    Bytes chunk(chunkSize == 0 ? 1 : chunkSize);
    std::uint64_t total = 0;
    for (;;) {
        const long long n = readSome(file.fd, chunk.data(), chunk.size());
        if (n < 0) return openError(path, errno);
        if (n == 0) break;
        total += static_cast<std::uint64_t>(n);
        if (total > limit) return tooLargeError(path, limit);
        onChunk(ByteView(chunk.data(), static_cast<std::size_t>(n)));
    }
    return success();
}

namespace {

// A large buffer that is not cleared first (the read fills it) and, where the system offers
// them, in huge pages: a 32 MiB fullflash then costs a few page faults instead of 8192. Under
// AddressSanitizer it comes from the heap, so that a read past its end is caught.
#if defined(__SANITIZE_ADDRESS__)
#define KORVATEK_HEAP_BUFFERS 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define KORVATEK_HEAP_BUFFERS 1
#endif
#endif
#if defined(__linux__) && !defined(KORVATEK_HEAP_BUFFERS)
#define KORVATEK_HUGE_PAGE_BUFFERS 1
#endif

std::uint8_t* allocateLarge(std::size_t size) {
    if (size == 0) return nullptr;
#ifdef KORVATEK_HUGE_PAGE_BUFFERS
    void* p = ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (p == MAP_FAILED) throw std::bad_alloc();
    (void)::madvise(p, size, MADV_HUGEPAGE);
    return static_cast<std::uint8_t*>(p);
#else
    return new std::uint8_t[size];
#endif
}

void releaseLarge(std::uint8_t* data, std::size_t size) {
    if (data == nullptr) return;
#ifdef KORVATEK_HUGE_PAGE_BUFFERS
    ::munmap(data, size);
#else
    (void)size;
    delete[] data;
#endif
}

}  // namespace

Result<std::shared_ptr<const ReadOnlyFile>> ReadOnlyFile::open(const std::string& path, std::uint64_t limit) {
    InputFile input;
    if (const Status opened = openInput(path, limit, input); !opened) return opened.error();
    std::shared_ptr<ReadOnlyFile> file(new ReadOnlyFile());
    file->m_path = path;
    file->m_capacity = static_cast<std::size_t>(input.size);
    file->m_data = allocateLarge(file->m_capacity);
    // What the file holds now; one that shrank meanwhile is taken as it is.
    const long long n = readSome(input.fd, file->m_data, file->m_capacity);
    if (n < 0) return openError(path, errno);
    file->m_size = static_cast<std::size_t>(n);
    return std::shared_ptr<const ReadOnlyFile>(std::move(file));
}

ReadOnlyFile::~ReadOnlyFile() { releaseLarge(m_data, m_capacity); }

// ---- outputs

namespace {

constexpr std::string_view kPartMark = ".korvatek-";
constexpr std::string_view kPartEnd = ".part";

// "NAME.korvatek-PID-RANDOM.part": the process number tells a leftover of a run that is over
// from the file of a run still writing.
std::optional<int> partOwner(const std::string& name) {
    if (name.size() <= kPartEnd.size() || name.compare(name.size() - kPartEnd.size(), kPartEnd.size(), kPartEnd) != 0)
        return std::nullopt;
    const std::size_t mark = name.rfind(kPartMark);
    if (mark == std::string::npos || mark == 0) return std::nullopt;
    return processNumberAt(name, mark + kPartMark.size());
}

// Once per folder and run: a batch writes many files into one folder.
void removeLeftovers(const fs::path& folder) {
    static std::mutex lock;
    static std::vector<fs::path> done;
    std::lock_guard<std::mutex> guard(lock);
    const fs::path where = folder.empty() ? fs::path(".") : folder;
    std::error_code ec;
    const fs::path key = fs::weakly_canonical(where, ec);
    if (std::find(done.begin(), done.end(), key) != done.end()) return;
    done.push_back(key);
    fs::directory_iterator it(where, ec);
    if (ec) return;
    for (const fs::directory_entry& entry : it) {
        const std::string name = pathText(entry.path().filename());
        const auto owner = partOwner(name);
        if (!owner || processIsRunning(*owner)) continue;
        // Only a plain file is removed, never what a link points at.
        if (entry.symlink_status(ec).type() == fs::file_type::regular) fs::remove(entry.path(), ec);
    }
}

struct OutputState {
    bool exists = false;
    bool folder = false;
    bool regular = false;  // or missing: written beside and renamed
};

OutputState outputState(const std::string& path) {
    OutputState state;
    std::error_code ec;
    const auto status = fs::status(toPath(path), ec);  // through links: what the name leads to
    if (ec || status.type() == fs::file_type::not_found) {
        state.regular = true;
        return state;
    }
    state.exists = true;
    state.folder = status.type() == fs::file_type::directory;
    state.regular = status.type() == fs::file_type::regular;
    return state;
}

// The name the new file is renamed to: a link named as the output is followed (also one whose
// file does not exist yet), so that the file it points at is written and the link stays a link.
fs::path finalTarget(const std::string& path) {
    fs::path target = toPath(path);
    std::error_code ec;
    for (int hops = 0; hops < 40 && fs::symlink_status(target, ec).type() == fs::file_type::symlink; ++hops) {
        const fs::path next = fs::read_symlink(target, ec);
        if (ec) break;
        target = next.is_absolute() ? next : target.parent_path() / next;
    }
    return target;
}

// The temporary name beside `targetName`: the target's name cut so that the whole stays
// within the 255 bytes a file name may have, then the mark, the process and a random part.
std::string temporaryName(const std::string& targetName) {
    const std::string tail = std::string(kPartMark) + std::to_string(currentProcessId()) + "-" + randomSuffix() +
                             std::string(kPartEnd);
    std::string head = targetName.substr(0, std::min<std::size_t>(targetName.size(), 255 - tail.size()));
    while (!head.empty() && (static_cast<unsigned char>(head.back()) & 0xC0) == 0x80) head.pop_back();  // whole letters
    if (!head.empty() && static_cast<unsigned char>(head.back()) >= 0xC0) head.pop_back();
    return head + tail;
}

// The temporary file being written, in the system's own characters, so that an interrupted
// run can remove it.
fs::path::value_type g_partialOutput[4096] = {};

void notePartialOutput(const fs::path& path) {
    const auto& text = path.native();
    const std::size_t n = std::min<std::size_t>(text.size(), std::size(g_partialOutput) - 1);
    std::copy_n(text.data(), n, g_partialOutput);
    g_partialOutput[n] = 0;
}

Status writeAll(int fd, ByteView bytes, const std::string& path) {
    std::size_t done = 0;
    while (done < bytes.size()) {
#ifdef _WIN32
        const int n = ::_write(fd, bytes.data() + done, static_cast<unsigned>(std::min<std::size_t>(bytes.size() - done, 1u << 30)));
#else
        const ssize_t n = ::write(fd, bytes.data() + done, bytes.size() - done);
        if (n < 0 && errno == EINTR) continue;
#endif
        if (n < 0) return writeError(path, errno);
        if (n == 0) return writeError(path, EIO);
        done += static_cast<std::size_t>(n);
    }
    return success();
}

Status writeStandardOutput(ByteView bytes) {
    std::fflush(stdout);
#ifdef _WIN32
    return writeAll(::_fileno(stdout), bytes, "-");
#else
    return writeAll(STDOUT_FILENO, bytes, "-");
#endif
}

// A device or a pipe: written as it stands, never replaced.
Status writeDirectly(const std::string& path, ByteView bytes) {
#ifdef _WIN32
    int fd = -1;
    if (::_wsopen_s(&fd, toPath(path).c_str(), _O_WRONLY | _O_BINARY, _SH_DENYNO, 0) != 0) return writeError(path, errno);
    Status written = writeAll(fd, bytes, path);
    if (::_close(fd) != 0 && written) written = writeError(path, errno);
#else
    const int fd = ::open(path.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY);
    if (fd < 0) return writeError(path, errno);
    Status written = writeAll(fd, bytes, path);
    if (::close(fd) != 0 && written) written = writeError(path, errno);
#endif
    return written;
}

// Creates the temporary file exclusively (an existing name, also a planted link, is never
// opened) and returns its descriptor, or -1 with errno set.
int createExclusive(const fs::path& temporary) {
#ifdef _WIN32
    int fd = -1;
    if (::_wsopen_s(&fd, temporary.c_str(), _O_WRONLY | _O_CREAT | _O_EXCL | _O_BINARY, _SH_DENYRW,
                    _S_IREAD | _S_IWRITE) != 0)
        return -1;
    return fd;
#else
    return ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC | O_NOCTTY, 0666);
#endif
}

int flushToDisk(int fd) {
#ifdef _WIN32
    return ::_commit(fd);
#else
    return ::fsync(fd);
#endif
}

int closeFile(int fd) {
#ifdef _WIN32
    return ::_close(fd);
#else
    return ::close(fd);
#endif
}

}  // namespace

bool sameFile(const std::string& a, const std::string& b) {
    if (a.empty() || b.empty()) return false;
    std::error_code ec;
    return fs::equivalent(toPath(a), toPath(b), ec) && !ec;
}

Status checkOutput(const std::string& path, const std::vector<std::string>& inputs) {
    if (isStandardOutput(path)) return success();
    if (path.empty()) return writeError(path, ENOENT);
    const OutputState state = outputState(path);
    if (state.folder) return makeError(ErrorCode::OutputIsFolder, path);
    if (state.exists) {
        for (const std::string& input : inputs)
            if (sameFile(path, input)) return makeError(ErrorCode::OutputIsInput, path);
    }
    return success();
}

Status writeFile(const std::string& path, ByteView bytes, const std::vector<std::string>& inputs) {
    if (const Status allowed = checkOutput(path, inputs); !allowed) return allowed;
    if (isStandardOutput(path)) return writeStandardOutput(bytes);
    const OutputState state = outputState(path);
    if (!state.regular) return writeDirectly(path, bytes);

    const fs::path target = finalTarget(path);
    const fs::path folder = target.parent_path();
    const std::string targetName = pathText(target.filename());
    removeLeftovers(folder);

    fs::path temporary;
    int fd = -1;
    for (int attempt = 0; attempt < 100 && fd < 0; ++attempt) {
        temporary = folder / toPath(temporaryName(targetName));
        fd = createExclusive(temporary);
        if (fd < 0 && errno != EEXIST) break;
    }
    if (fd < 0) return writeError(path, errno);
    notePartialOutput(temporary);

    Status written = writeAll(fd, bytes, path);
#ifndef _WIN32
    // A replaced file keeps its permissions and, where we may, its owner: a private file stays private.
    struct stat old {};
    if (written && state.exists && ::stat(target.c_str(), &old) == 0) {
        if (::fchown(fd, old.st_uid, old.st_gid) != 0) { /* not ours to give away: keep our own */ }
        (void)::fchmod(fd, old.st_mode & 07777);
    }
#endif
    // An old file is only given up once the new one is on the disk; a new name has nothing to
    // lose, and a batch of 1701 files would wait for the disk 1701 times.
    if (written && state.exists && flushToDisk(fd) != 0) written = writeError(path, errno);
    if (closeFile(fd) != 0 && written) written = writeError(path, errno);
    std::error_code ec;
    if (written) {
        fs::rename(temporary, target, ec);
        if (ec) written = writeError(path, ec.value());
    }
    if (!written) fs::remove(temporary, ec);
    g_partialOutput[0] = 0;
    return written;
}

void removePartialOutput() {
    // Called from a signal handler: unlink alone, on a name prepared before.
#ifdef _WIN32
    if (g_partialOutput[0] != 0) ::_wunlink(g_partialOutput);
#else
    if (g_partialOutput[0] != 0) ::unlink(g_partialOutput);
#endif
}

Status writeFile(const std::string& path, std::string_view text, const std::vector<std::string>& inputs) {
    return writeFile(path, ByteView(reinterpret_cast<const std::uint8_t*>(text.data()), text.size()), inputs);
}

bool CheckFexist(const std::string& path) {
    if (path.empty()) return true;
    std::error_code ec;
    const auto status = fs::status(toPath(path), ec);
    if (ec) {
        return ec == std::errc::no_such_file_or_directory || ec == std::errc::invalid_argument ||
               ec == std::errc::filename_too_long || ec == std::errc::not_a_directory;
    }
    return status.type() == fs::file_type::not_found;
}

bool deleteFile(const std::string& path) {
    std::error_code ec;
    const fs::path p = toPath(path);
    fs::remove(p, ec);
    return !fs::exists(p, ec);
}

std::string joinPath(const std::string& folder, const std::string& name) {
    if (folder.empty()) return name;
    const char last = folder.back();
    if (last == '/' || last == fs::path::preferred_separator) return folder + name;
    return folder + static_cast<char>(fs::path::preferred_separator) + name;
}

std::string temporaryFolder() {
#ifdef _WIN32
    for (const wchar_t* name : {L"TMP", L"TMPDIR"}) {
        const wchar_t* value = ::_wgetenv(name);
        if (value != nullptr && *value != L'\0') return pathText(fs::path(value));
    }
#else
    for (const char* name : {"TMP", "TMPDIR"}) {
        const char* value = std::getenv(name);
        if (value != nullptr && *value != '\0') return value;
    }
#endif
    std::error_code ec;
    auto folder = fs::temp_directory_path(ec);
    return ec ? std::string("/tmp") : pathText(folder);
}

namespace {

std::mutex g_privateFolderLock;
std::string g_privateFolder;
std::string g_privateFolderParent;

constexpr std::string_view kPrivateFolderMark = "korvatek-";

}  // namespace

// Folders of runs that were killed: "korvatek-PID-RANDOM", ours, whose process is over.
void removeEndedPrivateFolders(const std::string& parent) {
    std::error_code ec;
    fs::directory_iterator it(toPath(parent), ec);
    if (ec) return;
    for (const fs::directory_entry& entry : it) {
        const std::string name = pathText(entry.path().filename());
        if (name.rfind(kPrivateFolderMark, 0) != 0 || entry.symlink_status(ec).type() != fs::file_type::directory) continue;
        const auto pid = processNumberAt(name, kPrivateFolderMark.size());
        if (!pid || processIsRunning(*pid)) continue;
#ifndef _WIN32
        struct stat st {};
        if (::lstat(entry.path().c_str(), &st) != 0 || st.st_uid != ::getuid()) continue;  // not ours
#endif
        fs::remove_all(entry.path(), ec);
    }
}

std::string privateTemporaryFolder() {
    std::lock_guard<std::mutex> guard(g_privateFolderLock);
    // Made anew when TMP changes, so that the folder the person chose is the one used.
    const std::string parent = temporaryFolder();
    if (!g_privateFolder.empty() && parent == g_privateFolderParent) return g_privateFolder;
    removeEndedPrivateFolders(parent);
    for (int attempt = 0; attempt < 100; ++attempt) {
        const std::string candidate =
            joinPath(parent, std::string(kPrivateFolderMark) + std::to_string(currentProcessId()) + "-" + randomSuffix());
        std::error_code ec;
#ifdef _WIN32
        if (!fs::create_directory(toPath(candidate), ec)) {
            if (ec) return {};
            continue;
        }
#else
        if (::mkdir(candidate.c_str(), 0700) != 0) {
            if (errno == EEXIST) continue;
            return {};
        }
#endif
        if (!g_privateFolder.empty()) fs::remove_all(toPath(g_privateFolder), ec);
        static const bool registered = [] { return std::atexit(removePrivateTemporaryFolder) == 0; }();
        (void)registered;
        g_privateFolder = candidate;
        g_privateFolderParent = parent;
        return g_privateFolder;
    }
    return {};
}

void removePrivateTemporaryFolder() {
    std::lock_guard<std::mutex> guard(g_privateFolderLock);
    if (g_privateFolder.empty()) return;
    std::error_code ec;
    fs::remove_all(toPath(g_privateFolder), ec);
    g_privateFolder.clear();
    g_privateFolderParent.clear();
}

std::string temporaryPath(const std::string& suffix) {
    std::string rest = suffix;
    // On Windows the suffix is joined as written; elsewhere a leading backslash is the separator.
    if (!rest.empty() && rest.front() == '\\' && fs::path::preferred_separator == '/') rest.front() = '/';
    std::string folder = privateTemporaryFolder();
    // Never a shared name: without a private folder the name leads nowhere and the write fails.
    if (folder.empty()) folder = joinPath(temporaryFolder(), "korvatek-unavailable");
    return folder + rest;
}

}  // namespace korvatek::app

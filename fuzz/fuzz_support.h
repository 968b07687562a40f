#pragma once
// Shared by the fuzz targets. SplicedFlash: the demonstration fullflash as a file the Workspace
// can open by path, made once per process, with fuzz input written over chosen regions before
// each run. Only the regions an input
// touched are rewritten (first with the pristine bytes of the previous input's regions), so a
// run costs a few kilobytes of writes instead of 32 MiB.

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#ifdef _WIN32
#include <process.h>
#else
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>
#endif

#include "base/bytes.h"
#include "base/file_io.h"
#include "demo/demo_flash.h"

namespace korvatek::fuzz {

struct Piece {
    std::uint64_t offset = 0;
    const std::uint8_t* data = nullptr;
    std::size_t size = 0;
};

class SplicedFlash {
public:
    SplicedFlash() : m_pristine(firmware::makeDemoFlash()) {
#ifdef _WIN32
        // No anonymous memory files here: a temporary file, kept open for writing while the
        // Workspace opens it by name (the C runtime shares it for reading).
        m_path = app::pathText(std::filesystem::temp_directory_path() /
                               ("korvatek-fuzz-flash-" + std::to_string(_getpid()) + ".bin"));
        m_file = _wfopen(app::toPath(m_path).c_str(), L"w+b");
        if (m_file == nullptr) std::abort();
        m_unlink = true;
#else
        m_fd = ::memfd_create("korvatek-fuzz-flash", 0);
        if (m_fd >= 0) {
            m_path = "/proc/self/fd/" + std::to_string(m_fd);
        } else {
            char name[] = "/tmp/korvatek-fuzz-flash-XXXXXX";
            m_fd = ::mkstemp(name);
            if (m_fd < 0) std::abort();
            m_path = name;
            m_unlink = true;
        }
#endif
        writeAt(0, m_pristine.data(), m_pristine.size());
    }
    ~SplicedFlash() {
#ifdef _WIN32
        std::fclose(m_file);
#else
        ::close(m_fd);
#endif
        std::error_code ignored;
        if (m_unlink) std::filesystem::remove(app::toPath(m_path), ignored);
    }
    SplicedFlash(const SplicedFlash&) = delete;
    SplicedFlash& operator=(const SplicedFlash&) = delete;

    const std::string& path() const { return m_path; }
    const Bytes& pristine() const { return m_pristine; }

    // Restores what the previous call changed, then writes the pieces (clipped to the image).
    void splice(const std::vector<Piece>& pieces) {
        for (const auto& [offset, size] : m_dirty) writeAt(offset, m_pristine.data() + offset, size);
        m_dirty.clear();
        for (const Piece& p : pieces) {
            if (p.offset >= m_pristine.size() || p.size == 0) continue;
            const std::size_t n = static_cast<std::size_t>(std::min<std::uint64_t>(p.size, m_pristine.size() - p.offset));
            writeAt(p.offset, p.data, n);
            m_dirty.emplace_back(p.offset, n);
        }
    }

private:
    void writeAt(std::uint64_t offset, const std::uint8_t* data, std::size_t size) {
#ifdef _WIN32
        // Flushed at once, so that the Workspace's own open of the file reads the new bytes.
        if (_fseeki64(m_file, static_cast<long long>(offset), SEEK_SET) != 0 ||
            std::fwrite(data, 1, size, m_file) != size || std::fflush(m_file) != 0)
            std::abort();
#else
        while (size > 0) {
            const ssize_t n = ::pwrite(m_fd, data, size, static_cast<off_t>(offset));
            if (n <= 0) std::abort();
            data += n;
            size -= static_cast<std::size_t>(n);
            offset += static_cast<std::uint64_t>(n);
        }
#endif
    }

    Bytes m_pristine;
#ifdef _WIN32
    std::FILE* m_file = nullptr;
#else
    int m_fd = -1;
#endif
    std::string m_path;
    bool m_unlink = false;
    std::vector<std::pair<std::uint64_t, std::size_t>> m_dirty;
};

// A private folder for the files the commands write, removed when the process ends.
inline const std::string& scratchFolder() {
    // Never destroyed, so the exit handler can still use it.
    static const std::string* folder = [] {
#ifdef _WIN32
        auto* name = new std::string(app::pathText(std::filesystem::temp_directory_path() /
                                                   ("korvatek-fuzz-" + std::to_string(_getpid()))));
        std::error_code failed;
        std::filesystem::create_directories(app::toPath(*name), failed);
        if (failed) std::abort();
#else
        const char* base = ::access("/dev/shm", W_OK) == 0 ? "/dev/shm" : "/tmp";
        auto* name = new std::string(std::string(base) + "/korvatek-fuzz-XXXXXX");
        if (::mkdtemp(name->data()) == nullptr) std::abort();
#endif
        std::atexit([] {
            std::error_code ignored;
            std::filesystem::remove_all(app::toPath(scratchFolder()), ignored);
        });
        return name;
    }();
    return *folder;
}

// Writes bytes to a file of the scratch folder and returns its path.
inline std::string scratchFile(const std::string& name, const std::uint8_t* data, std::size_t size) {
    const std::string path = scratchFolder() + "/" + name;
#ifdef _WIN32
    std::FILE* f = _wfopen(app::toPath(path).c_str(), L"wb");
#else
    std::FILE* f = std::fopen(path.c_str(), "wb");
#endif
    if (f == nullptr) std::abort();
    if (size > 0 && std::fwrite(data, 1, size, f) != size) std::abort();
    std::fclose(f);
    return path;
}

// An invariant of the code under test; a violation is a crash libFuzzer keeps.
inline void check(bool holds, const char* what) {
    if (holds) return;
    std::fprintf(stderr, "invariant violated: %s\n", what);
    std::abort();
}

// Reads the input from the front: one byte or a little-endian word at a time, zero past the end.
class InputCursor {
public:
    InputCursor(const std::uint8_t* data, std::size_t size) : m_data(data), m_size(size) {}
    std::uint8_t u8() { return m_pos < m_size ? m_data[m_pos++] : 0; }
    std::uint16_t u16() {
        const std::uint16_t lo = u8();
        return static_cast<std::uint16_t>(lo | (u8() << 8));
    }
    // The next n bytes (fewer at the end of the input).
    Piece take(std::uint64_t offset, std::size_t n) {
        n = std::min(n, m_size - m_pos);
        Piece p{offset, m_data + m_pos, n};
        m_pos += n;
        return p;
    }
    Piece rest(std::uint64_t offset) { return take(offset, m_size - m_pos); }

private:
    const std::uint8_t* m_data;
    std::size_t m_size;
    std::size_t m_pos = 0;
};

}  // namespace korvatek::fuzz

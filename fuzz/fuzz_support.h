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

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include "base/bytes.h"
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
        writeAt(0, m_pristine.data(), m_pristine.size());
    }
    ~SplicedFlash() {
        ::close(m_fd);
        if (m_unlink) ::unlink(m_path.c_str());
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
        while (size > 0) {
            const ssize_t n = ::pwrite(m_fd, data, size, static_cast<off_t>(offset));
            if (n <= 0) std::abort();
            data += n;
            size -= static_cast<std::size_t>(n);
            offset += static_cast<std::uint64_t>(n);
        }
    }

    Bytes m_pristine;
    int m_fd = -1;
    std::string m_path;
    bool m_unlink = false;
    std::vector<std::pair<std::uint64_t, std::size_t>> m_dirty;
};

// A private folder for the files the commands write, removed when the process ends.
inline const std::string& scratchFolder() {
    // Never destroyed, so the exit handler can still use it.
    static const std::string* folder = [] {
        const char* base = ::access("/dev/shm", W_OK) == 0 ? "/dev/shm" : "/tmp";
        auto* name = new std::string(std::string(base) + "/korvatek-fuzz-XXXXXX");
        if (::mkdtemp(name->data()) == nullptr) std::abort();
        std::atexit([] {
            std::error_code ignored;
            std::filesystem::remove_all(scratchFolder(), ignored);
        });
        return name;
    }();
    return *folder;
}

// Writes bytes to a file of the scratch folder and returns its path.
inline std::string scratchFile(const std::string& name, const std::uint8_t* data, std::size_t size) {
    const std::string path = scratchFolder() + "/" + name;
    std::FILE* f = std::fopen(path.c_str(), "wb");
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

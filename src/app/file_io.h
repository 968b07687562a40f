#pragma once
// Files as objects: a read-only view of a whole file (mapped where the system can), whole-file
// reads and writes, the existence test, and joining folder and file names.

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

#include "app/bytes.h"
#include "app/result.h"

namespace korvatek::app {

// A file opened for reading only, its bytes kept for as long as the object lives.
// Paths are UTF-8 text everywhere inside; these two are the only conversions to and from the
// system's own path type, so that a Cyrillic or Polish folder name survives on every platform.
std::filesystem::path toPath(std::string_view utf8);
std::string pathText(const std::filesystem::path& path);

class ReadOnlyFile {
public:
    static Result<std::shared_ptr<const ReadOnlyFile>> open(const std::string& path);
    ~ReadOnlyFile();
    ReadOnlyFile(const ReadOnlyFile&) = delete;
    ReadOnlyFile& operator=(const ReadOnlyFile&) = delete;

    ByteView bytes() const { return {m_data, m_size}; }
    std::uint64_t size() const { return m_size; }
    const std::string& path() const { return m_path; }

private:
    ReadOnlyFile() = default;
    std::string m_path;
    const std::uint8_t* m_data = nullptr;
    std::size_t m_size = 0;
    void* m_mapping = nullptr;   // the system mapping, when mapped
    Bytes m_copy;                // the bytes, when read whole
};

Result<Bytes> readFile(const std::string& path);
Status writeFile(const std::string& path, ByteView bytes);
Status writeFile(const std::string& path, std::string_view text);

// True when the file is missing (no such file, or a name the system refuses); false when it
// exists, also when it cannot be opened (a folder, no rights). Callers rely on this sense.
bool CheckFexist(const std::string& path);

bool deleteFile(const std::string& path);  // ignores every error; true when gone

// folder + separator + name; a folder that already ends in a separator gets none.
std::string joinPath(const std::string& folder, const std::string& name);

// The folder for temporary files: TMP, or when unset or empty TMPDIR, else the system's.
std::string temporaryFolder();

// A temporary file name: the folder joined with a suffix such as "/Korvatek.temp" or
// "\PNGtemp.bmp" (a leading slash or backslash is read as the separator).
std::string temporaryPath(const std::string& suffix);

// The text the system gives for the last error of a file operation.
std::string systemErrorText(int errorNumber);

}  // namespace korvatek::app

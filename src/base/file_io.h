#pragma once
// Files as values: whole-file reads of regular files up to a named limit, outputs written beside
// their target and renamed into place, the existence test, joining folder and file names, and
// the private folder for temporary files.

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/bytes.h"
#include "base/result.h"

namespace korvatek::app {

// Paths are UTF-8 text everywhere inside; these two are the only conversions to and from the
// system's own path type, so that a Cyrillic or Polish folder name survives on every platform.
std::filesystem::path toPath(std::string_view utf8);
std::string pathText(const std::filesystem::path& path);

// Input limits. No phone's dump is near 64 MiB; a patch that rewrites the whole picture area
// (about 4.9 MB of data, 16 bytes a line) is about 23 MB of text; a 240 x 320 picture is
// at most 300 KB in any of the formats taken as a replacement.
inline constexpr std::uint64_t kMaxFlashFileSize = 64u << 20;
inline constexpr std::uint64_t kMaxPatchFileSize = 32u << 20;
inline constexpr std::uint64_t kMaxPictureFileSize = 8u << 20;
inline constexpr std::uint64_t kMaxSmallTextFileSize = 1u << 20;  // settings and association files

// A limit as people read it ("64 MiB").
std::string limitText(std::uint64_t bytes);

// The whole of a regular file, refused when it is larger than `limit` (TooLarge), not a regular
// file (a pipe, a device, a socket: NotRegularFile; such a file is never opened in a way that
// could wait), missing or unreadable.
Result<Bytes> readFile(const std::string& path, std::uint64_t limit);

// The same in pieces of at most `chunkSize` bytes, for a reader that need not hold it all.
Status readFileChunks(const std::string& path, std::uint64_t limit, std::size_t chunkSize,
                      const std::function<void(ByteView)>& onChunk);

// A file opened for reading only: its bytes, read whole into memory, kept for as long as the
// object lives (a change to the file on disk meanwhile changes nothing here).
class ReadOnlyFile {
public:
    static Result<std::shared_ptr<const ReadOnlyFile>> open(const std::string& path, std::uint64_t limit);
    ~ReadOnlyFile();
    ReadOnlyFile(const ReadOnlyFile&) = delete;
    ReadOnlyFile& operator=(const ReadOnlyFile&) = delete;

    ByteView bytes() const { return {m_data, m_size}; }
    std::uint64_t size() const { return m_size; }
    const std::string& path() const { return m_path; }

private:
    ReadOnlyFile() = default;
    std::string m_path;
    std::uint8_t* m_data = nullptr;  // a buffer of m_capacity bytes, m_size of them read
    std::size_t m_size = 0;
    std::size_t m_capacity = 0;
};

// The name that stands for standard output where a command writes a single stream.
inline constexpr std::string_view kStandardOutputName = "-";
inline bool isStandardOutput(std::string_view path) { return path == kStandardOutputName; }

// Writes an output. "-" is standard output; a device or a pipe named as the output is written
// directly. Anything else is written to a new file beside the target (an unpredictable name,
// created exclusively, never through a link), flushed to disk and renamed over the target, so
// that the old file stays whole until the new one is; the temporary file is removed on every
// failure, and leftovers of earlier runs that were killed are removed first. Refused: a target
// that is a folder, and a target that is the same file as any of `inputs` (by identity, so a
// link or another spelling of the name is caught too).
Status writeFile(const std::string& path, ByteView bytes, const std::vector<std::string>& inputs = {});
Status writeFile(const std::string& path, std::string_view text, const std::vector<std::string>& inputs = {});

// Removes the temporary file of a write that is under way; safe to call from a signal handler,
// so that an interrupted run leaves nothing beside its target.
void removePartialOutput();

// The refusals of writeFile alone, for a caller that wants them before any work is done.
Status checkOutput(const std::string& path, const std::vector<std::string>& inputs);

// True when both names lead to one existing file.
bool sameFile(const std::string& a, const std::string& b);

// True when the file is missing (no such file, or a name the system refuses); false when it
// exists, also when it cannot be opened (a folder, no rights). Callers rely on this sense.
bool CheckFexist(const std::string& path);

bool deleteFile(const std::string& path);  // ignores every error; true when gone

// folder + separator + name; a folder that already ends in a separator gets none.
std::string joinPath(const std::string& folder, const std::string& name);

// The folder the temporary folder is made in: TMP, or when unset or empty TMPDIR, else the
// system's.
std::string temporaryFolder();

// This process's own folder for temporary files: made on first use inside temporaryFolder()
// under a name nobody can predict, readable by its owner only, and removed with everything in
// it when the program ends. Empty when it cannot be made.
std::string privateTemporaryFolder();
void removePrivateTemporaryFolder();
// Removes the private folders that runs which were killed left in `parent`.
void removeEndedPrivateFolders(const std::string& parent);

// A temporary file name: the private folder joined with a suffix such as "/Korvatek.temp" or
// "\PNGtemp.bmp" (a leading slash or backslash is read as the separator).
std::string temporaryPath(const std::string& suffix);

// The text the system gives for the last error of a file operation.
std::string systemErrorText(int errorNumber);

}  // namespace korvatek::app

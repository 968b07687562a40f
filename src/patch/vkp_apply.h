#pragma once
// Reading V_Klay patch text to check it against a fullflash and apply it to a copy. A line is
// "address: old new" (hex; the old and new bytes of equal length), ";" starts a comment, and a
// line of "+" or "-" and hex moves the base offset added to every later address. Lines end with
// CR LF, LF or a lone CR; a UTF-8 byte-order mark in front is skipped.

#include <cstdint>
#include <string>
#include <vector>

#include "base/bytes.h"
#include "base/result.h"
#include "patch/line_splitter.h"

namespace korvatek::patch {

struct PatchEdit {
    int line = 0;               // 1-based line number in the patch
    std::uint64_t offset = 0;   // fullflash offset, base offset applied
    Bytes oldBytes;
    Bytes newBytes;
};

struct PatchProblem {
    enum class Kind { Malformed, Mismatch, Beyond };
    Kind kind = Kind::Malformed;
    int line = 0;
    std::uint64_t offset = 0;
    std::string what;           // for a malformed line: what is wrong with it
};

// Two lines that write different bytes to one address: which wins would be an accident of order.
struct PatchConflict {
    int firstLine = 0;
    int secondLine = 0;
    std::uint64_t offset = 0;   // the first address where they differ
};

// Lines that are not patch text are kept up to this many; the rest are only counted.
inline constexpr std::size_t kMaxKeptMalformedLines = 100;

struct ParsedPatch {
    std::vector<PatchEdit> edits;
    std::vector<PatchProblem> malformed;  // lines that are not patch text, the first ones
    std::size_t malformedCount = 0;       // all of them
    std::vector<PatchConflict> conflicts;
};

// Reads patch text piece by piece, so that a large file need not be held whole.
class VkpReader {
public:
    void feed(std::string_view text);
    ParsedPatch finish();

private:
    void takeLine(std::string_view line);

    ParsedPatch m_parsed;
    LineSplitter m_lines;
    std::string m_start;            // the first bytes, until it is clear whether they are a mark
    bool m_atStart = true;          // nothing read yet: a byte-order mark may come
    int m_lineNumber = 0;
    std::int64_t m_base = 0;
};

ParsedPatch parseVkp(std::string_view text);

// The conflicts among edits (each pair reported once, at the first address where they differ).
std::vector<PatchConflict> findConflicts(const std::vector<PatchEdit>& edits);

// Every edit whose old bytes differ from the image, or that lies beyond its end.
std::vector<PatchProblem> checkAgainst(const std::vector<PatchEdit>& edits, ByteView image);

// The image with every edit applied (call only when checkAgainst found nothing).
Bytes applyEdits(const std::vector<PatchEdit>& edits, ByteView image);

}  // namespace korvatek::patch

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

// What is wrong with a line that is not patch text, in the order of the checks.
enum class LineFault { None, BaseNotHex, NoColon, NotAddressOldNew, NotHex, OddDigits, LengthsDiffer, BeforeStart, NulByte };

struct PatchProblem {
    enum class Kind { Malformed, Mismatch, Beyond };
    Kind kind = Kind::Malformed;
    int line = 0;
    std::uint64_t offset = 0;
    LineFault fault = LineFault::None;  // for a malformed line
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

// One line of patch text as read: where its parts stand, so that a line can be rewritten (its
// old and new bytes swapped) with everything else, comments and spacing, kept as written.
struct VkpLine {
    enum class Kind { Empty, Base, Data, Malformed };
    Kind kind = Kind::Empty;
    std::int64_t base = 0;       // Base: the offset added to later addresses from here on
    std::uint64_t address = 0;   // Data: the address as written
    std::size_t oldAt = 0;       // Data: where the old bytes' hex digits start in the line
    std::size_t newAt = 0;       // Data: where the new bytes' hex digits start
    std::size_t hexLength = 0;   // Data: digits of each (old and new have the same length)
    LineFault fault = LineFault::None;  // Malformed: what is wrong with it
};
VkpLine readVkpLine(std::string_view line);

// Calls onLine(number, line) for each line of a whole patch text, a byte-order mark skipped.
template <class OnLine>
void forEachVkpLine(std::string_view text, OnLine&& onLine) {
    constexpr std::string_view mark = "\xEF\xBB\xBF";
    if (text.substr(0, mark.size()) == mark) text.remove_prefix(mark.size());
    int number = 0;
    LineSplitter lines;
    const auto take = [&](std::string_view line) { onLine(++number, line); };
    lines.feed(text, take);
    lines.finish(take);
}

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

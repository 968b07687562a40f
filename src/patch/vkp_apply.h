#pragma once
// Reading V_Klay patch text to check it against a fullflash and apply it to a copy. A line is
// "address: old new" (hex; the old and new bytes of equal length), ";" starts a comment, and a
// line of "+" or "-" and hex moves the base offset added to every later address.

#include <cstdint>
#include <string>
#include <vector>

#include "app/bytes.h"
#include "app/result.h"

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

struct ParsedPatch {
    std::vector<PatchEdit> edits;
    std::vector<PatchProblem> malformed;  // lines that are not patch text
};

ParsedPatch parseVkp(std::string_view text);

// Every edit whose old bytes differ from the image, or that lies beyond its end.
std::vector<PatchProblem> checkAgainst(const std::vector<PatchEdit>& edits, ByteView image);

// The image with every edit applied (call only when checkAgainst found nothing).
Bytes applyEdits(const std::vector<PatchEdit>& edits, ByteView image);

}  // namespace korvatek::patch

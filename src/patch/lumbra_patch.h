#pragma once
// Picture patches of the other patch tool: one section per picture, a record line, a skipped
// line, then data lines whose new bytes are the picture data. Characters are taken by their
// positions, as the converter always has; malformed lines are not checked.

#include <string>
#include <vector>

#include "app/bytes.h"

namespace korvatek::patch {

inline constexpr std::string_view kLumbraSectionStart = "; ##### Picture ";

struct LumbraPicture {
    int number = 0;
    int width = 0;
    int height = 0;
    int typeCode = 0;
    Bytes data;  // new bytes of each data line, each line filled up with zeros to 16 bytes
};

// The patch's lines, split at CR LF, CR or LF.
std::vector<std::string> splitLines(std::string_view text);

std::vector<LumbraPicture> parseLumbraPatch(const std::vector<std::string>& lines);

}  // namespace korvatek::patch

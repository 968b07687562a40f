#pragma once
// GlyphRecord: one entry of a font's glyph table and the 5-byte header it leads to, as
// numbers. The list and the command line show it through glyphCellText. The offsets are read
// back the way their hex text has always been read: four digits or fewer are a 16-bit signed
// number (see listedHexValue).

#include <array>
#include <cstdint>
#include <string>

namespace korvatek::fonts {

struct GlyphRecord {
    int code = 0;                     // "#": the entry index + 1
    std::uint8_t advance = 0;         // W
    std::uint8_t width = 0;           // w: bitmap width
    std::uint8_t height = 0;          // h: bitmap height
    std::uint8_t shiftLeft = 0;       // sL as stored (above 127 it is negative)
    std::uint8_t spaceBelow = 0;      // sB
    std::uint32_t headerOffset = 0;   // fullflash offset of the glyph's 5-byte header
    std::uint32_t rawReference = 0;   // the table entry's reference as stored
    bool replaced = false;            // a replacement waits in the glyph patch

    // The header offset and the reference as their hex texts give them back.
    std::int64_t headerOffsetValue() const;
    std::int64_t referenceValue() const;
    // (w div 8 + 1) x h: what the "len" column shows.
    int listedLength() const { return (width / 8 + 1) * height; }
    std::string codeText() const;   // "0001"
};

// The reference text R of a raw reference: hex without leading zeros, or its last four digits
// when it begins with "FF".
std::string referenceText(std::uint32_t raw);

// Column 1..10: "#", "W", "w", "h", "sL", "sB", "0ffset", "bM0ffset", "len", "*".
std::string glyphCellText(const GlyphRecord& record, int column);

inline constexpr std::array<const char*, 10> kGlyphColumnCaptions{"#",      "W",        "w",   "h", "sL",
                                                                   "sB",     "0ffset",   "bM0ffset", "len", "*"};

}  // namespace korvatek::fonts

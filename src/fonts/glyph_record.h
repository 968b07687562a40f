#pragma once
// GlyphRecord: one row of the glyph list. As with pictures, every cell is text and the font
// commands parse the cells back.

#include <array>
#include <string>

namespace korvatek::fonts {

struct GlyphRecord {
    std::string number;     // 1 "#": character code, zero-padded to 4 digits
    std::string W;          // 2 "W": advance width, zero-padded to 2 digits
    std::string w;          // 3 "w": bitmap width
    std::string h;          // 4 "h": bitmap height
    std::string sL;         // 5 "sL": left shift (above 127 it is negative), padded to 2 digits
    std::string sB;         // 6 "sB": space below, padded to 2 digits
    std::string offset;     // 7 "0ffset": fullflash offset of the glyph's 5-byte header
    std::string bMoffset;   // 8 "bM0ffset": the reference as used
    std::string len;        // 9 "len": (w div 8 + 1) x h in hex, shown only
    std::string status = std::string(1, '\0');  // 10 "*": "*" once replaced

    const std::string& cell(int column) const;
    std::string& cell(int column);
};

inline constexpr std::array<const char*, 10> kGlyphColumnCaptions{"#",      "W",        "w",   "h", "sL",
                                                                   "sB",     "0ffset",   "bM0ffset", "len", "*"};

}  // namespace korvatek::fonts

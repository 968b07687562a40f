#pragma once
// The three fonts of the demo image: descriptors at the E71 v42 position, glyph tables after
// them, glyph records in the font area. Font 0 is the twice-enlarged typeface with 800
// characters, font 1 the small one with 256, font 2 the thrice-enlarged one with 224.

#include <cstdint>

#include "base/bytes.h"

namespace korvatek::firmware {

// One glyph record: the 5 header bytes and the bitmap (h rows of ceil(w / 8) bytes, leftmost
// pixel in the top bit, set bit = ink, the unused low bits of a row set).
struct DemoGlyph {
    std::uint8_t advance = 0;     // W
    std::uint8_t width = 0;       // w
    std::uint8_t height = 0;      // h
    std::uint8_t shiftLeft = 0;   // sL, 0xFF = one column to the left
    std::uint8_t spaceBelow = 0;  // sB
    Bytes bitmap;
};

// Enlargement of each demo font's typeface.
int demoFontScale(int font);

// The glyph of a character code (1-based, as the glyph list counts) at an enlargement.
DemoGlyph makeDemoGlyph(int code, int scale);

// Room a glyph replacement checks for between one reference and the next.
std::uint32_t demoGlyphRoom(const DemoGlyph& glyph);

// Writes the descriptors, glyph tables and glyph records into a kDemoFlashSize image.
void writeDemoFonts(Bytes& image);

}  // namespace korvatek::firmware

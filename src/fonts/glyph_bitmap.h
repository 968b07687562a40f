#pragma once
// Glyph bitmaps and the glyph grid (a 101 x 101 PixelCanvas): decoding a glyph into its
// character cell (LoadFont's drawing), encoding a rectangle of the grid back into firmware
// bitmap bytes (SaveFont), and trimming a loaded bitmap to its ink (TrimGlyphGrid).

#include <cstdint>

#include "base/byte_reader.h"
#include "base/bytes.h"
#include "base/result.h"
#include "codec/pixel_canvas.h"

namespace korvatek::fonts {

inline constexpr codec::Cell kInk{0x00, 0x00, 0x00, 0x00};
inline constexpr codec::Cell kPaper{0xFF, 0xFF, 0xFF, 0x00};
inline constexpr codec::Cell kPaperBelow{0xFF, 0xFF, 0xFF, 0xFF};  // the bottom margin's own fourth byte

// The glyph header as the list shows it, already taken apart.
struct GlyphHeader {
    int W = 0;   // advance
    int w = 0;   // bitmap width
    int h = 0;   // bitmap height
    int sL = 0;  // left shift; above 127 it is negative
    int sB = 0;  // space below
};

// The character cell a header gives: a negative shift (sL > 127) widens the cell by 257 - sL
// columns (one more than the shift's size, as it always has) and draws from column 0.
struct GlyphCell {
    int W = 0;
    int H = 0;
    int sL = 0;
};
GlyphCell glyphCell(const GlyphHeader& header);

// Draws the glyph whose bitmap starts at the reader's position into the grid, with its left,
// right and bottom margins, and sets the grid's width, height and depth (24). Cells outside
// the cell keep what they held. A glyph that does not fit the grid stops with
// MsgOutsideCanvas; reads past the end of the image give zeros.
Status drawGlyph(ByteReader& bitmap, const GlyphHeader& header, codec::PixelCanvas& grid);

// SaveFont: the rectangle (x0, y0, width, height) of the grid as firmware bitmap bytes, rows
// byte-aligned, ink (mean below 127) as set bits, padding bits set.
Result<Bytes> SaveFont(const codec::PixelCanvas& grid, int x0, int y0, int width, int height);

// TrimGlyphGrid's findings for a bitmap of Wb x Hb loaded into the grid.
struct GlyphTrim {
    int W = 0;       // the bitmap's full width
    int w = 0;       // ink width
    int h = 0;       // ink height
    int left = 0;    // blank columns at the left (the new sL)
    int bottom = 0;  // blank rows at the bottom (the new sB)
    int top = 0;     // blank rows at the top
    int right = 0;   // blank columns at the right
};
GlyphTrim TrimGlyphGrid(const codec::PixelCanvas& grid, int widthLoaded, int heightLoaded);

}  // namespace korvatek::fonts

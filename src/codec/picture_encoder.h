#pragma once
// Encoding the canvas into firmware picture data: the monochrome target (0x01, always plain)
// and the run-length targets 0x85, 0x88 and 0x8A (always compressed).

#include <array>
#include <cstdint>

#include "base/bytes.h"
#include "codec/pixel_canvas.h"

namespace korvatek::codec {

inline constexpr int kTarget1Bit = 0x01;
inline constexpr int kTarget8Bit = 0x85;
inline constexpr int kTarget16Bit = 0x88;
inline constexpr int kTarget24Bit = 0x8A;

// 3-3-2 byte of a colour; the transparent colour (R169 G171 B169) becomes 0xC0.
std::uint8_t RGBtoBIT8(int red, int green, int blue);
// 5-6-5 word of a colour, low byte first; the transparent colour becomes 00 E0.
std::array<std::uint8_t, 2> RGBtoBIT16(int red, int green, int blue);

// SaveGPFmono: rows of ceil(width / 8) bytes, black (mean below 127) as a set bit, each row's
// last byte padded with set bits.
Bytes SaveGPFmono(const PixelCanvas& canvas);

struct RunLengthResult {
    Bytes data;
    int stepsBeforeStart = 0;  // times the scan stepped back before the first cell ("err")
    bool outsideCanvas = false;  // a size with no rows or columns: the scan would never end
};

// SaveGPFraw: the run-length groups of the canvas for target 0x85, 0x88 or 0x8A. Cells are
// equal when all four bytes are. The last group is written the way the encoder has always
// ended, quirks included: a literal tail drops its next-to-last cell and counts one cell
// less than it writes, a final repeat counts one more, and an end met at a group start
// writes the previous control byte again with no cells (nothing at all for a 1 x 1 picture).
RunLengthResult SaveGPFraw(const PixelCanvas& canvas, int targetType);

}  // namespace korvatek::codec

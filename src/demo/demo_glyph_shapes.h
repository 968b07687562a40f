#pragma once
// The demo image's own little typeface: 5 columns by 11 rows per character (2 rows for accents,
// 7 rows of capital height, 2 rows for descenders), drawn for printable ASCII and derived for
// every other code (boxes below 0x20, accented, mirrored and turned letters above 0x7E).
// The demo fonts and the text in the demo pictures are both drawn from it.

#include <cstdint>
#include <vector>

namespace korvatek::firmware {

// A one-bit bitmap, row-major, 1 = ink.
struct DemoBitmap {
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> ink;

    DemoBitmap() = default;
    DemoBitmap(int w, int h) : width(w), height(h), ink(static_cast<std::size_t>(w * h), 0) {}
    bool at(int x, int y) const {
        return x >= 0 && y >= 0 && x < width && y < height && ink[static_cast<std::size_t>(y * width + x)] != 0;
    }
    void set(int x, int y, bool on) {
        if (x >= 0 && y >= 0 && x < width && y < height) ink[static_cast<std::size_t>(y * width + x)] = on ? 1 : 0;
    }
};

inline constexpr int kShapeWidth = 5;
inline constexpr int kShapeHeight = 11;
inline constexpr int kShapeCapTop = 2;    // first row of a capital letter
inline constexpr int kShapeBaseline = 9;  // first row below the baseline

// The 5 x 11 shape of a character code (any code from 1 on; 0x20 is blank).
DemoBitmap glyphShape(int code);

// Enlarges a bitmap by 1, 2 or 3, rounding off the stair steps of diagonals (the usual
// edge-directed pixel-art scalers), so that the larger fonts are not just blocky copies.
DemoBitmap scaleSmooth(const DemoBitmap& source, int factor);

}  // namespace korvatek::firmware

#pragma once
// A picture in memory: a grid of 4-byte cells (blue, green, red and a fourth byte). The picture
// canvas has 241 x 321 cells for pictures of at most 240 x 320; the glyph grid 101 x 101.
// What the old program kept as text in the spare column (width, height, bit depth, data
// length) is kept here as explicit fields with the same meaning and the same lifetime: they
// change only when a decoder or reader writes them.

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace korvatek::codec {

using Cell = std::array<std::uint8_t, 4>;

// The canvas value that stands for the firmware's transparent key (shown as R169 G171 B169).
inline constexpr Cell TransparentPixel{0xA9, 0xAB, 0xA9, 0x00};

class PixelCanvas {
public:
    static constexpr int kPictureColumns = 241;
    static constexpr int kPictureRows = 321;
    static constexpr int kGlyphColumns = 101;
    static constexpr int kGlyphRows = 101;

    PixelCanvas(int columns = kPictureColumns, int rows = kPictureRows)
        : m_columns(columns), m_rows(rows), m_cells(static_cast<std::size_t>(columns) * rows, Cell{}) {}

    int columns() const { return m_columns; }
    int rows() const { return m_rows; }
    bool contains(int x, int y) const { return x >= 0 && y >= 0 && x < m_columns && y < m_rows; }

    // Callers check contains() first; an index outside the grid is a fault in the caller.
    Cell& at(int x, int y) { return m_cells[static_cast<std::size_t>(y) * m_columns + x]; }
    const Cell& at(int x, int y) const { return m_cells[static_cast<std::size_t>(y) * m_columns + x]; }

    // Metadata: width and height of what was last decoded or read, the bit depth of the next
    // BMP export ("24" or "32"), and the data length in upper-case hex.
    int metaWidth = 0;
    int metaHeight = 0;
    int metaDepth = 0;

private:
    int m_columns;
    int m_rows;
    std::vector<Cell> m_cells;
};

}  // namespace korvatek::codec

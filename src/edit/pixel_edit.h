#pragma once
// The drawing operations of the glyph and picture editors, on a plain grid of colours: each
// takes the grid and returns nothing but the grid changed, so that they can be tested on
// small grids and an editor's undo is a copy of the grid before the stroke. Points outside the
// grid are skipped, never an error: a stroke may run off the edge.

#include <cstdint>
#include <vector>

namespace korvatek::edit {

using Colour = std::uint32_t;   // 0xAARRGGBB
inline constexpr Colour kInk = 0xFF000000;     // a glyph's set pixel
inline constexpr Colour kPaper = 0xFFFFFFFF;   // a glyph's clear pixel
inline constexpr Colour kTransparentKey = 0xFFA9ABA9;   // a picture's transparent pixels, as a BMP holds them

struct PixelGrid {
    int width = 0;
    int height = 0;
    std::vector<Colour> pixels;   // row by row from the top

    PixelGrid() = default;
    PixelGrid(int w, int h, Colour fill = kPaper)
        : width(w), height(h), pixels(static_cast<std::size_t>(w > 0 && h > 0 ? w * h : 0), fill) {}
    bool contains(int x, int y) const { return x >= 0 && y >= 0 && x < width && y < height; }
    Colour at(int x, int y) const { return pixels[static_cast<std::size_t>(y * width + x)]; }
    void set(int x, int y, Colour c) {
        if (contains(x, y)) pixels[static_cast<std::size_t>(y * width + x)] = c;
    }
    bool operator==(const PixelGrid&) const = default;
};

// A straight line from one point to the other, both ends drawn.
void drawLine(PixelGrid& grid, int x0, int y0, int x1, int y1, Colour colour);
// The rectangle with these corners (in any order), its outline or all of it.
void drawRectangle(PixelGrid& grid, int x0, int y0, int x1, int y1, Colour colour, bool filled);
// Every pixel reachable from (x, y) through its four neighbours with the same colour.
void floodFill(PixelGrid& grid, int x, int y, Colour colour);
// Moves everything by (dx, dy); what leaves the grid is lost, what comes in is `background`.
void shift(PixelGrid& grid, int dx, int dy, Colour background);
// Left to right (horizontal) or top to bottom.
void mirror(PixelGrid& grid, bool horizontal);
// The grid made w x h, keeping its top-left part; new pixels are `background`.
PixelGrid resized(const PixelGrid& grid, int width, int height, Colour background);

// Undo and redo for an editor: the grid before each change, up to a limit.
class EditHistory {
public:
    explicit EditHistory(std::size_t limit = 200) : m_limit(limit) {}
    // Call before changing `current`: it becomes the state Undo goes back to.
    void record(const PixelGrid& current);
    bool canUndo() const { return !m_undo.empty(); }
    bool canRedo() const { return !m_redo.empty(); }
    // Returns the state to show; `current` is kept for the other direction.
    PixelGrid undo(const PixelGrid& current);
    PixelGrid redo(const PixelGrid& current);

private:
    std::size_t m_limit;
    std::vector<PixelGrid> m_undo;
    std::vector<PixelGrid> m_redo;
};

}  // namespace korvatek::edit

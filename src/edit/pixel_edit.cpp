#include "edit/pixel_edit.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace korvatek::edit {

void drawLine(PixelGrid& grid, int x0, int y0, int x1, int y1, Colour colour) {
    // Bresenham's, in integers: the same pixels whichever end the stroke starts from is not
    // promised, but both ends are always drawn and no pixel is skipped along the way.
    const int dx = std::abs(x1 - x0), dy = -std::abs(y1 - y0);
    const int sx = x0 < x1 ? 1 : -1, sy = y0 < y1 ? 1 : -1;
    int error = dx + dy;
    for (;;) {
        grid.set(x0, y0, colour);
        if (x0 == x1 && y0 == y1) return;
        const int twice = 2 * error;
        if (twice >= dy) error += dy, x0 += sx;
        if (twice <= dx) error += dx, y0 += sy;
    }
}

void drawRectangle(PixelGrid& grid, int x0, int y0, int x1, int y1, Colour colour, bool filled) {
    if (x0 > x1) std::swap(x0, x1);
    if (y0 > y1) std::swap(y0, y1);
    for (int y = std::max(y0, 0); y <= std::min(y1, grid.height - 1); ++y)
        for (int x = std::max(x0, 0); x <= std::min(x1, grid.width - 1); ++x)
            if (filled || x == x0 || x == x1 || y == y0 || y == y1) grid.set(x, y, colour);
}

void floodFill(PixelGrid& grid, int x, int y, Colour colour) {
    if (!grid.contains(x, y)) return;
    const Colour from = grid.at(x, y);
    if (from == colour) return;
    std::vector<std::pair<int, int>> todo{{x, y}};   // a stack, not recursion: a 240 x 320 area is deep
    grid.set(x, y, colour);
    while (!todo.empty()) {
        const auto [px, py] = todo.back();
        todo.pop_back();
        for (const auto& [nx, ny] : {std::pair{px + 1, py}, {px - 1, py}, {px, py + 1}, {px, py - 1}}) {
            if (!grid.contains(nx, ny) || grid.at(nx, ny) != from) continue;
            grid.set(nx, ny, colour);
            todo.push_back({nx, ny});
        }
    }
}

void shift(PixelGrid& grid, int dx, int dy, Colour background) {
    PixelGrid moved(grid.width, grid.height, background);
    for (int y = 0; y < grid.height; ++y)
        for (int x = 0; x < grid.width; ++x) moved.set(x + dx, y + dy, grid.at(x, y));
    grid = std::move(moved);
}

void mirror(PixelGrid& grid, bool horizontal) {
    for (int y = 0; y < grid.height; ++y) {
        auto row = grid.pixels.begin() + static_cast<std::ptrdiff_t>(y) * grid.width;
        if (horizontal) std::reverse(row, row + grid.width);
    }
    if (!horizontal)
        for (int y = 0; y < grid.height / 2; ++y)
            std::swap_ranges(grid.pixels.begin() + static_cast<std::ptrdiff_t>(y) * grid.width,
                             grid.pixels.begin() + static_cast<std::ptrdiff_t>(y + 1) * grid.width,
                             grid.pixels.begin() + static_cast<std::ptrdiff_t>(grid.height - 1 - y) * grid.width);
}

PixelGrid resized(const PixelGrid& grid, int width, int height, Colour background) {
    PixelGrid out(width, height, background);
    for (int y = 0; y < std::min(height, grid.height); ++y)
        for (int x = 0; x < std::min(width, grid.width); ++x) out.set(x, y, grid.at(x, y));
    return out;
}

void EditHistory::record(const PixelGrid& current) {
    m_undo.push_back(current);
    if (m_undo.size() > m_limit) m_undo.erase(m_undo.begin());
    m_redo.clear();
}

PixelGrid EditHistory::undo(const PixelGrid& current) {
    if (m_undo.empty()) return current;
    PixelGrid previous = std::move(m_undo.back());
    m_undo.pop_back();
    m_redo.push_back(current);
    return previous;
}

PixelGrid EditHistory::redo(const PixelGrid& current) {
    if (m_redo.empty()) return current;
    PixelGrid next = std::move(m_redo.back());
    m_redo.pop_back();
    m_undo.push_back(current);
    return next;
}

}  // namespace korvatek::edit

#include "fonts/glyph_bitmap.h"

namespace korvatek::fonts {


namespace {

Error outsideGrid() { return makeError(ErrorCode::GlyphOutsideGrid); }

bool isInk(const codec::Cell& c) { return (c[0] + c[1] + c[2]) / 3.0 < 127; }

// Fills count cells from (x, y), wrapping back to column `from` when x reaches `to`.
bool fillMargin(codec::PixelCanvas& grid, int count, int x, int y, int from, int to, const codec::Cell& cell) {
    for (int i = 0; i < count; ++i) {
        if (!grid.contains(x, y)) return false;
        grid.at(x, y) = cell;
        if (++x == to) {
            x = from;
            ++y;
        }
    }
    return true;
}

}  // namespace

GlyphCell glyphCell(const GlyphHeader& header) {
    GlyphCell cell{header.W, header.h + header.sB, header.sL};
    if (cell.sL > 127) {
        cell.W = cell.W + 257 - cell.sL;
        cell.sL = 0;
    }
    return cell;
}

Status drawGlyph(ByteReader& bitmap, const GlyphHeader& header, codec::PixelCanvas& grid) {
    const GlyphCell cell = glyphCell(header);
    grid.metaWidth = cell.W;
    grid.metaHeight = cell.H;
    grid.metaDepth = 24;
    int w = header.w;
    int h = header.h;
    if (w == 0) h = 0;
    if (h == 0) w = 0;

    // The row test comes only after a whole byte: a glyph with no rows still draws one byte.
    int x = cell.sL;
    int y = 0;
    do {
        const std::uint8_t byte = bitmap.u8();
        for (int bit = 7; bit >= 0; --bit) {
            if (!grid.contains(x, y)) return outsideGrid();
            const std::uint8_t c = (byte >> bit) & 1 ? 0 : 255;
            grid.at(x, y) = {c, c, c, 0x00};
            if (++x == cell.sL + w) {
                x = cell.sL;
                ++y;
                break;
            }
        }
    } while (y != h && y <= grid.rows());
    if (y != h) return outsideGrid();

    const int right = cell.W - w - cell.sL;
    if ((cell.sL > 0 && !fillMargin(grid, cell.sL * h, 0, 0, 0, cell.sL, kPaper)) ||
        (right > 0 && !fillMargin(grid, right * h, cell.sL + w, 0, cell.sL + w, cell.W, kPaper)) ||
        (cell.H - h > 0 && !fillMargin(grid, cell.W * (cell.H - h), 0, h, 0, cell.W, kPaperBelow)))
        return outsideGrid();
    return success();
}

Result<Bytes> SaveFont(const codec::PixelCanvas& grid, int x0, int y0, int width, int height) {
    Bytes out;
    for (int y = y0; y < y0 + height; ++y) {
        int bits = 0;
        std::uint8_t byte = 0;
        for (int x = x0; x < x0 + width; ++x) {
            if (!grid.contains(x, y)) return outsideGrid();
            byte = static_cast<std::uint8_t>((byte << 1) | (isInk(grid.at(x, y)) ? 1 : 0));
            if (++bits == 8) {
                out.push_back(byte);
                bits = 0;
                byte = 0;
            }
        }
        if (bits > 0) {  // rows are byte-aligned and padded with set bits, on purpose
            while (bits++ < 8) byte = static_cast<std::uint8_t>((byte << 1) | 1);
            out.push_back(byte);
        }
    }
    return out;
}

GlyphTrim TrimGlyphGrid(const codec::PixelCanvas& grid, int widthLoaded, int heightLoaded) {
    const int wb = std::min(widthLoaded, grid.columns());
    const int hb = std::min(heightLoaded, grid.rows());
    const auto rowHasInk = [&](int y) {
        for (int x = 0; x < wb; ++x)
            if (isInk(grid.at(x, y))) return true;
        return false;
    };
    const auto columnHasInk = [&](int x) {
        for (int y = 0; y < hb; ++y)
            if (isInk(grid.at(x, y))) return true;
        return false;
    };
    GlyphTrim t;
    t.W = widthLoaded;
    while (t.top < hb && !rowHasInk(t.top)) ++t.top;
    while (t.bottom < hb && !rowHasInk(hb - 1 - t.bottom)) ++t.bottom;
    while (t.left < wb && !columnHasInk(t.left)) ++t.left;
    while (t.right < wb && !columnHasInk(wb - 1 - t.right)) ++t.right;
    // An all-paper bitmap counts every row and column from both sides: nothing is left.
    t.w = std::max(0, widthLoaded - t.left - t.right);
    t.h = std::max(0, heightLoaded - t.top - t.bottom);
    return t;
}

}  // namespace korvatek::fonts

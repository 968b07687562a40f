// A line of text drawn in a phone font: worked out by hand on two small glyphs, then the demo
// fullflash's first font, whose corrected entries must be drawn from where the list finds them.
#include "edit/text_render.h"

#include <gtest/gtest.h>

#include "base/file_io.h"
#include "demo/demo_flash.h"
#include "edit/font_edits.h"
#include "edit/font_glyphs.h"
#include "edit/opened_flash.h"
#include "firmware/layout.h"
#include "support/workspace_test.h"

namespace korvatek::edit {

namespace {

std::string rows(const PixelGrid& g) {
    std::string out;
    for (int y = 0; y < g.height; ++y) {
        for (int x = 0; x < g.width; ++x) out += g.at(x, y) == kInk ? '#' : g.at(x, y) == kMissingMark ? 'm' : '.';
        out += '/';
    }
    return out;
}

fonts::GlyphRecord record(int code, std::uint8_t W, std::uint8_t w, std::uint8_t h, std::uint8_t sL, std::uint8_t sB,
                          std::uint32_t headerOffset) {
    fonts::GlyphRecord r;
    r.code = code;
    r.advance = W, r.width = w, r.height = h, r.shiftLeft = sL, r.spaceBelow = sB;
    r.headerOffset = headerOffset;
    return r;
}

}  // namespace

TEST(TextRender, glyphsSitOnTheLineWithTheirShiftsAndMissingOnesAreMarked) {
    // Codes 1 and 2 only: "\1" is a 3 x 2 glyph one column in and one row up, "\2" a 2 x 3
    // glyph shifted one column to the left (sL 0xFF). Rows are byte-aligned, padding bits set.
    Bytes image(64, 0);
    const Bytes first{0b10111111, 0b01011111}, second{0b11111111, 0b01111111, 0b10111111};
    std::copy(first.begin(), first.end(), image.begin() + 5);
    std::copy(second.begin(), second.end(), image.begin() + 20 + 5);
    const std::vector<fonts::GlyphRecord> glyphs{record(1, 4, 3, 2, 1, 1, 0), record(2, 3, 2, 3, 0xFF, 0, 20),
                                                 record(3, 0, 0, 0, 0, 0, 40)};   // an empty record

    const RenderedText both = renderText(image, glyphs, U"\1\2");
    EXPECT_EQ(rows(both.pixels), ".#.##../..#.#../...#.../");
    EXPECT_TRUE(both.missing.empty());

    // Code 3 is empty, code 9 past the table, code 0 never a glyph: a box each, as high as
    // the line and half as wide (at least 3), then a column of space.
    const RenderedText missing = renderText(image, glyphs, std::u32string(U"\3\1") + char32_t{9} + char32_t{0});
    EXPECT_EQ(missing.missing, (std::vector<std::size_t>{0, 2, 3}));
    EXPECT_EQ(rows(missing.pixels).substr(0, 4 * 4), "mmm..#.#mmm.mmm.");

    // A glyph waiting in the glyph patch is drawn instead of the fullflash's.
    fonts::CollectedGlyph pending{1, 0, {2, 2, 1, 0, 0}, {0b01111111}};
    EXPECT_EQ(rows(renderText(image, glyphs, U"\1", {{1, pending}}).pixels), "../../.#/");
}

TEST(TextRender, theFirstFontsCorrectedEntriesAreDrawnFromWhereTheListFindsThem) {
    const std::string path = testing::testFolder() + "/demo.bin";
    ASSERT_TRUE(app::writeFile(path, firmware::makeDemoFlash()).ok());
    const auto flash = openFlash(path, firmware::kPictureTableOffset, firmware::kPictureMaxIndex);
    ASSERT_TRUE(flash.ok());
    const auto font = readFont(*flash, 0);
    // Entries 374 and 784 are read as stored, 375 and 783 0x10000 further on.
    for (const int code : {375, 376, 784, 785}) {
        const fonts::GlyphRecord& r = font.table.rows.at(static_cast<std::size_t>(code - 1));
        const RenderedText line = renderText(flash->bytes(), font.table.rows, std::u32string(1, char32_t(code)));
        ASSERT_TRUE(line.missing.empty()) << code;
        codec::PixelCanvas grid(codec::PixelCanvas::kGlyphColumns, codec::PixelCanvas::kGlyphRows);
        ASSERT_TRUE(drawFlashGlyph(flash->bytes(), r, grid).drawn.ok()) << code;
        // The glyph preview draws the same ink, from the top of its cell.
        const int shift = r.shiftLeft > 127 ? 0 : r.shiftLeft;
        const int top = line.pixels.height - r.spaceBelow - r.height;
        int ink = 0;
        for (int y = 0; y < r.height; ++y)
            for (int x = 0; x < r.width; ++x) {
                const bool previewInk = grid.at(shift + x, y)[0] == 0;
                const int lineX = x + (r.shiftLeft > 127 ? 0 : r.shiftLeft);
                EXPECT_EQ(line.pixels.at(lineX, top + y) == kInk, previewInk) << code << " at " << x << "," << y;
                ink += previewInk;
            }
        EXPECT_GT(ink, 0) << code;
    }
}

}  // namespace korvatek::edit

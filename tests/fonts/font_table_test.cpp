#include "fonts/font_table.h"

#include <gtest/gtest.h>

#include "fonts/font_patch.h"
#include "fonts/glyph_bitmap.h"
#include "support/flash_builder.h"

namespace korvatek::fonts {

namespace {

constexpr std::uint32_t kArea = 0x1800000;
constexpr std::uint32_t kDescriptor = 0x18B5A64;
constexpr std::uint32_t kTable = 0x18C0000;

// A font of `entries` entries whose glyph i has reference 0x10000 + 0x40 * i and a header
// W=i%200, w=8, h=10, sL=5, sB=200.
testing::FlashBuilder fontFlash(int entries, bool firstFontLift) {
    testing::FlashBuilder flash;
    flash.putU32(kDescriptor, 0xA0000000 + kTable).putU32(kDescriptor + 8, 0xA0000000 + kTable + 8u * entries);
    for (int i = 0; i < entries; ++i) {
        const std::uint32_t ref = 0x10000 + 0x40u * static_cast<std::uint32_t>(i);
        flash.putU32(kTable + 8u * i + 4, ref);
        const std::uint32_t at = kArea + ref + (firstFontLift && i > 374 && i < 784 ? 0x10000 : 0);
        flash.put(at, Bytes{static_cast<std::uint8_t>(i % 200), 8, 10, 5, 200});
    }
    return flash;
}

FontTable load(const testing::FlashBuilder& flash, bool firstFont) {
    ByteReader reader(flash.bytes());
    return FOTload(reader, kDescriptor, kArea, firstFont, nullptr).table;
}

}  // namespace

TEST(FontTable, theFirstFontLiftsEntries375To783Only) {
    const auto flash = fontFlash(800, true);
    const FontTable first = load(flash, true);
    ASSERT_EQ(first.rows.size(), 800u);
    EXPECT_EQ(first.lastIndex, 799);
    const auto offsetOf = [&](const FontTable& t, int i) { return glyphCellText(t.rows[static_cast<std::size_t>(i)], 7); };
    EXPECT_EQ(offsetOf(first, 374), "1815D80");
    EXPECT_EQ(offsetOf(first, 375), "1825DC0");
    EXPECT_EQ(offsetOf(first, 783), "182C3C0");
    EXPECT_EQ(offsetOf(first, 784), "181C400");
    const FontTable other = load(flash, false);
    EXPECT_EQ(offsetOf(other, 375), "1815DC0");
    EXPECT_EQ(first.outsideImage, 0);
}

TEST(FontTable, rowCellsHaveTheirPaddings) {
    const FontTable t = load(fontFlash(1001, false), false);
    const auto cells = [](const GlyphRecord& row) {
        std::string text;
        for (int column = 1; column <= 10; ++column) text += glyphCellText(row, column) + "|";
        return text;
    };
    // (8 div 8 + 1) x 10 = 20 = 0x14 in "len", although 10 bytes are stored
    EXPECT_EQ(cells(t.rows[6]), "0007|06|8|10|05|200|1810180|10180|14||");
    EXPECT_EQ(glyphCellText(t.rows[8], 1), "0009");
    EXPECT_EQ(glyphCellText(t.rows[999], 1), "1000");
    EXPECT_EQ(glyphCellText(t.rows[1000], 1), "1001");
    EXPECT_EQ(glyphCellText(t.rows[199], 2), "199");
    GlyphRecord marked = t.rows[6];
    marked.replaced = true;
    EXPECT_EQ(glyphCellText(marked, 10), "*");
}

TEST(FontTable, referencesAndTheirValues) {
    EXPECT_EQ(referenceText(0xFFFF1234), "1234");
    EXPECT_EQ(referenceText(0x00001234), "1234");
    EXPECT_EQ(referenceText(0x00012345), "12345");
    EXPECT_EQ(referenceText(0xFF), "FF");
    EXPECT_EQ(glyphRecordOffset(kArea, "1234", false, 0), kArea + 0x1234);
    // four digits or fewer are a 16-bit signed number
    EXPECT_EQ(glyphRecordOffset(kArea, "9000", false, 0), kArea - 0x7000);
    EXPECT_EQ(glyphRecordOffset(kArea, "10000", true, 400), kArea + 0x20000);
}

TEST(FontTable, damagedTablesGiveNoRowsAndNoCrash) {
    testing::FlashBuilder backwards;
    backwards.putU32(kDescriptor, 0xA0000000 + kTable + 80).putU32(kDescriptor + 8, 0xA0000000 + kTable);
    EXPECT_TRUE(load(backwards, false).rows.empty());

    testing::FlashBuilder huge;
    huge.putU32(kDescriptor, 0xA0000000).putU32(kDescriptor + 8, 0xAFFFFFFF);
    ByteReader reader(huge.bytes());
    EXPECT_TRUE(FOTload(reader, kDescriptor, kArea, false, nullptr).tooLong);

    testing::FlashBuilder outside = fontFlash(4, false);
    outside.putU32(kTable + 4, 0x0EFFFFF0);  // a record far past the end of the image
    const FontTable t = load(outside, false);
    EXPECT_EQ(t.outsideImage, 1);
    EXPECT_EQ(glyphCellText(t.rows[0], 2), "00");

    testing::FlashBuilder one = fontFlash(1, false);  // the progress of a one-entry table
    ByteReader r1(one.bytes());
    double last = -1;
    FOTload(r1, kDescriptor, kArea, false, [&](double p) { last = p; });
    EXPECT_DOUBLE_EQ(last, 100.0);
}

TEST(GlyphBitmap, cellMarginsAndNegativeShift) {
    EXPECT_EQ(glyphCell({6, 3, 4, 0xFE, 1}).W, 9);
    EXPECT_EQ(glyphCell({6, 3, 4, 0xFE, 1}).sL, 0);
    EXPECT_EQ(glyphCell({6, 3, 4, 2, 1}).H, 5);

    codec::PixelCanvas grid(codec::PixelCanvas::kGlyphColumns, codec::PixelCanvas::kGlyphRows);
    // w = 9: two bytes a row, the second byte's last 7 bits ignored
    const Bytes bitmap{0x80, 0x7F, 0x00, 0x80};
    ByteReader in(bitmap);
    ASSERT_TRUE(drawGlyph(in, {12, 9, 2, 1, 1}, grid).ok());
    EXPECT_EQ(in.position(), 4u);
    EXPECT_EQ(grid.metaWidth, 12);
    EXPECT_EQ(grid.metaHeight, 3);
    EXPECT_EQ(grid.metaDepth, 24);
    EXPECT_EQ(grid.at(1, 0), kInk);
    EXPECT_EQ(grid.at(2, 0), (codec::Cell{255, 255, 255, 0}));
    EXPECT_EQ(grid.at(9, 1), kInk);
    EXPECT_EQ(grid.at(0, 0), kPaper);       // left margin
    EXPECT_EQ(grid.at(11, 1), kPaper);      // right margin
    EXPECT_EQ(grid.at(5, 2), kPaperBelow);  // bottom margin, its own fourth byte
}

TEST(GlyphBitmap, aGlyphWithNoRowsStillDrawsOneByte) {
    codec::PixelCanvas grid(101, 101);
    grid.at(7, 0) = {1, 2, 3, 4};
    const Bytes bitmap{0x01};
    ByteReader in(bitmap);
    ASSERT_TRUE(drawGlyph(in, {4, 3, 0, 0, 0}, grid).ok());
    EXPECT_EQ(in.position(), 1u);
    EXPECT_EQ(grid.at(7, 0), kInk);
}

TEST(GlyphBitmap, aGlyphWiderThanTheGridStops) {
    codec::PixelCanvas grid(101, 101);
    const Bytes bitmap(400, 0);
    ByteReader in(bitmap);
    const Status s = drawGlyph(in, {200, 200, 2, 0, 0}, grid);
    ASSERT_FALSE(s.ok());
    EXPECT_EQ(s.error().code, ErrorCode::GlyphOutsideGrid);
}

TEST(GlyphBitmap, saveFontAndTrim) {
    codec::PixelCanvas grid(101, 101);
    for (int y = 0; y < 16; ++y)
        for (int x = 0; x < 12; ++x) grid.at(x, y) = {255, 255, 255, 255};
    for (int y = 3; y <= 14; ++y) grid.at(2, y) = grid.at(9, y) = {0, 0, 0, 255};
    const GlyphTrim t = TrimGlyphGrid(grid, 12, 16);
    EXPECT_EQ(t.W, 12);
    EXPECT_EQ(t.w, 8);
    EXPECT_EQ(t.h, 12);
    EXPECT_EQ(t.left, 2);
    EXPECT_EQ(t.bottom, 1);
    EXPECT_EQ(t.top, 3);
    EXPECT_EQ(t.right, 2);
    const auto bytes = SaveFont(grid, t.left, t.top, t.w, t.h);
    ASSERT_TRUE(bytes.ok());
    EXPECT_EQ(*bytes, Bytes(12, 0x81));  // an 8-wide glyph is exactly h bytes

    // the ink threshold: 127.33 is paper, 126.67 ink; a 9-wide row pads with set bits
    grid.at(20, 20) = {127, 127, 128, 0};
    grid.at(21, 20) = {126, 127, 127, 0};
    for (int x = 22; x < 29; ++x) grid.at(x, 20) = {255, 255, 255, 0};
    EXPECT_EQ(*SaveFont(grid, 20, 20, 9, 1), (Bytes{0x40, 0x7F}));

    codec::PixelCanvas white(101, 101);
    for (int y = 0; y < 5; ++y)
        for (int x = 0; x < 5; ++x) white.at(x, y) = {255, 255, 255, 0};
    const GlyphTrim none = TrimGlyphGrid(white, 5, 5);
    EXPECT_EQ(none.w, 0);
    EXPECT_EQ(none.h, 0);
    EXPECT_TRUE(SaveFont(white, 0, 0, 0, 0)->empty());
}

TEST(FontPatch, sizeAnswersAndLines) {
    EXPECT_EQ(fontSizeText(6), "06");
    EXPECT_EQ(fontSizeText(64), "40");
    EXPECT_EQ(fontSizeText(16), "10");
    EXPECT_EQ(fontSizeText(5.5), "06");
    EXPECT_EQ(fontSizeText(6.5), "06");  // half to even
    EXPECT_EQ(fontSizePatch(0, "lg91_E71_v42", 0x18B5A64, 0x10, 12),
              ";Change font 0 size for lg91_E71_v42\r\n;This file was generated by Korvatek\r\n"
              ";Made with Korvatek, the picture and font editor for E71 and EL71\r\n18B5A68: 10 0C\r\n");
    EXPECT_EQ(fontSizePatch(10, "x", 0x100, 1, 7).substr(0, 14), ";Change font A");
}

TEST(FontPatch, glyphRecordsAndPatchText) {
    CollectedGlyph g;
    g.number = 65;
    g.headerOffset = 0x1853FE0;
    g.header = {7, 5, 9, 1, 2};
    g.bitmap = Bytes(0x123, 0xAA);
    const Bytes record = glyphRecordBytes(g);
    EXPECT_EQ(Bytes(record.begin(), record.begin() + 4), (Bytes{0x01, 0x85, 0x3F, 0xE0}));
    EXPECT_EQ(std::string(record.begin() + 4, record.begin() + 9), "00065");
    EXPECT_EQ(Bytes(record.begin() + 9, record.begin() + 11), (Bytes{0x01, 0x23}));
    EXPECT_EQ(record.size(), 4u + 5 + 2 + 5);

    const Bytes image(0x2000000, 0x00);
    g.bitmap = Bytes(12, 0xAA);
    const std::string text = glyphPatchText(1, "lg03_El71_v41", {g}, image);
    EXPECT_EQ(text.substr(0, 34), ";Change font 1 for lg03_El71_v41\r\n");
    EXPECT_NE(text.find(";+578E0 ;if install on lg91_E71_v42\r\n\r\n;symbol 00065\r\n"), std::string::npos);
    EXPECT_NE(text.find("01853FE0: 00000000000000000000000000000000 0705090102" + std::string(22, 'A')), std::string::npos);
    EXPECT_EQ(glyphPatchHeader(0, "Unknown LngPack").find("578E0"), std::string::npos);
    EXPECT_NE(glyphPatchHeader(0, "lg91_E71_v42").find(";-578E0 ;if install on lg03_El71_v41"), std::string::npos);
}

}  // namespace korvatek::fonts

#include "codec/picture_encoder.h"

#include <gtest/gtest.h>

#include "base/byte_reader.h"
#include "codec/picture_decoder.h"
#include "codec/pixel_decode.h"

namespace korvatek::codec {

namespace {

Cell grey(int v) {
    const auto b = static_cast<std::uint8_t>(v);
    return {b, b, b, 0xFF};
}

PixelCanvas canvasOf(const std::vector<Cell>& cells, int width) {
    PixelCanvas canvas;
    canvas.metaWidth = width;
    canvas.metaHeight = static_cast<int>(cells.size()) / width;
    for (std::size_t i = 0; i < cells.size(); ++i)
        canvas.at(static_cast<int>(i) % width, static_cast<int>(i) / width) = cells[i];
    return canvas;
}

Bytes encode8(const std::vector<Cell>& cells, int width) { return SaveGPFraw(canvasOf(cells, width), kTarget8Bit).data; }

// A ramp of cells that all differ.
std::vector<Cell> distinct(int n, int base = 0) {
    std::vector<Cell> cells;
    for (int i = 0; i < n; ++i) cells.push_back({static_cast<std::uint8_t>(base + i), 0, 0, 0xFF});
    return cells;
}

}  // namespace

TEST(PixelConverters, knownColours) {
    EXPECT_EQ(RGBtoBIT8(255, 255, 255), 0xFF);
    EXPECT_EQ(RGBtoBIT8(255, 0, 0), 0xE0);
    EXPECT_EQ(RGBtoBIT8(0, 0, 0), 0x00);
    EXPECT_EQ(RGBtoBIT8(169, 171, 169), 0xC0);
    EXPECT_EQ(RGBtoBIT16(255, 255, 255), (std::array<std::uint8_t, 2>{0xFF, 0xFF}));
    EXPECT_EQ(RGBtoBIT16(169, 171, 169), (std::array<std::uint8_t, 2>{0x00, 0xE0}));
    EXPECT_EQ(RGBtoBIT16(0, 0, 255), (std::array<std::uint8_t, 2>{0x1F, 0x00}));
}

TEST(PixelConverters, everyDecodedColourEncodesBackToItsCode) {
    for (int v = 0; v < 256; ++v) {
        if (v == 0xC0) continue;  // the key
        const Cell c = BIT8toRGBbin(static_cast<std::uint8_t>(v));
        EXPECT_EQ(RGBtoBIT8(c[2], c[1], c[0]), v);
    }
    for (int w = 0; w < 65536; w += 7) {
        const Cell c = BIT16toRGBbin(static_cast<std::uint8_t>(w), static_cast<std::uint8_t>(w >> 8));
        if (c == TransparentPixel) continue;
        const auto back = RGBtoBIT16(c[2], c[1], c[0]);
        EXPECT_EQ(back[0] | (back[1] << 8), w);
    }
}

TEST(Monochrome, meanBelow127IsInkAndRowsArePaddedWithSetBits) {
    EXPECT_EQ(SaveGPFmono(canvasOf({grey(255)}, 1)), Bytes{0x7F});
    EXPECT_EQ(SaveGPFmono(canvasOf({grey(0)}, 1)), Bytes{0xFF});
    EXPECT_EQ(SaveGPFmono(canvasOf({grey(127)}, 1)), Bytes{0x7F});  // exactly 127 is white
    EXPECT_EQ(SaveGPFmono(canvasOf({Cell{126, 127, 127, 0}}, 1)), Bytes{0xFF});
    // 9 wide: two bytes a row
    std::vector<Cell> row(9, grey(255));
    row[0] = grey(0);
    row[8] = grey(0);
    EXPECT_EQ(SaveGPFmono(canvasOf(row, 9)), (Bytes{0x80, 0xFF}));
    EXPECT_EQ(SaveGPFmono(canvasOf(std::vector<Cell>(16, grey(255)), 8)), (Bytes{0x00, 0x00}));
}

TEST(RunLength, groupsOfEqualAndDifferentCells) {
    const Cell a = grey(255);
    // 200 equal cells: a repeat of 127, then the end counts the rest, 73
    EXPECT_EQ(encode8(std::vector<Cell>(200, a), 200), (Bytes{127, 0xFF, 73, 0xFF}));
    // a single cell: nothing at all
    EXPECT_TRUE(encode8({a}, 1).empty());
    // three different cells: the literal tail drops its middle cell and counts one less
    const auto three = distinct(3);
    const Bytes abc = encode8(three, 3);
    EXPECT_EQ(abc, (Bytes{0xFF, RGBtoBIT8(three[0][2], 0, 0), RGBtoBIT8(three[2][2], 0, 0)}));
    // two equal cells: the end comes before the second is compared, with nothing computed yet
    EXPECT_TRUE(encode8({a, a}, 2).empty());
    // a repeat under way at the end counts the last cell as one more, equal or not
    EXPECT_EQ(encode8({a, a, grey(0)}, 3), (Bytes{3, 0xFF}));
    // a literal then a run of three: the run's end is exact
    const Cell b = grey(0);
    EXPECT_EQ(encode8({b, a, a, a}, 4), (Bytes{0xFF, 0x00, 3, 0xFF}));
}

TEST(RunLength, a127LiteralIsFlushedAndTheRowEndIsCrossed) {
    std::vector<Cell> cells = distinct(130);
    cells.insert(cells.end(), 5, grey(9));
    const Bytes out = SaveGPFraw(canvasOf(cells, 27), kTarget24Bit).data;  // 135 cells, 5 rows
    ASSERT_GE(out.size(), 1 + 127 * 4u);
    EXPECT_EQ(out[0], 0x81);
    EXPECT_EQ(out[1 + 127 * 4], 256 - 3);  // the next literal holds the remaining three
}

TEST(RunLength, anEndAtAGroupStartRepeatsTheLastControlByte) {
    // a, a, b, c: the repeat of a is written, the scan steps back, b starts a group, and c is
    // read at the end: no case applies, so the last control byte is written again, alone
    const Cell a = grey(255);
    EXPECT_EQ(encode8({a, a, grey(0), grey(100)}, 4), (Bytes{2, 0xFF, 2}));
}

TEST(RunLength, fourthBytesMakeCellsDifferent) {
    Cell opaque = grey(10);
    Cell clear = opaque;
    clear[3] = 0;
    EXPECT_EQ(encode8({opaque, clear, clear, clear}, 4),
              (Bytes{0xFF, RGBtoBIT8(10, 10, 10), 3, RGBtoBIT8(10, 10, 10)}));
}

TEST(RunLength, picturesEndingInARunDecodeBackExactly) {
    for (int target : {kTarget8Bit, kTarget16Bit, kTarget24Bit}) {
        std::vector<Cell> cells;
        for (int i = 0; i < 37 * 11; ++i) {
            const int v = (i / 5) % 3 == 0 ? 200 : (i * 37) % 256;  // runs and literals mixed
            cells.push_back({static_cast<std::uint8_t>(v & 0xF8), static_cast<std::uint8_t>(v & 0xFC), 0xF8, 0xFF});
        }
        cells.insert(cells.end(), 3 * 37 - 37, cells.back());
        cells.resize(37 * 13, cells.back());
        const PixelCanvas source = canvasOf(cells, 37);
        const Bytes data = SaveGPFraw(source, target).data;
        const int bits = target == kTarget8Bit ? 8 : target == kTarget16Bit ? 16 : 24;
        PixelCanvas back;
        ByteReader in(data);
        ASSERT_TRUE(ConvertGPF2BMPdata(in, {37, 13, bits, "Yes", 32}, back).ok());
        for (int y = 0; y < 13; ++y)
            for (int x = 0; x < 37; ++x) {
                const Cell& s = source.at(x, y);
                Cell expected = target == kTarget24Bit ? s
                                : target == kTarget16Bit ? BIT16toRGBbin(RGBtoBIT16(s[2], s[1], s[0])[0], RGBtoBIT16(s[2], s[1], s[0])[1])
                                                         : BIT8toRGBbin(RGBtoBIT8(s[2], s[1], s[0]));
                ASSERT_EQ(back.at(x, y), expected) << "target " << target << " at " << x << "," << y;
            }
    }
}

}  // namespace korvatek::codec

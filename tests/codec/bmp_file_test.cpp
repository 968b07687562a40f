#include "codec/bmp_file.h"

#include <gtest/gtest.h>

#include <optional>

namespace korvatek::codec {

namespace {

std::uint32_t u32At(const Bytes& b, std::size_t at) {
    return b[at] | (b[at + 1] << 8) | (b[at + 2] << 16) | (static_cast<std::uint32_t>(b[at + 3]) << 24);
}

PixelCanvas canvasOf(int width, int height, int depth) {
    PixelCanvas canvas;
    canvas.metaWidth = width;
    canvas.metaHeight = height;
    canvas.metaDepth = depth;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            canvas.at(x, y) = {static_cast<std::uint8_t>(x), static_cast<std::uint8_t>(y), 0x77,
                               static_cast<std::uint8_t>(x + y)};
    return canvas;
}

}  // namespace

TEST(BmpFile, headerFieldsAndRowPadding) {
    struct Case {
        int width, height, depth;
        std::size_t fileSize;
    };
    const Case cases[] = {
        {1, 1, 24, 54 + 4},            // 3 pixel bytes and 1 padding byte
        {4, 2, 24, 54 + 2 * 12},       // no padding
        {5, 2, 24, 54 + 2 * 16},       // 1 padding byte a row
        {3, 3, 32, 54 + 3 * 12},       // 32-bit rows are never padded
        {240, 320, 24, 54 + 320 * 720},
    };
    for (const auto& c : cases) {
        const auto bmp = encodeBmp(canvasOf(c.width, c.height, c.depth), c.depth);
        ASSERT_TRUE(bmp.ok());
        const Bytes& b = *bmp;
        ASSERT_EQ(b.size(), c.fileSize) << c.width;
        EXPECT_EQ(b[0], 'B');
        EXPECT_EQ(b[1], 'M');
        EXPECT_EQ(u32At(b, 2), c.fileSize);
        EXPECT_EQ(u32At(b, 6), 0u);
        EXPECT_EQ(u32At(b, 10), 54u);
        EXPECT_EQ(u32At(b, 14), 40u);
        EXPECT_EQ(u32At(b, 18), static_cast<std::uint32_t>(c.width));
        EXPECT_EQ(u32At(b, 22), static_cast<std::uint32_t>(c.height));
        EXPECT_EQ(b[26], 1);
        EXPECT_EQ(b[28], c.depth);
        EXPECT_EQ(u32At(b, 30), 0u);
        EXPECT_EQ(u32At(b, 34), c.fileSize - 54);
        for (std::size_t i = 38; i < 54; ++i) EXPECT_EQ(b[i], 0);
    }
}

TEST(BmpFile, rowsAreWrittenBottomUp) {
    const auto bmp = encodeBmp(canvasOf(2, 2, 24), 24);
    ASSERT_TRUE(bmp.ok());
    // bottom row (y = 1) first: pixel (0,1) = 00 01 77, then (1,1), 2 padding bytes
    const Bytes expected{0, 1, 0x77, 1, 1, 0x77, 0, 0, 0, 0, 0x77, 1, 0, 0x77, 0, 0};
    EXPECT_EQ(Bytes(bmp->begin() + 54, bmp->end()), expected);
}

TEST(BmpFile, readerRoundTripsBothDepths) {
    for (int depth : {24, 32}) {
        const PixelCanvas source = canvasOf(7, 5, depth);
        const auto bmp = encodeBmp(source, depth);
        ASSERT_TRUE(bmp.ok());
        ByteReader in(*bmp);
        const auto head = LoadBMPhead(in);
        ASSERT_FALSE(head.error.has_value());
        EXPECT_EQ(in.position(), 54u);
        PixelCanvas read;
        ASSERT_TRUE(LoadBMP(in, head.header, read).ok());
        EXPECT_EQ(read.metaWidth, 7);
        EXPECT_EQ(read.metaHeight, 5);
        for (int y = 0; y < 5; ++y)
            for (int x = 0; x < 7; ++x) {
                Cell expected = source.at(x, y);
                if (depth == 24) expected[3] = 0xFF;  // a 24-bit file is opaque
                EXPECT_EQ(read.at(x, y), expected);
            }
    }
}

TEST(BmpFile, readerRefusals) {
    auto bmp = *encodeBmp(canvasOf(2, 2, 24), 24);
    const auto refusal = [](Bytes bytes) {
        ByteReader in(bytes);
        const auto head = LoadBMPhead(in);
        return head.error ? std::optional<ErrorCode>(head.error->code) : std::nullopt;
    };
    Bytes notBmp = bmp;
    notBmp[0] = 'X';
    EXPECT_EQ(refusal(notBmp), ErrorCode::BadMagic);
    Bytes bits16 = bmp;
    bits16[28] = 16;
    EXPECT_EQ(refusal(bits16), ErrorCode::BmpNotTrueColour);
    Bytes bitfields = bmp;
    bitfields[30] = 3;
    EXPECT_EQ(refusal(bitfields), ErrorCode::BmpCompressed);
    Bytes wide = bmp;
    wide[18] = 241;
    EXPECT_EQ(refusal(wide), ErrorCode::PictureTooLarge);
    Bytes tall = bmp;
    tall[22] = 0x41;
    tall[23] = 0x01;
    EXPECT_EQ(refusal(tall), ErrorCode::PictureTooLarge);
    Bytes huge = bmp;
    huge[21] = 0x7F;  // 2 GB wide: refused, nothing allocated
    EXPECT_EQ(refusal(huge), ErrorCode::PictureTooLarge);
    EXPECT_EQ(refusal({}), ErrorCode::BadMagic);
}

TEST(BmpFile, onlyTheLowByteOfTheDataOffsetCounts) {
    Bytes bmp = *encodeBmp(canvasOf(1, 1, 32), 32);
    bmp[11] = 1;  // data offset 54 + 256: still read from 54
    ByteReader in(bmp);
    const auto head = LoadBMPhead(in);
    ASSERT_FALSE(head.error.has_value());
    EXPECT_EQ(in.position(), 54u);
}

TEST(BmpFile, aTopDownBitmapReadsNoRows) {
    Bytes bmp = *encodeBmp(canvasOf(2, 2, 24), 24);
    bmp[22] = 0xFE;  // height -2
    bmp[23] = bmp[24] = bmp[25] = 0xFF;
    ByteReader in(bmp);
    const auto head = LoadBMPhead(in);
    ASSERT_FALSE(head.error.has_value());
    PixelCanvas canvas;
    EXPECT_TRUE(LoadBMP(in, head.header, canvas).ok());
    EXPECT_EQ(canvas.metaHeight, -2);
}

TEST(BmpFile, aGlyphGridRefusesABitmapLargerThanItself) {
    const Bytes bmp = *encodeBmp(canvasOf(120, 3, 24), 24);
    ByteReader in(bmp);
    const auto head = LoadBMPhead(in);
    ASSERT_FALSE(head.error.has_value());
    PixelCanvas grid(PixelCanvas::kGlyphColumns, PixelCanvas::kGlyphRows);
    const Status status = LoadBMP(in, head.header, grid);
    ASSERT_FALSE(status.ok());
    EXPECT_EQ(status.error().code, ErrorCode::OutsideCanvas);
}

TEST(BmpFile, writerRefusesASizeBeyondTheCanvas) {
    PixelCanvas canvas;
    canvas.metaWidth = 300;
    canvas.metaHeight = 2;
    EXPECT_FALSE(encodeBmp(canvas, 24).ok());
}

}  // namespace korvatek::codec

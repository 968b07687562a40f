#include "codec/bmp_file.h"

#include <gtest/gtest.h>

#include <optional>

namespace korvatek::codec {

namespace {

PixelCanvas canvasOf(int width, int height, int depth = 24) {
    PixelCanvas canvas;
    canvas.metaDepth = depth;
    canvas.metaWidth = width;
    canvas.metaHeight = height;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            canvas.at(x, y) = {static_cast<std::uint8_t>(x), static_cast<std::uint8_t>(y), 0x77,
                               static_cast<std::uint8_t>(x + y)};
    return canvas;
}

std::optional<ErrorCode> headRefusal(const Bytes& bytes) {
    ByteReader in(bytes);
    const auto head = LoadBMPhead(in);
    return head.error ? std::optional<ErrorCode>(head.error->code) : std::nullopt;
}

}  // namespace

// Every row padding (widths 1 to 5) at both depths: the writer's rows are read back to the
// same cells, a 24-bit file reading as opaque.
TEST(BmpFile, writerAndReaderRoundTripEveryRowPadding) {
    for (int depth : {24, 32})
        for (int width = 1; width <= 5; ++width) {
            const PixelCanvas source = canvasOf(width, 3, depth);
            const auto bmp = encodeBmp(source, depth);
            ASSERT_TRUE(bmp.ok());
            const std::size_t stride = (static_cast<std::size_t>(width) * depth / 8 + 3) / 4 * 4;
            ASSERT_EQ(bmp->size(), 54 + 3 * stride) << width;
            ByteReader in(*bmp);
            const auto head = LoadBMPhead(in);
            ASSERT_FALSE(head.error.has_value());
            PixelCanvas read;
            ASSERT_TRUE(LoadBMP(in, head.header, read).ok());
            ASSERT_EQ(read.metaWidth, width);
            for (int y = 0; y < 3; ++y)
                for (int x = 0; x < width; ++x) {
                    Cell expected = source.at(x, y);
                    if (depth == 24) expected[3] = 0xFF;
                    ASSERT_EQ(read.at(x, y), expected) << depth << "-bit, width " << width << " at " << x << "," << y;
                }
        }
}

TEST(BmpFile, rowsAreWrittenBottomUpAndPaddedWithZeros) {
    const auto bmp = encodeBmp(canvasOf(2, 2), 24);
    ASSERT_TRUE(bmp.ok());
    const Bytes expected{0, 1, 0x77, 1, 1, 0x77, 0, 0, 0, 0, 0x77, 1, 0, 0x77, 0, 0};
    EXPECT_EQ(Bytes(bmp->begin() + 54, bmp->end()), expected);
    PixelCanvas tooWide;
    tooWide.metaWidth = 300;
    tooWide.metaHeight = 2;
    EXPECT_FALSE(encodeBmp(tooWide, 24).ok());
}

TEST(BmpFile, readerRefusesBeforeReadingPixels) {
    const Bytes good = *encodeBmp(canvasOf(2, 2), 24);
    struct Edit {
        std::size_t at;
        Bytes value;
        ErrorCode code;
    };
    const Edit edits[] = {
        {0, {'X'}, ErrorCode::BadMagic},         {28, {16}, ErrorCode::BmpNotTrueColour},
        {30, {3}, ErrorCode::BmpCompressed},     {18, {241}, ErrorCode::PictureTooLarge},
        {22, {0x41, 0x01}, ErrorCode::PictureTooLarge},
        {21, {0x7F}, ErrorCode::PictureTooLarge},  // 2 GB wide: refused, nothing allocated
    };
    for (const Edit& e : edits) {
        Bytes bad = good;
        std::copy(e.value.begin(), e.value.end(), bad.begin() + static_cast<std::ptrdiff_t>(e.at));
        EXPECT_EQ(headRefusal(bad), e.code) << "byte " << e.at;
    }
    EXPECT_EQ(headRefusal({}), ErrorCode::BadMagic);

    // A top-down bitmap (negative height) passes the head and reads no rows.
    Bytes topDown = good;
    topDown[22] = 0xFE;
    topDown[23] = topDown[24] = topDown[25] = 0xFF;
    ByteReader in(topDown);
    const auto head = LoadBMPhead(in);
    ASSERT_FALSE(head.error.has_value());
    PixelCanvas canvas;
    EXPECT_TRUE(LoadBMP(in, head.header, canvas).ok());
    EXPECT_EQ(canvas.metaHeight, -2);
}

}  // namespace korvatek::codec

#include "codec/picture_decoder.h"

#include <gtest/gtest.h>

#include "codec/pixel_decode.h"

namespace korvatek::codec {

namespace {

struct Decoded {
    Status status;
    std::uint64_t consumed;
};

Decoded decode(const Bytes& data, DecodeRequest request, PixelCanvas& canvas) {
    ByteReader in(data);
    Status status = ConvertGPF2BMPdata(in, request, canvas);
    return {status, in.position()};
}

Cell cell(int b, int g, int r, int x) {
    return {static_cast<std::uint8_t>(b), static_cast<std::uint8_t>(g), static_cast<std::uint8_t>(r),
            static_cast<std::uint8_t>(x)};
}

}  // namespace

TEST(PixelDecode, transparentKeysAllBecomeTheSameCell) {
    EXPECT_EQ(BIT8toRGBbin(0xC0), TransparentPixel);
    EXPECT_EQ(BIT12toRGBbin(0xAA, 0xFA), TransparentPixel);
    EXPECT_EQ(BIT16toRGBbin(0x00, 0xE0), TransparentPixel);
    EXPECT_EQ(TransparentPixel, cell(0xA9, 0xAB, 0xA9, 0));
}

TEST(PixelDecode, channelsWidenByTheirScale) {
    EXPECT_EQ(BIT8toRGBbin(0xFF), cell(255, 255, 255, 0));
    EXPECT_EQ(BIT8toRGBbin(0xE0), cell(0, 0, 255, 0));
    EXPECT_EQ(BIT8toRGBbin(0x24), cell(0, 36, 36, 0));   // 1 x 255/7 = 36.43
    EXPECT_EQ(BIT12toRGBbin(0x5A, 0xF3), cell(0xAA, 0x55, 0x33, 0));  // high nibble of b1 ignored
    EXPECT_EQ(BIT16toRGBbin(0xE0, 0x00), cell(0, 28, 0, 0));   // an ordinary pixel, not the key
    EXPECT_EQ(BIT16toRGBbin(0xFF, 0xFF), cell(255, 255, 255, 0));
    EXPECT_EQ(BIT16toRGBbin(0x1F, 0x08), cell(255, 0, 8, 0));
}

TEST(PixelDecode, twentyFourBitAlphaDarkensOrIsKept) {
    const std::uint8_t half[] = {0x10, 0x20, 0x30, 0x80};
    EXPECT_EQ(BIT24toRGBbin(half, 24), cell(0, 0, 0, 0));
    EXPECT_EQ(BIT24toRGBbin(half, 32), cell(0x10, 0x20, 0x30, 0x80));
    const std::uint8_t opaque[] = {1, 2, 3, 255};
    EXPECT_EQ(BIT24toRGBbin(opaque, 24), cell(1, 2, 3, 0));
    const std::uint8_t mixed[] = {0xF0, 0x05, 0x90, 0x80};  // each channel clamps on its own
    EXPECT_EQ(BIT24toRGBbin(mixed, 24), cell(0x71, 0, 0x11, 0));
}

TEST(PictureDecoder, monochromeRowsStartOnFreshBytes) {
    PixelCanvas canvas;
    // width 9: two bytes a row; the low seven bits of each second byte are ignored
    const auto d = decode({0x80, 0x7F, 0x00, 0xFF}, {9, 2, 1, "No", 24}, canvas);
    ASSERT_TRUE(d.status.ok());
    EXPECT_EQ(d.consumed, 4u);
    EXPECT_EQ(canvas.at(0, 0), cell(0, 0, 0, 0x30));
    EXPECT_EQ(canvas.at(1, 0), cell(255, 255, 255, 0x30));
    EXPECT_EQ(canvas.at(8, 0), cell(255, 255, 255, 0x30));
    EXPECT_EQ(canvas.at(8, 1), cell(0, 0, 0, 0x30));
    EXPECT_EQ(canvas.metaWidth, 9);
    EXPECT_EQ(canvas.metaHeight, 2);
    EXPECT_EQ(canvas.metaDepth, 24);
}

TEST(PictureDecoder, runLengthGroups) {
    PixelCanvas canvas;
    // 0x03 = repeat 3, 0x00 = repeat none (its sample still read), 0xFE = literal of 2
    const auto d = decode({0x03, 0xFF, 0x00, 0x11, 0xFE, 0xE0, 0x1C}, {5, 1, 8, "Yes", 24}, canvas);
    ASSERT_TRUE(d.status.ok());
    EXPECT_EQ(d.consumed, 7u);
    EXPECT_EQ(canvas.at(2, 0), cell(255, 255, 255, 0));
    EXPECT_EQ(canvas.at(3, 0), cell(0, 0, 255, 0));
    EXPECT_EQ(canvas.at(4, 0), cell(0, 255, 0, 0));
}

TEST(PictureDecoder, runsCrossRowEndsAndStopOnlyBetweenGroups) {
    PixelCanvas canvas;
    canvas.at(0, 2) = cell(1, 1, 1, 1);
    // 2 x 2 picture, one repeat of 127: runs on past the last row while it stays on the canvas
    const auto d = decode({0x7F, 0x00, 0xE0, 0x7F, 0x00, 0x00}, {2, 2, 16, "Yes", 24}, canvas);
    ASSERT_TRUE(d.status.ok());
    EXPECT_EQ(d.consumed, 3u);
    EXPECT_EQ(canvas.at(0, 2), TransparentPixel);
    EXPECT_EQ(canvas.at(0, 63), TransparentPixel);
}

TEST(PictureDecoder, literalOf128AndRepeatOf127) {
    PixelCanvas canvas;
    Bytes data{0x80};
    for (int i = 0; i < 128; ++i) data.push_back(static_cast<std::uint8_t>(i));
    data.push_back(0x7F);
    data.push_back(0xFF);
    const auto d = decode(data, {255, 1, 8, "Yes", 24}, canvas);
    // 255 cells wide does not fit a canvas of 241 columns: the run stops at the edge
    EXPECT_FALSE(d.status.ok());
    EXPECT_EQ(d.status.error().code, ErrorCode::OutsideCanvas);

    PixelCanvas ok;
    const auto small = decode(Bytes(data.begin(), data.begin() + 129), {128, 1, 8, "Yes", 24}, ok);
    ASSERT_TRUE(small.status.ok());
    EXPECT_EQ(small.consumed, 129u);
    EXPECT_EQ(ok.at(127, 0), BIT8toRGBbin(127));
}

TEST(PictureDecoder, stopsAtTheEndOfTheInput) {
    PixelCanvas canvas;
    const auto d = decode({0x02, 0x05}, {10, 10, 8, "Yes", 24}, canvas);
    ASSERT_TRUE(d.status.ok());
    EXPECT_EQ(d.consumed, 2u);
}

TEST(PictureDecoder, uncompressedReadsZerosPastTheEnd) {
    PixelCanvas canvas;
    const auto d = decode({0xFF, 0xFF}, {2, 2, 16, "No", 24}, canvas);
    ASSERT_TRUE(d.status.ok());
    EXPECT_EQ(d.consumed, 8u);
    EXPECT_EQ(canvas.at(1, 1), cell(0, 0, 0, 0));
}

TEST(PictureDecoder, refusedFormatsReadNothing) {
    PixelCanvas canvas;
    canvas.metaWidth = 77;
    for (const DecodeRequest& r : {DecodeRequest{4, 4, 1, "Yes", 24}, DecodeRequest{4, 4, 0, "No", 24},
                                   DecodeRequest{4, 4, 4, "No", 24}}) {
        const auto d = decode({1, 2, 3}, r, canvas);
        ASSERT_FALSE(d.status.ok());
        EXPECT_EQ(d.status.error().code, ErrorCode::UnsupportedFormat);
        EXPECT_EQ(d.consumed, 0u);
        EXPECT_EQ(canvas.metaWidth, 77);  // the canvas keeps what it had
    }
}

TEST(PictureDecoder, picturesThatDoNotFitStopWithAnErrorNeverOutside) {
    const DecodeRequest cases[] = {
        {242, 1, 8, "No", 24},     // wider than the canvas
        {1, 400, 16, "No", 24},    // taller
        {-1, 4, 1, "No", 24},      // a 1-bit row that never ends
        {-1, 4, 8, "Yes", 24},     // a run that never wraps
        {4, 0, 1, "No", 24},       // 1-bit with no rows still reads until it leaves the canvas
    };
    for (const auto& r : cases) {
        PixelCanvas canvas;
        const auto d = decode(Bytes(4096, 0x7F), r, canvas);
        ASSERT_FALSE(d.status.ok()) << r.width << "x" << r.height;
        EXPECT_EQ(d.status.error().code, ErrorCode::OutsideCanvas);
    }
    PixelCanvas canvas;  // 241 columns: the spare column still takes pixels
    EXPECT_TRUE(decode(Bytes(241, 1), {241, 1, 8, "No", 24}, canvas).status.ok());
    EXPECT_TRUE(decode({}, {-1, 5, 8, "No", 24}, canvas).status.ok());  // no samples at all
}

}  // namespace korvatek::codec

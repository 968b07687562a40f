#include "codec/picture_decoder.h"

#include <gtest/gtest.h>

#include <cctype>
#include <optional>
#include <vector>

#include "codec/pixel_decode.h"

namespace korvatek::codec {

namespace {

Cell cell(int b, int g, int r, int x = 0) {
    return {static_cast<std::uint8_t>(b), static_cast<std::uint8_t>(g), static_cast<std::uint8_t>(r),
            static_cast<std::uint8_t>(x)};
}

struct Pixel {
    int x, y;
    Cell value;
};

struct DecodeCase {
    const char* name;
    Bytes data;
    int width, height, bits;
    bool compressed;
    std::optional<ErrorCode> error;  // none: decoded
    std::uint64_t consumed;          // bytes read (checked when decoded, or refused before reading)
    std::vector<Pixel> pixels;
};

const Bytes kLiteral128ThenRepeat = [] {
    Bytes data{0x80};
    for (int i = 0; i < 128; ++i) data.push_back(static_cast<std::uint8_t>(i));
    data.insert(data.end(), {0x7F, 0xFF});
    return data;
}();

const Cell white = cell(255, 255, 255), black = cell(0, 0, 0);

const DecodeCase kCases[] = {
    // Width 9: two bytes a row, the low seven bits of each second byte ignored.
    {"monochrome rows start on fresh bytes", {0x80, 0x7F, 0x00, 0xFF}, 9, 2, 1, false, {}, 4,
     {{0, 0, cell(0, 0, 0, 0x30)}, {1, 0, cell(255, 255, 255, 0x30)}, {8, 0, cell(255, 255, 255, 0x30)},
      {8, 1, cell(0, 0, 0, 0x30)}}},
    // 0x03 repeats 3, 0x00 repeats none (its sample still read), 0xFE is a literal of 2.
    {"repeat and literal groups", {0x03, 0xFF, 0x00, 0x11, 0xFE, 0xE0, 0x1C}, 5, 1, 8, true, {}, 7,
     {{2, 0, white}, {3, 0, cell(0, 0, 255)}, {4, 0, cell(0, 255, 0)}}},
    // A 2 x 2 picture given one repeat of 127 carries it past its last row while on the canvas.
    {"a run passes the last row", {0x7F, 0x00, 0xE0, 0x7F, 0x00, 0x00}, 2, 2, 16, true, {}, 3,
     {{0, 2, TransparentPixel}, {0, 63, TransparentPixel}}},
    {"a literal of 128", Bytes(kLiteral128ThenRepeat.begin(), kLiteral128ThenRepeat.begin() + 129),
     128, 1, 8, true, {}, 129, {{127, 0, BIT8toRGBbin(127)}}},
    {"a run leaving the canvas's 241 columns", kLiteral128ThenRepeat, 255, 1, 8, true, ErrorCode::OutsideCanvas, 0, {}},
    {"compressed data stop at the end of the input", {0x02, 0x05}, 10, 10, 8, true, {}, 2, {}},
    {"uncompressed data read zeros past the end", {0xFF, 0xFF}, 2, 2, 16, false, {}, 8, {{1, 1, black}}},
    {"the spare 241st column takes pixels", Bytes(241, 1), 241, 1, 8, false, {}, 241, {}},
    {"a negative width has no samples", {}, -1, 5, 8, false, {}, 0, {}},
    {"compressed monochrome is refused", {1, 2, 3}, 4, 4, 1, true, ErrorCode::UnsupportedFormat, 0, {}},
    {"no depth yet is refused", {1, 2, 3}, 4, 4, 0, false, ErrorCode::UnsupportedFormat, 0, {}},
    {"4-bit is refused", {1, 2, 3}, 4, 4, 4, false, ErrorCode::UnsupportedFormat, 0, {}},
    {"wider than the canvas", Bytes(4096, 0x7F), 242, 1, 8, false, ErrorCode::OutsideCanvas, 0, {}},
    {"taller than the canvas", Bytes(4096, 0x7F), 1, 400, 16, false, ErrorCode::OutsideCanvas, 0, {}},
    {"a 1-bit row that never ends", Bytes(4096, 0x7F), -1, 4, 1, false, ErrorCode::OutsideCanvas, 0, {}},
    {"a run that never wraps", Bytes(4096, 0x7F), -1, 4, 8, true, ErrorCode::OutsideCanvas, 0, {}},
    {"1-bit with no rows reads until it leaves the canvas", Bytes(4096, 0x7F), 4, 0, 1, false,
     ErrorCode::OutsideCanvas, 0, {}},
};

// The case's name, not its bytes, in the test list and in failures.
void PrintTo(const DecodeCase& c, std::ostream* out) { *out << c.name; }

}  // namespace

class PictureDecoder : public ::testing::TestWithParam<DecodeCase> {};

TEST_P(PictureDecoder, decodesOrStopsAsTheDataSay) {
    const DecodeCase& c = GetParam();
    PixelCanvas canvas;
    canvas.metaWidth = 77;
    ByteReader in(c.data);
    const Status status = ConvertGPF2BMPdata(in, {c.width, c.height, c.bits, c.compressed ? "Yes" : "No", 24}, canvas);
    if (c.error) {
        ASSERT_FALSE(status.ok());
        EXPECT_EQ(status.error().code, *c.error);
        if (*c.error == ErrorCode::UnsupportedFormat) {
            EXPECT_EQ(in.position(), 0u);
            EXPECT_EQ(canvas.metaWidth, 77);  // the canvas keeps what it had
        }
        return;
    }
    ASSERT_TRUE(status.ok());
    EXPECT_EQ(in.position(), c.consumed);
    EXPECT_EQ(canvas.metaWidth, c.width);
    EXPECT_EQ(canvas.metaHeight, c.height);
    for (const Pixel& p : c.pixels) EXPECT_EQ(canvas.at(p.x, p.y), p.value) << p.x << "," << p.y;
}

INSTANTIATE_TEST_SUITE_P(Cases, PictureDecoder, ::testing::ValuesIn(kCases), [](const auto& info) {
    std::string name;  // "a run passes" -> "aRunPasses"
    bool upper = false;
    for (const char* c = info.param.name; *c != 0; ++c) {
        const auto letter = static_cast<unsigned char>(*c);
        if (std::isalnum(letter)) name += static_cast<char>(upper ? std::toupper(letter) : letter);
        upper = letter == ' ';
    }
    return name;
});

TEST(PixelDecode, transparentKeysAndTwentyFourBitAlpha) {
    EXPECT_EQ(BIT8toRGBbin(0xC0), TransparentPixel);
    EXPECT_EQ(BIT12toRGBbin(0xAA, 0xFA), TransparentPixel);
    EXPECT_EQ(BIT16toRGBbin(0x00, 0xE0), TransparentPixel);
    EXPECT_EQ(BIT16toRGBbin(0xE0, 0x00), cell(0, 28, 0));  // the key's bytes swapped: an ordinary pixel
    // Shown without alpha, each channel loses 255 - alpha on its own; kept with it.
    const std::uint8_t mixed[] = {0xF0, 0x05, 0x90, 0x80};
    EXPECT_EQ(BIT24toRGBbin(mixed, 24), cell(0x71, 0, 0x11));
    EXPECT_EQ(BIT24toRGBbin(mixed, 32), cell(0xF0, 0x05, 0x90, 0x80));
}

}  // namespace korvatek::codec

// The PNG tool's header reading (what it shows before converting). Decoding through libpng is
// checked against an independent decoder on the command line (tests/cli/png_input.py).
#include "codec/png_file.h"

#include <gtest/gtest.h>

namespace korvatek::codec {

namespace {

void chunk(Bytes& out, const std::string& type, const Bytes& data) {
    const auto n = static_cast<std::uint32_t>(data.size());
    out.insert(out.end(), {static_cast<std::uint8_t>(n >> 24), static_cast<std::uint8_t>(n >> 16),
                           static_cast<std::uint8_t>(n >> 8), static_cast<std::uint8_t>(n)});
    out.insert(out.end(), type.begin(), type.end());
    out.insert(out.end(), data.begin(), data.end());
    out.insert(out.end(), 4, 0xEE);  // the walk never checks a CRC
}

Bytes headerOnly(std::uint32_t width, std::uint32_t height, int colourType, const Bytes& phys = {}) {
    Bytes png(std::begin(kPngSignature), std::end(kPngSignature));
    chunk(png, "IHDR",
          {static_cast<std::uint8_t>(width >> 24), static_cast<std::uint8_t>(width >> 16),
           static_cast<std::uint8_t>(width >> 8), static_cast<std::uint8_t>(width), static_cast<std::uint8_t>(height >> 24),
           static_cast<std::uint8_t>(height >> 16), static_cast<std::uint8_t>(height >> 8),
           static_cast<std::uint8_t>(height), 8, static_cast<std::uint8_t>(colourType), 0, 0, 0});
    if (!phys.empty()) chunk(png, "pHYs", phys);
    chunk(png, "iCCP", Bytes(20, 1));
    chunk(png, "IEND", {});
    return png;
}

PngHeadResult head(const Bytes& png) {
    ByteReader in(png);
    return LoadPNGhead(in);
}

}  // namespace

TEST(PngHead, readsSizeColourTypeAndResolution) {
    const auto r = head(headerOnly(13, 7, 6, {0, 0, 0x0E, 0xC4, 0, 0, 0x0E, 0xC4, 1}));
    ASSERT_FALSE(r.error.has_value());
    EXPECT_EQ(r.head.width, 13);
    EXPECT_EQ(r.head.height, 7);
    EXPECT_EQ(r.head.bitDepth, 8);
    EXPECT_EQ(r.head.colourTypeName, "Truecolour with alpha");
    EXPECT_EQ(r.head.resolutionText, "Values in inch 96 x 96");  // 3780 / 39.375
    EXPECT_EQ(head(headerOnly(1, 1, 2, {0, 0, 0, 1, 0, 0, 0, 2, 0})).head.resolutionText, "Aspect Ratio only..");
    EXPECT_EQ(colourTypeName(0), "Greyscale");
    EXPECT_EQ(colourTypeName(3), "Indexed-colour");
    EXPECT_EQ(colourTypeName(4), "Greyscale with alpha");
}

TEST(PngHead, refusals) {
    EXPECT_EQ(head(headerOnly(241, 100, 2)).error->code, ErrorCode::PictureTooLarge);
    EXPECT_EQ(head(headerOnly(100, 321, 2)).error->code, ErrorCode::PictureTooLarge);
    EXPECT_FALSE(head(headerOnly(240, 320, 2)).error.has_value());
    Bytes notPng = headerOnly(1, 1, 2);
    notPng[1] = 'X';
    EXPECT_EQ(head(notPng).error->code, ErrorCode::BadMagic);
    EXPECT_EQ(head({}).error->code, ErrorCode::BadMagic);
    // a chunk that claims more than the file holds ends the walk, with what was read
    Bytes lying = headerOnly(2, 2, 2);
    lying[8 + 25] = 0x7F;  // the length of the chunk after IHDR
    const auto r = head(lying);
    EXPECT_FALSE(r.error.has_value());
    EXPECT_EQ(r.head.width, 2);
}

}  // namespace korvatek::codec

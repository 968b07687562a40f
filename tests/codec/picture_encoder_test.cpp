// The encoder against the decoder: the exact bytes of small pictures are checked on the
// command line (tests/cli/encode_convert.sh), where the whole container is compared.
#include "codec/picture_encoder.h"

#include <gtest/gtest.h>

#include "base/byte_reader.h"
#include "codec/picture_decoder.h"
#include "codec/pixel_decode.h"

namespace korvatek::codec {

namespace {

PixelCanvas canvasOf(const std::vector<Cell>& cells, int width) {
    PixelCanvas canvas;
    canvas.metaWidth = width;
    canvas.metaHeight = static_cast<int>(cells.size()) / width;
    for (std::size_t i = 0; i < cells.size(); ++i)
        canvas.at(static_cast<int>(i) % width, static_cast<int>(i) / width) = cells[i];
    return canvas;
}

}  // namespace

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

// The firmware encoders on canvases made from the input, and their data decoded again.
//
// Input: width (0..240), height (0..320), target selector, palette size P (1..8), P cells of
// four bytes, then one byte per cell choosing its palette entry (left to right, top row first;
// cells the input does not reach take entry 0). A small palette gives the long runs and
// run/literal changes the run-length groups are made of.
#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "codec/bmp_file.h"
#include "codec/picture_decoder.h"
#include "codec/picture_encoder.h"
#include "codec/picture_type.h"
#include "fuzz_support.h"

namespace {

using namespace korvatek;

constexpr std::array<int, 4> kTargets{codec::kTarget1Bit, codec::kTarget8Bit, codec::kTarget16Bit,
                                      codec::kTarget24Bit};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::InputCursor input(data, size);
    const int width = input.u8() % (codec::kMaxPictureWidth + 1);
    const int height = input.u16() % (codec::kMaxPictureHeight + 1);
    const int target = kTargets[input.u8() % kTargets.size()];
    const int paletteSize = input.u8() % 8 + 1;
    std::vector<codec::Cell> palette(static_cast<std::size_t>(paletteSize));
    for (auto& cell : palette)
        for (auto& byte : cell) byte = input.u8();

    codec::PixelCanvas canvas;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) canvas.at(x, y) = palette[input.u8() % palette.size()];
    canvas.metaWidth = width;
    canvas.metaHeight = height;

    if (target == codec::kTarget1Bit) {
        const Bytes mono = codec::SaveGPFmono(canvas);
        fuzz::check(mono.size() == static_cast<std::size_t>((width + 7) / 8) * static_cast<std::size_t>(height),
                    "monochrome rows take whole bytes");
        if (width == 0 || height == 0) return 0;
        // Monochrome is plain data: every cell must come back as ink or paper.
        ByteReader in(mono);
        codec::PixelCanvas decoded;
        fuzz::check(codec::ConvertGPF2BMPdata(in, {width, height, 1, "No", 24}, decoded).ok(),
                    "monochrome data decode");
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x) {
                const codec::Cell& c = canvas.at(x, y);
                const bool ink = (c[0] + c[1] + c[2]) < 3 * 127;
                fuzz::check(decoded.at(x, y)[0] == (ink ? 0 : 255), "monochrome cells come back as ink or paper");
            }
        return 0;
    }

    const codec::RunLengthResult encoded = codec::SaveGPFraw(canvas, target);
    fuzz::check(encoded.outsideCanvas == (width == 0 || height == 0), "only an empty size is refused");
    if (encoded.outsideCanvas) return 0;
    const int bits = target == codec::kTarget8Bit ? 8 : target == codec::kTarget16Bit ? 16 : 24;
    // The last group's quirks may leave cells short or run past the end: decoding must stop
    // cleanly either way, and the canvas it fills must still write as a bitmap.
    for (const int depth : {24, 32}) {
        ByteReader in(encoded.data);
        codec::PixelCanvas decoded;
        const Status status = codec::ConvertGPF2BMPdata(in, {width, height, bits, "Yes", depth}, decoded);
        if (status) (void)codec::encodeBmp(decoded, depth);
    }
    return 0;
}

// PNG input: the chunk walker that reads the header, and the decoder onto the canvas. Before
// decoding, the chunk checksums are recomputed, so that mutated chunks reach the decoder
// instead of stopping at a bad checksum. One input in eight also goes through the PNG to GPF
// tool, which reads the file, decodes and encodes it.
#include <array>
#include <cstddef>
#include <cstdint>

#include "support/scripted_interface.h"
#include "app/workspace.h"
#include "codec/picture_encoder.h"
#include "codec/picture_type.h"
#include "codec/png_file.h"
#include "fuzz_support.h"

namespace {

using namespace korvatek;

std::uint32_t crc32(const std::uint8_t* data, std::size_t size) {
    static const auto table = [] {
        std::array<std::uint32_t, 256> t{};
        for (std::uint32_t n = 0; n < 256; ++n) {
            std::uint32_t c = n;
            for (int k = 0; k < 8; ++k) c = (c & 1) ? 0xEDB88320u ^ (c >> 1) : c >> 1;
            t[n] = c;
        }
        return t;
    }();
    std::uint32_t c = 0xFFFFFFFFu;
    for (std::size_t i = 0; i < size; ++i) c = table[(c ^ data[i]) & 0xFF] ^ (c >> 8);
    return c ^ 0xFFFFFFFFu;
}

// The file with the checksum of every whole chunk set right.
Bytes withChecksums(ByteView file) {
    Bytes out(file.begin(), file.end());
    std::size_t at = 8;
    while (at + 12 <= out.size()) {
        const std::uint32_t length = static_cast<std::uint32_t>(out[at]) << 24 | out[at + 1] << 16 | out[at + 2] << 8 | out[at + 3];
        if (length > out.size() - at - 12) break;
        const std::uint32_t crc = crc32(out.data() + at + 4, length + 4);
        const std::size_t c = at + 8 + length;
        out[c] = static_cast<std::uint8_t>(crc >> 24);
        out[c + 1] = static_cast<std::uint8_t>(crc >> 16);
        out[c + 2] = static_cast<std::uint8_t>(crc >> 8);
        out[c + 3] = static_cast<std::uint8_t>(crc);
        at = c + 4;
    }
    return out;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const ByteView original(data, size);
    ByteReader in(original);
    const codec::PngHeadResult head = codec::LoadPNGhead(in);
    (void)head;

    const Bytes file = withChecksums(original);
    codec::PixelCanvas canvas;
    if (codec::decodePng(file, canvas)) {
        fuzz::check(canvas.metaWidth > 0 && canvas.metaWidth <= codec::kMaxPictureWidth && canvas.metaHeight > 0 &&
                        canvas.metaHeight <= codec::kMaxPictureHeight,
                    "a decoded PNG fits the picture size limit");
        (void)codec::SaveGPFmono(canvas);
        for (const int target : {codec::kTarget8Bit, codec::kTarget16Bit, codec::kTarget24Bit})
            (void)codec::SaveGPFraw(canvas, target);
    }

    if (size % 8 == 0) {
        app::ScriptedInterface ui;
        app::Workspace ws(ui);
        ws.NoDialog = true;
        ws.PresetBmpPath = fuzz::scratchFile("in.png", file.data(), file.size());
        ws.PresetPath = fuzz::scratchFolder() + "/out.gpf2";
        ws.mnu_ToolsPNGtoGPF(size % 16 == 0 ? codec::kTarget24Bit : codec::kTarget1Bit);
    }
    return 0;
}

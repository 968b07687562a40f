// Theme cache pictures (.dat): the header reader and the picture decoder on the bytes
// directly; one input in eight also goes through the commands that read one from a file
// (DAT to BMP, DAT to GPF2).
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

#include "support/scripted_interface.h"
#include "app/workspace.h"
#include "codec/bmp_file.h"
#include "codec/picture_decoder.h"
#include "codec/picture_type.h"
#include "containers/dat_header.h"
#include "containers/gpf_header.h"
#include "fuzz_support.h"

namespace {

using namespace korvatek;

int bitsFor(int typeCode) {
    static constexpr std::array<int, 5> kDepths{1, 8, 12, 16, 24};
    return codec::bitsForTypeCode(typeCode).value_or(kDepths[static_cast<std::size_t>(typeCode) % kDepths.size()]);
}

void decodeDirectly(ByteView file) {
    ByteReader in(file);
    const containers::DatHeader header = containers::LoadDAThead(in);
    // What the reader gives must write back to the same five bytes.
    const Bytes again = containers::SaveDAThead(header.width, header.height, header.typeText);
    fuzz::check(file.size() < containers::kDatHeaderSize || std::equal(again.begin(), again.end(), file.begin()),
                "the theme cache header writes back as it was read");
    if (header.width > codec::kMaxPictureWidth || header.height > codec::kMaxPictureHeight) return;
    const int type = containers::typeCodeOf(header.typeText);
    const int bits = bitsFor(type);
    for (const int depth : {24, 32}) {
        if (depth == 32 && bits != 24) break;
        ByteReader data(file, in.position());
        codec::PixelCanvas canvas;
        const Status decoded = codec::ConvertGPF2BMPdata(
            data, {header.width, header.height, bits, codec::compressionText(type), depth}, canvas);
        if (decoded) (void)codec::encodeBmp(canvas, depth);
    }
}

void throughCommands(const std::uint8_t* data, std::size_t size) {
    const std::string source = fuzz::scratchFile("in.dat", data, size);
    app::ScriptedInterface ui;
    app::Workspace ws(ui);
    ui.openFiles.push_back(source);
    ui.saveFiles.push_back(fuzz::scratchFolder() + "/out.bmp");
    ws.mnu_ToolsGPFtoBMP();
    ui.openFiles.push_back(source);
    ui.saveFiles.push_back(fuzz::scratchFolder() + "/out.gpf2");
    ws.mnu_ToolsGPFakaDAT();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    decodeDirectly(ByteView(data, size));
    if (size % 8 == 0) throughCommands(data, size);
    return 0;
}

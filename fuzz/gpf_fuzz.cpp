// GPF and GPF2 containers: the header reader and the picture decoder on the bytes directly,
// the decoded canvas written back as BMP; one input in eight also goes through the commands
// that read a container from a file (GPF to BMP, GPF to DAT, GPF to GPF2 and back).
#include <array>
#include <cstddef>
#include <cstdint>

#include "support/scripted_interface.h"
#include "app/workspace.h"
#include "codec/bmp_file.h"
#include "codec/picture_decoder.h"
#include "codec/picture_type.h"
#include "containers/gpf_header.h"
#include "fuzz_support.h"

namespace {

using namespace korvatek;

// An unknown type code keeps the depth of the picture before; any depth may come with it.
int bitsFor(int typeCode) {
    static constexpr std::array<int, 5> kDepths{1, 8, 12, 16, 24};
    return codec::bitsForTypeCode(typeCode).value_or(kDepths[static_cast<std::size_t>(typeCode) % kDepths.size()]);
}

void decodeDirectly(ByteView file) {
    ByteReader in(file);
    const auto header = containers::LoadGPFhead(in);
    if (!header) return;
    if (header->width > codec::kMaxPictureWidth || header->height > codec::kMaxPictureHeight) return;
    const int type = containers::typeCodeOf(header->typeText);
    const int bits = bitsFor(type);
    for (const int depth : {24, 32}) {
        if (depth == 32 && bits != 24) break;
        ByteReader data(file, in.position());
        codec::PixelCanvas canvas;
        const Status decoded = codec::ConvertGPF2BMPdata(
            data, {header->width, header->height, bits, codec::compressionText(type), depth}, canvas);
        if (decoded) (void)codec::encodeBmp(canvas, depth);
    }
}

void throughCommands(const std::uint8_t* data, std::size_t size) {
    const bool version2 = size >= 16 && data[15] == '2';
    const std::string source = fuzz::scratchFile(version2 ? "in.gpf2" : "in.gpf", data, size);
    app::ScriptedInterface ui;
    app::Workspace ws(ui);
    ui.openFiles.push_back(source);
    ui.saveFiles.push_back(fuzz::scratchFolder() + "/out.bmp");
    ws.mnu_ToolsGPFtoBMP();
    ui.openFiles.push_back(source);
    ui.saveFiles.push_back(fuzz::scratchFolder() + "/out.dat");
    ws.mnu_ToolsGPFakaDAT();
    ui.openFiles.push_back(source);
    ui.saveFiles.push_back(fuzz::scratchFolder() + (version2 ? "/out.gpf" : "/out.gpf2"));
    ws.mnu_ToolsGPFakaGPF2();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    decodeDirectly(ByteView(data, size));
    if (size % 8 == 0) throughCommands(data, size);
    return 0;
}

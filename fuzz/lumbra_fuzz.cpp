// Picture patches of the other patch tool: splitting the text into lines and reading the
// picture sections; one input in eight also goes through the conversion command, which
// writes a GPF2 file for every picture found.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "support/scripted_interface.h"
#include "app/workspace.h"
#include "fuzz_support.h"
#include "patch/lumbra_patch.h"

using namespace korvatek;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const std::vector<std::string> lines = patch::splitLines(text);
    for (const auto& line : lines)
        fuzz::check(line.find_first_of("\r\n") == std::string::npos, "split lines hold no line ends");
    const auto pictures = patch::parseLumbraPatch(lines);
    for (const auto& p : pictures)
        fuzz::check(p.width >= 0 && p.width <= 0xFFFF && p.height >= 0 && p.height <= 0xFFFF && p.typeCode >= 0 &&
                        p.typeCode <= 0xFF,
                    "sizes and type come from whole bytes");

    if (size % 8 == 0 && !pictures.empty() && pictures.size() <= 8) {
        app::ScriptedInterface ui;
        app::Workspace ws(ui);
        ui.openFiles.push_back(fuzz::scratchFile("lumbra.vkp", data, size));
        ui.folders.push_back(fuzz::scratchFolder());
        ws.mnu_ToolsConvertLumbrapatch();
    }
    return 0;
}

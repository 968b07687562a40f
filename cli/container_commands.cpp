// Commands on single files: decode, encode, convert, demo-flash.
#include <cstdio>
#include <optional>

#include "base/file_io.h"
#include "arguments.h"
#include "commands.h"
#include "demo/demo_flash.h"
#include "session.h"

namespace korvatek::cli {

int runDecode(const Words& words) {
    const Command& command = commandNamed("decode");
    const Arguments args = parseArguments(words, {"-o"}, {"--alpha"});
    const auto out = args.value("-o");
    if (!args.error.empty() || args.positional.size() != 1 || !out) return usageError(command, args.error);
    Session session;
    app::Workspace& ws = session.workspace();
    session.ui().openFiles.push_back(args.positional[0]);
    session.ui().saveFiles.push_back(*out);
    session.ui().alphaAnswer = args.has("--alpha");
    ws.mnu_ToolsGPFtoBMP();
    session.printInformation(app::isStandardOutput(*out));
    return ws.ActionFailed ? 1 : 0;
}

namespace {

bool endsWith(const std::string& text, const std::string& tail) {
    return text.size() >= tail.size() && text.compare(text.size() - tail.size(), tail.size(), tail) == 0;
}

std::optional<int> targetType(const std::string& text) {
    if (text == "1") return 0x01;
    if (text == "8") return 0x85;
    if (text == "16") return 0x88;
    if (text == "24") return 0x8A;
    return std::nullopt;
}

}  // namespace

int runEncode(const Words& words) {
    const Command& command = commandNamed("encode");
    const Arguments args = parseArguments(words, {"-o", "--type"}, {});
    const auto out = args.value("-o");
    const auto type = args.value("--type");
    if (!args.error.empty() || args.positional.size() != 1 || !out || !type) return usageError(command, args.error);
    if (app::isStandardOutput(*out)) return usageError(command, kNotToStandardOutput);
    const auto target = targetType(*type);
    if (!target) return usageError(command, "--type must be 1, 8, 16 or 24");
    const std::string& in = args.positional[0];
    const bool png = endsWith(in, ".png") || endsWith(in, ".PNG");
    if (!png && !endsWith(in, ".bmp") && !endsWith(in, ".BMP")) return usageError(command, "IN must be a .bmp or .png file");
    Session session;
    app::Workspace& ws = session.workspace();
    session.ui().openFiles.push_back(in);
    session.ui().saveFiles.push_back(*out);
    if (png)
        ws.mnu_ToolsPNGtoGPF(*target);
    else
        ws.mnu_ToolsBMPtoGPF(*target);
    return ws.ActionFailed ? 1 : 0;
}

int runConvert(const Words& words) {
    const Command& command = commandNamed("convert");
    const Arguments args = parseArguments(words, {"-o"}, {});
    const auto out = args.value("-o");
    if (!args.error.empty() || args.positional.size() != 1 || !out) return usageError(command, args.error);
    if (app::isStandardOutput(*out)) return usageError(command, kNotToStandardOutput);
    const std::string& in = args.positional[0];
    Session session;
    app::Workspace& ws = session.workspace();
    session.ui().openFiles.push_back(in);
    session.ui().saveFiles.push_back(*out);
    if (endsWith(*out, ".dat") || endsWith(in, "dat"))
        ws.mnu_ToolsGPFakaDAT();
    else
        ws.mnu_ToolsGPFakaGPF2();
    return ws.ActionFailed ? 1 : 0;
}

int runDemoFlash(const Words& words) {
    const Command& command = commandNamed("demo-flash");
    const Arguments args = parseArguments(words, {}, {});
    if (!args.error.empty() || args.positional.size() != 1) return usageError(command, args.error);
    Session session;
    app::Workspace& ws = session.workspace();
    const std::string& out = args.positional[0];
    if (app::isStandardOutput(out)) return usageError(command, kNotToStandardOutput);
    if (!ws.prepareOutput(out)) return 1;
    const Bytes image = firmware::makeDemoFlash();
    return ws.writeOutput(out, image) ? 0 : 1;
}

}  // namespace korvatek::cli

// Commands on single files: decode, demo-flash.
#include <cstdio>

#include "app/file_io.h"
#include "arguments.h"
#include "commands.h"
#include "firmware/demo_flash.h"
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
    session.printInformation();
    return ws.ActionFailed ? 1 : 0;
}

int runDemoFlash(const Words& words) {
    const Command& command = commandNamed("demo-flash");
    const Arguments args = parseArguments(words, {}, {});
    if (!args.error.empty() || args.positional.size() != 1) return usageError(command, args.error);
    Session session;
    app::Workspace& ws = session.workspace();
    const std::string& out = args.positional[0];
    if (!app::CheckFexist(out)) ws.announceReplaceAndDelete(out);
    const Bytes image = firmware::makeDemoFlash();
    return ws.writeOutput(out, image) ? 0 : 1;
}

}  // namespace korvatek::cli

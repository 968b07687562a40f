// Commands on a fullflash: info, pictures, picture, export.
#include <cstdio>
#include <filesystem>
#include <string>

#include "base/file_io.h"
#include "arguments.h"
#include "commands.h"
#include "session.h"

namespace korvatek::cli {

namespace {

bool endsWith(const std::string& text, const std::string& tail) {
    return text.size() >= tail.size() && text.compare(text.size() - tail.size(), tail.size(), tail) == 0;
}

}  // namespace

int runInfo(const Words& words) {
    const Command& command = commandNamed("info");
    const Arguments args = parseArguments(words, {}, {});
    if (!args.error.empty() || args.positional.size() != 1) return usageError(command, args.error);
    Session session;
    if (!session.openFlash(args.positional[0])) return 1;
    const app::Workspace& ws = session.workspace();
    std::printf("model: %s\npack: %s\nfirmware: %s\nfonts: %zu\npictures: %zu\n", ws.PhoneModel.c_str(),
                ws.LanguagePack.c_str(), ws.FirmwareId.c_str(), ws.Ftype.size(), ws.ListView1.size());
    return 0;
}

int runPictures(const Words& words) {
    const Command& command = commandNamed("pictures");
    const Arguments args = parseArguments(words, {}, {});
    if (!args.error.empty() || args.positional.size() != 1) return usageError(command, args.error);
    Session session;
    if (!session.openFlash(args.positional[0])) return 1;
    std::string out;
    out.reserve(session.workspace().ListView1.size() * 48);
    for (const auto& row : session.workspace().ListView1) {
        for (int column = 1; column <= 7; ++column) {
            out += firmware::pictureCellText(row, column);
            out += column < 7 ? '\t' : '\n';
        }
    }
    std::fwrite(out.data(), 1, out.size(), stdout);
    return 0;
}

int runPicture(const Words& words) {
    const Command& command = commandNamed("picture");
    const Arguments args = parseArguments(words, {}, {});
    if (!args.error.empty() || args.positional.size() != 2) return usageError(command, args.error);
    const auto n = parseNumber(args.positional[1]);
    if (!n) return usageError(command, "N must be a picture number");
    Session session;
    if (!session.openFlash(args.positional[0]) || !session.selectPicture(*n)) return 1;
    app::Workspace& ws = session.workspace();
    ws.ListView1_Click();
    session.printInformation();
    return ws.ActionFailed || ws.lastDecodeRefused ? 1 : 0;
}

namespace {

int exportOne(Session& session, int n, const std::string& out, bool alpha) {
    app::Workspace& ws = session.workspace();
    const bool asGpf2 = endsWith(out, ".gpf2");  // "-" (standard output) is a BMP
    if (!session.selectPicture(n)) return 1;
    // Decode first, as the one-item save does for a picture not shown yet, so that a picture
    // that cannot be decoded writes no file.
    ws.SuppressAlphaPrompt = asGpf2;
    session.ui().alphaAnswer = alpha;
    ws.LoadPIC();
    if (ws.ActionFailed || ws.lastDecodeRefused) return 1;
    session.ui().saveFiles.push_back(out);
    if (asGpf2)
        ws.mnuPopup_SaveGPF();
    else
        ws.mnuPopup_SaveBMP();
    return ws.ActionFailed ? 1 : 0;
}

int exportAll(Session& session, const std::string& dir, const std::string& format, bool alpha) {
    app::Workspace& ws = session.workspace();
    if (ws.ListView1.empty()) return 1;
    std::error_code ec;
    std::filesystem::create_directories(app::toPath(dir), ec);
    if (!std::filesystem::is_directory(app::toPath(dir), ec)) {
        ws.showMessage(ws.msg(settings::MessageKey::MsgCannotWriteFile) + dir);
        return 1;
    }
    session.ui().folders.push_back(dir);
    if (format == "gpf2") {
        ws.mnuPopup_SaveAllGPF();
    } else {
        session.ui().answers.push_back(alpha);
        ws.mnuPopup_SaveAllBMP();
    }
    return ws.outputFailures > 0 ? 1 : 0;
}

}  // namespace

int runExport(const Words& words) {
    const Command& command = commandNamed("export");
    const Arguments args = parseArguments(words, {"-o", "--dir", "--format"}, {"--alpha"});
    if (!args.error.empty() || args.positional.size() != 2) return usageError(command, args.error);
    const bool alpha = args.has("--alpha");
    if (args.positional[1] == "all") {
        const auto dir = args.value("--dir");
        const auto format = args.value("--format");
        if (!dir || !format || (*format != "gpf2" && *format != "bmp") || args.value("-o"))
            return usageError(command, "all needs --dir DIR and --format gpf2 or bmp");
        Session session;
        if (!session.openFlash(args.positional[0])) return 1;
        return exportAll(session, *dir, *format, alpha);
    }
    const auto n = parseNumber(args.positional[1]);
    const auto out = args.value("-o");
    if (!n) return usageError(command, "N must be a picture number or all");
    if (!out || !(endsWith(*out, ".gpf2") || endsWith(*out, ".bmp") || app::isStandardOutput(*out)) ||
        args.value("--dir") || args.value("--format"))
        return usageError(command, "-o must name a .gpf2 or .bmp file, or - for a BMP on standard output");
    Session session;
    if (!session.openFlash(args.positional[0])) return 1;
    return exportOne(session, *n, *out, alpha);
}

}  // namespace korvatek::cli

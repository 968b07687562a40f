// Commands that write or read patches: patch, apply, make, lumbra.
#include <cstdio>
#include <filesystem>

#include "base/file_io.h"
#include "base/hex_text.h"
#include "arguments.h"
#include "commands.h"
#include "session.h"

namespace korvatek::cli {

using settings::MessageKey;

namespace {

std::optional<int> targetOf(const std::string& text) {
    if (text == "1") return 0x01;
    if (text == "8") return 0x85;
    if (text == "16") return 0x88;
    if (text == "24") return 0x8A;
    return std::nullopt;
}

bool endsWith(const std::string& text, const std::string& tail) {
    return text.size() >= tail.size() && text.compare(text.size() - tail.size(), tail.size(), tail) == 0;
}

// One replacement of the command line, as the window's sequence of gestures would do it.
struct Replacement {
    enum class Kind { Gpf, Bmp, Png, GpfFolder, BmpFolder } kind;
    int number = 0;
    std::string path;
    int target = 0;        // 0 for "orig"
};

std::optional<Replacement> parseReplacement(const std::string& option, const std::string& word) {
    Replacement r;
    if (option == "--gpf-folder") return Replacement{Replacement::Kind::GpfFolder, 0, word, 0};
    if (option == "--bmp-folder") {
        const auto colon = word.rfind(':');
        if (colon == std::string::npos) return std::nullopt;
        const std::string type = word.substr(colon + 1);
        const auto target = type == "orig" ? std::optional<int>(0) : targetOf(type);
        if (!target) return std::nullopt;
        return Replacement{Replacement::Kind::BmpFolder, 0, word.substr(0, colon), *target};
    }
    const auto equals = word.find('=');
    if (equals == std::string::npos) return std::nullopt;
    const auto number = parseNumber(word.substr(0, equals));
    if (!number) return std::nullopt;
    r.number = *number;
    std::string file = word.substr(equals + 1);
    if (endsWith(file, ".gpf2") || endsWith(file, ".gpf")) {
        r.kind = Replacement::Kind::Gpf;
        r.path = file;
        return r;
    }
    const auto colon = file.rfind(':');
    if (colon == std::string::npos) return std::nullopt;
    const auto target = targetOf(file.substr(colon + 1));
    file.resize(colon);
    if (!target) return std::nullopt;
    r.target = *target;
    r.path = file;
    if (endsWith(file, ".bmp") || endsWith(file, ".BMP"))
        r.kind = Replacement::Kind::Bmp;
    else if (endsWith(file, ".png") || endsWith(file, ".PNG"))
        r.kind = Replacement::Kind::Png;
    else
        return std::nullopt;
    return r;
}

// Runs one replacement; false when it was refused (its messages are on stderr).
bool replace(Session& session, const Replacement& r) {
    app::Workspace& ws = session.workspace();
    CliInterface& ui = session.ui();
    const int problemsBefore = ui.problems;
    const std::string lengthBefore = ws.picture.dataLength;
    bool accepted = false;
    const bool folder = r.kind == Replacement::Kind::GpfFolder || r.kind == Replacement::Kind::BmpFolder;
    if (folder && !std::filesystem::is_directory(app::toPath(r.path))) {
        ws.showMessage(ws.msg(MessageKey::MsgFileNotExist) + " " + r.path);
        return false;
    }
    switch (r.kind) {
        case Replacement::Kind::GpfFolder:
            ui.folders.push_back(r.path);
            ws.mnuPopup_LoadGPFfolder();
            return ui.problems == problemsBefore;
        case Replacement::Kind::BmpFolder:
            ui.folders.push_back(r.path);
            if (r.target == 0)
                ws.mnuPopup_LoadBMPs_Origbit();
            else
                ws.mnuPopup_LoadBMPs(r.target);
            return ui.problems == problemsBefore && !ws.ActionFailed;
        default:
            break;
    }
    if (!session.selectPicture(r.number)) return false;
    // The row is selected and decoded first, as a click in the list does.
    ws.ListView1_Click();
    ws.ActionFailed = false;
    if (r.kind == Replacement::Kind::Gpf) {
        ui.openFiles.push_back(r.path);
        ws.mnuPopup_LoadGPF();
    } else if (r.kind == Replacement::Kind::Bmp) {
        ui.openFiles.push_back(r.path);
        ws.mnuPopup_LoadBMP(r.target);
    } else {
        ws.TargetTypeField = std::string{static_cast<char>(r.target), '\0'};
        ws.ReplacePictureFromPNG(r.path);
    }
    // A replacement refused before its dialog leaves its file unasked: it must not answer the next.
    ui.openFiles.clear();
    accepted = ws.ListView1[static_cast<std::size_t>(r.number)].replaced && !ws.ActionFailed;
    // A refused replacement leaves the length the next one starts from as it was.
    if (!accepted) ws.picture.dataLength = lengthBefore;
    return accepted;
}

}  // namespace

int runPatch(const Words& words) {
    const Command& command = commandNamed("patch");
    const Arguments args = parseArguments(words, {"-o"}, {}, {"--gpf-folder", "--bmp-folder"});
    const auto out = args.value("-o");
    if (!args.error.empty() || args.positional.empty() || !out) return usageError(command, args.error);
    // The replacements in the order given, folder options among them; the first positional
    // word is the fullflash.
    std::vector<Replacement> replacements;
    bool flashSeen = false;
    for (const auto& [option, value] : args.ordered) {
        if (option.empty() && !flashSeen) {
            flashSeen = true;
            continue;
        }
        const auto r = parseReplacement(option, value);
        if (!r) return usageError(command, option.empty() ? "cannot read replacement " + value : "cannot read " + option + " " + value);
        replacements.push_back(*r);
    }
    if (replacements.empty()) return usageError(command, "no replacement given");
    Session session;
    std::vector<std::string> inputs{args.positional[0]};
    for (const auto& r : replacements) {
        if (r.kind == Replacement::Kind::GpfFolder || r.kind == Replacement::Kind::BmpFolder)
            Session::addFolderFiles(r.path, inputs);
        else
            inputs.push_back(r.path);
    }
    if (!session.outputAllowed(*out, inputs)) return 1;
    if (!session.openFlash(args.positional[0])) return 1;
    bool allAccepted = true;
    for (const auto& r : replacements) allAccepted = replace(session, r) && allAccepted;
    app::Workspace& ws = session.workspace();
    if (!ws.PatchInProgress) return 1;  // nothing accepted: nothing written
    session.ui().saveFiles.push_back(*out);
    ws.mnuPopup_SavePatch();
    if (ws.ActionFailed) return 1;
    return allAccepted ? 0 : 1;
}

int runApply(const Words& words) {
    const Command& command = commandNamed("apply");
    const Arguments args = parseArguments(words, {"-o"}, {});
    const auto out = args.value("-o");
    if (!args.error.empty() || args.positional.size() != 2 || !out) return usageError(command, args.error);
    if (app::isStandardOutput(*out)) return usageError(command, kNotToStandardOutput);
    Session session;
    app::Workspace& ws = session.workspace();
    if (*out == args.positional[0] || app::sameFile(*out, args.positional[0])) {
        ws.showMessage(ws.msg(MessageKey::MsgPatchSameFile));
        return 1;
    }
    if (!session.openFlash(args.positional[0])) return 1;
    session.ui().openFiles.push_back(args.positional[1]);
    session.ui().saveFiles.push_back(*out);
    session.ui().fixedAnswers[ws.msg(MessageKey::MsgOpenPatchedCopy)] = false;
    ws.mnu_ToolsCheckPatch();
    return ws.ActionFailed ? 1 : 0;
}

int runMake(const Words& words) {
    const Command& command = commandNamed("make");
    const Arguments args = parseArguments(words, {}, {});
    if (!args.error.empty() || args.positional.size() != 2) return usageError(command, args.error);
    Session session;
    app::Workspace& ws = session.workspace();
    if (!std::filesystem::is_directory(app::toPath(args.positional[0]))) {
        ws.showMessage(ws.msg(MessageKey::MsgFileNotExist) + " " + args.positional[0]);
        return 1;
    }
    std::error_code ec;
    std::filesystem::create_directories(app::toPath(args.positional[1]), ec);
    session.ui().folders.push_back(args.positional[0]);
    session.ui().folders.push_back(args.positional[1]);
    ws.mnu_ToolsMake();
    return ws.ActionFailed || ws.outputFailures > 0 ? 1 : 0;
}

int runLumbra(const Words& words) {
    const Command& command = commandNamed("lumbra");
    const Arguments args = parseArguments(words, {}, {});
    if (!args.error.empty() || args.positional.size() != 2) return usageError(command, args.error);
    Session session;
    app::Workspace& ws = session.workspace();
    std::error_code ec;
    std::filesystem::create_directories(app::toPath(args.positional[1]), ec);
    session.ui().openFiles.push_back(args.positional[0]);
    session.ui().folders.push_back(args.positional[1]);
    ws.mnu_ToolsConvertLumbrapatch();
    return ws.ActionFailed || ws.outputFailures > 0 ? 1 : 0;
}

}  // namespace korvatek::cli

// Commands on fonts: fonts, glyphs, glyph, font-size, font-patch, make-font.
#include <cstdio>
#include <filesystem>
#include <optional>

#include "base/byte_reader.h"
#include "base/file_io.h"
#include "base/hex_text.h"
#include "arguments.h"
#include "commands.h"
#include "session.h"

namespace korvatek::cli {

namespace {

// Opens FLASH and chooses FONT; the exit status when that fails (0 when it worked).
int openFont(Session& session, const std::string& flash, int font) {
    if (!session.openFlash(flash)) return 1;
    return session.chooseFont(font) ? 0 : 1;
}

}  // namespace

int runFonts(const Words& words) {
    const Command& command = commandNamed("fonts");
    const Arguments args = parseArguments(words, {}, {});
    if (!args.error.empty() || args.positional.size() != 1) return usageError(command, args.error);
    Session session;
    if (!session.openFlash(args.positional[0])) return 1;
    const app::Workspace& ws = session.workspace();
    for (const auto& font : ws.Ftype) {
        ByteReader flash(ws.firmware->bytes(), static_cast<std::uint64_t>(font.descriptorOffset) + 4);
        std::printf("%s\t%s\t%d\n", font.caption.c_str(), app::hexText(font.descriptorOffset).c_str(), flash.u8());
    }
    return 0;
}

int runGlyphs(const Words& words) {
    const Command& command = commandNamed("glyphs");
    const Arguments args = parseArguments(words, {}, {});
    if (!args.error.empty() || args.positional.size() != 2) return usageError(command, args.error);
    const auto font = parseNumber(args.positional[1]);
    if (!font) return usageError(command, "FONT must be a font number");
    Session session;
    if (const int status = openFont(session, args.positional[0], *font)) return status;
    std::string out;
    for (const auto& row : session.workspace().ListView2) {
        for (int column = 1; column <= 9; ++column) {
            out += fonts::glyphCellText(row, column);
            out += column < 9 ? '\t' : '\n';
        }
    }
    std::fwrite(out.data(), 1, out.size(), stdout);
    return 0;
}

int runGlyph(const Words& words) {
    const Command& command = commandNamed("glyph");
    const Arguments args = parseArguments(words, {"-o", "--dir"}, {});
    if (!args.error.empty() || args.positional.size() != 3) return usageError(command, args.error);
    const auto font = parseNumber(args.positional[1]);
    if (!font) return usageError(command, "FONT must be a font number");
    const bool all = args.positional[2] == "all";
    const auto code = parseNumber(args.positional[2]);
    const auto out = args.value("-o");
    const auto dir = args.value("--dir");
    if (all ? (!dir || out) : (!code || !out || dir)) return usageError(command);
    Session session;
    if (const int status = openFont(session, args.positional[0], *font)) return status;
    app::Workspace& ws = session.workspace();
    if (all) {
        std::error_code ec;
        std::filesystem::create_directories(app::toPath(*dir), ec);
        session.ui().folders.push_back(*dir);
        ws.mnuPopup2_SaveAllBMP();
        return ws.outputFailures > 0 ? 1 : 0;
    }
    if (!session.selectGlyph(*code)) return 1;
    session.ui().saveFiles.push_back(*out);
    ws.mnuPopup2_SaveBMP();
    session.printInformation(app::isStandardOutput(*out));
    return ws.ActionFailed ? 1 : 0;
}

int runFontSize(const Words& words) {
    const Command& command = commandNamed("font-size");
    const Arguments args = parseArguments(words, {"-o"}, {});
    const auto out = args.value("-o");
    if (!args.error.empty() || args.positional.size() != 3 || !out) return usageError(command, args.error);
    const auto font = parseNumber(args.positional[1]);
    if (!font) return usageError(command, "FONT must be a font number");
    // Read as the input box reads it: no number or 0 ends it, and the box would ask again for
    // anything from 5 down or from 65 up.
    const double size = app::valDecimal(args.positional[2]);
    if (size == 0) return usageError(command, "SIZE must be a number");
    if (size <= 5 || size >= 65) return usageError(command, "SIZE must lie from 6 to 64");
    Session session;
    if (const int status = openFont(session, args.positional[0], *font)) return status;
    app::Workspace& ws = session.workspace();
    session.ui().inputs.push_back(args.positional[2]);
    session.ui().saveFiles.push_back(*out);
    ws.mnuPopup2_ChangeFSize();
    return ws.ActionFailed ? 1 : 0;
}

int runFontPatch(const Words& words) {
    const Command& command = commandNamed("font-patch");
    const Arguments args = parseArguments(words, {"-o"}, {}, {"--bmp-folder"});
    const auto out = args.value("-o");
    if (!args.error.empty() || args.positional.size() < 2 || !out) return usageError(command, args.error);
    const auto font = parseNumber(args.positional[1]);
    if (!font) return usageError(command, "FONT must be a font number");
    // The replacements in the order given.
    struct Replacement {
        std::optional<int> code;  // none for a folder
        std::string path;
    };
    std::vector<Replacement> replacements;
    std::size_t positional = 0;
    for (const auto& [option, word] : args.ordered) {
        if (!option.empty()) {
            replacements.push_back({std::nullopt, word});
        } else if (positional++ >= 2) {
            const auto equals = word.find('=');
            const auto code = equals == std::string::npos ? std::nullopt : parseNumber(word.substr(0, equals));
            if (!code) return usageError(command, "cannot read replacement " + word);
            replacements.push_back({*code, word.substr(equals + 1)});
        }
    }
    if (replacements.empty()) return usageError(command, "no replacement given");
    Session session;
    std::vector<std::string> inputs{args.positional[0]};
    for (const auto& r : replacements) {
        if (r.code)
            inputs.push_back(r.path);
        else
            Session::addFolderFiles(r.path, inputs);
    }
    if (!session.outputAllowed(*out, inputs)) return 1;
    if (const int status = openFont(session, args.positional[0], *font)) return status;
    app::Workspace& ws = session.workspace();
    CliInterface& ui = session.ui();
    bool allAccepted = true;
    for (const auto& r : replacements) {
        const int problemsBefore = ui.problems;
        if (!r.code) {
            if (!std::filesystem::is_directory(app::toPath(r.path))) {
                ws.showMessage(ws.msg(settings::MessageKey::MsgFileNotExist) + " " + r.path);
                allAccepted = false;
                continue;
            }
            ui.folders.push_back(r.path);
            ws.mnuPopup2_LoadBMPfolder();
            allAccepted = allAccepted && ui.problems == problemsBefore;
            continue;
        }
        if (!session.selectGlyph(*r.code)) {
            allAccepted = false;
            continue;
        }
        ui.openFiles.push_back(r.path);
        ws.mnuPopup2_LoadBMP();
        ui.openFiles.clear();  // a refusal before the dialog must not leave the file for the next one
        allAccepted = allAccepted && !ws.ActionFailed;
    }
    if (!ws.GlyphPatchInProgress) return 1;
    ui.saveFiles.push_back(*out);
    ws.mnuPopup2_SavePatch();
    if (ws.ActionFailed) return 1;
    return allAccepted ? 0 : 1;
}

int runMakeFont(const Words& words) {
    const Command& command = commandNamed("make-font");
    const Arguments args = parseArguments(words, {"-o"}, {});
    const auto out = args.value("-o");
    if (!args.error.empty() || args.positional.size() != 3 || !out) return usageError(command, args.error);
    const auto font = parseNumber(args.positional[1]);
    if (!font) return usageError(command, "FONT must be a font number");
    Session session;
    app::Workspace& ws = session.workspace();
    if (!std::filesystem::is_directory(app::toPath(args.positional[2]))) {
        ws.showMessage(ws.msg(settings::MessageKey::MsgFileNotExist) + " " + args.positional[2]);
        return 1;
    }
    std::vector<std::string> inputs{args.positional[0]};
    Session::addFolderFiles(args.positional[2], inputs);
    if (!session.outputAllowed(*out, inputs)) return 1;
    if (const int status = openFont(session, args.positional[0], *font)) return status;
    session.ui().folders.push_back(args.positional[2]);
    session.ui().saveFiles.push_back(*out);
    ws.mnuPopup2_MakeF();
    return ws.ActionFailed ? 1 : 0;
}

}  // namespace korvatek::cli

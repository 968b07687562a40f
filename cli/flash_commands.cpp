// Commands on a fullflash: info, pictures, picture, export.
#include <cstdio>
#include <filesystem>
#include <string>

#include "arguments.h"
#include "base/file_io.h"
#include "codec/bmp_file.h"
#include "commands.h"
#include "console.h"
#include "edit/picture_decode.h"
#include "firmware/layout.h"
#include "json_output.h"
#include "opening.h"

namespace korvatek::cli {

namespace {

bool endsWith(const std::string& text, const std::string& tail) {
    return text.size() >= tail.size() && text.compare(text.size() - tail.size(), tail.size(), tail) == 0;
}

// The information text, one line per text line: on stdout, or on stderr when stdout carries
// the output file itself.
void printInformation(const std::string& text, bool onStandardError = false) {
    if (text.empty()) return;
    std::string lines = text;
    for (char& c : lines)
        if (c == '\r') c = '\n';
    std::fprintf(onStandardError ? stderr : stdout, "%s\n", lines.c_str());
}

// Decodes a picture and tells what stopped or refused it; false when nothing may be written.
bool decodeTold(const Console& console, const edit::DecodedPicture& decoded) {
    if (decoded.stopped) console.fail(*decoded.stopped);
    else if (decoded.refused) console.fail(*decoded.refused);
    return !decoded.stopped && !decoded.refused;
}

}  // namespace

int runInfo(const Arguments& args) {
    const Command& command = commandNamed("info");
    if (!args.error.empty() || args.positional.size() != 1) return usageError(command, args.error);
    Console console;
    const auto flash = openFlashFile(console, args.positional[0]);
    if (!flash) return 1;
    if (args.has("--json"))
        return printJson({{"model", flash->model},
                          {"pack", flash->pack},
                          {"firmware", flash->firmwareId},
                          {"fonts", flash->fonts.size()},
                          {"pictures", flash->pictures.size()}})
                   ? 0
                   : 1;
    std::printf("model: %s\npack: %s\nfirmware: %s\nfonts: %zu\npictures: %zu\n", flash->model.c_str(),
                flash->pack.c_str(), flash->firmwareId.c_str(), flash->fonts.size(), flash->pictures.size());
    return 0;
}

int runPictures(const Arguments& args) {
    const Command& command = commandNamed("pictures");
    if (!args.error.empty() || args.positional.size() != 1) return usageError(command, args.error);
    Console console;
    const auto flash = openFlashFile(console, args.positional[0]);
    if (!flash) return 1;
    if (args.has("--json")) {
        Json pictures = Json::array();
        for (const auto& row : flash->pictures)
            pictures.push_back({{"number", row.number},
                                {"width", row.width},
                                {"height", row.height},
                                {"type", row.type},
                                {"recordOffset", row.recordOffset},
                                {"dataAddress", row.dataAddress},
                                {"dataOffset", row.dataOffset()}});
        return printJson({{"pictures", pictures}}) ? 0 : 1;
    }
    std::string out;
    out.reserve(flash->pictures.size() * 48);
    for (const auto& row : flash->pictures) {
        for (int column = 1; column <= 7; ++column) {
            out += firmware::pictureCellText(row, column);
            out += column < 7 ? '\t' : '\n';
        }
    }
    std::fwrite(out.data(), 1, out.size(), stdout);
    return 0;
}

int runPicture(const Arguments& args) {
    const Command& command = commandNamed("picture");
    if (!args.error.empty() || args.positional.size() != 2) return usageError(command, args.error);
    const auto n = parseNumber(args.positional[1]);
    if (!n) return usageError(command, "N must be a picture number");
    Console console;
    const auto flash = openFlashFile(console, args.positional[0]);
    if (!flash) return 1;
    const firmware::PictureRecord* row = pictureNumbered(console, *flash, *n);
    if (row == nullptr) return 1;
    edit::PictureDecoder decoder;
    const edit::DecodedPicture decoded = decoder.flashPicture(flash->bytes(), *row, 24);
    const bool shown = decodeTold(console, decoded);
    if (!decoded.stopped) printInformation(edit::pictureInformation(decoded));
    return shown ? 0 : 1;
}

namespace {

int exportOne(Console& console, const edit::OpenedFlash& flash, int n, const std::string& out, bool alpha) {
    const bool asGpf2 = endsWith(out, ".gpf2");  // "-" (standard output) is a BMP
    const firmware::PictureRecord* row = pictureNumbered(console, flash, n);
    if (row == nullptr) return 1;
    // Decoded first, so that a picture that cannot be decoded writes no file. Alpha is kept
    // only for a BMP of a 24-bit picture, when asked for.
    edit::PictureDecoder decoder;
    const int depth = !asGpf2 && alpha && decoder.bitsFor(row->listedType()) == 24 ? 32 : 24;
    const edit::DecodedPicture decoded = decoder.flashPicture(flash.bytes(), *row, depth);
    if (!decodeTold(console, decoded)) return 1;
    if (asGpf2) {
        if (!console.prepare(out, {flash.path})) return 1;
        return console.write(out, edit::flashPictureContainer(flash.bytes(), *row, decoded), {flash.path}) ? 0 : 1;
    }
    const auto bmp = codec::encodeBmp(decoder.canvas(), depth);
    if (!bmp) {
        console.fail(bmp.error());
        return 1;
    }
    if (!console.prepare(out, {flash.path})) return 1;
    return console.write(out, *bmp, {flash.path}) ? 0 : 1;
}

int exportAll(Console& console, const edit::OpenedFlash& flash, std::string dir, const std::string& format,
              bool alpha) {
    if (flash.pictures.empty()) return 1;
    std::error_code ec;
    std::filesystem::create_directories(app::toPath(dir), ec);
    if (!std::filesystem::is_directory(app::toPath(dir), ec)) {
        console.say(console.msg(settings::MessageKey::MsgCannotWriteFile) + dir);
        return 1;
    }
    while (dir.size() > 1 && (dir.back() == '/' || dir.back() == '\\')) dir.pop_back();
    // One decoder for the whole run: a type without a format decodes with the depth before it.
    edit::PictureDecoder decoder;
    const bool bmp = format == "bmp";
    const int last = std::min(firmware::kPictureMaxIndex, static_cast<int>(flash.pictures.size()) - 1);
    for (int n = 0; n <= last; ++n) {
        const firmware::PictureRecord& row = flash.pictures[static_cast<std::size_t>(n)];
        const int depth = bmp && alpha && decoder.bitsFor(row.listedType()) == 24 ? 32 : 24;
        const edit::DecodedPicture decoded = decoder.flashPicture(flash.bytes(), row, depth);
        // A picture that cannot be decoded at all is not written; a refused format is told
        // and written as it stands; the run goes on.
        if (decoded.stopped) {
            console.fail(*decoded.stopped);
            continue;
        }
        if (decoded.refused) console.fail(*decoded.refused);
        const std::string target = app::joinPath(dir, row.numberText() + (bmp ? ".bmp" : ".gpf2"));
        if (!bmp) {
            if (console.prepare(target, {flash.path}))
                console.write(target, edit::flashPictureContainer(flash.bytes(), row, decoded), {flash.path});
            continue;
        }
        const auto encoded = codec::encodeBmp(decoder.canvas(), depth);
        if (!encoded) {
            console.fail(encoded.error());
            continue;
        }
        if (console.prepare(target, {flash.path})) console.write(target, *encoded, {flash.path});
    }
    return console.failures() > 0 ? 1 : 0;
}

}  // namespace

int runExport(const Arguments& args) {
    const Command& command = commandNamed("export");
    if (!args.error.empty() || args.positional.size() != 2) return usageError(command, args.error);
    const bool alpha = args.has("--alpha");
    Console console;
    if (args.positional[1] == "all") {
        const auto dir = args.value("--dir");
        const auto format = args.value("--format");
        if (!dir || !format || (*format != "gpf2" && *format != "bmp") || args.value("-o"))
            return usageError(command, "all needs --dir DIR and --format gpf2 or bmp");
        const auto flash = openFlashFile(console, args.positional[0]);
        if (!flash) return 1;
        return exportAll(console, *flash, *dir, *format, alpha);
    }
    const auto n = parseNumber(args.positional[1]);
    const auto out = args.value("-o");
    if (!n) return usageError(command, "N must be a picture number or all");
    if (!out || !(endsWith(*out, ".gpf2") || endsWith(*out, ".bmp") || app::isStandardOutput(*out)) ||
        args.value("--dir") || args.value("--format"))
        return usageError(command, "-o must name a .gpf2 or .bmp file, or - for a BMP on standard output");
    const auto flash = openFlashFile(console, args.positional[0]);
    if (!flash) return 1;
    return exportOne(console, *flash, *n, *out, alpha);
}

}  // namespace korvatek::cli

// Commands on single files: decode, encode, convert, demo-flash.
#include <cstdio>
#include <optional>

#include "arguments.h"
#include "base/file_io.h"
#include "codec/bmp_file.h"
#include "commands.h"
#include "containers/gpf_header.h"
#include "console.h"
#include "demo/demo_flash.h"
#include "edit/picture_decode.h"
#include "edit/picture_files.h"

namespace korvatek::cli {

using settings::MessageKey;

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

// A container or theme cache file read and decoded, what refused or stopped it told.
struct LoadedContainer {
    Bytes file;
    edit::ContainerHead head;
    edit::DecodedPicture picture;
};
std::optional<LoadedContainer> loadContainer(const Console& console, edit::PictureDecoder& decoder,
                                             const std::string& path, bool themeCache, bool alpha) {
    auto file = app::readFile(path, app::kMaxPictureFileSize);
    if (!file) {
        console.fail(file.error());
        return std::nullopt;
    }
    ByteReader in(*file);
    const auto head = edit::readContainerHead(in, themeCache);
    if (!head) {
        console.fail(head.error());
        return std::nullopt;
    }
    const int depth = alpha && decoder.bitsFor(containers::typeCodeOf(head->typeText)) == 24 ? 32 : 24;
    LoadedContainer loaded{std::move(*file), *head, decoder.containerData(in, head->width, head->height, head->typeText, depth)};
    if (loaded.picture.stopped) {
        console.fail(*loaded.picture.stopped);
        return std::nullopt;
    }
    if (loaded.picture.refused) console.fail(*loaded.picture.refused);  // told; the tool goes on
    return loaded;
}

void printInformation(const std::string& text, bool onStandardError) {
    std::string lines = text;
    for (char& c : lines)
        if (c == '\r') c = '\n';
    std::fprintf(onStandardError ? stderr : stdout, "%s\n", lines.c_str());
}

}  // namespace

int runDecode(const Arguments& args) {
    const Command& command = commandNamed("decode");
    const auto out = args.value("-o");
    if (!args.error.empty() || args.positional.size() != 1 || !out) return usageError(command, args.error);
    const std::string& in = args.positional[0];
    Console console;
    if (app::CheckFexist(in)) {
        console.say(console.msg(MessageKey::MsgFileNotExist));
        return 1;
    }
    edit::PictureDecoder decoder;
    const bool alpha = args.has("--alpha");
    const auto loaded = loadContainer(console, decoder, in, endsWith(in, "dat"), alpha);
    if (!loaded) return 1;
    // The information goes out in every case, after the file (on stderr when stdout is the file).
    const std::string information = edit::pictureInformation(loaded->picture);
    int status = 1;
    if (!loaded->picture.refused) {
        const int depth = alpha && loaded->picture.bits == 24 ? 32 : 24;
        const auto bmp = codec::encodeBmp(decoder.canvas(), depth);
        if (!bmp)
            console.fail(bmp.error());
        else if (console.prepare(*out, {in}) && console.write(*out, *bmp, {in}))
            status = 0;
    }
    printInformation(information, app::isStandardOutput(*out));
    return status;
}

int runEncode(const Arguments& args) {
    const Command& command = commandNamed("encode");
    const auto out = args.value("-o");
    const auto type = args.value("--type");
    if (!args.error.empty() || args.positional.size() != 1 || !out || !type) return usageError(command, args.error);
    if (app::isStandardOutput(*out)) return usageError(command, kNotToStandardOutput);
    const auto target = targetType(*type);
    if (!target) return usageError(command, "--type must be 1, 8, 16 or 24");
    const std::string& in = args.positional[0];
    const bool png = endsWith(in, ".png") || endsWith(in, ".PNG");
    if (!png && !endsWith(in, ".bmp") && !endsWith(in, ".BMP")) return usageError(command, "IN must be a .bmp or .png file");
    Console console;
    const auto file = app::readFile(in, app::kMaxPictureFileSize);
    if (!file) {
        console.fail(file.error());
        return 1;
    }
    codec::PixelCanvas canvas;
    edit::PngFacts facts;
    const Status loaded = png ? edit::loadPngPicture(*file, canvas, facts) : edit::loadBmpPicture(*file, canvas);
    if (!loaded) {
        console.fail(loaded.error());
        return 1;
    }
    if (!console.prepare(*out, {in})) return 1;
    const auto encoded = edit::encodeContainer(canvas, std::string{static_cast<char>(*target), '\0'}, endsWith(*out, "2"));
    if (!encoded) {
        console.fail(encoded.error());
        return 1;
    }
    for (int i = 0; i < encoded->backSteps; ++i) console.say("err");
    return console.write(*out, encoded->bytes, {in}) ? 0 : 1;
}

int runConvert(const Arguments& args) {
    const Command& command = commandNamed("convert");
    const auto out = args.value("-o");
    if (!args.error.empty() || args.positional.size() != 1 || !out) return usageError(command, args.error);
    if (app::isStandardOutput(*out)) return usageError(command, kNotToStandardOutput);
    const std::string& in = args.positional[0];
    Console console;
    if (app::CheckFexist(in)) {
        console.say(console.msg(MessageKey::MsgFileNotExist));
        return 1;
    }
    // Exactly "dat", as typed: a name ending in "DAT" is a container.
    const bool themeCache = endsWith(*out, ".dat") || endsWith(in, "dat");
    const bool fromThemeCache = endsWith(in, "dat");
    edit::PictureDecoder decoder;
    const auto loaded = loadContainer(console, decoder, in, fromThemeCache, false);
    if (!loaded) return 1;
    const bool toVersion2 = !loaded->head.isGPF2;
    if (!themeCache && !toVersion2 && !edit::fitsVersion1(loaded->head.width, loaded->head.height)) {
        console.fail(makeError(ErrorCode::GpfV1TooLarge));
        return 1;
    }
    if (!console.prepare(*out, {in})) return 1;
    const Bytes file = themeCache ? edit::convertThemeCache(loaded->file, loaded->head, fromThemeCache)
                                  : edit::swapContainerVersion(loaded->file, loaded->head, toVersion2);
    return console.write(*out, file, {in}) ? 0 : 1;
}

int runDemoFlash(const Arguments& args) {
    const Command& command = commandNamed("demo-flash");
    if (!args.error.empty() || args.positional.size() != 1) return usageError(command, args.error);
    const std::string& out = args.positional[0];
    if (app::isStandardOutput(out)) return usageError(command, kNotToStandardOutput);
    Console console;
    if (!console.prepare(out, {})) return 1;
    return console.write(out, firmware::makeDemoFlash(), {}) ? 0 : 1;
}

}  // namespace korvatek::cli

// The Tools menu's encoders and converters: BMP>GPF, PNG>GPF, GPF<>DAT, GPF<>GPF2, and the
// placeholder pictures.
#include "base/hex_text.h"
#include "app/workspace.h"
#include "codec/bmp_file.h"
#include "edit/picture_files.h"
#include "containers/dat_header.h"
#include "containers/gpf_header.h"

namespace korvatek::app {

using settings::MessageKey;

namespace {

constexpr const char* kContainerFilter = "Graphic Patch File 2(*.gpf2)|*.gpf2|Graphic Patch File (*.gpf)|*.gpf";
constexpr const char* kGpf2Filter = "Graphic Patch File 2(*.gpf2)|*.gpf2";
constexpr const char* kGpfFilter = "Graphic Patch File (*.gpf)|*.gpf";
constexpr const char* kGpfFirstFilter = "Graphic Patch File (*.gpf)|*.gpf|Graphic Patch File 2(*.gpf2)|*.gpf2";
constexpr const char* kDatFilter = "Siemens theme cache(*.dat)|*.dat";
constexpr const char* kAnyContainerFilter =
    "Graphic Patch File 2(*.gpf2)|*.gpf2|Graphic Patch File (*.gpf)|*.gpf|Siemens theme cache(*.dat)|*.dat";

bool endsWith(const std::string& text, std::string_view tail) {
    return text.size() >= tail.size() && text.compare(text.size() - tail.size(), tail.size(), tail) == 0;
}

std::string dropLast(const std::string& text, std::size_t n) { return text.size() > n ? text.substr(0, text.size() - n) : ""; }

}  // namespace

std::optional<std::string> Workspace::askContainerTarget(const std::string& source) {
    std::string target;
    bool cancelled = false;
    OSdialog(cancelled, kContainerFilter, "GPF", target, true);
    if (cancelled || !confirmReplace(target, {source})) return std::nullopt;
    return target;
}

void Workspace::writeCanvasContainer(const std::string& target, const std::string& source) {
    IsGPF2 = endsWith(target, "2");
    const auto encoded = edit::encodeContainer(canvas, TargetTypeField, IsGPF2);
    if (!encoded) return fail(encoded.error());
    for (int i = 0; i < encoded->backSteps; ++i) showMessage("err");
    writeOutput(target, encoded->bytes, {source});
}

void Workspace::saveCanvasAsContainer(const std::string& source) {
    if (NoDialog && encodedReplacement) {
        // A replacement: the GPF2 container stays in memory for the picture patch.
        IsGPF2 = true;
        const auto encoded = edit::encodeContainer(canvas, TargetTypeField, true);
        if (!encoded) return fail(encoded.error());
        for (int i = 0; i < encoded->backSteps; ++i) showMessage("err");
        encodedReplacement = encoded->bytes;
        return;
    }
    // The target given in advance, or asked for.
    std::string target = PresetPath;
    if (!NoDialog) {
        const auto chosen = askContainerTarget(source);
        if (!chosen) {
            ActionFailed = true;
            return;
        }
        target = *chosen;
    }
    writeCanvasContainer(target, source);
    if (!ActionFailed && !NoDialog) showSuccess();
}

void Workspace::mnu_ToolsBMPtoGPF(int targetType) {
    TargetTypeField = std::string{static_cast<char>(targetType), '\0'};
    BMPtoGPFtool();
}

void Workspace::mnu_ToolsPNGtoGPF(int targetType) {
    TargetTypeField = std::string{static_cast<char>(targetType), '\0'};
    PNGtoGPFtool();
}

void Workspace::BMPtoGPFtool() {
    ActionFailed = false;
    std::string source = BmpFolderMode ? PresetBmpPath : std::string();
    if (!BmpFolderMode) {
        // Replacing a picture proposes its number as the name.
        const firmware::PictureRecord* row = NoDialog ? selectedPicture() : nullptr;
        source = row ? row->numberText() + ".bmp" : "";
        OSdialog(ActionFailed, "BitMap File (*.bmp)|*.bmp", "BMP", source, false);
        if (ActionFailed) return;
    }
    const auto file = readFile(source, kMaxPictureFileSize);
    if (!file) return fail(file.error());
    loadBmpAndEncode(*file, source);
}

void Workspace::loadBmpAndEncode(ByteView file, const std::string& source) {
    const Status loaded = edit::loadBmpPicture(file, canvas);
    if (!loaded) return fail(loaded.error());
    GlyphShown = false;
    preview = Preview{Preview::Source::Picture, canvas.metaWidth, canvas.metaHeight};

    saveCanvasAsContainer(source);
}

void Workspace::PNGtoGPFtool() {
    ActionFailed = false;
    std::string source = "xxx.png";
    if (!NoDialog) {
        OSdialog(ActionFailed, "Portable Network Graphics File (*.png)|*.png", "PNG", source, false);
        if (ActionFailed) return;
    } else {
        source = PresetBmpPath;
    }
    const auto file = readFile(source, kMaxPictureFileSize);
    if (!file) return fail(file.error());
    edit::PngFacts facts;
    const Status decoded = edit::loadPngPicture(*file, canvas, facts);
    PngColourTypeName = facts.colourTypeName;
    PngResolutionText = facts.resolutionText;
    if (!decoded) return fail(decoded.error());
    preview = Preview{Preview::Source::Picture, canvas.metaWidth, canvas.metaHeight};

    saveCanvasAsContainer(source);
}

void Workspace::mnu_ToolsGPFakaDAT() {
    ActionFailed = false;
    std::string source;
    OSdialog(ActionFailed, kAnyContainerFilter, "GPF or DAT", source, false);
    if (ActionFailed) return;
    if (CheckFexist(source)) {
        showMessage(msg(MessageKey::MsgFileNotExist));
        ActionFailed = true;
        return;
    }
    // Exactly "dat", as typed: a name ending in "DAT" is a container.
    const bool fromDat = endsWith(source, "dat");
    if (fromDat)
        LoadDAT(source);
    else
        LoadGPF(source);
    if (ActionFailed) return;

    // The proposed name loses 5 characters when the last container loaded was a GPF2, also
    // for a theme cache source; the rule has always been so.
    std::string target = dropLast(source, IsGPF2 ? 5 : 4);
    OSdialog(ActionFailed, fromDat ? kGpf2Filter : kDatFilter, fromDat ? "GPF" : "DAT", target, true);
    if (ActionFailed) return;
    if (!confirmReplace(target, {source})) {
        ActionFailed = true;
        return;
    }

    const auto original = readFile(source, kMaxPictureFileSize);
    if (!original) return fail(original.error());
    if (fromDat) IsGPF2 = true;
    const Bytes file = edit::convertThemeCache(*original, shownHead(), fromDat);
    if (writeOutput(target, file, {source})) showSuccess();
}

void Workspace::mnu_ToolsGPFakaGPF2() {
    ActionFailed = false;
    std::string source;
    OSdialog(ActionFailed, kGpfFirstFilter, "GPF", source, false);
    if (ActionFailed) return;
    if (CheckFexist(source)) {
        showMessage(msg(MessageKey::MsgFileNotExist));
        ActionFailed = true;
        return;
    }
    LoadGPF(source);
    if (ActionFailed) return;
    const bool toVersion2 = !IsGPF2;
    if (!toVersion2 && !edit::fitsVersion1(picture.width, picture.height))
        return fail(makeError(ErrorCode::GpfV1TooLarge));

    std::string target = dropLast(source, IsGPF2 ? 5 : 4);
    OSdialog(ActionFailed, toVersion2 ? kGpf2Filter : kGpfFilter, "GPF", target, true);
    if (ActionFailed) return;
    if (!confirmReplace(target, {source})) {
        ActionFailed = true;
        return;
    }
    const auto original = readFile(source, kMaxPictureFileSize);
    if (!original) return fail(original.error());
    IsGPF2 = toVersion2;
    const Bytes file = edit::swapContainerVersion(*original, shownHead(), toVersion2);
    if (writeOutput(target, file, {source})) showSuccess();
}

std::string Workspace::MakeEmptyGPF2() {
    const std::string path = temporaryPath("/empty.gpf2");
    deleteFile(path);
    (void)writeFile(path, edit::emptyContainer());
    return path;
}

std::string Workspace::MakeEmptyBMP() {
    const std::string path = temporaryPath("/empty.bmp");
    deleteFile(path);
    // A 1 x 1 black pixel without its row padding byte, both size fields left 0.
    Bytes file = codec::SaveBMPhead(1, 1, 24);
    file.insert(file.end(), 3, 0);
    (void)writeFile(path, file);
    return path;
}

}  // namespace korvatek::app

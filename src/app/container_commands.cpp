// Loading and saving single pictures: the GPF/GPF2 containers, theme cache files and BMP.
#include <filesystem>

#include "base/hex_text.h"
#include "app/workspace.h"
#include "codec/bmp_file.h"
#include "edit/picture_decode.h"
#include "edit/picture_files.h"
#include "codec/picture_type.h"
#include "containers/dat_header.h"
#include "containers/gpf_header.h"

namespace korvatek::app {

using settings::MessageKey;

namespace {

constexpr const char* kGpf2Filter = "Graphic Patch File 2(*.gpf2)|*.gpf2";
constexpr const char* kGpfAnyFilter = "Graphic Patch File 2(*.gpf2)|*.gpf2|Graphic Patch File (*.gpf)|*.gpf";
constexpr const char* kBmpFilter = "BitMap File (*.bmp)|*.bmp";


}  // namespace

void Workspace::decodeContainer(ByteReader& in, int width, int height, const std::string& typeText) {
    const int bits = edit::pictureBits(containers::typeCodeOf(typeText), picture.bits);
    PICinfo.clear();
    preview = Preview{Preview::Source::Picture, width, height};
    OutputDepth = 24;
    if (GPFtoBMPtool && bits == 24 && ui.askOkCancel(msg(MessageKey::MsgSaveAlpha))) OutputDepth = 32;

    const edit::DecodedPicture decoded =
        edit::decodeContainerData(in, width, height, typeText, OutputDepth, picture.bits, canvas);
    const std::string lengthBefore = picture.dataLength;
    takeDecoded(decoded);
    if (decoded.stopped) {
        picture.dataLength = lengthBefore;  // a stopped load leaves the length as it was
        return fail(*decoded.stopped);
    }
    if (decoded.refused) {
        // A format the decoder refuses does not fail the load.
        showMessage(errorText(*decoded.refused));
        lastDecodeRefused = true;
    }
    PICinfo = edit::pictureInformation(decoded);
}

void Workspace::LoadGPF(const std::string& path) {
    ActionFailed = false;
    lastDecodeRefused = false;
    const auto file = readFile(path, kMaxPictureFileSize);
    if (!file) return fail(file.error());
    loadContainer(*file);
}

void Workspace::loadContainer(const Bytes& file) {
    ActionFailed = false;
    lastDecodeRefused = false;
    ByteReader in(file);
    const auto header = edit::readContainerHead(in, false);
    if (!header) return fail(header.error());
    IsGPF2 = header->isGPF2;
    decodeContainer(in, header->width, header->height, header->typeText);
}

void Workspace::LoadDAT(const std::string& path) {
    ActionFailed = false;
    lastDecodeRefused = false;
    const auto file = readFile(path, kMaxPictureFileSize);
    if (!file) return fail(file.error());
    ByteReader in(*file);
    const auto header = edit::readContainerHead(in, true);
    ReverseByteOrder = true;
    if (!header) return fail(header.error());
    decodeContainer(in, header->width, header->height, header->typeText);
}

void Workspace::SaveGPF() {
    ActionFailed = false;
    const firmware::PictureRecord* row = selectedPicture();
    if (row == nullptr || !firmware) {
        ActionFailed = true;
        return;
    }
    std::string target;
    if (SingleSave) {
        target = row->numberText() + ".gpf2";
        OSdialog(ActionFailed, kGpf2Filter, "GPF", target, true);
        if (ActionFailed) return;
    } else {
        target = joinPath(OutputFolder, row->numberText() + ".gpf2");
    }
    if (!prepareOutput(target)) return;

    // The picture as the last decode left it: its size and where its data ended.
    IsGPF2 = true;
    edit::DecodedPicture shown;
    shown.width = picture.width;
    shown.height = picture.height;
    shown.end = firmwarePosition;
    writeOutput(target, edit::flashPictureContainer(firmware->bytes(), *row, shown));
}

void Workspace::SaveBMP() {
    ActionFailed = false;
    std::string target;
    // A glyph is saved from the glyph grid, under its row's "#" text; a picture from the canvas.
    std::optional<std::string> number;
    if (GlyphShown) {
        if (const fonts::GlyphRecord* row = selectedGlyph()) number = row->codeText();
    } else if (const firmware::PictureRecord* row = selectedPicture()) {
        number = row->numberText();
    }
    if (SingleSave) {
        if (GPFtoBMPtool)
            target = std::filesystem::path(DialogFileName).replace_extension(".bmp").string();
        else if (number)
            target = *number + ".bmp";
        OSdialog(ActionFailed, kBmpFilter, "BMP", target, true);
        if (ActionFailed) return;
    } else {
        if (!number) {
            ActionFailed = true;
            return;
        }
        target = joinPath(BmpOutputFolder, *number + ".bmp");
    }
    const auto bytes = GlyphShown ? codec::encodeBmp(glyphGrid, glyphGrid.metaDepth) : codec::encodeBmp(canvas, OutputDepth);
    if (!bytes) return fail(bytes.error());
    const std::vector<std::string> inputs = GPFtoBMPtool ? std::vector<std::string>{DialogFileName} : std::vector<std::string>{};
    if (!prepareOutput(target, inputs)) return;
    writeOutput(target, *bytes, inputs);
}

void Workspace::mnu_ToolsGPFtoBMP() {
    ActionFailed = false;
    std::string fileName;
    OSdialog(ActionFailed, kGpfAnyFilter, "GPF", fileName, false);
    if (ActionFailed) return;
    if (CheckFexist(fileName)) {
        showMessage(msg(MessageKey::MsgFileNotExist));
        ActionFailed = true;
        return;
    }
    DialogFileName = fileName;
    GPFtoBMPtool = true;
    // Theme cache files go through the same tool.
    if (fileName.size() >= 3 && fileName.compare(fileName.size() - 3, 3, "dat") == 0)
        LoadDAT(fileName);
    else
        LoadGPF(fileName);
    if (!ActionFailed && StopOnRefusedFormat && lastDecodeRefused) ActionFailed = true;
    if (ActionFailed) {
        GPFtoBMPtool = false;
        return;
    }
    SingleSave = true;
    GlyphShown = false;
    SaveBMP();
    SingleSave = false;
    GPFtoBMPtool = false;
    if (!ActionFailed) showSuccess();
}

}  // namespace korvatek::app

// Loading and saving single pictures: the GPF/GPF2 containers, theme cache files and BMP.
#include <filesystem>

#include "base/hex_text.h"
#include "app/workspace.h"
#include "codec/bmp_file.h"
#include "codec/picture_decoder.h"
#include "codec/picture_type.h"
#include "containers/dat_header.h"
#include "containers/gpf_header.h"

namespace korvatek::app {

using settings::MessageKey;

namespace {

constexpr const char* kGpf2Filter = "Graphic Patch File 2(*.gpf2)|*.gpf2";
constexpr const char* kGpfAnyFilter = "Graphic Patch File 2(*.gpf2)|*.gpf2|Graphic Patch File (*.gpf)|*.gpf";
constexpr const char* kBmpFilter = "BitMap File (*.bmp)|*.bmp";

bool tooLarge(int width, int height) { return width > codec::kMaxPictureWidth || height > codec::kMaxPictureHeight; }

}  // namespace

void Workspace::decodeContainer(ByteReader& in, int width, int height, const std::string& typeText) {
    picture.width = width;
    picture.height = height;
    picture.typeText = typeText;
    picture.typeCode = containers::typeCodeOf(typeText);
    picture.compression = picture.typeCode >= 129 ? "Yes" : "No";
    picture.bits = codec::bitsForTypeCode(picture.typeCode).value_or(picture.bits);

    PICinfo.clear();
    preview = Preview{Preview::Source::Picture, width, height};
    OutputDepth = 24;
    if (GPFtoBMPtool && picture.bits == 24 && ui.askOkCancel(msg(MessageKey::MsgSaveAlpha))) OutputDepth = 32;

    const std::uint64_t start = in.position();
    const Status decoded = codec::ConvertGPF2BMPdata(
        in, {width, height, picture.bits, picture.compression, OutputDepth}, canvas);
    if (!decoded && decoded.error().code == ErrorCode::OutsideCanvas) {
        fail(decoded.error());
        return;
    }
    if (!decoded) {
        // A format the decoder refuses does not fail the load.
        showMessage(errorText(decoded.error()));
        lastDecodeRefused = true;
    }
    picture.dataLength = hexText(in.position() - start);
    canvas.metaLength = picture.dataLength;
    PICinfo = informationText(width, height, picture.bits, picture.compression, picture.dataLength);
}

void Workspace::LoadGPF(const std::string& path) {
    ActionFailed = false;
    lastDecodeRefused = false;
    const auto file = readFile(path, kMaxPictureFileSize);
    if (!file) return fail(file.error());
    ByteReader in(*file);
    const auto header = containers::LoadGPFhead(in);
    if (!header) return fail(header.error());
    IsGPF2 = header->isGPF2;
    if (tooLarge(header->width, header->height)) return fail(makeError(ErrorCode::PictureTooLarge));
    decodeContainer(in, header->width, header->height, header->typeText);
}

void Workspace::LoadDAT(const std::string& path) {
    ActionFailed = false;
    lastDecodeRefused = false;
    const auto file = readFile(path, kMaxPictureFileSize);
    if (!file) return fail(file.error());
    ByteReader in(*file);
    const containers::DatHeader header = containers::LoadDAThead(in);
    ReverseByteOrder = true;
    if (tooLarge(header.width, header.height)) return fail(makeError(ErrorCode::PictureTooLarge));
    decodeContainer(in, header.width, header.height, header.typeText);
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

    // The type field is the type as the list gives it back ("A00" is 0xA0).
    const std::string typeText{static_cast<char>(row->listedType()), '\0'};
    IsGPF2 = true;
    Bytes file = containers::SaveGPFhead(true, picture.width, picture.height, typeText);

    // The data are copied from the fullflash up to where decoding stopped, one byte more than
    // the decoder consumed; that extra byte has always been part of the file.
    const std::uint64_t start = static_cast<std::uint64_t>(row->dataOffset());
    const std::uint64_t end = firmwarePosition;
    const std::uint64_t count = end >= start ? end - start + 1 : 1;
    ByteReader flash(firmware->bytes(), start);
    const std::size_t headerSize = file.size();
    file.resize(headerSize + static_cast<std::size_t>(count));
    flash.read(file.data() + headerSize, static_cast<std::size_t>(count));
    containers::padContainer(file);
    writeOutput(target, file);
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

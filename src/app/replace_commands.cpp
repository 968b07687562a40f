// Replacing pictures: from a container, a BMP, or a folder of either. A replacement never
// touches the fullflash: it becomes one section of the picture patch being collected, and
// the row is marked "*" until the patch is saved.
#include "base/hex_text.h"
#include "app/workspace.h"
#include "codec/picture_encoder.h"
#include "codec/picture_type.h"
#include "containers/gpf_header.h"
#include "firmware/free_space.h"
#include "patch/vkp_text.h"

namespace korvatek::app {

using settings::MessageKey;

namespace {

bool isMarked(const firmware::PictureRecord& row) { return row.replaced; }

// Load BMPs "original": 1-bit stays monochrome, 8-bit becomes 0x85, 12- and 16-bit 0x88,
// 24-bit 0x8A; a code without a format keeps the target as it was.
std::optional<int> ownTarget(const firmware::PictureRecord& row) {
    const auto bits = codec::bitsForTypeCode(row.listedType());
    if (!bits) return std::nullopt;
    switch (*bits) {
        case 1: return codec::kTarget1Bit;
        case 8: return codec::kTarget8Bit;
        case 24: return codec::kTarget24Bit;
        default: return codec::kTarget16Bit;
    }
}

}  // namespace

std::string Workspace::collectingPatchPath() const { return temporaryPath("/Korvatek_gp.temp"); }

std::optional<std::uint32_t> Workspace::FindFreeSpace(std::uint32_t size) {
    const auto found = firmware::FindFreeSpace(firmware->bytes(), size, static_cast<std::uint32_t>(valHEX(FreeSpaceStart)));
    if (!found.address) {
        showMessage(msg(MessageKey::MsgNoFreeSpace));
        ActionFailed = true;
        return std::nullopt;
    }
    FreeSpaceStart = hexText(found.nextStart);
    return found.address;
}

void Workspace::AddPictureToPatch() {
    if (!firmware || ReplacePictureNumber < 0 || ReplacePictureNumber >= static_cast<int>(ListView1.size())) return;
    firmware::PictureRecord& row = ListView1[static_cast<std::size_t>(ReplacePictureNumber)];
    const std::int64_t oldLength = valHEX(picture.dataLength);

    const auto container = readFile(DialogFileName, kMaxPictureFileSize);
    LoadGPF(DialogFileName);
    if (ActionFailed || !container) return;
    const std::int64_t newLength = valHEX(picture.dataLength);

    std::string target;
    if (oldLength < newLength) {
        const auto found = FindFreeSpace(static_cast<std::uint32_t>(newLength));
        if (!found) return;
        target = hexText(*found);
        UsedFreeSpace = true;
    } else {
        target = firmware::pictureCellText(row, 7);  // in place; the rest of a longer old picture stays as it is
    }
    if (ActionFailed) return;

    std::string section;
    if (!PatchInProgress) {
        PatchInProgress = true;
        PicturePatchText = patch::pictureHeader(PhoneModel);
    }
    ReverseByteOrder = false;
    section += patch::kLineEnd;
    section += patch::sectionLine(row.number) + patch::kLineEnd;

    // The index record: new width, height (each as its 16-bit value, low byte first), type
    // field, "0000" and the address "A" + target, low byte first.
    ByteReader flash(firmware->bytes(), static_cast<std::uint64_t>(valHEX(hexText(row.recordOffset))));
    const Bytes oldRecord = flash.bytes(12);
    const auto sizeText = [](int value) {
        std::string hex = hexText(static_cast<std::uint16_t>(value));
        if (hex.size() == 1) hex = "0" + hex + "00";
        else if (hex.size() == 2) hex += "00";
        else if (hex.size() == 3) hex = hex.substr(1, 2) + "0" + hex.substr(0, 1);
        return hex;
    };
    const std::string typeText = ASCtext2HEXtext(bytesOf(picture.typeText), false);
    const std::string addressText = ASCtext2HEXtext(HEXtext2ASCtext("A" + target, true), false);
    section += "0" + hexText(row.recordOffset) + ": " + ASCtext2HEXtext(oldRecord, false) + " " + sizeText(picture.width) +
               sizeText(picture.height) + typeText + "0000" + addressText + patch::kLineEnd;
    section += patch::kLineEnd;

    // The data, 16 bytes a line, the last line always whole: its new bytes beyond the data
    // come from the container's padding, its old bytes from whatever follows in the image.
    const std::uint64_t lines = (static_cast<std::uint64_t>(newLength) + 15) / 16;
    ByteReader data(*container, containers::kGpfHeaderSize);
    const std::uint64_t at = static_cast<std::uint64_t>(valHEX(target));
    const Bytes newData = data.bytes(static_cast<std::size_t>(lines * 16));
    section += patch::patchLines(firmware->bytes(), at, newData);

    PicturePatchText += section;
    // The patch is kept in memory; the collecting file in the temporary folder mirrors it.
    (void)writeFile(collectingPatchPath(), PicturePatchText);
    row.replaced = true;
}

void Workspace::mnuPopup_LoadGPF() {
    const firmware::PictureRecord* row = selectedPicture();
    if (row == nullptr) return;
    ActionFailed = false;
    const int number = row->number;
    if (isMarked(*row)) {
        showMessage(msg(MessageKey::MsgAlreadyReplaced), std::to_string(number));
        ActionFailed = true;
        return;
    }
    std::string path = PresetPath;
    if (!NoDialog) {
        path = row->numberText() + ".gpf2";
        OSdialog(ActionFailed, "Graphic Patch File 2(*.gpf2)|*.gpf2", "GPF", path, false);
        if (ActionFailed) return;
    }
    if (CheckFexist(path)) {
        showMessage(msg(MessageKey::MsgFileNotExist));
        ActionFailed = true;
        return;
    }
    DialogFileName = path;
    ReplacePictureNumber = number;
    AddPictureToPatch();
}

void Workspace::mnuPopup_LoadGPFfolder() {
    const std::string folder = fBrowseForFolder(msg(MessageKey::MsgChooseOpenFolder));
    if (folder.empty()) return;
    OutputFolder = folder;
    const int last = std::min(PictureMaxIndex, static_cast<int>(ListView1.size()) - 1);
    for (int n = 0; n <= last; ++n) {
        const std::string path = joinPath(folder, zeroPadded(n, 4) + ".gpf2");
        if (!CheckFexist(path)) {
            if (isMarked(ListView1[static_cast<std::size_t>(n)])) {
                showMessage(msg(MessageKey::MsgAlreadyReplaced), std::to_string(n));
            } else {
                DialogFileName = path;
                selectPicture(n);
                SuppressAlphaPrompt = true;
                LoadPIC();
                ActionFailed = false;
                ReplacePictureNumber = n;
                AddPictureToPatch();
            }
        }
        setProgress(PictureMaxIndex > 0 ? static_cast<double>(n) / PictureMaxIndex * 100.0 : 100.0);
    }
    showSuccess();
}

void Workspace::mnuPopup_LoadBMP(int targetType) {
    TargetTypeField = std::string{static_cast<char>(targetType), '\0'};
    ReplacePictureFromBMP();
}

void Workspace::mnuPopup_LoadBMPs(int targetType) {
    TargetTypeField = std::string{static_cast<char>(targetType), '\0'};
    ReplacePicturesFromBMPFolder();
}

void Workspace::mnuPopup_LoadBMPs_Origbit() {
    KeepOwnType = true;
    ReplacePicturesFromBMPFolder();
    KeepOwnType = false;
}

void Workspace::ReplacePictureFromBMP() {
    const firmware::PictureRecord* row = selectedPicture();
    if (row == nullptr) return;
    ActionFailed = false;
    if (isMarked(*row)) {
        showMessage(msg(MessageKey::MsgAlreadyReplaced), std::to_string(row->number));
        ActionFailed = true;
        return;
    }
    NoDialog = true;
    PresetPath = temporaryPath("/temp.gpf2");
    BMPtoGPFtool();
    if (!ActionFailed) mnuPopup_LoadGPF();
    // Cleared in every case, so that the next single replacement asks for its file again.
    NoDialog = false;
    deleteFile(PresetPath);
}

void Workspace::ReplacePictureFromPNG(const std::string& path) {
    const firmware::PictureRecord* row = selectedPicture();
    if (row == nullptr) return;
    ActionFailed = false;
    if (isMarked(*row)) {
        showMessage(msg(MessageKey::MsgAlreadyReplaced), std::to_string(row->number));
        ActionFailed = true;
        return;
    }
    NoDialog = true;
    PresetBmpPath = path;
    PresetPath = temporaryPath("/temp.gpf2");
    PNGtoGPFtool();
    if (!ActionFailed) mnuPopup_LoadGPF();
    NoDialog = false;
    deleteFile(PresetPath);
}

void Workspace::ReplacePicturesFromBMPFolder() {
    const std::string folder = fBrowseForFolder(msg(MessageKey::MsgChooseOpenFolder));
    if (folder.empty()) return;
    const int last = std::min(PictureMaxIndex, static_cast<int>(ListView1.size()) - 1);
    for (int n = 0; n <= last; ++n) {
        const std::string path = joinPath(folder, zeroPadded(n, 4) + ".bmp");
        if (CheckFexist(path)) continue;
        selectPicture(n);
        const firmware::PictureRecord& row = ListView1[static_cast<std::size_t>(n)];
        if (isMarked(row)) {
            showMessage(msg(MessageKey::MsgAlreadyReplaced), std::to_string(n));
            continue;
        }
        if (KeepOwnType) {
            if (const auto own = ownTarget(row)) TargetTypeField = std::string{static_cast<char>(*own), '\0'};
        }
        NoDialog = true;
        BmpFolderMode = true;
        PresetBmpPath = path;
        PresetPath = temporaryPath("\\temp.gpf2");
        BMPtoGPFtool();
        if (ActionFailed) {
            deleteFile(PresetPath);
            NoDialog = false;
            BmpFolderMode = false;
            return;  // a bitmap that cannot be converted ends the whole command
        }
        mnuPopup_LoadGPF();
        deleteFile(PresetPath);
        NoDialog = false;
        BmpFolderMode = false;
        setProgress(PictureMaxIndex > 0 ? static_cast<double>(n) / PictureMaxIndex * 100.0 : 100.0);
    }
    showSuccess();
}

void Workspace::mnuPopup_SavePatch() {
    if (!PatchInProgress) return;
    ActionFailed = false;
    std::string target = "GraphicPatch_" + PhoneModel + ".vkp";
    OSdialog(ActionFailed, "V_Klay Patch File(*.vkp)|*.vkp", "VKP", target, true);
    if (ActionFailed) return;  // the patch stays pending
    if (!confirmReplace(target)) {
        ActionFailed = true;
        return;
    }
    if (!writeOutput(target, bytesOf(PicturePatchText))) return;
    PatchInProgress = false;
    PicturePatchText.clear();
    deleteFile(collectingPatchPath());
    for (auto& row : ListView1) row.replaced = false;
    showSuccess();
}

void Workspace::mnuPopup_DiscardPatch() {
    PatchInProgress = false;
    PicturePatchText.clear();
    deleteFile(collectingPatchPath());
    for (auto& row : ListView1) row.replaced = false;
}

}  // namespace korvatek::app

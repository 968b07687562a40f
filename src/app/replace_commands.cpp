// Replacing pictures: from a container, a BMP, or a folder of either. A replacement never
// touches the fullflash: it becomes one section of the picture patch being collected, and
// the row is marked "*" until the patch is saved.
#include <cctype>

#include "base/hex_text.h"
#include "app/batch_cancel.h"
#include "app/workspace.h"
#include "codec/picture_encoder.h"
#include "edit/picture_patch.h"
#include "codec/picture_type.h"
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

void Workspace::AddPictureToPatch() {
    if (!firmware || ReplacePictureNumber < 0 || ReplacePictureNumber >= static_cast<int>(ListView1.size())) return;
    firmware::PictureRecord& row = ListView1[static_cast<std::size_t>(ReplacePictureNumber)];
    const std::int64_t oldLength = valHEX(picture.dataLength);

    const bool inMemory = encodedReplacement && !encodedReplacement->empty();
    const auto container = inMemory ? Result<Bytes>(*encodedReplacement) : readFile(DialogFileName, kMaxPictureFileSize);
    if (inMemory)
        loadContainer(*encodedReplacement);
    else
        LoadGPF(DialogFileName);
    if (ActionFailed || !container) return;
    edit::DecodedPicture replacement;
    replacement.width = picture.width;
    replacement.height = picture.height;
    replacement.typeText = picture.typeText;
    replacement.dataLength = static_cast<std::uint64_t>(static_cast<std::uint32_t>(valHEX(picture.dataLength)));
    const auto searchStart = static_cast<std::uint32_t>(valHEX(FreeSpaceStart));
    const edit::PicturePlacement placed =
        edit::placePicture(firmware->bytes(), row, oldLength, *container, replacement, searchStart);
    if (placed.error) return fail(*placed.error);
    if (placed.kind == edit::PicturePlacement::Kind::Moved) {
        FreeSpaceStart = hexText(placed.nextFreeSpace);
        UsedFreeSpace = true;
    }
    if (!PatchInProgress) {
        PatchInProgress = true;
        PicturePatchText = patch::pictureHeader(PhoneModel);
        m_freeSpaceBase = searchStart;
    }
    ReverseByteOrder = false;
    PicturePatchText += placed.section;
    // The patch is kept in memory; the collecting file in the temporary folder mirrors it.
    (void)writeFile(collectingPatchPath(), PicturePatchText);
    row.replaced = true;

    PendingPicture pending{firmware, row, oldLength, std::make_shared<const Bytes>(std::move(*container)),
                           replacement, placed.kind, placed.address, placed.length};
    rememberStep(PendingStep::Kind::AddPicture, m_pendingPictures.size(), {pending}, {});
    m_pendingPictures.push_back(std::move(pending));
    // The journal names one fullflash: pictures of another one opened since are not in it.
    if (m_pendingPictures.front().flash == firmware) journalAppend(journalLine(m_freeSpaceBase, m_pendingPictures.back()));
    ++m_pendingGeneration;
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
    if (NoDialog && encodedReplacement && !encodedReplacement->empty()) {
        // A BMP or PNG just encoded for this picture.
        ReplacePictureNumber = number;
        AddPictureToPatch();
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
        // The pictures already added stay in the patch, marked, to be saved or discarded.
        if (n > 0 && batchCancelled(*this, n, last + 1, MessageKey::MsgCancelledPictures)) return;
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
    encodedReplacement.emplace();
    BMPtoGPFtool();
    if (!ActionFailed) mnuPopup_LoadGPF();
    // Cleared in every case, so that the next single replacement asks for its file again.
    NoDialog = false;
    encodedReplacement.reset();
}

void Workspace::applyEditedPicture(ByteView bmp, int targetType) {
    const firmware::PictureRecord* row = selectedPicture();
    if (row == nullptr) return;
    ActionFailed = false;
    if (isMarked(*row)) {
        showMessage(msg(MessageKey::MsgAlreadyReplaced), std::to_string(row->number));
        ActionFailed = true;
        return;
    }
    // What "Load BMP" with this target does, the file's bytes given instead of asked for.
    TargetTypeField = std::string{static_cast<char>(targetType), '\0'};
    NoDialog = true;
    encodedReplacement.emplace();
    loadBmpAndEncode(bmp, row->numberText() + ".bmp");
    if (!ActionFailed) mnuPopup_LoadGPF();
    NoDialog = false;
    encodedReplacement.reset();
}

bool Workspace::replaceSelectedPictureWith(const std::string& path, int targetType) {
    const firmware::PictureRecord* row = selectedPicture();
    if (row == nullptr) return false;
    const int number = row->number;
    std::string kind = toPath(path).extension().string();
    for (char& c : kind) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    if (kind == ".gpf" || kind == ".gpf2") {
        // Load GPF with the file already chosen.
        NoDialog = true;
        PresetPath = path;
        mnuPopup_LoadGPF();
        NoDialog = false;
    } else if (kind == ".bmp") {
        if (CheckFexist(path)) {
            showMessage(msg(MessageKey::MsgFileNotExist));
            return false;
        }
        const auto file = readFile(path, kMaxPictureFileSize);
        if (!file) {
            fail(file.error());
            return false;
        }
        applyEditedPicture(*file, targetType);
    } else if (kind == ".png") {
        TargetTypeField = std::string{static_cast<char>(targetType), '\0'};
        ReplacePictureFromPNG(path);
    } else {
        return false;
    }
    return ListView1[static_cast<std::size_t>(number)].replaced && !ActionFailed;
}

bool Workspace::replaceSelectedGlyphWith(const std::string& path) {
    const fonts::GlyphRecord* row = selectedGlyph();
    if (row == nullptr || !firmware) return false;
    const std::size_t index = static_cast<std::size_t>(row->code - 1);
    if (CheckFexist(path)) {
        showMessage(msg(MessageKey::MsgFileNotExist));
        return false;
    }
    const auto file = readFile(path, kMaxPictureFileSize);
    if (!file) {
        fail(file.error());
        return false;
    }
    applyEditedGlyph(*file);
    return ListView2[index].replaced && !ActionFailed;
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
    encodedReplacement.emplace();
    PNGtoGPFtool();
    if (!ActionFailed) mnuPopup_LoadGPF();
    NoDialog = false;
    encodedReplacement.reset();
}

void Workspace::ReplacePicturesFromBMPFolder() {
    const std::string folder = fBrowseForFolder(msg(MessageKey::MsgChooseOpenFolder));
    if (folder.empty()) return;
    const int last = std::min(PictureMaxIndex, static_cast<int>(ListView1.size()) - 1);
    for (int n = 0; n <= last; ++n) {
        if (n > 0 && batchCancelled(*this, n, last + 1, MessageKey::MsgCancelledPictures)) return;
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
        encodedReplacement.emplace();
        BMPtoGPFtool();
        if (ActionFailed) {
            encodedReplacement.reset();
            NoDialog = false;
            BmpFolderMode = false;
            return;  // a bitmap that cannot be converted ends the whole command
        }
        mnuPopup_LoadGPF();
        encodedReplacement.reset();
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
    endPicturePatch();
    // Written: nothing of it is pending any more, and no step of it can be taken back.
    m_pendingPictures.clear();
    forgetSteps(true);
    pendingChanged(true);
    showSuccess();
}

void Workspace::mnuPopup_DiscardPatch() {
    if (!m_pendingPictures.empty()) {
        // Undo brings the discarded pictures back.
        rememberStep(PendingStep::Kind::DropPictures, 0, m_pendingPictures, {});
        m_pendingPictures.clear();
        pendingChanged(true);
    }
    endPicturePatch();
}

void Workspace::endPicturePatch() {
    PatchInProgress = false;
    PicturePatchText.clear();
    deleteFile(collectingPatchPath());
    for (auto& row : ListView1) row.replaced = false;
}

}  // namespace korvatek::app

// The picture list: showing the selected picture, and saving one or all of them.
#include "base/hex_text.h"
#include "app/batch_cancel.h"
#include "app/workspace.h"
#include "edit/picture_decode.h"

namespace korvatek::app {

using settings::MessageKey;

void Workspace::selectPicture(int row) {
    if (row >= 0 && row < static_cast<int>(ListView1.size())) ListView1Selected = row;
}

void Workspace::ListView1_Click() {
    ShowOnScreen = true;
    SuppressAlphaPrompt = true;  // browsing never asks about the alpha channel
    LoadPIC();
}

void Workspace::LoadPIC() {
    const firmware::PictureRecord* row = selectedPicture();
    if (row == nullptr || !firmware) return;
    ActionFailed = false;
    lastDecodeRefused = false;

    if (row->dataOffset() == 0) {
        picture.dataLength.assign(1, '0');  // nothing is stored for it: a replacement goes to free space
        fail(makeError(ErrorCode::BadOffset));
        ShownPicture.reset();
        return;
    }
    // The depth is known before decoding: a 24-bit picture asks whether to keep its alpha.
    const int bits = edit::pictureBits(row->listedType(), picture.bits);
    PICinfo.clear();
    OutputDepth = 24;
    if (!SuppressAlphaPrompt && bits == 24) {
        if (ui.askOkCancel(msg(MessageKey::MsgSaveAlpha))) OutputDepth = 32;
    } else if (SuppressAlphaPrompt && bits == 24 && BatchKeepAlpha) {
        OutputDepth = 32;
    }
    preview = Preview{Preview::Source::Picture, row->width, row->height};
    const edit::DecodedPicture decoded =
        edit::decodeFlashPicture(firmware->bytes(), *row, OutputDepth, picture.bits, canvas);
    takeDecoded(decoded);
    firmwarePosition = decoded.end;
    if (decoded.stopped) {
        // A picture that does not fit the canvas stops here, as a run-time error did.
        fail(*decoded.stopped);
        ShownPicture.reset();
        return;
    }
    ShownPicture = row->number;
    if (decoded.refused) {
        showMessage(errorText(*decoded.refused));
        lastDecodeRefused = true;
    }
    PICinfo = edit::pictureInformation(decoded);
    ActionFailed = false;  // the decoder's message has already been shown
}

std::optional<std::string> Workspace::copyPictureCell(int column) const {
    const firmware::PictureRecord* row = selectedPicture();
    if (row == nullptr || column < 1 || column > 8) return std::nullopt;
    return firmware::pictureCellText(*row, column);
}

// ---- one-item saves

void Workspace::mnuPopup_SaveGPF() {
    const firmware::PictureRecord* row = selectedPicture();
    if (row == nullptr) return;
    ActionFailed = false;
    if (ShownPicture != row->number) {
        SuppressAlphaPrompt = true;  // SaveGPF needs the read position that decoding leaves
        LoadPIC();
        if (ActionFailed) return;
    }
    SingleSave = true;
    SaveGPF();
    SingleSave = false;
    if (!ActionFailed) showSuccess();
}

void Workspace::mnuPopup_SaveBMP() {
    const firmware::PictureRecord* row = selectedPicture();
    if (row == nullptr) return;
    ActionFailed = false;
    if (ShownPicture != row->number) {
        SuppressAlphaPrompt = false;
        LoadPIC();
        if (ActionFailed) return;
    }
    SingleSave = true;
    GlyphShown = false;
    SaveBMP();
    SingleSave = false;
    if (!ActionFailed) showSuccess();
}

// ---- batches

void Workspace::mnuPopup_SaveAllGPF() {
    const std::string folder = fBrowseForFolder(msg(MessageKey::MsgChooseSaveFolder));
    if (folder.empty()) return;
    OutputFolder = folder;
    const int last = std::min(PictureMaxIndex, static_cast<int>(ListView1.size()) - 1);
    for (int n = 0; n <= last; ++n) {
        // Each file is whole once SaveGPF returns: a cancel leaves the ones before it.
        if (n > 0 && batchCancelled(*this, n, last + 1, MessageKey::MsgCancelledPictures)) return;
        BatchCounter = n;
        selectPicture(n);
        SuppressAlphaPrompt = true;
        LoadPIC();
        // A row that cannot be decoded at all is not written; the batch goes on.
        if (!ActionFailed) {
            SingleSave = false;
            SaveGPF();
        }
        ActionFailed = false;
        setProgress(PictureMaxIndex > 0 ? static_cast<float>(n) / PictureMaxIndex * 100.0f : 100.0);
    }
    BatchCounter = last + 1;
    showSuccess();
}

void Workspace::mnuPopup_SaveAllBMP() {
    const std::string folder = fBrowseForFolder(msg(MessageKey::MsgChooseSaveFolder));
    if (folder.empty()) return;
    BmpOutputFolder = folder;
    BatchKeepAlpha = ui.askOkCancel(msg(MessageKey::MsgSaveAlpha));
    const int last = std::min(PictureMaxIndex, static_cast<int>(ListView1.size()) - 1);
    for (int n = 0; n <= last; ++n) {
        if (n > 0 && batchCancelled(*this, n, last + 1, MessageKey::MsgCancelledPictures)) {
            BatchKeepAlpha = false;  // a single save afterwards asks again
            return;
        }
        BatchCounter = n;
        selectPicture(n);
        SuppressAlphaPrompt = true;
        LoadPIC();
        if (!ActionFailed) {
            SingleSave = false;
            GlyphShown = false;
            SaveBMP();
        }
        ActionFailed = false;
        setProgress(PictureMaxIndex > 0 ? static_cast<float>(n) / PictureMaxIndex * 100.0f : 100.0);
    }
    BatchCounter = last + 1;
    BatchKeepAlpha = false;
    showSuccess();
}

}  // namespace korvatek::app

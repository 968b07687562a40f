// Opening a file: a fullflash is identified and listed; containers and theme cache files go
// to their loaders.
#include "base/hex_text.h"
#include "app/workspace.h"
#include "firmware/identification.h"
#include "firmware/layout.h"
#include "firmware/picture_index_table.h"

namespace korvatek::app {

using settings::MessageKey;

void Workspace::mnu_FileOpen() {
    ActionFailed = false;
    std::string path;
    if (!PathGiven) {
        std::string fileName;
        bool cancelled = false;
        OSdialog(cancelled, "All supported files (*.bin; *.gpf; *.gpf2; *.dat)|*.bin; *.gpf; *.gpf2; *.dat",
                 "fullflash", fileName, false);
        if (cancelled) return;
        // The last three characters decide, exactly as typed: "BIN" and "DAT" are containers.
        const std::string tail = fileName.size() >= 3 ? fileName.substr(fileName.size() - 3) : fileName;
        if (tail != "bin") {
            if (tail == "dat")
                LoadDAT(fileName);
            else
                LoadGPF(fileName);
            return;
        }
        path = fileName;
        PICinfo.clear();
        preview = Preview{};
        ListView1.clear();
        ListView1Selected = -1;
        Ftype.clear();
        FtypeIndex = -1;
        firmware.reset();
    } else {
        path = CommandLinePath;
        if (!path.empty() && path.back() == '"') path = path.size() >= 2 ? path.substr(1, path.size() - 2) : "";
    }
    FirmwarePath = path;
    openFirmware(path);
}

void Workspace::openFirmware(const std::string& path) {
    auto opened = ReadOnlyFile::open(path, kMaxFlashFileSize);
    if (!opened) {
        fail(opened.error());
        return;
    }
    firmware = *opened;
    ShownPicture.reset();  // nothing of this file has been decoded yet
    ByteReader flash(firmware->bytes());

    const std::string model = firmware::readPhoneModel(flash);
    if (!firmware::isSupportedModel(model)) {
        showMessage(msg(MessageKey::MsgModelNotSupported) + model);
        firmware.reset();
        ActionFailed = true;
        return;
    }
    // Every fixed structure read below must lie inside the file.
    if (firmware->size() < firmware::kMinimumFlashSize) {
        showMessage(msg(MessageKey::MsgFlashTooShort) + std::to_string(firmware->size()));
        firmware.reset();
        ActionFailed = true;
        return;
    }
    PhoneModel = model;

    ReverseByteOrder = true;
    flash.seek(firmware::kFontAreaPointerOffset);
    FontAreaOffset = std::to_string(firmware::flashOffsetOf(flash.u32le()));
    flash.seek(firmware::kFontArrayPointerOffset);
    FontArrayAddress = flash.bytes(4);
    Ftype = firmware::readFontSelector(flash);
    FtypeIndex = -1;

    applyLanguage(LanguageIndex);

    LanguagePack = firmware::readLanguagePack(flash);
    if (firmware::isSupportedLanguagePack(LanguagePack)) {
        ListView1 = firmware::PITload(flash, static_cast<std::uint32_t>(valHEX(PITaddress)), PictureMaxIndex,
                                      [this](double percent) { setProgress(percent); });
        CurrentPicture = PictureMaxIndex + 1;
        firmwarePosition = flash.position();
    } else {
        showMessage(msg(MessageKey::MsgFirmwareNotSupported) + LanguagePack + ". " + msg(MessageKey::MsgFontsOnly));
    }
    FirmwareId = firmware::identifyFirmware(Ftype);
}

}  // namespace korvatek::app

// Opening a file: a fullflash is identified and listed; containers and theme cache files go
// to their loaders.
#include "base/hex_text.h"
#include "app/workspace.h"
#include "edit/opened_flash.h"

namespace korvatek::app {

using settings::MessageKey;

void Workspace::mnu_FileOpen() {
    ActionFailed = false;
    if (!PathGiven) {
        std::string fileName;
        bool cancelled = false;
        OSdialog(cancelled, "All supported files (*.bin; *.gpf; *.gpf2; *.dat)|*.bin; *.gpf; *.gpf2; *.dat",
                 "fullflash", fileName, false);
        if (cancelled) return;
        return openChosenFile(fileName);
    }
    std::string path = CommandLinePath;
    if (!path.empty() && path.back() == '"') path = path.size() >= 2 ? path.substr(1, path.size() - 2) : "";
    FirmwarePath = path;
    openFirmware(path);
}

void Workspace::openChosenFile(const std::string& fileName) {
    ActionFailed = false;
    // The last three characters decide, exactly as typed: "BIN" and "DAT" are containers.
    const std::string tail = fileName.size() >= 3 ? fileName.substr(fileName.size() - 3) : fileName;
    if (tail != "bin") {
        if (tail == "dat")
            LoadDAT(fileName);
        else
            LoadGPF(fileName);
        return;
    }
    PICinfo.clear();
    preview = Preview{};
    ListView1.clear();
    ListView1Selected = -1;
    ListView2.clear();
    ListView2Selected = -1;
    Ftype.clear();
    FtypeIndex = -1;
    firmware.reset();
    FirmwarePath = fileName;
    openFirmware(fileName);
}

void Workspace::openFirmware(const std::string& path) {
    auto opened = edit::openFlash(path, static_cast<std::uint32_t>(valHEX(PITaddress)), PictureMaxIndex,
                                  [this](double percent) { setProgress(percent); });
    ShownPicture.reset();  // nothing of this file has been decoded yet
    if (!opened) {
        firmware.reset();
        fail(opened.error());
        return;
    }
    const edit::OpenedFlash& flash = *opened;
    firmware = flash.file;
    PhoneModel = flash.model;
    ReverseByteOrder = true;
    FontAreaOffset = std::to_string(flash.fontAreaOffset);
    FontArrayAddress = flash.fontArrayAddress;
    Ftype = flash.fonts;
    FtypeIndex = -1;
    applyLanguage(LanguageIndex);
    LanguagePack = flash.pack;
    if (flash.packSupported) {
        ListView1 = flash.pictures;
        CurrentPicture = PictureMaxIndex + 1;
        firmwarePosition = flash.positionAfterTable;
    } else {
        showMessage(msg(MessageKey::MsgFirmwareNotSupported) + LanguagePack + ". " + msg(MessageKey::MsgFontsOnly));
    }
    FirmwareId = flash.firmwareId;
}

}  // namespace korvatek::app

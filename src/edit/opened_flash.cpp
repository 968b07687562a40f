#include "edit/opened_flash.h"

#include "firmware/layout.h"
#include "firmware/picture_index_table.h"

namespace korvatek::edit {

std::uint8_t OpenedFlash::fontSize(std::size_t n) const {
    ByteReader flash(bytes(), static_cast<std::uint64_t>(fonts.at(n).descriptorOffset) + 4);
    return flash.u8();
}

Result<OpenedFlash> openFlash(const std::string& path, std::uint32_t tableStart, int maxIndex,
                              const std::function<void(double)>& progress) {
    auto opened = app::ReadOnlyFile::open(path, app::kMaxFlashFileSize);
    if (!opened) return opened.error();
    OpenedFlash flash;
    flash.path = path;
    flash.file = *opened;
    ByteReader in(flash.bytes());

    flash.model = firmware::readPhoneModel(in);
    if (!firmware::isSupportedModel(flash.model)) return makeError(ErrorCode::ModelNotSupported, flash.model);
    // Every fixed structure read below must lie inside the file.
    if (flash.size() < firmware::kMinimumFlashSize)
        return makeError(ErrorCode::FlashTooShort, std::to_string(flash.size()));

    in.seek(firmware::kFontAreaPointerOffset);
    flash.fontAreaOffset = firmware::flashOffsetOf(in.u32le());
    in.seek(firmware::kFontArrayPointerOffset);
    flash.fontArrayAddress = in.bytes(4);
    flash.fonts = firmware::readFontSelector(in);
    flash.pack = firmware::readLanguagePack(in);
    flash.packSupported = firmware::isSupportedLanguagePack(flash.pack);
    if (flash.packSupported) {
        flash.pictures = firmware::PITload(in, tableStart, maxIndex, progress);
        flash.positionAfterTable = in.position();
    }
    flash.firmwareId = firmware::identifyFirmware(flash.fonts);
    return flash;
}

}  // namespace korvatek::edit

#include "edit/picture_patch.h"

#include "base/hex_text.h"
#include "containers/gpf_header.h"
#include "firmware/free_space.h"
#include "patch/vkp_text.h"

namespace korvatek::edit {

namespace {

// A size in the index record: its 16-bit value, low byte first, from a hex text without
// padding (one to four digits).
std::string sizeField(int value) {
    std::string hex = app::hexText(static_cast<std::uint16_t>(value));
    if (hex.size() == 1) return std::string("0").append(hex).append("00");
    if (hex.size() == 2) return hex.append("00");
    if (hex.size() == 3) return hex.substr(1, 2).append("0").append(hex.substr(0, 1));
    return hex;
}

}  // namespace

std::int64_t listedLength(std::uint64_t length) { return app::valHEX(app::hexText(length)); }

PicturePlacement placePicture(ByteView flash, const firmware::PictureRecord& record, std::int64_t oldLength,
                              ByteView container, const DecodedPicture& replacement, std::uint32_t freeSpaceStart) {
    PicturePlacement placed;
    placed.length = listedLength(replacement.dataLength);
    placed.nextFreeSpace = freeSpaceStart;
    std::string target;  // the data's offset as hex text
    if (oldLength < placed.length) {
        const auto found = firmware::FindFreeSpace(flash, static_cast<std::uint32_t>(placed.length), freeSpaceStart);
        if (!found.address) {
            placed.error = makeError(ErrorCode::NoFreeSpace);
            return placed;
        }
        placed.kind = PicturePlacement::Kind::Moved;
        placed.nextFreeSpace = found.nextStart;
        target = app::hexText(*found.address);
    } else {
        placed.kind = PicturePlacement::Kind::InPlace;
        target = firmware::pictureCellText(record, 7);
    }
    placed.address = static_cast<std::uint32_t>(app::valHEX(target));

    std::string& section = placed.section;
    section += patch::kLineEnd;
    section += patch::sectionLine(record.number) + patch::kLineEnd;
    // The index record: new width, height, type field, "0000" and the address "A" + target,
    // low byte first.
    ByteReader in(flash, static_cast<std::uint64_t>(app::valHEX(app::hexText(record.recordOffset))));
    const Bytes oldRecord = in.bytes(12);
    const std::string typeText = app::ASCtext2HEXtext(bytesOf(replacement.typeText), false);
    const std::string addressText = app::ASCtext2HEXtext(app::HEXtext2ASCtext("A" + target, true), false);
    for (const std::string& piece : {std::string("0"), app::hexText(record.recordOffset), std::string(": "),
                                     app::ASCtext2HEXtext(oldRecord, false), std::string(" "),
                                     sizeField(replacement.width), sizeField(replacement.height), typeText,
                                     std::string("0000"), addressText, std::string(patch::kLineEnd)})
        section += piece;
    section += patch::kLineEnd;
    // The data, 16 bytes a line, the last line always whole: its new bytes beyond the data
    // come from the container's padding, its old bytes from whatever follows in the image.
    const std::uint64_t lines = (static_cast<std::uint64_t>(placed.length) + 15) / 16;
    ByteReader data(container, containers::kGpfHeaderSize);
    const Bytes newData = data.bytes(static_cast<std::size_t>(lines * 16));
    section += patch::patchLines(flash, placed.address, newData);
    return placed;
}

PicturePlacement PicturePatch::add(const firmware::PictureRecord& record, std::int64_t oldLength, ByteView container,
                                   const DecodedPicture& replacement) {
    PicturePlacement placed = placePicture(m_flash.bytes(), record, oldLength, container, replacement, m_freeSpace);
    if (placed.error) return placed;
    m_freeSpace = placed.nextFreeSpace;
    if (m_text.empty()) m_text = patch::pictureHeader(m_flash.model);
    m_text += placed.section;
    m_replaced.insert(record.number);
    return placed;
}

}  // namespace korvatek::edit

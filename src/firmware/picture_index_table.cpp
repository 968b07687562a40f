#include "firmware/picture_index_table.h"

#include "base/hex_text.h"
#include "firmware/layout.h"

namespace korvatek::firmware {

const std::string& PictureRecord::cell(int column) const {
    return const_cast<PictureRecord*>(this)->cell(column);
}

std::string& PictureRecord::cell(int column) {
    switch (column) {
        case 1: return number;
        case 2: return hex;
        case 3: return width;
        case 4: return height;
        case 5: return type;
        case 6: return PIToffset;
        case 7: return PICoffset;
        default: return status;
    }
}

std::string typeCellText(std::uint8_t type) {
    std::string text = app::hexText(type);
    if (type < 10) text.insert(text.begin(), '0');
    return text + "00";
}

PictureRecord makePictureRecord(int n, std::uint64_t recordOffset, const std::uint8_t* record) {
    PictureRecord row;
    row.number = app::zeroPadded(n, 4);
    row.hex = app::hexText(static_cast<std::uint64_t>(n));
    if (n < 16) row.hex.insert(row.hex.begin(), '0');
    if (n < 256) row.hex.insert(row.hex.begin(), '0');
    // Sizes are 16-bit signed numbers: 0x8000 and above show negative.
    row.width = std::to_string(static_cast<std::int16_t>(record[0] | (record[1] << 8)));
    row.height = std::to_string(static_cast<std::int16_t>(record[2] | (record[3] << 8)));
    row.type = typeCellText(record[4]);
    row.PIToffset = app::hexText(recordOffset);
    // The data address as 8 hex digits without its top digit: the fullflash offset.
    row.PICoffset = app::ASCtext2HEXtext(ByteView(record + 8, 4), true).substr(1);
    return row;
}

std::vector<PictureRecord> PITload(ByteReader& flash, std::uint32_t tableStart, int maxIndex,
                                   const std::function<void(double)>& progress) {
    // The old walk positioned the file with a 2-byte read ending just before the table.
    flash.seek(tableStart);
    std::vector<PictureRecord> rows;
    rows.reserve(static_cast<std::size_t>(maxIndex < 0 ? 0 : maxIndex + 1));
    std::uint8_t record[kPictureRecordSize];
    for (int n = 0; n <= maxIndex; ++n) {
        const std::uint64_t offset = flash.position();
        flash.read(record, sizeof record);
        rows.push_back(makePictureRecord(n, offset, record));
        if (progress) progress(maxIndex > 0 ? static_cast<double>(n) / maxIndex * 100.0 : 100.0);
    }
    return rows;
}

}  // namespace korvatek::firmware

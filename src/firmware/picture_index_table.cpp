#include "firmware/picture_index_table.h"

#include "firmware/layout.h"

namespace korvatek::firmware {

PictureRecord makePictureRecord(int n, std::uint64_t recordOffset, const std::uint8_t* record) {
    ByteReader in(ByteView(record, kPictureRecordSize));
    PictureRecord row;
    row.number = n;
    row.recordOffset = recordOffset;
    row.width = static_cast<std::int16_t>(in.u16le());
    row.height = static_cast<std::int16_t>(in.u16le());
    row.type = in.u8();
    in.seek(8);
    row.dataAddress = in.u32le();
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

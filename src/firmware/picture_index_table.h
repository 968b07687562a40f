#pragma once
// PITload: the picture index table of a fullflash, 1701 records of 12 bytes (u16 width,
// u16 height, u8 type, 3 unread bytes, u32 data address, all little-endian), turned into
// the rows of the picture list. Nothing is validated: every record is listed.

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "base/byte_reader.h"
#include "firmware/picture_record.h"

namespace korvatek::firmware {

// The "Type" cell: hex of the byte, a "0" in front only below decimal 10, then "00". So 0x05
// is "0500" and 0x85 "8500", but 0x0A..0x0F are "A00".."F00" and read back as 0xA0..0xF0.
std::string typeCellText(std::uint8_t type);

// The row of picture n whose 12-byte record lies at recordOffset.
PictureRecord makePictureRecord(int n, std::uint64_t recordOffset, const std::uint8_t* record);

// Walks records 0..maxIndex from tableStart; progress gets n / maxIndex * 100 after each row.
std::vector<PictureRecord> PITload(ByteReader& flash, std::uint32_t tableStart, int maxIndex,
                                   const std::function<void(double)>& progress);

}  // namespace korvatek::firmware

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

// The row of picture n whose 12-byte record lies at recordOffset.
PictureRecord makePictureRecord(int n, std::uint64_t recordOffset, const std::uint8_t* record);

// Walks records 0..maxIndex from tableStart; progress gets n / maxIndex * 100 after each row.
std::vector<PictureRecord> PITload(ByteReader& flash, std::uint32_t tableStart, int maxIndex,
                                   const std::function<void(double)>& progress);

}  // namespace korvatek::firmware

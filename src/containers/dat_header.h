#pragma once
// Theme cache pictures (.dat): a 5-byte header (u16 width, u16 height, u8 type code, all
// little-endian) and the picture data as the firmware stores it; no magic, no padding.

#include <string>
#include <string_view>

#include "base/byte_reader.h"
#include "base/bytes.h"

namespace korvatek::containers {

inline constexpr std::size_t kDatHeaderSize = 5;

struct DatHeader {
    int width = 0;          // 16-bit signed numbers, as every size of the tool
    int height = 0;
    std::string typeText;   // one character: the type code
};

// Reads the header; the caller checks the 240 x 320 limit (the values are read all the same).
DatHeader LoadDAThead(ByteReader& in);

// Width and height as two little-endian bytes each, then the first character of the type text.
Bytes SaveDAThead(int width, int height, std::string_view typeText);

}  // namespace korvatek::containers

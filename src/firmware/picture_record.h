#pragma once
// PictureRecord: one row of the picture list. Every cell is text, and every later command
// parses the cells back, so their exact forms are the record.

#include <array>
#include <string>

namespace korvatek::firmware {

struct PictureRecord {
    std::string number;     // 1 "#": decimal, zero-padded to 4 digits
    std::string hex;        // 2 "hex": upper-case hex, zero-padded to 3 digits
    std::string width;      // 3 "width": decimal (a 16-bit signed number)
    std::string height;     // 4 "height"
    std::string type;       // 5 "Type": the type byte in hex + "00" (see typeCellText)
    std::string PIToffset;  // 6 "PIToffset": offset of the index record, hex, no padding
    std::string PICoffset;  // 7 "PICoffset": last 7 hex digits of the data address
    std::string status = std::string(1, '\0');  // 8 "*": "*" once replaced

    // Cells by column, 1 to 8.
    const std::string& cell(int column) const;
    std::string& cell(int column);
};

inline constexpr std::array<const char*, 8> kPictureColumnCaptions{
    "#", "hex", "width", "height", "Type", "PIToffset", "PICoffset", "*"};

}  // namespace korvatek::firmware

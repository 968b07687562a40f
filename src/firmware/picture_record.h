#pragma once
// PictureRecord: one picture of the index table, as numbers. The list and the command line
// show it through pictureCellText, whose forms are the list's cells; the commands that read a
// cell back (the type, the offsets) do so through the accessors below, which keep what the
// cell's text form gives back.

#include <array>
#include <cstdint>
#include <string>

namespace korvatek::firmware {

struct PictureRecord {
    int number = 0;                   // the picture's number, its row in the list
    std::uint64_t recordOffset = 0;   // where its 12-byte index record lies
    std::int16_t width = 0;           // sizes are 16-bit signed: 0x8000 and above are negative
    std::int16_t height = 0;
    std::uint8_t type = 0;            // the type byte as stored
    std::uint32_t dataAddress = 0;    // the address field as stored (its top digit is the bank)
    bool replaced = false;            // a replacement waits in the picture patch

    // The data's fullflash offset: the address without its top hex digit.
    std::uint32_t dataOffset() const { return dataAddress & 0x0FFFFFFFu; }
    // The type as the list's Type cell gives it back: its first two characters read as hex,
    // so 0x0A..0x0F (shown "A00".."F00") come back as 0xA0..0xF0.
    int listedType() const { return type >= 0x0A && type <= 0x0F ? type << 4 : type; }
    // The number as file names and the list show it: four digits ("0005").
    std::string numberText() const;
};

// The text of column 1..8 ("#", "hex", "width", "height", "Type", "PIToffset", "PICoffset", "*").
std::string pictureCellText(const PictureRecord& record, int column);

// The "Type" cell: hex of the byte, a "0" in front only below decimal 10, then "00". So 0x05
// is "0500" and 0x85 "8500", but 0x0A..0x0F are "A00".."F00".
std::string typeCellText(std::uint8_t type);

inline constexpr std::array<const char*, 8> kPictureColumnCaptions{
    "#", "hex", "width", "height", "Type", "PIToffset", "PICoffset", "*"};

}  // namespace korvatek::firmware

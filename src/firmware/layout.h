#pragma once
// Fixed positions of the supported firmware (fullflash offsets, 0-based). A fullflash holds
// the phone's flash from 0xA0000000 on, so an offset is a phone address without its top digit.

#include <cstdint>

namespace korvatek::firmware {

inline constexpr std::uint32_t kPhoneAddressBase = 0xA0000000;

// Identification
inline constexpr std::uint32_t kModelOffset = 0x8FC70;          // 4 bytes ASCII, 0x00-padded
inline constexpr std::uint32_t kLanguagePackOffset = 0x81081;   // 2 ASCII digits
inline constexpr std::uint32_t kFontArrayPointerOffset = 0x15C001C;  // address of font descriptors
inline constexpr std::uint32_t kFontAreaPointerOffset = 0x15C0020;   // base of glyph references
inline constexpr std::uint32_t kFontCountOffset = 0x15C0024;         // 1 byte

// Font descriptor array positions that tell the two supported firmwares apart
inline constexpr std::uint32_t kFontArrayE71v42 = 0x18B5A64;    // "lg91_E71_v42"
inline constexpr std::uint32_t kFontArrayEl71v41 = 0x185E184;   // "lg03_El71_v41"
inline constexpr std::uint32_t kFontDescriptorSize = 24;

// Picture index table
inline constexpr std::uint32_t kPictureTableOffset = 0x1B01958;   // "1B01958"
inline constexpr int kPictureMaxIndex = 1700;                     // records 0..1700
inline constexpr int kPictureCount = kPictureMaxIndex + 1;
inline constexpr std::uint32_t kPictureRecordSize = 12;
inline constexpr std::uint32_t kPictureTableEnd = kPictureTableOffset + kPictureCount * kPictureRecordSize;

// Picture data area, as the Make tool rebuilds it (its start is also the "font table" text)
inline constexpr std::uint32_t kPictureDataStart = 0x1B07068;     // "1B07068"
inline constexpr std::uint32_t kPictureDataLimit = 0x1FA3957;     // "1FA3957"

// Free-space search
inline constexpr std::uint32_t kFreeSpaceSearchStart = 0x1320000; // "1320000"
inline constexpr std::uint32_t kReservedLow1 = 0x15C0000;
inline constexpr std::uint32_t kReservedHigh1 = 0x1950000;
inline constexpr std::uint32_t kReservedJump1 = 0x1960000;
inline constexpr std::uint32_t kReservedLow2 = 0x1B00000;
inline constexpr std::uint32_t kReservedHigh2 = 0x1FB0000;

// The smallest image that holds every fixed structure the tool reads on opening.
inline constexpr std::uint32_t kMinimumFlashSize = kPictureTableEnd;

}  // namespace korvatek::firmware

#pragma once
// The synthetic demonstration fullflash: 32 MiB that pass every identification check of the
// E71 v42 firmware, with a full picture index table, three fonts and erased flash where
// replaced pictures are put. It holds no firmware from any phone: every byte is made here,
// the same on every run and platform.

#include <array>
#include <cstdint>

#include "base/bytes.h"
#include "firmware/layout.h"

namespace korvatek::firmware {

inline constexpr std::uint32_t kDemoFlashSize = 0x2000000;

// Glyph references of every font are relative to this offset (the pointer at 0x15C0020).
inline constexpr std::uint32_t kDemoFontAreaOffset = 0x1840000;
inline constexpr std::uint32_t kDemoFontAreaSize = 0x40000;
inline constexpr int kDemoFontCount = 3;
inline constexpr std::array<int, kDemoFontCount> kDemoFontEntries = {800, 256, 224};
inline constexpr std::array<std::uint8_t, kDemoFontCount> kDemoFontSizes = {0x10, 11, 26};
// The glyph tables follow the font descriptors, one after another.
inline constexpr std::uint32_t kDemoGlyphTablesOffset = 0x18B5AB0;
// Font 1 gives these entries references of the form 0xFFFFxxxx (record at area + 0xxxxx,
// below the records of every ordinary reference).
inline constexpr int kDemoFfReferenceFont = 1;
inline constexpr int kDemoFfReferenceFirst = 0xC0;
inline constexpr int kDemoFfReferenceLast = 0xC5;

// Erased flash (0xFF): where the free-space search starts, and the tail of the image. The
// first stretch begins a little below the search start so that a search finds 0x1320000.
inline constexpr std::uint32_t kDemoErasedStart = 0x1300000;
inline constexpr std::uint32_t kDemoErasedEnd = 0x1500000;
inline constexpr std::uint32_t kDemoErasedTailStart = kReservedHigh2;  // 0x1FB0000 to the end

// Unused and damaged picture records. Every other picture number holds an ordinary picture.
inline constexpr int kDemoPictureAllZero = 211;      // 12 bytes 0x00 (data offset 0)
inline constexpr int kDemoPictureAllFF = 640;        // 12 bytes 0xFF
inline constexpr int kDemoPictureUnknownType = 977;  // 16 x 16, type 0x03, data of picture 976
inline constexpr int kDemoPictureMonoRle = 978;      // 16 x 16, type 0x81, data of picture 976
inline constexpr int kDemoPictureZeroWidth = 1333;   // 0 x 24, type 0x88, data of picture 1332
inline constexpr int kDemoPictureZeroHeight = 1334;  // 32 x 0, type 0x05, data of picture 1332
inline constexpr std::array<int, 6> kDemoOddPictures = {kDemoPictureAllZero,     kDemoPictureAllFF,
                                                        kDemoPictureUnknownType, kDemoPictureMonoRle,
                                                        kDemoPictureZeroWidth,   kDemoPictureZeroHeight};

// The whole image: kDemoFlashSize bytes.
Bytes makeDemoFlash();

}  // namespace korvatek::firmware

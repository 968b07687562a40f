#pragma once
// The Graphic Patch File containers: a 32-byte header and one picture's data exactly as the
// firmware stores it, padded with zeros. Version 1 ("GraphicPatchFile", .gpf) keeps width and
// height in one byte each; version 2 ("GraphPatchFile_2", .gpf2) in two bytes each.

#include <string>
#include <string_view>

#include "base/byte_reader.h"
#include "base/bytes.h"
#include "base/result.h"

namespace korvatek::containers {

inline constexpr std::string_view kGpfMagic = "GraphicPatchFile";
inline constexpr std::string_view kGpf2Magic = "GraphPatchFile_2";
inline constexpr std::size_t kGpfMagicSize = 16;
inline constexpr std::size_t kGpfHeaderSize = 32;
// Field offsets
inline constexpr std::size_t kGpfReservedField = 16;   // 4 zero bytes in both versions
inline constexpr std::size_t kGpf1WidthField = 20;     // 1 byte
inline constexpr std::size_t kGpf1HeightField = 21;    // 1 byte
inline constexpr std::size_t kGpf1TypeField = 22;      // type code, 0x00
inline constexpr std::size_t kGpf2WidthField = 20;     // 2 bytes little-endian
inline constexpr std::size_t kGpf2HeightField = 22;    // 2 bytes little-endian
inline constexpr std::size_t kGpf2TypeField = 24;      // type code, 0x00
inline constexpr int kGpf1MaxSize = 255;

struct GpfHeader {
    bool isGPF2 = false;
    int width = 0;            // version 2 sizes are 16-bit signed numbers (0xFFFF reads -1)
    int height = 0;
    std::string typeText;     // the two-byte type field as read: type code, then 0x00
};

// Reads the header from the reader's position; an unknown magic is MsgUnknownFile.
Result<GpfHeader> LoadGPFhead(ByteReader& in);

// The header of the chosen version. The type text is written as it stands (a one-character
// type text from a theme cache file gives a 31-byte header). Version 1 keeps the low byte of
// width and height: callers refuse sizes above 255 first.
Bytes SaveGPFhead(bool isGPF2, int width, int height, std::string_view typeText);

// Appends 16 - (length mod 16) zero bytes: always at least one, a multiple of 16 after.
void padContainer(Bytes& file);

// The type code of a type text: the character code of its first byte (0 when empty).
inline int typeCodeOf(std::string_view typeText) {
    return typeText.empty() ? 0 : static_cast<unsigned char>(typeText.front());
}

}  // namespace korvatek::containers

#pragma once
// The firmware's one-byte picture type code (PictureTypeCode). Bit 7 marks run-length
// compressed data; the rest selects the pixel format.

#include <cstdint>
#include <optional>
#include <string>

namespace korvatek::codec {

inline constexpr int kMaxPictureWidth = 240;
inline constexpr int kMaxPictureHeight = 320;

// Bits per pixel for the codes that exist (0x01, 0x05/0x85, 0x07/0x87, 0x08/0x88, 0x0A/0x8A);
// nothing for any other code: the caller then keeps the depth of the previous picture.
std::optional<int> bitsForTypeCode(int typeCode);

// "Yes" when the code is above 0x80, "No" otherwise; the decoder goes by this text.
inline std::string compressionText(int typeCode) { return typeCode > 0x80 ? "Yes" : "No"; }

// Bytes one sample takes in the data: 1 for 8-bit, 2 for 12- and 16-bit, 4 for 24-bit.
int sampleSize(int bits);

}  // namespace korvatek::codec

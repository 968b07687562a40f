#pragma once
// One firmware sample to one canvas cell. The cell's blue, green and red are also the colour
// the preview plots.

#include <cstdint>

#include "codec/pixel_canvas.h"

namespace korvatek::codec {

// 8-bit RGB 3-3-2; 0xC0 is the transparent key.
Cell BIT8toRGBbin(std::uint8_t v);
// 12-bit 4-4-4 from the bytes in data order; AA FA is the transparent key.
Cell BIT12toRGBbin(std::uint8_t b0, std::uint8_t b1);
// 16-bit 5-6-5 from the bytes in data order; 00 E0 is the transparent key.
Cell BIT16toRGBbin(std::uint8_t b0, std::uint8_t b1);
// 24-bit blue, green, red, alpha. With outputDepth 32 the bytes stay as they are; with 24 each
// channel is darkened by the missing opacity (c + a - 255, at least 0) and the fourth byte is 0.
Cell BIT24toRGBbin(const std::uint8_t* bgra, int outputDepth);

}  // namespace korvatek::codec

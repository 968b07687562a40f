#include "codec/pixel_decode.h"

#include <cmath>

namespace korvatek::codec {

namespace {

// The channel widening factors, computed once as doubles as they always were.
const double Scale3 = 255.0 / 7.0;
const double Scale5 = 255.0 / 31.0;
const double Scale6 = 255.0 / 63.0;

std::uint8_t scaled(int value, double factor) {
    return static_cast<std::uint8_t>(std::lround(value * factor));
}

}  // namespace

Cell BIT8toRGBbin(std::uint8_t v) {
    if (v == 0xC0) return TransparentPixel;
    const std::uint8_t red = scaled(v >> 5, Scale3);
    const std::uint8_t green = scaled((v >> 2) & 7, Scale3);
    const auto blue = static_cast<std::uint8_t>((v & 3) * 85);
    return {blue, green, red, 0x00};
}

Cell BIT12toRGBbin(std::uint8_t b0, std::uint8_t b1) {
    if (b0 == 0xAA && b1 == 0xFA) return TransparentPixel;
    const auto red = static_cast<std::uint8_t>((b1 & 0x0F) * 17);
    const auto green = static_cast<std::uint8_t>((b0 >> 4) * 17);
    const auto blue = static_cast<std::uint8_t>((b0 & 0x0F) * 17);
    return {blue, green, red, 0x00};
}

Cell BIT16toRGBbin(std::uint8_t b0, std::uint8_t b1) {
    if (b0 == 0x00 && b1 == 0xE0) return TransparentPixel;
    const std::uint8_t red = scaled(b1 >> 3, Scale5);
    const std::uint8_t green = scaled(((b1 & 7) << 3) | (b0 >> 5), Scale6);
    const std::uint8_t blue = scaled(b0 & 31, Scale5);
    return {blue, green, red, 0x00};
}

Cell BIT24toRGBbin(const std::uint8_t* bgra, int outputDepth) {
    if (outputDepth == 32) return {bgra[0], bgra[1], bgra[2], bgra[3]};
    const int a = bgra[3];
    Cell cell{0, 0, 0, 0x00};
    for (int i = 0; i < 3; ++i) {
        const int c = bgra[i] + a - 255;
        cell[static_cast<std::size_t>(i)] = static_cast<std::uint8_t>(c < 0 ? 0 : c);
    }
    return cell;
}

}  // namespace korvatek::codec

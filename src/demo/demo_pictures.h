#pragma once
// What each picture number of the demo image holds. Numbers run in groups the way a phone's
// pictures do (status icons, menu icons, animation frames, text labels, wallpapers ...), and
// the type codes rotate through all nine encodings inside every group.
//
// Wallpapers: 0 landscape 240 x 320 (0x88), 300 plasma 240 x 320 (0x05, dithered),
// 701 rings with a fading alpha border 240 x 320 (0x8A), 1051 tiles 240 x 320 (0x87),
// 1201 colour grid 240 x 320 (0x08), 1401 night landscape 176 x 220 (0x0A),
// 1402 black-and-white logo 240 x 320 (0x01). Picture 976 is a 16 x 16 icon of type 0x85 (the
// odd records 977 and 978 point at it), 1700 a 128 x 96 card of type 0x8A. The odd records are
// listed in demo_flash.h.

#include <cstdint>

#include "base/bytes.h"

namespace korvatek::firmware {

struct DemoPicture {
    std::uint16_t width = 0;
    std::uint16_t height = 0;
    std::uint8_t type = 0;
    Bytes data;  // as stored in the picture area
};

// True for the unused and damaged records of demo_flash.h.
bool isOddDemoPicture(int number);

// The picture of an ordinary number (not one of the odd records).
DemoPicture makeDemoPicture(int number);

}  // namespace korvatek::firmware

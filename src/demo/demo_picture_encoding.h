#pragma once
// Picture data in the firmware's pixel formats, made from a demo canvas: 1-bit (0x01),
// 8-bit 3-3-2 (0x05/0x85), 12-bit 4-4-4 (0x07/0x87), 16-bit 5-6-5 (0x08/0x88) and 24-bit
// B, G, R, alpha (0x0A/0x8A); bit 7 of the type selects the run-length form.

#include <cstdint>

#include "base/bytes.h"
#include "demo/demo_canvas.h"

namespace korvatek::firmware {

// Bytes per sample of a type (0 for 1-bit, whose rows are bit-packed; -1 for unknown types).
int demoSampleSize(std::uint8_t type);

// keyed: pixels with alpha below 128 become the format's transparent key (8, 12 and 16 bit;
// 24 bit always carries alpha, 1 bit has no transparency). dither: ordered dithering for the
// formats with few levels (8, 12 and 1 bit; undithered 1 bit inks everything not near white).
Bytes encodeDemoPicture(const DemoCanvas& canvas, std::uint8_t type, bool keyed, bool dither);

// The run-length form: a control byte n >= 129 is followed by 256 - n different samples, a
// control byte n <= 127 by one sample that stands n times. Runs may cross row ends.
Bytes runLengthEncode(const Bytes& samples, int sampleSize);

}  // namespace korvatek::firmware

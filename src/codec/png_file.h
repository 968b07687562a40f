#pragma once
// PNG input. LoadPNGhead walks the chunks itself for the size check, the colour type's name and
// the resolution text; the pixels are decoded in process with libpng and fill the canvas as a
// truecolour converter would: colour types 4 and 6 (with alpha) give cells with their alpha,
// every other type opaque cells (fourth byte 0xFF; palette transparency is dropped); 16-bit
// channels keep their high byte; interlaced files work.

#include <optional>
#include <string>
#include <vector>

#include "base/byte_reader.h"
#include "base/result.h"
#include "codec/pixel_canvas.h"

namespace korvatek::codec {

inline constexpr std::uint8_t kPngSignature[8] = {137, 80, 78, 71, 13, 10, 26, 10};

struct PngHead {
    int width = 0;
    int height = 0;
    int bitDepth = 0;
    int colourType = -1;
    std::string colourTypeName;   // "Greyscale", "Truecolour", "Indexed-colour", …
    std::string resolutionText;   // from "pHYs": "Values in inch …" or "Aspect Ratio only.."
};

struct PngHeadResult {
    PngHead head;
    std::optional<Error> error;   // MsgUnknownFile, or MsgMaxSize (the values are still read)
};

PngHeadResult LoadPNGhead(ByteReader& in);

// The PNG standard's name of a colour type ("" for a type that does not exist).
std::string colourTypeName(int colourType);

// Decodes the whole file onto the canvas and sets its width and height. A file libpng
// refuses (bad CRC, truncated, a size other than LoadPNGhead's check allows) is MsgUnknownFile.
Status decodePng(ByteView file, PixelCanvas& canvas);

// PNG output of a picture made here (a rendered line of text): pixels as 0xAARRGGBB, row by
// row from the top; written as 8-bit RGBA.
Result<Bytes> encodePng(int width, int height, const std::vector<std::uint32_t>& argb);

}  // namespace korvatek::codec

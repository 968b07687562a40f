#pragma once
// ConvertGPF2BMPdata: one firmware picture, from the reader's position, onto the canvas. The
// same decoder serves the fullflash, the GPF/GPF2 containers and the theme cache files.

#include <string>

#include "base/byte_reader.h"
#include "base/result.h"
#include "codec/pixel_canvas.h"

namespace korvatek::codec {

struct DecodeRequest {
    int width = 0;
    int height = 0;
    int bits = 0;                  // 1, 8, 12, 16 or 24; anything else is refused
    std::string compression = "No";  // "Yes" for run-length data; the decoder goes by this text
    int outputDepth = 24;          // 24 or 32: how 24-bit alpha is kept
};

// Refuses a format it cannot decode (MsgGpfNotSupported) before reading anything; stops with
// MsgOutsideCanvas when a pixel would land outside the canvas (a picture wider than 241 or
// taller than 321 cells, or a run that overruns the last row). The reader is left just after
// the last byte the decoder consumed, so the caller can measure the data length.
Status ConvertGPF2BMPdata(ByteReader& in, const DecodeRequest& request, PixelCanvas& canvas);

}  // namespace korvatek::codec

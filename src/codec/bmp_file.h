#pragma once
// Windows bitmaps of 24 or 32 bits per pixel, bottom row first: the header layout, the writer
// of the canvas (SaveBMP's bytes) and the reader into the canvas (LoadBMPhead, LoadBMP).

#include <cstdint>
#include <optional>

#include "base/byte_reader.h"
#include "base/bytes.h"
#include "base/result.h"
#include "codec/pixel_canvas.h"

namespace korvatek::codec {

// Header as written: 14-byte file header and 40-byte information header.
inline constexpr std::size_t kBmpHeaderSize = 54;
inline constexpr std::size_t kBmpFileSizeField = 2;
inline constexpr std::size_t kBmpDataOffsetField = 10;
inline constexpr std::size_t kBmpInfoSizeField = 14;
inline constexpr std::size_t kBmpWidthField = 18;
inline constexpr std::size_t kBmpHeightField = 22;
inline constexpr std::size_t kBmpPlanesField = 26;
inline constexpr std::size_t kBmpBitsField = 28;
inline constexpr std::size_t kBmpCompressionField = 30;
inline constexpr std::size_t kBmpImageSizeField = 34;

struct BmpHeader {
    int width = 0;
    int height = 0;
    int bits = 0;
};

// The 54-byte header with both size fields 0 (the writer patches them after the pixels).
Bytes SaveBMPhead(int width, int height, int bits);

// The whole file for the canvas: width, height and header bit count from the canvas
// metadata, pixel bytes by outputDepth (3 bytes a pixel for 24, the whole cell for 32),
// 24-bit rows padded with zeros to a multiple of 4. Fails when the size runs off the canvas.
Result<Bytes> encodeBmp(const PixelCanvas& canvas, int outputDepth);

// Reads the header from the reader's position and leaves it at the first pixel byte. Only the
// low byte of the data offset, of the bit count and of the compression field are used.
// On a size above 240 x 320 the header is returned together with the error, as the values
// are still read: check `error` first.
struct BmpHeadResult {
    BmpHeader header;
    std::optional<Error> error;
};
BmpHeadResult LoadBMPhead(ByteReader& in);

// Reads the pixel rows into the canvas and sets its width and height (not its depth).
Status LoadBMP(ByteReader& in, const BmpHeader& header, PixelCanvas& canvas);

}  // namespace korvatek::codec

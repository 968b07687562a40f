#include "codec/bmp_file.h"

#include "codec/picture_type.h"

namespace korvatek::codec {


namespace {

void putU16(Bytes& out, std::size_t at, std::uint32_t v) {
    out[at] = static_cast<std::uint8_t>(v);
    out[at + 1] = static_cast<std::uint8_t>(v >> 8);
}

void putU32(Bytes& out, std::size_t at, std::uint32_t v) {
    putU16(out, at, v & 0xFFFF);
    putU16(out, at + 2, v >> 16);
}

// Sizes are 16-bit numbers in the tool: a negative one is written as its 16-bit pattern.
std::uint32_t sizeField(int value) { return static_cast<std::uint16_t>(value); }

// Padding after a 24-bit row, computed with a truncating remainder as it always was.
int rowPadding(int width) {
    const auto rest = static_cast<int>((static_cast<std::int64_t>(width) * 3) % 4);
    return rest != 0 ? 4 - rest : 0;
}

}  // namespace

Bytes SaveBMPhead(int width, int height, int bits) {
    Bytes head(kBmpHeaderSize, 0);
    head[0] = 'B';
    head[1] = 'M';
    putU32(head, kBmpDataOffsetField, kBmpHeaderSize);
    putU32(head, kBmpInfoSizeField, 40);
    putU32(head, kBmpWidthField, sizeField(width));
    putU32(head, kBmpHeightField, sizeField(height));
    putU16(head, kBmpPlanesField, 1);
    head[kBmpBitsField] = static_cast<std::uint8_t>(bits);
    return head;
}

Result<Bytes> encodeBmp(const PixelCanvas& canvas, int outputDepth) {
    const int width = canvas.metaWidth;
    const int height = canvas.metaHeight;
    // Only a size whose pixels would lie off the canvas is refused; a size with no pixels
    // (a zero or negative side) writes the header alone.
    const bool hasPixels = width > 0 && height > 0;
    if (hasPixels && (width > canvas.columns() || height > canvas.rows()))
        return makeError(ErrorCode::OutsideCanvas);

    Bytes file = SaveBMPhead(width, height, canvas.metaDepth);
    const bool full = outputDepth != 24;
    if (width > 0 && height > 0)
        file.reserve(file.size() + static_cast<std::size_t>(height) * (width * 4 + 4));
    for (std::int64_t y = static_cast<std::int64_t>(height) - 1; y >= 0; --y) {
        for (int x = 0; x < width; ++x) {
            const Cell& c = canvas.at(x, static_cast<int>(y));
            file.insert(file.end(), c.begin(), full ? c.end() : c.begin() + 3);
        }
        if (!full) file.insert(file.end(), static_cast<std::size_t>(rowPadding(width)), 0);
    }
    putU32(file, kBmpFileSizeField, static_cast<std::uint32_t>(file.size()));
    putU32(file, kBmpImageSizeField, static_cast<std::uint32_t>(file.size() - kBmpHeaderSize));
    return file;
}

BmpHeadResult LoadBMPhead(ByteReader& in) {
    BmpHeadResult result;
    const std::uint8_t b = in.u8();
    const std::uint8_t m = in.u8();
    if (b != 'B' || m != 'M') {
        result.error = makeError(ErrorCode::BadMagic, {}, 0);
        return result;
    }
    in.skip(8);                       // offsets 2..9
    const int dataOffset = in.u8();   // offset 10: only its low byte counts
    in.skip(7);                       // 11..17
    result.header.width = static_cast<std::int32_t>(in.u32le());
    result.header.height = static_cast<std::int32_t>(in.u32le());
    in.skip(2);                       // 26..27
    result.header.bits = in.u8();     // 28: low byte of the bit count
    if (result.header.bits != 24 && result.header.bits != 32) {
        result.error = makeError(ErrorCode::BmpNotTrueColour, {}, kBmpBitsField);
        return result;
    }
    in.skip(1);                       // 29
    if (in.u8() != 0) {               // 30: low byte of the compression field
        result.error = makeError(ErrorCode::BmpCompressed, {}, kBmpCompressionField);
        return result;
    }
    // Skip to the data offset in one block; a block of 2 is read when the offset is that close.
    const int block = dataOffset - 31;
    in.skip(static_cast<std::uint64_t>(block <= 2 ? 2 : block));
    if (result.header.width > kMaxPictureWidth || result.header.height > kMaxPictureHeight)
        result.error = makeError(ErrorCode::PictureTooLarge);
    return result;
}

Status LoadBMP(ByteReader& in, const BmpHeader& header, PixelCanvas& canvas) {
    const int size = header.bits == 24 ? 3 : 4;
    canvas.metaWidth = header.width;
    canvas.metaHeight = header.height;
    const int padding = header.bits == 24 ? rowPadding(header.width) : 0;
    if (header.width <= 0) {  // rows without pixels: only their padding is passed over
        if (header.height > 0) in.skip(static_cast<std::uint64_t>(padding) * static_cast<std::uint64_t>(header.height));
        return success();
    }
    for (std::int64_t row = static_cast<std::int64_t>(header.height) - 1; row >= 0; --row) {
        const int y = row > canvas.rows() ? canvas.rows() : static_cast<int>(row);
        for (int x = 0; x < header.width; ++x) {
            if (!canvas.contains(x, y))
                return makeError(ErrorCode::OutsideCanvas, {}, in.position());
            Cell cell{0, 0, 0, 0xFF};
            in.read(cell.data(), static_cast<std::size_t>(size));
            canvas.at(x, y) = cell;
        }
        in.skip(static_cast<std::uint64_t>(padding));
    }
    return success();
}

}  // namespace korvatek::codec

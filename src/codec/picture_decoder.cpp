#include "codec/picture_decoder.h"

#include <cstdint>

#include "codec/picture_type.h"
#include "codec/pixel_decode.h"

namespace korvatek::codec {

using settings::MessageKey;

namespace {

// The decoder's scan position: left to right, top row first, wrapping at the width.
class Scan {
public:
    Scan(PixelCanvas& canvas, int width) : m_canvas(canvas), m_width(width) {}

    // Stores one cell at the scan position and advances; false when it falls outside.
    bool put(const Cell& cell) {
        if (!m_canvas.contains(m_x, m_y)) return false;
        m_canvas.at(m_x, m_y) = cell;
        return advance();
    }
    bool advance() {
        if (++m_x == m_width) {
            m_x = 0;
            ++m_y;
        }
        return true;
    }
    // Ends the current row (1-bit pictures drop the rest of the byte there).
    int x() const { return m_x; }
    int y() const { return m_y; }

private:
    PixelCanvas& m_canvas;
    int m_width;
    int m_x = 0;
    int m_y = 0;
};

Cell decodeSample(const std::uint8_t* s, int bits, int outputDepth) {
    switch (bits) {
        case 8: return BIT8toRGBbin(s[0]);
        case 12: return BIT12toRGBbin(s[0], s[1]);
        case 16: return BIT16toRGBbin(s[0], s[1]);
        default: return BIT24toRGBbin(s, outputDepth);
    }
}

Error outside(const ByteReader& in) {
    return makeError(ErrorCode::OutsideCanvas, MessageKey::MsgOutsideCanvas, {}, in.position());
}

Status decodeMonochrome(ByteReader& in, const DecodeRequest& r, PixelCanvas& canvas) {
    Scan scan(canvas, r.width);
    do {
        const std::uint8_t byte = in.u8();
        for (int bit = 7; bit >= 0; --bit) {
            const std::uint8_t c = (byte >> bit) & 1 ? 0 : 255;
            const int rowBefore = scan.y();
            if (!scan.put({c, c, c, 0x30})) return outside(in);
            if (scan.y() != rowBefore) break;  // row ended: the rest of this byte is padding
        }
    } while (scan.y() != r.height);
    return success();
}

Status decodePlain(ByteReader& in, const DecodeRequest& r, PixelCanvas& canvas) {
    const int size = sampleSize(r.bits);
    const std::int64_t samples = static_cast<std::int64_t>(r.width) * r.height;
    Scan scan(canvas, r.width);
    std::uint8_t sample[4];
    for (std::int64_t i = 0; i < samples; ++i) {
        in.read(sample, static_cast<std::size_t>(size));
        if (!scan.put(decodeSample(sample, r.bits, r.outputDepth))) return outside(in);
    }
    return success();
}

Status decodeRunLength(ByteReader& in, const DecodeRequest& r, PixelCanvas& canvas) {
    const auto size = static_cast<std::size_t>(sampleSize(r.bits));
    Scan scan(canvas, r.width);
    std::uint8_t sample[4];
    while (scan.y() < r.height && !in.atEnd()) {
        const int n = in.u8();
        if (n >= 128) {
            for (int i = 0; i < 256 - n; ++i) {
                in.read(sample, size);
                if (!scan.put(decodeSample(sample, r.bits, r.outputDepth))) return outside(in);
            }
        } else {
            in.read(sample, size);
            const Cell cell = decodeSample(sample, r.bits, r.outputDepth);
            for (int i = 0; i < n; ++i)
                if (!scan.put(cell)) return outside(in);
        }
    }
    return success();
}

}  // namespace

Status ConvertGPF2BMPdata(ByteReader& in, const DecodeRequest& request, PixelCanvas& canvas) {
    const bool compressed = request.compression == "Yes";
    const bool accepted = request.bits == 8 || request.bits == 12 || request.bits == 16 || request.bits == 24 ||
                          (request.bits == 1 && !compressed);
    if (!accepted) return makeError(ErrorCode::UnsupportedFormat, MessageKey::MsgGpfNotSupported);

    canvas.metaWidth = request.width;
    canvas.metaHeight = request.height;
    canvas.metaDepth = request.outputDepth;

    if (compressed) return decodeRunLength(in, request, canvas);
    if (request.bits == 1) return decodeMonochrome(in, request, canvas);
    return decodePlain(in, request, canvas);
}

}  // namespace korvatek::codec

#include "codec/picture_decoder.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <vector>

#include "codec/picture_type.h"
#include "codec/pixel_decode.h"

namespace korvatek::codec {


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

// Every 8-, 12- and 16-bit sample decoded once, so that a picture costs a table look-up per
// pixel; the tables hold exactly what the pixel converters give.
struct SampleTables {
    std::array<Cell, 256> bit8;
    std::vector<Cell> bit12 = std::vector<Cell>(65536);
    std::vector<Cell> bit16 = std::vector<Cell>(65536);
    SampleTables() {
        for (int v = 0; v < 256; ++v) bit8[static_cast<std::size_t>(v)] = BIT8toRGBbin(static_cast<std::uint8_t>(v));
        for (int w = 0; w < 65536; ++w) {
            const auto b0 = static_cast<std::uint8_t>(w & 0xFF);
            const auto b1 = static_cast<std::uint8_t>(w >> 8);
            bit12[static_cast<std::size_t>(w)] = BIT12toRGBbin(b0, b1);
            bit16[static_cast<std::size_t>(w)] = BIT16toRGBbin(b0, b1);
        }
    }
};

const SampleTables& sampleTables() {
    static const SampleTables tables;
    return tables;
}

// One sample to one cell, with the table chosen once per picture.
class SampleDecoder {
public:
    SampleDecoder(int bits, int outputDepth) : m_bits(bits), m_outputDepth(outputDepth) {
        const SampleTables& t = sampleTables();
        m_table = bits == 8 ? t.bit8.data() : bits == 12 ? t.bit12.data() : t.bit16.data();
    }
    Cell operator()(const std::uint8_t* s) const {
        switch (m_bits) {
            case 8: return m_table[s[0]];
            case 12:
            case 16: return m_table[static_cast<std::size_t>(s[0] | (s[1] << 8))];
            default: return BIT24toRGBbin(s, m_outputDepth);
        }
    }

private:
    int m_bits;
    int m_outputDepth;
    const Cell* m_table;
};

Error outside(const ByteReader& in) {
    return makeError(ErrorCode::OutsideCanvas, {}, in.position());
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
    std::uint8_t sample[4];
    const std::size_t size = std::min(static_cast<std::size_t>(sampleSize(r.bits)), sizeof sample);
    const std::int64_t samples = static_cast<std::int64_t>(r.width) * r.height;
    const SampleDecoder decode(r.bits, r.outputDepth);
    Scan scan(canvas, r.width);
    for (std::int64_t i = 0; i < samples; ++i) {
        in.read(sample, size);
        if (!scan.put(decode(sample))) return outside(in);
    }
    return success();
}

Status decodeRunLength(ByteReader& in, const DecodeRequest& r, PixelCanvas& canvas) {
    std::uint8_t sample[4];
    const std::size_t size = std::min(static_cast<std::size_t>(sampleSize(r.bits)), sizeof sample);
    const SampleDecoder decode(r.bits, r.outputDepth);
    Scan scan(canvas, r.width);
    while (scan.y() < r.height && !in.atEnd()) {
        const int n = in.u8();
        if (n >= 128) {
            for (int i = 0; i < 256 - n; ++i) {
                in.read(sample, size);
                if (!scan.put(decode(sample))) return outside(in);
            }
        } else {
            in.read(sample, size);
            const Cell cell = decode(sample);
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
    if (!accepted) return makeError(ErrorCode::UnsupportedFormat);

    canvas.metaWidth = request.width;
    canvas.metaHeight = request.height;
    canvas.metaDepth = request.outputDepth;

    if (compressed) return decodeRunLength(in, request, canvas);
    if (request.bits == 1) return decodeMonochrome(in, request, canvas);
    return decodePlain(in, request, canvas);
}

}  // namespace korvatek::codec

#include "demo/demo_picture_encoding.h"

#include <algorithm>
#include <cstring>

namespace korvatek::firmware {
namespace {

constexpr int kBayer[4][4] = {{0, 8, 2, 10}, {12, 4, 14, 6}, {3, 11, 1, 9}, {15, 7, 13, 5}};

// Threshold in 0..254 for a pixel: the middle value without dithering.
int threshold(int x, int y, bool dither) { return dither ? kBayer[y & 3][x & 3] * 16 + 7 : 127; }

int level(int value, int levels, int t) { return std::min(levels, (value * levels + t) / 255); }

void putSample(Bytes& out, const Rgba& p, std::uint8_t type, bool keyed, int t) {
    const bool transparent = keyed && p.a < 128;
    switch (type & 0x7F) {
        case 0x05: {
            if (transparent) {
                out.push_back(0xC0);
                return;
            }
            auto v = static_cast<std::uint8_t>(level(p.r, 7, t) << 5 | level(p.g, 7, t) << 2 | level(p.b, 3, t));
            if (v == 0xC0) v = 0xC4;  // a red that would read as the transparent key
            out.push_back(v);
            return;
        }
        case 0x07: {
            if (transparent) {
                out.push_back(0xAA);
                out.push_back(0xFA);
                return;
            }
            out.push_back(static_cast<std::uint8_t>(level(p.g, 15, t) << 4 | level(p.b, 15, t)));
            out.push_back(static_cast<std::uint8_t>(level(p.r, 15, t)));
            return;
        }
        case 0x08: {
            if (transparent) {
                out.push_back(0x00);
                out.push_back(0xE0);
                return;
            }
            auto w =
                static_cast<std::uint16_t>(level(p.r, 31, 127) << 11 | level(p.g, 63, 127) << 5 | level(p.b, 31, 127));
            if (w == 0xE000) w = 0xE001;  // the same for the 16-bit key
            out.push_back(static_cast<std::uint8_t>(w & 0xFF));
            out.push_back(static_cast<std::uint8_t>(w >> 8));
            return;
        }
        default: {  // 0x0A
            if (p.a == 0) {
                out.insert(out.end(), {0, 0, 0, 0});
                return;
            }
            out.insert(out.end(), {p.b, p.g, p.r, p.a});
            return;
        }
    }
}

// Scenes are dithered; symbols and text take ink wherever they are not near white, so that
// coloured shapes stay solid.
Bytes encodeMono(const DemoCanvas& canvas, bool dither) {
    Bytes out;
    for (int y = 0; y < canvas.height(); ++y) {
        int bits = 0;
        int count = 0;
        for (int x = 0; x < canvas.width(); ++x) {
            const Rgba p = canvas.at(x, y);
            const int luma = (p.r * 77 + p.g * 150 + p.b * 29) >> 8;
            const int onWhite = (luma * p.a + 255 * (255 - p.a)) / 255;
            bits = bits << 1 | (onWhite < (dither ? threshold(x, y, true) : 200) ? 1 : 0);
            if (++count == 8) {
                out.push_back(static_cast<std::uint8_t>(bits));
                bits = count = 0;
            }
        }
        if (count > 0) out.push_back(static_cast<std::uint8_t>((bits << (8 - count)) | (0xFF >> count)));
    }
    return out;
}

}  // namespace

int demoSampleSize(std::uint8_t type) {
    switch (type) {
        case 0x01: return 0;
        case 0x05:
        case 0x85: return 1;
        case 0x07:
        case 0x87:
        case 0x08:
        case 0x88: return 2;
        case 0x0A:
        case 0x8A: return 4;
        default: return -1;
    }
}

Bytes encodeDemoPicture(const DemoCanvas& canvas, std::uint8_t type, bool keyed, bool dither) {
    if (type == 0x01) return encodeMono(canvas, dither);
    Bytes samples;
    samples.reserve(static_cast<std::size_t>(canvas.width() * canvas.height() * demoSampleSize(type)));
    for (int y = 0; y < canvas.height(); ++y)
        for (int x = 0; x < canvas.width(); ++x)
            putSample(samples, canvas.at(x, y), type, keyed, threshold(x, y, dither));
    if ((type & 0x80) == 0) return samples;
    return runLengthEncode(samples, demoSampleSize(type));
}

Bytes runLengthEncode(const Bytes& samples, int sampleSize) {
    const std::size_t size = static_cast<std::size_t>(sampleSize);
    const std::size_t count = samples.size() / size;
    auto equal = [&](std::size_t i, std::size_t j) {
        return std::memcmp(samples.data() + i * size, samples.data() + j * size, size) == 0;
    };
    auto append = [&](Bytes& out, std::size_t first, std::size_t n) {
        out.insert(out.end(), samples.begin() + static_cast<std::ptrdiff_t>(first * size),
                   samples.begin() + static_cast<std::ptrdiff_t>((first + n) * size));
    };
    Bytes out;
    std::size_t i = 0;
    while (i < count) {
        std::size_t run = 1;
        while (i + run < count && run < 127 && equal(i, i + run)) ++run;
        if (run >= 2) {
            out.push_back(static_cast<std::uint8_t>(run));
            append(out, i, 1);
            i += run;
            continue;
        }
        // different samples until two equal ones begin a run
        std::size_t n = 1;
        while (i + n < count && n < 127 && !(i + n + 1 < count && equal(i + n, i + n + 1))) ++n;
        out.push_back(static_cast<std::uint8_t>(256 - n));
        append(out, i, n);
        i += n;
    }
    return out;
}

}  // namespace korvatek::firmware

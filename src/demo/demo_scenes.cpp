#include "demo/demo_scenes.h"

#include <algorithm>
#include <cstdint>

namespace korvatek::firmware {
namespace {

constexpr Rgba kWhite{255, 255, 255, 255};
constexpr Rgba kShadow{0, 0, 0, 120};
constexpr std::string_view kTitle = "Korvatek";

void titleText(DemoCanvas& c, int y, std::string_view text, int scale) {
    const int x = (c.width() - textWidth(text, scale)) / 2;
    drawText(c, x + scale, y + scale, text, scale, kShadow);
    drawText(c, x, y, text, scale, kWhite);
}

int titleScale(const DemoCanvas& c) { return c.width() >= 160 ? 3 : 2; }

void footer(DemoCanvas& c, int number, Rgba colour) {
    char text[6];
    numberText(number, text);
    drawText(c, 3, c.height() - 12, text, 1, colour);
}

// Fills below the curve top(x) (sub-pixel units) with a colour that depends on the row only.
template <class Top>
void fillBelow(DemoCanvas& c, Top top, Rgba upper, Rgba lower) {
    for (int x = 0; x < c.width(); ++x) {
        const int t = top(x);
        for (int y = std::max(0, t / kSub); y < c.height(); ++y) {
            const int coverage = std::clamp((y + 1) * kSub - t, 0, kSub);
            c.blend(x, y, mix(upper, lower, y * 256 / c.height()), coverage);
        }
    }
}

std::uint32_t nextRandom(std::uint32_t& s) {
    s ^= s << 13;
    s ^= s >> 17;
    s ^= s << 5;
    return s;
}

}  // namespace

void numberText(int number, char (&out)[6]) {
    out[0] = '#';
    for (int k = 4; k >= 1; --k, number /= 10) out[k] = static_cast<char>('0' + number % 10);
    out[5] = 0;
}

void drawLandscape(DemoCanvas& c, int variant, int number) {
    const int w = c.width(), h = c.height(), horizon = h * 3 / 5;
    const int mood = variant % 3;
    const Rgba skyTop[3] = {{40, 90, 200, 255}, {8, 10, 40, 255}, {70, 40, 120, 255}};
    const Rgba skyLow[3] = {{170, 215, 250, 255}, {60, 40, 110, 255}, {250, 150, 80, 255}};
    verticalGradient(c, 0, 0, w, horizon + h / 10, skyTop[mood], skyLow[mood]);
    if (mood == 1) {
        std::uint32_t seed = 0x51A2u + static_cast<std::uint32_t>(number);
        for (int k = 0; k < w * h / 600; ++k) {
            const int x = static_cast<int>(nextRandom(seed) % static_cast<std::uint32_t>(w));
            const int y = static_cast<int>(nextRandom(seed) % static_cast<std::uint32_t>(horizon));
            c.blend(x, y, Rgba{255, 255, 230, static_cast<std::uint8_t>(120 + nextRandom(seed) % 136)});
        }
    }
    const int sx = w * 3 / 4 * kSub, sy = (mood == 2 ? horizon - h / 12 : h * 2 / 5) * kSub,
              r = w * kSub / (mood == 2 ? 7 : 10);
    if (mood == 1) {
        fillCircle(c, sx, sy, r, Rgba{235, 235, 215, 255});
        fillCircle(c, sx + r / 2, sy - r / 3, r, c.at(std::min(w - 1, sx / kSub + r / kSub + 2), sy / kSub));
    } else {
        const Rgba sun = mood == 0 ? Rgba{255, 235, 120, 255} : Rgba{255, 120, 50, 255};
        fillCircle(c, sx, sy, r * 3 / 2, Rgba{sun.r, sun.g, sun.b, 50});
        fillCircle(c, sx, sy, r, sun);
    }
    const Rgba hills[3][2] = {{{110, 160, 190, 255}, {70, 120, 150, 255}},
                              {{70, 150, 80, 255}, {40, 110, 50, 255}},
                              {{40, 110, 45, 255}, {15, 60, 25, 255}}};
    const int dim = mood == 1 ? 110 : mood == 2 ? 60 : 0;
    for (int layer = 0; layer < 3; ++layer) {
        const int base = (horizon + layer * h / 9) * kSub;
        const int amp = h * kSub / (14 + 6 * layer);
        const int phase = 37 * layer + 11 * variant + number;
        const Rgba upper = mix(hills[layer][0], Rgba{10, 10, 30, 255}, dim);
        const Rgba lower = mix(hills[layer][1], Rgba{5, 5, 20, 255}, dim);
        fillBelow(
            c,
            [&](int x) {
                const int u = x * 256 * (2 + layer) / w;
                return base - (isin(u + phase) * amp + isin(u * 3 / 2 + 2 * phase) * amp / 3) / 1024;
            },
            upper, lower);
    }
    const int scale = titleScale(c);
    titleText(c, h / 10, kTitle, scale);
    titleText(c, h / 10 + 12 * scale + 4, "demo fullflash", 1);
    footer(c, number, Rgba{255, 255, 255, 200});
}

void drawPlasma(DemoCanvas& c, int variant, int number) {
    const int w = c.width(), h = c.height();
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            const int dx = x - w / 3, dy = y - h * 2 / 3;
            const int d = static_cast<int>(isqrt(static_cast<std::uint64_t>(dx * dx + dy * dy)));
            const int v =
                isin(x * 256 * 4 / w + 40 * variant) + isin(y * 256 * 3 / h) + isin((x + y) * 2) + isin(d * 4);
            const Rgba colour = hue((v + 4096) * 3 / 8 + 200 * variant);
            c.set(x, y, mix(colour, Rgba{20, 10, 40, 255}, 60 + (isin(d * 2 + 64) + 1024) / 16));
        }
    titleText(c, h / 2 - 6 * titleScale(c), kTitle, titleScale(c));
    footer(c, number, kWhite);
}

void drawRings(DemoCanvas& c, int variant, int number) {
    const int w = c.width(), h = c.height(), cx = w / 2 * kSub, cy = h * 2 / 5 * kSub;
    const int band = 12 * kSub, fade = std::max(8, w / 10);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            const std::int64_t dx = x * kSub + kSub / 2 - cx, dy = y * kSub + kSub / 2 - cy;
            const int d = static_cast<int>(isqrt(static_cast<std::uint64_t>(dx * dx + dy * dy)));
            auto colourOf = [&](int k) {
                const Rgba bright = hue(k * 176 + 300 * variant);
                return k % 2 ? mix(bright, Rgba{20, 20, 30, 255}, 140) : mix(bright, kWhite, 40);
            };
            const int k = d / band, into = d % band;
            Rgba p = into < kSub && k > 0 ? mix(colourOf(k - 1), colourOf(k), into * 16) : colourOf(k);
            const int edge = std::min(std::min(x, y), std::min(w - 1 - x, h - 1 - y));
            p.a = static_cast<std::uint8_t>(edge >= fade ? 255 : edge * 255 / fade);
            c.set(x, y, p);
        }
    fillRoundRect(c, w / 8 * kSub, h * 3 / 4 * kSub, w * 7 / 8 * kSub, (h * 3 / 4 + 16 * titleScale(c)) * kSub,
                  6 * kSub, Rgba{0, 0, 0, 150});
    titleText(c, h * 3 / 4 + 2 * titleScale(c), kTitle, titleScale(c));
    footer(c, number, kWhite);
}

void drawTiles(DemoCanvas& c, int variant, int number) {
    const int w = c.width(), h = c.height(), size = 20;
    for (int ty = 0; ty * size < h; ++ty)
        for (int tx = 0; tx * size < w; ++tx) {
            Rgba base =
                mix(hue(tx * 96 + ty * 160 + 256 * variant), Rgba{128, 128, 128, 255}, (tx + ty) % 2 ? 150 : 60);
            const int x = tx * size, y = ty * size;
            fillRect(c, x, y, size, size, base);
            fillRect(c, x, y, size, 2, mix(base, kWhite, 110));
            fillRect(c, x, y, 2, size, mix(base, kWhite, 110));
            fillRect(c, x, y + size - 2, size, 2, mix(base, Rgba{0, 0, 0, 255}, 110));
            fillRect(c, x + size - 2, y, 2, size, mix(base, Rgba{0, 0, 0, 255}, 110));
        }
    const int scale = titleScale(c);
    fillRoundRect(c, 10 * kSub, (h / 2 - 16 * scale) * kSub, (w - 10) * kSub, (h / 2 + 16 * scale) * kSub, 10 * kSub,
                  Rgba{10, 10, 20, 170});
    titleText(c, h / 2 - 10 * scale, kTitle, scale);
    titleText(c, h / 2 + 4 * scale, "tile pattern", 1);
    footer(c, number, kWhite);
}

void drawColourGrid(DemoCanvas& c, int variant, int number) {
    const int w = c.width(), h = c.height();
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            const int b = (variant % 2 ? 255 - x * 255 / w : 128 + isin((x + y) * 256 / (w + h)) / 8);
            c.set(x, y,
                  Rgba{static_cast<std::uint8_t>(x * 255 / (w - 1)), static_cast<std::uint8_t>(y * 255 / (h - 1)),
                       static_cast<std::uint8_t>(std::clamp(b, 0, 255)), 255});
        }
    for (int x = 0; x < w; x += 24) fillRect(c, x, 0, 1, h, Rgba{255, 255, 255, 90});
    for (int y = 0; y < h; y += 24) fillRect(c, 0, y, w, 1, Rgba{255, 255, 255, 90});
    fillRing(c, w / 2 * kSub, h / 2 * kSub, w * kSub / 3, w * kSub / 3 - 3 * kSub, kWhite);
    titleText(c, h / 2 - 20, kTitle, titleScale(c));
    titleText(c, h / 2 + 14, "16-bit 5-6-5", 1);
    footer(c, number, kWhite);
}

void drawMonoLogo(DemoCanvas& c, int number) {
    const int w = c.width(), h = c.height();
    const int maxD = static_cast<int>(isqrt(static_cast<std::uint64_t>(w * w + h * h) / 4));
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            const int dx = x - w / 2, dy = y - h / 2;
            const int d = static_cast<int>(isqrt(static_cast<std::uint64_t>(dx * dx + dy * dy)));
            const auto v = static_cast<std::uint8_t>(255 - d * 150 / maxD);
            c.set(x, y, Rgba{v, v, v, 255});
        }
    const Rgba black{0, 0, 0, 255};
    fillRect(c, 0, 0, w, 4, black);
    fillRect(c, 0, h - 4, w, 4, black);
    fillRect(c, 0, 0, 4, h, black);
    fillRect(c, w - 4, 0, 4, h, black);
    const int top = h / 3;
    fillRoundRect(c, 16 * kSub, top * kSub, (w - 16) * kSub, (top + 56) * kSub, 8 * kSub, black);
    fillRoundRect(c, 19 * kSub, (top + 3) * kSub, (w - 19) * kSub, (top + 53) * kSub, 6 * kSub,
                  Rgba{255, 255, 255, 255});
    drawText(c, (w - textWidth(kTitle, 3)) / 2, top + 6, kTitle, 3, black);
    const Rgba white{255, 255, 255, 255};
    fillRoundRect(c, 30 * kSub, (top + 72) * kSub, (w - 30) * kSub, (top + 130) * kSub, 6 * kSub, white);
    drawText(c, (w - textWidth("0123456789", 2)) / 2, top + 76, "0123456789", 2, black);
    drawText(c, (w - textWidth("1-bit monochrome", 1)) / 2, top + 112, "1-bit monochrome", 1, black);
    for (int k = 0; k < 5; ++k) fillRing(c, (w / 2 - 80 + 40 * k) * kSub, (h - 40) * kSub, 14 * kSub, 10 * kSub, black);
    fillRect(c, 4, h - 17, 40, 13, white);
    char text[6];
    numberText(number, text);
    drawText(c, 8, h - 17, text, 1, black);
}

}  // namespace korvatek::firmware

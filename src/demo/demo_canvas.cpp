#include "demo/demo_canvas.h"

#include <algorithm>
#include <array>
#include <cstdlib>

#include "demo/demo_glyph_shapes.h"

namespace korvatek::firmware {
namespace {

// sin of k/256 of a turn for k = 0..64, times 1024.
constexpr std::array<int, 65> kQuarterSine = {0,   25,  50,  75,  100,  125,  150,  175,  200,  224,  249,  273,  297,
                                              321, 345, 369, 392, 415,  438,  460,  483,  505,  526,  548,  569,  590,
                                              610, 630, 650, 669, 688,  706,  724,  742,  759,  775,  792,  807,  822,
                                              837, 851, 865, 878, 891,  903,  915,  926,  936,  946,  955,  964,  972,
                                              980, 987, 993, 999, 1004, 1009, 1013, 1016, 1019, 1021, 1023, 1024, 1024};

std::uint8_t u8(int v) { return static_cast<std::uint8_t>(std::clamp(v, 0, 255)); }

// Calls inside(sx, sy) at 4 x 4 sample points of every pixel of the box (sub-pixel units)
// and blends by the number of samples inside.
template <class Inside>
void paint(DemoCanvas& c, int x0, int y0, int x1, int y1, Rgba colour, Inside inside) {
    const int px0 = std::max(0, x0 / kSub - 1), py0 = std::max(0, y0 / kSub - 1);
    const int px1 = std::min(c.width() - 1, x1 / kSub + 1), py1 = std::min(c.height() - 1, y1 / kSub + 1);
    for (int py = py0; py <= py1; ++py)
        for (int px = px0; px <= px1; ++px) {
            int count = 0;
            for (int j = 0; j < 4; ++j)
                for (int i = 0; i < 4; ++i)
                    if (inside(px * kSub + 2 + 4 * i, py * kSub + 2 + 4 * j)) ++count;
            if (count > 0) c.blend(px, py, colour, count);
        }
}

std::int64_t sq(std::int64_t v) { return v * v; }

}  // namespace

DemoCanvas::DemoCanvas(int width, int height, Rgba fill)
    : width_(width), height_(height), pixels_(static_cast<std::size_t>(width * height), fill) {}

void DemoCanvas::set(int x, int y, Rgba c) {
    if (x >= 0 && y >= 0 && x < width_ && y < height_) pixels_[static_cast<std::size_t>(y * width_ + x)] = c;
}

void DemoCanvas::blend(int x, int y, Rgba c, int coverage) {
    if (x < 0 || y < 0 || x >= width_ || y >= height_) return;
    Rgba& d = pixels_[static_cast<std::size_t>(y * width_ + x)];
    const int sa = c.a * coverage / 16;
    if (sa == 0) return;
    const int da = d.a * (255 - sa) / 255;
    const int oa = sa + da;
    auto channel = [&](int s, int t) { return u8((s * sa + t * da + oa / 2) / oa); };
    d = Rgba{channel(c.r, d.r), channel(c.g, d.g), channel(c.b, d.b), u8(oa)};
}

int isin(int angle) {
    const int a = ((angle % 256) + 256) % 256;
    if (a < 64) return kQuarterSine[static_cast<std::size_t>(a)];
    if (a < 128) return kQuarterSine[static_cast<std::size_t>(128 - a)];
    if (a < 192) return -kQuarterSine[static_cast<std::size_t>(a - 128)];
    return -kQuarterSine[static_cast<std::size_t>(256 - a)];
}

int icos(int angle) { return isin(angle + 64); }

std::uint32_t isqrt(std::uint64_t n) {
    std::uint64_t root = 0;
    std::uint64_t bit = std::uint64_t{1} << 62;
    while (bit > n) bit >>= 2;
    while (bit != 0) {
        if (n >= root + bit) {
            n -= root + bit;
            root = (root >> 1) + bit;
        } else {
            root >>= 1;
        }
        bit >>= 2;
    }
    return static_cast<std::uint32_t>(root);
}

Rgba hue(int h) {
    h = ((h % 1536) + 1536) % 1536;
    const int f = h % 256;
    switch (h / 256) {
        case 0: return {255, u8(f), 0, 255};
        case 1: return {u8(255 - f), 255, 0, 255};
        case 2: return {0, 255, u8(f), 255};
        case 3: return {0, u8(255 - f), 255, 255};
        case 4: return {u8(f), 0, 255, 255};
        default: return {255, 0, u8(255 - f), 255};
    }
}

Rgba mix(Rgba a, Rgba b, int t) {
    auto m = [t](int x, int y) { return u8(x + (y - x) * t / 256); };
    return {m(a.r, b.r), m(a.g, b.g), m(a.b, b.b), m(a.a, b.a)};
}

void fillRect(DemoCanvas& c, int x, int y, int w, int h, Rgba colour) {
    for (int py = std::max(0, y); py < std::min(c.height(), y + h); ++py)
        for (int px = std::max(0, x); px < std::min(c.width(), x + w); ++px) c.blend(px, py, colour);
}

void verticalGradient(DemoCanvas& c, int x, int y, int w, int h, Rgba top, Rgba bottom) {
    for (int row = 0; row < h; ++row) fillRect(c, x, y + row, w, 1, mix(top, bottom, h > 1 ? row * 256 / (h - 1) : 0));
}

void fillCircle(DemoCanvas& c, int cx, int cy, int r, Rgba colour) {
    const std::int64_t r2 = sq(r);
    paint(c, cx - r, cy - r, cx + r, cy + r, colour, [&](int x, int y) { return sq(x - cx) + sq(y - cy) <= r2; });
}

void fillRing(DemoCanvas& c, int cx, int cy, int outer, int inner, Rgba colour) {
    const std::int64_t o2 = sq(outer), i2 = sq(inner);
    paint(c, cx - outer, cy - outer, cx + outer, cy + outer, colour, [&](int x, int y) {
        const std::int64_t d = sq(x - cx) + sq(y - cy);
        return d <= o2 && d > i2;
    });
}

void fillRightArc(DemoCanvas& c, int cx, int cy, int outer, int inner, Rgba colour) {
    const std::int64_t o2 = sq(outer), i2 = sq(inner);
    paint(c, cx, cy - outer, cx + outer, cy + outer, colour, [&](int x, int y) {
        const std::int64_t d = sq(x - cx) + sq(y - cy);
        return x > cx && 2 * std::abs(y - cy) < 3 * (x - cx) && d <= o2 && d > i2;
    });
}

void fillRoundRect(DemoCanvas& c, int x0, int y0, int x1, int y1, int radius, Rgba colour) {
    const std::int64_t r2 = sq(radius);
    paint(c, x0, y0, x1, y1, colour, [&](int x, int y) {
        if (x < x0 || x >= x1 || y < y0 || y >= y1) return false;
        const int nx = std::clamp(x, x0 + radius, x1 - radius);
        const int ny = std::clamp(y, y0 + radius, y1 - radius);
        return sq(x - nx) + sq(y - ny) <= r2;
    });
}

void fillPolygon(DemoCanvas& c, const std::vector<SubPoint>& points, Rgba colour) {
    if (points.size() < 3) return;
    int x0 = points[0].x, x1 = x0, y0 = points[0].y, y1 = y0;
    for (const SubPoint& p : points) {
        x0 = std::min(x0, p.x), x1 = std::max(x1, p.x), y0 = std::min(y0, p.y), y1 = std::max(y1, p.y);
    }
    paint(c, x0, y0, x1, y1, colour, [&](int x, int y) {
        bool inside = false;
        for (std::size_t i = 0, j = points.size() - 1; i < points.size(); j = i++) {
            const SubPoint& a = points[i];
            const SubPoint& b = points[j];
            if ((a.y > y) != (b.y > y)) {
                // x < a.x + (y - a.y) * (b.x - a.x) / (b.y - a.y), without dividing
                const std::int64_t lhs = static_cast<std::int64_t>(x - a.x) * (b.y - a.y);
                const std::int64_t rhs = static_cast<std::int64_t>(y - a.y) * (b.x - a.x);
                if ((b.y > a.y) ? lhs < rhs : lhs > rhs) inside = !inside;
            }
        }
        return inside;
    });
}

void strokeLine(DemoCanvas& c, SubPoint a, SubPoint b, int halfWidth, Rgba colour) {
    const std::int64_t dx = b.x - a.x, dy = b.y - a.y;
    const std::int64_t len2 = dx * dx + dy * dy;
    const std::int64_t w2 = sq(halfWidth);
    paint(c, std::min(a.x, b.x) - halfWidth, std::min(a.y, b.y) - halfWidth, std::max(a.x, b.x) + halfWidth,
          std::max(a.y, b.y) + halfWidth, colour, [&](int x, int y) {
              const std::int64_t px = x - a.x, py = y - a.y;
              const std::int64_t along = px * dx + py * dy;
              if (along <= 0 || len2 == 0) return px * px + py * py <= w2;
              if (along >= len2) return sq(x - b.x) + sq(y - b.y) <= w2;
              const std::int64_t across = px * dy - py * dx;  // distance times the length
              return across * across <= w2 * len2;
          });
}

int textWidth(std::string_view text, int scale) { return static_cast<int>(text.size()) * 6 * scale - scale; }

void drawText(DemoCanvas& c, int x, int y, std::string_view text, int scale, Rgba colour) {
    for (char ch : text) {
        const DemoBitmap shape = scaleSmooth(glyphShape(static_cast<unsigned char>(ch)), scale);
        for (int gy = 0; gy < shape.height; ++gy)
            for (int gx = 0; gx < shape.width; ++gx)
                if (shape.at(gx, gy)) c.blend(x + gx, y + gy, colour);
        x += 6 * scale;
    }
}

}  // namespace korvatek::firmware

#include "demo/demo_icons.h"

#include <array>
#include <vector>

namespace korvatek::firmware {
namespace {

constexpr Rgba kDark{40, 40, 48, 255};
constexpr Rgba kWhite{250, 250, 250, 255};
constexpr Rgba kLight{200, 204, 210, 255};
constexpr Rgba kGreen{60, 190, 80, 255};
constexpr Rgba kYellow{250, 200, 40, 255};
constexpr Rgba kRed{220, 50, 40, 255};
constexpr std::array<Rgba, 8> kColours = {{{40, 110, 220, 255},
                                           {60, 190, 80, 255},
                                           {220, 50, 40, 255},
                                           {245, 140, 30, 255},
                                           {150, 70, 200, 255},
                                           {40, 190, 210, 255},
                                           {230, 80, 150, 255},
                                           {120, 120, 130, 255}}};

// Maps the 256-unit design grid into a box.
struct Pen {
    DemoCanvas& c;
    IconBox box;
    int x(int v) const { return box.x + v * box.w / 256; }
    int y(int v) const { return box.y + v * box.h / 256; }
    int s(int v) const { return v * (box.w < box.h ? box.w : box.h) / 256; }
    SubPoint p(int vx, int vy) const { return {x(vx), y(vy)}; }
    void circle(int cx, int cy, int r, Rgba col) const { fillCircle(c, x(cx), y(cy), s(r), col); }
    void ring(int cx, int cy, int outer, int inner, Rgba col) const {
        fillRing(c, x(cx), y(cy), s(outer), s(inner), col);
    }
    void rect(int x0, int y0, int x1, int y1, int r, Rgba col) const {
        fillRoundRect(c, x(x0), y(y0), x(x1), y(y1), s(r), col);
    }
    void line(int x0, int y0, int x1, int y1, int halfWidth, Rgba col) const {
        strokeLine(c, p(x0, y0), p(x1, y1), s(halfWidth), col);
    }
    void polygon(std::initializer_list<std::array<int, 2>> pts, Rgba col) const {
        std::vector<SubPoint> v;
        for (const auto& q : pts) v.push_back(p(q[0], q[1]));
        fillPolygon(c, v, col);
    }
};

Rgba colourOf(int variant) { return kColours[static_cast<std::size_t>(variant % 8)]; }

void battery(const Pen& p, int variant) {
    const int level = variant % 5 + 1;
    p.rect(20, 68, 220, 188, 18, kDark);
    p.rect(38, 86, 202, 170, 8, kLight);
    p.rect(216, 100, 244, 156, 6, kDark);
    const Rgba fill = level == 1 ? kRed : level == 2 ? kYellow : kGreen;
    for (int i = 0; i < level; ++i) p.rect(48 + i * 30, 96, 72 + i * 30, 160, 4, fill);
}

void signal(const Pen& p, int variant) {
    const int level = variant % 6;
    for (int i = 0; i < 5; ++i) {
        const Rgba col = i < level ? kColours[0] : Rgba{190, 190, 200, 150};
        p.rect(20 + i * 46, 216 - 40 - i * 40, 54 + i * 46, 236, 6, col);
    }
}

void envelope(const Pen& p, int variant) {
    p.rect(16, 56, 240, 200, 14, kDark);
    p.rect(30, 70, 226, 186, 6, variant % 2 ? Rgba{255, 245, 200, 255} : kWhite);
    p.line(36, 76, 128, 146, 9, kDark);
    p.line(128, 146, 220, 76, 9, kDark);
}

void arrow(const Pen& p, int variant) {
    const int dir = variant % 4;
    auto turn = [dir](int x, int y) -> std::array<int, 2> {
        if (dir == 1) return {256 - y, x};
        if (dir == 2) return {256 - x, 256 - y};
        if (dir == 3) return {y, 256 - x};
        return {x, y};
    };
    const std::array<std::array<int, 2>, 7> up = {
        {{128, 20}, {230, 122}, {166, 122}, {166, 236}, {90, 236}, {90, 122}, {26, 122}}};
    std::vector<SubPoint> shadow, body;
    for (const auto& q : up) {
        const auto t = turn(q[0], q[1]);
        body.push_back(p.p(t[0], t[1]));
        shadow.push_back(p.p(t[0] + 10, t[1] + 10));
    }
    fillPolygon(p.c, shadow, Rgba{0, 0, 0, 90});
    fillPolygon(p.c, body, colourOf(variant / 4));
}

void bell(const Pen& p, int variant) {
    const Rgba gold = variant % 2 ? Rgba{250, 190, 40, 255} : Rgba{230, 160, 30, 255};
    p.circle(128, 40, 18, kDark);
    p.polygon({{128, 40}, {170, 56}, {186, 112}, {200, 172}, {232, 196}, {24, 196}, {56, 172}, {70, 112}, {86, 56}},
              gold);
    p.circle(128, 214, 24, kDark);
}

void lock(const Pen& p, int variant) {
    p.ring(128, 112, 80, 52, kLight);
    p.ring(128, 112, 80, 74, Rgba{120, 120, 130, 255});
    p.rect(40, 110, 216, 240, 18, variant % 2 ? kYellow : Rgba{245, 140, 30, 255});
    p.circle(128, 160, 18, kDark);
    p.rect(118, 160, 138, 210, 4, kDark);
}

void speaker(const Pen& p, int variant) {
    const int level = variant % 4;
    p.polygon({{24, 92}, {80, 92}, {140, 40}, {140, 216}, {80, 164}, {24, 164}}, kDark);
    if (level == 0) {
        p.line(170, 96, 230, 160, 10, kRed);
        p.line(230, 96, 170, 160, 10, kRed);
        return;
    }
    for (int i = 0; i < level; ++i)
        fillRightArc(p.c, p.x(140), p.y(128), p.s(64 + 36 * i), p.s(48 + 36 * i), kColours[0]);
}

void star(const Pen& p, int variant) {
    std::vector<SubPoint> v;
    for (int k = 0; k < 10; ++k) {
        const int r = k % 2 ? 50 : 120;
        const int a = k * 256 / 10;
        v.push_back(p.p(128 + r * isin(a) / 1024, 138 - r * icos(a) / 1024));
    }
    fillPolygon(p.c, v, variant % 2 ? kYellow : Rgba{255, 215, 90, 255});
}

void heart(const Pen& p, int variant) {
    const Rgba col = variant % 2 ? kRed : Rgba{230, 80, 150, 255};
    p.circle(84, 96, 62, col);
    p.circle(172, 96, 62, col);
    p.polygon({{28, 116}, {228, 116}, {128, 230}}, col);
}

void check(const Pen& p, bool yes) {
    p.circle(128, 128, 116, yes ? kGreen : kRed);
    if (yes) {
        p.line(70, 132, 110, 174, 14, kWhite);
        p.line(110, 174, 190, 86, 14, kWhite);
    } else {
        p.line(84, 84, 172, 172, 14, kWhite);
        p.line(172, 84, 84, 172, 14, kWhite);
    }
}

void folder(const Pen& p, int variant) {
    const Rgba back = variant % 2 ? Rgba{220, 160, 30, 255} : Rgba{90, 140, 220, 255};
    p.polygon({{20, 52}, {100, 52}, {122, 78}, {236, 78}, {236, 212}, {20, 212}}, back);
    p.polygon({{44, 102}, {248, 102}, {226, 212}, {20, 212}}, mix(back, kWhite, 100));
}

void house(const Pen& p, int variant) {
    p.rect(50, 116, 206, 236, 4, kLight);
    p.polygon({{128, 24}, {240, 128}, {16, 128}}, colourOf(variant + 2));
    p.rect(108, 164, 148, 236, 4, Rgba{120, 70, 30, 255});
    p.rect(160, 144, 192, 176, 2, kColours[0]);
}

void gear(const Pen& p, int variant) {
    std::vector<SubPoint> v;
    for (int k = 0; k < 32; ++k) {
        const int r = (k / 2) % 2 ? 92 : 120;
        const int a = k * 8 + 2 * (k % 2 ? 1 : -1) + 4;
        v.push_back(p.p(128 + r * isin(a) / 1024, 128 - r * icos(a) / 1024));
    }
    fillPolygon(p.c, v, variant % 2 ? Rgba{120, 130, 150, 255} : Rgba{90, 110, 160, 255});
    p.circle(128, 128, 38, kDark);
}

void note(const Pen& p, int variant) {
    const Rgba col = colourOf(variant + 4);
    p.circle(92, 196, 40, col);
    p.line(126, 196, 126, 36, 9, col);
    p.polygon({{120, 30}, {206, 76}, {206, 124}, {132, 84}}, col);
}

}  // namespace

IconBox wholeCanvas(const DemoCanvas& c) { return {0, 0, c.width() * kSub, c.height() * kSub}; }

IconBox insetBox(IconBox box, int numerator, int denominator) {
    const int w = box.w * numerator / denominator, h = box.h * numerator / denominator;
    return {box.x + (box.w - w) / 2, box.y + (box.h - h) / 2, w, h};
}

void drawClock(DemoCanvas& c, int minutes, IconBox box) {
    const Pen p{c, box};
    p.circle(128, 128, 124, kDark);
    p.circle(128, 128, 108, kWhite);
    for (int k = 0; k < 12; ++k) {
        const int a = k * 256 / 12;
        p.circle(128 + 90 * isin(a) / 1024, 128 - 90 * icos(a) / 1024, k % 3 ? 6 : 10, kDark);
    }
    const int hour = minutes * 256 / 720, minute = (minutes % 60) * 256 / 60;
    p.line(128, 128, 128 + 54 * isin(hour) / 1024, 128 - 54 * icos(hour) / 1024, 11, kDark);
    p.line(128, 128, 128 + 82 * isin(minute) / 1024, 128 - 82 * icos(minute) / 1024, 7, kDark);
    p.circle(128, 128, 12, kRed);
}

void drawIcon(DemoCanvas& c, int kind, int variant, IconBox box) {
    const Pen p{c, box};
    switch (kind % kDemoIconKinds) {
        case 0: battery(p, variant); break;
        case 1: signal(p, variant); break;
        case 2: envelope(p, variant); break;
        case 3: drawClock(c, (variant * 97) % 720, box); break;
        case 4: arrow(p, variant); break;
        case 5: bell(p, variant); break;
        case 6: lock(p, variant); break;
        case 7: speaker(p, variant); break;
        case 8: star(p, variant); break;
        case 9: heart(p, variant); break;
        case 10: check(p, true); break;
        case 11: check(p, false); break;
        case 12: folder(p, variant); break;
        case 13: house(p, variant); break;
        case 14: gear(p, variant); break;
        default: note(p, variant); break;
    }
}

}  // namespace korvatek::firmware

#include "demo/demo_pictures.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

#include "demo/demo_canvas.h"
#include "demo/demo_flash.h"
#include "demo/demo_icons.h"
#include "demo/demo_picture_encoding.h"
#include "demo/demo_scenes.h"

namespace korvatek::firmware {
namespace {

// Wallpapers and screens are scenes; the rest are drawn symbols, text and frames.
enum class Motif {
    Landscape,
    Plasma,
    Rings,
    Tiles,
    Grid,
    Logo,
    Screen,
    Preview,
    Frame,
    Menu,
    Icon,
    Status,
    Dot,
    Label,
    Digit
};

struct Group {
    int first;
    int last;
    Motif motif;
};

// Picture numbers by group, covering 0..1700 (the odd records of demo_flash.h fall inside
// groups but are skipped).
constexpr std::array<Group, 44> kGroups = {{
    {0, 0, Motif::Landscape},    {1, 48, Motif::Status},       {49, 60, Motif::Digit},
    {61, 140, Motif::Icon},      {141, 210, Motif::Dot},       {211, 299, Motif::Menu},
    {300, 300, Motif::Plasma},   {301, 380, Motif::Label},     {381, 420, Motif::Frame},
    {421, 436, Motif::Preview},  {437, 520, Motif::Status},    {521, 600, Motif::Icon},
    {601, 639, Motif::Digit},    {640, 700, Motif::Menu},      {701, 701, Motif::Rings},
    {702, 730, Motif::Frame},    {731, 736, Motif::Screen},    {737, 820, Motif::Dot},
    {821, 900, Motif::Label},    {901, 975, Motif::Icon},      {976, 976, Motif::Status},
    {977, 1050, Motif::Menu},    {1051, 1051, Motif::Tiles},   {1052, 1100, Motif::Label},
    {1101, 1200, Motif::Status}, {1201, 1201, Motif::Grid},    {1202, 1210, Motif::Preview},
    {1211, 1300, Motif::Icon},   {1301, 1332, Motif::Menu},    {1333, 1360, Motif::Dot},
    {1361, 1384, Motif::Frame},  {1385, 1400, Motif::Label},   {1401, 1401, Motif::Landscape},
    {1402, 1402, Motif::Logo},   {1403, 1470, Motif::Menu},    {1471, 1476, Motif::Screen},
    {1477, 1560, Motif::Status}, {1561, 1600, Motif::Digit},   {1601, 1660, Motif::Dot},
    {1661, 1680, Motif::Label},  {1681, 1690, Motif::Icon},    {1691, 1695, Motif::Preview},
    {1696, 1699, Motif::Screen}, {1700, 1700, Motif::Preview},
}};

constexpr std::array<std::uint8_t, 9> kTypeCycle = {0x85, 0x88, 0x8A, 0x05, 0x08, 0x0A, 0x87, 0x07, 0x01};

constexpr std::array<std::string_view, 24> kLabels = {
    "Menu",     "Options",   "Back",   "Select", "Call",      "Messages",  "Contacts", "Camera",
    "Settings", "Organizer", "Games",  "Alarm",  "Radio",     "Music",     "Calendar", "Profiles",
    "Korvatek", "Inbox",     "Outbox", "Drafts", "Phonebook", "Bluetooth", "Tones",    "Clock"};

struct Plan {
    int width;
    int height;
    std::uint8_t type;
    Motif motif;
    bool keyed = false;
    bool dither = false;
};

Motif motifOf(int number) {
    for (const Group& g : kGroups)
        if (number >= g.first && number <= g.last) return g.motif;
    return Motif::Status;
}

std::string labelText(int number) {
    if (number % 5 == 4) {
        char text[6];
        numberText(number, text);
        return std::string("Pic ") + (text + 1);
    }
    return std::string(kLabels[static_cast<std::size_t>(number % kLabels.size())]);
}

Plan planOf(int number) {
    const Motif motif = motifOf(number);
    const std::uint8_t type = kTypeCycle[static_cast<std::size_t>(number % 9)];
    switch (number) {  // the wallpapers and two pictures that the odd records lean on
        case 0: return {240, 320, 0x88, motif};
        case 300: return {240, 320, 0x05, motif, false, true};
        case 701: return {240, 320, 0x8A, motif};
        case 976: return {16, 16, 0x85, motif, true};
        case 1051: return {240, 320, 0x87, motif};
        case 1201: return {240, 320, 0x08, motif};
        case 1401: return {176, 220, 0x0A, motif};
        case 1402: return {240, 320, 0x01, motif, false, true};
        case 1700: return {128, 96, 0x8A, motif};
        default: break;
    }
    switch (motif) {
        case Motif::Screen: return {number % 2 ? 132 : 128, number % 2 ? 176 : 160, type, motif, false, true};
        case Motif::Preview: return {number % 3 ? 128 : 96, number % 3 ? 96 : 64, type, motif, false, type != 0x01};
        case Motif::Frame: return {number % 4 == 3 ? 48 : 64, number % 4 == 3 ? 48 : 64, type, motif, true};
        case Motif::Menu: return {number % 5 == 2 ? 40 : 32, number % 5 == 2 ? 40 : 32, type, motif, true};
        case Motif::Icon: return {24, number % 7 == 3 ? 20 : 24, type, motif, true};
        case Motif::Dot: {
            static constexpr int kSizes[4][2] = {{8, 8}, {6, 6}, {10, 10}, {9, 7}};
            const auto& s = kSizes[number % 4];
            return {s[0], s[1], type, motif, true};
        }
        case Motif::Label: return {textWidth(labelText(number), 1) + 8, 14, type, motif, true};
        case Motif::Digit: return {12, 17, type, motif, true};
        default: return {number % 7 == 5 ? 13 : 16, number % 7 == 5 ? 11 : 16, type, motif, true};
    }
}

void drawPreview(DemoCanvas& c, int number, bool mono) {
    const int w = c.width(), h = c.height();
    const Rgba top = mix(hue(number * 97), Rgba{255, 255, 255, 255}, 120);
    const Rgba bottom = mix(hue(number * 97 + 500), Rgba{0, 0, 0, 255}, 110);
    const Rgba ink = mono ? Rgba{0, 0, 0, 255} : Rgba{255, 255, 255, 255};
    if (!mono) verticalGradient(c, 0, 0, w, h, top, bottom);
    const int icon = h / 2;
    drawIcon(c, number % kDemoIconKinds, number / kDemoIconKinds,
             {6 * kSub, (h - icon) / 2 * kSub, icon * kSub, icon * kSub});
    char text[6];
    numberText(number, text);
    const int scale = w >= 120 ? 2 : 1;
    if (!mono) drawText(c, icon + 11, h / 4 - 4, text, scale, Rgba{0, 0, 0, 110});
    drawText(c, icon + 10, h / 4 - 5, text, scale, ink);
    drawText(c, icon + 10, h / 4 + 12 * scale, "Korvatek", 1, ink);
    fillRect(c, 0, 0, w, 1, Rgba{0, 0, 0, 255});
    fillRect(c, 0, h - 1, w, 1, Rgba{0, 0, 0, 255});
    fillRect(c, 0, 0, 1, h, Rgba{0, 0, 0, 255});
    fillRect(c, w - 1, 0, 1, h, Rgba{0, 0, 0, 255});
}

void drawFrame(DemoCanvas& c, int number) {
    const int frame = number % 12, kind = (number / 12) % 3;
    const IconBox box = wholeCanvas(c);
    const int cx = box.w / 2, cy = box.h / 2, r = box.w * 3 / 8;
    if (kind == 0) {
        drawClock(c, frame * 65, insetBox(box, 15, 16));
    } else if (kind == 1) {
        for (int k = 0; k < 8; ++k) {
            const int fade = ((frame - k) % 8 + 8) % 8;
            const Rgba col = mix(hue(number * 50), Rgba{225, 225, 230, 255}, fade * 30);
            fillCircle(c, cx + r * isin(k * 32) / 1024, cy - r * icos(k * 32) / 1024,
                       box.w / 12 + (fade == 0 ? kSub : 0), col);
        }
    } else {
        for (int k = 0; k < 3; ++k) {
            const int radius = (frame * box.w / 24 + k * box.w / 6) % (box.w / 2) + kSub * 2;
            const int fade = radius * 256 / (box.w / 2 + kSub * 2);
            Rgba col = mix(Rgba{40, 150, 230, 255}, Rgba{200, 230, 250, 255}, fade);
            col.a = static_cast<std::uint8_t>(255 - fade * 100 / 256);
            fillRing(c, cx, cy, radius, radius - 3 * kSub, col);
        }
        fillCircle(c, cx, cy, box.w / 10, Rgba{40, 110, 220, 255});
    }
}

void drawMenu(DemoCanvas& c, int number) {
    const IconBox box = wholeCanvas(c);
    const Rgba base = mix(hue(number * 131), Rgba{40, 40, 60, 255}, 90);
    fillRoundRect(c, 0, 0, box.w, box.h, box.w / 5, base);
    fillRoundRect(c, kSub, kSub, box.w - kSub, box.h / 2, box.w / 6, Rgba{255, 255, 255, 60});
    drawIcon(c, number % kDemoIconKinds, number / kDemoIconKinds, insetBox(box, 11, 16));
}

void drawDot(DemoCanvas& c, int number) {
    const IconBox box = wholeCanvas(c);
    const Rgba col = hue(number * 211);
    switch ((number / 4) % 4) {
        case 0: fillCircle(c, box.w / 2, box.h / 2, std::min(box.w, box.h) * 7 / 16, col); break;
        case 1: fillPolygon(c, {{kSub, kSub}, {box.w - kSub, box.h / 2}, {kSub, box.h - kSub}}, col); break;
        case 2:
            fillRect(c, c.width() / 2 - 1, 0, 2, c.height(), col);
            fillRect(c, 0, c.height() / 2 - 1, c.width(), 2, col);
            break;
        default:
            fillRect(c, 0, 0, c.width(), c.height(), Rgba{30, 30, 40, 255});
            fillRect(c, 1, 1, c.width() - 2, c.height() - 2, col);
            break;
    }
}

void drawLabel(DemoCanvas& c, int number) {
    const Rgba base = mix(hue(number * 71 + 900), Rgba{20, 20, 40, 255}, 150);
    fillRoundRect(c, 0, 0, c.width() * kSub, c.height() * kSub, 4 * kSub, base);
    fillRoundRect(c, kSub, kSub, (c.width() - 1) * kSub, c.height() / 2 * kSub, 3 * kSub, Rgba{255, 255, 255, 50});
    drawText(c, 4, 0, labelText(number), 1, Rgba{255, 255, 255, 255});
}

void drawDigit(DemoCanvas& c, int number) {
    const char text[2] = {number % 11 == 10 ? ':' : static_cast<char>('0' + number % 11), 0};
    drawText(c, 2, -2, text, 2, Rgba{0, 0, 0, 140});
    drawText(c, 1, -3, text, 2, hue(number * 300));
}

}  // namespace

bool isOddDemoPicture(int number) {
    return std::find(kDemoOddPictures.begin(), kDemoOddPictures.end(), number) != kDemoOddPictures.end();
}

DemoPicture makeDemoPicture(int number) {
    const Plan plan = planOf(number);
    DemoCanvas c(plan.width, plan.height, plan.keyed ? kClear : Rgba{255, 255, 255, 255});
    switch (plan.motif) {
        case Motif::Landscape: drawLandscape(c, number == 0 ? 0 : 1, number); break;
        case Motif::Plasma: drawPlasma(c, 0, number); break;
        case Motif::Rings: drawRings(c, 0, number); break;
        case Motif::Tiles: drawTiles(c, 0, number); break;
        case Motif::Grid: drawColourGrid(c, 0, number); break;
        case Motif::Logo: drawMonoLogo(c, number); break;
        case Motif::Screen:
            switch (number % 4) {
                case 0: drawLandscape(c, number % 3, number); break;
                case 1: drawPlasma(c, number, number); break;
                case 2: drawRings(c, number, number); break;
                default: drawTiles(c, number, number); break;
            }
            break;
        case Motif::Preview: drawPreview(c, number, plan.type == 0x01); break;
        case Motif::Frame: drawFrame(c, number); break;
        case Motif::Menu: drawMenu(c, number); break;
        case Motif::Icon:
            drawIcon(c, number % kDemoIconKinds, number / kDemoIconKinds, insetBox(wholeCanvas(c), 15, 16));
            break;
        case Motif::Dot: drawDot(c, number); break;
        case Motif::Label: drawLabel(c, number); break;
        case Motif::Digit: drawDigit(c, number); break;
        case Motif::Status: drawIcon(c, number % kDemoIconKinds, number / kDemoIconKinds, wholeCanvas(c)); break;
    }
    DemoPicture picture;
    picture.width = static_cast<std::uint16_t>(plan.width);
    picture.height = static_cast<std::uint16_t>(plan.height);
    picture.type = plan.type;
    picture.data = encodeDemoPicture(c, plan.type, plan.keyed, plan.dither);
    return picture;
}

}  // namespace korvatek::firmware

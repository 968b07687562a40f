#pragma once
// Drawing surface for the demo pictures: RGBA pixels, shapes with smooth edges (16 samples a
// pixel), gradients and text in the demo typeface. Integer arithmetic throughout, so that
// every platform draws the same bytes. Shape coordinates are in sixteenths of a pixel.

#include <cstdint>
#include <string_view>
#include <vector>

namespace korvatek::firmware {

struct Rgba {
    std::uint8_t r = 0, g = 0, b = 0, a = 255;
    bool operator==(const Rgba&) const = default;
};

inline constexpr int kSub = 16;  // sub-pixel steps per pixel
inline constexpr Rgba kClear{0, 0, 0, 0};

struct SubPoint {
    int x = 0;
    int y = 0;
};

class DemoCanvas {
public:
    DemoCanvas(int width, int height, Rgba fill);
    int width() const { return width_; }
    int height() const { return height_; }
    Rgba at(int x, int y) const { return pixels_[static_cast<std::size_t>(y * width_ + x)]; }
    void set(int x, int y, Rgba c);
    // Paints c over the pixel with c.a scaled by coverage / 16 (source-over).
    void blend(int x, int y, Rgba c, int coverage = 16);

private:
    int width_;
    int height_;
    std::vector<Rgba> pixels_;
};

// sin and cos of an angle in 256ths of a turn, scaled by 1024.
int isin(int angle);
int icos(int angle);
// Floor of the square root.
std::uint32_t isqrt(std::uint64_t n);
// A fully saturated colour around the colour wheel, hue in 0..1535.
Rgba hue(int h);
// t in 0..256 from a to b, alpha included.
Rgba mix(Rgba a, Rgba b, int t);

void fillRect(DemoCanvas& c, int x, int y, int w, int h, Rgba colour);
void verticalGradient(DemoCanvas& c, int x, int y, int w, int h, Rgba top, Rgba bottom);
void fillCircle(DemoCanvas& c, int cx, int cy, int r, Rgba colour);
void fillRing(DemoCanvas& c, int cx, int cy, int outer, int inner, Rgba colour);
// The part of a ring right of its centre (the sound waves of a speaker).
void fillRightArc(DemoCanvas& c, int cx, int cy, int outer, int inner, Rgba colour);
void fillRoundRect(DemoCanvas& c, int x0, int y0, int x1, int y1, int radius, Rgba colour);
// Even-odd filled polygon.
void fillPolygon(DemoCanvas& c, const std::vector<SubPoint>& points, Rgba colour);
void strokeLine(DemoCanvas& c, SubPoint a, SubPoint b, int halfWidth, Rgba colour);

// Text in whole pixels; scale 1, 2 or 3; the box of a character is 6 x 11 times the scale.
int textWidth(std::string_view text, int scale);
void drawText(DemoCanvas& c, int x, int y, std::string_view text, int scale, Rgba colour);

}  // namespace korvatek::firmware

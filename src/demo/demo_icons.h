#pragma once
// Small symbols for the demo pictures (battery, signal bars, envelope, clock, arrows ...),
// drawn on a 256 x 256 design grid and fitted into any box, from 8 x 8 status icons to
// 64 x 64 animation frames.

#include "demo/demo_canvas.h"

namespace korvatek::firmware {

inline constexpr int kDemoIconKinds = 16;

// A box in sub-pixel units.
struct IconBox {
    int x = 0;
    int y = 0;
    int w = 0;
    int h = 0;
};

IconBox wholeCanvas(const DemoCanvas& c);
IconBox insetBox(IconBox box, int numerator, int denominator);  // keeps the centre

// kind 0..kDemoIconKinds-1; variant picks levels, directions, times and colours.
void drawIcon(DemoCanvas& c, int kind, int variant, IconBox box);

// A clock face with its hands at minute (0..719 of a 12-hour dial, in minutes).
void drawClock(DemoCanvas& c, int minutes, IconBox box);

}  // namespace korvatek::firmware

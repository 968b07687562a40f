#pragma once
// The large demo pictures: wallpapers and screen-sized scenes. Each fills the whole canvas it
// is given, whatever its size; the number is printed small in a corner.

#include "demo/demo_canvas.h"

namespace korvatek::firmware {

// variant 0 day, 1 night, 2 sunset
void drawLandscape(DemoCanvas& c, int variant, int number);
void drawPlasma(DemoCanvas& c, int variant, int number);
// Rainbow rings whose border fades out through the alpha channel.
void drawRings(DemoCanvas& c, int variant, int number);
void drawTiles(DemoCanvas& c, int variant, int number);
void drawColourGrid(DemoCanvas& c, int variant, int number);
// Black and white: a title panel over a radial shade (dithered when encoded).
void drawMonoLogo(DemoCanvas& c, int number);

// "#0042"
void numberText(int number, char (&out)[6]);

}  // namespace korvatek::firmware

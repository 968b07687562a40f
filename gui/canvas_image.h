#pragma once
// The shown part of a pixel canvas as an image.

#include <QImage>

#include "codec/pixel_canvas.h"

namespace korvatek::gui {

// The top-left width x height cells, each drawn in its red, green and blue (the fourth byte,
// alpha or marker, is not shown; the transparent key already holds its own colour). A null
// image when the size is empty or larger than the canvas.
QImage canvasImage(const codec::PixelCanvas& canvas, int width, int height);

}  // namespace korvatek::gui

#pragma once
// The shown part of a pixel canvas as an image.

#include <QImage>

#include "base/bytes.h"
#include "codec/pixel_canvas.h"
#include "firmware/picture_record.h"

namespace korvatek::gui {

// The top-left width x height cells, each drawn in its red, green and blue (the fourth byte,
// alpha or marker, is not shown; the transparent key already holds its own colour). A null
// image when the size is empty or larger than the canvas.
QImage canvasImage(const codec::PixelCanvas& canvas, int width, int height);

// A picture decoded on a canvas of its own (24-bit output, nothing carried over from another
// picture): one of the fullflash by its record, or a GPF/GPF2 container's. A null image when it
// cannot be decoded.
QImage flashPictureImage(ByteView flash, const firmware::PictureRecord& record);
QImage containerImage(ByteView container);

}  // namespace korvatek::gui

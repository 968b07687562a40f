#include "canvas_image.h"

namespace korvatek::gui {

QImage canvasImage(const codec::PixelCanvas& canvas, int width, int height) {
    if (width <= 0 || height <= 0 || width > canvas.columns() || height > canvas.rows()) return {};
    QImage image(width, height, QImage::Format_RGB32);
    for (int y = 0; y < height; ++y) {
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < width; ++x) {
            const codec::Cell& cell = canvas.at(x, y);  // blue, green, red, fourth byte
            line[x] = qRgb(cell[2], cell[1], cell[0]);
        }
    }
    return image;
}

}  // namespace korvatek::gui

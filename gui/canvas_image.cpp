#include "canvas_image.h"

#include "edit/picture_decode.h"
#include "edit/picture_files.h"

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

QImage flashPictureImage(ByteView flash, const firmware::PictureRecord& record) {
    codec::PixelCanvas canvas;
    const edit::DecodedPicture decoded = edit::decodeFlashPicture(flash, record, 24, 0, canvas);
    if (decoded.stopped || decoded.refused) return {};
    return canvasImage(canvas, decoded.width, decoded.height);
}

QImage containerImage(ByteView container) {
    ByteReader in(container);
    const auto head = edit::readContainerHead(in, false);
    if (!head) return {};
    codec::PixelCanvas canvas;
    const edit::DecodedPicture decoded =
        edit::decodeContainerData(in, head->width, head->height, head->typeText, 24, 0, canvas);
    if (decoded.stopped || decoded.refused) return {};
    return canvasImage(canvas, decoded.width, decoded.height);
}

}  // namespace korvatek::gui

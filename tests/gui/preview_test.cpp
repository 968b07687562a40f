// Picture1: the canvas as an image, the whole-number zoom that fits the pane, and sharp pixels.
#include <QTest>

#include "canvas_image.h"
#include "preview_widget.h"
#include "test_classes.h"

namespace korvatek::gui::test {

class PreviewTest : public QObject {
    Q_OBJECT
private slots:
    void zoomIsTheLargestWholeFactorThatFits_data() {
        QTest::addColumn<QSize>("picture");
        QTest::addColumn<QSize>("pane");
        QTest::addColumn<int>("zoom");
        QTest::newRow("height decides") << QSize(176, 220) << QSize(900, 500) << 2;
        QTest::newRow("exactly three") << QSize(100, 100) << QSize(324, 324) << 3;
        QTest::newRow("one short of three") << QSize(100, 100) << QSize(323, 400) << 2;
        QTest::newRow("pane smaller than the picture") << QSize(240, 320) << QSize(100, 100) << 1;
        QTest::newRow("glyph, capped") << QSize(8, 12) << QSize(600, 600) << PreviewWidget::kMaxZoom;
        QTest::newRow("glyph") << QSize(12, 16) << QSize(300, 300) << 17;
        QTest::newRow("nothing to show") << QSize(0, 24) << QSize(300, 300) << 1;
    }
    void zoomIsTheLargestWholeFactorThatFits() {
        QFETCH(QSize, picture);
        QFETCH(QSize, pane);
        QFETCH(int, zoom);
        QCOMPARE(PreviewWidget::fitZoom(picture, pane), zoom);
    }

    void canvasCellsBecomeTheirColours() {
        codec::PixelCanvas canvas;
        canvas.at(0, 0) = {0x10, 0x20, 0x30, 0x80};  // blue, green, red, alpha: alpha is not shown
        canvas.at(1, 0) = codec::TransparentPixel;
        canvas.at(0, 1) = {0xFF, 0xFF, 0xFF, 0x30};
        const QImage image = canvasImage(canvas, 2, 2);
        QCOMPARE(image.size(), QSize(2, 2));
        QCOMPARE(image.pixel(0, 0), qRgb(0x30, 0x20, 0x10));
        QCOMPARE(image.pixel(1, 0), qRgb(169, 171, 169));
        QCOMPARE(image.pixel(0, 1), qRgb(255, 255, 255));
        QCOMPARE(image.pixel(1, 1), qRgb(0, 0, 0));

        QCOMPARE(canvasImage(canvas, 240, 320).size(), QSize(240, 320));
        QVERIFY(canvasImage(canvas, 242, 10).isNull() && canvasImage(canvas, 0, 24).isNull());
    }

    void pixelsStaySharpSquares() {
        QImage source(3, 2, QImage::Format_RGB32);
        const QRgb colours[] = {qRgb(255, 0, 0), qRgb(0, 255, 0), qRgb(0, 0, 255),
                                qRgb(169, 171, 169), qRgb(255, 255, 255), qRgb(0, 0, 0)};
        for (int i = 0; i < 6; ++i) source.setPixel(i % 3, i / 3, colours[i]);

        PreviewWidget preview;
        preview.resize(3 * 7 + 2 * PreviewWidget::kMargin, 200);
        preview.setImage(source);
        QCOMPARE(preview.zoom(), 7);
        const QImage shown = preview.grab().toImage();
        const QRect target = preview.imageRect();
        QCOMPARE(target.size(), QSize(21, 14));
        for (int y = 0; y < target.height(); ++y)
            for (int x = 0; x < target.width(); ++x)
                QCOMPARE(shown.pixel(target.left() + x, target.top() + y), source.pixel(x / 7, y / 7));
        preview.setImage({});
        QVERIFY(preview.imageRect().isNull());
    }
};

KORVATEK_TEST_CLASS(PreviewTest);

}  // namespace korvatek::gui::test

#include "preview_test.moc"

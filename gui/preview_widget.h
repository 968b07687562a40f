#pragma once
// Picture1: the selected picture or glyph, enlarged by the largest whole factor that fits the
// pane and drawn nearest-neighbour, so every pixel stays a sharp square.

#include <QImage>
#include <QWidget>

namespace korvatek::gui {

class PreviewWidget : public QWidget {
    Q_OBJECT
public:
    static constexpr int kMargin = 12;    // free border around the picture
    static constexpr int kMaxZoom = 32;   // a 1 x 1 picture stays a visible square, not the whole pane

    explicit PreviewWidget(QWidget* parent = nullptr);

    // A null image clears the preview.
    void setImage(QImage image);
    const QImage& image() const { return m_image; }

    // The factor and place the picture is drawn with at the current size.
    int zoom() const;
    QRect imageRect() const;

    // The largest whole factor (1 at least) at which `picture` fits into `pane` less the margins.
    static int fitZoom(QSize picture, QSize pane);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QImage m_image;
};

}  // namespace korvatek::gui

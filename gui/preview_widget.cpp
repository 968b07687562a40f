#include "preview_widget.h"

#include <QPainter>

#include <algorithm>

namespace korvatek::gui {

namespace {

const QColor kBackground(0x3A, 0x3D, 0x41);
const QColor kFrame(0x5C, 0x60, 0x66);
const QColor kNote(0xB4, 0xB8, 0xBE);

}  // namespace

PreviewWidget::PreviewWidget(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("Picture1"));
    setAttribute(Qt::WA_OpaquePaintEvent);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

void PreviewWidget::setImage(QImage image) {
    m_image = std::move(image);
    update();
}

int PreviewWidget::fitZoom(QSize picture, QSize pane) {
    if (picture.isEmpty()) return 1;
    const int roomX = (pane.width() - 2 * kMargin) / picture.width();
    const int roomY = (pane.height() - 2 * kMargin) / picture.height();
    return std::clamp(std::min(roomX, roomY), 1, kMaxZoom);
}

int PreviewWidget::zoom() const { return fitZoom(m_image.size(), size()); }

QRect PreviewWidget::imageRect() const {
    if (m_image.isNull()) return {};
    const QSize shown = m_image.size() * zoom();
    return QRect(QPoint((width() - shown.width()) / 2, (height() - shown.height()) / 2), shown);
}

QSize PreviewWidget::sizeHint() const { return {2 * 240 + 2 * kMargin, 2 * 320 + 2 * kMargin}; }

QSize PreviewWidget::minimumSizeHint() const { return {120, 120}; }

void PreviewWidget::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), kBackground);
    if (m_image.isNull()) return;

    const QRect target = imageRect();
    painter.setRenderHint(QPainter::SmoothPixmapTransform, false);
    painter.setPen(kFrame);
    painter.drawRect(target.adjusted(-1, -1, 0, 0));
    painter.drawImage(target, m_image);

    // Size and factor in the corner, so a person knows what they are looking at.
    const QString note = QStringLiteral("%1 \u00D7 %2   %3:1").arg(m_image.width()).arg(m_image.height()).arg(zoom());
    QFont small = font();
    small.setPointSizeF(small.pointSizeF() * 0.85);
    painter.setFont(small);
    painter.setPen(kNote);
    painter.drawText(rect().adjusted(6, 0, -6, -4), Qt::AlignRight | Qt::AlignBottom, note);
}

}  // namespace korvatek::gui

#include "gallery_pane.h"

#include <QListView>
#include <QPainter>
#include <QPainterPath>
#include <QScrollBar>
#include <QSlider>
#include <QStyledItemDelegate>
#include <QToolButton>

#include <algorithm>

#include "app/workspace.h"
#include "gallery_model.h"
#include "picture_list_model.h"
#include "qt_text.h"
#include "thumbnail_cache.h"

namespace korvatek::gui {

using settings::MessageKey;

namespace {

constexpr int kPad = 5;   // around the picture square, inside the tile

const QColor kCheckDark(204, 204, 204);
const QColor kCheckLight(255, 255, 255);
const QColor kWaiting(0xE4, 0xE6, 0xE9);
const QColor kFailedFill(0xF6, 0xE3, 0xE3);
const QColor kFailedLine(0xC0, 0x39, 0x2B);
const QColor kReplaced(0xE6, 0x7E, 0x22);

QBrush checkerboard() {
    static const QBrush brush = [] {
        QPixmap tile(8, 8);
        tile.fill(kCheckLight);
        QPainter painter(&tile);
        painter.fillRect(0, 0, 4, 4, kCheckDark);
        painter.fillRect(4, 4, 4, 4, kCheckDark);
        return QBrush(tile);
    }();
    return brush;
}

// Four small squares: the toggle's picture, drawn so that no image file is needed.
QIcon tilesIcon(const QColor& colour) {
    QPixmap pixmap(16, 16);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    for (int q = 0; q < 4; ++q) painter.fillRect(1 + (q % 2) * 8, 1 + (q / 2) * 8, 6, 6, colour);
    return QIcon(pixmap);
}

}  // namespace

QRect tilePictureRect(QSize picture, const QRect& square) {
    if (picture.isEmpty()) return {};
    QSize shown = picture;
    if (picture.width() <= square.width() && picture.height() <= square.height()) {
        const int zoom = std::max(1, std::min(square.width() / picture.width(), square.height() / picture.height()));
        shown = picture * zoom;
    } else {
        shown = picture.scaled(square.size(), Qt::KeepAspectRatio).expandedTo(QSize(1, 1));
    }
    return QRect(square.x() + (square.width() - shown.width()) / 2, square.y() + (square.height() - shown.height()) / 2,
                 shown.width(), shown.height());
}

// Draws one tile: the picture square (thumbnail on a checkerboard, a grey box while it is on
// its way, a crossed box when it cannot be shown), a coloured corner for a waiting
// replacement, and the number and size beneath.
class TileDelegate : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;
    int tile = GalleryPane::kDefaultTile;

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex&) const override {
        return cellSize(option.fontMetrics);
    }
    QSize cellSize(const QFontMetrics& metrics) const {
        return {tile + 2 * kPad, kPad + tile + 3 + 2 * metrics.height() + kPad};
    }

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        painter->save();
        const QRect cell = option.rect;
        const bool selected = option.state & QStyle::State_Selected;
        const QPalette& palette = option.palette;
        if (selected) {
            painter->setRenderHint(QPainter::Antialiasing, true);
            painter->setPen(Qt::NoPen);
            painter->setBrush(palette.color(QPalette::Highlight));
            painter->drawRoundedRect(QRectF(cell).adjusted(1, 1, -1, -1), 4, 4);
            painter->setRenderHint(QPainter::Antialiasing, false);
            painter->setBrush(Qt::NoBrush);   // the frames below are outlines
        }
        const QRect square(cell.x() + (cell.width() - tile) / 2, cell.y() + kPad, tile, tile);
        const auto state = static_cast<Thumbnail::State>(index.data(GalleryModel::StateRole).toInt());
        if (state == Thumbnail::State::Ready) {
            const QImage image = index.data(Qt::DecorationRole).value<QImage>();
            const QRect target = tilePictureRect(image.size(), square);
            painter->setBrushOrigin(target.topLeft());
            painter->fillRect(target, checkerboard());
            painter->setRenderHint(QPainter::SmoothPixmapTransform, false);   // every pixel a sharp square
            painter->drawImage(target, image);
            painter->setPen(QColor(0, 0, 0, 60));
            painter->drawRect(target.adjusted(-1, -1, 0, 0));
        } else if (state == Thumbnail::State::Failed) {
            const QRect box = square.adjusted(tile / 6, tile / 6, -tile / 6, -tile / 6);
            painter->fillRect(box, kFailedFill);
            painter->setPen(QPen(kFailedLine, 2));
            painter->drawRect(box);
            painter->drawLine(box.topLeft(), box.bottomRight());
            painter->drawLine(box.topRight(), box.bottomLeft());
        } else {
            painter->fillRect(square.adjusted(tile / 6, tile / 6, -tile / 6, -tile / 6), kWaiting);
        }
        if (index.data(GalleryModel::ReplacedRole).toBool()) {
            // A replacement waits in the patch: the list's "*" as a corner.
            const int corner = std::max(16, tile / 4);
            QPainterPath triangle;
            triangle.moveTo(cell.right() - corner, cell.top() + 1);
            triangle.lineTo(cell.right(), cell.top() + 1);
            triangle.lineTo(cell.right(), cell.top() + 1 + corner);
            triangle.closeSubpath();
            painter->setRenderHint(QPainter::Antialiasing, true);
            painter->fillPath(triangle, kReplaced);
            painter->setRenderHint(QPainter::Antialiasing, false);
        }
        const QColor ink = palette.color(selected ? QPalette::HighlightedText : QPalette::Text);
        const int line = option.fontMetrics.height();
        QRect text(cell.x() + 2, square.bottom() + 4, cell.width() - 4, line);
        painter->setPen(ink);
        painter->drawText(text, Qt::AlignHCenter | Qt::AlignVCenter, index.data(Qt::DisplayRole).toString());
        QColor faint = ink;
        faint.setAlphaF(selected ? 0.85f : 0.6f);
        painter->setPen(faint);
        painter->drawText(text.translated(0, line), Qt::AlignHCenter | Qt::AlignVCenter,
                          option.fontMetrics.elidedText(index.data(GalleryModel::SizeTextRole).toString(), Qt::ElideRight,
                                                        text.width()));
        if (option.state & QStyle::State_HasFocus) {
            painter->setPen(QPen(selected ? palette.color(QPalette::HighlightedText) : palette.color(QPalette::Highlight), 1,
                                 Qt::DotLine));
            painter->setBrush(Qt::NoBrush);
            painter->drawRect(cell.adjusted(2, 2, -3, -3));
        }
        painter->restore();
    }
};

GalleryPane::GalleryPane(const app::Workspace& ws, PictureListModel* pictures, WorkspaceSelection::Request request,
                         QWidget* parent)
    : QObject(parent), m_ws(ws) {
    m_cache = new ThumbnailCache(this);
    m_model = new GalleryModel(pictures, *m_cache, ws.messages, this);
    m_selection = new WorkspaceSelection(m_model, std::move(request), this);
    m_view = new QListView(parent);
    m_view->setObjectName(QStringLiteral("Gallery"));
    m_view->setModel(m_model);
    QItemSelectionModel* own = m_view->selectionModel();
    m_view->setSelectionModel(m_selection);
    delete own;
    m_delegate = new TileDelegate(m_view);
    m_view->setItemDelegate(m_delegate);
    m_view->setViewMode(QListView::IconMode);
    m_view->setMovement(QListView::Static);
    m_view->setResizeMode(QListView::Adjust);
    m_view->setFlow(QListView::LeftToRight);
    m_view->setWrapping(true);
    m_view->setUniformItemSizes(true);
    m_view->setSelectionMode(QAbstractItemView::SingleSelection);
    m_view->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_view->setDragEnabled(false);
    m_view->setContextMenuPolicy(Qt::CustomContextMenu);
    m_view->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    m_view->hide();

    m_toggle = new QToolButton(parent);
    m_toggle->setObjectName(QStringLiteral("GalleryToggle"));
    m_toggle->setCheckable(true);
    m_toggle->setAutoRaise(true);
    m_toggle->setIcon(tilesIcon(m_toggle->palette().color(QPalette::ButtonText)));
    m_slider = new QSlider(Qt::Horizontal, parent);
    m_slider->setObjectName(QStringLiteral("GalleryTileSize"));
    m_slider->setRange(kMinTile, kMaxTile);
    m_slider->setSingleStep(8);
    m_slider->setPageStep(32);
    m_slider->setFixedWidth(96);
    m_slider->hide();
    setTileSize(kDefaultTile);

    connect(m_slider, &QSlider::valueChanged, this, &GalleryPane::setTileSize);
    connect(m_toggle, &QToolButton::toggled, this, [this](bool on) {
        if (on && m_shownRow >= 0) m_view->scrollTo(m_model->index(m_shownRow, 0), QAbstractItemView::PositionAtCenter);
        emit toggled(on);
    });
}

GalleryPane::~GalleryPane() = default;

bool GalleryPane::isOn() const { return m_toggle->isChecked(); }

void GalleryPane::showOnTab(bool picturesTab) {
    m_toggle->setVisible(picturesTab);
    m_view->setVisible(picturesTab && isOn());
    m_slider->setVisible(picturesTab && isOn());
}

int GalleryPane::tileSize() const { return m_delegate->tile; }

void GalleryPane::setTileSize(int pixels) {
    pixels = std::clamp(pixels, kMinTile, kMaxTile);
    if (m_slider->value() != pixels) m_slider->setValue(pixels);
    m_delegate->tile = pixels;
    // The grid is set, not measured: every tile has the same size, and a new size lays them out anew.
    m_view->setGridSize(m_delegate->cellSize(m_view->fontMetrics()) + QSize(4, 4));
    m_view->verticalScrollBar()->setSingleStep(std::max(16, pixels / 3));
    if (m_shownRow >= 0) m_view->scrollTo(m_model->index(m_shownRow, 0), QAbstractItemView::PositionAtCenter);
}

void GalleryPane::refresh() {
    if (!m_cache->holds(m_ws.firmware.get(), m_ws.ListView1)) m_cache->reset(m_ws.firmware, m_ws.ListView1);
    m_selection->show(m_ws.ListView1Selected);
    if (m_ws.ListView1Selected != m_shownRow) {
        m_shownRow = m_ws.ListView1Selected;
        if (m_shownRow >= 0 && m_shownRow < m_model->rowCount()) m_view->scrollTo(m_model->index(m_shownRow, 0));
    }
}

void GalleryPane::retranslate() {
    const auto text = [&](MessageKey key) { return toQString(m_ws.messages.text(key)); };
    m_view->setAccessibleName(text(MessageKey::MsgGalleryName));
    m_view->setAccessibleDescription(text(MessageKey::MsgGalleryDescription));
    m_toggle->setAccessibleName(text(MessageKey::MsgGalleryToggle));
    m_toggle->setToolTip(text(MessageKey::MsgGalleryToggle));
    m_toggle->setAccessibleDescription(text(MessageKey::MsgGalleryDescription));
    m_slider->setAccessibleName(text(MessageKey::MsgGallerySize));
    m_slider->setToolTip(text(MessageKey::MsgGallerySize));
    // The sentences of the tiles are read from the table when asked; repaint them in the new language.
    if (m_model->rowCount() > 0) emit m_model->dataChanged(m_model->index(0, 0), m_model->index(m_model->rowCount() - 1, 0));
}

}  // namespace korvatek::gui

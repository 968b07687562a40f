#include "pending_panel.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QTableView>
#include <QToolButton>
#include <QVBoxLayout>

#include <map>

#include "base/hex_text.h"
#include "canvas_image.h"
#include "edit/text_render.h"
#include "qt_text.h"

namespace korvatek::gui {

using settings::MessageKey;

namespace {

// Enlarged or reduced to the thumbnail's size, pixels kept square and sharp.
QImage thumbnail(const QImage& image) {
    if (image.isNull()) return {};
    const int side = std::max(image.width(), image.height());
    if (side <= PendingChangesModel::kThumbnail) {
        const int zoom = std::max(1, PendingChangesModel::kThumbnail / side);
        return image.scaled(image.size() * zoom, Qt::KeepAspectRatio, Qt::FastTransformation);
    }
    return image.scaled(PendingChangesModel::kThumbnail, PendingChangesModel::kThumbnail, Qt::KeepAspectRatio,
                        Qt::FastTransformation);
}

QImage gridImage(const edit::PixelGrid& grid) {
    QImage image(grid.width, grid.height, QImage::Format_RGB32);
    for (int y = 0; y < grid.height; ++y)
        for (int x = 0; x < grid.width; ++x) image.setPixel(x, y, grid.at(x, y));
    return image;
}

}  // namespace

PendingChangesModel::PendingChangesModel(const app::Workspace& ws, QObject* parent)
    : QAbstractTableModel(parent), m_ws(ws) {}

bool PendingChangesModel::update(bool force) {
    if (!force && m_generation == m_ws.pendingGeneration()) return false;
    beginResetModel();
    read();
    m_generation = m_ws.pendingGeneration();
    endResetModel();
    return true;
}

void PendingChangesModel::read() {
    m_rows.clear();
    const auto text = [&](MessageKey key) { return toQString(m_ws.msg(key)); };
    for (const app::PendingPicture& p : m_ws.pendingPictures()) {
        Row row;
        row.number = p.record.number;
        if (p.flash) row.before = thumbnail(flashPictureImage(p.flash->bytes(), p.record));
        row.after = thumbnail(containerImage(*p.container));
        const bool moved = p.kind == edit::PicturePlacement::Kind::Moved;
        row.where = text(moved ? MessageKey::MsgPendingMoved : MessageKey::MsgPendingInPlace) +
                    toQString(app::hexText(p.address));
        row.bytes = p.length;
        m_rows.push_back(std::move(row));
    }
    // Glyphs are drawn when the font they belong to is the one read.
    const bool fontShown = m_ws.firmware && m_ws.FtypeIndex == m_ws.GlyphPatchFont;
    for (const fonts::CollectedGlyph& g : m_ws.collectedGlyphs) {
        Row row;
        row.picture = false;
        row.number = g.number;
        if (fontShown) {
            const std::u32string character(1, static_cast<char32_t>(g.number));
            row.before = thumbnail(gridImage(edit::renderText(m_ws.firmware->bytes(), m_ws.ListView2, character).pixels));
            const std::map<int, fonts::CollectedGlyph> pending{{g.number, g}};
            row.after =
                thumbnail(gridImage(edit::renderText(m_ws.firmware->bytes(), m_ws.ListView2, character, pending).pixels));
        }
        row.where = text(MessageKey::MsgPendingGlyphWhere) + toQString(app::hexText(g.headerOffset));
        row.bytes = static_cast<qint64>(g.header.size() + g.bitmap.size());
        m_rows.push_back(std::move(row));
    }
}

int PendingChangesModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

int PendingChangesModel::columnCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : ColumnCount; }

QVariant PendingChangesModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= rowCount()) return {};
    const Row& row = m_rows[static_cast<std::size_t>(index.row())];
    const QString name = toQString(m_ws.msg(row.picture ? MessageKey::MsgPendingPicture : MessageKey::MsgPendingGlyph)) +
                         QString::number(row.number);
    switch (role) {
        case Qt::DisplayRole:
            if (index.column() == Change) return name;
            if (index.column() == Where) return row.where;
            if (index.column() == Size) return row.bytes;
            return {};
        case Qt::DecorationRole:
            if (index.column() == Before) return row.before;
            if (index.column() == After) return row.after;
            return {};
        case Qt::ToolTipRole:
        case Qt::AccessibleTextRole:
            return QStringLiteral("%1, %2, %3").arg(name, row.where, QString::number(row.bytes));
        case Qt::TextAlignmentRole:
            return index.column() == Size ? QVariant(Qt::AlignRight | Qt::AlignVCenter) : QVariant(Qt::AlignLeft | Qt::AlignVCenter);
        default:
            return {};
    }
}

QVariant PendingChangesModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole || section < 0 || section >= ColumnCount) return {};
    const QStringList titles = toQString(m_ws.msg(MessageKey::MsgPendingColumns)).split(QLatin1Char('|'));
    return titles.value(section);
}

// ---- the panel

PendingPanel::PendingPanel(app::Workspace& ws, QWidget* parent) : QWidget(parent), m_ws(ws) {
    setObjectName(QStringLiteral("PendingChanges"));
    m_model = new PendingChangesModel(ws, this);
    m_table = new QTableView(this);
    m_table->setObjectName(QStringLiteral("PendingList"));
    m_table->setModel(m_model);
    m_table->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_table->setSelectionMode(QAbstractItemView::SingleSelection);
    m_table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_table->setIconSize(QSize(PendingChangesModel::kThumbnail, PendingChangesModel::kThumbnail));
    m_table->verticalHeader()->setVisible(false);
    m_table->verticalHeader()->setDefaultSectionSize(PendingChangesModel::kThumbnail + 6);
    m_table->horizontalHeader()->setStretchLastSection(true);
    m_table->setAlternatingRowColors(true);
    m_table->installEventFilter(this);
    m_empty = new QLabel(this);
    m_empty->setWordWrap(true);
    m_empty->setAlignment(Qt::AlignCenter);

    m_remove = new QPushButton(this);
    m_remove->setObjectName(QStringLiteral("PendingRemove"));
    m_undo = new QToolButton(this);
    m_undo->setObjectName(QStringLiteral("PendingUndo"));
    m_redo = new QToolButton(this);
    m_redo->setObjectName(QStringLiteral("PendingRedo"));
    m_gauge = new QProgressBar(this);
    m_gauge->setObjectName(QStringLiteral("FreeSpaceGauge"));
    m_gauge->setTextVisible(true);

    auto* buttons = new QHBoxLayout;
    buttons->addWidget(m_remove);
    buttons->addStretch(1);
    buttons->addWidget(m_undo);
    buttons->addWidget(m_redo);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(4, 4, 4, 4);
    layout->addWidget(m_table, 1);
    layout->addWidget(m_empty, 1);
    layout->addLayout(buttons);
    layout->addWidget(m_gauge);

    connect(m_remove, &QPushButton::clicked, this, &PendingPanel::removeSelected);
    connect(m_undo, &QToolButton::clicked, this, &PendingPanel::undoRequested);
    connect(m_redo, &QToolButton::clicked, this, &PendingPanel::redoRequested);
    connect(m_table, &QTableView::activated, this, [this](const QModelIndex& index) {
        const auto& row = m_model->rows()[static_cast<std::size_t>(index.row())];
        emit showRequested(row.picture, row.number);
    });
    retranslate();
}

void PendingPanel::removeSelected() {
    const QModelIndex current = m_table->currentIndex();
    if (!current.isValid()) return;
    const int at = current.row();
    const auto row = m_model->rows()[static_cast<std::size_t>(at)];
    emit removeRequested(row.picture, row.number);
    // The next change takes the removed one's place, so Delete can be pressed again.
    if (m_model->rowCount() > 0) m_table->selectRow(std::min(at, m_model->rowCount() - 1));
}

bool PendingPanel::eventFilter(QObject* watched, QEvent* event) {
    if (watched == m_table && event->type() == QEvent::KeyPress) {
        const auto* key = static_cast<QKeyEvent*>(event);
        if (key->key() == Qt::Key_Delete || key->key() == Qt::Key_Backspace) {
            removeSelected();
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

void PendingPanel::refresh() {
    if (m_model->update()) m_table->resizeColumnsToContents();
    const bool any = m_model->rowCount() > 0;
    m_table->setVisible(any);
    m_empty->setVisible(!any);
    m_remove->setEnabled(any);
    m_undo->setEnabled(m_ws.canUndoPending());
    m_redo->setEnabled(m_ws.canRedoPending());

    const app::FreeSpaceGauge gauge = m_ws.freeSpaceGauge();
    // The bar counts kilobytes so that a 64 MiB stretch fits its int range.
    const auto kib = [](std::uint64_t bytes) { return static_cast<int>((bytes + 1023) / 1024); };
    m_gauge->setRange(0, std::max(1, kib(gauge.used + gauge.left)));
    m_gauge->setValue(kib(gauge.used));
    QString text = toQString(m_ws.msg(MessageKey::MsgFreeSpaceGauge));
    text.replace(QLatin1String("%1"), QLocale().toString(static_cast<qulonglong>(gauge.used)));
    text.replace(QLatin1String("%2"), QLocale().toString(static_cast<qulonglong>(gauge.left)));
    m_gauge->setFormat(QString(text).replace(QLatin1Char('%'), QLatin1String("%%")));
    m_gauge->setAccessibleName(text);
    m_gauge->setToolTip(text);
}

void PendingPanel::retranslate() {
    const auto text = [&](MessageKey key) { return toQString(m_ws.msg(key)); };
    m_remove->setText(text(MessageKey::MsgPendingRemove));
    m_remove->setAccessibleName(text(MessageKey::MsgPendingRemove));
    m_undo->setText(text(MessageKey::MsgUndo));
    m_undo->setToolTip(text(MessageKey::MsgUndo) + QStringLiteral(" (Ctrl+Z)"));
    m_redo->setText(text(MessageKey::MsgRedo));
    m_redo->setToolTip(text(MessageKey::MsgRedo) + QStringLiteral(" (Ctrl+Shift+Z)"));
    m_table->setAccessibleName(text(MessageKey::MsgPendingTitle));
    m_table->setAccessibleDescription(text(MessageKey::MsgPendingDescription));
    m_empty->setText(text(MessageKey::MsgPendingEmpty));
    m_model->update(true);
    m_table->resizeColumnsToContents();
    refresh();
}

}  // namespace korvatek::gui

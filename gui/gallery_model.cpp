#include "gallery_model.h"

#include "accessible_text.h"
#include "app/error_message.h"
#include "picture_list_model.h"
#include "qt_text.h"
#include "thumbnail_cache.h"

namespace korvatek::gui {

using settings::MessageKey;

namespace {
// The list's columns, counted from 0 as the model counts them.
constexpr int kWidthColumn = 2;
constexpr int kHeightColumn = 3;
constexpr int kMarkColumn = 7;
}  // namespace

GalleryModel::GalleryModel(PictureListModel* pictures, ThumbnailCache& cache, const settings::MessageTable& messages,
                           QObject* parent)
    : QIdentityProxyModel(parent), m_cache(cache), m_messages(messages) {
    setSourceModel(pictures);
    // A mark gained or lost changes the tile's corner: the list tells it for the mark's column.
    connect(pictures, &QAbstractItemModel::dataChanged, this, [this](const QModelIndex& from, const QModelIndex& to) {
        if (from.column() > 0) emit dataChanged(index(from.row(), 0), index(to.row(), 0));
    });
    connect(&cache, &ThumbnailCache::arrived, this, [this](int first, int last) {
        if (last < rowCount()) emit dataChanged(index(first, 0), index(last, 0));
    });
}

QVariant GalleryModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.column() != 0) return QIdentityProxyModel::data(index, role);
    const int row = index.row();
    const auto cell = [&](int column) { return QIdentityProxyModel::data(this->index(row, column), Qt::DisplayRole).toString(); };
    const bool cached = row < m_cache.rows();
    switch (role) {
        case Qt::DecorationRole:
            if (cached) {
                const Thumbnail& thumbnail = m_cache.at(row);
                if (thumbnail.state == Thumbnail::State::Ready) return thumbnail.image;
            }
            return {};
        case SizeTextRole: return cell(kWidthColumn) + QChar(0x00D7) + cell(kHeightColumn);
        case StateRole:
            return static_cast<int>(cached ? m_cache.at(row).state : Thumbnail::State::Waiting);
        case ReplacedRole: return !cell(kMarkColumn).isEmpty();
        case Qt::ToolTipRole:
        case Qt::AccessibleTextRole: return describe(row);
        case Qt::TextAlignmentRole: return int(Qt::AlignHCenter | Qt::AlignTop);
        default: return QIdentityProxyModel::data(index, role);
    }
}

// Read as the list row is ("Picture 5, 16 by 16, 16-bit compressed"), with the depth the
// thumbnail was decoded with once it is there, or why it cannot be shown.
QString GalleryModel::describe(int row) const {
    const auto text = [&](MessageKey key) { return toQString(m_messages.text(key)); };
    const auto* rows = static_cast<const PictureListModel*>(sourceModel());
    QString sentence = pictureAccessibleText(m_messages, *rows, row, 1);
    if (row < m_cache.rows()) {
        const Thumbnail& thumbnail = m_cache.at(row);
        if (thumbnail.state == Thumbnail::State::Ready) {
            const auto cell = [&](int column) { return rows->cellText(row, column); };
            sentence = text(MessageKey::MsgRowPicture)
                           .arg(QString::number(cell(1).toInt()), cell(3), cell(4),
                                depthWords(m_messages, thumbnail.bits, thumbnail.compressed, cell(5)));
        } else if (thumbnail.state == Thumbnail::State::Failed) {
            const QString reason = thumbnail.error ? toQString(app::errorText(m_messages, *thumbnail.error))
                                   : thumbnail.empty ? text(MessageKey::MsgGalleryNoPixels)
                                                     : QString::fromStdString(thumbnail.fault);
            sentence += QStringLiteral(", ") + text(MessageKey::MsgGalleryUndecodable).arg(reason);
        }
    }
    const QString mark = pictureAccessibleText(m_messages, *rows, row, rows->columnCount());
    if (!mark.isEmpty()) sentence += QStringLiteral(", ") + mark;
    return sentence;
}

}  // namespace korvatek::gui

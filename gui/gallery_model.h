#pragma once
// The gallery's rows: the picture list's rows one to one (so the search hides the same rows and
// a tile's row is the Workspace's row), each with its thumbnail, its size as "W×H", whether a
// replacement waits for it, and a sentence for tooltips and screen readers.

#include <QIdentityProxyModel>

#include "app/message_table.h"

namespace korvatek::gui {

class PictureListModel;
class ThumbnailCache;

class GalleryModel : public QIdentityProxyModel {
    Q_OBJECT
public:
    enum Role {
        SizeTextRole = Qt::UserRole + 1,   // "16×16"
        StateRole,                         // a Thumbnail::State as int
        ReplacedRole,                      // bool: the list's "*" mark
    };

    GalleryModel(PictureListModel* pictures, ThumbnailCache& cache, const settings::MessageTable& messages,
                 QObject* parent = nullptr);

    // Column 0 is the tile; the other columns are the list's, unchanged.
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;

private:
    QString describe(int row) const;
    ThumbnailCache& m_cache;
    const settings::MessageTable& m_messages;
};

}  // namespace korvatek::gui

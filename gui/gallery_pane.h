#pragma once
// The picture gallery: every picture of the list as a tile (its thumbnail at the largest whole
// factor that fits, its number and size beneath), shown instead of the list by a toggle beside
// the search box, with a slider for the tile size. A tile is chosen exactly as a list row is:
// the request goes to the window, the Workspace selects the row, and both views then show it.

#include <QObject>
#include <QRect>

#include <memory>

#include "workspace_selection.h"

class QListView;
class QSlider;
class QToolButton;
class QWidget;

namespace korvatek::app {
class Workspace;
}

namespace korvatek::gui {

class GalleryModel;
class PictureListModel;
class ThumbnailCache;
class TileDelegate;

// Where a picture is drawn in a tile's square: enlarged by the largest whole factor that fits
// (every pixel stays a sharp square), or shrunk to fit when it is larger; centred.
QRect tilePictureRect(QSize picture, const QRect& square);

class GalleryPane : public QObject {
    Q_OBJECT
public:
    static constexpr int kMinTile = 48;
    static constexpr int kMaxTile = 192;
    static constexpr int kDefaultTile = 80;

    GalleryPane(const app::Workspace& ws, PictureListModel* pictures, WorkspaceSelection::Request request,
                QWidget* parent);
    ~GalleryPane() override;

    QListView* view() const { return m_view; }
    QToolButton* toggle() const { return m_toggle; }
    QSlider* slider() const { return m_slider; }
    GalleryModel& model() const { return *m_model; }
    ThumbnailCache& cache() const { return *m_cache; }

    // Whether the person chose the gallery over the list.
    bool isOn() const;
    // On the Pictures tab the gallery (when on) and its slider show; elsewhere neither.
    void showOnTab(bool picturesTab);
    // After a command: another fullflash or list starts the thumbnails over; the Workspace's
    // row is selected and scrolled into view.
    void refresh();
    void retranslate();
    int tileSize() const;
    void setTileSize(int pixels);

signals:
    void toggled(bool on);

private:
    const app::Workspace& m_ws;
    ThumbnailCache* m_cache;
    GalleryModel* m_model;
    WorkspaceSelection* m_selection;
    TileDelegate* m_delegate;
    QListView* m_view;
    QToolButton* m_toggle;
    QSlider* m_slider;
    int m_shownRow = -1;
};

}  // namespace korvatek::gui

// The gallery's figures, offscreen, in milliseconds (median of several runs): a fullflash
// opened to the first screen of tiles drawn, to every thumbnail cached, a word typed into the
// search box to the list and the gallery drawn again, and a tile chosen to the preview drawn.
#include <QApplication>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QListView>
#include <QTemporaryDir>
#include <QThread>
#include <QToolButton>
#include <QTreeView>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <vector>

#include "base/file_io.h"
#include "demo/demo_flash.h"
#include "desktop/freedesktop_association.h"
#include "form1.h"
#include "gallery_model.h"
#include "gallery_pane.h"
#include "picture_list_model.h"
#include "preview_widget.h"
#include "qsettings_store.h"
#include "thumbnail_cache.h"

namespace {

double median(std::vector<double> v) {
    std::sort(v.begin(), v.end());
    return v[v.size() / 2];
}

double ms(const QElapsedTimer& clock) { return static_cast<double>(clock.nsecsElapsed()) / 1e6; }

// Every tile in the viewport has its thumbnail (or its reason).
bool screenFilled(korvatek::gui::GalleryPane& gallery) {
    QListView* view = gallery.view();
    const QRect shown = view->viewport()->rect();
    for (int row = 0; row < gallery.model().rowCount(); ++row) {
        const QModelIndex index = gallery.model().index(row, 0);
        if (view->isRowHidden(row) || !view->visualRect(index).intersects(shown)) continue;
        if (index.data(korvatek::gui::GalleryModel::StateRole).toInt() == 0) return false;
    }
    return true;
}

}  // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    QTemporaryDir folder;
    const QString flash = folder.filePath("demo.bin");
    if (!korvatek::app::writeFile(flash.toStdString(), korvatek::firmware::makeDemoFlash()).ok()) return 1;

    using namespace korvatek;
    std::vector<double> opens, firstScreens, allCached, searches, selections;
    for (int run = 0; run < 7; ++run) {
        auto window = std::make_unique<gui::Form1>(
            std::make_unique<gui::QSettingsStore>(folder.filePath("settings.ini")),
            std::make_unique<settings::FreedesktopAssociationStore>(folder.filePath("data").toStdString(),
                                                                    folder.filePath("config").toStdString()));
        window->resize(1080, 740);
        window->show();
        gui::GalleryPane& gallery = window->gallery();
        gallery.toggle()->click();
        QCoreApplication::processEvents();

        QElapsedTimer clock;
        clock.start();
        window->startUp({flash});
        opens.push_back(ms(clock));
        QElapsedTimer sinceOpen;
        sinceOpen.start();
        // The first screen: painted once (its tiles ask first), then drawn again as they arrive.
        gallery.view()->viewport()->repaint();
        while (!screenFilled(gallery)) {
            QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
            QThread::usleep(200);
        }
        gallery.view()->viewport()->repaint();
        firstScreens.push_back(ms(sinceOpen));
        while (!gallery.cache().complete()) {
            QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
            QThread::usleep(200);
        }
        allCached.push_back(ms(sinceOpen));

        auto* find = window->findChild<QLineEdit*>("FindPictures");
        auto* list = window->findChild<QTreeView*>("ListView1");
        for (const char* text : {"16x16", "", "w>100", ""}) {
            clock.restart();
            find->setText(QString::fromLatin1(text));
            gallery.view()->doItemsLayout();   // the tiles laid out anew, not left for later
            gallery.view()->viewport()->repaint();
            list->viewport()->repaint();
            searches.push_back(ms(clock));
        }

        auto* preview = window->findChild<gui::PreviewWidget*>("Picture1");
        clock.restart();
        gallery.view()->setCurrentIndex(gallery.model().index(701, 0));  // a 240 x 320 picture
        if (window->workspace().ListView1Selected != 701) return 1;
        preview->repaint();
        gallery.view()->viewport()->repaint();
        selections.push_back(ms(clock));
    }
    std::printf("cores: %d\n", QThread::idealThreadCount());
    std::printf("%-44s %10.2f ms\n", "open to a filled list (reading included)", median(opens));
    std::printf("%-44s %10.2f ms\n", "then first screen of tiles drawn", median(firstScreens));
    std::printf("%-44s %10.2f ms\n", "then all 1701 thumbnails cached", median(allCached));
    std::printf("%-44s %10.2f ms\n", "search typed to list and gallery drawn", median(searches));
    std::printf("%-44s %10.2f ms\n", "tile chosen to preview drawn", median(selections));
    return 0;
}

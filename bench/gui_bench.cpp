// The window's figures, offscreen: start-up to a filled picture list, and a row selection
// to a drawn preview, in milliseconds (median of several runs).
#include <QApplication>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QTreeView>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <vector>

#include "base/file_io.h"
#include "demo/demo_flash.h"
#include "form1.h"
#include "picture_list_model.h"
#include "preview_widget.h"
#include "qsettings_store.h"
#include "desktop/freedesktop_association.h"

namespace {

double median(std::vector<double> v) {
    std::sort(v.begin(), v.end());
    return v[v.size() / 2];
}

}  // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    QTemporaryDir folder;
    const QString flash = folder.filePath("demo.bin");
    if (!korvatek::app::writeFile(flash.toStdString(), korvatek::firmware::makeDemoFlash()).ok()) return 1;

    using namespace korvatek;
    std::vector<double> startUps;
    std::vector<double> selections;
    for (int run = 0; run < 7; ++run) {
        QElapsedTimer clock;
        clock.start();
        auto window = std::make_unique<gui::Form1>(
            std::make_unique<gui::QSettingsStore>(folder.filePath("settings.ini")),
            std::make_unique<settings::FreedesktopAssociationStore>(folder.filePath("data").toStdString(),
                                                                    folder.filePath("config").toStdString()));
        window->resize(1080, 740);
        window->show();
        window->startUp({flash});
        QCoreApplication::processEvents();
        startUps.push_back(static_cast<double>(clock.nsecsElapsed()) / 1e6);
        if (window->pictureModel().rowCount() != 1701) return 1;

        auto* list = window->findChild<QTreeView*>("ListView1");
        auto* preview = window->findChild<gui::PreviewWidget*>("Picture1");
        clock.restart();
        list->setCurrentIndex(window->pictureModel().index(701, 0));  // a 240 x 320 picture
        preview->repaint();
        selections.push_back(static_cast<double>(clock.nsecsElapsed()) / 1e6);
    }
    std::printf("%-28s %10.2f ms\n", "window start-up to the list", median(startUps));
    std::printf("%-28s %10.2f ms\n", "row selection to a preview", median(selections));
    return 0;
}

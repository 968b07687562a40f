// The window's figures, offscreen: start-up to a filled picture list, a row selection to a
// drawn preview, and "Save all (GPF)" of the 1701 pictures through the window (with its
// Cancel watching) against the same batch in the core alone, with the longest time the window
// went without handling its events; in milliseconds (median of several runs).
#include <QAbstractButton>
#include <QApplication>
#include <QDir>
#include <QFileDialog>
#include <QMessageBox>
#include <QTimer>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QTreeView>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <vector>

#include "app/workspace.h"
#include "base/file_io.h"
#include "support/scripted_interface.h"
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
    // The batch: the folder dialog gets a fresh folder, every message box its OK.
    std::vector<double> coreSaves;
    std::vector<double> windowSaves;
    std::vector<double> pauses;
    for (int run = 0; run < 3; ++run) {
        const QString coreOut = folder.filePath(QStringLiteral("core%1").arg(run));
        QDir().mkpath(coreOut);
        app::ScriptedInterface answers;
        app::Workspace ws(answers);
        answers.openFiles.push_back(flash.toStdString());
        ws.mnu_FileOpen();
        answers.folders.push_back(coreOut.toStdString());
        QElapsedTimer clock;
        clock.start();
        ws.mnuPopup_SaveAllGPF();
        coreSaves.push_back(static_cast<double>(clock.nsecsElapsed()) / 1e6);

        auto window = std::make_unique<gui::Form1>(
            std::make_unique<gui::QSettingsStore>(folder.filePath("settings.ini")),
            std::make_unique<settings::FreedesktopAssociationStore>(folder.filePath("data").toStdString(),
                                                                    folder.filePath("config").toStdString()));
        window->resize(1080, 740);
        window->show();
        window->startUp({flash});
        const QString windowOut = folder.filePath(QStringLiteral("window%1").arg(run));
        QDir().mkpath(windowOut);
        QTimer answerer;
        QElapsedTimer sinceTick;
        qint64 longest = 0;
        QObject::connect(&answerer, &QTimer::timeout, [&] {
            longest = std::max(longest, sinceTick.restart());
            QWidget* modal = QApplication::activeModalWidget();
            if (auto* box = qobject_cast<QMessageBox*>(modal)) {
                box->button(QMessageBox::Ok)->click();
            } else if (auto* files = qobject_cast<QFileDialog*>(modal)) {
                files->selectFile(windowOut);
                static_cast<QDialog*>(files)->accept();
            }
        });
        answerer.start(1);
        sinceTick.start();
        clock.restart();
        window->findChild<QAction*>("mnuPopup_SaveAllGPF")->trigger();
        windowSaves.push_back(static_cast<double>(clock.nsecsElapsed()) / 1e6);
        pauses.push_back(static_cast<double>(longest));
        if (QDir(windowOut).count() != QDir(coreOut).count()) return 1;
    }
    std::printf("%-28s %10.2f ms\n", "window start-up to the list", median(startUps));
    std::printf("%-28s %10.2f ms\n", "row selection to a preview", median(selections));
    std::printf("%-28s %10.2f ms\n", "save all GPF, core alone", median(coreSaves));
    std::printf("%-28s %10.2f ms\n", "save all GPF, in the window", median(windowSaves));
    std::printf("%-28s %10.2f ms\n", "longest pause in the window", median(pauses));
    return 0;
}

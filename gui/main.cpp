// korvatek: the window. One optional argument names a fullflash or a graphic patch file to
// open at start-up.
#include <QApplication>
#include <QDir>
#include <QStandardPaths>
#include <QTimer>

#include <cstdio>
#include <cstring>

#include "application.h"
#include "file_association_store.h"
#include "form1.h"
#include "korvatek_version.h"
#include "qsettings_store.h"

int main(int argc, char** argv) {
    // Answered before any window system is needed, so that they work anywhere.
    if (argc == 2 && (std::strcmp(argv[1], "--version") == 0 || std::strcmp(argv[1], "--help") == 0 ||
                      std::strcmp(argv[1], "-h") == 0)) {
        if (argv[1][2] == 'v') {
            std::printf("korvatek %s%s%s%s\n", KORVATEK_VERSION, *KORVATEK_GIT_DESCRIPTION ? " (" : "",
                        KORVATEK_GIT_DESCRIPTION, *KORVATEK_GIT_DESCRIPTION ? ")" : "");
        } else {
            std::printf("usage: korvatek [FILE]\n"
                        "Edit the pictures and fonts of a BenQ-Siemens E71 or EL71 fullflash.\n\n"
                        "FILE is a fullflash (.bin) or a graphic patch file (.gpf, .gpf2) to open.\n\n"
                        "  --help     show this help\n"
                        "  --version  show the version\n");
        }
        return 0;
    }
    QApplication application(argc, argv);
    QApplication::setApplicationName(QString::fromLatin1(korvatek::gui::kApplicationName));
    QApplication::setOrganizationName(QString::fromLatin1(korvatek::gui::kApplicationName));

    korvatek::gui::Form1 window(std::make_unique<korvatek::gui::QSettingsStore>(),
                                korvatek::gui::makeAssociationStore());
    // Pending changes are journalled beside the settings, so a crash or a kill loses none.
    const QString configFolder = QStandardPaths::writableLocation(QStandardPaths::AppConfigLocation);
    if (!configFolder.isEmpty() && QDir().mkpath(configFolder))
        window.setJournalPath(QDir(configFolder).filePath(QStringLiteral("pending-changes.journal")).toStdString());
    window.show();
    QStringList arguments = QApplication::arguments();
    arguments.removeFirst();
    // The window is on screen while the start-up fills the list, so the progress shows.
    QTimer::singleShot(0, &window, [&window, arguments] { window.startUp(arguments); });
    return QApplication::exec();
}

// korvatek: the window. One optional argument names a fullflash or a graphic patch file to
// open at start-up.
#include <QApplication>
#include <QTimer>

#include "application.h"
#include "file_association_store.h"
#include "form1.h"
#include "qsettings_store.h"

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    QApplication::setApplicationName(QString::fromLatin1(korvatek::gui::kApplicationName));
    QApplication::setOrganizationName(QString::fromLatin1(korvatek::gui::kApplicationName));

    korvatek::gui::Form1 window(std::make_unique<korvatek::gui::QSettingsStore>(),
                                korvatek::gui::makeAssociationStore());
    window.show();
    QStringList arguments = QApplication::arguments();
    arguments.removeFirst();
    // The window is on screen while the start-up fills the list, so the progress shows.
    QTimer::singleShot(0, &window, [&window, arguments] { window.startUp(arguments); });
    return QApplication::exec();
}

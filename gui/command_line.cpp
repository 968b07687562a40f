#include "command_line.h"

#include <QCoreApplication>
#include <QDir>

#include "qt_text.h"

namespace korvatek::gui {

std::string commandLineText(const QStringList& arguments) { return toStdString(arguments.join(QLatin1Char(' '))); }

std::string programDirectory() {
    QString folder = QDir::toNativeSeparators(QCoreApplication::applicationDirPath());
    if (!folder.endsWith(QDir::separator())) folder += QDir::separator();
    return toStdString(folder);
}

std::string executablePath() { return toStdString(QDir::toNativeSeparators(QCoreApplication::applicationFilePath())); }

}  // namespace korvatek::gui

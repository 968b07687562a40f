#include "file_association_store.h"

#include <QCoreApplication>
#include <QProcess>
#include <QStandardPaths>

#include "command_line.h"
#include "qt_text.h"
#include "base/file_io.h"
#include "desktop/freedesktop_association.h"

namespace korvatek::gui {

std::unique_ptr<settings::AssociationStore> makeAssociationStore() {
#ifdef _WIN32
    return makeRegistryAssociationStore(executablePath());
#else
    const auto location = [](QStandardPaths::StandardLocation which) {
        return app::toPath(toStdString(QStandardPaths::writableLocation(which)));
    };
    auto store = std::make_unique<settings::FreedesktopAssociationStore>(
        location(QStandardPaths::GenericDataLocation), location(QStandardPaths::GenericConfigLocation));
    // Installed (bin/korvatek beside share/), the package brings the file types and the entry.
    const std::filesystem::path dataDir =
        app::toPath(toStdString(QCoreApplication::applicationDirPath())).parent_path() / "share";
    if (settings::FreedesktopAssociationStore::holdsInstalledData(dataDir)) store->useInstalledData(dataDir);
    // The desktop reads MIME types from a cache: rebuild it when the tool is there.
    store->onPackagesChanged = [](const std::filesystem::path& mimeFolder) {
        const QString tool = QStandardPaths::findExecutable(QStringLiteral("update-mime-database"));
        if (!tool.isEmpty()) QProcess::startDetached(tool, {toQString(app::pathText(mimeFolder))});
    };
    return store;
#endif
}

}  // namespace korvatek::gui

// File association in the registry: the extension keys, the "gpffile" type with its
// description, "open" command and icon, and the "ShellNew" entry, under the current user's
// classes.
#include <windows.h>
#include <shlobj.h>

#include <QSettings>

#include "file_association_store.h"
#include "qt_text.h"

namespace korvatek::gui {

namespace {

// QSettings reaches a key's own (default) value under the name "Default".
QString defaultValueOf(const std::string& key) { return toQString(key) + QStringLiteral("/Default"); }

class RegistryAssociationStore : public settings::AssociationStore {
public:
    RegistryAssociationStore(std::string executable, const std::string& classesKey)
        : m_executable(std::move(executable)),
          m_classes(classesKey.empty() ? QStringLiteral("HKEY_CURRENT_USER\\Software\\Classes") : toQString(classesKey),
                    QSettings::NativeFormat),
          m_readRoot(classesKey.empty() ? QStringLiteral("HKEY_CLASSES_ROOT") : toQString(classesKey)) {}

    void CreateAssociation(const settings::CFileAssociation& a) override {
        if (a.extension.empty() || a.fileType.empty()) return;
        m_classes.setValue(defaultValueOf(a.extension), toQString(a.fileType));
        if (a.newFileKind == "Command" || a.newFileKind == "NullFile" || a.newFileKind == "FileName")
            m_classes.setValue(toQString(a.extension + "/ShellNew/" + a.newFileKind), toQString(a.newFileData));
        if (!a.description.empty()) m_classes.setValue(defaultValueOf(a.fileType), toQString(a.description));
        CreateContextMenuItem(a.fileType, "open", a.openCommand);
        if (!a.defaultIcon.empty())
            m_classes.setValue(defaultValueOf(a.fileType + "/DefaultIcon"),
                               toQString(settings::expandDefaultIcon(a.defaultIcon, m_executable)));
        m_classes.sync();
        SHChangeNotify(SHCNE_ASSOCCHANGED, SHCNF_IDLIST, nullptr, nullptr);
    }

    void CreateContextMenuItem(const std::string& fileType, const std::string& verb,
                               const std::string& command) override {
        m_classes.setValue(defaultValueOf(fileType + "/shell/" + verb + "/command"), toQString(command));
        m_classes.sync();
    }

    std::string GetAssociatedCommand(const std::string& extension) const override {
        const QSettings root(m_readRoot, QSettings::NativeFormat);
        const QString fileType = root.value(defaultValueOf(extension)).toString();
        if (fileType.isEmpty()) return settings::kUnregisteredExtension + extension;
        const QString command = root.value(defaultValueOf(toStdString(fileType) + "/shell/open/command")).toString();
        if (command.isEmpty()) return settings::kTypeWithoutProgram;
        return settings::cutToCommandBuffer(toStdString(command));
    }

    std::string openCommandFor(const std::string& executablePath) const override { return executablePath + " %1"; }

private:
    std::string m_executable;
    QSettings m_classes;
    QString m_readRoot;
};

}  // namespace

std::unique_ptr<settings::AssociationStore> makeRegistryAssociationStore(const std::string& executablePath,
                                                                         const std::string& classesKey) {
    return std::make_unique<RegistryAssociationStore>(executablePath, classesKey);
}

}  // namespace korvatek::gui

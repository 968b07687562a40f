#include "qsettings_store.h"

#include "qt_text.h"

namespace korvatek::gui {

namespace {

std::unique_ptr<QSettings> userSettings() {
#ifdef Q_OS_WIN
    return std::make_unique<QSettings>(QStringLiteral("HKEY_CURRENT_USER\\Software\\Korvatek"),
                                       QSettings::NativeFormat);
#else
    return std::make_unique<QSettings>(QSettings::IniFormat, QSettings::UserScope, QStringLiteral("Korvatek"),
                                       QStringLiteral("Korvatek"));
#endif
}

}  // namespace

QSettingsStore::QSettingsStore() : m_settings(userSettings()) {}

QSettingsStore::QSettingsStore(const QString& iniPath)
    : m_settings(std::make_unique<QSettings>(iniPath, QSettings::IniFormat)) {}

std::vector<std::string> QSettingsStore::valueNames() const {
    std::vector<std::string> names;
    for (const QString& key : m_settings->childKeys()) names.push_back(toStdString(key));
    return names;
}

std::optional<std::uint32_t> QSettingsStore::readDword(const std::string& name) const {
    const QVariant value = m_settings->value(toQString(name));
    if (!value.isValid()) return std::nullopt;
    bool ok = false;
    const qlonglong number = value.toLongLong(&ok);
    if (!ok) return std::nullopt;
    return static_cast<std::uint32_t>(number);
}

void QSettingsStore::writeDword(const std::string& name, std::uint32_t value) {
    // A 32-bit integer is what the registry keeps as REG_DWORD.
    m_settings->setValue(toQString(name), static_cast<int>(value));
    m_settings->sync();
}

void QSettingsStore::deleteValue(const std::string& name) {
    m_settings->remove(toQString(name));
    m_settings->sync();
}

}  // namespace korvatek::gui

#pragma once
// The three settings kept with QSettings: on Windows the DWORD values "Language",
// "MSGsucces" and "MSGreplace" under HKEY_CURRENT_USER\Software\Korvatek; elsewhere the same
// names in Korvatek/Korvatek.ini in the user's configuration folder.

#include <QSettings>

#include <memory>

#include "app/settings_store.h"

namespace korvatek::gui {

class QSettingsStore : public settings::SettingsStore {
public:
    // The user's settings, where the platform keeps them.
    QSettingsStore();
    // An INI file at a given place.
    explicit QSettingsStore(const QString& iniPath);

    std::vector<std::string> valueNames() const override;
    std::optional<std::uint32_t> readDword(const std::string& name) const override;
    void writeDword(const std::string& name, std::uint32_t value) override;
    void deleteValue(const std::string& name) override;

    QString location() const { return m_settings->fileName(); }

private:
    std::unique_ptr<QSettings> m_settings;
};

}  // namespace korvatek::gui

#pragma once
// The three stored settings ("Language", "MSGsucces", "MSGreplace", 32-bit values) and where
// they are kept: the window keeps them with QSettings (the registry on Windows, an INI file
// elsewhere); the command line and the tests in memory.

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace korvatek::settings {

inline constexpr const char* kLanguageValue = "Language";
inline constexpr const char* kSuccessValue = "MSGsucces";
inline constexpr const char* kReplaceValue = "MSGreplace";

class SettingsStore {
public:
    virtual ~SettingsStore() = default;
    virtual std::vector<std::string> valueNames() const = 0;
    virtual std::optional<std::uint32_t> readDword(const std::string& name) const = 0;
    virtual void writeDword(const std::string& name, std::uint32_t value) = 0;
    virtual void deleteValue(const std::string& name) = 0;
};

class MemorySettingsStore : public SettingsStore {
public:
    std::vector<std::string> valueNames() const override;
    std::optional<std::uint32_t> readDword(const std::string& name) const override;
    void writeDword(const std::string& name, std::uint32_t value) override;
    void deleteValue(const std::string& name) override;

    std::map<std::string, std::uint32_t> values;
};

struct StoredSettings {
    int LanguageIndex = 2;          // 1 Russian, 2 English, 3 Slovak, 4 Portuguese, 5 Polish
    bool showSuccessMessage = true; // "MSGsucces"
    bool showReplaceMessage = true; // "MSGreplace"
};

// Reads the three values, writing the defaults (2, 1, 1, in that order) when none is stored.
StoredSettings RegistryReadSettings(SettingsStore& store);

// Writes the three values from the settings.
void writeSettings(SettingsStore& store, const StoredSettings& settings);

}  // namespace korvatek::settings

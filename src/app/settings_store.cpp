#include "app/settings_store.h"

namespace korvatek::settings {

std::vector<std::string> MemorySettingsStore::valueNames() const {
    std::vector<std::string> names;
    for (const auto& [name, value] : values) names.push_back(name);
    return names;
}

std::optional<std::uint32_t> MemorySettingsStore::readDword(const std::string& name) const {
    const auto it = values.find(name);
    if (it == values.end()) return std::nullopt;
    return it->second;
}

void MemorySettingsStore::writeDword(const std::string& name, std::uint32_t value) { values[name] = value; }

void MemorySettingsStore::deleteValue(const std::string& name) { values.erase(name); }

StoredSettings RegistryReadSettings(SettingsStore& store) {
    if (store.valueNames().empty()) {
        store.writeDword(kLanguageValue, 2);
        store.writeDword(kSuccessValue, 1);
        store.writeDword(kReplaceValue, 1);
    }
    StoredSettings settings;
    // The values are kept as 16-bit numbers once read.
    const auto number = [&](const char* name, int fallback) {
        const auto value = store.readDword(name);
        return value ? static_cast<int>(static_cast<std::int16_t>(*value)) : fallback;
    };
    settings.LanguageIndex = number(kLanguageValue, 0);
    settings.showSuccessMessage = number(kSuccessValue, 0) != 0;
    settings.showReplaceMessage = number(kReplaceValue, 0) != 0;
    return settings;
}

void writeSettings(SettingsStore& store, const StoredSettings& settings) {
    store.writeDword(kLanguageValue, static_cast<std::uint32_t>(settings.LanguageIndex));
    store.writeDword(kSuccessValue, settings.showSuccessMessage ? 1 : 0);
    store.writeDword(kReplaceValue, settings.showReplaceMessage ? 1 : 0);
}

}  // namespace korvatek::settings

#include "app/message_table.h"

namespace korvatek::settings {

std::string fillIn(std::string text, std::string_view placeholder, const std::string& value) {
    if (const auto at = text.find(placeholder); at != std::string::npos) text.replace(at, placeholder.size(), value);
    return text;
}

const LanguageTexts* languageByIndex(int languageIndex) {
    switch (languageIndex) {
        case 1: return &LanguageRU();
        case 2: return &LanguageEN();
        case 3: return &LanguageSL();
        case 4: return &LanguagePO();
        case 5: return &LanguagePL();
        default: return nullptr;
    }
}

MessageTable::MessageTable() { apply(2); }

bool MessageTable::apply(int languageIndex) {
    const LanguageTexts* texts = languageByIndex(languageIndex);
    if (texts == nullptr) return false;
    for (std::size_t i = 0; i < kMessageCount; ++i) m_messages[i] = std::string(texts->messages[i]);
    for (std::size_t i = 0; i < kCaptionCount; ++i) m_captions[i] = std::string(texts->captions[i]);
    return true;
}

}  // namespace korvatek::settings

#pragma once
// The message table and the captions of both windows, in the interface language chosen.
// Code that shows a message never holds its text: it asks the table, so that a language
// change takes effect at once.

#include <array>
#include <string>
#include <string_view>

#include "app/message_key.h"

namespace korvatek::settings {

// One language: every message row and every caption, as the language routine sets them.
struct LanguageTexts {
    int index;               // 1 Russian, 2 English, 3 Slovak, 4 Portuguese, 5 Polish
    std::string_view name;   // the routine's name, e.g. "LanguageEN"
    std::array<std::string_view, kMessageCount> messages;
    std::array<std::string_view, kCaptionCount> captions;
};

const LanguageTexts& LanguageRU();
const LanguageTexts& LanguageEN();
const LanguageTexts& LanguageSL();
const LanguageTexts& LanguagePO();
const LanguageTexts& LanguagePL();

// The routine for a LanguageIndex, or nullptr outside 1 to 5 (then nothing is applied).
const LanguageTexts* languageByIndex(int languageIndex);

// A message row with its placeholder ("%1", "%2") filled in; a row without it stays as it is.
std::string fillIn(std::string text, std::string_view placeholder, const std::string& value);

class MessageTable {
public:
    MessageTable();  // English, as the window is designed

    // Applies the routine of languageIndex; outside 1 to 5 nothing changes and false is returned.
    bool apply(int languageIndex);

    const std::string& text(MessageKey key) const { return m_messages[static_cast<std::size_t>(key)]; }
    const std::string& caption(CaptionKey key) const { return m_captions[static_cast<std::size_t>(key)]; }
    const std::string& operator[](MessageKey key) const { return text(key); }

private:
    std::array<std::string, kMessageCount> m_messages;
    std::array<std::string, kCaptionCount> m_captions;
};

}  // namespace korvatek::settings

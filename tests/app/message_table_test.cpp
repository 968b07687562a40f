#include <gtest/gtest.h>

#include <cstdint>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "app/message_table.h"

namespace korvatek::settings {
namespace {

std::vector<const LanguageTexts*> allLanguages() {
    return {&LanguageRU(), &LanguageEN(), &LanguageSL(), &LanguagePO(), &LanguagePL()};
}

std::string_view msg(const LanguageTexts& t, MessageKey k) { return t.messages[static_cast<std::size_t>(k)]; }
std::string_view cap(const LanguageTexts& t, CaptionKey k) { return t.captions[static_cast<std::size_t>(k)]; }

// Strict UTF-8: no overlong forms, no surrogates, nothing above U+10FFFF.
bool isValidUtf8(std::string_view s) {
    std::size_t i = 0;
    while (i < s.size()) {
        const auto b = static_cast<unsigned char>(s[i]);
        std::size_t len = 0;
        std::uint32_t cp = 0;
        if (b < 0x80) { ++i; continue; }
        if (b >= 0xC2 && b <= 0xDF) { len = 2; cp = b & 0x1F; }
        else if (b >= 0xE0 && b <= 0xEF) { len = 3; cp = b & 0x0F; }
        else if (b >= 0xF0 && b <= 0xF4) { len = 4; cp = b & 0x07; }
        else return false;
        if (i + len > s.size()) return false;
        for (std::size_t j = 1; j < len; ++j) {
            const auto c = static_cast<unsigned char>(s[i + j]);
            if ((c & 0xC0) != 0x80) return false;
            cp = (cp << 6) | (c & 0x3F);
        }
        if ((len == 3 && cp < 0x800) || (len == 4 && cp < 0x10000)) return false;
        if (cp >= 0xD800 && cp <= 0xDFFF) return false;
        if (cp > 0x10FFFF) return false;
        i += len;
    }
    return true;
}

// True when the text holds a letter of the Cyrillic block (U+0400..U+04FF: lead bytes D0..D3).
bool hasCyrillic(std::string_view s) {
    for (std::size_t i = 0; i + 1 < s.size(); ++i) {
        const auto b = static_cast<unsigned char>(s[i]);
        if (b >= 0xD0 && b <= 0xD3) return true;
    }
    return false;
}

TEST(LanguageTables, IndexNameAndLookupAgree) {
    const char* names[] = {"LanguageRU", "LanguageEN", "LanguageSL", "LanguagePO", "LanguagePL"};
    for (int i = 1; i <= 5; ++i) {
        const LanguageTexts* t = languageByIndex(i);
        ASSERT_NE(t, nullptr) << i;
        EXPECT_EQ(t->index, i);
        EXPECT_EQ(t->name, names[i - 1]);
    }
    EXPECT_EQ(languageByIndex(0), nullptr);
    EXPECT_EQ(languageByIndex(6), nullptr);
    EXPECT_EQ(languageByIndex(-1), nullptr);
}

// A row left out of a table leaves an empty entry at the end, so this also checks the row count.
TEST(LanguageTables, EveryTextIsPresentAndValidUtf8) {
    for (const LanguageTexts* t : allLanguages()) {
        for (std::size_t i = 0; i < kMessageCount; ++i) {
            const bool mayBeEmpty = t->index == 2 && i == static_cast<std::size_t>(MessageKey::MsgTranslator);
            if (mayBeEmpty) {
                EXPECT_TRUE(t->messages[i].empty()) << "English has no translator line";
            } else {
                EXPECT_FALSE(t->messages[i].empty()) << t->name << " message " << i;
            }
            EXPECT_TRUE(isValidUtf8(t->messages[i])) << t->name << " message " << i;
        }
        for (std::size_t i = 0; i < kCaptionCount; ++i) {
            EXPECT_FALSE(t->captions[i].empty()) << t->name << " caption " << i;
            EXPECT_TRUE(isValidUtf8(t->captions[i])) << t->name << " caption " << i;
        }
    }
}

TEST(LanguageTables, JoiningPiecesKeepTheirBlanks) {
    for (const LanguageTexts* t : allLanguages()) {
        SCOPED_TRACE(std::string(t->name));
        EXPECT_TRUE(msg(*t, MessageKey::MsgFile).ends_with(' '));
        EXPECT_TRUE(msg(*t, MessageKey::MsgFileExists).starts_with(' '));
        EXPECT_TRUE(msg(*t, MessageKey::MsgModelNotSupported).ends_with(' '));
        EXPECT_TRUE(msg(*t, MessageKey::MsgReplacedByEmpty).starts_with(' '));
        EXPECT_TRUE(msg(*t, MessageKey::MsgChooseFile).ends_with(' '));
        EXPECT_TRUE(msg(*t, MessageKey::MsgCannotOpenFile).ends_with(' '));
        EXPECT_TRUE(msg(*t, MessageKey::MsgCannotWriteFile).ends_with(' '));
        EXPECT_TRUE(msg(*t, MessageKey::MsgFlashTooShort).ends_with(": "));
        EXPECT_TRUE(msg(*t, MessageKey::MsgNoSuchPicture).ends_with(": "));
    }
}

// Beyond the pieces above: no row gains or loses a leading or trailing blank against English,
// and no row carries a doubled blank at either end.
TEST(LanguageTables, EdgeBlanksFollowEnglishInEveryRow) {
    const LanguageTexts& en = LanguageEN();
    auto check = [](std::string_view text, std::string_view english, const std::string& where) {
        if (text.empty() || english.empty()) return;
        EXPECT_EQ(text.front() == ' ', english.front() == ' ') << where << ": \"" << text << "\"";
        EXPECT_EQ(text.back() == ' ', english.back() == ' ') << where << ": \"" << text << "\"";
        EXPECT_FALSE(text.starts_with("  ") || text.ends_with("  ")) << where;
    };
    for (const LanguageTexts* t : allLanguages()) {
        for (std::size_t i = 0; i < kMessageCount; ++i)
            check(t->messages[i], en.messages[i], std::string(t->name) + " message " + std::to_string(i));
        for (std::size_t i = 0; i < kCaptionCount; ++i)
            check(t->captions[i], en.captions[i], std::string(t->name) + " caption " + std::to_string(i));
    }
}

TEST(LanguageTables, FixedRowsAreExact) {
    const LanguageTexts& ru = LanguageRU();
    EXPECT_EQ(msg(ru, MessageKey::MsgSuccess), "Операция успешно завершена");
    EXPECT_EQ(msg(ru, MessageKey::MsgInputSize), "Введите размер от 6 до 64");
    EXPECT_EQ(cap(ru, CaptionKey::TabPictures), "Картинки");

    const LanguageTexts& sl = LanguageSL();
    EXPECT_EQ(msg(sl, MessageKey::MsgSuccess), "Úspešne dokončené");
    EXPECT_EQ(msg(sl, MessageKey::MsgInputSize), "Vstupná veľkosť od 6 do 64");
    EXPECT_EQ(cap(sl, CaptionKey::TabPictures), "Obrázky");

    const LanguageTexts& po = LanguagePO();
    EXPECT_EQ(msg(po, MessageKey::MsgSuccess), "Completado com sucesso.");
    EXPECT_EQ(msg(po, MessageKey::MsgInputSize), "Digite o tamanho '6 ate 64'");
    EXPECT_EQ(cap(po, CaptionKey::TabPictures), "Imagens");

    const LanguageTexts& en = LanguageEN();
    EXPECT_EQ(msg(en, MessageKey::MsgSuccess), "Successfully completed");
    EXPECT_EQ(msg(en, MessageKey::MsgFile), "File ");
    EXPECT_EQ(msg(en, MessageKey::MsgFileExists), " already exists and will be replaced");
    EXPECT_EQ(cap(en, CaptionKey::TabPictures), "Pictures");
}

// Rows equal to English are exactly the deliberate ones; any other is a forgotten translation
// (or a row shifted out of place).
TEST(LanguageTables, OnlyDeliberateRowsStayEnglish) {
    const LanguageTexts& en = LanguageEN();
    auto englishRows = [&en](const LanguageTexts& t) {
        std::set<int> captions;
        for (std::size_t i = 0; i < kMessageCount; ++i)
            EXPECT_NE(t.messages[i], en.messages[i]) << t.name << " message " << i;
        for (std::size_t i = 0; i < kCaptionCount; ++i)
            if (t.captions[i] == en.captions[i]) captions.insert(static_cast<int>(i));
        return captions;
    };
    const int ok = static_cast<int>(CaptionKey::cmdOK);
    const int view = static_cast<int>(CaptionKey::tbsOptionsView);
    const int other = static_cast<int>(CaptionKey::tbsOptionsOther);
    const int check4 = static_cast<int>(CaptionKey::Check4);

    EXPECT_EQ(englishRows(LanguageRU()), (std::set<int>{ok}));
    EXPECT_EQ(englishRows(LanguagePL()), (std::set<int>{ok}));
    // Slovak writes "Font" as English does.
    EXPECT_EQ(englishRows(LanguageSL()),
              (std::set<int>{view, other, check4, static_cast<int>(CaptionKey::FtypeText), ok}));
    // The Portuguese converter caption has no word to translate.
    EXPECT_EQ(englishRows(LanguagePO()),
              (std::set<int>{view, other, check4, static_cast<int>(CaptionKey::mnu_ToolsConvertLumbrapatch), ok}));

    for (const LanguageTexts* t : {&LanguageSL(), &LanguagePO()}) {
        EXPECT_EQ(cap(*t, CaptionKey::tbsOptionsView), "view");
        EXPECT_EQ(cap(*t, CaptionKey::tbsOptionsOther), "other");
        EXPECT_EQ(cap(*t, CaptionKey::Check4), "Show replacing to 1x1");
    }
}

// Latin-script tables must not hold Cyrillic look-alike letters; the Russian one is written in Cyrillic.
TEST(LanguageTables, ScriptsAreRight) {
    for (const LanguageTexts* t : {&LanguageEN(), &LanguageSL(), &LanguagePO(), &LanguagePL()}) {
        for (std::string_view s : t->messages) EXPECT_FALSE(hasCyrillic(s)) << t->name << ": " << s;
        for (std::string_view s : t->captions) EXPECT_FALSE(hasCyrillic(s)) << t->name << ": " << s;
    }
    const LanguageTexts& ru = LanguageRU();
    EXPECT_TRUE(hasCyrillic(msg(ru, MessageKey::MsgFile)));
    EXPECT_TRUE(hasCyrillic(cap(ru, CaptionKey::Option1)));
}

TEST(LanguageTables, LanguageNamesAreInTheirOwnLanguage) {
    static constexpr std::size_t first = static_cast<std::size_t>(CaptionKey::Option1);
    auto names = [](const LanguageTexts& t) {
        return std::vector<std::string_view>(t.captions.begin() + first, t.captions.begin() + first + 5);
    };
    EXPECT_EQ(names(LanguageRU()),
              (std::vector<std::string_view>{"Русский", "Английский", "Словацкий", "Португальский", "Польский"}));
    EXPECT_EQ(names(LanguageEN()),
              (std::vector<std::string_view>{"Russian", "English", "Slovak", "Portuguese", "Polish"}));
    // Each table names itself at its own index.
    EXPECT_EQ(cap(LanguageSL(), CaptionKey::Option3), "Slovenčina");
    EXPECT_EQ(cap(LanguagePO(), CaptionKey::Option4), "Português");
    EXPECT_EQ(cap(LanguagePL(), CaptionKey::Option5), "Polski");
}

TEST(MessageTable, StartsInEnglishAndSwitchesBackCompletely) {
    const LanguageTexts& en = LanguageEN();
    MessageTable table;
    for (std::size_t i = 0; i < kMessageCount; ++i)
        EXPECT_EQ(table.text(static_cast<MessageKey>(i)), en.messages[i]) << i;

    ASSERT_TRUE(table.apply(1));
    EXPECT_EQ(table[MessageKey::MsgSuccess], "Операция успешно завершена");
    EXPECT_EQ(table.caption(CaptionKey::TabPictures), "Картинки");
    EXPECT_EQ(table[MessageKey::MsgFile] + "a.bin" + table[MessageKey::MsgFileExists],
              "Файл a.bin уже существует и будет заменён");

    ASSERT_TRUE(table.apply(2));
    for (std::size_t i = 0; i < kMessageCount; ++i)
        EXPECT_EQ(table.text(static_cast<MessageKey>(i)), en.messages[i]) << "message " << i;
    for (std::size_t i = 0; i < kCaptionCount; ++i)
        EXPECT_EQ(table.caption(static_cast<CaptionKey>(i)), en.captions[i]) << "caption " << i;
}

TEST(MessageTable, IndexOutsideOneToFiveChangesNothing) {
    const LanguageTexts& sl = LanguageSL();
    MessageTable table;
    ASSERT_TRUE(table.apply(3));
    for (int bad : {0, 6, -1}) {
        EXPECT_FALSE(table.apply(bad)) << bad;
        for (std::size_t i = 0; i < kMessageCount; ++i)
            EXPECT_EQ(table.text(static_cast<MessageKey>(i)), sl.messages[i]) << bad << " message " << i;
        for (std::size_t i = 0; i < kCaptionCount; ++i)
            EXPECT_EQ(table.caption(static_cast<CaptionKey>(i)), sl.captions[i]) << bad << " caption " << i;
    }
}

}  // namespace
}  // namespace korvatek::settings

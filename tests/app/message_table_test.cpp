// The five language tables: what a translator can get wrong (a missing or shifted row, a
// forgotten translation, a blank lost where pieces are joined, look-alike letters of another
// script), and switching between them.
#include <gtest/gtest.h>

#include <cstdint>
#include <set>
#include <string>
#include <string_view>

#include "app/message_table.h"

namespace korvatek::settings {
namespace {

// Strict UTF-8: no overlong forms, no surrogates, nothing above U+10FFFF.
bool isValidUtf8(std::string_view s) {
    static constexpr std::uint32_t kLeast[] = {0, 0, 0x80, 0x800, 0x10000};
    for (std::size_t i = 0; i < s.size();) {
        const auto b = static_cast<unsigned char>(s[i]);
        const std::size_t len =
            b < 0x80 ? 1 : b >= 0xC2 && b <= 0xDF ? 2 : b >= 0xE0 && b <= 0xEF ? 3 : b >= 0xF0 && b <= 0xF4 ? 4 : 0;
        if (len == 0 || i + len > s.size()) return false;
        std::uint32_t cp = len == 1 ? b : b & (0x7Fu >> len);
        for (std::size_t j = 1; j < len; ++j) {
            const auto c = static_cast<unsigned char>(s[i + j]);
            if ((c & 0xC0) != 0x80) return false;
            cp = cp << 6 | (c & 0x3F);
        }
        if (cp < kLeast[len] || (cp >= 0xD800 && cp <= 0xDFFF) || cp > 0x10FFFF) return false;
        i += len;
    }
    return true;
}

// A letter of the Cyrillic block (U+0400..U+04FF: lead bytes D0..D3).
bool hasCyrillic(std::string_view s) {
    for (std::size_t i = 0; i + 1 < s.size(); ++i)
        if (static_cast<unsigned char>(s[i]) >= 0xD0 && static_cast<unsigned char>(s[i]) <= 0xD3) return true;
    return false;
}

struct Language {
    const LanguageTexts& (*texts)();
    const char* ownName;                  // what the options dialog calls this language in it
    std::set<CaptionKey> englishCaptions; // captions deliberately written as in English
    std::set<MessageKey> englishMessages; // words the language takes from English as they are
};
void PrintTo(const Language& l, std::ostream* out) { *out << l.texts().name; }
class LanguageTable : public ::testing::TestWithParam<Language> {};

// Every row is there (a row left out leaves an empty entry at the end), valid UTF-8, free of
// look-alike letters of another script, and has a blank at either end only where English has
// one: the program joins names and numbers to those rows.
TEST_P(LanguageTable, everyRowIsPresentValidAndBlankedAsEnglish) {
    const LanguageTexts& t = GetParam().texts();
    const LanguageTexts& en = LanguageEN();
    EXPECT_EQ(languageByIndex(t.index), &t);
    EXPECT_EQ(t.captions[static_cast<std::size_t>(CaptionKey::Option1) + t.index - 1], GetParam().ownName);
    const bool russian = t.index == 1;
    EXPECT_EQ(hasCyrillic(t.messages[static_cast<std::size_t>(MessageKey::MsgFile)]), russian);
    auto check = [russian](std::string_view text, std::string_view english, const std::string& where) {
        EXPECT_TRUE(isValidUtf8(text)) << where;
        EXPECT_TRUE(russian || !hasCyrillic(text)) << where << ": " << text;
        if (text.empty() || english.empty()) return;
        EXPECT_EQ(text.front() == ' ', english.front() == ' ') << where << ": \"" << text << "\"";
        EXPECT_EQ(text.back() == ' ', english.back() == ' ') << where << ": \"" << text << "\"";
        EXPECT_FALSE(text.starts_with("  ") || text.ends_with("  ")) << where;
    };
    for (std::size_t i = 0; i < kMessageCount; ++i) {
        const bool englishTranslator = &t == &en && i == static_cast<std::size_t>(MessageKey::MsgTranslator);
        EXPECT_EQ(t.messages[i].empty(), englishTranslator) << "message " << i;
        check(t.messages[i], en.messages[i], "message " + std::to_string(i));
    }
    for (std::size_t i = 0; i < kCaptionCount; ++i) {
        EXPECT_FALSE(t.captions[i].empty()) << "caption " << i;
        check(t.captions[i], en.captions[i], "caption " + std::to_string(i));
    }
}

// A row equal to English other than the deliberate ones is a forgotten translation, or a row
// shifted out of place.
class Translation : public LanguageTable {};

TEST_P(Translation, onlyDeliberateRowsStayEnglish) {
    const LanguageTexts& t = GetParam().texts();
    const LanguageTexts& en = LanguageEN();
    std::set<CaptionKey> english;
    for (std::size_t i = 0; i < kCaptionCount; ++i)
        if (t.captions[i] == en.captions[i]) english.insert(static_cast<CaptionKey>(i));
    EXPECT_EQ(english, GetParam().englishCaptions);
    std::set<MessageKey> englishMessages;
    for (std::size_t i = 0; i < kMessageCount; ++i)
        if (t.messages[i] == en.messages[i]) englishMessages.insert(static_cast<MessageKey>(i));
    EXPECT_EQ(englishMessages, GetParam().englishMessages);
}

// The rows are positional: a key added in one place and its row in another shifts every text
// after it, in every language at once. The English texts of the first and last key of each
// group of added rows pin them.
TEST(MessageRows, lineUpWithTheirKeys) {
    using enum MessageKey;
    const std::pair<MessageKey, const char*> pinned[] = {
        {MsgCannotOpenFile, "Cannot open file "},
        {MsgPatchMoreLines, "... and %1 more lines that are not patch text"},
        {MsgLineFaultBase, "base offset is not a hex number"},
        {MsgStatusTableDescription,
         "Each line of the patch: the address it writes to, how many bytes, and whether the fullflash already holds its new bytes"},
        {MsgPreviewTitle, "Text preview"},
        {MsgEditGlyph, "Edit glyph.."},
        {MsgGridDescription, "The glyph's pixels, enlarged. Arrow keys move the cursor, Space draws at it with the chosen tool"},
        {MsgStatusLines, "Patch lines"},
        {MsgEditPicture, "Edit picture.."},
        {MsgDropTarget, "Store the dropped pictures as:"},
        {MsgFindName, "Find"},
        {MsgPendingEmpty, "Nothing is waiting to be written to a patch."},
        {MsgCancelledPictures, "Cancelled after %1 of %2 pictures."},
        {MsgRowReplaced, "replaced, waiting in the patch"},
        {MsgGalleryName, "Picture gallery"},
        {MsgGalleryNoPixels, "it has no pixels"},
        {MsgStoredDescription,
         "The edited picture as it will be stored for the chosen type, its colours rounded as the phone keeps them"},
    };
    const LanguageTexts& en = LanguageEN();
    for (const auto& [key, text] : pinned) EXPECT_EQ(en.messages[static_cast<std::size_t>(key)], text) << static_cast<int>(key);
    EXPECT_EQ(static_cast<std::size_t>(MsgGalleryNoPixels) + 1, kMessageCount) << "the last key is the last row";
}

using enum CaptionKey;
const Language kLanguages[] = {
    {LanguageEN, "English", {}, {}}, {LanguageRU, "Русский", {cmdOK}, {}},
    {LanguageSL, "Slovenčina", {tbsOptionsView, tbsOptionsOther, Check4, FtypeText, cmdOK},  // "Font" as in English
     {MessageKey::MsgColumnPatch}},
    // the converter caption has no word to translate
    {LanguagePO, "Português", {tbsOptionsView, tbsOptionsOther, Check4, mnu_ToolsConvertLumbrapatch, cmdOK},
     {MessageKey::MsgColumnPatch, MessageKey::MsgColumnBytes}},
    {LanguagePL, "Polski", {cmdOK}, {}}};
auto languageName = [](const auto& info) { return std::string(info.param.texts().name); };
INSTANTIATE_TEST_SUITE_P(All, LanguageTable, ::testing::ValuesIn(kLanguages), languageName);
INSTANTIATE_TEST_SUITE_P(All, Translation, ::testing::ValuesIn(std::begin(kLanguages) + 1, std::end(kLanguages)),
                         languageName);

TEST(LanguageTables, englishJoinsWithBlanksAtTheSeams) {
    const LanguageTexts& en = LanguageEN();
    auto row = [&en](MessageKey k) { return en.messages[static_cast<std::size_t>(k)]; };
    for (MessageKey k : {MessageKey::MsgFile, MessageKey::MsgModelNotSupported, MessageKey::MsgChooseFile,
                         MessageKey::MsgCannotOpenFile, MessageKey::MsgCannotWriteFile, MessageKey::MsgFlashTooShort,
                         MessageKey::MsgNoSuchPicture})
        EXPECT_TRUE(row(k).ends_with(' ')) << static_cast<int>(k);
    EXPECT_TRUE(row(MessageKey::MsgFileExists).starts_with(' '));
    EXPECT_TRUE(row(MessageKey::MsgReplacedByEmpty).starts_with(' '));
}

TEST(MessageTable, startsInEnglishAndSwitchesWhollyOrNotAtAll) {
    MessageTable table;
    auto holds = [&table](const LanguageTexts& t) {
        for (std::size_t i = 0; i < kMessageCount; ++i)
            if (table.text(static_cast<MessageKey>(i)) != t.messages[i]) return false;
        for (std::size_t i = 0; i < kCaptionCount; ++i)
            if (table.caption(static_cast<CaptionKey>(i)) != t.captions[i]) return false;
        return true;
    };
    EXPECT_TRUE(holds(LanguageEN()));
    ASSERT_TRUE(table.apply(1));
    EXPECT_TRUE(holds(LanguageRU()));
    EXPECT_EQ(table[MessageKey::MsgFile] + "a.bin" + table[MessageKey::MsgFileExists],
              "Файл a.bin уже существует и будет заменён");
    ASSERT_TRUE(table.apply(3));
    for (int outside : {0, 6, -1}) {
        EXPECT_EQ(languageByIndex(outside), nullptr);
        EXPECT_FALSE(table.apply(outside)) << outside;
    }
    EXPECT_TRUE(holds(LanguageSL()));
    ASSERT_TRUE(table.apply(2));
    EXPECT_TRUE(holds(LanguageEN()));
}

}  // namespace
}  // namespace korvatek::settings

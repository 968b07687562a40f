// The search box's words against picture and glyph records.
#include "edit/record_query.h"

#include <gtest/gtest.h>

namespace korvatek::edit {

TEST(RecordQuery, picturesByNumberSizeTypeAndMark) {
    firmware::PictureRecord icon{5, 0, 16, 16, 0x88, 0, false};
    firmware::PictureRecord screen{26, 0, 176, 220, 0x0A, 0, true};   // hex column "01A", Type "A00"
    struct Case {
        const char* query;
        bool icon, screen;
    };
    const Case cases[] = {
        {"", true, true},          {"5", true, false},         {"0005", true, false},
        {"x1a", false, true},      {"0x1A", false, true},      {"01A", false, true},
        {"26", false, true},       {"x26", false, false},      {"176x220", false, true},
        {"176×220", false, true},  {"16X16", true, false},     {"w>100", false, true},
        {"w<=16 h=16", true, false}, {"h>=220 w<176", false, false},
        {"type:88", true, false},  {"t:a0", false, true},      {"t:0a", false, true},
        {"changed", false, true},  {"unchanged", true, false}, {"  5   unchanged ", true, false},
        {"5 changed", false, false},
        // a word that reads as nothing finds nothing, and is told back
        {"battery", false, false}, {"w>", false, false},       {"type:123", false, false},
    };
    for (const Case& c : cases) {
        const RecordQuery q = readQuery(c.query);
        EXPECT_EQ(q.matches(icon), c.icon) << c.query;
        EXPECT_EQ(q.matches(screen), c.screen) << c.query;
    }
    EXPECT_EQ(readQuery("5 battery w>").unreadWords, (std::vector<std::string>{"battery", "w>"}));
    const RecordQuery broken = readQuery("not-decodable");
    EXPECT_TRUE(broken.needsDecoding());
    EXPECT_TRUE(broken.matches(icon, false));
    EXPECT_FALSE(broken.matches(icon, true));
    EXPECT_FALSE(readQuery("16x16").needsDecoding());
}

TEST(RecordQuery, glyphsByCodeAndSize) {
    fonts::GlyphRecord glyph;
    glyph.code = 65;
    glyph.width = 7;
    glyph.height = 12;
    EXPECT_TRUE(readQuery("65").matches(glyph));
    EXPECT_TRUE(readQuery("7x12 w<8").matches(glyph));
    EXPECT_FALSE(readQuery("t:00").matches(glyph));
    EXPECT_FALSE(readQuery("changed").matches(glyph));
    // a character typed finds its glyph; for pictures a lone "A" is still hex
    EXPECT_TRUE(readQuery("A", QueryFor::Glyphs).matches(glyph));
    EXPECT_FALSE(readQuery("a", QueryFor::Glyphs).matches(glyph));
    EXPECT_TRUE(readQuery("65 7x12", QueryFor::Glyphs).matches(glyph));
    glyph.code = 0x401;
    EXPECT_TRUE(readQuery("Ё", QueryFor::Glyphs).matches(glyph));
    EXPECT_EQ(readQuery("A").conditions.at(0).value, 10);
}

}  // namespace korvatek::edit

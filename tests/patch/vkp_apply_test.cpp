// The V_Klay reader. What a whole patch does to a fullflash (old bytes, addresses beyond the
// image, line numbers on stderr) and the patch text the tool writes are checked on the command
// line; here are the reader's own rules.
#include "patch/vkp_apply.h"

#include <gtest/gtest.h>

#include "patch/lumbra_patch.h"

namespace korvatek::patch {

TEST(VkpApply, readsAddressesBaseOffsetsAndComments) {
    const auto parsed = parseVkp(
        "; a comment\r\n"
        "0100: 0102 0A0B ; trailing comment\r\n"
        "+578E0\n"
        "10: FF 00\n"
        "-10\n"
        "0x30: AA BB\n");
    ASSERT_TRUE(parsed.malformed.empty());
    ASSERT_EQ(parsed.edits.size(), 3u);
    EXPECT_EQ(parsed.edits[0].offset, 0x100u);
    EXPECT_EQ(parsed.edits[0].oldBytes, (Bytes{0x01, 0x02}));
    EXPECT_EQ(parsed.edits[0].newBytes, (Bytes{0x0A, 0x0B}));
    EXPECT_EQ(parsed.edits[1].offset, 0x578F0u);
    EXPECT_EQ(parsed.edits[2].offset, 0x20u);
    EXPECT_EQ(parsed.edits[2].line, 6);

    const Bytes image{0, 1, 2, 3, 4, 5, 6, 7};
    const auto edits = parseVkp("2: 0203 AABB\n6: 0607 CCDD\n").edits;
    EXPECT_TRUE(checkAgainst(edits, image).empty());
    EXPECT_EQ(applyEdits(edits, image), (Bytes{0, 1, 0xAA, 0xBB, 4, 5, 0xCC, 0xDD}));
}

TEST(VkpApply, malformedLinesAreNumberedAndOnlyTheFirstKept) {
    using enum LineFault;
    const auto parsed = parseVkp(std::string("100 01 02\n100: 012 034\n100: 01\n100: 0102 03\n100: XY 00\n+ZZ\n-200: 00 00\n"
                                             "1\0\x30\0:\0 \0\n", 80));
    const LineFault faults[] = {NoColon, OddDigits, NotAddressOldNew, LengthsDiffer, NotHex, BaseNotHex, BaseNotHex, NulByte};
    ASSERT_EQ(parsed.malformed.size(), std::size(faults));
    for (std::size_t i = 0; i < std::size(faults); ++i) {
        EXPECT_EQ(parsed.malformed[i].line, static_cast<int>(i) + 1);
        EXPECT_EQ(parsed.malformed[i].fault, faults[i]) << i;
    }
    EXPECT_TRUE(parsed.edits.empty());

    std::string junk;
    for (std::size_t i = 0; i < kMaxKeptMalformedLines + 50; ++i) junk += "junk\r";
    const auto many = parseVkp(junk);
    EXPECT_EQ(many.malformed.size(), kMaxKeptMalformedLines);
    EXPECT_EQ(many.malformedCount, kMaxKeptMalformedLines + 50);
    EXPECT_EQ(many.malformed.back().line, static_cast<int>(kMaxKeptMalformedLines));
}

// Every kind of line end, a byte-order mark, and the text arriving in pieces of any size all
// give the same edits with the same line numbers.
TEST(VkpApply, lineEndsByteOrderMarkAndPiecesReadAlike) {
    const std::string lines[] = {"; header", "", "0100: 0102 0A0B", "+10", "20: FF 00"};
    const auto join = [&](const std::string& end) {
        std::string text;
        for (const auto& l : lines) text += l + end;
        return text;
    };
    for (const std::string& text : {join("\r\n"), join("\n"), join("\r"), "\xEF\xBB\xBF" + join("\r")}) {
        for (const std::size_t piece : {std::size_t{1}, std::size_t{2}, std::size_t{7}, text.size()}) {
            VkpReader reader;
            for (std::size_t at = 0; at < text.size(); at += piece) reader.feed(std::string_view(text).substr(at, piece));
            const ParsedPatch parsed = reader.finish();
            EXPECT_TRUE(parsed.malformed.empty()) << piece;
            ASSERT_EQ(parsed.edits.size(), 2u) << piece;
            EXPECT_EQ(parsed.edits[0].line, 3);
            EXPECT_EQ(parsed.edits[1].line, 5);
            EXPECT_EQ(parsed.edits[1].offset, 0x30u);
            EXPECT_EQ(parsed.edits[1].newBytes, Bytes{0x00});
        }
    }
    EXPECT_TRUE(parseVkp("\xEF\xBB\xBF").edits.empty());
    EXPECT_EQ(splitLines("a\r\nb\rc\nd"), (std::vector<std::string>{"a", "b", "c", "d"}));
}

TEST(VkpApply, conflictingWritesAreFoundIdenticalOnesAllowed) {
    EXPECT_TRUE(parseVkp("10: 00 01\n10: 00 01\n").conflicts.empty());
    EXPECT_TRUE(parseVkp("10: 0000 0102\n11: 00 02\n").conflicts.empty());  // overlap, same byte
    // A long line reaching over later ones: found at the first byte that differs.
    const auto overlap = parseVkp("10: 00000000 01020304\n12: 00 03\n13: 00 05\n");
    ASSERT_EQ(overlap.conflicts.size(), 1u);
    EXPECT_EQ(overlap.conflicts[0].firstLine, 1);
    EXPECT_EQ(overlap.conflicts[0].secondLine, 3);
    EXPECT_EQ(overlap.conflicts[0].offset, 0x13u);
}

}  // namespace korvatek::patch

#include "patch/vkp_apply.h"

#include <gtest/gtest.h>

#include "patch/lumbra_patch.h"
#include "patch/vkp_text.h"

namespace korvatek::patch {

TEST(VkpText, linesOfThePictureGrammar) {
    EXPECT_EQ(boxLine(), "; " + std::string(71, '#'));
    EXPECT_EQ(sectionLine(5), "; ##### Picture 5 #####");
    EXPECT_EQ(sectionLine(1700), "; ##### Picture 1700 #####");
    const Bytes old{0x01, 0xAB};
    const Bytes now{0xFF, 0x00};
    EXPECT_EQ(patchLine(0x1B01958, old, now), "01B01958: 01AB FF00");
    EXPECT_EQ(patchLine(0x81081, old, now), "081081: 01AB FF00");
    const std::string header = pictureHeader("E71");
    EXPECT_EQ(header.substr(0, 75), "; " + std::string(71, '#') + "\r\n");
    EXPECT_NE(header.find("\r\n; ### This file is made by Korvatek            ###\r\n"), std::string::npos);
    EXPECT_NE(header.find("\r\n; ###" + std::string(65, ' ') + "###\r\n"), std::string::npos);
    EXPECT_NE(header.find("\r\n; ### Patch for: BenQ-SIEMENS E71" + std::string(37, ' ') + "###\r\n"), std::string::npos);
    std::size_t lines = 0;
    for (std::size_t at = header.find("\r\n"); at != std::string::npos; at = header.find("\r\n", at + 2)) ++lines;
    EXPECT_EQ(lines, 8u);
}

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
}

TEST(VkpApply, malformedLinesAreReportedWithTheirNumbers) {
    const auto parsed = parseVkp("100 01 02\n100: 012 034\n100: 01\n100: 0102 03\n100: XY 00\n+ZZ\n-200: 00 00\n");
    ASSERT_EQ(parsed.malformed.size(), 7u);
    for (int i = 0; i < 7; ++i) EXPECT_EQ(parsed.malformed[static_cast<std::size_t>(i)].line, i + 1);
    EXPECT_TRUE(parsed.edits.empty());
}

TEST(VkpApply, checksOldBytesAndTheEndAndAppliesToACopy) {
    const Bytes image{0, 1, 2, 3, 4, 5, 6, 7};
    const auto parsed = parseVkp("2: 0203 AABB\n6: 0607 CCDD\n");
    EXPECT_TRUE(checkAgainst(parsed.edits, image).empty());
    EXPECT_EQ(applyEdits(parsed.edits, image), (Bytes{0, 1, 0xAA, 0xBB, 4, 5, 0xCC, 0xDD}));

    const auto wrong = parseVkp("2: 0303 AABB\n7: 0708 0000\n100: 00 00\n1: 01 01\n");
    const auto problems = checkAgainst(wrong.edits, image);
    ASSERT_EQ(problems.size(), 3u);
    EXPECT_EQ(problems[0].kind, PatchProblem::Kind::Mismatch);
    EXPECT_EQ(problems[0].offset, 2u);
    EXPECT_EQ(problems[1].kind, PatchProblem::Kind::Beyond);
    EXPECT_EQ(problems[2].kind, PatchProblem::Kind::Beyond);
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
    const ParsedPatch reference = parseVkp(join("\r\n"));
    ASSERT_EQ(reference.edits.size(), 2u);
    EXPECT_EQ(reference.edits[1].line, 5);
    EXPECT_EQ(reference.edits[1].offset, 0x30u);
    for (const std::string& text : {join("\n"), join("\r"), "\xEF\xBB\xBF" + join("\r\n"), "\xEF\xBB\xBF" + join("\r")}) {
        for (const std::size_t piece : {std::size_t{1}, std::size_t{2}, std::size_t{7}, text.size()}) {
            VkpReader reader;
            for (std::size_t at = 0; at < text.size(); at += piece) reader.feed(std::string_view(text).substr(at, piece));
            const ParsedPatch parsed = reader.finish();
            EXPECT_TRUE(parsed.malformed.empty()) << piece;
            ASSERT_EQ(parsed.edits.size(), 2u) << piece;
            for (std::size_t i = 0; i < 2; ++i) {
                EXPECT_EQ(parsed.edits[i].line, reference.edits[i].line) << piece;
                EXPECT_EQ(parsed.edits[i].offset, reference.edits[i].offset) << piece;
                EXPECT_EQ(parsed.edits[i].newBytes, reference.edits[i].newBytes) << piece;
            }
        }
    }
    EXPECT_TRUE(parseVkp("\xEF\xBB\xBF").edits.empty());
    EXPECT_TRUE(parseVkp("\xEF\xBB\xBF; only a comment\r\n").malformed.empty());
}

TEST(VkpApply, conflictingWritesAreFoundIdenticalOnesAllowed) {
    EXPECT_TRUE(parseVkp("10: 00 01\n10: 00 01\n").conflicts.empty());
    EXPECT_TRUE(parseVkp("10: 0000 0102\n11: 00 02\n").conflicts.empty());  // overlap, same byte
    const auto same = parseVkp("10: 00 01\n20: 00 00\n10: 00 02\n");
    ASSERT_EQ(same.conflicts.size(), 1u);
    EXPECT_EQ(same.conflicts[0].firstLine, 1);
    EXPECT_EQ(same.conflicts[0].secondLine, 3);
    EXPECT_EQ(same.conflicts[0].offset, 0x10u);
    // A long line reaching over later ones: found at the first byte that differs.
    const auto overlap = parseVkp("10: 00000000 01020304\n12: 00 03\n13: 00 05\n");
    ASSERT_EQ(overlap.conflicts.size(), 1u);
    EXPECT_EQ(overlap.conflicts[0].firstLine, 1);
    EXPECT_EQ(overlap.conflicts[0].secondLine, 3);
    EXPECT_EQ(overlap.conflicts[0].offset, 0x13u);
}

TEST(VkpApply, malformedLinesAreCountedButOnlyTheFirstKept) {
    std::string junk;
    for (std::size_t i = 0; i < kMaxKeptMalformedLines + 50; ++i) junk += "junk\r";
    const auto many = parseVkp(junk);
    EXPECT_EQ(many.malformed.size(), kMaxKeptMalformedLines);
    EXPECT_EQ(many.malformedCount, kMaxKeptMalformedLines + 50);
    EXPECT_EQ(many.malformed.back().line, static_cast<int>(kMaxKeptMalformedLines));
}

TEST(LumbraPatch, recordLayoutsMarkersAndPadding) {
    const std::string record12 = "01B019A0: 000000000000000000000000 F00040018500000000000000";
    ASSERT_EQ(record12.size(), 59u);
    const std::string record8 = "01B019A0: 0000000000000000 10200500A0000000";
    ASSERT_EQ(record8.size(), 43u);
    const std::string full = "01B07068: 00000000000000000000000000000000 0102030405060708090A0B0C0D0E0F10";
    const std::vector<std::string> lines = {
        "; header",
        "; ##### Picture 12 #####", record12, "", full, "01B07078: 0000000000 AABBCCDDEE", "",
        "; ##### Picture 7 #####", record8, "", full,
        "01B07088: 00000000000000000000000000000000 0F0F0F0F0F0F0F0F0F0F0F0F0F0F0F0F", full,
        "; ##### Picture xy #####", record12, "",
    };
    const auto pictures = parseLumbraPatch(lines);
    ASSERT_EQ(pictures.size(), 3u);
    EXPECT_EQ(pictures[0].number, 12);
    EXPECT_EQ(pictures[0].width, 240);
    EXPECT_EQ(pictures[0].height, 320);
    EXPECT_EQ(pictures[0].typeCode, 0x85);
    ASSERT_EQ(pictures[0].data.size(), 32u);  // 16, then 5 bytes and 11 zero bytes
    EXPECT_EQ(pictures[0].data[16], 0xAA);
    EXPECT_EQ(pictures[0].data[21], 0x00);
    EXPECT_EQ(pictures[1].number, 7);
    EXPECT_EQ(pictures[1].width, 0x10);
    EXPECT_EQ(pictures[1].height, 0x20);
    EXPECT_EQ(pictures[1].typeCode, 0x05);
    EXPECT_EQ(pictures[1].data.size(), 16u);  // the marker ends the section; nothing after it
    EXPECT_EQ(pictures[2].number, 0);
    EXPECT_TRUE(parseLumbraPatch({"no sections", "at all"}).empty());
    EXPECT_EQ(splitLines("a\r\nb\rc\nd"), (std::vector<std::string>{"a", "b", "c", "d"}));
}

}  // namespace korvatek::patch

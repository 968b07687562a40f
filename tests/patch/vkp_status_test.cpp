// Where a patch stands on an image, clashes between patches, and the patches made from patches.
#include "patch/vkp_status.h"

#include <gtest/gtest.h>

#include "patch/vkp_rewrite.h"

namespace korvatek::patch {

namespace {

std::vector<LineState> statesOf(const PatchStatus& s) {
    std::vector<LineState> out;
    for (const auto& l : s.lines) out.push_back(l.state);
    return out;
}

}  // namespace

TEST(PatchStatus, eachLineAndTheWholePatch) {
    const Bytes image{0x00, 0x11, 0x22, 0x33, 0x44, 0x55};
    using enum LineState;
    struct Case {
        const char* text;
        std::vector<LineState> lines;
        PatchState whole;
    };
    const Case cases[] = {
        {"0: 0011 AABB\n4: 44 99\n", {NotApplied, NotApplied}, PatchState::NotApplied},
        {"0: AABB 0011\n4: 99 44\n", {Applied, Applied}, PatchState::Applied},
        {"0: 0011 AABB\n4: 99 44\n", {NotApplied, Applied}, PatchState::PartlyApplied},
        {"0: 0012 AABB\n4: 44 99\n", {Conflicting, NotApplied}, PatchState::Conflicting},
        // holding part of the new bytes is neither state
        {"0: 0000 0099\n", {Conflicting}, PatchState::Conflicting},
        {"5: 5566 AABB\n0: 0011 AABB\n", {Outside, NotApplied}, PatchState::Outside},
        {"6: 00 01\n", {Outside}, PatchState::Outside},
        // a line that changes nothing does not make the rest partly applied
        {"2: 22 22\n4: 44 99\n", {ChangesNothing, NotApplied}, PatchState::NotApplied},
        {"2: 22 22\n", {ChangesNothing}, PatchState::Applied},
        {"2: 23 23\n", {Conflicting}, PatchState::Conflicting},
    };
    for (const Case& c : cases) {
        const PatchStatus status = statusOf(parseVkp(c.text).edits, image);
        EXPECT_EQ(statesOf(status), c.lines) << c.text;
        EXPECT_EQ(status.state, c.whole) << c.text;
        std::size_t total = 0;
        for (std::size_t n : status.counts) total += n;
        EXPECT_EQ(total, c.lines.size());
    }
}

TEST(PatchStatus, clashesBetweenPatchesNameBothLinesAndTheFirstDifferingAddress) {
    const auto a = parseVkp("; a\n100: 0001 0A0B\n200: 00 01\n").edits;
    const auto b = parseVkp("101: 01 0B\n300: 00 01\n").edits;            // agrees with a byte for byte
    const auto c = parseVkp("\n\n50: 0000000000 1111111111\n").edits;      // a different old byte at 0x52
    const auto d = parseVkp("1FF: 0000 0102\n").edits;                     // a different new byte at 0x200
    const auto cc = parseVkp("52: 01 11\n").edits;
    EXPECT_TRUE(clashesBetween({&a, &b}).empty());
    const auto clashes = clashesBetween({&a, &b, &d});
    ASSERT_EQ(clashes.size(), 1u);
    EXPECT_EQ(clashes[0].firstPatch, 0u);
    EXPECT_EQ(clashes[0].firstLine, 3);
    EXPECT_EQ(clashes[0].secondPatch, 2u);
    EXPECT_EQ(clashes[0].secondLine, 1);
    EXPECT_EQ(clashes[0].offset, 0x200u);
    const auto oldDiffers = clashesBetween({&c, &cc});
    ASSERT_EQ(oldDiffers.size(), 1u);
    EXPECT_EQ(oldDiffers[0].offset, 0x52u);
    // lines of one patch never clash with each other here: that is the reader's own check
    const auto same = parseVkp("10: 00 01\n10: 00 01\n").edits;
    EXPECT_TRUE(clashesBetween({&same}).empty());
}

TEST(PatchRewrite, revertSwapsOnlyTheBytesAndUndoesTheApply) {
    const std::string text = "\xEF\xBB\xBF; my patch\r\n+100\n0010:  0011\tAABB ; two bytes\r-100\n20: 22 33\n";
    const std::string reverted = revertedPatch(text, "takes off my.vkp");
    EXPECT_EQ(reverted,
              "; takes off my.vkp\r\n; my patch\r\n+100\r\n0010:  AABB\t0011 ; two bytes\r\n-100\r\n20: 33 22\r\n");
    Bytes image(0x200, 0);
    image[0x110] = 0x00, image[0x111] = 0x11, image[0x20] = 0x22;
    const Bytes patched = applyEdits(parseVkp(text).edits, image);
    EXPECT_TRUE(checkAgainst(parseVkp(reverted).edits, patched).empty());
    EXPECT_EQ(applyEdits(parseVkp(reverted).edits, patched), image);
}

TEST(PatchRewrite, mergeKeepsEachPatchAndTakesBackABaseOffsetLeftSet) {
    const std::string a = "; a\n+1000\n10: 00 01";
    const std::string b = "20: 00 02\n";
    const std::string merged = mergedPatch({{"a.vkp", a}, {"b.vkp", b}}, "made of a.vkp, b.vkp");
    EXPECT_EQ(merged, "; made of a.vkp, b.vkp\r\n\r\n; a.vkp\r\n; a\r\n+1000\r\n10: 00 01\r\n\r\n+0\r\n; b.vkp\r\n20: 00 02\r\n");
    const auto edits = parseVkp(merged).edits;
    ASSERT_EQ(edits.size(), 2u);
    EXPECT_EQ(edits[0].offset, 0x1010u);
    EXPECT_EQ(edits[1].offset, 0x20u);
}

}  // namespace korvatek::patch

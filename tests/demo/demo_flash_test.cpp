#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "demo/demo_flash.h"
#include "demo/demo_picture_encoding.h"
#include "demo/demo_fonts.h"
#include "demo/demo_pictures.h"
#include "firmware/layout.h"

namespace korvatek::firmware {
namespace {

class DemoFlashTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() { image_ = new Bytes(makeDemoFlash()); }
    static void TearDownTestSuite() {
        delete image_;
        image_ = nullptr;
    }

    static const Bytes& image() { return *image_; }
    static std::uint32_t u16(std::uint32_t at) { return image()[at] | image()[at + 1] << 8; }
    static std::uint32_t u32(std::uint32_t at) { return u16(at) | u16(at + 2) << 16; }
    static bool allBytes(std::uint32_t from, std::uint32_t to, std::uint8_t value) {
        return std::all_of(image().begin() + from, image().begin() + to,
                           [value](std::uint8_t b) { return b == value; });
    }
    static std::uint32_t recordAt(int n) {
        return kPictureTableOffset + kPictureRecordSize * static_cast<std::uint32_t>(n);
    }

private:
    static inline Bytes* image_ = nullptr;
};

// The glyph reference as the glyph list reads it: hex text without leading zeros, and only
// the last 4 digits of a text that begins with "FF".
std::uint32_t referenceAsRead(std::uint32_t raw) {
    char text[9];
    std::snprintf(text, sizeof text, "%X", raw);
    const std::string hex = text;
    return hex.rfind("FF", 0) == 0 && hex.size() > 4 ? std::stoul(hex.substr(hex.size() - 4), nullptr, 16) : raw;
}

// Walks picture data the way the firmware reads it; gives the samples (bytes packed into a
// number) and the bytes consumed, or nothing when a sample is missing or a run overshoots.
struct Walk {
    bool complete = false;
    std::size_t consumed = 0;
    std::vector<std::uint32_t> samples;
};

Walk walkPicture(const Bytes& data, int width, int height, std::uint8_t type) {
    Walk walk;
    const auto total = static_cast<std::size_t>(width * height);
    if (type == 0x01) {
        walk.consumed = static_cast<std::size_t>((width + 7) / 8 * height);
        walk.complete = walk.consumed == data.size();
        return walk;
    }
    const auto size = static_cast<std::size_t>(demoSampleSize(type));
    std::size_t at = 0;
    auto sample = [&](std::uint32_t& out) {
        if (at + size > data.size()) return false;
        out = 0;
        for (std::size_t k = 0; k < size; ++k) out |= static_cast<std::uint32_t>(data[at + k]) << (8 * k);
        at += size;
        return true;
    };
    std::uint32_t s = 0;
    if ((type & 0x80) == 0) {
        while (walk.samples.size() < total && sample(s)) walk.samples.push_back(s);
    } else {
        while (walk.samples.size() < total && at < data.size()) {
            const std::uint8_t n = data[at++];
            if (n >= 128) {
                for (int k = 0; k < 256 - n; ++k)
                    if (sample(s)) walk.samples.push_back(s);
            } else if (sample(s)) {
                walk.samples.insert(walk.samples.end(), n, s);
            }
        }
    }
    walk.consumed = at;
    walk.complete = walk.samples.size() == total;
    return walk;
}

TEST_F(DemoFlashTest, HasTheFullSizeAndIsTheSameOnEveryCall) {
    ASSERT_EQ(image().size(), kDemoFlashSize);
    EXPECT_TRUE(makeDemoFlash() == image());
}

TEST_F(DemoFlashTest, IdentifiesAsE71WithLanguagePack42) {
    EXPECT_EQ(Bytes(image().begin() + kModelOffset, image().begin() + kModelOffset + 4), (Bytes{'E', '7', '1', 0}));
    EXPECT_EQ(image()[kLanguagePackOffset], '4');
    EXPECT_EQ(image()[kLanguagePackOffset + 1], '2');
    EXPECT_EQ(u32(kFontArrayPointerOffset), kPhoneAddressBase + kFontArrayE71v42);
    EXPECT_EQ(u32(kFontAreaPointerOffset), kPhoneAddressBase + kDemoFontAreaOffset);
    EXPECT_GE(kDemoFontAreaOffset, 0x1800000U);
    EXPECT_LE(kDemoFontAreaOffset, 0x18B0000U);
    EXPECT_EQ(image()[kFontCountOffset], kDemoFontCount);
}

TEST_F(DemoFlashTest, FontDescriptorsPointAtTablesOutsideTheDescriptors) {
    const std::uint32_t descriptorsEnd = kFontArrayE71v42 + kFontDescriptorSize * kDemoFontCount;
    EXPECT_EQ(image()[kFontArrayE71v42 + 4], 0x10);  // the size byte the font-size patch example changes
    for (int font = 0; font < kDemoFontCount; ++font) {
        SCOPED_TRACE(font);
        const std::uint32_t d = kFontArrayE71v42 + kFontDescriptorSize * static_cast<std::uint32_t>(font);
        const std::uint32_t start = u32(d), end = u32(d + 8);
        EXPECT_EQ(start >> 28, 0xAU);
        ASSERT_LT(start, end);
        EXPECT_EQ((end - start) % 8, 0U);
        EXPECT_EQ(static_cast<int>((end - start) / 8), kDemoFontEntries[static_cast<std::size_t>(font)]);
        EXPECT_EQ(image()[d + 4], kDemoFontSizes[static_cast<std::size_t>(font)]);
        EXPECT_TRUE(allBytes(d + 5, d + 8, 0) && allBytes(d + 12, d + 24, 0));
        const std::uint32_t tableStart = start & 0x0FFFFFFF, tableEnd = end & 0x0FFFFFFF;
        EXPECT_TRUE(tableStart >= descriptorsEnd || tableEnd <= kFontArrayE71v42);
        EXPECT_TRUE(tableEnd <= kDemoFontAreaOffset || tableStart >= kDemoFontAreaOffset + kDemoFontAreaSize);
    }
    EXPECT_GT(kDemoFontEntries[0], 784);  // so that the font 0 correction is exercised on both sides
}

TEST_F(DemoFlashTest, GlyphRecordsLieWhereTheReaderLooksAndKeepTheirRoom) {
    std::vector<std::pair<std::uint32_t, std::uint32_t>> spans;  // [record, record + room)
    int ffReferences = 0;
    int leftShifts = 0;
    for (int font = 0; font < kDemoFontCount; ++font) {
        SCOPED_TRACE(font);
        const std::uint32_t d = kFontArrayE71v42 + kFontDescriptorSize * static_cast<std::uint32_t>(font);
        const std::uint32_t table = u32(d) & 0x0FFFFFFF;
        const int entries = kDemoFontEntries[static_cast<std::size_t>(font)];
        std::uint32_t previous = 0;
        std::uint32_t previousRoom = 0;
        for (int i = 0; i < entries; ++i) {
            SCOPED_TRACE(i);
            const std::uint32_t entry = table + 8U * static_cast<std::uint32_t>(i);
            ASSERT_TRUE(allBytes(entry, entry + 4, 0));
            const std::uint32_t raw = u32(entry + 4);
            const std::uint32_t reference = referenceAsRead(raw);
            const bool ffExpected =
                font == kDemoFfReferenceFont && i >= kDemoFfReferenceFirst && i <= kDemoFfReferenceLast;
            ASSERT_EQ(raw >> 16 == 0xFFFF, ffExpected);
            ffReferences += ffExpected;
            const bool lifted = font == 0 && i > 374 && i < 784;
            const std::uint32_t record = kDemoFontAreaOffset + reference + (lifted ? 0x10000U : 0U);

            const DemoGlyph glyph = makeDemoGlyph(i + 1, demoFontScale(font));
            const Bytes expected = [&] {
                Bytes b{glyph.advance, glyph.width, glyph.height, glyph.shiftLeft, glyph.spaceBelow};
                b.insert(b.end(), glyph.bitmap.begin(), glyph.bitmap.end());
                return b;
            }();
            ASSERT_LE(record + expected.size(), kDemoFontAreaOffset + kDemoFontAreaSize);
            ASSERT_EQ(Bytes(image().begin() + record, image().begin() + record + expected.size()), expected);
            ASSERT_EQ(glyph.bitmap.size(), static_cast<std::size_t>((glyph.width + 7) / 8 * glyph.height));
            leftShifts += glyph.shiftLeft == 0xFF;

            // Ordinary references have five digits or more, so the reader never takes them
            // for 16-bit negatives; they increase with the code and keep the room between them.
            if (!ffExpected) {
                ASSERT_GE(reference, 0x10000u);
                if (previous != 0) {
                    ASSERT_GT(reference, previous);
                    ASSERT_GE(reference - previous, previousRoom);
                }
                previous = reference;
                previousRoom = demoGlyphRoom(glyph);
            } else {
                ASSERT_LT(reference, 0x8000u);
            }
            spans.emplace_back(record, record + demoGlyphRoom(glyph));
        }
    }
    EXPECT_EQ(ffReferences, kDemoFfReferenceLast - kDemoFfReferenceFirst + 1);
    EXPECT_GT(leftShifts, 3);
    std::sort(spans.begin(), spans.end());
    EXPECT_GE(spans.front().first, kDemoFontAreaOffset);
    EXPECT_LE(spans.back().second, kDemoFontAreaOffset + kDemoFontAreaSize);
    for (std::size_t k = 1; k < spans.size(); ++k) ASSERT_LE(spans[k - 1].second, spans[k].first) << k;
}

TEST_F(DemoFlashTest, OrdinaryPicturesAreStoredAsTheirRecordsSay) {
    std::map<std::uint8_t, int> typeCount;
    std::set<std::uint8_t> keyed;
    bool softAlpha = false;
    std::uint32_t expectedAt = kPictureDataStart;
    for (int n = 0; n < kPictureCount; ++n) {
        if (isOddDemoPicture(n)) continue;
        SCOPED_TRACE(n);
        const std::uint32_t r = recordAt(n);
        const DemoPicture picture = makeDemoPicture(n);
        ASSERT_EQ(u16(r), picture.width);
        ASSERT_EQ(u16(r + 2), picture.height);
        ASSERT_EQ(image()[r + 4], picture.type);
        ASSERT_TRUE(allBytes(r + 5, r + 8, 0));
        const std::uint32_t address = u32(r + 8);
        ASSERT_EQ(address >> 28, 0xAU);
        const std::uint32_t at = address & 0x0FFFFFFF;
        ASSERT_EQ(at, expectedAt);
        ASSERT_EQ((at - kPictureDataStart) % 16, 0U);
        ASSERT_LE(at + picture.data.size(), kPictureDataLimit);
        ASSERT_TRUE(std::equal(picture.data.begin(), picture.data.end(), image().begin() + at));
        expectedAt = at + ((static_cast<std::uint32_t>(picture.data.size()) + 15) & ~15U);

        ASSERT_GE(picture.width, 1);
        ASSERT_LE(picture.width, 240);
        ASSERT_GE(picture.height, 1);
        ASSERT_LE(picture.height, 320);
        const Walk walk = walkPicture(picture.data, picture.width, picture.height, picture.type);
        ASSERT_TRUE(walk.complete);
        ASSERT_EQ(walk.consumed, picture.data.size()) << "data left over or runs past the last row";
        ++typeCount[picture.type];
        for (std::uint32_t s : walk.samples) {
            const std::uint8_t base = picture.type & 0x7F;
            if ((base == 0x05 && s == 0xC0) || (base == 0x07 && s == 0xFAAA) || (base == 0x08 && s == 0xE000))
                keyed.insert(base);
            if (base == 0x0A && (s >> 24) > 0 && (s >> 24) < 255) softAlpha = true;
        }
    }
    EXPECT_TRUE(allBytes(expectedAt, kReservedHigh2, 0xFF)) << "erased flash after the last picture";
    EXPECT_LT(expectedAt, kPictureDataLimit - 0x80000) << "the picture area should keep some room";
    for (std::uint8_t type : {0x01, 0x05, 0x85, 0x07, 0x87, 0x08, 0x88, 0x0A, 0x8A})
        EXPECT_GE(typeCount[type], 50) << int(type);
    EXPECT_EQ(typeCount.size(), 9U);
    EXPECT_EQ(keyed, (std::set<std::uint8_t>{0x05, 0x07, 0x08}));
    EXPECT_TRUE(softAlpha);
    EXPECT_FALSE(isOddDemoPicture(0));
    EXPECT_FALSE(isOddDemoPicture(kPictureMaxIndex));
    EXPECT_EQ(u16(recordAt(0)), 240);
    EXPECT_EQ(u16(recordAt(0) + 2), 320);
}

TEST_F(DemoFlashTest, OddRecordsSitAtTheirDocumentedNumbers) {
    const std::uint32_t zero = recordAt(kDemoPictureAllZero), ff = recordAt(kDemoPictureAllFF);
    EXPECT_TRUE(allBytes(zero, zero + kPictureRecordSize, 0x00));
    EXPECT_TRUE(allBytes(ff, ff + kPictureRecordSize, 0xFF));

    const std::uint32_t of976 = u32(recordAt(976) + 8);
    const std::uint32_t unknown = recordAt(kDemoPictureUnknownType), mono = recordAt(kDemoPictureMonoRle);
    EXPECT_EQ(image()[unknown + 4], 0x03);
    EXPECT_EQ(image()[mono + 4], 0x81);
    EXPECT_EQ(image()[recordAt(976) + 4], 0x85) << "0x81 after an 8-bit picture reads as compressed 8-bit";
    for (std::uint32_t r : {unknown, mono}) {
        EXPECT_EQ(u16(r), 16U);
        EXPECT_EQ(u16(r + 2), 16U);
        EXPECT_EQ(u32(r + 8), of976);
    }

    const std::uint32_t of1332 = u32(recordAt(1332) + 8);
    const std::uint32_t noWidth = recordAt(kDemoPictureZeroWidth), noHeight = recordAt(kDemoPictureZeroHeight);
    EXPECT_EQ(u16(noWidth), 0U);
    EXPECT_GT(u16(noWidth + 2), 0U);
    EXPECT_GT(u16(noHeight), 0U);
    EXPECT_EQ(u16(noHeight + 2), 0U);
    EXPECT_EQ(u32(noWidth + 8), of1332);
    EXPECT_EQ(u32(noHeight + 8), of1332);
}

TEST_F(DemoFlashTest, ErasedFlashOnlyWhereReplacedPicturesGo) {
    EXPECT_LT(kDemoErasedStart, kFreeSpaceSearchStart - 1);  // a first search finds 0x1320000 itself
    EXPECT_TRUE(allBytes(kDemoErasedStart, kDemoErasedEnd, 0xFF));
    EXPECT_TRUE(allBytes(kDemoErasedTailStart, kDemoFlashSize, 0xFF));
    // Outside the erased stretches and the picture area (which the search jumps over), no run
    // of 16 bytes 0xFF: neither filler nor any other structure looks like free space.
    std::uint32_t run = 0;
    for (std::uint32_t at = 0; at < kDemoFlashSize; ++at) {
        const bool excluded = (at >= kDemoErasedStart && at < kDemoErasedEnd) || at >= kReservedLow2;
        run = (!excluded && image()[at] == 0xFF) ? run + 1 : 0;
        ASSERT_LT(run, 16U) << std::hex << "0xFF run ending at " << at;
    }
}

}  // namespace
}  // namespace korvatek::firmware

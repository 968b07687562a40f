// The demonstration fullflash is the quick start's input and the fixture of many tests: what
// they rely on is that it opens as a supported phone, that every picture decodes, that it has
// every picture type and fonts, that replaced pictures find free space, and that it is the
// same image on every run.
#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "codec/picture_decoder.h"
#include "codec/picture_type.h"
#include "codec/pixel_decode.h"
#include "demo/demo_flash.h"
#include "firmware/free_space.h"
#include "firmware/identification.h"
#include "firmware/layout.h"
#include "firmware/picture_index_table.h"
#include "fonts/font_table.h"

namespace korvatek::firmware {
namespace {

const Bytes& image() {
    static const Bytes demo = makeDemoFlash();
    return demo;
}

TEST(DemoFlash, isFullSizeAndTheSameOnEveryCall) {
    ASSERT_EQ(image().size(), kDemoFlashSize);
    EXPECT_TRUE(makeDemoFlash() == image());
}

TEST(DemoFlash, identifiesAsASupportedPhoneWithFonts) {
    ByteReader flash(image());
    EXPECT_TRUE(isSupportedModel(readPhoneModel(flash)));
    EXPECT_TRUE(isSupportedLanguagePack(readLanguagePack(flash)));
    const auto fonts = readFontSelector(flash);
    ASSERT_GE(fonts.size(), 2u);
    EXPECT_EQ(identifyFirmware(fonts), "lg91_E71_v42");

    flash.seek(kFontAreaPointerOffset);
    const std::int64_t area = flashOffsetOf(flash.u32le());
    for (std::size_t font = 0; font < fonts.size(); ++font) {
        SCOPED_TRACE(font);
        const auto table = fonts::FOTload(flash, fonts[font].descriptorOffset, area, font == 0, [](double) {});
        EXPECT_EQ(table.table.outsideImage, 0);
        EXPECT_GE(table.table.rows.size(), 200u);
    }
    // The first font is long enough for its lifted entries (375 to 783) and those after them.
    EXPECT_GT(kDemoFontEntries[0], 784);
}

TEST(DemoFlash, everyOrdinaryPictureDecodesAndEveryTypeIsThere) {
    ByteReader flash(image());
    const auto rows = PITload(flash, kPictureTableOffset, kPictureMaxIndex, [](double) {});
    ASSERT_EQ(rows.size(), static_cast<std::size_t>(kPictureCount));
    std::set<int> types, keyed;
    for (int n = 0; n < kPictureCount; ++n) {
        if (std::count(kDemoOddPictures.begin(), kDemoOddPictures.end(), n) != 0) continue;
        SCOPED_TRACE(n);
        ByteReader record(image(), kPictureTableOffset + kPictureRecordSize * static_cast<std::uint32_t>(n));
        const int width = record.u16le(), height = record.u16le(), code = record.u8();
        record.skip(3);
        const std::uint32_t offset = flashOffsetOf(record.u32le());
        const auto bits = codec::bitsForTypeCode(code);
        ASSERT_TRUE(bits.has_value());
        ASSERT_TRUE(width >= 1 && width <= codec::kMaxPictureWidth && height >= 1 && height <= codec::kMaxPictureHeight);
        codec::PixelCanvas canvas;
        ByteReader data(image(), offset);
        ASSERT_TRUE(codec::ConvertGPF2BMPdata(data, {width, height, *bits, codec::compressionText(code), 32}, canvas).ok());
        types.insert(code);
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                if (canvas.at(x, y) == codec::TransparentPixel) keyed.insert(code & 0x7F);
    }
    EXPECT_EQ(types, (std::set<int>{0x01, 0x05, 0x85, 0x07, 0x87, 0x08, 0x88, 0x0A, 0x8A}));
    EXPECT_EQ(keyed, (std::set<int>{0x05, 0x07, 0x08}));  // every format with a transparent key uses it
    EXPECT_EQ(rows[kDemoPictureAllZero].dataOffset(), 0u);  // an unused record
}

TEST(DemoFlash, aGrownPictureFindsErasedFlashWhereTheSearchStarts) {
    const auto found = FindFreeSpace(image(), 0x10000, kFreeSpaceSearchStart);
    ASSERT_TRUE(found.address.has_value());
    EXPECT_EQ(*found.address, kFreeSpaceSearchStart);
    // Nowhere else, outside the picture area the search jumps over, does filler look erased.
    std::uint32_t run = 0;
    for (std::uint32_t at = 0; at < kReservedLow2; ++at) {
        const bool erased = at >= kDemoErasedStart && at < kDemoErasedEnd;
        run = !erased && image()[at] == 0xFF ? run + 1 : 0;
        ASSERT_LT(run, 16u) << std::hex << "0xFF run ending at " << at;
    }
}

}  // namespace
}  // namespace korvatek::firmware

#include "firmware/picture_index_table.h"

#include <gtest/gtest.h>

#include "firmware/identification.h"
#include "firmware/layout.h"
#include "support/flash_builder.h"

namespace korvatek::firmware {

namespace {

PictureRecord rowFor(int n, Bytes record) { return makePictureRecord(n, 0x1B01958, record.data()); }

}  // namespace

TEST(PictureIndexTable, numberAndHexColumnsArePadded) {
    const Bytes zero(12, 0);
    const std::pair<int, std::pair<const char*, const char*>> cases[] = {
        {0, {"0000", "000"}},   {9, {"0009", "009"}},    {10, {"0010", "00A"}}, {99, {"0099", "063"}},
        {100, {"0100", "064"}}, {999, {"0999", "3E7"}}, {1000, {"1000", "3E8"}}, {1700, {"1700", "6A4"}}};
    for (const auto& [n, texts] : cases) {
        const PictureRecord row = rowFor(n, zero);
        EXPECT_EQ(pictureCellText(row, 1), texts.first) << n;
        EXPECT_EQ(pictureCellText(row, 2), texts.second) << n;
    }
}

TEST(PictureIndexTable, typeCellComparesAgainstDecimalTen) {
    EXPECT_EQ(typeCellText(0x05), "0500");
    EXPECT_EQ(typeCellText(0x09), "0900");
    EXPECT_EQ(typeCellText(0x0A), "A00");  // reads back as 0xA0
    EXPECT_EQ(typeCellText(0x0F), "F00");
    EXPECT_EQ(typeCellText(0x10), "1000");
    EXPECT_EQ(typeCellText(0x85), "8500");
    EXPECT_EQ(typeCellText(0x8A), "8A00");
    EXPECT_EQ(typeCellText(0x00), "0000");
}

TEST(PictureIndexTable, sizesAreSignedLittleEndianAndAddressDropsItsTopDigit) {
    const auto cells = [](const PictureRecord& row) {
        std::string text;
        for (int column = 1; column <= 8; ++column) text += pictureCellText(row, column) + "|";
        return text;
    };
    PictureRecord row = rowFor(1, {0x40, 0x01, 0xF0, 0x00, 0x85, 9, 9, 9, 0x67, 0x45, 0x23, 0xA1});
    EXPECT_EQ(cells(row), "0001|001|320|240|8500|1B01958|1234567||");
    EXPECT_EQ(row.dataOffset(), 0x1234567u);
    row.replaced = true;
    EXPECT_EQ(pictureCellText(row, 8), "*");

    row = rowFor(2, {0xFF, 0xFF, 0x00, 0x80, 0x0A, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF});
    EXPECT_EQ(cells(row), "0002|002|-1|-32768|A00|1B01958|FFFFFFF||");
    EXPECT_EQ(row.listedType(), 0xA0);  // the Type cell "A00" reads back as 0xA0
    EXPECT_EQ(pictureCellText(rowFor(3, {0, 0, 0, 0, 0, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xA0}), 7), "0FFFFFF");
    EXPECT_EQ(pictureCellText(rowFor(3, {0, 0, 0, 0, 0, 0, 0, 0, 0x00, 0x00, 0x00, 0xA1}), 7), "1000000");
}

TEST(PictureIndexTable, walksAllRecordsInOrderWithTheirOffsets) {
    testing::FlashBuilder flash;
    flash.picture(0, 176, 220, 0x88, 0x1B07068).picture(1700, 5, 6, 0x01, 0x1B08000);
    ByteReader reader(flash.bytes());
    int calls = 0;
    double last = -1;
    const auto rows = PITload(reader, kPictureTableOffset, kPictureMaxIndex, [&](double p) {
        ++calls;
        last = p;
    });
    ASSERT_EQ(rows.size(), 1701u);
    EXPECT_EQ(rows[0].recordOffset, 0x1B01958u);
    EXPECT_EQ(rows[0].width, 176);
    EXPECT_EQ(rows[0].dataOffset(), 0x1B07068u);
    EXPECT_EQ(rows[1700].recordOffset, 0x1B06908u);
    EXPECT_EQ(rows[1700].type, 0x01);
    EXPECT_EQ(calls, 1701);
    EXPECT_DOUBLE_EQ(last, 100.0);
    EXPECT_EQ(reader.position(), kPictureTableEnd);
}

TEST(PictureIndexTable, aTableBeyondTheEndReadsZeros) {
    const Bytes tiny(16, 0xFF);
    ByteReader reader(tiny);
    const auto rows = PITload(reader, kPictureTableOffset, 2, nullptr);
    ASSERT_EQ(rows.size(), 3u);
    EXPECT_EQ(rows[2].width, 0);
    EXPECT_EQ(pictureCellText(rows[2], 7), "0000000");
}

TEST(Identification, modelPackAndFirmware) {
    testing::FlashBuilder flash;
    ByteReader r(flash.bytes());
    EXPECT_EQ(readPhoneModel(r), "E71");
    EXPECT_EQ(readLanguagePack(r), "42");
    const auto fonts = readFontSelector(r);
    ASSERT_EQ(fonts.size(), 2u);
    EXPECT_EQ(fonts[0].caption, "Font 0");
    EXPECT_EQ(fonts[1].descriptorOffset, kFontArrayE71v42 + 24);
    EXPECT_EQ(identifyFirmware(fonts), "lg91_E71_v42");
    EXPECT_EQ(identifyFirmware({{"Font 0", kFontArrayEl71v41}}), "lg03_El71_v41");
    EXPECT_EQ(identifyFirmware({{"Font 0", 0x1234}}), "Unknown LngPack");
    EXPECT_EQ(identifyFirmware({}), "Unknown LngPack");

    for (const char* ok : {"EL71", "E71", "E71C", "ELC1"}) EXPECT_TRUE(isSupportedModel(ok)) << ok;
    for (const char* bad : {"e71", "", "E7", "E71 "}) EXPECT_FALSE(isSupportedModel(bad)) << bad;
    flash.model(std::string("\0\0\0\0", 4));
    ByteReader zeros(flash.bytes());
    EXPECT_EQ(readPhoneModel(zeros), "");
    for (const char* ok : {"41", "42", "45"}) EXPECT_TRUE(isSupportedLanguagePack(ok));
    EXPECT_FALSE(isSupportedLanguagePack("43"));
}

}  // namespace korvatek::firmware

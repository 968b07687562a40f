#include "containers/gpf_header.h"

#include <gtest/gtest.h>

#include "containers/dat_header.h"

namespace korvatek::containers {

TEST(GpfHeader, version2LayoutOfAFullScreenPicture) {
    const Bytes head = SaveGPFhead(true, 240, 320, std::string{'\x85', '\0'});
    Bytes expected = bytesOf("GraphPatchFile_2");
    expected.insert(expected.end(), {0, 0, 0, 0, 0xF0, 0x00, 0x40, 0x01, 0x85, 0x00, 0, 0, 0, 0, 0, 0});
    EXPECT_EQ(head, expected);
}

TEST(GpfHeader, version1Layout) {
    const Bytes head = SaveGPFhead(false, 16, 255, std::string{'\x01', '\0'});
    Bytes expected = bytesOf("GraphicPatchFile");
    expected.insert(expected.end(), {0, 0, 0, 0, 16, 255, 0x01, 0x00, 0, 0, 0, 0, 0, 0, 0, 0});
    EXPECT_EQ(head, expected);
}

TEST(GpfHeader, bothVersionsReadBackTheSame) {
    for (bool v2 : {false, true}) {
        Bytes file = SaveGPFhead(v2, 200, 17, std::string{'\x88', '\0'});
        ByteReader in(file);
        const auto header = LoadGPFhead(in);
        ASSERT_TRUE(header.ok());
        EXPECT_EQ(header->isGPF2, v2);
        EXPECT_EQ(header->width, 200);
        EXPECT_EQ(header->height, 17);
        EXPECT_EQ(typeCodeOf(header->typeText), 0x88);
        EXPECT_EQ(in.position(), kGpfHeaderSize);
    }
}

TEST(GpfHeader, aMagicOneCharacterOffIsUnknown) {
    Bytes file = SaveGPFhead(true, 1, 1, std::string{'\x01', '\0'});
    file[15] = 'E';
    ByteReader in(file);
    const auto header = LoadGPFhead(in);
    ASSERT_FALSE(header.ok());
    EXPECT_EQ(header.error().code, ErrorCode::BadMagic);
    const Bytes empty;
    ByteReader none(empty);
    EXPECT_FALSE(LoadGPFhead(none).ok());
}

TEST(GpfHeader, sixteenBitSizesReadSigned) {
    Bytes file = SaveGPFhead(true, 0xFFFF, 0x8000, std::string{'\x05', '\0'});
    ByteReader in(file);
    const auto header = LoadGPFhead(in);
    ASSERT_TRUE(header.ok());
    EXPECT_EQ(header->width, -1);
    EXPECT_EQ(header->height, -32768);
}

TEST(GpfHeader, aOneCharacterTypeTextGivesAShortHeader) {
    EXPECT_EQ(SaveGPFhead(true, 1, 1, std::string{'\x85'}).size(), 31u);
}

TEST(GpfHeader, paddingIsAlwaysAtLeastOneByte) {
    for (std::size_t length : {32u, 33u, 47u, 48u, 63u}) {
        Bytes file(length, 1);
        padContainer(file);
        EXPECT_EQ(file.size() % 16, 0u);
        EXPECT_GT(file.size(), length);
        EXPECT_LE(file.size(), length + 16);
    }
    Bytes multiple(48, 1);
    padContainer(multiple);
    EXPECT_EQ(multiple.size(), 64u);  // 16 more, never none
    Bytes rest1(49, 1);
    padContainer(rest1);
    EXPECT_EQ(rest1.size(), 64u);     // 15
}

TEST(DatHeader, layoutAndRoundTrip) {
    EXPECT_EQ(SaveDAThead(16, 16, "\x85"), (Bytes{0x10, 0x00, 0x10, 0x00, 0x85}));
    const Bytes file{0xF0, 0x00, 0x40, 0x01, 0x8A, 0x99};
    ByteReader in(file);
    const DatHeader header = LoadDAThead(in);
    EXPECT_EQ(header.width, 240);
    EXPECT_EQ(header.height, 320);
    EXPECT_EQ(header.typeText, "\x8A");
    EXPECT_EQ(in.position(), kDatHeaderSize);
}

}  // namespace korvatek::containers

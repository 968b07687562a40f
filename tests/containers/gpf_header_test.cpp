#include "containers/gpf_header.h"

#include <gtest/gtest.h>

#include "containers/dat_header.h"

namespace korvatek::containers {

TEST(GpfHeader, bothVersionsWriteTheirLayoutAndReadBack) {
    Bytes v2 = bytesOf("GraphPatchFile_2");
    v2.insert(v2.end(), {0, 0, 0, 0, 0xF0, 0x00, 0x40, 0x01, 0x88, 0x00, 0, 0, 0, 0, 0, 0});
    Bytes v1 = bytesOf("GraphicPatchFile");
    v1.insert(v1.end(), {0, 0, 0, 0, 0xF0, 0xFF, 0x88, 0x00, 0, 0, 0, 0, 0, 0, 0, 0});
    for (const auto& [isGPF2, height, expected] : {std::tuple{true, 320, v2}, std::tuple{false, 255, v1}}) {
        const Bytes head = SaveGPFhead(isGPF2, 240, height, std::string{'\x88', '\0'});
        EXPECT_EQ(head, expected);
        ByteReader in(head);
        const auto header = LoadGPFhead(in);
        ASSERT_TRUE(header.ok());
        EXPECT_EQ(header->isGPF2, isGPF2);
        EXPECT_EQ(header->width, 240);
        EXPECT_EQ(header->height, height);
        EXPECT_EQ(typeCodeOf(header->typeText), 0x88);
        EXPECT_EQ(in.position(), kGpfHeaderSize);
    }
    // A DAT's one-character type text gives the 31-byte header the conversion writes.
    EXPECT_EQ(SaveGPFhead(true, 1, 1, std::string{'\x85'}).size(), 31u);
}

TEST(GpfHeader, sizesReadSignedAndAMagicOneCharacterOffIsUnknown) {
    Bytes file = SaveGPFhead(true, 0xFFFF, 0x8000, std::string{'\x05', '\0'});
    ByteReader in(file);
    const auto header = LoadGPFhead(in);
    ASSERT_TRUE(header.ok());
    EXPECT_EQ(header->width, -1);
    EXPECT_EQ(header->height, -32768);
    file[15] = 'E';
    ByteReader bad(file);
    const auto refused = LoadGPFhead(bad);
    ASSERT_FALSE(refused.ok());
    EXPECT_EQ(refused.error().code, ErrorCode::BadMagic);
}

TEST(GpfHeader, paddingIsOneToSixteenBytes) {
    for (const auto& [length, padded] : {std::pair{32u, 48u}, {33u, 48u}, {47u, 48u}, {48u, 64u}, {49u, 64u}}) {
        Bytes file(length, 1);
        padContainer(file);
        EXPECT_EQ(file.size(), padded) << length;
    }
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

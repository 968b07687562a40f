// The edit operations as functions: opening, placing replacements, containers and patches.
#include <gtest/gtest.h>

#include "base/file_io.h"
#include "codec/picture_encoder.h"
#include "edit/opened_flash.h"
#include "edit/patch_files.h"
#include "edit/picture_decode.h"
#include "edit/picture_files.h"
#include "edit/picture_patch.h"
#include "firmware/layout.h"
#include "support/flash_builder.h"

namespace korvatek::edit {

namespace {

using testing::FlashBuilder;

Result<OpenedFlash> open(const FlashBuilder& image, const std::string& name = "flash.bin") {
    return openFlash(image.writeTo(name), firmware::kPictureTableOffset, firmware::kPictureMaxIndex);
}

// A canvas of w x h opaque cells, checkered black and white.
codec::PixelCanvas checkered(int w, int h) {
    codec::PixelCanvas canvas;
    canvas.metaWidth = w;
    canvas.metaHeight = h;
    canvas.metaDepth = 24;
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x)
            canvas.at(x, y) = (x + y) % 2 ? codec::Cell{255, 255, 255, 255} : codec::Cell{0, 0, 0, 255};
    return canvas;
}

}  // namespace

TEST(OpenFlash, refusesAnotherPhoneAShortFileAndAMissingOne) {
    FlashBuilder otherPhone;
    otherPhone.model("X99");
    const auto model = open(otherPhone);
    ASSERT_FALSE(model);
    EXPECT_EQ(model.error().code, ErrorCode::ModelNotSupported);
    EXPECT_EQ(model.error().detail, "X99");

    Bytes cut = FlashBuilder().bytes();
    cut.resize(firmware::kMinimumFlashSize - 1);
    const std::string shortPath = testing::testFolder() + "/short.bin";
    ASSERT_TRUE(app::writeFile(shortPath, cut).ok());
    const auto shortFile = openFlash(shortPath, firmware::kPictureTableOffset, firmware::kPictureMaxIndex);
    ASSERT_FALSE(shortFile);
    EXPECT_EQ(shortFile.error().code, ErrorCode::FlashTooShort);

    const auto missing = openFlash(testing::testFolder() + "/none.bin", firmware::kPictureTableOffset, 10);
    ASSERT_FALSE(missing);
    EXPECT_EQ(missing.error().code, ErrorCode::FileMissing);
}

TEST(OpenFlash, listsPicturesOnlyForAKnownLanguagePack) {
    FlashBuilder image;
    image.picture(5, 16, 8, 0x88, 0x1B10000);
    const auto flash = open(image);
    ASSERT_TRUE(flash);
    EXPECT_EQ(flash->model, "E71");
    EXPECT_EQ(flash->firmwareId, "lg91_E71_v42");
    ASSERT_EQ(flash->pictures.size(), 1701u);
    const firmware::PictureRecord& five = flash->pictures[5];
    EXPECT_EQ(five.width, 16);
    EXPECT_EQ(five.type, 0x88);
    EXPECT_EQ(five.dataOffset(), 0x1B10000u);
    EXPECT_EQ(flash->positionAfterTable, firmware::kPictureTableEnd);

    image.pack("43");
    const auto fontsOnly = open(image, "pack43.bin");
    ASSERT_TRUE(fontsOnly);
    EXPECT_FALSE(fontsOnly->packSupported);
    EXPECT_TRUE(fontsOnly->pictures.empty());
    EXPECT_EQ(fontsOnly->fonts.size(), 2u);
}

TEST(ListedLength, fourHexDigitsOrFewerCompareAsSigned16Bit) {
    EXPECT_EQ(listedLength(0x7FFF), 0x7FFF);
    EXPECT_EQ(listedLength(0x9000), -0x7000);  // a 128 x 160 16-bit picture's data
    EXPECT_EQ(listedLength(0x12E80), 0x12E80);
}

// One contract over every target type and both container versions: what is encoded decodes
// back to the same pixels, through the container head the readers see.
class ContainerRoundTrip : public ::testing::TestWithParam<std::tuple<int, bool>> {};

TEST_P(ContainerRoundTrip, encodedPixelsDecodeBack) {
    const auto [target, gpf2] = GetParam();
    const codec::PixelCanvas canvas = checkered(13, 5);
    const auto encoded = encodeContainer(canvas, std::string{static_cast<char>(target), '\0'}, gpf2);
    ASSERT_TRUE(encoded);
    EXPECT_EQ(encoded->bytes.size() % 16, 0u);
    ByteReader in(encoded->bytes);
    const auto head = readContainerHead(in, false);
    ASSERT_TRUE(head);
    EXPECT_EQ(head->isGPF2, gpf2);
    EXPECT_EQ(head->width, 13);
    EXPECT_EQ(head->height, 5);
    PictureDecoder decoder;
    const DecodedPicture decoded = decoder.containerData(in, head->width, head->height, head->typeText, 24);
    ASSERT_FALSE(decoded.stopped);
    ASSERT_FALSE(decoded.refused);
    // The run-length encoder has always dropped the next-to-last cell of a literal tail.
    const bool runLength = target != codec::kTarget1Bit;
    for (int y = 0; y < 5; ++y)
        for (int x = 0; x < 13; ++x) {
            if (runLength && x == 11 && y == 4) continue;
            const auto& cell = decoder.canvas().at(x, y);
            EXPECT_EQ(cell[0] > 127, (x + y) % 2 == 1) << target << " at " << x << "," << y;
        }
}

INSTANTIATE_TEST_SUITE_P(EveryTarget, ContainerRoundTrip,
                         ::testing::Combine(::testing::Values(codec::kTarget1Bit, codec::kTarget8Bit,
                                                              codec::kTarget16Bit, codec::kTarget24Bit),
                                            ::testing::Bool()));

TEST(ContainerFiles, versionOneRefusesSizesAboveItsByteAndConversionsKeepTheData) {
    EXPECT_EQ(encodeContainer(checkered(256, 1), std::string{'\x85', '\0'}, false).error().code, ErrorCode::GpfV1TooLarge);

    const auto gpf2 = encodeContainer(checkered(7, 3), std::string{'\x88', '\0'}, true);
    ASSERT_TRUE(gpf2);
    const ContainerHead head{7, 3, std::string{'\x88', '\0'}, true};
    const Bytes gpf1 = swapContainerVersion(gpf2->bytes, head, false);
    EXPECT_EQ(swapContainerVersion(gpf1, {7, 3, head.typeText, false}, true), gpf2->bytes);

    // To a theme cache and back: the data travel whole, the last byte once more each way.
    const Bytes dat = convertThemeCache(gpf2->bytes, head, false);
    ByteReader datHead(dat);
    const auto read = readContainerHead(datHead, true);
    ASSERT_TRUE(read);
    EXPECT_EQ(read->width, 7);
    const Bytes back = convertThemeCache(dat, *read, true);
    ASSERT_GE(back.size(), gpf2->bytes.size());
    EXPECT_TRUE(std::equal(gpf2->bytes.begin() + 32, gpf2->bytes.end(), back.begin() + 32));
}

// A replacement no longer than the picture's own data goes in place; a longer one moves to the
// first free (0xFF) area from the search start; without one it is refused.
TEST(PicturePlacement, inPlaceMovedOrRefused) {
    FlashBuilder image;
    image.picture(3, 7, 3, 0x88, 0x1B10000);
    image.put(firmware::kFreeSpaceSearchStart, Bytes(0x4000, 0xFF));
    const auto flash = open(image);
    ASSERT_TRUE(flash);
    const auto container = encodeContainer(checkered(7, 3), std::string{'\x88', '\0'}, true);
    ASSERT_TRUE(container);
    ByteReader in(container->bytes);
    const auto head = readContainerHead(in, false);
    PictureDecoder decoder;
    const DecodedPicture replacement = decoder.containerData(in, head->width, head->height, head->typeText, 24);
    const firmware::PictureRecord& row = flash->pictures[3];

    PicturePatch patch(*flash);
    const PicturePlacement inPlace = patch.add(row, 0x7FFF, container->bytes, replacement);
    EXPECT_EQ(inPlace.kind, PicturePlacement::Kind::InPlace);
    EXPECT_EQ(inPlace.address, 0x1B10000u);
    EXPECT_TRUE(patch.isReplaced(3));
    EXPECT_EQ(patch.text().find(";"), 0u);  // the header comes first, once
    EXPECT_NE(patch.text().find("\r\n; ##### Picture 3 #####\r\n01B0197C: "), std::string::npos) << patch.text();

    PicturePatch another(*flash);
    const PicturePlacement moved = another.add(row, 0, container->bytes, replacement);
    EXPECT_EQ(moved.kind, PicturePlacement::Kind::Moved);
    // The search reads each candidate from one byte before it, so the zero byte in front of
    // the erased area moves the first fit one block on, less the overlap.
    EXPECT_EQ(moved.address, 0x132000Fu);
    EXPECT_GT(moved.nextFreeSpace, moved.address);
    // The index record now points there: "A" and the address, low byte first.
    EXPECT_NE(moved.section.find("0F0032A1\r\n"), std::string::npos) << moved.section;

    FlashBuilder full;  // zeros: no erased flash anywhere
    full.picture(3, 7, 3, 0x88, 0x1B10000);
    const auto noRoom = open(full, "full.bin");
    PicturePatch refused(*noRoom);
    const PicturePlacement none = refused.add(noRoom->pictures[3], 0, container->bytes, replacement);
    EXPECT_EQ(none.kind, PicturePlacement::Kind::Refused);
    ASSERT_TRUE(none.error);
    EXPECT_EQ(none.error->code, ErrorCode::NoFreeSpace);
    EXPECT_TRUE(refused.empty());
}

TEST(PatchCheck, mismatchesConflictsAndNothingToApply) {
    FlashBuilder image;
    image.put(0x100, {0x11, 0x22});
    const std::string flash = image.writeTo("flash.bin");
    const Bytes bytes = testing::readAll(flash);
    const auto write = [](const std::string& name, const std::string& text) {
        const std::string path = testing::testFolder() + "/" + name;
        EXPECT_TRUE(app::writeFile(path, bytesOf(text)).ok());
        return path;
    };
    const auto good = checkPatchFile(bytes, write("good.vkp", "0100: 1122 3344\r\n"));
    ASSERT_TRUE(good);
    EXPECT_TRUE(good->clean());
    const auto wrong = checkPatchFile(bytes, write("wrong.vkp", "0100: 1123 3344\r\n"));
    ASSERT_TRUE(wrong);
    ASSERT_EQ(wrong->mismatches.size(), 1u);
    EXPECT_EQ(wrong->mismatches[0].offset, 0x100u);
    const auto empty = checkPatchFile(bytes, write("empty.vkp", "; nothing\r\n"));
    ASSERT_TRUE(empty);
    EXPECT_FALSE(empty->clean());
    EXPECT_FALSE(checkPatchFile(bytes, testing::testFolder() + "/none.vkp"));
}

}  // namespace korvatek::edit

#include "demo/demo_flash.h"

#include <cstddef>

#include "demo/demo_fonts.h"
#include "demo/demo_pictures.h"

namespace korvatek::firmware {
namespace {

void putU16(Bytes& image, std::uint32_t at, std::uint32_t value) {
    image[at] = static_cast<std::uint8_t>(value);
    image[at + 1] = static_cast<std::uint8_t>(value >> 8);
}

void putU32(Bytes& image, std::uint32_t at, std::uint32_t value) {
    putU16(image, at, value & 0xFFFF);
    putU16(image, at + 2, value >> 16);
}

void fill(Bytes& image, std::uint32_t from, std::uint32_t to, std::uint8_t value) {
    for (std::uint32_t k = from; k < to; ++k) image[k] = value;
}

// Stand-in for code and data: xorshift32 words, written little-endian, with the all-ones word
// left out so that no run of 0xFF is longer than 6 bytes and the free-space search never
// mistakes the filler for erased flash.
void fillPseudoRandom(Bytes& image) {
    std::uint32_t state = 0x4B6F7276;  // "Korv"
    for (std::size_t at = 0; at + 4 <= image.size(); at += 4) {
        state ^= state << 13;
        state ^= state >> 17;
        state ^= state << 5;
        const std::uint32_t word = state == 0xFFFFFFFF ? 0x7FFFFFFF : state;
        image[at] = static_cast<std::uint8_t>(word);
        image[at + 1] = static_cast<std::uint8_t>(word >> 8);
        image[at + 2] = static_cast<std::uint8_t>(word >> 16);
        image[at + 3] = static_cast<std::uint8_t>(word >> 24);
    }
}

void writeIdentification(Bytes& image) {
    const char model[4] = {'E', '7', '1', 0};
    for (std::uint32_t k = 0; k < 4; ++k) image[kModelOffset + k] = static_cast<std::uint8_t>(model[k]);
    image[kLanguagePackOffset] = '4';
    image[kLanguagePackOffset + 1] = '2';
    putU32(image, kFontArrayPointerOffset, kPhoneAddressBase + kFontArrayE71v42);
    putU32(image, kFontAreaPointerOffset, kPhoneAddressBase + kDemoFontAreaOffset);
    image[kFontCountOffset] = static_cast<std::uint8_t>(kDemoFontCount);
}

void writeRecord(Bytes& image, int number, std::uint32_t width, std::uint32_t height, std::uint8_t type,
                 std::uint32_t address) {
    const std::uint32_t at = kPictureTableOffset + kPictureRecordSize * static_cast<std::uint32_t>(number);
    putU16(image, at, width);
    putU16(image, at + 2, height);
    image[at + 4] = type;
    fill(image, at + 5, at + 8, 0);
    putU32(image, at + 8, address);
}

// Pictures back to back from the start of the picture area, each on a 16-byte step from it
// (as the Make tool lays them out), zero bytes between; erased flash after the last one.
void writePictures(Bytes& image) {
    std::uint32_t at = kPictureDataStart;
    std::uint32_t addressOf976 = 0, addressOf1332 = 0;
    for (int n = 0; n < kPictureCount; ++n) {
        if (isOddDemoPicture(n)) continue;
        const DemoPicture picture = makeDemoPicture(n);
        const auto size = static_cast<std::uint32_t>(picture.data.size());
        const std::uint32_t padded = (size + 15) & ~15U;
        for (std::uint32_t k = 0; k < size; ++k) image[at + k] = picture.data[k];
        fill(image, at + size, at + padded, 0);
        writeRecord(image, n, picture.width, picture.height, picture.type, kPhoneAddressBase + at);
        if (n == 976) addressOf976 = kPhoneAddressBase + at;
        if (n == 1332) addressOf1332 = kPhoneAddressBase + at;
        at += padded;
    }
    fill(image, at, kReservedHigh2, 0xFF);

    fill(image, kPictureTableOffset + kPictureRecordSize * kDemoPictureAllZero,
         kPictureTableOffset + kPictureRecordSize * (kDemoPictureAllZero + 1), 0x00);
    fill(image, kPictureTableOffset + kPictureRecordSize * kDemoPictureAllFF,
         kPictureTableOffset + kPictureRecordSize * (kDemoPictureAllFF + 1), 0xFF);
    writeRecord(image, kDemoPictureUnknownType, 16, 16, 0x03, addressOf976);
    writeRecord(image, kDemoPictureMonoRle, 16, 16, 0x81, addressOf976);
    writeRecord(image, kDemoPictureZeroWidth, 0, 24, 0x88, addressOf1332);
    writeRecord(image, kDemoPictureZeroHeight, 32, 0, 0x05, addressOf1332);
}

}  // namespace

Bytes makeDemoFlash() {
    Bytes image(kDemoFlashSize);
    fillPseudoRandom(image);
    fill(image, kDemoErasedStart, kDemoErasedEnd, 0xFF);
    fill(image, kDemoErasedTailStart, kDemoFlashSize, 0xFF);
    writeIdentification(image);
    writeDemoFonts(image);
    writePictures(image);
    return image;
}

}  // namespace korvatek::firmware

#include "firmware/free_space.h"

#include <gtest/gtest.h>

#include "firmware/layout.h"

namespace korvatek::firmware {

namespace {

Bytes imageErasedFrom(std::size_t from, std::size_t size = 0x2000000) {
    Bytes image(size, 0x00);
    std::fill(image.begin() + static_cast<std::ptrdiff_t>(from), image.end(), 0xFF);
    return image;
}

}  // namespace

TEST(FreeSpace, readsFromOneBeforeTheStartAndMovesThePastTheCheckedRun) {
    const Bytes image = imageErasedFrom(0x131FFFF);
    const auto found = FindFreeSpace(image, 0x10, 0x1320000);
    ASSERT_TRUE(found.address.has_value());
    EXPECT_EQ(*found.address, 0x1320000u);
    EXPECT_EQ(found.nextStart, 0x1320020u);  // two blocks, 0x131FFFF to 0x132001E, kept 1-based
    // a second search hands out an area that does not overlap the first
    const auto second = FindFreeSpace(image, 0x10, found.nextStart);
    ASSERT_TRUE(second.address.has_value());
    EXPECT_GE(*second.address, *found.address + 0x10);
}

TEST(FreeSpace, aFailingCandidateAdvancesByFifteenBytes) {
    // erased from 0x1320000: the first candidate reads 0x131FFFF, which is not erased
    const Bytes image = imageErasedFrom(0x1320000);
    const auto found = FindFreeSpace(image, 0x10, 0x1320000);
    ASSERT_TRUE(found.address.has_value());
    EXPECT_EQ(*found.address, 0x132000Fu);  // the failed block ends at 0x132000F; read again from 0x132000E
}

TEST(FreeSpace, candidatesInsideTheSecondStretchJumpToItsEnd) {
    Bytes image(0x2000000, 0x00);
    std::fill(image.begin() + 0x1FAFFFF, image.end(), 0xFF);
    const auto found = FindFreeSpace(image, 0x100, 0x1B00100);
    ASSERT_TRUE(found.address.has_value());
    EXPECT_EQ(*found.address, 0x1FB0000u);
    // the first stretch is walked through: its jump is overwritten by the second test
    std::fill(image.begin() + 0x1700000, image.begin() + 0x1700400, 0xFF);
    const auto inFirst = FindFreeSpace(image, 0x100, 0x1600000);
    ASSERT_TRUE(inFirst.address.has_value());
    EXPECT_LT(*inFirst.address, 0x1700010u);
    EXPECT_GE(*inFirst.address, 0x1700000u);
}

TEST(FreeSpace, theEndOfTheImageIsAFailureThatKeepsTheStart) {
    const Bytes image(0x2000000, 0x00);
    const auto found = FindFreeSpace(image, 0x10, 0x1FB0000);
    EXPECT_FALSE(found.address.has_value());
    EXPECT_EQ(found.nextStart, 0x1FB0000u);
    // a run that would reach past the end does not count
    const Bytes tail = imageErasedFrom(0x1FFFFF0);
    EXPECT_FALSE(FindFreeSpace(tail, 0x10, 0x1FFFFF1).address.has_value());
    EXPECT_TRUE(FindFreeSpace(tail, 0x0, 0x1FFFFF1).address.has_value());
}

TEST(FreeSpace, sizeAsksForOneBlockMoreThanItNeeds) {
    // 0x20 bytes need 3 blocks: 48 erased bytes from start - 1
    Bytes image(0x100000, 0x00);
    std::fill(image.begin() + 0x1000, image.begin() + 0x1000 + 47, 0xFF);
    EXPECT_FALSE(FindFreeSpace(image, 0x20, 0x1001).address.has_value());
    image[0x1000 + 47] = 0xFF;
    EXPECT_EQ(FindFreeSpace(image, 0x20, 0x1001).address, 0x1001u);
}

}  // namespace korvatek::firmware

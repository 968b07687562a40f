// Reading files. Writing them (never over an input, beside the target and renamed, devices
// and pipes, leftovers) and refusing pipes are checked on the command line, in
// tests/cli/outputs_and_inputs.sh, where the files left on disk are judged.
#include "base/file_io.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "support/flash_builder.h"

namespace korvatek::app {
namespace {

namespace fs = std::filesystem;

#ifndef _WIN32
TEST(Inputs, aFileOverTheLimitIsRefusedAndAnOpenedOneKeptWhole) {
    const std::string folder = testing::testFolder();
    const std::string file = folder + "/flash.bin";
    ASSERT_TRUE(writeFile(file, std::string("0123456789A")).ok());
    const auto tooLarge = readFile(file, 10);
    ASSERT_FALSE(tooLarge.ok());
    EXPECT_EQ(tooLarge.error().code, ErrorCode::FileTooLarge);
    EXPECT_EQ(tooLarge.error().limit, 10u);
    EXPECT_EQ(limitText(kMaxFlashFileSize), "64 MiB");

    // The fullflash is a copy in memory: cutting the file short meanwhile changes nothing.
    const auto opened = ReadOnlyFile::open(file, 11);
    ASSERT_TRUE(opened.ok());
    fs::resize_file(file, 0);
    ASSERT_EQ((*opened)->size(), 11u);
    EXPECT_EQ((*opened)->bytes()[10], 'A');
}
#endif

TEST(Inputs, chunksAddUpToTheFileAndStopAtTheLimit) {
    const std::string file = testing::testFolder() + "/patch.vkp";
    ASSERT_TRUE(writeFile(file, std::string(1000, 'x')).ok());
    std::size_t total = 0;
    int pieces = 0;
    ASSERT_TRUE(readFileChunks(file, 1000, 300, [&](ByteView piece) {
                    total += piece.size();
                    ++pieces;
                }).ok());
    EXPECT_EQ(total, 1000u);
    EXPECT_EQ(pieces, 4);
    const Status refused = readFileChunks(file, 999, 300, [](ByteView) {});
    ASSERT_FALSE(refused.ok());
    EXPECT_EQ(refused.error().code, ErrorCode::FileTooLarge);
}

}  // namespace
}  // namespace korvatek::app

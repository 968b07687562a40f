// Outputs and inputs under faults: what is on disk afterwards is what counts.
#include "base/file_io.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <vector>

#ifndef _WIN32
#include <sys/stat.h>
#include <unistd.h>
#endif

#include "support/flash_builder.h"

namespace korvatek::app {
namespace {

namespace fs = std::filesystem;

#ifndef _WIN32
std::size_t entriesIn(const std::string& folder) {
    std::size_t n = 0;
    for ([[maybe_unused]] const auto& e : fs::directory_iterator(folder)) ++n;
    return n;
}
#endif

TEST(Outputs, neverReplaceAnInputOrAFolder) {
    const std::string folder = testing::testFolder();
    const std::string input = folder + "/flash.bin";
    ASSERT_TRUE(writeFile(input, std::string("firmware")).ok());
    fs::create_directory(folder + "/sub");

    // The same file under its own name and another spelling (and a link, where there are links).
    std::vector<std::string> names{input, folder + "/sub/../flash.bin"};
#ifndef _WIN32
    fs::create_symlink(input, folder + "/link.bin");
    names.push_back(folder + "/link.bin");
#endif
    for (const std::string& output : names) {
        const Status refused = writeFile(output, std::string("patch"), {"x.bmp", input});
        ASSERT_FALSE(refused.ok()) << output;
        EXPECT_EQ(refused.error().code, ErrorCode::OutputIsInput) << output;
    }
    EXPECT_EQ(testing::readAll(input), bytesOf("firmware"));

    const Status folderRefused = writeFile(folder + "/sub", std::string("patch"));
    ASSERT_FALSE(folderRefused.ok());
    EXPECT_EQ(folderRefused.error().code, ErrorCode::OutputIsFolder);
    EXPECT_TRUE(fs::is_directory(folder + "/sub"));
#ifndef _WIN32
    // A link that is not an input: the file it leads to is replaced, the link stays.
    ASSERT_TRUE(writeFile(folder + "/link.bin", std::string("new")).ok());
    EXPECT_EQ(testing::readAll(input), bytesOf("new"));
    EXPECT_TRUE(fs::is_symlink(folder + "/link.bin"));
    EXPECT_EQ(entriesIn(folder), 3u);
#endif
}

#ifndef _WIN32
TEST(Outputs, devicesAreWrittenNotReplacedAndLeftoversOfEndedRunsGo) {
    ASSERT_TRUE(writeFile("/dev/null", std::string("discarded")).ok());
    EXPECT_TRUE(fs::is_character_file("/dev/null"));

    // Leftovers are looked for once per folder and run: these are there before the first write.
    const std::string folder = testing::testFolder();
    const std::string target = folder + "/out.vkp";
    const std::string ended = target + ".korvatek-999999999-abc.part";   // no such process
    const std::string running = target + ".korvatek-" + std::to_string(::getpid()) + "-abc.part";
    const std::string planted = target + ".korvatek-999999998-abc.part";  // a link: not ours
    for (const std::string& name : {ended, running, folder + "/victim"}) std::ofstream(toPath(name)) << "keep";
    fs::create_symlink(folder + "/victim", planted);

    ASSERT_TRUE(writeFile(target, std::string("patch")).ok());
    EXPECT_FALSE(fs::exists(ended));
    EXPECT_TRUE(fs::exists(running));
    EXPECT_TRUE(fs::is_symlink(planted));
    EXPECT_EQ(testing::readAll(folder + "/victim"), bytesOf("keep"));
    EXPECT_EQ(testing::readAll(target), bytesOf("patch"));
}

TEST(Inputs, onlyRegularFilesUnderTheLimitAndKeptWhole) {
    const std::string folder = testing::testFolder();
    const std::string pipe = folder + "/pipe.bin";
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    const auto fromPipe = readFile(pipe, kMaxFlashFileSize);  // must not wait for a writer
    ASSERT_FALSE(fromPipe.ok());
    EXPECT_EQ(fromPipe.error().code, ErrorCode::NotRegularFile);

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

// The Make tool: the picture area and its index table rebuilt from a folder of containers.
#include <gtest/gtest.h>

#include <filesystem>

#include "support/scripted_interface.h"
#include "app/workspace.h"
#include "containers/gpf_header.h"
#include "firmware/layout.h"
#include "support/environment.h"
#include "support/flash_builder.h"

namespace korvatek::app {

using testing::readAll;

namespace {

std::uint32_t u32At(const Bytes& b, std::size_t at) {
    return b[at] | (b[at + 1] << 8) | (b[at + 2] << 16) | (static_cast<std::uint32_t>(b[at + 3]) << 24);
}

struct Make {
    ScriptedInterface ui;
    Workspace ws{ui};
    std::string source = testing::testFolder() + "/source";
    std::string output = testing::testFolder() + "/output";
    testing::ScopedEnvironment tmp{"TMP", output};
    Make() {
        std::filesystem::create_directories(source);
        std::filesystem::create_directories(output);
        ws.ShowReplaceMessage = false;
    }
    void put(const std::string& name, bool v2, int width, int height, std::size_t dataLength) {
        Bytes file = containers::SaveGPFhead(v2, width, height, std::string{'\x88', '\0'});
        file.resize(file.size() + dataLength, 0x5A);
        ASSERT_TRUE(writeFile(source + "/" + name, file).ok());
    }
    void run() {
        ui.folders.push_back(source);
        ui.folders.push_back(output);
        ws.mnu_ToolsMake();
    }
    Bytes data() const { return readAll(output + "/0x01B07068.bin"); }
    Bytes table() const { return readAll(output + "/0x01B01958.bin"); }
};

}  // namespace

TEST(MakeTool, missingPicturesBecomeEmptyOnesAndAddressesFollowTheData) {
    Make m;
    m.put("0000.gpf2", true, 240, 320, 48);
    m.put("0002.gpf", false, 7, 9, 32);
    m.put("0002.gpf2", true, 3, 4, 16);  // the GPF2 wins over the GPF
    m.ws.ShowReplaceMessage = true;
    m.run();
    ASSERT_FALSE(m.ws.ActionFailed);
    EXPECT_EQ(m.ui.folderTitles, (std::vector<std::string>{"Choose folder for open files", "Choose folder for save files"}));
    EXPECT_EQ(m.ui.messages.front().text, "File 0001.gpf2 (or .gpf) not found and will is replaced by empty picture");
    EXPECT_EQ(m.ui.messages.size(), 1699u + 1);  // and "Successfully completed"

    const Bytes table = m.table();
    ASSERT_EQ(table.size(), 1701u * 12);
    EXPECT_EQ(Bytes(table.begin(), table.begin() + 8), (Bytes{0xF0, 0x00, 0x40, 0x01, 0x88, 0x00, 0x00, 0x00}));
    EXPECT_EQ(u32At(table, 8), 0xA1B07068u);
    EXPECT_EQ(u32At(table, 12 + 8), 0xA1B07068u + 48);       // after picture 0's 48 bytes
    EXPECT_EQ(table[12], 1);                                  // the empty picture is 1 x 1, type 0x01
    EXPECT_EQ(table[12 + 4], 0x01);
    EXPECT_EQ(table[24], 3);                                  // picture 2 from its GPF2
    EXPECT_EQ(u32At(table, 24 + 8), 0xA1B07068u + 48 + 16);
    EXPECT_EQ(u32At(table, 1700 * 12 + 8), 0xA1B07068u + 48 + 16 + 16 + 1697u * 16);
    const Bytes data = m.data();
    EXPECT_EQ(data.size(), 48u + 16 + 16 + 1698u * 16);
    EXPECT_EQ(data[0], 0x5A);
    EXPECT_EQ(data[48], 0x00);  // the empty picture's 16 zero bytes
}

TEST(MakeTool, theDataAreaLimitIsInclusive) {
    const std::size_t room = firmware::kPictureDataLimit - firmware::kPictureDataStart;
    for (std::size_t extra : {0u, 1u}) {
        Make m;
        m.put("0000.gpf2", true, 1, 1, room - 1700 * 16 + extra);
        m.run();
        EXPECT_EQ(m.ws.ActionFailed, extra == 1);
        if (extra == 1) {
            EXPECT_EQ(m.ui.messages.back().text, "Too much total space occupyed by pictures!");
            EXPECT_EQ(m.table().size(), 1701u * 12);  // the blocks written so far stay
        } else {
            EXPECT_EQ(m.data().size(), room);
        }
    }
}

TEST(MakeTool, existingBlocksAreReplacedOnlyWhenConfirmed) {
    Make m;
    ASSERT_TRUE(writeFile(m.output + "/0x01B07068.bin", std::string("old")).ok());
    m.ui.answers.push_back(false);
    m.run();
    EXPECT_TRUE(m.ws.ActionFailed);
    EXPECT_EQ(m.ui.questions, std::vector<std::string>{"File 0x01B07068.bin already exists and will be replaced"});
    EXPECT_EQ(m.data(), bytesOf("old"));
    EXPECT_TRUE(CheckFexist(m.output + "/0x01B01958.bin"));
}

TEST(MakeTool, aCorruptContainerStopsWithAMessage) {
    Make m;
    ASSERT_TRUE(writeFile(m.source + "/0003.gpf2", std::string("not a container at all, no")).ok());
    m.run();
    EXPECT_TRUE(m.ws.ActionFailed);
    EXPECT_NE(m.ui.messages.back().text.find("Unknown file!"), std::string::npos);
}

}  // namespace korvatek::app

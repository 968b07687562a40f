// Loading containers and theme cache files, and the GPF>BMP tool.
#include <gtest/gtest.h>

#include "support/scripted_interface.h"
#include "app/workspace.h"
#include "containers/dat_header.h"
#include "containers/gpf_header.h"
#include "support/flash_builder.h"

namespace korvatek::app {

using testing::readAll;

namespace {

std::string writeContainer(const std::string& name, bool v2, int width, int height, std::uint8_t type,
                           const Bytes& data) {
    Bytes file = containers::SaveGPFhead(v2, width, height, std::string{static_cast<char>(type), '\0'});
    file.insert(file.end(), data.begin(), data.end());
    containers::padContainer(file);
    const std::string path = testing::testFolder() + "/" + name;
    EXPECT_TRUE(writeFile(path, file).ok());
    return path;
}

}  // namespace

TEST(LoadGPF, bothVersionsShowTheSameInformation) {
    const Bytes data{0xFD, 0xC0, 0xFF, 0x00, 0x1C};  // a literal of 3, then a byte left unread
    std::string texts[2];
    for (bool v2 : {false, true}) {
        ScriptedInterface ui;
        Workspace ws(ui);
        ws.LoadGPF(writeContainer(v2 ? "a.gpf2" : "a.gpf", v2, 3, 1, 0x85, data));
        EXPECT_FALSE(ws.ActionFailed);
        EXPECT_EQ(ws.IsGPF2, v2);
        EXPECT_EQ(ws.canvas.at(0, 0), codec::TransparentPixel);
        texts[v2] = ws.PICinfo;
    }
    EXPECT_EQ(texts[0], "Width: 3\rHeight: 1\rBits: 8\rCompression: Yes\r\rLenght: 0x4");
    EXPECT_EQ(texts[0], texts[1]);
}

TEST(LoadGPF, refusesUnknownFilesAndOversizedPictures) {
    ScriptedInterface ui;
    Workspace ws(ui);
    const std::string bad = testing::testFolder() + "/bad.gpf2";
    ASSERT_TRUE(writeFile(bad, std::string("GraphPatchFile_E and more bytes here...")).ok());
    ws.LoadGPF(bad);
    EXPECT_TRUE(ws.ActionFailed);
    ws.LoadGPF(writeContainer("wide.gpf2", true, 241, 10, 0x88, {}));
    EXPECT_TRUE(ws.ActionFailed);
    ws.LoadGPF(writeContainer("tall.gpf2", true, 10, 321, 0x88, {}));
    EXPECT_EQ(ui.messageTexts(), (std::vector<std::string>{"Unknown file!", "Maximal size of picture is 240x320!",
                                                           "Maximal size of picture is 240x320!"}));
    ui.messages.clear();
    ws.LoadGPF(writeContainer("max.gpf2", true, 240, 320, 0x88, {0x7F, 0, 0}));
    EXPECT_FALSE(ws.ActionFailed);
    EXPECT_TRUE(ui.messages.empty());
}

TEST(LoadDAT, readsTheFiveByteHeaderAndChecksTheSize) {
    ScriptedInterface ui;
    Workspace ws(ui);
    const std::string path = testing::testFolder() + "/pic.dat";
    Bytes file = containers::SaveDAThead(2, 1, "\x05");
    file.insert(file.end(), {0xE0, 0x03});
    ASSERT_TRUE(writeFile(path, file).ok());
    ws.IsGPF2 = true;
    ws.LoadDAT(path);
    EXPECT_FALSE(ws.ActionFailed);
    EXPECT_TRUE(ws.IsGPF2);  // left as it was
    EXPECT_EQ(ws.PICinfo, "Width: 2\rHeight: 1\rBits: 8\rCompression: No\r\rLenght: 0x2");
    for (auto [w, h] : {std::pair{241, 320}, std::pair{240, 321}}) {
        ASSERT_TRUE(writeFile(path, containers::SaveDAThead(w, h, "\x05")).ok());
        ws.LoadDAT(path);
        EXPECT_TRUE(ws.ActionFailed);
    }
}

TEST(GpfToBmpTool, decodesAskingAboutAlphaAndSavesWithTheProposedName) {
    ScriptedInterface ui;
    Workspace ws(ui);
    const std::string in = writeContainer("alpha.gpf2", true, 1, 1, 0x0A, {0x10, 0x20, 0x30, 0x80});
    const std::string out = testing::testFolder() + "/alpha.bmp";
    ui.openFiles.push_back(in);
    ui.answers.push_back(true);
    ui.saveFiles.push_back(out);
    ws.mnu_ToolsGPFtoBMP();
    ASSERT_FALSE(ws.ActionFailed);
    EXPECT_EQ(ui.questions, std::vector<std::string>{"Save alphachannel for image?"});
    ASSERT_EQ(ui.fileDialogs.size(), 2u);
    EXPECT_EQ(ui.fileDialogs[1].fileName, testing::testFolder() + "/alpha.bmp");
    EXPECT_EQ(ui.fileDialogs[1].filter, "BitMap File (*.bmp)|*.bmp");
    const Bytes bmp = readAll(out);
    ASSERT_EQ(bmp.size(), 58u);
    EXPECT_EQ(bmp[28], 32);
    EXPECT_EQ(Bytes(bmp.begin() + 54, bmp.end()), (Bytes{0x10, 0x20, 0x30, 0x80}));
    EXPECT_EQ(ui.messages.back().text, "Successfully completed");
}

TEST(GpfToBmpTool, theCommandLineWritesNoFileForARefusedFormat) {
    ScriptedInterface ui;
    Workspace ws(ui);
    ws.StopOnRefusedFormat = true;
    const std::string out = testing::testFolder() + "/refused.bmp";
    ui.openFiles.push_back(writeContainer("mono.gpf2", true, 4, 4, 0x81, {0x01}));
    ui.saveFiles.push_back(out);
    ws.mnu_ToolsGPFtoBMP();
    EXPECT_TRUE(ws.ActionFailed);
    EXPECT_TRUE(CheckFexist(out));
    ui.openFiles.push_back(testing::testFolder() + "/missing.gpf2");
    ws.mnu_ToolsGPFtoBMP();
    EXPECT_EQ(ui.messages.back().text, "File not exist!");
}

}  // namespace korvatek::app

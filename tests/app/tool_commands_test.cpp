// The Tools menu's encoders and converters.
#include <gtest/gtest.h>


#include "support/scripted_interface.h"
#include "app/workspace.h"
#include "codec/bmp_file.h"
#include "containers/dat_header.h"
#include "containers/gpf_header.h"
#include "support/environment.h"
#include "support/flash_builder.h"

namespace korvatek::app {

using testing::readAll;

namespace {

std::string folder() { return testing::testFolder(); }

std::string writeBmp(const std::string& name, int width, int height, int bits) {
    codec::PixelCanvas canvas;
    canvas.metaWidth = width;
    canvas.metaHeight = height;
    canvas.metaDepth = bits;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) canvas.at(x, y) = {static_cast<std::uint8_t>(x * 9), 40, 200, 0x80};
    const std::string path = folder() + "/" + name;
    EXPECT_TRUE(writeFile(path, *codec::encodeBmp(canvas, bits)).ok());
    return path;
}

std::string writeGpf(const std::string& name, bool v2, int width, int height, const Bytes& data) {
    Bytes file = containers::SaveGPFhead(v2, width, height, std::string{'\x85', '\0'});
    file.insert(file.end(), data.begin(), data.end());
    containers::padContainer(file);
    const std::string path = folder() + "/" + name;
    EXPECT_TRUE(writeFile(path, file).ok());
    return path;
}

struct Tool {
    ScriptedInterface ui;
    Workspace ws{ui};
};

}  // namespace

TEST(BmpToGpf, writesHeaderDataAndPaddingForTheChosenVersion) {
    const std::string bmp = writeBmp("in.bmp", 5, 3, 24);
    for (const std::string& out : {folder() + "/out.gpf2", folder() + "/out.gpf"}) {
        Tool t;
        t.ui.openFiles.push_back(bmp);
        t.ui.saveFiles.push_back(out);
        t.ws.mnu_ToolsBMPtoGPF(0x88);
        ASSERT_FALSE(t.ws.ActionFailed);
        EXPECT_EQ(t.ui.fileDialogs[0].title, "Choose file BMP:");
        EXPECT_EQ(t.ui.fileDialogs[1].filter, "Graphic Patch File 2(*.gpf2)|*.gpf2|Graphic Patch File (*.gpf)|*.gpf");
        const Bytes file = readAll(out);
        ASSERT_EQ(file.size() % 16, 0u);
        ByteReader in(file);
        const auto header = containers::LoadGPFhead(in);
        ASSERT_TRUE(header.ok());
        EXPECT_EQ(header->isGPF2, out.back() == '2');
        EXPECT_EQ(header->width, 5);
        EXPECT_EQ(header->height, 3);
        EXPECT_EQ(header->typeText, std::string("\x88\0", 2));
        EXPECT_EQ(t.ui.messages.back().text, "Successfully completed");
    }
}

TEST(BmpToGpf, anExistingTargetIsKeptWhenTheReplaceQuestionIsCancelled) {
    const std::string bmp = writeBmp("in.bmp", 2, 2, 32);
    const std::string out = folder() + "/kept.gpf2";
    ASSERT_TRUE(writeFile(out, std::string("old")).ok());
    Tool t;
    t.ui.openFiles.push_back(bmp);
    t.ui.saveFiles.push_back(out);
    t.ui.answers.push_back(false);
    t.ws.mnu_ToolsBMPtoGPF(0x01);
    EXPECT_TRUE(t.ws.ActionFailed);
    EXPECT_EQ(t.ui.questions, std::vector<std::string>{"File " + out + " already exists and will be replaced"});
    EXPECT_EQ(readAll(out), bytesOf("old"));
}

TEST(BmpToGpf, presetPathSkipsTheSaveDialogAndVersion1RefusesTallPictures) {
    Tool t;
    t.ws.NoDialog = true;
    t.ws.PresetPath = folder() + "/preset.gpf";
    t.ui.openFiles.push_back(writeBmp("tall.bmp", 2, 300, 24));
    t.ws.mnu_ToolsBMPtoGPF(0x85);
    EXPECT_TRUE(t.ws.ActionFailed);
    EXPECT_EQ(t.ui.messageTexts(), std::vector<std::string>{"Maximal size of picture is 255x255 for GPF!"});
    EXPECT_EQ(t.ui.fileDialogs.size(), 1u);
    EXPECT_TRUE(CheckFexist(t.ws.PresetPath));  // written: nothing

    t.ui.messages.clear();
    t.ws.PresetPath = folder() + "/preset.gpf2";
    t.ui.openFiles.push_back(writeBmp("tall.bmp", 2, 300, 24));
    t.ws.mnu_ToolsBMPtoGPF(0x85);
    EXPECT_FALSE(t.ws.ActionFailed);
    EXPECT_TRUE(t.ui.messages.empty());  // no success message inside a replacement
    EXPECT_FALSE(CheckFexist(t.ws.PresetPath));
}

TEST(BmpToGpf, refusedBitmapsWriteNothing) {
    const std::string out = folder() + "/never.gpf2";
    const std::string bad = folder() + "/bad.bmp";
    ASSERT_TRUE(writeFile(bad, std::string("BX not a bitmap")).ok());
    for (const std::string& in : {bad, writeBmp("tall.bmp", 2, 321, 24), folder() + "/missing.bmp"}) {
        Tool t;
        t.ui.openFiles.push_back(in);
        t.ui.saveFiles.push_back(out);
        t.ws.mnu_ToolsBMPtoGPF(0x8A);
        EXPECT_TRUE(t.ws.ActionFailed) << in;
        EXPECT_EQ(t.ui.messages.size(), 1u) << in;
        EXPECT_TRUE(CheckFexist(out));
    }
}

TEST(GpfAkaGpf2, theVersionSwapRoundTripsByteForByte) {
    const std::string v2 = writeGpf("pic.gpf2", true, 200, 100, {0x7F, 0xFF, 0x7F, 0xFF, 0x7F, 0xFF});
    const Bytes original = readAll(v2);
    Tool t;
    t.ui.openFiles.push_back(v2);
    t.ui.saveFiles.push_back(folder() + "/pic.gpf");
    t.ws.mnu_ToolsGPFakaGPF2();
    ASSERT_FALSE(t.ws.ActionFailed);
    EXPECT_EQ(t.ui.fileDialogs[1].fileName, folder() + "/pic");
    EXPECT_EQ(t.ui.fileDialogs[1].filter, "Graphic Patch File (*.gpf)|*.gpf");
    EXPECT_EQ(readAll(folder() + "/pic.gpf")[20], 200);
    t.ui.openFiles.push_back(folder() + "/pic.gpf");
    t.ui.saveFiles.push_back(folder() + "/back.gpf2");
    t.ws.mnu_ToolsGPFakaGPF2();
    EXPECT_EQ(readAll(folder() + "/back.gpf2"), original);

    Tool wide;
    wide.ui.openFiles.push_back(writeGpf("wide.gpf2", true, 240, 320, {0x7F, 0xFF}));
    wide.ui.saveFiles.push_back(folder() + "/wide.gpf");
    wide.ws.mnu_ToolsGPFakaGPF2();
    EXPECT_TRUE(wide.ws.ActionFailed);
    EXPECT_TRUE(CheckFexist(folder() + "/wide.gpf"));
    EXPECT_EQ(wide.ui.messages.back().text, "Maximal size of picture is 255x255 for GPF!");
}

TEST(GpfAkaDat, lengthsAndTheTypeByteCarriedAsData) {
    const std::string gpf2 = writeGpf("pic.gpf2", true, 16, 16, {0x7F, 0xC0, 0x7F, 0xC0, 0x02, 0xC0});
    const Bytes container = readAll(gpf2);
    Tool t;
    t.ui.openFiles.push_back(gpf2);
    t.ui.saveFiles.push_back(folder() + "/pic.dat");
    t.ws.mnu_ToolsGPFakaDAT();
    ASSERT_FALSE(t.ws.ActionFailed);
    EXPECT_EQ(t.ui.fileDialogs[0].title, "Choose file GPF or DAT:");
    EXPECT_EQ(t.ui.fileDialogs[1].filter, "Siemens theme cache(*.dat)|*.dat");
    const Bytes dat = readAll(folder() + "/pic.dat");
    ASSERT_EQ(dat.size(), 5 + (container.size() - 32) + 1);
    EXPECT_EQ(Bytes(dat.begin(), dat.begin() + 5), (Bytes{0x10, 0x00, 0x10, 0x00, 0x85}));
    EXPECT_EQ(dat.back(), container.back());

    t.ui.openFiles.push_back(folder() + "/pic.dat");
    t.ui.saveFiles.push_back(folder() + "/again.gpf2");
    t.ws.mnu_ToolsGPFakaDAT();
    ASSERT_FALSE(t.ws.ActionFailed);
    // IsGPF2 was left by the last container load, so the proposal loses five characters
    EXPECT_EQ(t.ui.fileDialogs[3].fileName, folder() + "/pi");
    const Bytes again = readAll(folder() + "/again.gpf2");
    ASSERT_EQ(again.size(), 31 + (dat.size() - 4) + 1);
    EXPECT_EQ(again[31], 0x85);  // the theme cache's type byte, now a reserved header byte
    EXPECT_EQ(Bytes(again.begin() + 32, again.end() - 1), Bytes(dat.begin() + 5, dat.end()));
}

TEST(Placeholders, emptyPicturesInTheTemporaryFolder) {
    const testing::ScopedEnvironment tmp("TMP", folder());
    Tool t;
    const Bytes gpf2 = readAll(t.ws.MakeEmptyGPF2());
    ASSERT_EQ(gpf2.size(), 48u);
    EXPECT_EQ(Bytes(gpf2.begin() + 20, gpf2.begin() + 26), (Bytes{1, 0, 1, 0, 0x01, 0x00}));
    const Bytes bmp = readAll(t.ws.MakeEmptyBMP());
    ASSERT_EQ(bmp.size(), 57u);
    EXPECT_EQ(bmp[2], 0);   // size fields left 0
    EXPECT_EQ(bmp[18], 1);
    EXPECT_EQ(bmp[28], 24);
}

}  // namespace korvatek::app

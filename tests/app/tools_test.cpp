// The Tools menu: the encoders and converters, and Make.
#include <filesystem>
#include <tuple>

#include "containers/gpf_header.h"
#include "firmware/layout.h"
#include "support/workspace_test.h"

namespace korvatek::testing {
namespace {

using enum settings::MessageKey;
using Tools = WorkspaceTest;

TEST_F(Tools, gpfToBmpAsksAboutAlphaAndProposesTheSourcesName) {
    // A format the decoder refuses writes nothing when the caller asks for that.
    ws.StopOnRefusedFormat = true;
    ui.openFiles = {container("mono.gpf2", true, 4, 4, 0x81, {0x01}),
                    container("alpha.gpf2", true, 1, 1, 0x0A, {1, 2, 3, 4})};
    ui.saveFiles = {file("refused.bmp")};
    ws.mnu_ToolsGPFtoBMP();
    EXPECT_TRUE(ws.ActionFailed);
    EXPECT_FALSE(std::filesystem::exists(file("refused.bmp")));

    forget();
    ui.saveFiles = {file("out.bmp")};
    ws.mnu_ToolsGPFtoBMP();  // OK to the alpha question
    EXPECT_EQ(ui.questions, texts({MsgSaveAlpha}));
    EXPECT_EQ(proposed(), file("alpha.bmp"));
    EXPECT_EQ(readAll(file("out.bmp")).at(28), 32);
    EXPECT_EQ(shown(), texts({MsgSuccess}));
}

struct BmpToGpfCase {
    const char* name;
    const char* target;
    bool existing;   // the target is there already
    bool replace;    // the answer to the question about it
    bool preset;     // inside a replacement: the target is fixed, nothing is asked or told
};
void PrintTo(const BmpToGpfCase& c, std::ostream* out) { *out << c.name; }
class BmpToGpf : public WorkspaceTestWithParam<BmpToGpfCase> {};

TEST_P(BmpToGpf, writesTheVersionTheNameEndsInUnlessRefused) {
    const BmpToGpfCase& c = GetParam();
    const std::string out = file(c.target);
    ASSERT_TRUE(!c.existing || app::writeFile(out, std::string("old")).ok());
    ws.NoDialog = c.preset;
    ws.PresetPath = out;
    ui.openFiles = {bitmap("in.bmp", 5, 3)};
    ui.saveFiles = {out};
    ui.answers = {c.replace};
    ws.mnu_ToolsBMPtoGPF(0x88);
    EXPECT_EQ(ui.fileDialogs.at(0).title, text(MsgChooseFile) + "BMP:");
    EXPECT_EQ(ui.fileDialogs.size(), c.preset ? 1u : 2u);
    EXPECT_EQ(ui.questions, c.existing ? std::vector<std::string>{replacing(out)} : std::vector<std::string>{});
    EXPECT_EQ(ws.ActionFailed, !c.replace);
    EXPECT_EQ(shown(), c.replace && !c.preset ? texts({MsgSuccess}) : std::vector<std::string>{});
    const Bytes written = readAll(out);
    ByteReader in(written);
    const auto header = containers::LoadGPFhead(in);
    ASSERT_EQ(header.ok(), c.replace);
    if (!c.replace) return;
    EXPECT_EQ(header->isGPF2, std::string(c.target).ends_with('2'));
    EXPECT_EQ(header->typeText, std::string("\x88\0", 2));
}

INSTANTIATE_TEST_SUITE_P(Targets, BmpToGpf,
                         ::testing::Values(BmpToGpfCase{"version2", "out.gpf2", false, true, false},
                                           BmpToGpfCase{"version1", "out.gpf", false, true, false},
                                           BmpToGpfCase{"keptWhenCancelled", "old.gpf2", true, false, false},
                                           BmpToGpfCase{"replacedWhenConfirmed", "old.gpf", true, true, false},
                                           BmpToGpfCase{"preset", "preset.gpf2", false, true, true}),
                         [](const auto& info) { return std::string(info.param.name); });

TEST_F(Tools, versionSwapProposesTheSourceWithoutItsExtension) {
    const std::string v2 = container("pic.gpf2", true, 200, 100, 0x85, {0x7F, 0xFF, 0x7F, 0xFF, 0x7F, 0xFF});
    ui.openFiles = {v2, file("pic.gpf"), container("wide.gpf2", true, 240, 320, 0x85, {0x7F, 0xFF})};
    ui.saveFiles = {file("pic.gpf"), file("back.gpf2")};
    ws.mnu_ToolsGPFakaGPF2();
    EXPECT_EQ(proposed(), file("pic"));
    EXPECT_EQ(ui.fileDialogs.back().filter, "Graphic Patch File (*.gpf)|*.gpf");
    ws.mnu_ToolsGPFakaGPF2();
    EXPECT_EQ(ui.fileDialogs.back().filter, "Graphic Patch File 2(*.gpf2)|*.gpf2");
    EXPECT_EQ(readAll(file("back.gpf2")), readAll(v2));

    forget();  // version 1 holds 255 x 255 at most: refused before the save dialog
    ws.mnu_ToolsGPFakaGPF2();
    EXPECT_TRUE(ws.ActionFailed);
    EXPECT_EQ(shown(), texts({MsgGpfV1MaxSize}));
    EXPECT_EQ(ui.fileDialogs.size(), 1u);
}

TEST_F(Tools, themeCacheConversionKeepsThePictureAndProposesByTheLastVersionLoaded) {
    const std::string gpf2 = container("pic.gpf2", true, 16, 16, 0x85, {0x7F, 0xC0, 0x7F, 0xC0, 0x02, 0xC0});
    ws.LoadGPF(gpf2);
    const std::string information = ws.PICinfo;
    ui.openFiles = {gpf2, file("pic.dat")};
    ui.saveFiles = {file("pic.dat"), file("again.gpf2")};
    ws.mnu_ToolsGPFakaDAT();
    EXPECT_EQ(ui.fileDialogs[0].title, text(MsgChooseFile) + "GPF or DAT:");
    EXPECT_EQ(ui.fileDialogs[1].filter, "Siemens theme cache(*.dat)|*.dat");
    ws.mnu_ToolsGPFakaDAT();
    // a theme cache leaves the version as it was (2), so the proposal loses five characters
    EXPECT_EQ(ui.fileDialogs[3].fileName, file("pi"));
    EXPECT_EQ(ui.fileDialogs[3].filter, "Graphic Patch File 2(*.gpf2)|*.gpf2");
    ws.LoadGPF(file("again.gpf2"));
    EXPECT_EQ(ws.PICinfo, information);
}

TEST_F(Tools, placeholdersAreOnePixelPictures) {
    ws.LoadGPF(ws.MakeEmptyGPF2());
    EXPECT_EQ(std::tuple(ws.picture.width, ws.picture.height, ws.picture.typeCode), std::tuple(1, 1, 0x01));
    const Bytes bmp = readAll(ws.MakeEmptyBMP());
    ASSERT_EQ(bmp.size(), 57u);  // one black pixel without its row padding
    EXPECT_EQ(bmp[2], 0);        // the file size field is left 0
    EXPECT_EQ(bmp[18] * bmp[22], 1);
}

class Make : public WorkspaceTest {
protected:
    Make() {
        std::filesystem::create_directories(source);
        std::filesystem::create_directories(output);
    }
    void run() {
        ui.folders = {source, output};
        ws.mnu_ToolsMake();
    }
    bool made(const char* block) const { return std::filesystem::exists(output + "/" + block); }
    std::string empty(const char* number) const {
        return text(MsgFile) + number + ".gpf2 (or .gpf)" + text(MsgReplacedByEmpty);
    }
    const std::string source = file("source");
    const std::string output = file("output");
};

TEST_F(Make, asksBeforeReplacingABlockAndNamesEveryMissingPicture) {
    container("source/0000.gpf2", true, 240, 320, 0x88, Bytes(48, 0x5A));
    ASSERT_TRUE(app::writeFile(output + "/0x01B07068.bin", std::string("old")).ok());
    ui.answers.push_back(false);
    run();
    EXPECT_EQ(ui.folderTitles, texts({MsgChooseOpenFolder, MsgChooseSaveFolder}));
    EXPECT_EQ(ui.questions, std::vector<std::string>{replacing("0x01B07068.bin")});
    EXPECT_TRUE(ws.ActionFailed);
    EXPECT_EQ(readAll(output + "/0x01B07068.bin"), bytesOf("old"));
    EXPECT_FALSE(made("0x01B01958.bin"));

    forget();
    run();
    ASSERT_EQ(ui.messages.size(), 1700u + 1);
    EXPECT_EQ(ui.messages[0].text, empty("0001"));
    EXPECT_EQ(ui.messages[1699].text, empty("1700"));
    EXPECT_EQ(ui.messages.back().text, text(MsgSuccess));
    EXPECT_EQ(readAll(output + "/0x01B01958.bin").size(), 1701u * 12);
}

// Over the data area: the message, and the blocks written so far stay.
TEST_F(Make, tooMuchDataIsReportedAndTheNoticesCanBeTurnedOff) {
    const std::size_t room = firmware::kPictureDataLimit - firmware::kPictureDataStart;
    container("source/0000.gpf2", true, 1, 1, 0x88, Bytes(room - 1700 * 16 + 1, 0));
    ws.ShowReplaceMessage = false;
    run();
    EXPECT_TRUE(ws.ActionFailed);
    EXPECT_EQ(shown(), texts({MsgTooMuchSpace}));
    EXPECT_TRUE(made("0x01B07068.bin") && made("0x01B01958.bin"));
}

}  // namespace
}  // namespace korvatek::testing

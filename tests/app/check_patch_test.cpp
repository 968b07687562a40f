// "Check patch..": the status table comes first; one patch goes on as it always has, several
// go into one patched copy only when each matches the fullflash and none clashes with another.
#include <filesystem>

#include "support/workspace_test.h"

namespace korvatek::testing {
namespace {

using enum settings::MessageKey;

class CheckPatch : public WorkspaceTest {
protected:
    void SetUp() override { openSample(); }
    std::string patchFile(const std::string& name, const std::string& text) {
        const std::string path = file(name);
        EXPECT_TRUE(app::writeFile(path, text).ok()) << path;
        return path;
    }
    // The sample's free space (erased, 0xFF) from 0x1320000 on takes the patches.
    std::string first() { return patchFile("first.vkp", "; first\r\n1320000: FF 12\r\n1320010: FFFF 3456\r\n"); }
    std::string second() { return patchFile("second.vkp", "1320100: FFFFFF ABCDEF\r\n"); }
    std::string clashing() { return patchFile("clashing.vkp", "1320011: FF 99\r\n"); }
    std::string wrongOld() { return patchFile("wrong.vkp", "1320200: 00 01\r\n"); }
};

TEST_F(CheckPatch, disjointCleanPatchesGoIntoOnePatchedCopyInTheOrderChosen) {
    ui.openFileLists = {{first(), second()}};
    ui.saveFiles = {file("both.bin")};
    ui.answers = {false};  // not opened
    ws.mnu_ToolsCheckPatch();

    ASSERT_EQ(ui.statusTables.size(), 1u);
    EXPECT_TRUE(ui.statusTables[0].canWrite);
    EXPECT_EQ(ui.statusTables[0].report.patches.size(), 2u);
    EXPECT_EQ(ui.fileDialogs.at(0).title, text(MsgChooseFile) + "VKP:");
    EXPECT_EQ(proposed(), "sample_patched.bin");
    EXPECT_EQ(ui.questions, texts({MsgOpenPatchedCopy}));
    EXPECT_TRUE(shown().empty());
    Bytes expected = sampleFlash().bytes();
    for (const auto& [offset, value] :
         std::initializer_list<std::pair<std::size_t, std::uint8_t>>{
             {0x1320000, 0x12}, {0x1320010, 0x34}, {0x1320011, 0x56}, {0x1320100, 0xAB}, {0x1320101, 0xCD},
             {0x1320102, 0xEF}})
        expected[offset] = value;
    EXPECT_TRUE(readAll(file("both.bin")) == expected);
    EXPECT_EQ(ws.PatchedCopyPath, file("both.bin"));
    EXPECT_FALSE(ws.ActionFailed);
}

TEST_F(CheckPatch, clashesAndEachPatchsProblemsAreToldByNameAndNothingIsWritten) {
    ui.openFileLists = {{first(), wrongOld(), clashing()}};
    ui.saveFiles = {file("never.bin")};
    ws.mnu_ToolsCheckPatch();

    ASSERT_EQ(ui.statusTables.size(), 1u);
    EXPECT_FALSE(ui.statusTables[0].canWrite);
    EXPECT_EQ(ui.statusTables[0].report.clashes.size(), 1u);
    // The clean patch is not named; the other's mismatch and the clash are.
    EXPECT_EQ(shown(), std::vector<std::string>{
                           "wrong.vkp:\rOld bytes do not match the fullflash at 0x1320200 (line 1)\r"
                           "first.vkp line 3 and clashing.vkp line 1 write different bytes at 0x1320011"});
    EXPECT_EQ(ui.fileDialogs.size(), 1u);
    EXPECT_FALSE(std::filesystem::exists(file("never.bin")));
    EXPECT_TRUE(ws.ActionFailed);
}

TEST_F(CheckPatch, onePatchTellsItsProblemsAfterTheTableAndClosingTheTableStopsQuietly) {
    ui.openFiles = {wrongOld()};
    ws.mnu_ToolsCheckPatch();
    ASSERT_EQ(ui.statusTables.size(), 1u);
    EXPECT_FALSE(ui.statusTables[0].canWrite);
    EXPECT_EQ(shown(), std::vector<std::string>{"Old bytes do not match the fullflash at 0x1320200 (line 1)"});
    EXPECT_TRUE(ws.ActionFailed);

    forget();
    ui.openFiles = {second()};
    ui.statusAnswers = {false};
    ui.saveFiles = {file("never.bin")};
    ws.mnu_ToolsCheckPatch();
    ASSERT_EQ(ui.statusTables.size(), 1u);
    EXPECT_TRUE(ui.statusTables[0].canWrite);
    EXPECT_TRUE(shown().empty() && ui.questions.empty());
    EXPECT_EQ(ui.fileDialogs.size(), 1u);
    EXPECT_FALSE(std::filesystem::exists(file("never.bin")));

    // Cancelling the choice of patches shows nothing at all.
    forget();
    ws.mnu_ToolsCheckPatch();
    EXPECT_TRUE(ui.statusTables.empty() && shown().empty());
    EXPECT_TRUE(ws.ActionFailed);
}

}  // namespace
}  // namespace korvatek::testing

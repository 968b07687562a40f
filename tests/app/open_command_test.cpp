// Opening files: identification, refusals, the command line at start-up.
#include <gtest/gtest.h>

#include <filesystem>

#include "support/scripted_interface.h"
#include "app/workspace.h"
#include "firmware/layout.h"
#include "support/environment.h"
#include "support/flash_builder.h"

namespace korvatek::app {

using testing::FlashBuilder;

namespace {

struct Opened {
    ScriptedInterface ui;
    Workspace ws{ui};
    void open(const std::string& path) {
        ui.openFiles.push_back(path);
        ws.mnu_FileOpen();
    }
};

}  // namespace

TEST(OpenCommand, aValidFlashIsIdentifiedAndListed) {
    const std::string path = FlashBuilder().picture(0, 10, 12, 0x88, 0x1B07068).writeTo("ok.bin");
    Opened o;
    o.open(path);
    EXPECT_FALSE(o.ws.ActionFailed);
    EXPECT_TRUE(o.ui.messages.empty());
    EXPECT_EQ(o.ws.PhoneModel, "E71");
    EXPECT_EQ(o.ws.FirmwareId, "lg91_E71_v42");
    EXPECT_EQ(o.ws.FontAreaOffset, std::to_string(0x1800000));
    ASSERT_EQ(o.ws.Ftype.size(), 2u);
    EXPECT_EQ(o.ws.Ftype[1].caption, "Font 1");
    ASSERT_EQ(o.ws.ListView1.size(), 1701u);
    EXPECT_EQ(o.ws.ListView1[0].width, 10);
    EXPECT_DOUBLE_EQ(o.ws.progress, 100.0);
    ASSERT_EQ(o.ui.fileDialogs.size(), 1u);
    EXPECT_EQ(o.ui.fileDialogs[0].title, "Choose file fullflash:");
    EXPECT_EQ(o.ui.fileDialogs[0].filter,
              "All supported files (*.bin; *.gpf; *.gpf2; *.dat)|*.bin; *.gpf; *.gpf2; *.dat");
}

TEST(OpenCommand, unsupportedModelsAreRefused) {
    for (const std::string& model : {std::string("e71"), std::string("\0\0\0\0", 4), std::string("XYZW")}) {
        const std::string path = FlashBuilder().model(model).writeTo("model.bin");
        Opened o;
        o.open(path);
        EXPECT_TRUE(o.ws.ActionFailed);
        ASSERT_EQ(o.ui.messages.size(), 1u);
        std::string shown = model;
        while (!shown.empty() && shown.back() == '\0') shown.pop_back();
        EXPECT_EQ(o.ui.messages[0].text, "This phone model not supported: " + shown);
        EXPECT_TRUE(o.ws.ListView1.empty());
        EXPECT_EQ(o.ws.firmware, nullptr);
    }
}

TEST(OpenCommand, anUnsupportedPackListsFontsOnly) {
    const std::string path = FlashBuilder().pack("43").writeTo("pack.bin");
    Opened o;
    o.open(path);
    ASSERT_EQ(o.ui.messages.size(), 1u);
    EXPECT_EQ(o.ui.messages[0].text, "This FirmWare version not supported:43. You can work with fonts only");
    EXPECT_TRUE(o.ws.ListView1.empty());
    EXPECT_EQ(o.ws.Ftype.size(), 2u);
    EXPECT_NE(o.ws.firmware, nullptr);
}

TEST(OpenCommand, fontLayoutDecidesTheFirmware) {
    Opened none;
    none.open(FlashBuilder().fontArray(firmware::kFontArrayE71v42, 0).writeTo("nofonts.bin"));
    EXPECT_TRUE(none.ws.Ftype.empty());
    EXPECT_EQ(none.ws.FirmwareId, "Unknown LngPack");
    Opened el;
    el.open(FlashBuilder().fontArray(firmware::kFontArrayEl71v41, 3).pack("45").writeTo("el.bin"));
    EXPECT_EQ(el.ws.FirmwareId, "lg03_El71_v41");
    EXPECT_EQ(el.ws.ListView1.size(), 1701u);
}

TEST(OpenCommand, filesThatCannotBeAFullflashGetAClearMessage) {
    const std::string folder = testing::testFolder();
    const std::string shortFlash = FlashBuilder(0x1B00000).model("E71").writeTo("short.bin");
    for (const std::string& path : {shortFlash, folder, folder + "/missing.bin"}) {
        Opened o;
        o.open(path);
        EXPECT_TRUE(o.ws.ActionFailed) << path;
        ASSERT_EQ(o.ui.messages.size(), 1u) << path;
        EXPECT_FALSE(o.ui.messages[0].text.empty());
        EXPECT_EQ(o.ws.firmware, nullptr);
    }
}

TEST(OpenCommand, namesNotEndingInBinGoToTheContainerLoaders) {
    Opened o;
    const std::string folder = testing::testFolder();
    o.open(folder + "/picture.DAT");  // upper-case DAT is a container
    ASSERT_EQ(o.ui.messages.size(), 1u);
    EXPECT_NE(o.ui.messages[0].text.find("Cannot open file"), std::string::npos);
    Opened cancelled;
    cancelled.ui.openFiles.push_back(std::nullopt);
    cancelled.ws.mnu_FileOpen();
    EXPECT_TRUE(cancelled.ui.messages.empty());
}

TEST(StartUp, commandLineOpensBinOnlyWithExactCase) {
    const std::string path = FlashBuilder().writeTo("start.bin");
    for (const std::string& line : {path, "\"" + path + "\""}) {
        ScriptedInterface ui;
        Workspace ws(ui);
        settings::MemorySettingsStore store;
        ws.startUp(line, store);
        EXPECT_EQ(ws.ListView1.size(), 1701u) << line;
        EXPECT_EQ(ws.FirmwarePath, path);
        EXPECT_FALSE(ws.PathGiven);
        EXPECT_TRUE(ui.fileDialogs.empty());
    }
    ScriptedInterface ui;
    Workspace ws(ui);
    settings::MemorySettingsStore store;
    ws.startUp(path.substr(0, path.size() - 3) + "BIN", store);
    EXPECT_TRUE(ws.ListView1.empty());
    EXPECT_EQ(ws.TabStrip1, 1);
    // first start: the defaults are written and English applied
    EXPECT_EQ(store.values.at("Language"), 2u);
    EXPECT_EQ(store.values.at("MSGsucces"), 1u);
    EXPECT_EQ(store.values.at("MSGreplace"), 1u);
}

TEST(StartUp, theStoredLanguageIsAppliedAfterTheCommandLineFile) {
    ScriptedInterface ui;
    Workspace ws(ui);
    settings::MemorySettingsStore store;
    store.values = {{"Language", 1}, {"MSGsucces", 0}, {"MSGreplace", 1}};
    const std::string path = FlashBuilder().model("X").writeTo("ru.bin");
    ws.startUp(path, store);
    ASSERT_EQ(ui.messages.size(), 1u);
    EXPECT_EQ(ui.messages[0].text, "This phone model not supported: X");  // still English then
    EXPECT_EQ(ws.LanguageIndex, 1);
    EXPECT_FALSE(ws.ShowSuccessMessage);
    EXPECT_NE(ws.msg(settings::MessageKey::MsgSuccess), "Successfully completed");
}

TEST(StartUp, temporaryFilesLiveInAPrivateFolderInsideTmp) {
    const std::string folder = testing::testFolder();
    const testing::ScopedEnvironment tmp("TMP", folder);
    // Another user's file under the old shared name is neither read nor removed.
    ASSERT_TRUE(writeFile(folder + "/temp.gpf2", std::string("theirs")).ok());
    const std::string own = temporaryPath("/Korvatek.temp");
    const std::string privateFolder = privateTemporaryFolder();
    EXPECT_EQ(own, privateFolder + "/Korvatek.temp");
    EXPECT_EQ(privateFolder.rfind(joinPath(folder, "korvatek-"), 0), 0u) << privateFolder;
#ifndef _WIN32
    const auto permissions = std::filesystem::status(privateFolder).permissions();
    EXPECT_EQ(permissions & std::filesystem::perms::all, std::filesystem::perms::owner_all);
#endif

    for (const auto& suffix : Workspace::temporaryFileSuffixes()) ASSERT_TRUE(writeFile(temporaryPath(suffix), std::string("x")).ok());
    ScriptedInterface ui;
    Workspace ws(ui);
    settings::MemorySettingsStore store;
    ws.startUp("", store);
    for (const auto& suffix : Workspace::temporaryFileSuffixes())
        EXPECT_FALSE(std::filesystem::exists(temporaryPath(suffix))) << suffix;
    EXPECT_TRUE(std::filesystem::exists(folder + "/temp.gpf2"));
    removePrivateTemporaryFolder();
    EXPECT_FALSE(std::filesystem::exists(privateFolder));
}

}  // namespace korvatek::app

namespace korvatek::app {

TEST(SafeWrites, completeFilesOnlyAndNothingLeftBehind) {
    const std::string folder = testing::testFolder();
    ASSERT_TRUE(writeFile(folder + "/a.bin", std::string("first")).ok());
    ASSERT_TRUE(writeFile(folder + "/a.bin", std::string("second")).ok());
    EXPECT_EQ(testing::readAll(folder + "/a.bin"), bytesOf("second"));
    const Status refused = writeFile(folder + "/missing/b.bin", std::string("x"));
    ASSERT_FALSE(refused.ok());
    EXPECT_EQ(refused.error().code, ErrorCode::FileUnwritable);
    int entries = 0;
    for ([[maybe_unused]] const auto& e : std::filesystem::directory_iterator(folder)) ++entries;
    EXPECT_EQ(entries, 1);  // no temporary name stays beside the file
}

}  // namespace korvatek::app

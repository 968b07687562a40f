// File > Open, and what the window does when it starts.
#include <filesystem>
#include <tuple>

#include "support/workspace_test.h"

namespace korvatek::testing {
namespace {

using enum settings::MessageKey;

using OpenCommand = WorkspaceTest;

// Each fullflash opened replaces what the last one listed; one that is refused leaves nothing open.
TEST_F(OpenCommand, listsWhatTheFullflashHoldsOrNothing) {
    openSample();
    show(kPlain16);
    ui.openFiles = {FlashBuilder().pack("43").writeTo("pack.bin"), FlashBuilder().model("e71").writeTo("model.bin")};
    ws.mnu_FileOpen();
    EXPECT_EQ(ui.fileDialogs.at(0).title, text(MsgChooseFile) + "fullflash:");
    EXPECT_EQ(shown(), std::vector<std::string>{text(MsgFirmwareNotSupported) + "43. " + text(MsgFontsOnly)});
    EXPECT_TRUE(ws.ListView1.empty());  // an unknown pack: fonts only
    EXPECT_FALSE(ws.ShownPicture.has_value());
    EXPECT_EQ(ws.Ftype.size(), 2u);
    EXPECT_EQ(std::tuple(ws.PhoneModel, ws.LanguagePack, ws.FirmwareId), std::tuple("E71", "43", "lg91_E71_v42"));
    forget();
    ws.mnu_FileOpen();
    EXPECT_TRUE(ws.ActionFailed);
    EXPECT_EQ(shown(), std::vector<std::string>{text(MsgModelNotSupported) + "e71"});
    EXPECT_TRUE(ws.Ftype.empty());
    EXPECT_EQ(ws.firmware, nullptr);
}

// Only a name ending in "bin" as typed is a fullflash, only "dat" a theme cache; the rest are
// containers.
TEST_F(OpenCommand, theLastThreeCharactersChooseTheLoader) {
    const Bytes gpf2 = readAll(container("pic.gpf2", true, 1, 1, 0x05, {0x22}));
    for (const std::string name : {"pic.DAT", "pic.BIN", "pic.dat"}) {
        ASSERT_TRUE(app::writeFile(file(name), gpf2).ok());
        forget();
        ws.PICinfo.clear();
        ui.openFiles.push_back(file(name));
        ws.mnu_FileOpen();
        const bool themeCache = name.ends_with("dat");
        EXPECT_EQ(ui.messages.size(), themeCache ? 1u : 0u) << name;  // read as a DAT, far too large
        EXPECT_EQ(ws.PICinfo.empty(), themeCache) << name;
        EXPECT_EQ(ws.firmware, nullptr) << name;
    }
    forget();
    ui.openFiles.push_back(std::nullopt);
    ws.mnu_FileOpen();
    EXPECT_TRUE(ui.messages.empty());
}

using StartUp = WorkspaceTest;

TEST_F(StartUp, theCommandLineOpensALowerCaseBinNamePlainOrQuoted) {
    const std::string path = FlashBuilder().writeTo("start.bin");
    for (const std::string& line : {path, "\"" + path + "\"", path.substr(0, path.size() - 3) + "BIN"}) {
        app::ScriptedInterface answers;
        app::Workspace fresh(answers);
        settings::MemorySettingsStore store;
        fresh.startUp(line, store);
        EXPECT_EQ(fresh.ListView1.size(), line.ends_with("BIN") ? 0u : 1701u) << line;
        EXPECT_FALSE(fresh.PathGiven);
        EXPECT_TRUE(answers.fileDialogs.empty());
        // a first start stores the defaults: English, both messages on
        EXPECT_EQ(store.values,
                  (std::map<std::string, std::uint32_t>{{"Language", 2}, {"MSGreplace", 1}, {"MSGsucces", 1}}));
    }
}

// The file on the command line is opened before the stored language is applied.
TEST_F(StartUp, theStoredLanguageFollowsTheCommandLineFile) {
    settings::MemorySettingsStore store;
    store.values = {{"Language", 1}, {"MSGsucces", 0}, {"MSGreplace", 1}};
    const std::string english = text(MsgModelNotSupported);
    ws.startUp(FlashBuilder().model("X").writeTo("ru.bin"), store);
    EXPECT_EQ(shown(), std::vector<std::string>{english + "X"});
    EXPECT_EQ(ws.LanguageIndex, 1);
    EXPECT_FALSE(ws.ShowSuccessMessage);
    EXPECT_NE(text(MsgModelNotSupported), english);
}

TEST_F(StartUp, clearsItsOwnTemporaryFiles) {
    for (const auto& suffix : app::Workspace::temporaryFileSuffixes())
        ASSERT_TRUE(app::writeFile(app::temporaryPath(suffix), std::string("x")).ok());
    settings::MemorySettingsStore store;
    ws.startUp("", store);
    for (const auto& suffix : app::Workspace::temporaryFileSuffixes())
        EXPECT_FALSE(std::filesystem::exists(app::temporaryPath(suffix))) << suffix;
}

}  // namespace
}  // namespace korvatek::testing

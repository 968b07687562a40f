// The picture list: browsing, saving one picture or all of them, and replacing pictures into
// the picture patch.
#include <algorithm>
#include <filesystem>
#include <functional>
#include <tuple>

#include "edit/picture_decode.h"
#include "edit/picture_files.h"
#include "patch/vkp_text.h"
#include "support/workspace_test.h"

namespace korvatek::testing {
namespace {

using enum settings::MessageKey;
using PictureList = WorkspaceTest;

TEST_F(PictureList, browsingNeverAsksAndAnUnknownCodeBorrowsThePreviousDepth) {
    openSample();
    show(kUnknownCode);  // nothing decoded yet: no depth to borrow
    EXPECT_EQ(shown(), texts({MsgGpfNotSupported}));
    EXPECT_TRUE(ws.lastDecodeRefused);
    EXPECT_FALSE(ws.ActionFailed);
    show(kPacked24);
    EXPECT_EQ(ws.ShownPicture, kPacked24);
    EXPECT_EQ(ws.preview.source, app::Preview::Source::Picture);
    EXPECT_EQ(ws.preview.width, 2);
    show(kPlain16);
    show(kUnknownCode);
    EXPECT_FALSE(ws.lastDecodeRefused);
    EXPECT_EQ(ws.picture.bits, 16);
    EXPECT_EQ(ui.messages.size(), 1u);
    EXPECT_TRUE(ui.questions.empty());

    // A row that cannot be shown fails, forgets the picture shown and offers nothing to save.
    for (const auto& [row, message] : {std::pair{kNoData, MsgDataOffsetZero}, std::pair{kTooWide, MsgOutsideCanvas}}) {
        show(kPlain16);
        forget();
        show(row);
        EXPECT_TRUE(ws.ActionFailed);
        EXPECT_EQ(shown(), texts({message}));
        EXPECT_FALSE(ws.ShownPicture.has_value());
        ws.mnuPopup_SaveGPF();
        ws.mnuPopup_SaveBMP();
        EXPECT_TRUE(ui.fileDialogs.empty());
    }
}

// Saving a picture other than the one shown decodes it first: the container ends where its
// own data end.
TEST_F(PictureList, savingOneProposesItsNumberAndAnnouncesAReplacedFile) {
    openSample();
    show(kPacked24);
    ws.selectPicture(kPlain16);
    const std::string out = file("zero.gpf2");
    for (const bool again : {false, true}) {
        forget();
        ui.saveFiles.push_back(out);
        ws.mnuPopup_SaveGPF();
        ASSERT_EQ(ui.fileDialogs.size(), 1u);
        EXPECT_EQ(ui.fileDialogs[0].title, text(MsgChooseFile) + "GPF:");
        EXPECT_EQ(proposed(), "0000.gpf2");
        EXPECT_EQ(shown(), (again ? std::vector<std::string>{replacing(out), text(MsgSuccess)} : texts({MsgSuccess})));
    }
    const auto& row = ws.ListView1[kPlain16];
    codec::PixelCanvas canvas;
    const auto decoded = edit::decodeFlashPicture(ws.firmware->bytes(), row, 24, 0, canvas);
    EXPECT_EQ(readAll(out), edit::flashPictureContainer(ws.firmware->bytes(), row, decoded));

    forget();
    ui.saveFiles.push_back(std::nullopt);
    ws.mnuPopup_SaveGPF();
    EXPECT_TRUE(ws.ActionFailed);
    EXPECT_TRUE(ui.messages.empty());
}

TEST_F(PictureList, savingATwentyFourBitPictureAsksAboutItsAlpha) {
    openSample();
    for (const bool keep : {false, true}) {
        show(kPlain16);
        forget();
        ws.selectPicture(kPacked24);
        ui.answers = {keep};
        ui.saveFiles = {file("three.bmp")};
        ws.mnuPopup_SaveBMP();
        EXPECT_EQ(ui.questions, texts({MsgSaveAlpha}));
        EXPECT_EQ(proposed(), "0003.bmp");
        EXPECT_EQ(readAll(file("three.bmp")).at(28), keep ? 32 : 24);
    }
}

TEST_F(PictureList, batchesWriteEveryDecodablePictureAndAskAboutAlphaOnce) {
    openSample();
    std::filesystem::create_directories(file("gpf"));
    std::filesystem::create_directories(file("bmp"));
    ui.folders = {std::nullopt, file("gpf"), file("bmp")};
    ws.mnuPopup_SaveAllBMP();  // cancelled
    EXPECT_TRUE(ui.questions.empty() && ui.messages.empty());

    ws.mnuPopup_SaveAllGPF();
    EXPECT_EQ(ui.folderTitles.back(), text(MsgChooseSaveFolder));
    for (const char* name : {"0000.gpf2", "0003.gpf2"}) EXPECT_TRUE(std::filesystem::exists(file("gpf/") + name));
    for (const char* name : {"0002.gpf2", "0006.gpf2"}) EXPECT_FALSE(std::filesystem::exists(file("gpf/") + name));
    EXPECT_EQ(shown().back(), text(MsgSuccess));
    EXPECT_DOUBLE_EQ(ws.progress, 100.0);

    ui.answers = {true};
    ws.mnuPopup_SaveAllBMP();
    EXPECT_EQ(ui.questions, texts({MsgSaveAlpha}));
    EXPECT_EQ(readAll(file("bmp/0003.bmp")).at(28), 32);
    EXPECT_EQ(readAll(file("bmp/0000.bmp")).at(28), 24);
    EXPECT_FALSE(ws.BatchKeepAlpha);  // a single save afterwards asks again
}

// ---- replacing pictures: the patch being collected, the marks on the rows

class PicturePatch : public WorkspaceTest {
protected:
    PicturePatch() { openSample(); }
    void replace(int row, const std::string& path) {
        show(row);
        ui.openFiles.push_back(path);
        ws.mnuPopup_LoadGPF();
    }
    // A container as long as picture kOneByte's data.
    std::string oneByte(const std::string& name = "one.gpf2") { return container(name, true, 1, 1, 0x05, {0x66}); }
    bool anyMarked() const {
        return std::any_of(ws.ListView1.begin(), ws.ListView1.end(), [](const auto& row) { return row.replaced; });
    }
    bool collecting() const { return std::filesystem::exists(ws.collectingPatchPath()); }
    // The pictures the collected patch has sections for, in order.
    std::vector<int> sections() const {
        std::vector<int> numbers;
        const std::string& text = ws.PicturePatchText;
        const std::string mark = "; ##### Picture ";
        for (auto at = text.find(mark); at != std::string::npos; at = text.find(mark, at + 1))
            numbers.push_back(std::stoi(text.substr(at + mark.size())));
        return numbers;
    }
};

// A replacement no longer than the old data stays in place; a longer one takes the next piece
// of free space, which then moves on.
TEST_F(PicturePatch, replacementsGoInPlaceOrToFreeSpaceInTurn) {
    replace(kPlain16, container("same.gpf2", true, 3, 2, 0x08, Bytes(12, 0x33)));
    EXPECT_EQ(proposed(), "0000.gpf2");
    EXPECT_TRUE(ws.ListView1[kPlain16].replaced);
    EXPECT_FALSE(ws.UsedFreeSpace);
    replace(kOneByte, container("longer.gpf2", true, 2, 1, 0x05, {0x44, 0x55}));
    EXPECT_TRUE(ws.UsedFreeSpace);
    EXPECT_EQ(ws.FreeSpaceStart, "1320010");
    replace(kPacked24, container("grown.gpf2", true, 16, 1, 0x05, Bytes(16, 0x77)));
    EXPECT_NE(ws.PicturePatchText.find("\r\n01320010: "), std::string::npos);  // where picture 3 went

    const std::string header = patch::pictureHeader("E71");
    EXPECT_EQ(ws.PicturePatchText.rfind(header, 0), 0u);
    EXPECT_EQ(ws.PicturePatchText.find(header, 1), std::string::npos);
    EXPECT_EQ(sections(), (std::vector<int>{kPlain16, kOneByte, kPacked24}));
    EXPECT_EQ(readAll(ws.collectingPatchPath()), bytesOf(ws.PicturePatchText));

    // Saved, checked against the open fullflash and its patched copy opened: each replaced row
    // has its replacement's size and type, the others are as they were.
    ui.saveFiles = {file("pictures.vkp"), file("patched.bin")};
    ui.openFiles = {file("pictures.vkp")};
    ws.mnuPopup_SavePatch();
    ws.mnu_ToolsCheckPatch();
    EXPECT_EQ(proposed(), "sample_patched.bin");
    EXPECT_EQ(ui.questions.back(), text(MsgOpenPatchedCopy));
    ASSERT_EQ(ws.FirmwarePath, file("patched.bin"));
    const auto sizeAndType = [this](int n) {
        const auto& row = ws.ListView1.at(static_cast<std::size_t>(n));
        return std::tuple(row.width, row.height, row.type);
    };
    EXPECT_EQ(sizeAndType(kOneByte), std::tuple(2, 1, 0x05));
    EXPECT_EQ(sizeAndType(kPacked24), std::tuple(16, 1, 0x05));
    EXPECT_EQ(sizeAndType(kUnknownCode), std::tuple(1, 1, 0x0A));
}

TEST_F(PicturePatch, aMarkedPictureIsRefusedUntilThePatchIsSavedOrDropped) {
    const std::string one = oneByte();
    replace(kOneByte, one);
    const std::string collected = ws.PicturePatchText;
    forget();
    replace(kOneByte, one);
    EXPECT_EQ(ui.messages, (std::vector<Shown>{{text(MsgAlreadyReplaced), "5"}}));
    EXPECT_TRUE(ui.fileDialogs.empty());
    EXPECT_EQ(ws.PicturePatchText, collected);

    // An existing file is replaced only when confirmed; until then the patch stays pending.
    const std::string out = file("saved.vkp");
    ASSERT_TRUE(app::writeFile(out, std::string("old")).ok());
    ui.saveFiles = {out, out};
    ui.answers = {false, true};
    ws.mnuPopup_SavePatch();
    EXPECT_EQ(proposed(), "GraphicPatch_E71.vkp");
    EXPECT_EQ(ui.questions, std::vector<std::string>{replacing(out)});
    EXPECT_TRUE(ws.mnuPopup_SavePatchEnabled());
    EXPECT_TRUE(ws.ListView1[kOneByte].replaced);
    EXPECT_EQ(readAll(out), bytesOf("old"));
    ws.mnuPopup_SavePatch();
    EXPECT_EQ(readAll(out), bytesOf(collected));
    EXPECT_FALSE(ws.mnuPopup_SavePatchEnabled());
    EXPECT_FALSE(anyMarked());
    EXPECT_FALSE(collecting());
    EXPECT_EQ(ui.messages.back().text, text(MsgSuccess));

    replace(kOneByte, one);  // a fresh patch with its own header
    EXPECT_EQ(ws.PicturePatchText, collected);
    EXPECT_TRUE(collecting());
    ws.mnuPopup_DiscardPatch();
    EXPECT_FALSE(ws.mnuPopup_SavePatchEnabled());
    EXPECT_TRUE(ws.PicturePatchText.empty());
    EXPECT_FALSE(anyMarked());
    EXPECT_FALSE(collecting());
}

// Only four-digit names count; a marked picture is named in the message title and skipped.
TEST_F(PicturePatch, aFolderReplacesThePicturesNamedByNumber) {
    replace(kOneByte, oneByte());
    std::filesystem::create_directories(file("folder"));
    oneByte("folder/0005.gpf2");
    container("folder/0000.gpf2", true, 3, 2, 0x08, Bytes(12, 0x33));
    oneByte("folder/3.gpf2");
    forget();
    ui.folders.push_back(file("folder"));
    ws.mnuPopup_LoadGPFfolder();
    EXPECT_EQ(ui.folderTitles, texts({MsgChooseOpenFolder}));
    EXPECT_EQ(ui.messages, (std::vector<Shown>{{text(MsgAlreadyReplaced), "5"}, {text(MsgSuccess), ""}}));
    EXPECT_EQ(sections(), (std::vector<int>{kOneByte, kPlain16}));
}

// A bitmap is encoded to the chosen type in a temporary container, which goes afterwards.
TEST_F(PicturePatch, aBitmapIsConvertedToTheChosenTypeFirst) {
    show(kPlain16);
    ui.openFiles.push_back(bitmap("white.bmp", 3, 2));
    ws.mnuPopup_LoadBMP(0x88);
    ASSERT_EQ(ui.fileDialogs.size(), 1u);
    EXPECT_EQ(proposed(), "0000.bmp");
    EXPECT_TRUE(ws.ListView1[kPlain16].replaced);
    EXPECT_EQ(ws.picture.typeCode, 0x88);
    EXPECT_FALSE(ws.NoDialog);
    EXPECT_FALSE(std::filesystem::exists(app::temporaryPath("/temp.gpf2")));

    // a conversion that fails leaves the row unmarked, and the next replacement asks again
    show(kOneByte);
    ui.openFiles.push_back(file("missing.bmp"));
    ws.mnuPopup_LoadBMP(0x85);
    EXPECT_FALSE(ws.NoDialog);
    EXPECT_FALSE(ws.ListView1[kOneByte].replaced);
}

// The picture editor's Apply is "Load BMP" of the edited pixels: the same patch for every
// target type, each from a fresh session (free space handed out is not given back).
TEST_F(PicturePatch, anEditedPictureIsQueuedAsItsBmpWouldBeForEveryTarget) {
    show(kPlain16);
    edit::PixelGrid pixels = edit::canvasGrid(ws.canvas, ws.preview.width, ws.preview.height);
    edit::drawLine(pixels, 0, 0, 2, 1, 0xFF3366CC);
    pixels.set(2, 0, 0xFFA9ABA9);   // the transparent key
    const Bytes bmp = *edit::gridBmp(pixels);
    ASSERT_TRUE(app::writeFile(file("edited.bmp"), bmp).ok());
    const std::string sample = sampleFlash().writeTo("fresh.bin");
    const auto patchOf = [&](const std::function<void(app::Workspace&, app::ScriptedInterface&)>& replace) {
        app::ScriptedInterface answers;
        app::Workspace session(answers);
        answers.openFiles.push_back(sample);
        session.mnu_FileOpen();
        session.selectPicture(kPlain16);
        session.ListView1_Click();
        replace(session, answers);
        EXPECT_TRUE(session.ListView1[kPlain16].replaced);
        return session.PicturePatchText;
    };
    for (const int target : {0x01, 0x85, 0x88, 0x8A}) {
        const std::string fromMenu = patchOf([&](app::Workspace& w, app::ScriptedInterface& answers) {
            answers.openFiles.push_back(file("edited.bmp"));
            w.mnuPopup_LoadBMP(target);
        });
        const std::string fromEditor = patchOf([&](app::Workspace& w, app::ScriptedInterface&) {
            w.applyEditedPicture(bmp, target);
            w.applyEditedPicture(bmp, target);   // one replacement a picture, as from the menu
            EXPECT_TRUE(w.ActionFailed);
        });
        EXPECT_EQ(fromEditor, fromMenu) << target;
    }

    // What the editor shows as stored: one bit keeps black and white only; 24 bits keep the
    // colours of the first row (the run-length tail of the last row has always lost cells).
    const auto oneBit = edit::storedPicture(pixels, 0x01);
    ASSERT_TRUE(oneBit.ok());
    for (const edit::Colour c : oneBit->pixels) EXPECT_TRUE(c == 0xFF000000 || c == 0xFFFFFFFF) << std::hex << c;
    const auto full = edit::storedPicture(pixels, 0x8A);
    ASSERT_TRUE(full.ok());
    for (int x = 0; x < 3; ++x) EXPECT_EQ(full->at(x, 0), pixels.at(x, 0)) << x;
}

}  // namespace
}  // namespace korvatek::testing

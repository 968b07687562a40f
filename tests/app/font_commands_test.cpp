// The Fonts tab on the demonstration fullflash: glyphs shown and saved, the size box, glyph
// replacement and its patch, the font rebuild.
#include <filesystem>

#include "edit/font_edits.h"
#include "edit/picture_files.h"
#include "fonts/font_patch.h"
#include "support/workspace_test.h"

namespace korvatek::testing {
namespace {

using enum settings::MessageKey;

class Fonts : public WorkspaceTest {
protected:
    void replace(int code, const std::string& path) {
        ws.selectGlyph(code - 1);
        ui.openFiles.push_back(path);
        ws.mnuPopup2_LoadBMP();
        ui.openFiles.clear();  // a refusal before the dialog leaves the path unasked
    }
    bool collecting() const {
        return std::filesystem::exists(app::temporaryPath("/Korvatek.temp")) &&
               std::filesystem::exists(app::temporaryPath("/Korvatek_2.temp"));
    }
};

TEST_F(Fonts, aShownGlyphIsSavedFromTheGlyphGridUnderItsCode) {
    openDemo(0);
    ws.selectGlyph(64);
    ws.ListView2_Click();
    EXPECT_EQ(ws.preview.source, app::Preview::Source::Glyph);
    ui.saveFiles.push_back(file("A.bmp"));
    ws.mnuPopup2_SaveBMP();
    EXPECT_EQ(proposed(), "0065.bmp");
    EXPECT_EQ(shown(), texts({MsgSuccess}));
    const Bytes bmp = readAll(file("A.bmp"));
    ASSERT_GT(bmp.size(), 54u);
    EXPECT_EQ(bmp[18], ws.preview.width);
    EXPECT_EQ(bmp[22], ws.preview.height);
}

TEST_F(Fonts, theSizeBoxAsksUntilTheAnswerIsSixToSixtyFour) {
    openDemo(1);
    ui.inputs = {std::string("5"), std::string("65"), std::string("-3"), std::string("12")};
    ui.saveFiles.push_back(file("size.vkp"));
    ws.mnuPopup2_ChangeFSize();
    EXPECT_EQ(ui.prompts, std::vector<std::string>(4, "Current Size: 11\r" + text(MsgInputSize)));
    EXPECT_EQ(proposed(), "changeFont1Size_lg91_E71_v42.vkp");
    EXPECT_EQ(textOf(readAll(file("size.vkp"))),
              fonts::fontSizePatch(1, "lg91_E71_v42", ws.Ftype[1].descriptorOffset, 11, 12));

    forget();
    ui.inputs = {std::string("0")};  // as Cancel does
    ws.mnuPopup2_ChangeFSize();
    EXPECT_EQ(ui.prompts.size(), 1u);
    EXPECT_TRUE(ui.fileDialogs.empty());
}

TEST_F(Fonts, replacedGlyphsAreMarkedCollectedAndPatchedForTheirOwnFont) {
    openDemo(1);
    const std::string small = bitmap("small.bmp", 6, 9, {1, 2, 4, 8});
    replace(65, small);
    EXPECT_EQ(proposed(), "0065.bmp");
    EXPECT_TRUE(ws.ListView2[64].replaced);
    ASSERT_EQ(ws.collectedGlyphs.size(), 1u);
    EXPECT_EQ(ws.collectedGlyphs[0].number, 65);
    EXPECT_TRUE(collecting());

    forget();
    replace(65, small);  // refused before its dialog; the title is the code as a signed number
    EXPECT_EQ(ui.messages, (std::vector<Shown>{{text(MsgAlreadyReplaced), " 65"}}));
    EXPECT_TRUE(ui.fileDialogs.empty());
    replace(66, bitmap("big.bmp", 60, 40, {0, 0, 60, 40}));  // more than its room
    EXPECT_TRUE(ws.ActionFailed);
    EXPECT_FALSE(ws.ListView2[65].replaced);
    EXPECT_EQ(ws.collectedGlyphs.size(), 1u);

    // Saved after another font was chosen: the patch is still font 1's.
    const std::string fontOne = fonts::glyphPatchText(1, ws.FirmwareId, ws.collectedGlyphs, ws.firmware->bytes());
    ws.Ftype_Click(0);
    ui.saveFiles.push_back(file("font1.vkp"));
    ws.mnuPopup2_SavePatch();
    EXPECT_EQ(proposed(), "Font1_lg91_E71_v42.vkp");
    EXPECT_EQ(textOf(readAll(file("font1.vkp"))), fontOne);
    EXPECT_FALSE(ws.mnuPopup2_SavePatchEnabled());
    EXPECT_FALSE(collecting());

    // A patch of the font shown clears its marks; the next one starts afresh.
    replace(65, small);
    ui.saveFiles.push_back(file("font0.vkp"));
    ws.mnuPopup2_SavePatch();
    EXPECT_EQ(proposed(), "Font0_lg91_E71_v42.vkp");
    EXPECT_FALSE(ws.ListView2[64].replaced);
    replace(66, small);
    EXPECT_EQ(ws.collectedGlyphs.size(), 1u);
}

// The editor's Apply is a BMP replacement of the edited cell: the same glyph patch bytes as
// saving that cell as a BMP and loading it from the menu, the same refusals.
TEST_F(Fonts, anEditedGlyphIsQueuedAsItsBmpWouldBe) {
    openDemo(0);
    edit::PixelGrid cell = edit::glyphCellGrid(ws.firmware->bytes(), ws.ListView2[64]);   // the A
    ASSERT_GT(cell.width, 0);
    edit::mirror(cell, true);
    edit::drawLine(cell, 3, 4, 6, 7, edit::kInk);   // inside the ink: the room stays as it is
    const auto bmp = edit::gridBmp(cell);
    ASSERT_TRUE(bmp.ok());
    ASSERT_TRUE(app::writeFile(file("edited.bmp"), *bmp).ok());
    replace(65, file("edited.bmp"));
    ASSERT_EQ(ws.collectedGlyphs.size(), 1u);
    const std::string fromMenu = fonts::glyphPatchText(0, ws.FirmwareId, ws.collectedGlyphs, ws.firmware->bytes());
    ws.mnuPopup2_DiscardPatch();

    ws.selectGlyph(64);
    ws.applyEditedGlyph(*bmp);
    ASSERT_EQ(ws.collectedGlyphs.size(), 1u);
    EXPECT_EQ(fonts::glyphPatchText(0, ws.FirmwareId, ws.collectedGlyphs, ws.firmware->bytes()), fromMenu);
    EXPECT_TRUE(ws.ListView2[64].replaced);

    forget();
    ws.applyEditedGlyph(*bmp);   // already replaced
    EXPECT_EQ(ui.messages, (std::vector<Shown>{{text(MsgAlreadyReplaced), " 65"}}));
    ws.selectGlyph(65);
    ws.applyEditedGlyph(*edit::gridBmp(edit::PixelGrid(60, 40, edit::kInk)));   // more than the B's room
    EXPECT_TRUE(ws.ActionFailed);
    EXPECT_FALSE(ws.ListView2[65].replaced);
}

TEST_F(Fonts, aRebuiltFontThatNoLongerFitsNamesTheFiguresAndAsksForNoFile) {
    openDemo(2);
    std::filesystem::create_directories(file("huge"));
    for (int code = 1; code <= 40; ++code) {
        const std::string name = std::string(code < 10 ? "huge/000" : "huge/00") + std::to_string(code) + ".bmp";
        bitmap(name, 100, 100, {0, 0, 100, 100});
    }
    ui.folders.push_back(file("huge"));
    ws.mnuPopup2_MakeF();
    EXPECT_TRUE(ws.ActionFailed);
    ASSERT_EQ(ui.messages.size(), 1u);
    const std::string& row = text(MsgFontNoRoom);
    const std::string& message = ui.messages[0].text;
    EXPECT_EQ(message.substr(0, row.find("%1")), row.substr(0, row.find("%1")));
    EXPECT_EQ(message.find('%'), std::string::npos) << message;
    EXPECT_TRUE(ui.fileDialogs.empty());
}

}  // namespace
}  // namespace korvatek::testing

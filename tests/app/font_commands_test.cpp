// The Fonts tab's commands on the demo fullflash.
#include <gtest/gtest.h>

#include <filesystem>

#include "support/scripted_interface.h"
#include "app/workspace.h"
#include "base/hex_text.h"
#include "codec/bmp_file.h"
#include "demo/demo_flash.h"
#include "support/environment.h"
#include "support/flash_builder.h"

namespace korvatek::app {

using testing::readAll;

namespace {

const std::string& demoPath() {
    static const std::string path = [] {
        const auto p = std::filesystem::temp_directory_path() / "korvatek-font-tests-demo.bin";
        EXPECT_TRUE(writeFile(p.string(), firmware::makeDemoFlash()).ok());
        return p.string();
    }();
    return path;
}

struct Fonts {
    ScriptedInterface ui;
    Workspace ws{ui};
    std::string folder = testing::testFolder();
    testing::ScopedEnvironment tmp{"TMP", folder};
    explicit Fonts(int font = 0) {
        ws.PathGiven = true;
        ws.CommandLinePath = demoPath();
        ws.mnu_FileOpen();
        ws.PathGiven = false;
        ws.Ftype_Click(font);
        ui.messages.clear();
    }
    // A 24-bit BMP of width x height, white with an ink rectangle [x0, x1) x [y0, y1).
    std::string bitmap(const std::string& name, int width, int height, int x0, int y0, int x1, int y1) {
        codec::PixelCanvas c;
        c.metaWidth = width;
        c.metaHeight = height;
        c.metaDepth = 24;
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x) {
                const std::uint8_t v = x >= x0 && x < x1 && y >= y0 && y < y1 ? 0 : 255;
                c.at(x, y) = {v, v, v, 0};
            }
        const std::string path = folder + "/" + name;
        EXPECT_TRUE(writeFile(path, *codec::encodeBmp(c, 24)).ok());
        return path;
    }
    void replace(int code, const std::string& path) {
        ws.selectGlyph(code - 1);
        ui.openFiles.push_back(path);
        ws.mnuPopup2_LoadBMP();
        ui.openFiles.clear();  // a refusal before the dialog leaves the path unasked
    }
};

}  // namespace

TEST(FontCommands, showingAGlyphDescribesItsCell) {
    Fonts f;
    ASSERT_EQ(f.ws.ListView2.size(), 800u);
    f.ws.selectGlyph(64);  // 'A'
    f.ws.ListView2_Click();
    const auto& row = f.ws.ListView2[64];
    const int W = row.advance;
    const int H = row.height + row.spaceBelow;
    EXPECT_EQ(f.ws.PICinfo, "Width: " + std::to_string(W) + "\rHeight: " + std::to_string(H) +
                                "\r\rSymbolCode: 0x41\r\rLenght: 0x" + fonts::glyphCellText(row, 9));
    EXPECT_EQ(f.ws.preview.source, Preview::Source::Glyph);
    EXPECT_EQ(f.ws.copyGlyphCell(7), fonts::glyphCellText(row, 7));
    EXPECT_EQ(f.ws.copyGlyphCell(8), fonts::glyphCellText(row, 8));

    const std::string out = f.folder + "/A.bmp";
    f.ui.saveFiles.push_back(out);
    f.ws.mnuPopup2_SaveBMP();
    EXPECT_EQ(f.ui.fileDialogs.back().fileName, "0065.bmp");
    const Bytes bmp = readAll(out);
    ASSERT_GT(bmp.size(), 54u);
    EXPECT_EQ(bmp[18], W);
    EXPECT_EQ(bmp[22], H);
    EXPECT_EQ(bmp[28], 24);
}

TEST(FontCommands, theSizeBoxAsksAgainOutsideSixToSixtyFour) {
    Fonts f;
    const std::string out = f.folder + "/size.vkp";
    f.ui.inputs = {std::string("5"), std::string("65"), std::string("-3"), std::string("12")};
    f.ui.saveFiles.push_back(out);
    f.ws.mnuPopup2_ChangeFSize();
    ASSERT_EQ(f.ui.prompts.size(), 4u);
    EXPECT_EQ(f.ui.prompts[0], "Current Size: 16\rInput size from 6 to 64");
    EXPECT_EQ(f.ui.fileDialogs.back().fileName, "changeFont0Size_lg91_E71_v42.vkp");
    const std::string text = textOf(readAll(out));
    EXPECT_NE(text.find("\r\n18B5A68: 10 0C\r\n"), std::string::npos);

    Fonts cancelled;
    cancelled.ui.inputs = {std::string("0")};
    cancelled.ws.mnuPopup2_ChangeFSize();
    EXPECT_TRUE(cancelled.ui.fileDialogs.empty());
}

TEST(FontCommands, aReplacementIsTrimmedRoomCheckedCollectedAndMarked) {
    Fonts f(1);
    const std::string small = f.bitmap("small.bmp", 6, 9, 1, 2, 4, 8);
    f.replace(65, small);
    ASSERT_FALSE(f.ws.ActionFailed);
    EXPECT_TRUE(f.ws.ListView2[64].replaced);
    ASSERT_EQ(f.ws.collectedGlyphs.size(), 1u);
    const auto& g = f.ws.collectedGlyphs[0];
    EXPECT_EQ(g.number, 65);
    EXPECT_EQ(g.header, (std::array<std::uint8_t, 5>{6, 3, 6, 1, 1}));
    EXPECT_EQ(g.bitmap, Bytes(6, 0xFF));  // three ink columns and five padding bits set
    EXPECT_FALSE(CheckFexist(temporaryPath("/Korvatek.temp")));
    EXPECT_FALSE(CheckFexist(temporaryPath("/Korvatek_2.temp")));

    // a second replacement of the same glyph is refused; its title is the code, signed
    f.replace(65, small);
    ASSERT_FALSE(f.ui.messages.empty());
    EXPECT_EQ(f.ui.messages.back().title, " 65");

    // too big for its room: the message names the glyph and is the same in every language
    f.replace(66, f.bitmap("big.bmp", 60, 40, 0, 0, 60, 40));
    EXPECT_EQ(f.ui.messages.back().text, "Pic 66\rСлишком большая bmp, попробуйте сделать разрешение поменьше;)");
    EXPECT_FALSE(f.ws.ListView2[65].replaced);

    // saving writes the patch, clears the marks and the collecting files
    const std::string out = f.folder + "/font.vkp";
    f.ui.saveFiles.push_back(out);
    f.ws.mnuPopup2_SavePatch();
    EXPECT_EQ(f.ui.fileDialogs.back().fileName, "Font1_lg91_E71_v42.vkp");
    const std::string text = textOf(readAll(out));
    EXPECT_EQ(text.substr(0, 33), ";Change font 1 for lg91_E71_v42\r\n");
    EXPECT_NE(text.find("\r\n\r\n;symbol 00065\r\n0" + fonts::glyphCellText(f.ws.ListView2[64], 7) + ": "), std::string::npos);
    EXPECT_FALSE(f.ws.GlyphPatchInProgress);
    EXPECT_FALSE(f.ws.ListView2[64].replaced);
    EXPECT_TRUE(CheckFexist(f.folder + "/Korvatek.temp"));
}

TEST(FontCommands, theLastGlyphMayNotGrow) {
    Fonts f(2);
    const auto& last = f.ws.ListView2.back();
    const int code = static_cast<int>(f.ws.ListView2.size());
    const int w = last.width;
    const int h = last.height;
    f.replace(code, f.bitmap("same.bmp", w + 2, h, 1, 0, 1 + w, h));
    EXPECT_FALSE(f.ws.ActionFailed);
    Fonts g(2);
    g.replace(code, g.bitmap("taller.bmp", w + 2, h + 1, 1, 0, 1 + w, h + 1));
    EXPECT_TRUE(g.ws.ActionFailed);
    const std::string& shown = g.ui.messages.back().text;
    EXPECT_EQ(shown.substr(0, shown.find('\r')), "Pic " + std::to_string(code));
}

TEST(FontCommands, aBitmapLargerThanTheGridOrWithoutRowsIsRefused) {
    Fonts f;
    f.replace(65, f.bitmap("wide.bmp", 120, 10, 0, 0, 5, 5));
    EXPECT_TRUE(f.ws.ActionFailed);
    EXPECT_EQ(f.ui.messages.back().text, "This glyph does not fit the 101x101 glyph grid!");

    const std::string topDown = f.bitmap("topdown.bmp", 6, 9, 1, 2, 4, 8);
    Bytes bytes = readAll(topDown);
    bytes[22] = 0xF7;  // height -9
    bytes[23] = bytes[24] = bytes[25] = 0xFF;
    ASSERT_TRUE(writeFile(topDown, bytes).ok());
    f.replace(66, topDown);
    EXPECT_TRUE(f.ws.ActionFailed);
    EXPECT_FALSE(f.ws.ListView2[65].replaced);
}

TEST(FontCommands, rebuildingAFontThatNoLongerFitsWritesNothing) {
    Fonts f(2);
    const std::string folder = f.folder + "/huge";
    std::filesystem::create_directories(folder);
    for (int code = 1; code <= 40; ++code)
        f.bitmap("huge/" + std::string(code < 10 ? "000" : "00") + std::to_string(code) + ".bmp", 100, 100, 0, 0, 100, 100);
    f.ui.folders.push_back(folder);
    f.ws.mnuPopup2_MakeF();
    EXPECT_TRUE(f.ws.ActionFailed);
    ASSERT_FALSE(f.ui.messages.empty());
    EXPECT_NE(f.ui.messages.back().text.find("The rebuilt font needs "), std::string::npos);
    EXPECT_TRUE(f.ui.fileDialogs.empty());
}

}  // namespace korvatek::app

namespace korvatek::app {
// The room check counts a bitmap row as (w div 8 + 1) bytes, as the firmware's tables were laid
// out: an ink exactly 8 pixels wide needs 2 bytes a row. A glyph that fills its room exactly is
// taken; one row more is refused (counting ceil(w / 8) would take it and overwrite the next glyph).
TEST(FontCommands, theRoomCheckCountsWholeBytesPlusOneARow) {
    Fonts f;
    const int code = 66;
    const std::int64_t room = f.ws.ListView2[code].referenceValue() - f.ws.ListView2[code - 1].referenceValue() - 5;
    ASSERT_GE(room, 4);
    const int fitting = static_cast<int>(room / 2);
    ASSERT_LT(fitting + 1, 101);

    f.replace(code, f.bitmap("tall.bmp", 8, fitting + 1, 0, 0, 8, fitting + 1));
    EXPECT_TRUE(f.ws.ActionFailed) << "room " << room;
    EXPECT_FALSE(f.ws.ListView2[code - 1].replaced);

    f.replace(code, f.bitmap("fits.bmp", 8, fitting, 0, 0, 8, fitting));
    EXPECT_FALSE(f.ws.ActionFailed) << "room " << room;
    EXPECT_TRUE(f.ws.ListView2[code - 1].replaced);
}
}  // namespace korvatek::app

// Showing and saving pictures of an open fullflash.
#include <gtest/gtest.h>

#include <filesystem>

#include "support/scripted_interface.h"
#include "app/workspace.h"
#include "containers/gpf_header.h"
#include "support/flash_builder.h"

namespace korvatek::app {

using testing::FlashBuilder;
using testing::readAll;

namespace {

constexpr std::uint32_t kData = 0x1B07068;

// Picture 0: 3 x 2 uncompressed 16-bit; 1: type 0x0A (listed as A00); 2: data offset 0;
// 3: 2 x 1 compressed 24-bit; 4: 1-bit 9 x 1; 5: type 0x81; 6: 250 x 1 8-bit (too wide).
FlashBuilder sampleFlash() {
    FlashBuilder flash;
    flash.picture(0, 3, 2, 0x08, kData, {0x1F, 0, 0xE0, 0x07, 0, 0xF8, 0, 0xE0, 0xFF, 0xFF, 0, 0, 0xAB, 0xCD})
        .picture(1, 1, 1, 0x0A, kData + 0x100, {0x11, 0x22})
        .picture(2, 4, 4, 0x85, 0)
        .picture(3, 2, 1, 0x8A, kData + 0x200, {0x02, 0x10, 0x20, 0x30, 0x80})
        .picture(4, 9, 1, 0x01, kData + 0x300, {0xAA, 0x80})
        .picture(5, 2, 2, 0x81, kData + 0x400, {0x04, 0x05})
        .picture(6, 250, 1, 0x05, kData + 0x500, Bytes(250, 3));
    return flash;
}

struct Session {
    ScriptedInterface ui;
    Workspace ws{ui};
    explicit Session(const FlashBuilder& flash) {
        ui.openFiles.push_back(flash.writeTo("pictures.bin"));
        ws.mnu_FileOpen();
        ui.messages.clear();
        ui.fileDialogs.clear();
    }
    void show(int n) {
        ws.selectPicture(n);
        ws.ListView1_Click();
    }
};

}  // namespace

TEST(LoadPIC, informationTextAndLength) {
    Session s(sampleFlash());
    s.show(0);
    EXPECT_EQ(s.ws.PICinfo, "Width: 3\rHeight: 2\rBits: 16\rCompression: No\r\rLenght: 0xC");
    EXPECT_EQ(s.ws.picture.dataLength, "C");
    EXPECT_EQ(s.ws.ShownPicture, 0);
    EXPECT_EQ(s.ws.canvas.at(0, 0), (codec::Cell{255, 0, 0, 0}));
    EXPECT_EQ(s.ws.canvas.at(1, 1), (codec::Cell{255, 255, 255, 0}));
    EXPECT_EQ(s.ws.canvas.at(0, 1), codec::TransparentPixel);
    EXPECT_EQ(s.ws.preview.width, 3);
    EXPECT_TRUE(s.ui.messages.empty());
    EXPECT_TRUE(s.ui.questions.empty());  // browsing never asks about alpha
}

TEST(LoadPIC, unknownCodesKeepThePreviousBitDepth) {
    Session s(sampleFlash());
    s.show(1);  // fresh: no depth yet, so A0 is refused
    EXPECT_EQ(s.ui.messageTexts(), std::vector<std::string>{"This GPF not supported!contact author please"});
    EXPECT_TRUE(s.ws.lastDecodeRefused);
    EXPECT_FALSE(s.ws.ActionFailed);
    EXPECT_EQ(s.ws.PICinfo, "Width: 1\rHeight: 1\rBits: 0\rCompression: Yes\r\rLenght: 0x0");
    s.show(0);
    s.show(1);  // after a 16-bit picture it is decoded as compressed 16-bit data
    EXPECT_FALSE(s.ws.lastDecodeRefused);
    EXPECT_EQ(s.ws.PICinfo, "Width: 1\rHeight: 1\rBits: 16\rCompression: Yes\r\rLenght: 0x3");

    s.ui.messages.clear();
    s.show(4);  // 1-bit
    s.show(5);  // 0x81 after 1-bit: 1-bit compressed is refused
    EXPECT_EQ(s.ui.messageTexts(), std::vector<std::string>{"This GPF not supported!contact author please"});
}

TEST(LoadPIC, offsetZeroAndOversizedPicturesStopWithAMessage) {
    Session s(sampleFlash());
    s.show(2);
    EXPECT_TRUE(s.ws.ActionFailed);
    EXPECT_EQ(s.ui.messageTexts(), std::vector<std::string>{"Picture data offset is 0, nothing to show!"});
    EXPECT_FALSE(s.ws.ShownPicture.has_value());
    s.ui.messages.clear();
    s.show(6);
    EXPECT_TRUE(s.ws.ActionFailed);
    EXPECT_EQ(s.ui.messageTexts(), std::vector<std::string>{"Picture data run outside the 240x320 picture area!"});
}

TEST(SaveGPF, copiesOneByteMoreThanDecodedAndPads) {
    Session s(sampleFlash());
    const std::string out = testing::testFolder() + "/zero.gpf2";
    s.ws.selectPicture(0);
    s.ui.saveFiles.push_back(out);
    s.ws.mnuPopup_SaveGPF();
    ASSERT_FALSE(s.ws.ActionFailed);
    ASSERT_EQ(s.ui.fileDialogs.size(), 1u);
    EXPECT_EQ(s.ui.fileDialogs[0].title, "Choose file GPF:");
    EXPECT_EQ(s.ui.fileDialogs[0].fileName, "0000.gpf2");
    EXPECT_EQ(s.ui.fileDialogs[0].filter, "Graphic Patch File 2(*.gpf2)|*.gpf2");
    EXPECT_EQ(s.ui.messageTexts(), std::vector<std::string>{"Successfully completed"});

    Bytes expected = containers::SaveGPFhead(true, 3, 2, std::string{'\x08', '\0'});
    const Bytes data{0x1F, 0, 0xE0, 0x07, 0, 0xF8, 0, 0xE0, 0xFF, 0xFF, 0, 0, 0xAB};  // 12 + 1
    expected.insert(expected.end(), data.begin(), data.end());
    expected.insert(expected.end(), 3, 0);
    EXPECT_EQ(readAll(out), expected);

    // The shown picture is not decoded again, and an existing file is announced and replaced.
    s.ui.messages.clear();
    s.ui.saveFiles.push_back(out);
    s.ws.mnuPopup_SaveGPF();
    EXPECT_EQ(s.ui.messageTexts(), (std::vector<std::string>{
                                       "File " + out + " already exists and will be replaced", "Successfully completed"}));
    EXPECT_EQ(readAll(out), expected);
}

TEST(SaveGPF, typeA00IsSavedAsA0) {
    Session s(sampleFlash());
    s.show(0);
    const std::string out = testing::testFolder() + "/one.gpf2";
    s.ws.selectPicture(1);
    s.ui.saveFiles.push_back(out);
    s.ws.mnuPopup_SaveGPF();
    const Bytes file = readAll(out);
    ASSERT_GE(file.size(), 32u);
    EXPECT_EQ(file[24], 0xA0);
    EXPECT_EQ(file[25], 0x00);
}

TEST(SaveGPF, cancellingTheDialogWritesNothing) {
    Session s(sampleFlash());
    s.ws.selectPicture(0);
    s.ui.saveFiles.push_back(std::nullopt);
    s.ws.mnuPopup_SaveGPF();
    EXPECT_TRUE(s.ws.ActionFailed);
    EXPECT_TRUE(s.ui.messages.empty());
}

TEST(SaveBMP, aTwentyFourBitPictureAsksAboutAlphaWhenNotShown) {
    for (bool keep : {false, true}) {
        Session s(sampleFlash());
        const std::string out = testing::testFolder() + "/three.bmp";
        s.ws.selectPicture(3);
        s.ui.answers.push_back(keep);
        s.ui.saveFiles.push_back(out);
        s.ws.mnuPopup_SaveBMP();
        ASSERT_EQ(s.ui.questions, std::vector<std::string>{"Save alphachannel for image?"});
        EXPECT_EQ(s.ui.fileDialogs.at(0).fileName, "0003.bmp");
        const Bytes bmp = readAll(out);
        ASSERT_EQ(bmp.size(), keep ? 54u + 8 : 54u + 8);
        EXPECT_EQ(bmp[28], keep ? 32 : 24);
        if (keep)
            EXPECT_EQ(Bytes(bmp.begin() + 54, bmp.begin() + 58), (Bytes{0x10, 0x20, 0x30, 0x80}));
        else
            EXPECT_EQ(Bytes(bmp.begin() + 54, bmp.end()), (Bytes{0, 0, 0, 0, 0, 0, 0, 0}));
    }
}

TEST(Batches, everyDecodablePictureIsWrittenUnderItsNumber) {
    Session s(sampleFlash());
    const std::string folder = testing::testFolder();
    s.ui.folders.push_back(folder + "/gpf");
    std::filesystem::create_directories(folder + "/gpf");
    s.ws.mnuPopup_SaveAllGPF();
    EXPECT_EQ(s.ui.folderTitles, std::vector<std::string>{"Choose folder for save files"});
    EXPECT_TRUE(std::filesystem::exists(folder + "/gpf/0000.gpf2"));
    EXPECT_TRUE(std::filesystem::exists(folder + "/gpf/0003.gpf2"));
    EXPECT_FALSE(std::filesystem::exists(folder + "/gpf/0002.gpf2"));  // offset 0
    EXPECT_FALSE(std::filesystem::exists(folder + "/gpf/0006.gpf2"));  // does not fit
    EXPECT_EQ(s.ui.messages.back().text, "Successfully completed");
    EXPECT_DOUBLE_EQ(s.ws.progress, 100.0);
    EXPECT_EQ(s.ws.BatchCounter, 1701);
    EXPECT_FALSE(s.ws.SingleSave);

    s.ui.folders.push_back(folder + "/bmp");
    std::filesystem::create_directories(folder + "/bmp");
    s.ui.answers.push_back(true);
    s.ws.mnuPopup_SaveAllBMP();
    const Bytes bmp = readAll(folder + "/bmp/0003.bmp");
    ASSERT_GT(bmp.size(), 28u);
    EXPECT_EQ(bmp[28], 32);  // OK to the alpha question: every 24-bit picture keeps alpha
    EXPECT_EQ(readAll(folder + "/bmp/0000.bmp")[28], 24);
    EXPECT_FALSE(s.ws.BatchKeepAlpha);
}

TEST(Batches, aCancelledFolderDoesNothing) {
    Session s(sampleFlash());
    s.ui.folders.push_back(std::nullopt);
    s.ws.mnuPopup_SaveAllBMP();
    EXPECT_TRUE(s.ui.questions.empty());
    EXPECT_TRUE(s.ui.messages.empty());
}

TEST(CopyToClipboard, takesTheExactCell) {
    Session s(sampleFlash());
    s.ws.selectPicture(0);
    EXPECT_EQ(s.ws.copyPictureCell(6), "1B01958");
    EXPECT_EQ(s.ws.copyPictureCell(7), "1B07068");
}

}  // namespace korvatek::app

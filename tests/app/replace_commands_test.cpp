// Replacing pictures and collecting the picture patch.
#include <gtest/gtest.h>

#include <filesystem>

#include "support/scripted_interface.h"
#include "app/workspace.h"
#include "containers/gpf_header.h"
#include "support/environment.h"
#include "support/flash_builder.h"

namespace korvatek::app {

using testing::FlashBuilder;
using testing::readAll;

namespace {

constexpr std::uint32_t kOld = 0x1234567;

// Picture 0: 240 x 320 uncompressed 8-bit at 0x1234567 (76800 bytes); picture 1: 16 bytes of
// 16-bit data at 0x1B07070; erased flash from 0x131FFFF for pictures that grow.
FlashBuilder replaceFlash() {
    FlashBuilder flash;
    flash.picture(0, 240, 320, 0x05, kOld, Bytes(76800, 0x49))
        .picture(1, 4, 2, 0x08, 0x1B07070, Bytes(16, 0x11))
        .picture(5, 1, 1, 0x05, 0x1B07100, Bytes{0x22});
    Bytes erased(0x100000, 0xFF);
    flash.put(0x131FFFF, erased);
    return flash;
}

// A container whose data are `length` bytes of uncompressed 8-bit pixels (width x 1).
std::string container(const std::string& name, int width, int height, std::uint8_t type, const Bytes& data) {
    Bytes file = containers::SaveGPFhead(true, width, height, std::string{static_cast<char>(type), '\0'});
    file.insert(file.end(), data.begin(), data.end());
    containers::padContainer(file);
    const std::string path = testing::testFolder() + "/" + name;
    EXPECT_TRUE(writeFile(path, file).ok());
    return path;
}

struct Session {
    ScriptedInterface ui;
    Workspace ws{ui};
    std::string tmp = testing::testFolder() + "/tmp";
    testing::ScopedEnvironment tmpVariable{"TMP", tmp};
    Session() {
        std::filesystem::create_directories(tmp);
        ui.openFiles.push_back(replaceFlash().writeTo("replace.bin"));
        ws.mnu_FileOpen();
        ui.messages.clear();
    }
    void replace(int n, const std::string& path) {
        ws.selectPicture(n);
        ws.ListView1_Click();
        ui.openFiles.push_back(path);
        ws.mnuPopup_LoadGPF();
    }
    std::vector<std::string> lines() const {
        std::vector<std::string> out;
        const std::string& text = ws.PicturePatchText;
        for (std::size_t at = 0, end; (end = text.find("\r\n", at)) != std::string::npos; at = end + 2)
            out.push_back(text.substr(at, end - at));
        return out;
    }
};

}  // namespace

TEST(Replacement, inPlaceWritesTheIndexLineAndWholeDataLines) {
    Session s;
    // 240 x 320 compressed 8-bit: a repeat of 127 white, 127 times... 33 data bytes in all
    Bytes data;
    for (int i = 0; i < 16; ++i) data.insert(data.end(), {0x7F, 0xFF});
    data.push_back(0x05);  // read as the control byte of one more group: 33 bytes consumed
    s.replace(0, container("full.gpf2", 240, 320, 0x85, data));
    ASSERT_TRUE(s.ws.PatchInProgress);
    const auto lines = s.lines();
    ASSERT_EQ(lines.size(), 8u + 3 + 1 + 3);
    EXPECT_EQ(lines[8], "");
    EXPECT_EQ(lines[9], "; ##### Picture 0 #####");
    EXPECT_EQ(lines[10], "01B01958: F000400105000000674523A1 F000400185000000674523A1");
    EXPECT_EQ(lines[11], "");
    EXPECT_EQ(lines[12].substr(0, 10), "01234567: ");
    EXPECT_EQ(lines[13].substr(0, 10), "01234577: ");
    // the third line carries 16 bytes, 15 of them beyond the data (the container's padding)
    EXPECT_EQ(lines[14], "01234587: 49494949494949494949494949494949 05000000000000000000000000000000");
    EXPECT_TRUE(s.ws.ListView1[0].replaced);
    EXPECT_FALSE(s.ws.UsedFreeSpace);
}

TEST(Replacement, equalLengthStaysInPlaceAndOneByteMoreGoesToFreeSpace) {
    Session s;
    s.replace(1, container("same.gpf2", 4, 2, 0x08, Bytes(16, 0x33)));
    EXPECT_EQ(s.lines().back().substr(0, 10), "01B07070: ");
    EXPECT_EQ(s.lines().size(), 8u + 3 + 1 + 1);  // 16 bytes: one data line

    s.replace(5, container("longer.gpf2", 2, 1, 0x05, Bytes{0x44, 0x55}));
    const auto lines = s.lines();
    EXPECT_EQ(lines[lines.size() - 3], "01B01994: 01000100050000000071B0A1 0200010005000000000032A1");
    EXPECT_EQ(lines.back(), "01320000: " + std::string(32, 'F') + " 4455" + std::string(28, '0'));
    EXPECT_TRUE(s.ws.UsedFreeSpace);
    EXPECT_EQ(s.ws.FreeSpaceStart, "1320010");
}

TEST(Replacement, aMarkedPictureIsRefusedUntilThePatchIsSaved) {
    Session s;
    const std::string same = container("same.gpf2", 4, 2, 0x08, Bytes(16, 0x33));
    s.replace(1, same);
    const std::string before = s.ws.PicturePatchText;
    s.replace(1, same);
    ASSERT_EQ(s.ui.messages.size(), 1u);
    EXPECT_EQ(s.ui.messages[0].text, "This picture is already replaced. Reboot program or complete commenced patch");
    EXPECT_EQ(s.ui.messages[0].title, "1");
    EXPECT_EQ(s.ws.PicturePatchText, before);

    // saving writes the collected text, clears every mark and ends the collecting
    const std::string out = testing::testFolder() + "/saved.vkp";
    s.ui.saveFiles.push_back(out);
    s.ws.mnuPopup_SavePatch();
    EXPECT_EQ(s.ui.fileDialogs.back().fileName, "GraphicPatch_E71.vkp");
    EXPECT_EQ(s.ui.fileDialogs.back().filter, "V_Klay Patch File(*.vkp)|*.vkp");
    EXPECT_EQ(readAll(out), bytesOf(before));
    EXPECT_FALSE(s.ws.PatchInProgress);
    EXPECT_TRUE(CheckFexist(s.ws.collectingPatchPath()));
    for (const auto& row : s.ws.ListView1) EXPECT_FALSE(row.replaced);

    // the next replacement starts a fresh patch with its own header
    s.replace(1, same);
    EXPECT_EQ(s.ws.PicturePatchText, before);
}

TEST(Replacement, discardingDropsThePatchAndItsMarks) {
    Session s;
    s.replace(1, container("same.gpf2", 4, 2, 0x08, Bytes(16, 0x33)));
    EXPECT_FALSE(CheckFexist(s.ws.collectingPatchPath()));
    s.ws.mnuPopup_DiscardPatch();
    EXPECT_FALSE(s.ws.PatchInProgress);
    EXPECT_FALSE(s.ws.ListView1[1].replaced);
    EXPECT_TRUE(CheckFexist(s.ws.collectingPatchPath()));
}

TEST(Replacement, folderTakesFourDigitNamesOnly) {
    Session s;
    const std::string folder = testing::testFolder() + "/folder";
    std::filesystem::create_directories(folder);
    container("folder/0005.gpf2", 1, 1, 0x05, Bytes{0x66});
    container("folder/5.gpf2", 1, 1, 0x05, Bytes{0x77});
    s.ui.folders.push_back(folder);
    s.ws.mnuPopup_LoadGPFfolder();
    const auto lines = s.lines();
    ASSERT_EQ(lines.size(), 8u + 5);
    EXPECT_EQ(lines[9], "; ##### Picture 5 #####");
    EXPECT_EQ(lines.back().substr(43, 2), "66");
    EXPECT_EQ(s.ui.messages.back().text, "Successfully completed");
}

TEST(Replacement, bitmapsAreEncodedIntoATemporaryContainerFirst) {
    Session s;
    // a 4 x 2 BMP of one colour, encoded for 16-bit: the container is deleted after use
    Bytes bmp = {'B', 'M', 0, 0, 0, 0, 0, 0, 0, 0, 54, 0, 0, 0, 40, 0, 0, 0, 4, 0, 0, 0, 2, 0, 0, 0, 1, 0, 24};
    bmp.resize(54, 0);
    for (int i = 0; i < 8; ++i) bmp.insert(bmp.end(), {0xFF, 0x00, 0x00});
    const std::string path = testing::testFolder() + "/blue.bmp";
    ASSERT_TRUE(writeFile(path, bmp).ok());
    s.ws.selectPicture(1);
    s.ws.ListView1_Click();
    s.ui.openFiles.push_back(path);
    s.ws.mnuPopup_LoadBMP(0x88);
    EXPECT_EQ(s.ui.fileDialogs.back().fileName, "0001.bmp");
    EXPECT_TRUE(s.ws.ListView1[1].replaced);
    EXPECT_FALSE(s.ws.NoDialog);
    EXPECT_TRUE(CheckFexist(s.tmp + "/temp.gpf2"));
    EXPECT_NE(s.ws.PicturePatchText.find(" 04000200880000007070B0A1"), std::string::npos);

    // a conversion that fails clears the flag, so the next replacement asks again
    s.ws.selectPicture(5);
    s.ui.openFiles.push_back(testing::testFolder() + "/missing.bmp");
    s.ws.mnuPopup_LoadBMP(0x85);
    EXPECT_FALSE(s.ws.NoDialog);
    EXPECT_FALSE(s.ws.ListView1[5].replaced);
}

}  // namespace korvatek::app

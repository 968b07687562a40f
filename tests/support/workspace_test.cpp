#include "support/workspace_test.h"

#include <filesystem>

#include "codec/bmp_file.h"
#include "containers/gpf_header.h"
#include "demo/demo_flash.h"

namespace korvatek::testing {

FlashBuilder sampleFlash() {
    constexpr std::uint32_t data = 0x1B07068;
    FlashBuilder flash;
    flash.picture(kPlain16, 3, 2, 0x08, data, {0x1F, 0, 0xE0, 0x07, 0, 0xF8, 0, 0xE0, 0xFF, 0xFF, 0, 0, 0xAB, 0xCD})
        .picture(kUnknownCode, 1, 1, 0x0A, data + 0x100, {0x11, 0x22})
        .picture(kNoData, 4, 4, 0x85, 0)
        .picture(kPacked24, 2, 1, 0x8A, data + 0x200, {0x02, 0x10, 0x20, 0x30, 0x80})
        .picture(kOneByte, 1, 1, 0x05, data + 0x400, {0x22})
        .picture(kTooWide, 250, 1, 0x05, data + 0x500, Bytes(250, 3))
        .put(0x131FFFF, Bytes(0x100000, 0xFF));
    return flash;
}

// In the running test's own folder: tests run side by side (ctest -j), and one file shared by
// all of them would be written by one while another reads it.
std::string demoFlashPath() {
    static const Bytes demo = firmware::makeDemoFlash();
    const std::string path = testFolder() + "/demo.bin";
    if (!std::filesystem::exists(app::toPath(path))) {
        EXPECT_TRUE(app::writeFile(path, demo).ok());
    }
    return path;
}

void WorkspaceTest::open(const std::string& path) {
    ui.openFiles.push_back(path);
    ws.mnu_FileOpen();
    forget();
}

void WorkspaceTest::openDemo(int font) {
    open(demoFlashPath());
    ws.Ftype_Click(font);
    forget();
}

void WorkspaceTest::show(int row) {
    ws.selectPicture(row);
    ws.ListView1_Click();
}

void WorkspaceTest::forget() {
    ui.messages.clear();
    ui.questions.clear();
    ui.fileDialogs.clear();
    ui.folderTitles.clear();
    ui.prompts.clear();
    ui.statusTables.clear();
}

std::vector<std::string> WorkspaceTest::texts(std::initializer_list<settings::MessageKey> keys) const {
    std::vector<std::string> all;
    for (const auto key : keys) all.push_back(text(key));
    return all;
}

std::string WorkspaceTest::replacing(const std::string& name) const {
    return text(settings::MessageKey::MsgFile) + name + text(settings::MessageKey::MsgFileExists);
}

std::string WorkspaceTest::container(const std::string& name, bool v2, int width, int height, std::uint8_t type,
                                     const Bytes& data) {
    Bytes bytes = containers::SaveGPFhead(v2, width, height, std::string{static_cast<char>(type), '\0'});
    bytes.insert(bytes.end(), data.begin(), data.end());
    containers::padContainer(bytes);
    const std::string path = file(name);
    EXPECT_TRUE(app::writeFile(path, bytes).ok()) << path;
    return path;
}

std::string WorkspaceTest::bitmap(const std::string& name, int width, int height, Ink ink) {
    codec::PixelCanvas canvas;
    canvas.metaWidth = width;
    canvas.metaHeight = height;
    canvas.metaDepth = 24;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const std::uint8_t v = x >= ink.x0 && x < ink.x1 && y >= ink.y0 && y < ink.y1 ? 0 : 255;
            canvas.at(x, y) = {v, v, v, 0};
        }
    const std::string path = file(name);
    EXPECT_TRUE(app::writeFile(path, *codec::encodeBmp(canvas, 24)).ok()) << path;
    return path;
}

}  // namespace korvatek::testing

#pragma once
// The fixture of the window's command tests: a Workspace answering from a ScriptedInterface,
// a folder of the test's own and the files the commands are given there. The commands keep
// their temporary files in the process's own private folder (app::temporaryPath).
// The commands' bytes are the edit operations' and are judged by the command-line scripts;
// these tests judge what the window adds: dialogs, questions, marks and state.

#include <gtest/gtest.h>

#include <cstdint>
#include <initializer_list>
#include <string>
#include <vector>

#include "app/workspace.h"
#include "support/flash_builder.h"
#include "support/scripted_interface.h"

namespace korvatek::app {
inline void PrintTo(const ScriptedInterface::Shown& s, std::ostream* out) {
    *out << '"' << s.text << "\" titled \"" << s.title << '"';
}
}  // namespace korvatek::app

namespace korvatek::testing {

// Pictures of the sample fullflash, and the erased flash where grown replacements go.
enum SamplePicture {
    kPlain16 = 0,     // 3 x 2 uncompressed 16-bit, 12 data bytes
    kUnknownCode = 1, // type 0x0A: decoded with the depth the previous picture left
    kNoData = 2,      // data offset 0
    kPacked24 = 3,    // 2 x 1 compressed 24-bit: saving it as BMP asks about alpha
    kOneByte = 5,     // 1 x 1 uncompressed 8-bit
    kTooWide = 6,     // 250 x 1: runs outside the picture area
};
FlashBuilder sampleFlash();

// The demonstration fullflash, in the running test's own folder.
std::string demoFlashPath();

// The black part of a test bitmap: [x0, x1) x [y0, y1).
struct Ink {
    int x0 = 0, y0 = 0, x1 = 0, y1 = 0;
};

class WorkspaceTest : public ::testing::Test {
protected:
    // Opens the file through File > Open and forgets what that showed and asked.
    void open(const std::string& path);
    void openSample() { open(sampleFlash().writeTo("sample.bin")); }
    void openDemo(int font);              // and chooses the font
    void show(int row);                   // a click on a row of the picture list
    void forget();                        // drops what the interface recorded so far

    std::string file(const std::string& name) const { return folder + "/" + name; }
    const std::string& text(settings::MessageKey key) const { return ws.msg(key); }
    std::vector<std::string> texts(std::initializer_list<settings::MessageKey> keys) const;
    // The notice, or the question, about an output that is already there.
    std::string replacing(const std::string& name) const;
    std::vector<std::string> shown() const { return ui.messageTexts(); }
    using Shown = app::ScriptedInterface::Shown;
    const std::string& proposed() const { return ui.fileDialogs.back().fileName; }

    // Files in the test folder: a container of the given version, size, type code and data,
    // and a white bitmap with black ink where asked.
    std::string container(const std::string& name, bool v2, int width, int height, std::uint8_t type,
                          const Bytes& data);
    std::string bitmap(const std::string& name, int width, int height, Ink ink = {});

    const std::string folder = testFolder();
    app::ScriptedInterface ui;
    app::Workspace ws{ui};
};

template <class Param>
class WorkspaceTestWithParam : public WorkspaceTest, public ::testing::WithParamInterface<Param> {};

}  // namespace korvatek::testing

// Cancel between the items of a batch: the files and replacements made before it stay, whole,
// the message says how far the batch got instead of the success, and an interface that never
// cancels (the command line's) sees every batch run as it always has.
#include <filesystem>
#include <map>

#include "support/workspace_test.h"

namespace korvatek::testing {
namespace {

using enum settings::MessageKey;

// Answers "cancelled" the stopAt-th time it is asked (never when stopAt is 0).
class Stopper : public app::ScriptedInterface {
public:
    int stopAt = 0;
    int asked = 0;
    bool cancelRequested() override { return ++asked == stopAt; }
};

class BatchCancel : public WorkspaceTest {
protected:
    void openInto(app::Workspace& w, app::ScriptedInterface& answers, const std::string& path) {
        answers.openFiles.push_back(path);
        w.mnu_FileOpen();
        answers.messages.clear();
    }
    // The files of a folder by name, with their bytes.
    std::map<std::string, Bytes> filesIn(const std::string& dir) const {
        std::map<std::string, Bytes> files;
        for (const auto& entry : std::filesystem::directory_iterator(dir))
            files[entry.path().filename().string()] = readAll(entry.path().string());
        return files;
    }
    std::string folderNamed(const std::string& name) {
        std::filesystem::create_directories(file(name));
        return file(name);
    }
    Stopper stopper;
    app::Workspace stopping{stopper};
};

// The sample's table has 1701 rows, pictures from 0 to 6; the walk is asked before each row but
// the first.
TEST_F(BatchCancel, savingAllStopsBetweenPicturesKeepingExactlyTheFilesBefore) {
    const std::string flash = sampleFlash().writeTo("sample.bin");
    openInto(ws, ui, flash);
    openInto(stopping, stopper, flash);
    for (const bool bmp : {false, true}) {
        const std::string full = folderNamed(bmp ? "full-bmp" : "full-gpf");
        const std::string never = folderNamed(bmp ? "never-bmp" : "never-gpf");
        const std::string stopped = folderNamed(bmp ? "stopped-bmp" : "stopped-gpf");
        const auto saveAll = [bmp](app::Workspace& w) { bmp ? w.mnuPopup_SaveAllBMP() : w.mnuPopup_SaveAllGPF(); };
        ui.messages.clear();
        ui.folders = {full};
        saveAll(ws);
        // Never cancelled: the same files and messages as an interface that cannot cancel.
        stopper = Stopper{};
        stopper.folders = {never};
        saveAll(stopping);
        EXPECT_EQ(stopper.asked, 1700);
        EXPECT_EQ(stopper.messages, ui.messages);
        EXPECT_EQ(filesIn(never), filesIn(full));
        EXPECT_FALSE(stopping.ActionFailed);

        stopper = Stopper{};
        stopper.stopAt = 3;
        stopper.folders = {stopped};
        stopper.answers = {true};   // keep the alpha channel: forgotten after the cancel too
        saveAll(stopping);
        std::map<std::string, Bytes> before = filesIn(full);
        std::erase_if(before, [](const auto& f) { return f.first >= "0003"; });
        EXPECT_EQ(filesIn(stopped), before);
        // Row 2 has no data and says so, as in the full run; the success is not claimed.
        EXPECT_EQ(stopper.messageTexts(),
                  (std::vector<std::string>{text(MsgDataOffsetZero), "Cancelled after 3 of 1701 pictures."}));
        EXPECT_TRUE(stopping.ActionFailed);
        EXPECT_FALSE(stopping.BatchKeepAlpha);
    }
}

TEST_F(BatchCancel, glyphBatchesStopBetweenGlyphsAndWholeResultToolsWriteNothing) {
    openInto(ws, ui, demoFlashPath());
    ws.Ftype_Click(0);
    openInto(stopping, stopper, demoFlashPath());
    stopping.Ftype_Click(0);
    const int glyphs = static_cast<int>(stopping.ListView2.size());
    ui.folders = {folderNamed("full")};
    ws.mnuPopup2_SaveAllBMP();
    stopper.stopAt = 5;
    stopper.folders = {folderNamed("stopped")};
    stopping.mnuPopup2_SaveAllBMP();
    std::map<std::string, Bytes> before = filesIn(file("full"));
    std::erase_if(before, [](const auto& f) { return f.first >= "0006"; });   // codes 1 to 5
    EXPECT_EQ(filesIn(file("stopped")), before);
    EXPECT_EQ(stopper.messageTexts(), std::vector<std::string>{"Cancelled after 5 of " + std::to_string(glyphs) + " glyphs."});
    EXPECT_FALSE(stopping.GlyphShown);

    // Make and the font rebuild write one whole result at their end: stopped, nothing.
    stopping.ShowReplaceMessage = false;
    stopper = Stopper{};
    stopper.stopAt = 2;
    stopper.folders = {folderNamed("source"), folderNamed("made")};
    stopping.mnu_ToolsMake();
    EXPECT_TRUE(filesIn(file("made")).empty());
    EXPECT_EQ(stopper.messageTexts(), texts({MsgCancelledNothingWritten}));

    bitmap("source/0001.bmp", 4, 4, {0, 0, 2, 2});
    stopper = Stopper{};
    stopper.stopAt = 1;
    stopper.folders = {file("source")};
    stopping.mnuPopup2_MakeF();
    EXPECT_EQ(stopper.messageTexts(), texts({MsgCancelledNothingWritten}));
    EXPECT_TRUE(stopper.fileDialogs.empty());
    EXPECT_TRUE(stopping.ActionFailed);
}

}  // namespace
}  // namespace korvatek::testing

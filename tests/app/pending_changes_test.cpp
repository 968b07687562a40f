// Taking a pending change back: the patch left must be the one a fresh session doing the
// remaining changes would write (moved pictures close up in the free space), undo and redo
// must walk back and forth through exactly the same patches, and the journal must bring a
// killed session's changes back as they were.
#include <csignal>
#include <filesystem>
#include <functional>

#include "edit/pixel_edit.h"
#include "edit/picture_files.h"
#include "fonts/font_patch.h"
#include "support/workspace_test.h"

namespace korvatek::testing {
namespace {

using namespace settings;
using Kind = edit::PicturePlacement::Kind;

// A picture's replacement: a speckled block that no run-length coding shrinks, big enough to
// move when `grown`, else one pixel.
Bytes blockBmp(bool grown, edit::Colour colour) {
    const int side = grown ? 48 : 1;
    edit::PixelGrid grid(side, side, colour);
    for (int y = 0; y < side; ++y)
        for (int x = 0; x < side; ++x) grid.set(x, y, colour ^ static_cast<edit::Colour>((x * 37 + y * 91) & 0xFF));
    return *edit::gridBmp(grid);
}

struct Change {
    int picture;
    bool grown;
    edit::Colour colour;
};

void replace(app::Workspace& ws, const Change& change) {
    ws.selectPicture(change.picture);
    ws.ListView1_Click();
    ws.applyEditedPicture(blockBmp(change.grown, change.colour), 0x8A);
}

class PendingChanges : public WorkspaceTest {
protected:
    // The picture patch a fresh session writes for these changes, in this order.
    std::string freshPatch(const std::vector<Change>& changes) {
        app::ScriptedInterface answers;
        app::Workspace session(answers);
        answers.openFiles.push_back(demoFlashPath());
        session.mnu_FileOpen();
        for (const Change& c : changes) replace(session, c);
        return session.PicturePatchText;
    }
    std::vector<int> pendingNumbers() const {
        std::vector<int> numbers;
        for (const auto& p : ws.pendingPictures()) numbers.push_back(p.record.number);
        return numbers;
    }
};

const Change kA{1, true, 0xFF112233};
const Change kB{2, true, 0xFF445566};
const Change kC{144, false, 0xFF778899};
const Change kD{145, true, 0xFFAABBCC};

TEST_F(PendingChanges, removingOneWritesWhatAFreshSessionWouldAndUndoRedoWalkThroughTheSamePatches) {
    open(demoFlashPath());
    for (const Change& c : {kA, kB, kC, kD}) replace(ws, c);
    ASSERT_EQ(pendingNumbers(), (std::vector<int>{1, 2, 144, 145}));
    const std::string all = ws.PicturePatchText;
    ASSERT_EQ(all, freshPatch({kA, kB, kC, kD}));
    EXPECT_EQ(ws.pendingPictures()[0].kind, Kind::Moved);
    EXPECT_EQ(ws.pendingPictures()[2].kind, Kind::InPlace);
    const auto movedB = ws.pendingPictures()[1].address;

    // The first moved picture goes: the others move up into its room.
    ASSERT_TRUE(ws.removePendingPicture(1));
    EXPECT_EQ(ws.PicturePatchText, freshPatch({kB, kC, kD}));
    EXPECT_LT(ws.pendingPictures()[0].address, movedB);
    EXPECT_FALSE(ws.ListView1[1].replaced);
    EXPECT_TRUE(ws.ListView1[2].replaced);
    const std::string withoutA = ws.PicturePatchText;

    ASSERT_TRUE(ws.removePendingPicture(144));
    EXPECT_EQ(ws.PicturePatchText, freshPatch({kB, kD}));
    EXPECT_FALSE(ws.removePendingPicture(144)) << "not pending any more";

    ASSERT_TRUE(ws.undoPending());
    EXPECT_EQ(ws.PicturePatchText, withoutA);
    ASSERT_TRUE(ws.undoPending());
    EXPECT_EQ(ws.PicturePatchText, all);
    EXPECT_EQ(pendingNumbers(), (std::vector<int>{1, 2, 144, 145})) << "back where it was";
    ASSERT_TRUE(ws.redoPending());
    EXPECT_EQ(ws.PicturePatchText, withoutA);

    // A new change ends the redo; the picture taken back can be replaced again.
    replace(ws, {1, false, 0xFF000000});
    EXPECT_FALSE(ws.ActionFailed);
    EXPECT_FALSE(ws.canRedoPending());
    EXPECT_EQ(ws.PicturePatchText, freshPatch({kB, kC, kD, {1, false, 0xFF000000}}));

    // Everything taken back: no patch is pending, and the search starts where it began.
    while (!ws.pendingPictures().empty()) ws.removePendingPicture(ws.pendingPictures().front().record.number);
    EXPECT_FALSE(ws.PatchInProgress);
    EXPECT_FALSE(ws.mnuPopup_SavePatchEnabled());
    EXPECT_EQ(ws.FreeSpaceStart, "1320000");
}

TEST_F(PendingChanges, aDiscardCanBeUndoneButAWrittenPatchCannot) {
    open(demoFlashPath());
    replace(ws, kA);
    replace(ws, kB);
    const std::string both = ws.PicturePatchText;
    ws.mnuPopup_DiscardPatch();
    EXPECT_FALSE(ws.PatchInProgress);
    ASSERT_TRUE(ws.undoPending());
    EXPECT_EQ(ws.PicturePatchText, both);
    EXPECT_TRUE(ws.ListView1[2].replaced);
    ASSERT_TRUE(ws.redoPending());
    EXPECT_FALSE(ws.PatchInProgress);
    EXPECT_NE(ws.FreeSpaceStart, "1320000") << "a discard does not give the free space back";

    ws.undoPending();
    ui.saveFiles.push_back(file("written.vkp"));
    ws.mnuPopup_SavePatch();
    ASSERT_TRUE(std::filesystem::exists(file("written.vkp")));
    EXPECT_FALSE(ws.canUndoPending());
    EXPECT_TRUE(ws.pendingPictures().empty());
}

TEST_F(PendingChanges, glyphsAreTakenBackOneByOne) {
    openDemo(0);
    const Bytes ink = *edit::gridBmp(edit::PixelGrid(3, 5, edit::kInk));
    for (int row : {64, 65, 66}) {
        ws.selectGlyph(row);
        ws.applyEditedGlyph(ink);
    }
    ASSERT_EQ(ws.collectedGlyphs.size(), 3u);
    ASSERT_TRUE(ws.removePendingGlyph(66));
    ASSERT_EQ(ws.collectedGlyphs.size(), 2u);
    EXPECT_EQ(ws.collectedGlyphs[1].number, 67);
    EXPECT_FALSE(ws.ListView2[65].replaced);
    EXPECT_TRUE(ws.ListView2[66].replaced);
    ws.removePendingGlyph(65);
    ws.removePendingGlyph(67);
    EXPECT_FALSE(ws.mnuPopup2_SavePatchEnabled());
    ws.undoPending();
    EXPECT_TRUE(ws.mnuPopup2_SavePatchEnabled());
    EXPECT_EQ(ws.collectedGlyphs.size(), 1u);
}

TEST_F(PendingChanges, theJournalBringsAKilledSessionsChangesBackExactly) {
    ws.journalPath = file("pending.journal");
    open(demoFlashPath());
    replace(ws, kA);
    replace(ws, kC);
    replace(ws, kB);
    ws.removePendingPicture(144);
    replace(ws, kD);
    ws.Ftype_Click(0);
    ws.selectGlyph(64);
    ws.applyEditedGlyph(*edit::gridBmp(edit::PixelGrid(3, 5, edit::kInk)));
    const auto journalBytes = app::readFile(ws.journalPath, 1u << 26);
    ASSERT_TRUE(journalBytes.ok());

    // The session is killed here; the next start finds the journal.
    const auto restoreInto = [&](app::Workspace& next, app::ScriptedInterface& answers) {
        next.journalPath = ws.journalPath;
        const auto journal = next.readPendingJournal();
        if (!journal) return false;
        const bool restored = next.restorePendingJournal(*journal);
        (void)answers;
        return restored;
    };
    {
        app::ScriptedInterface answers;
        app::Workspace next(answers);
        ASSERT_TRUE(restoreInto(next, answers));
        EXPECT_EQ(next.PicturePatchText, ws.PicturePatchText);
        EXPECT_EQ(next.FreeSpaceStart, ws.FreeSpaceStart);
        EXPECT_TRUE(next.ListView1[145].replaced);
        ASSERT_EQ(next.collectedGlyphs.size(), 1u);
        EXPECT_EQ(fonts::glyphPatchText(0, next.FirmwareId, next.collectedGlyphs, next.firmware->bytes()),
                  fonts::glyphPatchText(0, ws.FirmwareId, ws.collectedGlyphs, ws.firmware->bytes()));
    }

    // Killed in the middle of adding a line: that change is lost, the ones before are not.
    const std::string text(journalBytes->begin(), journalBytes->end());
    ASSERT_TRUE(app::writeFile(ws.journalPath, text.substr(0, text.size() - 7)).ok());
    {
        app::ScriptedInterface answers;
        app::Workspace next(answers);
        ASSERT_TRUE(restoreInto(next, answers));
        EXPECT_EQ(next.PicturePatchText, freshPatch({kA, kB, kD}));
        EXPECT_TRUE(next.collectedGlyphs.empty());
    }

    // The fullflash changed since: nothing is restored, and the person is told.
    ASSERT_TRUE(app::writeFile(ws.journalPath, text).ok());
    auto changed = *app::readFile(demoFlashPath(), 1u << 26);
    changed[0x100] ^= 0x01;
    ASSERT_TRUE(app::writeFile(demoFlashPath(), changed).ok());
    {
        app::ScriptedInterface answers;
        app::Workspace next(answers);
        EXPECT_FALSE(restoreInto(next, answers));
        EXPECT_FALSE(next.PatchInProgress);
        ASSERT_FALSE(answers.messages.empty());
        EXPECT_EQ(answers.messages.back().text, next.msg(MessageKey::MsgJournalFlashChanged) + demoFlashPath());
    }

    // Nothing pending: no journal.
    ws.mnuPopup_DiscardPatch();
    ws.mnuPopup2_DiscardPatch();
    EXPECT_FALSE(std::filesystem::exists(ws.journalPath));
    EXPECT_FALSE(app::readJournal("not a journal\n").has_value());
}


#if GTEST_HAS_DEATH_TEST && !defined(_WIN32)
// A real kill: the changes made before it come back in the next process.
TEST_F(PendingChanges, aSessionKilledWithSigkillLosesNothing) {
    const std::string journal = file("killed.journal");
    EXPECT_EXIT(
        {
            ws.journalPath = journal;
            open(demoFlashPath());
            for (const Change& c : {kA, kC, kD}) replace(ws, c);
            std::raise(SIGKILL);
        },
        ::testing::KilledBySignal(SIGKILL), "");
    app::ScriptedInterface answers;
    app::Workspace next(answers);
    next.journalPath = journal;
    const auto found = next.readPendingJournal();
    ASSERT_TRUE(found.has_value());
    ASSERT_TRUE(next.restorePendingJournal(*found));
    EXPECT_EQ(next.PicturePatchText, freshPatch({kA, kC, kD}));
}
#endif

}  // namespace
}  // namespace korvatek::testing

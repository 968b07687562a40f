// Replacing glyphs from bitmaps and writing the glyph patch. The bitmap is trimmed to its ink,
// checked against the room the firmware has for the glyph, encoded, and collected until the
// patch is saved; the row is marked "*".
#include "base/hex_text.h"
#include "app/batch_cancel.h"
#include "app/workspace.h"
#include "edit/font_edits.h"
#include "fonts/font_table.h"
#include "fonts/glyph_bitmap.h"

namespace korvatek::app {

using settings::MessageKey;

namespace {

bool isMarked(const fonts::GlyphRecord& row) { return row.replaced; }

}  // namespace

void Workspace::mnuPopup2_LoadBMP() {
    const fonts::GlyphRecord* row = selectedGlyph();
    if (row == nullptr) return;
    ActionFailed = false;
    const double number = row->code;
    if (isMarked(*row)) {
        showMessage(msg(MessageKey::MsgAlreadyReplaced), signedText(static_cast<std::int64_t>(number)));
        ActionFailed = true;
        return;
    }
    std::string path = row->codeText() + ".bmp";
    OSdialog(ActionFailed, "BitMap File (*.bmp)|*.bmp", "BMP", path, false);
    if (ActionFailed) return;
    if (CheckFexist(path)) {
        showMessage(msg(MessageKey::MsgFileNotExist));
        ActionFailed = true;
        return;
    }
    PresetPath = path;
    CurrentGlyphNumber = number;
    ReplaceGlyphFromBMP();
}

void Workspace::mnuPopup2_LoadBMPfolder() {
    if (ListView2.empty()) return;
    const std::string folder = fBrowseForFolder(msg(MessageKey::MsgChooseOpenFolder));
    if (folder.empty()) return;
    const int last = static_cast<int>(ListView2.size());
    for (int n = 1; n <= last; ++n) {
        // The glyphs already collected stay in the glyph patch.
        if (n > 1 && batchCancelled(*this, n - 1, last, MessageKey::MsgCancelledGlyphs)) return;
        const std::string path = joinPath(folder, zeroPadded(n, 4) + ".bmp");
        if (!CheckFexist(path)) {
            if (isMarked(ListView2[static_cast<std::size_t>(n - 1)])) {
                showMessage(msg(MessageKey::MsgAlreadyReplaced), signedText(n));
            } else {
                PresetPath = path;
                CurrentGlyphNumber = n;
                ReplaceGlyphFromBMP();
            }
        }
        setProgress(static_cast<double>(n) / last * 100.0);
    }
    showSuccess();
}

void Workspace::ReplaceGlyphFromBMP() {
    ActionFailed = false;
    const int index = static_cast<int>(CurrentGlyphNumber) - 1;
    if (!firmware || index < 0 || index >= static_cast<int>(ListView2.size())) return;
    const auto file = readFile(PresetPath, kMaxPictureFileSize);
    if (!file) return fail(file.error());
    replaceGlyph(*file);
}

void Workspace::applyEditedGlyph(ByteView bmp) {
    const fonts::GlyphRecord* row = selectedGlyph();
    if (row == nullptr || !firmware) return;
    ActionFailed = false;
    // The same refusal as for a BMP loaded from the menu: one replacement per glyph and patch.
    if (isMarked(*row)) {
        showMessage(msg(MessageKey::MsgAlreadyReplaced), signedText(row->code));
        ActionFailed = true;
        return;
    }
    CurrentGlyphNumber = row->code;
    replaceGlyph(bmp);
}

void Workspace::replaceGlyph(ByteView bmp) {
    const int index = static_cast<int>(CurrentGlyphNumber) - 1;
    const edit::GlyphReplacement replaced = edit::glyphFromBmp(bmp, ListView2, static_cast<std::size_t>(index), glyphGrid);
    if (replaced.sized) GlyphShown = true;
    if (replaced.drawn) preview = Preview{Preview::Source::Glyph, replaced.loadedWidth, replaced.loadedHeight};
    if (replaced.tooBig) {
        showMessage(edit::glyphTooBigText(static_cast<int>(CurrentGlyphNumber)));
        ActionFailed = true;
        return;
    }
    if (replaced.error) return fail(*replaced.error);

    if (!GlyphPatchInProgress) {
        GlyphPatchInProgress = true;
        GlyphPatchFont = FtypeIndex;
        collectedGlyphs.clear();
    }
    ReverseByteOrder = false;
    fonts::CollectedGlyph glyph = *replaced.glyph;
    glyph.number = static_cast<int>(CurrentGlyphNumber);
    rememberStep(PendingStep::Kind::AddGlyph, collectedGlyphs.size(), {}, {glyph});
    collectedGlyphs.push_back(glyph);
    mirrorGlyphFiles();
    ListView2[static_cast<std::size_t>(index)].replaced = true;
    journalAppend(journalLine(GlyphPatchFont, glyph));
    ++m_pendingGeneration;
}

void Workspace::mirrorGlyphFiles() {
    // The two collecting files in the temporary folder mirror what is collected.
    Bytes data;
    Bytes records;
    for (const auto& g : collectedGlyphs) {
        data.insert(data.end(), g.bitmap.begin(), g.bitmap.end());
        const Bytes record = fonts::glyphRecordBytes(g);
        records.insert(records.end(), record.begin(), record.end());
    }
    (void)writeFile(temporaryPath("/Korvatek.temp"), data);
    (void)writeFile(temporaryPath("/Korvatek_2.temp"), records);
}

void Workspace::mnuPopup2_SavePatch() {
    if (!GlyphPatchInProgress || !firmware) return;
    ActionFailed = false;
    std::string target = "Font" + hexText(static_cast<std::uint64_t>(GlyphPatchFont)) + "_" + FirmwareId + ".vkp";
    OSdialog(ActionFailed, "V_Klay Patch File(*.vkp)|*.vkp", "VKP", target, true);
    if (ActionFailed) return;  // the patch stays pending
    if (!confirmReplace(target)) {
        ActionFailed = true;
        return;
    }
    const std::string text = fonts::glyphPatchText(GlyphPatchFont, FirmwareId, collectedGlyphs, firmware->bytes());
    if (!writeOutput(target, bytesOf(text))) return;
    mnuPopup2_DiscardPatch();
    // Written: no step of it can be taken back.
    forgetSteps(false);
    showSuccess();
}

void Workspace::mnuPopup2_DiscardPatch() {
    if (!collectedGlyphs.empty()) {
        rememberStep(PendingStep::Kind::DropGlyphs, 0, {}, collectedGlyphs);
        collectedGlyphs.clear();
        pendingChanged(true);
    }
    GlyphPatchInProgress = false;
    collectedGlyphs.clear();
    deleteFile(temporaryPath("/Korvatek.temp"));
    deleteFile(temporaryPath("/Korvatek_2.temp"));
    for (auto& row : ListView2) row.replaced = false;
}

}  // namespace korvatek::app

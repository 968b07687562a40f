// "Compare Font..": the selected font rebuilt from a folder of bitmaps named like the glyph
// batch save names them, written as one V_Klay patch.
#include "base/hex_text.h"
#include "app/workspace.h"
#include "edit/font_edits.h"

namespace korvatek::app {

using settings::MessageKey;

void Workspace::mnuPopup2_MakeF() {
    ActionFailed = true;  // a font without glyph rows cannot be rebuilt
    if (!firmware || FtypeIndex < 0 || ListView2.empty()) return;
    ActionFailed = false;
    const std::string folder = fBrowseForFolder(msg(MessageKey::MsgChooseOpenFolder));
    if (folder.empty()) return;

    edit::FontRebuildInput input;
    input.image = firmware->bytes();
    input.fonts = &Ftype;
    input.fontIndex = static_cast<std::size_t>(FtypeIndex);
    input.rows = &ListView2;
    input.fontAreaOffset = fontAreaOffsetValue();
    // The bar moves while the bitmaps are read; the Workspace's own progress stays as it was.
    input.progress = [this](double percent) { ui.setProgress(percent); };
    bool cancelled = false;
    input.stop = [this, &cancelled] { return cancelled = ui.cancelRequested(); };
    const auto rebuiltFont = edit::rebuildFontFromFolder(input, folder, glyphGrid);
    if (cancelled) {
        showMessage(msg(MessageKey::MsgCancelledNothingWritten));
        ActionFailed = true;
        return;
    }
    if (!rebuiltFont) return fail(rebuiltFont.error());
    const fonts::RebuildResult& rebuilt = *rebuiltFont;
    using Outcome = fonts::RebuildResult::Outcome;
    if (rebuilt.outcome == Outcome::NoRoom) {
        const std::string text = settings::fillIn(msg(MessageKey::MsgFontNoRoom), "%1", std::to_string(rebuilt.needed));
        showMessage(settings::fillIn(text, "%2", std::to_string(rebuilt.available)));
        ActionFailed = true;
        return;
    }
    if (rebuilt.outcome == Outcome::OutsideImage) {
        showMessage(msg(MessageKey::MsgGlyphsOutside) + FontAreaOffset);
        ActionFailed = true;
        return;
    }
    if (rebuilt.outcome == Outcome::Unreachable) {
        showMessage(msg(MessageKey::MsgFontReference) + zeroPadded(rebuilt.unreachableGlyph, 4));
        ActionFailed = true;
        return;
    }
    showMessage(msg(MessageKey::MsgGlyphsChanged) + std::to_string(rebuilt.changed));

    const std::string text = edit::rebuiltFontPatch(FtypeIndex, FirmwareId, rebuilt);

    std::string target = "Font" + hexText(static_cast<std::uint64_t>(FtypeIndex)) + "_" + FirmwareId + ".vkp";
    OSdialog(ActionFailed, "V_Klay Patch File(*.vkp)|*.vkp", "VKP", target, true);
    if (ActionFailed) return;
    if (!confirmReplace(target)) {
        ActionFailed = true;
        return;
    }
    if (writeOutput(target, bytesOf(text))) showSuccess();
}

}  // namespace korvatek::app

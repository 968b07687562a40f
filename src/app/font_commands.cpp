// The Fonts tab: reading a font's glyph table, showing and saving glyphs, the font size patch.
#include "base/hex_text.h"
#include "app/batch_cancel.h"
#include "app/workspace.h"
#include "codec/bmp_file.h"
#include "fonts/font_table.h"
#include "edit/font_edits.h"

namespace korvatek::app {

using settings::MessageKey;

const fonts::GlyphRecord* Workspace::selectedGlyph() const {
    if (ListView2Selected < 0 || ListView2Selected >= static_cast<int>(ListView2.size())) return nullptr;
    return &ListView2[static_cast<std::size_t>(ListView2Selected)];
}

std::int64_t Workspace::fontAreaOffsetValue() const { return static_cast<std::int64_t>(valDecimal(FontAreaOffset)); }

void Workspace::Ftype_Click(int index) {
    if (!firmware || index < 0 || index >= static_cast<int>(Ftype.size())) return;
    FtypeIndex = index;
    ReverseByteOrder = true;
    ListView2.clear();
    ListView2Selected = -1;
    ByteReader flash(firmware->bytes());
    const auto read = fonts::FOTload(flash, Ftype[static_cast<std::size_t>(index)].descriptorOffset,
                                     fontAreaOffsetValue(), index == 0, [this](double p) { setProgress(p); });
    ListView2 = read.table.rows;
    LastGlyphIndex = read.table.lastIndex;
    setProgress(100);
    if (read.tooLong || read.table.lastIndex < 0) {
        showMessage(msg(MessageKey::MsgFontTableDamaged) + "0x" + hexText(read.table.start) + " - 0x" +
                    hexText(read.table.end));
    } else if (read.table.outsideImage > 0) {
        showMessage(msg(MessageKey::MsgGlyphsOutside) + std::to_string(read.table.outsideImage));
    }
}

void Workspace::selectGlyph(int row) {
    if (row >= 0 && row < static_cast<int>(ListView2.size())) ListView2Selected = row;
}

void Workspace::ListView2_Click() { LoadFont(); }

void Workspace::LoadFont() {
    const fonts::GlyphRecord* row = selectedGlyph();
    if (row == nullptr || !firmware) return;
    ActionFailed = false;
    const edit::ShownGlyph shown = edit::drawFlashGlyph(firmware->bytes(), *row, glyphGrid);
    PICinfo = shown.information;
    preview = Preview{Preview::Source::Glyph, shown.width, shown.height};
    if (!shown.drawn) fail(shown.drawn.error());
}

std::optional<std::string> Workspace::copyGlyphCell(int column) const {
    const fonts::GlyphRecord* row = selectedGlyph();
    if (row == nullptr || column < 1 || column > 10) return std::nullopt;
    return fonts::glyphCellText(*row, column);
}

void Workspace::mnuPopup2_SaveBMP() {
    if (selectedGlyph() == nullptr) return;
    LoadFont();
    if (ActionFailed) return;
    SingleSave = true;
    GlyphShown = true;
    SaveBMP();
    SingleSave = false;
    if (!ActionFailed) showSuccess();
}

void Workspace::mnuPopup2_SaveAllBMP() {
    if (ListView2.empty()) return;
    const std::string folder = fBrowseForFolder(msg(MessageKey::MsgChooseSaveFolder));
    if (folder.empty()) return;
    BmpOutputFolder = folder;
    const int last = static_cast<int>(ListView2.size()) - 1;
    for (int n = 0; n <= last; ++n) {
        if (n > 0 && batchCancelled(*this, n, last + 1, MessageKey::MsgCancelledGlyphs)) {
            GlyphShown = false;
            return;
        }
        BatchCounter = n;
        selectGlyph(n);
        LoadFont();
        if (!ActionFailed) {
            SingleSave = false;
            GlyphShown = true;
            SaveBMP();
        }
        ActionFailed = false;
        setProgress(last > 0 ? static_cast<float>(n) / last * 100.0f : 100.0);
    }
    BatchCounter = last + 1;
    GlyphShown = false;
    showSuccess();
}

void Workspace::mnuPopup2_ChangeFSize() {
    if (!firmware || FtypeIndex < 0 || FtypeIndex >= static_cast<int>(Ftype.size())) return;
    ActionFailed = false;
    const std::uint32_t descriptor = Ftype[static_cast<std::size_t>(FtypeIndex)].descriptorOffset;
    ByteReader flash(firmware->bytes(), static_cast<std::uint64_t>(descriptor) + 4);
    const std::uint8_t size = flash.u8();
    const std::string prompt = "Current Size:" + signedText(size) + "\r" + msg(MessageKey::MsgInputSize);
    double answer = 0;
    for (;;) {
        const auto text = ui.inputText(prompt);
        answer = text ? valDecimal(*text) : 0;
        if (answer == 0) return;
        if (answer > 5 && answer < 65) break;  // anything else is asked again
    }
    std::string target = "changeFont" + hexText(static_cast<std::uint64_t>(FtypeIndex)) + "Size_" + FirmwareId + ".vkp";
    OSdialog(ActionFailed, "V_Klay Patch File(*.vkp)|*.vkp", "VKP", target, true);
    if (ActionFailed) return;
    if (!confirmReplace(target)) {
        ActionFailed = true;
        return;
    }
    const std::string text = fonts::fontSizePatch(FtypeIndex, FirmwareId, descriptor, size, answer);
    if (writeOutput(target, bytesOf(text))) showSuccess();
}

}  // namespace korvatek::app

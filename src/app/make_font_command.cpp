// "Compare Font..": the selected font rebuilt from a folder of bitmaps named like the glyph
// batch save names them, written as one V_Klay patch.
#include "base/hex_text.h"
#include "app/workspace.h"
#include "codec/bmp_file.h"
#include "fonts/font_rebuild.h"
#include "fonts/font_table.h"
#include "fonts/glyph_bitmap.h"
#include "patch/vkp_text.h"

namespace korvatek::app {

using settings::MessageKey;

void Workspace::mnuPopup2_MakeF() {
    ActionFailed = true;  // a font without glyph rows cannot be rebuilt
    if (!firmware || FtypeIndex < 0 || ListView2.empty()) return;
    ActionFailed = false;
    const std::string folder = fBrowseForFolder(msg(MessageKey::MsgChooseOpenFolder));
    if (folder.empty()) return;

    fonts::RebuildInput input;
    input.image = firmware->bytes();
    input.rows = &ListView2;
    input.fontAreaOffset = fontAreaOffsetValue();
    input.firstFont = FtypeIndex == 0;
    ByteReader flash(firmware->bytes());
    flash.seek(Ftype[static_cast<std::size_t>(FtypeIndex)].descriptorOffset);
    input.tableStart = flash.u32le() & 0x0FFFFFFF;

    // Every glyph with a bitmap is loaded and trimmed as a single replacement would be.
    input.replacements.resize(ListView2.size());
    for (std::size_t i = 0; i < ListView2.size(); ++i) {
        const std::string path = joinPath(folder, ListView2[i].codeText() + ".bmp");
        if (CheckFexist(path)) continue;
        const auto file = readFile(path, kMaxPictureFileSize);
        if (!file) return fail(file.error());
        ByteReader in(*file);
        const codec::BmpHeadResult head = codec::LoadBMPhead(in);
        if (head.error) return fail(makeError(head.error->code, " " + path));
        if (head.header.width <= 0 || head.header.height <= 0 || !codec::LoadBMP(in, head.header, glyphGrid))
            return fail(makeError(ErrorCode::GlyphOutsideGrid, " " + path));
        const fonts::GlyphTrim trim = fonts::TrimGlyphGrid(glyphGrid, head.header.width, head.header.height);
        const auto bitmap = fonts::SaveFont(glyphGrid, trim.left, trim.top, trim.w, trim.h);
        if (!bitmap) return fail(bitmap.error());
        fonts::NewGlyph glyph;
        glyph.header = {static_cast<std::uint8_t>(trim.W), static_cast<std::uint8_t>(trim.w),
                        static_cast<std::uint8_t>(trim.h), static_cast<std::uint8_t>(trim.left),
                        static_cast<std::uint8_t>(trim.bottom)};
        glyph.bitmap = *bitmap;
        input.replacements[i] = glyph;
    }
    // The other fonts' records bound the span this font may be packed into.
    for (int other = 0; other < static_cast<int>(Ftype.size()); ++other) {
        if (other == FtypeIndex) continue;
        ByteReader reader(firmware->bytes());
        const auto read = fonts::FOTload(reader, Ftype[static_cast<std::size_t>(other)].descriptorOffset,
                                         input.fontAreaOffset, other == 0, nullptr);
        for (const auto& row : read.table.rows) {
            const std::int64_t g = row.headerOffsetValue();
            if (g < 0) continue;
            const auto size = fonts::kGlyphHeaderSize +
                              fonts::storedBitmapSize(row.width, row.height);
            input.otherRecords.emplace_back(static_cast<std::uint64_t>(g), static_cast<std::uint64_t>(g) + size);
        }
    }

    const fonts::RebuildResult rebuilt = fonts::rebuildFont(input);
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

    std::string text = fonts::glyphPatchHeader(FtypeIndex, FirmwareId);
    text += patch::kLineEnd;
    text += std::string(";glyph table") + patch::kLineEnd;
    for (const auto& e : rebuilt.tableEdits) text += patch::patchLine(e.offset, e.oldBytes, e.newBytes) + patch::kLineEnd;
    text += patch::kLineEnd;
    text += std::string(";glyph records") + patch::kLineEnd;
    for (const auto& e : rebuilt.recordEdits) text += patch::patchLine(e.offset, e.oldBytes, e.newBytes) + patch::kLineEnd;

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

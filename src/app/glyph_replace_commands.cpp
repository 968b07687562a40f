// Replacing glyphs from bitmaps and writing the glyph patch. The bitmap is trimmed to its ink,
// checked against the room the firmware has for the glyph, encoded, and collected until the
// patch is saved; the row is marked "*".
#include "base/hex_text.h"
#include "app/workspace.h"
#include "codec/bmp_file.h"
#include "fonts/font_table.h"
#include "fonts/glyph_bitmap.h"

namespace korvatek::app {

using settings::MessageKey;

namespace {

// Shown when a glyph would not fit; the text is the same in every interface language.
constexpr const char* kGlyphTooBig = "Слишком большая bmp, попробуйте сделать разрешение поменьше;)";

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
    ByteReader in(*file);
    const codec::BmpHeadResult head = codec::LoadBMPhead(in);
    if (head.error) return fail(*head.error);
    // A bitmap with no rows or columns (a top-down one reads negative) cannot be a glyph.
    if (head.header.width <= 0 || head.header.height <= 0)
        return fail(makeError(ErrorCode::GlyphOutsideGrid));
    GlyphShown = true;
    const Status loaded = codec::LoadBMP(in, head.header, glyphGrid);
    if (!loaded) return fail(makeError(ErrorCode::GlyphOutsideGrid));
    const fonts::GlyphTrim trim = fonts::TrimGlyphGrid(glyphGrid, head.header.width, head.header.height);
    preview = Preview{Preview::Source::Glyph, head.header.width, head.header.height};

    // Room: a glyph may grow into any space up to the next glyph's record; the last glyph of
    // a font, which has no next, may not grow beyond the bitmap it has now.
    const fonts::GlyphRecord& row = ListView2[static_cast<std::size_t>(index)];
    bool fits;
    if (index + 1 < static_cast<int>(ListView2.size())) {
        const std::int64_t next = ListView2[static_cast<std::size_t>(index) + 1].referenceValue();
        const std::int64_t here = row.referenceValue();
        const std::int64_t need = static_cast<std::int64_t>(trim.w / 8 + 1) * trim.h;
        fits = next - here - 5 >= need;
    } else {
        fits = fonts::storedBitmapSize(trim.w, trim.h) <=
               fonts::storedBitmapSize(row.width, row.height);
    }
    if (!fits) {
        showMessage("Pic" + signedText(static_cast<std::int64_t>(CurrentGlyphNumber)) + "\r" + kGlyphTooBig);
        ActionFailed = true;
        return;
    }
    const auto bitmap = fonts::SaveFont(glyphGrid, trim.left, trim.top, trim.w, trim.h);
    if (!bitmap) return fail(bitmap.error());

    if (!GlyphPatchInProgress) {
        GlyphPatchInProgress = true;
        GlyphPatchFont = FtypeIndex;
        collectedGlyphs.clear();
    }
    ReverseByteOrder = false;
    fonts::CollectedGlyph glyph;
    glyph.number = static_cast<int>(CurrentGlyphNumber);
    glyph.headerOffset = static_cast<std::uint32_t>(row.headerOffsetValue());
    glyph.header = {static_cast<std::uint8_t>(trim.W), static_cast<std::uint8_t>(trim.w),
                    static_cast<std::uint8_t>(trim.h), static_cast<std::uint8_t>(trim.left),
                    static_cast<std::uint8_t>(trim.bottom)};
    glyph.bitmap = *bitmap;
    collectedGlyphs.push_back(glyph);

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
    ListView2[static_cast<std::size_t>(index)].replaced = true;
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
    showSuccess();
}

void Workspace::mnuPopup2_DiscardPatch() {
    GlyphPatchInProgress = false;
    collectedGlyphs.clear();
    deleteFile(temporaryPath("/Korvatek.temp"));
    deleteFile(temporaryPath("/Korvatek_2.temp"));
    for (auto& row : ListView2) row.replaced = false;
}

}  // namespace korvatek::app

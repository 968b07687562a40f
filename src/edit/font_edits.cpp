#include "edit/font_edits.h"

#include <algorithm>

#include "base/file_io.h"
#include "base/hex_text.h"
#include "codec/bmp_file.h"
#include "edit/picture_files.h"
#include "fonts/font_table.h"
#include "fonts/glyph_bitmap.h"
#include "patch/vkp_text.h"

namespace korvatek::edit {

namespace {


// A BMP loaded into the grid and trimmed to its ink. With `where` (a path) an error names the
// file instead of carrying its own detail. `sized` is set once the BMP has a size a glyph can
// have, `drawn` once its pixels are in the grid.
struct GlyphLoad {
    bool sized = false;
    bool drawn = false;
    int width = 0;
    int height = 0;
};
Result<fonts::GlyphTrim> loadGlyphBmp(ByteView file, codec::PixelCanvas& grid, const std::string& where,
                                  GlyphLoad* load = nullptr) {
    GlyphLoad ignored;
    GlyphLoad& state = load ? *load : ignored;
    ByteReader in(file);
    const codec::BmpHeadResult head = codec::LoadBMPhead(in);
    if (head.error) return where.empty() ? *head.error : makeError(head.error->code, where);
    // A bitmap with no rows or columns (a top-down one reads negative) cannot be a glyph.
    if (head.header.width <= 0 || head.header.height <= 0) return makeError(ErrorCode::GlyphOutsideGrid, where);
    state.sized = true;
    state.width = head.header.width;
    state.height = head.header.height;
    if (!codec::LoadBMP(in, head.header, grid)) return makeError(ErrorCode::GlyphOutsideGrid, where);
    state.drawn = true;
    return fonts::TrimGlyphGrid(grid, head.header.width, head.header.height);
}

Result<Bytes> trimmedBitmap(const codec::PixelCanvas& grid, const fonts::GlyphTrim& trim) {
    return fonts::SaveFont(grid, trim.left, trim.top, trim.w, trim.h);
}

std::array<std::uint8_t, 5> headerOf(const fonts::GlyphTrim& trim) {
    return {static_cast<std::uint8_t>(trim.W), static_cast<std::uint8_t>(trim.w), static_cast<std::uint8_t>(trim.h),
            static_cast<std::uint8_t>(trim.left), static_cast<std::uint8_t>(trim.bottom)};
}

}  // namespace

std::string glyphTooBigText(int code) { return "Pic" + app::signedText(code) + "\r" + kGlyphTooBig; }

ShownGlyph drawFlashGlyph(ByteView image, const fonts::GlyphRecord& row, codec::PixelCanvas& grid) {
    const fonts::GlyphHeader header{row.advance, row.width, row.height, row.shiftLeft, row.spaceBelow};
    const fonts::GlyphCell cell = fonts::glyphCell(header);
    ShownGlyph shown;
    shown.width = cell.W;
    shown.height = cell.H;
    shown.information = "Width:" + app::signedText(cell.W) + "\r" + "Height:" + app::signedText(cell.H) + "\r\r" +
                        "SymbolCode: 0x" + app::hexText(static_cast<std::uint64_t>(row.code)) + "\r\r" +
                        "Lenght: 0x" + fonts::glyphCellText(row, 9);
    const std::int64_t offset = row.headerOffsetValue();
    ByteReader bitmap(image, offset < 0 ? image.size() : static_cast<std::uint64_t>(offset) + 5);
    shown.drawn = fonts::drawGlyph(bitmap, header, grid);
    return shown;
}

PixelGrid glyphCellGrid(ByteView image, const fonts::GlyphRecord& row) {
    codec::PixelCanvas canvas(codec::PixelCanvas::kGlyphColumns, codec::PixelCanvas::kGlyphRows);
    const ShownGlyph shown = drawFlashGlyph(image, row, canvas);
    if (!shown.drawn.ok()) return {};
    return canvasGrid(canvas, shown.width, shown.height);
}

GlyphReplacement glyphFromBmp(ByteView bmp, const std::vector<fonts::GlyphRecord>& rows, std::size_t index,
                              codec::PixelCanvas& grid) {
    GlyphReplacement result;
    GlyphLoad load;
    const auto trimmed = loadGlyphBmp(bmp, grid, "", &load);
    result.sized = load.sized;
    result.drawn = load.drawn;
    result.loadedWidth = load.width;
    result.loadedHeight = load.height;
    if (!trimmed) {
        result.error = trimmed.error();
        return result;
    }
    const fonts::GlyphTrim& trim = *trimmed;
    const fonts::GlyphRecord& row = rows.at(index);
    bool fits;
    if (index + 1 < rows.size()) {
        const std::int64_t need = static_cast<std::int64_t>(trim.w / 8 + 1) * trim.h;
        fits = rows[index + 1].referenceValue() - row.referenceValue() - 5 >= need;
    } else {
        fits = fonts::storedBitmapSize(trim.w, trim.h) <= fonts::storedBitmapSize(row.width, row.height);
    }
    if (!fits) {
        result.tooBig = true;
        return result;
    }
    auto bitmap = trimmedBitmap(grid, trim);
    if (!bitmap) {
        result.error = bitmap.error();
        return result;
    }
    fonts::CollectedGlyph glyph;
    glyph.number = row.code;
    glyph.headerOffset = static_cast<std::uint32_t>(row.headerOffsetValue());
    glyph.header = headerOf(trim);
    glyph.bitmap = std::move(*bitmap);
    result.glyph = std::move(glyph);
    return result;
}

Result<fonts::RebuildResult> rebuildFontFromFolder(const FontRebuildInput& in, const std::string& folder,
                                                   codec::PixelCanvas& grid) {
    const auto& rows = *in.rows;
    const auto& selector = *in.fonts;
    fonts::RebuildInput input;
    input.image = in.image;
    input.rows = &rows;
    input.fontAreaOffset = in.fontAreaOffset;
    input.firstFont = in.fontIndex == 0;
    ByteReader flash(in.image, selector.at(in.fontIndex).descriptorOffset);
    input.tableStart = flash.u32le() & 0x0FFFFFFF;

    // Every glyph with a bitmap is loaded and trimmed as a single replacement would be.
    input.replacements.resize(rows.size());
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (i > 0 && in.stop && in.stop()) return fonts::RebuildResult{};
        if (in.progress) in.progress(static_cast<double>(i) / static_cast<double>(rows.size()) * 100.0);
        const std::string path = app::joinPath(folder, rows[i].codeText() + ".bmp");
        if (app::CheckFexist(path)) continue;
        const auto file = app::readFile(path, app::kMaxPictureFileSize);
        if (!file) return file.error();
        const auto trimmed = loadGlyphBmp(*file, grid, " " + path);
        if (!trimmed) return trimmed.error();
        auto bitmap = trimmedBitmap(grid, *trimmed);
        if (!bitmap) return bitmap.error();
        input.replacements[i] = fonts::NewGlyph{headerOf(*trimmed), std::move(*bitmap)};
    }
    for (std::size_t other = 0; other < selector.size(); ++other) {
        if (other == in.fontIndex) continue;
        ByteReader reader(in.image);
        const auto read = fonts::FOTload(reader, selector[other].descriptorOffset, in.fontAreaOffset, other == 0, nullptr);
        for (const auto& row : read.table.rows) {
            const std::int64_t g = row.headerOffsetValue();
            if (g < 0) continue;
            const auto size = fonts::kGlyphHeaderSize + fonts::storedBitmapSize(row.width, row.height);
            input.otherRecords.emplace_back(static_cast<std::uint64_t>(g), static_cast<std::uint64_t>(g) + size);
        }
    }
    return fonts::rebuildFont(input);
}

std::string rebuiltFontPatch(int fontIndex, const std::string& firmwareId, const fonts::RebuildResult& rebuilt) {
    std::string text = fonts::glyphPatchHeader(fontIndex, firmwareId);
    text += patch::kLineEnd;
    text += std::string(";glyph table") + patch::kLineEnd;
    for (const auto& e : rebuilt.tableEdits) text += patch::patchLine(e.offset, e.oldBytes, e.newBytes) + patch::kLineEnd;
    text += patch::kLineEnd;
    text += std::string(";glyph records") + patch::kLineEnd;
    for (const auto& e : rebuilt.recordEdits) text += patch::patchLine(e.offset, e.oldBytes, e.newBytes) + patch::kLineEnd;
    return text;
}

}  // namespace korvatek::edit

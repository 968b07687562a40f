#pragma once
// Glyphs: drawing one from the fullflash, taking a replacement from a BMP (trimmed to its ink
// and checked against the room the firmware has for it), and rebuilding a whole font from a
// folder of BMPs.

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "base/result.h"
#include "codec/pixel_canvas.h"
#include "edit/pixel_edit.h"
#include "firmware/identification.h"
#include "fonts/font_patch.h"
#include "fonts/font_rebuild.h"
#include "fonts/glyph_record.h"

namespace korvatek::edit {

// Shown when a glyph would not fit; the text is the same in every interface language.
inline constexpr const char* kGlyphTooBig = "Слишком большая bmp, попробуйте сделать разрешение поменьше;)";
// "Pic 66" and the text above, on two lines.
std::string glyphTooBigText(int code);

// Glyph `row` drawn into the grid; its information text is made even when drawing fails.
struct ShownGlyph {
    int width = 0;    // the character cell
    int height = 0;
    std::string information;
    Status drawn = success();
};
ShownGlyph drawFlashGlyph(ByteView image, const fonts::GlyphRecord& row, codec::PixelCanvas& grid);

// The glyph's cell as the preview shows it and "Save as BMP" writes it, as a grid to edit; an
// empty grid when the glyph cannot be drawn.
PixelGrid glyphCellGrid(ByteView image, const fonts::GlyphRecord& row);

// The replacement of glyph rows[index] from a BMP. The bitmap is loaded into the grid and
// trimmed to its ink. Room: a glyph may grow into any space up to the next glyph's record,
// each row counted as (w div 8 + 1) bytes; the last glyph of a font, which has no next, may
// not grow beyond the bitmap it has now. Refusals: the BMP's own errors, GlyphOutsideGrid,
// and `tooBig` (no error code: its text is glyphTooBigText).
struct GlyphReplacement {
    std::optional<fonts::CollectedGlyph> glyph;
    std::optional<Error> error;
    bool tooBig = false;
    bool sized = false;    // the BMP has a size a glyph can have (then loadedWidth, loadedHeight)
    bool drawn = false;    // its pixels are in the grid
    int loadedWidth = 0;
    int loadedHeight = 0;
};
GlyphReplacement glyphFromBmp(ByteView bmp, const std::vector<fonts::GlyphRecord>& rows, std::size_t index,
                              codec::PixelCanvas& grid);

// The font fontIndex rebuilt with the BMPs of `folder` ("0065.bmp" for code 65); the other
// fonts' records bound the span it may be packed into.
struct FontRebuildInput {
    ByteView image;
    const std::vector<firmware::FontSelectorEntry>* fonts = nullptr;
    std::size_t fontIndex = 0;
    const std::vector<fonts::GlyphRecord>* rows = nullptr;
    std::int64_t fontAreaOffset = 0;
    // Told how far the bitmaps are read, and asked between two of them whether to stop; a
    // stop returns an empty result at once, which the caller does not use.
    std::function<void(double)> progress;
    std::function<bool()> stop;
};
Result<fonts::RebuildResult> rebuildFontFromFolder(const FontRebuildInput& input, const std::string& folder,
                                                   codec::PixelCanvas& grid);
// The rebuilt font's patch: the glyph patch header, the table edits and the record edits.
std::string rebuiltFontPatch(int fontIndex, const std::string& firmwareId, const fonts::RebuildResult& rebuilt);

}  // namespace korvatek::edit

#pragma once
// A line of text drawn in one of the phone's fonts, glyph by glyph from the fullflash, as the
// phone lays it out: a glyph's ink starts sL columns after the pen (a byte above 127 is a shift
// to the left), its last ink row sits sB rows above the line's bottom, and the pen moves on by
// W. The line is as high as the font's tallest h + sB. Character code N is the glyph the list
// numbers N ("#"); a character the font has no glyph for (code 0, past the table, or an empty
// record: no advance and no ink) is drawn as a marked box and its position reported.

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "base/bytes.h"
#include "edit/pixel_edit.h"
#include "fonts/font_patch.h"
#include "fonts/glyph_record.h"

namespace korvatek::edit {

inline constexpr Colour kMissingMark = 0xFFE00000;   // the box of a character the font lacks

struct RenderedText {
    PixelGrid pixels;                    // ink on paper, missing characters in kMissingMark
    std::vector<std::size_t> missing;    // positions (in characters) of those the font lacks
};

// `pending` holds glyphs waiting in the glyph patch, by code: drawn instead of the flash's.
RenderedText renderText(ByteView image, const std::vector<fonts::GlyphRecord>& glyphs, std::u32string_view text,
                        const std::map<int, fonts::CollectedGlyph>& pending = {});

// UTF-8 to code points; a byte that does not begin a valid sequence becomes U+FFFD.
std::u32string codePoints(std::string_view utf8);

}  // namespace korvatek::edit

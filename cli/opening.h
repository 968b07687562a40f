#pragma once
// Opening the fullflash of a command and finding its pictures, fonts and glyphs, with the
// window's messages when there is no such thing.

#include <optional>
#include <string>

#include "console.h"
#include "edit/opened_flash.h"
#include "fonts/font_table.h"

namespace korvatek::cli {

// Opens FLASH as a path on the window's command line is opened (a quoted path loses its
// quotes). A fullflash whose language pack has no known picture table opens with its fonts
// only, after its message.
std::optional<edit::OpenedFlash> openFlashFile(Console& console, const std::string& path);

const firmware::PictureRecord* pictureNumbered(const Console& console, const edit::OpenedFlash& flash, int n);

// The glyph table of font n, or nothing (told) when there is no such font. A damaged table is
// told and gives no rows; glyphs outside the image are counted and told.
std::optional<fonts::FontTable> openFont(const Console& console, const edit::OpenedFlash& flash, int n);

const fonts::GlyphRecord* glyphCoded(const Console& console, const fonts::FontTable& font, int code);

}  // namespace korvatek::cli

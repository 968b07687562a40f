#pragma once
// The glyphs of one font of an opened fullflash.

#include <functional>

#include "edit/opened_flash.h"
#include "fonts/font_table.h"

namespace korvatek::edit {

// The glyph table of font n (0-based; n must name a font of the selector). Font 0 has its
// corrected entries.
fonts::FontTableResult readFont(const OpenedFlash& flash, std::size_t n, const std::function<void(double)>& progress = {});

}  // namespace korvatek::edit

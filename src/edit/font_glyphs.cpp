#include "edit/font_glyphs.h"

namespace korvatek::edit {

fonts::FontTableResult readFont(const OpenedFlash& flash, std::size_t n, const std::function<void(double)>& progress) {
    ByteReader in(flash.bytes());
    return fonts::FOTload(in, flash.fonts.at(n).descriptorOffset, flash.fontAreaOffset, n == 0, progress);
}

}  // namespace korvatek::edit

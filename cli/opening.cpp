#include "opening.h"

#include "base/hex_text.h"
#include "edit/font_glyphs.h"
#include "firmware/layout.h"

namespace korvatek::cli {

using settings::MessageKey;

std::optional<edit::OpenedFlash> openFlashFile(Console& console, const std::string& path) {
    std::string name = path;
    if (!name.empty() && name.back() == '"') name = name.size() >= 2 ? name.substr(1, name.size() - 2) : "";
    auto opened = edit::openFlash(name, firmware::kPictureTableOffset, firmware::kPictureMaxIndex);
    if (!opened) {
        console.fail(opened.error());
        return std::nullopt;
    }
    if (!opened->packSupported)
        console.say(console.msg(MessageKey::MsgFirmwareNotSupported) + opened->pack + ". " +
                    console.msg(MessageKey::MsgFontsOnly));
    return std::move(*opened);
}

const firmware::PictureRecord* pictureNumbered(const Console& console, const edit::OpenedFlash& flash, int n) {
    if (n < 0 || n >= static_cast<int>(flash.pictures.size())) {
        console.say(console.msg(MessageKey::MsgNoSuchPicture) + std::to_string(n));
        return nullptr;
    }
    return &flash.pictures[static_cast<std::size_t>(n)];
}

std::optional<fonts::FontTable> openFont(const Console& console, const edit::OpenedFlash& flash, int n) {
    if (n < 0 || n >= static_cast<int>(flash.fonts.size())) {
        console.say(console.msg(MessageKey::MsgNoSuchFont) + std::to_string(n));
        return std::nullopt;
    }
    fonts::FontTableResult read = edit::readFont(flash, static_cast<std::size_t>(n));
    if (read.tooLong || read.table.lastIndex < 0)
        console.say(console.msg(MessageKey::MsgFontTableDamaged) + "0x" + app::hexText(read.table.start) + " - 0x" +
                    app::hexText(read.table.end));
    else if (read.table.outsideImage > 0)
        console.say(console.msg(MessageKey::MsgGlyphsOutside) + std::to_string(read.table.outsideImage));
    return std::move(read.table);
}

const fonts::GlyphRecord* glyphCoded(const Console& console, const fonts::FontTable& font, int code) {
    if (code < 1 || code > static_cast<int>(font.rows.size())) {
        console.say(console.msg(MessageKey::MsgNoSuchGlyph) + std::to_string(code));
        return nullptr;
    }
    return &font.rows[static_cast<std::size_t>(code) - 1];
}

}  // namespace korvatek::cli

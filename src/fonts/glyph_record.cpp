#include "fonts/glyph_record.h"

#include "base/hex_text.h"

namespace korvatek::fonts {

namespace {

std::string padded2(int value) {
    std::string text = std::to_string(value);
    return value < 10 ? "0" + text : text;
}

}  // namespace

std::int64_t GlyphRecord::headerOffsetValue() const { return app::valHEX(app::hexText(headerOffset)); }

std::int64_t GlyphRecord::referenceValue() const { return app::valHEX(referenceText(rawReference)); }

std::string GlyphRecord::codeText() const { return app::zeroPadded(code, 4); }

std::string referenceText(std::uint32_t raw) {
    std::string text = app::hexText(raw);
    if (text.size() >= 2 && text.compare(0, 2, "FF") == 0) text = text.substr(text.size() >= 4 ? text.size() - 4 : 0);
    return text;
}

std::string glyphCellText(const GlyphRecord& record, int column) {
    switch (column) {
        case 1: return record.codeText();
        case 2: return padded2(record.advance);
        case 3: return std::to_string(record.width);
        case 4: return std::to_string(record.height);
        case 5: return padded2(record.shiftLeft);
        case 6: return padded2(record.spaceBelow);
        case 7: return app::hexText(record.headerOffset);
        case 8: return referenceText(record.rawReference);
        case 9: {
            std::string len = app::hexText(static_cast<std::uint64_t>(record.listedLength()));
            return len.size() < 2 ? "0" + len : len;
        }
        default: return record.replaced ? "*" : "";
    }
}

}  // namespace korvatek::fonts

#include "fonts/font_table.h"

#include <cmath>

#include "base/hex_text.h"

namespace korvatek::fonts {

std::int64_t glyphRecordOffset(std::int64_t fontAreaOffset, const std::string& reference, bool firstFont, int index) {
    // The reference goes through the hex helper like every number: four digits or fewer are a
    // 16-bit signed number.
    std::int64_t offset = fontAreaOffset + app::valHEX(reference);
    if (firstFont && index > 374 && index < 784) offset += 0x10000;
    return offset;
}

FontTableResult FOTload(ByteReader& flash, std::uint32_t descriptorOffset, std::int64_t fontAreaOffset, bool firstFont,
                        const std::function<void(double)>& progress) {
    FontTableResult result;
    FontTable& t = result.table;
    flash.seek(descriptorOffset);
    t.start = flash.u32le() & 0x0FFFFFFF;
    flash.seek(static_cast<std::uint64_t>(descriptorOffset) + 8);
    t.end = flash.u32le() & 0x0FFFFFFF;
    const double last = std::nearbyint((static_cast<double>(t.end) - static_cast<double>(t.start)) / 8.0 - 1.0);
    if (last > kMaxGlyphEntries) {
        result.tooLong = true;
        return result;
    }
    t.lastIndex = static_cast<int>(last);
    if (t.lastIndex < 0) return result;

    const auto percent = [&](int i) { return t.lastIndex > 0 ? static_cast<double>(i) / t.lastIndex * 50.0 : 50.0; };
    t.rows.resize(static_cast<std::size_t>(t.lastIndex) + 1);
    for (int i = 0; i <= t.lastIndex; ++i) {
        GlyphRecord& row = t.rows[static_cast<std::size_t>(i)];
        flash.seek(static_cast<std::uint64_t>(t.start) + 4 + 8 * static_cast<std::uint64_t>(i));
        row.rawReference = flash.u32le();
        row.code = i + 1;
        const std::int64_t g = glyphRecordOffset(fontAreaOffset, referenceText(row.rawReference), firstFont, i);
        row.headerOffset = static_cast<std::uint32_t>(g);
        if (progress) progress(percent(i));
    }
    for (int i = 0; i <= t.lastIndex; ++i) {
        GlyphRecord& row = t.rows[static_cast<std::size_t>(i)];
        const std::int64_t g = row.headerOffsetValue();
        if (g < 0 || static_cast<std::uint64_t>(g) + kGlyphHeaderSize > flash.size()) ++t.outsideImage;
        flash.seek(static_cast<std::uint64_t>(g < 0 ? flash.size() : g));
        std::uint8_t b[kGlyphHeaderSize];
        flash.read(b, kGlyphHeaderSize);
        row.advance = b[0];
        row.width = b[1];
        row.height = b[2];
        row.shiftLeft = b[3];
        row.spaceBelow = b[4];
        if (progress) progress(percent(i) + 50.0);
    }
    return result;
}

}  // namespace korvatek::fonts

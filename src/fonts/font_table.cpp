#include "fonts/font_table.h"

#include <cmath>

#include "base/hex_text.h"

namespace korvatek::fonts {

namespace {

std::string padded2(int value) {
    std::string text = std::to_string(value);
    return value < 10 ? "0" + text : text;
}

}  // namespace

const std::string& GlyphRecord::cell(int column) const { return const_cast<GlyphRecord*>(this)->cell(column); }

std::string& GlyphRecord::cell(int column) {
    switch (column) {
        case 1: return number;
        case 2: return W;
        case 3: return w;
        case 4: return h;
        case 5: return sL;
        case 6: return sB;
        case 7: return offset;
        case 8: return bMoffset;
        case 9: return len;
        default: return status;
    }
}

std::string referenceText(std::uint32_t raw) {
    std::string text = app::hexText(raw);
    if (text.size() >= 2 && text.compare(0, 2, "FF") == 0) text = text.substr(text.size() >= 4 ? text.size() - 4 : 0);
    return text;
}

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
        row.bMoffset = referenceText(flash.u32le());
        row.number = app::zeroPadded(i + 1, 4);
        const std::int64_t g = glyphRecordOffset(fontAreaOffset, row.bMoffset, firstFont, i);
        row.offset = app::hexText(static_cast<std::uint32_t>(g));
        if (progress) progress(percent(i));
    }
    for (int i = 0; i <= t.lastIndex; ++i) {
        GlyphRecord& row = t.rows[static_cast<std::size_t>(i)];
        const std::int64_t g = app::valHEX(row.offset);
        if (g < 0 || static_cast<std::uint64_t>(g) + kGlyphHeaderSize > flash.size()) ++t.outsideImage;
        flash.seek(static_cast<std::uint64_t>(g < 0 ? flash.size() : g));
        std::uint8_t b[kGlyphHeaderSize];
        flash.read(b, kGlyphHeaderSize);
        row.W = padded2(b[0]);
        row.w = std::to_string(b[1]);
        row.h = std::to_string(b[2]);
        row.sL = padded2(b[3]);
        row.sB = padded2(b[4]);
        std::string len = app::hexText(static_cast<std::uint64_t>((b[1] / 8 + 1) * b[2]));
        row.len = len.size() < 2 ? "0" + len : len;
        if (progress) progress(percent(i) + 50.0);
    }
    return result;
}

}  // namespace korvatek::fonts

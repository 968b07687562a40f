#pragma once
// FOTload: the glyph table of one font, turned into the rows of the glyph list. A font
// descriptor (24 bytes) names the table's start (offset 0) and end (offset 8); each 8-byte
// entry holds at offset 4 the reference of a glyph record (5 header bytes and a 1-bit bitmap).

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "base/byte_reader.h"
#include "fonts/glyph_record.h"

namespace korvatek::fonts {

inline constexpr std::size_t kGlyphHeaderSize = 5;
inline constexpr int kMaxGlyphEntries = 32767;  // the last entry index is a 16-bit number

struct FontTable {
    std::uint32_t start = 0;   // offset of entry 0
    std::uint32_t end = 0;     // offset just past the last entry
    int lastIndex = -1;        // L: entries 0..L; negative for a table that ends before it starts
    std::vector<GlyphRecord> rows;
    int outsideImage = 0;      // rows whose glyph record lies (partly) outside the image
};

// The record offset a reference text leads to, the first font's correction included:
// entries 375 to 783 of font 0 (both bounds exclusive of 374 and 784) lie 0x10000 further.
std::int64_t glyphRecordOffset(std::int64_t fontAreaOffset, const std::string& reference, bool firstFont, int index);

// Reads the font whose descriptor lies at descriptorOffset. Nothing stops at odd pointers:
// reads outside the image give zeros, and are counted in outsideImage. A table too long for
// the 16-bit entry index gives nothing (tooLong).
struct FontTableResult {
    FontTable table;
    bool tooLong = false;
};
FontTableResult FOTload(ByteReader& flash, std::uint32_t descriptorOffset, std::int64_t fontAreaOffset, bool firstFont,
                        const std::function<void(double)>& progress);

// Bytes a bitmap of w x h stores: ceil(w / 8) x h.
inline std::size_t storedBitmapSize(int w, int h) {
    return w > 0 && h > 0 ? static_cast<std::size_t>((w + 7) / 8) * static_cast<std::size_t>(h) : 0;
}

}  // namespace korvatek::fonts

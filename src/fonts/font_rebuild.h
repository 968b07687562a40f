#pragma once
// Rebuilding a font ("Compare Font.."): every glyph record packed back to back in code order
// from the lowest record of the font, each table entry re-pointed at its new record. Glyphs
// given a new bitmap may grow beyond what a single replacement allows, as long as the whole
// font still fits the span its records occupy now.

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "base/bytes.h"
#include "fonts/glyph_record.h"

namespace korvatek::fonts {

struct NewGlyph {
    std::array<std::uint8_t, 5> header{};  // W, w, h, sL, sB
    Bytes bitmap;
};

struct RebuildInput {
    ByteView image;
    const std::vector<GlyphRecord>* rows = nullptr;
    std::vector<std::optional<NewGlyph>> replacements;  // one per row; empty keeps the glyph
    std::int64_t fontAreaOffset = 0;
    bool firstFont = false;
    std::uint32_t tableStart = 0;
    std::vector<std::pair<std::uint64_t, std::uint64_t>> otherRecords;  // [start, end) of other fonts
};

struct PatchBytes {
    std::uint64_t offset = 0;
    Bytes oldBytes;
    Bytes newBytes;
};

struct RebuildResult {
    enum class Outcome { Done, NoRoom, OutsideImage, Unreachable };
    Outcome outcome = Outcome::Done;
    std::uint64_t needed = 0;
    std::uint64_t available = 0;
    int changed = 0;             // glyphs whose header or bitmap differ from what they were
    int unreachableGlyph = 0;    // the code of a glyph no reference can reach
    std::vector<PatchBytes> tableEdits;   // one per entry whose reference changes (4 bytes)
    std::vector<PatchBytes> recordEdits;  // 16-byte lines of the records that change
};

RebuildResult rebuildFont(const RebuildInput& input);

}  // namespace korvatek::fonts

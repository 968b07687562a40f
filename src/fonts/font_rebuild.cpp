#include "fonts/font_rebuild.h"

#include <algorithm>
#include <array>
#include <map>

#include "base/byte_reader.h"
#include "base/hex_text.h"
#include "fonts/font_table.h"

namespace korvatek::fonts {

namespace {

std::uint32_t u32At(ByteView image, std::uint64_t at) {
    ByteReader r(image, at);
    return r.u32le();
}

Bytes bytesAt(ByteView image, std::uint64_t at, std::size_t count) {
    ByteReader r(image, at);
    return r.bytes(count);
}

// A reference that the table reader takes back to `target`; the form of the old reference
// (0xFFFFxxxx or plain) is tried first.
std::optional<std::uint32_t> encodeReference(std::int64_t target, const RebuildInput& in, int index, bool ffForm) {
    const std::int64_t correction = in.firstFont && index > 374 && index < 784 ? 0x10000 : 0;
    const std::int64_t r = target - in.fontAreaOffset - correction;
    const auto plain = static_cast<std::uint32_t>(r);
    const std::uint32_t ff = 0xFFFF0000u | (static_cast<std::uint32_t>(r) & 0xFFFF);
    const std::array<std::uint32_t, 2> candidates = ffForm ? std::array{ff, plain} : std::array{plain, ff};
    for (std::uint32_t candidate : candidates)
        if (glyphRecordOffset(in.fontAreaOffset, referenceText(candidate), in.firstFont, index) == target)
            return candidate;
    return std::nullopt;
}

}  // namespace

RebuildResult rebuildFont(const RebuildInput& in) {
    RebuildResult result;
    const auto& rows = *in.rows;
    if (rows.empty()) return result;

    // The records as they are: offset, header and stored bitmap of every row.
    struct Current {
        std::int64_t offset;
        Bytes record;  // header and bitmap
    };
    std::vector<Current> current;
    std::int64_t lowest = INT64_MAX;
    std::int64_t end = 0;
    for (const GlyphRecord& row : rows) {
        const std::int64_t g = row.headerOffsetValue();
        const int w = row.width;
        const int h = row.height;
        const std::size_t size = kGlyphHeaderSize + storedBitmapSize(w, h);
        if (g < 0 || static_cast<std::uint64_t>(g) + size > in.image.size()) {
            result.outcome = RebuildResult::Outcome::OutsideImage;
            return result;
        }
        current.push_back({g, bytesAt(in.image, static_cast<std::uint64_t>(g), size)});
        lowest = std::min(lowest, g);
        end = std::max(end, g + static_cast<std::int64_t>(size));
    }
    // The span ends where another font's records begin, if that is sooner.
    std::int64_t limit = end;
    for (const auto& [start, stop] : in.otherRecords) {
        const auto s = static_cast<std::int64_t>(start);
        const auto e = static_cast<std::int64_t>(stop);
        if (e > lowest && s < limit) limit = std::max(lowest, s);
    }
    result.available = static_cast<std::uint64_t>(limit - lowest);

    // Pack in code order; unchanged glyphs that shared a record keep sharing one.
    Bytes packed;
    std::vector<std::int64_t> placed(rows.size());
    std::map<std::int64_t, std::int64_t> sharedAt;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        Bytes record = current[i].record;
        const auto& replacement = in.replacements.size() > i ? in.replacements[i] : std::nullopt;
        if (replacement) {
            record.assign(replacement->header.begin(), replacement->header.end());
            record.insert(record.end(), replacement->bitmap.begin(), replacement->bitmap.end());
            if (record != current[i].record) ++result.changed;
        } else if (const auto it = sharedAt.find(current[i].offset); it != sharedAt.end()) {
            placed[i] = it->second;
            continue;
        }
        placed[i] = lowest + static_cast<std::int64_t>(packed.size());
        if (!replacement) sharedAt[current[i].offset] = placed[i];
        packed.insert(packed.end(), record.begin(), record.end());
    }
    result.needed = packed.size();
    if (result.needed > result.available) {
        result.outcome = RebuildResult::Outcome::NoRoom;
        return result;
    }

    for (std::size_t i = 0; i < rows.size(); ++i) {
        const std::uint64_t entry = static_cast<std::uint64_t>(in.tableStart) + 4 + 8 * i;
        const std::uint32_t old = u32At(in.image, entry);
        const bool ffForm = (old >> 24) == 0xFF;
        const auto reference = encodeReference(placed[i], in, static_cast<int>(i), ffForm);
        if (!reference) {
            result.outcome = RebuildResult::Outcome::Unreachable;
            result.unreachableGlyph = static_cast<int>(i) + 1;
            return result;
        }
        if (*reference != old) {
            Bytes now(4);
            for (int k = 0; k < 4; ++k) now[static_cast<std::size_t>(k)] = static_cast<std::uint8_t>(*reference >> (8 * k));
            result.tableEdits.push_back({entry, bytesAt(in.image, entry, 4), now});
        }
    }
    for (std::size_t at = 0; at < packed.size(); at += 16) {
        const std::size_t n = std::min<std::size_t>(16, packed.size() - at);
        const std::uint64_t offset = static_cast<std::uint64_t>(lowest) + at;
        Bytes old = bytesAt(in.image, offset, n);
        Bytes now(packed.begin() + static_cast<std::ptrdiff_t>(at), packed.begin() + static_cast<std::ptrdiff_t>(at + n));
        if (old != now) result.recordEdits.push_back({offset, std::move(old), std::move(now)});
    }
    return result;
}

}  // namespace korvatek::fonts

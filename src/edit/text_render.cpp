#include "edit/text_render.h"

#include <algorithm>

namespace korvatek::edit {

namespace {

// One glyph ready to place: its header and its bitmap's bytes (rows byte-aligned, the
// leftmost pixel in the top bit, a set bit is ink).
struct Glyph {
    int W = 0, w = 0, h = 0, shift = 0, sB = 0;
    ByteView bitmap;
    bool present = false;
};

Glyph fromHeader(const std::array<std::uint8_t, 5>& header, ByteView bitmap) {
    Glyph g{header[0], header[1], header[2], header[3] > 127 ? header[3] - 256 : header[3], header[4], bitmap, true};
    if (g.w == 0 || g.h == 0) g.w = g.h = 0;
    g.present = g.W > 0 || g.w > 0;
    return g;
}

Glyph glyphFor(char32_t c, ByteView image, const std::vector<fonts::GlyphRecord>& glyphs,
               const std::map<int, fonts::CollectedGlyph>& pending) {
    if (c == 0 || c > glyphs.size()) return {};
    const int code = static_cast<int>(c);
    if (const auto it = pending.find(code); it != pending.end()) return fromHeader(it->second.header, it->second.bitmap);
    const fonts::GlyphRecord& r = glyphs[c - 1];
    const std::int64_t start = r.headerOffsetValue() + 5;
    const std::size_t stride = (r.width + 7) / 8;
    const std::size_t size = stride * r.height;
    // A record whose bitmap would run past the fullflash is drawn as far as the bytes go.
    const ByteView bitmap = start < 0 || static_cast<std::uint64_t>(start) >= image.size()
                                ? ByteView{}
                                : image.subspan(static_cast<std::size_t>(start),
                                                std::min(size, image.size() - static_cast<std::size_t>(start)));
    return fromHeader({r.advance, r.width, r.height, r.shiftLeft, r.spaceBelow}, bitmap);
}

}  // namespace

RenderedText renderText(ByteView image, const std::vector<fonts::GlyphRecord>& glyphs, std::u32string_view text,
                        const std::map<int, fonts::CollectedGlyph>& pending) {
    int lineHeight = 1;
    for (const auto& r : glyphs) lineHeight = std::max(lineHeight, (r.width && r.height ? r.height : 0) + r.spaceBelow);
    for (const auto& [code, g] : pending) lineHeight = std::max(lineHeight, (g.header[1] && g.header[2] ? g.header[2] : 0) + g.header[4]);
    const int box = std::max(3, lineHeight / 2);   // a missing character's box: half as wide as high

    // First the places, so that a shift to the left before the first pen position fits too.
    struct Placed {
        Glyph glyph;
        int x;
    };
    std::vector<Placed> placed;
    RenderedText out;
    int pen = 0, left = 0, right = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        Glyph g = glyphFor(text[i], image, glyphs, pending);
        if (!g.present) {
            out.missing.push_back(i);
            g = Glyph{box + 1, box, lineHeight, 0, 0, {}, false};
        }
        placed.push_back({g, pen + g.shift});
        left = std::min(left, pen + g.shift);
        right = std::max({right, pen + g.shift + g.w, pen + g.W});
        pen += g.W;
    }
    out.pixels = PixelGrid(std::max(1, right - left), lineHeight);
    for (const Placed& p : placed) {
        const int x0 = p.x - left;
        const Glyph& g = p.glyph;
        if (!g.present) {
            drawRectangle(out.pixels, x0, 0, x0 + g.w - 1, lineHeight - 1, kMissingMark, false);
            drawLine(out.pixels, x0, lineHeight - 1, x0 + g.w - 1, 0, kMissingMark);
            continue;
        }
        const int top = lineHeight - g.sB - g.h;
        const std::size_t stride = (static_cast<std::size_t>(g.w) + 7) / 8;
        for (int y = 0; y < g.h; ++y)
            for (int x = 0; x < g.w; ++x) {
                const std::size_t at = static_cast<std::size_t>(y) * stride + static_cast<std::size_t>(x / 8);
                if (at < g.bitmap.size() && (g.bitmap[at] >> (7 - x % 8) & 1)) out.pixels.set(x0 + x, top + y, kInk);
            }
    }
    return out;
}

std::u32string codePoints(std::string_view utf8) {
    std::u32string out;
    for (std::size_t i = 0; i < utf8.size();) {
        const auto b = static_cast<unsigned char>(utf8[i]);
        const int length = b < 0x80 ? 1 : (b >> 5) == 6 ? 2 : (b >> 4) == 14 ? 3 : (b >> 3) == 30 ? 4 : 0;
        char32_t c = length == 1 ? b : length == 2 ? b & 0x1F : length == 3 ? b & 0x0F : b & 0x07;
        bool valid = length > 0 && i + static_cast<std::size_t>(length) <= utf8.size();
        for (int k = 1; valid && k < length; ++k) {
            const auto next = static_cast<unsigned char>(utf8[i + static_cast<std::size_t>(k)]);
            valid = (next >> 6) == 2;
            c = c << 6 | (next & 0x3F);
        }
        if (!valid) {
            out += U'\uFFFD';
            ++i;
            continue;
        }
        out += c;
        i += static_cast<std::size_t>(length);
    }
    return out;
}

}  // namespace korvatek::edit

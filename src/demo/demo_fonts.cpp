#include "demo/demo_fonts.h"

#include <cstddef>

#include "demo/demo_flash.h"
#include "demo/demo_glyph_shapes.h"
#include "firmware/layout.h"

namespace korvatek::firmware {
namespace {

// Entries 375..783 of the first font have their records 0x10000 above where the reference
// points (the firmware reader adds it for them), so they are written there.
constexpr int kLiftedFirst = 375;
constexpr int kLiftedLast = 783;
constexpr std::uint32_t kLift = 0x10000;
// Ordinary references start at 0x10000: a reference of four hex digits or fewer is read as a
// 16-bit signed number, so 0x8000..0xFFFF would point below the area. The few references of
// the form 0xFFFFxxxx use their low four digits, so their records lie in the first 0x8000
// bytes of the area, below every ordinary one.
constexpr std::uint32_t kFirstReference = 0x10000;
constexpr std::uint32_t kFirstFfReference = 0x100;
constexpr std::uint32_t kFontZeroReference = 0x20000;

void putU32(Bytes& image, std::uint32_t at, std::uint32_t value) {
    for (int k = 0; k < 4; ++k) image[at + static_cast<std::uint32_t>(k)] = static_cast<std::uint8_t>(value >> (8 * k));
}

bool shiftsLeft(int code) { return code == 'j' || code == 'f' || (code > 0x7F && code % 61 == 0); }

std::uint32_t roundUp4(std::uint32_t n) { return (n + 3) & ~3U; }

}  // namespace

int demoFontScale(int font) {
    static constexpr int kScales[kDemoFontCount] = {2, 1, 3};
    return kScales[font];
}

DemoGlyph makeDemoGlyph(int code, int scale) {
    const DemoBitmap shape = scaleSmooth(glyphShape(code), scale);
    int left = shape.width, right = -1, top = shape.height, bottom = -1;
    for (int y = 0; y < shape.height; ++y)
        for (int x = 0; x < shape.width; ++x)
            if (shape.at(x, y)) {
                left = x < left ? x : left;
                right = x > right ? x : right;
                top = y < top ? y : top;
                bottom = y;
            }
    DemoGlyph glyph;
    if (right < 0) {  // the space: nothing to draw, only an advance
        glyph.advance = static_cast<std::uint8_t>(3 * scale + 1);
        return glyph;
    }
    const int w = right - left + 1;
    const int h = bottom - top + 1;
    glyph.width = static_cast<std::uint8_t>(w);
    glyph.height = static_cast<std::uint8_t>(h);
    glyph.spaceBelow = static_cast<std::uint8_t>(shape.height - 1 - bottom);
    if (shiftsLeft(code)) {
        glyph.shiftLeft = 0xFF;
        glyph.advance = static_cast<std::uint8_t>(left + w + scale - 1);
    } else {
        glyph.shiftLeft = static_cast<std::uint8_t>(left);
        glyph.advance = static_cast<std::uint8_t>(left + w + scale);
    }
    const int stride = (w + 7) / 8;
    glyph.bitmap.assign(static_cast<std::size_t>(stride * h), 0xFF);  // padding bits stay set
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x)
            if (!shape.at(left + x, top + y)) {
                std::uint8_t& byte = glyph.bitmap[static_cast<std::size_t>(y * stride + x / 8)];
                byte = static_cast<std::uint8_t>(byte & ~(0x80U >> (x % 8)));
            }
    return glyph;
}

std::uint32_t demoGlyphRoom(const DemoGlyph& glyph) { return 5U + (glyph.width / 8U + 1U) * glyph.height; }

void writeDemoFonts(Bytes& image) {
    // The tables follow each other in font order, but the records are laid out font 1, font 2,
    // font 0: each font's records then fill a span of their own. Font 0 comes last because its
    // lifted entries lie 0x10000 above the others, and font 1 first because its 0xFFFFxxxx
    // entries lie just above the area's start, below its ordinary ones.
    std::uint32_t tables[kDemoFontCount];
    std::uint32_t table = kDemoGlyphTablesOffset;
    for (int font = 0; font < kDemoFontCount; ++font) {
        tables[font] = table;
        table += 8U * static_cast<std::uint32_t>(kDemoFontEntries[static_cast<std::size_t>(font)]);
    }
    std::uint32_t reference = kFirstReference;
    std::uint32_t ffReference = kFirstFfReference;
    for (int font : {1, 2, 0}) {
        const int entries = kDemoFontEntries[static_cast<std::size_t>(font)];
        const std::uint32_t descriptor = kFontArrayE71v42 + kFontDescriptorSize * static_cast<std::uint32_t>(font);
        for (std::uint32_t k = 0; k < kFontDescriptorSize; ++k) image[descriptor + k] = 0;
        putU32(image, descriptor, kPhoneAddressBase + tables[font]);
        image[descriptor + 4] = kDemoFontSizes[static_cast<std::size_t>(font)];
        putU32(image, descriptor + 8, kPhoneAddressBase + tables[font] + 8U * static_cast<std::uint32_t>(entries));

        reference = (reference + 0xFF) & ~0xFFU;  // each font starts on its own 256-byte line
        // Font 0 starts at 0x20000, so that its lifted entries' references stay above 0x10000
        // however its records are packed, as a rebuilt font packs them.
        if (font == 0 && reference < kFontZeroReference) reference = kFontZeroReference;
        for (int i = 0; i < entries; ++i) {
            const DemoGlyph glyph = makeDemoGlyph(i + 1, demoFontScale(font));
            const std::uint32_t slot = roundUp4(demoGlyphRoom(glyph));
            const bool lifted = font == 0 && i >= kLiftedFirst && i <= kLiftedLast;
            const bool ffForm = font == kDemoFfReferenceFont && i >= kDemoFfReferenceFirst && i <= kDemoFfReferenceLast;
            const std::uint32_t own = ffForm ? ffReference : reference;
            const std::uint32_t record = kDemoFontAreaOffset + own + (lifted ? kLift : 0);

            const std::uint32_t entry = tables[font] + 8U * static_cast<std::uint32_t>(i);
            putU32(image, entry, 0);
            putU32(image, entry + 4, ffForm ? 0xFFFF0000U | own : own);

            for (std::uint32_t k = 0; k < slot; ++k) image[record + k] = 0;
            image[record] = glyph.advance;
            image[record + 1] = glyph.width;
            image[record + 2] = glyph.height;
            image[record + 3] = glyph.shiftLeft;
            image[record + 4] = glyph.spaceBelow;
            for (std::size_t k = 0; k < glyph.bitmap.size(); ++k) image[record + 5 + k] = glyph.bitmap[k];
            (ffForm ? ffReference : reference) += slot;
        }
    }
}

}  // namespace korvatek::firmware

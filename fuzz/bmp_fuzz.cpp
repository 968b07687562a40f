// Windows bitmaps: the header reader, the pixel reader into the picture canvas (then encoded
// into each firmware target and written back as BMP) and into the glyph grid (then trimmed
// and encoded as a glyph bitmap, as a glyph replacement does).
#include <cstddef>
#include <cstdint>

#include "codec/bmp_file.h"
#include "codec/picture_encoder.h"
#include "codec/picture_type.h"
#include "fonts/font_table.h"
#include "fonts/glyph_bitmap.h"
#include "fuzz_support.h"

namespace {

using namespace korvatek;

void intoPicture(ByteView file) {
    ByteReader in(file);
    const codec::BmpHeadResult head = codec::LoadBMPhead(in);
    if (head.error) return;
    codec::PixelCanvas canvas;
    if (!codec::LoadBMP(in, head.header, canvas)) return;
    fuzz::check(canvas.metaWidth <= codec::kMaxPictureWidth && canvas.metaHeight <= codec::kMaxPictureHeight,
                "a bitmap that loads fits the picture size limit");
    (void)codec::SaveGPFmono(canvas);
    for (const int target : {codec::kTarget8Bit, codec::kTarget16Bit, codec::kTarget24Bit})
        (void)codec::SaveGPFraw(canvas, target);
    canvas.metaDepth = head.header.bits;
    (void)codec::encodeBmp(canvas, head.header.bits == 32 ? 32 : 24);
}

void intoGlyph(ByteView file) {
    ByteReader in(file);
    const codec::BmpHeadResult head = codec::LoadBMPhead(in);
    if (head.error) return;
    codec::PixelCanvas grid(codec::PixelCanvas::kGlyphColumns, codec::PixelCanvas::kGlyphRows);
    if (!codec::LoadBMP(in, head.header, grid)) return;
    const fonts::GlyphTrim trim = fonts::TrimGlyphGrid(grid, head.header.width, head.header.height);
    // A side of 0 or less loads no cell at all, so nothing bounds the other side then.
    if (head.header.width > 0 && head.header.height > 0)
        fuzz::check(trim.w >= 0 && trim.h >= 0 && trim.left + trim.w <= grid.columns() &&
                        trim.top + trim.h <= grid.rows(),
                    "the trimmed glyph lies inside the grid");
    const auto bitmap = fonts::SaveFont(grid, trim.left, trim.top, trim.w, trim.h);
    if (bitmap)
        fuzz::check(bitmap->size() == fonts::storedBitmapSize(trim.w, trim.h), "a glyph bitmap has its stored size");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const ByteView file(data, size);
    intoPicture(file);
    intoGlyph(file);
    return 0;
}

// Reading a font's glyph table and drawing every glyph, on the demonstration fullflash with the
// input written over its font descriptors, the chosen font's glyph table and its glyph records.
//
// Input: font index (modulo 3), flags, D, then
//   - with flag 1: 9 bytes over the font array pointer, the font area pointer and the count,
//   - D bytes (at most 72) over the three font descriptors,
//   - a word T and T bytes over the chosen font's glyph table,
//   - the rest over the chosen font's first glyph record.
// The picture table is left to the other flash target: only its first record is read here.
// Then the font is read (Ftype_Click) and the glyphs the input can have changed are drawn: the
// first 16, those whose table entry was written and those whose record lies in the records
// written (at most kMaxGlyphs); the first one drawn is saved as BMP. With flag 2 the size patch
// is written too.
#include <cstddef>
#include <cstdint>

#include "base/hex_text.h"
#include "support/scripted_interface.h"
#include "app/workspace.h"
#include "demo/demo_flash.h"
#include "firmware/layout.h"
#include "fuzz_support.h"

namespace {

using namespace korvatek;

constexpr int kMaxGlyphs = 512;
constexpr int kAlwaysDrawn = 16;
constexpr int kMaxSaved = 1;
constexpr std::size_t kDescriptorBytes = firmware::kDemoFontCount * firmware::kFontDescriptorSize;

fuzz::SplicedFlash& flash() {
    static fuzz::SplicedFlash image;
    return image;
}

struct FontPlaces {
    std::uint64_t table = 0;
    std::uint64_t firstRecord = 0;
};

// Where each font's table and first glyph record lie in the untouched image.
const std::array<FontPlaces, firmware::kDemoFontCount>& places() {
    static const auto found = [] {
        std::array<FontPlaces, firmware::kDemoFontCount> result{};
        flash().splice({});
        app::ScriptedInterface ui;
        app::Workspace ws(ui);
        ws.PathGiven = true;
        ws.CommandLinePath = flash().path();
        ws.mnu_FileOpen();
        const Bytes& image = flash().pristine();
        for (int f = 0; f < firmware::kDemoFontCount && f < static_cast<int>(ws.Ftype.size()); ++f) {
            const std::size_t d = ws.Ftype[static_cast<std::size_t>(f)].descriptorOffset;
            const std::uint32_t address = image[d] | image[d + 1] << 8 | image[d + 2] << 16 |
                                          static_cast<std::uint32_t>(image[d + 3]) << 24;
            result[static_cast<std::size_t>(f)].table = firmware::flashOffsetOf(address);
            ws.Ftype_Click(f);
            if (!ws.ListView2.empty())
                result[static_cast<std::size_t>(f)].firstRecord =
                    static_cast<std::uint64_t>(ws.ListView2.front().headerOffsetValue());
        }
        return result;
    }();
    return found;
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    places();
    fuzz::scratchFolder();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::InputCursor input(data, size);
    const int font = input.u8() % firmware::kDemoFontCount;
    const std::uint8_t flags = input.u8();
    const std::size_t descriptorBytes = input.u8() % (kDescriptorBytes + 1);

    std::vector<fuzz::Piece> pieces;
    if (flags & 1) pieces.push_back(input.take(firmware::kFontArrayPointerOffset, 9));
    pieces.push_back(input.take(firmware::kFontArrayE71v42, descriptorBytes));
    const FontPlaces& place = places()[static_cast<std::size_t>(font)];
    const std::size_t tableBytes = input.u16();
    const fuzz::Piece table = input.take(place.table, tableBytes);
    const fuzz::Piece records = input.rest(place.firstRecord);
    pieces.push_back(table);
    pieces.push_back(records);
    flash().splice(pieces);

    app::ScriptedInterface ui;
    app::Workspace ws(ui);
    ws.PictureMaxIndex = 0;
    ws.PathGiven = true;
    ws.CommandLinePath = flash().path();
    ws.mnu_FileOpen();
    ws.PathGiven = false;
    if (!ws.firmware) return 0;

    ws.TabStrip1_Click(2);
    ws.Ftype_Click(font);
    ws.BmpOutputFolder = fuzz::scratchFolder();
    int drawn = 0;
    int saved = 0;
    for (int r = 0; r < static_cast<int>(ws.ListView2.size()) && drawn < kMaxGlyphs; ++r) {
        const std::int64_t at = ws.ListView2[static_cast<std::size_t>(r)].headerOffsetValue();
        const bool changed = r < kAlwaysDrawn || static_cast<std::uint64_t>(r) * 8 < table.size ||
                             (at >= static_cast<std::int64_t>(records.offset) &&
                              at < static_cast<std::int64_t>(records.offset + records.size + 5));
        if (!changed) continue;
        ++drawn;
        ws.selectGlyph(r);
        ws.ListView2_Click();
        (void)ws.copyGlyphCell(8);
        if (ws.ActionFailed || saved >= kMaxSaved) continue;
        ++saved;
        ws.SingleSave = false;
        ws.GlyphShown = true;
        ws.SaveBMP();
    }
    if (flags & 2) {
        ui.inputs.push_back(std::string("12"));
        ui.saveFiles.push_back(fuzz::scratchFolder() + "/size.vkp");
        ws.mnuPopup2_ChangeFSize();
    }
    return 0;
}

// Opening a fullflash, identifying it, reading the picture index table and decoding pictures,
// on the demonstration fullflash with the input written over part of it.
//
// Input: flags, first record K (u16, taken modulo 1701), record count N, then
//   - with flag 1: 15 identification bytes (model, language pack, font array and font area
//     pointers, font count),
//   - N records of 12 bytes over records K.. of the picture index table,
//   - the rest over the picture data where record K of the demonstration image points.
// The table is read up to 16 records past the last one written (the whole table with flag 8:
// reading all 1701 rows takes most of a run). Every record written and every record whose data
// the input covers is decoded (at most 64), and the first one decoded is saved as GPF2 and BMP.
#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "support/scripted_interface.h"
#include "app/workspace.h"
#include "firmware/layout.h"
#include "fuzz_support.h"

namespace {

using namespace korvatek;

constexpr int kMaxDecoded = 64;
constexpr int kMaxSaved = 1;
constexpr int kTableTail = 16;

fuzz::SplicedFlash& flash() {
    static fuzz::SplicedFlash image;
    return image;
}

std::uint32_t pristineDataOffset(int record) {
    const Bytes& image = flash().pristine();
    const std::size_t at = firmware::kPictureTableOffset + static_cast<std::size_t>(record) * firmware::kPictureRecordSize + 8;
    const std::uint32_t address = image[at] | image[at + 1] << 8 | image[at + 2] << 16 | static_cast<std::uint32_t>(image[at + 3]) << 24;
    return firmware::flashOffsetOf(address);
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    flash();
    fuzz::scratchFolder();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::InputCursor input(data, size);
    const std::uint8_t flags = input.u8();
    const int first = input.u16() % firmware::kPictureCount;
    const int count = input.u8();

    std::vector<fuzz::Piece> pieces;
    if (flags & 1) {
        pieces.push_back(input.take(firmware::kModelOffset, 4));
        pieces.push_back(input.take(firmware::kLanguagePackOffset, 2));
        pieces.push_back(input.take(firmware::kFontArrayPointerOffset, 9));  // both pointers and the count
    }
    const fuzz::Piece records = input.take(
        firmware::kPictureTableOffset + static_cast<std::uint64_t>(first) * firmware::kPictureRecordSize,
        static_cast<std::size_t>(count) * firmware::kPictureRecordSize);
    pieces.push_back(records);
    const std::uint32_t dataStart = pristineDataOffset(first);
    const fuzz::Piece pictureData = input.rest(dataStart);
    pieces.push_back(pictureData);
    flash().splice(pieces);

    app::ScriptedInterface ui;
    app::Workspace ws(ui);
    if (!(flags & 8)) ws.PictureMaxIndex = std::min(firmware::kPictureMaxIndex, first + count + kTableTail);
    ws.PathGiven = true;
    ws.CommandLinePath = flash().path();
    ws.mnu_FileOpen();
    ws.PathGiven = false;
    if (ws.ActionFailed || !ws.firmware) return 0;

    // The rows to decode: those written, then those whose data the input covers.
    std::vector<int> rows;
    const int written = static_cast<int>(records.size / firmware::kPictureRecordSize);
    for (int r = first; r < first + written && r < firmware::kPictureCount; ++r) rows.push_back(r);
    for (int r = 0; r < firmware::kPictureCount && pictureData.size > 0; ++r) {
        const std::uint32_t at = pristineDataOffset(r);
        if (at >= dataStart && at < dataStart + pictureData.size && (r < first || r >= first + written))
            rows.push_back(r);
    }
    std::erase_if(rows, [&](int r) { return r >= static_cast<int>(ws.ListView1.size()); });
    if (rows.size() > kMaxDecoded) rows.resize(kMaxDecoded);

    ws.OutputFolder = fuzz::scratchFolder();
    ws.BmpOutputFolder = fuzz::scratchFolder();
    ws.BatchKeepAlpha = (flags & 2) != 0;
    int saved = 0;
    for (const int r : rows) {
        ws.selectPicture(r);
        if (flags & 4) {
            ws.ListView1_Click();
        } else {
            ws.SuppressAlphaPrompt = true;
            ws.LoadPIC();
        }
        (void)ws.copyPictureCell(7);
        if (ws.ActionFailed || saved >= kMaxSaved) continue;
        ++saved;
        ws.SingleSave = false;
        ws.SaveGPF();
        ws.GlyphShown = false;
        ws.SaveBMP();
    }
    return 0;
}

#pragma once
// The changes waiting in the two patches, kept as what they were made from, so that the picture
// patch can be planned again after one of them is taken back: the patch written then is the one
// a fresh session doing the remaining changes in order would write. The same list, on disk, is
// the journal that brings the changes back after a crash.

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/bytes.h"
#include "base/file_io.h"
#include "edit/picture_decode.h"
#include "edit/picture_patch.h"
#include "firmware/picture_record.h"
#include "fonts/font_patch.h"

namespace korvatek::app {

// A picture replacement as it was accepted, and where the last planning put it.
struct PendingPicture {
    std::shared_ptr<const ReadOnlyFile> flash;  // the fullflash it was planned on
    firmware::PictureRecord record;         // the picture it replaces
    std::int64_t oldLength = 0;             // the old data's listed length, as the patch compared it
    std::shared_ptr<const Bytes> container; // the container placed
    edit::DecodedPicture replacement;       // its size, type field and data length
    edit::PicturePlacement::Kind kind = edit::PicturePlacement::Kind::InPlace;
    std::uint32_t address = 0;              // where its data go
    std::int64_t length = 0;                // how many bytes
};

// One step that undo takes back and redo does again.
struct PendingStep {
    enum class Kind { AddPicture, RemovePicture, DropPictures, AddGlyph, RemoveGlyph, DropGlyphs };
    Kind kind = Kind::AddPicture;
    std::size_t index = 0;                      // where in its list the item was added or removed
    std::vector<PendingPicture> pictures;       // the picture concerned, or all of them for a drop
    std::vector<fonts::CollectedGlyph> glyphs;  // likewise for glyphs
    std::uint32_t freeSpaceBase = 0;            // where the picture patch's search began then
    int glyphFont = 0;                          // the font the glyph patch was for then
    bool isPicture() const { return kind == Kind::AddPicture || kind == Kind::RemovePicture || kind == Kind::DropPictures; }
};

// How much of the erased flash found for moved pictures the picture patch uses, and how much of
// that stretch is left after it.
struct FreeSpaceGauge {
    std::uint32_t start = 0;   // where the patch's search began
    std::uint64_t used = 0;    // bytes from there to where the next moved picture would go
    std::uint64_t left = 0;    // erased bytes from there on, to the stretch's end
};

// The journal: the fullflash the changes were made on (path, size and a checksum of its bytes),
// the pictures in order with the free-space start their patch began from, and the glyphs with
// their font.
struct PendingJournal {
    std::string flashPath;
    std::uint64_t flashSize = 0;
    std::uint64_t flashChecksum = 0;
    std::uint32_t freeSpaceBase = 0;
    int glyphFont = 0;
    struct Picture {
        int number = 0;
        std::int64_t oldLength = 0;
        Bytes container;
        edit::DecodedPicture replacement;
    };
    std::vector<Picture> pictures;
    std::vector<fonts::CollectedGlyph> glyphs;
    std::size_t changeCount() const { return pictures.size() + glyphs.size(); }
};

// A 64-bit FNV-1a checksum: enough to tell the fullflash the changes were made on from another.
std::uint64_t flashChecksum(ByteView bytes);

// The journal's text: a head naming the fullflash, then a line per change. Lines are added to
// the end as changes are made; a last line cut short by a crash has no line end and is left out.
std::string journalHead(const std::string& flashPath, std::uint64_t size, std::uint64_t checksum);
std::string journalLine(std::uint32_t freeSpaceBase, const PendingPicture& picture);
std::string journalLine(int glyphFont, const fonts::CollectedGlyph& glyph);

// Reads a journal; none when it is not one (a damaged head).
std::optional<PendingJournal> readJournal(std::string_view text);

// The erased stretch at `start` (the search start, 1-based as the search uses it) up to the
// first byte that is not 0xFF or the end of the image.
std::uint64_t erasedBytesFrom(ByteView flash, std::uint32_t start);

}  // namespace korvatek::app

#pragma once
// A fullflash opened for reading: identified, its fonts and its picture table listed. Nothing
// in it changes after opening; every edit reads from it and writes elsewhere.

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "base/file_io.h"
#include "base/result.h"
#include "firmware/identification.h"
#include "firmware/picture_record.h"

namespace korvatek::edit {

struct OpenedFlash {
    std::string path;
    std::shared_ptr<const app::ReadOnlyFile> file;
    std::string model;                 // "E71", "EL71", …
    std::string pack;                  // the two language pack characters
    std::string firmwareId;            // "lg91_E71_v42" or "Unknown LngPack"
    std::int64_t fontAreaOffset = 0;
    Bytes fontArrayAddress;            // the 4 bytes of the font array pointer, as stored
    std::vector<firmware::FontSelectorEntry> fonts;
    bool packSupported = false;        // without it the pictures are not listed (fonts only)
    std::vector<firmware::PictureRecord> pictures;
    std::uint64_t positionAfterTable = 0;  // just past the last index record read

    ByteView bytes() const { return file->bytes(); }
    std::uint64_t size() const { return file->size(); }
    // The size byte of font n's descriptor.
    std::uint8_t fontSize(std::size_t n) const;
};

// Opens and identifies a fullflash; the picture table (records 0..maxIndex from tableStart) is
// listed when the language pack is one the table is known for. Refused: a file that cannot be
// read, another phone's model (ModelNotSupported), a file too short (FlashTooShort).
Result<OpenedFlash> openFlash(const std::string& path, std::uint32_t tableStart, int maxIndex,
                              const std::function<void(double)>& progress = {});

}  // namespace korvatek::edit

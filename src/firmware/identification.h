#pragma once
// The fixed positions that tell whether a fullflash comes from a supported phone and
// firmware: the model text, the language pack, the font directory.

#include <cstdint>
#include <string>
#include <vector>

#include "base/byte_reader.h"

namespace korvatek::firmware {

// One entry of the font selector: "Font 0", "Font 1", … and the offset of its descriptor.
struct FontSelectorEntry {
    std::string caption;
    std::uint32_t descriptorOffset = 0;
};

// The 4 bytes at 0x8FC70 with trailing 0x00 bytes removed.
std::string readPhoneModel(ByteReader& flash);
// "EL71", "E71", "E71C" or "ELC1", exactly.
bool isSupportedModel(const std::string& model);

// The two characters at 0x81081.
std::string readLanguagePack(ByteReader& flash);
// "41", "42" or "45".
bool isSupportedLanguagePack(const std::string& pack);

// A phone address's fullflash offset: its 8-digit hex without the top digit.
inline std::uint32_t flashOffsetOf(std::uint32_t address) { return address & 0x0FFFFFFF; }

// One entry per font, descriptors 24 bytes apart from the array the pointer at 0x15C001C names.
std::vector<FontSelectorEntry> readFontSelector(ByteReader& flash);

// "lg91_E71_v42" or "lg03_El71_v41" by where font 0's descriptor lies; otherwise "Unknown LngPack".
std::string identifyFirmware(const std::vector<FontSelectorEntry>& fonts);

}  // namespace korvatek::firmware

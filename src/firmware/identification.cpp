#include "firmware/identification.h"

#include "base/hex_text.h"
#include "firmware/layout.h"

namespace korvatek::firmware {

std::string readPhoneModel(ByteReader& flash) {
    flash.seek(kModelOffset);
    std::string model = textOf(flash.bytes(4));
    while (!model.empty() && model.back() == '\0') model.pop_back();
    return model;
}

bool isSupportedModel(const std::string& model) {
    return model == "EL71" || model == "E71" || model == "E71C" || model == "ELC1";
}

std::string readLanguagePack(ByteReader& flash) {
    flash.seek(kLanguagePackOffset);
    return textOf(flash.bytes(2));
}

bool isSupportedLanguagePack(const std::string& pack) { return pack == "42" || pack == "45" || pack == "41"; }

std::vector<FontSelectorEntry> readFontSelector(ByteReader& flash) {
    flash.seek(kFontArrayPointerOffset);
    const std::uint32_t arrayOffset = flashOffsetOf(flash.u32le());
    flash.seek(kFontCountOffset);
    const int count = flash.u8();
    std::vector<FontSelectorEntry> fonts;
    for (int i = 0; i < count; ++i)
        fonts.push_back({"Font" + app::signedText(i), arrayOffset + kFontDescriptorSize * static_cast<std::uint32_t>(i)});
    return fonts;
}

std::string identifyFirmware(const std::vector<FontSelectorEntry>& fonts) {
    if (fonts.empty()) return "Unknown LngPack";
    if (fonts.front().descriptorOffset == kFontArrayE71v42) return "lg91_E71_v42";
    if (fonts.front().descriptorOffset == kFontArrayEl71v41) return "lg03_El71_v41";
    return "Unknown LngPack";
}

}  // namespace korvatek::firmware

#include "patch/lumbra_patch.h"

#include <cmath>

#include "app/hex_text.h"

namespace korvatek::patch {

namespace {

// Mid$(text, start, count), 1-based, shorter or empty past the end.
std::string mid(const std::string& text, std::size_t start, std::size_t count) {
    if (start == 0 || start > text.size()) return {};
    return text.substr(start - 1, count);
}

int hexByte(const std::string& text, std::size_t start) { return app::valHEX(mid(text, start, 2)) & 0xFF; }

// The marker that ends a section: 16 bytes 0x0F.
const std::string kMarker = [] {
    std::string m;
    for (int i = 0; i < 16; ++i) m += "0F";
    return m;
}();

}  // namespace

std::vector<std::string> splitLines(std::string_view text) {
    std::vector<std::string> lines;
    std::string current;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (c == '\r' || c == '\n') {
            lines.push_back(current);
            current.clear();
            if (c == '\r' && i + 1 < text.size() && text[i + 1] == '\n') ++i;
        } else {
            current.push_back(c);
        }
    }
    if (!current.empty()) lines.push_back(current);
    return lines;
}

std::vector<LumbraPicture> parseLumbraPatch(const std::vector<std::string>& lines) {
    std::vector<LumbraPicture> pictures;
    std::size_t i = 0;
    while (i < lines.size()) {
        const std::string& line = lines[i++];
        if (line.compare(0, kLumbraSectionStart.size(), kLumbraSectionStart) != 0) continue;
        LumbraPicture picture;
        // Up to four characters after the heading, ended by a blank.
        std::string digits = mid(line, 17, 4);
        if (const auto blank = digits.find(' '); blank != std::string::npos) digits.resize(blank);
        picture.number = static_cast<int>(app::valDecimal(digits));

        const std::string record = i < lines.size() ? lines[i++] : std::string();
        if (record.size() == 43) {  // 8-byte records: one byte each for width and height
            picture.width = hexByte(record, 28);
            picture.height = hexByte(record, 30);
            picture.typeCode = hexByte(record, 32);
        } else {                    // 12-byte records: two bytes each, low byte first
            picture.width = hexByte(record, 36) | (hexByte(record, 38) << 8);
            picture.height = hexByte(record, 40) | (hexByte(record, 42) << 8);
            picture.typeCode = hexByte(record, 44);
        }
        ++i;  // the empty line
        while (i < lines.size()) {
            const std::string& dataLine = lines[i++];
            if (dataLine.size() < 5) break;
            // The new part is the last (length - 11) / 2 characters, rounded half to even.
            const double half = (static_cast<double>(dataLine.size()) - 11) / 2;
            const auto count = half > 0 ? static_cast<std::size_t>(std::nearbyint(half)) : std::size_t{0};
            const std::string newPart = count >= dataLine.size() ? dataLine : dataLine.substr(dataLine.size() - count);
            if (newPart == kMarker) break;
            const Bytes bytes = app::HEXtext2ASCtext(newPart, false);
            picture.data.insert(picture.data.end(), bytes.begin(), bytes.end());
            if (!bytes.empty() && bytes.size() < 16) picture.data.insert(picture.data.end(), 16 - bytes.size(), 0);
        }
        pictures.push_back(std::move(picture));
    }
    return pictures;
}

}  // namespace korvatek::patch

#include "firmware/picture_record.h"

#include "base/hex_text.h"

namespace korvatek::firmware {

std::string PictureRecord::numberText() const { return app::zeroPadded(number, 4); }

std::string typeCellText(std::uint8_t type) {
    std::string text = app::hexText(type);
    if (type < 10) text.insert(text.begin(), '0');
    return text + "00";
}

std::string pictureCellText(const PictureRecord& record, int column) {
    switch (column) {
        case 1: return record.numberText();
        case 2: {
            std::string hex = app::hexText(static_cast<std::uint64_t>(record.number));
            if (record.number < 16) hex.insert(hex.begin(), '0');
            if (record.number < 256) hex.insert(hex.begin(), '0');
            return hex;
        }
        case 3: return std::to_string(record.width);
        case 4: return std::to_string(record.height);
        case 5: return typeCellText(record.type);
        case 6: return app::hexText(record.recordOffset);
        case 7: {
            // Seven digits: the address's eight without the top one.
            std::string hex = app::hexText(record.dataOffset());
            return std::string(hex.size() < 7 ? 7 - hex.size() : 0, '0') + hex;
        }
        default: return record.replaced ? "*" : "";
    }
}

}  // namespace korvatek::firmware

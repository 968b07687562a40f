#include "codec/picture_type.h"

namespace korvatek::codec {

std::optional<int> bitsForTypeCode(int typeCode) {
    switch (typeCode) {
        case 0x01: return 1;
        case 0x05: case 0x85: return 8;
        case 0x07: case 0x87: return 12;
        case 0x08: case 0x88: return 16;
        case 0x0A: case 0x8A: return 24;
        default: return std::nullopt;
    }
}

int sampleSize(int bits) {
    switch (bits) {
        case 8: return 1;
        case 12: case 16: return 2;
        case 24: return 4;
        default: return 0;
    }
}

}  // namespace korvatek::codec

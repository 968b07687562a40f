#include "containers/dat_header.h"

namespace korvatek::containers {

DatHeader LoadDAThead(ByteReader& in) {
    DatHeader header;
    header.width = static_cast<std::int16_t>(in.u16le());
    header.height = static_cast<std::int16_t>(in.u16le());
    header.typeText = std::string(1, static_cast<char>(in.u8()));
    return header;
}

Bytes SaveDAThead(int width, int height, std::string_view typeText) {
    const auto w = static_cast<std::uint16_t>(width);
    const auto h = static_cast<std::uint16_t>(height);
    Bytes out{static_cast<std::uint8_t>(w), static_cast<std::uint8_t>(w >> 8), static_cast<std::uint8_t>(h),
              static_cast<std::uint8_t>(h >> 8)};
    out.push_back(typeText.empty() ? 0 : static_cast<std::uint8_t>(typeText.front()));
    return out;
}

}  // namespace korvatek::containers

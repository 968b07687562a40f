#include "containers/gpf_header.h"

#include "base/hex_text.h"

namespace korvatek::containers {


Result<GpfHeader> LoadGPFhead(ByteReader& in) {
    const Bytes magic = in.bytes(kGpfMagicSize);
    const std::string text = textOf(magic);
    GpfHeader header;
    if (text == kGpf2Magic)
        header.isGPF2 = true;
    else if (text != kGpfMagic)
        return makeError(ErrorCode::BadMagic, {}, 0);

    in.skip(4);
    const std::size_t sizeWidth = header.isGPF2 ? 2 : 1;
    const Bytes width = in.bytes(sizeWidth);
    const Bytes height = in.bytes(sizeWidth);
    header.typeText = textOf(in.bytes(2));
    in.skip(header.isGPF2 ? 6 : 8);
    // Sizes go through the little-endian hex text, as every size of the tool does.
    header.width = app::valHEX(app::ASCtext2HEXtext(width, true));
    header.height = app::valHEX(app::ASCtext2HEXtext(height, true));
    return header;
}

namespace {

// A 16-bit size as its little-endian bytes, two of them even when one would do.
void putSize16(Bytes& out, int value) {
    Bytes bytes = app::HEXtext2ASCtext(app::hexText(static_cast<std::uint16_t>(value)), true);
    if (bytes.size() == 1) bytes.push_back(0);
    out.insert(out.end(), bytes.begin(), bytes.end());
}

}  // namespace

Bytes SaveGPFhead(bool isGPF2, int width, int height, std::string_view typeText) {
    Bytes out;
    out.reserve(kGpfHeaderSize);
    for (const char c : std::string_view(isGPF2 ? kGpf2Magic : kGpfMagic)) out.push_back(static_cast<std::uint8_t>(c));
    out.resize(out.size() + 4, 0);
    if (isGPF2) {
        putSize16(out, width);
        putSize16(out, height);
    } else {
        out.push_back(static_cast<std::uint8_t>(width));
        out.push_back(static_cast<std::uint8_t>(height));
    }
    out.insert(out.end(), typeText.begin(), typeText.end());
    out.insert(out.end(), isGPF2 ? 6 : 8, 0);
    return out;
}

void padContainer(Bytes& file) { file.insert(file.end(), 16 - file.size() % 16, 0); }

}  // namespace korvatek::containers

#include "edit/picture_files.h"

#include <algorithm>

#include "codec/bmp_file.h"
#include "codec/picture_encoder.h"
#include "codec/picture_type.h"
#include "codec/png_file.h"
#include "containers/dat_header.h"
#include "containers/gpf_header.h"
#include "edit/picture_decode.h"

namespace korvatek::edit {

Result<ContainerHead> readContainerHead(ByteReader& in, bool themeCache) {
    ContainerHead head;
    if (themeCache) {
        const containers::DatHeader dat = containers::LoadDAThead(in);
        head = {dat.width, dat.height, dat.typeText, false};
    } else {
        const auto gpf = containers::LoadGPFhead(in);
        if (!gpf) return gpf.error();
        head = {gpf->width, gpf->height, gpf->typeText, gpf->isGPF2};
    }
    if (head.width > codec::kMaxPictureWidth || head.height > codec::kMaxPictureHeight)
        return makeError(ErrorCode::PictureTooLarge);
    return head;
}

Status loadBmpPicture(ByteView file, codec::PixelCanvas& canvas) {
    ByteReader in(file);
    const codec::BmpHeadResult head = codec::LoadBMPhead(in);
    if (head.error) return *head.error;
    return codec::LoadBMP(in, head.header, canvas);
}

Status loadPngPicture(ByteView file, codec::PixelCanvas& canvas, PngFacts& facts) {
    ByteReader in(file);
    const codec::PngHeadResult head = codec::LoadPNGhead(in);
    facts.colourTypeName = head.head.colourTypeName;
    facts.resolutionText = head.head.resolutionText;
    if (head.error) return *head.error;
    return codec::decodePng(file, canvas);
}

Result<EncodedContainer> encodeContainer(const codec::PixelCanvas& canvas, const std::string& typeField, bool gpf2) {
    const int width = canvas.metaWidth;
    const int height = canvas.metaHeight;
    if (!gpf2 && !fitsVersion1(width, height)) return makeError(ErrorCode::GpfV1TooLarge);
    EncodedContainer out;
    out.bytes = containers::SaveGPFhead(gpf2, width, height, typeField);
    const int target = containers::typeCodeOf(typeField);
    if (target == codec::kTarget1Bit) {
        const Bytes data = codec::SaveGPFmono(canvas);
        out.bytes.insert(out.bytes.end(), data.begin(), data.end());
    } else {
        const codec::RunLengthResult encoded = codec::SaveGPFraw(canvas, target);
        if (encoded.outsideCanvas) return makeError(ErrorCode::OutsideCanvas);
        out.backSteps = encoded.stepsBeforeStart;
        out.bytes.insert(out.bytes.end(), encoded.data.begin(), encoded.data.end());
    }
    containers::padContainer(out.bytes);
    return out;
}

bool fitsVersion1(int width, int height) {
    return width >= 0 && height >= 0 && width <= containers::kGpf1MaxSize && height <= containers::kGpf1MaxSize;
}

Bytes convertThemeCache(ByteView source, const ContainerHead& head, bool fromThemeCache) {
    Bytes file = fromThemeCache ? containers::SaveGPFhead(true, head.width, head.height, head.typeText)
                                : containers::SaveDAThead(head.width, head.height, head.typeText);
    const std::size_t skip = fromThemeCache ? 4 : containers::kGpfHeaderSize;
    if (source.size() > skip) {
        file.insert(file.end(), source.begin() + static_cast<std::ptrdiff_t>(skip), source.end());
        file.push_back(source.back());
    } else {
        file.push_back(0);
    }
    return file;
}

Bytes swapContainerVersion(ByteView source, const ContainerHead& head, bool toVersion2) {
    Bytes file(source.begin(), source.end());
    const Bytes header = containers::SaveGPFhead(toVersion2, head.width, head.height, head.typeText);
    if (file.size() < header.size()) file.resize(header.size(), 0);
    std::copy(header.begin(), header.end(), file.begin());
    return file;
}

Bytes emptyContainer() {
    Bytes file = containers::SaveGPFhead(true, 1, 1, std::string{'\x01', '\0'});
    containers::padContainer(file);
    return file;
}

PixelGrid canvasGrid(const codec::PixelCanvas& canvas, int width, int height) {
    PixelGrid grid(std::clamp(width, 0, canvas.columns()), std::clamp(height, 0, canvas.rows()));
    for (int y = 0; y < grid.height; ++y)
        for (int x = 0; x < grid.width; ++x) {
            const codec::Cell& c = canvas.at(x, y);
            grid.set(x, y, 0xFF000000u | Colour{c[2]} << 16 | Colour{c[1]} << 8 | c[0]);
        }
    return grid;
}

Result<Bytes> gridBmp(const PixelGrid& grid) {
    codec::PixelCanvas canvas(std::max(grid.width, 1), std::max(grid.height, 1));
    canvas.metaWidth = grid.width;
    canvas.metaHeight = grid.height;
    canvas.metaDepth = 24;
    for (int y = 0; y < grid.height; ++y)
        for (int x = 0; x < grid.width; ++x) {
            const Colour c = grid.at(x, y);
            canvas.at(x, y) = {static_cast<std::uint8_t>(c), static_cast<std::uint8_t>(c >> 8), static_cast<std::uint8_t>(c >> 16), 0};
        }
    return codec::encodeBmp(canvas, 24);
}

Result<PixelGrid> storedPicture(const PixelGrid& grid, int targetType) {
    const auto bmp = gridBmp(grid);
    if (!bmp) return bmp.error();
    codec::PixelCanvas canvas;
    if (const Status loaded = loadBmpPicture(*bmp, canvas); !loaded) return loaded.error();
    const std::string typeField{static_cast<char>(targetType), '\0'};
    const auto encoded = encodeContainer(canvas, typeField, true);
    if (!encoded) return encoded.error();
    ByteReader in(encoded->bytes, 32);   // past the container header
    codec::PixelCanvas shown;
    const DecodedPicture decoded = decodeContainerData(in, canvas.metaWidth, canvas.metaHeight, typeField, 24, 0, shown);
    if (decoded.stopped) return *decoded.stopped;
    if (decoded.refused) return *decoded.refused;
    return canvasGrid(shown, canvas.metaWidth, canvas.metaHeight);
}

}  // namespace korvatek::edit

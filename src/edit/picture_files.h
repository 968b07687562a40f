#pragma once
// Pictures in files: the containers' heads (GPF, GPF2, theme cache), BMP and PNG read onto a
// canvas, and a canvas encoded into a container of a target type.

#include <string>

#include "base/byte_reader.h"
#include "base/result.h"
#include "codec/pixel_canvas.h"
#include "edit/pixel_edit.h"

namespace korvatek::edit {

struct ContainerHead {
    int width = 0;
    int height = 0;
    std::string typeText;   // the type field: the code and its second byte
    bool isGPF2 = false;
};

// A GPF/GPF2 head (themeCache false) or a theme cache head, leaving the reader at the data.
// Pictures above 240 x 320 are refused (PictureTooLarge).
Result<ContainerHead> readContainerHead(ByteReader& in, bool themeCache);

// A BMP onto the canvas; its size is the canvas's metaWidth/metaHeight afterwards.
Status loadBmpPicture(ByteView file, codec::PixelCanvas& canvas);

// A PNG onto the canvas. The colour type's name and the resolution text are read even when the
// PNG is then refused.
struct PngFacts {
    std::string colourTypeName;
    std::string resolutionText;
};
Status loadPngPicture(ByteView file, codec::PixelCanvas& canvas, PngFacts& facts);

struct EncodedContainer {
    Bytes bytes;
    int backSteps = 0;  // times the run-length scan stepped back before the first cell
};
// The canvas as a container of the type field's target (0x01 monochrome, 0x85, 0x88, 0x8A run
// length), version 2 or 1. Version 1 cannot hold sizes above 255 (GpfV1TooLarge).
Result<EncodedContainer> encodeContainer(const codec::PixelCanvas& canvas, const std::string& typeField, bool gpf2);

// GPF<>DAT: a container and a theme cache file into each other, the head rewritten from the
// picture's size and type. A theme cache head is skipped as 4 bytes, so its type byte travels
// as the first data byte; the copy writes once more after the last byte, repeating it.
Bytes convertThemeCache(ByteView source, const ContainerHead& head, bool fromThemeCache);
// GPF<>GPF2: the other version's head over the same data.
Bytes swapContainerVersion(ByteView source, const ContainerHead& head, bool toVersion2);
bool fitsVersion1(int width, int height);

// The 48-byte container of a 1 x 1 monochrome picture that stands in for a missing one.
Bytes emptyContainer();

// The editors' grids and the files they stand for. A canvas cell becomes an opaque colour (the
// transparent key keeps its own colour, R169 G171 B169, as a BMP carries it).
PixelGrid canvasGrid(const codec::PixelCanvas& canvas, int width, int height);
// The 24-bit BMP of a grid: what saving the edited pixels as a BMP would give.
Result<Bytes> gridBmp(const PixelGrid& grid);
// What the phone will show of a grid replaced as `targetType` (0x01, 0x85, 0x88 or 0x8A): its
// BMP encoded as the replacement would encode it, and decoded back.
Result<PixelGrid> storedPicture(const PixelGrid& grid, int targetType);

}  // namespace korvatek::edit

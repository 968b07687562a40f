#include "edit/picture_decode.h"

#include "base/hex_text.h"
#include "codec/picture_decoder.h"
#include "codec/picture_type.h"
#include "containers/gpf_header.h"

namespace korvatek::edit {

namespace {

void decodeInto(DecodedPicture& picture, ByteReader& in, int outputDepth, codec::PixelCanvas& canvas) {
    const std::uint64_t start = in.position();
    const Status decoded = codec::ConvertGPF2BMPdata(
        in, {picture.width, picture.height, picture.bits, picture.compression, outputDepth}, canvas);
    picture.end = in.position();
    picture.dataLength = picture.end - start;
    if (decoded) return;
    // Pixels outside the canvas stop the picture; a refused format is told and goes on.
    if (decoded.error().code == ErrorCode::OutsideCanvas)
        picture.stopped = decoded.error();
    else
        picture.refused = decoded.error();
}

}  // namespace

int pictureBits(int typeCode, int carriedBits) { return codec::bitsForTypeCode(typeCode).value_or(carriedBits); }

DecodedPicture decodeFlashPicture(ByteView flash, const firmware::PictureRecord& record, int outputDepth,
                                  int carriedBits, codec::PixelCanvas& canvas) {
    DecodedPicture picture;
    // The old program positioned the file with a read of the byte before the data; at offset 0
    // that read would fall before the file, so nothing can be decoded there.
    if (record.dataOffset() == 0) {
        picture.bits = carriedBits;
        picture.stopped = makeError(ErrorCode::BadOffset);
        return picture;
    }
    picture.width = record.width;
    picture.height = record.height;
    picture.typeCode = record.listedType();
    picture.typeText = std::string{static_cast<char>(picture.typeCode), '\0'};
    picture.compression = codec::compressionText(picture.typeCode);
    picture.bits = pictureBits(picture.typeCode, carriedBits);
    ByteReader in(flash, record.dataOffset());
    decodeInto(picture, in, outputDepth, canvas);
    return picture;
}

DecodedPicture decodeContainerData(ByteReader& in, int width, int height, const std::string& typeText,
                                   int outputDepth, int carriedBits, codec::PixelCanvas& canvas) {
    DecodedPicture picture;
    picture.width = width;
    picture.height = height;
    picture.typeText = typeText;
    picture.typeCode = containers::typeCodeOf(typeText);
    picture.compression = picture.typeCode >= 129 ? "Yes" : "No";
    picture.bits = pictureBits(picture.typeCode, carriedBits);
    decodeInto(picture, in, outputDepth, canvas);
    return picture;
}

std::string pictureInformation(const DecodedPicture& p) {
    return "Width:" + app::signedText(p.width) + "\r" + "Height:" + app::signedText(p.height) + "\r" +
           "Bits:" + app::signedText(p.bits) + "\r" + "Compression: " + p.compression + "\r" + "\r" +
           "Lenght: 0x" + app::hexText(p.dataLength);
}

Bytes flashPictureContainer(ByteView flash, const firmware::PictureRecord& record, const DecodedPicture& picture) {
    const std::string typeText{static_cast<char>(record.listedType()), '\0'};
    Bytes file = containers::SaveGPFhead(true, picture.width, picture.height, typeText);
    const std::uint64_t start = record.dataOffset();
    const std::uint64_t count = picture.end >= start ? picture.end - start + 1 : 1;
    ByteReader in(flash, start);
    const std::size_t headerSize = file.size();
    file.resize(headerSize + static_cast<std::size_t>(count));
    in.read(file.data() + headerSize, static_cast<std::size_t>(count));
    containers::padContainer(file);
    return file;
}

}  // namespace korvatek::edit

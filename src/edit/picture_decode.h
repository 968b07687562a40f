#pragma once
// Decoding one picture: from the fullflash by its record, or from a container's data. The
// decoder draws on a canvas the caller keeps (cells a picture does not cover keep what was
// drawn before, as the preview always has) and carries the bit depth from one picture to the
// next (a type code without a format keeps the depth of the picture before it).

#include <cstdint>
#include <optional>
#include <string>

#include "base/byte_reader.h"
#include "base/result.h"
#include "codec/pixel_canvas.h"
#include "firmware/picture_record.h"

namespace korvatek::edit {

struct DecodedPicture {
    int width = 0;
    int height = 0;
    int typeCode = 0;
    std::string typeText;           // the 2-byte type field: the code and its second byte
    int bits = 0;                   // the depth decoded with (carried over for an unknown code)
    std::string compression = "No";
    std::uint64_t dataLength = 0;   // bytes the decoder consumed
    std::uint64_t end = 0;          // the reader's position after them
    std::optional<Error> stopped;   // nothing to show: no data offset, pixels outside the canvas
    std::optional<Error> refused;   // a format the decoder refuses: told, and the action goes on
};

// The depth a type code decodes with, given the depth of the picture before.
int pictureBits(int typeCode, int carriedBits);

// Picture `record` of the fullflash. A record whose data offset is 0 stops before anything is
// read (dataLength 0; nothing else of the result is set).
DecodedPicture decodeFlashPicture(ByteView flash, const firmware::PictureRecord& record, int outputDepth,
                                  int carriedBits, codec::PixelCanvas& canvas);

// A container's data from the reader's position, the header already read.
DecodedPicture decodeContainerData(ByteReader& in, int width, int height, const std::string& typeText,
                                   int outputDepth, int carriedBits, codec::PixelCanvas& canvas);

// One decoder for a run of pictures: it owns the canvas and the depth carried between them.
class PictureDecoder {
public:
    DecodedPicture flashPicture(ByteView flash, const firmware::PictureRecord& record, int outputDepth) {
        return keep(decodeFlashPicture(flash, record, outputDepth, m_bits, m_canvas));
    }
    DecodedPicture containerData(ByteReader& in, int width, int height, const std::string& typeText, int outputDepth) {
        return keep(decodeContainerData(in, width, height, typeText, outputDepth, m_bits, m_canvas));
    }
    // The depth a type code would decode with next.
    int bitsFor(int typeCode) const { return pictureBits(typeCode, m_bits); }
    const codec::PixelCanvas& canvas() const { return m_canvas; }
    codec::PixelCanvas& canvas() { return m_canvas; }

private:
    DecodedPicture keep(DecodedPicture picture) {
        m_bits = picture.bits;
        return picture;
    }
    codec::PixelCanvas m_canvas;
    int m_bits = 0;
};

// "Width: 16\rHeight: 16\rBits: 16\rCompression: Yes\r\rLenght: 0x1F0"
std::string pictureInformation(const DecodedPicture& picture);

// The GPF2 container of a decoded fullflash picture: its header (the type as the list gives it
// back) and the data from the record's offset to where decoding stopped, one byte more (that
// byte has always been part of the file), padded.
Bytes flashPictureContainer(ByteView flash, const firmware::PictureRecord& record, const DecodedPicture& picture);

}  // namespace korvatek::edit

#include "codec/png_file.h"

#include <png.h>

#include <csetjmp>
#include <cstring>
#include <vector>

#include "base/hex_text.h"
#include "codec/picture_type.h"

namespace korvatek::codec {


std::string colourTypeName(int colourType) {
    switch (colourType) {
        case 0: return "Greyscale";
        case 2: return "Truecolour";
        case 3: return "Indexed-colour";
        case 4: return "Greyscale with alpha";
        case 6: return "Truecolour with alpha";
        default: return "";
    }
}

namespace {

// A 4-byte big-endian number, read as the tool reads every size: through its hex text.
int bigEndianNumber(ByteReader& in) { return app::valHEX(app::ASCtext2HEXtext(in.bytes(4), false)); }

std::string inches(int perMetre) {
    // 39.375 is the divisor the tool has always used (not 39.37).
    const double value = perMetre / 39.375;
    char text[32];
    std::snprintf(text, sizeof text, "%g", value);
    return text;
}

}  // namespace

PngHeadResult LoadPNGhead(ByteReader& in) {
    PngHeadResult result;
    const Bytes signature = in.bytes(8);
    if (std::memcmp(signature.data(), kPngSignature, 8) != 0) {
        result.error = makeError(ErrorCode::BadMagic, {}, 0);
        return result;
    }
    PngHead& head = result.head;
    while (!in.atEnd()) {
        const std::uint32_t length = in.u32be();
        const std::string type = textOf(in.bytes(4));
        if (type == "IHDR") {
            head.width = bigEndianNumber(in);
            head.height = bigEndianNumber(in);
            head.bitDepth = in.u8();
            head.colourType = in.u8();
            head.colourTypeName = colourTypeName(head.colourType);
            in.skip(3 + 4);  // compression, filter, interlace; CRC
        } else if (type == "pHYs") {
            const int x = bigEndianNumber(in);
            const int y = bigEndianNumber(in);
            const int unit = in.u8();
            head.resolutionText = unit == 1 ? "Values in inch " + inches(x) + " x " + inches(y) : "Aspect Ratio only..";
            in.skip(4);
        } else {
            in.skip(static_cast<std::uint64_t>(length) + 4);
        }
    }
    if (head.width > kMaxPictureWidth || head.height > kMaxPictureHeight)
        result.error = makeError(ErrorCode::PictureTooLarge);
    return result;
}

namespace {

// Everything libpng touches lives here, outside the frame that may be jumped over.
struct PngJob {
    ByteView data;
    std::size_t position = 0;
    png_uint_32 width = 0;
    png_uint_32 height = 0;
    int colourType = 0;
    std::size_t channels = 0;
    std::vector<std::uint8_t> pixels;
    std::vector<png_bytep> rows;
};

void readFromMemory(png_structp png, png_bytep out, png_size_t length) {
    auto* job = static_cast<PngJob*>(png_get_io_ptr(png));
    if (length > job->data.size() - job->position) png_error(png, "truncated");
    std::memcpy(out, job->data.data() + job->position, length);
    job->position += length;
}

void onError(png_structp png, png_const_charp) { png_longjmp(png, 1); }
void onWarning(png_structp, png_const_charp) {}

// Runs inside the setjmp frame of decodeInto; it keeps nothing with a destructor on its stack.
void readImage(png_structp png, png_infop info, PngJob* job) {
    png_set_read_fn(png, job, readFromMemory);
    png_read_info(png, info);
    job->width = png_get_image_width(png, info);
    job->height = png_get_image_height(png, info);
    job->colourType = png_get_color_type(png, info);
    if (job->width == 0 || job->height == 0 || job->width > static_cast<png_uint_32>(kMaxPictureWidth) ||
        job->height > static_cast<png_uint_32>(kMaxPictureHeight))
        png_error(png, "size");
    png_set_expand(png);
    png_set_strip_16(png);
    png_set_gray_to_rgb(png);
    png_set_interlace_handling(png);
    png_read_update_info(png, info);
    job->channels = png_get_channels(png, info);
    if (job->channels != 3 && job->channels != 4) png_error(png, "channels");
    const std::size_t stride = png_get_rowbytes(png, info);
    job->pixels.assign(stride * job->height, 0);
    job->rows.resize(job->height);
    for (png_uint_32 y = 0; y < job->height; ++y) job->rows[y] = job->pixels.data() + y * stride;
    png_read_image(png, job->rows.data());
    png_read_end(png, nullptr);
}

// Every allocation libpng could make on behalf of the file is bounded: the picture's size
// (nothing larger than the canvas is decoded), the size of any one chunk it keeps, and the
// number of chunks it keeps. Text, profile and other ancillary chunks are never kept nor
// decompressed: they are skipped as they are read, whatever length they claim.
void limitAllocations(png_structp png) {
    png_set_user_limits(png, static_cast<png_uint_32>(kMaxPictureWidth), static_cast<png_uint_32>(kMaxPictureHeight));
    png_set_chunk_malloc_max(png, 64u << 10);
    png_set_chunk_cache_max(png, 16);
    png_set_keep_unknown_chunks(png, PNG_HANDLE_CHUNK_NEVER, nullptr, 0);
    static const png_byte kSkipped[] = "tEXt\0zTXt\0iTXt\0iCCP\0sPLT\0eXIf\0pCAL\0sCAL\0hIST\0tIME\0bKGD\0cHRM\0sRGB\0gAMA\0sBIT\0pHYs\0oFFs";
    png_set_keep_unknown_chunks(png, PNG_HANDLE_CHUNK_NEVER, kSkipped, static_cast<int>(sizeof kSkipped / 5));
}

bool decodeInto(PngJob* job) {
    png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, onError, onWarning);
    if (png == nullptr) return false;
    png_infop info = png_create_info_struct(png);
    if (info == nullptr) {
        png_destroy_read_struct(&png, nullptr, nullptr);
        return false;
    }
    limitAllocations(png);
    if (setjmp(png_jmpbuf(png))) {
        png_destroy_read_struct(&png, &info, nullptr);
        return false;
    }
    readImage(png, info, job);
    png_destroy_read_struct(&png, &info, nullptr);
    return true;
}

}  // namespace

Status decodePng(ByteView file, PixelCanvas& canvas) {
    PngJob job;
    job.data = file;
    if (!decodeInto(&job)) return makeError(ErrorCode::BadMagic);
    const auto width = static_cast<int>(job.width);
    const auto height = static_cast<int>(job.height);
    if (width > canvas.columns() || height > canvas.rows())
        return makeError(ErrorCode::OutsideCanvas);
    // Only the types that carry alpha keep it; a palette's or grey's transparency is dropped.
    const bool keepAlpha = job.colourType == PNG_COLOR_TYPE_RGB_ALPHA || job.colourType == PNG_COLOR_TYPE_GRAY_ALPHA;
    for (int y = 0; y < height; ++y) {
        const std::uint8_t* row = job.rows[static_cast<std::size_t>(y)];
        for (int x = 0; x < width; ++x) {
            const std::uint8_t* p = row + static_cast<std::size_t>(x) * job.channels;
            const std::uint8_t alpha = keepAlpha && job.channels == 4 ? p[3] : 0xFF;
            canvas.at(x, y) = {p[2], p[1], p[0], alpha};
        }
    }
    canvas.metaWidth = width;
    canvas.metaHeight = height;
    return success();
}

Result<Bytes> encodePng(int width, int height, const std::vector<std::uint32_t>& argb) {
    if (width <= 0 || height <= 0 || argb.size() != static_cast<std::size_t>(width) * static_cast<std::size_t>(height))
        return Error{ErrorCode::FileUnwritable, {}, {}, {}};
    std::vector<std::uint8_t> rgba;
    rgba.reserve(argb.size() * 4);
    for (const std::uint32_t p : argb)
        for (const int shift : {16, 8, 0, 24}) rgba.push_back(static_cast<std::uint8_t>(p >> shift));
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(width);
    image.height = static_cast<png_uint_32>(height);
    image.format = PNG_FORMAT_RGBA;
    png_alloc_size_t size = 0;
    if (!png_image_write_to_memory(&image, nullptr, &size, 0, rgba.data(), 0, nullptr)) return Error{ErrorCode::FileUnwritable, {}, {}, {}};
    Bytes out(size);
    if (!png_image_write_to_memory(&image, out.data(), &size, 0, rgba.data(), 0, nullptr)) return Error{ErrorCode::FileUnwritable, {}, {}, {}};
    out.resize(size);
    return out;
}

}  // namespace korvatek::codec

#include "FileClaims.h"

#include <fmt/format.h>

#include <algorithm>
#include <limits>
#include <string>
#include <string_view>

#include "FileText.h"
#include "JpegSegments.h"
#include "PictureError.h"
#include "PictureFile.h"
#include "WebPFile.h"

namespace pictures {
namespace {

bool isInterlaced(std::span<const unsigned char> png) {
    constexpr std::size_t kInterlacing = 28;
    return png.size() > kInterlacing && png[kInterlacing] != 0;
}

constexpr int kRowsRead = 64;

int rowsPerStrip(const OIIO::ImageSpec& layout) {
    return std::min(layout.get_int_attribute("tiff:RowsPerStrip", layout.height), layout.height);
}

bool hasLongPlanes(const OIIO::ImageSpec& layout) {
    return layout.tile_width == 0 && layout.get_string_attribute("planarconfig") == "separate" &&
           rowsPerStrip(layout) > kRowsRead;
}

// What a tiled or an OpenEXR file compresses as one.
std::int64_t blockBytes(const OIIO::ImageSpec& layout) {
    constexpr int kMostRows = 256;
    const auto pixelBytes = static_cast<std::int64_t>(layout.pixel_bytes(true));
    if (layout.tile_width > 0) return std::int64_t{layout.tile_width} * layout.tile_height * pixelBytes;
    const bool isTall = layout.get_string_attribute("compression") == "dwab";
    return std::int64_t{layout.width} * std::min(layout.height, isTall ? kMostRows : kRowsRead) * pixelBytes;
}

// What the decoder holds beside the samples that it is asked for, at most; found by measuring.
std::int64_t heldByDecoder(const OIIO::ImageSpec& layout, FileFormat format, bool isReadByLibrary,
                           std::span<const unsigned char> bytes) {
    const auto pixels = static_cast<std::int64_t>(layout.image_pixels());
    const auto picture = static_cast<std::int64_t>(layout.image_bytes(true));
    switch (format) {
        case FileFormat::Png:
            return isInterlaced(bytes) ? picture : 0;
        case FileFormat::Targa:
            return isReadByLibrary ? picture : 0;
        case FileFormat::WebP:
            // All channels, or alpha alone, as they are before they become samples.
            return (isReadByLibrary ? picture : 0) + pixels * (WebPFile(bytes).isLossless() ? 7 : 1);
        case FileFormat::Jpeg:
            return 2 * coefficientsKept(bytes) * pixels;
        case FileFormat::OpenExr:
            return 5 * blockBytes(layout);
        case FileFormat::Tiff:
            if (layout.tile_width > 0) return 3 * blockBytes(layout);
            return hasLongPlanes(layout) ? 2 * picture : 0;
        case FileFormat::Dpx:
            return 0;
    }
    return 0;
}

void requireExtent(int width, int height, const ReadOptions& options) {
    if (width <= 0 || height <= 0) throw PictureError(kEmpty);
    if (width > kLargestExtent || height > kLargestExtent) {
        throw PictureError(fmt::format("it has {} x {} pixels, the largest is {} x {}; make it smaller",
                                       width, height, kLargestExtent, kLargestExtent));
    }
    const std::int64_t pixels = std::int64_t{width} * height;
    if (pixels > options.pixels) {
        throw PictureError(
            fmt::format("it has {} x {} pixels, {} in all, and --max-pixels allows {}; make it smaller, "
                        "or allow more",
                        width, height, pixels, options.pixels));
    }
}

void requireMemory(const ClaimedPicture& picture, std::int64_t heldBeside, const ReadOptions& options) {
    const std::int64_t samples = std::int64_t{picture.width} * picture.height * picture.pixelBytes;
    if (samples + heldBeside > options.bytes) {
        throw PictureError(
            fmt::format("its {} x {} pixels take more memory than --max-memory leaves to each "
                        "picture, {} MB; make it smaller, or allow more",
                        picture.width, picture.height, options.bytes >> 20));
    }
}

constexpr std::size_t kDeflated = 1032;

struct Expansion {
    std::string_view compression;
    std::size_t most;
};

// Of TIFF and OpenEXR, for a byte of the file.
constexpr Expansion kExpansions[] = {
    {"none", 1},
    {"lzw", 1400},  // strings of up to 3837 bytes, each one longer than another
    {"packbits", 64},
    {"rle", 64},
    {"zip", kDeflated},
    {"zips", kDeflated},
    {"pxr24", kDeflated * 4 / 3},  // three bytes of four
    {"piz", 512},                  // runs of 255 numbers of 16 bits in 9 bits
    {"b44", 3},                    // blocks of 32 bytes in 14
    {"b44a", 11},                  // or in 3
};

// How many bytes of samples a byte of the file can stand for at most; 0 where that is not known.
std::size_t mostExpansion(const OIIO::ImageSpec& layout, FileFormat format) {
    const std::string compression = layout.get_string_attribute("compression");
    const auto known = std::ranges::find(kExpansions, compression, &Expansion::compression);
    switch (format) {
        case FileFormat::Png:
            return kDeflated;
        case FileFormat::Tiff:
        case FileFormat::OpenExr:
            return known != std::end(kExpansions) ? known->most : 0;
        case FileFormat::Jpeg:
            return 8 * 64 * 3;  // a bit for each block of 64 pixels, of three channels
        case FileFormat::Dpx:
            return 2;  // packed
        case FileFormat::Targa:
            return 256;  // runs of 128 pixels in two bytes, and four bytes for each in a palette
        case FileFormat::WebP:
            return 0;
    }
    return 0;
}

// Of a file that is cut short what there is can be wanted all the same.
void requireBytesFor(const OIIO::ImageSpec& layout, FileFormat format, std::size_t fileSize,
                     bool acceptsDamage) {
    constexpr std::size_t kSamplesOfOneBit = 8 * 3;  // in a palette they are of three channels
    const bool isExact = format == FileFormat::OpenExr && !acceptsDamage;
    const std::size_t expansion = mostExpansion(layout, format) * (isExact ? 1 : kSamplesOfOneBit);
    if (expansion != 0 && layout.image_bytes(true) / expansion > fileSize) throw PictureError(kDamaged);
}

// The reader takes a strip whole, and counts its samples in an int.
void requireStrips(const OIIO::ImageSpec& layout) {
    const std::int64_t samples =
        std::max<std::int64_t>(rowsPerStrip(layout), 1) * layout.width * layout.nchannels;
    if (samples > std::numeric_limits<int>::max())
        throw PictureError("its strips are too large; save it with more strips, or with tiles");
}

}  // namespace

void requireBelievable(const OIIO::ImageSpec& layout, FileFormat format, const ClaimedPicture& picture,
                       std::span<const unsigned char> bytes, const ReadOptions& options) {
    requireExtent(picture.width, picture.height, options);
    requireExtent(layout.width, layout.height, options);
    requireMemory(picture, heldByDecoder(layout, format, picture.isReadByLibrary, bytes), options);
    if (format == FileFormat::Tiff) requireStrips(layout);
    requireBytesFor(layout, format, bytes.size(), options.acceptsDamage);
}

int rowsAtOnce(const OIIO::ImageSpec& layout) {
    if (layout.tile_height > 0) return layout.tile_height;
    return hasLongPlanes(layout) ? layout.height : kRowsRead;
}

}  // namespace pictures

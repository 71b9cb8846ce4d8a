#include "FileWorlds.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstring>
#include <utility>
#include <vector>

#include "CodeRows.h"
#include "Error.h"
#include "FailingAs.h"
#include "PictureError.h"
#include "PixelAccess.h"
#include "PixelOps.h"

namespace perch {
namespace {

namespace fs = std::filesystem;
using pictures::Codes;
using pictures::FileFormat;
using pictures::Picture;
using pictures::Rounding;
using pictures::SampleType;
using pictures::Transfer;

template <typename P>
pictures::Clipped fillWorld(const Picture& picture, Transfer transfer, const World& world) {
    pictures::Clipped clipped;
    std::vector<Codes> row(static_cast<std::size_t>(picture.width));
    for (std::int32_t y = 0; y < picture.height; ++y) {
        clipped += readCodes(picture, y, kWhite<P>, row, transfer);
        std::ranges::transform(row, pixelRow<P>(world.record(), y).begin(), [](const Codes& codes) {
            return P{static_cast<ChannelOf<P>>(codes.alpha), static_cast<ChannelOf<P>>(codes.red),
                     static_cast<ChannelOf<P>>(codes.green), static_cast<ChannelOf<P>>(codes.blue)};
        });
    }
    return clipped;
}

template <typename P>
void fillPicture(const World& world, Transfer transfer, Rounding rounding,
                 const pictures::EncodingOptions& encoding, Picture& picture) {
    std::vector<Codes> row(static_cast<std::size_t>(picture.width));
    for (std::int32_t y = 0; y < picture.height; ++y) {
        encoding.reachCheckpoint();
        std::ranges::transform(pixelRow<P>(world.record(), y), row.begin(), [](const P& pixel) {
            return Codes{pixel.alpha, pixel.red, pixel.green, pixel.blue};
        });
        writeCodes(row, kWhite<P>, y, picture, transfer, rounding);
    }
}

// Where the effect returned a pixel as it got it, the file's own samples are more exact than its codes.
template <typename P>
void keepSamples(const World& world, const FileWorld& source, const pictures::EncodingOptions& encoding,
                 Picture& picture) {
    std::vector<std::uint8_t> isSame(static_cast<std::size_t>(picture.width));
    for (std::int32_t y = 0; y < picture.height; ++y) {
        encoding.reachCheckpoint();
        std::ranges::transform(pixelRow<P>(world.record(), y), pixelRow<P>(source.pixels.record(), y),
                               isSame.begin(), [](const P& after, const P& before) {
                                   return std::memcmp(&after, &before, sizeof(P)) == 0 ? 1 : 0;
                               });
        copyPixels(*source.source, isSame, y, picture);
    }
}

bool canKeepSamples(const World& world, const FileWorld& source, const Picture& picture) {
    const Picture& from = *source.source;
    return from.width == picture.width && from.height == picture.height &&
           from.samples.index() == picture.samples.index() &&
           from.isPremultiplied == picture.isPremultiplied && world.isDeep() == source.pixels.isDeep();
}

template <typename P>
bool needsNoAlphaAs(const World& world) {
    for (std::int32_t y = 0; y < world.height(); ++y) {
        const auto isTransparent = [](const P& pixel) { return pixel.alpha < kWhite<P>; };
        if (std::ranges::any_of(pixelRow<P>(world.record(), y), isTransparent)) return false;
    }
    return true;
}

template <typename P>
bool isGreyAs(const World& world) {
    for (std::int32_t y = 0; y < world.height(); ++y) {
        const auto isColour = [](const P& pixel) {
            return pixel.red != pixel.green || pixel.red != pixel.blue;
        };
        if (std::ranges::any_of(pixelRow<P>(world.record(), y), isColour)) return false;
    }
    return true;
}

bool isGrey(const World& world) {
    return world.isDeep() ? isGreyAs<PF_Pixel16>(world) : isGreyAs<PF_Pixel>(world);
}

void fill(const World& world, Transfer transfer, const OutputFormat& format, Picture& picture) {
    if (world.isDeep()) {
        const bool dithers = format.isDithered && format.type == SampleType::Bits8;
        fillPicture<PF_Pixel16>(world, transfer, dithers ? Rounding::Dithered : Rounding::Nearest,
                                format.encoding, picture);
    } else {
        fillPicture<PF_Pixel>(world, transfer, Rounding::Nearest, format.encoding, picture);
    }
}

std::int32_t smallerExtent(std::int32_t extent, const PF_RationalScale& scale) {
    return static_cast<std::int32_t>((std::int64_t{extent} * scale.num + scale.den - 1) / scale.den);
}

// Light in floats stays encoded as sRGB in files of codes, whose readers expect that; a logarithm nobody
// expects.
Transfer transferToUndo(const FileWorld& source, SampleType written) {
    const bool staysEncoded =
        source.transfer == Transfer::Srgb && isFloat(source.source->type()) && !isFloat(written);
    return staysEncoded ? Transfer::Linear : source.transfer;
}

// TIFF has both, and keeps what it was. Readers take the alpha of DPX for associated.
bool isWrittenPremultiplied(const fs::path& path, const Picture& source) {
    const std::optional<FileFormat> format = pictures::formatOfName(path);
    return format && (isAssociated(*format) || (format == FileFormat::Tiff && source.isPremultiplied));
}

}  // namespace

SharedPicture readPictureFile(const fs::path& path, const std::string& selected,
                              const pictures::ReadOptions& options) {
    return failingAs<InputError>(
        [&] { return std::make_shared<const Picture>(pictures::readPicture(path, selected, options)); });
}

Depth depthOf(const Picture& picture) {
    return picture.type() == SampleType::Bits8 ? Depth::Bits8 : Depth::Bits16;
}

FileWorld worldOf(const SharedPicture& picture, Depth depth, Transfer transfer) {
    const bool isDeep = depth == Depth::Bits16;
    FileWorld world{World(picture->width, picture->height, isDeep), picture, transfer};
    world.clippedPixels = isDeep ? fillWorld<PF_Pixel16>(*picture, transfer, world.pixels)
                                 : fillWorld<PF_Pixel>(*picture, transfer, world.pixels);
    return world;
}

FileWorld resized(FileWorld picture, const PF_RationalScale& scale) {
    if (scale.num == static_cast<A_long>(scale.den)) return picture;
    World& pixels = picture.pixels;
    World smaller(smallerExtent(pixels.width(), scale), smallerExtent(pixels.height(), scale),
                  pixels.isDeep());
    copyWorldFiltered(pixels.record(), nullptr, smaller.record(), nullptr);
    pixels = std::move(smaller);
    return picture;
}

FileWorld readWorld(const fs::path& path, std::optional<Depth> depth) {
    const SharedPicture picture = readPictureFile(path);
    return worldOf(picture, depth.value_or(depthOf(*picture)));
}

Picture pictureOf(const World& world, const FileWorld& source, SampleType type) {
    Picture picture = pictures::newPicture(world.width(), world.height(), 4, type);
    fill(world, transferToUndo(source, type), {.type = type, .encoding = {}}, picture);
    return picture;
}

bool needsNoAlpha(const World& world) {
    return world.isDeep() ? needsNoAlphaAs<PF_Pixel16>(world) : needsNoAlphaAs<PF_Pixel>(world);
}

void prepareOutputs(std::span<const fs::path> paths) {
    failingAs<OutputError>([&] { pictures::prepareOutputs(paths); });
}

void requirePlaces(std::span<const fs::path> paths) {
    failingAs<OutputError>([&] { pictures::requirePlaces(paths); });
}

void requireOutput(const fs::path& path, SampleType type, bool withAlpha) {
    try {
        pictures::requireFormatFor(path, type, withAlpha);
    } catch (const pictures::PictureError& error) {
        const std::optional<FileFormat> format = pictures::formatOfName(path);
        const bool isOfDepth = format && isWritten(*format) && !holds(*format, type);
        throw OutputError(isOfDepth ? fmt::format("{}, or another --output-depth", error.what())
                                    : error.what());
    }
}

std::vector<std::string> writeWorld(const fs::path& path, const World& world, const FileWorld& source,
                                    const OutputFormat& format) {
    // An effect may make an opaque picture transparent.
    const bool withAlpha = source.source->hasAlpha() || !needsNoAlpha(world);
    requireOutput(path, format.type, withAlpha);
    const bool staysGrey = source.source->channels < 3 && isGrey(world);
    Picture picture = pictures::newPicture(world.width(), world.height(),
                                           (staysGrey ? 1U : 3U) + (withAlpha ? 1U : 0U), format.type);
    picture.isPremultiplied = withAlpha && isWrittenPremultiplied(path, *source.source);
    picture.metadata = source.source->metadata;
    fill(world, transferToUndo(source, format.type), format, picture);
    if (canKeepSamples(world, source, picture)) {
        if (world.isDeep()) {
            keepSamples<PF_Pixel16>(world, source, format.encoding, picture);
        } else {
            keepSamples<PF_Pixel>(world, source, format.encoding, picture);
        }
    }
    return failingAs<OutputError>([&] { return pictures::writePicture(path, picture, format.encoding); });
}

void writeWorld(const fs::path& path, const World& world, bool withAlpha,
                const pictures::EncodingOptions& encoding) {
    const SampleType type = world.isDeep() ? SampleType::Bits16 : SampleType::Bits8;
    requireOutput(path, type, withAlpha);
    Picture picture = pictures::newPicture(world.width(), world.height(), withAlpha ? 4 : 3, type);
    fill(world, Transfer::Linear, {.type = type, .encoding = encoding}, picture);
    failingAs<OutputError>([&] { pictures::writePicture(path, picture, encoding); });
}

}  // namespace perch

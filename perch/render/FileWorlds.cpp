#include "FileWorlds.h"

#include <fmt/format.h>

#include <algorithm>
#include <vector>

#include "CodeRows.h"
#include "Error.h"
#include "PictureError.h"
#include "PixelAccess.h"

namespace perch {
namespace {

namespace fs = std::filesystem;
using pictures::Codes;
using pictures::Picture;
using pictures::SampleType;

// What the pictures report is a failure of the host as any other.
template <typename F>
auto asError(const F& body) {
    try {
        return body();
    } catch (const pictures::PictureError& error) {
        throw Error(error.what());
    }
}

SampleType typeOf(Depth depth) {
    return depth == Depth::Bits16 ? SampleType::Bits16 : SampleType::Bits8;
}

template <typename P>
void fillWorld(const Picture& picture, const World& world) {
    std::vector<Codes> row(static_cast<std::size_t>(picture.width));
    for (std::int32_t y = 0; y < picture.height; ++y) {
        readCodes(picture, y, kWhite<P>, row);
        std::ranges::transform(row, pixelRow<P>(world.record(), y).begin(), [](const Codes& codes) {
            return P{static_cast<ChannelOf<P>>(codes.alpha), static_cast<ChannelOf<P>>(codes.red),
                     static_cast<ChannelOf<P>>(codes.green), static_cast<ChannelOf<P>>(codes.blue)};
        });
    }
}

template <typename P>
void fillPicture(const World& world, Picture& picture) {
    std::vector<Codes> row(static_cast<std::size_t>(picture.width));
    for (std::int32_t y = 0; y < picture.height; ++y) {
        std::ranges::transform(pixelRow<P>(world.record(), y), row.begin(), [](const P& pixel) {
            return Codes{pixel.alpha, pixel.red, pixel.green, pixel.blue};
        });
        writeCodes(row, kWhite<P>, y, picture);
    }
}

template <typename P>
bool needsNoAlphaAs(const World& world) {
    for (std::int32_t y = 0; y < world.height(); ++y) {
        const auto isTransparent = [](const P& pixel) { return pixel.alpha < kWhite<P>; };
        if (std::ranges::any_of(pixelRow<P>(world.record(), y), isTransparent)) return false;
    }
    return true;
}

}  // namespace

FileWorld readWorld(const fs::path& path, std::optional<Depth> depth) {
    const Picture picture = asError([&] { return pictures::readPicture(path); });
    const bool isDeep = depth ? *depth == Depth::Bits16 : picture.type() == SampleType::Bits16;
    FileWorld world{World(picture.width, picture.height, isDeep), picture.hasAlpha()};
    if (isDeep) {
        fillWorld<PF_Pixel16>(picture, world.pixels);
    } else {
        fillWorld<PF_Pixel>(picture, world.pixels);
    }
    return world;
}

bool needsNoAlpha(const World& world) {
    return world.isDeep() ? needsNoAlphaAs<PF_Pixel16>(world) : needsNoAlphaAs<PF_Pixel>(world);
}

void prepareOutputs(std::span<const fs::path> paths) {
    asError([&] { pictures::prepareOutputs(paths); });
}

void requireWritable(const fs::path& path, Depth depth, bool withAlpha) {
    const auto format = pictures::formatOfName(path);
    if (format && !pictures::holds(*format, typeOf(depth))) {
        throw Error(
            fmt::format("cannot write \"{}\": JPEG holds 8 bits per channel and the picture has 16; use "
                        ".png or .tif, or --depth 8",
                        path.string()));
    }
    asError([&] { pictures::requireWritable(path, typeOf(depth), withAlpha); });
}

void writeWorld(const fs::path& path, const World& world, bool withAlpha, int compression) {
    requireWritable(path, world.isDeep() ? Depth::Bits16 : Depth::Bits8, withAlpha);
    Picture picture = pictures::newPicture(world.width(), world.height(), withAlpha ? 4 : 3,
                                           world.isDeep() ? SampleType::Bits16 : SampleType::Bits8);
    if (world.isDeep()) {
        fillPicture<PF_Pixel16>(world, picture);
    } else {
        fillPicture<PF_Pixel>(world, picture);
    }
    asError([&] { pictures::writePicture(path, picture, compression); });
}

}  // namespace perch

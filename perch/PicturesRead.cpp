#include <OpenImageIO/imageio.h>
#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "Error.h"
#include "FileCodes.h"
#include "PictureFileEnd.h"
#include "Pictures.h"
#include "PixelAccess.h"

namespace perch {
namespace {

namespace fs = std::filesystem;

constexpr char kAlphaIsStraight[] = "oiio:UnassociatedAlpha";

[[noreturn]] void refuse(const fs::path& path, std::string_view reason) {
    throw Error(fmt::format("cannot read \"{}\": {}", path.string(), reason));
}

// The file's samples, each widened to 16 bits, and how they are meant.
struct Samples {
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::size_t channels = 0;  // 1 grey, 2 grey and alpha, 3 RGB, 4 RGBA
    bool isPremultiplied = false;
    Depth depth = Depth::Bits8;
    std::vector<std::uint16_t> values;

    bool hasAlpha() const { return channels % 2 == 0; }
};

std::string_view depthName(OIIO::TypeDesc type) {
    if (type == OIIO::TypeHalf) return "16-bit floating-point";
    if (type == OIIO::TypeFloat) return "32-bit floating-point";
    if (type == OIIO::TypeInt32 || type == OIIO::TypeUInt32) return "32-bit integer";
    return type.c_str();
}

void requireSupported(const fs::path& path, const OIIO::ImageInput& file) {
    const OIIO::ImageSpec& layout = file.spec();
    const std::string_view format = file.format_name();
    if (layout.format != OIIO::TypeUInt8 && layout.format != OIIO::TypeUInt16) {
        refuse(path, fmt::format("it has {} channels; convert it to 8 or 16 bits per channel",
                                 depthName(layout.format)));
    }
    if (format != "png" && format != "tiff" && format != "jpeg") {
        refuse(path, fmt::format("it is a {} file; convert it to PNG, TIFF or JPEG", format));
    }
    if (layout.width <= 0 || layout.height <= 0) refuse(path, "it has no pixels; save it again");
    if (layout.width > kLargestExtent || layout.height > kLargestExtent) {
        refuse(path, fmt::format("it has {} x {} pixels, the largest is {} x {}; make it smaller",
                                 layout.width, layout.height, kLargestExtent, kLargestExtent));
    }
    if (layout.nchannels < 1 || layout.nchannels > 4) {
        refuse(path, fmt::format("it has {} channels; convert it to grey or RGB, with or without alpha",
                                 layout.nchannels));
    }
}

void requireFile(const fs::path& path) {
    std::error_code ignored;
    const fs::file_status status = fs::status(path, ignored);
    if (!fs::exists(status)) refuse(path, "there is no such file; check the name");
    if (fs::is_directory(status)) refuse(path, "it is a folder; name a picture file");
    if (!fs::is_regular_file(status)) refuse(path, "it is not a file; name a picture file");
    if (!std::ifstream(path)) refuse(path, "it cannot be opened; check its permissions");
}

Samples readSamples(const fs::path& path) {
    requireFile(path);
    OIIO::ImageSpec keepAlpha;
    keepAlpha[kAlphaIsStraight] = 1;
    const std::unique_ptr<OIIO::ImageInput> file = OIIO::ImageInput::open(path.string(), &keepAlpha);
    if (file == nullptr) {
        OIIO::geterror();  // an error not fetched is printed at exit
        refuse(path, "it is no picture or a damaged one; name a PNG, TIFF or JPEG file");
    }
    requireSupported(path, *file);
    const OIIO::ImageSpec& layout = file->spec();
    Samples samples{.width = layout.width,
                    .height = layout.height,
                    .channels = static_cast<std::size_t>(layout.nchannels),
                    .isPremultiplied = layout.get_int_attribute(kAlphaIsStraight) == 0,
                    .depth = layout.format == OIIO::TypeUInt16 ? Depth::Bits16 : Depth::Bits8,
                    .values = {}};
    samples.values.resize(layout.image_pixels() * samples.channels);
    // The error is asked for as well: the reader leaves missing parts of a TIFF file black and reports
    // success.
    const bool isRead = reachesItsEnd(path, file->format_name()) &&
                        file->read_image(0, 0, 0, layout.nchannels, OIIO::TypeUInt16, samples.values.data());
    const std::string error = file->geterror();
    if (!isRead || !error.empty()) refuse(path, "it is damaged or cut short; save or copy it again");
    return samples;
}

// Alpha, red, green and blue of 0 to 65535, alpha straight.
struct WidePixel {
    std::uint32_t alpha = kWhiteOfFiles;
    std::uint32_t red = 0;
    std::uint32_t green = 0;
    std::uint32_t blue = 0;
};

std::uint32_t divideByAlpha(std::uint32_t value, std::uint32_t alpha) {
    return std::min(rescale(value, alpha, kWhiteOfFiles), kWhiteOfFiles);
}

WidePixel pixelOf(const Samples& samples, const std::uint16_t* values) {
    const bool isGrey = samples.channels < 3;
    WidePixel pixel{kWhiteOfFiles, values[0], values[isGrey ? 0 : 1], values[isGrey ? 0 : 2]};
    if (!samples.hasAlpha()) return pixel;
    pixel.alpha = values[samples.channels - 1];
    if (!samples.isPremultiplied || pixel.alpha == 0) return pixel;
    return {pixel.alpha, divideByAlpha(pixel.red, pixel.alpha), divideByAlpha(pixel.green, pixel.alpha),
            divideByAlpha(pixel.blue, pixel.alpha)};
}

template <typename P>
void fillWorld(const Samples& samples, const World& world) {
    const auto toWorld = [](std::uint32_t value) {
        return static_cast<ChannelOf<P>>(rescale(value, kWhiteOfFiles, kWhite<P>));
    };
    const std::uint16_t* values = samples.values.data();
    for (std::int32_t y = 0; y < samples.height; ++y) {
        for (P& pixel : pixelRow<P>(world.record(), y)) {
            const WidePixel wide = pixelOf(samples, values);
            pixel = {toWorld(wide.alpha), toWorld(wide.red), toWorld(wide.green), toWorld(wide.blue)};
            values += samples.channels;
        }
    }
}

}  // namespace

Picture readPicture(const fs::path& path, std::optional<Depth> depth) {
    const Samples samples = readSamples(path);
    const bool isDeep = depth.value_or(samples.depth) == Depth::Bits16;
    Picture picture{World(samples.width, samples.height, isDeep), samples.hasAlpha()};
    if (isDeep) {
        fillWorld<PF_Pixel16>(samples, picture.pixels);
    } else {
        fillWorld<PF_Pixel>(samples, picture.pixels);
    }
    return picture;
}

}  // namespace perch

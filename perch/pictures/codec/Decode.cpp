#include <OpenImageIO/imageio.h>
#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "Error.h"
#include "PictureEnd.h"
#include "Pictures.h"
#include "PixelAccess.h"
#include "Rescale.h"

namespace perch {
namespace {

namespace fs = std::filesystem;

constexpr char kAlphaIsStraight[] = "oiio:UnassociatedAlpha";

[[noreturn]] void refuse(const fs::path& path, std::string_view reason) {
    throw Error(fmt::format("cannot read \"{}\": {}", path.string(), reason));
}

// The file's samples, and how they are meant.
struct Samples {
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::size_t channels = 0;  // 1 grey, 2 grey and alpha, 3 RGB, 4 RGBA
    bool isPremultiplied = false;
    std::variant<std::vector<std::uint8_t>, std::vector<std::uint16_t>> values;

    bool hasAlpha() const { return channels % 2 == 0; }
    Depth depth() const { return values.index() == 0 ? Depth::Bits8 : Depth::Bits16; }
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
        refuse(path, "it is not a picture, or a damaged one; name a PNG, TIFF or JPEG file");
    }
    requireSupported(path, *file);
    const OIIO::ImageSpec& layout = file->spec();
    Samples samples{.width = layout.width,
                    .height = layout.height,
                    .channels = static_cast<std::size_t>(layout.nchannels),
                    .isPremultiplied = layout.get_int_attribute(kAlphaIsStraight) == 0,
                    .values = {}};
    if (layout.format == OIIO::TypeUInt16) samples.values.emplace<std::vector<std::uint16_t>>();
    const auto readValues = [&](auto& values) {
        values.resize(layout.image_pixels() * samples.channels);
        return file->read_image(0, 0, 0, layout.nchannels, layout.format, values.data());
    };
    // The error is asked for as well: the reader leaves missing parts of a TIFF file black and reports
    // success.
    const bool isRead = reachesItsEnd(path, file->format_name()) && std::visit(readValues, samples.values);
    const std::string error = file->geterror();
    if (!isRead || !error.empty()) refuse(path, "it is damaged or cut short; save or copy it again");
    return samples;
}

// A code of the world for a sample of 0 to the most that its type holds.
template <typename P, typename T>
ChannelOf<P> codeOf(T sample) {
    return static_cast<ChannelOf<P>>(rescale(sample, std::numeric_limits<T>::max(), kWhite<P>));
}

// A sample and its alpha, on the scale of 16 bits, for the division's sake.
template <typename P>
ChannelOf<P> codeOverAlpha(std::uint32_t wideSample, std::uint32_t wideAlpha) {
    const std::uint32_t straight = std::min(rescale(wideSample, wideAlpha, kWhiteOfFiles), kWhiteOfFiles);
    return codeOf<P>(static_cast<std::uint16_t>(straight));
}

// The pixel of `kChannels` samples, alpha straight.
template <typename P, std::size_t kChannels, typename T>
P pixelOf(const T* samples, bool isPremultiplied) {
    constexpr bool kHasAlpha = kChannels % 2 == 0;
    constexpr std::size_t kGreen = kChannels < 3 ? 0 : 1;
    constexpr std::size_t kBlue = kChannels < 3 ? 0 : 2;
    constexpr T kOpaque = std::numeric_limits<T>::max();
    const T alpha = kHasAlpha ? samples[kChannels - 1] : kOpaque;
    if (!isPremultiplied || alpha == 0 || alpha == kOpaque) {
        return {codeOf<P>(alpha), codeOf<P>(samples[0]), codeOf<P>(samples[kGreen]),
                codeOf<P>(samples[kBlue])};
    }
    const auto wide = [](T sample) { return rescale(sample, kOpaque, kWhiteOfFiles); };
    const auto straight = [&](T sample) { return codeOverAlpha<P>(wide(sample), wide(alpha)); };
    return {codeOf<P>(alpha), straight(samples[0]), straight(samples[kGreen]), straight(samples[kBlue])};
}

template <typename P, std::size_t kChannels, typename T>
void fillRows(const Samples& samples, const T* values, const World& world) {
    for (std::int32_t y = 0; y < samples.height; ++y) {
        for (P& pixel : pixelRow<P>(world.record(), y)) {
            pixel = pixelOf<P, kChannels>(values, samples.isPremultiplied);
            values += kChannels;
        }
    }
}

template <typename P>
void fillWorld(const Samples& samples, const World& world) {
    std::visit(
        [&]<typename T>(const std::vector<T>& values) {
            constexpr decltype(&fillRows<P, 1, T>) kFill[] = {fillRows<P, 1, T>, fillRows<P, 2, T>,
                                                              fillRows<P, 3, T>, fillRows<P, 4, T>};
            kFill[samples.channels - 1](samples, values.data(), world);
        },
        samples.values);
}

}  // namespace

Picture readPicture(const fs::path& path, std::optional<Depth> depth) {
    const Samples samples = readSamples(path);
    const bool isDeep = depth.value_or(samples.depth()) == Depth::Bits16;
    Picture picture{World(samples.width, samples.height, isDeep), samples.hasAlpha()};
    if (isDeep) {
        fillWorld<PF_Pixel16>(samples, picture.pixels);
    } else {
        fillWorld<PF_Pixel>(samples, picture.pixels);
    }
    return picture;
}

}  // namespace perch

#include <OpenImageIO/imageio.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <stdexcept>
#include <string_view>
#include <vector>

#include "Pictures.h"
#include "Resample.h"
#include "Rescale.h"
#include "WholeFile.h"

namespace {

using PILib::Channel15;
using PILib::Channel8;
using PILib::Pixel;
using PILib::PixelBuffer;
using PILib::SimplePixelBuffer;

constexpr char kAlphaIsStraight[] = "oiio:UnassociatedAlpha";
constexpr std::uint32_t kFileWhite = 65535;

[[noreturn]] void Refuse(const std::string& path, const std::string& reason) {
    throw std::runtime_error("\"" + path + "\" " + reason);
}

[[noreturn]] void RefuseDamaged(const std::string& path) {
    Refuse(path, "is damaged or cut short; copy or save it again");
}

// A picture as its file has it, every channel widened to 16 bits.
struct Samples {
    int width = 0;
    int height = 0;
    std::size_t channels = 0;  // 1 grey, 2 grey and alpha, 3 RGB, 4 RGBA
    bool hasAlpha = false;
    bool straight = true;  // also where the file does not say what its last channel is
    bool wide = false;     // the file has 16 bits per channel
    std::vector<std::uint16_t> values;
};

std::string DepthName(OIIO::TypeDesc format) {
    switch (format.basetype) {
        case OIIO::TypeDesc::HALF:
            return "16-bit floating-point";
        case OIIO::TypeDesc::FLOAT:
            return "32-bit floating-point";
        case OIIO::TypeDesc::DOUBLE:
            return "64-bit floating-point";
        case OIIO::TypeDesc::INT32:
        case OIIO::TypeDesc::UINT32:
            return "32-bit integer";
        default:
            return format.c_str();
    }
}

void RequireSupported(const std::string& path, const OIIO::ImageInput& file) {
    const OIIO::ImageSpec& layout = file.spec();
    const std::string_view format = file.format_name();
    if (layout.format != OIIO::TypeUInt8 && layout.format != OIIO::TypeUInt16) {
        Refuse(path, "has " + DepthName(layout.format) +
                         " channels; convert it to 8 or 16 bits (unsigned integer) per channel");
    }
    if (format != "png" && format != "tiff" && format != "jpeg") {
        Refuse(path, "is a " + std::string(format) + " file; convert it to PNG, TIFF or JPEG");
    }
    if (layout.nchannels < 1 || layout.nchannels > 4) {
        Refuse(path, "has " + std::to_string(layout.nchannels) +
                         " channels; convert it to grey or RGB, with or without alpha");
    }
}

// A PNG whose header says 0 pixels wide or high.
bool IsEmptyPng(const std::string& bytes) {
    const std::string zero(4, '\0');
    return bytes.starts_with("\x89PNG") &&
           (bytes.compare(16, 4, zero) == 0 || bytes.compare(20, 4, zero) == 0);
}

// Checks first what OpenImageIO lets pass or libpng complains about on its own.
std::unique_ptr<OIIO::ImageInput> OpenPicture(const std::string& path) {
    const std::string bytes = ReadWhole(path);
    if (IsCutShort(bytes)) RefuseDamaged(path);
    if (IsEmptyPng(bytes)) Refuse(path, "has no pixels; save it again");
    OIIO::attribute("threads", 1);  // decoding is too short to start its pool of threads for
    OIIO::ImageSpec config;
    config[kAlphaIsStraight] = 1;
    auto file = OIIO::ImageInput::open(path, &config);
    if (!file) {
        OIIO::geterror();  // an error that nobody fetched is printed at exit
        Refuse(path, "is no picture or a damaged one; name a PNG, TIFF or JPEG file");
    }
    RequireSupported(path, *file);
    return file;
}

Samples ReadSamples(const std::string& path) {
    const auto file = OpenPicture(path);
    const OIIO::ImageSpec& layout = file->spec();
    const auto channels = static_cast<std::size_t>(layout.nchannels);
    Samples samples{.width = layout.width,
                    .height = layout.height,
                    .channels = channels,
                    .hasAlpha = channels % 2 == 0,
                    .straight = layout.alpha_channel < 0 || layout.get_int_attribute(kAlphaIsStraight) != 0,
                    .wide = layout.format == OIIO::TypeUInt16,
                    .values = std::vector<std::uint16_t>(layout.image_pixels() * channels)};
    if (!file->read_image(0, 0, 0, layout.nchannels, OIIO::TypeUInt16, samples.values.data())) {
        file->geterror();
        RefuseDamaged(path);
    }
    return samples;
}

// One pixel as alpha, red, green, blue, straight, 0 to 65535.
std::array<std::uint32_t, 4> PixelOf(const Samples& samples, std::size_t index) {
    const std::uint16_t* value = &samples.values[index * samples.channels];
    const bool isGrey = samples.channels < 3;
    const std::uint32_t alpha = samples.hasAlpha ? value[samples.channels - 1] : kFileWhite;
    const auto colour = [&](int channel) -> std::uint32_t {
        const std::uint32_t c = value[isGrey ? 0 : channel];
        return samples.straight || alpha == 0 ? c : std::min(Rescale(c, alpha, kFileWhite), kFileWhite);
    };
    return {alpha, colour(0), colour(1), colour(2)};
}

template <class C>
std::unique_ptr<SimplePixelBuffer<Pixel<C>>> ToPixels(const Samples& samples) {
    const auto toDepth = [](std::uint32_t value) {
        return static_cast<typename C::Type>(Rescale(value, kFileWhite, C::kOne));
    };
    auto pixels = std::make_unique<SimplePixelBuffer<Pixel<C>>>(samples.width, samples.height);
    std::size_t index = 0;
    for (int y = 0; y < samples.height; ++y) {
        for (Pixel<C>& pixel : pixels->row(y)) {
            const auto [alpha, red, green, blue] = PixelOf(samples, index++);
            pixel = {toDepth(alpha), toDepth(red), toDepth(green), toDepth(blue)};
        }
    }
    return pixels;
}

template <class C>
std::unique_ptr<PixelBuffer> ToPixelsOfSize(const Samples& samples, int width, int height) {
    auto pixels = ToPixels<C>(samples);
    if (pixels->width == width && pixels->height == height) return pixels;
    auto resized = std::make_unique<SimplePixelBuffer<Pixel<C>>>(width, height);
    Resample<C>(*resized, *pixels);
    return resized;
}

std::unique_ptr<PixelBuffer> ToPixels(const Samples& samples, bool wide, int width, int height) {
    return wide ? ToPixelsOfSize<Channel15>(samples, width, height)
                : ToPixelsOfSize<Channel8>(samples, width, height);
}

}  // namespace

Picture ReadPicture(const std::string& path) {
    const Samples samples = ReadSamples(path);
    return {ToPixels(samples, samples.wide, samples.width, samples.height), samples.hasAlpha};
}

Picture ReadPictureLike(const std::string& path, const Picture& like) {
    const Samples samples = ReadSamples(path);
    return {ToPixels(samples, IsWide(like), like.pixels->width, like.pixels->height), samples.hasAlpha};
}

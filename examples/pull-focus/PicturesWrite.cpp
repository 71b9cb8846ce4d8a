#include <OpenImageIO/filesystem.h>
#include <OpenImageIO/imageio.h>

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <filesystem>
#include <limits>
#include <stdexcept>
#include <system_error>
#include <type_traits>
#include <vector>

#include "Pictures.h"
#include "Rescale.h"
#include "WholeFile.h"

namespace {

namespace fs = std::filesystem;
using PILib::Channel15;
using PILib::Channel8;
using PILib::Pixel;
using PILib::PixelBuf;

enum class Format { kUnknown, kPng, kTiff, kJpeg };

Format FormatOf(const fs::path& path) {
    std::string extension = path.extension().string();
    std::ranges::transform(extension, extension.begin(),
                           [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    if (extension == ".png") return Format::kPng;
    if (extension == ".tif" || extension == ".tiff") return Format::kTiff;
    if (extension == ".jpg" || extension == ".jpeg") return Format::kJpeg;
    return Format::kUnknown;
}

[[noreturn]] void Refuse(const fs::path& path, const std::string& reason) {
    throw std::runtime_error("cannot write \"" + path.string() + "\": " + reason);
}

fs::path FolderOf(const fs::path& path) {
    return path.has_parent_path() ? path.parent_path() : fs::path(".");
}

// Interleaved file samples of the buffer, RGB or RGBA.
template <class C, class T>
std::vector<T> ToSamples(const PixelBuf<Pixel<C>>& pixels, bool withAlpha) {
    const auto toFile = [](std::uint32_t value) {
        return static_cast<T>(Rescale(value, C::kOne, std::numeric_limits<T>::max()));
    };
    std::vector<T> samples;
    samples.reserve(static_cast<std::size_t>(pixels.width) * static_cast<std::size_t>(pixels.height) * 4);
    for (int y = 0; y < pixels.height; ++y) {
        for (const Pixel<C>& pixel : pixels.row(y)) {
            samples.insert(samples.end(), {toFile(pixel.red), toFile(pixel.green), toFile(pixel.blue)});
            if (withAlpha) samples.push_back(toFile(pixel.alpha));
        }
    }
    return samples;
}

// The bytes of a picture file in the format of the path's extension. Encoding into memory finds every failure
// of the disk in one place: the encoders of OpenImageIO do not report all of them.
template <class C>
std::vector<unsigned char> Encode(const std::string& path, const Picture& picture) {
    using T = std::conditional_t<std::is_same_v<C, Channel8>, std::uint8_t, std::uint16_t>;
    const auto& pixels = dynamic_cast<const PixelBuf<Pixel<C>>&>(*picture.pixels);
    const std::vector<T> samples = ToSamples<C, T>(pixels, picture.hasAlpha);
    constexpr OIIO::TypeDesc kDepth(OIIO::BaseTypeFromC<T>::value);
    OIIO::ImageSpec layout(pixels.width, pixels.height, picture.hasAlpha ? 4 : 3, kDepth);
    layout["oiio:UnassociatedAlpha"] = 1;

    std::vector<unsigned char> bytes;
    OIIO::Filesystem::IOVecOutput memory(bytes);
    const auto file = OIIO::ImageOutput::create(path, &memory);
    if (!file || !file->open(path, layout) || !file->write_image(kDepth, samples.data()) || !file->close()) {
        Refuse(path, "its encoder failed: " + (file ? file->geterror() : OIIO::geterror()));
    }
    return bytes;
}

}  // namespace

void RequireWritable(const std::string& path, const Picture& picture) {
    const Format format = FormatOf(path);
    if (format == Format::kUnknown) Refuse(path, "its name must end in .png, .tif, .tiff, .jpg or .jpeg");
    if (format == Format::kJpeg && IsWide(picture)) {
        Refuse(path, "JPEG holds 8 bits per channel and the beauty has 16; use .png or .tif");
    }
    if (format == Format::kJpeg && picture.hasAlpha) {
        Refuse(path, "JPEG holds no alpha and the beauty has one; use .png or .tif");
    }
    std::error_code ignored;
    if (!fs::is_directory(FolderOf(path), ignored)) {
        Refuse(path, "there is no folder \"" + FolderOf(path).string() + "\"; create it first");
    }
    if (fs::is_directory(path, ignored)) Refuse(path, "a folder has this name; choose another");
}

void WritePicture(const std::string& path, const Picture& picture) {
    RequireWritable(path, picture);
    WriteWhole(path, IsWide(picture) ? Encode<Channel15>(path, picture) : Encode<Channel8>(path, picture));
}

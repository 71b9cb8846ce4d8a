#include <OpenImageIO/filesystem.h>
#include <OpenImageIO/imageio.h>
#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdint>
#include <fstream>
#include <limits>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "Error.h"
#include "Pictures.h"
#include "PixelAccess.h"
#include "Rescale.h"

namespace perch {
namespace {

namespace fs = std::filesystem;

enum class Format { Unknown, Png, Tiff, Jpeg };

Format formatOf(const fs::path& path) {
    std::string extension = path.extension().string();
    std::ranges::transform(extension, extension.begin(),
                           [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    if (extension == ".png") return Format::Png;
    if (extension == ".tif" || extension == ".tiff") return Format::Tiff;
    if (extension == ".jpg" || extension == ".jpeg") return Format::Jpeg;
    return Format::Unknown;
}

[[noreturn]] void refuse(const fs::path& path, std::string_view reason) {
    throw Error(fmt::format("cannot write \"{}\": {}", path.string(), reason));
}

fs::path folderOf(const fs::path& path) {
    return path.has_parent_path() ? path.parent_path() : fs::path(".");
}

// A file beside the final one, so that a rename puts it in place; removed with the object if it is still
// there.
class TemporaryFile {
public:
    explicit TemporaryFile(const fs::path& finalPath)
        : path(folderOf(finalPath) /
               fmt::format(".perch-{:08x}{}", std::random_device()(), finalPath.extension().string())) {}
    ~TemporaryFile() {
        std::error_code ignored;
        fs::remove(path, ignored);
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    const fs::path path;
};

constexpr std::size_t channelCount(bool withAlpha) {
    return withAlpha ? 4 : 3;
}

// Interleaved RGB or RGBA on the full scale of the file's samples.
template <typename P, typename T>
std::vector<T> samplesOf(const World& world, bool withAlpha) {
    const auto toFile = [](std::uint32_t value) {
        // An effect may leave codes above white in a deep world.
        return static_cast<T>(rescale(std::min(value, kWhite<P>), kWhite<P>, std::numeric_limits<T>::max()));
    };
    const std::size_t pixels =
        static_cast<std::size_t>(world.width()) * static_cast<std::size_t>(world.height());
    std::vector<T> samples(pixels * channelCount(withAlpha));
    T* next = samples.data();
    for (std::int32_t y = 0; y < world.height(); ++y) {
        for (const P& pixel : pixelRow<P>(world.record(), y)) {
            *next++ = toFile(pixel.red);
            *next++ = toFile(pixel.green);
            *next++ = toFile(pixel.blue);
            if (withAlpha) *next++ = toFile(pixel.alpha);
        }
    }
    return samples;
}

void describePng(int compression, OIIO::ImageSpec& layout) {
    // The encoder tries every filter on each row, which takes longer than the fast levels themselves. They do
    // with the differences from pixel to pixel.
    constexpr int kLastFastLevel = 4;
    constexpr int kDifferences = 16;
    layout["png:compressionLevel"] = compression;
    if (compression <= kLastFastLevel) layout["png:filter"] = kDifferences;
}

void describeTiff(int compression, OIIO::ImageSpec& layout) {
    layout["compression"] = compression > 0 ? "zip" : "none";
    if (compression > 0) layout["tiff:zipquality"] = compression;
    // The time of writing otherwise, and the same pixels would not give the same bytes.
    layout["DateTime"] = "1970:01:01 00:00:00";
}

using Bytes = std::vector<unsigned char>;

// Encodes in memory: the encoders do not notice when a write to a file fails. P is the world's pixel type, T
// the file's sample type.
template <typename P, typename T>
Bytes encodeAs(const fs::path& path, const World& world, bool withAlpha, int compression) {
    constexpr OIIO::TypeDesc kType(OIIO::BaseTypeFromC<T>::value);
    const std::vector<T> samples = samplesOf<P, T>(world, withAlpha);
    Bytes bytes;
    OIIO::Filesystem::IOVecOutput memory(bytes);
    OIIO::Filesystem::IOProxy* proxy = &memory;
    OIIO::ImageSpec layout(world.width(), world.height(), static_cast<int>(channelCount(withAlpha)), kType);
    layout["oiio:UnassociatedAlpha"] = 1;
    if (formatOf(path) == Format::Png) describePng(compression, layout);
    if (formatOf(path) == Format::Tiff) describeTiff(compression, layout);
    layout.attribute("oiio:ioproxy", OIIO::TypePointer, &proxy);
    const std::unique_ptr<OIIO::ImageOutput> file = OIIO::ImageOutput::create(path.string());
    if (file == nullptr) refuse(path, OIIO::geterror());
    const bool isWritten =
        file->open(path.string(), layout) && file->write_image(kType, samples.data()) && file->close();
    const std::string error = file->geterror();
    if (!isWritten) refuse(path, error.substr(0, error.find('\n')));
    return bytes;
}

Bytes encode(const fs::path& path, const World& world, bool withAlpha, int compression) {
    return world.isDeep() ? encodeAs<PF_Pixel16, std::uint16_t>(path, world, withAlpha, compression)
                          : encodeAs<PF_Pixel, std::uint8_t>(path, world, withAlpha, compression);
}

// Whether all of it has reached the file system; errno tells why not.
bool writeBytes(const fs::path& path, const Bytes& bytes) {
    std::ofstream file(path, std::ios::binary);
    file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    file.close();
    return file.good();
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

bool needsNoAlpha(const World& world) {
    return world.isDeep() ? needsNoAlphaAs<PF_Pixel16>(world) : needsNoAlphaAs<PF_Pixel>(world);
}

void requireWritable(const fs::path& path, Depth depth, bool withAlpha) {
    const Format format = formatOf(path);
    if (format == Format::Unknown) refuse(path, "its name must end in .png, .tif, .tiff, .jpg or .jpeg");
    if (format == Format::Jpeg && depth == Depth::Bits16) {
        refuse(path, "JPEG holds 8 bits per channel and the picture has 16; use .png or .tif, or --depth 8");
    }
    if (format == Format::Jpeg && withAlpha) {
        refuse(path, "JPEG holds no alpha and the picture has one; use .png or .tif");
    }
    std::error_code ignored;
    const fs::path folder = folderOf(path);
    if (!fs::is_directory(folder, ignored)) {
        refuse(path, fmt::format("there is no folder \"{}\"; create it first", folder.string()));
    }
    if (fs::is_directory(path, ignored)) refuse(path, "a folder has this name; choose another");
}

void writePicture(const fs::path& path, const World& world, bool withAlpha, int compression) {
    requireWritable(path, world.isDeep() ? Depth::Bits16 : Depth::Bits8, withAlpha);
    const Bytes bytes = encode(path, world, withAlpha, compression);
    const TemporaryFile temporary(path);
    if (!writeBytes(temporary.path, bytes)) refuse(path, std::generic_category().message(errno));
    std::error_code error;
    fs::rename(temporary.path, path, error);
    if (error) refuse(path, error.message());
}

}  // namespace perch

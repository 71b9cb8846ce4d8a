#include "Encode.h"

#include <OpenImageIO/filesystem.h>
#include <OpenImageIO/imageio.h>
#include <fmt/format.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <memory>
#include <string>
#include <string_view>
#include <system_error>
#include <type_traits>
#include <variant>

#include "LibraryName.h"
#include "Metadata.h"
#include "PictureError.h"
#include "PngChunks.h"

// The header that declares it asks for one of the TIFF library.
OIIO_NAMESPACE_BEGIN
OIIO_API void encode_exif(const ImageSpec& layout, std::vector<char>& blob, OIIO::endian order);
OIIO_NAMESPACE_END

namespace pictures {
namespace {

void describePng(int compression, OIIO::ImageSpec& layout) {
    // The encoder tries every filter on each row, which takes longer than the fast levels themselves. They do
    // with the differences from pixel to pixel.
    constexpr int kLastFastLevel = 4;
    constexpr int kDifferences = 16;
    layout["png:compressionLevel"] = compression;
    if (compression <= kLastFastLevel) layout["png:filter"] = kDifferences;
}

// Its own compression a TIFF file keeps, except one that loses something.
std::string tiffCompression(const Metadata* source, int level) {
    if (level == 0) return "none";
    if (source == nullptr || source->format != FileFormat::Tiff) return "zip";
    const std::string own = source->attributes.get_string("compression");
    return own == "lzw" || own == "packbits" || own == "none" ? own : "zip";
}

void describeTiff(const Metadata* source, int compression, OIIO::ImageSpec& layout) {
    layout["compression"] = tiffCompression(source, compression);
    if (compression > 0) layout["tiff:zipquality"] = compression;
}

void describeOpenExr(const Metadata* source, const std::string& compression, OIIO::ImageSpec& layout) {
    layout["compression"] = compression;
    if (source == nullptr || source->format != FileFormat::OpenExr) return;
    layout.x = layout.full_x = source->originX;
    layout.y = layout.full_y = source->originY;
}

// Bits of each sample of a DPX file from one of 10 or 12, which are read as 16; else 0.
int ownBits(const Picture& picture, const Encoding& encoding) {
    const Metadata* const source = picture.metadata.get();
    if (source == nullptr || source->format != FileFormat::Dpx || encoding.format != FileFormat::Dpx)
        return 0;
    if (picture.type() != SampleType::Bits16 || encoding.options.hasChosenDepth) return 0;
    const int bits = source->attributes.get_int("oiio:BitsPerSample");
    return bits == 10 || bits == 12 ? bits : 0;
}

// A profile of grey means nothing to colours. Of formats other than OpenEXR readers suppose a colour space
// where the file names none.
bool isKept(const Metadata& metadata, std::string_view name, const Picture& picture, FileFormat format) {
    if (isOfStorage(name)) return false;
    if (name == "ICCProfile") return metadata.isGrey == (picture.channels < 3);
    // The library does not read back the pixels of DPX files that it writes with an orientation.
    if (name == "Orientation" && format == FileFormat::Dpx) return false;
    const bool isSameFormat = metadata.format == format;
    if (name == "oiio:ColorSpace") return isSameFormat && format == FileFormat::OpenExr;
    return isSameFormat || !name.starts_with("dpx:");
}

void keepMetadata(const Picture& picture, FileFormat format, OIIO::ImageSpec& layout) {
    for (const OIIO::ParamValue& value : picture.metadata->attributes) {
        if (isKept(*picture.metadata, value.name().string(), picture, format))
            layout.extra_attribs.add_or_replace(value);
    }
}

OIIO::TypeDesc fileType(SampleType type) {
    switch (type) {
        case SampleType::Bits8:
            return OIIO::TypeUInt8;
        case SampleType::Bits16:
            return OIIO::TypeUInt16;
        case SampleType::Half:
            return OIIO::TypeHalf;
        case SampleType::Float:
            return OIIO::TypeFloat;
    }
    return OIIO::TypeUnknown;
}

// Of some formats the encoder invents a date where there is none of any kind, and writes none that is not a
// text.
bool inventsDate(FileFormat format) {
    return format == FileFormat::Tiff || format == FileFormat::OpenExr;
}

OIIO::ImageSpec layoutOf(const Picture& picture, const Encoding& encoding) {
    OIIO::ImageSpec layout(picture.width, picture.height, static_cast<int>(picture.channels),
                           fileType(picture.type()));
    if (picture.channels == 2) {
        layout.channelnames = {"Y", "A"};
        layout.alpha_channel = 1;
    }
    const Metadata* const source = picture.metadata.get();
    const EncodingOptions& options = encoding.options;
    if (source != nullptr) keepMetadata(picture, encoding.format, layout);
    if (inventsDate(encoding.format) && layout.find_attribute("DateTime") == nullptr) layout["DateTime"] = 0;
    if (!picture.isPremultiplied) layout[kAlphaIsStraight] = 1;
    if (!options.software.empty()) layout["Software"] = options.software;
    if (encoding.format == FileFormat::Png) describePng(options.compression, layout);
    if (encoding.format == FileFormat::Tiff) describeTiff(source, options.compression, layout);
    if (encoding.format == FileFormat::OpenExr) describeOpenExr(source, options.openExrCompression, layout);
    if (const int bits = ownBits(picture, encoding); bits > 0) layout["oiio:BitsPerSample"] = bits;
    if (encoding.format == FileFormat::Jpeg && options.jpegQuality > 0)
        layout["compression"] = fmt::format("jpeg:{}", options.jpegQuality);
    return layout;
}

// A file that is nowhere but in memory. The encoder of TIFF reads again what it has written, for a directory
// beside the main one as Exif is, and does so of files alone.
class MemoryFile {
public:
    MemoryFile() : descriptor(memfd_create("picture", MFD_CLOEXEC)) {
        if (descriptor < 0) throw PictureError("there is no memory for its bytes; make it smaller");
    }
    ~MemoryFile() { close(descriptor); }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    std::string name() const { return fmt::format("/proc/self/fd/{}", descriptor); }

    // The encoder does not notice that a write fails, or does not say why. It fails here alone where the
    // process may not write files of that size, and then the file ends just there.
    void requireRoom() const {
        rlimit limit{};
        struct stat status {};
        const bool isKnown = getrlimit(RLIMIT_FSIZE, &limit) == 0 && fstat(descriptor, &status) == 0;
        if (!isKnown || static_cast<rlim_t>(status.st_size) >= limit.rlim_cur) {
            throw PictureError(fmt::format("{}; check its folder and the room on its disk",
                                           std::generic_category().message(EFBIG)));
        }
    }

    std::vector<unsigned char> bytes() const {
        std::ifstream file(name(), std::ios::binary | std::ios::ate);
        std::vector<unsigned char> bytes(static_cast<std::size_t>(std::max<std::streamoff>(file.tellg(), 0)));
        file.seekg(0);
        file.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
        return bytes;
    }

private:
    const int descriptor;
};

// The code of fewer bits that is nearest to one of 16. Codes that were read from fewer bits, and filled up by
// zeros or by their own highest bits, are what they were.
std::uint32_t nearestCode(std::uint32_t sample, int bits) {
    constexpr std::uint32_t kWhite = 65535;
    const int filled = 16 - bits;
    const std::uint32_t own = sample >> filled;
    if (sample == own << filled || sample == (own << filled | own >> (bits - filled))) return own;
    const std::uint32_t white = (std::uint32_t{1} << bits) - 1;
    return (sample * white + kWhite / 2) / kWhite;
}

// The encoder takes the highest bits of each sample. `rounded` holds samples that differ.
template <typename T>
const T* ofBits(int bits, const T* samples, std::size_t count, std::vector<T>& rounded) {
    if constexpr (std::is_same_v<T, std::uint16_t>) {
        if (bits >= 16) return samples;
        rounded.resize(count);
        for (std::size_t i = 0; i < count; ++i)
            rounded[i] = static_cast<std::uint16_t>(nearestCode(samples[i], bits) << (16 - bits));
        return rounded.data();
    }
    return samples;
}

// The same bytes as of all rows at once: strips and blocks of formats have fewer rows, or as many.
template <typename T>
bool writeRows(OIIO::ImageOutput& file, const EncodingOptions& options, const std::vector<T>& samples) {
    constexpr int kRows = 64;
    const OIIO::ImageSpec& layout = file.spec();
    const OIIO::TypeDesc type(OIIO::BaseTypeFromC<T>::value);
    const std::size_t rowSamples = samples.size() / static_cast<std::size_t>(layout.height);
    const int end = layout.y + layout.height;
    const int bits = layout.get_int_attribute("oiio:BitsPerSample", 16);
    const T* rows = samples.data();
    std::vector<T> rounded;
    for (int y = layout.y; y < end; y += kRows) {
        options.reachCheckpoint();
        const int next = std::min(y + kRows, end);
        const std::size_t count = rowSamples * static_cast<std::size_t>(next - y);
        if (!file.write_scanlines(y, next, 0, type, ofBits(bits, rows, count, rounded))) return false;
        rows += count;
    }
    return true;
}

bool hasExif(const OIIO::ImageSpec& layout) {
    const auto isOfExif = [](const OIIO::ParamValue& value) {
        const std::string name = value.name().string();
        if (name == "Orientation") return value.get_int() > 1;
        return name.starts_with("Exif:") || name.starts_with("GPS:") || name == "ExposureTime" ||
               name == "FNumber" || name == "Make" || name == "Model";
    };
    return std::ranges::any_of(layout.extra_attribs, isOfExif);
}

// The encoder of PNG leaves it out.
std::string exifChunkFor(const OIIO::ImageSpec& layout) {
    if (!hasExif(layout)) return "";
    std::vector<char> exif;
    OIIO::encode_exif(layout, exif, OIIO::endian::big);
    return pngChunk("eXIf", {exif.data(), exif.size()});
}

void describePngFurther(const Picture& picture, const OIIO::ImageSpec& layout,
                        std::vector<unsigned char>& bytes) {
    const Metadata& source = *picture.metadata;
    if (source.format == FileFormat::Png) {
        bytes = describedBy(source.pngChunks, source.isGrey == (picture.channels < 3), bytes);
    } else {
        insertChunk(exifChunkFor(layout), bytes);
    }
}

void encodeTo(const std::string& name, OIIO::Filesystem::IOProxy* memory, const Picture& picture,
              const Encoding& encoding, const OIIO::ImageSpec& layout) {
    const std::unique_ptr<OIIO::ImageOutput> file =
        OIIO::ImageOutput::create(libraryName(encoding.format), memory);
    if (file == nullptr) throw PictureError(firstLine(OIIO::geterror()));
    const auto writeSamples = [&](const auto& samples) {
        return writeRows(*file, encoding.options, samples);
    };
    const bool isWritten =
        file->open(name, layout) && std::visit(writeSamples, picture.samples) && file->close();
    const std::string error = file->geterror();
    if (!isWritten) throw PictureError("its encoder failed: " + firstLine(error));
}

}  // namespace

// In memory: the encoders do not notice when a write to a file fails.
EncodedPicture encode(const Picture& picture, const Encoding& encoding) {
    const OIIO::ImageSpec layout = layoutOf(picture, encoding);
    std::vector<unsigned char> bytes;
    if (encoding.format == FileFormat::Tiff && hasExif(layout)) {
        const MemoryFile memory;
        try {
            encodeTo(memory.name(), nullptr, picture, encoding, layout);
        } catch (const PictureError&) {
            memory.requireRoom();
            throw;
        }
        memory.requireRoom();
        bytes = memory.bytes();
    } else {
        OIIO::Filesystem::IOVecOutput memory(bytes);
        encodeTo("picture", &memory, picture, encoding, layout);
    }
    const Metadata* const source = picture.metadata.get();
    if (source == nullptr) return {std::move(bytes), {}};
    if (encoding.format == FileFormat::Png) describePngFurther(picture, layout, bytes);
    std::vector<std::string> unheld = unheldBy(bytes, encoding.format, *source);
    return {std::move(bytes), std::move(unheld)};
}

}  // namespace pictures

#include "Decode.h"

#include <OpenImageIO/filesystem.h>
#include <OpenImageIO/imageio.h>
#include <fmt/format.h>

#include <algorithm>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "ExrChunks.h"
#include "FileClaims.h"
#include "JpegScans.h"
#include "LibraryName.h"
#include "Metadata.h"
#include "PictureEnd.h"
#include "PictureError.h"
#include "PictureFile.h"
#include "PictureSource.h"
#include "PngChunks.h"
#include "TargaPixels.h"
#include "TiffStrips.h"
#include "WebPFile.h"

namespace pictures {
namespace {

std::string_view typeName(OIIO::TypeDesc type) {
    if (type == OIIO::TypeInt32 || type == OIIO::TypeUInt32) return "32-bit integer";
    return type.c_str();
}

// The widest of the channels, which OpenEXR files store each in its own type.
OIIO::TypeDesc typeOf(const OIIO::ImageSpec& layout, const Channels& channels) {
    OIIO::TypeDesc widest = layout.channelformat(channels.front());
    for (const int channel : channels)
        widest = OIIO::TypeDesc(OIIO::TypeDesc::basetype_merge(widest, layout.channelformat(channel)));
    return widest;
}

std::optional<SampleType> sampleTypeOf(OIIO::TypeDesc type) {
    if (type == OIIO::TypeUInt8) return SampleType::Bits8;
    if (type == OIIO::TypeUInt16) return SampleType::Bits16;
    if (type == OIIO::TypeHalf) return SampleType::Half;
    if (type == OIIO::TypeFloat) return SampleType::Float;
    return std::nullopt;
}

// In memory halves are floats.
OIIO::TypeDesc memoryType(SampleType type) {
    if (type == SampleType::Bits8) return OIIO::TypeUInt8;
    return type == SampleType::Bits16 ? OIIO::TypeUInt16 : OIIO::TypeFloat;
}

// The size of the picture: in OpenEXR files the pixels that there are can be fewer or more than the picture
// has.
struct Window {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
};

Window windowOf(const OIIO::ImageSpec& layout, FileFormat format) {
    if (format == FileFormat::OpenExr && layout.full_width > 0 && layout.full_height > 0)
        return {layout.full_x, layout.full_y, layout.full_width, layout.full_height};
    return {layout.x, layout.y, layout.width, layout.height};
}

bool covers(const OIIO::ImageSpec& layout, const Window& window) {
    return layout.x <= window.x && layout.y <= window.y &&
           layout.x + layout.width >= window.x + window.width &&
           layout.y + layout.height >= window.y + window.height;
}

// An unspecified fourth channel is taken for straight alpha. OpenEXR files name theirs, that of each layer.
bool isPremultiplied(const OIIO::ImageSpec& layout, FileFormat format) {
    const bool isNamed = layout.alpha_channel >= 0 || format == FileFormat::OpenExr;
    return isNamed && layout.get_int_attribute(kAlphaIsStraight) == 0;
}

// Of the file, what has to be read for some of its channels.
struct ChannelRange {
    explicit ChannelRange(const Channels& channels)
        : begin(*std::ranges::min_element(channels)), end(*std::ranges::max_element(channels) + 1) {}
    int begin;
    int end;
};

// Pixels of the file from row `begin` to `end`, exclusive.
template <typename T>
struct Band {
    int begin = 0;
    int end = 0;
    std::vector<T> pixels;
};

// What the picture has of them; the rest stays transparent. Where nothing was rendered there is no depth.
template <typename T>
void place(const Band<T>& band, const OIIO::ImageSpec& layout, const ChannelRange& range,
           const Channels& channels, const Window& window, std::vector<T>& samples, const Picture& picture) {
    const auto read = static_cast<std::size_t>(range.end - range.begin);
    for (int y = std::max(window.y, band.begin); y < std::min(window.y + window.height, band.end); ++y) {
        for (int x = std::max(window.x, layout.x);
             x < std::min(window.x + window.width, layout.x + layout.width); ++x) {
            const auto at = [&](int left, int top, int width) {
                return static_cast<std::size_t>(y - top) * static_cast<std::size_t>(width) +
                       static_cast<std::size_t>(x - left);
            };
            const T* const source = &band.pixels[at(layout.x, band.begin, layout.width) * read];
            T* const target = &samples[at(window.x, window.y, window.width) * picture.channels];
            for (std::size_t i = 0; i < channels.size(); ++i)
                target[i] = source[channels[i] - range.begin];
            if (channels.size() < picture.channels) target[channels.size()] = T{1};
        }
    }
}

template <typename T>
bool readRows(OIIO::ImageInput& file, int part, const ChannelRange& range, int begin, int end, T* data) {
    const OIIO::ImageSpec& layout = file.spec();
    const OIIO::TypeDesc type(OIIO::BaseTypeFromC<T>::value);
    if (layout.tile_width == 0)
        return file.read_scanlines(part, 0, begin, end, 0, range.begin, range.end, type, data);
    return file.read_tiles(part, 0, layout.x, layout.x + layout.width, begin, end, layout.z, layout.z + 1,
                           range.begin, range.end, type, data);
}

template <typename T>
bool readSamples(OIIO::ImageInput& file, const PictureSource& source, const Window& window,
                 std::vector<T>& samples, const Picture& picture) {
    const OIIO::ImageSpec layout = file.spec();
    const Channels& channels = source.channels;
    const ChannelRange range(channels);
    const auto channelCount = static_cast<std::size_t>(range.end - range.begin);
    const std::size_t rowSamples = static_cast<std::size_t>(layout.width) * channelCount;
    const bool isWhole = channelCount == picture.channels && std::ranges::is_sorted(channels) &&
                         layout.width == window.width && layout.height == window.height &&
                         covers(layout, window);
    const int end = layout.y + layout.height;
    Band<T> band;
    for (int y = layout.y; y < end; y = band.end) {
        band.begin = y;
        band.end = std::min(y + rowsAtOnce(layout), end);
        const auto rows = static_cast<std::size_t>(band.end - y);
        if (!isWhole) band.pixels.resize(rows * rowSamples);
        T* const target =
            isWhole ? &samples[static_cast<std::size_t>(y - layout.y) * rowSamples] : band.pixels.data();
        if (!readRows(file, source.part, range, y, band.end, target)) return false;
        if (!isWhole) place(band, layout, range, channels, window, samples, picture);
    }
    return true;
}

std::shared_ptr<const Metadata> metadataOf(const OIIO::ImageSpec& layout, FileFormat format,
                                           std::span<const unsigned char> bytes, bool isGrey) {
    auto metadata = std::make_shared<Metadata>();
    metadata->format = format;
    metadata->isGrey = isGrey;
    const Window window = windowOf(layout, format);
    metadata->originX = window.x;
    metadata->originY = window.y;
    for (const OIIO::ParamValue& value : layout.extra_attribs)
        if (!isUndefined(value)) metadata->attributes.push_back(value);
    if (format == FileFormat::Png) metadata->pngChunks = describingChunks(bytes);
    if (format == FileFormat::WebP)
        for (const OIIO::ParamValue& value : WebPFile(bytes).attributes())
            metadata->attributes.add_or_replace(value);
    return metadata;
}

SampleType requireType(const OIIO::ImageSpec& layout, const Channels& channels) {
    const OIIO::TypeDesc stored = typeOf(layout, channels);
    if (const std::optional<SampleType> type = sampleTypeOf(stored)) return *type;
    throw PictureError(fmt::format("it has {} channels; convert it to 8 or 16 bits per channel, or floats",
                                   typeName(stored)));
}

// Of other pictures the samples are read by code of our own.
bool isReadByLibrary(const OIIO::ImageSpec& layout, FileFormat format, const Channels& channels,
                     std::span<const unsigned char> bytes) {
    if (channels.size() != static_cast<std::size_t>(layout.nchannels)) return true;
    return format != FileFormat::WebP && (format != FileFormat::Targa || !TargaPixels(bytes).arePlain());
}

ClaimedPicture claimOf(const OIIO::ImageSpec& layout, FileFormat format, const Channels& channels,
                       std::span<const unsigned char> bytes) {
    const Window window = windowOf(layout, format);
    const std::size_t mostChannels = channels.size() + 1;  // with alpha where there is no pixel
    const OIIO::TypeDesc type = memoryType(requireType(layout, channels));
    return {.width = window.width,
            .height = window.height,
            .pixelBytes = static_cast<std::int64_t>(mostChannels * type.size()),
            .isReadByLibrary = isReadByLibrary(layout, format, channels, bytes)};
}

// The image library makes colours of them that are a little off.
void requireColours(const OIIO::ImageSpec& layout, FileFormat format) {
    constexpr int kFirstLab = 8;  // CIE, ICC and ITU
    constexpr int kLastLab = 10;
    if (format != FileFormat::Tiff) return;
    const int colours = layout.get_int_attribute("tiff:PhotometricInterpretation");
    if (colours >= kFirstLab && colours <= kLastLab)
        throw PictureError("its colours are L*a*b*; save it as red, green and blue");
}

bool hasDamagedPixels(std::span<const unsigned char> bytes, FileFormat format, int part) {
    if (format == FileFormat::Tiff) return hasDamagedStrip(bytes, part);
    if (format == FileFormat::OpenExr) return lacksChunks(bytes, part);
    return format == FileFormat::Targa && TargaPixels(bytes).areDamaged();
}

Picture readPart(OIIO::ImageInput& file, FileFormat format, const PictureSource& source,
                 std::span<const unsigned char> bytes, bool isOfDepths) {
    const OIIO::ImageSpec& layout = file.spec();
    const Channels& channels = source.channels;
    const SampleType type = requireType(layout, channels);
    const Window window = windowOf(layout, format);
    const bool isDepth = isOfDepths && channels.size() == 1 && isFloat(type) && !source.isGrey;
    // Outside of what was rendered a picture is transparent, so that it has alpha there.
    const bool needsAlpha = channels.size() % 2 == 1 && !isDepth && !covers(layout, window);
    Picture picture = newPicture(window.width, window.height, channels.size() + (needsAlpha ? 1 : 0), type);
    picture.isPremultiplied = picture.hasAlpha() && (needsAlpha || isPremultiplied(layout, format));
    if (isDepth) {
        std::ranges::fill(std::get<std::vector<float>>(picture.samples),
                          std::numeric_limits<float>::quiet_NaN());
    }
    if (!isReadByLibrary(layout, format, channels, bytes)) {
        auto& samples = std::get<std::vector<std::uint8_t>>(picture.samples);
        if (format == FileFormat::WebP) {
            picture.isPremultiplied = false;
            picture.isDamaged = !WebPFile(bytes).readTo(samples, picture.width, picture.hasAlpha());
        } else {
            TargaPixels(bytes).readTo(samples);
        }
        return picture;
    }
    const bool isRead = std::visit(
        [&](auto& samples) { return readSamples(file, source, window, samples, picture); }, picture.samples);
    // The error is asked for as well: the reader leaves missing parts of a TIFF file black and reports
    // success.
    const std::string error = file.geterror();
    picture.isDamaged = !isRead || !error.empty();
    return picture;
}

}  // namespace

Picture decode(std::span<const unsigned char> bytes, FileFormat format, const std::string& selected,
               const ReadOptions& options) {
    bool isDamaged = !reachesItsEnd(bytes, format);
    if (isDamaged && !options.acceptsDamage) throw PictureError(kDamaged);
    if (format == FileFormat::OpenExr && lacksTables(bytes)) throw PictureError(kDamaged);
    if (isEmptyPng(bytes, format)) throw PictureError(kEmpty);
    OIIO::Filesystem::IOMemReader memory(bytes.data(), bytes.size());
    OIIO::ImageSpec keepAlpha;
    keepAlpha[kAlphaIsStraight] = 1;
    const std::unique_ptr<OIIO::ImageInput> file = OIIO::ImageInput::create(libraryName(format));
    OIIO::ImageSpec layout;
    if (file == nullptr) throw PictureError(OIIO::geterror());
    file->set_ioproxy(&memory);
    if (!file->open("picture", layout, keepAlpha)) {
        file->geterror();  // an error not fetched is printed at exit
        throw PictureError(kDamaged);
    }
    const int parts = countParts(*file, format);
    const PictureSource source =
        selected.empty() ? firstPicture(layout, format) : namedPicture(*file, selected, parts);
    file->seek_subimage(source.part, 0);
    requireColours(file->spec(), format);
    requireBelievable(file->spec(), format, claimOf(file->spec(), format, source.channels, bytes), bytes,
                      options);
    if (hasDamagedPixels(bytes, format, source.part)) isDamaged = true;
    if (isDamaged && !options.acceptsDamage) throw PictureError(kDamaged);
    Picture picture = readPart(*file, format, source, bytes, options.isOfDepths);
    picture.metadata = metadataOf(file->spec(), format, bytes, picture.channels < 3);
    picture.parts = parts;
    if (selected.empty()) picture.depthChannel = depthBeside(file->spec(), format, source.channels);
    picture.software = file->spec().get_string_attribute("Software");
    picture.frameRate = frameRateOf(file->spec());
    file->close();  // gives back what the decoder holds, before another takes as much
    if (format == FileFormat::Jpeg && hasDamagedScan(bytes)) isDamaged = true;
    picture.isDamaged = picture.isDamaged || isDamaged;
    if (picture.isDamaged && !options.acceptsDamage) throw PictureError(kDamaged);
    return picture;
}

}  // namespace pictures

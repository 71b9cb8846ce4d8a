#include "Encode.h"

#include <OpenImageIO/filesystem.h>
#include <OpenImageIO/imageio.h>

#include <algorithm>
#include <memory>
#include <string>
#include <string_view>
#include <variant>

#include "LibraryName.h"
#include "Metadata.h"
#include "PictureError.h"

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

void describeTiff(int compression, OIIO::ImageSpec& layout) {
    layout["compression"] = compression > 0 ? "zip" : "none";
    if (compression > 0) layout["tiff:zipquality"] = compression;
    // The time of writing otherwise, and the same pixels would not give the same bytes.
    if (layout.find_attribute("DateTime") == nullptr) layout["DateTime"] = "1970:01:01 00:00:00";
}

// What says how the samples of the source were stored, which is decided anew.
bool isOfStorage(std::string_view name) {
    constexpr std::string_view kNames[] = {"oiio:BitsPerSample",
                                           "oiio:UnassociatedAlpha",
                                           "oiio:subimages",
                                           "oiio:subimagename",
                                           "planarconfig",
                                           "compression",
                                           "CompressionQuality",
                                           "openexr:chunkCount",
                                           "name",
                                           "view"};
    return std::ranges::find(kNames, name) != std::end(kNames) || name.starts_with("tiff:") ||
           name.starts_with("png:") || name.starts_with("dpx:") || name.starts_with("targa:") ||
           name.starts_with("openexr:") || name.starts_with("jpeg:");
}

void keepMetadata(const Metadata& metadata, OIIO::ImageSpec& layout) {
    // Readers suppose a colour space where the file names none.
    const bool isColorSpaceKnown = metadata.format == FileFormat::OpenExr;
    for (const OIIO::ParamValue& value : metadata.attributes) {
        const std::string name = value.name().string();
        if (isOfStorage(name) || (name == "oiio:ColorSpace" && !isColorSpaceKnown)) continue;
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

OIIO::ImageSpec layoutOf(const Picture& picture, const Encoding& encoding) {
    OIIO::ImageSpec layout(picture.width, picture.height, static_cast<int>(picture.channels),
                           fileType(picture.type()));
    if (picture.channels == 2) {
        layout.channelnames = {"Y", "A"};
        layout.alpha_channel = 1;
    }
    if (picture.metadata != nullptr) keepMetadata(*picture.metadata, layout);
    if (!picture.isPremultiplied) layout[kAlphaIsStraight] = 1;
    if (encoding.format == FileFormat::Png) describePng(encoding.compression, layout);
    if (encoding.format == FileFormat::Tiff) describeTiff(encoding.compression, layout);
    if (encoding.format == FileFormat::OpenExr) layout["compression"] = "zip";
    return layout;
}

std::string firstLine(const std::string& text) {
    return text.substr(0, text.find('\n'));
}

}  // namespace

// In memory: the encoders do not notice when a write to a file fails.
std::vector<unsigned char> encode(const Picture& picture, const Encoding& encoding) {
    std::vector<unsigned char> bytes;
    OIIO::Filesystem::IOVecOutput memory(bytes);
    const OIIO::ImageSpec layout = layoutOf(picture, encoding);
    const std::unique_ptr<OIIO::ImageOutput> file =
        OIIO::ImageOutput::create(libraryName(encoding.format), &memory);
    if (file == nullptr) throw PictureError(firstLine(OIIO::geterror()));
    const auto writeSamples = [&]<typename T>(const std::vector<T>& samples) {
        return file->write_image(OIIO::BaseTypeFromC<T>::value, samples.data());
    };
    const bool isWritten =
        file->open("picture", layout) && std::visit(writeSamples, picture.samples) && file->close();
    const std::string error = file->geterror();
    if (!isWritten) throw PictureError("its encoder failed: " + firstLine(error));
    return bytes;
}

}  // namespace pictures

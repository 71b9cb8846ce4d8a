#include "Encode.h"

#include <OpenImageIO/filesystem.h>
#include <OpenImageIO/imageio.h>

#include <memory>
#include <string>
#include <variant>

#include "LibraryName.h"
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
    layout["DateTime"] = "1970:01:01 00:00:00";
}

OIIO::ImageSpec layoutOf(const Picture& picture, const Encoding& encoding) {
    const OIIO::TypeDesc type = picture.type() == SampleType::Bits16 ? OIIO::TypeUInt16 : OIIO::TypeUInt8;
    OIIO::ImageSpec layout(picture.width, picture.height, static_cast<int>(picture.channels), type);
    layout[kAlphaIsStraight] = 1;
    if (encoding.format == FileFormat::Png) describePng(encoding.compression, layout);
    if (encoding.format == FileFormat::Tiff) describeTiff(encoding.compression, layout);
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
    const auto writeSamples = [&](const auto& samples) {
        return file->write_image(layout.format, samples.data());
    };
    const bool isWritten =
        file->open("picture", layout) && std::visit(writeSamples, picture.samples) && file->close();
    const std::string error = file->geterror();
    if (!isWritten) throw PictureError("its encoder failed: " + firstLine(error));
    return bytes;
}

}  // namespace pictures

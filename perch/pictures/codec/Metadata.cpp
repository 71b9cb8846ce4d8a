#include "Metadata.h"

#include <OpenImageIO/filesystem.h>
#include <OpenImageIO/imageio.h>

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <memory>

#include "LibraryName.h"
#include "PictureError.h"
#include "PngChunks.h"

namespace pictures {
namespace {

// What the library works out of others, or what says no more than its absence.
bool saysNothing(const OIIO::ParamValue& value) {
    const std::string name = value.name().string();
    const std::string text = value.get_string();
    if (name == "Orientation" || name == "PixelAspectRatio") return text == "1";
    if (name.starts_with("dpx:")) return text == "Undefined" || text == "User defined";
    return name == "ResolutionUnit" || name.starts_with("oiio:") || name.starts_with("ICCProfile:") ||
           name.starts_with("screenWindow");
}

OIIO::ParamValueList attributesOf(std::span<const unsigned char> bytes, FileFormat format) {
    OIIO::Filesystem::IOMemReader memory(bytes.data(), bytes.size());
    OIIO::ImageSpec layout;
    const std::unique_ptr<OIIO::ImageInput> file = OIIO::ImageInput::create(libraryName(format));
    if (file == nullptr) throw PictureError(firstLine(OIIO::geterror()));
    file->set_ioproxy(&memory);
    if (!file->open("picture", layout)) {
        throw PictureError(
            fmt::format("its encoder failed: what it made cannot be read ({})", firstLine(file->geterror())));
    }
    return layout.extra_attribs;
}

// Numbers may be rounded.
bool isHeld(const OIIO::ParamValue& value, const OIIO::ParamValueList& held) {
    const auto found = held.find(value.name());
    if (found == held.cend()) return false;
    return value.type() != OIIO::TypeString || value.get_string() == found->get_string();
}

// The library's attributes have the others.
bool isOfPngAlone(std::string_view chunk) {
    constexpr std::string_view kNames[] = {"gAMA", "cHRM", "sRGB", "cICP", "mDCv", "cLLi"};
    return std::ranges::find(kNames, chunk) != std::end(kNames);
}

}  // namespace

bool isOfStorage(std::string_view name) {
    constexpr std::string_view kNames[] = {"oiio:BitsPerSample",
                                           "oiio:UnassociatedAlpha",
                                           "oiio:subimages",
                                           "oiio:subimagename",
                                           "planarconfig",
                                           "compression",
                                           "CompressionQuality",
                                           "Software",
                                           "Exif:ImageHistory",
                                           "name",
                                           "view",
                                           "dpx:Packing",
                                           "dpx:ImageDescriptor",
                                           "dpx:Encoding",
                                           "dpx:DittoKey",
                                           "dpx:EndOfLinePadding",
                                           "dpx:EndOfImagePadding",
                                           "dpx:Version"};
    return std::ranges::find(kNames, name) != std::end(kNames) || name.starts_with("tiff:") ||
           name.starts_with("png:") || name.starts_with("targa:") || name.starts_with("openexr:") ||
           name.starts_with("jpeg:");
}

bool isUndefined(const OIIO::ParamValue& value) {
    if (value.type().basetype != OIIO::TypeDesc::FLOAT) return false;
    const auto isNumber = [](float number) { return std::isfinite(number); };
    const std::span numbers(static_cast<const float*>(value.data()),
                            value.type().basevalues() * static_cast<std::size_t>(value.nvalues()));
    if (!std::ranges::all_of(numbers, isNumber)) return true;
    return value.name() == "PixelAspectRatio" && value.get_float() <= 0;
}

std::string firstLine(const std::string& text) {
    return text.substr(0, text.find('\n'));
}

std::vector<std::string> unheldBy(std::span<const unsigned char> bytes, FileFormat format,
                                  const Metadata& source) {
    std::vector<std::string> unheld;
    const OIIO::ParamValueList held = attributesOf(bytes, format);
    for (const OIIO::ParamValue& value : source.attributes) {
        const std::string name = value.name().string();
        if (!isOfStorage(name) && !saysNothing(value) && !isHeld(value, held)) unheld.push_back(name);
    }
    if (format != FileFormat::Png) {
        for (const PngChunk& chunk : describingChunksIn(source.pngChunks))
            if (isOfPngAlone(chunk.name)) unheld.emplace_back(chunk.name);
    }
    if (format != FileFormat::OpenExr && (source.originX != 0 || source.originY != 0))
        unheld.emplace_back("the display window's place");
    return unheld;
}

double frameRateOf(const OIIO::ImageSpec& layout) {
    constexpr float kMost = 1000;
    for (const char* const name : {"FramesPerSecond", "dpx:FrameRate"}) {
        const float rate = layout.get_float_attribute(name);
        if (rate > 0 && rate <= kMost) return rate;
    }
    return 0;
}

}  // namespace pictures

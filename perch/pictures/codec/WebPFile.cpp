#include "WebPFile.h"

#include <OpenImageIO/imageio.h>
#include <dlfcn.h>

#include <string>

#include "FileText.h"

// The header that declares it asks for one of the TIFF library.
OIIO_NAMESPACE_BEGIN
OIIO_API bool decode_exif(string_view exif, ImageSpec& layout);
OIIO_NAMESPACE_END

namespace pictures {
namespace {

// WebPDecodeRGBInto and WebPDecodeRGBAInto of the WebP library, which the image library brings along.
using DecodeInto = std::uint8_t*(const std::uint8_t* file, std::size_t fileSize, std::uint8_t* samples,
                                 std::size_t size, int rowSize);

}  // namespace

bool WebPFile::isLossless() const {
    return chunk("VP8 ").empty();
}

bool WebPFile::readTo(std::span<std::uint8_t> samples, int width, bool hasAlpha) const {
    void* const symbol = dlsym(RTLD_NEXT, hasAlpha ? "WebPDecodeRGBAInto" : "WebPDecodeRGBInto");
    auto* const decodeInto = reinterpret_cast<DecodeInto*>(symbol);
    return decodeInto != nullptr && decodeInto(bytes.data(), bytes.size(), samples.data(), samples.size(),
                                               width * (hasAlpha ? 4 : 3)) != nullptr;
}

OIIO::ParamValueList WebPFile::attributes() const {
    OIIO::ImageSpec read;
    std::string_view exif = chunk("EXIF");
    constexpr std::string_view kPrefix("Exif\0\0", 6);  // that some programs write
    if (exif.starts_with(kPrefix)) exif.remove_prefix(kPrefix.size());
    if (!exif.empty()) OIIO::decode_exif({exif.data(), exif.size()}, read);
    const std::string_view profile = chunk("ICCP");
    if (!profile.empty())
        read.attribute("ICCProfile", OIIO::TypeDesc(OIIO::TypeDesc::UINT8, static_cast<int>(profile.size())),
                       profile.data());
    return read.extra_attribs;
}

std::string_view WebPFile::chunk(std::string_view name) const {
    constexpr std::size_t kFirst = 12;
    constexpr std::size_t kHeader = 8;
    const std::string_view text = textOf(bytes);
    for (std::size_t place = kFirst; place + kHeader <= text.size();) {
        const std::size_t size = littleEndianAt(text, place + 4, 4);
        if (text.substr(place, 4) == name) return text.substr(place + kHeader, size);
        place += kHeader + size + size % 2;
    }
    return {};
}

}  // namespace pictures

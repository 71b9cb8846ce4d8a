// WebP files. The image library multiplies their colours by alpha in 8 bits, holds all pixels a second time
// and passes over what describes them.
//
//     RIFF | length, 4 | WEBP | chunks of: name, 4 | length, 4 | data | a byte where the length is odd
#pragma once

#include <OpenImageIO/paramlist.h>

#include <cstdint>
#include <span>
#include <string_view>

namespace pictures {

class WebPFile {
public:
    explicit WebPFile(std::span<const unsigned char> bytes) : bytes(bytes) {}

    bool isLossless() const;

    // RGB, or RGBA with straight alpha. Whether all are read.
    bool readTo(std::span<std::uint8_t> samples, int width, bool hasAlpha) const;

    // Exif and the colour profile.
    OIIO::ParamValueList attributes() const;

private:
    // Of the first chunk of that name; empty without one.
    std::string_view chunk(std::string_view name) const;

    std::span<const unsigned char> bytes;
};

}  // namespace pictures

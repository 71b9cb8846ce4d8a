#include "Decode.h"

#include <OpenImageIO/filesystem.h>
#include <OpenImageIO/imageio.h>
#include <fmt/format.h>

#include <memory>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "LibraryName.h"
#include "PictureEnd.h"
#include "PictureError.h"
#include "PictureFile.h"

namespace pictures {
namespace {

constexpr char kDamaged[] = "it is damaged or cut short; save or copy it again";
constexpr char kEmpty[] = "it has no pixels; save it again";

std::string_view typeName(OIIO::TypeDesc type) {
    if (type == OIIO::TypeHalf) return "16-bit floating-point";
    if (type == OIIO::TypeFloat) return "32-bit floating-point";
    if (type == OIIO::TypeInt32 || type == OIIO::TypeUInt32) return "32-bit integer";
    return type.c_str();
}

void requireSupported(const OIIO::ImageSpec& layout) {
    if (layout.format != OIIO::TypeUInt8 && layout.format != OIIO::TypeUInt16) {
        throw PictureError(fmt::format("it has {} channels; convert it to 8 or 16 bits per channel",
                                       typeName(layout.format)));
    }
    if (layout.width <= 0 || layout.height <= 0) throw PictureError(kEmpty);
    if (layout.width > kLargestExtent || layout.height > kLargestExtent) {
        throw PictureError(fmt::format("it has {} x {} pixels, the largest is {} x {}; make it smaller",
                                       layout.width, layout.height, kLargestExtent, kLargestExtent));
    }
    if (layout.nchannels < 1 || layout.nchannels > 4) {
        throw PictureError(fmt::format("it has {} channels; convert it to grey or RGB, with or without alpha",
                                       layout.nchannels));
    }
}

// An unspecified fourth channel is taken for straight alpha.
bool isPremultiplied(const OIIO::ImageSpec& layout) {
    return layout.alpha_channel >= 0 && layout.get_int_attribute(kAlphaIsStraight) == 0;
}

}  // namespace

Picture decode(std::span<const unsigned char> bytes, FileFormat format) {
    if (!reachesItsEnd(bytes, format)) throw PictureError(kDamaged);
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
        throw PictureError("it is damaged; save or copy it again");
    }
    requireSupported(layout);
    Picture picture = newPicture(layout.width, layout.height, static_cast<std::size_t>(layout.nchannels),
                                 layout.format == OIIO::TypeUInt16 ? SampleType::Bits16 : SampleType::Bits8);
    picture.isPremultiplied = isPremultiplied(layout);
    const bool isRead = std::visit(
        [&](auto& samples) {
            return file->read_image(0, 0, 0, layout.nchannels, layout.format, samples.data());
        },
        picture.samples);
    // The error is asked for as well: the reader leaves missing parts of a TIFF file black and reports
    // success.
    if (const std::string error = file->geterror(); !isRead || !error.empty()) throw PictureError(kDamaged);
    return picture;
}

}  // namespace pictures

#include "Pictures.h"

#include <algorithm>
#include <filesystem>
#include <optional>
#include <sstream>
#include <string_view>
#include <vector>

#include "CodeRows.h"
#include "DepthRange.h"
#include "PictureError.h"
#include "PictureFile.h"
#include "Resample.h"

namespace {

using pictures::Codes;
using pictures::SampleType;
using PILib::Channel15;
using PILib::Channel8;
using PILib::Pixel;
using PILib::PixelBuf;
using PILib::PixelBuffer;
using PILib::SimplePixelBuffer;

constexpr int kCompression = 6;  // of the encoders' own choice

template <class C>
std::unique_ptr<PixelBuffer> ToPixels(const pictures::Picture& picture, int width, int height) {
    auto pixels = std::make_unique<SimplePixelBuffer<Pixel<C>>>(picture.width, picture.height);
    std::vector<Codes> row(static_cast<std::size_t>(picture.width));
    for (int y = 0; y < picture.height; ++y) {
        pictures::readCodes(picture, y, C::kOne, row);
        auto codes = row.begin();
        for (Pixel<C>& pixel : pixels->row(y)) {
            const auto value = [](std::uint16_t code) { return static_cast<typename C::Type>(code); };
            pixel = {value(codes->alpha), value(codes->red), value(codes->green), value(codes->blue)};
            ++codes;
        }
    }
    if (pixels->width == width && pixels->height == height) return pixels;
    auto resized = std::make_unique<SimplePixelBuffer<Pixel<C>>>(width, height);
    Resample<C>(*resized, *pixels);
    return resized;
}

std::unique_ptr<PixelBuffer> ToPixels(const pictures::Picture& picture, bool isWide, int width, int height) {
    return isWide ? ToPixels<Channel15>(picture, width, height) : ToPixels<Channel8>(picture, width, height);
}

template <class C>
void FromPixels(const PixelBuffer& pixels, pictures::Picture& picture) {
    const auto& typed = dynamic_cast<const PixelBuf<Pixel<C>>&>(pixels);
    std::vector<Codes> row(static_cast<std::size_t>(pixels.width));
    for (int y = 0; y < pixels.height; ++y) {
        std::ranges::transform(typed.row(y), row.begin(), [](const Pixel<C>& pixel) {
            return Codes{pixel.alpha, pixel.red, pixel.green, pixel.blue};
        });
        pictures::writeCodes(row, C::kOne, y, picture);
    }
}

// Floats are taken as they are stored, and the codes of buffers end at 1.
void RequireShares(const std::string& path, const pictures::Picture& picture, std::string_view mend) {
    const std::optional<pictures::Extent> extent = extentOf(picture);
    if (hasInfinity(picture)) {
        throw pictures::PictureError("cannot read \"" + path + "\": it has infinite values; " +
                                     std::string(mend));
    }
    if (!extent || (extent->least >= 0 && extent->greatest <= 1)) return;
    std::ostringstream sentence;
    sentence << "cannot read \"" << path << "\": its values are " << extent->least << " to "
             << extent->greatest << ", not 0 to 1; " << mend;
    throw pictures::PictureError(sentence.str());
}

// Of the files that the picture is written to.
SampleType TypeOf(const std::string& path, const Picture& picture) {
    const SampleType type = IsWide(picture) ? SampleType::Bits16 : SampleType::Bits8;
    const auto format = pictures::formatOfName(path);
    return format ? nearestType(*format, type).value_or(type) : type;
}

}  // namespace

bool IsWide(const Picture& picture) {
    return picture.pixels->elementKey() == PILib::kElementKey<PILib::Pixel<PILib::Channel15>>;
}

Picture NewPictureLike(const Picture& picture) {
    const PixelBuffer& pixels = *picture.pixels;
    return {std::unique_ptr<PixelBuffer>(pixels.newPixelBuffer(pixels.width, pixels.height)),
            picture.hasAlpha};
}

Picture ReadPicture(const std::string& path) {
    const pictures::Picture picture = pictures::readPicture(path);
    RequireShares(path, picture, "convert it to 16 bits per channel");
    const bool isWide = picture.type() != SampleType::Bits8;
    return {ToPixels(picture, isWide, picture.width, picture.height), picture.hasAlpha()};
}

Picture ReadControl(const ControlFile& control, const Picture& like) {
    const auto& [path, selected] = control.file;
    pictures::Picture picture = pictures::readPicture(path, selected, {.isOfDepths = true});
    if (control.range) {
        picture = ranged(picture, *control.range);
    } else {
        RequireShares(path, picture, "give the depths that are near and far by --control-range NEAR:FAR");
    }
    return {ToPixels(picture, IsWide(like), like.pixels->width, like.pixels->height), picture.hasAlpha()};
}

void PrepareOutput(const std::string& path, const std::vector<std::string>& inputs) {
    const std::filesystem::path output = path;
    pictures::requireNotRead(output, std::vector<std::filesystem::path>(inputs.begin(), inputs.end()));
    pictures::prepareOutputs({&output, 1});
}

void RequireWritable(const std::string& path, const Picture& picture) {
    pictures::requireWritable(path, TypeOf(path, picture), picture.hasAlpha);
}

void WritePicture(const std::string& path, const Picture& picture) {
    pictures::Picture file = pictures::newPicture(picture.pixels->width, picture.pixels->height,
                                                  picture.hasAlpha ? 4 : 3, TypeOf(path, picture));
    const auto format = pictures::formatOfName(path);
    file.isPremultiplied = picture.hasAlpha && format && isAssociated(*format);
    if (IsWide(picture)) {
        FromPixels<Channel15>(*picture.pixels, file);
    } else {
        FromPixels<Channel8>(*picture.pixels, file);
    }
    pictures::writePicture(path, file, {.compression = kCompression});
}

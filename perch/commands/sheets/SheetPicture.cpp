#include "SheetPicture.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>

#include "Error.h"
#include "Lettering.h"
#include "PixelAccess.h"
#include "PixelOps.h"

namespace perch {
namespace {

constexpr std::int32_t kGap = 12;
constexpr std::int32_t kLabelGap = 6;  // between a picture and its label
constexpr std::uint32_t kGrey = 32;    // of the sheet

// A code of 0 to white as one of 0 to 255, over the sheet's grey where alpha shows it.
std::uint8_t shown(std::uint32_t code, std::uint32_t alpha, std::uint32_t white) {
    const std::uint64_t whole = std::uint64_t{white} * white;
    const std::uint64_t sum =
        std::uint64_t{std::min(code, white)} * 255 * alpha + std::uint64_t{kGrey} * white * (white - alpha);
    return static_cast<std::uint8_t>((sum + whole / 2) / whole);
}

template <typename P>
void drawAs(const World& picture, std::int32_t left, std::int32_t top, World& sheet) {
    for (std::int32_t y = 0; y < picture.height(); ++y) {
        PF_Pixel* to = rowOf<PF_Pixel>(sheet.record(), top + y) + left;
        for (const P& pixel : pixelRow<P>(picture.record(), y)) {
            const std::uint32_t alpha = std::min<std::uint32_t>(pixel.alpha, kWhite<P>);
            *to++ = {255, shown(pixel.red, alpha, kWhite<P>), shown(pixel.green, alpha, kWhite<P>),
                     shown(pixel.blue, alpha, kWhite<P>)};
        }
    }
}

}  // namespace

void SheetPicture::begin(const World& first) {
    pictureHeight =
        std::max<std::int32_t>(1, static_cast<std::int32_t>(std::int64_t{first.height()} * form.pictureWidth /
                                                            std::max(first.width(), 1)));
    const std::int64_t cellHeight =
        pictureHeight + kLabelGap + std::int64_t{kLineHeight} * static_cast<std::int64_t>(form.lines);
    const auto columns = static_cast<std::int64_t>(form.columns);
    const std::int64_t rows = static_cast<std::int64_t>((form.count + form.columns - 1) / form.columns);
    const std::int64_t width = kGap + columns * (form.pictureWidth + kGap);
    const std::int64_t height = kGap + rows * (cellHeight + kGap);
    constexpr std::int64_t kMostPixels = std::int64_t{1} << 28;
    if (width > kLargestExtent || height > kLargestExtent || width * height > kMostPixels)
        throw UsageError(fmt::format(
            "a sheet of {} pictures would have {} x {} pixels, which is too large; give fewer values "
            "or frames, or a smaller --width",
            form.count, width, height));
    sheet.emplace(static_cast<std::int32_t>(width), static_cast<std::int32_t>(height), false);
    for (std::int32_t y = 0; y < sheet->height(); ++y)
        std::ranges::fill(pixelRow<PF_Pixel>(sheet->record(), y), PF_Pixel{255, kGrey, kGrey, kGrey});
}

void SheetPicture::add(const World& picture, const std::vector<std::string>& label) {
    if (!sheet) begin(picture);
    World small(form.pictureWidth, pictureHeight, picture.depth());
    copyWorldFiltered(picture.record(), nullptr, small.record(), nullptr);
    const auto column = static_cast<std::int32_t>(added % form.columns);
    const auto row = static_cast<std::int32_t>(added / form.columns);
    const std::int32_t labelHeight = kLabelGap + kLineHeight * static_cast<std::int32_t>(form.lines);
    const std::int32_t left = kGap + column * (form.pictureWidth + kGap);
    const std::int32_t top = kGap + row * (pictureHeight + labelHeight + kGap);
    if (small.isDeep()) {
        drawAs<PF_Pixel16>(small, left, top, *sheet);
    } else {
        drawAs<PF_Pixel>(small, left, top, *sheet);
    }
    std::int32_t y = top + pictureHeight + kLabelGap;
    for (const std::string& line : label) {
        writeLine(line, left, y, form.pictureWidth + kGap / 2, *sheet);
        y += kLineHeight;
    }
    ++added;
}

}  // namespace perch

#include "TargaPixels.h"

#include <algorithm>

#include "FileText.h"

namespace pictures {
namespace {

using namespace std::string_view_literals;

constexpr std::size_t kHeader = 18;
constexpr std::size_t kFooter = 26;
constexpr std::size_t kGrey = 3;
constexpr std::size_t kColours = 2;
constexpr std::size_t kRuns = 8;  // is added to the type

std::size_t bytesFor(std::size_t bits) {
    return (bits + 7) / 8;
}

}  // namespace

TargaPixels::TargaPixels(std::span<const unsigned char> file)
    : bytes(file),
      type(number(2, 1)),
      width(number(12, 2)),
      height(number(14, 2)),
      pixelSize(bytesFor(number(16, 1))),
      descriptor(number(17, 1)),
      begin(kHeader + number(0, 1) + (number(1, 1) == 1 ? number(5, 2) * bytesFor(number(7, 1)) : 0)) {}

bool TargaPixels::arePlain() const {
    constexpr std::size_t kOtherOrder = 0xD0;  // from the right, or every second or fourth row
    if ((descriptor & kOtherOrder) != 0) return false;
    const std::size_t kind = type % kRuns;
    return (kind == kGrey && pixelSize == 1) || (kind == kColours && (pixelSize == 3 || pixelSize == 4));
}

bool TargaPixels::areDamaged() const {
    const std::optional<std::size_t> end = walk([](const unsigned char*) {});
    if (!end) return true;
    const bool hasUnknownAreas = hasFooter() && number(bytes.size() - kFooter + 4, 4) != 0;
    return hasUnknownAreas ? *end > areasBegin() : *end != areasBegin();
}

void TargaPixels::readTo(std::span<std::uint8_t> samples) const {
    constexpr std::size_t kFromTop = 0x20;
    const bool isFromTop = (descriptor & kFromTop) != 0;
    std::size_t x = 0;
    std::size_t y = 0;
    walk([&](const unsigned char* stored) {
        const std::size_t row = isFromTop ? y : height - 1 - y;
        std::uint8_t* const pixel = &samples[(row * width + x) * pixelSize];
        std::copy_n(stored, pixelSize, pixel);
        if (pixelSize > 1) std::swap(pixel[0], pixel[2]);  // stored as blue, green, red
        if (++x < width) return;
        x = 0;
        ++y;
    });
}

// Little-endian; 0 beyond the end.
std::size_t TargaPixels::number(std::size_t place, std::size_t size) const {
    if (place > bytes.size() || size > bytes.size() - place) return 0;
    return littleEndianAt(textOf(bytes), place, size);
}

bool TargaPixels::hasFooter() const {
    return textOf(bytes).ends_with("TRUEVISION-XFILE.\0"sv);
}

// Where the pixels must end.
std::size_t TargaPixels::areasBegin() const {
    constexpr std::size_t kPlacesOfOthers[] = {482, 486, 490};
    if (!hasFooter()) return bytes.size();
    const std::size_t footer = bytes.size() - kFooter;
    std::size_t first = footer;
    const auto consider = [&](std::size_t place) {
        if (place != 0) first = std::min(first, place);
    };
    const std::size_t extension = number(footer, 4);
    consider(extension);
    consider(number(footer + 4, 4));
    for (const std::size_t other : kPlacesOfOthers)
        if (extension != 0) consider(number(extension + other, 4));
    return first;
}

// The place behind the last pixel; none where the pixels end before or a packet goes on beyond the last.
template <typename Take>
std::optional<std::size_t> TargaPixels::walk(const Take& take) const {
    constexpr std::size_t kRunBit = 0x80;
    const std::size_t pixels = width * height;
    const bool hasPackets = type >= kRuns;
    std::size_t place = begin;
    for (std::size_t pixel = 0, count = 0; pixel < pixels; pixel += count) {
        const std::size_t packet = hasPackets ? number(place, 1) : 0;
        count = hasPackets ? (packet & ~kRunBit) + 1 : width;
        const bool isRun = (packet & kRunBit) != 0;
        const std::size_t stored = isRun ? pixelSize : count * pixelSize;
        place += hasPackets ? 1 : 0;
        if (count > pixels - pixel || place > bytes.size() || stored > bytes.size() - place)
            return std::nullopt;
        for (std::size_t i = 0; i < count; ++i)
            take(&bytes[place + (isRun ? 0 : i * pixelSize)]);
        place += stored;
    }
    return place;
}

}  // namespace pictures

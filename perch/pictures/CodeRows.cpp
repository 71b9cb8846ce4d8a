#include "CodeRows.h"

#include <algorithm>
#include <limits>

namespace pictures {
namespace {

constexpr std::uint32_t kWide = 65535;  // 16 bits, on which colours are divided by alpha

template <typename T>
constexpr std::uint32_t kMost = std::numeric_limits<T>::max();

// The pixel of `kChannels` samples, alpha straight. The white is a constant where it is one of the two that
// worlds have, so that the divisions become multiplications.
template <std::size_t kChannels, typename T>
Codes codesOf(const T* samples, bool isPremultiplied, std::uint32_t white) {
    constexpr std::size_t kGreen = kChannels < 3 ? 0 : 1;
    constexpr std::size_t kBlue = kChannels < 3 ? 0 : 2;
    const std::uint32_t alpha = kChannels % 2 == 0 ? samples[kChannels - 1] : kMost<T>;
    const auto code = [white](std::uint32_t value, std::uint32_t from) {
        return static_cast<std::uint16_t>(rescale(value, from, white));
    };
    if (!isPremultiplied || alpha == 0 || alpha == kMost<T>) {
        return {code(alpha, kMost<T>), code(samples[0], kMost<T>), code(samples[kGreen], kMost<T>),
                code(samples[kBlue], kMost<T>)};
    }
    const std::uint32_t wideAlpha = rescale(alpha, kMost<T>, kWide);
    const auto straight = [&](T sample) {
        const std::uint32_t wide = rescale(sample, kMost<T>, kWide);
        return code(std::min(rescale(wide, wideAlpha, kWide), kWide), kWide);
    };
    return {code(alpha, kMost<T>), straight(samples[0]), straight(samples[kGreen]), straight(samples[kBlue])};
}

template <std::size_t kChannels, typename T>
void fillRow(const T* samples, bool isPremultiplied, std::uint32_t white, std::span<Codes> row) {
    const auto fill = [&](std::uint32_t constantWhite) {
        for (Codes& codes : row) {
            codes = codesOf<kChannels>(samples, isPremultiplied, constantWhite);
            samples += kChannels;
        }
    };
    if (white == 255) return fill(255);
    if (white == 32768) return fill(32768);
    fill(white);
}

template <typename T>
T* rowOf(std::vector<T>& samples, const Picture& picture, std::int32_t y) {
    return samples.data() +
           static_cast<std::size_t>(y) * static_cast<std::size_t>(picture.width) * picture.channels;
}

template <typename T>
const T* rowOf(const std::vector<T>& samples, const Picture& picture, std::int32_t y) {
    return samples.data() +
           static_cast<std::size_t>(y) * static_cast<std::size_t>(picture.width) * picture.channels;
}

}  // namespace

void readCodes(const Picture& picture, std::int32_t y, std::uint32_t white, std::span<Codes> row) {
    std::visit(
        [&]<typename T>(const std::vector<T>& samples) {
            constexpr decltype(&fillRow<1, T>) kFill[] = {fillRow<1, T>, fillRow<2, T>, fillRow<3, T>,
                                                          fillRow<4, T>};
            kFill[picture.channels - 1](rowOf(samples, picture, y), picture.isPremultiplied, white, row);
        },
        picture.samples);
}

void writeCodes(std::span<const Codes> row, std::uint32_t white, std::int32_t y, Picture& picture) {
    std::visit(
        [&]<typename T>(std::vector<T>& samples) {
            const bool withAlpha = picture.hasAlpha();
            const auto fill = [&](std::uint32_t constantWhite) {
                const auto sample = [constantWhite](std::uint32_t code) {
                    return static_cast<T>(rescale(std::min(code, constantWhite), constantWhite, kMost<T>));
                };
                T* next = rowOf(samples, picture, y);
                for (const Codes& codes : row) {
                    *next++ = sample(codes.red);
                    *next++ = sample(codes.green);
                    *next++ = sample(codes.blue);
                    if (withAlpha) *next++ = sample(codes.alpha);
                }
            };
            if (white == 255) return fill(255);
            if (white == 32768) return fill(32768);
            fill(white);
        },
        picture.samples);
}

}  // namespace pictures

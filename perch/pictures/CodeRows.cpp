#include "CodeRows.h"

#include <algorithm>
#include <array>
#include <limits>
#include <type_traits>

namespace pictures {
namespace {

constexpr std::uint32_t kWide = 65535;  // 16 bits, on which colours are divided by alpha

template <typename T>
constexpr std::uint32_t kMost = std::is_integral_v<T>
                                    ? static_cast<std::uint32_t>(std::numeric_limits<T>::max())
                                    : 1U;

// The pixel of `kChannels` samples, alpha straight. Here and below the white is a constant where it is one of
// the two that worlds have, so that the divisions become multiplications.
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

template <typename Samples>
auto* rowOf(Samples& samples, const Picture& picture, std::int32_t y) {
    return samples.data() + static_cast<std::size_t>(y) * picture.rowSamples();
}

constexpr std::size_t kGreyChannels = 2;  // at most

// As light: every sample by itself, through the curve.
template <typename T>
Clipped fillRowOfLight(const T* samples, const Picture& picture, std::uint32_t white, std::span<Codes> row,
                       Transfer transfer) {
    Clipped clipped;
    const bool withAlpha = picture.hasAlpha();
    const std::size_t green = picture.channels > kGreyChannels ? 1 : 0;
    for (Codes& codes : row) {
        const auto code = [&](double value) {
            // Not a number fails both comparisons.
            return static_cast<std::uint16_t>((value > 0 ? std::min(value, 1.0) : 0) * white + 0.5);
        };
        const double share = withAlpha ? static_cast<double>(samples[picture.channels - 1]) / kMost<T> : 1;
        codes.alpha = code(share);
        const double scale = picture.isPremultiplied && share > 0 ? 1 / share : 1;
        bool isAbove = false;
        bool isBelow = false;
        const auto colour = [&](std::size_t channel) {
            const double value =
                codeOfLight(transfer, static_cast<double>(samples[channel]) / kMost<T> * scale);
            isAbove = isAbove || value > 1;
            isBelow = isBelow || value < 0;
            return code(value);
        };
        codes.red = colour(0);
        codes.green = green != 0 ? colour(green) : codes.red;
        codes.blue = green != 0 ? colour(2) : codes.red;
        clipped += {isAbove ? 1 : 0, isBelow ? 1 : 0};
        samples += picture.channels;
    }
    return clipped;
}

constexpr std::size_t kPatternSide = 8;

// Each of the 64 shares from 1/128 on in steps of 1/64 once, those of neighbours far apart: bit by bit, from
// the coarsest, the bits of x ^ y and y of the place, from the finest.
double patternAt(std::size_t x, std::size_t y) {
    unsigned rank = 0;
    for (std::size_t bit = 1; bit < kPatternSide; bit *= 2)
        rank = rank << 2 | (((x ^ y) & bit) != 0 ? 2U : 0U) | ((y & bit) != 0 ? 1U : 0U);
    return (rank + 0.5) / (kPatternSide * kPatternSide);
}

// What is added to a share of the greatest sample before its fraction is dropped, column by column.
std::array<double, kPatternSide> thresholdsOf(Rounding rounding, std::int32_t y) {
    std::array<double, kPatternSide> thresholds{};
    for (std::size_t x = 0; x < kPatternSide; ++x)
        thresholds[x] = rounding == Rounding::Dithered ? patternAt(x, static_cast<std::size_t>(y)) : 0.5;
    return thresholds;
}

// One sample of a file for a share of 0 to 1, or of more light.
template <typename T>
T sampleOf(double share, double threshold) {
    if constexpr (std::is_floating_point_v<T>) return static_cast<T>(share);
    return static_cast<T>(std::clamp(share, 0.0, 1.0) * kMost<T> + threshold);
}

template <typename T>
void writeRowOfLight(std::span<const Codes> row, std::uint32_t white, Picture& picture, Transfer transfer,
                     const std::array<double, kPatternSide>& thresholds, T* next) {
    std::size_t x = 0;
    for (const Codes& codes : row) {
        const double threshold = thresholds[x++ % kPatternSide];
        const auto share = [white](std::uint32_t code) {
            return static_cast<double>(std::min(code, white)) / white;
        };
        const double alpha = share(codes.alpha);
        const double scale = picture.isPremultiplied ? alpha : 1;
        const auto sample = [&](std::uint32_t code) {
            return sampleOf<T>(lightOfCode(transfer, share(code)) * scale, threshold);
        };
        *next++ = sample(codes.red);
        if (picture.channels > kGreyChannels) {
            *next++ = sample(codes.green);
            *next++ = sample(codes.blue);
        }
        if (picture.hasAlpha()) *next++ = sampleOf<T>(alpha, threshold);
    }
}

template <std::size_t kChannels, typename T>
void writeRow(std::span<const Codes> row, std::uint32_t white, T* next) {
    const auto write = [&](std::uint32_t constantWhite) {
        const auto sample = [constantWhite](std::uint32_t code) {
            return static_cast<T>(rescale(std::min(code, constantWhite), constantWhite, kMost<T>));
        };
        for (const Codes& codes : row) {
            next[0] = sample(codes.red);
            if constexpr (kChannels > kGreyChannels) {
                next[1] = sample(codes.green);
                next[2] = sample(codes.blue);
            }
            if constexpr (kChannels % 2 == 0) next[kChannels - 1] = sample(codes.alpha);
            next += kChannels;
        }
    };
    if (white == 255) return write(255);
    if (white == 32768) return write(32768);
    write(white);
}

}  // namespace

Clipped readCodes(const Picture& picture, std::int32_t y, std::uint32_t white, std::span<Codes> row,
                  Transfer transfer) {
    return std::visit(
        [&]<typename T>(const std::vector<T>& samples) -> Clipped {
            const T* const first = rowOf(samples, picture, y);
            if constexpr (std::is_integral_v<T>) {
                if (transfer == Transfer::Linear) {
                    constexpr decltype(&fillRow<1, T>) kFill[] = {fillRow<1, T>, fillRow<2, T>, fillRow<3, T>,
                                                                  fillRow<4, T>};
                    kFill[picture.channels - 1](first, picture.isPremultiplied, white, row);
                    return {};
                }
            }
            return fillRowOfLight(first, picture, white, row, transfer);
        },
        picture.samples);
}

void writeCodes(std::span<const Codes> row, std::uint32_t white, std::int32_t y, Picture& picture,
                Transfer transfer, Rounding rounding) {
    std::visit(
        [&]<typename T>(std::vector<T>& samples) {
            T* const first = rowOf(samples, picture, y);
            if constexpr (std::is_integral_v<T>) {
                const bool isNearest = rounding == Rounding::Nearest;
                if (transfer == Transfer::Linear && !picture.isPremultiplied && isNearest) {
                    constexpr decltype(&writeRow<1, T>) kWrite[] = {writeRow<1, T>, writeRow<2, T>,
                                                                    writeRow<3, T>, writeRow<4, T>};
                    return kWrite[picture.channels - 1](row, white, first);
                }
            }
            writeRowOfLight(row, white, picture, transfer, thresholdsOf(rounding, y), first);
        },
        picture.samples);
}

void copyPixels(const Picture& from, std::span<const std::uint8_t> isCopied, std::int32_t y, Picture& to) {
    std::visit(
        [&]<typename T>(std::vector<T>& samples) {
            const T* source = rowOf(std::get<std::vector<T>>(from.samples), from, y);
            T* target = rowOf(samples, to, y);
            const std::size_t green = from.channels > kGreyChannels ? 1 : 0;
            for (const std::uint8_t copied : isCopied) {
                if (copied != 0) {
                    target[0] = source[0];
                    if (to.channels > kGreyChannels) {
                        target[1] = source[green];
                        target[2] = source[2 * green];
                    }
                    if (to.hasAlpha())
                        target[to.channels - 1] =
                            from.hasAlpha() ? source[from.channels - 1] : static_cast<T>(kMost<T>);
                }
                source += from.channels;
                target += to.channels;
            }
        },
        to.samples);
}

}  // namespace pictures

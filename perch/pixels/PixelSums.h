// Weighted sums of pixels, and the pixel that is their mean.
#pragma once

#include <cstdint>
#include <type_traits>

#include "PixelAccess.h"

namespace perch {

// Premultiplied sums of weighted pixels; weights are whole numbers, so that every machine rounds alike.
struct Sums {
    std::uint64_t alpha = 0;
    std::uint64_t red = 0;
    std::uint64_t green = 0;
    std::uint64_t blue = 0;

    template <class P>
    void add(const P& p, std::uint64_t weight) {
        const std::uint64_t share = p.alpha * weight;
        alpha += share;
        red += share * p.red;
        green += share * p.green;
        blue += share * p.blue;
    }

    // The straight pixel, for weights that add up to `one`.
    template <class P>
    P pixel(std::uint64_t one) const {
        if (alpha == 0) return {};
        const auto colour = [this](std::uint64_t sum) {
            return static_cast<ChannelOf<P>>((sum + alpha / 2) / alpha);
        };
        return {static_cast<ChannelOf<P>>((alpha + one / 2) / one), colour(red), colour(green), colour(blue)};
    }
};

// The same for floating-point pixels, in floating point.
struct FloatSums {
    double alpha = 0;
    double red = 0;
    double green = 0;
    double blue = 0;

    void add(const PF_PixelFloat& p, std::uint64_t weight) {
        const double share = static_cast<double>(p.alpha) * static_cast<double>(weight);
        alpha += share;
        red += share * static_cast<double>(p.red);
        green += share * static_cast<double>(p.green);
        blue += share * static_cast<double>(p.blue);
    }

    template <class P>
    P pixel(std::uint64_t one) const {
        if (alpha == 0) return {};
        const auto colour = [this](double sum) { return static_cast<float>(sum / alpha); };
        return {static_cast<float>(alpha / static_cast<double>(one)), colour(red), colour(green),
                colour(blue)};
    }
};

template <class P>
using SumsOf = std::conditional_t<kHasWholeChannels<P>, Sums, FloatSums>;

}  // namespace perch

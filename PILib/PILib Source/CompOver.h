// The "over" operator on straight pixels of the two host depths: `top` composited over `bottom`.
#pragma once

#include <cstdint>

#include "Pixel.h"

namespace PILib {

// One colour of the result where its alpha is full: each colour weighted by its share of the alpha.
template <HostDepth C>
constexpr typename C::NaturalType chanOver(typename C::Type bottom, std::uint32_t bottomWeight,
                                           typename C::Type top, std::uint32_t topAlpha) {
    return static_cast<typename C::NaturalType>(C::mul(bottom, bottomWeight) + C::mul(top, topAlpha));
}

// The same where the result's alpha is below full: `scale` is full / alpha in 16.16.
template <HostDepth C>
constexpr typename C::NaturalType chanOver(typename C::Type bottom, std::uint32_t bottomWeight,
                                           typename C::Type top, std::uint32_t topAlpha, std::int32_t scale) {
    const std::int64_t sum = chanOver<C>(bottom, bottomWeight, top, topAlpha);
    return static_cast<typename C::NaturalType>((sum * scale) >> 16);
}

// `out` may be `bottom` or `top`. A transparent top leaves the bottom as it is, colours included; an opaque
// top, or a transparent bottom, gives the top.
template <HostDepth C>
constexpr void CompOver(Pixel<C>& out, const Pixel<C>& bottom, const Pixel<C>& top) {
    using Type = typename C::Type;
    if (top.alpha == 0) {
        out = bottom;
        return;
    }
    if (bottom.alpha == 0 || top.alpha == C::kOne) {
        out = top;
        return;
    }
    const std::uint32_t topAlpha = top.alpha;
    const std::uint32_t bottomWeight = C::mul(static_cast<std::uint32_t>(C::kOne) - topAlpha, bottom.alpha);
    const auto alpha = static_cast<std::int32_t>(topAlpha + bottomWeight);
    const auto over = [&](Type b, Type t) {
        return static_cast<Type>(alpha == C::kOne
                                     ? chanOver<C>(b, bottomWeight, t, topAlpha)
                                     : chanOver<C>(b, bottomWeight, t, topAlpha, FixDiv(C::kOne, alpha)));
    };
    out = Pixel<C>(static_cast<Type>(alpha), over(bottom.red, top.red), over(bottom.green, top.green),
                   over(bottom.blue, top.blue));
}

}  // namespace PILib

// Pixels of the host's two depths in vectors, a vector per channel. Lanes that are not wanted may hold
// anything and become anything.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "RowLanes.ipp"

namespace PILib::detail {

namespace {

struct Channels {
    Int alpha;
    Int red;
    Int green;
    Int blue;
};

PILIB_INLINE Channels Select(Int mask, const Channels& a, const Channels& b) {
    return {Select(mask, a.alpha, b.alpha), Select(mask, a.red, b.red), Select(mask, a.green, b.green),
            Select(mask, a.blue, b.blue)};
}

// What differs between the two depths. Both give
//   shareOf: a map value, 0 to kOne, in 16.16;
//   product: a * b / kOne, rounded as the depth's channel type rounds it;
//   straightenFactor: kOne / alpha in 16.16, truncated, for alpha of 1 to kOne;
//   load, store: `count` pixels, at most the lanes; lanes that are not `blurred` are stored from `unblurred`.
struct Depth8 {
    using Type = std::uint8_t;
    static constexpr std::int32_t kOne = 255;
    static constexpr std::int32_t kMask = 0xFF;

    static PILIB_INLINE Int shareOf(Int map) { return (map * 32897) >> 7; }

    static PILIB_INLINE Int product(Int a, Int b) {
        const Int t = a * b + 128;
        return (t + (t >> 8)) >> 8;
    }

    // 255 in 16.16 divided by alpha, truncated. The quotient of two exact singles is one step too large at
    // most.
    static PILIB_INLINE Int straightenFactor(Int alpha) {
        constexpr std::int32_t kNumerator = kOne << 16;
        const Int quotient = Truncated(static_cast<float>(kNumerator) / AsFloat(alpha));
        return Plus(quotient, Minus(Splat(kNumerator), Times(quotient, alpha)) < 0);
    }

    static PILIB_INLINE Channels load(const Type* from, int count) {
        const Int pixels = LoadSome<Int>(from, 4 * count);
        return {pixels & kMask, pixels >> 8 & kMask, pixels >> 16 & kMask, pixels >> 24 & kMask};
    }

    static PILIB_INLINE void store(Type* to, const Type* unblurred, int count, Int blurred,
                                   const Channels& c) {
        const Int pixels = c.alpha | c.red << 8 | c.green << 16 | c.blue << 24;
        const Int result = Select(blurred, pixels, LoadSome<Int>(unblurred, 4 * count));
        std::memcpy(to, &result, 4U * static_cast<std::size_t>(count));
    }
};

struct Depth15 {
    using Type = std::uint16_t;
    static constexpr std::int32_t kOne = 32768;
    static constexpr std::int32_t kMask = 0xFFFF;

    static PILIB_INLINE Int shareOf(Int map) { return map * 2; }

    static PILIB_INLINE Int product(Int a, Int b) {
        return reinterpret_cast<Int>(AsUnsigned(a) * AsUnsigned(b) >> 15);
    }

    // 32768 in 16.16 divided by alpha, truncated; saturated for alpha 1. The estimate is corrected by what is
    // left over.
    static PILIB_INLINE Int straightenFactor(Int alpha) {
        const Float divisor = AsFloat(alpha);
        const auto rest = [alpha](Int quotient) PILIB_INLINE_LAMBDA {
            return reinterpret_cast<Int>((Uint{} + 0x80000000U) - AsUnsigned(quotient) * AsUnsigned(alpha));
        };
        Int quotient =
            Truncated(2147483520.0F / divisor);  // the single before 2^31 stays in range for alpha 1
        quotient = Plus(quotient, Truncated(AsFloat(rest(quotient)) / divisor));
        const Int left = rest(quotient);
        quotient = Plus(Minus(quotient, left >= alpha), left < 0);
        return Select(alpha == 1, Splat(0x7FFFFFFF), quotient);
    }

    static PILIB_INLINE Channels load(const Type* from, int count) {
        Int pixels[2] = {};
        std::memcpy(pixels, from, 8U * static_cast<std::size_t>(count));
        const Int low = Arranged<Evens>(pixels[0], pixels[1]);
        const Int high = Arranged<Odds>(pixels[0], pixels[1]);
        return {low & kMask, low >> 16 & kMask, high & kMask, high >> 16 & kMask};
    }

    static PILIB_INLINE void store(Type* to, const Type* unblurred, int count, Int blurred,
                                   const Channels& c) {
        const Int low = c.alpha | c.red << 16;
        const Int high = c.green | c.blue << 16;
        Int kept[2] = {};
        std::memcpy(kept, unblurred, 8U * static_cast<std::size_t>(count));
        const Int result[2] = {
            Select(Arranged<ZipFirstHalves>(blurred, blurred), Arranged<ZipFirstHalves>(low, high), kept[0]),
            Select(Arranged<ZipSecondHalves>(blurred, blurred), Arranged<ZipSecondHalves>(low, high),
                   kept[1])};
        std::memcpy(to, result, 8U * static_cast<std::size_t>(count));
    }
};

}  // namespace

}  // namespace PILib::detail

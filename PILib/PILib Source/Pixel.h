// Channel and pixel types, the conversions between depths, and the named colours.
//
// A channel type is an empty tag: how one component is stored (Type), the type its arithmetic is done in
// (NaturalType), and what number means full intensity (kOne, kFloatOne). Pixel<C> is four such components in
// the host's order alpha, red, green, blue, without padding, so that host rows are used in place. Depths meet
// only in Pixel<Channel32f>: there is no direct conversion between two integer depths.
#pragma once

#include <array>
#include <concepts>
#include <cstdint>
#include <limits>
#include <type_traits>

namespace PILib {

// Truncates toward zero. Out of range and NaN give the most negative value, on every machine alike (the
// language leaves them undefined; this is what the common processors answer).
template <std::floating_point F>
constexpr std::int32_t TruncToInt32(F value) {
    constexpr F kLimit = 2147483648.0F;  // 2^31
    return value > -kLimit - 1 && value < kLimit ? static_cast<std::int32_t>(value)
                                                 : std::numeric_limits<std::int32_t>::min();
}

struct Channel8 {
    using Type = std::uint8_t;
    using NaturalType = std::int32_t;
    static constexpr NaturalType kOne = 255;
    static constexpr float kFloatOne = 255.0F;
    static constexpr float kFloatReciprocal = 1.0F / 255.0F;  // bits 0x3B808081
    static constexpr Type kZeroValue = 0;

    // x * a / 255, correctly rounded, for x and a up to 255.
    static constexpr std::uint32_t mul(std::uint32_t x, std::uint32_t a) {
        const std::uint32_t t = x * a + 128;
        return (t + (t >> 8)) >> 8;
    }
    static constexpr Type fromFloat(float f);
    // As a 16.16 share of full intensity: 255 gives 65536, 1 gives 257.
    static constexpr std::int32_t toFixed(Type value) { return (value * 32897) >> 7; }
};

// The host's 16-bit depth: full intensity is 32768, so values run from 0 to 32768 inclusive.
struct Channel15 {
    using Type = std::uint16_t;
    using NaturalType = std::int32_t;
    static constexpr NaturalType kOne = 32768;
    static constexpr float kFloatOne = 32768.0F;
    static constexpr float kFloatReciprocal = 1.0F / 32768.0F;  // bits 0x38000000
    static constexpr Type kZeroValue = 0;

    // x * a / 32768, truncated.
    static constexpr std::uint32_t mul(std::uint32_t x, std::uint32_t a) { return (x * a) >> 15; }
    static constexpr Type fromFloat(float f);
    // As a 16.16 share of full intensity: 32768 gives 65536.
    static constexpr std::int32_t toFixed(Type value) { return value * 2; }
};

struct Channel16 {
    using Type = std::uint16_t;
    using NaturalType = std::int32_t;
    static constexpr NaturalType kOne = 65535;
    static constexpr float kFloatOne = 65535.0F;
    static constexpr float kFloatReciprocal = 1.0F / 65535.0F;  // bits 0x37800080
    static constexpr Type kZeroValue = 0;

    // Deliberate: shifts by 16 although full scale is 65535, so full by full gives 65534.
    // Pinned by ChannelTest.Channel16FullTimesFullLosesOneStep.
    static constexpr std::uint32_t mul(std::uint32_t x, std::uint32_t a) { return (x * a) >> 16; }
    static constexpr Type fromFloat(float f);
};

// Full intensity is 2^30: headroom above it is intended.
struct Channel32 {
    using Type = std::int32_t;
    using NaturalType = std::int32_t;
    static constexpr NaturalType kOne = 1073741824;
    static constexpr float kFloatOne = 1073741824.0F;
    static constexpr float kFloatReciprocal = 1.0F / 1073741824.0F;  // bits 0x30800000
    static constexpr Type kZeroValue = 0;

    static constexpr std::int32_t mul(std::int32_t x, std::int32_t a) {
        return static_cast<std::int32_t>((std::int64_t{x} * a) >> 30);
    }
    static constexpr Type fromFloat(float f);
};

// The working form through which depths are converted.
struct Channel32f {
    using Type = float;
    using NaturalType = float;
    static constexpr float kOneF = 1.0F;
    static constexpr float kFloatOne = 1.0F;
    static constexpr float kFloatReciprocal = 1.0F;
    static constexpr Type kZeroValue = 0.0F;

    static constexpr float mul(float x, float a) { return x * a; }
    static constexpr Type fromFloat(float f) { return f; }
};

// One component widened: in * kFloatReciprocal, one single-precision product.
template <class C>
constexpr float ToFloat(typename C::Type value) {
    return static_cast<float>(value) * C::kFloatReciprocal;
}

namespace detail {

// One product, one clamp, truncation. Scaling by one more than `max` gives every code the same share of [0,
// 1]; rounding to nearest would not. NaN passes both comparisons.
constexpr std::int32_t ClampedFromFloat(float f, float scale, float max) {
    const float v = f * scale;
    return TruncToInt32(v < 0.0F ? 0.0F : v > max ? max : v);
}

}  // namespace detail

constexpr Channel8::Type Channel8::fromFloat(float f) {
    return static_cast<Type>(detail::ClampedFromFloat(f, 256.0F, 255.0F));
}

// Codes 32736 to 32767 come back one higher after widening, as single precision rounds k + k/32768 up there.
// Pinned by PixelConversionTest.Channel15DriftsOneStepJustBelowWhite.
constexpr Channel15::Type Channel15::fromFloat(float f) {
    return static_cast<Type>(detail::ClampedFromFloat(f, 32769.0F, 32768.0F));
}

// Deliberate: no clamp, and 1.0 gives 32767, not kOne. Out-of-range input wraps in the store.
// Pinned by PixelConversionTest.Channel16WhiteIs32767.
constexpr Channel16::Type Channel16::fromFloat(float f) {
    return static_cast<Type>(TruncToInt32(f * 32767.0F));
}

// Deliberate: the range is 0 to 65535 although kOne is 2^30.
// Pinned by PixelConversionTest.Channel32WhiteIs65535.
constexpr Channel32::Type Channel32::fromFloat(float f) {
    return detail::ClampedFromFloat(f, 65536.0F, 65535.0F);
}

// The host's two depths: those that are rendered at, painted, blended, and widened to float.
template <class C>
concept HostDepth = std::same_as<C, Channel8> || std::same_as<C, Channel15>;

template <class C>
struct Pixel {
    using ChannelType = C;
    using Type = typename C::Type;

    Type alpha;
    Type red;
    Type green;
    Type blue;

    static const Pixel kWhiteColor;
    static const Pixel kBlackColor;
    static const Pixel kGrayColor;
    static const Pixel kTransparentColor;

    Pixel() = default;
    constexpr Pixel(Type a, Type r, Type g, Type b) : alpha(a), red(r), green(g), blue(b) {}

    // Narrows each component from float by C's rule.
    template <std::same_as<Channel32f> S>
    requires(!std::same_as<C, Channel32f>)
        // NOLINTNEXTLINE(google-explicit-constructor): depths convert implicitly, through float only
        constexpr Pixel(const Pixel<S>& p)
        : alpha(C::fromFloat(p.alpha)),
          red(C::fromFloat(p.red)),
          green(C::fromFloat(p.green)),
          blue(C::fromFloat(p.blue)) {}

    // Widens each component to float.
    template <HostDepth S>
    requires std::same_as<C, Channel32f>
    // NOLINTNEXTLINE(google-explicit-constructor): as above
    constexpr Pixel(const Pixel<S>& p)
        : alpha(ToFloat<S>(p.alpha)),
          red(ToFloat<S>(p.red)),
          green(ToFloat<S>(p.green)),
          blue(ToFloat<S>(p.blue)) {}

    friend constexpr bool operator==(const Pixel&, const Pixel&) = default;
};

static_assert(sizeof(Pixel<Channel8>) == 4 && sizeof(Pixel<Channel15>) == 8 &&
              sizeof(Pixel<Channel16>) == 8 && sizeof(Pixel<Channel32>) == 16 &&
              sizeof(Pixel<Channel32f>) == 16);
static_assert(std::is_trivially_copyable_v<Pixel<Channel8>> && std::is_standard_layout_v<Pixel<Channel8>>);

inline constexpr Pixel<Channel32f> kColorWhite{1.0F, 1.0F, 1.0F, 1.0F};
inline constexpr Pixel<Channel32f> kColorBlack{1.0F, 0.0F, 0.0F, 0.0F};
inline constexpr Pixel<Channel32f> kColorGray{1.0F, 0.5F, 0.5F, 0.5F};
inline constexpr Pixel<Channel32f> kColorGray25{1.0F, 0.25F, 0.25F, 0.25F};
inline constexpr Pixel<Channel32f> kColorGray75{1.0F, 0.75F, 0.75F, 0.75F};
inline constexpr Pixel<Channel32f> kColorRed{1.0F, 1.0F, 0.0F, 0.0F};
inline constexpr Pixel<Channel32f> kColorGreen{1.0F, 0.0F, 1.0F, 0.0F};
inline constexpr Pixel<Channel32f> kColorBlue{1.0F, 0.0F, 0.0F, 1.0F};
inline constexpr Pixel<Channel32f> kColorCyan{1.0F, 0.0F, 1.0F, 1.0F};
inline constexpr Pixel<Channel32f> kColorMagenta{1.0F, 1.0F, 0.0F, 1.0F};
inline constexpr Pixel<Channel32f> kColorYellow{1.0F, 1.0F, 1.0F, 0.0F};
inline constexpr Pixel<Channel32f> kColorTransparent{0.0F, 0.0F, 0.0F, 0.0F};

// Compile-time constants, so that no other static initialiser can come before them.
template <>
inline constexpr Pixel<Channel8> Pixel<Channel8>::kWhiteColor{kColorWhite};
template <>
inline constexpr Pixel<Channel8> Pixel<Channel8>::kBlackColor{kColorBlack};
template <>
inline constexpr Pixel<Channel8> Pixel<Channel8>::kGrayColor{kColorGray};
template <>
inline constexpr Pixel<Channel8> Pixel<Channel8>::kTransparentColor{kColorTransparent};
template <>
inline constexpr Pixel<Channel15> Pixel<Channel15>::kWhiteColor{kColorWhite};
template <>
inline constexpr Pixel<Channel15> Pixel<Channel15>::kBlackColor{kColorBlack};
template <>
inline constexpr Pixel<Channel15> Pixel<Channel15>::kGrayColor{kColorGray};
template <>
inline constexpr Pixel<Channel15> Pixel<Channel15>::kTransparentColor{kColorTransparent};
template <>
inline constexpr Pixel<Channel16> Pixel<Channel16>::kWhiteColor{kColorWhite};
template <>
inline constexpr Pixel<Channel16> Pixel<Channel16>::kBlackColor{kColorBlack};
template <>
inline constexpr Pixel<Channel16> Pixel<Channel16>::kGrayColor{kColorGray};
template <>
inline constexpr Pixel<Channel16> Pixel<Channel16>::kTransparentColor{kColorTransparent};
template <>
inline constexpr Pixel<Channel32> Pixel<Channel32>::kWhiteColor{kColorWhite};
template <>
inline constexpr Pixel<Channel32> Pixel<Channel32>::kBlackColor{kColorBlack};
template <>
inline constexpr Pixel<Channel32> Pixel<Channel32>::kGrayColor{kColorGray};
template <>
inline constexpr Pixel<Channel32> Pixel<Channel32>::kTransparentColor{kColorTransparent};
template <>
inline constexpr Pixel<Channel32f> Pixel<Channel32f>::kWhiteColor{kColorWhite};
template <>
inline constexpr Pixel<Channel32f> Pixel<Channel32f>::kBlackColor{kColorBlack};
template <>
inline constexpr Pixel<Channel32f> Pixel<Channel32f>::kGrayColor{kColorGray};
template <>
inline constexpr Pixel<Channel32f> Pixel<Channel32f>::kTransparentColor{kColorTransparent};

// 16.16 quotient of two integers: numerator * 65536 / denominator, truncated toward zero. Saturates at the
// largest positive (or most negative) value, which is also what division by zero gives.
constexpr std::int32_t FixDiv(std::int32_t numerator, std::int32_t denominator) {
    constexpr std::int64_t kMax = std::numeric_limits<std::int32_t>::max();
    constexpr std::int64_t kMin = std::numeric_limits<std::int32_t>::min();
    if (denominator == 0) return static_cast<std::int32_t>(numerator < 0 ? kMin : kMax);
    const std::int64_t quotient = std::int64_t{numerator} * 65536 / denominator;
    return static_cast<std::int32_t>(quotient > kMax ? kMax : quotient < kMin ? kMin : quotient);
}

// Un-premultiplies `p` in place and returns it: colours become colour * full / alpha, truncated, by one 16.16
// factor; alpha 0 gives the transparent pixel. A colour above its alpha is not premultiplied data and wraps
// in the store.
template <class C>
requires std::same_as<C, Channel8> || std::same_as<C, Channel15>
constexpr Pixel<C>& straighten(Pixel<C>& p) {
    if (p.alpha == C::kOne) return p;
    if (p.alpha == 0) return p = Pixel<C>::kTransparentColor;
    const auto factor = static_cast<std::uint32_t>(FixDiv(C::kOne, p.alpha));
    // The low bits that are stored are the same for a signed and an unsigned product.
    const auto scaled = [factor](typename C::Type c) {
        return static_cast<typename C::Type>((std::uint32_t{c} * factor) >> 16);
    };
    p.red = scaled(p.red);
    p.green = scaled(p.green);
    p.blue = scaled(p.blue);
    return p;
}

// The largest and smallest of three, by reference into the arguments; on ties the earliest wins.
template <class T>
constexpr const T& max(const T& a, const T& b, const T& c) {
    const T& bc = b < c ? c : b;
    return a < bc ? bc : a;
}

template <class T>
constexpr const T& min(const T& a, const T& b, const T& c) {
    const T& bc = b > c ? c : b;
    return a > bc ? bc : a;
}

// Mean of the largest and the smallest colour, truncated.
template <class C>
constexpr typename C::NaturalType lightness(const Pixel<C>& p) {
    using N = typename C::NaturalType;
    return (N{max(p.red, p.green, p.blue)} + N{min(p.red, p.green, p.blue)}) >> 1;
}

// Entry a * 256 + b is the 8-bit colour `a` un-premultiplied by alpha `b`: a * 255 / b, truncated, 0 where b
// is 0. Entries with a > b exceed a byte and wrap; premultiplied data never asks for them.
extern const std::array<std::uint8_t, 65536> DivByByteTable;

}  // namespace PILib

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <type_traits>

#include "Buffers.h"
#include "ChannelTypes.h"
#include "Pixel.h"

namespace {

using PILib::Channel15;
using PILib::Channel16;
using PILib::Channel32;
using PILib::Channel32f;
using PILib::Channel8;
using PILib::Pixel;
using PILib::ToFloat;

constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

// Depths meet in float only.
template <class To, class From>
constexpr bool Converts = std::is_convertible_v<Pixel<From>, Pixel<To>>;

static_assert(Converts<Channel32f, Channel8> && Converts<Channel32f, Channel15>);
static_assert(Converts<Channel8, Channel32f> && Converts<Channel15, Channel32f>);
static_assert(Converts<Channel16, Channel32f> && Converts<Channel32, Channel32f>);
static_assert(!Converts<Channel32f, Channel16> && !Converts<Channel32f, Channel32>);
static_assert(!Converts<Channel8, Channel15> && !Converts<Channel15, Channel8>);
static_assert(!Converts<Channel8, Channel16> && !Converts<Channel16, Channel8>);
static_assert(!Converts<Channel15, Channel16> && !Converts<Channel16, Channel15>);
static_assert(!Converts<Channel8, Channel32> && !Converts<Channel32, Channel8>);

template <class C>
struct Narrowing {
    float from;
    std::int64_t expected;
};

template <class C, std::size_t N>
void ExpectNarrowings(const Narrowing<C> (&cases)[N]) {
    for (const auto& c : cases)
        EXPECT_EQ(c.expected, C::fromFloat(c.from)) << c.from;
}

// All codes of a depth, 0 to full.
template <class C, class Check>
void ForEachCode(Check check) {
    for (std::int32_t code = 0; code <= C::kOne; ++code)
        check(static_cast<typename C::Type>(code));
}

template <class C>
class PixelConversionTypedTest : public testing::Test {};

TYPED_TEST_SUITE(PixelConversionTypedTest, HostChannels, ChannelNames);

TYPED_TEST(PixelConversionTypedTest, EveryCodeWidensByOneSinglePrecisionProduct) {
    using C = TypeParam;
    constexpr double kUlp = std::numeric_limits<float>::epsilon();
    float previous = -1.0F;
    ForEachCode<C>([&](typename C::Type code) {
        const float widened = ToFloat<C>(code);
        ASSERT_EQ(static_cast<float>(code) * C::kFloatReciprocal, widened) << +code;
        ASSERT_NEAR(static_cast<double>(code) / C::kOne, widened, kUlp) << +code;
        ASSERT_LT(previous, widened) << +code;
        previous = widened;
    });
    EXPECT_EQ(0.0F, ToFloat<C>(0));
    EXPECT_EQ(1.0F, ToFloat<C>(kFullOf<C>));
}

TYPED_TEST(PixelConversionTypedTest, EveryComponentIsConvertedOnItsOwn) {
    using C = TypeParam;
    const auto quarter = static_cast<typename C::Type>(kFullOf<C> / 4);
    const Pixel<Channel32f> widened = Pixel<C>(kFullOf<C>, 0, quarter, 1);
    EXPECT_EQ((Pixel<Channel32f>(1.0F, 0.0F, ToFloat<C>(quarter), ToFloat<C>(1))), widened);
    const Pixel<C> narrowed = Pixel<Channel32f>(-1.0F, 0.25F, 0.5F, 2.0F);
    EXPECT_EQ((Pixel<C>(0, C::fromFloat(0.25F), C::fromFloat(0.5F), kFullOf<C>)), narrowed);
}

TYPED_TEST(PixelConversionTypedTest, EveryCodeHasTheSameShareOfTheRange) {
    using C = TypeParam;
    constexpr double kCodes = C::kOne + 1.0;
    ForEachCode<C>([&](typename C::Type code) {
        // The middle of the code's share, far from its edges compared with single precision.
        ASSERT_EQ(code, C::fromFloat(static_cast<float>((code + 0.5) / kCodes))) << +code;
    });
}

TEST(PixelConversionTest, Channel8SharesBeginAtTheirExactEdge) {
    for (int code = 0; code <= 255; ++code) {
        const float edge = static_cast<float>(code) / 256.0F;
        ASSERT_EQ(code, Channel8::fromFloat(edge)) << edge;
        if (code > 0) {
            ASSERT_EQ(code - 1, Channel8::fromFloat(std::nextafter(edge, 0.0F))) << edge;
        }
    }
}

TEST(PixelConversionTest, Channel8ComesBackFromFloatUnchanged) {
    ForEachCode<Channel8>([](std::uint8_t code) {
        const Pixel<Channel8> pixel(code, code, code, code);
        ASSERT_EQ(pixel, Pixel<Channel8>(Pixel<Channel32f>(pixel)));
    });
}

TEST(PixelConversionTest, Channel15DriftsOneStepJustBelowWhite) {
    ForEachCode<Channel15>([](std::uint16_t code) {
        const int drift = code >= 32736 && code <= 32767 ? 1 : 0;
        ASSERT_EQ(code + drift, Channel15::fromFloat(ToFloat<Channel15>(code))) << code;
    });
}

TEST(PixelConversionTest, Channel8NarrowsByClampAndTruncation) {
    ExpectNarrowings<Channel8>({{0.0F, 0},
                                {-0.0F, 0},
                                {0.5F, 128},
                                {0.999F, 255},
                                {1.0F, 255},
                                {1.5F, 255},
                                {-0.2F, 0},
                                {0.00390624F, 0},  // just below 1/256
                                {0.00390625F, 1},
                                {1e30F, 255},
                                {-1e30F, 0},
                                {kInfinity, 255},
                                {-kInfinity, 0},
                                {kNaN, 0}});
}

TEST(PixelConversionTest, Channel15NarrowsByClampAndTruncation) {
    ExpectNarrowings<Channel15>({{0.0F, 0},
                                 {0.25F, 8192},
                                 {0.5F, 16384},
                                 {1.0F, 32768},
                                 {2.0F, 32768},
                                 {-0.001F, 0},
                                 {kInfinity, 32768},
                                 {-kInfinity, 0},
                                 {kNaN, 0}});
    EXPECT_EQ(0.5F, ToFloat<Channel15>(16384));
}

TEST(PixelConversionTest, Channel16WhiteIs32767) {
    EXPECT_EQ(32767, Channel16::fromFloat(1.0F));
    EXPECT_EQ(16383, Channel16::fromFloat(0.5F));
    EXPECT_EQ((Pixel<Channel16>(32767, 32767, 32767, 32767)), (Pixel<Channel16>(PILib::kColorWhite)));
}

TEST(PixelConversionTest, Channel16OutsideItsRangeWrapsInTheStore) {
    ExpectNarrowings<Channel16>({{2.0F, 65534},
                                 {2.5F, 16381},   // 81917 - 65536
                                 {-0.5F, 49153},  // 65536 - 16383
                                 {-0.00001F, 0},  // truncated to 0 first
                                 {-1.0F, 32769},
                                 {1e10F, 0},  // beyond 32 bits
                                 {-kInfinity, 0},
                                 {kNaN, 0}});
}

TEST(PixelConversionTest, Channel32WhiteIs65535) {
    ExpectNarrowings<Channel32>({{1.0F, 65535},
                                 {0.5F, 32768},
                                 {3.0F, 65535},
                                 {0.0F, 0},
                                 {-1.0F, 0},
                                 {kInfinity, 65535},
                                 {-kInfinity, 0}});
    EXPECT_EQ((Pixel<Channel32>(65535, 65535, 65535, 65535)), (Pixel<Channel32>(PILib::kColorWhite)));
}

TEST(PixelConversionTest, Channel32SharesBeginAtTheirExactEdge) {
    for (int code = 1; code <= 65535; ++code) {
        const float edge = static_cast<float>(code) / 65536.0F;
        ASSERT_EQ(code, Channel32::fromFloat(edge)) << edge;
        ASSERT_EQ(code - 1, Channel32::fromFloat(std::nextafter(edge, 0.0F))) << edge;
    }
}

TEST(PixelConversionTest, Channel32fIsItself) {
    for (const float value : {-2.0F, 0.0F, 0.3F, 1.0F, 7.0F})
        EXPECT_EQ(value, Channel32f::fromFloat(value));
}

}  // namespace

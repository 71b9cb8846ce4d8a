#include "Pixel.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <limits>
#include <random>
#include <type_traits>

#include "Buffers.h"
#include "ChannelTypes.h"

namespace {

using PILib::Channel15;
using PILib::Channel16;
using PILib::Channel32;
using PILib::Channel32f;
using PILib::Channel8;
using PILib::FixDiv;
using PILib::Pixel;
using PILib::straighten;

// Usable before any code has run, so that no static initialiser can come before them.
static_assert(PILib::kColorCyan == Pixel<Channel32f>(1.0F, 0.0F, 1.0F, 1.0F));
static_assert(Pixel<Channel8>(PILib::kColorGray) == Pixel<Channel8>(255, 128, 128, 128));
static_assert(Pixel<Channel15>(PILib::kColorGray) == Pixel<Channel15>(32768, 16384, 16384, 16384));
static_assert(Pixel<Channel8>::kWhiteColor == Pixel<Channel8>(255, 255, 255, 255));
static_assert(Pixel<Channel15>::kTransparentColor == Pixel<Channel15>(0, 0, 0, 0));

// The four colours of a depth.
template <class C>
struct Colours {
    Pixel<C> white = Pixel<C>::kWhiteColor;
    Pixel<C> gray = Pixel<C>::kGrayColor;
    Pixel<C> black = Pixel<C>::kBlackColor;
    Pixel<C> transparent = Pixel<C>::kTransparentColor;
};

// Read by a static initialiser, as an effect's may do.
template <class C>
const Colours<C> coloursAtStart;

template <class C>
class PixelTypedTest : public testing::Test {};

TYPED_TEST_SUITE(PixelTypedTest, AllChannels, ChannelNames);

TYPED_TEST(PixelTypedTest, ComponentsStandInTheHostsOrderWithoutPadding) {
    using P = Pixel<TypeParam>;
    constexpr std::size_t kSize = sizeof(typename TypeParam::Type);
    EXPECT_EQ(4 * kSize, sizeof(P));
    EXPECT_EQ(0 * kSize, offsetof(P, alpha));
    EXPECT_EQ(1 * kSize, offsetof(P, red));
    EXPECT_EQ(2 * kSize, offsetof(P, green));
    EXPECT_EQ(3 * kSize, offsetof(P, blue));
    EXPECT_TRUE(std::is_standard_layout_v<P>);
    EXPECT_TRUE(std::is_trivially_copyable_v<P>);
}

TEST(PixelTest, NamedColoursHaveTheirComponents) {
    const struct {
        const char* name;
        Pixel<Channel32f> colour;
        float alpha, red, green, blue;
    } kCases[] = {
        {"white", PILib::kColorWhite, 1, 1, 1, 1},
        {"black", PILib::kColorBlack, 1, 0, 0, 0},
        {"gray", PILib::kColorGray, 1, 0.5F, 0.5F, 0.5F},
        {"gray 25", PILib::kColorGray25, 1, 0.25F, 0.25F, 0.25F},
        {"gray 75", PILib::kColorGray75, 1, 0.75F, 0.75F, 0.75F},
        {"red", PILib::kColorRed, 1, 1, 0, 0},
        {"green", PILib::kColorGreen, 1, 0, 1, 0},
        {"blue", PILib::kColorBlue, 1, 0, 0, 1},
        {"cyan", PILib::kColorCyan, 1, 0, 1, 1},
        {"magenta", PILib::kColorMagenta, 1, 1, 0, 1},
        {"yellow", PILib::kColorYellow, 1, 1, 1, 0},
        {"transparent", PILib::kColorTransparent, 0, 0, 0, 0},
    };
    for (const auto& c : kCases)
        EXPECT_EQ((Pixel<Channel32f>(c.alpha, c.red, c.green, c.blue)), c.colour) << c.name;
}

template <class C>
void ExpectColoursAtStart(typename C::Type full, typename C::Type gray) {
    const Colours<C>& colours = coloursAtStart<C>;
    EXPECT_EQ(Pixel<C>(full, full, full, full), colours.white);
    EXPECT_EQ(Pixel<C>(full, gray, gray, gray), colours.gray);
    EXPECT_EQ(Pixel<C>(full, 0, 0, 0), colours.black);
    EXPECT_EQ(Pixel<C>(0, 0, 0, 0), colours.transparent);
}

TEST(PixelTest, ColoursOfEachDepthAreReadyForStaticInitialisers) {
    ExpectColoursAtStart<Channel8>(255, 128);
    ExpectColoursAtStart<Channel15>(32768, 16384);
    ExpectColoursAtStart<Channel16>(32767, 16383);
    ExpectColoursAtStart<Channel32>(65535, 32768);
    ExpectColoursAtStart<Channel32f>(1.0F, 0.5F);
}

TEST(PixelTest, FixDivTruncatesTowardZeroAndSaturates) {
    constexpr std::int32_t kMax = std::numeric_limits<std::int32_t>::max();
    constexpr std::int32_t kMin = std::numeric_limits<std::int32_t>::min();
    const struct {
        std::int32_t numerator, denominator, expected;
    } kCases[] = {
        {255, 128, 130560},  {32768, 16384, 131072}, {1, 3, 21845},
        {-1, 3, -21845},     {1, -3, -21845},        {-1, -3, 21845},
        {0, 5, 0},           {1, kMax, 0},           {32767, 1, 32767 << 16},
        {32768, 1, kMax},    {kMax, 1, kMax},        {-32768, 1, kMin},
        {-32769, 1, kMin},   {kMin, -1, kMax},       {kMin, 1, kMin},
        {1, 0, kMax},        {0, 0, kMax},           {-1, 0, kMin},
        {kMin, kMin, 65536}, {kMax, kMax, 65536},
    };
    for (const auto& c : kCases)
        EXPECT_EQ(c.expected, FixDiv(c.numerator, c.denominator)) << c.numerator << " / " << c.denominator;
}

TEST(PixelTest, StraightenOf8BitsEqualsItsDefinitionForAllPremultipliedPairs) {
    for (int alpha = 1; alpha < 255; ++alpha) {
        const int factor = 255 * 65536 / alpha;
        for (int colour = 0; colour <= alpha; ++colour) {
            const auto c = static_cast<std::uint8_t>(colour);
            Pixel<Channel8> p(static_cast<std::uint8_t>(alpha), c, 0, c);
            straighten(p);
            ASSERT_EQ((colour * factor) >> 16, p.red) << "colour " << colour << ", alpha " << alpha;
            ASSERT_EQ(p.red, p.blue);
            ASSERT_EQ(0, p.green);
            ASSERT_EQ(alpha, p.alpha);
            // The truncated factor costs at most one step of the exact quotient.
            const int exact = colour * 255 / alpha;
            ASSERT_TRUE(p.red == exact || p.red == exact - 1)
                << "colour " << colour << ", alpha " << alpha << ": " << +p.red;
        }
    }
}

TEST(PixelTest, StraightenOf15BitsStaysWithinTwoStepsOfTheQuotientForAllAlphas) {
    std::mt19937 random(31);
    for (std::uint32_t alpha = 1; alpha < 32768; ++alpha) {
        const std::uint32_t colours[] = {
            0, 1, alpha / 2, alpha - 1, alpha, static_cast<std::uint32_t>(random() % (alpha + 1))};
        for (const std::uint32_t colour : colours) {
            const auto c = static_cast<std::uint16_t>(colour);
            Pixel<Channel15> p(static_cast<std::uint16_t>(alpha), c, c, 0);
            straighten(p);
            const auto exact = static_cast<std::int64_t>(std::uint64_t{colour} * 32768 / alpha);
            ASSERT_TRUE(p.red == exact || p.red == exact - 1)
                << "colour " << colour << ", alpha " << alpha << ": " << p.red;
            ASSERT_EQ(p.red, p.green);
            ASSERT_EQ(alpha, p.alpha);
        }
    }
}

TEST(PixelTest, StraightenTruncatesTheFactorAndTheProduct) {
    Pixel<Channel8> p(128, 64, 32, 16);
    EXPECT_EQ(&p, &straighten(p));
    EXPECT_EQ((Pixel<Channel8>(128, 127, 63, 31)), p);
    Pixel<Channel8> full(7, 7, 7, 7);
    EXPECT_EQ((Pixel<Channel8>(7, 254, 254, 254)), straighten(full));
    Pixel<Channel15> saturated(1, 1, 1, 1);  // 32768 / 1 does not fit 16.16
    EXPECT_EQ((Pixel<Channel15>(1, 32767, 32767, 32767)), straighten(saturated));
}

TEST(PixelTest, StraightenWrapsAColourAboveItsAlpha) {
    Pixel<Channel8> p8(128, 255, 0, 0);  // 508 in 8 bits
    EXPECT_EQ((Pixel<Channel8>(128, 252, 0, 0)), straighten(p8));
    Pixel<Channel8> lowest(1, 255, 2, 0);  // 65025 and 510
    EXPECT_EQ((Pixel<Channel8>(1, 1, 254, 0)), straighten(lowest));
    Pixel<Channel15> p15(16384, 32768, 32767, 0);  // the product 2^32 leaves nothing in 32 bits
    EXPECT_EQ((Pixel<Channel15>(16384, 0, 65534, 0)), straighten(p15));
}

template <class C>
class StraightenTypedTest : public testing::Test {};

TYPED_TEST_SUITE(StraightenTypedTest, HostChannels, ChannelNames);

TYPED_TEST(StraightenTypedTest, OpaquePixelIsKept) {
    const Pixel<TypeParam> before(kFullOf<TypeParam>, 3, 0, kFullOf<TypeParam>);
    Pixel<TypeParam> p = before;
    EXPECT_EQ(before, straighten(p));
}

TYPED_TEST(StraightenTypedTest, TransparentPixelLosesItsColours) {
    Pixel<TypeParam> p(0, 3, kFullOf<TypeParam>, 9);
    EXPECT_EQ((Pixel<TypeParam>(0, 0, 0, 0)), straighten(p));
}

// The earliest of three values that `best` picks among them.
template <class T, class Best>
const T* Earliest(const T (&values)[3], Best best) {
    const T wanted = best({values[0], values[1], values[2]});
    return std::find(values, values + 3, wanted);
}

template <class T>
void ExpectEarliestWins() {
    for (int n = 0; n < 27; ++n) {
        const T v[] = {static_cast<T>(n % 3), static_cast<T>(n / 3 % 3), static_cast<T>(n / 9)};
        const T* const largest = Earliest(v, [](std::initializer_list<T> list) { return std::max(list); });
        const T* const smallest = Earliest(v, [](std::initializer_list<T> list) { return std::min(list); });
        EXPECT_EQ(largest - v, &PILib::max(v[0], v[1], v[2]) - v) << +v[0] << ", " << +v[1] << ", " << +v[2];
        EXPECT_EQ(smallest - v, &PILib::min(v[0], v[1], v[2]) - v) << +v[0] << ", " << +v[1] << ", " << +v[2];
    }
}

TEST(PixelTest, MaxAndMinOfThreeReferToTheEarliestOnTies) {
    ExpectEarliestWins<unsigned char>();
    ExpectEarliestWins<unsigned short>();
}

TEST(PixelTest, LightnessIsTheTruncatedMeanOfTheExtremes) {
    EXPECT_EQ(127, (PILib::lightness(Pixel<Channel8>(0, 255, 0, 9))));
    EXPECT_EQ(255, (PILib::lightness(Pixel<Channel8>(0, 255, 255, 255))));
    EXPECT_EQ(7, (PILib::lightness(Pixel<Channel8>(255, 9, 5, 10))));
    EXPECT_EQ(32767, (PILib::lightness(Pixel<Channel15>(0, 32767, 32768, 32768))));
    EXPECT_EQ(65535, (PILib::lightness(Pixel<Channel16>(0, 65535, 65535, 65535))));
}

TEST(PixelTest, DivByByteTableHoldsEveryQuotientInItsLowEightBits) {
    for (std::size_t a = 0; a < 256; ++a) {
        for (std::size_t b = 0; b < 256; ++b) {
            const std::size_t quotient = b == 0 ? 0 : a * 255 / b;
            ASSERT_EQ(quotient & 0xFF, PILib::DivByByteTable[a * 256 + b]) << a << " by " << b;
        }
    }
}

}  // namespace

// The over operator, and overlays, which composite one colour with it.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <random>
#include <typeinfo>
#include <utility>

#include "Buffers.h"
#include "ChannelTypes.h"
#include "CompOver.h"
#include "ExpectAssertion.h"
#include "FakeContext.h"
#include "FrameBuffer.h"

namespace {

using PILib::Channel15;
using PILib::Channel16;
using PILib::Channel32;
using PILib::Channel32f;
using PILib::Channel8;
using PILib::ChannelBuf;
using PILib::ChannelBuffer;
using PILib::CompOver;
using PILib::Pixel;
using PILib::SimplePixelBuffer;

constexpr char kFile[] = "PILib/PILib Source/FrameBuffer";

// Products as the two depths define them, in 64 bits.
template <class C>
std::int64_t Product(std::int64_t x, std::int64_t a) {
    return C::kOne == 255 ? (2 * x * a + 255) / 510 : x * a / 32768;
}

template <class C>
Pixel<C> Over(const Pixel<C>& bottom, const Pixel<C>& top) {
    if (top.alpha == 0) return bottom;
    if (bottom.alpha == 0 || top.alpha == C::kOne) return top;
    const std::int64_t weight = Product<C>(C::kOne - top.alpha, bottom.alpha);
    const std::int64_t alpha = top.alpha + weight;
    const auto colour = [&](std::int64_t b, std::int64_t t) {
        std::int64_t sum = Product<C>(b, weight) + Product<C>(t, top.alpha);
        const std::int64_t scale = std::min<std::int64_t>(std::int64_t{C::kOne} * 65536 / alpha, 0x7FFFFFFF);
        if (alpha != C::kOne) sum = sum * scale / 65536;
        return static_cast<typename C::Type>(sum);
    };
    return {static_cast<typename C::Type>(alpha), colour(bottom.red, top.red),
            colour(bottom.green, top.green), colour(bottom.blue, top.blue)};
}

template <class C>
Pixel<C> Composited(const Pixel<C>& bottom, const Pixel<C>& top) {
    Pixel<C> out(1, 2, 3, 4);
    CompOver(out, bottom, top);
    return out;
}

// A quarter of the alphas is small, where the result is scaled up most.
template <class C>
Pixel<C> RandomPixel(std::mt19937& random) {
    const bool isFaint = random() % 4 == 0;
    const auto alpha =
        isFaint ? static_cast<typename C::Type>(random() % 16) : RandomAlpha<C>(random, AlphaMode::kMixed);
    return {alpha, RandomComponent<C>(random), RandomComponent<C>(random), RandomComponent<C>(random)};
}

template <class C>
class CompOverTypedTest : public testing::Test {
protected:
    std::mt19937 random{21};
};

TYPED_TEST_SUITE(CompOverTypedTest, HostChannels, ChannelNames);

TYPED_TEST(CompOverTypedTest, EqualsTheDefinition) {
    for (int run = 0; run < 200000; ++run) {
        const auto bottom = RandomPixel<TypeParam>(this->random);
        const auto top = RandomPixel<TypeParam>(this->random);
        ASSERT_EQ(Over(bottom, top), Composited(bottom, top))
            << "bottom " << testing::PrintToString(bottom) << ", top " << testing::PrintToString(top);
    }
}

TYPED_TEST(CompOverTypedTest, ResultMayBeEitherOperand) {
    for (int run = 0; run < 1000; ++run) {
        const auto bottom = RandomPixel<TypeParam>(this->random);
        const auto top = RandomPixel<TypeParam>(this->random);
        const auto expected = Composited(bottom, top);
        auto intoBottom = bottom;
        CompOver(intoBottom, intoBottom, top);
        ASSERT_EQ(expected, intoBottom);
        auto intoTop = top;
        CompOver(intoTop, bottom, intoTop);
        ASSERT_EQ(expected, intoTop);
    }
}

TYPED_TEST(CompOverTypedTest, AlphaNeverFallsBelowTheTopsNorPassesFull) {
    for (int run = 0; run < 20000; ++run) {
        const auto bottom = RandomPixel<TypeParam>(this->random);
        const auto top = RandomPixel<TypeParam>(this->random);
        const int alpha = Composited(bottom, top).alpha;
        ASSERT_GE(alpha, top.alpha);
        ASSERT_LE(alpha, TypeParam::kOne);
    }
}

TYPED_TEST(CompOverTypedTest, TransparentTopLeavesTheBottomColoursIncluded) {
    for (const int alpha : {0, 1, TypeParam::kOne}) {
        const Pixel<TypeParam> bottom(static_cast<typename TypeParam::Type>(alpha), 5, 6, 7);
        EXPECT_EQ(bottom, Composited(bottom, Pixel<TypeParam>(0, 9, 9, 9)));
    }
}

TYPED_TEST(CompOverTypedTest, OpaqueTopReplacesAnyBottom) {
    const Pixel<TypeParam> top(kFullOf<TypeParam>, 9, 8, 7);
    for (const int alpha : {0, 1, TypeParam::kOne}) {
        const Pixel<TypeParam> bottom(static_cast<typename TypeParam::Type>(alpha), 5, 6, 7);
        EXPECT_EQ(top, Composited(bottom, top));
    }
}

TYPED_TEST(CompOverTypedTest, TransparentBottomGivesTheTopAsItIs) {
    const Pixel<TypeParam> top(1, 9, 8, 7);
    EXPECT_EQ(top, Composited(Pixel<TypeParam>(0, 100, 100, 100), top));
}

TEST(CompOverTest, HalfOverOpaqueIsNotScaled) {
    const Pixel<Channel8> bottom(255, 200, 0, 255);
    const Pixel<Channel8> top(128, 100, 255, 0);
    const auto sum = [](std::uint32_t b, std::uint32_t t) {
        return static_cast<std::uint8_t>(Channel8::mul(b, 127) + Channel8::mul(t, 128));
    };
    EXPECT_EQ((Pixel<Channel8>(255, sum(200, 100), sum(0, 255), sum(255, 0))), Composited(bottom, top));
    EXPECT_EQ((Pixel<Channel8>(255, 150, 128, 127)), Composited(bottom, top));
}

TEST(CompOverTest, ScaleOfTheFaintest15BitAlphaSaturatesOneStepBelowFull) {
    const Pixel<Channel15> bottom(1, 0, 32768, 32768);
    const Pixel<Channel15> top(1, 32768, 32767, 0);
    EXPECT_EQ((Pixel<Channel15>(1, 32767, 0, 0)), Composited(bottom, top));
}

TEST(CompOverTest, EightBitColoursKeepNearTheExactCompositeForAllAlphas) {
    for (int topAlpha = 1; topAlpha < 255; ++topAlpha) {
        for (int bottomAlpha = 1; bottomAlpha <= 255; ++bottomAlpha) {
            const double weight = bottomAlpha * (255.0 - topAlpha) / 255.0;
            const double alpha = topAlpha + weight;
            const double exact = (40.0 * weight + 200.0 * topAlpha) / alpha;
            const auto actual = Composited(Pixel<Channel8>(static_cast<std::uint8_t>(bottomAlpha), 40, 0, 0),
                                           Pixel<Channel8>(static_cast<std::uint8_t>(topAlpha), 200, 0, 0));
            ASSERT_NEAR(alpha, actual.alpha, 0.5 + 1e-9) << topAlpha << " over " << bottomAlpha;
            // Two rounded products and the rounded weight, all scaled by full over alpha.
            const double tolerance = 1.0 + (1.0 + 200.0 / 255.0) * 255.0 / alpha;
            ASSERT_NEAR(exact, actual.red, tolerance) << topAlpha << " over " << bottomAlpha;
        }
    }
}

template <class C>
struct OverlayTypedTest : testing::Test {
    using P = Pixel<C>;

    OverlayTypedTest() {
        FillRandom(pixels, random);
        before.load(pixels, PILib::kAlignTopLeft);
    }

    std::mt19937 random{22};
    PaddedPixelBuffer<P> pixels{17, 5, 16};
    SimplePixelBuffer<P> before{17, 5};
    Pixel<Channel32f> colour{0.5F, 1.0F, 0.25F, 0.125F};
};

TYPED_TEST_SUITE(OverlayTypedTest, HostChannels, ChannelNames);

TYPED_TEST(OverlayTypedTest, MaskOfTheSameDepthBecomesTheAlphaOfTheColour) {
    using P = Pixel<TypeParam>;
    const ChannelBuf<TypeParam> mask(18, 6);
    FillRandom(mask, this->random);
    this->pixels.overlay(mask, this->colour);
    EXPECT_TRUE(ElementsAre(this->pixels, [&](int x, int y) {
        P top = this->colour;
        top.alpha = mask.row(y)[x];
        return Over(this->before.row(y)[x], top);
    }));
    EXPECT_TRUE(this->pixels.guardsIntact());
}

TYPED_TEST(OverlayTypedTest, EightBitMaskDrivesBothDepths) {
    using P = Pixel<TypeParam>;
    const ChannelBuf<Channel8> mask(17, 5);
    FillRandom(mask, this->random);
    this->pixels.overlay(static_cast<const ChannelBuffer&>(mask), this->colour);
    EXPECT_TRUE(ElementsAre(this->pixels, [&](int x, int y) {
        const unsigned m = mask.row(y)[x];
        P top = this->colour;
        top.alpha = static_cast<typename TypeParam::Type>(TypeParam::kOne == 255 ? m : m * 65795 >> 9);
        return Over(this->before.row(y)[x], top);
    }));
}

TYPED_TEST(OverlayTypedTest, MaskOfAForeignDepthIsBadCastAndWritesNothing) {
    const ChannelBuf<Channel16> mask(17, 5);
    EXPECT_THROW(this->pixels.overlay(mask, this->colour), std::bad_cast);
    EXPECT_TRUE(SameElements(this->before, this->pixels));
}

TYPED_TEST(OverlayTypedTest, SmallerMaskFailsItsAssertionAndWritesNothing) {
    for (const auto& [width, height] : {std::pair{16, 5}, {17, 4}}) {
        const ChannelBuf<Channel8> mask8(width, height);
        const ChannelBuf<TypeParam> mask(width, height);
        EXPECT_TRUE(FailsAssertion(kFile, 3, [&] { this->pixels.overlay(mask8, this->colour); }));
        EXPECT_TRUE(FailsAssertion(kFile, 3, [&] { this->pixels.overlay(mask, this->colour); }));
        EXPECT_TRUE(FailsAssertion(kFile, 3, [&] { this->pixels.overlayT(mask, this->colour); }));
    }
    EXPECT_TRUE(SameElements(this->before, this->pixels));
}

TEST(OverlayTest, FifteenBitPixelsNeedA15BitOr8BitMask) {
    const SimplePixelBuffer<Pixel<Channel8>> pixels(2, 2);
    const ChannelBuf<Channel15> mask(2, 2);
    EXPECT_THROW(pixels.overlay(mask, PILib::kColorRed), std::bad_cast);
}

TEST(OverlayTest, EightBitMaskReachesFullIntensityOf15BitPixels) {
    const SimplePixelBuffer<Pixel<Channel15>> pixels(256, 1);
    const ChannelBuf<Channel8> mask(256, 1);
    pixels.clear();
    for (int m = 0; m < 256; ++m)
        mask.row(0)[m] = static_cast<std::uint8_t>(m);
    pixels.overlay(mask, PILib::kColorWhite);
    for (int m = 0; m < 256; ++m) {
        // Over a transparent bottom the top's alpha shows as it is.
        const int alpha = pixels.row(0)[m].alpha;
        ASSERT_EQ(m * 65795 / 512, alpha) << m;
        ASSERT_LT(std::abs(m * 32768 - alpha * 255), 255) << m << " of 255 is within a step of " << alpha;
    }
    EXPECT_EQ(128, pixels.row(0)[1].alpha);
    EXPECT_EQ(32768, pixels.row(0)[255].alpha);
}

template <class C>
class OverlayUnsupportedTest : public testing::Test {};

using OtherChannels = testing::Types<Channel16, Channel32, Channel32f>;
TYPED_TEST_SUITE(OverlayUnsupportedTest, OtherChannels, ChannelNames);

TYPED_TEST(OverlayUnsupportedTest, OverlayAndBlendFailTheirAssertionAndWriteNothing) {
    std::mt19937 random(23);
    FakeContext context;
    const SimplePixelBuffer<Pixel<TypeParam>> pixels(3, 2);
    const SimplePixelBuffer<Pixel<TypeParam>> other(3, 2);
    const ChannelBuf<TypeParam> mask(3, 2);
    const ChannelBuf<Channel8> mask8(3, 2);
    FillRandom(pixels, random);
    const auto before = ElementsOf(pixels);
    EXPECT_TRUE(FailsAssertion(kFile, 4, [&] { pixels.overlay(mask, PILib::kColorRed); }));
    EXPECT_TRUE(FailsAssertion(kFile, 4, [&] { pixels.overlay(mask8, PILib::kColorRed); }));
    EXPECT_TRUE(FailsAssertion(kFile, 4, [&] { pixels.blend(context, other, 0.5F); }));
    EXPECT_EQ(before, ElementsOf(pixels));
}

TEST(ChanOverTest, WeighsByAlphaAndScales) {
    EXPECT_EQ(150, PILib::chanOver<Channel8>(200, 127, 100, 128));
    EXPECT_EQ(150, PILib::chanOver<Channel8>(200, 127, 100, 128, 65536));
    const auto sum = PILib::chanOver<Channel15>(8000, 8192, 4000, 8192);
    EXPECT_EQ(2 * sum, PILib::chanOver<Channel15>(8000, 8192, 4000, 8192, PILib::FixDiv(32768, 16384)));
}

}  // namespace

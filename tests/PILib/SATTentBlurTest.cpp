// The tent blur: its tables, weights, normalisation and progress.

#include "SATTentBlur.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <random>
#include <vector>

#include "ChannelTypes.h"
#include "FakeContext.h"
#include "OracleBuffers.h"
#include "RandomImage.h"
#include "SATBlurChecks.h"

namespace {

using PILib::Channel15;
using PILib::Channel8;
using PILib::Pixel;
using PILib::SATBoxBlur;
using PILib::SATTentBlur;
using PILib::SimplePixelBuffer;

template <class C>
class SATTentBlurTypedTest : public testing::Test {
protected:
    FakeContext context;
};

TYPED_TEST_SUITE(SATTentBlurTypedTest, HostChannels, ChannelNames);

TYPED_TEST(SATTentBlurTypedTest, BorderIsTwoPixelsWiderThanTheBoxBlurs) {
    const SimplePixelBuffer<Pixel<TypeParam>> source(5, 3);
    const SATBoxBlur<Pixel<TypeParam>> box(this->context, source, 4, 7);
    const SATTentBlur<Pixel<TypeParam>> tent(this->context, source, 4, 7);
    EXPECT_EQ(box.borderX + 2, tent.borderX);
    EXPECT_EQ(box.borderY + 2, tent.borderY);
    EXPECT_EQ(box.tableWidth + 4, tent.tableWidth);
    EXPECT_EQ(box.tableHeight + 4, tent.tableHeight);
    EXPECT_EQ((4 + 3) * 32768, tent.maxFixedRadiusX);
    EXPECT_EQ((7 + 3) * 32768, tent.maxFixedRadiusY);
}

TEST(SATTentBlurTest, RadiusLimitAppliesToTheWidenedRadii) {
    FakeContext context;
    const SimplePixelBuffer<Pixel<Channel15>> source(1, 1);
    struct Limit {
        int radius, border;
    };
    for (const Limit& l :
         {Limit{354, 357}, Limit{355, 357}, Limit{398, 357}, Limit{std::numeric_limits<int>::max(), 357}}) {
        const SATTentBlur<Pixel<Channel15>> blur(context, source, l.radius, l.radius);
        EXPECT_EQ(l.border, blur.borderX) << l.radius;
        EXPECT_EQ(l.border, blur.borderY) << l.radius;
    }
}

TYPED_TEST(SATTentBlurTypedTest, UnusableRadiiAndSourcesAreRefusedAsByTheBoxBlur) {
    using Blur = SATTentBlur<Pixel<TypeParam>>;
    const SimplePixelBuffer<Pixel<TypeParam>> source(5, 3);
    const SimplePixelBuffer<Pixel<TypeParam>> empty(0, 0);
    for (const int radius : {-1, -2, -3, std::numeric_limits<int>::min()}) {
        EXPECT_THROW(Blur(this->context, source, radius, 0), int) << radius;
        EXPECT_THROW(Blur(this->context, source, 0, radius), int) << radius;
    }
    EXPECT_THROW(Blur(this->context, empty, 1, 1), int);
}

TYPED_TEST(SATTentBlurTypedTest, UniformImageReturnsItsOwnColour) {
    ExpectUniformImageKeepsItsColour<SATTentBlur, TypeParam>();
}

TYPED_TEST(SATTentBlurTypedTest, RadiusZeroIsThePixelPremultiplied) {
    std::mt19937 random(4);
    const oracle::Image image = oracle::RandomImage(random, 17, 13, oracle::kFull<TypeParam>);
    const SimplePixelBuffer<Pixel<TypeParam>> source(17, 13);
    oracle::Store<TypeParam>(image, source);
    SATTentBlur<Pixel<TypeParam>> blur(this->context, source, 6, 6);
    blur.initialize();
    for (int y = 0; y < 13; ++y) {
        for (int x = 0; x < 17; ++x) {
            ASSERT_EQ(oracle::Premultiplied(image.at(x, y), image.full),
                      oracle::ColourOf(blur.getBlurInt(x, y, 0, 0)))
                << x << ", " << y;
        }
    }
}

// One opaque pixel far from the edges: what it gives to its neighbours is the filter itself.
TYPED_TEST(SATTentBlurTypedTest, ImpulseResponseIsASymmetricTent) {
    constexpr int kCentre = 10;
    constexpr int kHalfX = 4;
    constexpr int kHalfY = 3;
    const SimplePixelBuffer<Pixel<TypeParam>> source(21, 21);
    source.clear();
    source.row(kCentre)[kCentre] = Pixel<TypeParam>::kWhiteColor;
    SATTentBlur<Pixel<TypeParam>> blur(this->context, source, 8, 8);
    blur.initialize();
    for (int y = 0; y < 21; ++y) {
        for (int x = 0; x < 21; ++x) {
            const int weightX = std::max(0, kHalfX - std::abs(x - kCentre));
            const int weightY = std::max(0, kHalfY - std::abs(y - kCentre));
            const double share = weightX * weightY / double{kHalfX * kHalfX * kHalfY * kHalfY};
            const auto expected = static_cast<std::uint32_t>(TypeParam::kOne * share + 0.5);
            ASSERT_EQ((oracle::Colour{expected, expected, expected, expected}),
                      oracle::ColourOf(blur.getBlurInt(x, y, kHalfX - 1, kHalfY - 1)))
                << x << ", " << y;
        }
    }
}

TYPED_TEST(SATTentBlurTypedTest, WholeRadiusIsClampedToWhatTheTablesHold) {
    std::mt19937 random(5);
    const SimplePixelBuffer<Pixel<TypeParam>> source(7, 5);
    oracle::Store<TypeParam>(oracle::RandomImage(random, 7, 5, oracle::kFull<TypeParam>), source);
    SATTentBlur<Pixel<TypeParam>> blur(this->context, source, 3, 2);
    blur.initialize();
    constexpr int kLargest = std::numeric_limits<int>::max();
    for (int y = 0; y < 5; ++y) {
        for (int x = 0; x < 7; ++x) {
            // Borders of 6 and 5 pixels hold half-widths of 5 and 4.
            EXPECT_NE(blur.getBlurInt(x, y, 3, 2), blur.getBlurInt(x, y, 4, 3)) << x << ", " << y;
            EXPECT_EQ(blur.getBlurInt(x, y, 4, 3), blur.getBlurInt(x, y, 5, 4)) << x << ", " << y;
            EXPECT_EQ(blur.getBlurInt(x, y, 4, 3), blur.getBlurInt(x, y, kLargest, kLargest))
                << x << ", " << y;
        }
    }
}

// No pixel lies under a tent of half-width 0; no number that the normalisation gives is kept.
TYPED_TEST(SATTentBlurTypedTest, NegativeWholeRadiusReadsNothing) {
    const SimplePixelBuffer<Pixel<TypeParam>> source(1, 1);
    source.row(0)[0] = Pixel<TypeParam>::kWhiteColor;
    SATTentBlur<Pixel<TypeParam>> blur(this->context, source, 2, 2);
    blur.initialize();
    for (const int radius : {-1, -2, std::numeric_limits<int>::min()})
        EXPECT_EQ(Pixel<TypeParam>::kTransparentColor, blur.getBlurInt(0, 0, radius, 1)) << radius;
}

// The normalisation squares the product of the half-widths in 32 bits: 46340 is the last that fits, 65536 the
// first whose square is 0 there. Results beyond are defined, but not the blur.
TEST(SATTentBlurTest, NormalisationIsExactUpToAProductOf46340) {
    FakeContext context;
    const SimplePixelBuffer<Pixel<Channel8>> source(1, 1);
    source.row(0)[0] = {255, 255, 100, 0};
    SATTentBlur<Pixel<Channel8>> wide(context, source, 65535, 0);
    wide.initialize();
    SATTentBlur<Pixel<Channel8>> square(context, source, 215, 230);
    square.initialize();
    EXPECT_EQ((Pixel<Channel8>{255, 255, 100, 0}), wide.getBlurInt(0, 0, 46340 - 1, 0));
    EXPECT_EQ((Pixel<Channel8>{255, 255, 100, 0}), square.getBlurInt(0, 0, 215 - 1, 215 - 1));
    EXPECT_NE((Pixel<Channel8>{255, 255, 100, 0}), wide.getBlurInt(0, 0, 46341 - 1, 0));
    EXPECT_NE((Pixel<Channel8>{255, 255, 100, 0}), square.getBlurInt(0, 0, 216 - 1, 216 - 1));
    EXPECT_EQ((Pixel<Channel8>{0, 0, 0, 0}), wide.getBlurInt(0, 0, 65536 - 1, 0));
}

// Second-order sum of one channel at (tx, ty): each cell counts once for every cell between it and (tx, ty).
double SecondOrderSum(const oracle::Image& premultiplied, std::size_t channel, int border, int tx, int ty) {
    std::uint64_t sum = 0;
    for (int j = 0; j <= ty; ++j) {
        for (int i = 0; i <= tx; ++i) {
            const auto times = static_cast<std::uint64_t>((tx - i + 1) * (ty - j + 1));
            sum += times * premultiplied.at(std::clamp(i - border, 0, premultiplied.width - 1),
                                            std::clamp(j - border, 0, premultiplied.height - 1))[channel];
        }
    }
    return static_cast<double>(sum);
}

TYPED_TEST(SATTentBlurTypedTest, TablesHoldSecondOrderSums) {
    std::mt19937 random(6);
    oracle::Image image = oracle::RandomImage(random, 5, 4, oracle::kFull<TypeParam>);
    const SimplePixelBuffer<Pixel<TypeParam>> source(5, 4);
    oracle::Store<TypeParam>(image, source);
    SATTentBlur<Pixel<TypeParam>> blur(this->context, source, 1, 1);
    blur.initialize();
    for (oracle::Colour& pixel : image.values)
        pixel = oracle::Premultiplied(pixel, image.full);
    ExpectTablesHold(
        blur, [&](std::size_t channel, int tx, int ty) { return SecondOrderSum(image, channel, 4, tx, ty); });
}

// One channel's second-order sums, every operation written out in its order.
std::vector<double> OrderedSums(const oracle::Image& premultiplied, std::size_t channel, int border,
                                int width, int height) {
    std::vector<double> sums(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    const auto at = [&](int tx, int ty) -> double {
        return tx < 0 || ty < 0 ? 0.0
                                : sums[static_cast<std::size_t>(ty) * static_cast<std::size_t>(width) +
                                       static_cast<std::size_t>(tx)];
    };
    const auto accumulate = [&](auto valueOf) {
        for (int ty = 0; ty < height; ++ty) {
            for (int tx = 0; tx < width; ++tx) {
                const double sum = valueOf(tx, ty) + at(tx - 1, ty) + at(tx, ty - 1) - at(tx - 1, ty - 1);
                sums[static_cast<std::size_t>(ty) * static_cast<std::size_t>(width) +
                     static_cast<std::size_t>(tx)] = sum;
            }
        }
    };
    accumulate([&](int tx, int ty) {
        return static_cast<double>(
            premultiplied.at(std::clamp(tx - border, 0, premultiplied.width - 1),
                             std::clamp(ty - border, 0, premultiplied.height - 1))[channel]);
    });
    accumulate(at);
    return sums;
}

// Nearly white, and so large that the last second-order sums are beyond 2^53, where doubles round.
oracle::Image ImageOfLargeSums() {
    constexpr int kSize = 1250;
    std::mt19937 random(23);
    oracle::Image image(kSize, kSize, oracle::kFull<Channel15>);
    for (oracle::Colour& pixel : image.values) {
        for (auto& channel : pixel)
            channel = oracle::kFull<Channel15> - static_cast<std::uint32_t>(random() % 3);
    }
    return image;
}

TEST(SATTentBlurTest, SumsTooLargeForADoubleAreRoundedInTheirOrder) {
    oracle::Image image = ImageOfLargeSums();
    const SimplePixelBuffer<Pixel<Channel15>> source(image.width, image.height);
    oracle::Store<Channel15>(image, source);
    FakeContext context;
    SATTentBlur<Pixel<Channel15>> blur(context, source, 2, 2);
    blur.initialize();
    for (oracle::Colour& pixel : image.values)
        pixel = oracle::Premultiplied(pixel, image.full);
    const auto expectSums = [&](std::size_t channel, const SATTentBlur<Pixel<Channel15>>::Table& table) {
        const std::vector<double> expected =
            OrderedSums(image, channel, blur.borderX, blur.tableWidth, blur.tableHeight);
        EXPECT_LT(9007199254740992.0, expected.back()) << "beyond 2^53, where doubles round";
        EXPECT_TRUE(std::equal(expected.begin(), expected.end(), table.get())) << channel;
    };
    expectSums(oracle::kAlpha, blur.sumAlpha);
    expectSums(oracle::kRed, blur.sumRed);
    expectSums(oracle::kGreen, blur.sumGreen);
    expectSums(oracle::kBlue, blur.sumBlue);
}

TEST(SATTentBlurTest, NineSamplesAreAddedInTheirOrder) {
    const oracle::Image image = ImageOfLargeSums();
    const SimplePixelBuffer<Pixel<Channel15>> source(image.width, image.height);
    oracle::Store<Channel15>(image, source);
    FakeContext context;
    SATTentBlur<Pixel<Channel15>> blur(context, source, 2, 2);
    blur.initialize();
    const auto expected = [&](const SATTentBlur<Pixel<Channel15>>::Table& table, int x, int y, int half) {
        const auto at = [&](int dx, int dy) {
            const int tx = x + blur.borderX - 1 + dx * half;
            const int ty = y + blur.borderY - 1 + dy * half;
            return table[static_cast<std::size_t>(ty) * static_cast<std::size_t>(blur.tableWidth) +
                         static_cast<std::size_t>(tx)];
        };
        double sum = at(-1, -1);
        sum -= 2.0 * at(0, -1);
        sum += at(1, -1);
        sum -= 2.0 * at(-1, 0);
        sum += 4.0 * at(0, 0);
        sum -= 2.0 * at(1, 0);
        sum += at(-1, 1);
        sum -= 2.0 * at(0, 1);
        sum += at(1, 1);
        return static_cast<std::uint32_t>(sum * (1.0 / (half * half * half * half)) + 0.5);
    };
    for (int y = 1100; y < image.height; y += 7) {
        for (int x = 1100; x < image.width; x += 5) {
            for (int radius = 0; radius <= 2; ++radius) {
                const int half = radius + 1;
                ASSERT_EQ(
                    (oracle::Colour{expected(blur.sumAlpha, x, y, half), expected(blur.sumRed, x, y, half),
                                    expected(blur.sumGreen, x, y, half), expected(blur.sumBlue, x, y, half)}),
                    oracle::ColourOf(blur.getBlurInt(x, y, radius, radius)))
                    << x << ", " << y << ", radius " << radius;
            }
        }
    }
}

TYPED_TEST(SATTentBlurTypedTest, InitializePassesOnWhatTheContextThrowsInEitherPass) {
    const SimplePixelBuffer<Pixel<TypeParam>> source(3, 2);
    source.clear();
    for (const int call : {1, 8, 9, 16}) {
        FakeContext context;
        context.failAtProgress(call, 517);
        SATTentBlur<Pixel<TypeParam>> blur(context, source, 1, 0);
        EXPECT_THROW(blur.initialize(), int) << call;
        EXPECT_EQ(static_cast<std::size_t>(call), context.progressCalls.size());
    }
}

TEST(SATTentBlurTest, SecondPassReportsPastTheEndOfItsRange) {
    FakeContext context;
    const SimplePixelBuffer<Pixel<Channel8>> source(3, 2);
    source.clear();
    SATTentBlur<Pixel<Channel8>> blur(context, source, 1, 0);
    context.setProgress(0.0F, 0.25F);
    blur.initialize();
    std::vector<ProgressCall> expected;
    for (int ty = 0; ty < 8; ++ty)
        expected.push_back({ty, 8, 0.0F, 0.5F});
    for (int ty = 0; ty < 8; ++ty)
        expected.push_back({ty, 8, 0.5F, 1.0F});
    EXPECT_EQ(expected, context.progressCalls);
}

}  // namespace

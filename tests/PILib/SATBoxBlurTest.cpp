// The box blur: its tables, whole radii and the edges of the image.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

#include "ChannelTypes.h"
#include "FakeContext.h"
#include "OracleBuffers.h"
#include "RandomImage.h"
#include "SATBlur.h"
#include "SATBlurChecks.h"

namespace {

using PILib::Channel15;
using PILib::Channel8;
using PILib::Pixel;
using PILib::SATBoxBlur;
using PILib::SimplePixelBuffer;

template <class C>
class SATBoxBlurTest : public testing::Test {
protected:
    FakeContext context;
};

TYPED_TEST_SUITE(SATBoxBlurTest, HostChannels, ChannelNames);

TYPED_TEST(SATBoxBlurTest, UniformImageReturnsItsOwnColour) {
    ExpectUniformImageKeepsItsColour<SATBoxBlur, TypeParam>();
}

// Every pair of alpha and colour at 8 bits, every 128th of each at 15.
TYPED_TEST(SATBoxBlurTest, RadiusZeroPremultipliesAndStraightensEachPixel) {
    constexpr std::uint32_t kStep = oracle::kFull<TypeParam> == 255 ? 1 : 128;
    constexpr int kSize = oracle::kFull<TypeParam> / kStep + 1;
    oracle::Image image(kSize, kSize, oracle::kFull<TypeParam>);
    for (int y = 0; y < kSize; ++y) {
        for (int x = 0; x < kSize; ++x) {
            const auto colour = static_cast<std::uint32_t>(y) * kStep;
            image.at(x, y) = {static_cast<std::uint32_t>(x) * kStep, colour, image.full - colour, image.full};
        }
    }
    const SimplePixelBuffer<Pixel<TypeParam>> source(kSize, kSize);
    oracle::Store<TypeParam>(image, source);
    SATBoxBlur<Pixel<TypeParam>> blur(this->context, source, 0, 0);
    blur.initialize();
    for (int y = 0; y < kSize; ++y) {
        for (int x = 0; x < kSize; ++x) {
            const oracle::Colour premultiplied = oracle::Premultiplied(image.at(x, y), image.full);
            ASSERT_EQ(premultiplied, oracle::ColourOf(blur.getBlurInt(x, y, 0, 0))) << x << ", " << y;
            const oracle::Colour straight = oracle::ColourOf(blur.getBlur(x, y, 0, 0));
            ASSERT_EQ(oracle::Straightened(premultiplied, image.full), straight) << x << ", " << y;
            ASSERT_EQ(image.at(x, y)[oracle::kAlpha], straight[oracle::kAlpha]) << x << ", " << y;
        }
    }
}

TYPED_TEST(SATBoxBlurTest, EdgePixelsWeighAsOftenAsTheBoxReachesPastTheEdge) {
    const SimplePixelBuffer<Pixel<TypeParam>> source(4, 1);
    using Type = typename TypeParam::Type;
    constexpr auto kOne = static_cast<Type>(TypeParam::kOne);
    for (int x = 0; x < 4; ++x)
        source.row(0)[x] = {kOne, static_cast<Type>(10 + 30 * x), 0, kOne};
    SATBoxBlur<Pixel<TypeParam>> blur(this->context, source, 5, 5);
    blur.initialize();
    struct ReadOut {
        int x, radiusX, red;
    };
    for (const ReadOut& r : {
             ReadOut{0, 0, 10},
             ReadOut{0, 1, (2 * 10 + 40) / 3},
             ReadOut{0, 2, (3 * 10 + 40 + 70) / 5},
             ReadOut{0, 5, (6 * 10 + 40 + 70 + 3 * 100) / 11},
             ReadOut{1, 2, (2 * 10 + 40 + 70 + 100) / 5},
             ReadOut{3, 2, (40 + 70 + 3 * 100) / 5},
         }) {
        for (int radiusY = 0; radiusY <= 5; ++radiusY)
            EXPECT_EQ(r.red, blur.getBlurInt(r.x, 0, r.radiusX, radiusY).red) << r.x << ", " << r.radiusX;
    }
}

TYPED_TEST(SATBoxBlurTest, WholeRadiusIsClampedToWhatTheTablesHold) {
    std::mt19937 random(1);
    const SimplePixelBuffer<Pixel<TypeParam>> source(7, 5);
    oracle::Store<TypeParam>(oracle::RandomImage(random, 7, 5, oracle::kFull<TypeParam>), source);
    SATBoxBlur<Pixel<TypeParam>> blur(this->context, source, 3, 2);
    blur.initialize();
    for (int y = 0; y < 5; ++y) {
        for (int x = 0; x < 7; ++x) {
            EXPECT_EQ(blur.getBlurInt(x, y, 3, 2), blur.getBlurInt(x, y, 4, 3)) << x << ", " << y;
            EXPECT_EQ(blur.getBlurInt(x, y, 3, 2), blur.getBlurInt(x, y, 1 << 30, 1 << 30)) << x << ", " << y;
            EXPECT_EQ(blur.getBlurInt(x, y, 0, 0), blur.getBlurInt(x, y, -1, -(1 << 30))) << x << ", " << y;
        }
    }
}

TYPED_TEST(SATBoxBlurTest, HalfPixelRadiusAveragesTheNeighbouringWholeRadii) {
    std::mt19937 random(2);
    oracle::Image image = oracle::RandomImage(random, 9, 9, oracle::kFull<TypeParam>);
    for (oracle::Colour& pixel : image.values)
        pixel[oracle::kAlpha] = image.full;
    const SimplePixelBuffer<Pixel<TypeParam>> source(9, 9);
    oracle::Store<TypeParam>(image, source);
    SATBoxBlur<Pixel<TypeParam>> blur(this->context, source, 3, 3);
    blur.initialize();
    const oracle::Colour c00 = oracle::ColourOf(blur.getBlurInt(4, 4, 1, 1));
    const oracle::Colour c10 = oracle::ColourOf(blur.getBlurInt(4, 4, 2, 1));
    const oracle::Colour result = oracle::ColourOf(blur.getBlur(4, 4, 98304, 65536));
    for (std::size_t channel = 0; channel < 4; ++channel) {
        const std::uint32_t halfway = (c00[channel] + c10[channel] + 1) / 2;
        EXPECT_EQ((c00[channel] + halfway) / 2, result[channel]) << "channel " << channel;
    }
}

TYPED_TEST(SATBoxBlurTest, TransparentNeighbourhoodIsTransparentWhateverItsColours) {
    const SimplePixelBuffer<Pixel<TypeParam>> source(9, 1);
    for (int x = 0; x < 9; ++x)
        source.row(0)[x] = {0, 200, 100, 50};
    source.row(0)[8].alpha = static_cast<typename TypeParam::Type>(TypeParam::kOne);
    SATBoxBlur<Pixel<TypeParam>> blur(this->context, source, 8, 8);
    blur.initialize();
    EXPECT_EQ(Pixel<TypeParam>::kTransparentColor, blur.getBlur(2, 0, 3 * 65536, 0));
    EXPECT_NE(Pixel<TypeParam>::kTransparentColor, blur.getBlur(8, 0, 3 * 65536, 0));
}

// Sum of one channel over all cells up and left of (tx, ty), straight from the image.
std::uint32_t SumUpLeft(const oracle::Image& premultiplied, std::size_t channel, int borderX, int borderY,
                        int tx, int ty) {
    std::uint32_t sum = 0;
    for (int j = 0; j <= ty; ++j) {
        for (int i = 0; i <= tx; ++i) {
            sum += premultiplied.at(std::clamp(i - borderX, 0, premultiplied.width - 1),
                                    std::clamp(j - borderY, 0, premultiplied.height - 1))[channel];
        }
    }
    return sum;
}

TYPED_TEST(SATBoxBlurTest, TablesHoldTheSumsUpAndLeftOfEachCell) {
    std::mt19937 random(3);
    oracle::Image image = oracle::RandomImage(random, 5, 4, oracle::kFull<TypeParam>);
    const SimplePixelBuffer<Pixel<TypeParam>> source(5, 4);
    oracle::Store<TypeParam>(image, source);
    SATBoxBlur<Pixel<TypeParam>> blur(this->context, source, 2, 1);
    blur.initialize();
    for (oracle::Colour& pixel : image.values)
        pixel = oracle::Premultiplied(pixel, image.full);
    ExpectTablesHold(
        blur, [&](std::size_t channel, int tx, int ty) { return SumUpLeft(image, channel, 3, 2, tx, ty); });
}

// A white image at 15 bits with tables of 405 x 405 cells, whose sum needs 33 bits.
TEST(SATBoxBlurWrapTest, TableSumsWrapAndCancelInEveryBoxThatFits32Bits) {
    FakeContext context;
    const SimplePixelBuffer<Pixel<Channel15>> source(3, 3);
    for (int y = 0; y < 3; ++y) {
        for (auto& pixel : source.row(y))
            pixel = {32768, 32768, 32768, 32768};
    }
    SATBoxBlur<Pixel<Channel15>> blur(context, source, 200, 200);
    blur.initialize();
    EXPECT_EQ(static_cast<std::uint32_t>(std::uint64_t{405} * 405 * 32768), blur.sumAlpha[405 * 405 - 1]);
    EXPECT_EQ(Pixel<Channel15>::kWhiteColor, blur.getBlurInt(2, 2, 180, 180));
}

// The limit is one of the radii's product: a box has four times as many pixels.
TEST(SATBoxBlurWrapTest, WholeRadiiWithinTheLimitMayStillExceed32Bits) {
    FakeContext context;
    const SimplePixelBuffer<Pixel<Channel15>> source(1, 1);
    source.row(0)[0] = {32768, 32768, 0, 0};
    SATBoxBlur<Pixel<Channel15>> blur(context, source, 200, 200);
    blur.initialize();
    const std::uint32_t area = 401 * 401;
    const std::uint32_t wrapped = area * 32768;
    EXPECT_EQ(wrapped / area, blur.getBlurInt(0, 0, 200, 200).alpha);
    EXPECT_NE(32768, blur.getBlurInt(0, 0, 200, 200).alpha);
    constexpr std::int32_t kBeyondTheCap = 200 * 65536;
    EXPECT_EQ(32768, blur.getBlur(0, 0, kBeyondTheCap, kBeyondTheCap).alpha) << "half the border is safe";
}

TYPED_TEST(SATBoxBlurTest, ProgressIsReportedBeforeEachTableRow) {
    const SimplePixelBuffer<Pixel<TypeParam>> source(3, 2);
    source.clear();
    SATBoxBlur<Pixel<TypeParam>> blur(this->context, source, 1, 2);
    EXPECT_TRUE(this->context.progressCalls.empty());
    blur.initialize();
    std::vector<ProgressCall> expected;
    for (int ty = 0; ty < 8; ++ty)
        expected.push_back({ty, 8, 0.0F, 1.0F});
    EXPECT_EQ(expected, this->context.progressCalls);
}

TYPED_TEST(SATBoxBlurTest, InitializePassesOnWhatTheContextThrows) {
    const SimplePixelBuffer<Pixel<TypeParam>> source(3, 2);
    source.clear();
    SATBoxBlur<Pixel<TypeParam>> blur(this->context, source, 1, 2);
    this->context.failAtProgress(3, 517);
    EXPECT_THROW(blur.initialize(), int);
    EXPECT_EQ(3U, this->context.progressCalls.size());
}

}  // namespace

// The exact tent beside the tent of doubles, and beside direct sums where doubles round.
#include "SATExactTentBlur.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <random>
#include <utility>
#include <variant>
#include <vector>

#include "ChannelTypes.h"
#include "FakeContext.h"
#include "NaiveBlur.h"
#include "OracleBuffers.h"
#include "RandomImage.h"
#include "SATTentBlur.h"
#include "SimdLevels.h"

namespace {

using PILib::Channel15;
using PILib::Channel8;
using PILib::Pixel;
using PILib::SATExactTentBlur;
using PILib::SATTentBlur;
using PILib::SimplePixelBuffer;

template <class C>
class SATExactTentBlurTypedTest : public testing::Test {
protected:
    FakeContext context;
};

TYPED_TEST_SUITE(SATExactTentBlurTypedTest, HostChannels, ChannelNames);

template <class P>
bool HasNarrowCells(const SATExactTentBlur<P>& blur) {
    return blur.tables.index() == 0;
}

TYPED_TEST(SATExactTentBlurTypedTest, GeometryIsThatOfTheTentOfDoubles) {
    using P = Pixel<TypeParam>;
    const SimplePixelBuffer<P> source(9, 5);
    for (const auto& [radiusX, radiusY] : {std::pair{0, 0}, {4, 7}, {700, 300}, {5000, 20}}) {
        const SATTentBlur<P> given(this->context, source, radiusX, radiusY);
        const SATExactTentBlur<P> exact(this->context, source, radiusX, radiusY);
        EXPECT_EQ(given.borderX, exact.borderX) << radiusX;
        EXPECT_EQ(given.borderY, exact.borderY) << radiusX;
        EXPECT_EQ(given.tableWidth, exact.tableWidth) << radiusX;
        EXPECT_EQ(given.tableHeight, exact.tableHeight) << radiusX;
        EXPECT_EQ(given.maxFixedRadiusX, exact.maxFixedRadiusX) << radiusX;
        EXPECT_EQ(given.maxFixedRadiusY, exact.maxFixedRadiusY) << radiusX;
    }
}

// The widest halves of a tent that getBlur reads are 2 more than half of the border of radius + 3 pixels.
TEST(SATExactTentBlurTest, CellsAreNarrowWhereTheirSumsHoldEveryReadOut) {
    FakeContext context;
    const SimplePixelBuffer<Pixel<Channel8>> source8(1, 1);
    const SimplePixelBuffer<Pixel<Channel15>> source15(1, 1);
    struct Case {
        int radiusX;
        int radiusY;
        bool isNarrowAt8Bits;
        bool isNarrowAt15Bits;
    };
    for (const Case& c : {Case{0, 0, true, true},
                          {32, 32, true, true},     // 19 * 19, the largest square up to 362
                          {33, 33, true, false},    // 20 * 20
                          {32, 33, true, false},    // 19 * 20
                          {30, 33, true, true},     // 18 * 20
                          {122, 122, true, false},  // 64 * 64, the largest square up to 4104
                          {123, 122, false, false},
                          {122, 123, false, false},
                          {200, 72, true, false},   // 103 * 39
                          {200, 73, false, false},  // 103 * 40
                          {200, 200, false, false}}) {
        const SATExactTentBlur<Pixel<Channel8>> blur8(context, source8, c.radiusX, c.radiusY);
        const SATExactTentBlur<Pixel<Channel15>> blur15(context, source15, c.radiusX, c.radiusY);
        EXPECT_EQ(c.isNarrowAt8Bits, HasNarrowCells(blur8)) << c.radiusX << ", " << c.radiusY;
        EXPECT_EQ(c.isNarrowAt15Bits, HasNarrowCells(blur15)) << c.radiusX << ", " << c.radiusY;
    }
}

// Every whole radius, those included that the tables hold and getBlur never reads, on both sides of the rule.
TYPED_TEST(SATExactTentBlurTypedTest, EveryReadOutHasTheBytesOfTheTentOfDoubles) {
    using P = Pixel<TypeParam>;
    std::mt19937 random(41);
    for (const auto& [radiusX, radiusY] :
         {std::pair{0, 0}, {1, 3}, {9, 2}, {32, 32}, {33, 33}, {121, 122}, {123, 123}, {200, 30}}) {
        const int width = 1 + oracle::RandomUpTo(random, 20);
        const int height = 1 + oracle::RandomUpTo(random, 20);
        const SimplePixelBuffer<P> source(width, height);
        oracle::Store<TypeParam>(oracle::RandomImage(random, width, height, oracle::kFull<TypeParam>),
                                 source);
        SATTentBlur<P> given(this->context, source, radiusX, radiusY);
        SATExactTentBlur<P> exact(this->context, source, radiusX, radiusY);
        given.initialize();
        exact.initialize();
        for (int radius = -2; radius <= std::max(radiusX, radiusY) + 4; ++radius) {
            const int x = oracle::RandomUpTo(random, width - 1);
            const int y = oracle::RandomUpTo(random, height - 1);
            for (const int other : {radius, radius / 3, 0, radiusY + 3}) {
                ASSERT_EQ(given.getBlurInt(x, y, radius, other), exact.getBlurInt(x, y, radius, other))
                    << "built for " << radiusX << ", " << radiusY << ", read at " << radius << ", " << other;
            }
            const int fixedX = radius * 65536 + oracle::RandomUpTo(random, 65535);
            const int fixedY = radius * 40000;
            ASSERT_EQ(given.getBlur(x, y, fixedX, fixedY), exact.getBlur(x, y, fixedX, fixedY))
                << "built for " << radiusX << ", " << radiusY << ", read at " << fixedX << ", " << fixedY;
        }
    }
}

// Bright noise on the left, black on the right, as large as it takes for doubles to round.
TEST(SATExactTentBlurTest, ReadOutsAreThoseOfDirectSumsWhereDoublesRound) {
    using C = Channel15;
    using P = Pixel<C>;
    constexpr int kWidth = 1600;
    constexpr int kHeight = 1000;
    constexpr std::uint32_t kFull = oracle::kFull<C>;
    std::mt19937 random(42);
    oracle::Image image(kWidth, kHeight, kFull);
    for (int y = 0; y < kHeight; ++y) {
        for (int x = 0; x < kWidth; ++x) {
            const auto bright = [&] { return kFull - static_cast<std::uint32_t>(random() % (kFull / 4)); };
            if (x < kWidth / 2)
                image.at(x, y) = {kFull, bright(), bright(), bright()};
            else
                image.at(x, y) = {kFull, 0, 0, 0};
        }
    }
    const SimplePixelBuffer<P> source(kWidth, kHeight);
    oracle::Store<C>(image, source);
    constexpr int kRadius = 6;
    FakeContext context;
    const oracle::Blur expected = oracle::MakeBlur(oracle::Shape::kTent, image, kRadius, kRadius);
    SATTentBlur<P> given(context, source, kRadius, kRadius);
    given.initialize();
    SATExactTentBlur<P> exact(context, source, kRadius, kRadius);
    exact.initialize();
    int rounded = 0;
    for (int n = 0; n < 4000; ++n) {
        const int x = n == 0 ? kWidth - 1 : kWidth / 4 + oracle::RandomUpTo(random, 3 * kWidth / 4 - 1);
        const int y = n == 0 ? kHeight - 1 : kHeight / 2 + oracle::RandomUpTo(random, kHeight / 2 - 1);
        const int radius = oracle::RandomUpTo(random, kRadius * 65536);
        const oracle::Colour colour = oracle::ReadFractional(expected, x, y, radius, radius);
        ASSERT_EQ(colour, oracle::ColourOf(exact.getBlur(x, y, radius, radius)))
            << x << ", " << y << ", radius " << radius << "/65536";
        ASSERT_EQ(kFull, colour[oracle::kAlpha]);
        if (colour != oracle::ColourOf(given.getBlur(x, y, radius, radius))) ++rounded;
    }
    EXPECT_LT(0, rounded) << "no double was rounded: the picture is too small to show anything";
}

// As large as it takes for doubles to round, read far from the upper left corner.
TYPED_TEST(SATExactTentBlurTypedTest, LargeUniformOpaquePictureKeepsItsColour) {
    using P = Pixel<TypeParam>;
    constexpr int kWidth = 2300;
    constexpr int kHeight = 1300;
    constexpr auto kFull = static_cast<typename TypeParam::Type>(TypeParam::kOne);
    const P colour(kFull, kFull, kFull / 3, 1);
    const SimplePixelBuffer<P> source(kWidth, kHeight);
    for (int y = 0; y < kHeight; ++y)
        std::fill(source.row(y).begin(), source.row(y).end(), colour);
    std::mt19937 random(44);
    for (const int largest : {6, 40, 140}) {
        SATExactTentBlur<P> blur(this->context, source, largest, largest);
        blur.initialize();
        for (int n = 0; n < 4000; ++n) {
            const int x = kWidth - 1 - oracle::RandomUpTo(random, n == 0 ? 0 : 200);
            const int y = kHeight - 1 - oracle::RandomUpTo(random, n == 0 ? 0 : 200);
            const int radiusX = oracle::RandomUpTo(random, largest * 65536);
            const int radiusY = oracle::RandomUpTo(random, largest * 65536);
            ASSERT_EQ(colour, blur.getBlur(x, y, radiusX, radiusY))
                << x << ", " << y << ", radii " << radiusX << "/65536, " << radiusY << "/65536";
            ASSERT_EQ(colour, blur.getBlurInt(x, y, radiusX >> 16, radiusY >> 16))
                << x << ", " << y << ", radii " << radiusX / 65536 << ", " << radiusY / 65536;
        }
    }
}

TYPED_TEST(SATExactTentBlurTypedTest, ProgressIsReportedInTheTwoPassesOfTheTentOfDoubles) {
    using P = Pixel<TypeParam>;
    const SimplePixelBuffer<P> source(3, 4);
    for (const auto& [radiusX, radiusY] : {std::pair{2, 1}, {140, 140}}) {
        FakeContext givenContext;
        FakeContext exactContext;
        SATTentBlur<P>(givenContext, source, radiusX, radiusY).initialize();
        SATExactTentBlur<P>(exactContext, source, radiusX, radiusY).initialize();
        EXPECT_EQ(givenContext.progressCalls, exactContext.progressCalls) << radiusX;
    }
}

template <class P>
bool HasTheSumsOf(const SATTentBlur<P>& given, const SATExactTentBlur<P>& exact) {
    const auto cells = static_cast<std::ptrdiff_t>(given.tableWidth) * given.tableHeight;
    const auto equals = [cells](const auto& doubles, const auto& sums) {
        return std::equal(doubles.get(), doubles.get() + cells, sums.get(), [](double expected, auto actual) {
            return static_cast<decltype(actual)>(static_cast<std::uint64_t>(expected)) == actual;
        });
    };
    return std::visit(
        [&](const auto& sums) {
            return equals(given.sumRed, sums.sumRed) && equals(given.sumGreen, sums.sumGreen) &&
                   equals(given.sumBlue, sums.sumBlue) && equals(given.sumAlpha, sums.sumAlpha);
        },
        exact.tables);
}

// A third of zeros, and runs of equal values up to `longest`.
template <class C>
std::vector<typename C::Type> MapInRuns(std::mt19937& random, int width, int longest) {
    std::vector<typename C::Type> map;
    while (map.size() < static_cast<std::size_t>(width)) {
        const auto value =
            oracle::RandomUpTo(random, 2) == 0 ? 0U : oracle::RandomComponent(random, oracle::kFull<C>);
        map.insert(map.end(), static_cast<std::size_t>(1 + oracle::RandomUpTo(random, longest - 1)),
                   static_cast<typename C::Type>(value));
    }
    return map;
}

// The last radius of narrow cells and the first of wide ones, at every width up to some vectors and more.
TYPED_TEST(SATExactTentBlurTypedTest, TablesAndRowsOfEveryLevelAreThoseOfTheTentOfDoubles) {
    using P = Pixel<TypeParam>;
    constexpr int kHeight = 3;
    constexpr int kLastNarrow = TypeParam::kOne == 255 ? 122 : 32;
    constexpr int kLongestRuns[kHeight] = {1, 6, 60};
    std::mt19937 random(43);
    for (int width = 1; width <= 70; ++width) {
        const SimplePixelBuffer<P> source(width, kHeight);
        oracle::Store<TypeParam>(oracle::RandomImage(random, width, kHeight, oracle::kFull<TypeParam>),
                                 source);
        for (const int radius : {kLastNarrow, kLastNarrow + 1}) {
            SATTentBlur<P> given(this->context, source, radius, radius);
            given.initialize();
            for (const PILib::SimdLevel level : SupportedLevels()) {
                SATExactTentBlur<P> exact(this->context, source, radius, radius, level);
                exact.initialize();
                ASSERT_EQ(radius == kLastNarrow, HasNarrowCells(exact));
                ASSERT_TRUE(HasTheSumsOf(given, exact))
                    << "width " << width << ", radius " << radius << ", level " << static_cast<int>(level);
                for (int y = 0; y < kHeight; ++y) {
                    const auto map = MapInRuns<TypeParam>(random, width, kLongestRuns[y]);
                    const auto read = [&](PILib::SATBlur<P>& blur) {
                        std::vector<P> row(static_cast<std::size_t>(width));
                        blur.getBlurRow(0, y, map.data(), source.row(y).begin(), row.data(), width,
                                        static_cast<float>(radius), static_cast<float>(radius) - 0.25F);
                        return row;
                    };
                    ASSERT_EQ(read(given), read(exact)) << "width " << width << ", radius " << radius
                                                        << ", level " << static_cast<int>(level);
                }
            }
        }
    }
}

}  // namespace

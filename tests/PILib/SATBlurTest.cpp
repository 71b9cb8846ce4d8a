// The geometry and the fractional read-out that all blurs share.

#include "SATBlur.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <new>
#include <random>
#include <tuple>
#include <vector>

#include "ChannelTypes.h"
#include "ExpectAssertion.h"
#include "FakeContext.h"
#include "NaiveBlur.h"
#include "OracleBuffers.h"
#include "RandomImage.h"

namespace {

using PILib::Channel15;
using PILib::Channel8;
using PILib::Pixel;
using PILib::SATBlur;
using PILib::SATBoxBlur;
using PILib::SimplePixelBuffer;

constexpr int kLargestInt = std::numeric_limits<int>::max();

// A blur without tables: answers whole radii from a function of the radii and notes what it was asked for.
template <class P>
class TablelessBlur : public SATBlur<P> {
public:
    using SATBlur<P>::SATBlur;

    P getBlurInt(int x, int y, int radiusX, int radiusY) override {
        requests.emplace_back(x, y, radiusX, radiusY);
        return radiusX > baseX ? wider : radiusY > baseY ? taller : base;
    }
    void initialize() override {}

    // Answers at the smallest radii asked for, one column and one row beyond them.
    void answer(int radiusX, int radiusY, P atBase, P atWider, P atTaller) {
        baseX = radiusX;
        baseY = radiusY;
        base = atBase;
        wider = atWider;
        taller = atTaller;
    }

    std::vector<std::tuple<int, int, int, int>> requests;  // x, y, radiusX, radiusY

private:
    int baseX = kLargestInt;
    int baseY = kLargestInt;
    P base{};
    P wider{};
    P taller{};
};

template <class C>
class SATBlurTypedTest : public testing::Test {
protected:
    FakeContext context;
};

TYPED_TEST_SUITE(SATBlurTypedTest, HostChannels, ChannelNames);

TYPED_TEST(SATBlurTypedTest, GeometryFollowsFromSizeAndRadii) {
    const SimplePixelBuffer<Pixel<TypeParam>> source(5, 3);
    const TablelessBlur<Pixel<TypeParam>> blur(this->context, source, 4, 2);
    EXPECT_EQ(5, blur.width);
    EXPECT_EQ(3, blur.height);
    EXPECT_EQ(5, blur.borderX);
    EXPECT_EQ(3, blur.borderY);
    EXPECT_EQ(15, blur.tableWidth);
    EXPECT_EQ(9, blur.tableHeight);
    EXPECT_EQ(5 * 32768, blur.maxFixedRadiusX);
    EXPECT_EQ(3 * 32768, blur.maxFixedRadiusY);
    EXPECT_EQ(&this->context, &blur.context);
    EXPECT_EQ(&source, &blur.source);
}

struct RadiusLimit {
    int radiusX;
    int radiusY;
    int limitedX;
    int limitedY;
};

template <class C>
void ExpectLimits(const std::vector<RadiusLimit>& limits) {
    FakeContext context;
    const SimplePixelBuffer<Pixel<C>> source(1, 1);
    for (const RadiusLimit& l : limits) {
        const TablelessBlur<Pixel<C>> blur(context, source, l.radiusX, l.radiusY);
        EXPECT_EQ(l.limitedX + 1, blur.borderX) << "radii " << l.radiusX << ", " << l.radiusY;
        EXPECT_EQ(l.limitedY + 1, blur.borderY) << "radii " << l.radiusX << ", " << l.radiusY;
        EXPECT_EQ(1 + 2 * blur.borderX, blur.tableWidth) << "radii " << l.radiusX << ", " << l.radiusY;
        EXPECT_EQ(1 + 2 * blur.borderY, blur.tableHeight) << "radii " << l.radiusX << ", " << l.radiusY;
    }
}

TEST(SATBlurTest, RadiiAreLimitedByTheirProduct) {
    ExpectLimits<Channel8>({{0, 0, 0, 0},
                            {4041, 4041, 4041, 4041},
                            {4042, 4042, 4041, 4041},
                            {5000, 5000, 4041, 4041},
                            {1000000, 0, 1000000, 0},
                            {1000000, 100, 404199, 40},
                            {100, 1000000, 40, 404199},
                            {kLargestInt, kLargestInt, 4041, 4041}});
    ExpectLimits<Channel15>({{356, 356, 356, 356},
                             {357, 357, 356, 356},
                             {400, 400, 356, 356},
                             {100000, 1, 100000, 1},
                             {127139, 1, 127139, 1},
                             {127140, 1, 127139, 0},
                             {kLargestInt, kLargestInt, 356, 356}});
}

template <class C>
void ExpectLimitsOfTheReference() {
    FakeContext context;
    const SimplePixelBuffer<Pixel<C>> source(1, 1);
    const oracle::Image image(1, 1, oracle::kFull<C>);
    std::mt19937 random(1);
    for (int n = 0; n < 20000; ++n) {
        const int radiusX = oracle::RandomUpTo(random, 20000);
        const int radiusY = oracle::RandomUpTo(random, 20000);
        const TablelessBlur<Pixel<C>> blur(context, source, radiusX, radiusY);
        const oracle::Blur expected = oracle::MakeBlur(oracle::Shape::kBox, image, radiusX, radiusY);
        ASSERT_EQ(expected.borderX, blur.borderX) << "radii " << radiusX << ", " << radiusY;
        ASSERT_EQ(expected.borderY, blur.borderY) << "radii " << radiusX << ", " << radiusY;
    }
}

TEST(SATBlurTest, RadiusLimitEqualsTheReference) {
    ExpectLimitsOfTheReference<Channel8>();
    ExpectLimitsOfTheReference<Channel15>();
}

TYPED_TEST(SATBlurTypedTest, RadiiBeyondAnyTableAreBadAlloc) {
    const SimplePixelBuffer<Pixel<TypeParam>> source(4, 3);
    for (const int radius : {kLargestInt, kLargestInt - 1, kLargestInt / 2}) {
        using Blur = TablelessBlur<Pixel<TypeParam>>;
        EXPECT_THROW(Blur(this->context, source, radius, 0), std::bad_alloc) << radius;
        EXPECT_THROW(Blur(this->context, source, 0, radius), std::bad_alloc) << radius;
    }
}

TYPED_TEST(SATBlurTypedTest, LargestAddressableRadiusDoesNotOverflowTheCap) {
    const SimplePixelBuffer<Pixel<TypeParam>> source(1, 1);
    const TablelessBlur<Pixel<TypeParam>> blur(this->context, source, kLargestInt / 2 - 1, 0);
    EXPECT_EQ(kLargestInt, blur.tableWidth);
    EXPECT_EQ(kLargestInt, blur.maxFixedRadiusX);
}

TYPED_TEST(SATBlurTypedTest, NegativeRadiiAndEmptySourcesAreRefused) {
    struct Refusal {
        int width, height, radiusX, radiusY, line;
    };
    for (const Refusal& r : {Refusal{2, 2, -1, 0, 1}, Refusal{2, 2, 0, -1, 1}, Refusal{0, 0, 1, 1, 2},
                             Refusal{0, 5, 1, 1, 2}, Refusal{5, 0, 1, 1, 2}}) {
        const SimplePixelBuffer<Pixel<TypeParam>> source(r.width, r.height);
        EXPECT_TRUE(FailsAssertion(
            "PILib/PILib Source/SATBlur", r.line,
            [&] { const SATBoxBlur<Pixel<TypeParam>> blur(this->context, source, r.radiusX, r.radiusY); }))
            << r.width << " x " << r.height << ", radii " << r.radiusX << ", " << r.radiusY;
    }
}

TYPED_TEST(SATBlurTypedTest, FractionalReadOutAsksForThreeWholeRadii) {
    using Requests = std::vector<std::tuple<int, int, int, int>>;
    const SimplePixelBuffer<Pixel<TypeParam>> source(9, 9);
    TablelessBlur<Pixel<TypeParam>> blur(this->context, source, 40, 40);
    blur.getBlur(7, 8, 3 * 65536 + 1, 5 * 65536 + 65535);
    EXPECT_EQ((Requests{{7, 8, 3, 5}, {7, 8, 4, 5}, {7, 8, 3, 6}}), blur.requests);
    blur.requests.clear();
    blur.getBlur(0, 0, -1, -65536);
    EXPECT_EQ((Requests{{0, 0, -1, -1}, {0, 0, 0, -1}, {0, 0, -1, 0}}), blur.requests)
        << "fractional radii have no lower limit";
}

TEST(SATBlurTest, FractionalRadiusIsHeldAtHalfTheBorder) {
    using Requests = std::vector<std::tuple<int, int, int, int>>;
    FakeContext context;
    const SimplePixelBuffer<Pixel<Channel8>> source(1, 1);
    // Borders of 5 and 8 pixels: held at 2.5 and 4 pixels.
    TablelessBlur<Pixel<Channel8>> blur(context, source, 4, 7);
    blur.answer(2, 4, {255, 10, 10, 10}, {255, 20, 20, 20}, {255, 90, 90, 90});
    const Pixel<Channel8> held = blur.getBlur(0, 0, 5 * 32768, 4 * 65536);
    EXPECT_EQ((Requests{{0, 0, 2, 4}, {0, 0, 3, 4}, {0, 0, 2, 5}}), blur.requests);
    EXPECT_EQ((Pixel<Channel8>{255, 12, 12, 12}), held);  // the mean of 15 and 10
    for (const std::int32_t radius : {5 * 65536, 7 * 65536, std::numeric_limits<std::int32_t>::max()}) {
        blur.requests.clear();
        EXPECT_EQ(held, blur.getBlur(0, 0, radius, radius)) << radius;
        EXPECT_EQ((Requests{{0, 0, 2, 4}, {0, 0, 3, 4}, {0, 0, 2, 5}}), blur.requests) << radius;
    }
}

TEST(SATBlurTest, FractionalReadOutAveragesTwoInterpolations) {
    struct Mix {
        std::uint8_t base, wider, taller;
        int fractionX, fractionY;
        std::uint8_t expected;
    };
    FakeContext context;
    const SimplePixelBuffer<Pixel<Channel8>> source(1, 1);
    TablelessBlur<Pixel<Channel8>> blur(context, source, 40, 40);
    for (const Mix& m : {
             Mix{100, 200, 50, 0, 0, 100},           // no fraction: the base alone
             Mix{100, 200, 50, 32768, 0, 125},       // 150 and 100
             Mix{100, 200, 50, 0, 32768, 87},        // 100 and 75, the half dropped
             Mix{100, 200, 50, 32768, 32768, 112},   // 150 and 75
             Mix{100, 101, 100, 32767, 0, 100},      // just below half a step
             Mix{100, 102, 100, 16384, 0, 100},      // 100.5 rounds up to 101; the mean drops the half
             Mix{100, 102, 102, 16384, 16384, 101},  // 101 and 101
             Mix{100, 97, 100, 32768, 0, 99},        // 98.5 rounds up to 99
             Mix{100, 97, 97, 32769, 32769, 98},     // a little below 98.5
             Mix{0, 255, 255, 65535, 65535, 255},    // nearly all the way
             Mix{255, 0, 0, 65535, 65535, 0},        // and back
         }) {
        const auto grey = [](std::uint8_t v) { return Pixel<Channel8>{255, v, v, v}; };
        blur.answer(6, 7, grey(m.base), grey(m.wider), grey(m.taller));
        const Pixel<Channel8> result = blur.getBlur(0, 0, 6 * 65536 + m.fractionX, 7 * 65536 + m.fractionY);
        EXPECT_EQ(oracle::ColourOf(grey(m.expected)), oracle::ColourOf(result))
            << int{m.base} << " to " << int{m.wider} << " and " << int{m.taller} << " by " << m.fractionX
            << " and " << m.fractionY;
    }
}

TEST(SATBlurTest, FractionalReadOutOf15BitsNeedsMoreThan32BitProducts) {
    FakeContext context;
    const SimplePixelBuffer<Pixel<Channel15>> source(1, 1);
    TablelessBlur<Pixel<Channel15>> blur(context, source, 8, 8);
    blur.answer(0, 0, {32768, 0, 32768, 0}, {32768, 32768, 0, 32768}, {32768, 32768, 0, 0});
    // 32768 * 65535 / 65536 is 32767.5, rounded up either way.
    EXPECT_EQ((oracle::Colour{32768, 32768, 1, 16384}), oracle::ColourOf(blur.getBlur(0, 0, 65535, 65535)));
}

TYPED_TEST(SATBlurTypedTest, FractionalReadOutStraightensAndClearsTransparentPixels) {
    const SimplePixelBuffer<Pixel<TypeParam>> source(1, 1);
    TablelessBlur<Pixel<TypeParam>> blur(this->context, source, 8, 8);
    blur.answer(1, 1, {128, 64, 32, 16}, {128, 64, 32, 16}, {128, 64, 32, 16});
    const oracle::Colour straight = oracle::Straightened({128, 64, 32, 16}, oracle::kFull<TypeParam>);
    EXPECT_EQ(straight, oracle::ColourOf(blur.getBlur(0, 0, 65536, 65536)));
    blur.answer(1, 1, {0, 9, 9, 9}, {0, 9, 9, 9}, {0, 9, 9, 9});
    EXPECT_EQ(Pixel<TypeParam>::kTransparentColor, blur.getBlur(0, 0, 65536, 65536));
}

TEST(SATBlurTest, RadiiMayBeLongOrInt) {
    FakeContext context;
    const SimplePixelBuffer<Pixel<Channel8>> source(1, 1);
    TablelessBlur<Pixel<Channel8>> blur(context, source, 8, 8);
    constexpr long kLongRadius = 98304;
    constexpr int kIntRadius = 98304;
    EXPECT_EQ(blur.getBlur(0, 0, kIntRadius, kIntRadius), blur.getBlur(0, 0, kLongRadius, kLongRadius));
    EXPECT_EQ(1, std::get<2>(blur.requests.back()));
}

}  // namespace

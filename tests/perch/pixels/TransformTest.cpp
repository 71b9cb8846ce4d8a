// How a picture is drawn must not show: by which path, on how many threads, from which memory.
#include <gtest/gtest.h>

#include <cmath>
#include <utility>

#include "PF_Values.h"
#include "PixelOps.h"
#include "Transform.h"
#include "WorkerPool.h"
#include "WorldPictures.h"

namespace perch::test {
namespace {

constexpr Placement kCopy{PF_Xfer_COPY, 1.0, false};

struct Drawing {
    const char* name;
    PF_FloatMatrix matrix;
    Placement placement;
};

const Drawing kDrawings[] = {
    {"identity", {{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}}, kCopy},
    {"grown", {{{3.1, 0, 0}, {0, 2.3, 0}, {0, 0, 1}}}, kCopy},
    {"shrunk", {{{0.4, 0, 0}, {0, 0.21, 0}, {1.5, 2, 1}}}, kCopy},
    {"shrunk and grown", {{{0.3, 0, 0}, {0, 5, 0}, {0, -3.7, 1}}}, kCopy},
    {"mirrored", {{{-1.5, 0, 0}, {0, 1.5, 0}, {140, 0, 1}}}, kCopy},
    {"half there", {{{1.2, 0, 0}, {0, 1.2, 0}, {0, 0, 1}}}, {PF_Xfer_COPY, 0.5, false}},
    {"colours alone", {{{1.2, 0, 0}, {0, 1.2, 0}, {0, 0, 1}}}, {PF_Xfer_COPY, 1.0, true}},
    {"turned", {{{0.8, 0.6, 0}, {-0.6, 0.8, 0}, {60, 3, 1}}}, kCopy},
};

template <class P>
class TransformTest : public testing::Test {};
using Depths = testing::Types<PF_Pixel, PF_Pixel16>;
TYPED_TEST_SUITE(TransformTest, Depths);

TYPED_TEST(TransformTest, WorkersDoNotChangeThePicture) {
    using P = TypeParam;
    World from = noise<P>(70, 90, 1);
    for (const Drawing& drawing : kDrawings) {
        World expected = noise<P>(150, 200, 2);
        const World before = expected;
        ASSERT_EQ(transformWorld(from.record(), drawing.matrix, true, drawing.placement, nullptr,
                                 expected.record()),
                  PF_Err_NONE);
        for (const int threads : {1, 2, 7}) {
            WorkerPool workers(threads);
            World to = before;
            ASSERT_EQ(transformWorld(from.record(), drawing.matrix, true, drawing.placement, nullptr,
                                     to.record(), &workers),
                      PF_Err_NONE);
            EXPECT_EQ(to.checksum(), expected.checksum()) << drawing.name << ", " << threads << " threads";
            EXPECT_EQ(to.damage(), "") << drawing.name;
        }
    }
}

// A transparent last column takes its rows off the path of opaque ones.
TYPED_TEST(TransformTest, OpaqueRowsAreDrawnAsAllOthers) {
    using P = TypeParam;
    constexpr std::int32_t kWidth = 70;
    World opaque = opaqueNoise<P>(kWidth, 40, 1);
    World soft = opaque;
    for (std::int32_t y = 0; y < 40; ++y)
        at<P>(soft, kWidth - 1, y).alpha = 0;
    for (const Drawing& drawing : kDrawings) {
        World expected = noise<P>(90, 80, 2);
        World to = expected;
        const auto drawOnto = [&](const World& from, World& picture) {
            return transformWorld(from.record(), drawing.matrix, true, drawing.placement, nullptr,
                                  picture.record());
        };
        ASSERT_EQ(drawOnto(soft, expected), PF_Err_NONE);
        ASSERT_EQ(drawOnto(opaque, to), PF_Err_NONE);
        const auto [scaleX, shiftX] = std::pair{drawing.matrix.mat[0][0], drawing.matrix.mat[2][0]};
        for (std::int32_t y = 0; y < 80; ++y) {
            for (std::int32_t x = 0; x < 90; ++x) {
                // One element more than a destination pixel covers, to each side.
                const double reach = 1 + 1 / std::abs(scaleX);
                if ((x + 0.5 - shiftX) / scaleX + reach > kWidth - 1) continue;
                ASSERT_TRUE(same(at<P>(to, x, y), at<P>(expected, x, y)))
                    << drawing.name << " at " << x << ", " << y;
            }
        }
    }
}

TEST(DeepTransformTest, CodesAboveWhiteAreNotTakenForOpaque) {
    World from(4, 4, true);
    for (std::int32_t y = 0; y < 4; ++y) {
        for (std::int32_t x = 0; x < 4; ++x)
            at<PF_Pixel16>(from, x, y) =
                grey<PF_Pixel16>(x % 2 == 0 ? 32769U : 32767U, x % 2 == 0 ? 30000U : 0U);
    }
    World to(2, 2, true);
    const PF_FloatMatrix half = {{{0.5, 0, 0}, {0, 0.5, 0}, {0, 0, 1}}};
    ASSERT_EQ(transformWorld(from.record(), half, true, kCopy, nullptr, to.record()), PF_Err_NONE);
    EXPECT_EQ(at<PF_Pixel16>(to, 0, 0).alpha, 32768);
    EXPECT_EQ(at<PF_Pixel16>(to, 0, 0).red, 15000);  // 30000 * 32769 / 65536, rounded
}

// The mean of a ramp's evenly covered pixels, to the code: rounded running totals are off by half a weight at
// most, which moves the mean by less than a fifth of a code (half a weight of 2048, 95 steps of 8 codes).
TEST(DeepTransformTest, RampShrunkFarIsTheMeanOfWhatEachPixelCovers) {
    constexpr std::int32_t kWidth = 40;
    constexpr std::int32_t kStep = 8;
    for (const std::int32_t covered : {77, 95, 96}) {
        for (const std::uint32_t alpha : {32768U, 16384U}) {
            World from(covered * kWidth, 2, true);
            for (std::int32_t y = 0; y < 2; ++y) {
                for (std::int32_t x = 0; x < from.width(); ++x)
                    at<PF_Pixel16>(from, x, y) =
                        grey<PF_Pixel16>(alpha, static_cast<std::uint32_t>(x * kStep));
            }
            World to(kWidth, 1, true);
            const PF_FloatMatrix shrunk = {{{1.0 / covered, 0, 0}, {0, 0.5, 0}, {0, 0, 1}}};
            ASSERT_EQ(transformWorld(from.record(), shrunk, true, kCopy, nullptr, to.record()), PF_Err_NONE);
            for (std::int32_t x = 0; x < kWidth; ++x) {
                const std::int32_t mean = covered * x * kStep + (covered - 1) * kStep / 2;
                const PF_Pixel16 drawn = at<PF_Pixel16>(to, x, 0);
                EXPECT_TRUE(same(drawn, grey<PF_Pixel16>(alpha, static_cast<std::uint32_t>(mean))))
                    << covered << " covered, alpha " << alpha << ", x " << x << ": " << drawn.red << " for "
                    << mean;
            }
        }
    }
}

TYPED_TEST(TransformTest, WorldIsDrawnOntoItselfAsFromACopy) {
    using P = TypeParam;
    for (const Drawing& drawing : kDrawings) {
        World expected = noise<P>(50, 70, 3);
        const World copy = expected;
        World itself = expected;
        ASSERT_EQ(transformWorld(copy.record(), drawing.matrix, true, drawing.placement, nullptr,
                                 expected.record()),
                  PF_Err_NONE);
        ASSERT_EQ(transformWorld(itself.record(), drawing.matrix, true, drawing.placement, nullptr,
                                 itself.record()),
                  PF_Err_NONE);
        EXPECT_EQ(itself.checksum(), expected.checksum()) << drawing.name;
    }
}

}  // namespace
}  // namespace perch::test

#include "ScaleAxis.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <numeric>

namespace perch::test {
namespace {

using testing::AllOf;
using testing::Each;
using testing::ElementsAre;
using testing::Ge;
using testing::IsEmpty;
using testing::Le;

constexpr std::uint32_t kOne = ScaleAxis::kOne;

TEST(ScaleAxisTest, GrowingMixesNeighboursAndKeepsTheEnds) {
    const ScaleAxis axis(0, 4, 0.5, 0, 2);
    EXPECT_THAT(axis[0].weights, ElementsAre(kOne));
    EXPECT_EQ(axis[0].first, 0);
    EXPECT_THAT(axis[1].weights, ElementsAre(kOne * 3 / 4, kOne / 4));
    EXPECT_THAT(axis[2].weights, ElementsAre(kOne / 4, kOne * 3 / 4));
    EXPECT_EQ(axis[2].first, 0);
    EXPECT_THAT(axis[3].weights, ElementsAre(kOne));
    EXPECT_EQ(axis[3].first, 1);
}

TEST(ScaleAxisTest, ShrinkingTakesWhatIsCovered) {
    const ScaleAxis axis(0, 2, 2.5, 0, 5);
    EXPECT_THAT(axis[0].weights, ElementsAre(819, 819, 410));
    EXPECT_THAT(axis[1].weights, ElementsAre(410, 819, 819));
    EXPECT_EQ(axis[1].first, 2);
}

// 2048 shared out to so many that each share's rounding, added up, is larger than a share.
TEST(ScaleAxisTest, EvenlyCoveredElementsWeighAlikeToOne) {
    for (const std::int32_t covered : {77, 95, 96, 105, 3000}) {
        const ScaleAxis axis(0, 1, covered, 0, covered);
        const std::uint32_t share = kOne / static_cast<std::uint32_t>(covered);
        EXPECT_EQ(axis[0].weights.size(), static_cast<std::size_t>(covered));
        EXPECT_THAT(axis[0].weights, Each(AllOf(Ge(share), Le(share + 1)))) << covered;
    }
}

TEST(ScaleAxisTest, MirroredAxisRunsBackwards) {
    const ScaleAxis axis(0, 3, -1, 3, 3);
    for (std::int32_t i = 0; i < 3; ++i) {
        EXPECT_EQ(axis[static_cast<std::size_t>(i)].first, 2 - i);
        EXPECT_THAT(axis[static_cast<std::size_t>(i)].weights, ElementsAre(kOne)) << i;
    }
}

TEST(ScaleAxisTest, OutsideTheSourceThereIsNothing) {
    const ScaleAxis axis(-2, 5, 1, 0, 3);
    for (const std::size_t outside : {0U, 1U, 5U, 6U})
        EXPECT_THAT(axis[outside].weights, IsEmpty()) << outside;
    EXPECT_EQ(axis.range().begin, 0);
    EXPECT_EQ(axis.range().end, 3);
    const ScaleAxis beyond(10, 20, 1, 0, 3);
    EXPECT_EQ(beyond.range().begin, beyond.range().end);
}

TEST(ScaleAxisTest, WeightsAddUpAndStayInTheSource) {
    for (const double scale : {0.01, 0.3, 1.0, 1.001, 2.7, 40.0, 77.0, 95.0, 5000.0, -0.4, -3.3}) {
        for (const std::int32_t size : {1, 2, 7, 100, 4000}) {
            const ScaleAxis axis(-3, 60, scale, 1.7, size);
            for (std::size_t i = 0; i < axis.size(); ++i) {
                const ScaleAxis::Taps taps = axis[i];
                if (taps.weights.empty()) continue;
                EXPECT_THAT(taps.weights, Each(Le(kOne))) << "scale " << scale << ", size " << size;
                EXPECT_EQ(std::accumulate(taps.weights.begin(), taps.weights.end(), std::uint64_t{0}), kOne)
                    << "scale " << scale << ", size " << size << ", element " << i;
                EXPECT_GE(taps.first, axis.range().begin);
                EXPECT_LE(taps.end(), axis.range().end);
                EXPECT_LE(taps.end(), size);
            }
        }
    }
}

}  // namespace
}  // namespace perch::test

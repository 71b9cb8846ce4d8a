// The divisions of the box's row kernels over their whole domains.
#include <gtest/gtest.h>

#include <cstdint>

#define PILIB_LANES 4
#include "BoxFilter.ipp"
#include "RowDepths.ipp"

namespace PILib::detail {
namespace {

// Quotients `first` to `last` of sums that are a multiple of the area, and of those one below the next.
template <class Division>
testing::AssertionResult DividesExactly(std::int32_t area, std::int32_t first, std::int32_t last) {
    const Division division(Splat(area));
    const std::int32_t below = first * area;
    for (std::int32_t q = first; q <= last; q += 2) {
        const std::int32_t sum = q * area;
        const Int sums = {sum, sum + area - 1, sum + area, below};
        const Int quotients = division.quotient(sums);
        const std::int32_t expected[] = {q, q, q + 1, first};
        for (int lane = 0; lane < 4; ++lane) {
            if (quotients[lane] != expected[lane])
                return testing::AssertionFailure() << sums[lane] << " / " << area << " = " << quotients[lane];
        }
    }
    return testing::AssertionSuccess();
}

TEST(BoxDivisionTest, SmallAreasDivide8BitSumsExactly) {
    for (std::int32_t area = 1; area < SmallBoxDivision::kAreaEnd; area += 2)
        ASSERT_TRUE(DividesExactly<SmallBoxDivision>(area, 0, 254));
}

template <class Depth>
struct BoxDivisionTypedTest : testing::Test {};

using Depths = testing::Types<Depth8, Depth15>;
TYPED_TEST_SUITE(BoxDivisionTypedTest, Depths);

// All boxes of the largest height, and squares: every quotient of 8 bits, and of 15 bits the ends.
TYPED_TEST(BoxDivisionTypedTest, EveryAreaDividesExactly) {
    constexpr std::int32_t kLargestWidth = 2 * kLargestWholeRadius + 1;
    constexpr std::int32_t kOne = TypeParam::kOne;
    for (std::int32_t width = 1; width <= kLargestWidth; width += 2) {
        for (const std::int32_t height : {width, kLargestWidth}) {
            ASSERT_TRUE(DividesExactly<BoxDivision<TypeParam>>(width * height, 0, 126));
            ASSERT_TRUE(DividesExactly<BoxDivision<TypeParam>>(width * height, kOne - 127, kOne - 1));
        }
    }
}

}  // namespace
}  // namespace PILib::detail

// 8-bit means of narrow sums by singles, over their whole domain.
#include <gtest/gtest.h>

#include <cstdint>

#define PILIB_LANES 4
#include "RowDepths.ipp"
#include "TentFilter.ipp"

namespace PILib::detail {
namespace {

// The largest product of half-widths whose weighted sums have 32 bits.
constexpr std::uint32_t kLargestProduct = 4104;

std::int32_t MeanByDoubles(std::uint64_t sum, double reciprocal) {
    return static_cast<std::int32_t>(static_cast<double>(sum) * reciprocal + 0.5);
}

// The first sum whose mean is `mean`, 1 or more.
std::uint64_t FirstSumOf(std::int32_t mean, std::uint64_t weights, double reciprocal) {
    std::uint64_t sum = (2 * static_cast<std::uint64_t>(mean) - 1) * weights / 2;
    while (MeanByDoubles(sum, reciprocal) >= mean)
        --sum;
    while (MeanByDoubles(sum, reciprocal) < mean)
        ++sum;
    return sum;
}

// The mean by singles in one lane, or -1 where they do not decide it.
std::int32_t MeanBySingles(std::uint64_t sum, float scale, unsigned lane) {
    Uint sums{};
    sums[lane] = static_cast<std::uint32_t>(sum);
    return TentMeansBySingles(sums, Float{} + scale, 1U << lane, [] { return Splat(-1); })[lane];
}

// Both sides never decrease with the sum, so that the sums around each step stand for all.
testing::AssertionResult SinglesAreRightOrUndecided(std::uint64_t weights, float scale) {
    const double reciprocal = 1.0 / static_cast<double>(weights);
    for (std::int32_t mean = 1; mean <= Depth8::kOne; ++mean) {
        const std::uint64_t first = FirstSumOf(mean, weights, reciprocal);
        for (const std::uint64_t sum : {first - 1, first}) {
            const std::int32_t expected = sum < first ? mean - 1 : mean;
            const std::int32_t actual = MeanBySingles(sum, scale, static_cast<unsigned>(sum % 4));
            if (actual != expected && actual != -1)
                return testing::AssertionFailure()
                       << sum << " by weights " << weights << " gives " << actual << ", not " << expected;
        }
        if (MeanBySingles(static_cast<std::uint64_t>(mean) * weights, scale, 0) != mean)
            return testing::AssertionFailure() << mean << " times " << weights << " is not decided";
    }
    return testing::AssertionSuccess();
}

TEST(TentMeansTest, SinglesGiveTheMeanOfDoublesOrLeaveItToThem) {
    for (std::uint32_t product = 1; product <= kLargestProduct; ++product) {
        const std::uint64_t weights = std::uint64_t{product} * product;
        // As a group of equal radii scales, and as lanes of their own radii do.
        ASSERT_TRUE(
            SinglesAreRightOrUndecided(weights, static_cast<float>(4096.0 / static_cast<double>(weights))));
        ASSERT_TRUE(SinglesAreRightOrUndecided(weights, 4096.0F / static_cast<float>(weights)));
    }
}

}  // namespace
}  // namespace PILib::detail

// The vector kernels of the blend against the formula, value by value.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <random>
#include <vector>

#include "RowDispatch.h"
#include "SimdLevels.h"

namespace PILib {
namespace {

using Depths = testing::Types<Channel8, Channel15>;

template <class C>
struct BlendRowTest : testing::Test {
    using Type = typename C::Type;

    Type value() {
        return static_cast<Type>(
            std::uniform_int_distribution<int>(0, std::numeric_limits<Type>::max())(generator));
    }

    std::vector<Type> values(std::size_t count) {
        std::vector<Type> row(count);
        for (Type& v : row)
            v = value();
        return row;
    }

    std::mt19937 generator{1};
};

TYPED_TEST_SUITE(BlendRowTest, Depths);

TYPED_TEST(BlendRowTest, EveryLevelGivesTheFormulasValuesAndWritesNothingElse) {
    using Type = typename TypeParam::Type;
    constexpr Type kUntouched = 77;
    for (const SimdLevel level : SupportedLevels()) {
        const auto kernel = detail::KernelsFor<TypeParam>(level).blend;
        if (kernel == nullptr) continue;
        for (const std::uint32_t weight : {0U, 1U, 32767U, 32768U, 40000U, 65535U, 65536U}) {
            for (std::int32_t count = 1; count <= 70; ++count) {
                const auto size = static_cast<std::size_t>(count);
                const std::vector<Type> other = this->values(size);
                std::vector<Type> row = this->values(size);
                std::vector<Type> expected(size);
                for (std::size_t i = 0; i < size; ++i) {
                    const std::int64_t step = std::int64_t{weight} * (std::int64_t{other[i]} - row[i]);
                    expected[i] = static_cast<Type>(row[i] + ((step + 32768) >> 16));
                }
                row.push_back(kUntouched);
                expected.push_back(kUntouched);
                kernel({row.data(), other.data(), count, weight});
                ASSERT_EQ(expected, row)
                    << "level " << static_cast<int>(level) << ", weight " << weight << ", values " << count;
            }
        }
    }
}

TYPED_TEST(BlendRowTest, TheBestLevelOfThisProcessorHasAKernelUnlessItIsTheBaseline) {
    const SimdLevel best = BestSimdLevel();
    EXPECT_EQ(best > SimdLevel::Baseline, detail::KernelsFor<TypeParam>(best).blend != nullptr);
    EXPECT_EQ(nullptr, detail::KernelsFor<TypeParam>(SimdLevel::Scalar).blend);
}

}  // namespace
}  // namespace PILib

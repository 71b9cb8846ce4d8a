// The vector kernels of the blend against the formula, value by value.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

#include "BlendRows.h"
#include "RowDispatch.h"
#include "SimdLevels.h"

namespace PILib {
namespace {

using Depths = testing::Types<Channel8, Channel15>;

template <class C>
struct BlendRowTest : testing::Test {
    using Type = typename C::Type;

    std::vector<Type> values(std::size_t count) {
        std::uniform_int_distribution<int> any(0, std::numeric_limits<Type>::max());
        std::vector<Type> row(count);
        for (Type& value : row)
            value = static_cast<Type>(any(generator));
        return row;
    }

    std::mt19937 generator{1};
};

TYPED_TEST_SUITE(BlendRowTest, Depths);

TYPED_TEST(BlendRowTest, EveryLevelGivesTheFormulasValuesAndWritesNothingElse) {
    using Type = typename TypeParam::Type;
    constexpr std::size_t kBefore = 3;  // elements of the row that are not the kernel's
    constexpr std::size_t kAfter = 20;
    for (const SimdLevel level : SupportedLevels()) {
        const auto kernel = detail::KernelsFor<TypeParam>(level).blend;
        if (kernel == nullptr) continue;
        for (const std::uint32_t weight : {0U, 1U, 32767U, 32768U, 40000U, 65535U, 65536U}) {
            for (std::ptrdiff_t count = 0; count <= 70; ++count) {
                const std::size_t size = kBefore + static_cast<std::size_t>(count) + kAfter;
                const std::vector<Type> other = this->values(size);
                std::vector<Type> row = this->values(size);
                std::vector<Type> expected = row;
                for (std::size_t i = kBefore; i < size - kAfter; ++i) {
                    const std::int64_t step = std::int64_t{weight} * (std::int64_t{other[i]} - row[i]);
                    expected[i] = static_cast<Type>(row[i] + ((step + 32768) >> 16));
                }
                kernel({row.data() + kBefore, other.data() + kBefore, count, weight});
                ASSERT_EQ(expected, row)
                    << "level " << static_cast<int>(level) << ", weight " << weight << ", values " << count;
            }
        }
    }
}

TYPED_TEST(BlendRowTest, PicturesEqualThoseOfTheScalarLevelAtEveryWeight) {
    using P = Pixel<TypeParam>;
    constexpr int kWidth = 21;
    const SimplePixelBuffer<P> start(kWidth, 3);
    const SimplePixelBuffer<P> other(kWidth, 3);
    const SimplePixelBuffer<P> expected(kWidth, 3);
    const SimplePixelBuffer<P> actual(kWidth, 3);
    for (const auto* picture : {&start, &other}) {
        for (int y = 0; y < 3; ++y) {
            const auto row = this->values(4 * kWidth);
            std::memcpy(picture->row(y).begin(), row.data(), kWidth * sizeof(P));
        }
    }
    for (const std::int32_t weight : {-70000, -1, 0, 1, 30000, 65536, 65537, 200000}) {
        expected.load(start, kAlignTopLeft);
        detail::BlendRows<TypeParam>(expected, other, weight, SimdLevel::Scalar);
        for (const SimdLevel level : VectorLevels()) {
            actual.load(start, kAlignTopLeft);
            detail::BlendRows<TypeParam>(actual, other, weight, level);
            for (int y = 0; y < 3; ++y) {
                EXPECT_TRUE(std::equal(expected.row(y).begin(), expected.row(y).end(), actual.row(y).begin()))
                    << "level " << static_cast<int>(level) << ", weight " << weight << ", row " << y;
            }
        }
    }
}

// Which levels have a kernel: one that is missing would be a slow row and no wrong one.
TEST(RowKernelsTest, KernelsStandWhereTheyAreFaster) {
    for (const SimdLevel level : SupportedLevels()) {
        const auto number = static_cast<int>(level);
        const detail::DepthKernels& depth8 = detail::KernelsFor<Channel8>(level);
        const detail::DepthKernels& depth15 = detail::KernelsFor<Channel15>(level);
        for (const detail::DepthKernels* kernels : {&depth8, &depth15}) {
            EXPECT_EQ(level != SimdLevel::Scalar, kernels->box != nullptr) << number;
            EXPECT_EQ(level != SimdLevel::Scalar, kernels->narrowTent != nullptr) << number;
            EXPECT_EQ(level != SimdLevel::Scalar, kernels->wideTent != nullptr) << number;
            EXPECT_EQ(level != SimdLevel::Scalar, kernels->narrowSumsTwice != nullptr) << number;
            EXPECT_EQ(level != SimdLevel::Scalar, kernels->wideSumsTwice != nullptr) << number;
            EXPECT_EQ(level != SimdLevel::Scalar, kernels->narrowAddDown != nullptr) << number;
            EXPECT_EQ(level != SimdLevel::Scalar, kernels->wideAddDown != nullptr) << number;
            EXPECT_EQ(level >= SimdLevel::Avx2, kernels->blend != nullptr) << number;
        }
        EXPECT_EQ(level >= SimdLevel::Avx2, depth8.runningSums != nullptr) << number;
        EXPECT_EQ(level >= SimdLevel::Avx512, depth15.runningSums != nullptr) << number;
    }
}

}  // namespace
}  // namespace PILib

// Rows of pictures and maps that hold 15-bit codes above full scale, which the host interface does not allow.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

#include "FakeContext.h"
#include "OracleBuffers.h"
#include "RandomImage.h"
#include "SATExactTentBlur.h"
#include "SimdLevels.h"

namespace PILib {
namespace {

using P = Pixel<Channel15>;

constexpr int kWidth = 200;
constexpr int kWild = 60;  // columns at the left whose codes are all above full scale

template <class Blur>
std::vector<P> BlurredRow(const SimplePixelBuffer<P>& picture, const std::vector<std::uint16_t>& map,
                          int radius, SimdLevel level) {
    FakeContext context;
    Blur blur(context, picture, radius, radius, level);
    blur.initialize();
    std::vector<P> row(kWidth);
    blur.getBlurRow(0, 0, map.data(), picture.row(0).begin(), row.data(), kWidth, static_cast<float>(radius),
                    static_cast<float>(radius));
    return row;
}

template <class Blur>
class CodesAboveFullScaleTest : public testing::Test {};
using Blurs = testing::Types<SATBoxBlur<P>, SATExactTentBlur<P>>;
TYPED_TEST_SUITE(CodesAboveFullScaleTest, Blurs);

TYPED_TEST(CodesAboveFullScaleTest, OfAPictureSpoilOnlyThePixelsThatReadThem) {
    std::mt19937 random(11);
    const SimplePixelBuffer<P> clean(kWidth, 1);
    oracle::Store<Channel15>(oracle::RandomImage(random, kWidth, 1, oracle::kFull<Channel15>), clean);
    const SimplePixelBuffer<P> wild(kWidth, 1);
    wild.load(clean, kAlignTopLeft);
    std::vector<std::uint16_t> map(kWidth);
    const auto code = [&] { return static_cast<std::uint16_t>(32769 + oracle::RandomUpTo(random, 32766)); };
    for (int x = 0; x < kWidth; ++x) {
        map[static_cast<std::size_t>(x)] =
            static_cast<std::uint16_t>(oracle::RandomUpTo(random, x / 50 * 10000));  // and in focus at first
        if (x < kWild) wild.row(0)[x] = {code(), code(), code(), code()};
    }
    for (const int radius : {5, 20, 60, 130}) {  // tents of narrow cells, and of wide ones
        const std::vector<P> expected = BlurredRow<TypeParam>(clean, map, radius, SimdLevel::Scalar);
        const int reach = radius / 2 + 3;
        for (const SimdLevel level : SupportedLevels()) {
            const std::vector<P> actual = BlurredRow<TypeParam>(wild, map, radius, level);
            for (int x = 0; x < kWidth; ++x) {
                const auto at = static_cast<std::size_t>(x);
                if (map[at] != 0 && x < kWild + reach) continue;
                ASSERT_EQ(map[at] == 0 ? wild.row(0)[x] : expected[at], actual[at])
                    << "level " << static_cast<int>(level) << ", radius " << radius << ", column " << x;
            }
        }
    }
}

TYPED_TEST(CodesAboveFullScaleTest, OfAMapReadTheLargestRadiusOfTheTables) {
    std::mt19937 random(12);
    const SimplePixelBuffer<P> picture(kWidth, 1);
    oracle::Store<Channel15>(oracle::RandomImage(random, kWidth, 1, oracle::kFull<Channel15>), picture);
    for (const int radius : {5, 20, 60, 130}) {
        const std::vector<std::uint16_t> full(kWidth, std::uint16_t{Channel15::kOne});
        const std::vector<P> expected = BlurredRow<TypeParam>(picture, full, radius, SimdLevel::Scalar);
        for (const int code : {32769, 50000, 65535}) {
            const std::vector<std::uint16_t> map(kWidth, static_cast<std::uint16_t>(code));
            for (const SimdLevel level : SupportedLevels()) {
                ASSERT_EQ(expected, BlurredRow<TypeParam>(picture, map, radius, level))
                    << "level " << static_cast<int>(level) << ", radius " << radius << ", code " << code;
            }
        }
    }
}

}  // namespace
}  // namespace PILib

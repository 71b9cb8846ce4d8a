#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <type_traits>

#include "ChannelTypes.h"
#include "Pixel.h"

namespace {

using PILib::Channel15;
using PILib::Channel16;
using PILib::Channel32;
using PILib::Channel32f;
using PILib::Channel8;

template <class C, class Stored, class Natural>
constexpr bool HasTypes =
    std::is_same_v<typename C::Type, Stored>&& std::is_same_v<typename C::NaturalType, Natural>;

static_assert(HasTypes<Channel8, std::uint8_t, std::int32_t>);
static_assert(HasTypes<Channel15, std::uint16_t, std::int32_t>);
static_assert(HasTypes<Channel16, std::uint16_t, std::int32_t>);
static_assert(HasTypes<Channel32, std::int32_t, std::int32_t>);
static_assert(HasTypes<Channel32f, float, float>);

static_assert(Channel8::kOne == 255 && Channel15::kOne == 32768 && Channel16::kOne == 65535);
static_assert(Channel32::kOne == 1073741824 && Channel32f::kOneF == 1.0F);

template <class C>
class ChannelTypedTest : public testing::Test {};

TYPED_TEST_SUITE(ChannelTypedTest, AllChannels, ChannelNames);

TYPED_TEST(ChannelTypedTest, TagHasNoState) {
    EXPECT_TRUE(std::is_empty_v<TypeParam>);
    EXPECT_EQ(typename TypeParam::Type{0}, TypeParam::kZeroValue);
}

TYPED_TEST(ChannelTypedTest, FloatConstantsAreSinglePrecision) {
    EXPECT_TRUE((std::is_same_v<decltype(TypeParam::kFloatOne), const float>));
    EXPECT_TRUE((std::is_same_v<decltype(TypeParam::kFloatReciprocal), const float>));
}

TEST(ChannelTest, FloatConstantsHaveTheirExactBits) {
    const struct {
        const char* name;
        float one, reciprocal;
        float expectedOne;
        std::uint32_t expectedBits;
    } kCases[] = {
        {"Channel8", Channel8::kFloatOne, Channel8::kFloatReciprocal, 255.0F, 0x3B808081},
        {"Channel15", Channel15::kFloatOne, Channel15::kFloatReciprocal, 32768.0F, 0x38000000},
        {"Channel16", Channel16::kFloatOne, Channel16::kFloatReciprocal, 65535.0F, 0x37800080},
        {"Channel32", Channel32::kFloatOne, Channel32::kFloatReciprocal, 1073741824.0F, 0x30800000},
        {"Channel32f", Channel32f::kFloatOne, Channel32f::kFloatReciprocal, 1.0F, 0x3F800000},
    };
    for (const auto& c : kCases) {
        EXPECT_EQ(c.expectedOne, c.one) << c.name;
        EXPECT_EQ(c.expectedBits, std::bit_cast<std::uint32_t>(c.reciprocal)) << c.name;
    }
}

TEST(ChannelTest, Channel8ProductIsRoundedToNearestForAllPairs) {
    for (std::uint32_t x = 0; x <= 255; ++x) {
        for (std::uint32_t a = 0; a <= 255; ++a) {
            // x * a / 255 + 1/2, truncated. 255 is odd, so there is no tie.
            ASSERT_EQ((2 * x * a + 255) / 510, Channel8::mul(x, a)) << x << " * " << a;
        }
    }
}

TEST(ChannelTest, Channel15ProductIsTruncatedForAllCodes) {
    for (std::uint32_t x = 0; x <= 32768; ++x) {
        for (const std::uint32_t a : {0U, 1U, 2U, 255U, 16383U, 16384U, 16385U, 32766U, 32767U, 32768U}) {
            ASSERT_EQ(std::uint64_t{x} * a / 32768, Channel15::mul(x, a)) << x << " * " << a;
            ASSERT_EQ(Channel15::mul(x, a), Channel15::mul(a, x)) << x << " * " << a;
        }
        ASSERT_EQ(x, Channel15::mul(x, 32768)) << "full keeps " << x;
    }
}

TEST(ChannelTest, Channel16FullTimesFullLosesOneStep) {
    EXPECT_EQ(65534U, Channel16::mul(65535, 65535));
    EXPECT_EQ(0U, Channel16::mul(0, 65535));
    for (std::uint32_t x = 1; x <= 65535; ++x)
        ASSERT_EQ(x - 1, Channel16::mul(x, 65535)) << x;
}

TEST(ChannelTest, Channel32ProductHasHeadroomAboveFull) {
    const std::int32_t full = Channel32::kOne;
    const struct {
        std::int32_t x, a, expected;
    } kCases[] = {{full, full, full},
                  {full, full / 2, full / 2},
                  {std::numeric_limits<std::int32_t>::max(), full, std::numeric_limits<std::int32_t>::max()},
                  {full + full / 2, full, full + full / 2},
                  {1, full - 1, 0},
                  {3, full / 2, 1},
                  {0, full, 0}};
    for (const auto& c : kCases)
        EXPECT_EQ(c.expected, Channel32::mul(c.x, c.a)) << c.x << " * " << c.a;
}

TEST(ChannelTest, Channel32fProductIsAPlainOne) {
    EXPECT_EQ(0.25F, Channel32f::mul(0.5F, 0.5F));
    EXPECT_EQ(3.0F, Channel32f::mul(2.0F, 1.5F)) << "above full";
}

TEST(ChannelTest, FixedPointShareOfFullIsLessThanAStepFromExactForAllCodes) {
    for (int value = 0; value <= 255; ++value) {
        const std::int32_t fixed = Channel8::toFixed(static_cast<std::uint8_t>(value));
        ASSERT_EQ(value * 32897 / 128, fixed) << value;
        ASSERT_LT(std::abs(value * 65536 - fixed * 255), 255) << value;
    }
    for (int value = 0; value <= 32768; ++value) {
        ASSERT_EQ(value * 2, Channel15::toFixed(static_cast<std::uint16_t>(value))) << value;
    }
    EXPECT_EQ(257, Channel8::toFixed(1));
    EXPECT_EQ(32897, Channel8::toFixed(128));
    EXPECT_EQ(65536, Channel8::toFixed(255));
}

TEST(ChannelTest, TruncationGoesTowardZeroAndOutOfRangeIsTheMostNegativeValue) {
    constexpr std::int32_t kLowest = std::numeric_limits<std::int32_t>::min();
    const struct {
        float value;
        std::int32_t expected;
    } kCases[] = {{0.0F, 0},
                  {0.99F, 0},
                  {-0.99F, 0},
                  {-1.5F, -1},
                  {2147483520.0F, 2147483520},
                  {2147483648.0F, kLowest},
                  {-2147483648.0F, kLowest},
                  {-2147483904.0F, kLowest},
                  {std::numeric_limits<float>::infinity(), kLowest},
                  {-std::numeric_limits<float>::infinity(), kLowest},
                  {std::numeric_limits<float>::quiet_NaN(), kLowest}};
    for (const auto& c : kCases)
        EXPECT_EQ(c.expected, PILib::TruncToInt32(c.value)) << c.value;
    EXPECT_EQ(2147483647, PILib::TruncToInt32(2147483647.75));
    EXPECT_EQ(kLowest, PILib::TruncToInt32(-2147483648.75));
    EXPECT_EQ(kLowest, PILib::TruncToInt32(2147483648.0));
}

}  // namespace

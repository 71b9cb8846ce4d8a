// Threshold, inversion and brightness.
#include "FrameBufferOps.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <type_traits>
#include <typeinfo>
#include <vector>

#include "Buffers.h"
#include "ChannelTypes.h"
#include "Disguised.h"
#include "ExpectAssertion.h"

namespace {

using PILib::Brighten;
using PILib::Channel15;
using PILib::Channel16;
using PILib::Channel32;
using PILib::Channel32f;
using PILib::Channel8;
using PILib::ChannelBuf;
using PILib::Invert;
using PILib::Pixel;
using PILib::SimplePixelBuffer;
using PILib::Threshold;

constexpr char kFile[] = "PILib/PILib Source/FrameBufferOps";

// A channel whose one row holds the values.
template <class C>
ChannelBuf<C>& Set(ChannelBuf<C>& buffer, const std::vector<typename C::Type>& values) {
    buffer.initialize(static_cast<int>(values.size()), 1);
    std::copy(values.begin(), values.end(), buffer.row(0).begin());
    return buffer;
}

template <class C>
struct FrameBufferOpsTypedTest : testing::Test {
    using Type = typename C::Type;

    // Noise and a copy of it.
    FrameBufferOpsTypedTest() {
        FillRandom(channel, random, AlphaMode::kMixed);
        FillGaps(channel);
        FillRandom(pixels, random);
        channelBefore.load(channel, PILib::kAlignTopLeft);
        pixelsBefore.load(pixels, PILib::kAlignTopLeft);
    }

    std::mt19937 random{61};
    ChannelBuf<C> channel{13, 7};
    ChannelBuf<C> channelBefore{13, 7};
    PaddedPixelBuffer<Pixel<C>> pixels{13, 7, 16};
    SimplePixelBuffer<Pixel<C>> pixelsBefore{13, 7};
};

TYPED_TEST_SUITE(FrameBufferOpsTypedTest, AllChannels, ChannelNames);

TYPED_TEST(FrameBufferOpsTypedTest, ThresholdMakesFullOrZero) {
    using C = TypeParam;
    for (const float level : {-1e10F, -1.0F, 0.0F, 0.1F, 0.5F, 0.75F, 1.0F, 1.5F, 2.0F, 1e10F}) {
        this->channel.load(this->channelBefore, PILib::kAlignTopLeft);
        Threshold(this->channel, level);
        EXPECT_TRUE(ElementsAre(this->channel, [&](int x, int y) {
            const double threshold = static_cast<double>(level * C::kFloatOne);
            const double limit = std::is_same_v<C, Channel32f> ? threshold : std::trunc(threshold);
            const auto value = static_cast<double>(this->channelBefore.row(y)[x]);
            return value >= limit ? kFullOf<C> : C::kZeroValue;
        })) << level;
        EXPECT_TRUE(GapsIntact(this->channel));
    }
}

TEST(ThresholdTest, HalfOf8BitsIs127) {
    ChannelBuf<Channel8> buffer(0, 0);
    Threshold(Set(buffer, {0, 126, 127, 128, 255}), 0.5F);
    EXPECT_EQ((std::vector<std::uint8_t>{0, 0, 255, 255, 255}), ElementsOf(buffer));
}

TEST(ThresholdTest, ALevelBeyondAnyIntegerIsReachedByNothing) {
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    for (const float level : {2.0F, 4.0F, 1e10F, kInfinity, std::numeric_limits<float>::quiet_NaN()}) {
        ChannelBuf<Channel32> buffer(0, 0);
        Threshold(Set(buffer, {0, 1, 1 << 30}), level);
        EXPECT_EQ((std::vector<Channel32::Type>{0, 0, 0}), ElementsOf(buffer)) << level;
    }
    ChannelBuf<Channel32> buffer(0, 0);
    Threshold(Set(buffer, {0, 1}), -kInfinity);
    EXPECT_EQ((std::vector<Channel32::Type>{1 << 30, 1 << 30}), ElementsOf(buffer));
}

TEST(ThresholdTest, NaNElementBecomesZero) {
    ChannelBuf<Channel32f> buffer(0, 0);
    Threshold(Set(buffer, {std::numeric_limits<float>::quiet_NaN(), 0.5F, 2.0F, -1.0F}), 0.5F);
    EXPECT_EQ((std::vector<float>{0.0F, 1.0F, 1.0F, 0.0F}), ElementsOf(buffer));
}

TYPED_TEST(FrameBufferOpsTypedTest, InvertTakesEachElementFromFull) {
    using C = TypeParam;
    Invert(this->channel);
    EXPECT_TRUE(ElementsAre(this->channel, [&](int x, int y) {
        return static_cast<typename C::Type>(kFullOf<C> - this->channelBefore.row(y)[x]);
    }));
    EXPECT_TRUE(GapsIntact(this->channel));
    Invert(this->channel);
    EXPECT_TRUE(SameElements(this->channelBefore, this->channel)) << "inverted twice";
}

TEST(InvertTest, EightBitInverseIsTheBitwiseComplement) {
    const ChannelBuf<Channel8> buffer(256, 1);
    for (int v = 0; v < 256; ++v)
        buffer.row(0)[v] = static_cast<std::uint8_t>(v);
    Invert(buffer);
    EXPECT_TRUE(ElementsAre(buffer, [](int v, int) { return static_cast<std::uint8_t>(~v); }));
}

TEST(InvertTest, FifteenBitInverseCoversAllCodes) {
    const ChannelBuf<Channel15> buffer(32769, 1);
    for (int v = 0; v <= 32768; ++v)
        buffer.row(0)[v] = static_cast<std::uint16_t>(v);
    Invert(buffer);
    EXPECT_TRUE(ElementsAre(buffer, [](int v, int) { return 32768 - v; }));
}

// One component, moved toward full or zero.
template <class C>
typename C::Type Brightened(typename C::Type value, float amount) {
    const float k = 1.0F - 0.75F * std::fabs(amount);
    const float full = C::kFloatOne;
    const auto v = static_cast<float>(value);
    return static_cast<typename C::Type>(amount > 0 ? full - k * (full - v) : k * v);
}

TYPED_TEST(FrameBufferOpsTypedTest, BrightenMovesChannelsTowardFullOrZero) {
    for (const float amount : {1.0F, 0.5F, 0.01F, -0.01F, -0.3F, -1.0F}) {
        this->channel.load(this->channelBefore, PILib::kAlignTopLeft);
        Brighten(this->channel, amount);
        EXPECT_TRUE(ElementsAre(this->channel, [&](int x, int y) {
            return Brightened<TypeParam>(this->channelBefore.row(y)[x], amount);
        })) << amount;
        EXPECT_TRUE(GapsIntact(this->channel));
    }
}

TYPED_TEST(FrameBufferOpsTypedTest, BrightenOfPixelsKeepsTheirAlpha) {
    using C = TypeParam;
    for (const float amount : {1.0F, 0.5F, -0.3F, -1.0F}) {
        this->pixels.load(this->pixelsBefore, PILib::kAlignTopLeft);
        Brighten(this->pixels, amount);
        EXPECT_TRUE(ElementsAre(this->pixels, [&](int x, int y) {
            const Pixel<C> p = this->pixelsBefore.row(y)[x];
            return Pixel<C>(p.alpha, Brightened<C>(p.red, amount), Brightened<C>(p.green, amount),
                            Brightened<C>(p.blue, amount));
        })) << amount;
        EXPECT_TRUE(this->pixels.guardsIntact());
    }
}

TYPED_TEST(FrameBufferOpsTypedTest, BrightenBelowAHundredthDoesNothing) {
    for (const float amount : {0.005F, -0.005F, 0.0099F, 0.0F}) {
        Brighten(this->channel, amount);
        Brighten(this->pixels, amount);
    }
    EXPECT_TRUE(SameElements(this->channelBefore, this->channel));
    EXPECT_TRUE(SameElements(this->pixelsBefore, this->pixels));
}

TYPED_TEST(FrameBufferOpsTypedTest, BrightenBeyondOneFailsItsAssertionAndWritesNothing) {
    for (const float amount : {1.5F, -1.5F, 1.0000001F, std::numeric_limits<float>::infinity(),
                               std::numeric_limits<float>::quiet_NaN()}) {
        EXPECT_TRUE(FailsAssertion(kFile, 64, [&] { Brighten(this->channel, amount); })) << amount;
        EXPECT_TRUE(FailsAssertion(kFile, 102, [&] { Brighten(this->pixels, amount); })) << amount;
    }
    EXPECT_TRUE(SameElements(this->channelBefore, this->channel));
    EXPECT_TRUE(SameElements(this->pixelsBefore, this->pixels));
}

TEST(BrightenTest, OneKeepsAQuarterOfTheDistanceAndMinusOneAQuarterOfTheValue) {
    ChannelBuf<Channel8> buffer(0, 0);
    Brighten(Set(buffer, {0, 55, 255}), 1.0F);
    EXPECT_EQ((std::vector<std::uint8_t>{191, 205, 255}), ElementsOf(buffer));  // 255 - 63.75 truncated
    Brighten(Set(buffer, {0, 103, 255}), -1.0F);
    EXPECT_EQ((std::vector<std::uint8_t>{0, 25, 63}), ElementsOf(buffer));
}

TEST(FrameBufferOpsTest, UnknownKeyFailsTheAssertionOfEachOperation) {
    const Disguised<ChannelBuf<Channel8>, 5> pixelKey(1, 1);
    const Disguised<ChannelBuf<Channel8>, -1> negativeKey(1, 1);
    const Disguised<ChannelBuf<Channel8>, 10> largeKey(1, 1);
    for (const PILib::ChannelBuffer* buffer : {static_cast<const PILib::ChannelBuffer*>(&pixelKey),
                                               static_cast<const PILib::ChannelBuffer*>(&negativeKey),
                                               static_cast<const PILib::ChannelBuffer*>(&largeKey)}) {
        EXPECT_TRUE(FailsAssertion(kFile, 2, [&] { Threshold(*buffer, 0.5F); })) << buffer->elementKey();
        EXPECT_TRUE(FailsAssertion(kFile, 326, [&] { Invert(*buffer); })) << buffer->elementKey();
    }
    EXPECT_TRUE(FailsAssertion(kFile, 3, [&] { Brighten(negativeKey, 0.5F); }));
    EXPECT_TRUE(FailsAssertion(kFile, 3, [&] { Brighten(largeKey, 0.5F); }));
}

TEST(FrameBufferOpsTest, ClassThatDoesNotMatchItsKeyIsBadCastAndIsLeftAlone) {
    Disguised<ChannelBuf<Channel8>, 1> channel(1, 1);
    channel.row(0)[0] = 77;
    EXPECT_THROW(Threshold(channel, 0.5F), std::bad_cast);
    EXPECT_THROW(Invert(channel), std::bad_cast);
    EXPECT_THROW(Brighten(channel, 0.5F), std::bad_cast);
    EXPECT_EQ(77, channel.row(0)[0]);
    const Disguised<SimplePixelBuffer<Pixel<Channel8>>, 9> pixels(1, 1);
    EXPECT_THROW(Brighten(pixels, 0.5F), std::bad_cast);
    const Disguised<SimplePixelBuffer<Pixel<Channel8>>, 0> asChannel(1, 1);
    EXPECT_THROW(Brighten(asChannel, 0.5F), std::bad_cast);
}

}  // namespace

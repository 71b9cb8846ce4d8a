#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <random>
#include <type_traits>
#include <typeinfo>
#include <utility>

#include "Buffers.h"
#include "ChannelTypes.h"
#include "Disguised.h"
#include "ExpectAssertion.h"
#include "FakeContext.h"
#include "FrameBufferOps.h"

namespace {

using PILib::Channel15;
using PILib::Channel16;
using PILib::Channel32;
using PILib::Channel32f;
using PILib::Channel8;
using PILib::ChannelBuf;
using PILib::ChannelID;
using PILib::ExtractChannel;
using PILib::Pixel;
using PILib::SimplePixelBuffer;

constexpr char kFile[] = "PILib/PILib Source/FrameBufferOps";

// The channel's value before it is multiplied by alpha.
template <class C>
std::int64_t ValueOf(const Pixel<C>& p, int id) {
    const std::int64_t colours[] = {p.red, p.green, p.blue};
    const auto [smallest, largest] = std::minmax_element(std::begin(colours), std::end(colours));
    switch (id) {
        case 1:
        case 2:
        case 3:
            return colours[id - 1];
        case 4:
            return (77 * colours[0] + 150 * colours[1] + 29 * colours[2]) / 256;
        case 5:
            return (*largest + *smallest) / 2;
        default:
            return *largest;
    }
}

template <class C>
typename C::Type Extracted(const Pixel<C>& p, int id) {
    if (id == 0) return p.alpha;
    const std::int64_t product = ValueOf(p, id) * p.alpha;
    return static_cast<typename C::Type>(C::kOne == 255 ? (2 * product + 255) / 510 : product / 32768);
}

template <class C>
struct ExtractChannelTypedTest : testing::Test {
    FakeContext context;
    std::mt19937 random{51};
};

TYPED_TEST_SUITE(ExtractChannelTypedTest, HostChannels, ChannelNames);

TYPED_TEST(ExtractChannelTypedTest, EveryChannelEqualsItsDefinition) {
    for (const auto& [width, height] : {std::pair{0, 0}, {1, 1}, {31, 1}, {1, 17}, {33, 9}}) {
        const PaddedPixelBuffer<Pixel<TypeParam>> source(width, height, 8);
        FillRandom(source, this->random);
        for (int id = 0; id <= 6; ++id) {
            const ChannelBuf<TypeParam> destination(width, height);
            FillGaps(destination);
            ExtractChannel(this->context, destination, source, static_cast<ChannelID>(id));
            EXPECT_TRUE(
                ElementsAre(destination, [&](int x, int y) { return Extracted(source.row(y)[x], id); }))
                << "channel " << id;
            EXPECT_TRUE(GapsIntact(destination));
        }
    }
}

TYPED_TEST(ExtractChannelTypedTest, TransparentPixelReadsZeroInEveryChannel) {
    const SimplePixelBuffer<Pixel<TypeParam>> source(9, 3);
    const ChannelBuf<TypeParam> destination(9, 3);
    FillRandom(source, this->random, AlphaMode::kZero);
    for (int id = 0; id <= 6; ++id) {
        ExtractChannel(this->context, destination, source, static_cast<ChannelID>(id));
        EXPECT_TRUE(ElementsAre(destination, [](int, int) { return 0; })) << "channel " << id;
    }
}

TYPED_TEST(ExtractChannelTypedTest, LargerDestinationKeepsWhatTheSourceDoesNotCover) {
    const SimplePixelBuffer<Pixel<TypeParam>> source(3, 2);
    const ChannelBuf<TypeParam> destination(5, 4);
    const ChannelBuf<TypeParam> before(5, 4);
    FillRandom(source, this->random);
    FillRandom(destination, this->random);
    before.load(destination, PILib::kAlignTopLeft);
    ExtractChannel(this->context, destination, source, PILib::kChannelGreen);
    EXPECT_TRUE(ElementsAre(destination, [&](int x, int y) {
        return x < 3 && y < 2 ? Extracted(source.row(y)[x], 2) : before.row(y)[x];
    }));
}

TYPED_TEST(ExtractChannelTypedTest, DestinationThatDoesNotCoverFailsItsAssertionAndIsLeftAlone) {
    const SimplePixelBuffer<Pixel<TypeParam>> source(5, 4);
    FillRandom(source, this->random);
    for (const auto& [width, height] : {std::pair{4, 4}, {5, 3}, {0, 0}}) {
        const ChannelBuf<TypeParam> destination(width, height);
        FillRandom(destination, this->random);
        const auto before = ElementsOf(destination);
        for (int id = 0; id <= 6; ++id) {
            EXPECT_TRUE(FailsAssertion(
                kFile, 1,
                [&] { ExtractChannel(this->context, destination, source, static_cast<ChannelID>(id)); }))
                << "channel " << id;
        }
        EXPECT_EQ(before, ElementsOf(destination));
    }
}

TYPED_TEST(ExtractChannelTypedTest, ReservedAndUnknownChannelsFailTheirAssertions) {
    const SimplePixelBuffer<Pixel<TypeParam>> source(2, 2);
    const ChannelBuf<TypeParam> destination(2, 2);
    FillRandom(destination, this->random);
    const auto before = ElementsOf(destination);
    for (const auto& [id, line] : {std::pair{7, 273}, {8, 279}, {9, 284}, {1000, 284}, {-1, 284}}) {
        const auto channel = static_cast<ChannelID>(id);
        EXPECT_TRUE(
            FailsAssertion(kFile, line, [&] { ExtractChannel(this->context, destination, source, channel); }))
            << "channel " << id;
    }
    EXPECT_EQ(before, ElementsOf(destination));
}

TYPED_TEST(ExtractChannelTypedTest, DestinationOfAnotherDepthIsBadCast) {
    using Other = std::conditional_t<std::is_same_v<TypeParam, Channel8>, Channel15, Channel8>;
    const SimplePixelBuffer<Pixel<TypeParam>> source(2, 2);
    const ChannelBuf<Other> destination(2, 2);
    const ChannelBuf<Channel16> other(2, 2);
    EXPECT_THROW(ExtractChannel(this->context, destination, source, PILib::kChannelRed), std::bad_cast);
    EXPECT_THROW(ExtractChannel(this->context, other, source, PILib::kChannelRed), std::bad_cast);
}

TYPED_TEST(ExtractChannelTypedTest, TheContextIsNotConsulted) {
    const SimplePixelBuffer<Pixel<TypeParam>> source(2, 2);
    const ChannelBuf<TypeParam> destination(2, 2);
    source.clear();
    ExtractChannel(this->context, destination, source, PILib::kChannelLuma);
    EXPECT_EQ(0, this->context.abortChecks);
    EXPECT_EQ(0, this->context.lastIterations);
    EXPECT_TRUE(this->context.progressCalls.empty());
}

TEST(ExtractChannelTest, SourceOfAnotherDepthFailsItsAssertion) {
    FakeContext context;
    const ChannelBuf<Channel16> destination(1, 1);
    const auto expectFailure = [&](const PILib::PixelBuffer& source) {
        EXPECT_TRUE(FailsAssertion(kFile, 588,
                                   [&] { ExtractChannel(context, destination, source, PILib::kChannelRed); }))
            << "key " << source.elementKey();
    };
    expectFailure(SimplePixelBuffer<Pixel<Channel16>>(1, 1));
    expectFailure(SimplePixelBuffer<Pixel<Channel32>>(1, 1));
    expectFailure(SimplePixelBuffer<Pixel<Channel32f>>(1, 1));
    expectFailure(Disguised<SimplePixelBuffer<Pixel<Channel8>>, 0>(1, 1));
    expectFailure(Disguised<SimplePixelBuffer<Pixel<Channel8>>, 10>(1, 1));
}

TEST(ExtractChannelTest, SourceWhoseClassDoesNotMatchItsKeyIsBadCast) {
    FakeContext context;
    const Disguised<SimplePixelBuffer<Pixel<Channel8>>, 6> source(1, 1);
    const ChannelBuf<Channel15> destination(1, 1);
    EXPECT_THROW(ExtractChannel(context, destination, source, PILib::kChannelRed), std::bad_cast);
}

TEST(ExtractChannelTest, RedTimesAlphaIsRoundedForAll8BitPairs) {
    FakeContext context;
    const SimplePixelBuffer<Pixel<Channel8>> source(256, 256);
    const ChannelBuf<Channel8> destination(256, 256);
    for (int red = 0; red < 256; ++red) {
        for (int alpha = 0; alpha < 256; ++alpha) {
            source.row(red)[alpha] = {static_cast<std::uint8_t>(alpha), static_cast<std::uint8_t>(red), 0, 0};
        }
    }
    ExtractChannel(context, destination, source, PILib::kChannelRed);
    EXPECT_TRUE(ElementsAre(destination, [](int alpha, int red) { return (2 * red * alpha + 255) / 510; }));
}

template <class C>
int Channel(const Pixel<C>& pixel, ChannelID id) {
    FakeContext context;
    const SimplePixelBuffer<Pixel<C>> source(1, 1);
    const ChannelBuf<C> destination(1, 1);
    source.row(0)[0] = pixel;
    ExtractChannel(context, destination, source, id);
    return destination.row(0)[0];
}

TEST(ExtractChannelTest, KnownPixels) {
    const Pixel<Channel8> red(255, 255, 0, 0);
    EXPECT_EQ(76, Channel(red, PILib::kChannelLuma));
    EXPECT_EQ(127, Channel(red, PILib::kChannelLightness));
    EXPECT_EQ(255, Channel(red, PILib::kChannelBrightness));
    EXPECT_EQ(255, Channel(red, PILib::kChannelRed));
    const Pixel<Channel8> halfGrey(128, 200, 200, 200);
    EXPECT_EQ(100, Channel(halfGrey, PILib::kChannelRed));
    EXPECT_EQ(100, Channel(halfGrey, PILib::kChannelLuma));
    EXPECT_EQ(128, Channel(halfGrey, PILib::kChannelAlpha));
    EXPECT_EQ(32768, Channel(Pixel<Channel15>(32768, 32768, 0, 0), PILib::kChannelRed));
    EXPECT_EQ(16384, Channel(Pixel<Channel15>(16384, 32768, 0, 0), PILib::kChannelRed));
    EXPECT_EQ(32768, Channel(Pixel<Channel15>(32768, 32768, 32768, 32768), PILib::kChannelLuma));
}

}  // namespace

// Transposing, and the moves between pixels, channels and single colours.
#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <type_traits>
#include <typeinfo>
#include <utility>

#include "Buffers.h"
#include "ChannelTypes.h"
#include "ExpectAssertion.h"
#include "FrameBuffer.h"

namespace {

using PILib::Channel15;
using PILib::Channel16;
using PILib::Channel32f;
using PILib::Channel8;
using PILib::ChannelBuf;
using PILib::ChannelBuffer;
using PILib::Pixel;
using PILib::PixelBuffer;
using PILib::SimplePixelBuffer;

constexpr char kFile[] = "PILib/PILib Source/FrameBuffer";
constexpr int kSourceTooSmall = 3;

constexpr std::pair<int, int> kSizes[] = {{0, 0}, {1, 1}, {7, 1}, {1, 6}, {5, 4}, {4, 5}, {0, 3}, {3, 0}};

template <class C>
struct FrameBufferTransferTypedTest : testing::Test {
    using P = Pixel<C>;
    using Type = typename C::Type;

    std::mt19937 random{7};

    // Runs check(pixels, channel) for every size: noise of one size, pixels in padded rows.
    template <class Check>
    void forEachSize(Check check) {
        for (const auto& [width, height] : kSizes) {
            SCOPED_TRACE(testing::Message() << width << " x " << height);
            const PaddedPixelBuffer<P> pixels(width, height, 16);
            const ChannelBuf<C> channel(width, height);
            FillRandom(pixels, random);
            FillRandom(channel, random);
            FillGaps(channel);
            check(pixels, channel);
            EXPECT_TRUE(pixels.guardsIntact());
            EXPECT_TRUE(GapsIntact(channel));
        }
    }
};

TYPED_TEST_SUITE(FrameBufferTransferTypedTest, AllChannels, ChannelNames);

template <class Buffer>
void ExpectTransposes(const Buffer& source, const Buffer& turned, const Buffer& back) {
    turned.transpose(source);
    EXPECT_TRUE(ElementsAre(turned, [&](int x, int y) { return source.row(x)[y]; }));
    back.transpose(turned);
    EXPECT_TRUE(SameElements(source, back)) << "transposed twice";
}

TYPED_TEST(FrameBufferTransferTypedTest, TransposeTurnsRowsIntoColumns) {
    this->forEachSize([](const auto& pixels, const auto& channel) {
        using Channels = ChannelBuf<TypeParam>;
        using Pixels = PaddedPixelBuffer<Pixel<TypeParam>>;
        const int width = channel.width;
        const int height = channel.height;
        ExpectTransposes(channel, Channels(height, width), Channels(width, height));
        ExpectTransposes(pixels, Pixels(height, width, 32), Pixels(width, height, 0));
    });
}

TYPED_TEST(FrameBufferTransferTypedTest, TransposeTakesTheCornerOfALargerSource) {
    const ChannelBuf<TypeParam> source(6, 5);
    const ChannelBuf<TypeParam> destination(3, 2);
    FillRandom(source, this->random);
    destination.transpose(source);
    EXPECT_TRUE(ElementsAre(destination, [&](int x, int y) { return source.row(x)[y]; }));
}

TYPED_TEST(FrameBufferTransferTypedTest, TransposeInPlaceChangesNothing) {
    this->forEachSize([](const auto& pixels, const auto& channel) {
        const auto pixelsBefore = ElementsOf(pixels);
        const auto channelBefore = ElementsOf(channel);
        pixels.transpose(pixels);
        channel.transpose(channel);
        EXPECT_EQ(pixelsBefore, ElementsOf(pixels));
        EXPECT_EQ(channelBefore, ElementsOf(channel));
    });
}

TYPED_TEST(FrameBufferTransferTypedTest, TransposeOfAnotherClassFailsItsAssertion) {
    using Other = std::conditional_t<std::is_same_v<TypeParam, Channel8>, Channel15, Channel8>;
    const SimplePixelBuffer<Pixel<TypeParam>> pixels(3, 3);
    const ChannelBuf<TypeParam> channel(3, 3);
    const SimplePixelBuffer<Pixel<Other>> otherPixels(3, 3);
    const ChannelBuf<Other> otherChannel(3, 3);
    pixels.clear();
    channel.clear();
    EXPECT_TRUE(FailsAssertion(kFile, 1068, [&] { pixels.transpose(channel); }));
    EXPECT_TRUE(FailsAssertion(kFile, 1068, [&] { pixels.transpose(otherPixels); }));
    EXPECT_TRUE(FailsAssertion(kFile, 857, [&] { channel.transpose(pixels); }));
    EXPECT_TRUE(FailsAssertion(kFile, 857, [&] { channel.transpose(otherChannel); }));
    EXPECT_TRUE(ElementsAre(pixels, [](int, int) { return Pixel<TypeParam>(0, 0, 0, 0); }));
}

TYPED_TEST(FrameBufferTransferTypedTest, LoadAlphaReplacesAlphaAndKeepsColours) {
    using P = Pixel<TypeParam>;
    this->forEachSize([](const auto& pixels, const ChannelBuffer& channel) {
        const auto& typed = dynamic_cast<const ChannelBuf<TypeParam>&>(channel);
        const SimplePixelBuffer<P> before(pixels.width, pixels.height);
        before.load(pixels, PILib::kAlignTopLeft);
        pixels.loadAlpha(channel);
        EXPECT_TRUE(ElementsAre(pixels, [&](int x, int y) {
            P p = before.row(y)[x];
            p.alpha = typed.row(y)[x];
            return p;
        }));
    });
}

TYPED_TEST(FrameBufferTransferTypedTest, LoadARGBMakesAnOpaqueGrey) {
    using P = Pixel<TypeParam>;
    this->forEachSize([](const auto& pixels, const auto& channel) {
        pixels.loadARGB(static_cast<const ChannelBuffer&>(channel));
        EXPECT_TRUE(ElementsAre(pixels, [&](int x, int y) {
            const auto value = channel.row(y)[x];
            return P(kFullOf<TypeParam>, value, value, value);
        }));
    });
}

TYPED_TEST(FrameBufferTransferTypedTest, MultiplyAlphaScalesAlphaAndKeepsColours) {
    using C = TypeParam;
    this->forEachSize([](const auto& pixels, const auto& channel) {
        const SimplePixelBuffer<Pixel<C>> before(pixels.width, pixels.height);
        before.load(pixels, PILib::kAlignTopLeft);
        pixels.multiplyAlpha(static_cast<const ChannelBuffer&>(channel));
        EXPECT_TRUE(ElementsAre(pixels, [&](int x, int y) {
            Pixel<C> p = before.row(y)[x];
            p.alpha = static_cast<typename C::Type>(C::mul(p.alpha, channel.row(y)[x]));
            return p;
        }));
    });
}

TYPED_TEST(FrameBufferTransferTypedTest, LoadChansCopiesTheSelectedComponentsOnly) {
    using P = Pixel<TypeParam>;
    const SimplePixelBuffer<P> source(3, 2);
    const SimplePixelBuffer<P> before(3, 2);
    FillRandom(source, this->random, AlphaMode::kAny);
    FillRandom(before, this->random, AlphaMode::kAny);
    for (int selector = 0; selector < 16; ++selector) {
        const PaddedPixelBuffer<P> pixels(3, 2, 16);
        pixels.load(before, PILib::kAlignTopLeft);
        pixels.loadChans(static_cast<const PixelBuffer&>(source), selector);
        EXPECT_TRUE(ElementsAre(pixels,
                                [&](int x, int y) {
                                    const P in = source.row(y)[x];
                                    const P old = before.row(y)[x];
                                    return P((selector & 1) != 0 ? in.alpha : old.alpha,
                                             (selector & 2) != 0 ? in.red : old.red,
                                             (selector & 4) != 0 ? in.green : old.green,
                                             (selector & 8) != 0 ? in.blue : old.blue);
                                }))
            << "selector " << selector;
        EXPECT_TRUE(pixels.guardsIntact());
    }
}

TYPED_TEST(FrameBufferTransferTypedTest, GetAlphaIsAChannelOfTheSameDepthAndSize) {
    this->forEachSize([](const auto& pixels, const auto&) {
        const std::unique_ptr<ChannelBuffer> alpha(pixels.getAlpha());
        const auto& typed = dynamic_cast<const ChannelBuf<TypeParam>&>(*alpha);
        ASSERT_EQ(pixels.width, typed.width);
        ASSERT_EQ(pixels.height, typed.height);
        EXPECT_EQ(0, typed.rowBytes % 4);
        EXPECT_TRUE(ElementsAre(typed, [&](int x, int y) { return pixels.row(y)[x].alpha; }));
    });
}

TYPED_TEST(FrameBufferTransferTypedTest, ChannelLoadAlphaTakesTheAlphaPlane) {
    this->forEachSize([](const PixelBuffer& pixels, const auto& channel) {
        const auto& typed = dynamic_cast<const PaddedPixelBuffer<Pixel<TypeParam>>&>(pixels);
        channel.loadAlpha(pixels);
        EXPECT_TRUE(ElementsAre(channel, [&](int x, int y) { return typed.row(y)[x].alpha; }));
    });
}

// Calls each operation that reads a source of the destination's extent.
template <class C, class Check>
void ForEachReader(const SimplePixelBuffer<Pixel<C>>& pixels, const ChannelBuf<C>& channel,
                   const SimplePixelBuffer<Pixel<C>>& otherPixels, Check check) {
    check("loadAlpha", [&] { pixels.loadAlpha(channel); });
    check("loadARGB", [&] { pixels.loadARGB(channel); });
    check("multiplyAlpha", [&] { pixels.multiplyAlpha(channel); });
    check("loadChans", [&] { pixels.loadChans(otherPixels, 15); });
    check("transpose", [&] { pixels.transpose(otherPixels); });
}

TYPED_TEST(FrameBufferTransferTypedTest, SourceSmallerThanTheDestinationFailsItsAssertionAndWritesNothing) {
    using P = Pixel<TypeParam>;
    const SimplePixelBuffer<P> pixels(4, 4);
    const ChannelBuf<TypeParam> channel(4, 4);
    FillRandom(pixels, this->random);
    FillRandom(channel, this->random);
    const auto before = ElementsOf(pixels);
    for (const auto& [width, height] : {std::pair{3, 4}, {4, 3}, {0, 0}}) {
        const ChannelBuf<TypeParam> smallChannel(width, height);
        const SimplePixelBuffer<P> smallPixels(width, height);
        ForEachReader<TypeParam>(pixels, smallChannel, smallPixels, [&](const char* name, auto action) {
            EXPECT_TRUE(FailsAssertion(kFile, kSourceTooSmall, action)) << name;
        });
        const ChannelBuf<TypeParam> turned(4, 4);
        EXPECT_TRUE(FailsAssertion(kFile, kSourceTooSmall, [&] { turned.transpose(smallChannel); }));
    }
    EXPECT_EQ(before, ElementsOf(pixels));
}

TYPED_TEST(FrameBufferTransferTypedTest, SourceMayBeLargerThanTheDestination) {
    const SimplePixelBuffer<Pixel<TypeParam>> pixels(4, 4);
    const ChannelBuf<TypeParam> largeChannel(5, 6);
    const SimplePixelBuffer<Pixel<TypeParam>> largePixels(6, 5);
    FillRandom(pixels, this->random);
    FillRandom(largeChannel, this->random);
    FillRandom(largePixels, this->random);
    ForEachReader<TypeParam>(pixels, largeChannel, largePixels,
                             [](const char* name, auto action) { EXPECT_NO_THROW(action()) << name; });
}

TYPED_TEST(FrameBufferTransferTypedTest, GenericOperandOfAnotherDepthIsBadCastAndWritesNothing) {
    using Other = std::conditional_t<std::is_same_v<TypeParam, Channel16>, Channel15, Channel16>;
    const SimplePixelBuffer<Pixel<TypeParam>> pixels(3, 2);
    FillRandom(pixels, this->random);
    const auto before = ElementsOf(pixels);
    const ChannelBuf<Other> channel(3, 2);
    const ChannelBuffer& generic = channel;
    const SimplePixelBuffer<Pixel<Other>> others(3, 2);
    const PixelBuffer& genericPixels = others;
    EXPECT_THROW(pixels.loadAlpha(generic), std::bad_cast);
    EXPECT_THROW(pixels.loadARGB(generic), std::bad_cast);
    EXPECT_THROW(pixels.multiplyAlpha(generic), std::bad_cast);
    EXPECT_THROW(pixels.loadChans(genericPixels, 15), std::bad_cast);
    EXPECT_EQ(before, ElementsOf(pixels));
}

TYPED_TEST(FrameBufferTransferTypedTest, ChannelLoadAlphaOfAnotherDepthFailsItsAssertion) {
    using Other = std::conditional_t<std::is_same_v<TypeParam, Channel15>, Channel8, Channel15>;
    const ChannelBuf<TypeParam> channel(3, 2);
    FillRandom(channel, this->random);
    const auto before = ElementsOf(channel);
    const SimplePixelBuffer<Pixel<Other>> pixels(3, 2);
    const PixelBuffer& generic = pixels;
    EXPECT_TRUE(FailsAssertion(kFile, 873, [&] { channel.loadAlpha(generic); }));
    EXPECT_EQ(before, ElementsOf(channel));
}

template <class C>
class ChannelLoadAlphaTypedTest : public testing::Test {};

using IntegerChannels = testing::Types<Channel8, Channel15, Channel16, PILib::Channel32>;
TYPED_TEST_SUITE(ChannelLoadAlphaTypedTest, IntegerChannels, ChannelNames);

TYPED_TEST(ChannelLoadAlphaTypedTest, AnotherSizeFailsItsAssertionAndWritesNothing) {
    std::mt19937 random(8);
    const ChannelBuf<TypeParam> channel(3, 2);
    FillRandom(channel, random);
    const auto before = ElementsOf(channel);
    for (const auto& [width, height] : {std::pair{2, 2}, {4, 2}, {3, 1}, {3, 3}, {2, 3}}) {
        const SimplePixelBuffer<Pixel<TypeParam>> pixels(width, height);
        EXPECT_TRUE(FailsAssertion(kFile, 881, [&] { channel.loadAlpha(pixels); }))
            << width << " x " << height;
    }
    EXPECT_EQ(before, ElementsOf(channel));
}

TEST(FrameBufferTransferTest, FloatLoadAlphaComparesHeightsOnly) {
    std::mt19937 random(9);
    const ChannelBuf<Channel32f> channel(3, 2);
    const SimplePixelBuffer<Pixel<Channel32f>> wider(5, 2);
    FillRandom(channel, random);
    FillRandom(wider, random);
    channel.loadAlpha(wider);
    EXPECT_TRUE(ElementsAre(channel, [&](int x, int y) { return wider.row(y)[x].alpha; }));

    const auto before = ElementsOf(channel);
    for (const int height : {1, 3}) {
        const SimplePixelBuffer<Pixel<Channel32f>> pixels(3, height);
        EXPECT_TRUE(FailsAssertion(kFile, 112, [&] { channel.loadAlpha(pixels); })) << height;
    }
    const SimplePixelBuffer<Pixel<Channel32f>> narrower(2, 2);
    EXPECT_TRUE(FailsAssertion(kFile, kSourceTooSmall, [&] { channel.loadAlpha(narrower); }));
    EXPECT_EQ(before, ElementsOf(channel));
}

// One pixel's alpha after multiplyAlpha.
template <class C>
int MultipliedAlpha(int alpha, int mask) {
    const SimplePixelBuffer<Pixel<C>> pixels(1, 1);
    const ChannelBuf<C> channel(1, 1);
    pixels.row(0)[0] = Pixel<C>(static_cast<typename C::Type>(alpha), 9, 8, 7);
    channel.row(0)[0] = static_cast<typename C::Type>(mask);
    pixels.multiplyAlpha(channel);
    return pixels.row(0)[0].alpha;
}

TEST(FrameBufferTransferTest, MultiplyAlphaRoundsAt8BitsAndTruncatesAt15) {
    EXPECT_EQ(128, MultipliedAlpha<Channel8>(255, 128));
    EXPECT_EQ(200, MultipliedAlpha<Channel8>(200, 255));
    EXPECT_EQ(0, MultipliedAlpha<Channel8>(200, 0));
    EXPECT_EQ(1, MultipliedAlpha<Channel8>(1, 128)) << "128 / 255 rounds up";
    EXPECT_EQ(16384, MultipliedAlpha<Channel15>(32768, 16384));
    EXPECT_EQ(32768, MultipliedAlpha<Channel15>(32768, 32768));
    EXPECT_EQ(0, MultipliedAlpha<Channel15>(1, 32767)) << "truncated";
}

TEST(FrameBufferTransferTest, ChannelValue77BecomesAnOpaqueGreyOf77) {
    const SimplePixelBuffer<Pixel<Channel8>> pixels(1, 1);
    const ChannelBuf<Channel8> channel(1, 1);
    channel.row(0)[0] = 77;
    pixels.loadARGB(channel);
    EXPECT_EQ((Pixel<Channel8>(255, 77, 77, 77)), pixels.row(0)[0]);
}

TEST(FrameBufferTransferTest, Selector6CopiesRedAndGreen) {
    const SimplePixelBuffer<Pixel<Channel8>> pixels(1, 1);
    const SimplePixelBuffer<Pixel<Channel8>> source(1, 1);
    pixels.row(0)[0] = {1, 2, 3, 4};
    source.row(0)[0] = {10, 20, 30, 40};
    pixels.loadChans(source, PILib::kSelectRed | PILib::kSelectGreen);
    EXPECT_EQ((Pixel<Channel8>(1, 20, 30, 4)), pixels.row(0)[0]);
    EXPECT_EQ(6, PILib::kSelectRed | PILib::kSelectGreen);
    EXPECT_EQ(9, PILib::kSelectAlpha | PILib::kSelectBlue);
}

TEST(FrameBufferTransferTest, PixelReadAsFloatIsWidenedByComponent) {
    const PaddedPixelBuffer<Pixel<Channel15>> pixels15(3, 2, 8);
    pixels15.clear();
    pixels15.row(1)[2] = {32768, 16384, 8192, 0};
    EXPECT_EQ((Pixel<Channel32f>(1.0F, 0.5F, 0.25F, 0.0F)), pixels15.getPixel32f(2, 1));
    const SimplePixelBuffer<Pixel<Channel8>> pixels8(1, 1);
    pixels8.row(0)[0] = {255, 128, 1, 0};
    EXPECT_EQ((Pixel<Channel32f>(Pixel<Channel8>(255, 128, 1, 0))), pixels8.getPixel32f(0, 0));
    EXPECT_EQ(1.0F, pixels8.getPixel32f(0, 0).alpha);
}

}  // namespace

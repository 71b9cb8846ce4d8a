// Copying one buffer into another at an offset or with an alignment.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <random>
#include <typeinfo>
#include <vector>

#include "Buffers.h"
#include "ChannelTypes.h"
#include "ExpectAssertion.h"
#include "FrameBuffer.h"

namespace {

using PILib::Alignment;
using PILib::Channel15;
using PILib::Channel16;
using PILib::Channel8;
using PILib::ChannelBuf;
using PILib::FrameBuf;
using PILib::kAlignCenter;
using PILib::kAlignTopLeft;
using PILib::Pixel;
using PILib::SimplePixelBuffer;
using PILib::TPoint;

constexpr char kFile[] = "PILib/PILib Source/FrameBuffer";

// Element (x, y) of the destination after a load, by definition.
template <class T>
typename FrameBuf<T>::Element Loaded(const FrameBuf<T>& source, TPoint<int> offset, int x, int y) {
    const std::int64_t sourceX = std::int64_t{x} - offset.x;
    const std::int64_t sourceY = std::int64_t{y} - offset.y;
    if (sourceX < 0 || sourceX >= source.width || sourceY < 0 || sourceY >= source.height) return {};
    return source.row(static_cast<int>(sourceY))[static_cast<int>(sourceX)];
}

template <class T>
testing::AssertionResult IsLoaded(const FrameBuf<T>& actual, const FrameBuf<T>& source, TPoint<int> offset) {
    const auto elements = ElementsAre(actual, [&](int x, int y) { return Loaded(source, offset, x, y); });
    if (elements) return GapsIntact(actual);
    return testing::AssertionFailure() << source.width << " x " << source.height << " at (" << offset.x
                                       << ", " << offset.y << "): " << elements.message();
}

// Source element n is n + 1, so that none is zero and all differ.
void FillCounting(const ChannelBuf<Channel15>& buffer) {
    for (int y = 0; y < buffer.height; ++y) {
        for (int x = 0; x < buffer.width; ++x)
            buffer.row(y)[x] = static_cast<std::uint16_t>(y * buffer.width + x + 1);
    }
}

template <class C>
class FrameBufferLoadTypedTest : public testing::Test {
protected:
    std::mt19937 random{1};
};

TYPED_TEST_SUITE(FrameBufferLoadTypedTest, AllChannels, ChannelNames);

TYPED_TEST(FrameBufferLoadTypedTest, ChannelsAtAnyOffsetEqualTheDefinition) {
    for (int run = 0; run < 400; ++run) {
        const auto upTo = [&](std::uint32_t n) { return static_cast<int>(this->random() % (n + 1)); };
        const ChannelBuf<TypeParam> source(upTo(9), upTo(9));
        const ChannelBuf<TypeParam> destination(upTo(9), upTo(9));
        FillRandom(source, this->random, AlphaMode::kAny);
        FillRandom(destination, this->random, AlphaMode::kAny);
        FillGaps(destination);
        const TPoint<int> offset{upTo(24) - 12, upTo(24) - 12};
        destination.load(source, offset);
        ASSERT_TRUE(IsLoaded(destination, source, offset));
    }
}

TYPED_TEST(FrameBufferLoadTypedTest, PixelsAtAnyOffsetEqualTheDefinitionWithinPaddedRows) {
    using P = Pixel<TypeParam>;
    for (int run = 0; run < 400; ++run) {
        const auto upTo = [&](std::uint32_t n) { return static_cast<int>(this->random() % (n + 1)); };
        const PaddedPixelBuffer<P> source(upTo(9), upTo(9), 16 * upTo(2));
        const PaddedPixelBuffer<P> destination(upTo(9), upTo(9), 16 * upTo(2));
        FillRandom(source, this->random);
        FillRandom(destination, this->random, AlphaMode::kFull);
        const TPoint<int> offset{upTo(24) - 12, upTo(24) - 12};
        destination.load(source, offset);
        ASSERT_TRUE(IsLoaded(destination, source, offset));
        ASSERT_TRUE(destination.guardsIntact());
        ASSERT_TRUE(source.guardsIntact());
    }
}

TYPED_TEST(FrameBufferLoadTypedTest, BothAlignmentsEqualTheDefinitionForAllSmallSizes) {
    for (int width = 0; width <= 6; ++width) {
        for (int sourceWidth = 0; sourceWidth <= 6; ++sourceWidth) {
            // Heights run against the widths, so that both larger and smaller ones meet.
            const ChannelBuf<TypeParam> source(sourceWidth, 7 - width);
            const ChannelBuf<TypeParam> destination(width, 7 - sourceWidth);
            FillRandom(source, this->random, AlphaMode::kAny);
            FillGaps(destination);
            destination.load(source, kAlignTopLeft);
            ASSERT_TRUE(IsLoaded(destination, source, {0, 0}));
            destination.load(source, kAlignCenter);
            const TPoint<int> centred{(width - sourceWidth) / 2, (width - sourceWidth) / 2};
            ASSERT_TRUE(IsLoaded(destination, source, centred));
        }
    }
}

TEST(FrameBufferLoadTest, CentredSpansAreNotShortenedByTheirOffset) {
    std::mt19937 random(1);
    for (int width = 1; width <= 12; ++width) {
        for (int sourceWidth = 1; sourceWidth <= 12; ++sourceWidth) {
            const ChannelBuf<Channel15> source(sourceWidth, 1);
            const ChannelBuf<Channel15> destination(width, 1);
            FillCounting(source);
            FillRandom(destination, random, AlphaMode::kFull);
            destination.load(source, kAlignCenter);

            const int first = std::max((width - sourceWidth) / 2, 0);
            const int sourceFirst = std::max((sourceWidth - width) / 2, 0);
            const int count = std::min(width, sourceWidth);
            EXPECT_TRUE(ElementsAre(destination,
                                    [&](int x, int) -> std::uint16_t {
                                        if (x < first || x >= first + count) return 0;
                                        return static_cast<std::uint16_t>(sourceFirst + x - first + 1);
                                    }))
                << sourceWidth << " into " << width;
        }
    }
}

TEST(FrameBufferLoadTest, SmallerSourceIsCentredBetweenZeroes) {
    const SimplePixelBuffer<Pixel<Channel8>> source(4, 4);
    const SimplePixelBuffer<Pixel<Channel8>> destination(8, 8);
    std::mt19937 random(2);
    FillRandom(source, random, AlphaMode::kFull);
    FillRandom(destination, random, AlphaMode::kFull);
    destination.load(source, kAlignCenter);
    EXPECT_TRUE(ElementsAre(destination, [&](int x, int y) {
        const bool covered = x >= 2 && x < 6 && y >= 2 && y < 6;
        return covered ? source.row(y - 2)[x - 2] : Pixel<Channel8>(0, 0, 0, 0);
    }));
}

TEST(FrameBufferLoadTest, LargerSourceIsCroppedFromColumnAndRowTwo) {
    const ChannelBuf<Channel15> source(9, 9);
    const ChannelBuf<Channel15> destination(4, 4);
    FillCounting(source);
    destination.load(source, kAlignCenter);
    EXPECT_TRUE(ElementsAre(destination, [&](int x, int y) { return source.row(y + 2)[x + 2]; }));
}

TEST(FrameBufferLoadTest, OddDifferenceLeavesItsExtraColumnAndRowRightAndBelow) {
    const ChannelBuf<Channel15> source(2, 2);
    const ChannelBuf<Channel15> destination(5, 5);
    FillCounting(source);
    destination.load(source, kAlignCenter);
    EXPECT_EQ((std::vector<std::uint16_t>{0, 0, 0, 0, 0,  //
                                          0, 1, 2, 0, 0,  //
                                          0, 3, 4, 0, 0,  //
                                          0, 0, 0, 0, 0,  //
                                          0, 0, 0, 0, 0}),
              ElementsOf(destination));
}

TEST(FrameBufferLoadTest, OffsetsBeyondEveryEdgeLeaveZeroes) {
    constexpr int kFar = std::numeric_limits<int>::max();
    const ChannelBuf<Channel8> source(5, 4);
    const ChannelBuf<Channel8> destination(3, 4);
    std::mt19937 random(3);
    FillRandom(source, random, AlphaMode::kAny);
    for (const int dx : {-kFar - 1, -kFar, -5, -4, 0, 2, 3, kFar}) {
        for (const int dy : {-kFar - 1, -kFar, -4, -3, 0, 3, 4, kFar}) {
            FillRandom(destination, random, AlphaMode::kFull);
            FillGaps(destination);
            destination.load(source, TPoint<int>{dx, dy});
            EXPECT_TRUE(IsLoaded(destination, source, {dx, dy}));
        }
    }
}

TEST(FrameBufferLoadTest, EmptySourceZeroesTheDestination) {
    const ChannelBuf<Channel8> source(0, 0);
    const ChannelBuf<Channel8> destination(3, 2);
    std::mt19937 random(4);
    for (const Alignment align : {kAlignTopLeft, kAlignCenter}) {
        FillRandom(destination, random, AlphaMode::kFull);
        destination.load(source, align);
        EXPECT_EQ(std::vector<std::uint8_t>(6, 0), ElementsOf(destination));
    }
}

TYPED_TEST(FrameBufferLoadTypedTest, LoadingABufferIntoItselfChangesNothing) {
    const ChannelBuf<TypeParam> buffer(5, 4);
    FillRandom(buffer, this->random);
    const auto before = ElementsOf(buffer);
    buffer.load(buffer, TPoint<int>{2, 1});
    buffer.load(buffer, kAlignCenter);
    buffer.load(buffer, static_cast<Alignment>(7));
    EXPECT_EQ(before, ElementsOf(buffer));
}

TYPED_TEST(FrameBufferLoadTypedTest, UnknownAlignmentFailsItsAssertionAndWritesNothing) {
    const ChannelBuf<TypeParam> source(5, 4);
    const ChannelBuf<TypeParam> destination(5, 4);
    FillRandom(source, this->random);
    FillRandom(destination, this->random);
    const auto before = ElementsOf(destination);
    for (const int align : {-1, 2, 1000}) {
        EXPECT_TRUE(FailsAssertion(kFile, 699, [&] {
            destination.load(source, static_cast<Alignment>(align));
        })) << align;
    }
    EXPECT_EQ(before, ElementsOf(destination));
}

TEST(FrameBufferLoadTest, AnotherElementTypeIsBadCastAndWritesNothing) {
    std::mt19937 random(5);
    const SimplePixelBuffer<Pixel<Channel15>> pixels15(3, 2);
    const SimplePixelBuffer<Pixel<Channel8>> pixels8(3, 2);
    const ChannelBuf<Channel15> channel15(3, 2);
    const ChannelBuf<Channel16> channel16(3, 2);
    FillRandom(pixels15, random);
    FillRandom(channel15, random);
    const auto pixelsBefore = ElementsOf(pixels15);
    const auto channelBefore = ElementsOf(channel15);
    for (const Alignment align : {kAlignTopLeft, kAlignCenter}) {
        EXPECT_THROW(pixels15.load(channel15, align), std::bad_cast);
        EXPECT_THROW(pixels15.load(pixels8, align), std::bad_cast);
        EXPECT_THROW(channel15.load(pixels15, align), std::bad_cast);
        EXPECT_THROW(channel15.load(channel16, align), std::bad_cast) << "same storage, another depth";
    }
    EXPECT_THROW(pixels15.load(channel15, TPoint<int>{0, 0}), std::bad_cast);
    EXPECT_EQ(pixelsBefore, ElementsOf(pixels15));
    EXPECT_EQ(channelBefore, ElementsOf(channel15));
}

TEST(FrameBufferLoadTest, AnyClassOfTheSameElementWillDo) {
    std::mt19937 random(6);
    const PaddedPixelBuffer<Pixel<Channel8>> padded(5, 4, 12);
    const SimplePixelBuffer<Pixel<Channel8>> packed(5, 4);
    FillRandom(padded, random);
    packed.load(padded, kAlignTopLeft);
    EXPECT_TRUE(SameElements(padded, packed));
}

}  // namespace

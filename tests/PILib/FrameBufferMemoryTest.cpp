// Sizing, clearing and freeing of buffers.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <limits>
#include <new>
#include <utility>

#include "ArrayAllocations.h"
#include "Buffers.h"
#include "ChannelTypes.h"
#include "ExpectAssertion.h"
#include "FrameBuffer.h"

namespace {

using PILib::Channel15;
using PILib::Channel8;
using PILib::ChannelBuf;
using PILib::FrameBuffer;
using PILib::Pixel;
using PILib::SimplePixelBuffer;

constexpr char kFile[] = "PILib/PILib Source/FrameBuffer";
constexpr int kLargest = std::numeric_limits<int>::max();

template <class C>
class FrameBufferMemoryTest : public testing::Test {
protected:
    long liveBefore = arrays::live;
};

TYPED_TEST_SUITE(FrameBufferMemoryTest, HostChannels, ChannelNames);

TYPED_TEST(FrameBufferMemoryTest, BufferFreesItsMemoryWithItself) {
    {
        const SimplePixelBuffer<Pixel<TypeParam>> pixels(3, 2);
        const ChannelBuf<TypeParam> channel(3, 2);
        EXPECT_EQ(this->liveBefore + 2, arrays::live);
    }
    EXPECT_EQ(this->liveBefore, arrays::live);
}

// Every operation on memory that a buffer of either layout has.
template <class Buffer>
void ExpectResizes(Buffer& buffer) {
    const long live = arrays::live;
    buffer.initialize(7, 5);
    EXPECT_EQ(7, buffer.width);
    EXPECT_EQ(5, buffer.height);
    EXPECT_EQ(7 * buffer.elementSize(), buffer.rowBytes - buffer.rowPadding);
    EXPECT_EQ(static_cast<std::size_t>(buffer.rowBytes) * 5, arrays::lastSize);
    EXPECT_EQ(live, arrays::live) << "the old memory is freed";
    std::memset(buffer.data, 0x77, static_cast<std::size_t>(buffer.rowBytes) * 5);
    buffer.initialize(0, 0);
    EXPECT_EQ(0, buffer.rowBytes);
    EXPECT_EQ(live, arrays::live);
}

TYPED_TEST(FrameBufferMemoryTest, InitializeReplacesTheMemory) {
    SimplePixelBuffer<Pixel<TypeParam>> pixels(3, 2);
    ExpectResizes(pixels);
    ChannelBuf<TypeParam> channel(3, 2);
    ExpectResizes(channel);
}

template <class Buffer>
void ExpectFreedOnce(Buffer& buffer) {
    const long live = arrays::live;
    const int width = buffer.width;
    const int height = buffer.height;
    const int rowBytes = buffer.rowBytes;
    for (int time = 1; time <= 2; ++time) {
        buffer.deallocate();
        EXPECT_EQ(nullptr, buffer.data);
        EXPECT_EQ(live - 1, arrays::live) << "time " << time;
        EXPECT_EQ(width, buffer.width);
        EXPECT_EQ(height, buffer.height);
        EXPECT_EQ(rowBytes, buffer.rowBytes);
    }
    EXPECT_NO_THROW(buffer.clear());
    buffer.allocate();
    EXPECT_NE(nullptr, buffer.data);
    EXPECT_EQ(live, arrays::live);
}

TYPED_TEST(FrameBufferMemoryTest, DeallocateFreesOnceAndKeepsTheSize) {
    SimplePixelBuffer<Pixel<TypeParam>> pixels(3, 2);
    ExpectFreedOnce(pixels);
    ChannelBuf<TypeParam> channel(3, 2);
    ExpectFreedOnce(channel);
}

TYPED_TEST(FrameBufferMemoryTest, AllocatingTwiceFailsItsAssertionAndKeepsTheMemory) {
    SimplePixelBuffer<Pixel<TypeParam>> pixels(3, 2);
    ChannelBuf<TypeParam> channel(3, 2);
    const unsigned char* const pixelData = pixels.data;
    const unsigned char* const channelData = channel.data;
    EXPECT_TRUE(FailsAssertion(kFile, 1598, [&] { pixels.allocate(); }));
    EXPECT_TRUE(FailsAssertion(kFile, 900, [&] { channel.allocate(); }));
    EXPECT_EQ(pixelData, pixels.data);
    EXPECT_EQ(channelData, channel.data);
}

TYPED_TEST(FrameBufferMemoryTest, NegativeSizeFailsItsAssertion) {
    for (const auto& [width, height] : {std::pair{-1, 3}, {3, -1}, {-1, -1}, {-kLargest - 1, 1}}) {
        const int w = width;
        const int h = height;
        EXPECT_TRUE(FailsAssertion(kFile, 2, [&] { SimplePixelBuffer<Pixel<TypeParam>>(w, h); }))
            << w << " x " << h;
        EXPECT_TRUE(FailsAssertion(kFile, 2, [&] { ChannelBuf<TypeParam>(w, h); })) << w << " x " << h;
    }
    EXPECT_EQ(this->liveBefore, arrays::live);
}

TYPED_TEST(FrameBufferMemoryTest, SizeOutOfReachIsBadAlloc) {
    for (const auto& [width, height] :
         {std::pair{kLargest, 1}, {kLargest, 0}, {kLargest, kLargest}, {1 << 20, 1 << 20}, {1, kLargest}}) {
        EXPECT_THROW((SimplePixelBuffer<Pixel<TypeParam>>(width, height)), std::bad_alloc)
            << width << " x " << height;
        EXPECT_THROW((ChannelBuf<TypeParam>(width, height)), std::bad_alloc) << width << " x " << height;
    }
    EXPECT_EQ(this->liveBefore, arrays::live);
}

TYPED_TEST(FrameBufferMemoryTest, WidestRowThatFitsTheStrideIsAskedFor) {
    constexpr int kWidth = (kLargest - 3) / static_cast<int>(sizeof(Pixel<TypeParam>));
    EXPECT_THROW((SimplePixelBuffer<Pixel<TypeParam>>(kWidth, 1)), std::bad_alloc);
    EXPECT_EQ(kWidth * sizeof(Pixel<TypeParam>), arrays::lastSize);
}

TYPED_TEST(FrameBufferMemoryTest, RefusedMemoryLeavesTheSizingConstructor) {
    arrays::refuseNext = true;
    EXPECT_THROW((SimplePixelBuffer<Pixel<TypeParam>>(3, 2)), std::bad_alloc);
    arrays::refuseNext = true;
    EXPECT_THROW((ChannelBuf<TypeParam>(3, 2)), std::bad_alloc);
    EXPECT_EQ(this->liveBefore, arrays::live);
}

TYPED_TEST(FrameBufferMemoryTest, BufferCanBeSizedAgainAfterARefusal) {
    ChannelBuf<TypeParam> channel(3, 2);
    arrays::refuseNext = true;
    EXPECT_THROW(channel.initialize(4, 4), std::bad_alloc);
    EXPECT_EQ(nullptr, channel.data);
    EXPECT_NO_THROW(channel.clear());
    channel.initialize(2, 2);
    EXPECT_NE(nullptr, channel.data);
    EXPECT_EQ(2, channel.width);
}

// Fills all bytes of a buffer, clears it, and looks at every byte.
void ExpectClearsElementsOnly(const FrameBuffer& buffer) {
    const int bytes = buffer.rowBytes * buffer.height;
    std::memset(buffer.data, kGuard, static_cast<std::size_t>(bytes));
    buffer.clear();
    for (int b = 0; b < bytes; ++b) {
        const int inRow = b % buffer.rowBytes;
        ASSERT_EQ(inRow < buffer.rowBytes - buffer.rowPadding ? 0 : kGuard, buffer.data[b])
            << buffer.width << " x " << buffer.height << ", byte " << inRow << " of row "
            << b / buffer.rowBytes;
    }
}

TYPED_TEST(FrameBufferMemoryTest, ClearZeroesElementsAndKeepsPadding) {
    for (const auto& [width, height] :
         {std::pair{5, 3}, {4, 3}, {1, 1}, {1, 6}, {9, 1}, {3, 0}, {0, 3}, {0, 0}}) {
        ExpectClearsElementsOnly(SimplePixelBuffer<Pixel<TypeParam>>(width, height));
        ExpectClearsElementsOnly(ChannelBuf<TypeParam>(width, height));
        const PaddedPixelBuffer<Pixel<TypeParam>> padded(width, height, 8);
        ExpectClearsElementsOnly(padded);
        EXPECT_TRUE(padded.guardsIntact());
    }
}

TEST(FrameBufferTest, ClearOfAFiveWideChannelKeepsBytesFiveToSeven) {
    const ChannelBuf<Channel8> channel(5, 3);
    std::memset(channel.data, 0x5A, 24);
    channel.clear();
    for (int y = 0; y < 3; ++y) {
        const unsigned char expected[] = {0, 0, 0, 0, 0, 0x5A, 0x5A, 0x5A};
        EXPECT_EQ(0, std::memcmp(expected, channel.data + y * 8, 8)) << "row " << y;
    }
}

TEST(FrameBufferTest, EmptyBufferHasMemoryOfItsOwnAndClearIsANoOp) {
    const SimplePixelBuffer<Pixel<Channel8>> buffer(0, 0);
    EXPECT_NE(nullptr, buffer.data);
    EXPECT_EQ(0U, arrays::lastSize);
    EXPECT_NO_THROW(buffer.clear());
}

}  // namespace

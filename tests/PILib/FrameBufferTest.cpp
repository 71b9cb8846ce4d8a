// What a buffer says of its elements, its layout, its factories and its rows.
#include "FrameBuffer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <memory>
#include <type_traits>
#include <typeinfo>
#include <utility>

#include "ArrayAllocations.h"
#include "Buffers.h"
#include "ChannelTypes.h"
#include "ExpectAssertion.h"

namespace {

using PILib::Channel15;
using PILib::Channel16;
using PILib::Channel32;
using PILib::Channel32f;
using PILib::Channel8;
using PILib::ChannelBuf;
using PILib::ChannelBuffer;
using PILib::FrameBuf;
using PILib::FrameBuffer;
using PILib::Pixel;
using PILib::PixelBuf;
using PILib::PixelBuffer;
using PILib::SimplePixelBuffer;

static_assert(std::is_abstract_v<FrameBuffer> && std::is_abstract_v<PixelBuffer>);
static_assert(std::is_abstract_v<ChannelBuffer> && std::is_abstract_v<FrameBuf<Channel8>>);
static_assert(std::is_abstract_v<PixelBuf<Pixel<Channel8>>>, "its memory is for subclasses to supply");
static_assert(!std::is_copy_constructible_v<SimplePixelBuffer<Pixel<Channel8>>>);
static_assert(!std::is_copy_assignable_v<ChannelBuf<Channel8>>);

// A buffer as its constructor of the base leaves it.
struct UnsizedBuffer : PixelBuf<Pixel<Channel8>> {
    void allocate() override {}
    void deallocate() override {}
};

TEST(FrameBufferTest, BufferIsUnsizedAndWithoutMemoryAtFirst) {
    const UnsizedBuffer buffer;
    EXPECT_EQ(-1, buffer.width);
    EXPECT_EQ(-1, buffer.height);
    EXPECT_EQ(nullptr, buffer.data);
    EXPECT_NO_THROW(buffer.clear());
}

TEST(FrameBufferTest, KeysAndElementsOfAllTenBuffers) {
    const ChannelBuf<Channel8> c8(1, 1);
    const ChannelBuf<Channel15> c15(1, 1);
    const ChannelBuf<Channel16> c16(1, 1);
    const ChannelBuf<Channel32> c32(1, 1);
    const ChannelBuf<Channel32f> c32f(1, 1);
    const SimplePixelBuffer<Pixel<Channel8>> p8(1, 1);
    const SimplePixelBuffer<Pixel<Channel15>> p15(1, 1);
    const SimplePixelBuffer<Pixel<Channel16>> p16(1, 1);
    const SimplePixelBuffer<Pixel<Channel32>> p32(1, 1);
    const SimplePixelBuffer<Pixel<Channel32f>> p32f(1, 1);
    const struct {
        const FrameBuffer& buffer;
        int key;
        const std::type_info& type;
        int elementSize, channelSize;
        bool isMultiChannel;
    } kCases[] = {
        {c8, 0, typeid(unsigned char), 1, 1, false},     {c15, 1, typeid(unsigned short), 2, 2, false},
        {c16, 2, typeid(unsigned short), 2, 2, false},   {c32, 3, typeid(int), 4, 4, false},
        {c32f, 4, typeid(float), 4, 4, false},           {p8, 5, typeid(Pixel<Channel8>), 4, 1, true},
        {p15, 6, typeid(Pixel<Channel15>), 8, 2, true},  {p16, 7, typeid(Pixel<Channel16>), 8, 2, true},
        {p32, 8, typeid(Pixel<Channel32>), 16, 4, true}, {p32f, 9, typeid(Pixel<Channel32f>), 16, 4, true},
    };
    for (const auto& c : kCases) {
        EXPECT_EQ(c.key, c.buffer.elementKey());
        EXPECT_TRUE(c.type == c.buffer.elementType()) << "key " << c.key;
        EXPECT_EQ(c.elementSize, c.buffer.elementSize()) << "key " << c.key;
        EXPECT_EQ(c.channelSize, c.buffer.channelSize()) << "key " << c.key;
        EXPECT_EQ(c.isMultiChannel, c.buffer.isMultiChannel()) << "key " << c.key;
    }
}

template <class C>
class FrameBufferTypedTest : public testing::Test {};

TYPED_TEST_SUITE(FrameBufferTypedTest, AllChannels, ChannelNames);

TYPED_TEST(FrameBufferTypedTest, PixelRowsArePacked) {
    for (const auto& [width, height] : {std::pair{0, 0}, {1, 1}, {10, 2}, {1, 7}, {33, 1}, {0, 4}, {4, 0}}) {
        const SimplePixelBuffer<Pixel<TypeParam>> buffer(width, height);
        EXPECT_EQ(width, buffer.width);
        EXPECT_EQ(height, buffer.height);
        EXPECT_EQ(width * static_cast<int>(sizeof(Pixel<TypeParam>)), buffer.rowBytes);
        EXPECT_EQ(0, buffer.rowPadding);
        EXPECT_NE(nullptr, buffer.data);
        EXPECT_EQ(static_cast<std::size_t>(buffer.rowBytes * height), arrays::lastSize);
    }
}

TYPED_TEST(FrameBufferTypedTest, ChannelRowsArePaddedToFourBytes) {
    for (int width = 0; width <= 9; ++width) {
        const ChannelBuf<TypeParam> buffer(width, 3);
        const int used = width * static_cast<int>(sizeof(typename TypeParam::Type));
        const int padding = (4 - used % 4) % 4;
        EXPECT_EQ(used + padding, buffer.rowBytes) << "width " << width;
        EXPECT_EQ(padding, buffer.rowPadding) << "width " << width;
        EXPECT_EQ(static_cast<std::size_t>(buffer.rowBytes) * 3, arrays::lastSize) << "width " << width;
    }
}

TEST(FrameBufferTest, RowLayoutOfKnownSizes) {
    const ChannelBuf<Channel8> c8(5, 3);
    EXPECT_EQ(8, c8.rowBytes);
    EXPECT_EQ(3, c8.rowPadding);
    const ChannelBuf<Channel15> c15(3, 1);
    EXPECT_EQ(8, c15.rowBytes);
    EXPECT_EQ(2, c15.rowPadding);
    const SimplePixelBuffer<Pixel<Channel15>> p15(10, 2);
    EXPECT_EQ(80, p15.rowBytes);
    EXPECT_EQ(0, p15.rowPadding);
}

TYPED_TEST(FrameBufferTypedTest, FactoriesKeepDepthAndLayout) {
    using C = TypeParam;
    const ChannelBuf<C> channel(1, 1);
    const SimplePixelBuffer<Pixel<C>> pixels(1, 1);
    const std::unique_ptr<FrameBuffer> likeChannel(channel.newFrameBuffer(3, 2));
    const std::unique_ptr<FrameBuffer> likePixels(pixels.newFrameBuffer(3, 2));
    const std::unique_ptr<PixelBuffer> morePixels(pixels.newPixelBuffer(3, 2));
    const std::unique_ptr<ChannelBuffer> ofChannel(channel.newChannelBuffer(3, 2));
    const std::unique_ptr<ChannelBuffer> ofPixels(pixels.newChannelBuffer(3, 2));
    EXPECT_NE(nullptr, dynamic_cast<ChannelBuf<C>*>(likeChannel.get()));
    EXPECT_NE(nullptr, dynamic_cast<SimplePixelBuffer<Pixel<C>>*>(likePixels.get()));
    EXPECT_NE(nullptr, dynamic_cast<SimplePixelBuffer<Pixel<C>>*>(morePixels.get()));
    EXPECT_NE(nullptr, dynamic_cast<ChannelBuf<C>*>(ofChannel.get()));
    EXPECT_NE(nullptr, dynamic_cast<ChannelBuf<C>*>(ofPixels.get()));
    for (const FrameBuffer* made :
         {likeChannel.get(), likePixels.get(), static_cast<FrameBuffer*>(morePixels.get()),
          static_cast<FrameBuffer*>(ofChannel.get()), static_cast<FrameBuffer*>(ofPixels.get())}) {
        EXPECT_EQ(3, made->width) << "key " << made->elementKey();
        EXPECT_EQ(2, made->height) << "key " << made->elementKey();
    }
}

TYPED_TEST(FrameBufferTypedTest, ElementStandsAtRowBytesTimesYAndItsSizeTimesX) {
    const ChannelBuf<TypeParam> channel(3, 4);
    const PaddedPixelBuffer<Pixel<TypeParam>> pixels(3, 4, 16);
    for (int y = 0; y < 4; ++y) {
        EXPECT_EQ(3, channel.row(y).size());
        EXPECT_EQ(3, pixels.row(y).size());
        for (int x = 0; x < 3; ++x) {
            EXPECT_EQ(channel.data + y * channel.rowBytes + x * channel.elementSize(),
                      reinterpret_cast<unsigned char*>(&channel.row(y)[x]));
            EXPECT_EQ(pixels.data + y * pixels.rowBytes + x * pixels.elementSize(),
                      reinterpret_cast<unsigned char*>(&pixels.row(y)[x]));
        }
    }
}

TYPED_TEST(FrameBufferTypedTest, ScratchRowHoldsTheLongerSideOfPixelsAndChannelsNeedNone) {
    using P = Pixel<TypeParam>;
    for (const auto& [width, height] : {std::pair{100, 300}, {300, 100}, {1, 1}, {0, 0}}) {
        const SimplePixelBuffer<P> buffer(width, height);
        const std::unique_ptr<unsigned char[]> scratch(buffer.newPremultRowCache());
        EXPECT_NE(nullptr, scratch);
        EXPECT_EQ(static_cast<std::size_t>(std::max(width, height)) * sizeof(P), arrays::lastSize);
    }
    const ChannelBuf<TypeParam> channel(100, 300);
    EXPECT_EQ(nullptr, channel.newPremultRowCache());
}

TEST(FrameBufferTest, ScratchRowOf100By300PixelsOf8BitsHas1200Bytes) {
    const SimplePixelBuffer<Pixel<Channel8>> buffer(100, 300);
    const std::unique_ptr<unsigned char[]> scratch(buffer.newPremultRowCache());
    EXPECT_EQ(1200U, arrays::lastSize);
}

TEST(FrameBufferTest, ScratchRowOfAnUnsizedBufferIsEmpty) {
    const UnsizedBuffer buffer;
    const std::unique_ptr<unsigned char[]> scratch(buffer.newPremultRowCache());
    EXPECT_EQ(0U, arrays::lastSize);
}

#if PILIB_CHECK_BOUNDS

TEST(FrameBufferTest, ElementOutsideItsRowFailsItsAssertion) {
    const ChannelBuf<Channel8> channel(5, 2);
    const SimplePixelBuffer<Pixel<Channel15>> pixels(5, 2);
    for (const int x : {-1, 5, 1000}) {
        EXPECT_TRUE(FailsAssertion("PILib/PILib Source/FrameBuffer", 1, [&] { channel.row(0)[x] = 1; })) << x;
        EXPECT_TRUE(FailsAssertion("PILib/PILib Source/FrameBuffer", 1, [&] { pixels.row(1)[x] = {}; })) << x;
    }
}

TEST(FrameBufferTest, RowOutsideTheBufferFailsItsAssertion) {
    const ChannelBuf<Channel8> channel(5, 2);
    for (const int y : {-1, 2, 1000}) {
        EXPECT_TRUE(FailsAssertion("PILib/PILib Source/FrameBuffer", 1, [&] { channel.row(y); })) << y;
    }
}

#endif

}  // namespace

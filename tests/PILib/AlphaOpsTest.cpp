// Alpha multiplied by another alpha or a mask, and its preview.
#include <gtest/gtest.h>

#include <cstdint>
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
using PILib::MaskAlpha;
using PILib::MultAlphaChannels;
using PILib::Pixel;
using PILib::PreviewAlpha;
using PILib::SimplePixelBuffer;

constexpr char kFile[] = "PILib/PILib Source/FrameBufferOps";

// The product of two alphas as each depth has it.
template <class C>
typename C::Type Product(std::uint64_t x, std::uint64_t a) {
    if (std::is_same_v<C, Channel8>) return static_cast<typename C::Type>((2 * x * a + 255) / 510);
    return static_cast<typename C::Type>(x * a / (std::is_same_v<C, Channel15> ? 32768 : 65536));
}

template <class C>
struct AlphaOpsTypedTest : testing::Test {
    using P = Pixel<C>;

    AlphaOpsTypedTest() {
        FillRandom(pixels, random);
        FillRandom(other, random);
        FillRandom(mask, random);
        before.load(pixels, PILib::kAlignTopLeft);
    }

    // Succeeds if each alpha is the old one times alphaOf(x, y) and the colours are as before.
    template <class AlphaOf>
    testing::AssertionResult isScaled(AlphaOf alphaOf) {
        if (const auto guards = pixels.guardsIntact(); !guards) return guards;
        return ElementsAre(pixels, [&](int x, int y) {
            P p = before.row(y)[x];
            p.alpha = Product<C>(p.alpha, alphaOf(x, y));
            return p;
        });
    }

    std::mt19937 random{71};
    PaddedPixelBuffer<P> pixels{11, 6, 16};
    SimplePixelBuffer<P> before{11, 6};
    SimplePixelBuffer<P> other{11, 6};
    ChannelBuf<C> mask{11, 6};
};

using MaskableChannels = testing::Types<Channel8, Channel15, Channel16>;
TYPED_TEST_SUITE(AlphaOpsTypedTest, MaskableChannels, ChannelNames);

TYPED_TEST(AlphaOpsTypedTest, AlphaIsMultipliedByTheOtherAlpha) {
    MultAlphaChannels(this->pixels, this->other);
    EXPECT_TRUE(this->isScaled([&](int x, int y) { return this->other.row(y)[x].alpha; }));
}

TYPED_TEST(AlphaOpsTypedTest, AlphaIsMultipliedByTheMask) {
    MaskAlpha(this->pixels, this->mask);
    EXPECT_TRUE(this->isScaled([&](int x, int y) { return this->mask.row(y)[x]; }));
}

TYPED_TEST(AlphaOpsTypedTest, AnotherSizeFailsItsAssertionAndWritesNothing) {
    for (const auto& [width, height] : {std::pair{10, 6}, {12, 6}, {11, 5}, {11, 7}}) {
        const SimplePixelBuffer<Pixel<TypeParam>> sizedPixels(width, height);
        const ChannelBuf<TypeParam> sizedMask(width, height);
        EXPECT_TRUE(FailsAssertion(kFile, 159, [&] { MultAlphaChannels(this->pixels, sizedPixels); }));
        EXPECT_TRUE(FailsAssertion(kFile, 140, [&] { MaskAlpha(this->pixels, sizedMask); }));
    }
    EXPECT_TRUE(SameElements(this->before, this->pixels));
}

TYPED_TEST(AlphaOpsTypedTest, EmptyBuffersAreAccepted) {
    const SimplePixelBuffer<Pixel<TypeParam>> empty(0, 0);
    const ChannelBuf<TypeParam> emptyMask(0, 0);
    EXPECT_NO_THROW(MultAlphaChannels(empty, empty));
    EXPECT_NO_THROW(MaskAlpha(empty, emptyMask));
}

// One buffer of each depth.
struct AllDepths {
    SimplePixelBuffer<Pixel<Channel8>> p8{2, 2};
    SimplePixelBuffer<Pixel<Channel15>> p15{2, 2};
    SimplePixelBuffer<Pixel<Channel16>> p16{2, 2};
    SimplePixelBuffer<Pixel<Channel32>> p32{2, 2};
    SimplePixelBuffer<Pixel<Channel32f>> p32f{2, 2};
    ChannelBuf<Channel8> c8{2, 2};
    ChannelBuf<Channel15> c15{2, 2};
    ChannelBuf<Channel16> c16{2, 2};
    ChannelBuf<Channel32> c32{2, 2};
    ChannelBuf<Channel32f> c32f{2, 2};

    const PILib::PixelBuffer* pixels[5] = {&p8, &p15, &p16, &p32, &p32f};
    const PILib::ChannelBuffer* channels[5] = {&c8, &c15, &c16, &c32, &c32f};
};

TEST(MultAlphaChannelsTest, EachPairOfUnlikeDepthsFailsAtTheLineOfTheDestination) {
    const AllDepths depths;
    const int kUnlike[] = {477, 486, 495, 504, 513};
    for (int destination = 0; destination < 5; ++destination) {
        for (int source = 0; source < 5; ++source) {
            if (source == destination) continue;
            EXPECT_TRUE(FailsAssertion(
                kFile, kUnlike[destination],
                [&] { MultAlphaChannels(*depths.pixels[destination], *depths.pixels[source]); }))
                << "depth " << source << " onto " << destination;
        }
    }
}

TEST(MultAlphaChannelsTest, TheTwo32BitDepthsFailTheirAssertions) {
    const AllDepths depths;
    EXPECT_TRUE(FailsAssertion(kFile, 506, [&] { MultAlphaChannels(depths.p32, depths.p32); }));
    EXPECT_TRUE(FailsAssertion(kFile, 515, [&] { MultAlphaChannels(depths.p32f, depths.p32f); }));
}

TEST(MultAlphaChannelsTest, UnknownKeyFailsItsAssertion) {
    const AllDepths depths;
    const Disguised<SimplePixelBuffer<Pixel<Channel8>>, 10> unknown(2, 2);
    EXPECT_TRUE(FailsAssertion(kFile, 521, [&] { MultAlphaChannels(unknown, unknown); }));
    EXPECT_TRUE(FailsAssertion(kFile, 477, [&] { MultAlphaChannels(depths.p8, unknown); }));
}

TEST(MultAlphaChannelsTest, ClassThatDoesNotMatchItsKeyIsBadCast) {
    const AllDepths depths;
    const Disguised<SimplePixelBuffer<Pixel<Channel8>>, 6> disguised(2, 2);
    EXPECT_THROW(MultAlphaChannels(depths.p15, disguised), std::bad_cast);
    EXPECT_THROW(MultAlphaChannels(disguised, depths.p15), std::bad_cast);
}

TEST(MaskAlphaTest, EachForeignMaskFailsAtTheLineOfTheDestination) {
    const AllDepths depths;
    const int kForeign[] = {454, 457, 460};
    for (int destination = 0; destination < 3; ++destination) {
        for (int mask = 0; mask < 5; ++mask) {
            if (mask == destination) continue;
            EXPECT_TRUE(
                FailsAssertion(kFile, kForeign[destination],
                               [&] { MaskAlpha(*depths.pixels[destination], *depths.channels[mask]); }))
                << "mask " << mask << " onto " << destination;
        }
    }
}

TEST(MaskAlphaTest, PixelsWithoutAnIntegerMaskFailTheirAssertion) {
    const AllDepths depths;
    const Disguised<SimplePixelBuffer<Pixel<Channel8>>, 10> unknown(2, 2);
    for (const auto* mask : depths.channels) {
        EXPECT_TRUE(FailsAssertion(kFile, 465, [&] { MaskAlpha(depths.p32, *mask); })) << mask->elementKey();
        EXPECT_TRUE(FailsAssertion(kFile, 465, [&] { MaskAlpha(depths.p32f, *mask); })) << mask->elementKey();
        EXPECT_TRUE(FailsAssertion(kFile, 465, [&] { MaskAlpha(unknown, *mask); })) << mask->elementKey();
    }
}

TEST(MaskAlphaTest, ClassThatDoesNotMatchItsKeyIsBadCast) {
    const AllDepths depths;
    const Disguised<ChannelBuf<Channel8>, 1> mask(2, 2);
    const Disguised<SimplePixelBuffer<Pixel<Channel8>>, 6> pixels(2, 2);
    EXPECT_THROW(MaskAlpha(depths.p15, mask), std::bad_cast);
    EXPECT_THROW(MaskAlpha(pixels, depths.c15), std::bad_cast);
}

template <class C>
struct PreviewAlphaTypedTest : testing::Test {
    using P = Pixel<C>;

    PreviewAlphaTypedTest() {
        std::mt19937 random(72);
        FillRandom(pixels, random);
        before.load(pixels, PILib::kAlignTopLeft);
    }

    P preview(int x, int y) const {
        const auto alpha = before.row(y)[x].alpha;
        return {kFullOf<C>, alpha, alpha, alpha};
    }

    FakeContext context;
    PaddedPixelBuffer<P> pixels{5, 4, 8};
    SimplePixelBuffer<P> before{5, 4};
};

TYPED_TEST_SUITE(PreviewAlphaTypedTest, HostChannels, ChannelNames);

TYPED_TEST(PreviewAlphaTypedTest, PixelsBecomeAnOpaqueGreyOfTheirAlpha) {
    PreviewAlpha(this->context, this->pixels);
    EXPECT_TRUE(ElementsAre(this->pixels, [&](int x, int y) { return this->preview(x, y); }));
    EXPECT_TRUE(this->pixels.guardsIntact());
    EXPECT_EQ(4, this->context.abortChecks) << "one per row";
}

TYPED_TEST(PreviewAlphaTypedTest, RowsBeforeAnAbortStayChanged) {
    this->context.failAtCheckAbort(3, PILib::kUserCancelled);
    try {
        PreviewAlpha(this->context, this->pixels);
        ADD_FAILURE() << "nothing thrown";
    } catch (int code) {
        EXPECT_EQ(517, code);
    }
    EXPECT_TRUE(ElementsAre(
        this->pixels, [&](int x, int y) { return y < 2 ? this->preview(x, y) : this->before.row(y)[x]; }));
}

TEST(PreviewAlphaTest, OtherDepthsFailTheirAssertion) {
    FakeContext context;
    const AllDepths depths;
    for (const auto* pixels : {depths.pixels[2], depths.pixels[3], depths.pixels[4]}) {
        EXPECT_TRUE(FailsAssertion(kFile, 550, [&] { PreviewAlpha(context, *pixels); }))
            << pixels->elementKey();
    }
    EXPECT_EQ(0, context.abortChecks);
}

TEST(PreviewAlphaTest, ClassThatDoesNotMatchItsKeyIsBadCast) {
    FakeContext context;
    const Disguised<SimplePixelBuffer<Pixel<Channel8>>, 6> pixels(1, 1);
    EXPECT_THROW(PreviewAlpha(context, pixels), std::bad_cast);
}

}  // namespace

// Painting and blending.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <random>
#include <type_traits>
#include <typeinfo>
#include <utility>

#include "Buffers.h"
#include "ChannelTypes.h"
#include "ExpectAssertion.h"
#include "FakeContext.h"
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
using PILib::Rect;
using PILib::SimplePixelBuffer;

constexpr char kFile[] = "PILib/PILib Source/FrameBuffer";
constexpr Pixel<Channel32f> kColour(0.5F, 1.0F, 0.25F, 0.0F);

// A padded 7 by 5 buffer of noise, and what it held at first.
template <class C>
struct Canvas {
    using P = Pixel<C>;

    Canvas() {
        std::mt19937 random(41);
        FillRandom(pixels, random);
        before.load(pixels, PILib::kAlignTopLeft);
    }

    // Succeeds if the pixels for which painted(x, y) holds have the colour and the others are as before.
    template <class Painted>
    testing::AssertionResult isPainted(const P& colour, Painted painted) const {
        if (const auto guards = pixels.guardsIntact(); !guards) return guards;
        return ElementsAre(pixels, [&](int x, int y) { return painted(x, y) ? colour : before.row(y)[x]; });
    }

    PaddedPixelBuffer<P> pixels{7, 5, 16};
    SimplePixelBuffer<P> before{7, 5};
};

template <class C>
class FrameBufferPaintTypedTest : public testing::Test {};

TYPED_TEST_SUITE(FrameBufferPaintTypedTest, AllChannels, ChannelNames);

TYPED_TEST(FrameBufferPaintTypedTest, PointSetsOnePixelAndNothingOutside) {
    for (const auto& [x, y] : {std::pair{0, 0},
                               {6, 4},
                               {3, 2},
                               {-1, 0},
                               {0, -1},
                               {7, 0},
                               {0, 5},
                               {7, 5},
                               {std::numeric_limits<int>::max(), std::numeric_limits<int>::min()}}) {
        const Canvas<TypeParam> canvas;
        canvas.pixels.paint(x, y, kColour);
        const int px = x;
        const int py = y;
        EXPECT_TRUE(canvas.isPainted(kColour, [&](int atX, int atY) { return atX == px && atY == py; }))
            << px << ", " << py;
    }
}

TYPED_TEST(FrameBufferPaintTypedTest, RectIsClippedToTheBuffer) {
    constexpr std::int16_t kMin = std::numeric_limits<std::int16_t>::min();
    constexpr std::int16_t kMax = std::numeric_limits<std::int16_t>::max();
    const struct {
        const char* name;
        Rect area;
    } kCases[] = {
        {"inside", {1, 2, 3, 5}},
        {"one pixel", {4, 6, 5, 7}},
        {"whole", {0, 0, 5, 7}},
        {"left of the buffer and beyond its width", {1, -5, 3, 100}},
        {"above and below", {-9, 2, 90, 3}},
        {"largest", {kMin, kMin, kMax, kMax}},
        {"empty", {2, 2, 2, 5}},
        {"no columns", {1, 3, 4, 3}},
        {"inverted rows", {4, 0, 1, 7}},
        {"inverted columns", {0, 6, 5, 1}},
        {"right of the buffer", {0, 7, 5, 9}},
        {"below the buffer", {5, 0, 9, 7}},
        {"above the buffer", {-4, 0, 0, 7}},
    };
    for (const auto& c : kCases) {
        const Canvas<TypeParam> canvas;
        canvas.pixels.paint(c.area, kColour);
        EXPECT_TRUE(canvas.isPainted(kColour, [&](int x, int y) {
            return x >= c.area.left && x < c.area.right && y >= c.area.top && y < c.area.bottom;
        })) << c.name;
    }
}

TYPED_TEST(FrameBufferPaintTypedTest, MaskBecomesTheAlphaOfTheColourInACopy) {
    using P = Pixel<TypeParam>;
    std::mt19937 random(42);
    const Canvas<TypeParam> canvas;
    const ChannelBuf<TypeParam> mask(9, 6);
    FillRandom(mask, random);
    canvas.pixels.paint(static_cast<const ChannelBuffer&>(mask), kColour);
    EXPECT_TRUE(ElementsAre(canvas.pixels, [&](int x, int y) {
        P p = kColour;
        p.alpha = mask.row(y)[x];
        return p;
    }));
    EXPECT_TRUE(canvas.pixels.guardsIntact());
}

TYPED_TEST(FrameBufferPaintTypedTest, MaskOfAnotherDepthIsBadCastAndWritesNothing) {
    using Other = std::conditional_t<std::is_same_v<TypeParam, Channel8>, Channel15, Channel8>;
    const Canvas<TypeParam> canvas;
    const ChannelBuf<Other> mask(7, 5);
    EXPECT_THROW(canvas.pixels.paint(static_cast<const ChannelBuffer&>(mask), kColour), std::bad_cast);
    EXPECT_TRUE(SameElements(canvas.before, canvas.pixels));
}

TYPED_TEST(FrameBufferPaintTypedTest, SmallerMaskFailsItsAssertionAndWritesNothing) {
    const Canvas<TypeParam> canvas;
    for (const auto& [width, height] : {std::pair{6, 5}, {7, 4}, {0, 0}}) {
        const ChannelBuf<TypeParam> mask(width, height);
        EXPECT_TRUE(FailsAssertion(kFile, 3, [&] { canvas.pixels.paint(mask, kColour); }));
    }
    EXPECT_TRUE(SameElements(canvas.before, canvas.pixels));
}

template <class C>
struct BlendTypedTest : testing::Test {
    using P = Pixel<C>;

    BlendTypedTest() {
        std::mt19937 random(43);
        FillRandom(other, random);
    }

    FakeContext context;
    Canvas<C> canvas;
    SimplePixelBuffer<P> other{7, 5};
};

TYPED_TEST_SUITE(BlendTypedTest, HostChannels, ChannelNames);

// One component after a blend: rounded half up, by a 16.16 weight rounded half up.
int Blended(int from, int to, float fraction) {
    const auto weight = static_cast<std::int64_t>(fraction * 65536.0F + 0.5F);
    const std::int64_t scaled = weight * (to - from) + 32768;
    const std::int64_t step = scaled >= 0 ? scaled / 65536 : -((-scaled + 65535) / 65536);
    return static_cast<int>(from + step);
}

TYPED_TEST(BlendTypedTest, EveryComponentMovesByTheFraction) {
    using Type = typename TypeParam::Type;
    for (const float fraction : {-0.5F, 1e-6F, 0.001F, 0.25F, 0.5F, 0.7F, 0.99999F, 1.5F}) {
        const Canvas<TypeParam> fresh;
        fresh.pixels.blend(this->context, this->other, fraction);
        const auto moved = [fraction](Type from, Type to) {
            return static_cast<Type>(Blended(from, to, fraction));
        };
        EXPECT_TRUE(ElementsAre(fresh.pixels, [&](int x, int y) {
            const auto from = fresh.before.row(y)[x];
            const auto to = this->other.row(y)[x];
            return Pixel<TypeParam>(moved(from.alpha, to.alpha), moved(from.red, to.red),
                                    moved(from.green, to.green), moved(from.blue, to.blue));
        })) << fraction;
        EXPECT_TRUE(fresh.pixels.guardsIntact());
    }
}

TYPED_TEST(BlendTypedTest, FractionZeroKeepsTheBufferWhateverTheOtherIs) {
    const SimplePixelBuffer<Pixel<Channel16>> foreign(1, 1);
    this->canvas.pixels.blend(this->context, this->other, 0.0F);
    this->canvas.pixels.blend(this->context, foreign, 0.0F);
    this->canvas.pixels.blend(this->context, foreign, -0.0F);
    EXPECT_TRUE(SameElements(this->canvas.before, this->canvas.pixels));
}

TYPED_TEST(BlendTypedTest, FractionOneLoadsTheOther) {
    this->canvas.pixels.blend(this->context, this->other, 1.0F);
    EXPECT_TRUE(SameElements(this->other, this->canvas.pixels));
}

TYPED_TEST(BlendTypedTest, FractionOneOfASmallerBufferZeroesTheRest) {
    const SimplePixelBuffer<Pixel<TypeParam>> small(3, 2);
    std::mt19937 random(44);
    FillRandom(small, random, AlphaMode::kFull);
    this->canvas.pixels.blend(this->context, small, 1.0F);
    EXPECT_TRUE(ElementsAre(this->canvas.pixels, [&](int x, int y) {
        return x < 3 && y < 2 ? small.row(y)[x] : Pixel<TypeParam>(0, 0, 0, 0);
    }));
}

TYPED_TEST(BlendTypedTest, BlendWithItselfChangesNothing) {
    for (const float fraction : {0.3F, 1.0F}) {
        this->canvas.pixels.blend(this->context, this->canvas.pixels, fraction);
        EXPECT_TRUE(SameElements(this->canvas.before, this->canvas.pixels)) << fraction;
    }
}

TYPED_TEST(BlendTypedTest, AnotherSizeFailsItsAssertionAndWritesNothing) {
    for (const auto& [width, height] : {std::pair{6, 5}, {8, 5}, {7, 4}, {7, 6}}) {
        const SimplePixelBuffer<Pixel<TypeParam>> sized(width, height);
        EXPECT_TRUE(
            FailsAssertion(kFile, 1507, [&] { this->canvas.pixels.blend(this->context, sized, 0.5F); }))
            << width << " x " << height;
    }
    EXPECT_TRUE(SameElements(this->canvas.before, this->canvas.pixels));
}

TYPED_TEST(BlendTypedTest, AnotherDepthIsBadCastAndWritesNothing) {
    const SimplePixelBuffer<Pixel<Channel16>> foreign(7, 5);
    for (const float fraction : {0.5F, 1.0F}) {
        EXPECT_THROW(this->canvas.pixels.blend(this->context, foreign, fraction), std::bad_cast) << fraction;
    }
    EXPECT_TRUE(SameElements(this->canvas.before, this->canvas.pixels));
}

TEST(BlendTest, HalfBetweenBlackAndWhiteIs128FromEitherSide) {
    FakeContext context;
    const SimplePixelBuffer<Pixel<Channel8>> pixels(1, 1);
    const SimplePixelBuffer<Pixel<Channel8>> other(1, 1);
    pixels.row(0)[0] = {255, 0, 255, 10};
    other.row(0)[0] = {0, 255, 0, 10};
    pixels.blend(context, other, 0.5F);
    EXPECT_EQ((Pixel<Channel8>(128, 128, 128, 10)), pixels.row(0)[0]);
}

}  // namespace

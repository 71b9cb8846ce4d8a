#include "Resample.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using PILib::Channel15;
using PILib::Channel8;
using PILib::Pixel;
using PILib::SimplePixelBuffer;

template <class C>
using Pixels = std::vector<Pixel<C>>;

template <class C>
Pixels<C> Resampled(const Pixels<C>& pixels, int width, int height, int newWidth, int newHeight) {
    const SimplePixelBuffer<Pixel<C>> source(width, height);
    auto pixel = pixels.begin();
    for (int y = 0; y < height; ++y) {
        for (Pixel<C>& p : source.row(y))
            p = *pixel++;
    }
    const SimplePixelBuffer<Pixel<C>> destination(newWidth, newHeight);
    Resample<C>(destination, source);
    Pixels<C> result;
    for (int y = 0; y < newHeight; ++y) {
        for (const Pixel<C>& p : destination.row(y))
            result.push_back(p);
    }
    return result;
}

template <class C>
Pixel<C> Grey(int value) {
    const auto v = static_cast<typename C::Type>(value);
    return {static_cast<typename C::Type>(C::kOne), v, v, v};
}

TEST(ResampleTest, DoublingBlendsByQuartersBetweenPixelCentresAndHoldsTheEdges) {
    const Pixels<Channel8> wanted{Grey<Channel8>(0), Grey<Channel8>(64), Grey<Channel8>(191),
                                  Grey<Channel8>(255)};
    const Pixels<Channel8> source{Grey<Channel8>(0), Grey<Channel8>(255)};
    EXPECT_EQ(Resampled(source, 2, 1, 4, 1), wanted);
    EXPECT_EQ(Resampled(source, 1, 2, 1, 4), wanted);

    const Pixels<Channel15> wanted15{Grey<Channel15>(0), Grey<Channel15>(8192), Grey<Channel15>(24576),
                                     Grey<Channel15>(32768)};
    EXPECT_EQ(Resampled<Channel15>({Grey<Channel15>(0), Grey<Channel15>(32768)}, 2, 1, 4, 1), wanted15);
}

TEST(ResampleTest, HalvingAveragesNeighbours) {
    const Pixels<Channel8> source{Grey<Channel8>(10), Grey<Channel8>(20), Grey<Channel8>(100),
                                  Grey<Channel8>(200)};
    EXPECT_EQ(Resampled(source, 4, 1, 2, 1), (Pixels<Channel8>{Grey<Channel8>(15), Grey<Channel8>(150)}));
    EXPECT_EQ(Resampled(source, 2, 2, 1, 1), Pixels<Channel8>{Grey<Channel8>(83)});
}

TEST(ResampleTest, TransparentPixelsLendTheirNeighboursNoColour) {
    const Pixels<Channel8> source{{255, 200, 0, 0}, {0, 0, 255, 0}};
    const Pixels<Channel8> wanted{{255, 200, 0, 0}, {191, 200, 0, 0}, {64, 200, 0, 0}, {0, 0, 0, 0}};
    EXPECT_EQ(Resampled(source, 2, 1, 4, 1), wanted);
}

TEST(ResampleTest, ColoursAreWeightedByAlpha) {
    // Alphas 60 and 180 in equal shares: a colour of 100 counts once, one of 200 three times.
    const Pixels<Channel8> source{{60, 100, 0, 8}, {180, 200, 0, 8}};
    EXPECT_EQ(Resampled(source, 2, 1, 1, 1), (Pixels<Channel8>{{120, 175, 0, 8}}));
}

template <class C>
class ResampleDepthTest : public testing::Test {};
using Depths = testing::Types<Channel8, Channel15>;
TYPED_TEST_SUITE(ResampleDepthTest, Depths);

TYPED_TEST(ResampleDepthTest, UniformPictureKeepsItsColourAtEverySize) {
    using C = TypeParam;
    constexpr auto kOne = static_cast<typename C::Type>(C::kOne);
    for (const Pixel<C> colour : {Pixel<C>(kOne, kOne, 1, 0), Pixel<C>(1, kOne, 77, 3)}) {
        for (int size = 1; size <= 20; ++size) {
            const auto result = Resampled(Pixels<C>(7 * 5, colour), 7, 5, size, 21 - size);
            EXPECT_EQ(result, Pixels<C>(result.size(), colour)) << size << " x " << 21 - size;
        }
    }
}

}  // namespace

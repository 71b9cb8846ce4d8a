#include "Sampling.h"

#include <gtest/gtest.h>

#include <cmath>

#include "ColorConversions.h"
#include "PixelAccess.h"
#include "World.h"

namespace perch::test {
namespace {

constexpr PF_Fixed kOne = 65536;

World twoPixels() {
    World world(2, 1, false);
    rowOf<PF_Pixel>(world.record(), 0)[0] = {255, 10, 20, 30};
    rowOf<PF_Pixel>(world.record(), 0)[1] = {255, 110, 120, 130};
    return world;
}

TEST(SamplingTest, WholePositionsArePixels) {
    const World world = twoPixels();
    PF_Pixel sample{};
    ASSERT_EQ(sampleLinear(world.record(), kOne, 0, sample), 0);
    EXPECT_EQ(sample.alpha, 255);
    EXPECT_EQ(sample.red, 110);
}

TEST(SamplingTest, HalfwayIsTheMean) {
    const World world = twoPixels();
    PF_Pixel sample{};
    ASSERT_EQ(sampleLinear(world.record(), kOne / 2, 0, sample), 0);
    EXPECT_EQ(sample.red, 60);
    EXPECT_EQ(sample.blue, 80);
}

TEST(SamplingTest, OutsideIsTransparent) {
    const World world = twoPixels();
    for (const PF_Fixed x : {-kOne, 2 * kOne, 1000 * kOne, -30000 * kOne}) {
        PF_Pixel sample{1, 2, 3, 4};
        ASSERT_EQ(sampleLinear(world.record(), x, 0, sample), 0);
        EXPECT_EQ(sample.alpha, 0) << x;
    }
}

TEST(SamplingTest, EdgeFadesWithoutDarkening) {
    const World world = twoPixels();
    PF_Pixel sample{};
    ASSERT_EQ(sampleLinear(world.record(), -kOne / 2, 0, sample), 0);
    EXPECT_EQ(sample.alpha, 128);
    EXPECT_EQ(sample.red, 10);
}

TEST(SamplingTest, AreaIsTheMeanOfWhatItCovers) {
    const World world = twoPixels();
    PF_Pixel sample{};
    ASSERT_EQ(sampleArea(world.record(), kOne / 2, 0, kOne, kOne / 2, sample), 0);
    EXPECT_EQ(sample.red, 60);
    EXPECT_EQ(sample.alpha, 255);
}

TEST(ColorConversionsTest, PrimariesHaveTheirHues) {
    struct Case {
        PF_Pixel color;
        int hue;  // degrees
    };
    for (const Case& c :
         {Case{{255, 255, 0, 0}, 0}, Case{{255, 255, 255, 0}, 60}, Case{{255, 0, 255, 0}, 120},
          Case{{255, 0, 0, 255}, 240}, Case{{255, 255, 0, 255}, 300}}) {
        PF_Fixed hls[3];
        toHls(c.color, hls);
        EXPECT_EQ(hls[0], std::lround(c.hue / 360.0 * kOne));
        EXPECT_EQ(hls[2], kOne);
    }
}

TEST(ColorConversionsTest, EveryColourComesBack) {
    for (int red = 0; red < 256; red += 15) {
        for (int green = 0; green < 256; green += 17) {
            for (int blue = 0; blue < 256; blue += 51) {
                const PF_Pixel color{7, static_cast<A_u_char>(red), static_cast<A_u_char>(green),
                                     static_cast<A_u_char>(blue)};
                PF_Fixed hls[3];
                toHls(color, hls);
                PF_Pixel back = color;
                fromHls(hls, back);
                EXPECT_EQ(back.red, red);
                EXPECT_EQ(back.green, green);
                EXPECT_EQ(back.blue, blue);
                EXPECT_EQ(back.alpha, 7);
                PF_Fixed yiq[3];
                toYiq(color, yiq);
                fromYiq(yiq, back);
                EXPECT_NEAR(back.red, red, 1);
                EXPECT_NEAR(back.green, green, 1);
                EXPECT_NEAR(back.blue, blue, 1);
            }
        }
    }
}

TEST(ColorConversionsTest, GreysHaveNoSaturation) {
    const PF_Pixel grey{255, 100, 100, 100};
    EXPECT_EQ(luminance100(grey), 10000);
    EXPECT_EQ(lightness255(grey), 100);
    EXPECT_EQ(saturation255(grey), 0);
    EXPECT_EQ(hue255(grey), 0);
}

}  // namespace
}  // namespace perch::test

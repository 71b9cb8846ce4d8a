#include "DepthRange.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "PictureFile.h"

namespace pictures {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNotANumber = std::numeric_limits<double>::quiet_NaN();

Picture depths(const std::vector<float>& values, std::size_t channels = 1) {
    Picture picture =
        newPicture(static_cast<std::int32_t>(values.size() / channels), 1, channels, SampleType::Float);
    std::get<std::vector<float>>(picture.samples) = values;
    return picture;
}

std::vector<std::uint16_t> mattesOf(const std::string& range, const std::vector<float>& values,
                                    std::size_t channels = 1) {
    const Picture matte = ranged(depths(values, channels), parseDepthRange(range).value());
    return std::get<std::vector<std::uint16_t>>(matte.samples);
}

TEST(DepthRangeTest, NearIsWhiteAndFarIsBlack) {
    struct Case {
        const char* range;
        float depth;
        double share;
    };
    const Case cases[] = {
        {"2:10", 2, 1},
        {"2:10", 10, 0},
        {"2:10", 4, 0.75},
        {"2:10", 1, 1},
        {"2:10", 11, 0},
        {"2:10", -5, 1},
        {"10:2", 10, 1},  // heights above a floor, say: the greater is the nearer
        {"10:2", 4, 0.25},
        {"10:2", 1, 0},
        {"-2:-10", -4, 0.75},  // along an axis that points at the viewer
        {"-2:-10", -11, 0},
        {"200:1000", 400, 0.75},  // the same in centimetres
        {"2:10:reciprocal", 2, 1},
        {"2:10:reciprocal", 10, 0},
        {"2:10:reciprocal", 4, 0.375},  // (1/4 - 1/10) / (1/2 - 1/10)
        {"2:10:reciprocal", 0, 1},
        {"2:10:reciprocal", -1, 1},
        {"10:2:reciprocal", 4, 0.625},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(mattesOf(c.range, {c.depth})[0], std::lround(c.share * 65535)) << c.range << " " << c.depth;
    }
}

TEST(DepthRangeTest, WhereNothingIsSeenIsFar) {
    for (const char* const range : {"2:10", "2:10:reciprocal", "10:2", "-2:-10"}) {
        for (const double nothing : {kInfinity, -kInfinity, kNotANumber, 1e10, 1e20}) {
            EXPECT_EQ(mattesOf(range, {static_cast<float>(nothing)})[0], 0) << range << " " << nothing;
        }
    }
}

TEST(DepthRangeTest, AlphaIsNoDepth) {
    EXPECT_EQ(mattesOf("2:10", {2, 10, 4, 0.25F}, 4), (std::vector<std::uint16_t>{65535, 0, 49151, 16384}));
}

TEST(DepthRangeTest, TextIsTwoDepthsAndReciprocalOrNothing) {
    for (const char* const text : {"2.5:40", "-1:1e3", "40:2.5", "2.5:40:reciprocal"})
        EXPECT_EQ(textOf(parseDepthRange(text).value()), text == std::string("-1:1e3") ? "-1:1000" : text);
    for (const char* const text :
         {"", "2.5", "2.5:", ":40", "2.5:40:", "2.5:40:even", "a:b", "2.5:40 ", "1:1", "inf:1", "1:nan",
          "0:40:reciprocal", "-1:40:reciprocal", "40:0:reciprocal"})
        EXPECT_FALSE(parseDepthRange(text)) << text;
}

TEST(DepthRangeTest, UsualRangeLeavesOutTheOutermostAndWhatIsNoDepth) {
    std::vector<float> values;
    for (int i = 0; i <= 1000; ++i)
        values.push_back(static_cast<float>(1000 - i));
    values.insert(values.end(),
                  {std::numeric_limits<float>::infinity(), std::numeric_limits<float>::quiet_NaN(), 1e10F});
    const std::optional<DepthRange> range = usualRange(depths(values));
    ASSERT_TRUE(range);
    EXPECT_EQ(textOf(*range), "5:995");
    EXPECT_FALSE(usualRange(depths({7, 7, 1e10F})));
    EXPECT_FALSE(usualRange(depths({1e10F})));
}

TEST(DepthRangeTest, ExtentIsThatOfFiniteDepths) {
    const std::optional<Extent> extent =
        extentOf(depths({3, -1, 1e10F, std::numeric_limits<float>::infinity(), 8}));
    ASSERT_TRUE(extent);
    EXPECT_EQ(extent->least, -1);
    EXPECT_EQ(extent->greatest, 8);
    EXPECT_FALSE(extentOf(depths({std::numeric_limits<float>::quiet_NaN()})));
}

TEST(DepthRangeTest, InfinityIsWhatThereIsNoEndTo) {
    EXPECT_FALSE(hasInfinity(depths({0, 1, 9e9F, std::numeric_limits<float>::quiet_NaN()})));
    for (const float value : {1e10F, std::numeric_limits<float>::infinity(),
                              -std::numeric_limits<float>::infinity(), std::numeric_limits<float>::max()})
        EXPECT_TRUE(hasInfinity(depths({0, value, 1}))) << value;
}

TEST(DepthRangeTest, SampleDepthsGiveTheSampleMatte) {
    const std::string folder = PERCH_SOURCES "/samples/still/";
    const Picture greys = ranged(readPicture(folder + "depth.exr"), {1.5, 16, false});
    EXPECT_TRUE(greys.samples == readPicture(folder + "depth.png").samples);
}

}  // namespace
}  // namespace pictures

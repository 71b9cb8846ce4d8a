#include "ReadOut.h"

#include <gtest/gtest.h>

#include <limits>
#include <numeric>

namespace perch::test {
namespace {

TEST(ReadOutTest, HistogramTakesWhateverFloatsAFileHas) {
    const float infinity = std::numeric_limits<float>::infinity();
    const float nan = std::numeric_limits<float>::quiet_NaN();
    pictures::Picture picture = pictures::newPicture(6, 1, 1, pictures::SampleType::Float);
    std::get<std::vector<float>>(picture.samples) = {0, 0.5F, 7, -7, infinity, nan};
    const std::vector<std::int64_t> bins = histogramOf(picture, "Red");
    ASSERT_EQ(bins.size(), 256U);
    EXPECT_EQ(bins[0], 2);
    EXPECT_EQ(bins[128], 1);
    EXPECT_EQ(bins[255], 2);
    EXPECT_EQ(std::accumulate(bins.begin(), bins.end(), std::int64_t{0}), 5);
}

}  // namespace
}  // namespace perch::test

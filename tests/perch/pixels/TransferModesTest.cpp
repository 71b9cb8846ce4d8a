#include "TransferModes.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "PF_Values.h"

namespace perch::test {
namespace {

// Worlds of floats hold colours that are darker than black and brighter than white.
TEST(TransferModesTest, ColoursOutsideOfTheirRangeStayNumbers) {
    std::mt19937 random(11);
    std::uniform_real_distribution<double> channel(-2, 4);
    const auto grey = [](double value) { return UnitPixel{1, value, value, value}; };
    for (PF_TransferMode mode = PF_Xfer_COPY; mode < PF_Xfer_NUM_MODES; ++mode) {
        const TransferFunction transfer = transferFunction(mode);
        if (transfer == nullptr) continue;
        for (int round = 0; round < 2000; ++round) {
            const UnitPixel below = grey(channel(random));
            const UnitPixel source = round % 2 == 0
                                         ? grey(channel(random))
                                         : UnitPixel{1, channel(random), channel(random), channel(random)};
            const UnitPixel result = transfer(below, source, 1);
            ASSERT_TRUE(std::isfinite(result.red) && std::isfinite(result.green) &&
                        std::isfinite(result.blue) && std::isfinite(result.alpha))
                << transferModeName(mode) << ": " << source.red << ' ' << source.green << ' ' << source.blue
                << " on " << below.red;
        }
    }
}

}  // namespace
}  // namespace perch::test

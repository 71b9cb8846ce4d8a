#include "FrameRequest.h"

#include <algorithm>
#include <limits>

namespace perch {

std::int32_t fullExtent(std::int32_t given, std::int32_t extent, const PF_RationalScale& scale) {
    if (given > 0) return given;
    if (scale.num <= 0) return extent;
    constexpr std::int64_t kLargest = std::numeric_limits<std::int32_t>::max();
    return static_cast<std::int32_t>(std::min(std::int64_t{extent} * scale.den / scale.num, kLargest));
}

}  // namespace perch

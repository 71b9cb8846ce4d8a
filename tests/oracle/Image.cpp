#include "Image.h"

#include <algorithm>

namespace oracle {

std::int64_t FloorDivide(std::int64_t dividend, std::int64_t divisor) {
    const std::int64_t quotient = dividend / divisor;
    return dividend % divisor < 0 ? quotient - 1 : quotient;
}

std::uint32_t Multiply(std::uint32_t x, std::uint32_t a, std::uint32_t full) {
    // 255 is odd, so that no product lies halfway between two results.
    return full == kFull8 ? (2 * x * a + 255) / 510 : x * a / 32768;
}

Colour Premultiplied(const Colour& straight, std::uint32_t full) {
    Colour result = straight;
    for (const std::size_t channel : {kRed, kGreen, kBlue})
        result[channel] = Multiply(straight[channel], straight[kAlpha], full);
    return result;
}

Colour Straightened(const Colour& premultiplied, std::uint32_t full) {
    const std::uint32_t alpha = premultiplied[kAlpha];
    if (alpha == full) return premultiplied;
    if (alpha == 0) return {0, 0, 0, 0};
    // The quotient of two integers in 16.16 saturates: full / 1 is one too large at 15 bits.
    const std::uint64_t factor = std::min<std::uint64_t>(std::uint64_t{full} * 65536 / alpha, 2147483647);
    const std::uint64_t stored = full == kFull8 ? 256 : 65536;
    Colour result = premultiplied;
    for (const std::size_t channel : {kRed, kGreen, kBlue})
        result[channel] = static_cast<std::uint32_t>(premultiplied[channel] * factor / 65536 % stored);
    return result;
}

}  // namespace oracle

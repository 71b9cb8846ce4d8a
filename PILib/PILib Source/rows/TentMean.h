// What both tents share outside the row kernels.
#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>

namespace PILib::detail {

// The tables are built for two pixels more than asked for. A negative radius stays one, for the base to
// refuse.
inline int WidenedTentRadius(int radius) {
    constexpr int kExtraRadius = 2;
    return radius < 0 ? radius
                      : std::min(radius, std::numeric_limits<int>::max() - kExtraRadius) + kExtraRadius;
}

// A weighted sum as a channel value: times the reciprocal of the weights' sum, rounded. The weights are
// normalised by a 32-bit product that wraps: exact while halfX * halfY stays below 46341.
class TentMean {
public:
    TentMean(int halfX, int halfY) : reciprocal(1.0 / static_cast<double>(weightOf(halfX, halfY))) {}

    template <class T>
    T of(double sum) const {
        return narrowed<T>(sum * reciprocal + 0.5);
    }

private:
    static std::int32_t weightOf(int halfX, int halfY) {
        const std::uint32_t weight = static_cast<std::uint32_t>(halfX) * static_cast<std::uint32_t>(halfY);
        return static_cast<std::int32_t>(weight * weight);
    }

    // Truncates toward zero into a channel's width. Values that no integer holds, which only a wrapped
    // normalisation gives, become 0 on every machine.
    template <class T>
    static T narrowed(double value) {
        constexpr double kLimit = 9223372036854775808.0;  // 2^63
        return value > -kLimit && value < kLimit ? static_cast<T>(static_cast<std::int64_t>(value)) : T{0};
    }

    double reciprocal;
};

}  // namespace PILib::detail

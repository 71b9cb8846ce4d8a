#include "ScaleAxis.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace perch {

ScaleAxis::ScaleAxis(std::int32_t first, std::int32_t last, double scale, double shift, std::int32_t size) {
    for (std::int32_t d = first; d < last; ++d)
        addElement((d + 0.5) * scale + shift, std::abs(scale), size);
}

ScaleAxis::Range ScaleAxis::range() const {
    Range range;
    for (const Place& place : places) {
        if (place.count == 0) continue;
        const std::int32_t end = place.first + static_cast<std::int32_t>(place.count);
        const bool isFirst = range.begin == range.end;
        range = {isFirst ? place.first : std::min(range.begin, place.first), std::max(range.end, end)};
    }
    return range;
}

// `centre` and `extent` of the destination element, in source elements.
void ScaleAxis::addElement(double centre, double extent, std::int32_t size) {
    places.push_back({0, 0, weights.size()});
    if (!(centre > 0 && centre < size)) return;
    const auto clampedIndex = [size](double position) {
        return static_cast<std::int32_t>(std::clamp(position, 0.0, static_cast<double>(size - 1)));
    };
    std::vector<double> real;
    if (extent > 1) {
        const double low = std::max(centre - extent / 2, 0.0);
        const double high = std::min(centre + extent / 2, static_cast<double>(size));
        places.back().first = clampedIndex(std::floor(low));
        for (std::int32_t i = places.back().first; i < size && i < high; ++i)
            real.push_back(std::min(high, i + 1.0) - std::max(low, static_cast<double>(i)));
    } else {
        const double below = std::floor(centre - 0.5);
        const double fraction = centre - 0.5 - below;
        places.back().first = clampedIndex(below);
        // Before the first element and behind the last there is none to mix with.
        if (clampedIndex(below + 1) == places.back().first || fraction == 0) {
            real = {1};
        } else {
            real = {1 - fraction, fraction};
        }
    }
    appendWhole(real);
}

// Real weights as whole ones with an exact sum. What is rounded is the running total: it never falls, so that
// no weight is below 0, and no element takes the rounding of all others.
void ScaleAxis::appendWhole(const std::vector<double>& real) {
    const double total = std::accumulate(real.begin(), real.end(), 0.0);
    double running = 0;  // added up in the order of `total`, which it reaches exactly
    std::uint32_t given = 0;
    for (const double weight : real) {
        running += weight;
        const auto upToHere = static_cast<std::uint32_t>(std::lround(running / total * kOne));
        weights.push_back(upToHere - given);
        given = upToHere;
    }
    places.back().count = static_cast<std::uint32_t>(real.size());
}

}  // namespace perch

// Which source elements make up each destination element along one axis of a scale: the mean of what it
// covers where the scale shrinks, two neighbours mixed where it grows.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace perch {

class ScaleAxis {
public:
    // Weights are whole numbers, so that every machine rounds alike, and add up to this. They are of 11 bits,
    // so that a product of two with alpha and a 16-bit colour stays in 64 bits with room for the sums.
    static constexpr std::uint32_t kOne = 2048;

    // Maps destination elements [first, last) to a source of `size` elements by source = (d + 0.5) * scale +
    // shift.
    ScaleAxis(std::int32_t first, std::int32_t last, double scale, double shift, std::int32_t size);

    // Source elements from `first` on, a weight for each; none where the destination lies outside the source.
    struct Taps {
        std::int32_t first;
        std::span<const std::uint32_t> weights;

        std::int32_t end() const { return first + static_cast<std::int32_t>(weights.size()); }
    };
    // Of the destination element `index` places behind the first.
    Taps operator[](std::size_t index) const {
        const Place& place = places[index];
        return {place.first, std::span(weights).subspan(place.offset, place.count)};
    }
    std::size_t size() const { return places.size(); }

    // All source elements that have a weight somewhere; empty where there is none.
    struct Range {
        std::int32_t begin = 0;
        std::int32_t end = 0;
    };
    Range range() const;

private:
    struct Place {
        std::int32_t first = 0;
        std::uint32_t count = 0;
        std::size_t offset = 0;  // into weights
    };

    void addElement(double centre, double extent, std::int32_t size);
    void appendWhole(const std::vector<double>& real);

    std::vector<Place> places;
    std::vector<std::uint32_t> weights;
};

}  // namespace perch

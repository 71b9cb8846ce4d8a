#include "Convolve.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <type_traits>
#include <vector>

#include "PixelAccess.h"
#include "WorkerPool.h"
#include "World.h"

namespace perch {
namespace {

enum class Element { Long, Char, Fixed, Unknown };

Element elementOf(PF_KernelFlags flags) {
    switch (flags & PF_KernelFlag_USE_UNDEFINED) {
        case PF_KernelFlag_USE_LONG:
            return Element::Long;
        case PF_KernelFlag_USE_CHAR:
            return Element::Char;
        case PF_KernelFlag_USE_FIXED:
            return Element::Fixed;
        default:
            return Element::Unknown;
    }
}

// More take longer than anybody waits.
constexpr std::int64_t kMostElements = 1 << 20;

bool isLine(PF_KernelFlags flags) {
    return (flags & PF_KernelFlag_1D) != 0;
}

// What a mean element of one is.
std::int64_t oneOf(Element element) {
    return element == Element::Char ? 255 : element == Element::Fixed ? 65536 : 256;
}

std::int64_t countOf(PF_KernelFlags flags, A_long size) {
    return isLine(flags) ? size : std::int64_t{size} * size;
}

std::vector<std::int32_t> weightsOf(const void* kernel, Element element, std::int64_t count) {
    std::vector<std::int32_t> weights(static_cast<std::size_t>(count));
    for (std::size_t i = 0; i < weights.size(); ++i)
        weights[i] = element == Element::Char ? static_cast<const A_u_char*>(kernel)[i]
                                              : static_cast<const A_long*>(kernel)[i];
    return weights;
}

// Where the elements of a kernel lie about the pixel.
struct Shape {
    A_long columns, rows;

    A_long left() const { return -(columns / 2); }
    A_long top() const { return -(rows / 2); }
};

Shape shapeOf(const Kernels& kernels) {
    if (!isLine(kernels.flags)) return {kernels.size, kernels.size};
    const bool isVertical = (kernels.flags & PF_KernelFlag_VERTICAL) != 0;
    return isVertical ? Shape{1, kernels.size} : Shape{kernels.size, 1};
}

// Whole numbers for whole channels; a hostile kernel wraps around instead of overflowing.
template <class P>
using SumOf = std::conditional_t<kHasWholeChannels<P>, std::uint64_t, double>;

template <class P>
ChannelOf<P> channelFrom(SumOf<P> sum, std::int64_t unity, bool clamps) {
    if constexpr (!kHasWholeChannels<P>) {
        return static_cast<float>(sum / static_cast<double>(unity));
    } else {
        // Rounded to the nearest, halves upwards.
        const auto whole = static_cast<std::int64_t>(sum + static_cast<std::uint64_t>(unity / 2));
        std::int64_t value = whole / unity - (whole % unity < 0 ? 1 : 0);
        if (clamps) value = std::clamp<std::int64_t>(value, 0, kWhite<P>);
        return static_cast<ChannelOf<P>>(value);
    }
}

template <class P>
class Convolution {
public:
    Convolution(const PF_EffectWorld& from, const Kernels& kernels, const PF_EffectWorld& to)
        : from(from),
          to(to),
          shape(shapeOf(kernels)),
          unity(oneOf(elementOf(kernels.flags)) * countOf(kernels.flags, kernels.size)),
          clamps((kernels.flags & PF_KernelFlag_NO_CLAMP) == 0) {
        for (std::size_t c = 0; c < 4; ++c)
            weights[c] = weightsOf(kernels.channels[c], elementOf(kernels.flags),
                                   countOf(kernels.flags, kernels.size));
    }

    void convolveRow(std::int32_t y, const PF_Rect& area) const {
        for (std::int32_t x = area.left; x < area.right; ++x)
            rowOf<P>(to, y)[x] = pixel(x, y);
    }

private:
    P pixel(std::int32_t x, std::int32_t y) const {
        SumOf<P> sums[4] = {};
        for (A_long row = 0; row < shape.rows; ++row) {
            const std::int64_t sourceY = std::int64_t{y} + shape.top() + row;
            if (sourceY < 0 || sourceY >= from.height) continue;
            const P* const source = rowOf<P>(from, static_cast<std::int32_t>(sourceY));
            for (A_long column = 0; column < shape.columns; ++column) {
                const std::int64_t sourceX = std::int64_t{x} + shape.left() + column;
                if (sourceX < 0 || sourceX >= from.width) continue;
                const auto element = static_cast<std::size_t>(std::int64_t{row} * shape.columns + column);
                const P& p = source[sourceX];
                add(sums[0], p.alpha, weights[0][element]);
                add(sums[1], p.red, weights[1][element]);
                add(sums[2], p.green, weights[2][element]);
                add(sums[3], p.blue, weights[3][element]);
            }
        }
        const auto channel = [&](int c) { return channelFrom<P>(sums[c], unity, clamps); };
        return {channel(0), channel(1), channel(2), channel(3)};
    }

    static void add(SumOf<P>& sum, ChannelOf<P> channel, std::int32_t weight) {
        sum += static_cast<SumOf<P>>(channel) * static_cast<SumOf<P>>(weight);
    }

    const PF_EffectWorld& from;
    const PF_EffectWorld& to;
    const Shape shape;
    const std::int64_t unity;
    const bool clamps;
    std::vector<std::int32_t> weights[4];
};

template <class P>
void convolve(const PF_EffectWorld& from, const PF_Rect& area, const Kernels& kernels,
              const PF_EffectWorld& to, WorkerPool* workers) {
    const Convolution<P> convolution(from, kernels, to);
    const auto row = [&](std::int32_t, std::int32_t i) { convolution.convolveRow(area.top + i, area); };
    const std::int32_t rows = area.bottom - area.top;
    if (workers != nullptr) return workers->run(rows, row);
    for (std::int32_t i = 0; i < rows; ++i)
        row(0, i);
}

// The bell at each distance from the middle, along one axis.
std::vector<double> bellOf(double radius) {
    const auto reach = static_cast<std::int64_t>(std::ceil(radius));
    const double sigma = radius / 3;
    std::vector<double> bell;
    for (std::int64_t i = -reach; i <= reach; ++i) {
        const double distance = static_cast<double>(i);
        bell.push_back(i == 0 ? 1.0 : std::exp(-distance * distance / (2 * sigma * sigma)));
    }
    return bell;
}

std::int32_t wholeElement(double value, Element element) {
    const double most = element == Element::Char ? 255.0 : std::numeric_limits<std::int32_t>::max();
    const double least = element == Element::Char ? 0.0 : std::numeric_limits<std::int32_t>::min();
    return static_cast<std::int32_t>(std::clamp(std::floor(value + 0.5), least, most));
}

void store(const std::vector<std::int32_t>& elements, Element element, void* kernel) {
    for (std::size_t i = 0; i < elements.size(); ++i) {
        if (element == Element::Char) {
            static_cast<A_u_char*>(kernel)[i] = static_cast<A_u_char>(elements[i]);
        } else {
            static_cast<A_long*>(kernel)[i] = elements[i];
        }
    }
}

}  // namespace

PF_Err convolveWorld(const PF_EffectWorld& from, const PF_Rect* area, const Kernels& kernels,
                     PF_EffectWorld& to, WorkerPool* workers) {
    const bool hasKernels = std::ranges::all_of(kernels.channels, [](const void* k) { return k != nullptr; });
    if (depthOf(from) != depthOf(to) || from.data == to.data || !hasKernels || kernels.size < 1 ||
        kernels.size > kLargestExtent || countOf(kernels.flags, kernels.size) > kMostElements ||
        elementOf(kernels.flags) == Element::Unknown) {
        return PF_Err_BAD_CALLBACK_PARAM;
    }
    const PF_Rect inside = clipped(area, to);
    forAnyDepth(to, [&]<class P>() { convolve<P>(from, inside, kernels, to, workers); });
    return PF_Err_NONE;
}

A_long gaussianDiameter(double radius) {
    if (!(radius >= 0 && radius < kLargestExtent / 2)) return 0;
    return 2 * static_cast<A_long>(std::ceil(radius)) + 1;
}

PF_Err makeGaussian(double radius, PF_KernelFlags flags, double multiplier, void* kernel) {
    const Element element = elementOf(flags);
    const A_long diameter = gaussianDiameter(radius);
    if (diameter == 0 || countOf(flags, diameter) > kMostElements || element == Element::Unknown ||
        !std::isfinite(multiplier)) {
        return PF_Err_BAD_CALLBACK_PARAM;
    }
    const std::vector<double> bell = bellOf(radius);
    std::vector<double> values = bell;
    if (!isLine(flags)) {
        values.clear();
        for (const double y : bell)
            for (const double x : bell)
                values.push_back(x * y);
    }
    const bool isNormalised = (flags & PF_KernelFlag_NORMALIZED) != 0;
    double factor = static_cast<double>(oneOf(element)) * multiplier;
    const double wanted = factor * static_cast<double>(values.size());
    if (isNormalised) {
        double sum = 0;
        for (const double value : values)
            sum += value;
        factor = wanted / sum;
    }
    std::vector<std::int32_t> elements;
    std::int64_t sum = 0;
    for (const double value : values) {
        elements.push_back(wholeElement(value * factor, element));
        sum += elements.back();
    }
    // What rounding has left over goes to the middle.
    if (isNormalised) {
        std::int32_t& middle = elements[elements.size() / 2];
        middle = wholeElement(middle + std::floor(wanted + 0.5) - static_cast<double>(sum), element);
    }
    store(elements, element, kernel);
    return PF_Err_NONE;
}

}  // namespace perch

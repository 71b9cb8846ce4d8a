// Rows of blurred pixels by vectors.
//
// A block of pixels is read out by groups of equal whole radii: within a group the corners of the boxes lie
// side by side in the tables. Neighbouring pixels of a depth matte mostly share their whole radius, so that
// most blocks are one group. In blocks of many groups each pixel is read by itself, its channels and the
// corners of neighbouring radii side by side. Each lane gives what getBlur gives.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "BlurRowFilter.ipp"
#include "BoxFilter.ipp"
#include "RowDepths.ipp"
#include "RowKernels.h"
#include "RowLanes.ipp"
#include "TentFilter.ipp"

namespace PILib::detail {

namespace {

// The radii of a block along one axis, split and clamped as getBlur and getBlurInt do.
struct AxisRadii {
    Int whole;
    Int next;      // whole + 1, clamped likewise
    Int fraction;  // 0 to 65535
};

PILIB_INLINE AxisRadii RadiiOf(Int share, float radius, std::int32_t maxFixed, std::int32_t largest) {
    const Int fixed = Min(Truncated(AsFloat(share) * radius), Splat(maxFixed));
    const Int whole = fixed >> 16;
    return {Min(whole, Splat(largest)), Min(whole + 1, Splat(largest)), fixed & 0xFFFF};
}

// c0 + fraction / 65536 of the way to c1, rounded, for values of up to 16 bits.
PILIB_INLINE Uint Interpolated(Int c0, Int c1, Int fraction) {
    return (AsUnsigned(c0) * (65536U - AsUnsigned(fraction)) + AsUnsigned(c1) * AsUnsigned(fraction) +
            32768U) >>
           16;
}

// The mean of the steps across and down from a channel's value at the whole radii.
PILIB_INLINE Int Mixed(Int whole, Int nextAcross, Int nextDown, Int fractionX, Int fractionY) {
    return reinterpret_cast<Int>(
        (Interpolated(whole, nextAcross, fractionX) + Interpolated(whole, nextDown, fractionY)) >> 1);
}

template <class Depth>
PILIB_INLINE void Straighten(Channels& c) {
    const Int opaque = c.alpha == Depth::kOne;
    if (Bits(opaque) == (1U << kLanes) - 1U) return;
    const Int transparent = c.alpha == 0;
    const Int factor = Depth::straightenFactor(c.alpha - transparent);  // transparent lanes divide by 1
    const auto scaled = [&](Int colour) PILIB_INLINE_LAMBDA {
        const Uint product = AsUnsigned(colour) * AsUnsigned(factor);
        return Select(opaque, colour, reinterpret_cast<Int>(product >> 16) & Depth::kMask & ~transparent);
    };
    c.red = scaled(c.red);
    c.green = scaled(c.green);
    c.blue = scaled(c.blue);
}

// How many runs of equal whole radii a block has; lanes that are not wanted count too.
PILIB_INLINE int Runs(Int wholeX, Int wholeY) {
    const Int changes =
        (wholeX != Arranged<Previous>(wholeX, wholeX)) | (wholeY != Arranged<Previous>(wholeY, wholeY));
    return 1 + __builtin_popcount(Bits(changes));
}

// One group's lanes, premultiplied; what others hold means nothing.
template <class Filter>
PILIB_INLINE Channels ReadGroup(const RowToBlur<typename Filter::Entry>& row, std::ptrdiff_t centre,
                                const Group& group, Int fractionX, Int fractionY, unsigned members) {
    const typename Filter::Neighbours neighbours(group, row.stride);
    const auto channel = [&](const typename Filter::Entry* table) PILIB_INLINE_LAMBDA {
        const Means<Int> means = neighbours.read(table + centre, members);
        return Mixed(means.whole, means.across, means.down, fractionX, fractionY);
    };
    return {channel(row.alpha), channel(row.red), channel(row.green), channel(row.blue)};
}

// A block whose lanes `wanted` are blurred, group by group.
template <class Filter>
PILIB_INLINE Channels ReadGroups(const RowToBlur<typename Filter::Entry>& row, std::ptrdiff_t centre,
                                 const AxisRadii& x, const AxisRadii& y, unsigned wanted) {
    Channels result{};
    while (wanted != 0) {
        const int lane = __builtin_ctz(wanted);
        const Group group = {x.whole[lane], x.next[lane], y.whole[lane], y.next[lane]};
        const Int isMember = (x.whole == x.whole[lane]) & (y.whole == y.whole[lane]);
        const unsigned members = Bits(isMember) & wanted;
        result =
            Select(isMember, ReadGroup<Filter>(row, centre, group, x.fraction, y.fraction, members), result);
        wanted &= ~members;
    }
    return result;
}

// Transposes pixels of kValues values each, one behind the other: values[i * step] gets value i of every
// pixel. `step` grows as the halves are split again.
template <unsigned kValues>
PILIB_INLINE void SplitValues(const Int* pixels, Int* values, int step = 1) {
    if constexpr (kValues == 1) {
        *values = *pixels;
    } else {
        constexpr unsigned kHalf = kValues / 2;
        Int evens[kHalf];
        Int odds[kHalf];
        for (unsigned i = 0; i < kHalf; ++i) {
            evens[i] = Arranged<Evens>(pixels[2 * i], pixels[2 * i + 1]);
            odds[i] = Arranged<Odds>(pixels[2 * i], pixels[2 * i + 1]);
        }
        SplitValues<kHalf>(evens, values, 2 * step);
        SplitValues<kHalf>(odds, values + step, 2 * step);
    }
}

// A block whose lanes `wanted` are blurred, each pixel read by itself. Needs radii that are not clamped.
template <class Filter>
PILIB_INLINE Channels ReadPixels(const RowToBlur<typename Filter::Entry>& row, std::ptrdiff_t centre,
                                 const AxisRadii& x, const AxisRadii& y, unsigned wanted) {
    std::int32_t wholeX[kLanes];
    std::int32_t wholeY[kLanes];
    std::memcpy(wholeX, &x.whole, sizeof wholeX);
    std::memcpy(wholeY, &y.whole, sizeof wholeY);
    const typename Filter::Pixels pixels(x.whole, y.whole);
    Int wholeAndAcross[8] = {};
    Int down[4] = {};
    for (; wanted != 0; wanted &= wanted - 1) {
        const int lane = __builtin_ctz(wanted);
        const PixelValues values = pixels.readPixel(row, centre + lane, lane, wholeX[lane], wholeY[lane]);
        const auto to = [lane](Int* pixelValues, std::size_t size) {
            return reinterpret_cast<unsigned char*>(pixelValues) + static_cast<unsigned>(lane) * size;
        };
        std::memcpy(to(wholeAndAcross, sizeof values.wholeAndAcross), &values.wholeAndAcross,
                    sizeof values.wholeAndAcross);
        std::memcpy(to(down, sizeof values.down), &values.down, sizeof values.down);
    }
    Int means[8];
    Int meansDown[4];
    SplitValues<8>(wholeAndAcross, means);
    SplitValues<4>(down, meansDown);
    pixels.toMeans(means, meansDown);
    const auto channel = [&](int c) PILIB_INLINE_LAMBDA {
        return Mixed(means[2 * c], means[2 * c + 1], meansDown[c], x.fraction, y.fraction);
    };
    return {channel(0), channel(1), channel(2), channel(3)};
}

template <class Filter>
PILIB_INLINE Channels ReadLanes(const RowToBlur<typename Filter::Entry>& row, std::ptrdiff_t centre,
                                const AxisRadii& x, const AxisRadii& y, unsigned wanted, bool isClamped) {
    if constexpr (Filter::kMostRuns < kLanes) {
        if (!isClamped && Runs(x.whole, y.whole) > Filter::kMostRuns)
            return ReadPixels<Filter>(row, centre, x, y, wanted);
    }
    return ReadGroups<Filter>(row, centre, x, y, wanted);
}

// Pixels x .. x + count - 1 of the row, of which `count` is at most the lanes.
template <class Filter, class Depth>
PILIB_INLINE void ReadBlock(const RowToBlur<typename Filter::Entry>& row, int x, int count) {
    using Type = typename Depth::Type;
    const Type* const input = static_cast<const Type*>(row.input) + 4 * static_cast<std::ptrdiff_t>(x);
    Type* const output = static_cast<Type*>(row.output) + 4 * static_cast<std::ptrdiff_t>(x);
    const Int map = LoadWidened(static_cast<const Type*>(row.map) + x, count);
    const Int blurred = map != 0;
    const unsigned wanted = Bits(blurred);
    if (wanted == 0) {
        if (output != input) std::memcpy(output, input, 4 * sizeof(Type) * static_cast<std::size_t>(count));
        return;
    }
    const Int share = Depth::shareOf(map);
    const std::int32_t largestX = row.borderX - Filter::kClampedBelowBorder;
    const std::int32_t largestY = row.borderY - Filter::kClampedBelowBorder;
    const AxisRadii radiiX = RadiiOf(share, row.radiusX, row.maxFixedRadiusX, largestX);
    const AxisRadii radiiY = RadiiOf(share, row.radiusY, row.maxFixedRadiusY, largestY);
    const std::ptrdiff_t centre = row.centre + x + Filter::kCentreShift * (row.stride + 1);

    const bool isClamped = row.maxFixedRadiusX >> 16 >= largestX || row.maxFixedRadiusY >> 16 >= largestY;
    Channels result = ReadLanes<Filter>(row, centre, radiiX, radiiY, wanted, isClamped);
    Straighten<Depth>(result);
    Depth::store(output, input, count, blurred, result);
}

// One more than the largest whole radius that any pixel of the row is read at, for a map within full scale.
struct Reach {
    std::ptrdiff_t x;
    std::ptrdiff_t y;

    template <class Entry>
    explicit PILIB_INLINE Reach(const RowToBlur<Entry>& row)
        : x(along(row.radiusX, row.maxFixedRadiusX)), y(along(row.radiusY, row.maxFixedRadiusY)) {}

    static PILIB_INLINE std::ptrdiff_t along(float radius, std::int32_t maxFixed) {
        const auto whole = static_cast<std::int32_t>(radius);
        return std::ptrdiff_t{whole < maxFixed >> 16 ? whole : maxFixed >> 16} + 1;
    }
};

// Fetches the lowest table cells that the next row down reaches with the largest radius, a share of them
// beside each block of this row, so that memory works while blocks are read out: the rows above have brought
// in all other cells.
template <class Entry>
class NextRowsCells {
public:
    explicit PILIB_INLINE NextRowsCells(const RowToBlur<Entry>& row) : row(row) {
        const Reach reach(row);
        const std::ptrdiff_t blocks = 1 + (row.count - 1) / kLanes;  // 1 for an empty row
        next = row.centre + (reach.y + 1) * row.stride - reach.x;
        perBlock = (row.count + 2 * reach.x + blocks) / blocks;
    }

    PILIB_INLINE void fetchShare() {
        constexpr std::ptrdiff_t kCacheLine = 64 / sizeof(Entry);
        for (const std::ptrdiff_t end = next + perBlock; next < end; next += kCacheLine) {
            fetch(row.alpha);
            fetch(row.red);
            fetch(row.green);
            fetch(row.blue);
        }
    }

private:
    // Below a picture's last row the cell may lie past its table, where no pointer may go: a fetch takes any
    // address.
    PILIB_INLINE void fetch(const Entry* table) const {
        const auto offset = static_cast<std::uintptr_t>(next) * sizeof(Entry);
        __builtin_prefetch(reinterpret_cast<const void*>(reinterpret_cast<std::uintptr_t>(table) + offset));
    }

    const RowToBlur<Entry>& row;
    std::ptrdiff_t next;
    std::ptrdiff_t perBlock;
};

template <class Filter, class Depth>
void BlurRow(const RowToBlur<typename Filter::Entry>& row) {
    NextRowsCells<typename Filter::Entry> nextRows(row);
    for (int x = 0; x < row.count; x += kLanes) {
        nextRows.fetchShare();
        const int left = row.count - x;
        left >= kLanes ? ReadBlock<Filter, Depth>(row, x, kLanes) : ReadBlock<Filter, Depth>(row, x, left);
    }
}

template <class Depth>
void BlurRowByBoxes(const RowToBlur<std::uint32_t>& row) {
    if constexpr (std::is_same_v<Depth, Depth8>) {
        const Reach reach(row);
        if ((2 * reach.x + 1) * (2 * reach.y + 1) < SmallBoxDivision::kAreaEnd)
            return BlurRow<Box<SmallBoxDivision>, Depth>(row);
    }
    BlurRow<Box<BoxDivision<Depth>>, Depth>(row);
}

template <class Depth, class Cell>
void BlurRowByTents(const RowToBlur<Cell>& row) {
    BlurRow<Tent<Depth, Cell>, Depth>(row);
}

}  // namespace

}  // namespace PILib::detail

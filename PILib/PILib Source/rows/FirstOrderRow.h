// Rows of first-order sums, one after another, as the box's tables are built from.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "FrameBuffer.h"
#include "RowDispatch.h"
#include "SimdLevel.h"

namespace PILib::detail {

// A row of first-order sums, from the top of the tables downwards: entry = value + left + up - up-left, which
// is the running sum of the row's premultiplied values plus the entry above: integers that wrap may be
// grouped at will.
template <class C>
class FirstOrderRow {
public:
    FirstOrderRow(SimdLevel level, std::int32_t border, std::int32_t tableWidth)
        : border(border), width(static_cast<std::size_t>(tableWidth)), entries(4 * width) {
        kernel = KernelsFor<C>(level).runningSums;
        if (kernel != nullptr) running.resize(4 * width);
    }

    // Moves on to the next table row, which lies over `source` with its ends repeated.
    void advance(const Row<Pixel<C>>& source) {
        if (kernel == nullptr) {
            addOneByOne(source);
            return;
        }
        if (source.begin() != last) sum(source);
        add(running.data(), entries.data());
    }

    // Of `width` entries.
    const std::uint32_t* red() const { return entries.data(); }
    const std::uint32_t* green() const { return red() + width; }
    const std::uint32_t* blue() const { return green() + width; }
    const std::uint32_t* alpha() const { return blue() + width; }

    const std::int32_t border;
    const std::size_t width;

private:
    void addOneByOne(const Row<Pixel<C>>& source) {
        std::uint32_t red = 0;
        std::uint32_t green = 0;
        std::uint32_t blue = 0;
        std::uint32_t alpha = 0;
        std::uint32_t* entry = entries.data();
        for (int tx = 0; tx < static_cast<int>(width); ++tx, ++entry) {
            const Pixel<C>& p = source[std::clamp(tx - border, 0, source.size() - 1)];
            red += C::mul(p.red, p.alpha);
            green += C::mul(p.green, p.alpha);
            blue += C::mul(p.blue, p.alpha);
            alpha += p.alpha;
            entry[0] += red;
            entry[width] += green;
            entry[2 * width] += blue;
            entry[3 * width] += alpha;
        }
    }

    void add(const std::uint32_t* __restrict row, std::uint32_t* __restrict to) const {
        for (std::size_t i = 0; i < 4 * width; ++i)
            to[i] += row[i];
    }

    // The ends of the source are repeated for every column of the border.
    void sum(const Row<Pixel<C>>& source) {
        const int pixels = source.size();
        const auto repeats = static_cast<std::uint32_t>(border);
        const std::array<std::uint32_t, 4> first = premultiplied(source[0]);
        const std::array<std::uint32_t, 4> end = premultiplied(source[pixels - 1]);
        RowToSum row{.pixels = source.begin(), .count = pixels};
        for (std::size_t table = 0; table < 4; ++table) {
            std::uint32_t* sum = running.data() + table * width;
            for (std::uint32_t tx = 1; tx <= repeats; ++tx)
                *sum++ = tx * first[table];
            row.start[table] = repeats * first[table];
            row.sums[table] = sum;
        }
        kernel(row);
        for (std::size_t table = 0; table < 4; ++table) {
            std::uint32_t* const sum = row.sums[table] + pixels;
            for (std::uint32_t tx = 0; tx < repeats; ++tx)
                sum[tx] = sum[-1] + (tx + 1) * end[table];
        }
        last = source.begin();
    }

    static std::array<std::uint32_t, 4> premultiplied(const Pixel<C>& p) {
        return {C::mul(p.red, p.alpha), C::mul(p.green, p.alpha), C::mul(p.blue, p.alpha), p.alpha};
    }

    void (*kernel)(const RowToSum& row) = nullptr;  // where vectors form the running sums
    std::vector<std::uint32_t> entries;             // of red, green, blue and alpha, one row each
    std::vector<std::uint32_t> running;             // sums along the last source row, likewise
    const Pixel<C>* last = nullptr;  // that row: it is asked for again for every row of the border
};

}  // namespace PILib::detail

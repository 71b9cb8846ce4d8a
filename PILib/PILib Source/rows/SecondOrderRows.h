// Rows of second-order sums, one after another, as the tables of the exact tent are built from.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <type_traits>
#include <vector>

#include "FrameBuffer.h"
#include "RowDispatch.h"
#include "SimdLevel.h"

namespace PILib::detail {

// Writes table rows from the top downwards. An entry is the sum of all first-order sums up and left of it,
// and integers that wrap may be grouped at will. Along a row, values are summed twice, once for all the
// border rows that repeat it; then down the columns twice:
//
//     values            v        of a source row, its ends repeated
//     sums along it     twice    running sums of the running sums of v
//     sums down         column   += twice            one row, kept
//                       table row = the one above + column
template <class C, class Cell>
class SecondOrderRows {
public:
    SecondOrderRows(SimdLevel level, std::int32_t border, std::int32_t tableWidth)
        : width(static_cast<std::size_t>(tableWidth)),
          border(border),
          twice(4 * width),
          columns(4 * width),
          top(width) {
        // The kernels' first running sums are of 32 bits, which hold those of rows up to this width.
        constexpr std::size_t kWidest =
            std::numeric_limits<std::uint32_t>::max() / static_cast<std::uint32_t>(C::kOne);
        const DepthKernels& kernels = KernelsFor<C>(level);
        if constexpr (std::is_same_v<Cell, std::uint32_t>) {
            sumTwice = kernels.narrowSumsTwice;
            addDown = kernels.narrowAddDown;
        } else {
            sumTwice = width <= kWidest ? kernels.wideSumsTwice : nullptr;
            addDown = kernels.wideAddDown;
        }
    }

    // The next table row of red, green, blue and alpha, over `source`. Above each of `out` lies what was
    // written before.
    void writeNext(const Row<Pixel<C>>& source, const std::array<Cell*, 4>& out) {
        if (source.begin() != last) sum(source);
        last = source.begin();
        for (std::size_t table = 0; table < 4; ++table) {
            const RowToAddDown<Cell> row = {
                .addend = &twice[table * width],
                .column = &columns[table * width],
                .above = isTop ? top.data() : out[table] - width,
                .out = out[table],
                .count = width,
            };
            addDown != nullptr ? addDown(row) : addDownPlainly(row);
        }
        isTop = false;
    }

    const std::size_t width;

private:
    using Values = std::array<std::uint32_t, 4>;  // red, green, blue, alpha

    static Values premultiplied(const Pixel<C>& p) {
        return {C::mul(p.red, p.alpha), C::mul(p.green, p.alpha), C::mul(p.blue, p.alpha), p.alpha};
    }

    // The running sums of running sums that go on from `sum` and `twice` over `count` equal values.
    static void sumRepeated(std::uint32_t value, Cell sum, Cell twice, std::int32_t count, Cell* to) {
        for (std::int32_t i = 0; i < count; ++i) {
            sum += value;
            twice += sum;
            to[i] = twice;
        }
    }

    void sum(const Row<Pixel<C>>& source) {
        if (sumTwice == nullptr) return sumPlainly(source);
        const int pixels = source.size();
        const Values first = premultiplied(source[0]);
        const Values end = premultiplied(source[pixels - 1]);
        RowToSumTwice<Cell> row = {.pixels = source.begin(), .count = pixels};
        for (std::size_t table = 0; table < 4; ++table) {
            Cell* const begin = &twice[table * width];
            sumRepeated(first[table], 0, 0, border, begin);
            row.start[table] = static_cast<std::uint32_t>(border) * first[table];
            row.startTwice[table] = begin[border - 1];
            row.sums[table] = begin + border;
        }
        sumTwice(row);
        for (std::size_t table = 0; table < 4; ++table) {
            Cell* const past = row.sums[table] + pixels;
            sumRepeated(end[table], past[-1] - past[-2], past[-1], border, past);
        }
    }

    void sumPlainly(const Row<Pixel<C>>& source) {
        std::array<Cell, 4> sums{};
        std::array<Cell, 4> sumsOfSums{};
        for (int tx = 0; tx < static_cast<int>(width); ++tx) {
            const Values values = premultiplied(source[std::clamp(tx - border, 0, source.size() - 1)]);
            for (std::size_t table = 0; table < 4; ++table) {
                sums[table] += values[table];
                sumsOfSums[table] += sums[table];
                twice[table * width + static_cast<std::size_t>(tx)] = sumsOfSums[table];
            }
        }
    }

    static void addDownPlainly(const RowToAddDown<Cell>& row) {
        for (std::size_t i = 0; i < row.count; ++i) {
            row.column[i] += row.addend[i];
            row.out[i] = row.above[i] + row.column[i];
        }
    }

    const std::int32_t border;
    void (*sumTwice)(const RowToSumTwice<Cell>& row) = nullptr;  // where vectors do it
    void (*addDown)(const RowToAddDown<Cell>& row) = nullptr;
    std::vector<Cell> twice;    // of red, green, blue and alpha, one row each
    std::vector<Cell> columns;  // likewise
    std::vector<Cell> top;      // zeros, above the top row
    bool isTop = true;
    const Pixel<C>* last = nullptr;  // the source row that `twice` is of
};

}  // namespace PILib::detail

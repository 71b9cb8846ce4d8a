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
          twice(kRowsAddedDown * 4 * width),
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

    // The next `count` table rows of red, green, blue and alpha, at most kRowsAddedDown, over the rows
    // sourceRow(0) to sourceRow(count - 1). Above each of `out` lies what was written before.
    template <class SourceRow>
    void writeNext(std::size_t count, SourceRow sourceRow, const std::array<Cell*, 4>& out) {
        std::array<const Cell*, kRowsAddedDown> summed{};
        for (std::size_t row = 0; row < count; ++row)
            summed[row] = sumsOf(sourceRow(static_cast<int>(row)));
        const bool byVectors = addDown != nullptr && count == kRowsAddedDown;
        for (std::size_t table = 0; table < 4; ++table) {
            RowsToAddDown<Cell> rows = {
                .addends = {},
                .column = &columns[table * width],
                .above = isTop ? top.data() : out[table] - width,
                .outs = {},
                .count = width,
            };
            for (std::size_t row = 0; row < count; ++row) {
                rows.addends[row] = summed[row] + table * width;
                rows.outs[row] = out[table] + row * width;
            }
            byVectors ? addDown(rows) : addDownPlainly(rows, count);
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

    // The running sums of running sums of red, green, blue and alpha, one behind the other. The last
    // kRowsAddedDown results stay where they are.
    const Cell* sumsOf(const Row<Pixel<C>>& source) {
        if (source.begin() != last) {
            set = (set + 1) % kRowsAddedDown;
            sumTwice != nullptr ? sum(source, setBegin()) : sumPlainly(source, setBegin());
            last = source.begin();
        }
        return setBegin();
    }

    Cell* setBegin() { return &twice[set * 4 * width]; }

    void sum(const Row<Pixel<C>>& source, Cell* to) const {
        const int pixels = source.size();
        const Values first = premultiplied(source[0]);
        const Values end = premultiplied(source[pixels - 1]);
        RowToSumTwice<Cell> row = {.pixels = source.begin(), .count = pixels};
        for (std::size_t table = 0; table < 4; ++table) {
            Cell* const begin = to + table * width;
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

    void sumPlainly(const Row<Pixel<C>>& source, Cell* to) const {
        std::array<Cell, 4> sums{};
        std::array<Cell, 4> sumsOfSums{};
        for (int tx = 0; tx < static_cast<int>(width); ++tx) {
            const Values values = premultiplied(source[std::clamp(tx - border, 0, source.size() - 1)]);
            for (std::size_t table = 0; table < 4; ++table) {
                sums[table] += values[table];
                sumsOfSums[table] += sums[table];
                to[table * width + static_cast<std::size_t>(tx)] = sumsOfSums[table];
            }
        }
    }

    static void addDownPlainly(const RowsToAddDown<Cell>& rows, std::size_t count) {
        const Cell* above = rows.above;
        for (std::size_t row = 0; row < count; ++row) {
            for (std::size_t i = 0; i < rows.count; ++i) {
                rows.column[i] += rows.addends[row][i];
                rows.outs[row][i] = above[i] + rows.column[i];
            }
            above = rows.outs[row];
        }
    }

    const std::int32_t border;
    void (*sumTwice)(const RowToSumTwice<Cell>& row) = nullptr;  // where vectors do it
    void (*addDown)(const RowsToAddDown<Cell>& rows) = nullptr;
    std::vector<Cell> twice;    // sets of red, green, blue and alpha, one row each
    std::vector<Cell> columns;  // one set
    std::vector<Cell> top;      // zeros, above the top row
    bool isTop = true;
    const Pixel<C>* last = nullptr;  // the source row that was summed last
    std::size_t set = 0;             // its sums in `twice`
};

}  // namespace PILib::detail

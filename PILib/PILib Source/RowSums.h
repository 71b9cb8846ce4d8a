// Table rows by vectors: the running sums of a source row once, then one addition per cell and table.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "BlurRowDispatch.h"
#include "FrameBuffer.h"
#include "SATBlurTables.h"
#include "SimdLevel.h"

namespace PILib::detail {

// The running sums of one source row after another, as table rows are wide. A row asked for again, as the
// border's rows are, is not summed again.
template <class C>
class RowSums {
public:
    // Whether the level's vectors form the sums faster than AccumulateRow does, and 32 bits hold them.
    static bool suits(SimdLevel level, int tableWidth) {
        return (level == SimdLevel::Avx2 || level == SimdLevel::Avx512) &&
               tableWidth <= std::numeric_limits<std::int32_t>::max() / C::kOne;
    }

    RowSums(SimdLevel level, int border, int tableWidth)
        : kernel(PrefixKernel<C>(level)),
          border(static_cast<std::size_t>(border)),
          width(static_cast<std::size_t>(tableWidth)),
          sums(4 * width) {}

    TableRows<const std::int32_t> of(const Row<Pixel<C>>& source) {
        if (source.begin() != last) sum(source);
        const std::int32_t* const red = sums.data();
        return {red, red + width, red + 2 * width, red + 3 * width};
    }

private:
    void sum(const Row<Pixel<C>>& source) {
        std::int32_t* const red = sums.data() + border;
        kernel({source.begin(), source.size(), red + 3 * width, red, red + width, red + 2 * width});
        for (int table = 0; table < 4; ++table)
            extend(sums.data() + static_cast<std::size_t>(table) * width,
                   static_cast<std::size_t>(source.size()));
        last = source.begin();
    }

    // The edge pixels once more for every column of the border.
    void extend(std::int32_t* row, std::size_t pixels) const {
        const std::int32_t first = row[border];
        const std::int32_t before = static_cast<std::int32_t>(border) * first;
        const std::int32_t final = row[border + pixels - 1];
        const std::int32_t lastValue = pixels == 1 ? first : final - row[border + pixels - 2];
        for (std::size_t tx = 0; tx < border; ++tx) {
            row[tx] = static_cast<std::int32_t>(tx + 1) * first;
            row[border + pixels + tx] = before + final + static_cast<std::int32_t>(tx + 1) * lastValue;
        }
        for (std::size_t tx = border; tx < border + pixels; ++tx)
            row[tx] += before;
    }

    void (*kernel)(const PrefixRow& row);
    std::size_t border;
    std::size_t width;
    std::vector<std::int32_t> sums;  // red, green, blue, alpha
    const Pixel<C>* last = nullptr;
};

inline void AddRow(std::uint32_t* out, const std::int32_t* sums, const std::uint32_t* up, int tableWidth) {
    for (int tx = 0; tx < tableWidth; ++tx)
        out[tx] = static_cast<std::uint32_t>(sums[tx]) + (up != nullptr ? up[tx] : 0);
}

// A table row from its running sums and the finished row above it, as AccumulateRow writes it. `up` is null
// for the top row.
inline void AddRows(const TableRows<const std::int32_t>& sums, int tableWidth,
                    const TableRows<std::uint32_t>& out, const TableRows<std::uint32_t>* up) {
    AddRow(out.red, sums.red, up != nullptr ? up->red : nullptr, tableWidth);
    AddRow(out.green, sums.green, up != nullptr ? up->green : nullptr, tableWidth);
    AddRow(out.blue, sums.blue, up != nullptr ? up->blue : nullptr, tableWidth);
    AddRow(out.alpha, sums.alpha, up != nullptr ? up->alpha : nullptr, tableWidth);
}

}  // namespace PILib::detail

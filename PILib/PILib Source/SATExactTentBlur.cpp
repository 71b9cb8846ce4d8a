#include "SATExactTentBlur.h"

#include <algorithm>
#include <cstdlib>
#include <type_traits>

#include "RowDispatch.h"
#include "SecondOrderRows.h"
#include "TentMean.h"

namespace PILib {

namespace {

// Whether 32 bits hold the weighted sum of a tent, whose weights add up to (halfX * halfY)^2.
bool FitsNarrowCells(int halfX, int halfY, int fullScale) {
    const auto product = static_cast<std::uint64_t>(halfX) * static_cast<std::uint64_t>(halfY);
    return product < 0x10000 && product * product * static_cast<std::uint64_t>(fullScale) <= 0xFFFFFFFF;
}

// The widest half of a tent that getBlur reads: a whole radius of half the border, and the next one.
int LargestHalf(int border) {
    return std::min(border / 2 + 2, border - 1);
}

}  // namespace

template <class P>
SATExactTentBlur<P>::SATExactTentBlur(PIContext& context, const FrameBuf<P>& source, int radiusX, int radiusY,
                                      SimdLevel level)
    : SATBlur<P>(context, source, detail::WidenedTentRadius(radiusX), detail::WidenedTentRadius(radiusY),
                 level) {
    if (!FitsNarrowCells(LargestHalf(this->borderX), LargestHalf(this->borderY), P::ChannelType::kOne))
        tables.template emplace<Tables<std::uint64_t>>();
    const auto allocate = [cells = this->tableCells()](auto& sums) {
        for (auto* table : {&sums.sumRed, &sums.sumGreen, &sums.sumBlue, &sums.sumAlpha}) {
            using Cell = std::remove_reference_t<decltype((*table)[0])>;
            *table = detail::MakeLargeArray<Cell>(cells);
        }
    };
    std::visit(allocate, tables);
}

template <class P>
template <class Cell>
void SATExactTentBlur<P>::build(Tables<Cell>& sums) {
    detail::SecondOrderRows<typename P::ChannelType, Cell> rows(this->level, this->borderX, this->tableWidth);
    // Progress tells of two passes, of which each builds half of the rows.
    int built = 0;
    const auto buildRowsTo = [&](int end) {
        while (built < end) {
            const int count = std::min(static_cast<int>(detail::kRowsAddedDown), this->tableHeight - built);
            const auto sourceRow = [&](int row) {
                return this->source.row(std::clamp(built + row - this->borderY, 0, this->height - 1));
            };
            const std::size_t start = static_cast<std::size_t>(built) * rows.width;
            rows.writeNext(
                static_cast<std::size_t>(count), sourceRow,
                {&sums.sumRed[start], &sums.sumGreen[start], &sums.sumBlue[start], &sums.sumAlpha[start]});
            built += count;
        }
    };
    for (int ty = 0; ty < this->tableHeight; ++ty) {
        this->context.progress(ty, this->tableHeight, 0.0F, 0.5F);
        buildRowsTo((ty + 1) / 2);
    }
    for (int ty = 0; ty < this->tableHeight; ++ty) {
        this->context.progress(ty, this->tableHeight, 0.5F, 1.0F);
        buildRowsTo((this->tableHeight + ty + 1) / 2);
    }
}

template <class P>
void SATExactTentBlur<P>::initialize() {
    std::visit([this](auto& sums) { this->build(sums); }, tables);
}

// The nine samples are drawn in rows/TentFilter.ipp.
template <class P>
auto SATExactTentBlur<P>::sumsFromTables(int x, int y, int halfX, int halfY) const -> Sums {
    const int centreX = x + this->borderX - 1;
    const int centreY = y + this->borderY - 1;
    const auto rowStart = [this](int ty) {
        return static_cast<std::size_t>(ty) * static_cast<std::size_t>(this->tableWidth);
    };
    const std::size_t rows[] = {rowStart(centreY - halfY), rowStart(centreY), rowStart(centreY + halfY)};
    const auto centre = static_cast<std::size_t>(centreX);
    const std::size_t left = centre - static_cast<std::size_t>(halfX);
    const std::size_t right = centre + static_cast<std::size_t>(halfX);
    const auto read = [&](const auto& sums) {
        const auto sum = [&](const auto& t) {
            const auto across = [&](std::size_t row) {
                return t[row + left] - 2 * t[row + centre] + t[row + right];
            };
            return std::uint64_t{across(rows[0]) - 2 * across(rows[1]) + across(rows[2])};
        };
        return Sums{sum(sums.sumAlpha), sum(sums.sumRed), sum(sums.sumGreen), sum(sums.sumBlue)};
    };
    return std::visit(read, tables);
}

template <class P>
auto SATExactTentBlur<P>::sumsFromPixels(int x, int y, int halfX, int halfY) const -> Sums {
    using C = typename P::ChannelType;
    Sums sums{};
    for (int dy = 1 - halfY; dy < halfY; ++dy) {
        const Row<P> row = this->source.row(std::clamp(y + dy, 0, this->height - 1));
        for (int dx = 1 - halfX; dx < halfX; ++dx) {
            const P& p = row[std::clamp(x + dx, 0, this->width - 1)];
            const auto weight = static_cast<std::uint64_t>(halfX - std::abs(dx)) *
                                static_cast<std::uint64_t>(halfY - std::abs(dy));
            sums.alpha += weight * p.alpha;
            sums.red += weight * C::mul(p.red, p.alpha);
            sums.green += weight * C::mul(p.green, p.alpha);
            sums.blue += weight * C::mul(p.blue, p.alpha);
        }
    }
    return sums;
}

template <class P>
P SATExactTentBlur<P>::getBlurInt(int x, int y, int radiusX, int radiusY) {
    const int halfX = std::clamp(radiusX, -1, this->borderX - 2) + 1;
    const int halfY = std::clamp(radiusY, -1, this->borderY - 2) + 1;
    const bool isHeld = tables.index() != 0 || FitsNarrowCells(halfX, halfY, P::ChannelType::kOne);
    const Sums sums = isHeld ? sumsFromTables(x, y, halfX, halfY) : sumsFromPixels(x, y, halfX, halfY);
    const detail::TentMean mean(halfX, halfY);
    const auto filtered = [&mean](std::uint64_t sum) {
        return mean.template of<typename P::Type>(static_cast<double>(static_cast<std::int64_t>(sum)));
    };
    return P(filtered(sums.alpha), filtered(sums.red), filtered(sums.green), filtered(sums.blue));
}

template <class P>
void SATExactTentBlur<P>::getBlurRow(int x, int y, const typename P::Type* map, const P* input, P* output,
                                     int count, float radiusX, float radiusY) {
    if (!this->hasRowKernel(radiusX, radiusY)) {
        SATBlur<P>::getBlurRow(x, y, map, input, output, count, radiusX, radiusY);
        return;
    }
    const auto& kernels = detail::KernelsFor<typename P::ChannelType>(this->level);
    const auto read = [&](const auto& sums) {
        const auto row = detail::RowOf(*this, sums, x, y, map, input, output, count, radiusX, radiusY);
        if constexpr (sizeof(*row.alpha) == sizeof(std::uint32_t)) {
            kernels.narrowTent(row);
        } else {
            kernels.wideTent(row);
        }
    };
    std::visit(read, tables);
}

template class SATExactTentBlur<Pixel<Channel8>>;
template class SATExactTentBlur<Pixel<Channel15>>;

}  // namespace PILib

#include "SATTentBlur.h"

#include <algorithm>
#include <limits>
#include <vector>

#include "FirstOrderRow.h"
#include "RowDispatch.h"

namespace PILib {

namespace {

// The tables are built for two pixels more than asked for. A negative radius stays one, for the base to
// refuse.
int Widened(int radius) {
    constexpr int kExtraRadius = 2;
    return radius < 0 ? radius
                      : std::min(radius, std::numeric_limits<int>::max() - kExtraRadius) + kExtraRadius;
}

// The running state of one channel's row of second-order sums.
struct SecondOrder {
    double left = 0.0;
    double aboveLeft = 0.0;

    // These sums may exceed what a double holds exactly, so the order of the three operations is part of the
    // result.
    double next(double entry, double above) {
        left = entry + left + above - aboveLeft;
        aboveLeft = above;
        return left;
    }
};

// One row of one table, and what its second-order sums are made from.
struct TableRow {
    const double* firstOrder;
    const double* above;
    double* out;
};

// The four tables go side by side, as each waits for its own last sum.
void Accumulate(const TableRow& red, const TableRow& green, const TableRow& blue, const TableRow& alpha,
                int tableWidth) {
    SecondOrder sumRed;
    SecondOrder sumGreen;
    SecondOrder sumBlue;
    SecondOrder sumAlpha;
    for (int tx = 0; tx < tableWidth; ++tx) {
        red.out[tx] = sumRed.next(red.firstOrder[tx], red.above[tx]);
        green.out[tx] = sumGreen.next(green.firstOrder[tx], green.above[tx]);
        blue.out[tx] = sumBlue.next(blue.firstOrder[tx], blue.above[tx]);
        alpha.out[tx] = sumAlpha.next(alpha.firstOrder[tx], alpha.above[tx]);
    }
}

// Truncates toward zero into a channel's width. Values that no integer holds, which only a wrapped
// normalisation gives, become 0 on every machine.
template <class T>
T Narrowed(double value) {
    constexpr double kLimit = 9223372036854775808.0;  // 2^63
    return value > -kLimit && value < kLimit ? static_cast<T>(static_cast<std::int64_t>(value)) : T{0};
}

}  // namespace

template <class P>
SATTentBlur<P>::SATTentBlur(PIContext& context, const FrameBuf<P>& source, int radiusX, int radiusY,
                            SimdLevel level)
    : SATBlur<P>(context, source, Widened(radiusX), Widened(radiusY), level),
      sumRed(detail::MakeLargeArray<double>(this->tableCells())),
      sumGreen(detail::MakeLargeArray<double>(this->tableCells())),
      sumBlue(detail::MakeLargeArray<double>(this->tableCells())),
      sumAlpha(detail::MakeLargeArray<double>(this->tableCells())) {}

template <class P>
void SATTentBlur<P>::initialize() {
    detail::FirstOrderRow<typename P::ChannelType, double> row(this->level, this->borderX, this->tableWidth);
    const std::vector<double> zeros(row.width);  // above the top row
    const auto buildRow = [&](int ty) {
        row.advance(this->source.row(std::clamp(ty - this->borderY, 0, this->height - 1)));
        const auto rowOf = [&](const double* firstOrder, const Table& table) {
            double* const out = &table[static_cast<std::size_t>(ty) * row.width];
            return TableRow{firstOrder, ty == 0 ? zeros.data() : out - row.width, out};
        };
        Accumulate(rowOf(row.red(), sumRed), rowOf(row.green(), sumGreen), rowOf(row.blue(), sumBlue),
                   rowOf(row.alpha(), sumAlpha), this->tableWidth);
    };
    // Progress tells of two passes, of which each builds half of the rows.
    int built = 0;
    const auto buildRowsTo = [&](int end) {
        while (built < end)
            buildRow(built++);
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
P SATTentBlur<P>::getBlurInt(int x, int y, int radiusX, int radiusY) {
    const int halfX = std::clamp(radiusX, -1, this->borderX - 2) + 1;
    const int halfY = std::clamp(radiusY, -1, this->borderY - 2) + 1;
    const int centreX = x + this->borderX - 1;
    const int centreY = y + this->borderY - 1;
    const auto rowStart = [this](int ty) {
        return static_cast<std::size_t>(ty) * static_cast<std::size_t>(this->tableWidth);
    };
    const std::size_t top = rowStart(centreY - halfY);
    const std::size_t middle = rowStart(centreY);
    const std::size_t bottom = rowStart(centreY + halfY);
    const auto centre = static_cast<std::size_t>(centreX);
    const std::size_t left = centre - static_cast<std::size_t>(halfX);
    const std::size_t right = centre + static_cast<std::size_t>(halfX);

    const std::uint32_t weight = static_cast<std::uint32_t>(halfX) * static_cast<std::uint32_t>(halfY);
    const double reciprocal = 1.0 / static_cast<double>(static_cast<std::int32_t>(weight * weight));

    // The order of the terms is part of the result.
    const auto filtered = [&](const Table& t) {
        const double sum = t[top + left] - 2.0 * t[top + centre] + t[top + right] - 2.0 * t[middle + left] +
                           4.0 * t[middle + centre] - 2.0 * t[middle + right] + t[bottom + left] -
                           2.0 * t[bottom + centre] + t[bottom + right];
        return Narrowed<typename P::Type>(sum * reciprocal + 0.5);
    };
    return P(filtered(sumAlpha), filtered(sumRed), filtered(sumGreen), filtered(sumBlue));
}

template <class P>
void SATTentBlur<P>::getBlurRow(int x, int y, const typename P::Type* map, const P* input, P* output,
                                int count, float radiusX, float radiusY) {
    if (!this->hasRowKernel(radiusX, radiusY)) {
        SATBlur<P>::getBlurRow(x, y, map, input, output, count, radiusX, radiusY);
        return;
    }
    const auto& kernels = detail::KernelsFor<typename P::ChannelType>(this->level);
    kernels.tent(detail::RowOf(*this, x, y, map, input, output, count, radiusX, radiusY));
}

template class SATTentBlur<Pixel<Channel8>>;
template class SATTentBlur<Pixel<Channel15>>;

}  // namespace PILib

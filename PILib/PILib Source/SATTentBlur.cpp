#include "SATTentBlur.h"

#include <algorithm>

#include "TentMean.h"

namespace PILib {

template <class P>
SATTentBlur<P>::SATTentBlur(PIContext& context, const FrameBuf<P>& source, int radiusX, int radiusY)
    : SATBlur<P>(context, source, detail::WidenedTentRadius(radiusX), detail::WidenedTentRadius(radiusY),
                 SimdLevel::Scalar),
      sumRed(detail::MakeLargeArray<double>(this->tableCells())),
      sumGreen(detail::MakeLargeArray<double>(this->tableCells())),
      sumBlue(detail::MakeLargeArray<double>(this->tableCells())),
      sumAlpha(detail::MakeLargeArray<double>(this->tableCells())) {}

template <class P>
void SATTentBlur<P>::initialize() {
    using C = typename P::ChannelType;
    const auto stride = static_cast<std::size_t>(this->tableWidth);
    // The sum at a cell of its own entry and its neighbours' sums. Second-order sums may exceed what a double
    // holds exactly, so the order of the operations is part of the result.
    const auto sum = [stride](const Table& table, std::size_t cell, bool hasLeft, bool hasAbove,
                              double entry) {
        const double left = hasLeft ? table[cell - 1] : 0.0;
        const double above = hasAbove ? table[cell - stride] : 0.0;
        const double aboveLeft = hasLeft && hasAbove ? table[cell - stride - 1] : 0.0;
        return entry + left + above - aboveLeft;
    };
    for (int ty = 0; ty < this->tableHeight; ++ty) {
        this->context.progress(ty, this->tableHeight, 0.0F, 0.5F);
        const Row<P> row = this->source.row(std::clamp(ty - this->borderY, 0, this->height - 1));
        for (int tx = 0; tx < this->tableWidth; ++tx) {
            const P& p = row[std::clamp(tx - this->borderX, 0, this->width - 1)];
            const std::size_t cell = static_cast<std::size_t>(ty) * stride + static_cast<std::size_t>(tx);
            const auto fill = [&](Table& table, std::uint32_t value) {
                table[cell] = sum(table, cell, tx > 0, ty > 0, static_cast<double>(value));
            };
            fill(sumRed, C::mul(p.red, p.alpha));
            fill(sumGreen, C::mul(p.green, p.alpha));
            fill(sumBlue, C::mul(p.blue, p.alpha));
            fill(sumAlpha, p.alpha);
        }
    }
    for (int ty = 0; ty < this->tableHeight; ++ty) {
        this->context.progress(ty, this->tableHeight, 0.5F, 1.0F);
        for (int tx = 0; tx < this->tableWidth; ++tx) {
            const std::size_t cell = static_cast<std::size_t>(ty) * stride + static_cast<std::size_t>(tx);
            for (Table* table : {&sumRed, &sumGreen, &sumBlue, &sumAlpha})
                (*table)[cell] = sum(*table, cell, tx > 0, ty > 0, (*table)[cell]);
        }
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

    const detail::TentMean mean(halfX, halfY);

    // The order of the terms is part of the result.
    const auto filtered = [&](const Table& t) {
        const double sum = t[top + left] - 2.0 * t[top + centre] + t[top + right] - 2.0 * t[middle + left] +
                           4.0 * t[middle + centre] - 2.0 * t[middle + right] + t[bottom + left] -
                           2.0 * t[bottom + centre] + t[bottom + right];
        return mean.template of<typename P::Type>(sum);
    };
    return P(filtered(sumAlpha), filtered(sumRed), filtered(sumGreen), filtered(sumBlue));
}

template class SATTentBlur<Pixel<Channel8>>;
template class SATTentBlur<Pixel<Channel15>>;

}  // namespace PILib

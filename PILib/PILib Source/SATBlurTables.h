// What the builds of the box and the tent tables share: one row of first-order sums from one row of the
// source.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "FrameBuffer.h"

namespace PILib::detail {

// Four table rows side by side: the row being written and the finished one above it.
template <class T>
struct TableRows {
    T* red;
    T* green;
    T* blue;
    T* alpha;
};

// The rows of row `ty` of four row-major tables of `tableWidth` columns.
template <class T, class Table>
TableRows<T> RowsAt(const Table& red, const Table& green, const Table& blue, const Table& alpha,
                    int tableWidth, int ty) {
    const std::size_t start = static_cast<std::size_t>(ty) * static_cast<std::size_t>(tableWidth);
    return {&red[start], &green[start], &blue[start], &alpha[start]};
}

// Writes one table row of first-order sums: entry = value + left + up - up-left, which is the running sum of
// the row's premultiplied values plus the entry above. Both forms are exact: the integers wrap alike, and the
// doubles hold whole numbers far below 2^53. `up` is null for the top row.
template <class C, class T>
void AccumulateRow(const Row<Pixel<C>>& source, int border, int tableWidth, const TableRows<T>& out,
                   const TableRows<T>* up) {
    T red{};
    T green{};
    T blue{};
    T alpha{};
    for (int tx = 0; tx < tableWidth; ++tx) {
        const Pixel<C>& p = source[std::clamp(tx - border, 0, source.size() - 1)];
        red += static_cast<T>(C::mul(p.red, p.alpha));
        green += static_cast<T>(C::mul(p.green, p.alpha));
        blue += static_cast<T>(C::mul(p.blue, p.alpha));
        alpha += static_cast<T>(p.alpha);
        out.red[tx] = up != nullptr ? red + up->red[tx] : red;
        out.green[tx] = up != nullptr ? green + up->green[tx] : green;
        out.blue[tx] = up != nullptr ? blue + up->blue[tx] : blue;
        out.alpha[tx] = up != nullptr ? alpha + up->alpha[tx] : alpha;
    }
}

}  // namespace PILib::detail

// Tent blur read out at constant cost: a separable triangular filter of any radius, from the summed-area
// table of a summed-area table. Used like SATBoxBlur and covers the same pixels: a tent of radius r weighs
// them r + 1 - |d|. Its sums are doubles, which round on large pictures, and it is read pixel by pixel:
// SATExactTentBlur renders.
#pragma once

#include "SATBlur.h"

namespace PILib {

// Memory: 32 bytes per table cell. Two more cells of border on each side than the box blur of the same
// radius.
template <class P>
class SATTentBlur : public SATBlur<P> {
public:
    SATTentBlur(PIContext& context, const FrameBuf<P>& source, int radiusX, int radiusY);

    // The weights are normalised by a 32-bit product that wraps: exact while (radiusX + 1) * (radiusY + 1)
    // stays below 46341.
    P getBlurInt(int x, int y, int radiusX, int radiusY) override;

    // Progress in two passes. Deliberate: the second reports beyond the end of the progress range.
    // Pinned by SATTentBlurTest.SecondPassReportsPastTheEndOfItsRange.
    void initialize() override;

    // tableWidth x tableHeight, row-major: the second-order sum at a cell, each addition in the given
    // order. Colours are premultiplied.
    using Table = detail::LargeArray<double>;
    Table sumRed;
    Table sumGreen;
    Table sumBlue;
    Table sumAlpha;
};

extern template class SATTentBlur<Pixel<Channel8>>;
extern template class SATTentBlur<Pixel<Channel15>>;

}  // namespace PILib

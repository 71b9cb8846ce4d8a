// Tent blur whose sums are exact. Used like SATTentBlur, with its geometry and its progress reports; its
// tables hold integers that wrap, as SATBoxBlur's do, where SATTentBlur's doubles round on large pictures.
// Wherever those doubles are exact, the bytes are SATTentBlur's.
#pragma once

#include <variant>

#include "SATBlur.h"

namespace PILib {

// Memory: 16 bytes per table cell where 32-bit sums hold every read-out of getBlur (see
// docs/numerics.md), else 32.
template <class P>
class SATExactTentBlur : public SATBlur<P> {
public:
    SATExactTentBlur(PIContext& context, const FrameBuf<P>& source, int radiusX, int radiusY,
                     SimdLevel level = BestSimdLevel());

    // Radii that getBlur never asks for, more than one beyond half of the border, may be summed pixel by
    // pixel.
    P getBlurInt(int x, int y, int radiusX, int radiusY) override;

    // Progress in two passes, as SATTentBlur's.
    void initialize() override;

    void getBlurRow(int x, int y, const typename P::Type* map, const P* input, P* output, int count,
                    float radiusX, float radiusY) override;

    // Each tableWidth x tableHeight, row-major: the second-order sum at a cell, modulo 2^32 or 2^64. Colours
    // are premultiplied.
    template <class Cell>
    struct Tables {
        using Table = detail::LargeArray<Cell>;
        Table sumRed;
        Table sumGreen;
        Table sumBlue;
        Table sumAlpha;
    };
    std::variant<Tables<std::uint32_t>, Tables<std::uint64_t>> tables;

private:
    template <class Cell>
    void build(Tables<Cell>& sums);
    // The weighted sums of a tent's window.
    struct Sums {
        std::uint64_t alpha;
        std::uint64_t red;
        std::uint64_t green;
        std::uint64_t blue;
    };
    Sums sumsFromTables(int x, int y, int halfX, int halfY) const;
    Sums sumsFromPixels(int x, int y, int halfX, int halfY) const;
};

extern template class SATExactTentBlur<Pixel<Channel8>>;
extern template class SATExactTentBlur<Pixel<Channel15>>;

}  // namespace PILib

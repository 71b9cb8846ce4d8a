// Blurs that can be read out at any pixel and any radius at constant cost, from summed-area tables.
//
// Use: construct, initialize() once on one thread, then getBlur()/getBlurInt() from any number of threads.
// Radii are whole pixels in getBlurInt and 16.16 fixed point (65536 = one pixel) in getBlur. Positions are
// source pixels and must lie in the image. The source holds straight colour, every channel 0 to full scale
// (kOne; 15-bit codes beyond it spoil the pixels that read them, differently at each level, and do no other
// harm); it is referenced, not copied, and must outlive the blur, as must the context. An image without
// pixels has no blur: the constructor's assertion fails.
#pragma once

#include <cstddef>
#include <cstdint>

#include "FrameBuffer.h"
#include "LargeArray.h"
#include "PIContext.h"
#include "SimdLevel.h"

namespace PILib {

template <class P>
class SATBlur {
public:
    // `radiusX` and `radiusY` are the largest whole radii that will be asked for, not negative. They are
    // lowered together, and silently, where the 32-bit sums of the box blur could overflow.
    SATBlur(PIContext& context, const FrameBuf<P>& source, int radiusX, int radiusY,
            SimdLevel level = BestSimdLevel());

    // Slot order is given; append only.
    virtual ~SATBlur() = default;

    // The blurred pixel at (x, y), straight; transparent where the blurred alpha is 0. Radii above the
    // largest that the blur accepts are held there; there is no lower limit.
    virtual P getBlur(int x, int y, std::int32_t radiusX, std::int32_t radiusY);

    // The same for whole radii, premultiplied. Radii are clamped to what the tables hold.
    virtual P getBlurInt(int x, int y, int radiusX, int radiusY) = 0;

    // Fills the tables. Reports progress before each table row; passes on what the context throws.
    virtual void initialize() = 0;

    // `count` pixels of a row at once: output[i] is getBlur(x + i, y) at the radius that map[i] gives, full
    // scale meaning `radiusX` and `radiusY` pixels, or input[i] where map[i] is 0. Every level gives the
    // bytes of the per-pixel read-out. x .. x + count - 1 lies in the image; `output` may be `input`.
    // Allocates nothing. SATBoxBlur and SATExactTentBlur do not call getBlur for it: a class that overrides
    // theirs overrides this too.
    using MapValue = typename P::Type;
    virtual void getBlurRow(int x, int y, const MapValue* map, const P* input, P* output, int count,
                            float radiusX, float radiusY);

    SATBlur(const SATBlur&) = delete;
    SATBlur& operator=(const SATBlur&) = delete;

    // Field order is given. A table cell (tx, ty) stands for source pixel (tx - borderX, ty - borderY), both
    // coordinates clamped into the image: the border replicates the edge pixels.
    std::int32_t width;
    std::int32_t height;
    std::int32_t borderX;  // largest whole radius plus 1
    std::int32_t borderY;
    std::int32_t tableWidth;  // cells
    std::int32_t tableHeight;
    std::int32_t maxFixedRadiusX;  // 16.16; what getBlur caps its radii at
    std::int32_t maxFixedRadiusY;
    PIContext& context;
    const FrameBuf<P>& source;

protected:
    // Cells to allocate for one table, a few more than it has; throws std::bad_alloc if they cannot be
    // addressed.
    std::size_t tableCells() const;
    // Whether the vector kernels can read rows of these radii.
    bool hasRowKernel(float radiusX, float radiusY) const;

    SimdLevel level;
};

// Box blur: the mean of (2 * radiusX + 1) x (2 * radiusY + 1) pixels. Memory: 16 bytes per table cell.
template <class P>
class SATBoxBlur : public SATBlur<P> {
public:
    SATBoxBlur(PIContext& context, const FrameBuf<P>& source, int radiusX, int radiusY,
               SimdLevel level = BestSimdLevel());

    P getBlurInt(int x, int y, int radiusX, int radiusY) override;
    void initialize() override;
    void getBlurRow(int x, int y, const typename P::Type* map, const P* input, P* output, int count,
                    float radiusX, float radiusY) override;

    // tableWidth x tableHeight, row-major: the sum of the channel over all cells up and left of a cell,
    // itself included, modulo 2^32. Colours are premultiplied.
    using Table = detail::LargeArray<std::uint32_t>;
    Table sumRed;
    Table sumGreen;
    Table sumBlue;
    Table sumAlpha;
};

extern template class SATBlur<Pixel<Channel8>>;
extern template class SATBlur<Pixel<Channel15>>;
extern template class SATBoxBlur<Pixel<Channel8>>;
extern template class SATBoxBlur<Pixel<Channel15>>;

}  // namespace PILib

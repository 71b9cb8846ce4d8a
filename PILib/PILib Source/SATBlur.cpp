#include "SATBlur.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <new>

#include "FirstOrderRow.h"
#include "RowDispatch.h"

namespace PILib {

namespace {

// One interpolation step of the fractional read-out: c0 plus `fraction` / 65536 of the way to c1, rounded to
// nearest.
std::int64_t Interpolated(std::int64_t c0, std::int64_t c1, std::int64_t fraction) {
    return c0 + ((fraction * (c1 - c0) + 32768) >> 16);
}

// Deliberate: held at half of the border (border << 15 in 16.16), below the radius that the constructor
// accepted. Pinned by SATBlurTest.FractionalRadiusIsHeldAtHalfTheBorder.
std::int32_t MaxFixedRadius(std::int32_t border) {
    return static_cast<std::int32_t>(
        std::min<std::int64_t>(std::int64_t{border} << 15, std::numeric_limits<std::int32_t>::max()));
}

// A 16.16 share of a radius, truncated; beyond what 16.16 holds, the largest.
std::int32_t FixedRadius(std::int32_t share, float radius) {
    const float fixed = static_cast<float>(share) * radius;
    return fixed >= 2147483648.0F ? std::numeric_limits<std::int32_t>::max() : TruncToInt32(fixed);
}

std::int32_t WithBorders(std::int32_t size, std::int64_t border) {
    const std::int64_t cells = size + 2 * border;
    if (cells > std::numeric_limits<std::int32_t>::max()) throw std::bad_alloc();
    return static_cast<std::int32_t>(cells);
}

}  // namespace

template <class P>
SATBlur<P>::SATBlur(PIContext& context, const FrameBuf<P>& source, int radiusX, int radiusY, SimdLevel level)
    : width(source.width),
      height(source.height),
      context(context),
      source(source),
      level(IsSupported(level) ? level : SimdLevel::Scalar) {
    _Assert(radiusX >= 0 && radiusY >= 0, site::kRadiusNotNegative, site::kSATBlurFile);
    _Assert(width > 0 && height > 0, site::kSourceNotEmpty, site::kSATBlurFile);

    // A box's true sum must fit in 32 bits. Deliberate: the product of the radii is what is limited, not the
    // box's area. Pinned by SATBlurTest.RadiiAreLimitedByTheirProduct.
    constexpr float kLimit = 4166118400.0F;  // 0.97 * 2^32
    const float product =
        static_cast<float>(radiusX) * static_cast<float>(radiusY) * P::ChannelType::kFloatOne;
    if (product > kLimit) {
        const float scale = std::sqrt(kLimit / product);
        radiusX = TruncToInt32(static_cast<float>(radiusX) * scale);
        radiusY = TruncToInt32(static_cast<float>(radiusY) * scale);
    }
    tableWidth = WithBorders(width, std::int64_t{radiusX} + 1);
    tableHeight = WithBorders(height, std::int64_t{radiusY} + 1);
    borderX = radiusX + 1;
    borderY = radiusY + 1;
    maxFixedRadiusX = MaxFixedRadius(borderX);
    maxFixedRadiusY = MaxFixedRadius(borderY);
}

template <class P>
std::size_t SATBlur<P>::tableCells() const {
    const std::uint64_t cells =
        static_cast<std::uint64_t>(tableWidth) * static_cast<std::uint64_t>(tableHeight);
    // The larger entries in half of the address space, so that differences of addresses fit too.
    if (cells > std::numeric_limits<std::size_t>::max() / (2 * sizeof(double))) throw std::bad_alloc();
    return static_cast<std::size_t>(cells) + detail::kTableSlack;
}

template <class P>
bool SATBlur<P>::hasRowKernel(float radiusX, float radiusY) const {
    // What is read out is capped by the row's radius and by the tables. Tables of radius 0 are
    // clamped at both ends of the read-out; they are left to getBlur.
    constexpr float kFixedLimit = static_cast<float>(detail::kLargestWholeRadius + 1) * 65536.0F;
    const auto fits = [](float radius, std::int32_t maxFixed) {
        return radius >= 0.0F && radius <= detail::kLargestRowRadius &&
               std::min(radius * 65536.0F, static_cast<float>(maxFixed)) < kFixedLimit;
    };
    return level != SimdLevel::Scalar && borderX > 1 && borderY > 1 && fits(radiusX, maxFixedRadiusX) &&
           fits(radiusY, maxFixedRadiusY);
}

template <class P>
void SATBlur<P>::getBlurRow(int x, int y, const MapValue* map, const P* input, P* output, int count,
                            float radiusX, float radiusY) {
    for (int i = 0; i < count; ++i) {
        if (map[i] == 0) {
            output[i] = input[i];
            continue;
        }
        const std::int32_t share = P::ChannelType::toFixed(map[i]);
        output[i] = getBlur(x + i, y, FixedRadius(share, radiusX), FixedRadius(share, radiusY));
    }
}

template <class P>
P SATBlur<P>::getBlur(int x, int y, std::int32_t radiusX, std::int32_t radiusY) {
    using Type = typename P::Type;
    radiusX = std::min(radiusX, maxFixedRadiusX);
    radiusY = std::min(radiusY, maxFixedRadiusY);
    const int wholeX = radiusX >> 16;
    const int wholeY = radiusY >> 16;
    const int fractionX = radiusX & 0xFFFF;
    const int fractionY = radiusY & 0xFFFF;

    const P p00 = getBlurInt(x, y, wholeX, wholeY);
    const P p10 = getBlurInt(x, y, wholeX + 1, wholeY);
    const P p01 = getBlurInt(x, y, wholeX, wholeY + 1);

    // Deliberate: the mean of a horizontal and a vertical interpolation, not a bilinear one.
    // Pinned by SATBlurTest.FractionalReadOutAveragesTwoInterpolations.
    const auto mixed = [fractionX, fractionY](Type c00, Type c10, Type c01) {
        return (Interpolated(c00, c10, fractionX) + Interpolated(c00, c01, fractionY)) >> 1;
    };
    const std::int64_t alpha = mixed(p00.alpha, p10.alpha, p01.alpha);
    if (alpha == 0) return P::kTransparentColor;
    P result(static_cast<Type>(alpha), static_cast<Type>(mixed(p00.red, p10.red, p01.red)),
             static_cast<Type>(mixed(p00.green, p10.green, p01.green)),
             static_cast<Type>(mixed(p00.blue, p10.blue, p01.blue)));
    return straighten(result);
}

template <class P>
SATBoxBlur<P>::SATBoxBlur(PIContext& context, const FrameBuf<P>& source, int radiusX, int radiusY,
                          SimdLevel level)
    : SATBlur<P>(context, source, radiusX, radiusY, level),
      sumRed(detail::MakeLargeArray<std::uint32_t>(this->tableCells())),
      sumGreen(detail::MakeLargeArray<std::uint32_t>(this->tableCells())),
      sumBlue(detail::MakeLargeArray<std::uint32_t>(this->tableCells())),
      sumAlpha(detail::MakeLargeArray<std::uint32_t>(this->tableCells())) {}

template <class P>
void SATBoxBlur<P>::initialize() {
    detail::FirstOrderRow<typename P::ChannelType> row(this->level, this->borderX, this->tableWidth);
    for (int ty = 0; ty < this->tableHeight; ++ty) {
        this->context.progress(ty, this->tableHeight, 0.0F, 1.0F);
        row.advance(this->source.row(std::clamp(ty - this->borderY, 0, this->height - 1)));
        const std::size_t start = static_cast<std::size_t>(ty) * row.width;
        std::copy_n(row.red(), row.width, &sumRed[start]);
        std::copy_n(row.green(), row.width, &sumGreen[start]);
        std::copy_n(row.blue(), row.width, &sumBlue[start]);
        std::copy_n(row.alpha(), row.width, &sumAlpha[start]);
    }
}

template <class P>
P SATBoxBlur<P>::getBlurInt(int x, int y, int radiusX, int radiusY) {
    radiusX = std::clamp(radiusX, 0, this->borderX - 1);
    radiusY = std::clamp(radiusY, 0, this->borderY - 1);
    const int centreX = x + this->borderX;
    const int centreY = y + this->borderY;
    const auto cell = [this](int tx, int ty) {
        return static_cast<std::size_t>(ty) * static_cast<std::size_t>(this->tableWidth) +
               static_cast<std::size_t>(tx);
    };
    const std::size_t bottomRight = cell(centreX + radiusX, centreY + radiusY);
    const std::size_t bottomLeft = cell(centreX - radiusX - 1, centreY + radiusY);
    const std::size_t topRight = cell(centreX + radiusX, centreY - radiusY - 1);
    const std::size_t topLeft = cell(centreX - radiusX - 1, centreY - radiusY - 1);
    const std::uint32_t area =
        (2 * static_cast<std::uint32_t>(radiusX) + 1) * (2 * static_cast<std::uint32_t>(radiusY) + 1);

    // The border makes every box full-sized, so there is no special case at the image's edges.
    const auto mean = [&](const Table& table) {
        const std::uint32_t sum = table[bottomRight] - table[bottomLeft] - table[topRight] + table[topLeft];
        return static_cast<typename P::Type>(sum / area);
    };
    return P(mean(sumAlpha), mean(sumRed), mean(sumGreen), mean(sumBlue));
}

template <class P>
void SATBoxBlur<P>::getBlurRow(int x, int y, const typename P::Type* map, const P* input, P* output,
                               int count, float radiusX, float radiusY) {
    if (!this->hasRowKernel(radiusX, radiusY)) {
        SATBlur<P>::getBlurRow(x, y, map, input, output, count, radiusX, radiusY);
        return;
    }
    const auto& kernels = detail::KernelsFor<typename P::ChannelType>(this->level);
    kernels.box(detail::RowOf(*this, *this, x, y, map, input, output, count, radiusX, radiusY));
}

template class SATBlur<Pixel<Channel8>>;
template class SATBlur<Pixel<Channel15>>;
template class SATBoxBlur<Pixel<Channel8>>;
template class SATBoxBlur<Pixel<Channel15>>;

}  // namespace PILib

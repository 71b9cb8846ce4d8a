// What the two filters of the row kernels, Box and Tent, have in common: how the pixels of a group are read,
// and how one pixel is. Premultiplied, and in each lane what getBlurInt gives.
//
// Blocks of more than kMostRuns runs of equal radii are read pixel by pixel, as so many groups were measured
// to cost more; where it is kLanes, all blocks are read by groups.
#pragma once

#include <cstddef>

#include "BlurRowCells.ipp"
#include "RowLanes.ipp"

namespace PILib::detail {

namespace {

// One group: whole radii, and the next larger ones, that all its pixels share.
struct Group {
    std::ptrdiff_t wholeX;
    std::ptrdiff_t nextX;
    std::ptrdiff_t wholeY;
    std::ptrdiff_t nextY;
};

// A channel's means around a group's pixels: at the whole radii, at the next one across, at the next one
// down.
template <class V>
struct Means {
    V whole;
    V across;
    V down;
};

// One pixel read out by itself: each channel at the whole radii and then at the next radius across, and each
// channel at the next radius down.
struct PixelValues {
    Pixel4x2 wholeAndAcross;
    Pixel4 down;
};

}  // namespace

}  // namespace PILib::detail

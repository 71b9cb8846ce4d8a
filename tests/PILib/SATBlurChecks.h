// What every blur by tables does alike.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "FakeContext.h"
#include "FrameBuffer.h"
#include "OracleBuffers.h"

// An image of one colour stays so at every pixel and radius.
template <template <class> class Blur, class C>
void ExpectUniformImageKeepsItsColour() {
    const oracle::Colour colour{oracle::kFull<C>, 200, 0, oracle::kFull<C>};
    oracle::Image image(6, 4, oracle::kFull<C>);
    std::fill(image.values.begin(), image.values.end(), colour);
    const PILib::SimplePixelBuffer<PILib::Pixel<C>> source(6, 4);
    oracle::Store<C>(image, source);
    FakeContext context;
    Blur<PILib::Pixel<C>> blur(context, source, 12, 9);
    blur.initialize();
    for (int y = 0; y < 4; ++y) {
        for (int x = 0; x < 6; ++x) {
            for (int r = 0; r <= 12; ++r) {
                const std::int32_t fixed = r * 32768 + 12345;
                ASSERT_EQ(colour, oracle::ColourOf(blur.getBlurInt(x, y, r, 12 - r)))
                    << x << ", " << y << ", " << r;
                ASSERT_EQ(colour, oracle::ColourOf(blur.getBlur(x, y, fixed, fixed)))
                    << x << ", " << y << ", " << r;
            }
        }
    }
}

// Each table's cell (tx, ty) holds sumAt(channel, tx, ty).
template <class Blur, class SumAt>
void ExpectTablesHold(const Blur& blur, const SumAt& sumAt) {
    for (int ty = 0; ty < blur.tableHeight; ++ty) {
        for (int tx = 0; tx < blur.tableWidth; ++tx) {
            const auto cell = static_cast<std::size_t>(ty * blur.tableWidth + tx);
            ASSERT_EQ(sumAt(oracle::kAlpha, tx, ty), blur.sumAlpha[cell]) << tx << ", " << ty;
            ASSERT_EQ(sumAt(oracle::kRed, tx, ty), blur.sumRed[cell]) << tx << ", " << ty;
            ASSERT_EQ(sumAt(oracle::kGreen, tx, ty), blur.sumGreen[cell]) << tx << ", " << ty;
            ASSERT_EQ(sumAt(oracle::kBlue, tx, ty), blur.sumBlue[cell]) << tx << ", " << ty;
        }
    }
}

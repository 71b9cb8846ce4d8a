// Scene depths as a layer of an effect has them: near is white, far is black.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "Picture.h"

namespace pictures {

// Depths from `near` to `far`, in the file's units; `near` may be the greater number. What is beyond them,
// infinite, not a number or 1e10 and more is as far as can be.
struct DepthRange {
    double near = 0;
    double far = 1;
    bool isReciprocal = false;  // even steps of 1 / depth, not of depth
};

// "2.5:40" or "2.5:40:reciprocal"; absent where the text is neither, or near and far are equal, or a
// reciprocal one has a depth that is not above 0.
std::optional<DepthRange> parseDepthRange(std::string_view text);
std::string textOf(const DepthRange& range);

// The least and the greatest of the finite depths, of all channels but alpha.
struct Extent {
    double least = 0;
    double greatest = 0;
};
std::optional<Extent> extentOf(const Picture& picture);

// Whether one of them is infinite, or as great as renderers write it where there is nothing to see.
bool hasInfinity(const Picture& picture);

// Between the 0.5 and 99.5 percentiles of the finite depths, the least near.
std::optional<DepthRange> usualRange(const Picture& picture);

// As a matte of 16 bits.
Picture ranged(const Picture& picture, const DepthRange& range);

}  // namespace pictures

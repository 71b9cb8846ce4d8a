#pragma once

#include <array>
#include <cstddef>

#include "PixelDepth.h"

namespace perch {

// The slot that is called, of an operation that has one for each depth: for 8 bits, 16 bits and floats.
template <typename P>
const char* slotName(const std::array<const char*, 3>& names) {
    return names[static_cast<std::size_t>(kDepthOf<P>)];
}

}  // namespace perch

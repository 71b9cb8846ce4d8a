// What the transfer modes make of two pixels, as plain formulas.
#pragma once

#include <array>

#include "PF_Types.h"
#include "PF_Values.h"

namespace perch::test {

using Channels = std::array<double, 4>;  // alpha, red, green, blue; straight, from 0 to 1

double luma(const Channels& c);

// Of the pixel below, and of the source by its share: opacity times mask.
Channels expected(PF_TransferMode mode, const Channels& below, const Channels& source, double share);

}  // namespace perch::test

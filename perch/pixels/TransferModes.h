// The formulas by which a source pixel is put onto the one that is there. Channels run from 0 to 1, colours
// are straight. With b the pixel below, s the source, and a = s.alpha * share:
//
//     alpha  = a + b.alpha (1 - a)
//     colour = (a (1 - b.alpha) s  +  a b.alpha B(b, s)  +  (1 - a) b.alpha b) / alpha
//
// where B is the mode's own mixture of two colours, held to 0 to 1; docs/perch.md lists them. The modes that
// do not mix colours (COPY, BEHIND, those of alpha) have formulas of their own.
#pragma once

#include <string>

#include "PF_World.h"

namespace perch {

struct UnitPixel {
    double alpha, red, green, blue;
};

// `share` is opacity times mask, 0 to 1; at 0 the pixel below stays as it is.
using TransferFunction = UnitPixel (*)(const UnitPixel& below, const UnitPixel& source, double share);

// By the weights of the luminance of television, which colour modes are usually defined by.
double luminance(double red, double green, double blue);

// Null for modes that two pixels do not define.
TransferFunction transferFunction(PF_TransferMode mode);
// Whether the mode is about alpha, which it changes whether colours alone are asked for or not.
bool isMultiplyAlpha(PF_TransferMode mode);
// "DISSOLVE"; "41" for numbers without a name.
std::string transferModeName(PF_TransferMode mode);

}  // namespace perch

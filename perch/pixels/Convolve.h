// Weighted sums over the neighbours of each pixel, and kernels of weights. Worlds have 8 bits, 16 bits or
// floating point per channel. The weights of a channel are divided by what stands for one: a mean element of
// 256 for longs, 255 for chars, 65536 for fixeds. Pixels off the edge are transparent black; channels are
// weighted as they are, without regard to alpha.
#pragma once

#include "PF_World.h"

namespace perch {

class WorkerPool;

// One kernel for each channel, alpha first; of `size` elements with PF_KernelFlag_1D, else size x size. The
// middle element, or the one behind the middle, stands over the pixel itself.
struct Kernels {
    PF_KernelFlags flags;
    A_long size;
    const void* channels[4];
};

// PF_Err_BAD_CALLBACK_PARAM, and nothing is written, for worlds of different depths, for one world as both,
// and for a kernel without elements. A null area is the whole of `to`.
PF_Err convolveWorld(const PF_EffectWorld& from, const PF_Rect* area, const Kernels& kernels,
                     PF_EffectWorld& to, WorkerPool* workers = nullptr);

// Elements in a row of a Gaussian kernel of that radius: 2 ceil(radius) + 1; 0 for a radius that is negative,
// not a number or beyond any world.
A_long gaussianDiameter(double radius);

// Fills the kernel, of gaussianDiameter elements or their square, with a bell that falls to exp(-9/2) at the
// radius: normalised to a mean element of one, exactly except for chars, which end at 255, or else with one
// in the middle. Both times `multiplier`. PF_Err_BAD_CALLBACK_PARAM, and nothing is written, for a kernel
// that convolveWorld would not take.
PF_Err makeGaussian(double radius, PF_KernelFlags flags, double multiplier, void* kernel);

}  // namespace perch

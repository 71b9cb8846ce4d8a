// How light becomes the codes of an effect, which have no room above white and are even, and back.
//
//     linear  as stored
//     srgb    the curve of sRGB up to white: finer where the eye is
//     log     up to 64 times white: code = log2(1 + 255 light) / log2(1 + 255 * 64). One of the 32768 steps
//     is
//             is 0.030 % of the light at white and above it, and of black a 1/861,000th of white
#pragma once

namespace pictures {

enum class Transfer { Linear, Srgb, Log };

constexpr double kLogWhite = 64;  // the light of the greatest code

// Of 0 to 1, what the curve holds; beyond it the codes are beyond 0 to 1 too.
double codeOfLight(Transfer transfer, double light);
double lightOfCode(Transfer transfer, double code);

}  // namespace pictures

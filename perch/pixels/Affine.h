// A matrix that keeps parallels parallel, of points in pixels.
#pragma once

#include <cmath>

#include "PF_World.h"

namespace perch {

// x' = xx x + yx y + dx, y' = xy x + yy y + dy.
struct Affine {
    double xx, xy;
    double yx, yy;
    double dx, dy;
};

inline bool isAffine(const PF_FloatMatrix& m) {
    return m.mat[0][2] == 0 && m.mat[1][2] == 0 && m.mat[2][2] == 1;
}

inline Affine affineOf(const PF_FloatMatrix& m) {
    return {m.mat[0][0], m.mat[0][1], m.mat[1][0], m.mat[1][1], m.mat[2][0], m.mat[2][1]};
}

inline Affine inverseOf(const Affine& m) {
    const double r = 1 / (m.xx * m.yy - m.xy * m.yx);
    return {m.yy * r,
            -m.xy * r,
            -m.yx * r,
            m.xx * r,
            (m.yx * m.dy - m.yy * m.dx) * r,
            (m.xy * m.dx - m.xx * m.dy) * r};
}

// Whether it is finite and has an inverse.
inline bool isUsable(const Affine& m) {
    const double determinant = m.xx * m.yy - m.xy * m.yx;
    return std::isfinite(determinant) && determinant != 0 && std::isfinite(1 / determinant) &&
           std::isfinite(m.dx) && std::isfinite(m.dy);
}

}  // namespace perch

// Plane geometry in single precision: a general 3 x 3 matrix and an affine transform stored the same way.
//
// Points are row vectors multiplied on the left (point * matrix): the translation lies in the bottom row, and
// A * B means A first, then B. Elements are row-major. Angles are radians. Products and sums are evaluated in
// the order written, unfused. Inverses do not test for a singular matrix: they then hold infinities or NaNs.
#pragma once

#include "Geometry.h"

namespace PILib {

class Matrix2Df {
public:
    Matrix2Df() = default;  // identity
    Matrix2Df(float m00, float m01, float m02, float m10, float m11, float m12, float m20, float m21,
              float m22)
        : m00(m00), m01(m01), m02(m02), m10(m10), m11(m11), m12(m12), m20(m20), m21(m21), m22(m22) {}

    void copyTo(double (*out)[3]) const;  // three rows of three

    Matrix2Df operator*(const Matrix2Df& b) const;
    Matrix2Df& operator*=(const Matrix2Df& b) { return *this = *this * b; }
    Matrix2Df inverse() const;

    float m00 = 1.0F, m01 = 0.0F, m02 = 0.0F;
    float m10 = 0.0F, m11 = 1.0F, m12 = 0.0F;
    float m20 = 0.0F, m21 = 0.0F, m22 = 1.0F;
};

// The third column is always (0, 0, 1): m00, m01, m10, m11 are the linear part, m20 and m21 the translation.
class Transform2Df : public Matrix2Df {
public:
    Transform2Df() = default;
    Transform2Df(float m00, float m01, float m10, float m11, float m20, float m21)
        : Matrix2Df(m00, m01, 0.0F, m10, m11, 0.0F, m20, m21, 1.0F) {}
    explicit Transform2Df(const Matrix2Df& m) : Transform2Df(m.m00, m.m01, m.m10, m.m11, m.m20, m.m21) {}
    Transform2Df& operator=(const Matrix2Df& m) { return *this = Transform2Df(m); }

    Transform2Df operator*(const Transform2Df& b) const;
    Transform2Df& operator*=(const Transform2Df& b) { return *this = *this * b; }

    // Entry-wise over the six entries, the translation included.
    Transform2Df operator*(float s) const;
    Transform2Df& operator*=(float s) { return *this = *this * s; }
    Transform2Df operator+(const Transform2Df& b) const;

    // This transform followed by a rotation, a translation or a scaling. A positive angle turns
    // counter-clockwise on screen, as y grows downwards.
    Transform2Df rotate(float angle) const;
    Transform2Df translate(float tx, float ty) const;
    Transform2Df scale(float sx, float sy) const;

    Transform2Df inverse() const;
};

// The third column is ignored: there is no perspective division.
TPoint<float> operator*(const TPoint<float>& p, const Matrix2Df& m);
TPoint<float>& operator*=(TPoint<float>& p, const Matrix2Df& m);

}  // namespace PILib

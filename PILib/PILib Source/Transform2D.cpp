#include "Transform2D.h"

#include <cmath>

namespace PILib {

void Matrix2Df::copyTo(double (*out)[3]) const {
    const float rows[3][3] = {{m00, m01, m02}, {m10, m11, m12}, {m20, m21, m22}};
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 3; ++column)
            out[row][column] = rows[row][column];
    }
}

Matrix2Df Matrix2Df::operator*(const Matrix2Df& b) const {
    return {m00 * b.m00 + m01 * b.m10 + m02 * b.m20, m00 * b.m01 + m01 * b.m11 + m02 * b.m21,
            m00 * b.m02 + m01 * b.m12 + m02 * b.m22, m10 * b.m00 + m11 * b.m10 + m12 * b.m20,
            m10 * b.m01 + m11 * b.m11 + m12 * b.m21, m10 * b.m02 + m11 * b.m12 + m12 * b.m22,
            m20 * b.m00 + m21 * b.m10 + m22 * b.m20, m20 * b.m01 + m21 * b.m11 + m22 * b.m21,
            m20 * b.m02 + m21 * b.m12 + m22 * b.m22};
}

Matrix2Df Matrix2Df::inverse() const {
    const float c00 = m11 * m22 - m12 * m21;
    const float c01 = m12 * m20 - m10 * m22;
    const float c02 = m10 * m21 - m11 * m20;
    const float r = 1.0F / (m00 * c00 + m01 * c01 + m02 * c02);
    return {c00 * r, (m02 * m21 - m01 * m22) * r, (m01 * m12 - m02 * m11) * r,
            c01 * r, (m00 * m22 - m02 * m20) * r, (m02 * m10 - m00 * m12) * r,
            c02 * r, (m01 * m20 - m00 * m21) * r, (m00 * m11 - m01 * m10) * r};
}

Transform2Df Transform2Df::operator*(const Transform2Df& b) const {
    return {m00 * b.m00 + m01 * b.m10, m00 * b.m01 + m01 * b.m11,         m10 * b.m00 + m11 * b.m10,
            m10 * b.m01 + m11 * b.m11, m20 * b.m00 + m21 * b.m10 + b.m20, m20 * b.m01 + m21 * b.m11 + b.m21};
}

Transform2Df Transform2Df::operator*(float s) const {
    return {m00 * s, m01 * s, m10 * s, m11 * s, m20 * s, m21 * s};
}

Transform2Df Transform2Df::operator+(const Transform2Df& b) const {
    return {m00 + b.m00, m01 + b.m01, m10 + b.m10, m11 + b.m11, m20 + b.m20, m21 + b.m21};
}

Transform2Df Transform2Df::rotate(float angle) const {
    const float c = std::cos(angle);
    const float s = std::sin(angle);
    return *this * Transform2Df(c, -s, s, c, 0.0F, 0.0F);
}

Transform2Df Transform2Df::translate(float tx, float ty) const {
    return {m00, m01, m10, m11, m20 + tx, m21 + ty};
}

Transform2Df Transform2Df::scale(float sx, float sy) const {
    return {m00 * sx, m01 * sy, m10 * sx, m11 * sy, m20 * sx, m21 * sy};
}

Transform2Df Transform2Df::inverse() const {
    const float r = 1.0F / (m00 * m11 - m01 * m10);
    return {m11 * r, -m01 * r, -m10 * r, m00 * r, (m10 * m21 - m11 * m20) * r, (m01 * m20 - m00 * m21) * r};
}

TPoint<float> operator*(const TPoint<float>& p, const Matrix2Df& m) {
    return {p.x * m.m00 + p.y * m.m10 + m.m20, p.x * m.m01 + p.y * m.m11 + m.m21};
}

TPoint<float>& operator*=(TPoint<float>& p, const Matrix2Df& m) {
    return p = p * m;
}

}  // namespace PILib

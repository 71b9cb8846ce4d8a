#include "Transform2D.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <numbers>

namespace {

using PILib::Matrix2Df;
using PILib::TPoint;
using PILib::Transform2Df;

using Elements = std::array<float, 9>;

Elements ElementsOf(const Matrix2Df& m) {
    return {m.m00, m.m01, m.m02, m.m10, m.m11, m.m12, m.m20, m.m21, m.m22};
}

void ExpectNear(const Elements& expected, const Matrix2Df& actual, float tolerance) {
    const Elements elements = ElementsOf(actual);
    for (std::size_t i = 0; i < elements.size(); ++i)
        EXPECT_NEAR(expected[i], elements[i], tolerance) << "element " << i;
}

constexpr Elements kIdentity = {1, 0, 0, 0, 1, 0, 0, 0, 1};

const Matrix2Df kCounting(1, 2, 3, 4, 5, 6, 7, 8, 10);
const Transform2Df kSkewed(2, 3, 5, 7, 11, 13);

TEST(Matrix2DfTest, DefaultIsTheIdentity) {
    EXPECT_EQ(kIdentity, ElementsOf(Matrix2Df()));
}

TEST(Matrix2DfTest, ElementsAreRowMajor) {
    EXPECT_EQ((Elements{1, 2, 3, 4, 5, 6, 7, 8, 10}), ElementsOf(kCounting));
    EXPECT_EQ(6, kCounting.m12);
}

TEST(Matrix2DfTest, CopyToWidensRowByRow) {
    double rows[3][3] = {};
    Matrix2Df(0.1F, 2, 3, 4, 5, 6, 7, 8, 10).copyTo(rows);
    EXPECT_EQ(double{0.1F}, rows[0][0]);
    EXPECT_EQ(3.0, rows[0][2]);
    EXPECT_EQ(4.0, rows[1][0]);
    EXPECT_EQ(10.0, rows[2][2]);
}

TEST(Matrix2DfTest, ProductAppliesTheLeftFactorFirst) {
    const Matrix2Df b(0, 1, 2, 3, 4, 5, 6, 7, 8);
    EXPECT_EQ((Elements{24, 30, 36, 51, 66, 81, 84, 109, 134}), ElementsOf(kCounting * b));
    Matrix2Df a = kCounting;
    a *= b;
    EXPECT_EQ(ElementsOf(kCounting * b), ElementsOf(a));
}

TEST(Matrix2DfTest, InverseUndoesAllNineElements) {
    ExpectNear(kIdentity, kCounting * kCounting.inverse(), 1e-5F);
    ExpectNear(kIdentity, kCounting.inverse() * kCounting, 1e-5F);
}

TEST(Matrix2DfTest, ThirdColumnIsIgnoredForPoints) {
    const Matrix2Df m(1, 2, 99, 3, 4, -7, 5, 6, 0);
    const TPoint<float> moved = TPoint<float>{1, 1} * m;
    EXPECT_EQ(9, moved.x);
    EXPECT_EQ(12, moved.y);
}

TEST(Matrix2DfTest, PointIsTransformedInPlace) {
    TPoint<float> p{1, 1};
    p *= kSkewed;
    EXPECT_EQ(18, p.x);
    EXPECT_EQ(23, p.y);
}

TEST(Transform2DfTest, SixElementsFillBothColumns) {
    EXPECT_EQ((Elements{2, 3, 0, 5, 7, 0, 11, 13, 1}), ElementsOf(kSkewed));
}

TEST(Transform2DfTest, TakingAMatrixForcesTheThirdColumn) {
    EXPECT_EQ((Elements{1, 2, 0, 4, 5, 0, 7, 8, 1}), ElementsOf(Transform2Df(kCounting)));
    Transform2Df assigned;
    assigned = kCounting;
    EXPECT_EQ((Elements{1, 2, 0, 4, 5, 0, 7, 8, 1}), ElementsOf(assigned));
}

TEST(Transform2DfTest, ProductIsAffine) {
    const Transform2Df b(1, 2, 3, 4, 5, 6);
    EXPECT_EQ((Elements{11, 16, 0, 26, 38, 0, 55, 80, 1}), ElementsOf(kSkewed * b));
    Transform2Df a = kSkewed;
    a *= b;
    EXPECT_EQ(ElementsOf(kSkewed * b), ElementsOf(a));
}

TEST(Transform2DfTest, ScalarMultipliesTheTranslationToo) {
    EXPECT_EQ((Elements{4, 6, 0, 10, 14, 0, 22, 26, 1}), ElementsOf(kSkewed * 2.0F));
    Transform2Df a = kSkewed;
    a *= 2.0F;
    EXPECT_EQ(ElementsOf(kSkewed * 2.0F), ElementsOf(a));
}

TEST(Transform2DfTest, SumKeepsTheThirdColumn) {
    EXPECT_EQ((Elements{3, 3, 0, 5, 8, 0, 11, 13, 1}), ElementsOf(kSkewed + Transform2Df()));
}

TEST(Transform2DfTest, ScaleAfterTranslateScalesTheTranslation) {
    const Transform2Df moved = Transform2Df().translate(3, 4);
    const TPoint<float> one{1, 1};
    EXPECT_EQ(4, (one * moved).x);
    EXPECT_EQ(5, (one * moved).y);
    EXPECT_EQ(8, (one * moved.scale(2, 2)).x);
    EXPECT_EQ(10, (one * moved.scale(2, 2)).y);
}

TEST(Transform2DfTest, ScaleTakesTheColumnsApart) {
    EXPECT_EQ((Elements{4, 15, 0, 10, 35, 0, 22, 65, 1}), ElementsOf(kSkewed.scale(2, 5)));
}

TEST(Transform2DfTest, QuarterTurnTakesRightToUp) {
    const TPoint<float> turned = TPoint<float>{1, 0} * Transform2Df().rotate(std::numbers::pi_v<float> / 2);
    EXPECT_NEAR(0, turned.x, 1e-6F);
    EXPECT_NEAR(-1, turned.y, 1e-6F);
}

TEST(Transform2DfTest, RotationTurnsTheTranslationToo) {
    const float angle = 0.3F;
    const float c = std::cos(angle);
    const float s = std::sin(angle);
    const Transform2Df turned = Transform2Df().translate(3, 4).rotate(angle);
    EXPECT_FLOAT_EQ(3 * c + 4 * s, turned.m20);
    EXPECT_FLOAT_EQ(-3 * s + 4 * c, turned.m21);
}

TEST(Transform2DfTest, InverseUndoesTheTransform) {
    for (const Transform2Df& t :
         {kSkewed, Transform2Df().translate(30, -4).rotate(1.0F).scale(0.25F, 8), Transform2Df()}) {
        ExpectNear(kIdentity, t * t.inverse(), 1e-4F);
        ExpectNear(kIdentity, t.inverse() * t, 1e-4F);
    }
}

TEST(Matrix2DfTest, SingularInverseIsNotFiniteAndDoesNotThrow) {
    const Elements elements = ElementsOf(Matrix2Df(1, 2, 3, 1, 2, 3, 7, 8, 10).inverse());
    EXPECT_FALSE(std::all_of(elements.begin(), elements.end(), [](float e) { return std::isfinite(e); }));
}

TEST(Transform2DfTest, SingularInverseIsNotFiniteAndDoesNotThrow) {
    const Transform2Df inverse = Transform2Df(0, 0, 0, 0, 1, 2).inverse();
    EXPECT_FALSE(std::isfinite(inverse.m00));
    EXPECT_FALSE(std::isfinite(inverse.m20));
    EXPECT_EQ(1, inverse.m22);
}

}  // namespace

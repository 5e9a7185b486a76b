#include "zefcore/math/MatAff4f.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <type_traits>

#include "zefcore/math/MatRot4f.h"
#include "zefcore/math/Matrix4f.h"

namespace {

constexpr float kSentinel = 77.0f;

bool sameBits(const Mat4fBase &a, const Mat4fBase &b) {
    return std::memcmp(a.getValue(), b.getValue(), 64) == 0;
}

MatAff4f randomAffine(std::mt19937 &rng) {
    std::uniform_real_distribution<float> d(-3.0f, 3.0f);
    MatAff4f m;
    for (int i : {0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14})
        m.getValue()[i] = d(rng);
    return m;
}

// The affine product a * b summed in double, rounded once per element; bottom rows not read.
MatAff4f affineReference(const Mat4fBase &a, const Mat4fBase &b) {
    const float *x = a.getValue();
    const float *y = b.getValue();
    MatAff4f out;
    for (int c = 0; c < 4; ++c)
        for (int r = 0; r < 3; ++r)
            out.getValue()[4 * c + r] =
                float(double(x[r]) * y[4 * c] + double(x[4 + r]) * y[4 * c + 1] +
                      double(x[8 + r]) * y[4 * c + 2] + (c == 3 ? double(x[12 + r]) : 0.0));
    return out;
}

} // namespace

// The free products keep the most derived common type.
static_assert(std::is_same<decltype(MatAff4f() * MatAff4f()), MatAff4fBase>::value, "affine product");
static_assert(std::is_same<decltype(MatRot4f() * MatAff4f()), MatAff4fBase>::value, "mixed product");
static_assert(std::is_same<decltype(2.0f * MatAff4f()), MatAff4fBase>::value, "affine scalar product");
static_assert(std::is_same<decltype(Matrix4f() * MatAff4f()), Matrix4f>::value, "general product");

TEST(MatAff4f, EqualsAffSkipsBottomRowAndTestsBothSignsOnTheBound) {
    MatAff4f a, b;
    b.getValue()[15] = std::numeric_limits<float>::infinity();
    EXPECT_TRUE(a.equalsAff(b, 0.0f));
    EXPECT_FALSE(a.equals(b, 0.0f));
    EXPECT_FALSE(b.testFiniteAndNAN());
    float const tol = 0.25f;
    for (int i : {1, 6, 13}) {
        MatAff4f c;
        c.getValue()[i] = tol;
        EXPECT_TRUE(a.equalsAff(c, tol) && c.equalsAff(a, tol)) << i;
        c.getValue()[i] = std::nextafter(tol, 1.0f);
        EXPECT_FALSE(a.equalsAff(c, tol) || c.equalsAff(a, tol)) << i;
        c.getValue()[i] = std::numeric_limits<float>::quiet_NaN();
        EXPECT_TRUE(a.equalsAff(c, 0.0f) && !c.testFiniteAndNAN()) << i;
    }
}

TEST(MatAff4f, ScalarProductsTreatTheBottomRowDifferently) {
    MatAff4f m = MatAff4f::translate(Vector3f(1, 0, 0));
    MatAff4fBase const scaled = 2.0f * m;
    m *= 2.0f;
    EXPECT_TRUE(sameBits(m, Matrix4f(2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 2, 0, 2, 0, 0, 1)));
    EXPECT_TRUE(sameBits(scaled, Matrix4f(2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 2, 0, 2, 0, 0, 2)));
}

TEST(MatAff4f, ProductsMatchTheAffineReferenceAndRestoreTheBottomRow) {
    std::mt19937 rng(11);
    for (int k = 0; k < 200; ++k) {
        MatAff4f a = randomAffine(rng);
        MatAff4f const b = randomAffine(rng);
        MatAff4f const ab = affineReference(a, b);
        a.getValue()[7] = kSentinel; // not read, and restored
        MatAff4f left = b, right = a, assigned = a, self = b;
        left.multLeftBy(a);
        right.multRightBy(b);
        assigned *= b;
        self.multLeftBy(self);
        ASSERT_TRUE(sameBits(left, ab) && sameBits(right, ab) && sameBits(assigned, ab)) << k;
        ASSERT_TRUE(sameBits(a * b, ab) && sameBits(self, affineReference(b, b))) << k;
        // Point product: no divide, whatever the bottom row holds; in place too.
        Vector3f p(1.5f, -2.0f, 0.25f);
        Vector3f const q = a * p;
        a.multRightVec3f(p, p);
        const float *e = a.getValue();
        ASSERT_TRUE(q.equals(p) &&
                    q[1] == float(double(e[1]) * 1.5 + double(e[5]) * -2.0 + double(e[9]) * 0.25 + e[13]));
    }
}

TEST(MatAff4f, BuildersHaveStatedResultsAndRoundingPoints) {
    MatAff4f v;
    v.setNormalized2Viewport(Vector2s(640, 480));
    EXPECT_TRUE((v * Vector3f(-1, -1, -1)).equals(Vector3f(0, 0, 0)));
    EXPECT_TRUE((v * Vector3f(1, 1, 1)).equals(Vector3f(640, 480, 1)));
    v.setNormalized2Viewport(Vector2s(-3, 641));
    EXPECT_TRUE(
        sameBits(v, Matrix4f(-1.5f, 0, 0, 0, 0, 320.5f, 0, 0, 0, 0, 0.5f, 0, -1.5f, 320.5f, 0.5f, 1)));

    Vector3f const s(3.0f, -0.7f, 1.3f), c(0.1f, 2.3f, -5.9f);
    v.setScaleAround(s, c);
    for (int k = 0; k < 3; ++k) {
        // Scale of -c rounded, then c added, rounded.
        float const scaledBack = float(double(s[k]) * -c[k]);
        EXPECT_EQ(v.getValue()[12 + k], float(double(scaledBack) + c[k]));
    }

    MatAff4f singular = MatAff4f::scale(Vector3f(1, 0, 2));
    singular.getValue()[12] = kSentinel;
    MatAff4f const before = singular;
    bool ok = true;
    EXPECT_TRUE(sameBits(singular.inverse(ok), before) && !ok);
    // transpose3 keeps translation and bottom row.
    v.setValue(1, 2, 3, kSentinel, 4, 5, 6, 0, 7, 8, 9, 0, 10, 11, 12, 1);
    EXPECT_TRUE(
        sameBits(v.transpose3(), Matrix4f(1, 4, 7, kSentinel, 2, 5, 8, 0, 3, 6, 9, 0, 10, 11, 12, 1)));
}

TEST(MatAff4f, TMSDecompositionMovesMirrorsIntoTheScale) {
    MatAff4f m = MatAff4f::translate(Vector3f(1, 2, 3));
    m.multRightBy(MatAff4f::scale(Vector3f(-2, 3, 4)));
    Vector3f t, s;
    MatAff4f axes;
    m.getTMSDecomp(t, axes, s);
    EXPECT_TRUE(t.equals(Vector3f(1, 2, 3)) && s.equals(Vector3f(-2, 3, 4)));
    EXPECT_TRUE(axes.equals(MatAff4f(), 0.0f)); // 0 / -2 gives -0

    // Random matrices against an independent computation; axes is this object.
    std::mt19937 rng(5);
    for (int k = 0; k < 300; ++k) {
        MatAff4f a = randomAffine(rng);
        a.getValue()[3] = kSentinel;
        MatAff4f const original = a;
        a.getTMSDecomp(t, a, s);
        for (int c = 0; c < 3; ++c) {
            const float *col = original.getValue() + 4 * c;
            float const sum =
                float(double(col[0]) * col[0] + double(col[1]) * col[1] + double(col[2]) * col[2]);
            float const len = float(std::sqrt(double(sum)));
            float const sc = col[c] < 0.0f ? -len : len;
            ASSERT_TRUE(s[c] == sc && t[c] == original.getValue()[12 + c]) << k;
            for (int r = 0; r < 3; ++r)
                ASSERT_EQ(a.getValue()[4 * c + r], float(double(col[r]) / sc)) << k;
        }
        ASSERT_TRUE(a.getValue()[3] == 0.0f && a.getValue()[12] == 0.0f && a.getValue()[15] == 1.0f);
    }
    // A zero column: scale +0, NaN in axes.
    MatAff4f::scale(Vector3f(1, 0, 1)).getTMSDecomp(t, axes, s);
    EXPECT_TRUE(s[1] == 0.0f && !std::signbit(s[1]) && std::isnan(axes.getValue()[5]));
}

TEST(MatAff4f, RotationsComposeOnTheirStatedSide) {
    constexpr float kQuarterTurnTolerance = 1e-5f; // cos(pi/2) in float is -4.4e-8, not 0
    const float quarter = float(std::acos(0.0));
    Vector3f const x(1, 0, 0), y(0, 1, 0), z(0, 0, 1), c(0.5f, -1.5f, 2.5f);
    // Left of a translation the turn also turns the translation; right of it, it does not.
    MatAff4f left = MatAff4f::translate(x), right = left;
    left.multLeftByRotate(z, quarter);
    right.multRightByRotate(z, quarter);
    EXPECT_TRUE((left * Vector3f()).equalsEps(y, kQuarterTurnTolerance));
    EXPECT_TRUE((right * Vector3f()).equalsEps(x, kQuarterTurnTolerance));
    EXPECT_TRUE((right * x).equalsEps(x + y, kQuarterTurnTolerance));
    // Euler angles: X acts first, then Z; every element written, translation 0.
    MatAff4f e;
    std::fill(e.getValue(), e.getValue() + 16, kSentinel);
    e.setRotate(quarter, 0.0f, quarter);
    EXPECT_TRUE((e * y).equalsEps(z, kQuarterTurnTolerance));
    EXPECT_TRUE((e * x).equalsEps(y, kQuarterTurnTolerance));
    for (int i : {3, 7, 11, 12, 13, 14})
        EXPECT_EQ(e.getValue()[i], 0.0f) << i;
    EXPECT_EQ(e.getValue()[15], 1.0f);
    // About a centre: the centre stays, a point beside it turns about it.
    MatAff4f a;
    a.setRotateAround(z, quarter, c);
    EXPECT_TRUE((a * c).equalsEps(c, kQuarterTurnTolerance));
    EXPECT_TRUE((a * (c + x)).equalsEps(c + y, kQuarterTurnTolerance));
}

#include "zefcore/math/MatAff4f.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <type_traits>

#include "zefcore/math/MatRot4f.h"
#include "zefcore/math/Matrix4f.h"

namespace {

constexpr float kSentinel = 77.0f;
// Float error allowed where a result goes through sines or a general inverse.
constexpr float kRoundTripTolerance = 1e-5f;

bool sameBits(const Mat4fBase &a, const Mat4fBase &b) { return std::memcmp(a.getValue(), b.getValue(), 64) == 0; }

MatAff4f randomAffine(std::mt19937 &rng) {
    std::uniform_real_distribution<float> d(-3.0f, 3.0f);
    MatAff4f m;
    for (int i : {0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14})
        m.getValue()[i] = d(rng);
    return m;
}

// The affine product a * b summed in double in the kernel's order, rounded once
// per element; bottom rows not read.
MatAff4f affineReference(const Mat4fBase &a, const Mat4fBase &b) {
    const float *x = a.getValue();
    const float *y = b.getValue();
    MatAff4f out;
    float *o = out.getValue();
    for (int c = 0; c < 4; ++c)
        for (int r = 0; r < 3; ++r)
            o[4 * c + r] = float(double(x[r]) * y[4 * c] + double(x[4 + r]) * y[4 * c + 1] +
                                 double(x[8 + r]) * y[4 * c + 2] + (c == 3 ? double(x[12 + r]) : 0.0));
    return out;
}

} // namespace

// The free products keep the most derived common type.
static_assert(std::is_same<decltype(MatAff4f() * MatAff4f()), MatAff4fBase>::value, "affine product");
static_assert(std::is_same<decltype(MatRot4f() * MatAff4f()), MatAff4fBase>::value, "mixed product");
static_assert(std::is_same<decltype(2.0f * MatAff4f()), MatAff4fBase>::value, "affine scalar product");
static_assert(std::is_same<decltype(Matrix4f() * MatAff4f()), Matrix4f>::value, "general product");
static_assert(std::is_same<decltype(MatAff4f() * Vector3f()), Vector3f>::value, "point product");

TEST(MatAff4f, EqualsAffSkipsBottomRowAndTestsBothSignsOnTheBound) {
    MatAff4f a;
    MatAff4f b;
    b.getValue()[15] = 5.0f;
    EXPECT_TRUE(a.equalsAff(b, 0.0f));
    EXPECT_FALSE(a.equals(b, 0.0f));
    // Difference exactly the tolerance passes, the next float above fails, either sign.
    float const tol = 0.25f;
    for (int i : {1, 6, 13}) {
        MatAff4f c;
        c.getValue()[i] += tol;
        EXPECT_TRUE(a.equalsAff(c, tol) && c.equalsAff(a, tol)) << i;
        c.getValue()[i] = a.getValue()[i] + std::nextafter(tol, 1.0f);
        EXPECT_FALSE(a.equalsAff(c, tol)) << i;
        EXPECT_FALSE(c.equalsAff(a, tol)) << i;
    }
    MatAff4f n;
    n.getValue()[5] = std::numeric_limits<float>::quiet_NaN();
    EXPECT_TRUE(n.equalsAff(a, 0.0f));
    // An infinity in element 15 is seen by the finite test though equalsAff ignores it.
    n = MatAff4f();
    n.getValue()[15] = std::numeric_limits<float>::infinity();
    EXPECT_TRUE(n.equalsAff(a, 0.0f));
    EXPECT_FALSE(n.testFiniteAndNAN());
    n.getValue()[15] = 1.0f;
    EXPECT_TRUE(n.testFiniteAndNAN());
    n.getValue()[3] = std::numeric_limits<float>::quiet_NaN();
    EXPECT_FALSE(n.testFiniteAndNAN());
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
        a.getValue()[7] = kSentinel; // a damaged bottom row is not read and is restored
        MatAff4f left = b;
        left.multLeftBy(a);
        MatAff4f right = a;
        right.multRightBy(b);
        MatAff4f assigned = a;
        assigned *= b;
        ASSERT_TRUE(sameBits(left, ab) && sameBits(right, ab) && sameBits(assigned, ab)) << k;
        ASSERT_TRUE(sameBits(a * b, ab)) << k;
        // In place with itself as the operand.
        MatAff4f self = b;
        self.multLeftBy(self);
        ASSERT_TRUE(sameBits(self, affineReference(b, b))) << k;
        // The point product has no divide, whatever the bottom row holds; in place too.
        Vector3f p(1.5f, -2.0f, 0.25f);
        Vector3f const q = a * p;
        const float *e = a.getValue();
        for (int r = 0; r < 3; ++r)
            ASSERT_EQ(q[r], float(double(e[r]) * 1.5 + double(e[4 + r]) * -2.0 + double(e[8 + r]) * 0.25 +
                                  e[12 + r]));
        a.multRightVec3f(p, p);
        ASSERT_TRUE(q.equals(p));
    }
}

TEST(MatAff4f, ViewportAndTransformsAroundACenterHaveStatedResults) {
    MatAff4f v;
    v.setNormalized2Viewport(Vector2s(640, 480));
    EXPECT_TRUE((v * Vector3f(-1, -1, -1)).equals(Vector3f(0, 0, 0)));
    EXPECT_TRUE((v * Vector3f(1, 1, 1)).equals(Vector3f(640, 480, 1)));
    v.setNormalized2Viewport(Vector2s(-3, 641));
    EXPECT_TRUE(sameBits(v, Matrix4f(-1.5f, 0, 0, 0, 0, 320.5f, 0, 0, 0, 0, 0.5f, 0, -1.5f, 320.5f, 0.5f, 1)));

    Vector3f const s(3.0f, -0.7f, 1.3f);
    Vector3f const c(0.1f, 2.3f, -5.9f);
    MatAff4f m;
    m.setScaleAround(s, c);
    for (int k = 0; k < 3; ++k) {
        // Translation: scale of -c, rounded, then c added, rounded.
        float const scaledBack = float(double(s[k]) * -c[k]);
        EXPECT_EQ(m.getValue()[12 + k], float(double(scaledBack) + c[k]));
        EXPECT_EQ(m.getValue()[5 * k], s[k]);
    }
    m.setRotateAround(Vector3f(1, 2, 3), 0.8f, c);
    EXPECT_TRUE((m * c).equalsEps(c, kRoundTripTolerance));
    EXPECT_FALSE((m * Vector3f(0, 0, 0)).equalsEps(Vector3f(0, 0, 0), 0.1f));
}

TEST(MatAff4f, InverseAndTransposeKeepWhatTheyMust) {
    MatAff4f m;
    m.setRotate(0.3f, -1.1f, 2.0f);
    m.multLeftByTranslate(Vector3f(1, 2, 3));
    m.multLeftByScale(Vector3f(2, 3, 0.5f));
    MatAff4f inv = m;
    bool ok = false;
    inv.inverse(ok);
    EXPECT_TRUE(ok);
    EXPECT_TRUE((inv * m).equalsAff(MatAff4f::identity(), kRoundTripTolerance));

    MatAff4f singular = MatAff4f::scale(Vector3f(1, 0, 2));
    singular.getValue()[12] = kSentinel;
    MatAff4f const before = singular;
    singular.inverse(ok);
    EXPECT_FALSE(ok);
    EXPECT_TRUE(sameBits(singular, before));

    MatAff4f t = m;
    t.getValue()[3] = kSentinel;
    t.transpose3();
    for (int r = 0; r < 3; ++r)
        for (int c = 0; c < 3; ++c)
            EXPECT_EQ(t.getValue()[4 * c + r], m.getValue()[4 * r + c]);
    for (int i : {12, 13, 14, 7, 11, 15})
        EXPECT_EQ(t.getValue()[i], m.getValue()[i]);
    EXPECT_EQ(t.getValue()[3], kSentinel);
}

TEST(MatAff4f, TMSDecompositionMovesMirrorsIntoTheScale) {
    MatAff4f m = MatAff4f::translate(Vector3f(1, 2, 3));
    m.multRightBy(MatAff4f::scale(Vector3f(-2, 3, 4)));
    Vector3f t, s;
    MatAff4f axes;
    m.getTMSDecomp(t, axes, s);
    EXPECT_TRUE(t.equals(Vector3f(1, 2, 3)) && s.equals(Vector3f(-2, 3, 4)));
    EXPECT_TRUE(axes.equals(MatAff4f(), 0.0f) && axes.testFiniteAndNAN()); // 0 / -2 gives -0

    // Seeded random matrices against an independent computation; axes is this object.
    std::mt19937 rng(5);
    for (int k = 0; k < 300; ++k) {
        MatAff4f a = randomAffine(rng);
        a.getValue()[3] = kSentinel;
        MatAff4f const original = a;
        a.getTMSDecomp(t, a, s);
        const float *o = original.getValue();
        for (int c = 0; c < 3; ++c) {
            const float *col = o + 4 * c;
            float const sum = float(double(col[0]) * col[0] + double(col[1]) * col[1] + double(col[2]) * col[2]);
            float const len = float(std::sqrt(double(sum)));
            float const sc = col[c] < 0.0f ? -len : len;
            ASSERT_EQ(s[c], sc);
            for (int r = 0; r < 3; ++r)
                ASSERT_EQ(a.getValue()[4 * c + r], float(double(col[r]) / sc)) << k;
            ASSERT_EQ(t[c], o[12 + c]);
        }
        ASSERT_EQ(a.getValue()[3], 0.0f);
        ASSERT_EQ(a.getValue()[12], 0.0f);
        ASSERT_EQ(a.getValue()[15], 1.0f);
    }
    // A zero column: scale 0, sign +1, NaN in axes.
    MatAff4f z = MatAff4f::scale(Vector3f(1, 0, 1));
    z.getTMSDecomp(t, axes, s);
    EXPECT_EQ(s[1], 0.0f);
    EXPECT_FALSE(std::signbit(s[1]));
    EXPECT_TRUE(std::isnan(axes.getValue()[5]));
}

#include "zefcore/math/MatRot4f.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <random>

#include "zefcore/math/MatAff4f.h"
#include "zefcore/math/Matrix4f.h"
#include "zefcore/math/Quaternion.h"

namespace {

constexpr float kSentinel = 77.0f;
// Float error allowed after a few products of rotations.
constexpr float kRotationTolerance = 2e-5f;

bool sameBits(const Mat4fBase &a, const Mat4fBase &b) {
    return std::memcmp(a.getValue(), b.getValue(), 64) == 0;
}

Vector3f randomVector(std::mt19937 &rng) {
    std::uniform_real_distribution<float> d(-2.0f, 2.0f);
    return Vector3f(d(rng), d(rng), d(rng));
}

} // namespace

TEST(MatRot4f, FromToTurnsDirectionsAndHandlesParallelCases) {
    std::mt19937 rng(3);
    Vector3f const t(1, 2, 3);
    for (int k = 0; k < 200; ++k) {
        Vector3f from = randomVector(rng), to = randomVector(rng);
        MatRot4f const m(from, to, t);
        from.normalize();
        to.normalize();
        ASSERT_TRUE((m * from - t).equalsEps(to, kRotationTolerance)) << k;
        // Opposite: a half turn, from onto -from.
        MatRot4f const h(from, -from, t);
        ASSERT_TRUE((h * from - t).equalsEps(-from, kRotationTolerance)) << k;
        ASSERT_TRUE((h * Vector3f()).equals(t));
    }
    Matrix4f const pureT(1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 1, 2, 3, 1);
    EXPECT_TRUE(sameBits(MatRot4f(Vector3f(0.3f, -4, 2), Vector3f(0.3f, -4, 2), t), pureT));
    EXPECT_TRUE(sameBits(MatRot4f(Vector3f(0, 0, 0), Vector3f(0, 5, 1), t), pureT));
    // Nearly parallel: |cross|^2 = 2.5e-9 < 1e-8, no rotation at all.
    EXPECT_TRUE(sameBits(MatRot4f(Vector3f(1, 0, 0), Vector3f(1, 0.00005f, 0), t), pureT));
}

TEST(MatRot4f, SetFromMatrixTestsOrthonormalityAndTakesTheArgumentWhole) {
    MatRot4f r(Vector3f(1, -2, 0.5f), 0.9f, Vector3f(1, 2, 3));
    MatRot4f m;
    EXPECT_TRUE(m.setFromMatrix4f(r) && sameBits(m, r));
    Matrix4f p(r);
    p.getValue()[11] = 1.0f; // a projective bottom row passes and stays
    EXPECT_TRUE(m.setFromMatrix4f(p) && sameBits(m, p));
    EXPECT_TRUE(m.setFromMatrix4f(Matrix4f(-1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1)));
    EXPECT_EQ(m.getValue()[0], -1.0f);
    // Failures leave the object alone.
    MatRot4f const before = r;
    p.getValue()[15] = 0.0f;
    EXPECT_FALSE(r.setFromMatrix4f(p));
    EXPECT_FALSE(r.setFromMatrix4f(1.001f * Matrix4f(MatAff4f::identity())));
    EXPECT_TRUE(sameBits(r, before));
    EXPECT_TRUE(r.setFromMatrix4f(1.00001f * Matrix4f(MatAff4f::identity())));
}

TEST(MatRot4f, CentresAndFramesKeepTheirFixedPoints) {
    Vector3f const c(0.5f, -1.5f, 2.5f);
    MatRot4f m;
    m.setRotateAround(Vector3f(1, 0, 0), Vector3f(0, 1, 0), c);
    EXPECT_TRUE((m * c).equalsEps(c, kRotationTolerance));
    EXPECT_TRUE((m * (c + Vector3f(1, 0, 0))).equalsEps(c + Vector3f(0, 1, 0), kRotationTolerance));
    Vector3f const d(0.2f, 0.7f, -0.1f), p(1, 2, 3), q(-4, 5, 0.25f);
    m.setFromTo(d, d, p, q);
    EXPECT_TRUE(sameBits(m, MatAff4f::translate(q - p)));

    std::mt19937 rng(8);
    for (int k = 0; k < 100; ++k) {
        MatRot4f const f1(randomVector(rng), 1.7f, randomVector(rng)), f2(randomVector(rng), -0.6f, q);
        const float *a = f1.getValue(), *b = f2.getValue();
        Vector3f const o1(a + 12), o2(b + 12);
        m.setFromAxis2Axis(a, a + 4, a + 8, b, b + 4, b + 8, o1, o2);
        ASSERT_TRUE((m * o1).equalsEps(o2, kRotationTolerance)) << k;
        ASSERT_TRUE((m * (o1 + Vector3f(a + 4))).equalsEps(o2 + Vector3f(b + 4), kRotationTolerance)) << k;
    }
}

TEST(MatRot4f, InverseAndProductsInPlace) {
    std::mt19937 rng(21);
    for (int k = 0; k < 100; ++k) {
        MatRot4f m(randomVector(rng), 2.0f, randomVector(rng));
        MatRot4f const square = m * m;
        MatRot4f left = m, right = m, assigned = m;
        left.multLeftBy(left);
        right.multRightBy(right);
        ASSERT_TRUE(sameBits(left, square) && sameBits(right, square) &&
                    sameBits(assigned *= assigned, square));
        m.getValue()[7] = kSentinel; // not written by inverse
        MatRot4f inv = m;
        ASSERT_EQ(inv.inverse().getValue()[7], kSentinel);
        ASSERT_TRUE((inv * m).equalsAff(MatAff4f::identity(), kRotationTolerance)) << k;
    }
    // The quaternion form gives what the axis form gives, bit for bit.
    Vector3f const axis(0.3f, -1, 2), t(4, 5, 6);
    MatRot4f fromQ;
    fromQ.setValue(Quaternion(axis, 0.77f), t);
    EXPECT_TRUE(sameBits(fromQ, MatRot4f(axis, 0.77f, t)));
}

TEST(MatRot4f, TranslationsSidesCentresAndTranspose) {
    const float quarter = float(std::acos(0.0));
    Vector3f const x(1, 0, 0), y(0, 1, 0), z(0, 0, 1), t(10, 20, 30), p(0.5f, -1, 2), c(0.5f, -1.5f, 2.5f);
    MatRot4f const m(z, quarter, Vector3f(1, 2, 3));
    // Left: T(t) * m moves the image; right: m * T(t) moves the argument.
    MatRot4f left = m, right = m;
    left.multLeftByTranslate(t);
    right.multRightByTranslate(t);
    EXPECT_TRUE((left * p).equalsEps(m * p + t, kRotationTolerance));
    EXPECT_TRUE((right * p).equalsEps(m * (p + t), kRotationTolerance));
    EXPECT_EQ(std::memcmp(left.getValue(), m.getValue(), 12 * sizeof(float)), 0);
    EXPECT_EQ(std::memcmp(right.getValue(), m.getValue(), 12 * sizeof(float)), 0);
    // Both centred forms keep the centre and turn a point beside it about it.
    MatRot4f byAxis, byEuler;
    byAxis.setRotateAround(z, quarter, c);
    byEuler.setRotateAround(0.0f, 0.0f, quarter, c);
    for (const MatRot4f *r : {&byAxis, &byEuler}) {
        EXPECT_TRUE((*r * c).equalsEps(c, kRotationTolerance));
        EXPECT_TRUE((*r * (c + x)).equalsEps(c + y, kRotationTolerance));
    }
    // Euler angles inside their ranges come back, in their own order.
    byEuler.setRotateAround(0.3f, -0.4f, 1.1f, c);
    float ex = 0.0f, ey = 0.0f, ez = 0.0f;
    byEuler.getEuler(ex, ey, ez);
    EXPECT_TRUE(Vector3f(ex, ey, ez).equalsEps(Vector3f(0.3f, -0.4f, 1.1f), kRotationTolerance));
    // transpose3 swaps the 3x3 block across its diagonal; translation and bottom row stay.
    MatRot4f tr = m;
    tr.getValue()[7] = kSentinel;
    tr.transpose3();
    for (int col = 0; col < 3; ++col)
        for (int row = 0; row < 3; ++row)
            EXPECT_EQ(tr.getValue()[4 * col + row], m.getValue()[4 * row + col]);
    EXPECT_EQ(std::memcmp(tr.getValue() + 12, m.getValue() + 12, 4 * sizeof(float)), 0);
    EXPECT_EQ(tr.getValue()[7], kSentinel);
}

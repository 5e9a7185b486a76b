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
// The float nearest 0.0001, the orthonormality tolerance of setFromMatrix4f.
constexpr float kOrthonormalTolerance = 1e-4f;

bool sameBits(const Mat4fBase &a, const Mat4fBase &b) { return std::memcmp(a.getValue(), b.getValue(), 64) == 0; }

// The direction v turned by the 3x3 part of m.
Vector3f turn(const MatRot4f &m, const Vector3f &v) { return m * v - m * Vector3f(); }

Vector3f randomVector(std::mt19937 &rng) {
    std::uniform_real_distribution<float> d(-2.0f, 2.0f);
    return Vector3f(d(rng), d(rng), d(rng));
}

// Whether setFromMatrix4f should accept diag(d, 1, 1, 1): |float(d*d) - 1| rounded, against the tolerance.
bool diagonalPasses(float d) {
    float const p = float(double(d) * d);
    return std::fabs(float(double(p) - 1.0)) <= kOrthonormalTolerance;
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
        ASSERT_TRUE(turn(m, from).equalsEps(to, kRotationTolerance)) << k;
        ASSERT_TRUE((m * Vector3f()).equals(t));
        // Opposite: a half turn, from onto -from.
        MatRot4f const h(from, -from, t);
        ASSERT_TRUE(turn(h, from).equalsEps(-from, kRotationTolerance)) << k;
        ASSERT_TRUE((h * Vector3f()).equals(t));
    }
    Matrix4f const pureT(1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 1, 2, 3, 1);
    EXPECT_TRUE(sameBits(MatRot4f(Vector3f(0.3f, -4, 2), Vector3f(0.3f, -4, 2), t), pureT));
    EXPECT_TRUE(sameBits(MatRot4f(Vector3f(0, 0, 0), Vector3f(0, 5, 1), t), pureT));
    // Not equal but nearly parallel: |cross|^2 = 2.5e-9 < 1e-8, no rotation at all.
    EXPECT_TRUE(sameBits(MatRot4f(Vector3f(1, 0, 0), Vector3f(1, 0.00005f, 0), t), pureT));
}

TEST(MatRot4f, SetFromMatrixTestsOrthonormalityAndTakesTheArgumentWhole) {
    MatRot4f r(Vector3f(1, -2, 0.5f), 0.9f, Vector3f(1, 2, 3));
    MatRot4f m;
    EXPECT_TRUE(m.setFromMatrix4f(r));
    EXPECT_TRUE(sameBits(m, r));
    // A projective bottom row passes and stays.
    Matrix4f p(r);
    p.getValue()[11] = 1.0f;
    EXPECT_TRUE(m.setFromMatrix4f(p));
    EXPECT_TRUE(sameBits(m, p));
    // Mirror passes.
    EXPECT_TRUE(m.setFromMatrix4f(Matrix4f(-1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1)));
    EXPECT_EQ(m.getValue()[0], -1.0f);
    // Failures leave the object alone.
    MatRot4f const before = r;
    Matrix4f zero15(r);
    zero15.getValue()[15] = 0.0f;
    EXPECT_FALSE(r.setFromMatrix4f(zero15));
    EXPECT_FALSE(r.setFromMatrix4f(1.001f * Matrix4f(MatAff4f::identity())));
    EXPECT_TRUE(sameBits(r, before));
    EXPECT_TRUE(r.setFromMatrix4f(1.00001f * Matrix4f(MatAff4f::identity())));
    // On both sides of the tolerance, floats that round the squared length either way.
    int accepted = 0, refused = 0;
    for (float d = 1.000045f; d < 1.000055f; d = std::nextafter(d, 2.0f)) {
        Matrix4f const diag(d, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1);
        bool const expected = diagonalPasses(d);
        ASSERT_EQ(m.setFromMatrix4f(diag), expected) << d;
        (expected ? accepted : refused) += 1;
    }
    EXPECT_TRUE(accepted > 0 && refused > 0);
}

TEST(MatRot4f, AroundACenterAndBetweenFramesKeepTheirFixedPoints) {
    Vector3f const c(0.5f, -1.5f, 2.5f);
    MatRot4f m;
    m.setRotateAround(Vector3f(1, 1, 0), 1.2f, c);
    EXPECT_TRUE((m * c).equalsEps(c, kRotationTolerance));
    m.setRotateAround(0.4f, -0.2f, 1.1f, c);
    EXPECT_TRUE((m * c).equalsEps(c, kRotationTolerance));
    m.setRotateAround(Vector3f(1, 0, 0), Vector3f(0, 1, 0), c);
    EXPECT_TRUE((m * c).equalsEps(c, kRotationTolerance));
    EXPECT_TRUE((m * (c + Vector3f(1, 0, 0))).equalsEps(c + Vector3f(0, 1, 0), kRotationTolerance));

    Vector3f const d(0.2f, 0.7f, -0.1f), p(1, 2, 3), q(-4, 5, 0.25f);
    m.setFromTo(d, d, p, q);
    EXPECT_TRUE(sameBits(m, MatAff4f::translate(q - p)));

    // Random orthonormal frames: origin1 goes to origin2, axis x1 to axis x2.
    std::mt19937 rng(8);
    for (int k = 0; k < 100; ++k) {
        MatRot4f const f1(randomVector(rng), 1.7f, randomVector(rng));
        MatRot4f const f2(randomVector(rng), -0.6f, randomVector(rng));
        const float *a = f1.getValue();
        const float *b = f2.getValue();
        Vector3f const o1(a + 12), o2(b + 12);
        MatRot4f toFrame;
        toFrame.setFromAxis2XYZ(Vector3f(a), Vector3f(a + 4), Vector3f(a + 8), o1);
        ASSERT_TRUE((toFrame * f1).equalsAff(MatAff4f::identity(), kRotationTolerance)) << k;
        m.setFromAxis2Axis(Vector3f(a), Vector3f(a + 4), Vector3f(a + 8), Vector3f(b), Vector3f(b + 4),
                           Vector3f(b + 8), o1, o2);
        ASSERT_TRUE((m * o1).equalsEps(o2, kRotationTolerance)) << k;
        ASSERT_TRUE((m * (o1 + Vector3f(a))).equalsEps(o2 + Vector3f(b), kRotationTolerance)) << k;
    }
    m.setFromAxis2Axis(Vector3f(1, 0, 0), Vector3f(0, 1, 0), Vector3f(0, 0, 1), Vector3f(1, 0, 0),
                       Vector3f(0, 1, 0), Vector3f(0, 0, 1), c, c);
    EXPECT_TRUE(m.equals(MatAff4f::identity(), kRotationTolerance));
}

TEST(MatRot4f, InverseProductsAndEulerRoundTrip) {
    std::mt19937 rng(21);
    std::uniform_real_distribution<float> angle(-1.4f, 1.4f);
    for (int k = 0; k < 100; ++k) {
        float const x = angle(rng), y = angle(rng), z = angle(rng);
        MatRot4f m(x, y, z, randomVector(rng));
        float e[3];
        m.getEuler(e);
        ASSERT_NEAR(e[0], x, kRotationTolerance);
        ASSERT_NEAR(e[1], y, kRotationTolerance);
        ASSERT_NEAR(e[2], z, kRotationTolerance);

        // The bottom row is not written by inverse.
        m.getValue()[7] = kSentinel;
        MatRot4f twice = m;
        twice.inverse();
        ASSERT_EQ(twice.getValue()[7], kSentinel);
        twice.inverse();
        ASSERT_TRUE(twice.equals(m, kRotationTolerance)) << k;

        // Self-products agree with the free product bit for bit.
        m.getValue()[7] = 0.0f;
        MatRot4f const square = m * m;
        MatRot4f left = m, right = m, assigned = m;
        left.multLeftBy(left);
        right.multRightBy(right);
        assigned *= assigned;
        ASSERT_TRUE(sameBits(left, square) && sameBits(right, square) && sameBits(assigned, square));
    }
    // The quaternion form gives what the axis form gives, bit for bit.
    Vector3f const axis(0.3f, -1, 2), t(4, 5, 6);
    MatRot4f fromQ;
    fromQ.setValue(Quaternion(axis, 0.77f), t);
    EXPECT_TRUE(sameBits(fromQ, MatRot4f(axis, 0.77f, t)));
    // transpose3 keeps translation and bottom row.
    MatRot4f tr = fromQ;
    tr.getValue()[3] = kSentinel;
    tr.transpose3();
    EXPECT_TRUE(tr.getValue()[3] == kSentinel && Vector3f(tr.getValue() + 12).equals(t));
    EXPECT_EQ(tr.getValue()[1], fromQ.getValue()[4]);
}

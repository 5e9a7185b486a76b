// Quaternions bit for bit against double-then-round products, and round trips
// between the rotation forms: Euler angles, axis and angle, quaternion, matrix.
#include "zefcore/math/Quaternion.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <random>

#include "support/TestSupport.h"
#include "zefcore/math/MatRot4f.h"

namespace {

// Float error allowed between two routes to the same rotation, per element.
constexpr float kRoundTripTolerance = 4e-6f;
// A quaternion read from a matrix takes w from 1 + trace, a sum of rounded
// elements, and divides by it: near a half turn its error grows as 1 / w^2.
constexpr float kHalfTurnConditioning = 3e-7f;
// Below this |w|, 1 + trace may round below zero and give NaN, as designed.
constexpr float kNearHalfTurn = 1e-3f;
constexpr float kPi = 3.14159265f;

Quaternion make(const float *v) {
    Quaternion q;
    std::memcpy(static_cast<void *>(&q), v, sizeof q);
    return q;
}

::testing::AssertionResult same(const Quaternion &a, const Quaternion &b) {
    return zeftest::sameBits(a.getValue(), b.getValue(), 4);
}

// a * b (sign 1) or a * conjugate(b) (sign -1), rounded once per element.
Quaternion hamilton(const Quaternion &a, const Quaternion &b, double sign) {
    float out[4];
    zeftest::referenceQuaternionProduct(out, a.getValue(), b.getValue(), sign);
    return make(out);
}

MatRot4f matrixOf(const Quaternion &q, const Vector3f &t) {
    MatRot4f m;
    m.setValue(q, t);
    return m;
}

} // namespace

TEST(Quaternion, ArithmeticBitForBit) {
    std::mt19937 rng(2024u);
    for (int trial = 0; trial < 200; ++trial) {
        float x[4], y[4];
        zeftest::randomFloats(rng, x, 4, 1);
        zeftest::randomFloats(rng, y, 4, 1);
        Quaternion const a = make(x), b = make(y);
        Quaternion l = a, r = a, star = a, dv = a, slash = a, sq = a, u = a;
        l.multLeftBy(b), r.multRightBy(b), dv.div(b), sq.multRightBy(sq);
        ASSERT_TRUE(&(star *= b) == &star && &(slash /= b) == &slash);
        ASSERT_TRUE(same(a * b, hamilton(a, b, 1)) && same(r, a * b) && same(star, a * b));
        ASSERT_TRUE(same(a / b, hamilton(a, b, -1)) && same(dv, a / b) && same(slash, a / b));
        ASSERT_TRUE(same(l, hamilton(b, a, 1)) && same(sq, hamilton(a, a, 1)));
        float dot = 0.0f;
        for (int k = 0; k < 4; ++k) {
            ASSERT_TRUE((a + b).getValue()[k] == float(double(x[k]) + y[k]) &&
                        (a - b).getValue()[k] == float(double(x[k]) - y[k]));
            dot = float(double(dot) + double(x[k]) * y[k]); // every partial sum rounded
        }
        // The sum of squares is rounded before the root; each component divided by the norm.
        float const n = float(std::sqrt(double(
            float(double(x[0]) * x[0] + double(x[1]) * x[1] + double(x[2]) * x[2] + double(x[3]) * x[3]))));
        ASSERT_TRUE(a.dot(b) == dot && a.norm() == n && u.normalize() == n);
        for (int k = 0; k < 4; ++k)
            ASSERT_EQ(u.getValue()[k], float(double(x[k]) / n));
    }
}

TEST(Quaternion, DegenerateCases) {
    Quaternion const id, q(0.3f, -1.1f, 2.5f);
    Quaternion two = id + id, zero = id - id;
    EXPECT_TRUE(same(id * q, q) && same(q * id, q));
    EXPECT_TRUE(two.normalize() == 2.0f && same(two, id));
    EXPECT_TRUE(zero.normalize() == 0.0f && std::isnan(zero.getValue()[0]) && std::isnan(zero.getValue()[3]));
    // Parallel, opposite, zero and too short axes all give exactly the identity.
    Vector3f const v(0.2f, -3.0f, 1.5f);
    Quaternion p;
    p.setValue(v, v);
    for (const Quaternion &one : {p, Quaternion(v, v * -1.0f), Quaternion(Vector3f(), 1.3f),
                                  Quaternion(Vector3f(0, 0, 0.00001f), 2.0f)})
        EXPECT_TRUE(same(one, id));
}

// Every eighth trial lies next to a pole (|y| = 0.48 pi); every eighth other one is a half turn.
TEST(RotationRoundTrip, FourFormsAgreeOnRandomRotations) {
    std::mt19937 rng(99u);
    std::uniform_real_distribution<float> angle(-kPi, kPi), coord(-2.0f, 2.0f);
    for (int trial = 0; trial < 200; ++trial) {
        float const x = angle(rng), z = angle(rng),
                    y = 0.48f * (trial % 8 == 0 ? (trial % 16 ? kPi : -kPi) : angle(rng));
        float const a = trial % 8 == 1 ? kPi : 2.0f * angle(rng);
        Vector3f const t(coord(rng), coord(rng), coord(rng)), axis(coord(rng), coord(rng), coord(rng));
        MatRot4f const euler(x, y, z, t), byAxis(axis, a, t);
        Quaternion const qe(x, y, z), qa(axis, a);
        float e[3], m[3];
        qe.getValue(e[0], e[1], e[2]);
        MatRot4f read(euler);
        trial % 2 ? read.getEuler(m) : read.getEuler(m[0], m[1], m[2]);
        SCOPED_TRACE(trial);
        ASSERT_TRUE(MatRot4f(e[0], e[1], e[2], t).equalsAff(euler, kRoundTripTolerance));
        ASSERT_TRUE(MatRot4f(m[0], m[1], m[2], t).equalsAff(euler, kRoundTripTolerance));
        ASSERT_TRUE(matrixOf(qe, t).equalsAff(euler, kRoundTripTolerance));
        ASSERT_TRUE(matrixOf(qa, t).equalsAff(byAxis, 0.0f)); // the same kernel route: the same bits
        for (const MatRot4f *r : {&euler, &byAxis}) {
            float const w = (r == &euler ? qe : qa).getValue()[0];
            float const tolerance = kRoundTripTolerance + kHalfTurnConditioning / (w * w);
            ASSERT_TRUE(std::fabs(w) < kNearHalfTurn || matrixOf(Quaternion(*r), t).equalsAff(*r, tolerance));
        }
    }
    // From one direction to another: the same rotation both ways, except for
    // opposite directions, where only the matrix makes a half turn.
    Vector3f const from(0.3f, -1.0f, 2.0f), to(1.5f, 0.25f, -0.5f), t(1, 2, 3);
    EXPECT_TRUE(MatRot4f(from, to, t).equalsAff(matrixOf(Quaternion(from, to), t), 0.0f));
    Quaternion const none(from, from * -2.0f);
    EXPECT_TRUE(same(none, Quaternion()));
    EXPECT_TRUE((MatRot4f(from, from * -2.0f, t) * from - t + from).norm() <= kRoundTripTolerance);
    MatRot4f r(from, to, t);
    Quaternion(from, to).getValue(r); // the translation becomes 0
    EXPECT_TRUE(Vector3f(r.getValue() + 12).equals(Vector3f()));
}

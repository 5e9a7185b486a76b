#include "zefcore/math/MatRot4f.h"
#include "zefcore/math/Quaternion.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace {

// Float error allowed between two routes to the same rotation, per element.
constexpr float kRoundTripTolerance = 4e-6f;
// A quaternion read from a matrix takes w from 1 + trace, a sum of rounded
// elements, and divides by it: near a half turn its error grows as 1 / w^2.
constexpr float kHalfTurnConditioning = 3e-7f;
// Below this |w|, 1 + trace may round below zero and give NaN, as designed.
constexpr float kNearHalfTurn = 1e-3f;
constexpr float kPi = 3.14159265f;

float readBackTolerance(const Quaternion &exact) {
    float const w = exact.getValue()[0];
    return kRoundTripTolerance + kHalfTurnConditioning / (w * w);
}

MatRot4f matrixOf(const Quaternion &q, const Vector3f &t) {
    MatRot4f m;
    m.setValue(q, t);
    return m;
}

// The Euler angles read back from m, through the matrix, rebuild m.
void expectEulerRoundTrip(MatRot4f m, const Vector3f &t) {
    float a[3];
    m.getEuler(a);
    EXPECT_TRUE(MatRot4f(a[0], a[1], a[2], t).equalsAff(m, kRoundTripTolerance));
}

} // namespace

TEST(RotationRoundTrip, FourFormsAgreeOnRandomRotations) {
    std::mt19937 rng(99u);
    std::uniform_real_distribution<float> angle(-kPi, kPi), coord(-2.0f, 2.0f);
    for (int trial = 0; trial < 500; ++trial) {
        float const x = angle(rng), y = 0.48f * angle(rng), z = angle(rng), a = 2.0f * angle(rng);
        Vector3f const t(coord(rng), coord(rng), coord(rng)), axis(coord(rng), coord(rng), coord(rng));
        MatRot4f const euler(x, y, z, t), byAxis(axis, a, t);
        Quaternion const qe(x, y, z), qa(axis, a);
        float e[3];
        qe.getValue(e[0], e[1], e[2]);
        ASSERT_TRUE(MatRot4f(e[0], e[1], e[2], t).equalsAff(euler, kRoundTripTolerance));
        expectEulerRoundTrip(euler, t);
        ASSERT_TRUE(matrixOf(qe, t).equalsAff(euler, kRoundTripTolerance));
        ASSERT_TRUE(matrixOf(qa, t).equalsAff(byAxis, 0.0f)); // the same kernel route: the same bits
        for (const MatRot4f *m : {&euler, &byAxis}) {
            Quaternion const &exact = (m == &euler) ? qe : qa;
            if (std::fabs(exact.getValue()[0]) < kNearHalfTurn)
                continue;
            ASSERT_TRUE(matrixOf(Quaternion(*m), t).equalsAff(*m, readBackTolerance(exact)));
        }
    }
}

TEST(RotationRoundTrip, HalfTurnsAndPoles) {
    Vector3f const t(1, -2, 3);
    // Exact half turns 2 u u^T - I, u = a / 5: the diagonal sums to -1 exactly.
    for (const Vector3f &a : {Vector3f(5, 0, 0), Vector3f(0, 5, 0), Vector3f(0, 0, 5), Vector3f(3, 4, 0),
                              Vector3f(4, 0, 3), Vector3f(0, -3, 4)}) {
        Vector3f col[3];
        for (int c = 0; c < 3; ++c)
            for (int r = 0; r < 3; ++r)
                col[c][r] = float((2.0 * a[r] * a[c] - (r == c ? 25.0 : 0.0)) / 25.0);
        MatRot4f half;
        half.setFromXYZ2Axis(col[0], col[1], col[2], t);
        EXPECT_TRUE(matrixOf(Quaternion(half), t).equalsAff(half, kRoundTripTolerance));
        EXPECT_TRUE(MatRot4f(a, kPi, t).equalsAff(half, kRoundTripTolerance));
        expectEulerRoundTrip(half, t);
    }
    // Euler half turns and the two poles, where X is read back as 0.
    float const halfPi = float(kPi / 2.0);
    for (const Vector3f &e :
         {Vector3f(kPi, 0, kPi), Vector3f(0.7f, halfPi, -0.4f), Vector3f(-2, -halfPi, 1.1f)}) {
        MatRot4f const m(e.x(), e.y(), e.z(), t);
        Quaternion const q(e.x(), e.y(), e.z());
        EXPECT_TRUE(matrixOf(q, t).equalsAff(m, kRoundTripTolerance));
        expectEulerRoundTrip(m, t);
        float x = 9, y = 9, z = 9;
        MatRot4f(m).getEuler(x, y, z);
        EXPECT_TRUE(std::fabs(e.y()) != halfPi || (x == 0.0f && y == e.y()));
    }
}

TEST(RotationRoundTrip, OppositeDirectionsAndTranslation) {
    // From one direction to another: the same rotation both ways, except for
    // opposite directions, where only the matrix makes a half turn.
    Vector3f const from(0.3f, -1.0f, 2.0f), to(1.5f, 0.25f, -0.5f), t(1, 2, 3);
    EXPECT_TRUE(MatRot4f(from, to, t).equalsAff(matrixOf(Quaternion(from, to), t), 0.0f));
    Quaternion const none(from, from * -2.0f);
    EXPECT_TRUE(none.getValue()[0] == 1.0f && none.getValue()[1] == 0.0f && none.getValue()[3] == 0.0f);
    Vector3f const image = MatRot4f(from, from * -2.0f, t) * from - t;
    EXPECT_TRUE((image + from).norm() <= kRoundTripTolerance);
    MatRot4f m(from, to, t);
    Quaternion(from, to).getValue(m); // the translation becomes 0
    EXPECT_TRUE(m.getValue()[12] == 0.0f && m.getValue()[13] == 0.0f && m.getValue()[14] == 0.0f);
}

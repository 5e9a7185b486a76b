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

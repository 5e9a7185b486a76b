#include "zefcore/math/Quaternion.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <random>

#include "support/TestSupport.h"

namespace {

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

const float *g_out = nullptr, *g_a = nullptr, *g_b = nullptr;

class RecordingKernel : public EnhancedMathFunctions {
public:
    void multQuaternions(float *const o, float const *const a, float const *const b) const override {
        g_out = o, g_a = a, g_b = b;
        EnhancedMathFunctions::multQuaternions(o, a, b);
    }
};

} // namespace

TEST(Quaternion, ArithmeticBitForBit) {
    std::mt19937 rng(2024u);
    for (int trial = 0; trial < 300; ++trial) {
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

TEST(Quaternion, StatedExamples) {
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

TEST(Quaternion, ReachesInstalledKernel) {
    (new RecordingKernel)->setDefault();
    Quaternion q(0.1f, 0.2f, 0.3f);
    Quaternion const r(Vector3f(1, 2, 3), 0.4f), expected = r * q;
    EXPECT_TRUE(g_out != q.getValue() && g_a == r.getValue() && g_b == q.getValue());
    q.multLeftBy(r);
    // The receiver goes in as a copy, the result straight into it.
    EXPECT_TRUE(g_out == q.getValue() && g_a == r.getValue() && g_b != q.getValue() && same(q, expected));
    (new EnhancedMathFunctions)->setDefault();
    g_out = nullptr;
    q *= r;
    EXPECT_EQ(g_out, nullptr);
}

#include "zefcore/math/Quaternion.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <random>

namespace {

// Float error allowed where a stated example is exact only in real numbers.
constexpr float kExampleTolerance = 1e-6f;

Quaternion make(float w, float x, float y, float z) {
    float const v[4] = {w, x, y, z};
    Quaternion q;
    std::memcpy(static_cast<void *>(&q), v, sizeof v);
    return q;
}

bool same(const Quaternion &a, const Quaternion &b) { return std::memcmp(&a, &b, sizeof a) == 0; }

bool near(const Quaternion &a, float w, float x, float y, float z) {
    const float *v = a.getValue();
    return std::fabs(v[0] - w) <= kExampleTolerance && std::fabs(v[1] - x) <= kExampleTolerance &&
           std::fabs(v[2] - y) <= kExampleTolerance && std::fabs(v[3] - z) <= kExampleTolerance;
}

// a * b (sign +1) or a * conjugate(b) (sign -1), each element in double, rounded once.
Quaternion hamilton(const Quaternion &qa, const Quaternion &qb, double sign) {
    const float *a = qa.getValue(), *b = qb.getValue();
    double const a0 = a[0], a1 = a[1], a2 = a[2], a3 = a[3];
    double const b0 = b[0], b1 = sign * b[1], b2 = sign * b[2], b3 = sign * b[3];
    return make(float(a0 * b0 - a1 * b1 - a2 * b2 - a3 * b3), float(a0 * b1 + a1 * b0 + a2 * b3 - a3 * b2),
                float(a0 * b2 + a2 * b0 + a3 * b1 - a1 * b3), float(a0 * b3 + a3 * b0 + a1 * b2 - a2 * b1));
}

int g_adds = 0;
const float *g_out = nullptr, *g_a = nullptr, *g_b = nullptr;

class RecordingKernel : public EnhancedMathFunctions {
public:
    void multQuaternions(float *const o, float const *const a, float const *const b) const override {
        g_out = o, g_a = a, g_b = b;
        EnhancedMathFunctions::multQuaternions(o, a, b);
    }
    void addQuaternions(float *const o, float const *const, float const *const) const override {
        ++g_adds;
        for (int k = 0; k < 4; ++k)
            o[k] = 42.0f;
    }
};

} // namespace

TEST(Quaternion, ArithmeticBitForBitAndInPlace) {
    std::mt19937 rng(2024u);
    std::uniform_real_distribution<float> d(-2.0f, 2.0f);
    int dotRoundings = 0, normRoundings = 0, normalizeRoundings = 0;
    for (int trial = 0; trial < 300; ++trial) {
        Quaternion const a = make(d(rng), d(rng), d(rng), d(rng)), b = make(d(rng), d(rng), d(rng), d(rng));
        Quaternion l = a, r = a, star = a, dv = a, slash = a, sq = a, sqL = a, self = a;
        l.multLeftBy(b);
        r.multRightBy(b);
        dv.div(b);
        EXPECT_EQ(&(star *= b), &star);
        EXPECT_EQ(&(slash /= b), &slash);
        sq.multRightBy(sq);
        sqL.multLeftBy(sqL);
        self.div(self);
        ASSERT_TRUE(same(a * b, hamilton(a, b, 1)) && same(r, hamilton(a, b, 1)) && same(star, hamilton(a, b, 1)));
        ASSERT_TRUE(same(l, hamilton(b, a, 1)));
        ASSERT_TRUE(same(a / b, hamilton(a, b, -1)) && same(dv, hamilton(a, b, -1)) && same(slash, dv));
        ASSERT_TRUE(same(sq, hamilton(a, a, 1)) && same(sqL, sq) && same(self, hamilton(a, a, -1)));
        const float *x = a.getValue(), *y = b.getValue();
        Quaternion const sum = a + b, diff = a - b;
        float dot = 0.0f;
        for (int k = 0; k < 4; ++k) {
            ASSERT_EQ(sum.getValue()[k], float(double(x[k]) + y[k]));
            ASSERT_EQ(diff.getValue()[k], float(double(x[k]) - y[k]));
            dot = float(double(dot) + double(x[k]) * y[k]); // every partial sum rounded
        }
        ASSERT_EQ(a.dot(b), dot);
        dotRoundings += dot != float(double(x[0]) * y[0] + double(x[1]) * y[1] + double(x[2]) * y[2] + double(x[3]) * y[3]);

        double const sumSq = double(x[0]) * x[0] + double(x[1]) * x[1] + double(x[2]) * x[2] + double(x[3]) * x[3];
        float const n = float(std::sqrt(double(float(sumSq))));
        normRoundings += n != float(std::sqrt(sumSq));
        Quaternion u = a;
        ASSERT_EQ(a.norm(), n);
        ASSERT_EQ(u.normalize(), n);
        for (int k = 0; k < 4; ++k) {
            ASSERT_EQ(u.getValue()[k], float(double(x[k]) / n)); // divided, not times 1/n
            normalizeRoundings += u.getValue()[k] != float(double(x[k]) * float(1.0 / n));
        }
    }
    // The inputs reach cases where a different rounding point gives other bits.
    EXPECT_TRUE(dotRoundings > 0 && normRoundings > 0 && normalizeRoundings > 0);
}

TEST(Quaternion, StatedExamples) {
    Quaternion const id, q(0.3f, -1.1f, 2.5f);
    EXPECT_TRUE(same(id * q, q) && same(q * id, q));
    Quaternion two = id + id, zero = id - id;
    EXPECT_EQ(two.normalize(), 2.0f);
    EXPECT_TRUE(same(two, id));
    EXPECT_EQ(zero.normalize(), 0.0f);
    for (int k = 0; k < 4; ++k)
        EXPECT_TRUE(std::isnan(zero.getValue()[k]));

    Quaternion const rx(Vector3f(1, 0, 0), 0.5f), ry(Vector3f(0, 1, 0), 0.7f);
    Quaternion l = rx, r = rx;
    l.multLeftBy(ry);
    r.multRightBy(ry);
    EXPECT_FALSE(near(l, r.getValue()[0], r.getValue()[1], r.getValue()[2], r.getValue()[3]));
    EXPECT_TRUE(near(q / q, 1, 0, 0, 0));

    // Parallel, opposite, zero and too short axes all give exactly the identity.
    Vector3f const v(0.2f, -3.0f, 1.5f), minusV(-0.2f, 3.0f, -1.5f);
    Quaternion p(Vector3f(1, 0, 0), Vector3f(0, 1, 0));
    EXPECT_TRUE(near(p, float(std::sqrt(0.5)), 0, 0, float(std::sqrt(0.5))));
    p.setValue(v, v);
    EXPECT_TRUE(same(p, id));
    EXPECT_TRUE(same(Quaternion(v, minusV), id) && same(Quaternion(Vector3f(), 1.3f), id));
    EXPECT_TRUE(same(Quaternion(Vector3f(0, 0, 0.00001f), 2.0f), id));
    EXPECT_TRUE(near(Quaternion(Vector3f(0, 0, 2), 3.14159265f), 0, 0, 0, 1));

    // Euler angles: X acts first, Z last; getValue gives them back away from the poles.
    Quaternion const composed = Quaternion(Vector3f(0, 0, 1), 2.5f) * Quaternion(Vector3f(0, 1, 0), -1.1f) *
                                Quaternion(Vector3f(1, 0, 0), 0.3f);
    EXPECT_TRUE(near(q, composed.getValue()[0], composed.getValue()[1], composed.getValue()[2],
                     composed.getValue()[3]));
    float ex = 9, ey = 9, ez = 9;
    q.getValue(ex, ey, ez);
    EXPECT_TRUE(std::fabs(ex - 0.3f) < 1e-5f && std::fabs(ey + 1.1f) < 1e-5f && std::fabs(ez - 2.5f) < 1e-5f);
}

TEST(Quaternion, ReachesInstalledKernel) {
    (new RecordingKernel)->setDefault();
    Quaternion q(0.1f, 0.2f, 0.3f);
    Quaternion const r(Vector3f(1, 2, 3), 0.4f);
    Quaternion const expected = r * q;
    EXPECT_TRUE(g_a == r.getValue() && g_b == q.getValue());
    q.multLeftBy(r);
    // The receiver goes in as a copy, the result straight into it.
    EXPECT_TRUE(g_out == q.getValue() && g_a == r.getValue() && g_b != q.getValue());
    EXPECT_TRUE(same(q, expected));
    EXPECT_TRUE(same(q + r, make(42, 42, 42, 42)) && g_adds == 1);
    (new EnhancedMathFunctions)->setDefault();
    EXPECT_TRUE(near(q + r, q.getValue()[0] + r.getValue()[0], q.getValue()[1] + r.getValue()[1],
                     q.getValue()[2] + r.getValue()[2], q.getValue()[3] + r.getValue()[3]));
    EXPECT_EQ(g_adds, 1);
}

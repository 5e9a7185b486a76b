#include "zefcore/math/Vector3f.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "support/TestSupport.h"

namespace {

const float kInf = std::numeric_limits<float>::infinity();
const float kNaN = std::numeric_limits<float>::quiet_NaN();
const double kPi = 3.141592653589793;

::testing::AssertionResult sameBits(const Vector3f &v, float x, float y, float z) {
    return zeftest::sameBits(v.getValue(), {x, y, z});
}

// Counts the calls of cross and still computes it, so results stay those of the base kernel.
int g_crossCalls = 0;
class CountingKernel : public EnhancedMathFunctions {
public:
    void cross(float *const out, float const *a, float const *b) const override {
        ++g_crossCalls;
        EnhancedMathFunctions::cross(out, a, b);
    }
};

} // namespace

TEST(Vector3f, ArithmeticMatchesDoubleThenRoundAndAllowsAliasing) {
    std::mt19937 rng(7);
    std::uniform_real_distribution<float> d(-1000.0f, 1000.0f);
    for (int i = 0; i < 5000; ++i) {
        const Vector3f a(d(rng), d(rng), d(rng)), b(d(rng), d(rng), d(rng));
        const float s = d(rng);
        const double ax = a.x(), ay = a.y(), az = a.z();
        const double dotD = (ay * b.y() + ax * b.x()) + az * b.z();
        EXPECT_TRUE(zeftest::sameBits(a * b, float(dotD)) && Vector3f::dotD(a, b) == dotD);
        const float n2 = float((ay * ay + ax * ax) + az * az);
        const float n = float(std::sqrt(double(n2)));
        EXPECT_TRUE(zeftest::sameBits(a.norm(), n) && a.normD() == std::sqrt((ay * ay + ax * ax) + az * az));

        Vector3f c = a;
        Vector3f::add(c, c, c);
        EXPECT_TRUE(sameBits(c, float(ax + ax), float(ay + ay), float(az + az)));
        c = a;
        Vector3f::sub(c, b, c);
        EXPECT_TRUE(sameBits(c, float(b.x() - ax), float(b.y() - ay), float(b.z() - az)));
        EXPECT_TRUE(sameBits(Vector3f(a, b), float(b.x() - ax), float(b.y() - ay), float(b.z() - az)));
        c = a;
        c *= s;
        EXPECT_TRUE(sameBits(c, float(ax * s), float(ay * s), float(az * s)));
        EXPECT_TRUE(sameBits(a.multCoords(b), float(ax * b.x()), float(ay * b.y()), float(az * b.z())));
        EXPECT_TRUE(sameBits(-a, -a.x(), -a.y(), -a.z()));
        // Division multiplies by the reciprocal rounded to float, also in place.
        const float rs = float(1.0 / s);
        c = a;
        Vector3f::div(c, c, s);
        EXPECT_TRUE(sameBits(c, float(ax * rs), float(ay * rs), float(az * rs)));

        // normalize: reciprocal of the twice-rounded length, rounded to float.
        c = a;
        const float r = float(1.0 / n);
        EXPECT_TRUE(zeftest::sameBits(c.normalize(), n));
        EXPECT_TRUE(sameBits(c, float(ax * r), float(ay * r), float(az * r)));
        c = a;
        const float m = float(double(n) / s);
        const float rm = float(1.0 / m);
        EXPECT_TRUE(zeftest::sameBits(c.normalize(s), m));
        EXPECT_TRUE(sameBits(c, float(ax * rm), float(ay * rm), float(az * rm)));

        // makeOrthogonalTo: dot rounded, products rounded, then differences.
        c = a;
        const Vector3f u = b / b.norm();
        const double ux = u.x(), uy = u.y(), uz = u.z();
        const float e = float((ay * uy + ax * ux) + az * uz);
        EXPECT_TRUE(c.makeOrthogonalTo(u));
        EXPECT_TRUE(
            sameBits(c, float(ax - float(ux * e)), float(ay - float(uy * e)), float(az - float(uz * e))));
    }
    // The order of terms shows where products cancel: (1e20 - 1e20) + 1.
    const Vector3f a(-1e10f, 1e10f, 1.0f), b(1e10f, 1e10f, 1.0f);
    EXPECT_TRUE(a.dot(b) == 1.0f && Vector3f::dotD(a, b) == 1.0);
}

TEST(Vector3f, ZeroDivisorsAndNormalizeEdgeCases) {
    const Vector3f v(1.0f, 2.0f, 3.0f);
    Vector3f out(7.0f, 8.0f, 9.0f), w = v;
    Vector3f::div(out, v, -0.0f);
    EXPECT_TRUE(sameBits(out, 7.0f, 8.0f, 9.0f));
    EXPECT_TRUE(sameBits(v / 0.0f, 0.0f, 0.0f, 0.0f));
    w /= 0.0f;
    EXPECT_TRUE(sameBits(w, 1.0f, 2.0f, 3.0f));
    // Denormal divisor: not zero, the reciprocal overflows to infinity.
    EXPECT_TRUE(sameBits(v / std::numeric_limits<float>::denorm_min(), kInf, kInf, kInf));

    Vector3f z;
    EXPECT_TRUE(z.normalize() == 0.0f && z.normalize(2.0f) == 0.0f && sameBits(z, 0.0f, 0.0f, 0.0f));
    w.setValue(3.0f, 0.0f, 4.0f);
    EXPECT_TRUE(w.normalize(2.0f) == 2.5f && w.norm() == 2.0f);
    w.setValue(3.0f, 0.0f, 4.0f);
    EXPECT_TRUE(w.normalize(0.0f) == kInf && sameBits(w, 0.0f, 0.0f, 0.0f));
    w.setValue(3.0f, 0.0f, 4.0f); // m == 0: the vector stays as it was
    EXPECT_TRUE(w.normalize(kInf) == 0.0f && sameBits(w, 3.0f, 0.0f, 4.0f));
    // A length whose square underflows to zero counts as zero: exact test on the float.
    Vector3f tiny(1e-30f, 0.0f, 0.0f), small(1e-19f, 0.0f, 0.0f);
    EXPECT_TRUE(tiny.normalize() == 0.0f && sameBits(tiny, 1e-30f, 0.0f, 0.0f));
    EXPECT_TRUE(small.normalize() > 0.0f && small.x() > 0.5f); // a subnormal square is not zero
}

TEST(Vector3f, ComparisonsOnTheBound) {
    const float half = 0.5f, tiny = -std::ldexp(1.0f, -30);
    EXPECT_TRUE(Vector3f(1.0f, 2.0f, 3.0f).equalsEps(Vector3f(1.5f, 1.5f, 3.5f), half));
    EXPECT_FALSE(
        Vector3f(1.0f, 2.0f, 3.0f).equalsEps(Vector3f(1.0f, 2.0f, std::nextafter(3.5f, 4.0f)), half));
    EXPECT_TRUE(Vector3f(kNaN, 2.0f, 3.0f).equalsEps(Vector3f(0.0f, 2.0f, 3.0f), 0.0f));
    EXPECT_FALSE(Vector3f(kNaN, 2.0f, 3.0f).equals(Vector3f(kNaN, 2.0f, 3.0f)));
    EXPECT_TRUE(Vector3f(-0.0f, 2.0f, 3.0f).equals(Vector3f(0.0f, 2.0f, 3.0f)));
    EXPECT_EQ(Vector3f::compFloat(1.0f, 2.0f, half), -1);
    EXPECT_EQ(Vector3f::compFloat(2.0f, 1.0f, half), 1);
    EXPECT_EQ(Vector3f::compFloat(1.0f, 1.5f, half), 0);
    EXPECT_EQ(Vector3f::compFloat(kNaN, 1.0f, half), 0);
    // The difference is rounded to float first: 1 + 2^-30 rounds to 1, which equals eps.
    EXPECT_EQ(Vector3f::compFloat(1.0f, tiny, 1.0f), 0);
    EXPECT_EQ(Vector3f::compFloat(tiny, 1.0f, 1.0f), 0);
}

TEST(Vector3f, AnglesAndTheirDegenerateCases) {
    const Vector3f x(1.0f, 0.0f, 0.0f), y(0.0f, 1.0f, 0.0f), zAxis(0.0f, 0.0f, 1.0f);
    EXPECT_EQ(x.angleD(Vector3f(-1.0f, 0.0f, 0.0f)), kPi);
    EXPECT_EQ(x.angle(Vector3f::m_zero), 0.0f);
    EXPECT_EQ(Vector3f::m_zero.cos(x), 1.0);
    EXPECT_EQ(x.cos(Vector3f(-2.0f, 0.0f, 0.0f)), -1.0);
    EXPECT_EQ(x.angleOrientD(y, zAxis), std::acos(0.0));
    EXPECT_EQ(x.angleOrientD(y, -zAxis), 6.283185307179586 - std::acos(0.0));
    EXPECT_EQ(x.angleOrientD(x, zAxis), 6.283185307179586);

    // A vector with itself: some cosines compute above 1 in double and are clamped.
    std::mt19937 rng(99);
    std::uniform_real_distribution<float> d(-10.0f, 10.0f);
    int above = 0;
    for (int i = 0; i < 2000; ++i) {
        const Vector3f v(d(rng), d(rng), d(rng));
        const double vx = v.x(), vy = v.y(), vz = v.z();
        const double l = std::sqrt(vx * vx + vy * vy + vz * vz);
        const double c = (vx * vx + vy * vy + vz * vz) / (l * l);
        above += c > 1.0;
        EXPECT_EQ(v.angleD(v), c > 1.0 ? 0.0 : std::acos(c));
        EXPECT_EQ(v.cos(v), c > 1.0 ? 1.0 : c);
    }
    EXPECT_GT(above, 0);
}

TEST(Vector3f, CrossProductsGoThroughTheCurrentKernel) {
    zeftest::ScopedKernel<CountingKernel> installed;
    const Vector3f x(1.0f, 0.0f, 0.0f), y(0.0f, 1.0f, 0.0f);
    EXPECT_TRUE(sameBits(x ^ y, 0.0f, 0.0f, 1.0f));
    Vector3f out(5.0f, 5.0f, 5.0f);
    Vector3f::cross(out, y, x);
    EXPECT_TRUE(sameBits(out, 0.0f, 0.0f, -1.0f));
    // selfCross works through a temporary: this is both operand and result.
    Vector3f s(1.0f, 2.0f, 3.0f);
    s.selfCross(Vector3f(4.0f, 5.0f, 6.0f));
    EXPECT_TRUE(sameBits(s, -3.0f, 6.0f, -3.0f));
    EXPECT_EQ(g_crossCalls, 3);

    // findOrthogonalVector crosses the axis of the smallest element with this.
    Vector3f o(9.0f, 9.0f, 9.0f);
    Vector3f(0.0f, 0.0f, 1.0f).findOrthogonalVector(o);
    EXPECT_TRUE(sameBits(o, 0.0f, -1.0f, 0.0f));
    Vector3f(1.0f, 1.0f, 1.0f).findOrthogonalVector(o); // tie: X
    EXPECT_TRUE(sameBits(o, 0.0f, -1.0f, 1.0f));
    Vector3f(2.0f, 1.0f, 1.0f).findOrthogonalVector(o); // tie of Y and Z: Y
    EXPECT_TRUE(sameBits(o, 1.0f, 0.0f, -2.0f));
    Vector3f(-3.0f, 2.0f, -1.0f).findOrthogonalVector(o); // Z
    EXPECT_TRUE(sameBits(o, -2.0f, -3.0f, 0.0f));
    EXPECT_EQ(g_crossCalls, 7);
    EXPECT_TRUE(sameBits(Vector3f::m_axis[3], -1.0f, 0.0f, 0.0f) &&
                sameBits(Vector3f::m_axis[5], 0, 0, -1.0f));
}

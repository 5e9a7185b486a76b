#include "zefcore/math/Vector2f.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>

namespace {
const float kInf = std::numeric_limits<float>::infinity();
const float kFloatPi = 3.1415927410125732f;
bool sameBits(float a, float b) { return std::memcmp(&a, &b, sizeof a) == 0; }
} // namespace

TEST(Vector2f, DivisionIsDirectWithoutZeroTest) {
    EXPECT_EQ((Vector2f(1.0f, 2.0f) / 0.0f).x(), kInf);
    EXPECT_EQ((Vector2f(1.0f, 2.0f) / 0.0f).y(), kInf);
    Vector2f v(1.0f, -2.0f);
    v /= 0.0f;
    EXPECT_EQ(v.x(), kInf);
    EXPECT_EQ(v.y(), -kInf);
    Vector2f out(7.0f, 7.0f);
    Vector2f::div(out, Vector2f(0.0f, 1.0f), 0.0f);
    EXPECT_TRUE(std::isnan(out.x()));
    // 5 / 3 directly, not 5 * float(1/3).
    ASSERT_NE(float(5.0 / 3.0), float(5.0 * double(float(1.0 / 3.0))));
    EXPECT_TRUE(sameBits((Vector2f(5.0f, -5.0f) / 3.0f).x(), float(5.0 / 3.0)));
    EXPECT_EQ(Vector2f(Vector2f(1.0f, 2.0f), Vector2f(4.0f, 0.0f)).y(), -2.0f);
}

TEST(Vector2f, NormalizeDividesDirectly) {
    Vector2f z;
    EXPECT_EQ(z.normalize(), 0.0f);
    EXPECT_EQ(z.normalize(3.0f), 0.0f);
    EXPECT_EQ(z.x(), 0.0f);
    std::mt19937 rng(3);
    std::uniform_real_distribution<float> d(-100.0f, 100.0f);
    for (int i = 0; i < 3000; ++i) {
        const Vector2f a(d(rng), d(rng));
        const float k = d(rng);
        const double ax = a.x(), ay = a.y();
        const float n2 = float(ay * ay + ax * ax);
        const float n = float(std::sqrt(double(n2)));
        EXPECT_TRUE(sameBits(Vector2f::dot(a, a), n2));
        EXPECT_TRUE(sameBits(a.norm(), n));
        Vector2f v = a;
        EXPECT_TRUE(sameBits(v.normalize(), n));
        EXPECT_TRUE(sameBits(v.x(), float(ax / n)) && sameBits(v.y(), float(ay / n)));
        v = a;
        const float m = float(double(n) / k);
        EXPECT_TRUE(sameBits(v.normalize(k), m));
        EXPECT_TRUE(sameBits(v.x(), float(ax / m)) && sameBits(v.y(), float(ay / m)));
    }
    // k = 0: m is infinite and the elements become zero.
    Vector2f v(3.0f, 4.0f);
    EXPECT_EQ(v.normalize(0.0f), kInf);
    EXPECT_EQ(v.x(), 0.0f);
}

TEST(Vector2f, DirectionAngleByQuadrant) {
    EXPECT_EQ(Vector2f(1.0f, 0.0f).angle(), 0.0f);
    EXPECT_EQ(Vector2f(0.0f, 1.0f).angle(), float(1.5707963705062866));
    EXPECT_EQ(Vector2f(0.0f, 0.0f).angle(), float(1.5707963705062866));
    EXPECT_EQ(Vector2f(0.0f, -1.0f).angle(), -float(1.5707963705062866));
    EXPECT_EQ(Vector2f(-1.0f, 0.0f).angle(), kFloatPi);
    EXPECT_EQ(Vector2f(1.0f, -1.0f).angle(), float(double(float(std::atan(-1.0))) + 6.2831854820251465));
    EXPECT_EQ(Vector2f(-1.0f, -0.0f).angle(), kFloatPi);
    // Quotient, atan and sum are each rounded to float.
    const float q = float(-3.0 / 7.0);
    const float at = float(std::atan(double(q)));
    EXPECT_TRUE(sameBits(Vector2f(-7.0f, 3.0f).angle(), float(double(at) + 3.1415927410125732)));
    EXPECT_TRUE(sameBits(Vector2f(7.0f, -3.0f).angle(), float(double(at) + 6.2831854820251465)));
    std::mt19937 rng(6);
    std::uniform_real_distribution<float> d(-10.0f, 10.0f);
    int quotientRoundingShows = 0;
    for (int i = 0; i < 3000; ++i) {
        const float x = d(rng), y = d(rng);
        const double qd = double(y) / x;
        const double add = x < 0.0f ? 3.1415927410125732 : y < 0.0f ? 6.2831854820251465 : 0.0;
        const float expected = float(double(float(std::atan(double(float(qd))))) + add);
        EXPECT_TRUE(sameBits(Vector2f(x, y).angle(), expected));
        quotientRoundingShows += expected != float(double(float(std::atan(qd))) + add);
    }
    EXPECT_GT(quotientRoundingShows, 0);
}

TEST(Vector2f, AngleBetweenAndCross) {
    EXPECT_EQ(Vector2f(1.0f, 0.0f).angle(Vector2f()), 0.0f);
    EXPECT_EQ(Vector2f(1.0f, 0.0f).angle(Vector2f(-1.0f, 0.0f)), kFloatPi);
    EXPECT_EQ(Vector2f(2.0f, 0.0f).angle(Vector2f(3.0f, 0.0f)), 0.0f);
    // The cosine is rounded to float before acos; the product of the norms is not.
    std::mt19937 rng(4);
    std::uniform_real_distribution<float> d(-10.0f, 10.0f);
    int cosineRoundingShows = 0;
    for (int i = 0; i < 3000; ++i) {
        const Vector2f a(d(rng), d(rng)), b(d(rng), d(rng));
        const double n = double(a.norm()) * b.norm();
        const double e = double(float(double(a.y()) * b.y() + double(a.x()) * b.x()));
        const float c = float(e / n);
        const float expected = c <= -1.0f ? kFloatPi : c >= 1.0f ? 0.0f : float(std::acos(double(c)));
        EXPECT_TRUE(sameBits(a.angle(b), expected));
        cosineRoundingShows += expected != float(std::acos(e / n));
    }
    EXPECT_GT(cosineRoundingShows, 0);
    EXPECT_EQ(Vector2f(1.0f, 0.0f).cross(Vector2f(0.0f, 1.0f)), 1.0f);
    EXPECT_EQ(Vector2f(0.0f, 1.0f).cross(Vector2f(1.0f, 0.0f)), -1.0f);
    EXPECT_EQ(Vector2f::compFloat(1.0f, 1.5f, 0.5f), 0);
    EXPECT_EQ(Vector2f::compFloat(1.0f, std::nextafter(1.5f, 2.0f), 0.5f), -1);
}

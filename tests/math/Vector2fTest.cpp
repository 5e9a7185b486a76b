#include "zefcore/math/Vector2f.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "support/TestSupport.h"

using zeftest::sameBits;

namespace {
const float kInf = std::numeric_limits<float>::infinity();
const double kFloatHalfPi = 1.5707963705062866, kFloatPi = 3.1415927410125732,
             kFloatTwoPi = 6.2831854820251465;
} // namespace

TEST(Vector2f, DivisionAndNormalizeDivideDirectly) {
    Vector2f inf(1.0f, -2.0f), out(7.0f, 7.0f);
    inf /= 0.0f;
    EXPECT_TRUE(sameBits(inf.getValue(), {kInf, -kInf}));
    Vector2f::div(out, Vector2f(0.0f, 1.0f), 0.0f);
    EXPECT_TRUE(std::isnan(out.x()));
    Vector2f z;
    EXPECT_TRUE(z.normalize() == 0.0f && z.normalize(3.0f) == 0.0f && z.x() == 0.0f);
    std::mt19937 rng(3);
    std::uniform_real_distribution<float> d(-100.0f, 100.0f);
    for (int i = 0; i < 3000; ++i) {
        const Vector2f a(d(rng), d(rng)), b(d(rng), d(rng));
        const float k = d(rng);
        const double ax = a.x(), ay = a.y();
        EXPECT_TRUE(sameBits(a.cross(b), float(b.y() * ax - ay * b.x())));
        const float n2 = float(ay * ay + ax * ax);
        const float n = float(std::sqrt(double(n2)));
        EXPECT_TRUE(sameBits(a.norm(), n));
        EXPECT_TRUE(sameBits((a / k).getValue(), {float(ax / k), float(ay / k)}));
        Vector2f v = a;
        EXPECT_TRUE(sameBits(v.normalize(), n) && sameBits(v.getValue(), {float(ax / n), float(ay / n)}));
        v = a;
        const float m = float(double(n) / k);
        EXPECT_TRUE(sameBits(v.normalize(k), m) && sameBits(v.getValue(), {float(ax / m), float(ay / m)}));
    }
    EXPECT_EQ(Vector2f(1.0f, 0.0f).cross(Vector2f(0.0f, 1.0f)), 1.0f);
    EXPECT_EQ(Vector2f(0.0f, 1.0f).cross(Vector2f(1.0f, 0.0f)), -1.0f);
    EXPECT_EQ(Vector2f(Vector2f(1.0f, 2.0f), Vector2f(4.0f, 0.0f)).y(), -2.0f);
}

TEST(Vector2f, DirectionAngleByQuadrant) {
    EXPECT_EQ(Vector2f(1.0f, 0.0f).angle(), 0.0f);
    EXPECT_EQ(Vector2f(0.0f, 1.0f).angle(), float(kFloatHalfPi));
    EXPECT_EQ(Vector2f(0.0f, 0.0f).angle(), float(kFloatHalfPi));
    EXPECT_EQ(Vector2f(0.0f, -1.0f).angle(), -float(kFloatHalfPi));
    EXPECT_EQ(Vector2f(-1.0f, -0.0f).angle(), float(kFloatPi));
    EXPECT_EQ(Vector2f(1.0f, -1.0f).angle(), float(double(float(std::atan(-1.0))) + kFloatTwoPi));
    // Quotient, atan and sum are each rounded to float.
    std::mt19937 rng(6);
    std::uniform_real_distribution<float> d(-10.0f, 10.0f);
    int quotientRoundingShows = 0;
    for (int i = 0; i < 3000; ++i) {
        const float x = d(rng), y = d(rng);
        const double qd = double(y) / x;
        const double add = x < 0.0f ? kFloatPi : y < 0.0f ? kFloatTwoPi : 0.0;
        const float expected = float(double(float(std::atan(double(float(qd))))) + add);
        EXPECT_TRUE(sameBits(Vector2f(x, y).angle(), expected));
        quotientRoundingShows += expected != float(double(float(std::atan(qd))) + add);
    }
    EXPECT_GT(quotientRoundingShows, 0);
}

TEST(Vector2f, AngleBetweenRoundsTheCosine) {
    EXPECT_EQ(Vector2f(1.0f, 0.0f).angle(Vector2f()), 0.0f);
    EXPECT_EQ(Vector2f(1.0f, 0.0f).angle(Vector2f(-1.0f, 0.0f)), float(kFloatPi));
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
        const float expected = c <= -1.0f ? float(kFloatPi) : c >= 1.0f ? 0.0f : float(std::acos(double(c)));
        EXPECT_TRUE(sameBits(a.angle(b), expected));
        cosineRoundingShows += expected != float(std::acos(e / n));
    }
    EXPECT_GT(cosineRoundingShows, 0);
    EXPECT_EQ(Vector2f::compFloat(1.0f, 1.5f, 0.5f), 0);
    EXPECT_EQ(Vector2f::compFloat(1.0f, std::nextafter(1.5f, 2.0f), 0.5f), -1);
}

#include "zefcore/math/Vector4f.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "support/TestSupport.h"

namespace {
::testing::AssertionResult sameBits(const Vector4f &v, float x, float y, float z, float w) {
    return zeftest::sameBits(v.getValue(), {x, y, z, w});
}
} // namespace

TEST(Vector4f, ConstructionAndZeroDivision) {
    EXPECT_TRUE(sameBits(Vector4f(Vector3f(1.0f, 2.0f, 3.0f)), 1.0f, 2.0f, 3.0f, 1.0f));
    EXPECT_TRUE(sameBits(Vector4f(1.0f, 2.0f, 3.0f, 4.0f) / 0.0f, 0.0f, 0.0f, 0.0f, 0.0f));
    Vector4f v(1.0f, 2.0f, 3.0f, 4.0f), out(9.0f, 9.0f, 9.0f, 9.0f);
    v /= 0.0f;
    Vector4f::div(out, v, 0.0f);
    EXPECT_TRUE(sameBits(v, 1.0f, 2.0f, 3.0f, 4.0f) && sameBits(out, 9.0f, 9.0f, 9.0f, 9.0f));
    Vector4f::inverse(v, v);
    EXPECT_TRUE(sameBits(v, -1.0f, -2.0f, -3.0f, -4.0f));
    v.setValue(0.0f, 0.0f, 0.0f, 2.0f);
    EXPECT_TRUE(v.normalize() == 2.0f && sameBits(v, 0.0f, 0.0f, 0.0f, 1.0f));
    Vector4f z;
    EXPECT_TRUE(z.normalize() == 0.0f && z.normalize(2.0f) == 0.0f);
    // m == 0 (k infinite): div refuses, the vector stays.
    v.setValue(1.0f, 2.0f, 3.0f, 4.0f);
    EXPECT_EQ(v.normalize(std::numeric_limits<float>::infinity()), 0.0f);
    EXPECT_TRUE(sameBits(v, 1.0f, 2.0f, 3.0f, 4.0f));
}

TEST(Vector4f, ArithmeticAndNormalizeGoThroughTheReciprocal) {
    // The order of terms shows where products cancel: ((1e20 - 1e20) + 1) + 1.
    EXPECT_EQ(Vector4f::dot(Vector4f(-1e10f, 1e10f, 1.0f, 1.0f), Vector4f(1e10f, 1e10f, 1.0f, 1.0f)), 2.0f);
    std::mt19937 rng(11);
    std::uniform_real_distribution<float> d(-50.0f, 50.0f);
    for (int i = 0; i < 3000; ++i) {
        const Vector4f a(d(rng), d(rng), d(rng), d(rng)), b(d(rng), d(rng), d(rng), d(rng));
        const float k = d(rng);
        const double x = a.x(), y = a.y(), z = a.z(), w = a.w();
        EXPECT_EQ(Vector4f::dot(a, b), float(((y * b.y() + x * b.x()) + z * b.z()) + w * b.w()));
        Vector4f v = a;
        v -= b;
        EXPECT_TRUE(sameBits(v, float(x - b.x()), float(y - b.y()), float(z - b.z()), float(w - b.w())));
        const float n = float(std::sqrt(double(float(((y * y + x * x) + z * z) + w * w))));
        const float r = float(1.0 / n);
        v = a;
        EXPECT_EQ(v.normalize(), n);
        EXPECT_TRUE(sameBits(v, float(x * r), float(y * r), float(z * r), float(w * r)));
        const float m = float(double(n) / k);
        const float rm = float(1.0 / m);
        v = a;
        EXPECT_EQ(v.normalize(k), m);
        EXPECT_TRUE(sameBits(v, float(x * rm), float(y * rm), float(z * rm), float(w * rm)));
    }
}

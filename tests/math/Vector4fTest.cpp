#include "zefcore/math/Vector4f.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>

namespace {
bool sameBits(const Vector4f &v, float x, float y, float z, float w) {
    const float e[4] = {x, y, z, w};
    return std::memcmp(v.getValue(), e, sizeof e) == 0;
}
} // namespace

TEST(Vector4f, ConstructionAndZeroDivision) {
    EXPECT_TRUE(sameBits(Vector4f(Vector3f(1.0f, 2.0f, 3.0f)), 1.0f, 2.0f, 3.0f, 1.0f));
    EXPECT_TRUE(sameBits(Vector4f(), 0.0f, 0.0f, 0.0f, 0.0f));
    EXPECT_TRUE(sameBits(Vector4f::m_zero, 0.0f, 0.0f, 0.0f, 0.0f));
    EXPECT_TRUE(sameBits(Vector4f(1.0f, 2.0f, 3.0f, 4.0f) - Vector4f(1.0f, 1.0f, 1.0f, 1.0f), 0.0f, 1.0f, 2.0f, 3.0f));
    EXPECT_TRUE(sameBits(Vector4f(1.0f, 2.0f, 3.0f, 4.0f) / 0.0f, 0.0f, 0.0f, 0.0f, 0.0f));
    Vector4f v(1.0f, 2.0f, 3.0f, 4.0f), out(9.0f, 9.0f, 9.0f, 9.0f);
    v /= 0.0f;
    EXPECT_TRUE(sameBits(v, 1.0f, 2.0f, 3.0f, 4.0f));
    Vector4f::div(out, v, 0.0f);
    EXPECT_TRUE(sameBits(out, 9.0f, 9.0f, 9.0f, 9.0f));
    Vector4f::inverse(v, v);
    EXPECT_TRUE(sameBits(v, -1.0f, -2.0f, -3.0f, -4.0f));
    const float r = float(1.0 / 3.0);
    EXPECT_TRUE(sameBits(Vector4f(5.0f, 0.0f, 0.0f, 0.0f) / 3.0f, float(5.0 * r), 0.0f, 0.0f, 0.0f));
}

TEST(Vector4f, NormalizeGoesThroughTheReciprocal) {
    Vector4f v(0.0f, 0.0f, 0.0f, 2.0f);
    EXPECT_EQ(v.normalize(), 2.0f);
    EXPECT_TRUE(sameBits(v, 0.0f, 0.0f, 0.0f, 1.0f));
    Vector4f z;
    EXPECT_EQ(z.normalize(), 0.0f);
    EXPECT_EQ(z.normalize(2.0f), 0.0f);
    // m == 0 (k infinite): div refuses, the vector stays.
    v.setValue(1.0f, 2.0f, 3.0f, 4.0f);
    EXPECT_EQ(v.normalize(std::numeric_limits<float>::infinity()), 0.0f);
    EXPECT_TRUE(sameBits(v, 1.0f, 2.0f, 3.0f, 4.0f));

    // The order of terms shows where products cancel: ((1e20 - 1e20) + 1) + 1.
    EXPECT_EQ(Vector4f::dot(Vector4f(-1e10f, 1e10f, 1.0f, 1.0f), Vector4f(1e10f, 1e10f, 1.0f, 1.0f)), 2.0f);
    std::mt19937 rng(11);
    std::uniform_real_distribution<float> d(-50.0f, 50.0f);
    for (int i = 0; i < 3000; ++i) {
        const Vector4f a(d(rng), d(rng), d(rng), d(rng)), b(d(rng), d(rng), d(rng), d(rng));
        const float k = d(rng);
        const double x = a.x(), y = a.y(), z2 = a.z(), w = a.w();
        EXPECT_EQ(Vector4f::dot(a, b), float(((y * b.y() + x * b.x()) + z2 * b.z()) + w * b.w()));
        const float n = float(std::sqrt(double(float(((y * y + x * x) + z2 * z2) + w * w))));
        const float r = float(1.0 / n);
        v = a;
        EXPECT_EQ(v.normalize(), n);
        EXPECT_TRUE(sameBits(v, float(x * r), float(y * r), float(z2 * r), float(w * r)));
        const float m = float(double(n) / k);
        const float rm = float(1.0 / m);
        v = a;
        EXPECT_EQ(v.normalize(k), m);
        EXPECT_TRUE(sameBits(v, float(x * rm), float(y * rm), float(z2 * rm), float(w * rm)));
    }
}

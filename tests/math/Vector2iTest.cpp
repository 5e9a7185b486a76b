#include "zefcore/math/Vector2i.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>

namespace {
// Reference: the int with the low 32 bits of v (two's complement).
int low32(std::int64_t v) {
    const std::int64_t r = v & 0xFFFFFFFFLL;
    return int(r >= 0x80000000LL ? r - 0x100000000LL : r);
}
} // namespace

TEST(Vector2i, NormalizeTruncatesTowardsZero) {
    EXPECT_TRUE(Vector2i(1, 2) == Vector2i(1, 2) && Vector2i(1, 2) != Vector2i(1, 3));
    Vector2i v(5, 0);
    EXPECT_TRUE(v.normalize() == 5.0f && v == Vector2i(1, 0));
    v = Vector2i(3, -4);
    EXPECT_TRUE(v.normalize() == 5.0f && v == Vector2i(0, 0));
    EXPECT_TRUE(v.normalize() == 0.0f && v.normalize(3) == 0.0f);
    v = Vector2i(3, 4);
    EXPECT_TRUE(v.normalize(-10) == -0.5f && v == Vector2i(-6, -8));
    v = Vector2i(3, 4);
    EXPECT_TRUE(v.normalize(0) == std::numeric_limits<float>::infinity() && v == Vector2i(0, 0));
    // Each quotient is truncated from the double, not from a float: 59999999.3, not 6e7.
    v = Vector2i(3, 4);
    const float m = float(5.0 / 1e8);
    EXPECT_TRUE(v.normalize(100000000) == m && v == Vector2i(int(3.0 / m), int(4.0 / m)));
    // m = float(1 / INT_MAX) is 2^-31, so 1 / m is 2^31: just out of range.
    v = Vector2i(1, 0);
    EXPECT_TRUE(v.normalize(INT_MAX) == std::ldexp(1.0f, -31) && v == Vector2i(INT_MIN, 0));
    // 40000^2 + 30000^2 wraps to a negative int: the norm is not a number.
    v = Vector2i(40000, 30000);
    EXPECT_LT(v.norm2(), 0);
    EXPECT_TRUE(std::isnan(v.normalize()));
    EXPECT_EQ(v, Vector2i(INT_MIN, INT_MIN));
}

TEST(Vector2i, RandomOperationsWrapLikeTheModel) {
    std::mt19937 rng(21);
    std::uniform_int_distribution<int> any(INT_MIN, INT_MAX);
    std::int64_t mx = 0, my = 0; // the model
    Vector2i v;
    for (int i = 0; i < 20000; ++i) {
        const int a = any(rng), b = any(rng);
        const Vector2i w(a, b);
        switch (rng() % 4) {
        case 0:
            v += w;
            mx = low32(mx + a);
            my = low32(my + b);
            break;
        case 1:
            v = v - w;
            mx = low32(mx - a);
            my = low32(my - b);
            break;
        case 2:
            v *= a;
            mx = low32(mx * a);
            my = low32(my * a);
            break;
        default:
            EXPECT_EQ(Vector2i::dot(v, w), low32(std::int64_t(low32(my * b)) + low32(mx * a)));
            EXPECT_EQ(w.norm2(),
                      low32(std::int64_t(low32(std::int64_t(a) * a)) + low32(std::int64_t(b) * b)));
            v = w;
            mx = a;
            my = b;
        }
        ASSERT_EQ(v, Vector2i(int(mx), int(my))) << "step " << i;
    }
}

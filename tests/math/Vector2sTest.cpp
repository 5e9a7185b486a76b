#include "zefcore/math/Vector2s.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstdint>
#include <random>

namespace {
// Reference: the short with the low 16 bits of v (two's complement).
short low16(std::int64_t v) {
    const std::int64_t r = v & 0xFFFF;
    return short(r >= 0x8000 ? r - 0x10000 : r);
}
} // namespace

TEST(Vector2s, WrapsIn16BitsButMultipliesIn32) {
    EXPECT_EQ(Vector2s(30000, 0) + Vector2s(30000, 0), Vector2s(-5536, 0));
    EXPECT_EQ(Vector2s(300, 0).dot(Vector2s(300, 0)), 90000);
    EXPECT_EQ(Vector2s(-32768, -32768).norm2(), INT_MIN);
    EXPECT_EQ(Vector2s(-7, 7) / short(2), Vector2s(-3, 3));
    EXPECT_EQ(Vector2s(-32768, 5) / short(-1), Vector2s(-32768, -5));
    // A zero divisor: div leaves out, operator/ gives zero, operator/= leaves the vector.
    Vector2s out(7, 8), v(1, 2);
    Vector2s::div(out, v, 0);
    v /= short(0);
    EXPECT_TRUE(out == Vector2s(7, 8) && v == Vector2s(1, 2) && v / short(0) == Vector2s(0, 0));
}

TEST(Vector2s, NormalizeStoresTheLow16BitsOfThe32BitTruncation) {
    Vector2s v(3, 4);
    EXPECT_TRUE(v.normalize(10) == 0.5f && v == Vector2s(6, 8));
    // 1 / float(sqrt(2) / 1e5) truncates to an int above 32767: its low 16 bits are kept.
    v = Vector2s(1, -1);
    const float m = float(double(float(std::sqrt(2.0))) / 100000);
    const std::int64_t t = std::int64_t(1.0 / m);
    EXPECT_TRUE(v.normalize(100000) == m && v == Vector2s(low16(t), low16(-t)) && low16(t) != 0);
    // 2^31 is out of the 32-bit range: 0x80000000, whose low 16 bits are 0.
    v = Vector2s(1, 0);
    v.normalize(INT_MAX);
    EXPECT_EQ(v, Vector2s(0, 0));
    // A wrapped norm is not a number: both elements become 0.
    v = Vector2s(-32768, -32768);
    EXPECT_TRUE(std::isnan(v.normalize()) && v == Vector2s(0, 0));
}

TEST(Vector2s, RandomOperationsWrapLikeTheModel) {
    std::mt19937 rng(5);
    std::uniform_int_distribution<int> any(SHRT_MIN, SHRT_MAX);
    std::int64_t mx = 0, my = 0;
    Vector2s v;
    for (int i = 0; i < 20000; ++i) {
        const short a = short(any(rng)), b = short(any(rng));
        switch (rng() % 5) {
        case 0:
            v += Vector2s(a, b);
            mx = low16(mx + a);
            my = low16(my + b);
            break;
        case 1:
            v -= Vector2s(a, b);
            mx = low16(mx - a);
            my = low16(my - b);
            break;
        case 2:
            v *= a;
            mx = low16(mx * a);
            my = low16(my * a);
            break;
        case 3:
            if (a != 0) {
                v /= a;
                mx = low16(mx / a);
                my = low16(my / a);
            }
            break;
        default:
            EXPECT_EQ(Vector2s::dot(v, Vector2s(a, b)), int(std::int32_t(std::uint32_t(my * b + mx * a))));
            v.setValue(a, b);
            mx = a;
            my = b;
        }
        ASSERT_EQ(v, Vector2s(short(mx), short(my))) << "step " << i;
    }
}

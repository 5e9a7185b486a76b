#include "zefcore/math/Vector2ui.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstdint>
#include <random>

TEST(Vector2ui, WrapsAndReadsSumsAsInt) {
    EXPECT_EQ(Vector2ui(0, 0) - Vector2ui(1, 0), Vector2ui(4294967295u, 0));
    EXPECT_EQ(Vector2ui(65536u, 0).dot(Vector2ui(32768u, 0)), INT_MIN);
    Vector2ui out(7, 8);
    Vector2ui::div(out, Vector2ui(1, 2), 0);
    EXPECT_TRUE(out == Vector2ui(7, 8) && Vector2ui(1, 2) / 0u == Vector2ui(0, 0));
}

TEST(Vector2ui, NormalizeKeepsTheLow32BitsOfThe64BitTruncation) {
    // A negative k gives negative quotients: their 64-bit truncation wraps.
    Vector2ui v(3, 4);
    EXPECT_TRUE(v.normalize(-10) == -0.5f && v == Vector2ui(4294967290u, 4294967288u));
    // 2^31 fits in 64 bits.
    v = Vector2ui(1, 0);
    v.normalize(INT_MAX);
    EXPECT_EQ(v, Vector2ui(2147483648u, 0));
    // A sum of 2^31 or more reads as negative: not a number, the elements become 0.
    v = Vector2ui(40000, 30000);
    EXPECT_TRUE(std::isnan(v.normalize()) && v == Vector2ui(0, 0));
    // Elements above 2^31 are converted as unsigned numbers (the square wraps to 1).
    v = Vector2ui(4294967295u, 0);
    ASSERT_EQ(v.norm(), 1.0f);
    EXPECT_EQ(v.normalize(3), float(1.0 / 3));
    EXPECT_EQ(v, Vector2ui(4294966909u, 0));
}

TEST(Vector2ui, RandomOperationsWrapLikeTheModel) {
    std::mt19937 rng(8);
    std::uint64_t mx = 0, my = 0;
    const std::uint64_t mask = 0xFFFFFFFFu;
    Vector2ui v;
    for (int i = 0; i < 20000; ++i) {
        const unsigned a = unsigned(rng()), b = unsigned(rng() >> (rng() % 32));
        switch (rng() % 5) {
        case 0:
            v = v + Vector2ui(a, b);
            mx = (mx + a) & mask;
            my = (my + b) & mask;
            break;
        case 1:
            Vector2ui::sub(v, v, Vector2ui(a, b));
            mx = (mx - a) & mask;
            my = (my - b) & mask;
            break;
        case 2:
            v *= b;
            mx = (mx * b) & mask;
            my = (my * b) & mask;
            break;
        case 3:
            if (b != 0) {
                v /= b;
                mx /= b;
                my /= b;
            }
            break;
        default:
            EXPECT_EQ(std::uint32_t(v.dot(Vector2ui(a, b))), std::uint32_t((my * b + mx * a) & mask));
            v.setValue(a, b);
            mx = a;
            my = b;
        }
        ASSERT_EQ(v, Vector2ui(unsigned(mx), unsigned(my))) << "step " << i;
    }
}

#include "zefcore/math/FloatMath.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <random>
#include <type_traits>

#include "zefcore/math/ScalarHelpers.h"

namespace {
bool sameBits(float a, float b) { return std::memcmp(&a, &b, sizeof a) == 0; }
} // namespace

TEST(FloatMath, WrappersAreChosenForFloatArguments) {
    static_assert(std::is_same<decltype(sqrt(1.0f)), float>::value, "float overload");
    static_assert(std::is_same<decltype(atan2(1.0f, 1.0f)), float>::value, "float overload");
    static_assert(std::is_same<decltype(sqrt(1.0)), double>::value, "double left alone");
    // atan2 takes y first.
    EXPECT_EQ(atan2(1.0f, 0.0f), float(1.5707963267948966));
    EXPECT_EQ(atan2(0.0f, -1.0f), float(3.141592653589793));
    EXPECT_EQ(pow(2.0f, 10.0f), 1024.0f);
    EXPECT_FALSE(std::signbit(fabs(-0.0f)));
    EXPECT_TRUE(std::signbit(absDouble(-0.0)));
}

TEST(FloatMath, EachWrapperRoundsTheDoubleResultOnce) {
    std::mt19937 rng(12345);
    std::uniform_real_distribution<float> wide(-100.0f, 100.0f);
    std::uniform_real_distribution<float> unit(-1.0f, 1.0f);
    for (int i = 0; i < 2000; ++i) {
        const float x = wide(rng), y = wide(rng), u = unit(rng);
        const float ax = float(std::fabs(double(x)));
        EXPECT_TRUE(sameBits(fabs(x), ax));
        EXPECT_TRUE(sameBits(sqrt(ax), float(std::sqrt(double(ax)))));
        EXPECT_TRUE(sameBits(pow(ax, u), float(std::pow(double(ax), double(u)))));
        EXPECT_TRUE(sameBits(sin(x), float(std::sin(double(x)))));
        EXPECT_TRUE(sameBits(cos(x), float(std::cos(double(x)))));
        EXPECT_TRUE(sameBits(tan(x), float(std::tan(double(x)))));
        EXPECT_TRUE(sameBits(asin(u), float(std::asin(double(u)))));
        EXPECT_TRUE(sameBits(acos(u), float(std::acos(double(u)))));
        EXPECT_TRUE(sameBits(atan(x), float(std::atan(double(x)))));
        EXPECT_TRUE(sameBits(atan2(y, x), float(std::atan2(double(y), double(x)))));
    }
}

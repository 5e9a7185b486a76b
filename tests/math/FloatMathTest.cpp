#include "zefcore/math/FloatMath.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
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
    const float x = 0.7f, y = -2.3f;
    EXPECT_TRUE(sameBits(sqrt(x), float(std::sqrt(double(x)))));
    EXPECT_TRUE(sameBits(pow(x, y), float(std::pow(double(x), double(y)))));
    EXPECT_TRUE(sameBits(sin(y), float(std::sin(double(y)))));
    EXPECT_TRUE(sameBits(cos(y), float(std::cos(double(y)))));
    EXPECT_TRUE(sameBits(tan(y), float(std::tan(double(y)))));
    EXPECT_TRUE(sameBits(asin(x), float(std::asin(double(x)))));
    EXPECT_TRUE(sameBits(acos(x), float(std::acos(double(x)))));
    EXPECT_TRUE(sameBits(atan(y), float(std::atan(double(y)))));
    EXPECT_TRUE(sameBits(atan2(y, x), float(std::atan2(double(y), double(x)))));
    EXPECT_TRUE(sameBits(fabs(y), 2.3f));
}

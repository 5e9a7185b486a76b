#include "zefcore/math/FloatMath.h"

#include <gtest/gtest.h>

#include <cmath>
#include <type_traits>

#include "support/TestSupport.h"

using zeftest::sameBits;

TEST(FloatMath, WrappersTakeFloatsAndRoundTheDoubleResultOnce) {
    static_assert(std::is_same<decltype(sqrt(1.0f)), float>::value, "float overload");
    static_assert(std::is_same<decltype(atan2(1.0f, 1.0f)), float>::value, "float overload");
    static_assert(std::is_same<decltype(sqrt(1.0)), double>::value, "double left alone");
    EXPECT_EQ(atan2(1.0f, 0.0f), float(1.5707963267948966)); // y first
    EXPECT_FALSE(std::signbit(fabs(-0.0f)));
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

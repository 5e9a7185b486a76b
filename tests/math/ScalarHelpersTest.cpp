#include "zefcore/math/ScalarHelpers.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

TEST(ScalarHelpers, FiniteTest) {
    const float inf = std::numeric_limits<float>::infinity();
    const float nan = std::numeric_limits<float>::quiet_NaN();
    EXPECT_TRUE(testFiniteAndNAN(0.0f));
    EXPECT_TRUE(testFiniteAndNAN(std::numeric_limits<float>::max()));
    EXPECT_TRUE(testFiniteAndNAN(-std::numeric_limits<float>::denorm_min()));
    EXPECT_FALSE(testFiniteAndNAN(inf));
    EXPECT_FALSE(testFiniteAndNAN(-inf));
    EXPECT_FALSE(testFiniteAndNAN(nan));
    EXPECT_TRUE(testFiniteAndNAN(std::numeric_limits<double>::max()));
    EXPECT_FALSE(testFiniteAndNAN(std::numeric_limits<double>::infinity()));
    EXPECT_FALSE(testFiniteAndNAN(-std::numeric_limits<double>::quiet_NaN()));
}

TEST(ScalarHelpers, AbsDoubleKeepsNegativeZeroAndNaNSign) {
    EXPECT_EQ(absDouble(-2.5), 2.5);
    EXPECT_EQ(absDouble(2.5), 2.5);
    EXPECT_TRUE(std::signbit(absDouble(-0.0)));
    EXPECT_FALSE(std::signbit(std::fabs(-0.0)));
    const double negNaN = -std::numeric_limits<double>::quiet_NaN();
    ASSERT_TRUE(std::signbit(negNaN));
    EXPECT_TRUE(std::isnan(absDouble(negNaN)));
    EXPECT_TRUE(std::signbit(absDouble(negNaN)));
}

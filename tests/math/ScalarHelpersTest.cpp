#include "zefcore/math/ScalarHelpers.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

TEST(ScalarHelpers, FiniteTestAndAbsDouble) {
    const float inf = std::numeric_limits<float>::infinity();
    EXPECT_TRUE(testFiniteAndNAN(std::numeric_limits<float>::max()) && testFiniteAndNAN(0.0f));
    EXPECT_TRUE(testFiniteAndNAN(-std::numeric_limits<float>::denorm_min()));
    EXPECT_FALSE(testFiniteAndNAN(inf) || testFiniteAndNAN(-inf) || testFiniteAndNAN(std::nanf("")));
    EXPECT_TRUE(testFiniteAndNAN(std::numeric_limits<double>::max()));
    EXPECT_FALSE(testFiniteAndNAN(std::numeric_limits<double>::infinity()) ||
                 testFiniteAndNAN(-std::nan("")));

    // A plain comparison: negative zero and a negative NaN keep their sign.
    EXPECT_TRUE(absDouble(-2.5) == 2.5 && absDouble(2.5) == 2.5 && std::signbit(absDouble(-0.0)));
    const double negNaN = -std::numeric_limits<double>::quiet_NaN();
    ASSERT_TRUE(std::signbit(negNaN));
    EXPECT_TRUE(std::isnan(absDouble(negNaN)) && std::signbit(absDouble(negNaN)));

    // swapPDouble exchanges the pointers, not the values they point at.
    double x = 1.0, y = 2.0;
    double *a = &x, *b = &y;
    swapPDouble(a, b);
    EXPECT_TRUE(a == &y && b == &x && x == 1.0 && y == 2.0);
}

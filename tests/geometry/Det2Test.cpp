#include "zefcore/geometry/Det2.h"

#include <gtest/gtest.h>

TEST(Det2, ProductsAreNotRoundedBeforeTheDifference) {
    EXPECT_EQ(det2(1.0f, 2.0f, 3.0f, 4.0f), -2.0f);
    // a*d = 1 + 2^-11 + 2^-24 is not a float; in double the difference keeps the 2^-24.
    const float a = 1.0f + 1.0f / 4096.0f;
    const float exact = 1.0f / 2048.0f + 1.0f / 16777216.0f;
    EXPECT_EQ(det2(a, 1.0f, 1.0f, a), exact);
    EXPECT_NE(a * a - 1.0f, exact); // float products would lose it
}

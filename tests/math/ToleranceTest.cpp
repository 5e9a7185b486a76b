#include "zefcore/math/Tolerance.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "zefcore/math/Vector3f.h"

namespace {
const float kNaN = std::numeric_limits<float>::quiet_NaN();
// The float nearest to 0.0001 lies just below the double bound; the next one lies above.
const float kBoundFloat = 0.0001f;
const float kAboveBound = std::nextafter(kBoundFloat, 1.0f);
} // namespace

TEST(Tolerance, DefaultBoundIsTheDoubleAndCountsAsZero) {
    ASSERT_TRUE(double(kBoundFloat) < ZEF_DEFAULT_TOLERANCE && double(kAboveBound) > ZEF_DEFAULT_TOLERANCE);
    EXPECT_TRUE(isZero(kBoundFloat) && isZero(-kBoundFloat) && isZero(-0.0f));
    EXPECT_FALSE(isZero(kAboveBound) || isZero(-kAboveBound) || isZero(kNaN));
    // 1.0001f - 1.0f is 0.00010001659: above the bound.
    EXPECT_FALSE(areEqual(1.0f, 1.0001f) || areEqual(kNaN, 0.0f));
    EXPECT_TRUE(areEqual(1.0f, 1.00009f));
    // The exact difference kBoundFloat + 3e-12 lies above the bound, but it rounds
    // to kBoundFloat as a float, which is on the zero side.
    const float tiny = -3.0e-12f;
    ASSERT_GT(double(kBoundFloat) - tiny, ZEF_DEFAULT_TOLERANCE);
    ASSERT_EQ(float(double(kBoundFloat) - tiny), kBoundFloat);
    EXPECT_TRUE(areEqual(kBoundFloat, tiny) && areEqual(tiny, kBoundFloat));
}

TEST(Tolerance, ExplicitEpsIsInclusiveAndZeroEpsAdmitsOnlyZero) {
    EXPECT_TRUE(isZero(0.5f, 0.5f) && isZero(-0.5f, 0.5f) && isZero(-0.0f, 0.0f));
    EXPECT_FALSE(isZero(std::nextafter(0.5f, 1.0f), 0.5f) || isZero(kNaN, 1.0f));
    EXPECT_FALSE(isZero(std::numeric_limits<float>::denorm_min(), 0.0f));
    EXPECT_TRUE(areEqual(1.0f, 1.5f, 0.5f));
    EXPECT_FALSE(areEqual(1.0f, std::nextafter(1.5f, 2.0f), 0.5f) || areEqual(kNaN, kNaN, 1.0f));
}

TEST(Tolerance, VectorFormsAreABoxNotASphere) {
    EXPECT_TRUE(isZero(Vector3f(0.00009f, 0.00009f, 0.00009f)));
    EXPECT_GT(Vector3f(0.00009f, 0.00009f, 0.00009f).normD(), 0.00015);
    EXPECT_TRUE(isZero(Vector3f(-kBoundFloat, kBoundFloat, 0.0f)));
    EXPECT_FALSE(isZero(Vector3f(0.0f, 0.0f, kAboveBound)) || isZero(Vector3f(0.0f, kNaN, 0.0f)));
    EXPECT_TRUE(isZero(Vector3f(0.5f, -0.5f, 0.0f), 0.5f));
    EXPECT_FALSE(isZero(Vector3f(0.5f, 0.0f, std::nextafter(0.5f, 1.0f)), 0.5f));
    EXPECT_TRUE(areEqual(Vector3f(1.0f, 2.0f, 3.0f), Vector3f(1.00009f, 2.0f, 3.0f)));
    EXPECT_FALSE(areEqual(Vector3f(1.0f, 2.0f, 3.0f), Vector3f(1.0f, 2.0f, 3.0002f)));
}

// The scalar helpers, the tolerant tests and the float wrappers of the math functions.
#include "zefcore/math/ScalarHelpers.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "support/TestSupport.h"
#include "zefcore/math/FloatMath.h"
#include "zefcore/math/Tolerance.h"
#include "zefcore/math/Vector3f.h"

using zeftest::sameBits;

namespace {
const float kNaN = std::numeric_limits<float>::quiet_NaN();
const float kDefault = kNaN; // in the table below: use the default bound
// The float nearest to 0.0001 lies just below the double bound; the next one lies above.
const float kBoundFloat = 0.0001f;
const float kAboveBound = std::nextafter(kBoundFloat, 1.0f);
} // namespace

TEST(Tolerance, BoundsAreInclusiveAndDifferencesRoundedToFloat) {
    ASSERT_TRUE(double(kBoundFloat) < ZEF_DEFAULT_TOLERANCE && double(kAboveBound) > ZEF_DEFAULT_TOLERANCE);
    struct {
        float x, eps;
        bool zero;
    } const cases[] = {{kBoundFloat, kDefault, true},
                       {kAboveBound, kDefault, false},
                       {kNaN, kDefault, false},
                       {0.5f, 0.5f, true},
                       {std::nextafter(0.5f, 1.0f), 0.5f, false},
                       {kNaN, 1.0f, false},
                       {-0.0f, 0.0f, true},
                       {std::numeric_limits<float>::denorm_min(), 0.0f, false}};
    for (const auto &c : cases) {
        const bool def = std::isnan(c.eps);
        const Vector3f v(0.0f, c.x, -c.x); // both signs
        EXPECT_EQ(def ? isZero(c.x) : isZero(c.x, c.eps), c.zero) << c.x << " " << c.eps;
        EXPECT_EQ(def ? areEqual(c.x, 0.0f) : areEqual(0.0f, c.x, c.eps), c.zero) << c.x << " " << c.eps;
        EXPECT_EQ(def ? isZero(v) : isZero(v, c.eps), c.zero) << c.x << " " << c.eps;
        EXPECT_TRUE(!def || areEqual(v, Vector3f()) == c.zero) << c.x;
    }
    // 1.0001f - 1.0f is 0.00010001659: above the bound.
    EXPECT_FALSE(areEqual(1.0f, 1.0001f) || areEqual(kNaN, 0.0f) || areEqual(kNaN, kNaN, 1.0f));
    // The exact difference kBoundFloat + 3e-12 lies above the bound but rounds to kBoundFloat.
    const float tiny = -3.0e-12f;
    ASSERT_GT(double(kBoundFloat) - tiny, ZEF_DEFAULT_TOLERANCE);
    EXPECT_TRUE(areEqual(kBoundFloat, tiny) && areEqual(tiny, kBoundFloat));
    EXPECT_TRUE(isZero(Vector3f(0.00009f, 0.00009f, 0.00009f))); // a box, not a sphere
}

TEST(ScalarHelpers, FiniteTestAbsDoubleAndPointerSwap) {
    const float inf = std::numeric_limits<float>::infinity();
    EXPECT_TRUE(testFiniteAndNAN(std::numeric_limits<float>::max()) && testFiniteAndNAN(-0.0f));
    EXPECT_FALSE(testFiniteAndNAN(inf) || testFiniteAndNAN(-inf) || testFiniteAndNAN(kNaN));
    EXPECT_TRUE(testFiniteAndNAN(std::numeric_limits<double>::max()));
    EXPECT_FALSE(testFiniteAndNAN(std::numeric_limits<double>::infinity()) ||
                 testFiniteAndNAN(-std::nan("")));
    // A plain comparison: negative zero and a negative NaN keep their sign.
    const double negNaN = -std::numeric_limits<double>::quiet_NaN();
    EXPECT_TRUE(absDouble(-2.5) == 2.5 && absDouble(2.5) == 2.5 && std::signbit(absDouble(-0.0)));
    EXPECT_TRUE(std::isnan(absDouble(negNaN)) && std::signbit(absDouble(negNaN)));
    double x = 1.0, y = 2.0, *a = &x, *b = &y;
    swapPDouble(a, b);
    EXPECT_TRUE(a == &y && b == &x && x == 1.0 && y == 2.0);
}

// Each wrapper takes floats, computes in double and rounds once.
TEST(FloatMath, WrappersRoundTheDoubleResultOnce) {
    static_assert(std::is_same<decltype(sqrt(1.0f)), float>::value, "float overload");
    static_assert(std::is_same<decltype(sqrt(1.0)), double>::value, "double left alone");
    EXPECT_EQ(atan2(1.0f, 0.0f), float(1.5707963267948966)); // y first
    EXPECT_FALSE(std::signbit(fabs(-0.0f)));
    std::mt19937 rng(5);
    std::uniform_real_distribution<float> unit(-1.0f, 1.0f);
    for (int i = 0; i < 2000; ++i) {
        const float x = unit(rng), y = zeftest::randomFloat(rng, 4), ax = std::fabs(x);
        const double dx = x, dy = y;
        ASSERT_TRUE(sameBits(sqrt(ax), float(std::sqrt(double(ax)))) && sameBits(fabs(y), std::fabs(y)));
        ASSERT_TRUE(sameBits(pow(ax, y), float(std::pow(double(ax), dy))));
        ASSERT_TRUE(sameBits(sin(y), float(std::sin(dy))) && sameBits(cos(y), float(std::cos(dy))));
        ASSERT_TRUE(sameBits(tan(y), float(std::tan(dy))) && sameBits(atan(y), float(std::atan(dy))));
        ASSERT_TRUE(sameBits(asin(x), float(std::asin(dx))) && sameBits(acos(x), float(std::acos(dx))));
        ASSERT_TRUE(sameBits(atan2(y, x), float(std::atan2(dy, dx))));
    }
}

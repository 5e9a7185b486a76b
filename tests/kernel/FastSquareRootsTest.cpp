#include "zefcore/kernel/EnhancedMathFunctions.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <random>

#include "support/TestSupport.h"

using zeftest::bitsOf;
using zeftest::floatOf;

namespace {

EnhancedMathFunctions const &k() {
    return zeftest::kernel();
}

// One Newton step towards 1/sqrt(x), in double, rounded to float.
float step(float y, float x) {
    return float(double(y) * (3.0 - double(x) * y * y) * 0.5);
}

} // namespace

TEST(FastSquareRoots, SeedCarriesEveryTableRow) {
    for (std::uint32_t i = 0; i < 128; ++i) {
        float const x = floatOf((i | 0x1F80u) << 17);
        float const y = float(1.0 / float(std::sqrt(double(x))));
        std::uint32_t const entry = (i == 64) ? 0xFFu : ((bitsOf(y) + 0x2000u) >> 15) & 0xFFu;
        // x in [0.5, 1) gives the exponent field 127, x in [1, 2) gives 126.
        EXPECT_EQ(bitsOf(k().invSqrt(x, 0)), (((i < 64) ? 127u : 126u) << 23) | (entry << 15)) << i;
    }
    std::uint32_t const rows[6][2] = {{0, 0x6A}, {1, 0x67}, {63, 0x01}, {64, 0xFF}, {65, 0xFC}, {127, 0x6B}};
    for (auto const &row : rows)
        EXPECT_EQ((bitsOf(k().invSqrt(floatOf((row[0] | 0x1F80u) << 17), 0)) >> 15) & 0xFFu, row[1]);
}

TEST(FastSquareRoots, StatedValues) {
    EXPECT_EQ(bitsOf(k().invSqrt(1.0f, 0)), 0x3F7F8000u);
    EXPECT_EQ(k().invSqrt(1.0f), float(0.9999942779541016));
    EXPECT_EQ(k().invSqrt(1.0f, 2), 1.0f);
    EXPECT_EQ(bitsOf(k().invSqrt(2.0f, 0)), 0x3F350000u);
    EXPECT_EQ(k().invSqrt(2.0f), float(0.7071067690849304));
    EXPECT_EQ(bitsOf(k().invSqrt(4.0f, 0)), 0x3EFF8000u);
    EXPECT_EQ(k().invSqrt(4.0f, 2), 0.5f);
    EXPECT_EQ(k().invSqrt(4.0f, -1), 0.4990234375f);
    constexpr double kNearTenTolerance = 1e-5;
    EXPECT_NEAR(k().msqrt(100.0f), 10.00003, kNearTenTolerance);
    // Zero: the seed 1.3042424520864956e19, times 1.5 per step; the sign is ignored in the seed.
    EXPECT_EQ(k().invSqrt(0.0f, 0), float(1.3042424520864956e+19));
    EXPECT_EQ(k().invSqrt(0.0f), float(1.3042424520864956e+19 * 1.5));
    EXPECT_EQ(k().invSqrt(-1.0f), step(k().invSqrt(1.0f, 0), -1.0f));
}

TEST(FastSquareRoots, SeedLayoutAndEachStepRounded) {
    std::mt19937 rng(20240611u);
    std::uniform_int_distribution<std::uint32_t> mantissa(0, 0x7FFFFF), exponent(1, 252);
    int differsFromFloatStep = 0;
    for (int trial = 0; trial < 4000; ++trial) {
        std::uint32_t const e = exponent(rng);
        float const x = floatOf((e << 23) | mantissa(rng));
        std::uint32_t const seed = bitsOf(k().invSqrt(-x, 0));
        ASSERT_EQ(seed >> 23, (380u - e) / 2u) << x; // sign clear, exponent halved
        ASSERT_EQ(seed & 0x7FFFu, 0u) << x;          // low 15 mantissa bits clear
        ASSERT_EQ(seed, bitsOf(k().invSqrt(x, 0))) << x;
        float y = floatOf(seed);
        for (int n = 1; n <= 3; ++n) {
            float const floatStep = y * (3.0f - x * y * y) * 0.5f;
            y = step(y, x);
            differsFromFloatStep += (floatStep != y);
            ASSERT_EQ(bitsOf(k().invSqrt(x, n)), bitsOf(y)) << x << " n=" << n;
            ASSERT_EQ(bitsOf(k().msqrt(x, n)), bitsOf(float(1.0 / y))) << x << " n=" << n;
            // Exact under a power of four: the exponent is halved, the row kept.
            ASSERT_EQ(bitsOf(k().invSqrt(4.0f * x, n)), bitsOf(0.5f * y)) << x << " n=" << n;
        }
        ASSERT_EQ(bitsOf(k().invSqrt(x)), bitsOf(k().invSqrt(x, 1)));
        ASSERT_EQ(bitsOf(k().msqrt(x)), bitsOf(k().msqrt(x, 1)));
    }
    EXPECT_GT(differsFromFloatStep, 100); // the samples tell a step in double from one in float
}

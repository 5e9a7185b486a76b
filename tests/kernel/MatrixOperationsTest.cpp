#include "zefcore/kernel/EnhancedMathFunctions.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <random>
#include <utility>

#include "support/TestSupport.h"

using zeftest::kernel;
using zeftest::sameBits;

namespace {

// Gauss-Jordan on the augmented rows [row | identity] in flat order, reached through a
// permutation: the kernel's order of pivots and updates, written independently.
bool referenceInverse(float *out, float const *m) {
    double a[4][8] = {};
    for (int i = 0; i < 16; ++i)
        a[i / 4][i % 4] = m[i];
    for (int i = 0; i < 4; ++i)
        a[i][4 + i] = 1.0;
    int p[4] = {0, 1, 2, 3};
    for (int col = 0; col < 3; ++col) {
        for (int r = 3; r > col; --r) {
            if (std::fabs(a[p[r]][col]) > std::fabs(a[p[r - 1]][col]))
                std::swap(p[r], p[r - 1]);
        }
        double *piv = a[p[col]];
        if (piv[col] == 0.0)
            return false;
        for (int r = col + 1; r < 4; ++r) {
            const double f = a[p[r]][col] / piv[col];
            for (int j = col + 1; j < 8; ++j) {
                if (j < 4 || col == 2 || piv[j] != 0.0)
                    a[p[r]][j] -= f * piv[j];
            }
        }
    }
    if (a[p[3]][3] == 0.0)
        return false;
    for (int k = 3; k >= 0; --k) {
        double *row = a[p[k]];
        for (int j = 4; j < 8; ++j) {
            double t = row[j];
            for (int i = 3; i >= k + 2; --i)
                t = t - a[p[i]][j] * row[i];
            row[j] = (k == 3) ? t * (1.0 / row[k]) : (1.0 / row[k]) * (t - a[p[k + 1]][j] * row[k + 1]);
        }
    }
    for (int i = 0; i < 16; ++i)
        out[i] = float(a[p[i / 4]][4 + i % 4]);
    return true;
}

} // namespace

TEST(MatrixOperations, ProductsSumInDoubleInTheGivenOrder) {
    std::mt19937 rng(7u);
    int floatSumDiffers = 0;
    for (int n = 0; n < 500; ++n) {
        float a[16], b[16], out[16], want[16], v[4], w[4];
        zeftest::randomFloats(rng, a, 16, 12);
        zeftest::randomFloats(rng, b, 16, 12);
        zeftest::referenceProduct(want, a, b);
        kernel().multMatrices(out, a, b);
        EXPECT_TRUE(sameBits(out, want, 16));
        floatSumDiffers += ((a[0] * b[0] + a[4] * b[1]) + a[8] * b[2]) + a[12] * b[3] != want[0];

        zeftest::randomFloats(rng, v, 4, 12);
        for (int k = 0; k < 4; ++k)
            w[k] = float(double(a[k]) * v[0] + double(a[4 + k]) * v[1] + double(a[8 + k]) * v[2] +
                         double(a[12 + k]) * v[3]);
        kernel().multMatrixVec4f(v, a, v); // in place
        EXPECT_TRUE(sameBits(v, w, 4));
        const double hw = double(a[3]) * v[0] + double(a[7]) * v[1] + double(a[11]) * v[2] + a[15];
        for (int k = 0; k < 3; ++k)
            w[k] = float(
                (double(a[k]) * v[0] + double(a[4 + k]) * v[1] + double(a[8 + k]) * v[2] + a[12 + k]) / hw);
        kernel().multMatrixVec3f(v, a, v); // in place
        EXPECT_TRUE(sameBits(v, w, 3));
    }
    EXPECT_GT(floatSumDiffers, 10); // float accumulation would be caught
    // Cancellation shows the order of terms: ((-2^60 + 0) + 2^60) + 1 is 1, regrouped sums give 0.
    float const ca[16] = {-0x1p30f, 0, 0, 0, 0, 0, 0, 0, 0x1p30f, 0, 0, 0, 1, 0, 0, 0},
                cb[16] = {0x1p30f, 0, 0x1p30f, 1};
    float out[16];
    kernel().multMatrices(out, ca, cb);
    EXPECT_EQ(out[0], 1.0f);
    // A bottom row (0, 0, 1, 0) divides by z: w == 0 exactly gives the origin, the smallest w divides.
    float m[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 1, 1, 0, 0, 0}, q[3] = {2, 4, 0};
    kernel().multMatrixVec3f(q, m, q);
    EXPECT_TRUE(sameBits(q, {0, 0, 0}));
    q[2] = std::nextafter(0.0f, 1.0f);
    kernel().multMatrixVec3f(q, m, q);
    EXPECT_TRUE(std::isinf(q[0]));
}

TEST(MatrixOperations, InverseFollowsPivotOrderBitForBitAndInPlace) {
    std::mt19937 rng(3u);
    for (int n = 0; n < 2000; ++n) {
        float m[16], got[16], want[16];
        for (float &f : m) // odd n: entries -1, 0, 1, ties everywhere; the pivot order shows in signed zeros
            f = (n % 2) ? float(int(rng() % 3u) - 1) : zeftest::randomFloat(rng, 12);
        std::memcpy(got, m, sizeof m);
        std::memcpy(want, m, sizeof m);
        ASSERT_EQ(kernel().inverseMatrix(got, m), referenceInverse(want, m));
        EXPECT_TRUE(sameBits(got, want, 16)) << n;
        kernel().inverseMatrix(m, m);
        EXPECT_TRUE(sameBits(m, want, 16)) << n;
    }
    const double kIdentityTolerance = 1e-5; // the reference does invert
    const float m[16] = {2, 1, 0, 3, -1, 4, 1, 0, 0, 2, -3, 1, 5, 0, 1, 2};
    float inv[16], prod[16];
    ASSERT_TRUE(kernel().inverseMatrix(inv, m));
    kernel().multMatrices(prod, m, inv);
    for (int i = 0; i < 16; ++i)
        EXPECT_NEAR(prod[i], i % 5 == 0 ? 1.0 : 0.0, kIdentityTolerance) << i;
}

TEST(MatrixOperations, InverseFailsOnlyOnExactZeroPivotsAndWritesNothing) {
    const float singular[4][16] = {{0},                                               // first pivot
                                   {4, 8, 1, 0, 2, 4, 6, 8, 1, 2, 3, 4, 0, 0, 0, 1},  // second pivot
                                   {1, 0, 1, 0, 0, 1, 1, 0, 1, 1, 2, 0, 0, 0, 0, 1},  // third pivot
                                   {1, 0, 0, 1, 0, 1, 0, 1, 0, 0, 1, 1, 1, 1, 1, 3}}; // last element
    for (auto const &s : singular) {
        float out[16] = {42, 42}, m[16], before[16];
        std::memcpy(before, out, sizeof out);
        std::memcpy(m, s, sizeof m);
        EXPECT_FALSE(kernel().inverseMatrix(out, m));
        EXPECT_FALSE(kernel().inverseMatrix(m, m));
        EXPECT_TRUE(sameBits(m, s, 16) && sameBits(out, before, 16));
    }
    float out[16], tiny[16];
    const float s[3] = {1e-30f, 1e-30f, 1e-30f}; // no tolerance
    kernel().setScale(tiny, s);
    ASSERT_TRUE(kernel().inverseMatrix(out, tiny));
    EXPECT_EQ(out[0], float(1.0 / double(1e-30f)));
}

TEST(MatrixOperations, DeterminantsRoundEveryMinor) {
    std::mt19937 rng(5u);
    float m[16];
    bool round = true; // d(i, j, k, l) = m[i]*m[l] - m[j]*m[k], rounded to float when round
    auto d = [&](int i, int j, int k, int l) {
        const double v = double(m[i]) * m[l] - double(m[j]) * m[k];
        return round ? double(float(v)) : v;
    };
    auto t = [&](int a, int b, int c, int i, int j) {
        return m[a] * d(i + 1, i + 2, j + 1, j + 2) - m[b] * d(i, i + 2, j, j + 2) +
               m[c] * d(i, i + 1, j, j + 1);
    };
    auto det4 = [&] {
        return float(m[0] * t(5, 6, 7, 9, 13) - m[4] * t(1, 2, 3, 9, 13) + m[8] * t(1, 2, 3, 5, 13) -
                     m[12] * t(1, 2, 3, 5, 9));
    };
    int unroundedDiffers = 0;
    for (int n = 0; n < 2000; ++n) {
        zeftest::randomFloats(rng, m, 16, 12);
        round = true;
        const double d3 = m[0] * d(5, 6, 9, 10) - m[1] * d(4, 6, 8, 10) + m[2] * d(4, 5, 8, 9);
        EXPECT_EQ(kernel().det3(m), float(d3));
        const float r0[3] = {m[0], m[1], m[2]}, r1[3] = {m[4], m[5], m[6]}, r2[3] = {m[8], m[9], m[10]};
        EXPECT_EQ(kernel().det3(r0, r1, r2), d3); // the row form returns the unrounded double
        const float d4 = det4();
        EXPECT_EQ(kernel().det4(m), d4);
        round = false;
        unroundedDiffers += det4() != d4;
    }
    EXPECT_GT(unroundedDiffers, 10);
}

TEST(MatrixOperations, ElementwiseInPlaceAndBuildersWriteAll) {
    std::mt19937 rng(9u);
    float a[16], b[16], out[16];
    zeftest::randomFloats(rng, a, 16);
    zeftest::randomFloats(rng, b, 16);
    std::memcpy(out, b, sizeof b);
    kernel().addMatrices(out, a, out);
    kernel().subMatrices(out, out, b);
    kernel().multMatrixScalar(out, out, -0.3f);
    kernel().abs(out, out);
    kernel().neg(out, out);
    for (int i = 0; i < 16; ++i) // one operation at a time: float arithmetic rounds as double-then-float
        EXPECT_TRUE(sameBits(out[i], -std::fabs(((a[i] + b[i]) - b[i]) * -0.3f))) << i;
    kernel().transpose(out, a);
    for (int i = 0; i < 16; ++i)
        EXPECT_EQ(out[i], a[4 * (i % 4) + i / 4]);
    kernel().setScale(out, b);
    EXPECT_TRUE(sameBits(out, {b[0], 0, 0, 0, 0, b[1], 0, 0, 0, 0, b[2], 0, 0, 0, 0, 1}));
    std::memcpy(out, a, sizeof a);
    kernel().setTranslate(out, b);
    EXPECT_TRUE(sameBits(out, {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, b[0], b[1], b[2], 1}));
}

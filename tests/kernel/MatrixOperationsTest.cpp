#include "zefcore/kernel/EnhancedMathFunctions.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <random>
#include <utility>

namespace {

std::uint32_t bitsOf(float f) {
    std::uint32_t b;
    std::memcpy(&b, &f, sizeof b);
    return b;
}

EnhancedMathFunctions const &kernel() {
    return *EnhancedMathFunctions::getCurrent();
}

// A float with a full random mantissa and a magnitude between 2^-12 and 2^12, so
// that the order of terms in a sum of products shows in its bits.
float randomFloat(std::mt19937 &rng) {
    const int e = int(rng() % 25u) - 12;
    return float(std::ldexp(double(std::int32_t(rng())) * 0x1p-31, e));
}

void randomMatrix(std::mt19937 &rng, float *m) {
    for (int i = 0; i < 16; ++i)
        m[i] = randomFloat(rng);
}

void expectSameBits(float const *got, float const *want, int n, const char *what) {
    for (int i = 0; i < n; ++i)
        EXPECT_EQ(bitsOf(got[i]), bitsOf(want[i])) << what << " element " << i;
}

// Gauss-Jordan on the augmented rows [row | identity] in flat order, rows reached
// through a permutation: the elimination order of the kernel, written independently.
bool referenceInverse(float *out, float const *m) {
    double a[4][8] = {};
    for (int i = 0; i < 4; ++i) {
        for (int j = 0; j < 4; ++j)
            a[i][j] = m[4 * i + j];
        a[i][4 + i] = 1.0;
    }
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
            double *row = a[p[r]];
            const double f = row[col] / piv[col];
            for (int j = col + 1; j < 4; ++j)
                row[j] -= f * piv[j];
            for (int j = 4; j < 8; ++j) {
                if (col == 2 || piv[j] != 0.0)
                    row[j] -= f * piv[j];
            }
        }
    }
    if (a[p[3]][3] == 0.0)
        return false;
    for (int k = 3; k >= 0; --k) {
        double *row = a[p[k]];
        const double s = 1.0 / row[k];
        for (int j = 4; j < 8; ++j) {
            double t = row[j];
            for (int i = 3; i >= k + 2; --i)
                t = t - a[p[i]][j] * row[i];
            row[j] = (k == 3) ? t * s : s * (t - a[p[k + 1]][j] * row[k + 1]);
        }
    }
    for (int i = 0; i < 4; ++i) {
        for (int j = 0; j < 4; ++j)
            out[4 * i + j] = float(a[p[i]][4 + j]);
    }
    return true;
}

} // namespace

TEST(MatrixOperations, ProductsSumInDoubleInTheGivenOrder) {
    std::mt19937 rng(7u);
    int floatSumDiffers = 0;
    for (int n = 0; n < 500; ++n) {
        float a[16], b[16], out[16], want[16], v[4], w[4];
        randomMatrix(rng, a);
        randomMatrix(rng, b);
        for (float &f : v)
            f = randomFloat(rng);
        kernel().multMatrices(out, a, b);
        for (int c = 0; c < 4; ++c) {
            for (int r = 0; r < 4; ++r) {
                double s = 0.0;
                float fs = 0.0f;
                for (int k = 0; k < 4; ++k) {
                    s += double(a[4 * k + r]) * b[4 * c + k];
                    fs = float(fs + a[4 * k + r] * b[4 * c + k]);
                }
                want[4 * c + r] = float(s);
                floatSumDiffers += bitsOf(fs) != bitsOf(want[4 * c + r]);
            }
        }
        expectSameBits(out, want, 16, "multMatrices");

        for (int k = 0; k < 4; ++k)
            w[k] = float(double(a[k]) * v[0] + double(a[4 + k]) * v[1] + double(a[8 + k]) * v[2] +
                         double(a[12 + k]) * v[3]);
        kernel().multMatrixVec4f(v, a, v); // in place
        expectSameBits(v, w, 4, "multMatrixVec4f");

        const double hw = double(a[3]) * v[0] + double(a[7]) * v[1] + double(a[11]) * v[2] + a[15];
        for (int k = 0; k < 3; ++k)
            w[k] = float(
                (double(a[k]) * v[0] + double(a[4 + k]) * v[1] + double(a[8 + k]) * v[2] + a[12 + k]) / hw);
        kernel().multMatrixVec3f(v, a, v); // in place
        expectSameBits(v, w, 3, "multMatrixVec3f");
    }
    EXPECT_GT(floatSumDiffers, 100); // float accumulation would be caught

    // Translation by (1, 0, 0) and scale by 2: the right-hand factor acts first.
    float t[16], s[16], ts[16];
    const float one[3] = {1, 0, 0}, two[3] = {2, 2, 2};
    kernel().setTranslate(t, one);
    kernel().setScale(s, two);
    float p[3] = {1, 0, 0};
    kernel().multMatrices(ts, t, s);
    kernel().multMatrixVec3f(p, ts, p);
    EXPECT_EQ(p[0], 3.0f);
    p[0] = 1;
    kernel().multMatrices(ts, s, t);
    kernel().multMatrixVec3f(p, ts, p);
    EXPECT_EQ(p[0], 4.0f);
}

TEST(MatrixOperations, PointProductDividesByWAndMapsZeroWToOrigin) {
    float m[16];
    kernel().setIdentity(m);
    m[11] = 1.0f; // bottom row (0, 0, 1, 0): w = z
    m[15] = 0.0f;
    float p[3] = {2.0f, 4.0f, 8.0f};
    kernel().multMatrixVec3f(p, m, p);
    EXPECT_EQ(p[0], 0.25f);
    EXPECT_EQ(p[1], 0.5f);
    EXPECT_EQ(p[2], 1.0f);
    float q[3] = {2.0f, 4.0f, 0.0f};
    kernel().multMatrixVec3f(q, m, q);
    EXPECT_EQ(bitsOf(q[0]) | bitsOf(q[1]) | bitsOf(q[2]), 0u);
    // The smallest non-zero w still divides.
    q[0] = 2.0f;
    q[2] = std::nextafter(0.0f, 1.0f);
    kernel().multMatrixVec3f(q, m, q);
    EXPECT_TRUE(std::isinf(q[0]));
}

TEST(MatrixOperations, ElementwiseOperationsAllowTheResultAsOperand) {
    std::mt19937 rng(11u);
    float a[16], b[16], want[16], out[16];
    randomMatrix(rng, a);
    randomMatrix(rng, b);
    for (int i = 0; i < 16; ++i)
        want[i] = a[i] + b[i];
    std::memcpy(out, a, sizeof a);
    kernel().addMatrices(out, out, b);
    expectSameBits(out, want, 16, "add");
    for (int i = 0; i < 16; ++i)
        want[i] = a[i] - b[i];
    std::memcpy(out, b, sizeof b);
    kernel().subMatrices(out, a, out);
    expectSameBits(out, want, 16, "sub");
    const float s = randomFloat(rng);
    for (int i = 0; i < 16; ++i)
        want[i] = a[i] * s;
    std::memcpy(out, a, sizeof a);
    kernel().multMatrixScalar(out, out, s);
    expectSameBits(out, want, 16, "scalar");
    kernel().neg(out, out);
    kernel().abs(out, out);
    for (int i = 0; i < 16; ++i)
        EXPECT_EQ(out[i], std::fabs(want[i]));
    kernel().transpose(out, a);
    for (int i = 0; i < 16; ++i)
        EXPECT_EQ(out[i], a[4 * (i % 4) + i / 4]);
}

TEST(MatrixOperations, InverseFollowsPivotOrderBitForBit) {
    const double kIdentityTolerance = 1e-3;
    std::mt19937 rng(3u);
    for (int n = 0; n < 2000; ++n) {
        float m[16], got[16], want[16];
        randomMatrix(rng, m);
        if (n % 2 == 1) { // entries -1, 0, 1: ties everywhere, and the pivot order shows in signed zeros
            for (float &f : m)
                f = float(int(rng() % 3u) - 1);
        }
        std::memcpy(got, m, sizeof m); // on failure nothing is written
        std::memcpy(want, m, sizeof m);
        ASSERT_EQ(kernel().inverseMatrix(got, m), referenceInverse(want, m));
        expectSameBits(got, want, 16, "inverse");
        kernel().inverseMatrix(m, m); // in place
        expectSameBits(m, want, 16, "inverse in place");
    }
    // The reference itself inverts.
    float m[16], inv[16], prod[16];
    for (int n = 0; n < 100; ++n) {
        randomMatrix(rng, m);
        for (int i = 0; i < 4; ++i)
            m[5 * i] = 64.0f; // diagonally dominant: well conditioned
        ASSERT_TRUE(kernel().inverseMatrix(inv, m));
        kernel().multMatrices(prod, m, inv);
        for (int i = 0; i < 16; ++i)
            EXPECT_NEAR(prod[i], i % 5 == 0 ? 1.0 : 0.0, kIdentityTolerance);
    }
}

TEST(MatrixOperations, InverseFailsOnlyOnExactZeroPivotsAndLeavesOutUnchanged) {
    const float singular[4][16] = {{0},                                               // first pivot
                                   {4, 8, 1, 0, 2, 4, 6, 8, 1, 2, 3, 4, 0, 0, 0, 1},  // second pivot
                                   {1, 0, 1, 0, 0, 1, 1, 0, 1, 1, 2, 0, 0, 0, 0, 1},  // third pivot
                                   {1, 0, 0, 1, 0, 1, 0, 1, 0, 0, 1, 1, 1, 1, 1, 3}}; // last element
    for (auto const &s : singular) {
        float out[16], m[16];
        for (float &f : out)
            f = 42.0f;
        std::memcpy(m, s, sizeof m);
        EXPECT_FALSE(kernel().inverseMatrix(out, m));
        for (float f : out)
            EXPECT_EQ(f, 42.0f);
        EXPECT_FALSE(kernel().inverseMatrix(m, m));
        EXPECT_EQ(std::memcmp(m, s, sizeof m), 0);
    }
    // An exchange of two axes has zeros on the diagonal: pivoting reorders the rows.
    const float swapXY[16] = {0, 1, 0, 0, 1, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    float out[16];
    ASSERT_TRUE(kernel().inverseMatrix(out, swapXY));
    EXPECT_EQ(std::memcmp(out, swapXY, sizeof out), 0);
    // No tolerance: a tiny scale inverts.
    float tiny[16];
    const float s[3] = {1e-30f, 1e-30f, 1e-30f};
    kernel().setScale(tiny, s);
    ASSERT_TRUE(kernel().inverseMatrix(out, tiny));
    EXPECT_EQ(out[0], float(1.0 / double(1e-30f)));
    // A NaN pivot is not zero.
    tiny[0] = std::nanf("");
    EXPECT_TRUE(kernel().inverseMatrix(out, tiny));
}

TEST(MatrixOperations, DeterminantsRoundEveryMinor) {
    auto d = [](float const *m, int i, int j, int k, int l) {
        return double(float(double(m[i]) * m[l] - double(m[j]) * m[k]));
    };
    auto u = [](float const *m, int i, int j, int k, int l) {
        return double(m[i]) * m[l] - double(m[j]) * m[k];
    };
    std::mt19937 rng(5u);
    int unroundedDiffers = 0;
    for (int n = 0; n < 2000; ++n) {
        float m[16];
        randomMatrix(rng, m);
        const float d3 = float(m[0] * d(m, 5, 6, 9, 10) - m[1] * d(m, 4, 6, 8, 10) + m[2] * d(m, 4, 5, 8, 9));
        EXPECT_EQ(bitsOf(kernel().det3(m)), bitsOf(d3));
        const float d3u =
            float(m[0] * u(m, 5, 6, 9, 10) - m[1] * u(m, 4, 6, 8, 10) + m[2] * u(m, 4, 5, 8, 9));
        unroundedDiffers += bitsOf(d3u) != bitsOf(d3);
        const float r0[3] = {m[0], m[1], m[2]}, r1[3] = {m[4], m[5], m[6]}, r2[3] = {m[8], m[9], m[10]};
        EXPECT_EQ(kernel().det3(r0, r1, r2),
                  r0[0] * d(m, 5, 6, 9, 10) - r0[1] * d(m, 4, 6, 8, 10) + r0[2] * d(m, 4, 5, 8, 9));
        auto t = [&](int a, int b, int c) {
            return m[a] * d(m, 10, 11, 14, 15) - m[b] * d(m, 9, 11, 13, 15) + m[c] * d(m, 9, 10, 13, 14);
        };
        const double t2 = m[1] * d(m, 6, 7, 14, 15) - m[2] * d(m, 5, 7, 13, 15) + m[3] * d(m, 5, 6, 13, 14);
        const double t3 = m[1] * d(m, 6, 7, 10, 11) - m[2] * d(m, 5, 7, 9, 11) + m[3] * d(m, 5, 6, 9, 10);
        const float d4 = float(m[0] * t(5, 6, 7) - m[4] * t(1, 2, 3) + m[8] * t2 - m[12] * t3);
        EXPECT_EQ(bitsOf(kernel().det4(m)), bitsOf(d4));
    }
    EXPECT_GT(unroundedDiffers, 10);

    float m[16];
    kernel().setIdentity(m);
    EXPECT_EQ(kernel().det4(m), 1.0f);
    for (int i : {3, 7, 11, 12, 13, 14, 15})
        m[i] = 9.0f;
    EXPECT_EQ(kernel().det3(m), 1.0f);
    // The row form hands back the unrounded double.
    const float r0[3] = {1.0f + 0x1p-23f, 0, 0}, r1[3] = {0, 1.0f + 0x1p-23f, 0},
                r2[3] = {0, 0, 1.0f + 0x1p-23f};
    EXPECT_NE(kernel().det3(r0, r1, r2), double(float(kernel().det3(r0, r1, r2))));
}

TEST(MatrixOperations, ScaleAndTranslateWriteAllSixteen) {
    float out[16];
    for (float &f : out)
        f = std::nanf("");
    const float v[3] = {2.0f, -3.0f, 0.5f};
    kernel().setScale(out, v);
    for (int i = 0; i < 16; ++i)
        EXPECT_EQ(out[i], i == 0 ? 2.0f : i == 5 ? -3.0f : i == 10 ? 0.5f : i == 15 ? 1.0f : 0.0f) << i;
    for (float &f : out)
        f = std::nanf("");
    kernel().setTranslate(out, v);
    for (int i = 0; i < 16; ++i)
        EXPECT_EQ(out[i], i >= 12 && i < 15 ? v[i - 12] : i % 5 == 0 ? 1.0f : 0.0f) << i;
}

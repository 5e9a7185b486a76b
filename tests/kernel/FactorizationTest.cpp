#include "zefcore/kernel/EnhancedMathFunctions.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>

#include "support/TestSupport.h"

using zeftest::sameBits;

namespace {

constexpr float kSentinel = -12345.5f;
const float kIdentity[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

EnhancedMathFunctions const &k() {
    return zeftest::kernel();
}

void diag(float *m, float a, float b, float c) {
    std::copy(kIdentity, kIdentity + 16, m);
    m[0] = a, m[5] = b, m[10] = c;
}

// Element (row, col) of a matrix in storage order.
double at(float const *m, int row, int col) {
    return m[4 * col + row];
}

// Largest deviation of the 3x3 block of m from an orthonormal matrix.
double orthoDefect(float const *m) {
    double worst = 0.0;
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            worst = std::fmax(worst, std::fabs(at(m, 0, i) * at(m, 0, j) + at(m, 1, i) * at(m, 1, j) +
                                               at(m, 2, i) * at(m, 2, j) - (i == j)));
    return worst;
}

// Counts the sister operations factor reaches; forces a determinant and the eigenvalues.
class CountingKernel : public EnhancedMathFunctions {
public:
    mutable int copies = 0, identities = 0, transposes = 0, products = 0, jacobis = 0;
    float forcedDet = 0.0f;
    void copyMat4fTo(float *const o, float const *const m) const override {
        ++copies, EnhancedMathFunctions::copyMat4fTo(o, m);
    }
    void setIdentity(float *const o) const override { ++identities, EnhancedMathFunctions::setIdentity(o); }
    void transpose(float *const o, float const *const m) const override {
        ++transposes, EnhancedMathFunctions::transpose(o, m);
    }
    void multMatrices(float *const o, float const *const a, float const *const b) const override {
        ++products, EnhancedMathFunctions::multMatrices(o, a, b);
    }
    float det3(float const *const) const override { return forcedDet; }
    void jacobi3(float *const ev, float (*const V)[3], int &rots, float const *const) const override {
        ++jacobis;
        for (int i = 0; i < 9; ++i)
            V[i / 3][i % 3] = (i % 4 == 0) ? 1.0f : 0.0f;
        ev[0] = 2.0f, ev[1] = 3.0f, ev[2] = 5.0f, rots = 0;
    }
};

} // namespace

TEST(Jacobi3, DiagonalAndHandTracedRotation) {
    float m[16], ev[3] = {kSentinel, kSentinel, kSentinel}, V[3][3];
    int rots = -1;
    diag(m, 4.0f, -9.0f, 16.0f);
    k().jacobi3(ev, V, rots, m);
    EXPECT_TRUE(rots == 0 && sameBits(ev, {4.0f, -9.0f, 16.0f}));
    EXPECT_TRUE(sameBits(&V[0][0], {1, 0, 0, 0, 1, 0, 0, 0, 1}));

    // Rows (2, 1, 0), (1, 2, 0), (0, 0, 3): one rotation with t = 1, then a zero sum.
    float const m2[16] = {2, 1, 0, 0, 1, 2, 0, 0, 0, 0, 3, 0, 0, 0, 0, 1};
    k().jacobi3(ev, V, rots, m2);
    EXPECT_TRUE(rots == 3 && sameBits(ev, {1.0f, 3.0f, 3.0f}));
    double const c = 1.0 / std::sqrt(2.0), s = c, tau = s / (1.0 + c);
    EXPECT_TRUE(
        sameBits(&V[0][0], {float(1.0 - s * tau), float(s), 0, float(-s), float(1.0 - s * tau), 0, 0, 0, 1}));

    // Not a number never converges: fifty sweeps of three pairs.
    diag(m, 1.0f, 2.0f, 3.0f);
    m[1] = std::numeric_limits<float>::quiet_NaN();
    k().jacobi3(ev, V, rots, m);
    EXPECT_EQ(rots, 150);
}

TEST(Jacobi3, RandomSymmetricDecomposesReadingOneTriangle) {
    constexpr double kResidualTolerance = 1e-5; // times the largest eigenvalue
    std::mt19937 rng(4242u);
    std::uniform_real_distribution<float> d(-10.0f, 10.0f);
    for (int trial = 0; trial < 500; ++trial) {
        float m[16] = {};
        for (int r = 0; r < 3; ++r)
            for (int c = r; c < 3; ++c)
                m[4 * c + r] = m[4 * r + c] = d(rng);
        float ev[3], V[3][3];
        int rots = -1;
        k().jacobi3(ev, V, rots, m);
        ASSERT_TRUE(rots > 0 && rots <= 150 && rots % 3 == 0) << rots;
        double const scale = std::fmax(std::fmax(std::fabs(ev[0]), std::fabs(ev[1])), std::fabs(ev[2]));
        for (int e = 0; e < 3; ++e)
            for (int r = 0; r < 3; ++r)
                ASSERT_NEAR(at(m, r, 0) * V[0][e] + at(m, r, 1) * V[1][e] + at(m, r, 2) * V[2][e],
                            double(ev[e]) * V[r][e], kResidualTolerance * scale);
        float evT[16] = {V[0][0], V[1][0], V[2][0], 0,       V[0][1], V[1][1],
                         V[2][1], 0,       V[0][2], V[1][2], V[2][2]};
        ASSERT_LT(orthoDefect(evT), kResidualTolerance);

        // Only the diagonal and flat 1, 2, 6 are read.
        m[4] = 1e30f;
        m[8] = std::numeric_limits<float>::quiet_NaN();
        m[9] = m[3] = m[12] = m[15] = 99.0f;
        float ev2[3], V2[3][3];
        int rots2 = -1;
        k().jacobi3(ev2, V2, rots2, m);
        ASSERT_TRUE(rots2 == rots && sameBits(ev2, ev, 3) && sameBits(&V2[0][0], &V[0][0], 9));
    }
}

TEST(Factor, StatedCases) {
    float m[16], r[16], s[3], u[16], t[3], proj[16];
    diag(m, 1.0f, 1.0f, 1.0f);
    m[12] = 1.0f, m[13] = 2.0f, m[14] = 3.0f;
    m[3] = 0.5f, m[15] = 4.0f; // a projective bottom row is ignored
    ASSERT_TRUE(k().factor(r, s, u, t, proj, m));
    EXPECT_TRUE(sameBits(t, {1, 2, 3}) && sameBits(s, {1, 1, 1}));
    EXPECT_TRUE(sameBits(r, kIdentity, 16) && sameBits(u, kIdentity, 16) && sameBits(proj, kIdentity, 16));

    diag(m, 2.0f, 3.0f, 4.0f);
    ASSERT_TRUE(k().factor(r, s, u, t, proj, m));
    EXPECT_TRUE(sameBits(s, {2, 3, 4}) && sameBits(r, kIdentity, 16));

    // A mirror: every scale negative, u the rotation diag(1, -1, -1) of determinant +1.
    diag(m, -1.0f, 1.0f, 1.0f);
    ASSERT_TRUE(k().factor(r, s, u, t, proj, m));
    EXPECT_TRUE(sameBits(s, {-1, -1, -1}));
    diag(m, 1.0f, -1.0f, -1.0f);
    EXPECT_TRUE(sameBits(u, m, 16));

    // Invertible but below the bound: t and proj written, r, s, u untouched.
    std::fill(r, r + 16, kSentinel), std::fill(u, u + 16, kSentinel), std::fill(s, s + 3, kSentinel);
    std::fill(proj, proj + 16, kSentinel);
    diag(m, 1e-5f, 1e-5f, 1e-5f);
    m[14] = 7.0f;
    EXPECT_FALSE(k().factor(r, s, u, t, proj, m));
    EXPECT_TRUE(t[2] == 7.0f && sameBits(proj, kIdentity, 16));
    for (int i = 0; i < 16; ++i)
        ASSERT_TRUE(r[i] == kSentinel && u[i] == kSentinel && s[i % 3] == kSentinel);

    // On the bound: the double 1e-12 lies between two floats; it passes, its lower neighbour fails.
    float const near = float(1e-12);
    float const above = double(near) >= 1e-12 ? near : std::nextafter(near, 1.0f);
    float const below = std::nextafter(above, 0.0f);
    for (float sign : {1.0f, -1.0f}) {
        diag(m, sign * above, 1.0f, 1.0f);
        EXPECT_TRUE(k().factor(r, s, u, t, proj, m));
        diag(m, sign * below, 1.0f, 1.0f);
        EXPECT_FALSE(k().factor(r, s, u, t, proj, m));
    }
}

TEST(Factor, RandomAffineRebuildsFromItsParts) {
    constexpr double kTolerance = 1e-6; // times the squared condition of the scales
    std::mt19937 rng(31337u);
    std::uniform_real_distribution<float> d(-4.0f, 4.0f);
    for (int trial = 0; trial < 300; ++trial) {
        float m[16], r[16], s[3], u[16], t[3], proj[16];
        for (float &e : m)
            e = d(rng);
        if (!k().factor(r, s, u, t, proj, m))
            continue;
        double const big = std::fmax(std::fmax(std::fabs(s[0]), std::fabs(s[1])), std::fabs(s[2]));
        double const small = std::fmin(std::fmin(std::fabs(s[0]), std::fabs(s[1])), std::fabs(s[2]));
        // The scales come from M^T * M: errors grow with the square of the condition.
        double const tol = kTolerance * (big / small) * (big / small);
        double const detU = k().det3(u);
        ASSERT_LT(orthoDefect(r), kTolerance * 10);
        ASSERT_LT(orthoDefect(u), tol);
        ASSERT_NEAR(detU, 1.0, tol);
        for (int row = 0; row < 3; ++row)
            for (int col = 0; col < 3; ++col) {
                double sum = 0.0; // M = u * r^T * S * r
                for (int a = 0; a < 3; ++a)
                    for (int b = 0; b < 3; ++b)
                        sum += at(u, row, a) * at(r, b, a) * s[b] * at(r, b, col);
                ASSERT_NEAR(sum, at(m, row, col), 100 * kTolerance * big);
            }
    }
}

TEST(Factor, ReachesSisterOperationsByVirtualCall) {
    CountingKernel kernel;
    float m[16], r[16], s[3], u[16], t[3], proj[16];
    diag(m, 1.0f, 1.0f, 1.0f);
    EXPECT_FALSE(kernel.factor(r, s, u, t, proj, m)); // determinant forced to 0
    EXPECT_EQ(kernel.jacobis, 0);

    kernel.forcedDet = -1.0f;
    ASSERT_TRUE(kernel.factor(r, s, u, t, proj, m));
    EXPECT_EQ(kernel.copies, 2);
    EXPECT_EQ(kernel.identities, 3);
    EXPECT_EQ(kernel.transposes, 2);
    EXPECT_EQ(kernel.products, 4);
    EXPECT_EQ(kernel.jacobis, 1);
    // Scales: rounded roots of the eigenvalues, signed by the determinant; u = M * S^-1 here.
    for (int i = 0; i < 3; ++i) {
        float const root = float(std::sqrt(double(i == 0 ? 2 : i == 1 ? 3 : 5)));
        EXPECT_EQ(s[i], -root);
        EXPECT_EQ(u[5 * i], float(1.0 / double(-root)));
    }
}

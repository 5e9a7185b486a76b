#include "zefcore/kernel/EnhancedMathFunctions.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>

namespace {

constexpr float kSentinel = -12345.5f;

EnhancedMathFunctions const &kernel() { return *EnhancedMathFunctions::getCurrent(); }

std::uint32_t bitsOf(float f) {
    std::uint32_t b;
    std::memcpy(&b, &f, sizeof b);
    return b;
}

void fill(float *p, int n, float v) {
    for (int i = 0; i < n; ++i)
        p[i] = v;
}

void setDiagonal(float *m, float a, float b, float c) {
    for (int i = 0; i < 16; ++i)
        m[i] = 0.0f;
    m[0] = a;
    m[5] = b;
    m[10] = c;
    m[15] = 1.0f;
}

void expectIdentity(float const *m, char const *what) {
    for (int i = 0; i < 16; ++i)
        EXPECT_EQ(m[i], (i % 5 == 0) ? 1.0f : 0.0f) << what << "[" << i << "]";
}

// Element (row, col) of the 3x3 block of a column-major 16-float matrix.
float at(float const *m, int row, int col) { return m[4 * col + row]; }

double det3x3(float const *m) {
    return double(at(m, 0, 0)) * (double(at(m, 1, 1)) * at(m, 2, 2) - double(at(m, 1, 2)) * at(m, 2, 1)) -
           double(at(m, 0, 1)) * (double(at(m, 1, 0)) * at(m, 2, 2) - double(at(m, 1, 2)) * at(m, 2, 0)) +
           double(at(m, 0, 2)) * (double(at(m, 1, 0)) * at(m, 2, 1) - double(at(m, 1, 1)) * at(m, 2, 0));
}

// Largest deviation of the 3x3 block of m from an orthonormal matrix.
double orthonormalDefect(float const *m) {
    double worst = 0.0;
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j) {
            double dot = 0.0;
            for (int k = 0; k < 3; ++k)
                dot += double(at(m, k, i)) * at(m, k, j);
            worst = std::fmax(worst, std::fabs(dot - (i == j ? 1.0 : 0.0)));
        }
    return worst;
}

// A symmetric matrix stored column-major, upper left 3x3 block only.
void randomSymmetric(std::mt19937 &rng, float *m) {
    std::uniform_real_distribution<float> d(-10.0f, 10.0f);
    for (int i = 0; i < 16; ++i)
        m[i] = 0.0f;
    for (int r = 0; r < 3; ++r)
        for (int c = r; c < 3; ++c)
            m[4 * c + r] = m[4 * r + c] = d(rng);
    m[15] = 1.0f;
}

} // namespace

TEST(Jacobi3, DiagonalReturnsAtOnce) {
    float m[16];
    setDiagonal(m, 4.0f, -9.0f, 16.0f);
    m[15] = 7.0f;
    float ev[3];
    float V[3][3];
    fill(ev, 3, kSentinel);
    fill(&V[0][0], 9, kSentinel);
    int rots = -1;
    kernel().jacobi3(ev, V, rots, m);
    EXPECT_EQ(rots, 0);
    EXPECT_EQ(ev[0], 4.0f);
    EXPECT_EQ(ev[1], -9.0f);
    EXPECT_EQ(ev[2], 16.0f);
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            EXPECT_EQ(V[i][j], i == j ? 1.0f : 0.0f);
}

TEST(Jacobi3, TwoByTwoBlockByHand) {
    // Rows (2, 1, 0), (1, 2, 0), (0, 0, 3): one rotation with t = 1 in sweep 0, then
    // the off-diagonal sum is exactly 0 at the start of sweep 1.
    float const m[16] = {2, 1, 0, 0, 1, 2, 0, 0, 0, 0, 3, 0, 0, 0, 0, 1};
    float ev[3];
    float V[3][3];
    int rots = -1;
    kernel().jacobi3(ev, V, rots, m);
    EXPECT_EQ(rots, 3);
    EXPECT_EQ(ev[0], 1.0f);
    EXPECT_EQ(ev[1], 3.0f);
    EXPECT_EQ(ev[2], 3.0f);

    double const c = 1.0 / std::sqrt(2.0);
    double const s = 1.0 * c;
    double const tau = s / (1.0 + c);
    // Each eigenvector element rounded once from its double rotation.
    EXPECT_EQ(bitsOf(V[0][0]), bitsOf(float(1.0 - s * (0.0 + 1.0 * tau))));
    EXPECT_EQ(bitsOf(V[0][1]), bitsOf(float(0.0 + s * (1.0 - 0.0 * tau))));
    EXPECT_EQ(bitsOf(V[1][0]), bitsOf(float(0.0 - s * (1.0 + 0.0 * tau))));
    EXPECT_EQ(bitsOf(V[1][1]), bitsOf(float(1.0 + s * (0.0 - 1.0 * tau))));
    EXPECT_EQ(V[2][0], 0.0f);
    EXPECT_EQ(V[2][1], 0.0f);
    EXPECT_EQ(V[2][2], 1.0f);
    EXPECT_EQ(V[0][2], 0.0f);
    EXPECT_EQ(V[1][2], 0.0f);
}

TEST(Jacobi3, RandomSymmetricDecomposes) {
    constexpr double kResidualTolerance = 1e-5; // relative to the largest eigenvalue
    constexpr double kOrthoTolerance = 1e-6;
    std::mt19937 rng(4242u);
    for (int trial = 0; trial < 500; ++trial) {
        float m[16];
        randomSymmetric(rng, m);
        float ev[3];
        float V[3][3];
        int rots = -1;
        kernel().jacobi3(ev, V, rots, m);
        ASSERT_EQ(rots % 3, 0);
        ASSERT_GT(rots, 0);
        ASSERT_LE(rots, 150);

        double scale = std::fmax(std::fmax(std::fabs(ev[0]), std::fabs(ev[1])), std::fabs(ev[2]));
        double trace = double(m[0]) + m[5] + m[10];
        EXPECT_NEAR(double(ev[0]) + ev[1] + ev[2], trace, kResidualTolerance * scale);
        for (int k = 0; k < 3; ++k) {
            for (int r = 0; r < 3; ++r) {
                double mv = 0.0;
                for (int c = 0; c < 3; ++c)
                    mv += double(m[4 * c + r]) * V[c][k];
                ASSERT_NEAR(mv, double(ev[k]) * V[r][k], kResidualTolerance * scale)
                    << "trial " << trial << " vector " << k << " row " << r;
            }
            for (int l = 0; l < 3; ++l) {
                double dot = double(V[0][k]) * V[0][l] + double(V[1][k]) * V[1][l] + double(V[2][k]) * V[2][l];
                ASSERT_NEAR(dot, k == l ? 1.0 : 0.0, kOrthoTolerance);
            }
        }

        // Only the diagonal and the elements below it (flat 1, 2, 6) are read.
        float garbage[16];
        std::memcpy(garbage, m, sizeof m);
        garbage[4] = 1e30f;
        garbage[8] = -3.0f;
        garbage[9] = std::numeric_limits<float>::quiet_NaN();
        garbage[3] = garbage[7] = garbage[11] = garbage[12] = garbage[13] = garbage[14] = 99.0f;
        float ev2[3];
        float V2[3][3];
        int rots2 = -1;
        kernel().jacobi3(ev2, V2, rots2, garbage);
        ASSERT_EQ(rots2, rots);
        ASSERT_EQ(std::memcmp(ev, ev2, sizeof ev), 0);
        ASSERT_EQ(std::memcmp(V, V2, sizeof V), 0);
    }
}

TEST(Jacobi3, GivesUpAfterFiftySweeps) {
    float m[16];
    setDiagonal(m, 1.0f, 2.0f, 3.0f);
    m[1] = std::numeric_limits<float>::quiet_NaN();
    float ev[3];
    float V[3][3];
    int rots = -1;
    kernel().jacobi3(ev, V, rots, m);
    EXPECT_EQ(rots, 150);
    EXPECT_EQ(ev[2], 3.0f);
}

TEST(Factor, IdentityTranslationAndScale) {
    EnhancedMathFunctions const &k = kernel();
    float m[16];
    float r[16], s[3], u[16], t[3], proj[16];

    setDiagonal(m, 1.0f, 1.0f, 1.0f);
    m[12] = 1.0f;
    m[13] = 2.0f;
    m[14] = 3.0f;
    fill(proj, 16, kSentinel);
    ASSERT_TRUE(k.factor(r, s, u, t, proj, m));
    EXPECT_EQ(t[0], 1.0f);
    EXPECT_EQ(t[1], 2.0f);
    EXPECT_EQ(t[2], 3.0f);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(s[i], 1.0f);
    expectIdentity(r, "r");
    expectIdentity(u, "u");
    expectIdentity(proj, "proj");

    // A scale: jacobi3 sees (4, 9, 16) on the diagonal and returns at once.
    setDiagonal(m, 2.0f, 3.0f, 4.0f);
    ASSERT_TRUE(k.factor(r, s, u, t, proj, m));
    EXPECT_EQ(s[0], 2.0f);
    EXPECT_EQ(s[1], 3.0f);
    EXPECT_EQ(s[2], 4.0f);
    expectIdentity(r, "r");
    constexpr float kUnitTolerance = 1e-6f;
    for (int i = 0; i < 16; ++i)
        EXPECT_NEAR(u[i], (i % 5 == 0) ? 1.0f : 0.0f, kUnitTolerance);
    EXPECT_EQ(t[0], 0.0f);
}

TEST(Factor, MirrorMakesAllScalesNegative) {
    float m[16];
    setDiagonal(m, -1.0f, 1.0f, 1.0f);
    float r[16], s[3], u[16], t[3], proj[16];
    ASSERT_TRUE(kernel().factor(r, s, u, t, proj, m));
    EXPECT_EQ(s[0], -1.0f);
    EXPECT_EQ(s[1], -1.0f);
    EXPECT_EQ(s[2], -1.0f);
    expectIdentity(r, "r");
    float expectedU[16];
    setDiagonal(expectedU, 1.0f, -1.0f, -1.0f);
    for (int i = 0; i < 16; ++i)
        EXPECT_EQ(u[i], expectedU[i]) << i;
    EXPECT_EQ(det3x3(u), 1.0);
}

TEST(Factor, SingularBoundLeavesROutputsUntouched) {
    EnhancedMathFunctions const &k = kernel();
    float m[16];
    float r[16], s[3], u[16], t[3], proj[16];
    fill(r, 16, kSentinel);
    fill(s, 3, kSentinel);
    fill(u, 16, kSentinel);
    fill(t, 3, kSentinel);
    fill(proj, 16, kSentinel);

    // Invertible, but its determinant 1e-15 lies below the bound.
    setDiagonal(m, 1e-5f, 1e-5f, 1e-5f);
    m[12] = 5.0f;
    m[13] = 6.0f;
    m[14] = 7.0f;
    EXPECT_FALSE(k.factor(r, s, u, t, proj, m));
    EXPECT_EQ(t[0], 5.0f);
    EXPECT_EQ(t[1], 6.0f);
    EXPECT_EQ(t[2], 7.0f);
    expectIdentity(proj, "proj");
    for (int i = 0; i < 16; ++i) {
        EXPECT_EQ(r[i], kSentinel);
        EXPECT_EQ(u[i], kSentinel);
    }
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(s[i], kSentinel);

    // On the bound: the double 1e-12 lies between two floats.
    float const nearest = float(1e-12);
    float const above = double(nearest) >= 1e-12 ? nearest : std::nextafter(nearest, 1.0f);
    float const below = std::nextafter(above, 0.0f);
    ASSERT_GE(double(above), 1e-12);
    ASSERT_LT(double(below), 1e-12);
    setDiagonal(m, above, 1.0f, 1.0f);
    EXPECT_TRUE(k.factor(r, s, u, t, proj, m));
    setDiagonal(m, -above, 1.0f, 1.0f);
    EXPECT_TRUE(k.factor(r, s, u, t, proj, m));
    EXPECT_LT(s[0], 0.0f);
    setDiagonal(m, below, 1.0f, 1.0f);
    EXPECT_FALSE(k.factor(r, s, u, t, proj, m));
    setDiagonal(m, -below, 1.0f, 1.0f);
    EXPECT_FALSE(k.factor(r, s, u, t, proj, m));
    setDiagonal(m, 0.0f, 1.0f, 1.0f);
    EXPECT_FALSE(k.factor(r, s, u, t, proj, m));
}

TEST(Factor, RandomAffineRebuildsFromItsParts) {
    constexpr double kRebuildTolerance = 1e-4; // relative to the largest element
    constexpr double kOrthoTolerance = 1e-6; // times the squared condition of the scales
    std::mt19937 rng(31337u);
    std::uniform_real_distribution<float> d(-4.0f, 4.0f);
    int factored = 0;
    for (int trial = 0; trial < 300; ++trial) {
        float m[16];
        for (int i = 0; i < 16; ++i)
            m[i] = d(rng);
        // The projective bottom row is ignored.
        float affine[16];
        std::memcpy(affine, m, sizeof m);
        affine[3] = affine[7] = affine[11] = 0.0f;
        affine[15] = 1.0f;

        float r[16], s[3], u[16], t[3], proj[16];
        bool const ok = kernel().factor(r, s, u, t, proj, m);
        float r2[16], s2[3], u2[16], t2[3], proj2[16];
        ASSERT_EQ(kernel().factor(r2, s2, u2, t2, proj2, affine), ok);
        if (!ok)
            continue;
        ++factored;
        ASSERT_EQ(std::memcmp(r, r2, sizeof r), 0);
        ASSERT_EQ(std::memcmp(s, s2, sizeof s), 0);
        ASSERT_EQ(std::memcmp(u, u2, sizeof u), 0);
        expectIdentity(proj, "proj");
        for (int i = 0; i < 3; ++i)
            ASSERT_EQ(t[i], m[12 + i]);

        double const sign = det3x3(affine) < 0 ? -1.0 : 1.0;
        double scale = 0.0;
        double smallest = 1e30;
        for (int i = 0; i < 3; ++i) {
            ASSERT_EQ(s[i] < 0.0f, sign < 0.0);
            scale = std::fmax(scale, std::fabs(s[i]));
            smallest = std::fmin(smallest, std::fabs(s[i]));
        }
        // The scales come from the eigenvalues of M^T * M: the error of u grows with
        // the square of the condition of the scales.
        double const condition = (scale / smallest) * (scale / smallest);
        ASSERT_LT(orthonormalDefect(r), kOrthoTolerance);
        ASSERT_LT(orthonormalDefect(u), kOrthoTolerance * condition);
        ASSERT_NEAR(det3x3(u), 1.0, kOrthoTolerance * condition);
        // M = u * r^T * S * r, element (row, col) of the 3x3 block.
        for (int row = 0; row < 3; ++row)
            for (int col = 0; col < 3; ++col) {
                double sum = 0.0;
                for (int a = 0; a < 3; ++a)
                    for (int b = 0; b < 3; ++b)
                        sum += double(at(u, row, a)) * at(r, b, a) * s[b] * at(r, b, col);
                ASSERT_NEAR(sum, at(m, row, col), kRebuildTolerance * scale) << trial;
            }
    }
    EXPECT_GT(factored, 250);
}

namespace {

// Counts the sister operations factor reaches, and can force a determinant and
// an eigen-decomposition of its own.
class CountingKernel : public EnhancedMathFunctions {
public:
    mutable int copies = 0, identities = 0, transposes = 0, products = 0, dets = 0, jacobis = 0;
    bool forceDet = false;
    float forcedDet = 0.0f;
    bool forceEigen = false;

    void copyMat4fTo(float *const out, float const *const m) const override {
        ++copies;
        EnhancedMathFunctions::copyMat4fTo(out, m);
    }
    void setIdentity(float *const out) const override {
        ++identities;
        EnhancedMathFunctions::setIdentity(out);
    }
    void transpose(float *const out, float const *const m) const override {
        ++transposes;
        EnhancedMathFunctions::transpose(out, m);
    }
    void multMatrices(float *const out, float const *const a, float const *const b) const override {
        ++products;
        EnhancedMathFunctions::multMatrices(out, a, b);
    }
    float det3(float const *const m) const override {
        ++dets;
        return forceDet ? forcedDet : EnhancedMathFunctions::det3(m);
    }
    void jacobi3(float *const evalues, float (*const evectors)[3], int &rots,
                 float const *const m) const override {
        ++jacobis;
        if (!forceEigen) {
            EnhancedMathFunctions::jacobi3(evalues, evectors, rots, m);
            return;
        }
        evalues[0] = 2.0f;
        evalues[1] = 3.0f;
        evalues[2] = 5.0f;
        for (int i = 0; i < 3; ++i)
            for (int j = 0; j < 3; ++j)
                evectors[i][j] = (i == j) ? 1.0f : 0.0f;
        rots = 0;
    }
};

} // namespace

TEST(Factor, ReachesSisterOperationsByVirtualCall) {
    CountingKernel k;
    float m[16];
    setDiagonal(m, 2.0f, 3.0f, 4.0f);
    float r[16], s[3], u[16], t[3], proj[16];
    ASSERT_TRUE(k.factor(r, s, u, t, proj, m));
    EXPECT_EQ(k.copies, 1);
    EXPECT_EQ(k.identities, 2);
    EXPECT_EQ(k.transposes, 2);
    EXPECT_EQ(k.products, 4);
    EXPECT_EQ(k.dets, 1);
    EXPECT_EQ(k.jacobis, 1);

    // A determinant forced to zero refuses a regular matrix.
    k.forceDet = true;
    k.forcedDet = 0.0f;
    EXPECT_FALSE(k.factor(r, s, u, t, proj, m));
    EXPECT_EQ(k.jacobis, 1);

    // The scales are the rounded square roots of the eigenvalues, signed by the
    // determinant; u = M * r^T * S^-1 * r.
    k.forcedDet = -1.0f;
    k.forceEigen = true;
    setDiagonal(m, 1.0f, 1.0f, 1.0f);
    ASSERT_TRUE(k.factor(r, s, u, t, proj, m));
    float const roots[3] = {float(std::sqrt(2.0)), float(std::sqrt(3.0)), float(std::sqrt(5.0))};
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(bitsOf(s[i]), bitsOf(-roots[i]));
        EXPECT_EQ(bitsOf(u[5 * i]), bitsOf(float(1.0 / double(-roots[i]))));
    }
    EXPECT_EQ(u[15], 1.0f);
}

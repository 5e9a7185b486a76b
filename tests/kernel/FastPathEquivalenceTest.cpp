// The kernel's vectorised products against the plain scalar forms kept here:
// the same bits on random inputs with full mantissas, on cancellations, and on
// NaN, infinities, subnormals and signed zeros, in place where allowed.
#include "zefcore/kernel/EnhancedMathFunctions.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <utility>

namespace {

void plainMultMatrices(float *out, const float *a, const float *b) {
    for (int c = 0; c < 4; ++c)
        for (int r = 0; r < 4; ++r)
            out[4 * c + r] = float(double(a[r]) * b[4 * c] + double(a[4 + r]) * b[4 * c + 1] +
                                   double(a[8 + r]) * b[4 * c + 2] + double(a[12 + r]) * b[4 * c + 3]);
}

void plainMultMatrixVec3f(float *out, const float *m, const float *v) {
    const float x = v[0], y = v[1], z = v[2];
    const double w = double(m[3]) * x + double(m[7]) * y + double(m[11]) * z + m[15];
    if (w == 0.0) {
        out[0] = out[1] = out[2] = 0.0f;
        return;
    }
    for (int k = 0; k < 3; ++k)
        out[k] = float((double(m[k]) * x + double(m[4 + k]) * y + double(m[8 + k]) * z + m[12 + k]) / w);
}

void plainMultQuaternions(float *out, const float *a, const float *b) {
    const double a0 = a[0], a1 = a[1], a2 = a[2], a3 = a[3];
    const double b0 = b[0], b1 = b[1], b2 = b[2], b3 = b[3];
    const float o0 = float(a0 * b0 - a1 * b1 - a2 * b2 - a3 * b3);
    const float o1 = float(a0 * b1 + a1 * b0 + a2 * b3 - a3 * b2);
    const float o2 = float(a0 * b2 + a2 * b0 + a3 * b1 - a1 * b3);
    const float o3 = float(a0 * b3 + a3 * b0 + a1 * b2 - a2 * b1);
    out[0] = o0, out[1] = o1, out[2] = o2, out[3] = o3;
}

void plainQuaternionToMatrix(float *out, const float *q) {
    const double w = q[0], x = q[1], y = q[2], z = q[3];
    const float r[16] = {float(2.0 * (w * w + x * x) - 1.0),
                         float(2.0 * (x * y + w * z)),
                         float(2.0 * (x * z - w * y)),
                         0.0f,
                         float(2.0 * (x * y - w * z)),
                         float(2.0 * (w * w + y * y) - 1.0),
                         float(2.0 * (y * z + w * x)),
                         0.0f,
                         float(2.0 * (x * z + w * y)),
                         float(2.0 * (y * z - w * x)),
                         float(2.0 * (w * w + z * z) - 1.0),
                         0.0f,
                         0.0f,
                         0.0f,
                         0.0f,
                         1.0f};
    std::memcpy(out, r, sizeof r);
}

// The element-by-element Gauss-Jordan inverse, rows exchanged by pointer.
bool plainInverseMatrix(float *out, const float *m) {
    double left[4][4], right[4][4];
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j) {
            left[i][j] = m[4 * i + j];
            right[i][j] = (i == j) ? 1.0 : 0.0;
        }
    double *r[4] = {left[0], left[1], left[2], left[3]};
    double *h[4] = {right[0], right[1], right[2], right[3]};
    for (int c = 0; c < 3; ++c) {
        for (int i = 3; i > c; --i)
            if (std::fabs(r[i][c]) > std::fabs(r[i - 1][c])) {
                std::swap(r[i], r[i - 1]);
                std::swap(h[i], h[i - 1]);
            }
        if (r[c][c] == 0.0)
            return false;
        double f[4] = {0.0, 0.0, 0.0, 0.0};
        for (int i = c + 1; i < 4; ++i)
            f[i] = r[i][c] / r[c][c];
        for (int j = c + 1; j < 4; ++j)
            for (int i = c + 1; i < 4; ++i)
                r[i][j] -= f[i] * r[c][j];
        for (int j = 0; j < 4; ++j) {
            const double s = h[c][j];
            if (s != 0.0 || c == 2)
                for (int i = c + 1; i < 4; ++i)
                    h[i][j] -= f[i] * s;
        }
    }
    if (r[3][3] == 0.0)
        return false;
    double s = 1.0 / r[3][3];
    for (int j = 0; j < 4; ++j)
        h[3][j] = h[3][j] * s;
    s = 1.0 / r[2][2];
    for (int j = 0; j < 4; ++j)
        h[2][j] = s * (h[2][j] - h[3][j] * r[2][3]);
    for (int j = 0; j < 4; ++j) {
        h[1][j] = h[1][j] - h[3][j] * r[1][3];
        h[0][j] = h[0][j] - h[3][j] * r[0][3];
    }
    s = 1.0 / r[1][1];
    for (int j = 0; j < 4; ++j)
        h[1][j] = s * (h[1][j] - h[2][j] * r[1][2]);
    for (int j = 0; j < 4; ++j)
        h[0][j] = h[0][j] - h[2][j] * r[0][2];
    s = 1.0 / r[0][0];
    for (int j = 0; j < 4; ++j)
        h[0][j] = s * (h[0][j] - h[1][j] * r[0][1]);
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j)
            out[4 * i + j] = float(h[i][j]);
    return true;
}

// Same bits, except that any two NaNs match: which operand's payload an
// instruction passes on follows the operand order the compiler picks.
::testing::AssertionResult sameFloats(const float *got, const float *want, int n) {
    for (int i = 0; i < n; ++i)
        if (std::memcmp(&got[i], &want[i], sizeof(float)) != 0 &&
            !(std::isnan(got[i]) && std::isnan(want[i])))
            return ::testing::AssertionFailure() << "element " << i << ": " << got[i] << " vs " << want[i];
    return ::testing::AssertionSuccess();
}

// Returns a float with a random full mantissa, or now and then a special value
// or one that makes terms cancel.
float draw(std::mt19937 &rng, bool specials) {
    const float kSpecial[] = {std::numeric_limits<float>::quiet_NaN(),
                              std::numeric_limits<float>::infinity(),
                              -std::numeric_limits<float>::infinity(),
                              std::numeric_limits<float>::denorm_min(),
                              -0.0f,
                              0.0f,
                              1.0f,
                              -1.0f,
                              3.4e38f,
                              1e-38f};
    if (specials && rng() % 8 == 0)
        return kSpecial[rng() % 10];
    std::uniform_real_distribution<float> u(-1.0f, 1.0f);
    const float scale = std::ldexp(1.0f, int(rng() % 40) - 20);
    return u(rng) * scale;
}

constexpr int kRounds = 20000;

} // namespace

TEST(FastPathEquivalence, MatrixProductAndPointMatchPlainBits) {
    const EnhancedMathFunctions &k = *EnhancedMathFunctions::getCurrent();
    std::mt19937 rng(7);
    for (int round = 0; round < kRounds; ++round) {
        const bool specials = round % 4 == 3;
        float a[16], b[16], got[16], want[16];
        for (int i = 0; i < 16; ++i) {
            a[i] = draw(rng, specials);
            b[i] = draw(rng, specials);
        }
        if (round % 5 == 0) { // the first two terms cancel exactly; the order of the rest shows
            for (int i = 0; i < 4; ++i) {
                a[i] = std::ldexp(a[i], 30);
                a[4 + i] = -a[i];
                b[4 * i + 1] = b[4 * i];
            }
        }
        k.multMatrices(got, a, b);
        plainMultMatrices(want, a, b);
        ASSERT_TRUE(sameFloats(got, want, 16)) << "round " << round;

        float v[4] = {draw(rng, specials), draw(rng, specials), draw(rng, specials), 42.0f};
        if (round % 7 == 0) // w exactly zero
            a[15] = float(-(double(a[3]) * v[0] + double(a[7]) * v[1] + double(a[11]) * v[2]));
        float p[4] = {-5.0f, -5.0f, -5.0f, 42.0f};
        plainMultMatrixVec3f(want, a, v);
        k.multMatrixVec3f(p, a, v);
        ASSERT_TRUE(sameFloats(p, want, 3)) << "round " << round;
        EXPECT_EQ(p[3], 42.0f);     // the fourth float is not written
        k.multMatrixVec3f(v, a, v); // in place
        ASSERT_TRUE(sameFloats(v, want, 3)) << "in place, round " << round;
    }
}

TEST(FastPathEquivalence, QuaternionProductAndMatrixMatchPlainBits) {
    const EnhancedMathFunctions &k = *EnhancedMathFunctions::getCurrent();
    std::mt19937 rng(11);
    for (int round = 0; round < kRounds; ++round) {
        const bool specials = round % 4 == 3;
        float a[4], b[4], got[4], want[4];
        for (int i = 0; i < 4; ++i) {
            a[i] = draw(rng, specials);
            b[i] = draw(rng, specials);
        }
        if (round % 5 == 0) { // a0*b0 and a1*b1 cancel exactly in element 0
            a[0] = std::ldexp(a[0], 30);
            a[1] = a[0];
            b[1] = b[0];
        }
        plainMultQuaternions(want, a, b);
        k.multQuaternions(got, a, b);
        ASSERT_TRUE(sameFloats(got, want, 4)) << "round " << round;
        float c[4];
        std::memcpy(c, a, sizeof c);
        k.multQuaternions(c, c, b); // out is a
        ASSERT_TRUE(sameFloats(c, want, 4)) << "out is a, round " << round;
        std::memcpy(c, b, sizeof c);
        k.multQuaternions(c, a, c); // out is b
        ASSERT_TRUE(sameFloats(c, want, 4)) << "out is b, round " << round;

        float rot[16], rot_want[16];
        plainQuaternionToMatrix(rot_want, a);
        k.quaternionToMatrix(rot, a);
        ASSERT_TRUE(sameFloats(rot, rot_want, 16)) << "to matrix, round " << round;
        std::memcpy(rot, a, sizeof a);
        k.quaternionToMatrix(rot, rot); // out holds q
        ASSERT_TRUE(sameFloats(rot, rot_want, 16)) << "to matrix in place, round " << round;
    }
}

TEST(FastPathEquivalence, InverseMatchesPlainBits) {
    const EnhancedMathFunctions &k = *EnhancedMathFunctions::getCurrent();
    std::mt19937 rng(13);
    const float kPivotish[] = {0.0f, -0.0f, 2.0f, -2.0f, 1e-30f, std::numeric_limits<float>::denorm_min()};
    int inverted = 0, singular = 0;
    for (int round = 0; round < kRounds; ++round) {
        const bool specials = round % 4 == 3;
        float m[16], got[16], want[16];
        for (int i = 0; i < 16; ++i)
            m[i] = draw(rng, specials);
        if (round % 3 == 1) // ties in pivot magnitude with either sign, zeros, and exchanges of axes
            for (int i = 0; i < 16; ++i)
                if (rng() % 2 == 0)
                    m[i] = kPivotish[rng() % 6];
        if (round % 11 == 0) { // two equal rows: a zero pivot after elimination
            const int a = int(rng() % 4), b = (a + 1 + int(rng() % 3)) % 4;
            std::memcpy(m + 4 * b, m + 4 * a, 4 * sizeof(float));
        }
        for (float &g : got)
            g = -7.0f;
        const bool want_ok = plainInverseMatrix(want, m);
        ASSERT_EQ(k.inverseMatrix(got, m), want_ok) << "round " << round;
        if (want_ok) {
            ++inverted;
            ASSERT_TRUE(sameFloats(got, want, 16)) << "round " << round;
        } else {
            ++singular;
            for (float g : got)
                ASSERT_EQ(g, -7.0f) << "written on failure, round " << round;
        }
        float in_place[16];
        std::memcpy(in_place, m, sizeof in_place);
        ASSERT_EQ(k.inverseMatrix(in_place, in_place), want_ok) << "in place, round " << round;
        ASSERT_TRUE(sameFloats(in_place, want_ok ? want : m, 16)) << "in place, round " << round;
    }
    EXPECT_GT(inverted, kRounds / 2);
    EXPECT_GT(singular, kRounds / 50);
}

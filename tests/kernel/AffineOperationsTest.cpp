#include "zefcore/kernel/EnhancedMathFunctions.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <random>

namespace {

std::uint32_t bitsOf(float f) {
    std::uint32_t b;
    std::memcpy(&b, &f, sizeof b);
    return b;
}

EnhancedMathFunctions const &kernel() {
    return *EnhancedMathFunctions::getCurrent();
}

float randomFloat(std::mt19937 &rng) {
    const int e = int(rng() % 17u) - 8;
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

// out = a * b as a general product in double, each element rounded once.
void product(float *out, double const (*a)[4], double const (*b)[4]) {
    for (int r = 0; r < 4; ++r) {
        for (int c = 0; c < 4; ++c) {
            double s = a[r][0] * b[0][c];
            for (int k = 1; k < 4; ++k)
                s += a[r][k] * b[k][c];
            out[4 * c + r] = float(s);
        }
    }
}

// The rotation about axis (0, 1, 2 for X, Y, Z) with the given cosine and sine, as rows.
void rotationRows(double (*r)[4], int axis, double c, double s) {
    for (int i = 0; i < 4; ++i) {
        for (int j = 0; j < 4; ++j)
            r[i][j] = (i == j) ? 1.0 : 0.0;
    }
    const int p = (axis + 1) % 3, q = (axis + 2) % 3; // X: (y, z), Y: (z, x), Z: (x, y)
    r[p][p] = c;
    r[q][q] = c;
    r[p][q] = -s;
    r[q][p] = s;
}

} // namespace

TEST(AffineOperations, AxisRotationsRoundCosineAndSineToFloat) {
    // Applies the left (R * m) or right (m * R) rotation about axis 0, 1, 2 (X, Y, Z).
    auto turn = [](bool left, int axis, float *m, float angle) {
        EnhancedMathFunctions const &k = kernel();
        switch (axis) {
        case 0:
            return left ? k.multLeftByRotateX(m, angle) : k.multRightByRotateX(m, angle);
        case 1:
            return left ? k.multLeftByRotateY(m, angle) : k.multRightByRotateY(m, angle);
        default:
            return left ? k.multLeftByRotateZ(m, angle) : k.multRightByRotateZ(m, angle);
        }
    };
    std::mt19937 rng(99u);
    int unroundedDiffers = 0;
    for (int n = 0; n < 3000; ++n) {
        float m[16], got[16], want[16], loose[16];
        randomMatrix(rng, m);
        const float angle = float(double(std::int32_t(rng())) * 0x1p-28);
        const volatile double a = angle; // keeps the reference out of any narrowing of cos
        const double c = float(std::cos(a)), s = float(std::sin(a));
        double mr[4][4], rot[4][4], exact[4][4];
        for (int i = 0; i < 16; ++i)
            mr[i % 4][i / 4] = m[i];
        for (int axis = 0; axis < 3; ++axis) {
            rotationRows(rot, axis, c, s);
            rotationRows(exact, axis, std::cos(a), std::sin(a));
            std::memcpy(got, m, sizeof m);
            turn(true, axis, got, angle);
            product(want, rot, mr);
            expectSameBits(got, want, 16, "left rotation");
            product(loose, exact, mr);
            unroundedDiffers += std::memcmp(loose, want, sizeof want) != 0;

            std::memcpy(got, m, sizeof m);
            turn(false, axis, got, angle);
            product(want, mr, rot);
            expectSameBits(got, want, 16, "right rotation");
        }
    }
    EXPECT_GT(unroundedDiffers, 1000); // a cosine kept in double would be caught

    const double kTurnTolerance = 1e-6;
    const double kHalfPi = 1.5707963267948966;
    float m[16];
    const float t[3] = {1, 0, 0};
    kernel().setTranslate(m, t);
    kernel().multLeftByRotateZ(m, float(kHalfPi));
    EXPECT_NEAR(m[12], 0.0, kTurnTolerance);
    EXPECT_NEAR(m[13], 1.0, kTurnTolerance);
    kernel().setTranslate(m, t);
    kernel().multRightByRotateZ(m, float(kHalfPi));
    EXPECT_EQ(m[12], 1.0f);
    EXPECT_EQ(m[13], 0.0f);
}

TEST(AffineOperations, ProductsIgnoreTheBottomRow) {
    std::mt19937 rng(4u);
    for (int n = 0; n < 300; ++n) {
        float a[16], b[16], got[16], want[16];
        randomMatrix(rng, a);
        randomMatrix(rng, b);
        double ar[4][4], br[4][4];
        for (int i = 0; i < 16; ++i) {
            ar[i % 4][i / 4] = (i % 4 == 3) ? (i == 15) : a[i];
            br[i % 4][i / 4] = (i % 4 == 3) ? (i == 15) : b[i];
        }
        for (int i : {3, 7, 11, 15}) {
            a[i] = std::nanf("");
            b[i] = 1e30f;
        }
        product(want, ar, br);
        kernel().multAffineMatrices(got, a, b);
        expectSameBits(got, want, 16, "multAffineMatrices");

        float v[3] = {randomFloat(rng), randomFloat(rng), randomFloat(rng)}, p[3], d[3], h[3];
        const float aff[16] = {b[0], b[1], b[2],  0, b[4],  b[5],  b[6],  0,
                               b[8], b[9], b[10], 0, b[12], b[13], b[14], 1};
        kernel().multMatrixVec3f(h, aff, v);
        for (int k = 0; k < 3; ++k)
            d[k] = float(double(b[k]) * v[0] + double(b[4 + k]) * v[1] + double(b[8 + k]) * v[2]);
        std::memcpy(p, v, sizeof v);
        kernel().multAffineMatrixVec3f(p, b, p);
        expectSameBits(p, h, 3, "point");
        kernel().multAffineMatrixVec3fAsDir(v, b, v);
        expectSameBits(v, d, 3, "direction");
    }
    float tr[16], v[3] = {1.5f, -2.0f, 3.25f};
    const float t[3] = {7, 8, 9}, v0[3] = {1.5f, -2.0f, 3.25f};
    kernel().setTranslate(tr, t);
    kernel().multAffineMatrixVec3fAsDir(v, tr, v);
    EXPECT_EQ(std::memcmp(v, v0, sizeof v), 0);
}

TEST(AffineOperations, InPlaceTranslateAndScale) {
    float m[16];
    kernel().setIdentity(m);
    // The image of t is summed before it is added: 1 + (2^60 - 2^60), not (1 + 2^60) - 2^60.
    m[0] = 0x1p30f;
    m[4] = -0x1p30f;
    m[12] = 1.0f;
    const float big[3] = {0x1p30f, 0x1p30f, 0};
    kernel().multRightByTranslate(m, big);
    EXPECT_EQ(m[12], 1.0f);
    EXPECT_EQ(m[13], 0x1p30f);

    const float two[3] = {2, 2, 2}, t[3] = {1, 0, 0};
    kernel().setTranslate(m, t);
    m[3] = m[7] = m[11] = 5.0f;
    kernel().multLeftByScale(m, two);
    EXPECT_EQ(m[12], 2.0f);
    EXPECT_EQ(m[3] + m[7] + m[11], 15.0f);
    kernel().multRightByScale(m, two);
    EXPECT_EQ(m[12], 2.0f);
    EXPECT_EQ(m[0], 4.0f);
    EXPECT_EQ(m[3], 5.0f);
    kernel().multLeftByTranslate(m, two);
    EXPECT_EQ(m[12], 4.0f);
    EXPECT_EQ(m[14], 2.0f);
}

TEST(AffineOperations, CheapInversesWriteOnlyTheirElements) {
    float m[16], out[16];
    const float s[3] = {2.0f, 0.0f, 4.0f};
    kernel().setScale(m, s);
    EXPECT_FALSE(kernel().inverseScale(m));
    EXPECT_EQ(m[0], 2.0f);
    for (float &f : out)
        f = 42.0f;
    EXPECT_FALSE(kernel().inverseScale(out, m));
    EXPECT_EQ(out[0], 42.0f);
    m[5] = -0.5f;
    m[1] = m[12] = 3.0f; // off-diagonal, ignored by the copying form
    ASSERT_TRUE(kernel().inverseScale(out, m));
    for (int i = 0; i < 16; ++i)
        EXPECT_EQ(out[i], i == 0 ? 0.5f : i == 5 ? -2.0f : i == 10 ? 0.25f : i == 15 ? 1.0f : 0.0f) << i;
    ASSERT_TRUE(kernel().inverseScale(m));
    EXPECT_EQ(m[10], 0.25f);
    EXPECT_EQ(m[1], 3.0f);
    m[5] = std::nanf(""); // not zero
    EXPECT_TRUE(kernel().inverseScale(m, m));

    m[12] = 1.0f;
    m[13] = -2.0f;
    m[14] = 0.0f;
    ASSERT_TRUE(kernel().inverseTranslate(m, m));
    EXPECT_EQ(m[12], -1.0f);
    EXPECT_EQ(m[13], 2.0f);
    EXPECT_EQ(bitsOf(m[14]), 0x80000000u);
    EXPECT_EQ(m[5], 1.0f);
    ASSERT_TRUE(kernel().inverseTranslate(m));
    EXPECT_EQ(m[12], 1.0f);

    std::mt19937 rng(8u);
    float r[16], tr[16];
    randomMatrix(rng, r);
    for (float &f : out)
        f = 42.0f;
    ASSERT_TRUE(kernel().inverseRotate(out, r));
    kernel().transpose(tr, r);
    for (int i = 0; i < 16; ++i)
        EXPECT_EQ(bitsOf(out[i]), bitsOf(i % 4 == 3 || i >= 12 ? 42.0f : tr[i])) << i;
    for (float &f : out)
        f = 42.0f;
    ASSERT_TRUE(kernel().inverseRotateAndTr(out, r));
    for (int k = 0; k < 3; ++k) {
        const float sum =
            float(double(r[4 * k]) * r[12] + double(r[4 * k + 1]) * r[13] + double(r[4 * k + 2]) * r[14]);
        EXPECT_EQ(bitsOf(out[12 + k]), bitsOf(-sum));
    }
    for (int i = 0; i < 12; ++i)
        EXPECT_EQ(bitsOf(out[i]), bitsOf(i % 4 == 3 ? 42.0f : tr[i])) << i;
    EXPECT_EQ(out[15], 42.0f);
}

TEST(AffineOperations, ProjectionAlongADirectionOntoAPlane) {
    const float normal[3] = {0, 0, 1}, up[3] = {0, 0, 1}, slant[3] = {1, 0, 1}, flat[3] = {1, 0, 0};
    float out[16], p[3] = {5, 6, 7};
    kernel().setProjection(out, normal, -2.0f, up);
    kernel().multMatrixVec3f(p, out, p);
    EXPECT_EQ(p[0], 5.0f);
    EXPECT_EQ(p[1], 6.0f);
    EXPECT_EQ(p[2], 2.0f);
    float q[3] = {5, 6, 7};
    kernel().setProjection(out, normal, -2.0f, slant);
    kernel().multMatrixVec3f(q, out, q);
    EXPECT_EQ(q[0], 0.0f);
    EXPECT_EQ(q[1], 6.0f);
    EXPECT_EQ(q[2], 2.0f);
    for (float &f : out)
        f = 42.0f;
    kernel().setProjection(out, normal, -2.0f, flat); // dir in the plane
    for (float f : out)
        EXPECT_EQ(f, 42.0f);

    std::mt19937 rng(12u);
    for (int n = 0; n < 300; ++n) {
        float nr[3], dir[3], want[16], col[3];
        for (int k = 0; k < 3; ++k) {
            nr[k] = randomFloat(rng);
            dir[k] = randomFloat(rng);
        }
        const float offset = randomFloat(rng);
        const float e = float(double(nr[0]) * dir[0] + double(nr[1]) * dir[1] + double(nr[2]) * dir[2]);
        const double inv = 1.0 / e;
        for (int k = 0; k < 3; ++k)
            col[k] = float(-double(dir[k]) * inv);
        for (int c = 0; c < 3; ++c) {
            for (int r = 0; r < 3; ++r)
                want[4 * c + r] = float(double(float(double(col[r]) * nr[c])) + (r == c ? 1.0 : 0.0));
            want[4 * c + 3] = 0.0f;
            want[12 + c] = float(double(-offset) * dir[c] * inv);
        }
        want[15] = 1.0f;
        for (float &f : out)
            f = std::nanf("");
        kernel().setProjection(out, nr, offset, dir);
        expectSameBits(out, want, 16, "setProjection");
        for (float &f : out)
            f = 42.0f;
        kernel().multAffineColRow(out, nr, dir);
        for (int i = 12; i < 16; ++i)
            EXPECT_EQ(out[i], 42.0f);
        EXPECT_EQ(bitsOf(out[4 * 2 + 1]), bitsOf(float(double(nr[1]) * dir[2])));
        EXPECT_EQ(out[7], 0.0f);
    }
}

#include "zefcore/kernel/EnhancedMathFunctions.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <random>

namespace {

EnhancedMathFunctions const &kernel() {
    return *EnhancedMathFunctions::getCurrent();
}

float randomFloat(std::mt19937 &rng) {
    return float(std::ldexp(double(std::int32_t(rng())) * 0x1p-31, int(rng() % 17u) - 8));
}

// out = a * b for matrices given as rows, summed in double, each element rounded once.
void product(float *out, double const (*a)[4], double const (*b)[4]) {
    for (int i = 0; i < 16; ++i) {
        double s = a[i % 4][0] * b[0][i / 4];
        for (int k = 1; k < 4; ++k)
            s += a[i % 4][k] * b[k][i / 4];
        out[i] = float(s);
    }
}

// Sets r to the rows of the rotation about axis 0, 1, 2 (X, Y, Z) with cosine c and sine s.
void rotationRows(double (*r)[4], int axis, double c, double s) {
    for (int i = 0; i < 16; ++i)
        r[i / 4][i % 4] = (i % 5 == 0) ? 1.0 : 0.0;
    const int p = (axis + 1) % 3, q = (axis + 2) % 3;
    r[p][p] = r[q][q] = c;
    r[p][q] = -s;
    r[q][p] = s;
}

void turn(bool left, int axis, float *m, float angle) {
    EnhancedMathFunctions const &k = kernel();
    if (axis == 0)
        return left ? k.multLeftByRotateX(m, angle) : k.multRightByRotateX(m, angle);
    if (axis == 1)
        return left ? k.multLeftByRotateY(m, angle) : k.multRightByRotateY(m, angle);
    return left ? k.multLeftByRotateZ(m, angle) : k.multRightByRotateZ(m, angle);
}

} // namespace

// Run in the optimised build: a compiler that fuses the cosine and sine and keeps
// them in double changes most of these results by one ulp.
TEST(AffineOperations, AxisRotationsRoundCosineAndSineToFloat) {
    std::mt19937 rng(99u);
    int unroundedDiffers = 0;
    for (int n = 0; n < 3000; ++n) {
        float m[16], got[16], want[16], loose[16];
        double mr[4][4], rot[4][4], exact[4][4];
        for (int i = 0; i < 16; ++i)
            mr[i % 4][i / 4] = m[i] = randomFloat(rng);
        const float angle = float(double(std::int32_t(rng())) * 0x1p-28);
        const volatile double a = angle; // keeps the reference's cosine a plain double call
        for (int axis = 0; axis < 3; ++axis) {
            rotationRows(rot, axis, float(std::cos(a)), float(std::sin(a)));
            rotationRows(exact, axis, std::cos(a), std::sin(a));
            for (bool left : {true, false}) {
                std::memcpy(got, m, sizeof m);
                turn(left, axis, got, angle);
                left ? product(want, rot, mr) : product(want, mr, rot);
                EXPECT_EQ(std::memcmp(got, want, sizeof got), 0) << "axis " << axis << " left " << left;
                left ? product(loose, exact, mr) : product(loose, mr, exact);
                unroundedDiffers += std::memcmp(loose, want, sizeof want) != 0;
            }
        }
    }
    EXPECT_GT(unroundedDiffers, 2000); // a cosine kept in double would be caught
}

TEST(AffineOperations, ProductsIgnoreTheBottomRow) {
    std::mt19937 rng(4u);
    for (int n = 0; n < 300; ++n) {
        float a[16], b[16], got[16], want[16], v[3], h[3];
        double ar[4][4], br[4][4];
        for (int i = 0; i < 16; ++i) {
            a[i] = (i % 4 == 3) ? std::nanf("") : randomFloat(rng);
            b[i] = (i % 4 == 3) ? 1e30f : randomFloat(rng);
            ar[i % 4][i / 4] = (i % 4 == 3) ? (i == 15) : a[i];
            br[i % 4][i / 4] = (i % 4 == 3) ? (i == 15) : b[i];
        }
        product(want, ar, br);
        kernel().multAffineMatrices(got, a, b);
        EXPECT_EQ(std::memcmp(got, want, sizeof got), 0);
        for (float &f : v)
            f = randomFloat(rng);
        for (int k = 0; k < 3; ++k)
            h[k] = float(double(b[k]) * v[0] + double(b[4 + k]) * v[1] + double(b[8 + k]) * v[2] + b[12 + k]);
        kernel().multAffineMatrixVec3f(v, b, v); // in place
        EXPECT_EQ(std::memcmp(v, h, sizeof v), 0);
    }
}

TEST(AffineOperations, InPlaceTranslateAndScale) {
    float m[16];
    const float big[3] = {0x1p30f, 0x1p30f, 0}, two[3] = {2, 2, 2}, t[3] = {1, 0, 0};
    kernel().setTranslate(m, t);
    m[0] = 0x1p30f;
    m[4] = -0x1p30f;
    kernel().multRightByTranslate(m, big); // 1 + (2^60 - 2^60), not (1 + 2^60) - 2^60
    EXPECT_TRUE(m[12] == 1.0f && m[13] == 0x1p30f);
    m[3] = m[7] = m[11] = 5.0f;
    kernel().multLeftByScale(m, two); // scales the translation, not the bottom row
    EXPECT_TRUE(m[12] == 2.0f && m[3] == 5.0f && m[11] == 5.0f);
    kernel().multRightByScale(m, two); // leaves column 3
    EXPECT_TRUE(m[12] == 2.0f && m[0] == 0x1p32f && m[3] == 5.0f);
    kernel().multLeftByTranslate(m, two);
    EXPECT_TRUE(m[12] == 4.0f && m[14] == 2.0f);
}

TEST(AffineOperations, CheapInversesWriteOnlyTheirElements) {
    float m[16], out[16], tr[16];
    const float s[3] = {2.0f, 0.0f, 4.0f};
    kernel().setScale(m, s);
    std::fill(out, out + 16, 42.0f);
    EXPECT_FALSE(kernel().inverseScale(m)); // m[0] is tested first, yet left as it was
    EXPECT_FALSE(kernel().inverseScale(out, m));
    EXPECT_TRUE(m[0] == 2.0f && out[0] == 42.0f);
    m[5] = -0.5f;
    m[1] = m[12] = 3.0f; // ignored by the copying form
    ASSERT_TRUE(kernel().inverseScale(out, m));
    for (int i = 0; i < 16; ++i)
        EXPECT_EQ(out[i], i == 0 ? 0.5f : i == 5 ? -2.0f : i == 10 ? 0.25f : i == 15 ? 1.0f : 0.0f) << i;
    ASSERT_TRUE(kernel().inverseTranslate(m, m));
    EXPECT_TRUE(m[12] == -3.0f && m[1] == 0.0f && std::signbit(m[14]));

    std::mt19937 rng(8u);
    for (float &f : m)
        f = randomFloat(rng);
    kernel().transpose(tr, m);
    std::fill(out, out + 16, 42.0f);
    ASSERT_TRUE(kernel().inverseRotateAndTr(out, m));
    for (int i = 0; i < 16; ++i) {
        const int k = i - 12;
        const float want = i % 4 == 3 ? 42.0f
                           : i < 12   ? tr[i]
                                      : -float(double(m[4 * k]) * m[12] + double(m[4 * k + 1]) * m[13] +
                                             double(m[4 * k + 2]) * m[14]);
        EXPECT_EQ(out[i], want) << i;
    }
    const float t12 = out[12];
    ASSERT_TRUE(kernel().inverseRotate(out, tr)); // leaves the translation of out
    EXPECT_TRUE(out[1] == m[1] && out[12] == t12);
}

TEST(AffineOperations, ProjectionAlongADirectionOntoAPlane) {
    const float normal[3] = {0, 0, 1}, slant[3] = {1, 0, 1}, flat[3] = {1, 0, 0};
    float out[16], p[3] = {5, 6, 7};
    kernel().setProjection(out, normal, -2.0f, slant);
    kernel().multMatrixVec3f(p, out, p);
    EXPECT_TRUE(p[0] == 0.0f && p[1] == 6.0f && p[2] == 2.0f);
    std::fill(out, out + 16, 42.0f);
    kernel().setProjection(out, normal, -2.0f, flat); // dir lies in the plane: nothing written
    EXPECT_TRUE(std::all_of(out, out + 16, [](float f) { return f == 42.0f; }));
    kernel().multAffineColRow(out, normal, slant); // column 3 not written
    EXPECT_TRUE(out[2] == 1.0f && out[8] == 0.0f && out[10] == 1.0f && out[11] == 0.0f && out[15] == 42.0f);

    std::mt19937 rng(12u);
    for (int n = 0; n < 300; ++n) {
        float nr[3], dir[3], want[16], col[3];
        for (int k = 0; k < 3; ++k) {
            nr[k] = randomFloat(rng);
            dir[k] = randomFloat(rng);
        }
        const float offset = randomFloat(rng);
        const double inv =
            1.0 / float(double(nr[0]) * dir[0] + double(nr[1]) * dir[1] + double(nr[2]) * dir[2]);
        for (int k = 0; k < 3; ++k)
            col[k] = float(-double(dir[k]) * inv);
        for (int i = 0; i < 16; ++i) {
            const int r = i % 4, c = i / 4;
            const float cr = (r < 3 && c < 3) ? float(double(col[r]) * nr[c]) : 0.0f;
            want[i] = r == c ? float(double(cr) + 1.0) : c == 3 ? float(double(-offset) * dir[r] * inv) : cr;
        }
        kernel().setProjection(out, nr, offset, dir);
        EXPECT_EQ(std::memcmp(out, want, sizeof out), 0);
    }
}

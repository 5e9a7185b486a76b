#include "zefcore/kernel/EnhancedMathFunctions.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <random>

#include "support/TestSupport.h"

using zeftest::kernel;
using zeftest::sameBits;

namespace {

// Sets r to the rotation about axis 0, 1, 2 (X, Y, Z) with cosine c and sine s, in storage order.
void rotation(double *r, int axis, double c, double s) {
    for (int i = 0; i < 16; ++i)
        r[i] = (i % 5 == 0) ? 1.0 : 0.0;
    const int p = (axis + 1) % 3, q = (axis + 2) % 3;
    r[5 * p] = r[5 * q] = c;
    r[4 * q + p] = -s;
    r[4 * p + q] = s;
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
        double rot[16], exact[16];
        zeftest::randomFloats(rng, m, 16);
        const float angle = float(double(std::int32_t(rng())) * 0x1p-28);
        const volatile double a = angle; // keeps the reference's cosine a plain double call
        for (int axis = 0; axis < 3; ++axis) {
            rotation(rot, axis, float(std::cos(a)), float(std::sin(a)));
            rotation(exact, axis, std::cos(a), std::sin(a));
            for (bool left : {true, false}) {
                std::memcpy(got, m, sizeof m);
                turn(left, axis, got, angle);
                left ? zeftest::referenceProduct(want, rot, m) : zeftest::referenceProduct(want, m, rot);
                EXPECT_TRUE(sameBits(got, want, 16)) << "axis " << axis << " left " << left;
                left ? zeftest::referenceProduct(loose, exact, m)
                     : zeftest::referenceProduct(loose, m, exact);
                unroundedDiffers += !sameBits(loose, want, 16);
            }
        }
    }
    EXPECT_GT(unroundedDiffers, 2000); // a cosine kept in double would be caught
}

TEST(AffineOperations, ProductsIgnoreTheBottomRow) {
    std::mt19937 rng(4u);
    for (int n = 0; n < 300; ++n) {
        float a[16], b[16], ar[16], br[16], got[16], want[16], v[3], h[3], dir[3];
        zeftest::randomFloats(rng, a, 16);
        zeftest::randomFloats(rng, b, 16);
        std::memcpy(ar, a, sizeof a);
        std::memcpy(br, b, sizeof b);
        for (int i : {3, 7, 11, 15}) {
            a[i] = std::nanf("");
            b[i] = 1e30f;
            ar[i] = br[i] = (i == 15) ? 1.0f : 0.0f;
        }
        zeftest::referenceProduct(want, ar, br);
        kernel().multAffineMatrices(got, a, b);
        EXPECT_TRUE(sameBits(got, want, 16));
        zeftest::randomFloats(rng, v, 3);
        for (int k = 0; k < 3; ++k) {
            dir[k] = float(double(b[k]) * v[0] + double(b[4 + k]) * v[1] + double(b[8 + k]) * v[2]);
            h[k] = float(double(b[k]) * v[0] + double(b[4 + k]) * v[1] + double(b[8 + k]) * v[2] + b[12 + k]);
        }
        float d[3] = {v[0], v[1], v[2]};
        kernel().multAffineMatrixVec3fAsDir(d, b, d); // in place
        kernel().multAffineMatrixVec3f(v, b, v);
        EXPECT_TRUE(sameBits(v, h, 3) && sameBits(d, dir, 3));
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
    EXPECT_TRUE(sameBits(out, {0.5f, 0, 0, 0, 0, -2.0f, 0, 0, 0, 0, 0.25f, 0, 0, 0, 0, 1}));
    ASSERT_TRUE(kernel().inverseTranslate(m, m));
    EXPECT_TRUE(m[12] == -3.0f && m[1] == 0.0f && std::signbit(m[14]));
    // The in-place form negates the translation alone, zero signs included.
    float before[16];
    std::copy(m, m + 16, before);
    ASSERT_TRUE(kernel().inverseTranslate(m));
    for (int i = 0; i < 16; ++i)
        EXPECT_TRUE(sameBits(m[i], i >= 12 && i < 15 ? -before[i] : before[i])) << i;

    std::mt19937 rng(8u);
    zeftest::randomFloats(rng, m, 16);
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
}

TEST(AffineOperations, ProjectionAlongADirectionOntoAPlane) {
    const float normal[3] = {0, 0, 1}, slant[3] = {1, 0, 1}, flat[3] = {1, 0, 0};
    float out[16], p[3] = {5, 6, 7};
    kernel().setProjection(out, normal, -2.0f, slant);
    kernel().multMatrixVec3f(p, out, p);
    EXPECT_TRUE(sameBits(p, {0, 6, 2}));
    std::fill(out, out + 16, 42.0f);
    kernel().setProjection(out, normal, -2.0f, flat); // dir lies in the plane: nothing written
    EXPECT_TRUE(std::all_of(out, out + 16, [](float f) { return f == 42.0f; }));
    kernel().multAffineColRow(out, normal, slant); // column 3 not written
    EXPECT_TRUE(out[2] == 1.0f && out[8] == 0.0f && out[10] == 1.0f && out[11] == 0.0f && out[15] == 42.0f);

    std::mt19937 rng(12u);
    for (int n = 0; n < 300; ++n) {
        float nr[3], dir[3], want[16], col[3];
        zeftest::randomFloats(rng, nr, 3);
        zeftest::randomFloats(rng, dir, 3);
        const float offset = zeftest::randomFloat(rng);
        const double inv = 1.0 / kernel().dot3(nr, dir);
        for (int k = 0; k < 3; ++k)
            col[k] = float(-double(dir[k]) * inv);
        for (int i = 0; i < 16; ++i) {
            const int r = i % 4, c = i / 4;
            const float cr = (r < 3 && c < 3) ? float(double(col[r]) * nr[c]) : 0.0f;
            want[i] = r == c ? float(double(cr) + 1.0) : c == 3 ? float(double(-offset) * dir[r] * inv) : cr;
        }
        kernel().setProjection(out, nr, offset, dir);
        EXPECT_TRUE(sameBits(out, want, 16));
    }
}

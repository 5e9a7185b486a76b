#include "zefcore/kernel/EnhancedMathFunctions.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "support/TestSupport.h"

using zeftest::sameBits;

namespace {

int g_destroyed = 0;

// Counts its destructions; marks what transposeAffine and inverseMatrix write, so
// that the compound operations built on them show the override.
class MarkingKernel : public EnhancedMathFunctions {
public:
    void transposeAffine(float *const out, float const *const) const override {
        for (int i : {0, 1, 2, 4, 5, 6, 8, 9, 10})
            out[i] = 7.0f;
    }
    bool inverseMatrix(float *const out, float const *const) const override {
        std::fill(out, out + 16, -3.0f);
        return true;
    }

protected:
    ~MarkingKernel() override { ++g_destroyed; }
};

} // namespace

TEST(EnhancedMathFunctions, SetDefaultHandsOverAndOverridesReachCompoundOperations) {
    EnhancedMathFunctions *const first = EnhancedMathFunctions::getCurrent();
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(EnhancedMathFunctions::getCurrent(), first);
    MarkingKernel *const a = new MarkingKernel;
    a->setDefault();
    a->setDefault(); // already current: neither destroyed nor replaced
    EXPECT_EQ(EnhancedMathFunctions::getCurrent(), a);
    EXPECT_EQ(g_destroyed, 0);

    float m[16], out[16];
    a->setIdentity(m);
    m[12] = 1.0f;
    std::fill(out, out + 16, 0.5f);
    EXPECT_TRUE(a->inverse3(out, m) && out[0] == -3.0f);
    std::fill(out, out + 16, 0.5f);
    EXPECT_TRUE(a->inverseAffine(out, m) && out[15] == -3.0f);
    std::fill(out, out + 16, 0.5f);
    EXPECT_TRUE(a->inverseRotate(out, m) && out[5] == 7.0f && out[12] == 0.5f); // translation kept
    EXPECT_TRUE(a->inverseRotateAndTr(out, m) && out[10] == 7.0f && out[12] == -1.0f);

    (new MarkingKernel)->setDefault();
    EXPECT_EQ(g_destroyed, 1); // a was destroyed by the hand-over
    (new EnhancedMathFunctions)->setDefault();
    EXPECT_EQ(g_destroyed, 2);
    ASSERT_TRUE(EnhancedMathFunctions::getCurrent()->inverseRotate(out, m));
    EXPECT_EQ(out[5], 1.0f);
}

TEST(EnhancedMathFunctions, CrossDotAndDet2RoundOnceInDouble) {
    EnhancedMathFunctions const &k = zeftest::kernel();
    std::mt19937 rng(17u);
    int floatDiffers = 0;
    for (int n = 0; n < 2000; ++n) {
        float a[3], b[3], out[3];
        zeftest::randomFloats(rng, a, 3);
        zeftest::randomFloats(rng, b, 3);
        float const want[3] = {float(double(a[1]) * b[2] - double(a[2]) * b[1]),
                               float(double(a[2]) * b[0] - double(a[0]) * b[2]),
                               float(double(a[0]) * b[1] - double(a[1]) * b[0])};
        k.cross(out, a, b);
        EXPECT_TRUE(sameBits(out, want, 3));
        floatDiffers += (a[1] * b[2] - a[2] * b[1]) != want[0];
        EXPECT_TRUE(
            sameBits(k.det2(a[0], a[1], b[0], b[1]), float(double(a[0]) * b[1] - double(a[1]) * b[0])));
        float const dot = float((double(a[1]) * b[1] + double(a[0]) * b[0]) + double(a[2]) * b[2]);
        EXPECT_TRUE(sameBits(k.dot3(a, b), dot));
    }
    EXPECT_GT(floatDiffers, 100); // products rounded to float would be caught
    float const p[3] = {-1e10f, 1e10f, 1.0f}, q[3] = {1e10f, 1e10f, 1.0f};
    EXPECT_EQ(k.dot3(p, q), 1.0f); // (1e20 - 1e20) + 1: the third product is added last
}

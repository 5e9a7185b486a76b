#include "zefcore/kernel/EnhancedMathFunctions.h"

#include <gtest/gtest.h>

namespace {

int g_destroyed = 0;

// Counts its destructions; marks the results of transposeAffine and inverseMatrix
// so that the compound operations built on them show the override.
class MarkingKernel : public EnhancedMathFunctions {
public:
    void transposeAffine(float *const out, float const *const) const override {
        for (int i : {0, 1, 2, 4, 5, 6, 8, 9, 10})
            out[i] = 7.0f;
    }
    bool inverseMatrix(float *const out, float const *const) const override {
        for (int i = 0; i < 16; ++i)
            out[i] = -3.0f;
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
    g_destroyed = 0;
    MarkingKernel *const a = new MarkingKernel;
    a->setDefault();
    a->setDefault(); // already current: neither destroyed nor replaced
    EXPECT_EQ(EnhancedMathFunctions::getCurrent(), a);
    EXPECT_EQ(g_destroyed, 0);

    EnhancedMathFunctions const &k = *EnhancedMathFunctions::getCurrent();
    float m[16], out[16];
    k.setIdentity(m);
    m[12] = 1.0f;
    ASSERT_TRUE(k.inverse3(out, m));
    EXPECT_EQ(out[0], -3.0f);
    ASSERT_TRUE(k.inverseAffine(out, m));
    EXPECT_EQ(out[15], -3.0f);
    for (float &f : out)
        f = 0.5f;
    ASSERT_TRUE(k.inverseRotate(out, m));
    EXPECT_EQ(out[5], 7.0f);
    EXPECT_EQ(out[12], 0.5f);
    ASSERT_TRUE(k.inverseRotateAndTr(out, m));
    EXPECT_EQ(out[10], 7.0f);
    EXPECT_EQ(out[12], -1.0f);

    (new MarkingKernel)->setDefault();
    EXPECT_EQ(g_destroyed, 1); // a was destroyed by the hand-over
    (new EnhancedMathFunctions)->setDefault();
    EXPECT_EQ(g_destroyed, 2);
    ASSERT_TRUE(EnhancedMathFunctions::getCurrent()->inverseRotate(out, m));
    EXPECT_EQ(out[5], 1.0f);
}

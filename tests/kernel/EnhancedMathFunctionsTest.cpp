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

// A float in [-4, 4) with a full random mantissa.
float randomFloat(std::mt19937 &rng) {
    return float(double(std::int32_t(rng())) * 0x1p-29);
}

int g_destroyed = 0;

// Counts its destructions; overrides transposeAffine and inverseMatrix with
// recognisable results so that the compound operations built on them show it.
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

TEST(EnhancedMathFunctions, CurrentKernelIsStableAndReplacedBySetDefault) {
    EnhancedMathFunctions *const first = EnhancedMathFunctions::getCurrent();
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(EnhancedMathFunctions::getCurrent(), first);

    g_destroyed = 0;
    MarkingKernel *const a = new MarkingKernel;
    a->setDefault();
    EXPECT_EQ(EnhancedMathFunctions::getCurrent(), a);
    EXPECT_EQ(g_destroyed, 0);
    // Installing the current kernel again must neither destroy nor replace it.
    a->setDefault();
    EXPECT_EQ(EnhancedMathFunctions::getCurrent(), a);
    EXPECT_EQ(g_destroyed, 0);

    MarkingKernel *const b = new MarkingKernel;
    b->setDefault();
    EXPECT_EQ(EnhancedMathFunctions::getCurrent(), b);
    EXPECT_EQ(g_destroyed, 1); // a was destroyed by the hand-over

    (new EnhancedMathFunctions)->setDefault();
    EXPECT_EQ(g_destroyed, 2);
    EXPECT_NE(EnhancedMathFunctions::getCurrent(), nullptr);
}

TEST(EnhancedMathFunctions, OverridesReachCompoundOperations) {
    MarkingKernel *const k = new MarkingKernel;
    k->setDefault();
    EnhancedMathFunctions const &cur = *EnhancedMathFunctions::getCurrent();
    float m[16];
    cur.setIdentity(m);
    m[12] = 1.0f;
    float out[16];

    ASSERT_TRUE(cur.inverse3(out, m));
    EXPECT_EQ(out[0], -3.0f);
    ASSERT_TRUE(cur.inverseAffine(out, m));
    EXPECT_EQ(out[15], -3.0f);

    for (float &f : out)
        f = 0.5f;
    ASSERT_TRUE(cur.inverseRotate(out, m));
    EXPECT_EQ(out[5], 7.0f);
    EXPECT_EQ(out[12], 0.5f);
    ASSERT_TRUE(cur.inverseRotateAndTr(out, m));
    EXPECT_EQ(out[10], 7.0f);
    EXPECT_EQ(out[12], -1.0f);

    (new EnhancedMathFunctions)->setDefault();
    ASSERT_TRUE(EnhancedMathFunctions::getCurrent()->inverseRotate(out, m));
    EXPECT_EQ(out[5], 1.0f);
}

TEST(EnhancedMathFunctions, SmallOperationsRoundOnceInDouble) {
    EnhancedMathFunctions const &k = *EnhancedMathFunctions::getCurrent();
    float c[3];
    const float x[3] = {1, 0, 0}, y[3] = {0, 1, 0};
    k.cross(c, x, y);
    EXPECT_EQ(c[0], 0.0f);
    EXPECT_EQ(c[1], 0.0f);
    EXPECT_EQ(c[2], 1.0f);
    EXPECT_EQ(k.det2(1, 2, 3, 4), -2.0f);
    // The first two products cancel before the small last one is added.
    const float a[3] = {1e10f, 1e10f, 1.0f}, b[3] = {1e10f, -1e10f, 1.0f};
    EXPECT_EQ(k.dot3(a, b), 1.0f);

    std::mt19937 rng(20240501u);
    int floatOrderDiffers = 0;
    for (int n = 0; n < 2000; ++n) {
        float u[3], v[3];
        for (int i = 0; i < 3; ++i) {
            u[i] = randomFloat(rng);
            v[i] = randomFloat(rng);
        }
        k.cross(c, u, v);
        EXPECT_EQ(bitsOf(c[0]), bitsOf(float(double(u[1]) * v[2] - double(u[2]) * v[1])));
        EXPECT_EQ(bitsOf(c[1]), bitsOf(float(double(u[2]) * v[0] - double(u[0]) * v[2])));
        EXPECT_EQ(bitsOf(c[2]), bitsOf(float(double(u[0]) * v[1] - double(u[1]) * v[0])));
        const float d = k.dot3(u, v);
        EXPECT_EQ(bitsOf(d), bitsOf(float(double(u[0]) * v[0] + double(u[1]) * v[1] + double(u[2]) * v[2])));
        const float fd = u[0] * v[0] + u[1] * v[1] + u[2] * v[2];
        floatOrderDiffers += bitsOf(fd) != bitsOf(d);
        EXPECT_EQ(bitsOf(k.det2(u[0], u[1], v[0], v[1])),
                  bitsOf(float(double(u[0]) * v[1] - double(u[1]) * v[0])));
    }
    EXPECT_GT(floatOrderDiffers, 0); // the inputs do tell float from double accumulation
}

TEST(EnhancedMathFunctions, CopiesAreBitExactAndIdentityIsComplete) {
    EnhancedMathFunctions const &k = *EnhancedMathFunctions::getCurrent();
    float m[16];
    for (int i = 0; i < 16; ++i)
        m[i] = float(i) - 7.5f;
    const std::uint32_t payloadNaN = 0x7FA12345u;
    std::memcpy(&m[3], &payloadNaN, sizeof payloadNaN);
    m[4] = -0.0f;
    float *const copy = k.getMat4fCopy(m);
    EXPECT_EQ(std::memcmp(copy, m, sizeof m), 0);
    delete[] copy;

    float out[16];
    k.setIdentity(out);
    const float v[4] = {1.5f, -2.25f, 3.0f, 0.75f};
    float r[4];
    k.multMatrixVec4f(r, out, v);
    EXPECT_EQ(std::memcmp(r, v, sizeof v), 0);
    for (int i = 0; i < 16; ++i)
        EXPECT_EQ(out[i], i % 5 == 0 ? 1.0f : 0.0f) << i;
    k.copyMat4fTo(out, m);
    EXPECT_EQ(std::memcmp(out, m, sizeof m), 0);
    k.setZero(out);
    for (float f : out)
        EXPECT_EQ(bitsOf(f), 0u);
    k.copyVec3fTo(out, m + 2);
    EXPECT_EQ(std::memcmp(out, m + 2, 3 * sizeof(float)), 0);
    EXPECT_EQ(out[3], 0.0f);
}

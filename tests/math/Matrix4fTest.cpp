#include "zefcore/math/Matrix4f.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

#include "support/TestSupport.h"

namespace {

Matrix4f randomMatrix(std::mt19937 &rng) {
    Matrix4f m;
    zeftest::randomFloats(rng, m.getValue(), 16, 2);
    return m;
}

::testing::AssertionResult sameBits(const Mat4fBase &a, const Mat4fBase &b) {
    return zeftest::sameBits(a.getValue(), b.getValue(), 16);
}

// a * b summed in double in the kernel's order, each element rounded once.
Matrix4f reference(const Mat4fBase &a, const Mat4fBase &b) {
    Matrix4f out;
    zeftest::referenceProduct(out.getValue(), a.getValue(), b.getValue());
    return out;
}

// What the matrix classes hand to the kernel; static, as the kernel owns itself once installed.
int g_products = 0;
const float *g_out = nullptr, *g_a = nullptr, *g_b = nullptr;
std::vector<Vector4f> g_vec4;
bool g_destroyed = false;

class RecordingKernel : public EnhancedMathFunctions {
public:
    void multMatrices(float *const o, float const *const a, float const *const b) const override {
        ++g_products, g_out = o, g_a = a, g_b = b;
        EnhancedMathFunctions::multMatrices(o, a, b);
    }
    void multMatrixVec4f(float *const o, float const *const m, float const *const v) const override {
        g_vec4.emplace_back(v);
        EnhancedMathFunctions::multMatrixVec4f(o, m, v);
    }

protected:
    ~RecordingKernel() override { g_destroyed = true; }
};

} // namespace

TEST(Mat4fBase, InitialisersAndEqualsOnTheBound) {
    for (int i = 0; i < 16; ++i) {
        float const one = (i % 5 == 0) ? 1.0f : 0.0f;
        EXPECT_TRUE(Mat4fBase::m_identity.getValue()[i] == one && Matrix4f(7).getValue()[i] == one);
        EXPECT_TRUE(Matrix4f(1).getValue()[i] == one && Matrix4f(0).getValue()[i] == 0.0f);
    }
    Matrix4f a, b;
    constexpr float kTolerance = 0.25f;
    b.getValue()[9] = kTolerance; // exactly on the bound: passes
    EXPECT_TRUE(a.equals(b, kTolerance));
    b.getValue()[9] = std::nextafter(kTolerance, 1.0f);
    EXPECT_FALSE(a.equals(b, kTolerance) || b.equals(a, kTolerance));
    // 1 - (-2^-30) exceeds 1 in double but the difference is rounded to float first.
    b = a;
    b.getValue()[3] = -std::ldexp(1.0f, -30);
    a.getValue()[3] = 1.0f;
    EXPECT_TRUE(a.equals(b, 1.0f));
    EXPECT_FALSE(a.equals(b, std::nextafter(1.0f, 0.0f)));
    // A NaN passes whatever the tolerance; a later real difference still fails.
    b = a;
    b.getValue()[0] = std::numeric_limits<float>::quiet_NaN();
    EXPECT_TRUE(a.equals(b, 0.0f));
    b.getValue()[15] = 2.0f;
    EXPECT_FALSE(a.equals(b, 0.5f));
}

TEST(Mat4fBase, WholeMatrixCopiesAndSettersAreBitExact) {
    // Distinct values in storage order, with a negative zero and a NaN payload.
    Matrix4f m;
    for (int i = 0; i < 16; ++i)
        m.getValue()[i] = float(i) + 0.25f;
    m.getValue()[6] = -0.0f;
    m.getValue()[9] = zeftest::floatOf(0x7FC01234u);
    float copy[16], e[16];
    m.getCopy(copy);
    EXPECT_TRUE(zeftest::sameBits(copy, m.getValue(), 16));
    m.getValue(e[0], e[1], e[2], e[3], e[4], e[5], e[6], e[7], e[8], e[9], e[10], e[11], e[12], e[13], e[14],
               e[15]);
    EXPECT_TRUE(zeftest::sameBits(e, m.getValue(), 16));
    Matrix4f target(0);
    target.setValue(m);
    EXPECT_TRUE(sameBits(target, m));
    const float zeros[16] = {};
    target.setZero();
    EXPECT_TRUE(zeftest::sameBits(target.getValue(), zeros, 16));
    target.setIdentity();
    EXPECT_TRUE(sameBits(target, Mat4fBase::m_identity));
}

TEST(Matrix4f, ProductsAndElementWiseBitForBit) {
    std::mt19937 rng(1234u);
    for (int trial = 0; trial < 100; ++trial) {
        Matrix4f const x = randomMatrix(rng);
        Matrix4f const m = randomMatrix(rng);
        Matrix4f left = m, right = m, star = m, self = m, self2 = m;
        left.multLeftBy(x);
        right.multRightBy(x);
        EXPECT_EQ(&(star *= x), &star);
        self.multLeftBy(self); // the receiver as its own argument squares it
        self2 *= self2;
        ASSERT_TRUE(sameBits(left, reference(x, m)) && sameBits(right, reference(m, x)));
        ASSERT_TRUE(sameBits(star, reference(m, x)) && sameBits(m * x, reference(m, x)));
        ASSERT_TRUE(sameBits(self, reference(m, m)) && sameBits(self2, reference(m, m)));

        Matrix4f const sum = m + x, diff = m - x, scaled = 0.3f * m;
        Matrix4f neg = m, mag = m, tr = m, out(0), selfT = m;
        EXPECT_TRUE(&neg.negate() == &neg && &mag.abs() == &mag && &tr.transpose() == &tr);
        m.getTranspose(out);
        selfT.getTranspose(selfT);
        for (int i = 0; i < 16; ++i) {
            float const e = m.getValue()[i], t = m.getValue()[4 * (i % 4) + i / 4];
            ASSERT_EQ(sum.getValue()[i], float(double(e) + x.getValue()[i]));
            ASSERT_EQ(diff.getValue()[i], float(double(e) - x.getValue()[i]));
            ASSERT_EQ(scaled.getValue()[i], float(double(e) * 0.3f));
            ASSERT_TRUE(neg.getValue()[i] == -e && mag.getValue()[i] == std::fabs(e));
            ASSERT_TRUE(tr.getValue()[i] == t && out.getValue()[i] == t && selfT.getValue()[i] == t);
        }
    }
}

TEST(Matrix4f, VectorsInPlaceAndInverse) {
    std::mt19937 rng(7u);
    Matrix4f const m = randomMatrix(rng);
    Vector3f const p(0.5f, -1.25f, 2.0f);
    Vector3f separate, same = p;
    m.multRightVec3f(separate, p);
    m.multRightVec3f(same, same);
    Vector3f const viaOperator = m * p;
    EXPECT_TRUE(zeftest::sameBits(same.getValue(), separate.getValue(), 3));
    EXPECT_TRUE(zeftest::sameBits(viaOperator.getValue(), separate.getValue(), 3));
    Vector4f const q(0.5f, -1.25f, 2.0f, 0.75f);
    Vector4f separate4, same4 = q;
    m.multRightVec4f(separate4, q);
    m.multRightVec4f(same4, same4);
    EXPECT_TRUE(zeftest::sameBits(same4.getValue(), separate4.getValue(), 4));

    constexpr float kInverseTolerance = 1e-4f;
    Matrix4f inv = m;
    bool ok = false;
    EXPECT_EQ(&inv.inverse(ok), &inv);
    EXPECT_TRUE(ok && (m * inv).equals(Mat4fBase::m_identity, kInverseTolerance));
    Matrix4f singular = m;
    std::memcpy(singular.getValue() + 8, singular.getValue(), 4 * sizeof(float)); // column 2 = column 0
    Matrix4f const before = singular;
    singular.inverse(ok);
    EXPECT_FALSE(ok);
    EXPECT_TRUE(sameBits(singular, before));
}

TEST(Matrix4f, IsFrontOrientation) {
    Matrix4f const id;
    EXPECT_TRUE(id.isFront(Vector3f(3, -2, 7), Vector3f(0, 0, -1)));
    EXPECT_FALSE(id.isFront(Vector3f(3, -2, 7), Vector3f(0, 0, 1)));
    EXPECT_FALSE(Matrix4f(0).isFront(Vector3f(1, 2, 3), Vector3f(0, 0, -1))); // f = 0
    // With the identity, f is the z of a x b, a positive multiple of n in both branches.
    EXPECT_TRUE(id.isFront(Vector3f(), Vector3f(-0.8f, 0.0f, -0.6f)));
    EXPECT_FALSE(id.isFront(Vector3f(), Vector3f(0.8f, 0.0f, 0.6f)));
    Matrix4f mirror;
    mirror.getValue()[0] = -1.0f;
    EXPECT_FALSE(mirror.isFront(Vector3f(1, 1, 1), Vector3f(0, 0, -1)));
}

TEST(Matrix4f, KernelSubclassSeesEveryCall) {
    (new RecordingKernel)->setDefault();
    Matrix4f m(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16);
    Matrix4f const x(2.0f * Mat4fBase::m_identity);
    g_products = 0;
    Matrix4f const product = m * x;
    EXPECT_TRUE(g_products == 1 && g_a == m.getValue() && g_b == x.getValue());
    m.multLeftBy(x);
    EXPECT_TRUE(g_products == 2 && g_out == m.getValue() && g_a == x.getValue());
    EXPECT_NE(g_b, m.getValue()); // the receiver goes in as a copy
    EXPECT_TRUE(sameBits(m, product));

    // isFront: the point, then tangent a, then b. n.x = +-0.5 and NaN take the first
    // branch, a = (0, n.z, -n.y); just above 0.5 the second, a = (n.y, -n.x, 0).
    float const above = std::nextafter(0.5f, 1.0f);
    for (float nx : {0.5f, -0.5f, std::nanf(""), above})
        Matrix4f().isFront(Vector3f(1, 2, 3), Vector3f(nx, 0.25f, 0.75f));
    ASSERT_EQ(g_vec4.size(), 12u);
    EXPECT_EQ(g_vec4[0].w(), 1.0f);
    for (int call = 0; call < 3; ++call)
        EXPECT_TRUE(g_vec4[3 * call + 1].x() == 0.0f && g_vec4[3 * call + 1].y() == 0.75f);
    EXPECT_EQ(g_vec4[2].x(), float(0.5 * 0.5 - 1.0));
    EXPECT_TRUE(g_vec4[10].x() == 0.25f && g_vec4[10].y() == -above);
    EXPECT_EQ(g_vec4[11].z(), float(0.75 * 0.75 - 1.0));

    (new EnhancedMathFunctions)->setDefault();
    EXPECT_TRUE(g_destroyed);
    m *= x;
    EXPECT_EQ(g_products, 2);
}

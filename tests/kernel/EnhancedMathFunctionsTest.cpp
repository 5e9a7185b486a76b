// The math kernel against double-then-round references written here: rounding points, order of terms,
// in place where allowed, outputs a failure must leave as they were, overrides seen by sister operations.
#include "zefcore/kernel/EnhancedMathFunctions.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <memory>

#include "support/TestSupport.h"

using namespace zeftest;
using EMF = EnhancedMathFunctions;

namespace {

const float kIdentity[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
constexpr float kRoundTripTol = 5e-5f; // float rounding through asin, acos and atan2 of rounded elements
int g_destroyed = 0;

// Marks what transposeAffine, inverseMatrix and quaternionToMatrix write; forces the
// determinant and eigenvalues factor sees and counts its products.
class MarkingKernel : public EMF {
public:
    mutable int products = 0;
    float forcedDet = 0.0f;
    ~MarkingKernel() override { ++g_destroyed; }
    void transposeAffine(float *o, float const *) const override { std::fill(o, o + 11, 7.0f); }
    bool inverseMatrix(float *o, float const *) const override { return std::fill(o, o + 16, -3.0f), true; }
    void quaternionToMatrix(float *o, float const *) const override { std::fill(o, o + 16, 7.0f); }
    void multMatrices(float *o, float const *a, float const *b) const override {
        ++products, EMF::multMatrices(o, a, b);
    }
    float det3(float const *) const override { return forcedDet; }
    void jacobi3(float *ev, float (*V)[3], int &rots, float const *) const override {
        for (int i = 0; i < 9; ++i)
            V[i / 3][i % 3] = i % 4 == 0;
        ev[0] = 2.0f, ev[1] = 3.0f, ev[2] = 5.0f, rots = 0;
    }
};

// Returns row k of the 3x3 block of m times v, summed in double in this order.
double row3(float const *m, int k, float const *v) {
    return double(m[k]) * v[0] + double(m[4 + k]) * v[1] + double(m[8 + k]) * v[2];
}

// Sets r to the rotation about axis 0, 1, 2 (X, Y, Z) with cosine c and sine s.
void rotation(double *r, int axis, double c, double s) {
    std::copy(kIdentity, kIdentity + 16, r);
    const int p = (axis + 1) % 3, q = (axis + 2) % 3;
    r[5 * p] = r[5 * q] = c;
    r[4 * q + p] = -s, r[4 * p + q] = s;
}

// Operations in a table go through plain function pointers: GCC 12 with the undefined
// behaviour sanitizer miscompiles calls through arrays of pointers to virtual members.
void (*const kTurns[6])(float *, float) = {[](float *m, float a) { kernel().multLeftByRotateX(m, a); },
                                           [](float *m, float a) { kernel().multRightByRotateX(m, a); },
                                           [](float *m, float a) { kernel().multLeftByRotateY(m, a); },
                                           [](float *m, float a) { kernel().multRightByRotateY(m, a); },
                                           [](float *m, float a) { kernel().multLeftByRotateZ(m, a); },
                                           [](float *m, float a) { kernel().multRightByRotateZ(m, a); }};
void (*const kCompose[4])(float *, float const *) = {
    [](float *m, float const *v) { kernel().multRightByTranslate(m, v); },
    [](float *m, float const *v) { kernel().multLeftByTranslate(m, v); },
    [](float *m, float const *v) { kernel().multLeftByScale(m, v); },
    [](float *m, float const *v) { kernel().multRightByScale(m, v); }};

} // namespace

TEST(EnhancedMathFunctions, SetDefaultHandsOverAndOverridesReachCompoundOperations) {
    MarkingKernel *const a = new MarkingKernel;
    a->setDefault(), a->setDefault(); // the second: already current, neither destroyed nor replaced
    EXPECT_TRUE(EMF::getCurrent() == a && g_destroyed == 0);
    const float axis[3] = {0, 1, 0}, q[4] = {1, 0, 0, 0};
    float m[16], o[4][16], eu[3], s[3], t[3];
    a->setTranslate(m, axis);
    std::fill(&o[0][0], &o[0][0] + 64, 0.5f);
    EXPECT_TRUE(a->inverse3(o[0], m) && a->inverseAffine(o[1], m) && a->inverseRotate(o[2], m) &&
                a->inverseRotateAndTr(o[3], m));
    EXPECT_TRUE(o[0][0] == -3.0f && o[1][15] == -3.0f && o[2][5] == 7.0f && o[2][12] == 0.5f &&
                o[3][10] == 7.0f && o[3][13] == -1.0f); // inverseRotate keeps the translation
    a->setRotate(o[0], axis, 0.5f), a->axisToMatrix(o[1], axis, 0.5f);
    a->multLeftByRotate(o[2], m, axis, 0.5f), a->multRightByRotate(o[3], m, axis, 0.5f);
    a->quaternionToEuler(eu, q); // asin(-7) of the constant matrix, not the identity's 0
    EXPECT_TRUE(o[0][0] == 7.0f && o[1][5] == 7.0f && o[2][10] == 7.0f && o[3][10] == 7.0f &&
                std::isnan(eu[1]));
    EXPECT_FALSE(a->factor(o[0], s, o[1], t, o[2], m)); // determinant forced to 0
    a->forcedDet = -1.0f;
    EXPECT_TRUE(a->factor(o[0], s, o[1], t, o[2], m) && a->products == 4);
    for (int i = 0; i < 3; ++i) { // rounded roots of the forced eigenvalues, signed; u = S^-1 here
        float const root = float(std::sqrt(double(i == 0 ? 2 : i == 1 ? 3 : 5)));
        EXPECT_TRUE(s[i] == -root && o[1][5 * i] == float(1.0 / double(-root)));
    }
    EXPECT_TRUE(sameBits(std::unique_ptr<float[]>(a->getMat4fCopy(m)).get(), m, 16));
    (new MarkingKernel)->setDefault();
    EXPECT_EQ(g_destroyed, 1); // a was destroyed by the hand-over
    (new EMF)->setDefault();
    EXPECT_TRUE(g_destroyed == 2 && EMF::getCurrent()->inverseRotate(o[0], m) && o[0][5] == 1.0f);
}

// Run in the optimised build: a compiler that fuses the cosine and sine and keeps
// them in double changes most of these results by one ulp.
TEST(AffineOperations, AxisRotationsRoundCosineAndSineToFloat) {
    std::mt19937 rng(99u);
    int unroundedDiffers = 0;
    for (int n = 0; n < 3000; ++n) {
        float m[16], got[16], want[16], loose[16];
        double rot[16], exact[16];
        randomFloats(rng, m, 16);
        const float angle = float(double(std::int32_t(rng())) * 0x1p-28);
        const volatile double a = angle; // keeps the reference's cosine a plain double call
        for (int axis = 0; axis < 3; ++axis) {
            rotation(rot, axis, float(std::cos(a)), float(std::sin(a)));
            rotation(exact, axis, std::cos(a), std::sin(a));
            for (int left : {0, 1}) {
                std::memcpy(got, m, sizeof m);
                kTurns[2 * axis + 1 - left](got, angle);
                left ? referenceProduct(want, rot, m) : referenceProduct(want, m, rot);
                EXPECT_TRUE(sameBits(got, want, 16)) << "axis " << axis << " left " << left;
                left ? referenceProduct(loose, exact, m) : referenceProduct(loose, m, exact);
                unroundedDiffers += !sameBits(loose, want, 16);
            }
        }
    }
    EXPECT_GT(unroundedDiffers, 2000); // a cosine kept in double would be caught
}

TEST(MatrixOperations, RandomInputsMatchDoubleThenRoundReferences) {
    std::mt19937 rng(4u);
    for (int n = 0; n < 500; ++n) {
        float a[16], b[16], v[4], got[16], tr[16], irt[16], proj[16], comp[4][16], w[4], p[3], d[3];
        randomFloats(rng, a, 16, 12), randomFloats(rng, b, 16, 12), randomFloats(rng, v, 4, 12);
        const double inv = 1.0 / kernel().dot3(a, v);
        for (int i = 0; i < 16; ++i) {
            const int r = i % 4, c = i / 4;
            const bool t = c == 3 && r < 3;
            tr[i] = a[4 * r + c];
            irt[i] = r == 3 ? 42.0f : t ? -float(row3(tr, r, a + 12)) : tr[i]; // -R^T t rounded, then negated
            const float cr = (r < 3 && c < 3) ? float(double(float(-double(v[r]) * inv)) * a[c]) : 0.0f;
            proj[i] = r == c ? float(double(cr) + 1.0) : c == 3 ? float(double(-b[15]) * v[r] * inv) : cr;
            // In place: the image of a translation is summed before it is added; scales by row or column.
            comp[0][i] = t ? float(double(a[i]) + row3(a, r, b)) : a[i];
            comp[1][i] = t ? float(double(a[i]) + b[r]) : a[i];
            comp[2][i] = r < 3 ? float(double(a[i]) * b[r]) : a[i];
            comp[3][i] = r < 3 && c < 3 ? float(double(a[i]) * b[c]) : a[i];
            if (i < 4)
                w[i] = float(row3(a, i, v) + double(a[12 + i]) * v[3]);
            if (i < 3)
                p[i] = float(row3(a, i, v) + a[12 + i]), d[i] = float(row3(a, i, v));
        }
        for (int op = 0; op < 4; ++op) {
            std::memcpy(got, a, sizeof a);
            kCompose[op](got, b);
            EXPECT_TRUE(sameBits(got, comp[op], 16)) << op;
        }
        std::fill(got, got + 16, 42.0f);
        EXPECT_TRUE(kernel().inverseRotateAndTr(got, a) && sameBits(got, irt, 16));
        kernel().setProjection(got, a, b[15], v);
        EXPECT_TRUE(sameBits(got, proj, 16));
        std::memcpy(got, v, sizeof v);
        kernel().multMatrixVec4f(got, a, got);
        EXPECT_TRUE(sameBits(got, w, 4));
        std::memcpy(got, v, sizeof v);
        kernel().multAffineMatrixVec3f(got, a, got);
        kernel().multAffineMatrixVec3fAsDir(v, a, v);
        EXPECT_TRUE(sameBits(got, p, 3) && sameBits(v, d, 3));
    }
}

TEST(MatrixOperations, CrossDotAndDeterminantsRoundWhereStated) {
    std::mt19937 rng(5u);
    float m[16], x[3], want[3];
    float const *u = m, *v = m + 4;
    auto d = [&](int i, int j, int k, int l) {
        return double(float(double(m[i]) * m[l] - double(m[j]) * m[k]));
    };
    auto t = [&](int a, int b, int c, int i, int j) {
        return m[a] * d(i + 1, i + 2, j + 1, j + 2) - m[b] * d(i, i + 2, j, j + 2) +
               m[c] * d(i, i + 1, j, j + 1);
    };
    for (int n = 0; n < 2000; ++n) {
        randomFloats(rng, m, 16, 12);
        for (int k = 0; k < 3; ++k)
            want[k] =
                float(double(u[(k + 1) % 3]) * v[(k + 2) % 3] - double(u[(k + 2) % 3]) * v[(k + 1) % 3]);
        kernel().cross(x, u, v);
        EXPECT_TRUE(sameBits(x, want, 3) && sameBits(kernel().det2(u[2], u[0], v[2], v[0]), want[1]));
        EXPECT_TRUE(sameBits(kernel().dot3(u, v),
                             float((double(u[1]) * v[1] + double(u[0]) * v[0]) + double(u[2]) * v[2])));
        const double d3 = m[0] * d(5, 6, 9, 10) - m[1] * d(4, 6, 8, 10) + m[2] * d(4, 5, 8, 9);
        EXPECT_EQ(kernel().det3(m), float(d3));
        EXPECT_EQ(kernel().det3(m, m + 4, m + 8), d3); // the row form returns the unrounded double
        EXPECT_EQ(kernel().det4(m), float(m[0] * t(5, 6, 7, 9, 13) - m[4] * t(1, 2, 3, 9, 13) +
                                          m[8] * t(1, 2, 3, 5, 13) - m[12] * t(1, 2, 3, 5, 9)));
    }
    float const p[3] = {-1e10f, 1e10f, 1.0f}, q[3] = {1e10f, 1e10f, 1.0f};
    EXPECT_EQ(kernel().dot3(p, q), 1.0f); // (1e20 - 1e20) + 1: the third product is added last
}

TEST(AffineOperations, CancellationsAndOutputsLeftUntouched) {
    float m[16], out[16];
    const float big[3] = {0x1p30f, 0x1p30f, 0}, t[3] = {1, 0, 0}, z[3] = {0, 0, 1}, s[3] = {2, 0, 4};
    kernel().setTranslate(m, t);
    m[0] = 0x1p30f, m[4] = -0x1p30f;
    kernel().multRightByTranslate(m, big); // 1 + (2^60 - 2^60), not (1 + 2^60) - 2^60
    EXPECT_TRUE(sameBits(m, {0x1p30f, 0, 0, 0, -0x1p30f, 1, 0, 0, 0, 0, 1, 0, 1, 0x1p30f, 0, 1}));
    std::fill(out, out + 16, 42.0f);
    kernel().setScale(m, s);
    EXPECT_FALSE(kernel().inverseScale(m) || kernel().inverseScale(out, m)); // m[0] tested first, kept
    EXPECT_TRUE(m[0] == 2.0f && out[0] == 42.0f);
    m[5] = -0.5f, m[1] = m[12] = 3.0f; // m[1], m[12]: ignored by the copying form
    ASSERT_TRUE(kernel().inverseScale(out, m) && kernel().inverseScale(m));
    EXPECT_TRUE(sameBits(out, {0.5f, 0, 0, 0, 0, -2.0f, 0, 0, 0, 0, 0.25f, 0, 0, 0, 0, 1}));
    EXPECT_TRUE(sameBits(m, {0.5f, 3, 0, 0, 0, -2.0f, 0, 0, 0, 0, 0.25f, 0, 3, 0, 0, 1}));
    ASSERT_TRUE(kernel().inverseTranslate(m, m)); // identity rebuilt, zero signs kept
    EXPECT_TRUE(sameBits(m, {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, -3.0f, -0.0f, -0.0f, 1}));
    m[1] = 5.0f;
    ASSERT_TRUE(kernel().inverseTranslate(m)); // negates the translation alone
    EXPECT_TRUE(sameBits(m, {1, 5, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 3.0f, 0.0f, 0.0f, 1}));
    std::fill(out, out + 16, 42.0f);
    kernel().setProjection(out, z, -2.0f, t); // dir lies in the plane: nothing written
    EXPECT_TRUE(std::all_of(out, out + 16, [](float f) { return f == 42.0f; }));
}

// applyQuatOn turns b's vector part v by a = (w, u): s*v + e*u + 2w*(u x v), each factor rounded.
TEST(RotationOperations, QuatOnVectorAndInversesRoundWhereStated) {
    std::mt19937 g(11);
    for (int n = 0; n < 200; ++n) {
        float a[4], b[4], want[3];
        randomFloats(g, a, 4, 2), randomFloats(g, b, 4, 2);
        double const w = a[0], p = a[1], q = a[2], r = a[3];
        float const s = float(w * w - p * p - q * q - r * r), e = float(2 * (p * b[1] + q * b[2] + r * b[3]));
        float const c[3] = {float(q * b[3] - r * b[2]), float(r * b[1] - p * b[3]),
                            float(p * b[2] - b[1] * q)};
        for (int k = 0; k < 3; ++k)
            want[k] = float(double(s) * b[k + 1] + double(e) * a[k + 1] + double(float(2 * w)) * c[k]);
        kernel().applyQuatOn(b + 1, a, b + 1);
        EXPECT_TRUE(sameBits(b + 1, want, 3));
    }
    float out[4], q[4] = {0.3f, -1.7f, 2.9f, 0.1f}, zero[4] = {0, 0, 0, 0};
    kernel().inverseQuaternion(out, zero);
    EXPECT_TRUE(sameBits(out, zero, 4)); // exact zero norm: no division
    kernel().inverseQuaternionU(out, q);
    EXPECT_TRUE(sameBits(out, {q[0], -q[1], -q[2], -q[3]}));
    double const r = float(
        1.0 / float(double(q[0]) * q[0] + double(q[1]) * q[1] + double(q[2]) * q[2] + double(q[3]) * q[3]));
    kernel().inverseQuaternion(q, q);
    EXPECT_TRUE(sameBits(q, {float(0.3f * r), float(1.7f * r), float(-2.9f * r), float(-0.1f * r)}));
}

TEST(RotationOperations, InterpolationsFollowTheShorterWayUnnormalised) {
    float const a[4] = {0.5f, 0.5f, 0.5f, 0.5f}, b[4] = {-0.1f, -0.7f, 0.1f, -0.7f},
                nanA[5] = {std::nanf(""), 0, 1, 0, 0};
    float out[4] = {0.5f, 0.5f, 0.5f, 0.5f};
    kernel().quaternionSLERP(out, out, out, 0.3f); // equal ends: both weights sin(0)
    EXPECT_TRUE(sameBits(out, {0, 0, 0, 0}));
    kernel().quaternionLERP(out, nanA, nanA + 1, 0.25f); // a NaN dot takes the negative branch
    EXPECT_EQ(out[1], -0.25f);
    std::copy(a, a + 4, out), kernel().quaternionLERP(out, out, nanA + 1, 0.25f); // positive dot, in place
    EXPECT_TRUE(sameBits(out, {0.375f, 0.625f, 0.375f, 0.375f}));
    // Negative dot: every element of b enters negated; the weights are the bare sines.
    float const d = float(float(float(float(0.5 * -0.1f) + 0.5 * -0.7f) + 0.5 * 0.1f) + 0.5 * -0.7f);
    float const theta = float(std::acos(-double(d)));
    for (float t : {0.0f, 0.25f, 1.0f}) {
        double const w0 = std::sin((1.0 - t) * theta), w1 = std::sin(double(t) * theta);
        std::copy(b, b + 4, out), kernel().quaternionSLERP(out, a, out, t);
        for (int k = 0; k < 4; ++k)
            EXPECT_TRUE(sameBits(out[k], float(0.5 * w0 - b[k] * w1))) << k;
    }
    kernel().quaternionLERP(out, a, b, 1.0f);
    EXPECT_TRUE(sameBits(out, {0.1f, 0.7f, -0.1f, 0.7f}));
}

TEST(RotationOperations, AxisAndQuaternionRoundAndHonourTheLengthBound) {
    float out[4], axis[3], angle;
    std::mt19937 g(17);
    std::uniform_real_distribution<float> u(-4.0f, 4.0f);
    for (int n = 0; n < 100; ++n) {
        float const ax[3] = {u(g), u(g), u(g)}, turn = u(g), s = float(std::sin(double(turn) * 0.5));
        kernel().axisToQuaternion(out, ax, turn);
        EXPECT_TRUE(sameBits(out, {float(std::cos(double(turn) * 0.5)), float(double(ax[0]) * s),
                                   float(double(ax[1]) * s), float(double(ax[2]) * s)}));
        kernel().quaternionToAxis(axis, &angle, out);
        double const r =
            float(1.0 / float(std::sqrt(double(float(double(out[1]) * out[1] + double(out[2]) * out[2] +
                                                     double(out[3]) * out[3])))));
        EXPECT_TRUE(sameBits(axis, {float(out[1] * r), float(out[2] * r), float(out[3] * r)}));
        EXPECT_TRUE(sameBits(angle, float(2.0 * float(std::acos(double(out[0]))))));
    }
    // The bound is the double 0.0001: its float neighbour below is degenerate, above is not.
    float const below[3] = {0.0001f, 0, 0}, above[3] = {std::nextafter(0.0001f, 1.0f), 0, 0};
    kernel().axisToQuaternionU(out, below, 2.0f);
    EXPECT_TRUE(sameBits(out, {1, 0, 0, 0}));
    kernel().axisToQuaternionU(out, above, 2.0f);
    EXPECT_TRUE(sameBits(out, {float(std::cos(1.0)),
                               float(double(above[0]) * float(std::sin(1.0) / double(above[0]))), 0, 0}));
    out[0] = -1.0f, out[1] = 0.0f; // a zero vector part: angle 0, not 2 pi
    kernel().quaternionToAxis(axis, &angle, out);
    EXPECT_TRUE(sameBits(axis, {0, 0, 0}) && angle == 0.0f);
}

TEST(RotationOperations, MatrixToQuaternionRoundsAndRotationsComposeOnTheirSide) {
    std::mt19937 g(29);
    for (int n = 0; n < 400; ++n) {
        float q[4], m[16], back[4], axis[3], angle, want[16], o[16], got[16];
        randomUnitQuaternion(g, q, n % 4 == 0);
        kernel().quaternionToMatrix(m, q), kernel().RotMatrixToQuaternion(back, m);
        double const t = double(m[0]) + m[5] + m[10] + 1.0, r = std::sqrt(t), f = 0.5 / r;
        float const ref[4] = {float(r * 0.5), float((double(m[6]) - m[9]) * f),
                              float((double(m[8]) - m[2]) * f), float((double(m[1]) - m[4]) * f)};
        EXPECT_TRUE(t < 0.0 ? std::isnan(back[0]) : t == 0.0 || sameBits(back, ref, 4)); // no clamp below 0
        kernel().matrixToAxis(axis, &angle, m), kernel().quaternionToAxis(want, want + 3, back);
        EXPECT_TRUE(sameBits(axis, want, 3) && sameBits(angle, want[3]));
        axis[0] *= 3.0f, axis[1] *= 3.0f, axis[2] *= 3.0f; // an axis of any length
        kernel().setRotate(want, axis, angle);
        for (int i = 0; i < 16 && n % 4 != 0 && q[0] >= 0.1f; ++i) // w is ill-conditioned near a half turn
            EXPECT_NEAR(want[i], m[i], kRoundTripTol * 4) << i;
        randomFloats(g, o, 16);
        kernel().multLeftByRotate(got, o, axis, angle), kernel().multAffineMatrices(m, want, o);
        EXPECT_TRUE(sameBits(got, m, 16));
        kernel().multRightByRotate(got, o, axis, angle), kernel().multAffineMatrices(m, o, want);
        EXPECT_TRUE(sameBits(got, m, 16));
    }
    // A half turn with diagonal (0.375, -1, -0.375): m[10] > m[5] picks z though m[0] is
    // largest; starting from x would give other bits in element 1.
    float const c = float(2 * std::sqrt(0.6875 * 0.3125)),
                h[16] = {0.375f, 0, c, 0, 0, -1, 0, 0, c, 0, -0.375f, 0, 0, 0, 0, 1};
    double const e = std::sqrt((-0.375 + 1.0) * 0.5);
    float q[4];
    kernel().RotMatrixToQuaternion(q, h);
    EXPECT_TRUE(sameBits(q, {0, float((double(c) + c) / (4.0 * e)), 0, float(e)}));
}

TEST(RotationOperations, EulerConversionsRoundAndCompose) {
    std::mt19937 g(3);
    std::uniform_real_distribution<float> u(-3.1f, 3.1f);
    for (int n = 0; n < 300; ++n) { // n % 50 < 2: the poles m[2] = -1, 1
        float eu[3] = {u(g), n % 50 < 2 ? float(std::asin(n % 2 ? 1.0 : -1.0)) : u(g) * 0.5f, u(g)};
        float m[16], m2[16], q[4], back[3];
        double C[3], S[3], c[3], s[3]; // half angles unrounded; whole angles rounded to float
        for (int k = 0; k < 3; ++k) {
            C[k] = std::cos(eu[k] * 0.5), S[k] = std::sin(eu[k] * 0.5);
            c[k] = float(std::cos(double(eu[k]))), s[k] = float(std::sin(double(eu[k])));
        }
        kernel().setRotate(m, eu);
        EXPECT_TRUE(
            sameBits(m, {float(c[1] * c[2]), float(c[1] * s[2]), float(-s[1]), 0,
                         float(s[0] * s[1] * c[2] - c[0] * s[2]), float(c[0] * c[2] + s[0] * s[1] * s[2]),
                         float(s[0] * c[1]), 0, float(c[0] * s[1] * c[2] + s[0] * s[2]),
                         float(c[0] * s[1] * s[2] - s[0] * c[2]), float(c[0] * c[1]), 0, 0, 0, 0, 1}));
        kernel().eulerToQuaternion(q, eu);
        EXPECT_TRUE(sameBits(q, {float(C[0] * C[1] * C[2] + S[0] * S[1] * S[2]),
                                 float(S[0] * C[1] * C[2] - C[0] * S[1] * S[2]),
                                 float(C[0] * S[1] * C[2] + S[0] * C[1] * S[2]),
                                 float(C[0] * C[1] * S[2] - S[0] * S[1] * C[2])}));
        kernel().matrixToEuler(back, m), kernel().eulerToMatrix(m2, back);
        for (int i = 0; i < 16; ++i) // at a pole X is 0 and Z alone reproduces m
            EXPECT_NEAR(m2[i], m[i], kRoundTripTol) << i;
        EXPECT_TRUE(n % 50 > 1 || back[0] == 0.0f);
    }
    float bad[16] = {1, 0, 1.5f, 0, 0, 1, 0, 0, 0, 0, 1}, back[3];
    kernel().matrixToEuler(back, bad); // asin(-1.5) is NaN: taken as the upper pole, atan2(-0, 0) = -0
    EXPECT_TRUE(std::isnan(back[1]) && sameBits(back, {0.0f, back[1], -0.0f}));
}

// The seed: halved exponent, table row from the top mantissa bits, sign ignored; then
// each Newton step in double, rounded to float.
TEST(FastSquareRoots, SeedTableLayoutAndEachStepRounded) {
    auto one = [](std::uint32_t row) { return floatOf((row | 0x1F80u) << 17); }; // 1 + row / 128
    std::uint32_t const rows[6][2] = {{0, 0x6A}, {1, 0x67}, {63, 0x01}, {64, 0xFF}, {65, 0xFC}, {127, 0x6B}};
    for (auto const &row : rows)
        EXPECT_EQ((bitsOf(kernel().invSqrt(one(row[0]), 0)) >> 15) & 0xFFu, row[1]);
    EXPECT_EQ(kernel().invSqrt(4.0f, -1), 0.4990234375f);
    EXPECT_EQ(kernel().invSqrt(0.0f), float(1.3042424520864956e+19 * 1.5)); // zero: a seed times 1.5
    std::mt19937 rng(20240611u);
    std::uniform_int_distribution<std::uint32_t> mantissa(0, 0x7FFFFF), exponent(1, 252);
    for (int trial = 0; trial < 4000; ++trial) {
        std::uint32_t const e = exponent(rng), bits = (e << 23) | mantissa(rng), row = (bits >> 17) & 0x7Fu;
        float const x = floatOf(bits), y0 = float(1.0 / float(std::sqrt(double(one(row)))));
        std::uint32_t const seed = bitsOf(kernel().invSqrt(-x, 0)), // row 64: 1/sqrt(1) kept below 1
            entry = row == 64 ? 0xFFu : ((bitsOf(y0) + 0x2000u) >> 15) & 0xFFu;
        ASSERT_EQ(seed, ((380u - e) / 2u) << 23 | entry << 15) << x;
        float y = floatOf(seed);
        for (int n = 1; n <= 3; ++n) {
            y = float(double(y) * (3.0 - double(x) * y * y) * 0.5);
            ASSERT_EQ(bitsOf(kernel().invSqrt(x, n)), bitsOf(y)) << x << " n=" << n;
            ASSERT_EQ(bitsOf(kernel().msqrt(x, n)), bitsOf(float(1.0 / y))) << x << " n=" << n;
        }
        ASSERT_TRUE(kernel().invSqrt(x) == kernel().invSqrt(x, 1) &&
                    kernel().msqrt(x) == kernel().msqrt(x, 1));
    }
}

// Jacobi: rows (2, 1, 0), (1, 2, 0), (0, 0, 3) take one rotation with t = 1, then a zero sum; the
// lower triangle and the fourth row and column are not read.
TEST(Factorization, HandTracedJacobiRandomFactorsAndTheDeterminantBound) {
    float m[16] = {2, 1, 0, 99, 1e30f, 2, 0, 99, std::nanf(""), -5, 3, 99, 99, 99, 99, 99}, ev[3], V[3][3];
    int rots = -1;
    kernel().jacobi3(ev, V, rots, m);
    EXPECT_TRUE(rots == 3 && sameBits(ev, {1.0f, 3.0f, 3.0f}));
    double const c = 1.0 / std::sqrt(2.0), tau = c / (1.0 + c);
    EXPECT_TRUE(
        sameBits(&V[0][0], {float(1.0 - c * tau), float(c), 0, float(-c), float(1.0 - c * tau), 0, 0, 0, 1}));
    m[1] = std::numeric_limits<float>::quiet_NaN();
    kernel().jacobi3(ev, V, rots, m);
    EXPECT_EQ(rots, 150); // fifty sweeps of three pairs: no convergence on NaN
    float o[54], *r = o, *s = o + 16, *u = o + 19, *p = o + 35; // t: p + 16
    std::mt19937 rng(31337u);
    for (int n = 0; n < 200; ++n) { // near diag(+-3, 3, 3): M = u * r^T * S * r, r and u orthonormal
        randomFloats(rng, m, 16, 0);
        m[0] += n % 2 ? 3.0f : -3.0f, m[5] += 3.0f, m[10] += 3.0f;
        ASSERT_TRUE(kernel().factor(r, s, u, p + 16, p, m));
        for (int i = 0; i < 9; ++i) {
            int const a = i / 3, b = i % 3;
            double sum = 0.0, uu = -(a == b), rr = -(a == b);
            for (int j = 0; j < 9; ++j)
                sum += double(u[4 * (j % 3) + b]) * r[4 * (j % 3) + j / 3] * s[j / 3] * r[4 * a + j / 3];
            for (int k = 0; k < 3; ++k)
                uu += double(u[4 * a + k]) * u[4 * b + k], rr += double(r[4 * a + k]) * r[4 * b + k];
            EXPECT_LT(std::fabs(sum - m[4 * a + b]) + std::fabs(uu) + std::fabs(rr), 2e-5) << n << ": " << i;
        }
    }
    // The double 1e-12 lies between two floats; it passes, its lower neighbour fails and leaves
    // r, s and u (o[0, 35)) untouched while p and t (o[35, 54)) are written.
    float const near = float(1e-12), above = double(near) >= 1e-12 ? near : std::nextafter(near, 1.0f);
    for (float const det : {above, -above, std::nextafter(above, 0.0f), -std::nextafter(above, 0.0f)}) {
        std::copy(kIdentity, kIdentity + 16, m);
        m[0] = det, m[14] = 7.0f;
        std::fill(o, o + 54, -1.5f);
        bool const passes = std::fabs(det) == above;
        ASSERT_EQ(kernel().factor(r, s, u, p + 16, p, m), passes);
        EXPECT_TRUE(p[18] == 7.0f && sameBits(p, kIdentity, 16) &&
                    (passes || std::count(o, o + 35, -1.5f) == 35));
    }
}

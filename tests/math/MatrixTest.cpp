// The matrix classes: products bit for bit against double-then-round references,
// aliasing, what each operation leaves untouched, builders and decompositions, and
// the calls they hand to an installed kernel.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <type_traits>
#include <vector>

#include "support/TestSupport.h"
#include "zefcore/math/MatAff4f.h"
#include "zefcore/math/MatRot4f.h"
#include "zefcore/math/Matrix4f.h"
#include "zefcore/math/Quaternion.h"

namespace {

constexpr float kSentinel = 77.0f;
// Float error allowed after a few products of rotations (cos(pi/2) in float is -4.4e-8, not 0).
constexpr float kRotationTolerance = 2e-5f;
// Reconstruction error allowed for the factorisation of matrices with entries up to ~10.
constexpr double kReconstructionTolerance = 2e-4;
const float kQuarter = float(std::acos(0.0));
const Vector3f kX(1, 0, 0), kY(0, 1, 0), kZ(0, 0, 1), kCentre(0.5f, -1.5f, 2.5f);

bool sameBits(const Mat4fBase &a, const Mat4fBase &b) {
    return std::memcmp(a.getValue(), b.getValue(), 64) == 0;
}
float at(const Mat4fBase &m, int r, int c) {
    return m.getValue()[4 * c + r];
}
Vector3f randomVector(std::mt19937 &rng, float scale = 2.0f) {
    std::uniform_real_distribution<float> u(-scale, scale);
    return Vector3f(u(rng), u(rng), u(rng));
}
MatRot4f sentinelRot() {
    MatRot4f m;
    m.setValue(kSentinel, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15);
    return m;
}
Matrix4f reference(const Mat4fBase &a, const Mat4fBase &b) {
    Matrix4f out;
    zeftest::referenceProduct(out.getValue(), a.getValue(), b.getValue());
    return out;
}
// Column c of m's 3x3 block has length len: float(sqrt(float(sum of squares in double))).
float columnLength(const Mat4fBase &m, int c) {
    const float *col = m.getValue() + 4 * c;
    return float(std::sqrt(
        double(float(double(col[0]) * col[0] + double(col[1]) * col[1] + double(col[2]) * col[2]))));
}

// Records what the classes hand to the kernel (whose products must not write over an
// operand), and still computes with the base class.
int g_aliased = 0, g_products = 0, g_affineProducts = 0, g_jacobi = 0, g_axisQuaternions = 0,
    g_translates = 0;
const float *g_out = nullptr, *g_a = nullptr, *g_b = nullptr;
std::vector<Vector4f> g_vec4;
class RecordingKernel : public EnhancedMathFunctions {
public:
    void multMatrices(float *const o, float const *const a, float const *const b) const override {
        ++g_products, g_out = o, g_a = a, g_b = b, g_aliased += o == a || o == b;
        EnhancedMathFunctions::multMatrices(o, a, b);
    }
    void multMatrixVec4f(float *const o, float const *const m, float const *const v) const override {
        g_vec4.emplace_back(v), EnhancedMathFunctions::multMatrixVec4f(o, m, v);
    }
    void multAffineMatrices(float *const o, float const *const a, float const *const b) const override {
        ++g_affineProducts, g_aliased += o == a || o == b;
        EnhancedMathFunctions::multAffineMatrices(o, a, b);
    }
    void jacobi3(float *const e, float (*const v)[3], int &rots, float const *const m) const override {
        ++g_jacobi, EnhancedMathFunctions::jacobi3(e, v, rots, m);
    }
    void axisToQuaternionU(float *const o, float const *const axis, float angle) const override {
        ++g_axisQuaternions, EnhancedMathFunctions::axisToQuaternionU(o, axis, angle);
    }
    void setTranslate(float *const o, float const *const t) const override {
        ++g_translates, EnhancedMathFunctions::setTranslate(o, t);
    }
};

// A point beside the centre turns a quarter about Z: X onto Y.
bool turnsAQuarterAboutCentre(const MatAff4fBase &m) {
    return (m * kCentre).equalsEps(kCentre, kRotationTolerance) &&
           (m * (kCentre + kX)).equalsEps(kCentre + kY, kRotationTolerance);
}

} // namespace

// The free products keep the most derived common type.
static_assert(std::is_same<decltype(MatRot4f() * MatAff4f()), MatAff4fBase>::value, "mixed product");
static_assert(std::is_same<decltype(2.0f * MatAff4f()), MatAff4fBase>::value, "affine scalar product");
static_assert(std::is_same<decltype(Matrix4f() * MatAff4f()), Matrix4f>::value, "general product");

TEST(Matrix4f, ProductsAndElementWiseBitForBit) {
    std::mt19937 rng(1234u);
    for (int trial = 0; trial < 50; ++trial) {
        Matrix4f x, m;
        zeftest::randomFloats(rng, x.getValue(), 16, 2);
        zeftest::randomFloats(rng, m.getValue(), 16, 2);
        Matrix4f left = m, right = m, star = m, self = m, self2 = m;
        left.multLeftBy(x);
        right.multRightBy(x);
        self.multLeftBy(self); // the receiver as its own argument squares it
        self2 *= self2;
        ASSERT_TRUE(&(star *= x) == &star && sameBits(star, reference(m, x)) &&
                    sameBits(m * x, reference(m, x)));
        ASSERT_TRUE(sameBits(left, reference(x, m)) && sameBits(right, reference(m, x)));
        ASSERT_TRUE(sameBits(self, reference(m, m)) && sameBits(self2, reference(m, m)));
        Matrix4f const sum = m + x, diff = m - x, scaled = 0.3f * m;
        Matrix4f neg = m, mag = m, tr = m, out(0), selfT = m;
        ASSERT_TRUE(&neg.negate() == &neg && &mag.abs() == &mag && &tr.transpose() == &tr);
        m.getTranspose(out);
        selfT.getTranspose(selfT);
        for (int i = 0; i < 16; ++i) {
            float const e = m.getValue()[i], t = m.getValue()[4 * (i % 4) + i / 4];
            ASSERT_TRUE(sum.getValue()[i] == float(double(e) + x.getValue()[i]) &&
                        diff.getValue()[i] == float(double(e) - x.getValue()[i]) &&
                        scaled.getValue()[i] == float(double(e) * 0.3f));
            ASSERT_TRUE(neg.getValue()[i] == -e && mag.getValue()[i] == std::fabs(e));
            ASSERT_TRUE(tr.getValue()[i] == t && out.getValue()[i] == t && selfT.getValue()[i] == t);
        }
        // Vectors in place give what they give into a separate output.
        Vector3f const p = randomVector(rng);
        Vector3f separate, same = p;
        Vector4f const q(p.x(), p.y(), p.z(), 0.75f);
        Vector4f separate4, same4 = q;
        m.multRightVec3f(separate, p);
        m.multRightVec3f(same, same);
        m.multRightVec4f(separate4, q);
        m.multRightVec4f(same4, same4);
        ASSERT_TRUE(same.equals(separate) && (m * p).equals(separate));
        ASSERT_TRUE(zeftest::sameBits(same4.getValue(), separate4.getValue(), 4));
    }
}

TEST(Matrix4f, CopiesEqualsOnTheBoundInverseAndIsFront) {
    // Copies keep the bits of a negative zero and a NaN payload.
    Matrix4f m(7), target(0), zero(0), a, b;
    EXPECT_TRUE(sameBits(m, Mat4fBase::m_identity) && Mat4fBase::m_identity.getValue()[10] == 1.0f);
    for (int i = 0; i < 16; ++i)
        m.getValue()[i] = i == 6 ? -0.0f : i == 9 ? zeftest::floatOf(0x7FC01234u) : float(i) + 0.25f;
    float copy[16], e[16];
    m.getCopy(copy);
    m.getValue(e[0], e[1], e[2], e[3], e[4], e[5], e[6], e[7], e[8], e[9], e[10], e[11], e[12], e[13], e[14],
               e[15]);
    target.setValue(m);
    EXPECT_TRUE(zeftest::sameBits(copy, m.getValue(), 16) && zeftest::sameBits(e, m.getValue(), 16));
    EXPECT_TRUE(sameBits(target, m) && sameBits(Matrix4f(copy), m));
    target.setZero();
    EXPECT_TRUE(zero.getValue()[0] == 0.0f && sameBits(target, zero));
    target.setIdentity();
    EXPECT_TRUE(sameBits(target, Mat4fBase::m_identity));

    b.getValue()[9] = 0.25f; // exactly on the bound: passes
    EXPECT_TRUE(a.equals(b, 0.25f));
    b.getValue()[9] = std::nextafter(0.25f, 1.0f);
    EXPECT_FALSE(a.equals(b, 0.25f) || b.equals(a, 0.25f));
    // 1 - (-2^-30) exceeds 1 in double but the difference is rounded to float first.
    b = a;
    b.getValue()[3] = -std::ldexp(1.0f, -30);
    a.getValue()[3] = 1.0f;
    EXPECT_TRUE(a.equals(b, 1.0f) && !a.equals(b, std::nextafter(1.0f, 0.0f)));
    // A NaN passes whatever the tolerance; a later real difference still fails.
    b = a;
    b.getValue()[0] = std::numeric_limits<float>::quiet_NaN();
    EXPECT_TRUE(a.equals(b, 0.0f));
    b.getValue()[15] = 2.0f;
    EXPECT_FALSE(a.equals(b, 0.5f));

    std::mt19937 rng(7u);
    zeftest::randomFloats(rng, m.getValue(), 16, 2);
    Matrix4f inv = m;
    bool ok = false;
    EXPECT_TRUE(&inv.inverse(ok) == &inv && ok && (m * inv).equals(Mat4fBase::m_identity, 1e-4f));
    std::memcpy(m.getValue() + 8, m.getValue(), 16); // column 2 = column 0: singular, left as it was
    inv = m;
    inv.inverse(ok);
    EXPECT_TRUE(!ok && sameBits(inv, m));

    EXPECT_TRUE(target.isFront(Vector3f(3, -2, 7), -kZ) && !target.isFront(Vector3f(3, -2, 7), kZ));
    EXPECT_FALSE(zero.isFront(Vector3f(1, 2, 3), -kZ)); // f = 0
    // With the identity, f is the z of a x b, a positive multiple of n in both branches.
    EXPECT_TRUE(target.isFront(Vector3f(), Vector3f(-0.8f, 0, -0.6f)) &&
                !target.isFront(Vector3f(), Vector3f(0.8f, 0, 0.6f)));
}

TEST(MatAff4f, EqualsAffScalarProductsAndBuilders) {
    MatAff4f a, b, v;
    b.getValue()[15] = std::numeric_limits<float>::infinity();
    EXPECT_TRUE(a.equalsAff(b, 0.0f) && !a.equals(b, 0.0f) && !b.testFiniteAndNAN()); // bottom row skipped
    for (int i : {1, 6, 13}) {
        MatAff4f c;
        c.getValue()[i] = 0.25f;
        EXPECT_TRUE(a.equalsAff(c, 0.25f) && c.equalsAff(a, 0.25f)) << i;
        c.getValue()[i] = std::nextafter(0.25f, 1.0f);
        EXPECT_FALSE(a.equalsAff(c, 0.25f) || c.equalsAff(a, 0.25f)) << i;
        c.getValue()[i] = std::numeric_limits<float>::quiet_NaN();
        EXPECT_TRUE(a.equalsAff(c, 0.0f) && !c.testFiniteAndNAN()) << i;
    }
    // A scalar product in place keeps the bottom row; the free one scales it.
    MatAff4f m = MatAff4f::translate(kX);
    MatAff4fBase const scaled = 2.0f * m;
    m *= 2.0f;
    EXPECT_TRUE(sameBits(m, Matrix4f(2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 2, 0, 2, 0, 0, 1)));
    EXPECT_TRUE(sameBits(scaled, Matrix4f(2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 2, 0, 2, 0, 0, 2)));

    v.setNormalized2Viewport(Vector2s(-3, 641));
    EXPECT_TRUE(
        sameBits(v, Matrix4f(-1.5f, 0, 0, 0, 0, 320.5f, 0, 0, 0, 0, 0.5f, 0, -1.5f, 320.5f, 0.5f, 1)));
    Vector3f const s(3.0f, -0.7f, 1.3f), c(0.1f, 2.3f, -5.9f);
    v.setScaleAround(s, c);
    for (int k = 0; k < 3; ++k) // scale of -c rounded, then c added, rounded
        EXPECT_EQ(v.getValue()[12 + k], float(double(float(double(s[k]) * -c[k])) + c[k]));
    MatAff4f singular = MatAff4f::scale(Vector3f(1, 0, 2));
    singular.getValue()[12] = kSentinel;
    MatAff4f const before = singular;
    bool ok = true;
    EXPECT_TRUE(sameBits(singular.inverse(ok), before) && !ok);
    v.setValue(1, 2, 3, kSentinel, 4, 5, 6, 0, 7, 8, 9, 0, 10, 11, 12,
               1); // transpose3 keeps translation, bottom row
    EXPECT_TRUE(
        sameBits(v.transpose3(), Matrix4f(1, 4, 7, kSentinel, 2, 5, 8, 0, 3, 6, 9, 0, 10, 11, 12, 1)));

    // Left of a translation the turn also turns the translation; right of it, it does not.
    MatAff4f left = MatAff4f::translate(kX), right = left;
    left.multLeftByRotate(kZ, kQuarter);
    right.multRightByRotate(kZ, kQuarter);
    EXPECT_TRUE((left * Vector3f()).equalsEps(kY, kRotationTolerance) &&
                (right * kX).equalsEps(kX + kY, kRotationTolerance));
    // Euler angles: X acts first, then Z; every element written, translation 0.
    std::fill(v.getValue(), v.getValue() + 16, kSentinel);
    v.setRotate(kQuarter, 0.0f, kQuarter);
    EXPECT_TRUE((v * kY).equalsEps(kZ, kRotationTolerance) && (v * kX).equalsEps(kY, kRotationTolerance));
    EXPECT_TRUE(v.equals(Matrix4f(v.getValue()[0], v.getValue()[1], v.getValue()[2], 0, v.getValue()[4],
                                  v.getValue()[5], v.getValue()[6], 0, v.getValue()[8], v.getValue()[9],
                                  v.getValue()[10], 0, 0, 0, 0, 1),
                         0.0f));
    v.setRotateAround(kZ, kQuarter, kCentre);
    EXPECT_TRUE(turnsAQuarterAboutCentre(v));
}

TEST(MatAff4f, ProductsAndTMSDecompositionMatchIndependentComputations) {
    std::mt19937 rng(11);
    std::uniform_real_distribution<float> d(-3.0f, 3.0f);
    for (int k = 0; k < 200; ++k) {
        MatAff4f a, b, ab;
        for (int i : {0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14})
            a.getValue()[i] = d(rng), b.getValue()[i] = d(rng);
        for (int i = 0; i < 12;
             ++i) // the affine product summed in double, rounded once; bottom rows not read
            ab.getValue()[i + i / 3] =
                float(double(at(a, i % 3, 0)) * at(b, 0, i / 3) + double(at(a, i % 3, 1)) * at(b, 1, i / 3) +
                      double(at(a, i % 3, 2)) * at(b, 2, i / 3) + (i >= 9 ? double(at(a, i % 3, 3)) : 0.0));
        a.getValue()[7] = kSentinel; // not read, and restored
        MatAff4f left = b, right = a, assigned = a;
        left.multLeftBy(a);
        right.multRightBy(b);
        assigned *= b;
        ASSERT_TRUE(sameBits(left, ab) && sameBits(right, ab) && sameBits(assigned, ab) &&
                    sameBits(a * b, ab))
            << k;
        assigned = b;
        assigned.multLeftBy(assigned);
        ASSERT_TRUE(sameBits(assigned, b * b)) << k;
        // Point product: no divide, whatever the bottom row holds; in place too.
        Vector3f p(1.5f, -2.0f, 0.25f);
        Vector3f const q = a * p;
        a.multRightVec3f(p, p);
        const float *e = a.getValue();
        ASSERT_TRUE(q.equals(p) &&
                    q[1] == float(double(e[1]) * 1.5 + double(e[5]) * -2.0 + double(e[9]) * 0.25 + e[13]));
        // TMS: the scale is the column length, negative with a negative diagonal; axes is this object.
        MatAff4f axes = b;
        axes.getValue()[3] = kSentinel;
        Vector3f t, s;
        axes.getTMSDecomp(t, axes, s);
        for (int i = 0; i < 9; ++i) {
            float const sc = at(b, i / 3, i / 3) < 0.0f ? -columnLength(b, i / 3) : columnLength(b, i / 3);
            ASSERT_TRUE(s[i / 3] == sc && t[i / 3] == at(b, i / 3, 3)) << k;
            ASSERT_EQ(at(axes, i % 3, i / 3), float(double(at(b, i % 3, i / 3)) / sc)) << k;
        }
        ASSERT_TRUE(axes.getValue()[3] == 0.0f && axes.getValue()[12] == 0.0f && axes.getValue()[15] == 1.0f);
    }
    // A zero column: scale +0, NaN in axes.
    Vector3f t, s;
    MatAff4f axes;
    MatAff4f::scale(Vector3f(1, 0, 1)).getTMSDecomp(t, axes, s);
    EXPECT_TRUE(s[1] == 0.0f && !std::signbit(s[1]) && std::isnan(axes.getValue()[5]));
}

TEST(MatRot4f, BuildersProductsAndWhatFailuresLeave) {
    std::mt19937 rng(3);
    Vector3f const t(1, 2, 3);
    MatRot4f f, r;
    for (int k = 0; k < 100; ++k) {
        Vector3f from = randomVector(rng), to = randomVector(rng);
        MatRot4f const m(from, to, t), h(from, -from, t); // opposite: a half turn
        from.normalize();
        to.normalize();
        ASSERT_TRUE((m * from - t).equalsEps(to, kRotationTolerance) &&
                    (h * from - t).equalsEps(-from, kRotationTolerance));
        // From one frame to another: origin onto origin, axis onto axis.
        MatRot4f const f1(randomVector(rng), 1.7f, randomVector(rng)), f2(randomVector(rng), -0.6f, kCentre);
        const float *a = f1.getValue(), *b = f2.getValue();
        f.setFromAxis2Axis(a, a + 4, a + 8, b, b + 4, b + 8, a + 12, b + 12);
        ASSERT_TRUE((f * Vector3f(a + 12)).equalsEps(Vector3f(b + 12), kRotationTolerance)) << k;
        ASSERT_TRUE((f * (Vector3f(a + 12) + Vector3f(a + 4)))
                        .equalsEps(Vector3f(b + 12) + Vector3f(b + 4), kRotationTolerance));
        // Products with the receiver as argument; the inverse leaves the bottom row.
        MatRot4f sq = f1, left = f1, right = f1;
        left.multLeftBy(left);
        right.multRightBy(right);
        ASSERT_TRUE(sameBits(left, f1 * f1) && sameBits(right, f1 * f1) && sameBits(sq *= sq, f1 * f1)) << k;
        sq.getValue()[7] = kSentinel;
        MatRot4f inv = sq;
        ASSERT_TRUE(inv.inverse().getValue()[7] == kSentinel &&
                    (inv * sq).equalsAff(MatAff4f::identity(), kRotationTolerance));
    }
    MatAff4f const pureT = MatAff4f::translate(t);
    EXPECT_TRUE(sameBits(MatRot4f(kCentre, kCentre, t), pureT) &&
                sameBits(MatRot4f(Vector3f(), kY, t), pureT));
    // Nearly parallel: |cross|^2 = 2.5e-9 < 1e-8, no rotation at all.
    EXPECT_TRUE(sameBits(MatRot4f(kX, Vector3f(1, 0.00005f, 0), t), pureT));
    f.setFromTo(kCentre, kCentre, kX, t);
    EXPECT_TRUE(sameBits(f, MatAff4f::translate(t - kX)));
    f.setValue(Quaternion(kCentre, 0.77f), t); // the quaternion form gives the axis form's bits
    EXPECT_TRUE(sameBits(f, MatRot4f(kCentre, 0.77f, t)));
    // Left: T(t) * m moves the image; right: m * T(t) moves the argument. The 3x3 block stays.
    MatRot4f left = f, right = f;
    left.multLeftByTranslate(t);
    right.multRightByTranslate(t);
    EXPECT_TRUE((left * kY).equalsEps(f * kY + t, kRotationTolerance) &&
                (right * kY).equalsEps(f * (kY + t), kRotationTolerance));
    EXPECT_TRUE(std::memcmp(left.getValue(), f.getValue(), 48) == 0 &&
                std::memcmp(right.getValue(), f.getValue(), 48) == 0);
    // The three centred forms keep the centre and turn a point beside it about it.
    r.setRotateAround(kZ, kQuarter, kCentre);
    f.setRotateAround(kX, kY, kCentre);
    EXPECT_TRUE(turnsAQuarterAboutCentre(r) && turnsAQuarterAboutCentre(f));
    r.setRotateAround(0.0f, 0.0f, kQuarter, kCentre);
    EXPECT_TRUE(turnsAQuarterAboutCentre(r));
    // transpose3 swaps the 3x3 block across its diagonal; translation and bottom row stay.
    f = r;
    f.getValue()[7] = kSentinel;
    f.transpose3();
    for (int i = 0; i < 16; ++i)
        EXPECT_EQ(f.getValue()[i], i == 7                  ? kSentinel
                                   : i % 4 == 3 || i >= 12 ? r.getValue()[i]
                                                           : at(r, i / 4, i % 4))
            << i;

    EXPECT_TRUE(f.setFromMatrix4f(r) && sameBits(f, r));
    Matrix4f p(r);
    p.getValue()[11] = 1.0f; // a projective bottom row passes and stays
    EXPECT_TRUE(f.setFromMatrix4f(p) && sameBits(f, p));
    EXPECT_TRUE(f.setFromMatrix4f(Matrix4f(-1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1)) &&
                at(f, 0, 0) == -1.0f);
    MatRot4f const before = r; // failures leave the object alone
    p.getValue()[15] = 0.0f;
    EXPECT_FALSE(r.setFromMatrix4f(p) || r.setFromMatrix4f(1.001f * Matrix4f(MatAff4f::identity())));
    EXPECT_TRUE(sameBits(r, before) && r.setFromMatrix4f(1.00001f * Matrix4f(MatAff4f::identity())));
}

TEST(Decomposition, GetTransformRebuildsRandomAffineMatrices) {
    std::mt19937 rng(1234);
    for (int k = 0; k < 100; ++k) {
        // T(t) * Ra * diag(s) * Rb, with a random non-uniform scale that may mirror.
        Vector3f sc = randomVector(rng, 3.0f), t, s, t0, s0;
        for (int i = 0; i < 3; ++i)
            sc[i] += sc[i] < 0.0f ? -0.5f : 0.5f;
        MatAff4f m = MatAff4f::translate(randomVector(rng, 5.0f));
        m *= MatRot4f(randomVector(rng), 3.0f * sc.y(), Vector3f());
        m *= MatAff4f::scale(sc);
        m *= MatRot4f(randomVector(rng), 3.0f * sc.x(), Vector3f());
        MatRot4f r, q, r0, q0;
        m.getTransform(t, r, s, q, nullptr);
        Vector3f const origin, c(1.5f, -2.0f, 0.75f);
        m.getTransform(t0, r0, s0, q0, &origin); // a centre of (0, 0, 0) gives the same bits as none
        ASSERT_TRUE(t0.equals(t) && s0.equals(s) && sameBits(r0, r) && sameBits(q0, q) &&
                    t.equals(Vector3f(m.getValue() + 12)));
        // About a centre c: the same block, translation M c + t - c.
        m.getTransform(t0, r0, s0, q0, &c);
        ASSERT_TRUE(t0.equalsEps(m * c - c, float(kReconstructionTolerance)) && s0.equals(s) &&
                    sameBits(r0, r) && sameBits(q0, q));
        // The 3x3 block of m is R * Q^T * S * Q, in double.
        for (int i = 0; i < 9; ++i) {
            double sum = 0.0;
            for (int j = 0; j < 9; ++j)
                sum += double(at(r, i / 3, j / 3)) * at(q, j % 3, j / 3) * s[j % 3] * at(q, j % 3, i % 3);
            ASSERT_NEAR(sum, at(m, i / 3, i % 3), kReconstructionTolerance) << k << ": " << i;
        }
    }
    // Nearly singular (det 1e-15): only the translation is written.
    MatAff4f m = MatAff4f::scale(Vector3f(1e-5f, 1e-5f, 1e-5f));
    m.multLeftByTranslate(Vector3f(1, 2, 3));
    MatRot4f r = sentinelRot(), q = sentinelRot();
    Vector3f s(kSentinel, kSentinel, kSentinel), t;
    m.getTransform(t, r, s, q, nullptr);
    EXPECT_TRUE(t.equals(Vector3f(1, 2, 3)) && s.equals(Vector3f(kSentinel, kSentinel, kSentinel)));
    EXPECT_TRUE(sameBits(r, sentinelRot()) && sameBits(q, sentinelRot()));
}

TEST(Decomposition, NormalizeRSAndTRSWriteOnlyWhatTheyMust) {
    MatAff4f m = MatAff4f::translate(Vector3f(7, 8, 9)), out;
    m.multRightBy(MatAff4f::scale(Vector3f(2, 3, 0)));
    m.getValue()[7] = kSentinel;
    out.setValue(5, 5, 5, -1, 5, 5, 5, -2, 5, 5, 5, -3, 5, 5, 5, -4);
    Vector3f lengths, s, t;
    EXPECT_TRUE(m.normalizeMatrix(out, lengths) && lengths.equals(Vector3f(2, 3, 0)));
    EXPECT_TRUE(sameBits(out, Matrix4f(1, 0, 0, -1, 0, 1, 0, -2, 0, 0, 0, -3, 7, 8, 9, -4)));
    MatRot4f r = sentinelRot();
    EXPECT_TRUE(Matrix4f(0).orthoNormalizeMatrix(r) && m.orthoNormalizeMatrix(r) &&
                sameBits(r, sentinelRot()));
    m.normalizeMatrix(m, lengths); // in place: the same result, the bottom row left as it was
    EXPECT_TRUE(sameBits(m, Matrix4f(1, 0, 0, 0, 0, 1, 0, kSentinel, 0, 0, 0, 0, 7, 8, 9, 1)));

    m = MatAff4f::translate(Vector3f(1, 2, 3));
    m.multRightBy(MatAff4f::scale(Vector3f(-2, 3, 4)));
    EXPECT_TRUE(m.getRSDecomp(r, s) && s.equals(Vector3f(2, 3, 4)));
    EXPECT_TRUE(sameBits(r, Matrix4f(-1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 1, 2, 3, 1)));
    EXPECT_TRUE(m.getTRSDecomp(t, r, s) && t.equals(Vector3f(1, 2, 3)) &&
                Vector3f(r.getValue() + 12).equals(Vector3f()));
    // Unit columns (1, 0, 0) and (e, 1, 0) after normalisation: dot e. The
    // float nearest 0.0001 passes, the next one fails; the scale is written in every case.
    for (float d : {1e-4f, std::nextafter(1e-4f, 1.0f), 0.01f}) {
        MatAff4f shear;
        shear.setBase(Vector3f(3, 0, 0), Vector3f(d, 1, 0), Vector3f(0, 0, 2), Vector3f(4, 5, 6));
        bool const pass = d == 1e-4f;
        r = sentinelRot(), t = Vector3f(kSentinel, 0, 0), s = Vector3f();
        EXPECT_EQ(shear.getTRSDecomp(t, r, s), pass) << d;
        EXPECT_TRUE(s.equals(Vector3f(3, float(std::sqrt(double(float(double(d) * d + 1.0)))), 2))) << d;
        EXPECT_TRUE(sameBits(r, sentinelRot()) != pass && t.equals(Vector3f(4, 5, 6)) == pass) << d;
    }
    // Random R * S: unit columns by the rounded reciprocal of the rounded length.
    std::mt19937 rng(77);
    for (int k = 0; k < 100; ++k) {
        MatAff4f a(MatRot4f(randomVector(rng), 3.0f * randomVector(rng).x(), randomVector(rng)));
        a.multRightBy(MatAff4f::scale(randomVector(rng, 4.0f)));
        ASSERT_TRUE(a.getRSDecomp(r, s)) << k;
        for (int i = 0; i < 9; ++i)
            ASSERT_TRUE(s[i / 3] == columnLength(a, i / 3) &&
                        at(r, i % 3, i / 3) ==
                            float(double(at(a, i % 3, i / 3)) * float(1.0 / double(s[i / 3]))))
                << k;
    }
    // A zero column passes and stays zero.
    EXPECT_TRUE(MatAff4f::scale(Vector3f(2, 0, 1)).getRSDecomp(r, s));
    EXPECT_TRUE(Vector3f(r.getValue() + 4).equals(Vector3f()) && s.equals(Vector3f(2, 0, 1)));
    // A scale along an axis keeps the perpendicular plane and the origin.
    for (int k = 0; k < 50; ++k) {
        Vector3f axis = randomVector(rng);
        Vector3f const perp = axis.cross(randomVector(rng));
        m.setScale(axis, 2.5f);
        axis.normalize();
        ASSERT_TRUE((m * axis).equalsEps(axis * 2.5f, 1e-5f) && (m * perp).equalsEps(perp, 1e-5f)) << k;
    }
}

TEST(Matrix4f, KernelSubclassSeesEveryCall) {
    zeftest::ScopedKernel<RecordingKernel> installed;
    Matrix4f m(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16);
    Matrix4f const x(2.0f * Mat4fBase::m_identity);
    g_products = 0;
    Matrix4f const product = m * x;
    EXPECT_TRUE(g_products == 1 && g_a == m.getValue() && g_b == x.getValue());
    m.multLeftBy(x);
    EXPECT_TRUE(g_products == 2 && g_out == m.getValue() && g_a == x.getValue());
    EXPECT_TRUE(g_b != m.getValue() && sameBits(m, product)); // the receiver goes in as a copy

    // isFront: the point, then tangent a, then b. n.x = +-0.5 and NaN take the first
    // branch, a = (0, n.z, -n.y); just above 0.5 the second, a = (n.y, -n.x, 0).
    float const above = std::nextafter(0.5f, 1.0f);
    for (float nx : {0.5f, -0.5f, std::nanf(""), above})
        Matrix4f().isFront(Vector3f(1, 2, 3), Vector3f(nx, 0.25f, 0.75f));
    ASSERT_EQ(g_vec4.size(), 12u);
    EXPECT_TRUE(g_vec4[0].w() == 1.0f && g_vec4[2].x() == float(0.5 * 0.5 - 1.0));
    for (int call = 0; call < 3; ++call)
        EXPECT_TRUE(g_vec4[3 * call + 1].x() == 0.0f && g_vec4[3 * call + 1].y() == 0.75f);
    EXPECT_TRUE(g_vec4[10].x() == 0.25f && g_vec4[10].y() == -above &&
                g_vec4[11].z() == float(0.75 * 0.75 - 1.0));

    // The affine classes and the decomposition go through it too.
    MatAff4f a;
    MatRot4f r(kZ, 0.5f, Vector3f()), rot, so;
    a *= a;
    r.multLeftBy(r);
    MatRot4f const q = r * r;
    Vector3f t, s;
    q.getTransform(t, rot, s, so, nullptr);
    EXPECT_TRUE(g_affineProducts == 3 && g_jacobi == 1);
    // Products with the receiver as argument hand the kernel a copy.
    m.multLeftBy(m), m.multRightBy(m), m *= m, a.multLeftBy(a), a.multRightBy(a), r.multRightBy(r), r *= r;
    EXPECT_EQ(g_aliased, 0);
    // The parallel test of the direction form: |from x to|^2 >= 1e-8 (double) rotates.
    float y = 9.9e-5f;
    while (!(float(double(y) * y) >= 1e-8))
        y = std::nextafter(y, 1.0f);
    g_axisQuaternions = g_translates = 0;
    MatRot4f const rotates(kX, Vector3f(1, y, 0), Vector3f());
    EXPECT_TRUE(g_axisQuaternions == 1 && g_translates == 0);
    MatRot4f const translates(kX, Vector3f(1, std::nextafter(y, 0.0f), 0), Vector3f());
    EXPECT_TRUE(g_axisQuaternions == 1 && g_translates == 1);
}

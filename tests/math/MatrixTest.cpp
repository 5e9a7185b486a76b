// The matrix classes and quaternions: products bit for bit against double-then-round references,
// aliasing, what each operation leaves untouched, builders, decompositions, round trips between the
// rotation forms, and the calls they hand to an installed kernel.
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
// Float error allowed between two routes to the same rotation, per element.
constexpr float kRoundTripTolerance = 4e-6f;
// A quaternion read from a matrix takes w from 1 + trace, a sum of rounded elements, and divides
// by it: near a half turn its error grows as 1 / w^2; below kNearHalfTurn it may be NaN, as designed.
constexpr float kHalfTurnConditioning = 3e-7f, kNearHalfTurn = 1e-3f;
const float kQuarter = float(std::acos(0.0)), kPi = 2.0f * kQuarter, kNaN = std::nanf("");
const Vector3f kX(1, 0, 0), kY(0, 1, 0), kZ(0, 0, 1), kCentre(0.5f, -1.5f, 2.5f);

bool sameBits(const Mat4fBase &a, const Mat4fBase &b) {
    return std::memcmp(a.getValue(), b.getValue(), 64) == 0;
}
::testing::AssertionResult same(const Quaternion &a, const Quaternion &b) {
    return zeftest::sameBits(a.getValue(), b.getValue(), 4);
}
bool near(const Vector3f &a, const Vector3f &b) {
    return a.equalsEps(b, kRotationTolerance);
}
float at(const Mat4fBase &m, int r, int c) {
    return m.getValue()[4 * c + r];
}
Vector3f rnd(std::mt19937 &rng, float scale = 2.0f) {
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
Quaternion make(const float *v) {
    Quaternion q;
    std::memcpy(static_cast<void *>(&q), v, sizeof q);
    return q;
}
// a * b (sign 1) or a * conjugate(b) (sign -1), rounded once per element.
Quaternion hamilton(const Quaternion &a, const Quaternion &b, double sign) {
    float out[4];
    zeftest::referenceQuaternionProduct(out, a.getValue(), b.getValue(), sign);
    return make(out);
}
MatRot4f matrixOf(const Quaternion &q, const Vector3f &t) {
    MatRot4f m;
    m.setValue(q, t);
    return m;
}
// Column c of m's 3x3 block has length len: float(sqrt(float(sum of squares in double))).
float columnLength(const Mat4fBase &m, int c) {
    const float *v = m.getValue() + 4 * c;
    return float(std::sqrt(double(float(double(v[0]) * v[0] + double(v[1]) * v[1] + double(v[2]) * v[2]))));
}
// A point beside the centre turns a quarter about Z: X onto Y.
bool turnsAQuarterAboutCentre(const MatAff4fBase &m) {
    return near(m * kCentre, kCentre) && near(m * (kCentre + kX), kCentre + kY);
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

} // namespace

// The free products keep the most derived common type.
static_assert(std::is_same<decltype(MatRot4f() * MatAff4f()), MatAff4fBase>::value, "mixed product");
static_assert(std::is_same<decltype(2.0f * MatAff4f()), MatAff4fBase>::value, "affine scalar product");
static_assert(std::is_same<decltype(Matrix4f() * MatAff4f()), Matrix4f>::value, "general product");

// Products in their order, the receiver as argument, element-wise operations, vectors in place.
TEST(Matrix4f, ProductsElementWiseAndVectorsBitForBit) {
    std::mt19937 rng(1234u);
    for (int trial = 0; trial < 50; ++trial) {
        Matrix4f x, m;
        zeftest::randomFloats(rng, x.getValue(), 16, 2);
        zeftest::randomFloats(rng, m.getValue(), 16, 2);
        const Matrix4f mx = reference(m, x), mm = reference(m, m), sum = m + x, diff = m - x, mul = 0.3f * m;
        Matrix4f left = m, right = m, star = m, self = m, self2 = m, neg = m, mag = m, tr = m, out(0),
                 selfT = m;
        left.multLeftBy(x), right.multRightBy(x), self.multLeftBy(self), self2 *= self2;
        m.getTranspose(out), selfT.getTranspose(selfT);
        ASSERT_TRUE(&(star *= x) == &star && sameBits(star, mx) && sameBits(m * x, mx) &&
                    sameBits(right, mx));
        ASSERT_TRUE(sameBits(left, reference(x, m)) && sameBits(self, mm) && sameBits(self2, mm));
        ASSERT_TRUE(&neg.negate() == &neg && &mag.abs() == &mag && &tr.transpose() == &tr);
        for (int i = 0; i < 16; ++i) {
            const float e = m.getValue()[i], f = x.getValue()[i], t = at(m, i / 4, i % 4);
            ASSERT_TRUE(sum.getValue()[i] == float(double(e) + f) &&
                        diff.getValue()[i] == float(double(e) - f));
            ASSERT_TRUE(mul.getValue()[i] == float(double(e) * 0.3f) && neg.getValue()[i] == -e);
            ASSERT_TRUE(mag.getValue()[i] == std::fabs(e) && tr.getValue()[i] == t &&
                        out.getValue()[i] == t && selfT.getValue()[i] == t);
        }
        const Vector3f p = rnd(rng);
        const Vector4f q(p.x(), p.y(), p.z(), 0.75f);
        Vector3f sep, same = p;
        Vector4f sep4, same4 = q;
        m.multRightVec3f(sep, p), m.multRightVec3f(same, same), m.multRightVec4f(sep4, q);
        m.multRightVec4f(same4, same4);
        ASSERT_TRUE(same.equals(sep) && (m * p).equals(sep) &&
                    zeftest::sameBits(same4.getValue(), sep4.getValue(), 4));
    }
}

TEST(Matrix4f, CopiesEqualsOnTheBoundInverseAndIsFront) {
    // Copies keep the bits of a negative zero and a NaN payload.
    Matrix4f m(7), target(0), zero(0), a, b;
    EXPECT_TRUE(sameBits(m, Mat4fBase::m_identity) && Mat4fBase::m_identity.getValue()[10] == 1.0f);
    for (int i = 0; i < 16; ++i)
        m.getValue()[i] = i == 6 ? -0.0f : i == 9 ? zeftest::floatOf(0x7FC01234u) : float(i) + 0.25f;
    float c[16], e[16];
    m.getCopy(c);
    m.getValue(e[0], e[1], e[2], e[3], e[4], e[5], e[6], e[7], e[8], e[9], e[10], e[11], e[12], e[13], e[14],
               e[15]);
    target.setValue(m);
    EXPECT_TRUE(zeftest::sameBits(c, m.getValue(), 16) && zeftest::sameBits(e, m.getValue(), 16) &&
                sameBits(target, m) && sameBits(Matrix4f(c), m));
    target.setZero();
    EXPECT_TRUE(zero.getValue()[0] == 0.0f && sameBits(target, zero));
    target.setIdentity();
    EXPECT_TRUE(sameBits(target, Mat4fBase::m_identity));
    // On the bound passes, the next float fails; 1 - (-2^-30) is rounded to 1 before the test;
    // a NaN passes whatever the tolerance, and a later real difference still fails.
    b.getValue()[9] = 0.25f;
    EXPECT_TRUE(a.equals(b, 0.25f));
    b.getValue()[9] = std::nextafter(0.25f, 1.0f);
    EXPECT_FALSE(a.equals(b, 0.25f) || b.equals(a, 0.25f));
    b = a;
    b.getValue()[3] = -std::ldexp(1.0f, -30), a.getValue()[3] = 1.0f;
    EXPECT_TRUE(a.equals(b, 1.0f) && !a.equals(b, std::nextafter(1.0f, 0.0f)));
    b = a;
    b.getValue()[0] = kNaN;
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
    // With the identity, f is the z of a x b, a positive multiple of n in both branches; zero: f = 0.
    EXPECT_TRUE(target.isFront(Vector3f(3, -2, 7), -kZ) && !target.isFront(Vector3f(3, -2, 7), kZ) &&
                !zero.isFront(Vector3f(1, 2, 3), -kZ));
    EXPECT_TRUE(target.isFront(Vector3f(), Vector3f(-0.8f, 0, -0.6f)) &&
                !target.isFront(Vector3f(), Vector3f(0.8f, 0, 0.6f)));
}

TEST(MatAff4f, EqualsAffScalarProductsAndBuilders) {
    MatAff4f a, b, v;
    b.getValue()[15] = std::numeric_limits<float>::infinity();
    EXPECT_TRUE(a.equalsAff(b, 0.0f) && !a.equals(b, 0.0f) && !b.testFiniteAndNAN()); // bottom row skipped
    for (int i : {1, 6, 13}) {
        MatAff4f c, d, n;
        c.getValue()[i] = 0.25f, d.getValue()[i] = std::nextafter(0.25f, 1.0f), n.getValue()[i] = kNaN;
        EXPECT_TRUE(a.equalsAff(c, 0.25f) && c.equalsAff(a, 0.25f) && a.equalsAff(n, 0.0f)) << i;
        EXPECT_FALSE(a.equalsAff(d, 0.25f) || d.equalsAff(a, 0.25f) || n.testFiniteAndNAN()) << i;
    }
    // A scalar product in place keeps the bottom row; the free one scales it.
    MatAff4f m = MatAff4f::translate(kX);
    MatAff4fBase const scaled = 2.0f * m;
    m *= 2.0f;
    EXPECT_TRUE(sameBits(m, Matrix4f(2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 2, 0, 2, 0, 0, 1)) &&
                sameBits(scaled, Matrix4f(2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 2, 0, 2, 0, 0, 2)));
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
    v.setValue(1, 2, 3, kSentinel, 4, 5, 6, 0, 7, 8, 9, 0, 10, 11, 12, 1); // translation, bottom row stay
    EXPECT_TRUE(
        sameBits(v.transpose3(), Matrix4f(1, 4, 7, kSentinel, 2, 5, 8, 0, 3, 6, 9, 0, 10, 11, 12, 1)));
    // Left of a translation the turn also turns the translation; right of it, it does not.
    MatAff4f left = MatAff4f::translate(kX), right = left;
    left.multLeftByRotate(kZ, kQuarter);
    right.multRightByRotate(kZ, kQuarter);
    EXPECT_TRUE(near(left * Vector3f(), kY) && near(right * kX, kX + kY));
    // Euler angles: X acts first, then Z; every element written, translation 0.
    std::fill(v.getValue(), v.getValue() + 16, kSentinel);
    v.setRotate(kQuarter, 0.0f, kQuarter);
    EXPECT_TRUE(near(v * kY, kZ) && near(v * kX, kY));
    for (int i : {3, 7, 11, 12, 13, 14, 15})
        EXPECT_EQ(v.getValue()[i], i == 15 ? 1.0f : 0.0f) << i;
    v.setRotateAround(kZ, kQuarter, kCentre);
    EXPECT_TRUE(turnsAQuarterAboutCentre(v));
    // A scale along an axis keeps the perpendicular plane and the origin.
    m.setScale(kCentre, 2.5f);
    EXPECT_TRUE(near(m * kCentre, kCentre * 2.5f) && near(m * kCentre.cross(kY), kCentre.cross(kY)));
}

TEST(MatAff4f, ProductsAndTMSDecompositionMatchIndependentComputations) {
    std::mt19937 rng(11);
    std::uniform_real_distribution<float> d(-3.0f, 3.0f);
    for (int k = 0; k < 200; ++k) {
        MatAff4f a, b, ab;
        for (int i : {0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14})
            a.getValue()[i] = d(rng), b.getValue()[i] = d(rng);
        for (int i = 0; i < 12; ++i) // summed in double, rounded once; bottom rows not read
            ab.getValue()[i + i / 3] =
                float(double(at(a, i % 3, 0)) * at(b, 0, i / 3) + double(at(a, i % 3, 1)) * at(b, 1, i / 3) +
                      double(at(a, i % 3, 2)) * at(b, 2, i / 3) + (i >= 9 ? double(at(a, i % 3, 3)) : 0.0));
        a.getValue()[7] = kSentinel; // not read, and restored
        MatAff4f left = b, right = a, assigned = a, self = b;
        left.multLeftBy(a), right.multRightBy(b), assigned *= b, self.multLeftBy(self);
        ASSERT_TRUE(sameBits(left, ab) && sameBits(right, ab) && sameBits(assigned, ab) &&
                    sameBits(a * b, ab) && sameBits(self, b * b))
            << k;
        // Point product: no divide, whatever the bottom row holds; in place too.
        Vector3f p(1.5f, -2.0f, 0.25f), t, s;
        Vector3f const q = a * p;
        a.multRightVec3f(p, p);
        const float *e = a.getValue();
        ASSERT_TRUE(q.equals(p) &&
                    q[1] == float(double(e[1]) * 1.5 + double(e[5]) * -2.0 + double(e[9]) * 0.25 + e[13]));
        // TMS: the scale is the column length, negative with a negative diagonal; axes is this object.
        MatAff4f axes = b;
        axes.getValue()[3] = kSentinel;
        axes.getTMSDecomp(t, axes, s);
        for (int i = 0; i < 9; ++i) {
            float const sc = at(b, i / 3, i / 3) < 0.0f ? -columnLength(b, i / 3) : columnLength(b, i / 3);
            ASSERT_TRUE(s[i / 3] == sc && t[i / 3] == at(b, i / 3, 3) &&
                        at(axes, i % 3, i / 3) == float(double(at(b, i % 3, i / 3)) / sc))
                << k;
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
    Vector3f const t(1, 2, 3), from = kCentre / kCentre.norm();
    MatRot4f const f1(kY, 1.7f, kX), f2(kCentre, -0.6f, t), half(kCentre, -kCentre, t); // opposite: half turn
    MatRot4f f, r, left = f1, right = f1, self = f1;
    EXPECT_TRUE(near(half * from - t, -from));
    // Products in their order, the receiver as argument; the inverse leaves the bottom row.
    left.multLeftBy(f2), right.multRightBy(f2), self *= self;
    EXPECT_TRUE(sameBits(left, MatAff4f(f2) * f1) && sameBits(right, MatAff4f(f1) * f2) &&
                sameBits(f1 * f2, right));
    EXPECT_TRUE(sameBits(self, MatAff4f(f1) * f1));
    self.getValue()[7] = kSentinel;
    MatRot4f inv = self;
    EXPECT_TRUE(inv.inverse().getValue()[7] == kSentinel &&
                (inv * self).equalsAff(MatAff4f(), kRotationTolerance));
    // From one frame to another: origin onto origin, axis onto axis.
    const float *a = f1.getValue(), *b = f2.getValue();
    f.setFromAxis2Axis(a, a + 4, a + 8, b, b + 4, b + 8, a + 12, b + 12);
    EXPECT_TRUE(near(f * Vector3f(a + 12), Vector3f(b + 12)) &&
                near(f * (Vector3f(a + 12) + Vector3f(a + 4)), Vector3f(b + 12) + Vector3f(b + 4)));
    MatAff4f const pureT = MatAff4f::translate(t);
    EXPECT_TRUE(sameBits(MatRot4f(kCentre, kCentre, t), pureT) &&
                sameBits(MatRot4f(Vector3f(), kY, t), pureT));
    f.setFromTo(kCentre, kCentre, kX, t);
    EXPECT_TRUE(sameBits(f, MatAff4f::translate(t - kX)));
    // Left: T(t) * m moves the image; right: m * T(t) moves the argument. The 3x3 block stays.
    left = f2, right = f2;
    left.multLeftByTranslate(t);
    right.multRightByTranslate(t);
    EXPECT_TRUE(near(left * kY, f2 * kY + t) && near(right * kY, f2 * (kY + t)));
    EXPECT_TRUE(std::memcmp(left.getValue(), f2.getValue(), 48) == 0 &&
                std::memcmp(right.getValue(), f2.getValue(), 48) == 0);
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
                                                           : at(r, i / 4, i % 4));
    // A projective bottom row and a mirror pass and stay; failures leave the object alone.
    Matrix4f p(r);
    p.getValue()[11] = 1.0f;
    EXPECT_TRUE(f.setFromMatrix4f(r) && sameBits(f, r) && f.setFromMatrix4f(p) && sameBits(f, p));
    EXPECT_TRUE(f.setFromMatrix4f(Matrix4f(-1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1)) &&
                at(f, 0, 0) == -1.0f);
    MatRot4f const before = r;
    p.getValue()[15] = 0.0f;
    EXPECT_FALSE(r.setFromMatrix4f(p) || r.setFromMatrix4f(1.001f * Matrix4f(MatAff4f::identity())));
    EXPECT_TRUE(sameBits(r, before) && r.setFromMatrix4f(1.00001f * Matrix4f(MatAff4f::identity())));
}

TEST(Decomposition, GetTransformRebuildsRandomAffineMatrices) {
    std::mt19937 rng(1234);
    for (int k = 0; k < 100; ++k) {
        // T(t) * Ra * diag(s) * Rb, with a random non-uniform scale that may mirror.
        Vector3f sc = rnd(rng, 3.0f), t, s, t0, s0;
        for (int i = 0; i < 3; ++i)
            sc[i] += sc[i] < 0.0f ? -0.5f : 0.5f;
        MatAff4f m = MatAff4f::translate(rnd(rng, 5.0f));
        m *= MatRot4f(rnd(rng), 3.0f * sc.y(), Vector3f());
        m *= MatAff4f::scale(sc);
        m *= MatRot4f(rnd(rng), 3.0f * sc.x(), Vector3f());
        MatRot4f r, q, r0, q0;
        Vector3f const origin, c(1.5f, -2.0f, 0.75f);
        m.getTransform(t, r, s, q, nullptr);
        m.getTransform(t0, r0, s0, q0, &origin); // a centre of (0, 0, 0) gives the same bits as none
        ASSERT_TRUE(t0.equals(t) && s0.equals(s) && sameBits(r0, r) && sameBits(q0, q) &&
                    t.equals(Vector3f(m.getValue() + 12)));
        // About a centre c: the same block, translation M c + t - c.
        m.getTransform(t0, r0, s0, q0, &c);
        ASSERT_TRUE(t0.equalsEps(m * c - c, float(kReconstructionTolerance)) && s0.equals(s) &&
                    sameBits(r0, r) && sameBits(q0, q));
        for (int i = 0; i < 9; ++i) { // the 3x3 block of m is R * Q^T * S * Q, in double
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
    EXPECT_TRUE(t.equals(Vector3f(1, 2, 3)) && s.equals(Vector3f(kSentinel, kSentinel, kSentinel)) &&
                sameBits(r, sentinelRot()) && sameBits(q, sentinelRot()));
}

TEST(Decomposition, NormalizeRSAndTRSWriteOnlyWhatTheyMust) {
    MatAff4f m = MatAff4f::translate(Vector3f(7, 8, 9)), out;
    m.multRightBy(MatAff4f::scale(Vector3f(2, 3, 0)));
    m.getValue()[7] = kSentinel;
    out.setValue(5, 5, 5, -1, 5, 5, 5, -2, 5, 5, 5, -3, 5, 5, 5, -4);
    Vector3f lengths, s, t;
    MatRot4f r = sentinelRot();
    EXPECT_TRUE(m.normalizeMatrix(out, lengths) && lengths.equals(Vector3f(2, 3, 0)) &&
                sameBits(out, Matrix4f(1, 0, 0, -1, 0, 1, 0, -2, 0, 0, 0, -3, 7, 8, 9, -4)));
    EXPECT_TRUE(Matrix4f(0).orthoNormalizeMatrix(r) && m.orthoNormalizeMatrix(r) &&
                sameBits(r, sentinelRot()));
    m.normalizeMatrix(m, lengths); // in place: the same result, the bottom row left as it was
    EXPECT_TRUE(sameBits(m, Matrix4f(1, 0, 0, 0, 0, 1, 0, kSentinel, 0, 0, 0, 0, 7, 8, 9, 1)));
    m = MatAff4f::translate(Vector3f(1, 2, 3));
    m.multRightBy(MatAff4f::scale(Vector3f(-2, 3, 4)));
    EXPECT_TRUE(m.getRSDecomp(r, s) && s.equals(Vector3f(2, 3, 4)) &&
                sameBits(r, Matrix4f(-1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 1, 2, 3, 1)));
    EXPECT_TRUE(m.getTRSDecomp(t, r, s) && t.equals(Vector3f(1, 2, 3)) &&
                Vector3f(r.getValue() + 12).equals(Vector3f()));
    // Unit columns (1, 0, 0) and (e, 1, 0) after normalisation: dot e. The float nearest
    // 0.0001 passes, the next one fails; the scale is written in every case.
    for (float d : {1e-4f, std::nextafter(1e-4f, 1.0f), 0.01f}) {
        MatAff4f shear;
        shear.setBase(Vector3f(3, 0, 0), Vector3f(d, 1, 0), Vector3f(0, 0, 2), Vector3f(4, 5, 6));
        bool const pass = d == 1e-4f;
        r = sentinelRot(), t = Vector3f(kSentinel, 0, 0), s = Vector3f();
        EXPECT_EQ(shear.getTRSDecomp(t, r, s), pass) << d;
        EXPECT_TRUE(s.equals(Vector3f(3, float(std::sqrt(double(float(double(d) * d + 1.0)))), 2)) &&
                    sameBits(r, sentinelRot()) != pass && t.equals(Vector3f(4, 5, 6)) == pass)
            << d;
    }
    // Random R * S: unit columns by the rounded reciprocal of the rounded length.
    std::mt19937 rng(77);
    for (int k = 0; k < 100; ++k) {
        MatAff4f a(MatRot4f(rnd(rng), 3.0f * rnd(rng).x(), rnd(rng)));
        a.multRightBy(MatAff4f::scale(rnd(rng, 4.0f)));
        ASSERT_TRUE(a.getRSDecomp(r, s)) << k;
        for (int i = 0; i < 9; ++i)
            ASSERT_TRUE(s[i / 3] == columnLength(a, i / 3) &&
                        at(r, i % 3, i / 3) ==
                            float(double(at(a, i % 3, i / 3)) * float(1.0 / double(s[i / 3]))))
                << k;
    }
    // A zero column passes and stays zero.
    EXPECT_TRUE(MatAff4f::scale(Vector3f(2, 0, 1)).getRSDecomp(r, s) &&
                Vector3f(r.getValue() + 4).equals(Vector3f()) && s.equals(Vector3f(2, 0, 1)));
}

TEST(Quaternion, ArithmeticBitForBitAndDegenerateCases) {
    std::mt19937 rng(2024u);
    for (int trial = 0; trial < 200; ++trial) {
        float x[4], y[4];
        zeftest::randomFloats(rng, x, 4, 1);
        zeftest::randomFloats(rng, y, 4, 1);
        Quaternion const a = make(x), b = make(y);
        Quaternion l = a, r = a, star = a, dv = a, slash = a, sq = a, u = a;
        l.multLeftBy(b), r.multRightBy(b), dv.div(b), sq.multRightBy(sq);
        ASSERT_TRUE(&(star *= b) == &star && &(slash /= b) == &slash && same(l, hamilton(b, a, 1)));
        ASSERT_TRUE(same(a * b, hamilton(a, b, 1)) && same(r, a * b) && same(star, a * b));
        ASSERT_TRUE(same(a / b, hamilton(a, b, -1)) && same(dv, a / b) && same(slash, a / b));
        // The dot rounds every partial sum; the sum of squares is rounded before the root.
        float dot = 0.0f, n2 = float(double(x[0]) * x[0] + double(x[1]) * x[1] + double(x[2]) * x[2] +
                                     double(x[3]) * x[3]);
        float const n = float(std::sqrt(double(n2)));
        ASSERT_TRUE(same(sq, hamilton(a, a, 1)) && a.norm() == n && u.normalize() == n);
        for (int k = 0; k < 4; ++k) {
            ASSERT_TRUE((a + b).getValue()[k] == float(double(x[k]) + y[k]) &&
                        (a - b).getValue()[k] == float(double(x[k]) - y[k]) &&
                        u.getValue()[k] == float(double(x[k]) / n));
            dot = float(double(dot) + double(x[k]) * y[k]);
        }
        ASSERT_EQ(a.dot(b), dot);
    }
    Quaternion const id, q(0.3f, -1.1f, 2.5f);
    Quaternion two = id + id, zero = id - id, p;
    EXPECT_TRUE(same(id * q, q) && same(q * id, q) && two.normalize() == 2.0f && same(two, id));
    EXPECT_TRUE(zero.normalize() == 0.0f && std::isnan(zero.getValue()[0]) && std::isnan(zero.getValue()[3]));
    // Parallel, opposite, zero and too short axes all give exactly the identity.
    Vector3f const v(0.2f, -3.0f, 1.5f);
    p.setValue(v, v);
    for (const Quaternion &one : {p, Quaternion(v, v * -1.0f), Quaternion(Vector3f(), 1.3f),
                                  Quaternion(Vector3f(0, 0, 0.00001f), 2.0f)})
        EXPECT_TRUE(same(one, id));
}

// Every eighth trial lies next to a pole (|y| = 0.48 pi); every eighth other one is a half turn.
TEST(RotationRoundTrip, FourFormsAgreeOnRandomRotations) {
    std::mt19937 rng(99u);
    std::uniform_real_distribution<float> angle(-kPi, kPi), coord(-2.0f, 2.0f);
    for (int trial = 0; trial < 200; ++trial) {
        float const x = angle(rng), z = angle(rng),
                    y = 0.48f * (trial % 8 == 0 ? (trial % 16 ? kPi : -kPi) : angle(rng));
        float const a = trial % 8 == 1 ? kPi : 2.0f * angle(rng);
        Vector3f const t(coord(rng), coord(rng), coord(rng)), axis(coord(rng), coord(rng), coord(rng));
        MatRot4f const euler(x, y, z, t), byAxis(axis, a, t);
        Quaternion const qe(x, y, z), qa(axis, a);
        float e[3], m[3];
        qe.getValue(e[0], e[1], e[2]);
        MatRot4f read(euler);
        trial % 2 ? read.getEuler(m) : read.getEuler(m[0], m[1], m[2]);
        SCOPED_TRACE(trial);
        ASSERT_TRUE(MatRot4f(e[0], e[1], e[2], t).equalsAff(euler, kRoundTripTolerance) &&
                    MatRot4f(m[0], m[1], m[2], t).equalsAff(euler, kRoundTripTolerance));
        ASSERT_TRUE(matrixOf(qe, t).equalsAff(euler, kRoundTripTolerance));
        ASSERT_TRUE(matrixOf(qa, t).equalsAff(byAxis, 0.0f)); // the same kernel route: the same bits
        for (const MatRot4f *r : {&euler, &byAxis}) {
            float const w = (r == &euler ? qe : qa).getValue()[0];
            float const tolerance = kRoundTripTolerance + kHalfTurnConditioning / (w * w);
            ASSERT_TRUE(std::fabs(w) < kNearHalfTurn || matrixOf(Quaternion(*r), t).equalsAff(*r, tolerance));
        }
    }
    // From one direction to another: the same rotation both ways, except for
    // opposite directions, where only the matrix makes a half turn.
    Vector3f const from(0.3f, -1.0f, 2.0f), to(1.5f, 0.25f, -0.5f), t(1, 2, 3);
    MatRot4f r(from, to, t);
    EXPECT_TRUE(r.equalsAff(matrixOf(Quaternion(from, to), t), 0.0f) &&
                same(Quaternion(from, from * -2.0f), Quaternion()));
    EXPECT_TRUE((MatRot4f(from, from * -2.0f, t) * from - t + from).norm() <= kRoundTripTolerance);
    Quaternion(from, to).getValue(r); // the translation becomes 0
    EXPECT_TRUE(Vector3f(r.getValue() + 12).equals(Vector3f()));
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
    for (float nx : {0.5f, -0.5f, kNaN, above})
        Matrix4f().isFront(Vector3f(1, 2, 3), Vector3f(nx, 0.25f, 0.75f));
    ASSERT_EQ(g_vec4.size(), 12u);
    EXPECT_TRUE(g_vec4[0].w() == 1.0f && g_vec4[2].x() == float(0.5 * 0.5 - 1.0));
    for (int call = 0; call < 3; ++call)
        EXPECT_TRUE(g_vec4[3 * call + 1].x() == 0.0f && g_vec4[3 * call + 1].y() == 0.75f);
    EXPECT_TRUE(g_vec4[10].x() == 0.25f && g_vec4[10].y() == -above &&
                g_vec4[11].z() == float(0.75 * 0.75 - 1.0));
    // The affine classes and the decomposition go through it too; products with the receiver
    // as argument hand the kernel a copy.
    MatAff4f a;
    MatRot4f r(kZ, 0.5f, Vector3f()), rot, so;
    a *= a;
    r.multLeftBy(r);
    Vector3f t, s;
    (r * r).getTransform(t, rot, s, so, nullptr);
    EXPECT_TRUE(g_affineProducts == 3 && g_jacobi == 1);
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

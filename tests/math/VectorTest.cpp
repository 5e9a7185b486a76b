// The scalar helpers, the tolerant tests, the float wrappers and the vectors: float results bit for
// bit against double-then-round references in their order of terms, bounds at the value and the next
// float, zero divisors, and integer wrapping and truncation against a 64-bit model.
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstdint>
#include <initializer_list>
#include <limits>
#include <random>
#include <type_traits>

#include "support/TestSupport.h"
#include "zefcore/math/FloatMath.h"
#include "zefcore/math/ScalarHelpers.h"
#include "zefcore/math/Tolerance.h"
#include "zefcore/math/Vector2f.h"
#include "zefcore/math/Vector2i.h"
#include "zefcore/math/Vector2s.h"
#include "zefcore/math/Vector2ui.h"
#include "zefcore/math/Vector3f.h"
#include "zefcore/math/Vector4f.h"

using zeftest::sameBits;

namespace {

const float kInf = std::numeric_limits<float>::infinity();
const float kNaN = std::numeric_limits<float>::quiet_NaN();
const double kFloatHalfPi = 1.5707963705062866, kFloatPi = 3.1415927410125732,
             kFloatTwoPi = 6.2831854820251465;
constexpr int kNoK = INT_MIN; // in a normalize case: normalize() without argument

::testing::AssertionResult sameBits(const Vector3f &v, float x, float y, float z) {
    return zeftest::sameBits(v.getValue(), {x, y, z});
}
::testing::AssertionResult sameBits(const Vector4f &v, float x, float y, float z, float w) {
    return zeftest::sameBits(v.getValue(), {x, y, z, w});
}
// Success if element k of v has the bits of f(k), computed in double, rounded to float.
template <class V, class F>
::testing::AssertionResult each(const V &v, F f) {
    constexpr int kSize = int(sizeof(V) / sizeof(float));
    float want[kSize];
    for (int k = 0; k < kSize; ++k)
        want[k] = float(f(k));
    return zeftest::sameBits(v.getValue(), want, kSize);
}

template <class V>
struct NormalizeCase {
    V in;
    int k;
    float result;
    V out;
};

// v.normalize() or v.normalize(k) returns the result (NaN matches NaN) and leaves out.
template <class V>
void checkNormalize(std::initializer_list<NormalizeCase<V>> cases) {
    for (const NormalizeCase<V> &c : cases) {
        V v = c.in;
        const float got = c.k == kNoK ? v.normalize() : v.normalize(c.k);
        EXPECT_TRUE((got == c.result || (std::isnan(got) && std::isnan(c.result))) && v == c.out)
            << c.in.x() << " k " << c.k << ": " << got << ", " << v.x() << ", " << v.y();
    }
}

// Random + - * / and dot on V against a 64-bit model wrapped to E after each step; dot and norm2
// are wrapped to 32 bits and read as int. A zero divisor (about one step in 64) leaves v.
template <class V, class E, bool kDivides>
void checkAgainstModel(unsigned seed) {
    using W = std::conditional_t<std::is_signed<E>::value, std::int64_t, std::uint64_t>;
    auto dot32 = [](E x, E y, E a, E b) {
        return int(std::uint32_t(std::uint64_t(W(y) * W(b)) + std::uint64_t(W(x) * W(a))));
    };
    std::mt19937 rng(seed);
    E mx = 0, my = 0;
    V v;
    for (int i = 0; i < 20000; ++i) {
        const E a = E(rng()), b = E((rng() >> (rng() % 32)) * (rng() % 2 ? 1u : 0u - 1u));
        switch (rng() % 5) {
        case 0:
            v = i % 2 ? v + V(a, b) : (v += V(a, b)), mx = E(W(mx) + W(a)), my = E(W(my) + W(b));
            break;
        case 1:
            v = i % 2 ? v - V(a, b) : (v -= V(a, b)), mx = E(W(mx) - W(a)), my = E(W(my) - W(b));
            break;
        case 2:
            v = i % 2 ? v * b : (v *= b), mx = E(W(mx) * W(b)), my = E(W(my) * W(b));
            break;
        case 3:
            if constexpr (kDivides) {
                v /= b, mx = b ? E(W(mx) / W(b)) : mx, my = b ? E(W(my) / W(b)) : my;
                break;
            }
            // fall through
        default:
            ASSERT_TRUE(v.dot(V(a, b)) == dot32(mx, my, a, b) && v.norm2() == dot32(mx, my, mx, my)) << i;
            v.setValue(a, b), mx = a, my = b;
        }
        ASSERT_FALSE(v != V(mx, my)) << "step " << i;
    }
}

} // namespace

// Differences are rounded to float before the inclusive test; NaN is never within a bound.
TEST(Tolerance, BoundsAreInclusiveAndDifferencesRoundedToFloat) {
    const float bound = 0.0001f, above = std::nextafter(bound, 1.0f), kDefault = kNaN;
    ASSERT_TRUE(double(bound) < ZEF_DEFAULT_TOLERANCE && double(above) > ZEF_DEFAULT_TOLERANCE);
    const float xs[] = {bound, above, kNaN, 0.5f, std::nextafter(0.5f, 1.0f), kNaN, -0.0f, 1e-45f};
    const float eps[] = {kDefault, kDefault, kDefault, 0.5f, 0.5f, 1.0f, 0.0f, 0.0f};
    for (int i = 0; i < 8; ++i) {
        const bool def = std::isnan(eps[i]), zero = i == 0 || i == 3 || i == 6;
        const float x = xs[i];
        const Vector3f v(0.0f, x, -x); // both signs
        EXPECT_EQ(def ? isZero(x) : isZero(x, eps[i]), zero) << i;
        EXPECT_EQ(def ? areEqual(x, 0.0f) : areEqual(0.0f, x, eps[i]), zero) << i;
        EXPECT_EQ(def ? isZero(v) : isZero(v, eps[i]), zero) << i;
        EXPECT_TRUE(!def || areEqual(v, Vector3f()) == zero) << i;
    }
    // 1.0001f - 1.0f is 0.00010001659: above the bound.
    EXPECT_FALSE(areEqual(1.0f, 1.0001f) || areEqual(kNaN, 0.0f) || areEqual(kNaN, kNaN, 1.0f));
    // The exact difference bound + 3e-12 lies above the bound but rounds to bound.
    const float tiny = -3.0e-12f;
    ASSERT_GT(double(bound) - tiny, ZEF_DEFAULT_TOLERANCE);
    EXPECT_TRUE(areEqual(bound, tiny) && areEqual(tiny, bound));
    EXPECT_TRUE(isZero(Vector3f(0.00009f, 0.00009f, 0.00009f))); // a box, not a sphere
}

TEST(ScalarHelpers, FiniteTestAbsDoubleAndPointerSwap) {
    EXPECT_TRUE(testFiniteAndNAN(std::numeric_limits<float>::max()) && testFiniteAndNAN(-0.0f));
    EXPECT_FALSE(testFiniteAndNAN(kInf) || testFiniteAndNAN(-kInf) || testFiniteAndNAN(kNaN));
    EXPECT_TRUE(testFiniteAndNAN(std::numeric_limits<double>::max()));
    EXPECT_FALSE(testFiniteAndNAN(double(kInf)) || testFiniteAndNAN(-std::nan("")));
    // A plain comparison: negative zero and a negative NaN keep their sign.
    const double negNaN = -std::numeric_limits<double>::quiet_NaN();
    EXPECT_TRUE(absDouble(-2.5) == 2.5 && absDouble(2.5) == 2.5 && std::signbit(absDouble(-0.0)));
    EXPECT_TRUE(std::isnan(absDouble(negNaN)) && std::signbit(absDouble(negNaN)));
    double x = 1.0, y = 2.0, *a = &x, *b = &y;
    swapPDouble(a, b);
    EXPECT_TRUE(a == &y && b == &x && x == 1.0 && y == 2.0);
}

// Each wrapper takes floats, computes in double and rounds once.
TEST(FloatMath, WrappersRoundTheDoubleResultOnce) {
    static_assert(std::is_same<decltype(sqrt(1.0f)), float>::value, "float overload");
    static_assert(std::is_same<decltype(sqrt(1.0)), double>::value, "double left alone");
    EXPECT_EQ(atan2(1.0f, 0.0f), float(1.5707963267948966)); // y first
    EXPECT_FALSE(std::signbit(fabs(-0.0f)));
    std::mt19937 rng(5);
    std::uniform_real_distribution<float> unit(-1.0f, 1.0f);
    for (int i = 0; i < 2000; ++i) {
        const float x = unit(rng), y = zeftest::randomFloat(rng, 4), ax = std::fabs(x);
        const double dx = x, dy = y;
        ASSERT_TRUE(sameBits(sqrt(ax), float(std::sqrt(double(ax)))) && sameBits(fabs(y), std::fabs(y)));
        ASSERT_TRUE(sameBits(pow(ax, y), float(std::pow(double(ax), dy))));
        ASSERT_TRUE(sameBits(sin(y), float(std::sin(dy))) && sameBits(cos(y), float(std::cos(dy))));
        ASSERT_TRUE(sameBits(tan(y), float(std::tan(dy))) && sameBits(atan(y), float(std::atan(dy))));
        ASSERT_TRUE(sameBits(asin(x), float(std::asin(dx))) && sameBits(acos(x), float(std::acos(dx))));
        ASSERT_TRUE(sameBits(atan2(y, x), float(std::atan2(dy, dx))));
    }
}

TEST(Vector2f, ArithmeticAndAnglesMatchDoubleThenRound) {
    Vector2f inf(1.0f, -2.0f), out(7.0f, 7.0f), z;
    inf /= 0.0f; // divides directly, unlike the three-element vectors
    Vector2f::div(out, Vector2f(0.0f, 1.0f), 0.0f);
    EXPECT_TRUE(sameBits(inf.getValue(), {kInf, -kInf}) && std::isnan(out.x()));
    EXPECT_TRUE(z.normalize() == 0.0f && z.normalize(3.0f) == 0.0f && z.x() == 0.0f);
    EXPECT_EQ(Vector2f(Vector2f(1.0f, 2.0f), Vector2f(4.0f, 0.0f)).y(), -2.0f);
    const float xs[] = {1, 0, 0, 0, -1, 1}, ys[] = {0, 1, 0, -1, -0.0f, -1};
    const double angles[] = {
        0, kFloatHalfPi, kFloatHalfPi, -kFloatHalfPi, kFloatPi, double(float(std::atan(-1.0))) + kFloatTwoPi};
    for (int i = 0; i < 6; ++i)
        EXPECT_EQ(Vector2f(xs[i], ys[i]).angle(), float(angles[i])) << i;
    // Angle between: a zero vector, and cosines clamped at -1 and 1.
    EXPECT_TRUE(Vector2f(1, 0).angle(Vector2f()) == 0.0f &&
                Vector2f(1, 0).angle(Vector2f(-1, 0)) == float(kFloatPi));
    EXPECT_EQ(Vector2f(2.0f, 0.0f).angle(Vector2f(3.0f, 0.0f)), 0.0f);
    EXPECT_TRUE(Vector2f::compFloat(1.0f, 1.5f, 0.5f) == 0 &&
                Vector2f::compFloat(1.0f, std::nextafter(1.5f, 2.0f), 0.5f) == -1);
    std::mt19937 rng(3);
    std::uniform_real_distribution<float> d(-10.0f, 10.0f);
    int quotientRoundingShows = 0, cosineRoundingShows = 0;
    for (int i = 0; i < 3000; ++i) {
        const Vector2f a(d(rng), d(rng)), b(d(rng), d(rng));
        const float k = d(rng);
        const double ax = a.x(), ay = a.y();
        ASSERT_TRUE(sameBits(a.cross(b), float(b.y() * ax - ay * b.x())));
        const float n = float(std::sqrt(double(float(ay * ay + ax * ax)))), m = float(double(n) / k);
        ASSERT_TRUE(sameBits(a.norm(), n) && sameBits((a / k).getValue(), {float(ax / k), float(ay / k)}));
        Vector2f v = a, w = a;
        ASSERT_TRUE(sameBits(v.normalize(), n) && sameBits(v.getValue(), {float(ax / n), float(ay / n)}));
        ASSERT_TRUE(sameBits(w.normalize(k), m) && sameBits(w.getValue(), {float(ax / m), float(ay / m)}));
        // angle(): quotient, atan and sum each rounded to float.
        const double q = ay / ax, add = ax < 0.0 ? kFloatPi : ay < 0.0 ? kFloatTwoPi : 0.0;
        const float direction = float(double(float(std::atan(double(float(q))))) + add);
        ASSERT_TRUE(sameBits(a.angle(), direction));
        quotientRoundingShows += direction != float(double(float(std::atan(q))) + add);
        // angle(b): the cosine is rounded to float before acos; the product of the norms is not.
        const double nn = double(n) * b.norm(), e = double(float(ay * b.y() + ax * b.x()));
        const float c = float(e / nn);
        ASSERT_TRUE(sameBits(a.angle(b), float(std::acos(double(c)))));
        cosineRoundingShows += float(std::acos(double(c))) != float(std::acos(e / nn));
    }
    EXPECT_TRUE(quotientRoundingShows > 0 && cosineRoundingShows > 0);
}

// Quotients are truncated from the double as on x86: INT_MIN where out of range or NaN,
// of which Vector2s keeps the low 16 bits; Vector2ui keeps the low 32 bits of a 64-bit truncation.
TEST(Vector2Integer, NormalizeTruncatesLikeTheProcessor) {
    const float m8 = float(5.0 / 1e8), m5 = float(double(float(std::sqrt(2.0))) / 100000);
    const std::int64_t t5 = std::int64_t(1.0 / m5);
    ASSERT_GT(t5, SHRT_MAX);
    checkNormalize<Vector2i>({{{5, 0}, kNoK, 5.0f, {1, 0}},
                              {{3, -4}, kNoK, 5.0f, {0, 0}},
                              {{0, 0}, kNoK, 0.0f, {0, 0}},
                              {{0, 0}, 3, 0.0f, {0, 0}},
                              {{3, 4}, -10, -0.5f, {-6, -8}},
                              {{3, 4}, 0, kInf, {0, 0}},
                              {{3, 4}, 100000000, m8, {int(3.0 / m8), int(4.0 / m8)}}, // 59999999, not 6e7
                              {{1, 0}, INT_MAX, std::ldexp(1.0f, -31), {INT_MIN, 0}},  // 2^31: out of range
                              {{40000, 30000}, kNoK, kNaN, {INT_MIN, INT_MIN}}});      // the norm2 wraps
    checkNormalize<Vector2s>({{{3, 4}, 10, 0.5f, {6, 8}},
                              {{1, -1}, 100000, m5, {short(t5), short(-t5)}},
                              {{1, 0}, INT_MAX, std::ldexp(1.0f, -31), {0, 0}},
                              {{-32768, -32768}, kNoK, kNaN, {0, 0}}});
    checkNormalize<Vector2ui>({{{3, 4}, -10, -0.5f, {4294967290u, 4294967288u}},
                               {{1, 0}, INT_MAX, std::ldexp(1.0f, -31), {2147483648u, 0}},
                               {{40000, 30000}, kNoK, kNaN, {0, 0}},
                               // converted as unsigned: the square wraps to 1
                               {{4294967295u, 0}, 3, float(1.0 / 3), {4294966909u, 0}}});
}

// A zero divisor: div leaves out and operator/ gives zero.
TEST(Vector2Integer, WrapsLikeTheModel) {
    Vector2s out(7, 8);
    Vector2ui outU(7, 8);
    Vector2s::div(out, Vector2s(1, 2), 0);
    Vector2ui::div(outU, Vector2ui(1, 2), 0);
    EXPECT_TRUE(out == Vector2s(7, 8) && Vector2s(1, 2) / short(0) == Vector2s(0, 0));
    EXPECT_TRUE(outU == Vector2ui(7, 8) && Vector2ui(1, 2) / 0u == Vector2ui(0, 0));
    checkAgainstModel<Vector2i, int, false>(21);
    checkAgainstModel<Vector2s, short, true>(5);
    checkAgainstModel<Vector2ui, unsigned, true>(8);
}

// Three and four elements; division and normalize multiply by a reciprocal rounded to float.
TEST(Vector3f, ArithmeticMatchesDoubleThenRoundAndAllowsAliasing) {
    // The order of terms shows where products cancel: (1e20 - 1e20) + 1 (+ 1).
    const Vector3f p(-1e10f, 1e10f, 1.0f), q(1e10f, 1e10f, 1.0f);
    EXPECT_TRUE(p.dot(q) == 1.0f && Vector3f::dotD(p, q) == 1.0);
    EXPECT_EQ(Vector4f::dot(Vector4f(-1e10f, 1e10f, 1.0f, 1.0f), Vector4f(1e10f, 1e10f, 1.0f, 1.0f)), 2.0f);
    std::mt19937 rng(7);
    std::uniform_real_distribution<float> d(-1000.0f, 1000.0f);
    for (int i = 0; i < 3000; ++i) {
        const Vector3f a(d(rng), d(rng), d(rng)), b(d(rng), d(rng), d(rng)), u = b / b.norm();
        const Vector4f a4(a.x(), a.y(), a.z(), d(rng)), b4(b.x(), b.y(), b.z(), d(rng));
        const double A[] = {a4.x(), a4.y(), a4.z(), a4.w()}, B[] = {b4.x(), b4.y(), b4.z(), b4.w()};
        const double dot = (A[1] * B[1] + A[0] * B[0]) + A[2] * B[2],
                     n2 = (A[1] * A[1] + A[0] * A[0]) + A[2] * A[2];
        const float s = d(rng), n = float(std::sqrt(double(float(n2)))), r = float(1.0 / n),
                    rs = float(1.0 / s);
        const float m = float(double(n) / s), rm = float(1.0 / m),
                    n4 = float(std::sqrt(double(float(n2 + A[3] * A[3]))));
        const float m4 = float(double(n4) / s), r4 = float(1.0 / n4), rm4 = float(1.0 / m4);
        const float t = float((A[1] * u.y() + A[0] * u.x()) + A[2] * u.z()); // rounded before the products
        Vector3f c = a, e = a, f = a, g = a, h = a, o = a, z = a;
        Vector4f v = a4, x = a4, y = a4;
        Vector3f::add(c, c, c), Vector3f::sub(e, b, e), f *= s, Vector3f::div(g, g, s), v -= b4;
        ASSERT_TRUE(sameBits(a * b, float(dot)) && Vector3f::dotD(a, b) == dot &&
                    Vector4f::dot(a4, b4) == float(dot + A[3] * B[3]));
        ASSERT_TRUE(sameBits(a.norm(), n) && a.normD() == std::sqrt(n2) && h.normalize() == n &&
                    o.normalize(s) == m);
        ASSERT_TRUE(x.normalize() == n4 && y.normalize(s) == m4 && z.makeOrthogonalTo(u));
        ASSERT_TRUE(each(c, [&](int k) { return A[k] + A[k]; }) &&
                    each(e, [&](int k) { return B[k] - A[k]; }));
        ASSERT_TRUE(each(Vector3f(a, b), [&](int k) { return B[k] - A[k]; }) &&
                    each(f, [&](int k) { return A[k] * s; }));
        ASSERT_TRUE(each(a.multCoords(b), [&](int k) { return A[k] * B[k]; }) &&
                    each(g, [&](int k) { return A[k] * rs; }));
        ASSERT_TRUE(each(h, [&](int k) { return A[k] * r; }) && each(o, [&](int k) { return A[k] * rm; }));
        ASSERT_TRUE(each(z, [&](int k) { return A[k] - float(u[k] * double(t)); }));
        ASSERT_TRUE(each(v, [&](int k) { return A[k] - B[k]; }) &&
                    each(x, [&](int k) { return A[k] * r4; }) && each(y, [&](int k) { return A[k] * rm4; }));
    }
}

// Zero divisors leave the vector or the output; the square of the length is tested exactly.
TEST(Vector3f, ZeroDivisorsAndNormalizeEdgeCases) {
    const Vector3f v(1.0f, 2.0f, 3.0f);
    Vector3f out(7.0f, 8.0f, 9.0f), w = v, z, tiny(1e-30f, 0.0f, 0.0f), small(1e-19f, 0.0f, 0.0f);
    Vector3f::div(out, v, -0.0f);
    w /= 0.0f;
    EXPECT_TRUE(sameBits(out, 7, 8, 9) && sameBits(w, 1, 2, 3) && sameBits(v / 0.0f, 0, 0, 0));
    // A subnormal divisor is not zero: the reciprocal overflows to infinity.
    EXPECT_TRUE(sameBits(v / std::numeric_limits<float>::denorm_min(), kInf, kInf, kInf));
    EXPECT_TRUE(z.normalize() == 0.0f && z.normalize(2.0f) == 0.0f && sameBits(z, 0, 0, 0));
    w.setValue(3.0f, 0.0f, 4.0f);
    EXPECT_TRUE(w.normalize(0.0f) == kInf && sameBits(w, 0, 0, 0));
    w.setValue(3.0f, 0.0f, 4.0f); // m == 0: the vector stays as it was
    EXPECT_TRUE(w.normalize(kInf) == 0.0f && sameBits(w, 3, 0, 4));
    // A square that underflows to zero counts as zero; a subnormal square does not.
    EXPECT_TRUE(tiny.normalize() == 0.0f && sameBits(tiny, 1e-30f, 0, 0) && small.normalize() > 0.0f &&
                small.x() > 0.5f);
    const Vector4f h(v);
    Vector4f v4, out4(9.0f, 9.0f, 9.0f, 9.0f), z4;
    v4.setValue(1.0f, 2.0f, 3.0f, 4.0f);
    EXPECT_TRUE(sameBits(h, 1, 2, 3, 1) && sameBits(v4 / 0.0f, 0, 0, 0, 0));
    v4 /= 0.0f;
    Vector4f::div(out4, v4, 0.0f);
    EXPECT_TRUE(v4.normalize(kInf) == 0.0f && z4.normalize() == 0.0f && z4.normalize(2.0f) == 0.0f);
    EXPECT_TRUE(sameBits(v4, 1, 2, 3, 4) && sameBits(out4, 9, 9, 9, 9));
    Vector4f::inverse(v4, v4);
    EXPECT_TRUE(sameBits(v4, -1, -2, -3, -4));
}

TEST(Vector3f, ComparisonsAnglesAndOrthogonals) {
    const float tiny = -std::ldexp(1.0f, -30);
    const Vector3f x(1.0f, 0.0f, 0.0f), y(0.0f, 1.0f, 0.0f), zAxis(0.0f, 0.0f, 1.0f), a(1.0f, 2.0f, 3.0f);
    EXPECT_TRUE(a.equalsEps(Vector3f(1.5f, 1.5f, 3.5f), 0.5f) &&
                !a.equalsEps(Vector3f(1, 2, std::nextafter(3.5f, 4.0f)), 0.5f));
    EXPECT_TRUE(Vector3f(kNaN, 2, 3).equalsEps(a, 0.0f) &&
                !Vector3f(kNaN, 2, 3).equals(Vector3f(kNaN, 2, 3)) &&
                Vector3f(-0.0f, 0, 0).equals(Vector3f()));
    // compFloat(a, b, eps): the difference is rounded to float first, so 1 + 2^-30 equals eps 1.
    const float cases[][4] = {{1, 2, 0.5f, -1},   {2, 1, 0.5f, 1}, {1, 1.5f, 0.5f, 0},
                              {kNaN, 1, 0.5f, 0}, {1, tiny, 1, 0}, {tiny, 1, 1, 0}};
    for (const auto &c : cases)
        EXPECT_EQ(Vector3f::compFloat(c[0], c[1], c[2]), int(c[3])) << c[0] << " " << c[1];
    EXPECT_TRUE(x.angleD(-x) == 3.141592653589793 && x.angle(Vector3f::m_zero) == 0.0f &&
                Vector3f::m_zero.cos(x) == 1.0);
    EXPECT_TRUE(x.angleOrientD(y, zAxis) == std::acos(0.0) && x.angleOrientD(x, zAxis) == 6.283185307179586 &&
                x.angleOrientD(y, -zAxis) == 6.283185307179586 - std::acos(0.0));
    // A vector with itself: some cosines compute above 1 in double and are clamped.
    std::mt19937 rng(99);
    std::uniform_real_distribution<float> d(-10.0f, 10.0f);
    int above = 0;
    for (int i = 0; i < 1000; ++i) {
        const Vector3f v(d(rng), d(rng), d(rng));
        const double vx = v.x(), vy = v.y(), vz = v.z(), l = std::sqrt(vx * vx + vy * vy + vz * vz);
        const double c = (vx * vx + vy * vy + vz * vz) / (l * l);
        above += c > 1.0;
        ASSERT_TRUE(v.angleD(v) == (c > 1.0 ? 0.0 : std::acos(c)) && v.cos(v) == (c > 1.0 ? 1.0 : c));
    }
    EXPECT_GT(above, 0);
    Vector3f s(1.0f, 2.0f, 3.0f); // selfCross: this is both operand and result
    s.selfCross(Vector3f(4.0f, 5.0f, 6.0f));
    EXPECT_TRUE(sameBits(s, -3, 6, -3) && sameBits(x ^ y, 0, 0, 1) &&
                sameBits(Vector3f::m_axis[3], -1, 0, 0) && sameBits(Vector3f::m_axis[5], 0, 0, -1));
    // findOrthogonalVector crosses the axis of the smallest element with this; ties go to the first.
    const float in[] = {0, 0, 1, 1, 1, 1, 2, 1, 1, -3, 2, -1},
                want[] = {0, -1, 0, 0, -1, 1, 1, 0, -2, -2, -3, 0};
    for (int i = 0; i < 4; ++i) {
        Vector3f o(9.0f, 9.0f, 9.0f);
        Vector3f(in + 3 * i).findOrthogonalVector(o);
        EXPECT_TRUE(zeftest::sameBits(o.getValue(), want + 3 * i, 3)) << i;
    }
}

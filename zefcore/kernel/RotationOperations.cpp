// The quaternion operations of the kernel and the conversions between the four
// forms of a rotation: quaternion (w, x, y, z), rotation matrix, Euler triple
// (X, Y, Z, R = Rz * Ry * Rx) and axis with angle. Conventions and the precision
// rule are those of EnhancedMathFunctions.h; every rounding point is a store to
// a named float or an array element.
#include "zefcore/kernel/EnhancedMathFunctions.h"

#include <cmath>

#include "zefcore/kernel/internal/WideDouble.h"

namespace {

// Shortest axis that axisToQuaternionU accepts (double; a length equal to it
// is accepted).
constexpr double kMinAxisLength = 0.0001;

// Bounds of the Y angle in matrixToEuler (double). The float nearest to pi/2
// lies above kHalfPi, so the poles m[2] = -1 and m[2] = 1 reach them.
constexpr double kHalfPi = 1.5707963267948966;

// Returns the length of the three floats v: the sum of squares rounded to
// float, then its square root rounded to float.
float length3(float const *v) {
    float const sumSq = float(double(v[0]) * v[0] + double(v[1]) * v[1] + double(v[2]) * v[2]);
    return float(std::sqrt(double(sumSq)));
}

} // namespace

// ---- matrices built on the conversions ----------------------------------------

void EnhancedMathFunctions::setRotate(float *const out, float const *const euler) const {
    eulerToMatrix(out, euler);
}

void EnhancedMathFunctions::setRotate(float *const out, float const *const axis, float angle) const {
    float q[4];
    axisToQuaternionU(q, axis, angle);
    quaternionToMatrix(out, q);
}

void EnhancedMathFunctions::multLeftByRotate(float *const out, float const *const m, float const *axis,
                                             float angle) const {
    float q[4];
    float r[16];
    axisToQuaternionU(q, axis, angle);
    quaternionToMatrix(r, q);
    multAffineMatrices(out, r, m);
}

void EnhancedMathFunctions::multRightByRotate(float *const out, float const *const m, float const *axis,
                                              float angle) const {
    float q[4];
    float r[16];
    axisToQuaternionU(q, axis, angle);
    quaternionToMatrix(r, q);
    multAffineMatrices(out, m, r);
}

// ---- quaternion arithmetic ----------------------------------------------------

void EnhancedMathFunctions::addQuaternions(float *const out, float const *const a,
                                           float const *const b) const {
    // Element k reads only a[k] and b[k]: safe in place.
    for (int k = 0; k < 4; ++k)
        out[k] = float(double(a[k]) + b[k]);
}

void EnhancedMathFunctions::subQuaternions(float *const out, float const *const a,
                                           float const *const b) const {
    for (int k = 0; k < 4; ++k)
        out[k] = float(double(a[k]) - b[k]);
}

namespace {

using zefwide::Double4;

// Sets out = a * b with the four sums of the plain form taken lane by lane:
// lane k adds, in the order written there, the products of element k's row.
// A subtracted product enters as the product with a negated factor, which is
// the same value, so the sums are the plain ones. All eight inputs are read
// before the store: out may be a or b.
ZEFWIDE_INLINE void hamilton(float *const out, float const *const a, float const *const b) {
    const Double4 A = zefwide::widen(zefwide::load4(a));
    const Double4 B = zefwide::widen(zefwide::load4(b));
    const Double4 firstNegated = {-1.0, 1.0, 1.0, 1.0};
    const Double4 t0 = A[0] * B;
    const Double4 t1 = ZEFWIDE_PERMUTE(A, 1, 1, 2, 3) * (ZEFWIDE_PERMUTE(B, 1, 0, 0, 0) * firstNegated);
    const Double4 t2 = ZEFWIDE_PERMUTE(A, 2, 2, 3, 1) * (ZEFWIDE_PERMUTE(B, 2, 3, 1, 2) * firstNegated);
    const Double4 t3 = ZEFWIDE_PERMUTE(A, 3, 3, 1, 2) * ZEFWIDE_PERMUTE(B, 3, 2, 3, 1);
    zefwide::store4(out, zefwide::narrow(((t0 + t1) + t2) - t3));
}
#if ZEFWIDE_X86
// The same products and sums with AVX2 instructions, operands in the same
// order; products of floats (a negation is exact), so fused steps.
ZEFWIDE_AVX2 void hamiltonAvx2(float *const out, float const *const a, float const *const b) {
    const __m256d A = _mm256_cvtps_pd(_mm_loadu_ps(a));
    const __m256d B = _mm256_cvtps_pd(_mm_loadu_ps(b));
    const __m256d firstNegated = _mm256_setr_pd(-1.0, 1.0, 1.0, 1.0);
    // Lane orders as in hamilton: A(1,1,2,3) B(1,0,0,0); A(2,2,3,1) B(2,3,1,2); A(3,3,1,2) B(3,2,3,1).
    __m256d sum = _mm256_mul_pd(_mm256_permute4x64_pd(A, 0x00), B);
    sum = _mm256_fmadd_pd(_mm256_permute_pd(A, 0xB),
                          _mm256_mul_pd(_mm256_permute4x64_pd(B, 0x01), firstNegated), sum);
    sum = _mm256_fmadd_pd(_mm256_permute4x64_pd(A, 0x7A),
                          _mm256_mul_pd(_mm256_permute4x64_pd(B, 0x9E), firstNegated), sum);
    sum = _mm256_fnmadd_pd(_mm256_permute4x64_pd(A, 0x9F), _mm256_permute4x64_pd(B, 0x7B), sum);
    _mm_storeu_ps(out, _mm256_cvtpd_ps(sum));
}
#endif

} // namespace

void EnhancedMathFunctions::multQuaternions(float *const out, float const *const a,
                                            float const *const b) const {
#if ZEFWIDE_X86
    if (zefwide::hasAvx2Fma) {
        hamiltonAvx2(out, a, b);
        return;
    }
#endif
    hamilton(out, a, b);
}

void EnhancedMathFunctions::divQuaternionsU(float *const out, float const *const a,
                                            float const *const b) const {
    // The product by the conjugate of b, written out; negation is exact.
    double const a0 = a[0], a1 = a[1], a2 = a[2], a3 = a[3];
    double const b0 = b[0], b1 = -double(b[1]), b2 = -double(b[2]), b3 = -double(b[3]);
    out[0] = float(a0 * b0 - a1 * b1 - a2 * b2 - a3 * b3);
    out[1] = float(a0 * b1 + a1 * b0 + a2 * b3 - a3 * b2);
    out[2] = float(a0 * b2 + a2 * b0 + a3 * b1 - a1 * b3);
    out[3] = float(a0 * b3 + a3 * b0 + a1 * b2 - a2 * b1);
}

void EnhancedMathFunctions::conjugateQuaternion(float *const out, float const *const q) const {
    out[0] = q[0];
    out[1] = -q[1];
    out[2] = -q[2];
    out[3] = -q[3];
}

void EnhancedMathFunctions::inverseQuaternion(float *const out, float const *const q) const {
    float const n =
        float(double(q[0]) * q[0] + double(q[1]) * q[1] + double(q[2]) * q[2] + double(q[3]) * q[3]);
    // Exact zero test: no tolerance here.
    if (n == 0.0f) {
        for (int k = 0; k < 4; ++k)
            out[k] = 0.0f;
        return;
    }
    float const r = float(1.0 / double(n));
    conjugateQuaternion(out, q);
    for (int k = 0; k < 4; ++k)
        out[k] = float(double(out[k]) * r);
}

void EnhancedMathFunctions::inverseQuaternionU(float *const out, float const *const q) const {
    conjugateQuaternion(out, q);
}

void EnhancedMathFunctions::applyQuatOn(float *const out, float const *const q, float const *const v) const {
    // v is copied first so that out may be v.
    float const vx[3] = {v[0], v[1], v[2]};
    float const *const u = q + 1;
    float const a =
        float(double(q[0]) * q[0] - double(q[1]) * q[1] - double(q[2]) * q[2] - double(q[3]) * q[3]);
    float const e = float(2.0 * (double(q[1]) * vx[0] + double(q[2]) * vx[1] + double(q[3]) * vx[2]));
    float const g = float(2.0 * double(q[0]));
    float c[3];
    cross(c, u, vx);
    for (int k = 0; k < 3; ++k)
        out[k] = float(double(a) * vx[k] + double(e) * u[k] + double(g) * c[k]);
}

void EnhancedMathFunctions::dotQuaternions(float *out, float const *const a, float const *const b) const {
    // Accumulated in *out itself: every partial sum is rounded to float.
    *out = float(double(a[0]) * b[0]);
    *out = float(double(*out) + double(a[1]) * b[1]);
    *out = float(double(*out) + double(a[2]) * b[2]);
    *out = float(double(*out) + double(a[3]) * b[3]);
}

void EnhancedMathFunctions::quaternionSLERP(float *const out, float const *const a, float const *const b,
                                            float t) const {
    float d;
    dotQuaternions(&d, a, b);
    // No clamp, no small-angle branch, no division by sin(theta): the weights
    // are the bare sines. A NaN d takes the positive branch.
    double g = 1.0;
    float theta;
    if (d < 0.0f) {
        g = -1.0;
        theta = float(std::acos(-double(d)));
    } else {
        theta = float(std::acos(double(d)));
    }
    double const w0 = std::sin((1.0 - double(t)) * theta);
    double const w1 = std::sin(double(t) * theta);
    // Element k reads only a[k] and b[k]: safe in place.
    for (int k = 0; k < 4; ++k)
        out[k] = float(double(a[k]) * w0 + g * b[k] * w1);
}

void EnhancedMathFunctions::quaternionLERP(float *const out, float const *const a, float const *const b,
                                           float t) const {
    double const u = 1.0 - double(t);
    float d;
    dotQuaternions(&d, a, b);
    // A NaN d takes the negative branch.
    if (d >= 0.0f) {
        for (int k = 0; k < 4; ++k)
            out[k] = float(double(a[k]) * u + double(b[k]) * t);
    } else {
        for (int k = 0; k < 4; ++k)
            out[k] = float(double(a[k]) * u - double(b[k]) * t);
    }
}

// ---- conversions --------------------------------------------------------------

void EnhancedMathFunctions::axisToQuaternion(float *const out, float const *const axis, float angle) const {
    double const h = double(angle) * 0.5;
    float const s = float(std::sin(h));
    out[0] = float(std::cos(h));
    for (int k = 0; k < 3; ++k)
        out[k + 1] = float(double(axis[k]) * s);
}

void EnhancedMathFunctions::axisToQuaternionU(float *const out, float const *const axis, float angle) const {
    float const len = length3(axis);
    if (double(len) < kMinAxisLength) {
        out[0] = 1.0f;
        out[1] = 0.0f;
        out[2] = 0.0f;
        out[3] = 0.0f;
        return;
    }
    double const h = double(angle) * 0.5;
    float const s = float(std::sin(h) / double(len));
    out[0] = float(std::cos(h));
    for (int k = 0; k < 3; ++k)
        out[k + 1] = float(double(axis[k]) * s);
}

void EnhancedMathFunctions::quaternionToAxis(float *const axis, float *angle, float const *const q) const {
    // No clamp of q[0]: outside [-1, 1] the angle is NaN.
    float const halfAngle = float(std::acos(double(q[0])));
    float const len = length3(q + 1);
    *angle = float(2.0 * double(halfAngle));
    // Exact zero test: no tolerance here.
    if (len == 0.0f) {
        *angle = 0.0f;
        axis[0] = 0.0f;
        axis[1] = 0.0f;
        axis[2] = 0.0f;
        return;
    }
    float const r = float(1.0 / double(len));
    float const u[3] = {q[1], q[2], q[3]};
    for (int k = 0; k < 3; ++k)
        axis[k] = float(double(u[k]) * r);
}

namespace {

// Sets out[4*c .. 4*c + 3] to (2*(a*b + c*d) - e) lane by lane, rounded to float,
// with lane 3 zero.
ZEFWIDE_INLINE void rotationColumn(float *const out, Double4 a, Double4 b, Double4 c, Double4 d, Double4 e) {
    zefwide::Float4 r = zefwide::narrow(2.0 * (a * b + c * d) - e);
    r[3] = 0.0f;
    zefwide::store4(out, r);
}

// Sets out to the rotation of the unit quaternion q = (w, x, y, z), column by
// column: each element is the plain 2*(p + q) - 1 or 2*(p + q), p and q the
// products of the plain form (a subtracted product enters with a negated
// factor: the same value) and the 1 subtracted only on the diagonal
// (subtracting +0 changes no value, a zero of either sign included). All of q
// is read before out is written: out may hold q.
ZEFWIDE_INLINE void rotationFromQuaternion(float *const out, float const *const q) {
    const Double4 Q = zefwide::widen(zefwide::load4(q)); // w x y z
    const Double4 negateThird = {1.0, 1.0, -1.0, 1.0};
    const Double4 negateFirst = {-1.0, 1.0, 1.0, 1.0};
    const Double4 negateSecond = {1.0, -1.0, 1.0, 1.0};
    // (ww + xx, xy + wz, xz - wy), (xy - wz, ww + yy, yz + wx), (xz + wy, yz - wx, ww + zz)
    rotationColumn(out, ZEFWIDE_PERMUTE(Q, 0, 1, 1, 0), ZEFWIDE_PERMUTE(Q, 0, 2, 3, 0),
                   ZEFWIDE_PERMUTE(Q, 1, 0, 0, 0) * negateThird, ZEFWIDE_PERMUTE(Q, 1, 3, 2, 0),
                   Double4{1.0, 0.0, 0.0, 0.0});
    rotationColumn(out + 4, ZEFWIDE_PERMUTE(Q, 1, 0, 2, 0), ZEFWIDE_PERMUTE(Q, 2, 0, 3, 0),
                   ZEFWIDE_PERMUTE(Q, 0, 2, 0, 0) * negateFirst, ZEFWIDE_PERMUTE(Q, 3, 2, 1, 0),
                   Double4{0.0, 1.0, 0.0, 0.0});
    rotationColumn(out + 8, ZEFWIDE_PERMUTE(Q, 1, 2, 0, 0), ZEFWIDE_PERMUTE(Q, 3, 3, 0, 0),
                   ZEFWIDE_PERMUTE(Q, 0, 0, 3, 0) * negateSecond, ZEFWIDE_PERMUTE(Q, 2, 1, 3, 0),
                   Double4{0.0, 0.0, 1.0, 0.0});
    const zefwide::Float4 lastColumn = {0.0f, 0.0f, 0.0f, 1.0f};
    zefwide::store4(out + 12, lastColumn);
}
#if ZEFWIDE_X86
// The same products and sums with AVX2 instructions; products of floats, so
// fused steps. Doubling is exact, so 2*s - e fused rounds as the two steps.
#define ZEFROT_COLUMN(OUT, Q, A, B, C, NEG, D, E)                                                            \
    do {                                                                                                     \
        const __m256d ab = _mm256_mul_pd(_mm256_permute4x64_pd(Q, A), _mm256_permute4x64_pd(Q, B));          \
        const __m256d s = _mm256_fmadd_pd(_mm256_mul_pd(_mm256_permute4x64_pd(Q, C), NEG),                   \
                                          _mm256_permute4x64_pd(Q, D), ab);                                  \
        const __m128 r = _mm256_cvtpd_ps(_mm256_fmsub_pd(_mm256_set1_pd(2.0), s, E));                        \
        _mm_storeu_ps(OUT, _mm_blend_ps(r, _mm_setzero_ps(), 0x8));                                          \
    } while (0)
ZEFWIDE_AVX2 void rotationFromQuaternionAvx2(float *const out, float const *const q) {
    const __m256d Q = _mm256_cvtps_pd(_mm_loadu_ps(q)); // w x y z
    ZEFROT_COLUMN(out, Q, ZEFWIDE_LANES(0, 1, 1, 0), ZEFWIDE_LANES(0, 2, 3, 0), ZEFWIDE_LANES(1, 0, 0, 0),
                  _mm256_setr_pd(1.0, 1.0, -1.0, 1.0), ZEFWIDE_LANES(1, 3, 2, 0),
                  _mm256_setr_pd(1.0, 0.0, 0.0, 0.0));
    ZEFROT_COLUMN(out + 4, Q, ZEFWIDE_LANES(1, 0, 2, 0), ZEFWIDE_LANES(2, 0, 3, 0), ZEFWIDE_LANES(0, 2, 0, 0),
                  _mm256_setr_pd(-1.0, 1.0, 1.0, 1.0), ZEFWIDE_LANES(3, 2, 1, 0),
                  _mm256_setr_pd(0.0, 1.0, 0.0, 0.0));
    ZEFROT_COLUMN(out + 8, Q, ZEFWIDE_LANES(1, 2, 0, 0), ZEFWIDE_LANES(3, 3, 0, 0), ZEFWIDE_LANES(0, 0, 3, 0),
                  _mm256_setr_pd(1.0, -1.0, 1.0, 1.0), ZEFWIDE_LANES(2, 1, 3, 0),
                  _mm256_setr_pd(0.0, 0.0, 1.0, 0.0));
    _mm_storeu_ps(out + 12, _mm_setr_ps(0.0f, 0.0f, 0.0f, 1.0f));
}
#undef ZEFROT_COLUMN
#endif

} // namespace

void EnhancedMathFunctions::quaternionToMatrix(float *const out, float const *const q) const {
#if ZEFWIDE_X86
    if (zefwide::hasAvx2Fma) {
        rotationFromQuaternionAvx2(out, q);
        return;
    }
#endif
    rotationFromQuaternion(out, q);
}

int EnhancedMathFunctions::RotMatrixToQuaternion(float *const out, float const *const m) const {
    double const t = double(m[0]) + m[5] + m[10] + 1.0;
    double const r = std::sqrt(t);
    // Exact zero test: a t just above zero is divided through; a negative t
    // gives NaN elements, unclamped.
    if (r != 0.0) {
        double const f = 0.5 / r;
        out[0] = float(r * 0.5);
        out[1] = float((double(m[6]) - m[9]) * f);
        out[2] = float((double(m[8]) - m[2]) * f);
        out[3] = float((double(m[1]) - m[4]) * f);
        return 0;
    }
    // A half turn. The second test looks at m[5], not at the larger of the two.
    int i = 1;
    if (m[5] > m[0])
        i = 2;
    if (m[10] > m[5])
        i = 3;
    double const d = (i == 1) ? m[0] : (i == 2) ? m[5] : m[10];
    double const e = std::sqrt((d + 1.0) * 0.5);
    double const f = 1.0 / (4.0 * e);
    out[0] = 0.0f;
    if (i == 1) {
        out[1] = float(e);
        out[2] = float((double(m[4]) + m[1]) * f);
        out[3] = float((double(m[8]) + m[2]) * f);
    } else if (i == 2) {
        out[1] = float((double(m[4]) + m[1]) * f);
        out[2] = float(e);
        out[3] = float((double(m[9]) + m[6]) * f);
    } else {
        out[1] = float((double(m[8]) + m[2]) * f);
        out[2] = float((double(m[9]) + m[6]) * f);
        out[3] = float(e);
    }
    return 0;
}

void EnhancedMathFunctions::eulerToQuaternion(float *const out, float const *const euler) const {
    // Half angles, their cosines and sines all kept in double: qz * qy * qx.
    double const h0 = double(euler[0]) * 0.5, h1 = double(euler[1]) * 0.5, h2 = double(euler[2]) * 0.5;
    double const c0 = std::cos(h0), s0 = std::sin(h0);
    double const c1 = std::cos(h1), s1 = std::sin(h1);
    double const c2 = std::cos(h2), s2 = std::sin(h2);
    out[0] = float(c0 * c1 * c2 + s0 * s1 * s2);
    out[1] = float(s0 * c1 * c2 - c0 * s1 * s2);
    out[2] = float(c0 * s1 * c2 + s0 * c1 * s2);
    out[3] = float(c0 * c1 * s2 - s0 * s1 * c2);
}

void EnhancedMathFunctions::quaternionToEuler(float *euler, float const *const q) const {
    float m[16];
    quaternionToMatrix(m, q);
    matrixToEuler(euler, m);
}

void EnhancedMathFunctions::eulerToMatrix(float *const out, float const *const euler) const {
    // Each cosine and sine is rounded to float before the products.
    float const c0 = float(std::cos(double(euler[0]))), s0 = float(std::sin(double(euler[0])));
    float const c1 = float(std::cos(double(euler[1]))), s1 = float(std::sin(double(euler[1])));
    float const c2 = float(std::cos(double(euler[2]))), s2 = float(std::sin(double(euler[2])));
    out[0] = float(double(c1) * c2);
    out[1] = float(double(c1) * s2);
    out[2] = -s1;
    out[3] = 0.0f;
    out[4] = float(double(s0) * s1 * c2 - double(c0) * s2);
    out[5] = float(double(c0) * c2 + double(s0) * s1 * s2);
    out[6] = float(double(s0) * c1);
    out[7] = 0.0f;
    out[8] = float(double(c0) * s1 * c2 + double(s0) * s2);
    out[9] = float(double(c0) * s1 * s2 - double(s0) * c2);
    out[10] = float(double(c0) * c1);
    out[11] = 0.0f;
    out[12] = 0.0f;
    out[13] = 0.0f;
    out[14] = 0.0f;
    out[15] = 1.0f;
}

int EnhancedMathFunctions::matrixToEuler(float *euler, float const *const m) const {
    float const y = float(std::asin(-double(m[2])));
    euler[1] = y;
    // Written as "not below" so that a NaN y takes the first pole too.
    if (!(double(y) < kHalfPi)) {
        euler[0] = 0.0f;
        euler[2] = float(std::atan2(-double(m[4]), double(m[8])));
    } else if (double(y) <= -kHalfPi) {
        euler[0] = 0.0f;
        euler[2] = float(std::atan2(-double(m[4]), -double(m[8])));
    } else {
        euler[2] = float(std::atan2(double(m[1]), double(m[0])));
        euler[0] = float(std::atan2(double(m[6]), double(m[10])));
    }
    return 0;
}

void EnhancedMathFunctions::axisToMatrix(float *const out, float const *const axis, float angle) const {
    float q[4];
    axisToQuaternion(q, axis, angle);
    quaternionToMatrix(out, q);
}

int EnhancedMathFunctions::matrixToAxis(float *const axis, float *angle, float const *const m) const {
    float q[4];
    RotMatrixToQuaternion(q, m);
    quaternionToAxis(axis, angle, q);
    return 0;
}

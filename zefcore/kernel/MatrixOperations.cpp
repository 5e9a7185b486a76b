// The kernel's operations on general 4x4 matrices: element-wise arithmetic,
// products with matrices and vectors, the Gauss-Jordan inverse, transposition,
// determinants, and the scale and translation builders. Storage order and the
// precision rule are those of EnhancedMathFunctions.h.
#include "zefcore/kernel/EnhancedMathFunctions.h"

#include <cmath>
#include <cstring>

#include "zefcore/kernel/internal/WideDouble.h"

namespace {

// Returns the 2x2 minor m[i]*m[l] - m[j]*m[k], computed in double and rounded
// to float: every minor of a determinant is rounded before it is used.
inline float minor2(float const *const m, int i, int j, int k, int l) {
    return float(double(m[i]) * m[l] - double(m[j]) * m[k]);
}

} // namespace

void EnhancedMathFunctions::addMatrices(float *const out, float const *const a, float const *const b) const {
    for (int i = 0; i < 16; ++i)
        out[i] = float(double(a[i]) + b[i]);
}

void EnhancedMathFunctions::subMatrices(float *const out, float const *const a, float const *const b) const {
    for (int i = 0; i < 16; ++i)
        out[i] = float(double(a[i]) - b[i]);
}

namespace {

using zefwide::Double4;
using zefwide::load4;
using zefwide::store4;

// Sets out = a * b: column c of out is ((A0*b0 + A1*b1) + A2*b2) + A3*b3 with Ak
// the columns of a widened to double and bk = b[4*c + k]: for each element the
// sum of the plain form, in its order, rounded once at the store.
ZEFWIDE_INLINE void multiplyColumns(float *const out, float const *const a, float const *const b) {
    const Double4 a0 = zefwide::widen(load4(a));
    const Double4 a1 = zefwide::widen(load4(a + 4));
    const Double4 a2 = zefwide::widen(load4(a + 8));
    const Double4 a3 = zefwide::widen(load4(a + 12));
    for (int c = 0; c < 4; ++c) {
        const float *bc = b + 4 * c;
        const Double4 sum = a0 * double(bc[0]) + a1 * double(bc[1]) + a2 * double(bc[2]) + a3 * double(bc[3]);
        store4(out + 4 * c, zefwide::narrow(sum));
    }
}
#if ZEFWIDE_X86
// The same sums with AVX2: each column of b is widened once and its elements
// spread over the lanes by permutation; products of floats, so fused steps.
ZEFWIDE_AVX2 void multiplyColumnsAvx2(float *const out, float const *const a, float const *const b) {
    const __m256d a0 = _mm256_cvtps_pd(_mm_loadu_ps(a));
    const __m256d a1 = _mm256_cvtps_pd(_mm_loadu_ps(a + 4));
    const __m256d a2 = _mm256_cvtps_pd(_mm_loadu_ps(a + 8));
    const __m256d a3 = _mm256_cvtps_pd(_mm_loadu_ps(a + 12));
    for (int c = 0; c < 4; ++c) {
        const __m256d bc = _mm256_cvtps_pd(_mm_loadu_ps(b + 4 * c));
        __m256d sum = _mm256_mul_pd(a0, _mm256_permute4x64_pd(bc, 0x00));
        sum = _mm256_fmadd_pd(a1, _mm256_permute4x64_pd(bc, 0x55), sum);
        sum = _mm256_fmadd_pd(a2, _mm256_permute4x64_pd(bc, 0xAA), sum);
        sum = _mm256_fmadd_pd(a3, _mm256_permute4x64_pd(bc, 0xFF), sum);
        _mm_storeu_ps(out + 4 * c, _mm256_cvtpd_ps(sum));
    }
}
#endif

// Sets out[0..2] to the point v through m with the divide; see multMatrixVec3f.
// The four sums of a row each are the plain ones: lane 3 is w.
ZEFWIDE_INLINE void transformPoint(float *const out, float const *const m, float const *const v) {
    const double x = v[0], y = v[1], z = v[2];
    const Double4 sum = zefwide::widen(load4(m)) * x + zefwide::widen(load4(m + 4)) * y +
                        zefwide::widen(load4(m + 8)) * z + zefwide::widen(load4(m + 12));
    const double w = sum[3];
    // Exact zero test: a point at infinity maps to the origin.
    if (w == 0.0) {
        out[0] = 0.0f;
        out[1] = 0.0f;
        out[2] = 0.0f;
        return;
    }
    zefwide::store3(out, zefwide::narrow(sum / w)); // out[3] is not ours
}
#if ZEFWIDE_X86
// The same sums, test and quotients with AVX2 instructions; products of floats,
// so fused steps.
ZEFWIDE_AVX2 void transformPointAvx2(float *const out, float const *const m, float const *const v) {
    const __m256d x = _mm256_set1_pd(v[0]);
    const __m256d y = _mm256_set1_pd(v[1]);
    const __m256d z = _mm256_set1_pd(v[2]);
    __m256d sum = _mm256_mul_pd(_mm256_cvtps_pd(_mm_loadu_ps(m)), x);
    sum = _mm256_fmadd_pd(_mm256_cvtps_pd(_mm_loadu_ps(m + 4)), y, sum);
    sum = _mm256_fmadd_pd(_mm256_cvtps_pd(_mm_loadu_ps(m + 8)), z, sum);
    sum = _mm256_add_pd(sum, _mm256_cvtps_pd(_mm_loadu_ps(m + 12)));
    const __m256d w = _mm256_permute4x64_pd(sum, 0xFF);
    if (_mm256_cvtsd_f64(w) == 0.0) {
        out[0] = 0.0f;
        out[1] = 0.0f;
        out[2] = 0.0f;
        return;
    }
    zefwide::store3(out, (zefwide::Float4)_mm256_cvtpd_ps(_mm256_div_pd(sum, w)));
}
#endif

using zefwide::Long4;

// Exchanges the rows a and b (left and right parts together) where the mask k
// is all ones (it is the same in every lane), without a branch.
ZEFWIDE_INLINE void exchangeIf(Long4 k, Double4 &la, Double4 &ha, Double4 &lb, Double4 &hb) {
    const Double4 la0 = la, ha0 = ha;
    la = zefwide::select(k, lb, la0);
    ha = zefwide::select(k, hb, ha0);
    lb = zefwide::select(k, la0, lb);
    hb = zefwide::select(k, ha0, hb);
}

// Sets h -= f * s lane by lane where s is not zero; leaves the other lanes.
ZEFWIDE_INLINE Double4 subtractWhereNonZero(Double4 h, double f, Double4 s, Long4 sNonZero) {
    return zefwide::select(sNonZero, h - f * s, h);
}

// Gauss-Jordan elimination with partial pivoting in double. The 16 floats are
// read as four rows in flat order, i.e. the transpose; the inverse of the
// transpose stored the same way is the inverse in storage order, so no
// transposition is needed. Each row is a left part L and a right part H of four
// doubles (H starts as a row of the identity); an exchange of rows exchanges
// both. Every element goes through the same operations in the same order as in
// the element-by-element form: the lanes a step has no use for (the eliminated
// columns of the left parts) are computed too but never read again.
// Returns false, writing nothing, on a pivot that is exactly zero.
ZEFWIDE_INLINE bool invertRows(float *const out, float const *const m) {
    Double4 l0 = zefwide::widen(load4(m));
    Double4 l1 = zefwide::widen(load4(m + 4));
    Double4 l2 = zefwide::widen(load4(m + 8));
    Double4 l3 = zefwide::widen(load4(m + 12));
    Double4 h0 = {1.0, 0.0, 0.0, 0.0};
    Double4 h1 = {0.0, 1.0, 0.0, 0.0};
    Double4 h2 = {0.0, 0.0, 1.0, 0.0};
    Double4 h3 = {0.0, 0.0, 0.0, 1.0};

    // Column 0: strict comparisons, from the bottom up; zero tests are exact.
    // Each comparison is |lower row| > |upper row| in the column, the lower row
    // being the one the previous exchange left there: the decisions are taken
    // on the column's magnitudes, carried as the exchanges carry the rows, in
    // every lane at once, and the rows exchanged after.
    {
        const Double4 c0 = zefwide::magnitude(ZEFWIDE_PERMUTE(l0, 0, 0, 0, 0));
        const Double4 c1 = zefwide::magnitude(ZEFWIDE_PERMUTE(l1, 0, 0, 0, 0));
        const Double4 c2 = zefwide::magnitude(ZEFWIDE_PERMUTE(l2, 0, 0, 0, 0));
        const Double4 c3 = zefwide::magnitude(ZEFWIDE_PERMUTE(l3, 0, 0, 0, 0));
        const Long4 s32 = zefwide::greater(c3, c2);
        const Double4 k2 = zefwide::select(s32, c3, c2);
        const Long4 s21 = zefwide::greater(k2, c1);
        const Long4 s10 = zefwide::greater(zefwide::select(s21, k2, c1), c0);
        exchangeIf(s32, l3, h3, l2, h2);
        exchangeIf(s21, l2, h2, l1, h1);
        exchangeIf(s10, l1, h1, l0, h0);
    }
    if (l0[0] == 0.0)
        return false;
    {
        const double m1 = l1[0] / l0[0];
        const double m2 = l2[0] / l0[0];
        const double m3 = l3[0] / l0[0];
        l1 -= m1 * l0;
        l2 -= m2 * l0;
        l3 -= m3 * l0;
        const Long4 nz = zefwide::nonZero(h0);
        h1 = subtractWhereNonZero(h1, m1, h0, nz);
        h2 = subtractWhereNonZero(h2, m2, h0, nz);
        h3 = subtractWhereNonZero(h3, m3, h0, nz);
    }

    // Column 1.
    {
        const Double4 c1 = zefwide::magnitude(ZEFWIDE_PERMUTE(l1, 1, 1, 1, 1));
        const Double4 c2 = zefwide::magnitude(ZEFWIDE_PERMUTE(l2, 1, 1, 1, 1));
        const Double4 c3 = zefwide::magnitude(ZEFWIDE_PERMUTE(l3, 1, 1, 1, 1));
        const Long4 s32 = zefwide::greater(c3, c2);
        const Long4 s21 = zefwide::greater(zefwide::select(s32, c3, c2), c1);
        exchangeIf(s32, l3, h3, l2, h2);
        exchangeIf(s21, l2, h2, l1, h1);
    }
    if (l1[1] == 0.0)
        return false;
    {
        const double m2 = l2[1] / l1[1];
        const double m3 = l3[1] / l1[1];
        l2 -= m2 * l1;
        l3 -= m3 * l1;
        const Long4 nz = zefwide::nonZero(h1);
        h2 = subtractWhereNonZero(h2, m2, h1, nz);
        h3 = subtractWhereNonZero(h3, m3, h1, nz);
    }

    // Column 2: the last right-hand update has no test on zero.
    exchangeIf(zefwide::greater(zefwide::magnitude(ZEFWIDE_PERMUTE(l3, 2, 2, 2, 2)),
                                zefwide::magnitude(ZEFWIDE_PERMUTE(l2, 2, 2, 2, 2))),
               l3, h3, l2, h2);
    if (l2[2] == 0.0)
        return false;
    {
        const double m3 = l3[2] / l2[2];
        l3 -= m3 * l2;
        h3 -= m3 * h2;
    }

    if (l3[3] == 0.0)
        return false;

    // Back substitution on the right-hand parts.
    h3 = h3 * (1.0 / l3[3]);
    h2 = (1.0 / l2[2]) * (h2 - h3 * l2[3]);
    h1 = h1 - h3 * l1[3];
    h0 = h0 - h3 * l0[3];
    h1 = (1.0 / l1[1]) * (h1 - h2 * l1[2]);
    h0 = h0 - h2 * l0[2];
    h0 = (1.0 / l0[0]) * (h0 - h1 * l0[1]);

    store4(out, zefwide::narrow(h0));
    store4(out + 4, zefwide::narrow(h1));
    store4(out + 8, zefwide::narrow(h2));
    store4(out + 12, zefwide::narrow(h3));
    return true;
}
#if ZEFWIDE_X86
ZEFWIDE_AVX2 bool invertRowsAvx2(float *const out, float const *const m) {
    return invertRows(out, m);
}
#endif

} // namespace

void EnhancedMathFunctions::multMatrices(float *const out, float const *const a, float const *const b) const {
    // Column by column: out must be distinct from a and b.
#if ZEFWIDE_X86
    if (zefwide::hasAvx2Fma) {
        multiplyColumnsAvx2(out, a, b);
        return;
    }
#endif
    multiplyColumns(out, a, b);
}

void EnhancedMathFunctions::multMatrixVec3f(float *const out, float const *const m,
                                            float const *const v) const {
    // All of v is read first, so out may be v.
#if ZEFWIDE_X86
    if (zefwide::hasAvx2Fma) {
        transformPointAvx2(out, m, v);
        return;
    }
#endif
    transformPoint(out, m, v);
}

void EnhancedMathFunctions::multMatrixVec4f(float *const out, float const *const m,
                                            float const *const v) const {
    const float x = v[0];
    const float y = v[1];
    const float z = v[2];
    const float w = v[3];
    for (int k = 0; k < 4; ++k)
        out[k] =
            float(double(m[k]) * x + double(m[4 + k]) * y + double(m[8 + k]) * z + double(m[12 + k]) * w);
}

void EnhancedMathFunctions::multMatrixScalar(float *const out, float const *const m, float s) const {
    for (int i = 0; i < 16; ++i)
        out[i] = float(double(m[i]) * s);
}

bool EnhancedMathFunctions::inverseMatrix(float *const out, float const *const m) const {
    // m is read whole before out is written, so out may be m; out stays as it
    // was on failure.
#if ZEFWIDE_X86
    if (zefwide::hasAvx2Fma)
        return invertRowsAvx2(out, m);
#endif
    return invertRows(out, m);
}

void EnhancedMathFunctions::neg(float *const out, float const *const m) const {
    for (int i = 0; i < 16; ++i)
        out[i] = -m[i];
}

void EnhancedMathFunctions::transpose(float *const out, float const *const m) const {
    for (int c = 0; c < 4; ++c) {
        for (int r = 0; r < 4; ++r)
            out[4 * c + r] = m[4 * r + c];
    }
}

void EnhancedMathFunctions::abs(float *const out, float const *const m) const {
    for (int i = 0; i < 16; ++i)
        out[i] = std::fabs(m[i]);
}

float EnhancedMathFunctions::det4(float const *const m) const {
    const float d10_11_14_15 = minor2(m, 10, 11, 14, 15);
    const float d9_11_13_15 = minor2(m, 9, 11, 13, 15);
    const float d9_10_13_14 = minor2(m, 9, 10, 13, 14);
    const double t0 = double(m[5]) * d10_11_14_15 - double(m[6]) * d9_11_13_15 + double(m[7]) * d9_10_13_14;
    const double t1 = double(m[1]) * d10_11_14_15 - double(m[2]) * d9_11_13_15 + double(m[3]) * d9_10_13_14;
    const double t2 = double(m[1]) * minor2(m, 6, 7, 14, 15) - double(m[2]) * minor2(m, 5, 7, 13, 15) +
                      double(m[3]) * minor2(m, 5, 6, 13, 14);
    const double t3 = double(m[1]) * minor2(m, 6, 7, 10, 11) - double(m[2]) * minor2(m, 5, 7, 9, 11) +
                      double(m[3]) * minor2(m, 5, 6, 9, 10);
    return float(double(m[0]) * t0 - double(m[4]) * t1 + double(m[8]) * t2 - double(m[12]) * t3);
}

void EnhancedMathFunctions::setScale(float *const out, float const *const s) const {
    for (int i = 0; i < 16; ++i)
        out[i] = 0.0f;
    out[0] = s[0];
    out[5] = s[1];
    out[10] = s[2];
    out[15] = 1.0f;
}

void EnhancedMathFunctions::setTranslate(float *const out, float const *const t) const {
    for (int i = 0; i < 16; ++i)
        out[i] = (i % 5 == 0) ? 1.0f : 0.0f;
    out[12] = t[0];
    out[13] = t[1];
    out[14] = t[2];
}

float EnhancedMathFunctions::det3(float const *const m) const {
    const float a = minor2(m, 5, 6, 9, 10);
    const float b = minor2(m, 4, 6, 8, 10);
    const float c = minor2(m, 4, 5, 8, 9);
    return float(double(m[0]) * a - double(m[1]) * b + double(m[2]) * c);
}

double EnhancedMathFunctions::det3(float const *r0, float const *r1, float const *r2) const {
    const float a = float(double(r1[1]) * r2[2] - double(r1[2]) * r2[1]);
    const float b = float(double(r1[0]) * r2[2] - double(r1[2]) * r2[0]);
    const float c = float(double(r1[0]) * r2[1] - double(r2[0]) * r1[1]);
    return double(r0[0]) * a - double(r0[1]) * b + double(r0[2]) * c;
}

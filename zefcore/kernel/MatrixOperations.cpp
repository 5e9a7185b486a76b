// The kernel's operations on general 4x4 matrices: element-wise arithmetic,
// products with matrices and vectors, the Gauss-Jordan inverse, transposition,
// determinants, and the scale and translation builders. Storage order and the
// precision rule are those of EnhancedMathFunctions.h.
#include "zefcore/kernel/EnhancedMathFunctions.h"

#include <cmath>
#include <cstring>
#include <utility>

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
// spread over the lanes by permutation.
ZEFWIDE_AVX2 void multiplyColumnsAvx2(float *const out, float const *const a, float const *const b) {
    const __m256d a0 = _mm256_cvtps_pd(_mm_loadu_ps(a));
    const __m256d a1 = _mm256_cvtps_pd(_mm_loadu_ps(a + 4));
    const __m256d a2 = _mm256_cvtps_pd(_mm_loadu_ps(a + 8));
    const __m256d a3 = _mm256_cvtps_pd(_mm_loadu_ps(a + 12));
    for (int c = 0; c < 4; ++c) {
        const __m256d bc = _mm256_cvtps_pd(_mm_loadu_ps(b + 4 * c));
        __m256d sum = _mm256_mul_pd(a0, _mm256_permute4x64_pd(bc, 0x00));
        sum = _mm256_add_pd(sum, _mm256_mul_pd(a1, _mm256_permute4x64_pd(bc, 0x55)));
        sum = _mm256_add_pd(sum, _mm256_mul_pd(a2, _mm256_permute4x64_pd(bc, 0xAA)));
        sum = _mm256_add_pd(sum, _mm256_mul_pd(a3, _mm256_permute4x64_pd(bc, 0xFF)));
        _mm_storeu_ps(out + 4 * c, _mm256_cvtpd_ps(sum));
    }
}

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
    const zefwide::Float4 r = zefwide::narrow(sum / w);
    std::memcpy(out, &r, 3 * sizeof(float)); // out[3] is not ours
}
ZEFWIDE_AVX2 void transformPointAvx2(float *const out, float const *const m, float const *const v) {
    transformPoint(out, m, v);
}
#endif

} // namespace

void EnhancedMathFunctions::multMatrices(float *const out, float const *const a, float const *const b) const {
    // Column by column: out must be distinct from a and b.
#if ZEFWIDE_X86
    if (zefwide::hasAvx2) {
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
    if (zefwide::hasAvx2) {
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
    // The 16 floats are read as four rows in flat order, i.e. the transpose; the
    // inverse of the transpose stored the same way is the inverse in storage
    // order, so no transposition is needed. Everything works in double on a
    // copy: out is written only at the end, so it may be m and stays as it was
    // on failure.
    double left[4][4];
    double right[4][4];
    for (int i = 0; i < 4; ++i) {
        for (int j = 0; j < 4; ++j) {
            left[i][j] = m[4 * i + j];
            right[i][j] = (i == j) ? 1.0 : 0.0;
        }
    }
    double *r0 = left[0], *r1 = left[1], *r2 = left[2], *r3 = left[3];
    double *h0 = right[0], *h1 = right[1], *h2 = right[2], *h3 = right[3];
    // Exchanges two rows: their left and right parts move together.
    auto exchange = [](double *&ra, double *&ha, double *&rb, double *&hb) {
        std::swap(ra, rb);
        std::swap(ha, hb);
    };

    // Column 0: strict comparisons, from the bottom up; zero tests are exact.
    if (std::fabs(r3[0]) > std::fabs(r2[0]))
        exchange(r3, h3, r2, h2);
    if (std::fabs(r2[0]) > std::fabs(r1[0]))
        exchange(r2, h2, r1, h1);
    if (std::fabs(r1[0]) > std::fabs(r0[0]))
        exchange(r1, h1, r0, h0);
    if (r0[0] == 0.0)
        return false;
    {
        const double m1 = r1[0] / r0[0];
        const double m2 = r2[0] / r0[0];
        const double m3 = r3[0] / r0[0];
        for (int j = 1; j < 4; ++j) {
            r1[j] -= m1 * r0[j];
            r2[j] -= m2 * r0[j];
            r3[j] -= m3 * r0[j];
        }
        for (int j = 0; j < 4; ++j) {
            const double s = h0[j];
            if (s != 0.0) {
                h1[j] -= m1 * s;
                h2[j] -= m2 * s;
                h3[j] -= m3 * s;
            }
        }
    }

    // Column 1.
    if (std::fabs(r3[1]) > std::fabs(r2[1]))
        exchange(r3, h3, r2, h2);
    if (std::fabs(r2[1]) > std::fabs(r1[1]))
        exchange(r2, h2, r1, h1);
    if (r1[1] == 0.0)
        return false;
    {
        const double m2 = r2[1] / r1[1];
        const double m3 = r3[1] / r1[1];
        for (int j = 2; j < 4; ++j) {
            r2[j] -= m2 * r1[j];
            r3[j] -= m3 * r1[j];
        }
        for (int j = 0; j < 4; ++j) {
            const double s = h1[j];
            if (s != 0.0) {
                h2[j] -= m2 * s;
                h3[j] -= m3 * s;
            }
        }
    }

    // Column 2: the last right-hand update has no test on zero.
    if (std::fabs(r3[2]) > std::fabs(r2[2]))
        exchange(r3, h3, r2, h2);
    if (r2[2] == 0.0)
        return false;
    {
        const double m3 = r3[2] / r2[2];
        r3[3] -= m3 * r2[3];
        for (int j = 0; j < 4; ++j)
            h3[j] -= m3 * h2[j];
    }

    if (r3[3] == 0.0)
        return false;

    // Back substitution on the right-hand parts.
    double s = 1.0 / r3[3];
    for (int j = 0; j < 4; ++j)
        h3[j] = h3[j] * s;
    s = 1.0 / r2[2];
    for (int j = 0; j < 4; ++j)
        h2[j] = s * (h2[j] - h3[j] * r2[3]);
    for (int j = 0; j < 4; ++j) {
        h1[j] = h1[j] - h3[j] * r1[3];
        h0[j] = h0[j] - h3[j] * r0[3];
    }
    s = 1.0 / r1[1];
    for (int j = 0; j < 4; ++j)
        h1[j] = s * (h1[j] - h2[j] * r1[2]);
    for (int j = 0; j < 4; ++j)
        h0[j] = h0[j] - h2[j] * r0[2];
    s = 1.0 / r0[0];
    for (int j = 0; j < 4; ++j)
        h0[j] = s * (h0[j] - h1[j] * r0[1]);

    double const *const rows[4] = {h0, h1, h2, h3};
    for (int i = 0; i < 4; ++i) {
        for (int j = 0; j < 4; ++j)
            out[4 * i + j] = float(rows[i][j]);
    }
    return true;
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

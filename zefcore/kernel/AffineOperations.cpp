// The kernel's operations on affine matrices: the bottom row is taken as
// (0, 0, 0, 1) without being read, column 3 holds the translation. Products,
// in-place composition with a rotation about an axis, a translation or a scale,
// the cheap inverses, and the projection builder. Storage order and the
// precision rule are those of EnhancedMathFunctions.h.
#include "zefcore/kernel/EnhancedMathFunctions.h"

#include <cmath>

namespace {

// The cosine and sine of an axis rotation, each rounded to float once and then
// used in double arithmetic.
struct AxisTurn {
    float c;
    float s;
};

inline AxisTurn axisTurn(float angle) {
    // Two separate double calls, each stored to a float: the rounding to float
    // is part of the result.
    const float c = float(std::cos(double(angle)));
    const float s = float(std::sin(double(angle)));
    return AxisTurn{c, s};
}

// Mixes the elements ia and ib of m, a and b: a' = a*c - b*s, b' = a*s + b*c.
inline void turnMinus(float *const m, int ia, int ib, AxisTurn t) {
    const float a = m[ia];
    const float b = m[ib];
    m[ia] = float(double(a) * t.c - double(b) * t.s);
    m[ib] = float(double(a) * t.s + double(b) * t.c);
}

// Mixes the elements ia and ib of m, a and b: a' = a*c + b*s, b' = b*c - a*s.
inline void turnPlus(float *const m, int ia, int ib, AxisTurn t) {
    const float a = m[ia];
    const float b = m[ib];
    m[ia] = float(double(a) * t.c + double(b) * t.s);
    m[ib] = float(double(b) * t.c - double(a) * t.s);
}

} // namespace

void EnhancedMathFunctions::setProjection(float *const out, float const *const normal, float offset,
                                          float const *const dir) const {
    const float e = dot3(normal, dir);
    // Exact zero test: dir lies in the plane; out is left as it was.
    if (e == 0.0f)
        return;
    const double i = 1.0 / e;
    const float col[3] = {float(-double(dir[0]) * i), float(-double(dir[1]) * i), float(-double(dir[2]) * i)};
    multAffineColRow(out, col, normal);
    out[0] = float(double(out[0]) + 1.0);
    out[5] = float(double(out[5]) + 1.0);
    out[10] = float(double(out[10]) + 1.0);
    const float g = -offset;
    out[12] = float(double(g) * dir[0] * i);
    out[13] = float(double(g) * dir[1] * i);
    out[14] = float(double(g) * dir[2] * i);
    out[15] = 1.0f;
}

void EnhancedMathFunctions::multAffineMatrices(float *const out, float const *const a,
                                               float const *const b) const {
    // Ascending stores: out must be distinct from a and b. Bottom rows are not read.
    for (int c = 0; c < 3; ++c) {
        for (int r = 0; r < 3; ++r) {
            out[4 * c + r] = float(double(a[r]) * b[4 * c] + double(a[4 + r]) * b[4 * c + 1] +
                                   double(a[8 + r]) * b[4 * c + 2]);
        }
    }
    out[3] = 0.0f;
    out[7] = 0.0f;
    out[11] = 0.0f;
    for (int r = 0; r < 3; ++r)
        out[12 + r] =
            float(double(a[r]) * b[12] + double(a[4 + r]) * b[13] + double(a[8 + r]) * b[14] + a[12 + r]);
    out[15] = 1.0f;
}

void EnhancedMathFunctions::multAffineMatrixVec3f(float *const out, float const *const m,
                                                  float const *const v) const {
    const float x = v[0];
    const float y = v[1];
    const float z = v[2];
    for (int k = 0; k < 3; ++k)
        out[k] = float(double(m[k]) * x + double(m[4 + k]) * y + double(m[8 + k]) * z + m[12 + k]);
}

void EnhancedMathFunctions::multAffineMatrixVec3fAsDir(float *const out, float const *const m,
                                                       float const *const v) const {
    const float x = v[0];
    const float y = v[1];
    const float z = v[2];
    for (int k = 0; k < 3; ++k)
        out[k] = float(double(m[k]) * x + double(m[4 + k]) * y + double(m[8 + k]) * z);
}

void EnhancedMathFunctions::multAffineColRow(float *const out, float const *const col,
                                             float const *const row) const {
    for (int c = 0; c < 3; ++c) {
        for (int r = 0; r < 3; ++r)
            out[4 * c + r] = float(double(col[r]) * row[c]);
    }
    out[3] = 0.0f;
    out[7] = 0.0f;
    out[11] = 0.0f;
}

void EnhancedMathFunctions::transposeAffine(float *const out, float const *const m) const {
    for (int c = 0; c < 3; ++c) {
        for (int r = 0; r < 3; ++r)
            out[4 * c + r] = m[4 * r + c];
    }
}

void EnhancedMathFunctions::multLeftByRotateX(float *const m, float angle) const {
    const AxisTurn t = axisTurn(angle);
    for (int j = 0; j < 4; ++j)
        turnMinus(m, 4 * j + 1, 4 * j + 2, t);
}

void EnhancedMathFunctions::multRightByRotateX(float *const m, float angle) const {
    const AxisTurn t = axisTurn(angle);
    for (int i = 0; i < 4; ++i)
        turnPlus(m, 4 + i, 8 + i, t);
}

void EnhancedMathFunctions::multLeftByRotateY(float *const m, float angle) const {
    const AxisTurn t = axisTurn(angle);
    for (int j = 0; j < 4; ++j)
        turnPlus(m, 4 * j, 4 * j + 2, t);
}

void EnhancedMathFunctions::multRightByRotateY(float *const m, float angle) const {
    const AxisTurn t = axisTurn(angle);
    for (int i = 0; i < 4; ++i)
        turnMinus(m, i, 8 + i, t);
}

void EnhancedMathFunctions::multLeftByRotateZ(float *const m, float angle) const {
    const AxisTurn t = axisTurn(angle);
    for (int j = 0; j < 4; ++j)
        turnMinus(m, 4 * j, 4 * j + 1, t);
}

void EnhancedMathFunctions::multRightByRotateZ(float *const m, float angle) const {
    const AxisTurn t = axisTurn(angle);
    for (int i = 0; i < 4; ++i)
        turnPlus(m, i, 4 + i, t);
}

void EnhancedMathFunctions::multLeftByTranslate(float *const m, float const *t) const {
    for (int k = 0; k < 3; ++k)
        m[12 + k] = float(double(m[12 + k]) + t[k]);
}

void EnhancedMathFunctions::multRightByTranslate(float *const m, float const *t) const {
    // The image of t under the 3x3 block is summed first, then added.
    for (int k = 0; k < 3; ++k)
        m[12 + k] = float(double(m[12 + k]) +
                          (double(m[k]) * t[0] + double(m[4 + k]) * t[1] + double(m[8 + k]) * t[2]));
}

void EnhancedMathFunctions::multLeftByScale(float *const m, float const *s) const {
    for (int j = 0; j < 4; ++j) {
        for (int k = 0; k < 3; ++k)
            m[4 * j + k] = float(double(m[4 * j + k]) * s[k]);
    }
}

void EnhancedMathFunctions::multRightByScale(float *const m, float const *s) const {
    for (int j = 0; j < 3; ++j) {
        for (int k = 0; k < 3; ++k)
            m[4 * j + k] = float(double(m[4 * j + k]) * s[j]);
    }
}

bool EnhancedMathFunctions::inverse3(float *const out, float const *const m) const {
    return inverseMatrix(out, m);
}

bool EnhancedMathFunctions::inverseAffine(float *const out, float const *const m) const {
    return inverseMatrix(out, m);
}

bool EnhancedMathFunctions::inverseScale(float *const m) const {
    // Exact zero tests, all three before anything is written.
    if (m[0] == 0.0f || m[5] == 0.0f || m[10] == 0.0f)
        return false;
    m[0] = float(1.0 / m[0]);
    m[5] = float(1.0 / m[5]);
    m[10] = float(1.0 / m[10]);
    return true;
}

bool EnhancedMathFunctions::inverseScale(float *const out, float const *const m) const {
    const float sx = m[0];
    const float sy = m[5];
    const float sz = m[10];
    if (sx == 0.0f || sy == 0.0f || sz == 0.0f)
        return false;
    for (int i = 0; i < 16; ++i)
        out[i] = 0.0f;
    out[0] = float(1.0 / sx);
    out[5] = float(1.0 / sy);
    out[10] = float(1.0 / sz);
    out[15] = 1.0f;
    return true;
}

bool EnhancedMathFunctions::inverseTranslate(float *const m) const {
    m[12] = -m[12];
    m[13] = -m[13];
    m[14] = -m[14];
    return true;
}

bool EnhancedMathFunctions::inverseTranslate(float *const out, float const *const m) const {
    const float tx = m[12];
    const float ty = m[13];
    const float tz = m[14];
    for (int i = 0; i < 16; ++i)
        out[i] = (i % 5 == 0) ? 1.0f : 0.0f;
    out[12] = -tx;
    out[13] = -ty;
    out[14] = -tz;
    return true;
}

bool EnhancedMathFunctions::inverseRotate(float *const out, float const *const m) const {
    transposeAffine(out, m);
    return true;
}

bool EnhancedMathFunctions::inverseRotateAndTr(float *const out, float const *const m) const {
    const float t0 = m[12];
    const float t1 = m[13];
    const float t2 = m[14];
    // Each sum is rounded to float, then negated.
    const float x = float(double(m[0]) * t0 + double(m[1]) * t1 + double(m[2]) * t2);
    const float y = float(double(m[4]) * t0 + double(m[5]) * t1 + double(m[6]) * t2);
    const float z = float(double(m[8]) * t0 + double(m[9]) * t1 + double(m[10]) * t2);
    out[12] = -x;
    out[13] = -y;
    out[14] = -z;
    transposeAffine(out, m);
    return true;
}

// MatAff4f. The kernel's affine products, rotations and transposition must not
// write an operand, so the in-place operations hand it a local copy of the
// sixteen floats.
#include "zefcore/math/MatAff4f.h"

#include <cmath>
#include <cstring>

#include "zefcore/kernel/EnhancedMathFunctions.h"
#include "zefcore/math/MatRot4f.h"

namespace {

struct Copy16 {
    float v[16];
    explicit Copy16(const float *src) { std::memcpy(v, src, sizeof v); }
};

// Returns the length of the column at col: sum and root each rounded to float.
float columnLength(const float *col) {
    float const sum = float(double(col[0]) * col[0] + double(col[1]) * col[1] + double(col[2]) * col[2]);
    return float(std::sqrt(double(sum)));
}

// Largest |dot| of two unit columns that getRSDecomp still takes as orthogonal
// (double; the bound itself passes).
constexpr double kOrthogonalDot = 0.0001;

} // namespace

MatAff4f::MatAff4f() : MatAff4fBase() {}

MatAff4f::MatAff4f(const MatAff4fBase &m) : MatAff4fBase(m) {}

MatAff4f::MatAff4f(const MatAff4f &m) : MatAff4fBase(m) {}

MatAff4f MatAff4f::identity() {
    return MatAff4f();
}

MatAff4f MatAff4f::translate(const Vector3f &t) {
    MatAff4f result;
    result.setTranslate(t);
    return result;
}

MatAff4f MatAff4f::scale(const Vector3f &s) {
    MatAff4f result;
    result.setScale(s);
    return result;
}

void MatAff4f::setTranslate(const Vector3f &t) {
    EnhancedMathFunctions::getCurrent()->setTranslate(m_value, t.getValue());
}

void MatAff4f::setScale(const Vector3f &s) {
    EnhancedMathFunctions::getCurrent()->setScale(m_value, s.getValue());
}

void MatAff4f::setScaleAround(const Vector3f &s, const Vector3f &center) {
    Vector3f const back = -center;
    EnhancedMathFunctions::getCurrent()->setTranslate(m_value, back.getValue());
    EnhancedMathFunctions::getCurrent()->multLeftByScale(m_value, s.getValue());
    EnhancedMathFunctions::getCurrent()->multLeftByTranslate(m_value, center.getValue());
}

void MatAff4f::setRotate(float x, float y, float z) {
    float const angles[3] = {x, y, z};
    EnhancedMathFunctions::getCurrent()->eulerToMatrix(m_value, angles);
}

void MatAff4f::setRotateAround(const Vector3f &axis, float angle, const Vector3f &center) {
    Vector3f const back = -center;
    EnhancedMathFunctions::getCurrent()->setTranslate(m_value, back.getValue());
    multLeftByRotate(axis, angle);
    EnhancedMathFunctions::getCurrent()->multLeftByTranslate(m_value, center.getValue());
}

void MatAff4f::setBase(const Vector3f &x, const Vector3f &y, const Vector3f &z, const Vector3f &origin) {
    Mat4fBase::setValue(x.x(), x.y(), x.z(), 0.0f, y.x(), y.y(), y.z(), 0.0f, z.x(), z.y(), z.z(), 0.0f,
                        origin.x(), origin.y(), origin.z(), 1.0f);
}

void MatAff4f::setNormalized2Viewport(const Vector2s &size) {
    float const a = float(0.5 * size.x());
    float const b = float(0.5 * size.y());
    Mat4fBase::setValue(a, 0.0f, 0.0f, 0.0f, 0.0f, b, 0.0f, 0.0f, 0.0f, 0.0f, 0.5f, 0.0f, a, b, 0.5f, 1.0f);
}

void MatAff4f::multLeftBy(const MatAff4fBase &m) {
    Copy16 const copy(m_value);
    // m as this object is read from the copy too: the result must not be an operand.
    const float *left = (m.getValue() == m_value) ? copy.v : m.getValue();
    EnhancedMathFunctions::getCurrent()->multAffineMatrices(m_value, left, copy.v);
}

void MatAff4f::multRightBy(const MatAff4fBase &m) {
    Copy16 const copy(m_value);
    const float *right = (m.getValue() == m_value) ? copy.v : m.getValue();
    EnhancedMathFunctions::getCurrent()->multAffineMatrices(m_value, copy.v, right);
}

MatAff4f &MatAff4f::operator*=(const MatAff4fBase &m) {
    multRightBy(m);
    return *this;
}

MatAff4f &MatAff4f::operator*=(float s) {
    float const factors[3] = {s, s, s};
    EnhancedMathFunctions::getCurrent()->multLeftByScale(m_value, factors);
    return *this;
}

void MatAff4f::multLeftByScale(const Vector3f &s) {
    EnhancedMathFunctions::getCurrent()->multLeftByScale(m_value, s.getValue());
}

void MatAff4f::multLeftByTranslate(const Vector3f &t) {
    EnhancedMathFunctions::getCurrent()->multLeftByTranslate(m_value, t.getValue());
}

void MatAff4f::multLeftByRotate(const Vector3f &axis, float angle) {
    Copy16 const copy(m_value);
    EnhancedMathFunctions::getCurrent()->multLeftByRotate(m_value, copy.v, axis.getValue(), angle);
}

void MatAff4f::multRightByRotate(const Vector3f &axis, float angle) {
    Copy16 const copy(m_value);
    EnhancedMathFunctions::getCurrent()->multRightByRotate(m_value, copy.v, axis.getValue(), angle);
}

const MatAff4f &MatAff4f::inverse(bool &ok) {
    Copy16 const copy(m_value);
    ok = EnhancedMathFunctions::getCurrent()->inverseAffine(m_value, copy.v);
    return *this;
}

const MatAff4f &MatAff4f::transpose3() {
    Copy16 const copy(m_value);
    EnhancedMathFunctions::getCurrent()->transposeAffine(m_value, copy.v);
    return *this;
}

void MatAff4f::getTMSDecomp(Vector3f &translation, MatAff4f &axes, Vector3f &scale) const {
    // Everything is read before anything is written: axes may be this object.
    Copy16 const m(m_value);
    translation.setValue(m.v[12], m.v[13], m.v[14]);
    float s[3];
    for (int c = 0; c < 3; ++c) {
        const float *col = m.v + 4 * c;
        // Zero and NaN on the diagonal keep the sign +1.
        float const sign = (col[c] < 0.0f) ? -1.0f : 1.0f;
        s[c] = float(double(sign) * columnLength(col));
    }
    scale.setValue(s[0], s[1], s[2]);
    for (int c = 0; c < 3; ++c) {
        // A true division by the stored float, not a product with its reciprocal.
        for (int r = 0; r < 3; ++r)
            axes.m_value[4 * c + r] = float(double(m.v[4 * c + r]) / s[c]);
        axes.m_value[4 * c + 3] = 0.0f;
    }
    axes.m_value[12] = 0.0f;
    axes.m_value[13] = 0.0f;
    axes.m_value[14] = 0.0f;
    axes.m_value[15] = 1.0f;
}

void MatAff4f::setScale(const Vector3f &axis, float factor) {
    MatRot4f r(axis, Vector3f::m_axis[0], Vector3f::m_zero);
    EnhancedMathFunctions::getCurrent()->copyMat4fTo(m_value, r.getValue());
    multLeftByScale(Vector3f(factor, 1.0f, 1.0f));
    r.inverse();
    multLeftBy(r);
}

bool MatAff4f::getRSDecomp(MatRot4f &rotation, Vector3f &scale) const {
    Vector3f col[3] = {Vector3f(m_value), Vector3f(m_value + 4), Vector3f(m_value + 8)};
    Vector3f const t(m_value + 12);
    float len[3];
    for (int c = 0; c < 3; ++c)
        len[c] = columnLength(col[c].getValue());
    // Written before the test: the lengths stand also when the result is false.
    scale.setValue(len[0], len[1], len[2]);
    for (int c = 0; c < 3; ++c) {
        // Exact test; a NaN length counts as not 0.
        if (len[c] != 0.0f) {
            float const r = float(1.0 / double(len[c]));
            col[c] *= r;
        }
    }
    float const dxy = std::fabs(Vector3f::dot(col[0], col[1]));
    if (dxy > kOrthogonalDot)
        return false;
    float const dxz = std::fabs(Vector3f::dot(col[0], col[2]));
    if (dxz > kOrthogonalDot)
        return false;
    float const dyz = std::fabs(Vector3f::dot(col[1], col[2]));
    if (dyz > kOrthogonalDot)
        return false;
    rotation.setFromXYZ2Axis(col[0], col[1], col[2], t);
    return true;
}

bool MatAff4f::getTRSDecomp(Vector3f &translation, MatRot4f &rotation, Vector3f &scale) const {
    if (!getRSDecomp(rotation, scale))
        return false;
    float *const rv = rotation.getValue();
    translation.setValue(rv[12], rv[13], rv[14]);
    rv[12] = 0.0f;
    rv[13] = 0.0f;
    rv[14] = 0.0f;
    return true;
}

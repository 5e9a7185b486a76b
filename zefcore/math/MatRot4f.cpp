// MatRot4f and its free product. The kernel's affine products and inverses must
// not write an operand, so the in-place operations hand it a local copy.
#include "zefcore/math/MatRot4f.h"

#include <cstring>

#include "zefcore/kernel/EnhancedMathFunctions.h"
#include "zefcore/math/MatAff4f.h"
#include "zefcore/math/Matrix4f.h"
#include "zefcore/math/Quaternion.h"

namespace {

struct Copy16 {
    float v[16];
    explicit Copy16(const float *src) { std::memcpy(v, src, sizeof v); }
};

// Below this squared length of from x to (double; a NaN is not below it) two
// directions count as parallel: no division by their lengths.
constexpr double kParallelCross2 = 1e-8;
// Above this angle (double) parallel directions are opposite.
constexpr double kHalfPi = 1.5707963267948966;
// The half turn made for opposite directions.
constexpr float kPi = 3.1415927f;
// Orthonormality tolerance of setFromMatrix4f: the float nearest 0.0001.
constexpr float kOrthonormalTolerance = 1e-4f;

} // namespace

MatRot4f::MatRot4f() : MatAff4fBase() {
    EnhancedMathFunctions::getCurrent()->setIdentity(m_value);
}

MatRot4f::MatRot4f(const MatRot4f &m) : MatAff4fBase() {
    EnhancedMathFunctions::getCurrent()->copyMat4fTo(m_value, m.m_value);
}

MatRot4f::MatRot4f(const Vector3f &axis, float angle, const Vector3f &t) : MatAff4fBase() {
    setValue(axis, angle, t);
}

MatRot4f::MatRot4f(float x, float y, float z, const Vector3f &t) : MatAff4fBase() {
    setValue(x, y, z, t);
}

MatRot4f::MatRot4f(const Vector3f &from, const Vector3f &to, const Vector3f &t) : MatAff4fBase() {
    setValue(from, to, t);
}

void MatRot4f::setValue(const Vector3f &axis, float angle, const Vector3f &t) {
    float q[4];
    EnhancedMathFunctions::getCurrent()->axisToQuaternionU(q, axis.getValue(), angle);
    EnhancedMathFunctions::getCurrent()->quaternionToMatrix(m_value, q);
    EnhancedMathFunctions::getCurrent()->copyVec3fTo(m_value + 12, t.getValue());
}

void MatRot4f::setValue(float x, float y, float z, const Vector3f &t) {
    float const angles[3] = {x, y, z};
    EnhancedMathFunctions::getCurrent()->eulerToMatrix(m_value, angles);
    EnhancedMathFunctions::getCurrent()->copyVec3fTo(m_value + 12, t.getValue());
}

void MatRot4f::setValue(const Quaternion &q, const Vector3f &t) {
    EnhancedMathFunctions::getCurrent()->quaternionToMatrix(m_value, q.getValue());
    EnhancedMathFunctions::getCurrent()->copyVec3fTo(m_value + 12, t.getValue());
}

void MatRot4f::setValue(const Vector3f &from, const Vector3f &to, const Vector3f &t) {
    Vector3f axis;
    Vector3f::cross(axis, from, to);
    float const angle = from.angle(to);
    float const s = Vector3f::dot(axis, axis);
    if (!(s < kParallelCross2)) {
        setValue(axis, angle, t);
        return;
    }
    if (angle > kHalfPi) {
        Vector3f o;
        from.findOrthogonalVector(o);
        setValue(o, kPi, t);
        return;
    }
    EnhancedMathFunctions::getCurrent()->setTranslate(m_value, t.getValue());
}

void MatRot4f::setRotateAround(const Vector3f &axis, float angle, const Vector3f &center) {
    setValue(axis, angle, center);
    Vector3f const back = -center;
    EnhancedMathFunctions::getCurrent()->multRightByTranslate(m_value, back.getValue());
}

void MatRot4f::setRotateAround(float x, float y, float z, const Vector3f &center) {
    setValue(x, y, z, center);
    Vector3f const back = -center;
    EnhancedMathFunctions::getCurrent()->multRightByTranslate(m_value, back.getValue());
}

void MatRot4f::setRotateAround(const Vector3f &from, const Vector3f &to, const Vector3f &center) {
    setValue(from, to, center);
    Vector3f const back = -center;
    EnhancedMathFunctions::getCurrent()->multRightByTranslate(m_value, back.getValue());
}

void MatRot4f::setFromTo(const Vector3f &fromDir, const Vector3f &toDir, const Vector3f &fromPoint,
                         const Vector3f &toPoint) {
    setValue(fromDir, toDir, Vector3f::m_zero);
    Vector3f const back = -fromPoint;
    EnhancedMathFunctions::getCurrent()->multRightByTranslate(m_value, back.getValue());
    EnhancedMathFunctions::getCurrent()->multLeftByTranslate(m_value, toPoint.getValue());
}

bool MatRot4f::setFromMatrix4f(const Mat4fBase &m) {
    Matrix4f w;
    EnhancedMathFunctions::getCurrent()->copyMat4fTo(w.getValue(), m.getValue());
    float *const wv = w.getValue();
    // Exact tests: a negative zero stays, a NaN is cleared.
    static const int cleared[6] = {3, 7, 11, 12, 13, 14};
    for (int i : cleared) {
        if (wv[i] != 0.0f)
            wv[i] = 0.0f;
    }
    if (wv[15] != 0.0f)
        wv[15] = 1.0f;
    Matrix4f a;
    EnhancedMathFunctions::getCurrent()->transpose(a.getValue(), wv);
    Matrix4f const p = w * a;
    if (!p.equals(MatAff4f::identity(), kOrthonormalTolerance))
        return false;
    // The argument's own elements, not the cleaned copy's.
    EnhancedMathFunctions::getCurrent()->copyMat4fTo(m_value, m.getValue());
    return true;
}

void MatRot4f::setFromXYZ2Axis(const Vector3f &x, const Vector3f &y, const Vector3f &z,
                               const Vector3f &origin) {
    Mat4fBase::setValue(x.x(), x.y(), x.z(), 0.0f, y.x(), y.y(), y.z(), 0.0f, z.x(), z.y(), z.z(), 0.0f,
                        origin.x(), origin.y(), origin.z(), 1.0f);
}

void MatRot4f::setFromAxis2XYZ(const Vector3f &x, const Vector3f &y, const Vector3f &z,
                               const Vector3f &origin) {
    float const dx = Vector3f::dot(x, origin);
    float const dy = Vector3f::dot(y, origin);
    float const dz = Vector3f::dot(z, origin);
    Mat4fBase::setValue(x.x(), y.x(), z.x(), 0.0f, x.y(), y.y(), z.y(), 0.0f, x.z(), y.z(), z.z(), 0.0f, -dx,
                        -dy, -dz, 1.0f);
}

void MatRot4f::setFromAxis2Axis(const Vector3f &x1, const Vector3f &y1, const Vector3f &z1,
                                const Vector3f &x2, const Vector3f &y2, const Vector3f &z2,
                                const Vector3f &origin1, const Vector3f &origin2) {
    setFromAxis2XYZ(x1, y1, z1, origin1);
    MatRot4f l;
    l.setFromXYZ2Axis(x2, y2, z2, origin2);
    multLeftBy(l);
}

void MatRot4f::getEuler(float *const angles) {
    EnhancedMathFunctions::getCurrent()->matrixToEuler(angles, m_value);
}

void MatRot4f::getEuler(float &x, float &y, float &z) {
    float angles[3];
    EnhancedMathFunctions::getCurrent()->matrixToEuler(angles, m_value);
    x = angles[0];
    y = angles[1];
    z = angles[2];
}

const MatRot4f &MatRot4f::inverse() {
    Copy16 const copy(m_value);
    EnhancedMathFunctions::getCurrent()->inverseRotateAndTr(m_value, copy.v);
    return *this;
}

const MatRot4f &MatRot4f::transpose3() {
    Copy16 const copy(m_value);
    EnhancedMathFunctions::getCurrent()->transposeAffine(m_value, copy.v);
    return *this;
}

void MatRot4f::multLeftBy(const MatRot4f &m) {
    Copy16 const copy(m_value);
    // m as this object is read from the copy too: the result must not be an operand.
    const float *left = (&m == this) ? copy.v : m.m_value;
    EnhancedMathFunctions::getCurrent()->multAffineMatrices(m_value, left, copy.v);
}

void MatRot4f::multRightBy(const MatRot4f &m) {
    Copy16 const copy(m_value);
    const float *right = (&m == this) ? copy.v : m.m_value;
    EnhancedMathFunctions::getCurrent()->multAffineMatrices(m_value, copy.v, right);
}

MatRot4f &MatRot4f::operator*=(const MatRot4f &m) {
    multRightBy(m);
    return *this;
}

void MatRot4f::multLeftByTranslate(const Vector3f &t) {
    EnhancedMathFunctions::getCurrent()->multLeftByTranslate(m_value, t.getValue());
}

void MatRot4f::multRightByTranslate(const Vector3f &t) {
    EnhancedMathFunctions::getCurrent()->multRightByTranslate(m_value, t.getValue());
}

MatRot4f operator*(const MatRot4f &a, const MatRot4f &b) {
    MatRot4f result;
    EnhancedMathFunctions::getCurrent()->multAffineMatrices(result.getValue(), a.getValue(), b.getValue());
    return result;
}

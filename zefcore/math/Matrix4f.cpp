// Matrix4f and the free operators on Mat4fBase that are not defined in the
// header. The kernel's transpose must not write an operand, so the in-place
// transpose hands it a local copy of the sixteen floats.
#include "zefcore/math/Matrix4f.h"

#include <cstring>

#include "zefcore/kernel/EnhancedMathFunctions.h"

namespace {

struct Copy16 {
    float v[16];
    explicit Copy16(const float *src) { std::memcpy(v, src, sizeof v); }
};

} // namespace

Matrix4f::Matrix4f(int init) : Mat4fBase() {
    // Any other value keeps the identity the base constructor gave.
    if (init == 1)
        EnhancedMathFunctions::getCurrent()->setIdentity(m_value);
    else if (init == 0)
        EnhancedMathFunctions::getCurrent()->setZero(m_value);
}

Matrix4f::Matrix4f(const Mat4fBase &m) : Mat4fBase() {
    EnhancedMathFunctions::getCurrent()->copyMat4fTo(m_value, m.getValue());
}

Matrix4f::Matrix4f(const float *values) : Mat4fBase() {
    EnhancedMathFunctions::getCurrent()->copyMat4fTo(m_value, values);
}

void Matrix4f::setValue(const Mat4fBase &m) {
    EnhancedMathFunctions::getCurrent()->copyMat4fTo(m_value, m.getValue());
}

void Matrix4f::setZero() {
    EnhancedMathFunctions::getCurrent()->setZero(m_value);
}

void Matrix4f::setIdentity() {
    EnhancedMathFunctions::getCurrent()->setIdentity(m_value);
}

const Matrix4f &Matrix4f::transpose() {
    Copy16 const copy(m_value);
    EnhancedMathFunctions::getCurrent()->transpose(m_value, copy.v);
    return *this;
}

void Matrix4f::getTranspose(Matrix4f &out) const {
    if (&out == this) {
        Copy16 const copy(m_value);
        EnhancedMathFunctions::getCurrent()->transpose(out.m_value, copy.v);
        return;
    }
    EnhancedMathFunctions::getCurrent()->transpose(out.m_value, m_value);
}

const Matrix4f &Matrix4f::negate() {
    // Element-wise: the kernel runs in place, no copy.
    EnhancedMathFunctions::getCurrent()->neg(m_value, m_value);
    return *this;
}

const Matrix4f &Matrix4f::abs() {
    EnhancedMathFunctions::getCurrent()->abs(m_value, m_value);
    return *this;
}

bool Matrix4f::isFront(const Vector3f &point, const Vector3f &normal) const {
    float const nx = normal.x();
    float const ny = normal.y();
    float const nz = normal.z();
    Vector4f const p(point.x(), point.y(), point.z(), 1.0f);
    Vector4f a;
    Vector4f b;
    // NaN fails both comparisons and takes the first branch.
    if (nx > 0.5f || nx < -0.5f) {
        a = Vector4f(ny, -nx, 0.0f, 0.0f);
        b = Vector4f(float(double(nz) * nx), float(double(nz) * ny), float(double(nz) * nz - 1.0), 0.0f);
    } else {
        a = Vector4f(0.0f, nz, -ny, 0.0f);
        b = Vector4f(float(double(nx) * nx - 1.0), float(double(nx) * ny), float(double(nx) * nz), 0.0f);
    }

    Vector4f r0;
    Vector4f r1;
    Vector4f r2;
    EnhancedMathFunctions::getCurrent()->multMatrixVec4f(r0.getValue(), m_value, p.getValue());
    EnhancedMathFunctions::getCurrent()->multMatrixVec4f(r2.getValue(), m_value, a.getValue());
    EnhancedMathFunctions::getCurrent()->multMatrixVec4f(r1.getValue(), m_value, b.getValue());

    float const m1 = float(double(r2.x()) * r1.y() - double(r1.x()) * r2.y());
    float const m2 = float(double(r2.x()) * r0.y() - double(r2.y()) * r0.x());
    float const m3 = float(double(r0.x()) * r1.y() - double(r1.x()) * r0.y());
    float const f = float(double(m1) * r0.w() - double(m2) * r1.w() - double(m3) * r2.w());
    // Strict: f == 0 and NaN give false.
    return f < 0.0f;
}

Matrix4f operator+(const Mat4fBase &a, const Mat4fBase &b) {
    Matrix4f result;
    EnhancedMathFunctions::getCurrent()->addMatrices(result.getValue(), a.getValue(), b.getValue());
    return result;
}

Matrix4f operator-(const Mat4fBase &a, const Mat4fBase &b) {
    Matrix4f result;
    EnhancedMathFunctions::getCurrent()->subMatrices(result.getValue(), a.getValue(), b.getValue());
    return result;
}

Matrix4f operator*(float s, const Mat4fBase &m) {
    Matrix4f result;
    EnhancedMathFunctions::getCurrent()->multMatrixScalar(result.getValue(), m.getValue(), s);
    return result;
}

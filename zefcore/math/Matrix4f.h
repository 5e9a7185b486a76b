/// \file
/// Matrix4f: the general 4x4 matrix, and the free arithmetic operators on
/// Mat4fBase. Storage order and precision are those of EnhancedMathFunctions.h;
/// each operation asks the current kernel anew and makes one virtual call per
/// kernel operation. Plain value: sixteen floats, no destructor of its own.
#pragma once

#include <cstring>
#include <type_traits>

#include "zefcore/ZEFExport.h"
#include "zefcore/kernel/EnhancedMathFunctions.h"
#include "zefcore/math/Mat4fBase.h"
#include "zefcore/math/Vector3f.h"

/// The general 4x4 matrix; its arithmetic runs through the current kernel.
class ZEFCORE_API Matrix4f : public Mat4fBase {
public:
    // ---- construction and access -----------------------------------------
    /// Sets the identity through the kernel's setIdentity.
    Matrix4f();
    /// Sets all zeros for 0, else the identity (the kernel is asked for 0 and 1 only).
    explicit Matrix4f(int init);
    /// Sets a copy of m.
    Matrix4f(const Mat4fBase &m);
    /// Sets values[0..15], in storage order.
    explicit Matrix4f(const float *values);
    /// Sets a copy of m.
    Matrix4f(const Matrix4f &m) = default;
    /// Sets the sixteen elements in storage order.
    constexpr Matrix4f(float a0, float a1, float a2, float a3, float a4, float a5, float a6, float a7,
                       float a8, float a9, float a10, float a11, float a12, float a13, float a14, float a15)
        : Mat4fBase(a0, a1, a2, a3, a4, a5, a6, a7, a8, a9, a10, a11, a12, a13, a14, a15) {}
    /// Sets this object to a copy of m; returns it.
    Matrix4f &operator=(const Matrix4f &m) = default;

    /// The base class's forms of getValue stay visible beside the one below.
    using Mat4fBase::getValue;
    using Mat4fBase::setValue;
    /// Returns a pointer to the sixteen floats in storage order.
    float *getValue() { return m_value; }
    /// Sets this = m.
    void setValue(const Mat4fBase &m);
    /// Sets all sixteen elements to 0.
    void setZero();
    /// Sets the identity.
    void setIdentity();

    // ---- products ---------------------------------------------------------
    /// Sets this = m * this. Aliasing: m may be this object.
    void multLeftBy(const Mat4fBase &m);
    /// Sets this = this * m. Aliasing: m may be this object.
    void multRightBy(const Mat4fBase &m);
    /// Sets this = this * m; returns this object. Aliasing: m may be this object.
    Matrix4f &operator*=(const Mat4fBase &m);

    // ---- whole-matrix operations -----------------------------------------
    /// Sets this to its inverse and ok to true; returns this object.
    /// Unchanged on failure: a singular matrix stays as it was, ok = false.
    const Matrix4f &inverse(bool &ok);
    /// Transposes all sixteen elements; returns this object.
    const Matrix4f &transpose();
    /// Sets out = the transpose of this; this is left alone. Aliasing: out may be this object.
    void getTranspose(Matrix4f &out) const;
    /// Negates every element; returns this object.
    const Matrix4f &negate();
    /// Replaces every element by its magnitude; returns this object.
    const Matrix4f &abs();

    /// Returns true if the surface element at point with the unit normal faces
    /// forwards after this matrix, read as a homogeneous projection: f < 0 for f
    /// minus the determinant of the (x, y, w) rows of M*point and M*two tangents.
    /// Precision: tangents, the three minors and f rounded to float.
    /// Degenerate: false for f == 0 or NaN. normal is not normalised.
    bool isFront(const Vector3f &point, const Vector3f &normal) const;
};

/// Each returns a new object, default-constructed and then filled by the kernel.
/// Returns the element-wise a + b.
ZEFCORE_API Matrix4f operator+(const Mat4fBase &a, const Mat4fBase &b);
/// Returns the element-wise a - b.
ZEFCORE_API Matrix4f operator-(const Mat4fBase &a, const Mat4fBase &b);
/// Returns the product a * b: b acts first.
Matrix4f operator*(const Mat4fBase &a, const Mat4fBase &b);
/// Returns all sixteen elements of m times s.
ZEFCORE_API Matrix4f operator*(float s, const Mat4fBase &m);
/// Returns the point m * v with the homogeneous divide; (0, 0, 0) when w is exactly 0.
Vector3f operator*(const Mat4fBase &m, const Vector3f &v);

// The products, the inverse and the default constructor are defined here, so
// that an application's call reaches the kernel's virtual operation directly.
// They only pick operands and call the kernel: no arithmetic is compiled into
// the caller. The in-place operations hand the kernel a copy of this object's
// sixteen floats: multMatrices and inverseMatrix are never given an operand
// that is also their result.

inline Matrix4f::Matrix4f() : Mat4fBase() {
    EnhancedMathFunctions::getCurrent()->setIdentity(m_value);
}

inline void Matrix4f::multLeftBy(const Mat4fBase &m) {
    float copy[16];
    std::memcpy(copy, m_value, sizeof copy);
    const float *left = (m.getValue() == m_value) ? copy : m.getValue();
    EnhancedMathFunctions::getCurrent()->multMatrices(m_value, left, copy);
}

inline void Matrix4f::multRightBy(const Mat4fBase &m) {
    float copy[16];
    std::memcpy(copy, m_value, sizeof copy);
    const float *right = (m.getValue() == m_value) ? copy : m.getValue();
    EnhancedMathFunctions::getCurrent()->multMatrices(m_value, copy, right);
}

inline Matrix4f &Matrix4f::operator*=(const Mat4fBase &m) {
    multRightBy(m);
    return *this;
}

inline const Matrix4f &Matrix4f::inverse(bool &ok) {
    float copy[16];
    std::memcpy(copy, m_value, sizeof copy);
    ok = EnhancedMathFunctions::getCurrent()->inverseMatrix(m_value, copy);
    return *this;
}

inline Matrix4f operator*(const Mat4fBase &a, const Mat4fBase &b) {
    Matrix4f result;
    EnhancedMathFunctions::getCurrent()->multMatrices(result.getValue(), a.getValue(), b.getValue());
    return result;
}

inline Vector3f operator*(const Mat4fBase &m, const Vector3f &v) {
    Vector3f result;
    EnhancedMathFunctions::getCurrent()->multMatrixVec3f(result.getValue(), m.getValue(), v.getValue());
    return result;
}

static_assert(sizeof(Matrix4f) == 16 * sizeof(float), "Matrix4f is sixteen floats");
static_assert(std::is_standard_layout<Matrix4f>::value, "Matrix4f has standard layout");
static_assert(!std::is_polymorphic<Matrix4f>::value, "Matrix4f has no virtual operation");
static_assert(std::is_trivially_copyable<Matrix4f>::value, "Matrix4f copies as bytes");
static_assert(std::is_trivially_destructible<Matrix4f>::value, "Matrix4f has no destructor");

/// \file
/// Mat4fBase: the root of the matrix classes. It owns the sixteen floats, in the
/// storage order of EnhancedMathFunctions.h (flat index 4*c + r, column after
/// column; the translation at 12, 13, 14), and offers the operations that only
/// read a matrix. Plain value: no virtual operation, no destructor of its own.
/// Every arithmetic call asks the current kernel anew.
#pragma once

#include <type_traits>

#include "zefcore/ZEFExport.h"
#include "zefcore/kernel/EnhancedMathFunctions.h"
#include "zefcore/math/Vector3f.h"
#include "zefcore/math/Vector4f.h"

class MatAff4f;
class MatRot4f;

/// The root of the matrix classes: sixteen floats in storage order and the operations that
/// only read them.
class ZEFCORE_API Mat4fBase {
public:
    /// The identity. Constant-initialised, so it holds its value before any
    /// static initialiser of this or another library runs.
    static const Mat4fBase m_identity;

    // ---- construction and access -----------------------------------------
    /// Sets the identity: a copy of m_identity.
    Mat4fBase() : Mat4fBase(m_identity) {}
    /// Sets a copy of m.
    Mat4fBase(const Mat4fBase &m) = default;
    /// Sets the sixteen elements in storage order: a0..a3 are column 0, a12..a14
    /// the translation.
    constexpr Mat4fBase(float a0, float a1, float a2, float a3, float a4, float a5, float a6, float a7,
                        float a8, float a9, float a10, float a11, float a12, float a13, float a14, float a15)
        : m_value{a0, a1, a2, a3, a4, a5, a6, a7, a8, a9, a10, a11, a12, a13, a14, a15} {}
    /// Sets this object to a copy of m; returns it.
    Mat4fBase &operator=(const Mat4fBase &m) = default;

    ///@{
    /// Returns a pointer to the sixteen floats in storage order.
    const float *getValue() const { return m_value; }
    float *getValue() { return m_value; }
    ///@}
    /// Sets the sixteen references to the elements, in storage order.
    void getValue(float &a0, float &a1, float &a2, float &a3, float &a4, float &a5, float &a6, float &a7,
                  float &a8, float &a9, float &a10, float &a11, float &a12, float &a13, float &a14,
                  float &a15) const;
    /// Sets the sixteen elements in storage order.
    void setValue(float a0, float a1, float a2, float a3, float a4, float a5, float a6, float a7, float a8,
                  float a9, float a10, float a11, float a12, float a13, float a14, float a15);

    /// Sets out[0..15] to the elements, bit for bit, through the kernel's copyMat4fTo.
    void getCopy(float *out) const;

    /// Returns false as soon as |this[i] - other[i]| > tolerance for some i, in
    /// storage order. Precision: the difference and its magnitude are rounded to
    /// float. A difference equal to the tolerance passes, and so does a NaN one.
    bool equals(const Mat4fBase &other, float tolerance) const;

    /// Sets out = M * in as a point, with the homogeneous divide; (0, 0, 0) when
    /// the w obtained is exactly 0. Aliasing: out may be in.
    void multRightVec3f(Vector3f &out, const Vector3f &in) const;
    /// Sets out = M * in, four components, no divide. Aliasing: out may be in.
    void multRightVec4f(Vector4f &out, const Vector4f &in) const;

    // ---- decompositions ---------------------------------------------------
    /// Sets the split of this matrix, taken about center when it is not null
    /// (T(-center) * M * T(center) is split): its 3x3 block is R * Q^T * S * Q with
    /// R = rotation, Q = scaleOrientation (into the scale's frame), S = the diagonal
    /// scaleFactor; translation = the split matrix's last column. The bottom row
    /// plays no part. Unchanged on failure: for |det| < 1e-12 the kernel's factor
    /// writes translation only, and nothing says so.
    void getTransform(Vector3f &translation, MatRot4f &rotation, Vector3f &scaleFactor,
                      MatRot4f &scaleOrientation, const Vector3f *center) const;
    /// Returns true and does nothing else: out is not written.
    bool orthoNormalizeMatrix(MatRot4f &out) const;
    /// Returns true and sets out's columns 0..2 to the unit columns of this,
    /// lengths to their lengths (Vector3f::normalize), out's translation to this
    /// one. Elements 3, 7, 11 and 15 of out keep what they held.
    /// Degenerate: a zero column stays zero with length 0. Aliasing: out may be this.
    bool normalizeMatrix(MatAff4f &out, Vector3f &lengths) const;

protected:
    float m_value[16]; ///< the sixteen elements, column after column: row r, column c at 4*c + r
};

// Defined here, so that an application's call reaches the kernel's virtual
// operation directly; no arithmetic is compiled into the caller.

inline void Mat4fBase::multRightVec3f(Vector3f &out, const Vector3f &in) const {
    EnhancedMathFunctions::getCurrent()->multMatrixVec3f(out.getValue(), m_value, in.getValue());
}

inline void Mat4fBase::multRightVec4f(Vector4f &out, const Vector4f &in) const {
    EnhancedMathFunctions::getCurrent()->multMatrixVec4f(out.getValue(), m_value, in.getValue());
}

static_assert(sizeof(Mat4fBase) == 16 * sizeof(float), "Mat4fBase is sixteen floats");
static_assert(std::is_standard_layout<Mat4fBase>::value, "Mat4fBase has standard layout");
static_assert(!std::is_polymorphic<Mat4fBase>::value, "Mat4fBase has no virtual operation");
static_assert(std::is_trivially_copyable<Mat4fBase>::value, "Mat4fBase copies as bytes");
static_assert(std::is_trivially_destructible<Mat4fBase>::value, "Mat4fBase has no destructor");

/// \file
/// Quaternion: a rotation held as four floats (w, x, y, z), the scalar part first,
/// in the conventions of EnhancedMathFunctions.h (Euler R = Rz * Ry * Rx, radians).
/// Plain value: no virtual operation, no destructor of its own, not kept at unit
/// length. All arithmetic and conversions ask the current kernel anew for each
/// kernel call; only norm and normalize are computed here.
#pragma once

#include <cstring>
#include <type_traits>

#include "zefcore/ZEFExport.h"
#include "zefcore/kernel/EnhancedMathFunctions.h"
#include "zefcore/math/MatRot4f.h"
#include "zefcore/math/Vector3f.h"

/// A rotation as four floats (w, x, y, z), the scalar part first.
class ZEFCORE_API Quaternion {
public:
    // ---- construction -----------------------------------------------------
    /// Sets (1, 0, 0, 0), the identity rotation.
    Quaternion() : m_value{1.0f, 0.0f, 0.0f, 0.0f} {}
    /// Sets a copy of q.
    Quaternion(const Quaternion &q) = default;
    /// Sets the unit quaternion (w >= 0) of the rotation part of m; the translation
    /// and the bottom row are not read.
    explicit Quaternion(const MatRot4f &m);
    /// Sets the rotation by angle radians about axis, of any length.
    /// Degenerate: an axis shorter than 0.0001 gives (1, 0, 0, 0).
    Quaternion(const Vector3f &axis, float angle);
    /// Sets as setValue(from, to).
    Quaternion(const Vector3f &from, const Vector3f &to);
    /// Sets the rotation of the Euler angles x, y, z (radians): X acts first, Z last.
    Quaternion(float x, float y, float z);
    /// Sets this object to a copy of q; returns it.
    Quaternion &operator=(const Quaternion &q) = default;

    // ---- setting and reading ---------------------------------------------
    /// Sets as the constructor from a matrix.
    void setValue(const MatRot4f &m);
    /// Sets as the constructor from Euler angles.
    void setValue(float x, float y, float z);
    /// Sets the rotation by from.angle(to) about from x to.
    /// Degenerate: parallel or opposite vectors, or a zero one, give (1, 0, 0, 0);
    /// there is no half turn for opposite vectors.
    void setValue(const Vector3f &from, const Vector3f &to);

    /// Returns a pointer to the four floats w, x, y, z.
    const float *getValue() const { return m_value; }
    /// Sets x, y, z to the Euler angles of this rotation, in radians: y in
    /// [-pi/2, pi/2], x and z in [-pi, pi]; at y = +-pi/2, x is 0.
    void getValue(float &x, float &y, float &z) const;
    /// Sets m to this rotation with translation (0, 0, 0), all sixteen elements
    /// written. Expects a unit quaternion.
    void getValue(MatRot4f &m) const;

    // ---- norm -------------------------------------------------------------
    /// Returns sqrt(w*w + x*x + y*y + z*z). Precision: the sum of squares is
    /// rounded to float before the root, the root rounded again.
    float norm() const;
    /// Divides each component by the norm and returns the norm before the division.
    /// Degenerate: the zero quaternion becomes four NaN and 0 is returned.
    /// Precision: each quotient rounded to float.
    float normalize();

    // ---- arithmetic -------------------------------------------------------
    /// Returns w*q.w + x*q.x + y*q.y + z*q.z. Precision: rounded after every term,
    /// in that order.
    float dot(const Quaternion &q) const;
    /// Sets this = q * this (Hamilton's product: this acts first).
    /// Aliasing: q may be this object.
    void multLeftBy(const Quaternion &q);
    /// Sets this = this * q. Aliasing: q may be this object.
    void multRightBy(const Quaternion &q);
    /// Sets this = this * conjugate(q): the quotient only for a unit q, no division
    /// by the norm. Aliasing: q may be this object.
    void div(const Quaternion &q);

    /// Returns this * q.
    Quaternion operator*(const Quaternion &q) const;
    /// Returns this * conjugate(q), as div.
    Quaternion operator/(const Quaternion &q) const;
    /// Returns the component-wise sum.
    Quaternion operator+(const Quaternion &q) const;
    /// Returns the component-wise difference.
    Quaternion operator-(const Quaternion &q) const;
    /// Sets this = this * q; returns this object. Aliasing: q may be this object.
    Quaternion &operator*=(const Quaternion &q);
    /// Sets this = this * conjugate(q); returns this object. Aliasing: q may be this object.
    Quaternion &operator/=(const Quaternion &q);

private:
    float m_value[4];
};

// The products and the conversion to a matrix are defined here, so that an
// application's call reaches the kernel's virtual operation directly. They only
// pick operands and call the kernel: no arithmetic is compiled into the caller.
// The in-place products hand the kernel a copy of this object's four floats, so
// that a kernel (or an application's override) never writes an operand it reads.

inline void Quaternion::getValue(MatRot4f &m) const {
    EnhancedMathFunctions *const kernel = EnhancedMathFunctions::getCurrent();
    kernel->quaternionToMatrix(m.getValue(), m_value);
    kernel->copyVec3fTo(m.getValue() + 12, Vector3f::m_zero.getValue());
}

inline void Quaternion::multLeftBy(const Quaternion &q) {
    float copy[4];
    std::memcpy(copy, m_value, sizeof copy);
    const float *left = (&q == this) ? copy : q.m_value;
    EnhancedMathFunctions::getCurrent()->multQuaternions(m_value, left, copy);
}

inline void Quaternion::multRightBy(const Quaternion &q) {
    float copy[4];
    std::memcpy(copy, m_value, sizeof copy);
    const float *right = (&q == this) ? copy : q.m_value;
    EnhancedMathFunctions::getCurrent()->multQuaternions(m_value, copy, right);
}

inline Quaternion Quaternion::operator*(const Quaternion &q) const {
    Quaternion result;
    EnhancedMathFunctions::getCurrent()->multQuaternions(result.m_value, m_value, q.m_value);
    return result;
}

inline Quaternion &Quaternion::operator*=(const Quaternion &q) {
    multRightBy(q);
    return *this;
}

static_assert(sizeof(Quaternion) == 4 * sizeof(float), "Quaternion is four floats");
static_assert(std::is_standard_layout<Quaternion>::value, "Quaternion has standard layout");
static_assert(!std::is_polymorphic<Quaternion>::value, "Quaternion has no virtual operation");
static_assert(std::is_trivially_copyable<Quaternion>::value, "Quaternion copies as bytes");
static_assert(std::is_trivially_destructible<Quaternion>::value, "Quaternion has no destructor");

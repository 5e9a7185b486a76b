/// \file
/// MatRot4f: a rigid transform, a rotation in the upper-left 3x3 and a
/// translation in the last column, bottom row (0, 0, 0, 1). Storage order and
/// precision are those of EnhancedMathFunctions.h. The invariant is assumed, not
/// enforced: only setFromMatrix4f tests its input. No scaling of any kind.
/// Each operation asks the current kernel anew; plain value, sixteen floats.
#pragma once

#include <type_traits>

#include "zefcore/ZEFExport.h"
#include "zefcore/math/Mat4fBase.h"
#include "zefcore/math/MatAff4fBase.h"
#include "zefcore/math/Vector3f.h"

class Quaternion;

/// A rigid transform: a rotation and a translation, no scale.
class ZEFCORE_API MatRot4f : public MatAff4fBase {
public:
    // ---- construction -----------------------------------------------------
    /// Sets the identity.
    MatRot4f();
    /// Sets a copy of m.
    MatRot4f(const MatRot4f &m);
    ///@{
    /// As setValue with the same arguments.
    MatRot4f(const Vector3f &axis, float angle, const Vector3f &t);
    MatRot4f(float x, float y, float z, const Vector3f &t);
    MatRot4f(const Vector3f &from, const Vector3f &to, const Vector3f &t);
    ///@}
    /// Sets this object to a copy of m; returns it.
    MatRot4f &operator=(const MatRot4f &m) = default;

    // ---- setting the rotation: all sixteen elements written ---------------
    // The sixteen-float form stays open; it tests nothing.
    using Mat4fBase::setValue;
    /// Sets the rotation by angle (radians) about axis, of any length, and the
    /// translation t. Degenerate: an axis shorter than 0.0001 gives no rotation.
    void setValue(const Vector3f &axis, float angle, const Vector3f &t);
    /// Sets the rotation of the Euler angles x, y, z (radians) and the translation t.
    void setValue(float x, float y, float z, const Vector3f &t);
    /// Sets the rotation of the quaternion q (taken as a unit one) and the translation t.
    void setValue(const Quaternion &q, const Vector3f &t);
    /// Sets the rotation turning the direction from into the direction to, about
    /// from x to, and the translation t. Degenerate: when |from x to|^2 < 1e-8
    /// (double; rounded to float first), opposite directions give a half turn
    /// about findOrthogonalVector(from), any other case no rotation.
    void setValue(const Vector3f &from, const Vector3f &to, const Vector3f &t);
    /// Sets the rotation about the line through center that setValue(axis, angle)
    /// gives: center stays fixed.
    void setRotateAround(const Vector3f &axis, float angle, const Vector3f &center);
    /// Sets the Euler rotation about center.
    void setRotateAround(float x, float y, float z, const Vector3f &center);
    /// Sets the rotation of from onto to about center.
    void setRotateAround(const Vector3f &from, const Vector3f &to, const Vector3f &center);
    /// Sets T(toPoint) * R * T(-fromPoint), R turning fromDir into toDir.
    void setFromTo(const Vector3f &fromDir, const Vector3f &toDir, const Vector3f &fromPoint,
                   const Vector3f &toPoint);
    /// Returns true and takes all sixteen elements of m, translation and bottom row
    /// as they stand, if the upper-left 3x3 of m is orthonormal: W * W^T equals the
    /// identity within the float nearest 0.0001, W being m with translation and
    /// bottom row cleaned (element 15 kept at 0 if 0, else 1). Mirrors pass.
    /// Unchanged on failure: this object.
    bool setFromMatrix4f(const Mat4fBase &m);
    /// Sets the frame-to-world matrix: columns x, y, z with 0 below, origin with 1
    /// below. No test.
    void setFromXYZ2Axis(const Vector3f &x, const Vector3f &y, const Vector3f &z, const Vector3f &origin);
    /// Sets the world-to-frame matrix: rows x, y, z and translation
    /// -(x.origin, y.origin, z.origin), each dot rounded to float then negated.
    void setFromAxis2XYZ(const Vector3f &x, const Vector3f &y, const Vector3f &z, const Vector3f &origin);
    /// Sets the map from frame 1 to frame 2: world-to-frame-1, then frame-2-to-world.
    void setFromAxis2Axis(const Vector3f &x1, const Vector3f &y1, const Vector3f &z1, const Vector3f &x2,
                          const Vector3f &y2, const Vector3f &z2, const Vector3f &origin1,
                          const Vector3f &origin2);

    // ---- reading and composing -------------------------------------------
    /// Sets angles[0..2] to the Euler angles (radians) of the rotation.
    void getEuler(float *const angles);
    /// Sets x, y, z to the Euler angles (radians) of the rotation.
    void getEuler(float &x, float &y, float &z);
    /// Sets the rigid inverse: 3x3 transposed, translation -R^T t; the bottom row
    /// is not written. Never fails. Returns this object.
    const MatRot4f &inverse();
    /// Transposes the upper-left 3x3 only; translation and bottom row stay.
    /// Returns this object.
    const MatRot4f &transpose3();
    /// Sets this = m * this. Aliasing: m may be this object.
    void multLeftBy(const MatRot4f &m);
    /// Sets this = this * m. Aliasing: m may be this object.
    void multRightBy(const MatRot4f &m);
    /// Sets this = this * m; returns this object. Aliasing: m may be this object.
    MatRot4f &operator*=(const MatRot4f &m);
    /// Sets this = T(t) * this: adds t to the translation.
    void multLeftByTranslate(const Vector3f &t);
    /// Sets this = this * T(t): adds R t to the translation.
    void multRightByTranslate(const Vector3f &t);
};

/// Returns the rigid product a * b (b acts first), default-constructed and then
/// filled by the kernel's affine product.
ZEFCORE_API MatRot4f operator*(const MatRot4f &a, const MatRot4f &b);

static_assert(sizeof(MatRot4f) == 16 * sizeof(float), "MatRot4f is sixteen floats");
static_assert(std::is_standard_layout<MatRot4f>::value, "MatRot4f has standard layout");
static_assert(!std::is_polymorphic<MatRot4f>::value, "MatRot4f has no virtual operation");
static_assert(std::is_trivially_destructible<MatRot4f>::value, "MatRot4f has no destructor");

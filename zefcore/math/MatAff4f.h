/// \file
/// MatAff4f: the general affine matrix. It composes translations, rotations and
/// scales, builds the usual transforms and takes an affine matrix apart again.
/// Storage order and precision are those of EnhancedMathFunctions.h; each
/// operation asks the current kernel anew, and in-place products hand the
/// kernel a local copy. Plain value: sixteen floats, no destructor of its own.
#pragma once

#include <type_traits>

#include "zefcore/ZEFExport.h"
#include "zefcore/math/MatAff4fBase.h"
#include "zefcore/math/Vector2s.h"
#include "zefcore/math/Vector3f.h"

class MatRot4f;

/// The general affine matrix: composes, builds and takes apart transforms.
class ZEFCORE_API MatAff4f : public MatAff4fBase {
public:
    // ---- construction -----------------------------------------------------
    /// Sets the identity.
    MatAff4f();
    /// Sets a copy of m; a MatRot4f converts to MatAff4f this way.
    MatAff4f(const MatAff4fBase &m);
    /// Sets a copy of m.
    MatAff4f(const MatAff4f &m);
    /// Sets this object to a copy of m; returns it.
    MatAff4f &operator=(const MatAff4f &m) = default;

    /// Returns an identity matrix.
    static MatAff4f identity();
    /// Returns the pure translation by t.
    static MatAff4f translate(const Vector3f &t);
    /// Returns the pure scale by s.
    static MatAff4f scale(const Vector3f &s);

    // ---- whole-matrix builders -------------------------------------------
    /// Sets all sixteen elements: the identity with translation t.
    void setTranslate(const Vector3f &t);
    /// Sets all sixteen elements: the diagonal (s.x, s.y, s.z, 1).
    void setScale(const Vector3f &s);
    /// Sets R^-1 * S * R, the scale by factor along axis (any non-zero length),
    /// with R the rotation of axis onto +X: the plane through the origin
    /// perpendicular to axis stays fixed, translation 0. Input not tested.
    void setScale(const Vector3f &axis, float factor);
    /// Sets T(center) * S(s) * T(-center).
    void setScaleAround(const Vector3f &s, const Vector3f &center);
    /// Sets all sixteen elements: the rotation of the Euler angles x, y, z
    /// (radians), translation 0.
    void setRotate(float x, float y, float z);
    /// Sets T(center) * R(axis, angle) * T(-center); angle in radians.
    void setRotateAround(const Vector3f &axis, float angle, const Vector3f &center);
    /// Sets columns x, y, z with 0 below and the column origin with 1 below.
    /// Nothing is normalised or tested.
    void setBase(const Vector3f &x, const Vector3f &y, const Vector3f &z, const Vector3f &origin);
    /// Sets the map of normalised device coordinates (-1..1) onto a viewport of
    /// size pixels: x to 0..size.x, y to 0..size.y (not flipped), z to 0..1.
    /// Precision: a = 0.5 * size.x and b = 0.5 * size.y rounded to float.
    void setNormalized2Viewport(const Vector2s &size);

    // ---- products ---------------------------------------------------------
    /// Sets this = m * this; the bottom row becomes (0, 0, 0, 1).
    /// Aliasing: m may be this object.
    void multLeftBy(const MatAff4fBase &m);
    /// Sets this = this * m; the bottom row becomes (0, 0, 0, 1).
    /// Aliasing: m may be this object.
    void multRightBy(const MatAff4fBase &m);
    /// Sets this = this * m; returns this object. Aliasing: m may be this object.
    MatAff4f &operator*=(const MatAff4fBase &m);
    /// Sets this = S * this for the uniform scale S by s: the translation is
    /// scaled too, the bottom row is untouched (unlike s * m). Returns this object.
    MatAff4f &operator*=(float s);
    /// Sets this = S(s) * this: rows 0..2 of all four columns scaled; the bottom
    /// row is untouched.
    void multLeftByScale(const Vector3f &s);
    /// Sets this = T(t) * this: adds t to the translation, nothing else.
    void multLeftByTranslate(const Vector3f &t);
    /// Sets this = R(axis, angle) * this; angle in radians.
    void multLeftByRotate(const Vector3f &axis, float angle);
    /// Sets this = this * R(axis, angle); angle in radians.
    void multRightByRotate(const Vector3f &axis, float angle);

    // ---- inverse and transposition ---------------------------------------
    /// Sets this to its general 4x4 inverse and ok to true; returns this object.
    /// Unchanged on failure: a singular matrix stays as it was, ok = false.
    const MatAff4f &inverse(bool &ok);
    /// Transposes the upper-left 3x3 only; translation and bottom row stay.
    /// Returns this object.
    const MatAff4f &transpose3();

    // ---- decompositions ---------------------------------------------------
    /// Sets this = T * M * S: translation = T, axes = M (all sixteen written, no
    /// translation), scale = S's diagonal, each the signed column length; a
    /// negative diagonal element moves its sign into scale.
    /// Precision: squared sum and root rounded to float; axes are column / scale.
    /// Degenerate: a zero column gives scale 0 and a column of NaN in axes.
    /// Aliasing: axes may be this object.
    void getTMSDecomp(Vector3f &translation, MatAff4f &axes, Vector3f &scale) const;
    /// Returns true and sets this = R * S: rotation = the unit columns with this
    /// translation, scale = the unsigned column lengths. False when a pair of
    /// unit columns has |dot| > 0.0001 (double; the bound passes).
    /// Unchanged on failure: rotation. scale is written in every case.
    /// Degenerate: a zero column passes and stays zero; a mirror passes.
    bool getRSDecomp(MatRot4f &rotation, Vector3f &scale) const;
    /// As getRSDecomp, then moves the translation of rotation into translation.
    /// Unchanged on failure: rotation and translation; scale is written.
    bool getTRSDecomp(Vector3f &translation, MatRot4f &rotation, Vector3f &scale) const;
};

static_assert(sizeof(MatAff4f) == 16 * sizeof(float), "MatAff4f is sixteen floats");
static_assert(std::is_standard_layout<MatAff4f>::value, "MatAff4f has standard layout");
static_assert(!std::is_polymorphic<MatAff4f>::value, "MatAff4f has no virtual operation");
static_assert(std::is_trivially_destructible<MatAff4f>::value, "MatAff4f has no destructor");

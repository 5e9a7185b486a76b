/// \file
/// EnhancedMathFunctions: the math kernel. Every matrix and quaternion operation
/// of the library is a virtual operation here, on raw float arrays; the value
/// classes forward to the current instance. An application may subclass it,
/// override any operation and install the subclass with setDefault().
///
/// Conventions, binding on every operation and every matrix class:
///
///     | m[0] m[4] m[ 8] m[12] |   column c holds the image of axis c;
///     | m[1] m[5] m[ 9] m[13] |   m[12..14] is the translation;
///     | m[2] m[6] m[10] m[14] |   the bottom row is m[3], m[7], m[11], m[15].
///     | m[3] m[7] m[11] m[15] |
///
/// - Flat index 4*c + r for row r, column c: sixteen floats, column after column.
/// - Vectors are columns on the right: p' = M * p. In a * b, b acts first.
/// - Quaternions are four floats (w, x, y, z), the scalar part first. A rotation
///   by angle t about the unit axis u is (cos(t/2), u sin(t/2)).
/// - Euler triples are (angle about X, about Y, about Z), R = Rz * Ry * Rx, so the
///   X rotation acts first. All angles are radians.
/// - Precision: stored numbers are floats; arithmetic inside one expression is
///   double; a value is rounded to float where it is stored in a float (a float
///   local, an array element, a result). Operations with a double result return
///   the unrounded double.
/// - The result array comes first. Each operation is tagged with its aliasing
///   rule: "out may alias: a, b" means it is correct in place for those operands;
///   "out must not alias an operand" means the caller copies first.
/// - Inside the class, an operation that uses a sister operation always makes the
///   virtual call, so an override changes everything built on it.
/// - No operation tests its pointers; none takes null.
#pragma once

#include "zefcore/ZEFExport.h"

/// The math kernel: every matrix and quaternion operation as a virtual operation
/// on raw float arrays.
class ZEFCORE_API EnhancedMathFunctions {
public:
    /// Builds a kernel and makes sure the fast square root seed table exists.
    EnhancedMathFunctions();

    /// Returns the current kernel, creating the default one if there is none.
    /// Never null. Each kernel call of the library asks anew; after library load
    /// this is one test and one read of a static.
    static EnhancedMathFunctions *getCurrent() { return m_current ? m_current : initDefaultMathFunctions(); }

    /// Sets this object as the current kernel: ref() on this, then unref() on the
    /// previous one (which, for the base class, destroys it). The current kernel
    /// owns itself: create it with new, hand it over, never delete it.
    /// Calling it on the kernel that is already current does nothing.
    void setDefault() const;

    /// Returns a*d - b*c, rounded to float. The arguments are a 2x2 matrix read row after row.
    float det2(float a, float b, float c, float d) const;
    /// Returns the determinant of the three rows r0, r1, r2 of three floats, in double.
    /// Precision: each 2x2 minor is computed in double and the sum is not rounded.
    double det3(float const *r0, float const *r1, float const *r2) const;
    /// Returns (a[1]*b[1] + a[0]*b[0]) + a[2]*b[2], summed in double, rounded once.
    float dot3(float const *const a, float const *const b) const;
    /// Splits the affine matrix m: M = u * r^T * S * r, translated by t; proj is set
    /// to the identity. Returns false if |det3| < 1e-12 (double): t and proj are then
    /// written, r, s and u unchanged. Sister operations by virtual call.
    bool factor(float *const r, float *const s, float *const u, float *const t, float *const proj,
                float const *const m) const;

    // The virtual operations, in their fixed slot order. Do not reorder: an
    // application's subclass depends on it.

    // ---- frame ------------------------------------------------------------
    /// Returns a new float[16] (global operator new) holding a copy of m; the caller owns it.
    virtual float *getMat4fCopy(float const *const m) const;
    /// Copies the 16 elements bit for bit. out may alias: m
    virtual void copyMat4fTo(float *const out, float const *const m) const;
    /// Copies 3 elements bit for bit. out may alias: v
    virtual void copyVec3fTo(float *const out, float const *const v) const;
    /// out = a x b, each element rounded to float as stored. out must not alias an operand
    virtual void cross(float *const out, float const *a, float const *b) const;
    /// Writes all 16 elements of the identity.
    virtual void setIdentity(float *const out) const;
    /// Writes 0 to all 16 elements.
    virtual void setZero(float *const out) const;

    // ---- matrix operations ------------------------------------------------
    /// out = a + b element-wise. out may alias: a, b
    virtual void addMatrices(float *const out, float const *const a, float const *const b) const;
    /// out = a - b element-wise. out may alias: a, b
    virtual void subMatrices(float *const out, float const *const a, float const *const b) const;
    /// out = a * b; each sum of products in double, rounded at its store.
    /// out must not alias an operand
    virtual void multMatrices(float *const out, float const *const a, float const *const b) const;
    /// out = the point v through m with the homogeneous divide; (0, 0, 0) if w == 0
    /// exactly. out may alias: v
    virtual void multMatrixVec3f(float *const out, float const *const m, float const *const v) const;
    /// out = m * v, four elements, no divide. out may alias: v
    virtual void multMatrixVec4f(float *const out, float const *const m, float const *const v) const;
    /// out = m * s for all 16 elements. out may alias: m
    virtual void multMatrixScalar(float *const out, float const *const m, float s) const;
    /// Gauss-Jordan inverse in double with partial pivoting; false on an exactly zero
    /// pivot. Unchanged on failure: out. out may alias: m
    virtual bool inverseMatrix(float *const out, float const *const m) const;
    /// out = -m element-wise. out may alias: m
    virtual void neg(float *const out, float const *const m) const;
    /// out = transpose of m. out must not alias an operand
    virtual void transpose(float *const out, float const *const m) const;
    /// out = |m| element-wise. out may alias: m
    virtual void abs(float *const out, float const *const m) const;
    /// Returns the 4x4 determinant; every 2x2 minor rounded to float before use.
    virtual float det4(float const *const m) const;
    /// Writes all 16 elements: the diagonal (s[0], s[1], s[2], 1). out must not alias an operand
    virtual void setScale(float *const out, float const *const s) const;
    /// Writes all 16 elements: identity with flat 12..14 = t. out must not alias an operand
    virtual void setTranslate(float *const out, float const *const t) const;
    /// Writes the rotation of the Euler triple. out must not alias an operand
    virtual void setRotate(float *const out, float const *const euler) const;
    /// Writes the rotation by angle about axis. out must not alias an operand
    virtual void setRotate(float *const out, float const *const axis, float angle) const;
    /// Builds the projection along dir onto the plane normal . p + offset = 0.
    /// Unchanged on failure: out, when normal . dir == 0. out must not alias an operand
    virtual void setProjection(float *const out, float const *const normal, float offset,
                               float const *const dir) const;
    /// Returns the determinant of the upper left 3x3 block, rounded to float.
    virtual float det3(float const *const m) const;

    // ---- affine operations ------------------------------------------------
    /// out = a * b for affine a, b; bottom rows not read, (0, 0, 0, 1) written.
    /// out must not alias an operand
    virtual void multAffineMatrices(float *const out, float const *const a, float const *const b) const;
    /// Writes 3: the point v through m, no divide. out may alias: v
    virtual void multAffineMatrixVec3f(float *const out, float const *const m, float const *const v) const;
    /// Writes 3: the direction v through m, no translation, no divide. out may alias: v
    virtual void multAffineMatrixVec3fAsDir(float *const out, float const *const m,
                                            float const *const v) const;
    /// Writes flat 0..11: the outer product col * row^T, bottom row 0.
    /// out must not alias an operand
    virtual void multAffineColRow(float *const out, float const *const col, float const *const row) const;
    /// Writes the 9 elements of the transposed 3x3 block. out must not alias an operand
    virtual void transposeAffine(float *const out, float const *const m) const;
    /// out = R(axis, angle) * m. out must not alias an operand
    virtual void multLeftByRotate(float *const out, float const *const m, float const *axis,
                                  float angle) const;
    /// out = m * R(axis, angle). out must not alias an operand
    virtual void multRightByRotate(float *const out, float const *const m, float const *axis,
                                   float angle) const;
    /// m = Rx * m in place; cosine and sine rounded to float first.
    virtual void multLeftByRotateX(float *const m, float angle) const;
    /// m = m * Rx in place.
    virtual void multRightByRotateX(float *const m, float angle) const;
    /// m = Ry * m in place.
    virtual void multLeftByRotateY(float *const m, float angle) const;
    /// m = m * Ry in place.
    virtual void multRightByRotateY(float *const m, float angle) const;
    /// m = Rz * m in place.
    virtual void multLeftByRotateZ(float *const m, float angle) const;
    /// m = m * Rz in place.
    virtual void multRightByRotateZ(float *const m, float angle) const;
    /// m = T * m in place: adds t to the translation.
    virtual void multLeftByTranslate(float *const m, float const *t) const;
    /// m = m * T in place.
    virtual void multRightByTranslate(float *const m, float const *t) const;
    /// m = S * m in place: rows 0..2 of all four columns scaled.
    virtual void multLeftByScale(float *const m, float const *s) const;
    /// m = m * S in place: columns 0..2 scaled, column 3 untouched.
    virtual void multRightByScale(float *const m, float const *s) const;
    /// Virtual inverseMatrix(out, m). out may alias: m
    virtual bool inverse3(float *const out, float const *const m) const;
    /// Virtual inverseMatrix(out, m). out may alias: m
    virtual bool inverseAffine(float *const out, float const *const m) const;
    /// Replaces m[0], m[5], m[10] by their reciprocals; false (nothing written) if one is 0.
    virtual bool inverseScale(float *const m) const;
    /// out = diagonal of reciprocals, all 16 written; false (nothing written) if one is 0.
    /// out may alias: m
    virtual bool inverseScale(float *const out, float const *const m) const;
    /// Negates m[12..14] in place; always true.
    virtual bool inverseTranslate(float *const m) const;
    /// out = identity translated by -m[12..14]; always true. out may alias: m
    virtual bool inverseTranslate(float *const out, float const *const m) const;
    /// Virtual transposeAffine(out, m); always true. out must not alias an operand
    virtual bool inverseRotate(float *const out, float const *const m) const;
    /// Writes 12: the transposed 3x3 block and -R^T t; always true. out must not alias an operand
    virtual bool inverseRotateAndTr(float *const out, float const *const m) const;

    // ---- quaternions and rotations ----------------------------------------
    /// out = a + b. out may alias: a, b
    virtual void addQuaternions(float *const out, float const *const a, float const *const b) const;
    /// out = a - b. out may alias: a, b
    virtual void subQuaternions(float *const out, float const *const a, float const *const b) const;
    /// out = a * b, Hamilton's product. out may alias: a, b
    virtual void multQuaternions(float *const out, float const *const a, float const *const b) const;
    /// out = a / b for unit quaternions. out may alias: a, b
    virtual void divQuaternionsU(float *const out, float const *const a, float const *const b) const;
    /// out = conjugate of q. out may alias: q
    virtual void conjugateQuaternion(float *const out, float const *const q) const;
    /// out = inverse of q. out may alias: q
    virtual void inverseQuaternion(float *const out, float const *const q) const;
    /// out = inverse of the unit quaternion q. out may alias: q
    virtual void inverseQuaternionU(float *const out, float const *const q) const;
    /// out = the vector v turned by q. out may alias: v
    virtual void applyQuatOn(float *const out, float const *const q, float const *const v) const;
    /// *out = a . b, rounded after every term. out must not alias an operand
    virtual void dotQuaternions(float *out, float const *const a, float const *const b) const;
    /// Spherical interpolation from a (t = 0) to b (t = 1). out may alias: a, b
    virtual void quaternionSLERP(float *const out, float const *const a, float const *const b, float t) const;
    /// Linear interpolation from a (t = 0) to b (t = 1). out may alias: a, b
    virtual void quaternionLERP(float *const out, float const *const a, float const *const b, float t) const;
    /// out = the rotation by angle about the unit axis (not normalised here).
    /// out must not alias an operand
    virtual void axisToQuaternion(float *const out, float const *const axis, float angle) const;
    /// out = the rotation by angle about an axis of any length; an axis shorter than
    /// 0.0001 gives the identity (1, 0, 0, 0). out must not alias an operand
    virtual void axisToQuaternionU(float *const out, float const *const axis, float angle) const;
    /// Writes the axis and angle of q. Must not alias an operand
    virtual void quaternionToAxis(float *const axis, float *angle, float const *const q) const;
    /// out = the rotation matrix of q. out must not alias an operand
    virtual void quaternionToMatrix(float *const out, float const *const q) const;
    /// out = the quaternion of the rotation matrix m. out must not alias an operand
    virtual int RotMatrixToQuaternion(float *const out, float const *const m) const;
    /// out = the quaternion of the Euler triple. out must not alias an operand
    virtual void eulerToQuaternion(float *const out, float const *const euler) const;
    /// euler = the Euler triple of q. Must not alias an operand
    virtual void quaternionToEuler(float *euler, float const *const q) const;
    /// out = the rotation matrix of the Euler triple. out must not alias an operand
    virtual void eulerToMatrix(float *const out, float const *const euler) const;
    /// euler = the Euler triple of the rotation matrix m. Must not alias an operand
    virtual int matrixToEuler(float *euler, float const *const m) const;
    /// out = the rotation matrix of angle about axis. out must not alias an operand
    virtual void axisToMatrix(float *const out, float const *const axis, float angle) const;
    /// Writes the axis and angle of the rotation matrix m. Must not alias an operand
    virtual int matrixToAxis(float *const axis, float *angle, float const *const m) const;

    // ---- fast square roots ------------------------------------------------
    /// Returns 1/sqrt(x) from the seed table refined by n Newton steps (n <= 0: the seed).
    /// Meaningful for positive normal x only.
    virtual float invSqrt(float x, int n) const;
    /// Returns invSqrt(x, 1).
    virtual float invSqrt(float x) const;
    /// Returns 1 / invSqrt(x, n), rounded to float.
    virtual float msqrt(float x, int n) const;
    /// Returns msqrt(x, 1).
    virtual float msqrt(float x) const;

    // ---- factorization ----------------------------------------------------
    /// Eigenvalues and unit eigenvectors (columns of evectors) of the symmetric upper
    /// left 3x3 block of m by cyclic Jacobi sweeps; rots = 3 * sweeps run.
    virtual void jacobi3(float *const evalues, float (*const evectors)[3], int &rots,
                         float const *const m) const;

protected:
    // ---- ownership --------------------------------------------------------
    /// Does nothing in the base class.
    virtual void ref();
    /// Deletes this object in the base class: the kernel owns itself once current.
    virtual void unref();
    /// A kernel is only destroyed through unref().
    virtual ~EnhancedMathFunctions();

private:
    /// Returns the current kernel, creating and installing the default one if needed.
    static EnhancedMathFunctions *initDefaultMathFunctions();
    /// Builds the 128-byte seed table of invSqrt if it does not exist; returns it.
    static unsigned char *initInvSqrtTable();

    static EnhancedMathFunctions *m_current;
    static unsigned char *m_invSqrtTable;
};

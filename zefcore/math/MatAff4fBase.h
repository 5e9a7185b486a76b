/// \file
/// MatAff4fBase: the common base of the affine matrices, and the free products
/// on it. Storage order and precision are those of EnhancedMathFunctions.h. An
/// affine matrix has the bottom row (0, 0, 0, 1); nothing enforces it, and the
/// affine kernel operations neither read it nor, except whole-matrix builders and
/// products, write it. Every arithmetic call asks the current kernel anew.
#pragma once

#include <type_traits>

#include "zefcore/ZEFExport.h"
#include "zefcore/math/Mat4fBase.h"
#include "zefcore/math/Vector3f.h"

/// The common base of the affine matrices, whose bottom row is taken as (0, 0, 0, 1).
class ZEFCORE_API MatAff4fBase : public Mat4fBase {
public:
    /// Sets the identity through the kernel's setIdentity.
    MatAff4fBase();
    /// Sets a copy of m through the kernel's copyMat4fTo.
    MatAff4fBase(const MatAff4fBase &m);
    /// Sets this object to a copy of m; returns it.
    MatAff4fBase &operator=(const MatAff4fBase &m) = default;

    /// Sets out = M * in as a point: 3x3 part plus translation, no divide, the
    /// bottom row not read. Hides the dividing form of Mat4fBase.
    /// Aliasing: out may be in.
    void multRightVec3f(Vector3f &out, const Vector3f &in) const;

    /// Returns false at the first of the indices 0, 1, 2, 4, 5, 6, 8, 9, 10, 12,
    /// 13, 14 whose difference d = this - other (rounded to float) lies above
    /// tolerance or below -tolerance. The bottom row is not compared. A
    /// difference equal to the tolerance passes, and so does a NaN one.
    bool equalsAff(const MatAff4fBase &other, float tolerance) const;

    /// Returns true if all sixteen elements, bottom row included, are finite numbers.
    bool testFiniteAndNAN();
};

/// Each returns a new object, default-constructed and then filled by the kernel.
/// Returns the affine product a * b (b acts first); the bottom rows of a and b are
/// not read, the result's is (0, 0, 0, 1).
ZEFCORE_API MatAff4fBase operator*(const MatAff4fBase &a, const MatAff4fBase &b);
/// Returns all sixteen elements of m times s: element 15 becomes s too.
ZEFCORE_API MatAff4fBase operator*(float s, const MatAff4fBase &m);
/// Returns the point m * v: 3x3 part plus translation, no divide.
ZEFCORE_API Vector3f operator*(const MatAff4fBase &m, const Vector3f &v);

static_assert(sizeof(MatAff4fBase) == 16 * sizeof(float), "MatAff4fBase is sixteen floats");
static_assert(std::is_standard_layout<MatAff4fBase>::value, "MatAff4fBase has standard layout");
static_assert(!std::is_polymorphic<MatAff4fBase>::value, "MatAff4fBase has no virtual operation");
static_assert(std::is_trivially_destructible<MatAff4fBase>::value, "MatAff4fBase has no destructor");

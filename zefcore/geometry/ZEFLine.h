/// \file
/// ZEFLine: an unbounded line, m_origin + t * m_dir, six floats in this order.
/// m_dir is a unit vector wherever setDir set it; it is (0, 0, 0) when built from two
/// coincident points, and may be unnormalised where a caller writes it directly.
/// Precision and storage: see zefcore/kernel/EnhancedMathFunctions.h.
#pragma once

#include "zefcore/ZEFExport.h"
#include "zefcore/math/Vector3f.h"

#include <type_traits>

/// An unbounded line, m_origin + t * m_dir.
class ZEFCORE_API ZEFLine {
public:
    /// Sets origin (0, 0, 0), direction (0, 0, 1).
    ZEFLine();
    /// Sets m_origin = point and m_dir = (0, 0, 0), then setDir(other) if isDirection,
    /// else setDir(other - point).
    /// Degenerate: a refused direction (coincident points) leaves m_dir = (0, 0, 0).
    ZEFLine(const Vector3f &point, const Vector3f &other, bool isDirection);

    /// Sets m_dir = direction / L, L the length of direction (Vector3f::norm), if
    /// |L| > 0.0001 (double bound); NaN is accepted.
    /// Unchanged on failure: m_dir keeps its value, nothing is reported.
    /// Precision: L as Vector3f::norm; the division as Vector3f::operator/.
    void setDir(const Vector3f &direction);

    Vector3f m_origin; ///< a point on the line; the parameter t counts from here
    Vector3f m_dir;    ///< the direction
};

static_assert(sizeof(ZEFLine) == 6 * sizeof(float), "ZEFLine is six floats");
static_assert(std::is_standard_layout<ZEFLine>::value, "ZEFLine is a plain value");
static_assert(!std::is_polymorphic<ZEFLine>::value, "ZEFLine has no virtual operation");

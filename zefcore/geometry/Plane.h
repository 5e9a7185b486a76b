/// \file
/// Plane: the points x with m_normal . x + m_d = 0, four floats in this order. A point
/// on the side the normal points to gives a positive value. m_normal is a unit vector
/// wherever setNormal set it; readers of a Plane do not all assume so.
/// Precision and storage: see zefcore/kernel/EnhancedMathFunctions.h.
#pragma once

#include "zefcore/ZEFExport.h"
#include "zefcore/geometry/ZEFLine.h"
#include "zefcore/math/Vector3f.h"

#include <type_traits>

/// The plane m_normal . x + m_d = 0, positive on the side the normal points to.
class ZEFCORE_API Plane {
public:
    /// Sets the plane z = 0: normal (0, 0, 1), m_d = 0.
    Plane();

    /// Sets m_normal = normal / L, L its length, if |L| > 0.0001 (double bound), as
    /// ZEFLine::setDir. m_d is not touched.
    /// Unchanged on failure: m_normal keeps its value.
    void setNormal(const Vector3f &normal);
    /// Sets setNormal(normal), then m_d = -(m_normal . point) with the stored normal.
    /// Degenerate: a refused normal leaves the old normal, moved through point.
    void setFromNormalPoint(const Vector3f &normal, const Vector3f &point);
    /// Sets the plane of points equally far from a and b: setNormal(b - a) (pointing
    /// from a to b), then m_d = -(m_normal . mid), mid = (a + b) * 0.5.
    /// Degenerate: a and b closer than 0.0001 keep the old normal, moved through mid.
    /// Precision: a + b rounded per element, then the half rounded per element.
    void setMediator(const Vector3f &a, const Vector3f &b);
    /// Sets out to the point of the plane nearest the origin: k * m_normal with
    /// k = -m_d / (m_normal . m_normal).
    /// Degenerate: a zero normal divides by zero (no guard). Aliasing: out may be m_normal.
    /// Precision: the dot product, k and each element of out rounded to float.
    void findPoint(Vector3f &out);
    /// Sets u and v to two lines of the plane through findPoint's point, with directions
    /// U = e x m_normal and V = m_normal x U (by the kernel's cross), normalised by
    /// setDir; e is the unit axis on which |m_normal| is smallest (ties: x, then y, then z).
    /// (U, V, m_normal) is right-handed.
    /// Degenerate: a refused U or V leaves that line's m_dir unchanged; origins are set.
    void findUVAxis(ZEFLine &u, ZEFLine &v);

    Vector3f m_normal; ///< the normal
    float m_d;         ///< the constant term: minus the normal's dot with any point of the plane
};

static_assert(sizeof(Plane) == 4 * sizeof(float), "Plane is four floats");
static_assert(std::is_standard_layout<Plane>::value, "Plane is a plain value");
static_assert(!std::is_polymorphic<Plane>::value, "Plane has no virtual operation");

#include "zefcore/geometry/ZEFLine.h"

#include "zefcore/geometry/GeometryTolerances.h"

#include <cmath>

ZEFLine::ZEFLine() : m_origin(0.0f, 0.0f, 0.0f), m_dir(0.0f, 0.0f, 1.0f) {}

ZEFLine::ZEFLine(const Vector3f &point, const Vector3f &other, bool isDirection)
    : m_origin(point), m_dir(0.0f, 0.0f, 0.0f) {
    if (isDirection)
        setDir(other);
    else
        setDir(other - point);
}

void ZEFLine::setDir(const Vector3f &direction) {
    const float length = direction.norm();
    // Written as "not within the bound" so that a NaN length is accepted.
    if (std::fabs(length) <= kGeomDirLengthTolerance)
        return;
    m_dir = direction / length;
}

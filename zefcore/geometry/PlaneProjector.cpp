#include "zefcore/geometry/PlaneProjector.h"

#include "zefcore/geometry/Intersections.h"

// The virtuals are defined here, out of line, so that the vtable and type information
// are emitted once, in the library.
PlaneProjector::PlaneProjector() : m_plane() {}

PlaneProjector::PlaneProjector(const Plane &plane) : m_plane(plane) {}

PlaneProjector::~PlaneProjector() = default;

bool PlaneProjector::project(Vector3f &out, const ZEFLine &line) {
    float t;
    return interLinePlane(out, t, line, m_plane) == e_geomPoint;
}

void PlaneProjector::setPlane(const Plane &plane) {
    m_plane = plane;
}

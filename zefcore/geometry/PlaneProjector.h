/// \file
/// PlaneProjector: projects along a line onto its plane. Polymorphic: applications derive
/// from it and override project; its one field is the plane, held by value.
#pragma once

#include "zefcore/ZEFExport.h"
#include "zefcore/geometry/Plane.h"
#include "zefcore/geometry/ZEFLine.h"
#include "zefcore/math/Vector3f.h"

/// Projects points along a line onto a plane; a subclass overrides project.
class ZEFCORE_API PlaneProjector {
public:
    /// Sets the default plane z = 0.
    PlaneProjector();
    /// Sets a copy of plane.
    explicit PlaneProjector(const Plane &plane);
    virtual ~PlaneProjector();

    /// Returns true and sets out to where line meets the plane, exactly if interLinePlane
    /// gives e_geomPoint. Unchanged on failure: a parallel or in-plane line leaves out.
    virtual bool project(Vector3f &out, const ZEFLine &line);
    /// Sets the plane to a copy of plane.
    void setPlane(const Plane &plane);

protected:
    Plane m_plane; ///< the plane projected onto
};

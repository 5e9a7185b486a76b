/// \file
/// BoundingBoxAlgo: static operations on boxes that need a matrix or a camera: a moved
/// box, distances to a moved box, and the projection of a box or a quad through a camera
/// matrix that stays sound when corners lie behind the camera. Corners are walked in
/// the order (min.x, min.y, min.z), (min.x, min.y, max.z), (min.x, max.y, min.z), ...,
/// (max.x, max.y, max.z): z changes fastest. Corners are classed, never clipped: a
/// projected corner with depth > depthLimit is behind (x and y flipped back by
/// cameraProjPoint), else in front; front and behind corners gather in two boxes.
#pragma once

#include "zefcore/ZEFExport.h"
#include "zefcore/geometry/BoundingBox.h"
#include "zefcore/geometry/BoundingBox2D.h"
#include "zefcore/math/MatAff4f.h"
#include "zefcore/math/MatAff4fBase.h"
#include "zefcore/math/Matrix4f.h"
#include "zefcore/math/Vector3f.h"

/// Static operations on boxes that need a matrix or a camera.
class ZEFCORE_API BoundingBoxAlgo {
public:
    /// Which sides of the camera held corners: bit 1 in front, bit 2 behind.
    enum BBoxPosition {
        BBoxUnknown = 0, ///< no side has a usable box (non-numeric coordinates)
        BBoxInFront = 1, ///< all corners in front
        BBoxBehind = 2,  ///< all corners behind
        BBoxAcross = 3   ///< corners on both sides
    };

    BoundingBoxAlgo() = delete;

    /// Sets out to the axis-aligned box around the eight corners of box moved by matrix
    /// as points (no divide); whatever out held is dropped. An empty box is not special:
    /// its marker values go through as coordinates. Aliasing: out may be box.
    static void transformBBox(BoundingBox &out, const BoundingBox &box, const MatAff4fBase &matrix);
    /// Returns 0 if p lies in the moved box (borders included), else the sum over the axes
    /// of the smaller of (min - p)^2 and (max - p)^2: the squared distance to the nearest
    /// corner, not to the surface. Precision: each difference and square rounded to float,
    /// the sum of the three in double, rounded once.
    static float BBox3DDistance2(const BoundingBox &box, const MatAff4f &matrix, const Vector3f &p);
    /// Returns the smallest squared distance (Vector3f::norm2 of the difference) from p to
    /// a, b, c, d moved by matrix as points.
    static float QuadDistance2(const Vector3f &a, const Vector3f &b, const Vector3f &c, const Vector3f &d,
                               const MatAff4f &matrix, const Vector3f &p);
    /// Adds the projected box to out (not cleared first, so boxes gather) and returns the
    /// sides that held corners. Front corners go in as projected; if out is initialised
    /// by then, behind corners add only (behind min x, y, 2^-23) and (behind max x, y,
    /// 2^-23). Degenerate: all corners behind leave an empty out empty.
    static BBoxPosition cameraProjBBox(BoundingBox &out, const BoundingBox &box, const Matrix4f &matrix,
                                       float depthLimit);
    /// As above into a fresh box, whose x and y replace out. Degenerate: all corners
    /// behind give an empty out, (1, 0)-(0, 0).
    static BBoxPosition cameraProjBBox(BoundingBox2D &out, const BoundingBox &box, const Matrix4f &matrix,
                                       float depthLimit);
    /// Returns whether the projected box meets rect (in projected x and y). Sets
    /// clearedFlag = false always; entirelyInside = true only if rect is wider than float
    /// 0.05 (as a double; NaN width is small) and the first corner and every other front
    /// corner lie in rect. A front corner in a small rect, or two front corners on either
    /// side of its border, answer at once, before further projections. Otherwise the
    /// rectangle of the merged projection is intersected with rect; all corners behind
    /// give false.
    static bool BBox3DIntersectBBox2D(const BoundingBox &box, const BoundingBox2D &rect,
                                      const Matrix4f &matrix, float depthLimit, bool &clearedFlag,
                                      bool &entirelyInside);
    /// As BBox3DIntersectBBox2D with a small rect, whatever its width, on the points
    /// a, b, c, d in this order. Sets clearedFlag = false.
    static bool QuadIntersectBBox2D(const Vector3f &a, const Vector3f &b, const Vector3f &c,
                                    const Vector3f &d, const BoundingBox2D &rect, const Matrix4f &matrix,
                                    float depthLimit, bool &clearedFlag);
};

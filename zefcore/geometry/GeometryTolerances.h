/// \file
/// GeometryTolerances: every threshold of the geometry layer, in one place.
/// Each is compared with the raw quantity named in its comment, never scaled by the
/// lengths of the vectors behind it. A double constant is compared as a double (it is
/// not its nearest float), a float constant as the float it is. A NaN never counts as
/// being within a tolerance: every test is written so that a NaN takes the branch of a
/// non-zero (non-parallel, non-small) value.
#pragma once

#include "zefcore/math/Tolerance.h"

#include <limits>

/// double 0.0001, the library's default tolerance: length L of a vector given as a
/// direction or a normal. |L| <= bound: refused, the old value stays.
/// (ZEFLine::setDir, Plane::setNormal)
inline constexpr double kGeomDirLengthTolerance = ZEF_DEFAULT_TOLERANCE;

/// double 0.0001: determinant of two 2-D directions. |D| <= bound: parallel.
/// (inter2dLineLine, interTwoCoplanarLines)
inline constexpr double kGeomDeterminantTolerance = 0.0001;

/// double 0.0001: each component of the cross product of two line directions.
/// All three |c.i| <= bound: parallel. (interLineLine)
inline constexpr double kGeomCrossComponentTolerance = 0.0001;

/// double 0.0001: each component of the gap between the two points found on two lines.
/// All three |gap.i| <= bound: the lines meet. (interLineLine)
inline constexpr double kGeomMeetGapTolerance = 0.0001;

/// double 0.0001: length of the cross product of two line directions.
/// L <= bound: parallel. (distanceLineLine)
inline constexpr double kGeomCrossLengthTolerance = 0.0001;

/// double 0.0001: |normal . dir|, then |normal . origin + d|.
/// <= bound: parallel, then <= bound: the line lies in the plane. (interLinePlane)
inline constexpr double kGeomLinePlaneTolerance = 0.0001;

/// double 0.0001: squared length of the cross product of two normals, then |d1 - d2|.
/// <= bound: parallel, then <= bound: coincident. (interPlanePlane)
inline constexpr double kGeomPlanePlaneTolerance = 0.0001;

/// double 0.0001: the dot products taken at the two ends of a segment.
/// Strictly below the bound: that end is the nearest point. (distancePointSegment)
inline constexpr double kGeomSegmentEndTolerance = 0.0001;

/// double 0.0001: a parameter on a segment, in length units. Outside
/// [-bound, L + bound], both ends of the interval included: no intersection. (interSegmentSegment)
inline constexpr double kGeomSegmentParamTolerance = 0.0001;

/// float 1e-7: a direction component, then a distance to an axis plane.
/// <= bound: parallel, then <= bound: in the plane. (interLineBoundingBox)
inline constexpr float kGeomAxisPlaneTolerance = 1e-7f;

/// float 1e-7, widened to double: |tIn - tOut|. Strictly below the bound: the line
/// does not really cross the box. (interLineBoundingBox with face outputs)
inline constexpr float kGeomBoxCrossingTolerance = 1e-7f;

/// float 1e-8: |normal . p + d|. <= bound: the point is on the plane. (pointOnPlane)
inline constexpr float kGeomPointOnPlaneTolerance = 1e-8f;

/// float 0.01: |half angle - pi/2| and |tan(half angle)|. <= bound: the result is 0. (Cote)
inline constexpr float kGeomCoteTolerance = 0.01f;

/// float 0.05, widened to double: width of a 2-D box. <= bound (or NaN): the
/// rectangle counts as small. (BoundingBoxAlgo::BBox3DIntersectBBox2D)
inline constexpr float kGeomSmallRectWidth = 0.05f;

/// The largest float, 3.4028235e38, and its negative: no bound on a line's parameter.
/// (interLineBoundingBox, interLineViewingVolume)
inline constexpr float kGeomNoBound = std::numeric_limits<float>::max();

/// float 1.1920929e-7 (2 to the power -23): the depth given to points that come from
/// behind the camera when they are merged into a projected box. (BoundingBoxAlgo)
inline constexpr float kGeomBehindDepth = 1.1920929e-7f;
static_assert(kGeomBehindDepth == 1.0f / 8388608.0f, "2^-23");

/// \file
/// Plane-figure queries: distances, crossings and point-in-polygon tests in the plane.
/// A const float * argument is a 2-D point or direction, x at index 0 and y at index 1;
/// a third coordinate, where the type has one, is ignored. All comparisons are exact,
/// except the one determinant test of inter2dLineLine. Outputs are written only in the
/// cases each comment names. Precision: see zefcore/kernel/EnhancedMathFunctions.h;
/// named differences (b - a, p2 - p1) are rounded to float per element.
#pragma once

#include "zefcore/ZEFExport.h"
#include "zefcore/geometry/BoundingBox.h"
#include "zefcore/geometry/GeomInfo.h"
#include "zefcore/math/Vector2f.h"
#include "zefcore/math/Vector3f.h"

/// Returns the squared distance from p to the segment a-b; sets t in [0, 1] and nearest.
/// t = ((p - a).(b - a)) / ((b - a).(b - a)); t > 1 gives b, t < 0 gives a.
/// Degenerate: a == b gives NaN for t, nearest and the result.
/// Precision: both dot products (y term first) and t rounded to float; each element of
/// nearest = a + t (b - a) rounded once; the result rounded once.
ZEFCORE_API float distance2PointSegment2D(float &t, Vector2f &nearest, const float *a, const float *b,
                                          const float *p);

/// Returns e_geomPoint and sets point = p1 + t1 d1 and the parameters t1 on p1 + t d1 and
/// t2 on p2 + t d2. Degenerate: |d1.x d2.y - d1.y d2.x| <= 0.0001 (double bound, raw
/// determinant, not scaled): e_geomParallel. Unchanged on failure: point, t1, t2.
/// Precision: the determinant, p2 - p1, t1 and t2 rounded to float; each element of
/// point rounded once.
ZEFCORE_API e_geomInfo inter2dLineLine(float *point, float &t1, float &t2, const float *p1, const float *d1,
                                       const float *p2, const float *d2);

/// Returns e_geomPoint if the segments p1 + t d1 and p2 + t d2, t in [0, 1] with both
/// ends included, cross, else e_geomNone; e_geomParallel as inter2dLineLine. Sets the
/// outputs as inter2dLineLine, also when the crossing is outside the segments.
ZEFCORE_API e_geomInfo inter2dSegmentSegment(float *point, float &t1, float &t2, const float *p1,
                                             const float *d1, const float *p2, const float *d2);

/// Returns e_geomPoint if segment a-b touches or crosses segment c-d, by the signs of
/// four cross products (zero counts as either sign), else e_geomNone.
/// Degenerate: any two collinear segments give e_geomPoint, also when they are apart.
ZEFCORE_API e_geomInfo inter2dSegmentSegment(const float *a, const float *b, const float *c, const float *d);

/// Returns e_geomPoint and sets out to the y where segment a-b meets the line x = value
/// (ends included). e_geomNone if it does not reach the line. Degenerate: a segment with
/// b.x - a.x exactly 0 gives e_geomCoincident if a.x == value, else e_geomNone.
/// Unchanged on failure: out. Precision: out = a.y + (value - a.x)(b.y - a.y) / D in
/// double, D = b.x - a.x rounded to float, out rounded once.
ZEFCORE_API e_geomInfo inter2dSegmentVerticalLine(const float *a, const float *b, float value, float &out);
/// As inter2dSegmentVerticalLine with the axes swapped: out is the x where segment a-b
/// meets the line y = value.
ZEFCORE_API e_geomInfo inter2dSegmentHorizontalLine(const float *a, const float *b, float value, float &out);
/// As inter2dSegmentVerticalLine, and then e_geomNone unless low <= out <= high (out is
/// set to the crossing all the same). low and high are not looked at in the parallel case.
ZEFCORE_API e_geomInfo inter2dSegmentVerticalSegment(const float *a, const float *b, float value, float low,
                                                     float high, float &out);
/// As inter2dSegmentHorizontalLine, limited to x from low to high as
/// inter2dSegmentVerticalSegment.
ZEFCORE_API e_geomInfo inter2dSegmentHorizontalSegment(const float *a, const float *b, float value, float low,
                                                       float high, float &out);

/// Returns e_geomPoint if segment a-b crosses the outline of the rectangle of x and y of
/// box, else e_geomNone; sets aInside and bInside (borders included). A segment wholly
/// inside gives e_geomNone; a side the segment lies along does not count as a crossing.
ZEFCORE_API e_geomInfo inter2dSegmentBBox(const float *a, const float *b, const BoundingBox &box,
                                          bool &aInside, bool &bInside);

/// Returns true if p is inside the ring first .. last - 1 (closed by itself), by the
/// even-odd rule with a ray towards +y; only x and y of a vertex count.
/// An edge counts if (prev.x <= p.x) differs from (cur.x <= p.x), and then if p.y is at
/// or below its y at p.x: a point on an upper edge is inside, on a lower edge outside.
/// Degenerate: fewer than 2 vertices gives false.
ZEFCORE_API bool pointIn2DPolygon(const float *p, const Vector3f *first, const Vector3f *last);
/// As above, with Vector2f vertices.
ZEFCORE_API bool pointIn2DPolygon(const float *p, const Vector2f *first, const Vector2f *last);
/// As above; the ring is vertices[i] for each i of the index array first .. last - 1.
ZEFCORE_API bool pointIn2DPolygon(const float *p, const Vector3f *vertices, const int *first,
                                  const int *last);
/// As above, with Vector2f vertices.
ZEFCORE_API bool pointIn2DPolygon(const float *p, const Vector2f *vertices, const int *first,
                                  const int *last);

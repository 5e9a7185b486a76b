/// \file
/// Distances and point tests: distances between points, lines, segments and planes with
/// the feet of those distances, point-on-figure tests, projections of a point, small
/// constructions on points, and the camera projection of a point. Outputs come last in
/// distance functions and first in projections; each is written only where its comment
/// says. Precision: see zefcore/kernel/EnhancedMathFunctions.h; every named vector
/// (w = p - o, d * t, ...) is rounded per element, every dot product and length once.
#pragma once

#include "zefcore/ZEFExport.h"
#include "zefcore/base/ZEFArray.h"
#include "zefcore/geometry/GeomInfo.h"
#include "zefcore/geometry/Plane.h"
#include "zefcore/geometry/ZEFLine.h"
#include "zefcore/geometry/ZEFSegment.h"
#include "zefcore/math/Matrix4f.h"
#include "zefcore/math/Vector2f.h"
#include "zefcore/math/Vector3f.h"

// ---- distances ------------------------------------------------------------
// Below, o and d are the line's m_origin and m_dir, w = p - o; d is used as it stands
// unless a comment says otherwise.

/// Returns |a - b|. Precision: a - b per element, its norm as Vector3f::norm.
ZEFCORE_API float distancePointPoint(const Vector3f &a, const Vector3f &b);

/// Returns |v| with v = w - d t, t = d.w; sets foot = p - v (the foot for a unit d).
/// Aliasing: foot may be p.
ZEFCORE_API float distancePointLine(const Vector3f &p, const ZEFLine &line, Vector3f &foot);
/// Returns |v|^2 as distancePointLine, with a unit copy u of d (Vector3f::normalize) in
/// place of d; sets foot = p - v. Degenerate: a zero d stays zero, the result is |w|^2.
ZEFCORE_API float distance2PointLine(const Vector3f &p, const ZEFLine &line, Vector3f &foot);
/// Returns |w - d t| and sets t = d.w, the parameter of the foot.
ZEFCORE_API float distancePointLine(const Vector3f &p, const ZEFLine &line, float &t);
/// Returns |w - d t|^2 (Vector3f::norm2) and sets t = d.w.
ZEFCORE_API float distance2PointLine(const Vector3f &p, const ZEFLine &line, float &t);

/// Returns |n.p + m_d| / |n|, never negative, for a normal n of any length.
/// Precision: n.p rounded, the sum and the quotient in double, rounded once.
/// Degenerate: a zero normal divides by zero.
ZEFCORE_API float distancePointPlane(const Vector3f &p, const Plane &plane);

/// Returns the distance between two lines: |w.c| / |c| with c = d1 x d2 (kernel cross),
/// w = b.m_origin - a.m_origin. Degenerate: |c| <= 0.0001 (double bound; NaN is not
/// parallel): the lines count as parallel and the result is |d1 x w|.
ZEFCORE_API float distanceLineLine(const ZEFLine &a, const ZEFLine &b);
/// Returns the same and sets ta, tb, the parameters of the nearest points for unit
/// directions: ta = (k f - e) / q, tb = (f - k e) / q with k = d1.d2, e = d1.w, f = d2.w,
/// q = k k - 1 (all rounded to float). Degenerate: parallel gives ta = d1.w, tb = 0.
ZEFCORE_API float distanceLineLine(const ZEFLine &a, const ZEFLine &b, float &ta, float &tb);

/// Returns the distance between a line and a segment; sets t on the line and s in [0, 1]
/// on the segment. Nearest points beyond an end are replaced by that end: s = 0 or 1, and
/// the result and t are those of distancePointLine(end, line, t).
/// Degenerate: a segment of length exactly 0 gives s = 0 and the distance of m_start from
/// the line (as two parallel lines); nothing is divided by zero.
ZEFCORE_API float distanceLineSegment(const ZEFLine &line, const ZEFSegment &segment, float &t, float &s);

/// Returns the distance from p to the segment and sets nearest. With e = m_end - m_start:
/// e.(p - m_start) < 0.0001 gives m_start, else -(e.(p - m_end)) < 0.0001 gives m_end
/// (double bound, strict, on the raw dot products), else the foot on the segment's line.
/// Degenerate: a zero-length segment gives m_start. Aliasing: nearest may be p.
ZEFCORE_API float distancePointSegment(const Vector3f &p, const ZEFSegment &segment, Vector3f &nearest);
/// As above, for the segment from a to b.
ZEFCORE_API float distancePointSegment(const Vector3f &p, const Vector3f &a, const Vector3f &b,
                                       Vector3f &nearest);

/// Returns the distance from p to the nearest of points and sets index to it; of equally
/// near points the first wins. Unchanged on failure: an empty array returns 0, index kept.
ZEFCORE_API float distancePointPointSet(const Vector3f &p, const ZEFArray<Vector3f> &points, int &index);

// ---- point tests ----------------------------------------------------------

/// Returns |c.c| <= tolerance with c = (o - p) x d: for a unit d the tolerance bounds the
/// squared distance; it is not squared first. NaN is refused.
ZEFCORE_API bool pointOnLine(const Vector3f &p, const ZEFLine &line, float tolerance);
/// Returns |n.p + m_d| <= float 1e-8; tolerance takes no part. NaN is refused.
/// Precision: n.p rounded, the sum in double.
ZEFCORE_API bool pointOnPlane(const Vector3f &p, const Plane &plane, float tolerance);
/// Returns true if p lies on the segment: with a = m_start, e = m_end - a, q = (p - a).e,
/// l2 = e.e: refused if q < -tolerance, if |(p - a) x e|^2 > tolerance^2 l2 (off the line;
/// NaN refused), or if q > l2 (no tolerance at the far end).
ZEFCORE_API bool pointOnSegment(const Vector3f &p, const ZEFSegment &segment, float tolerance);
/// Returns isZero((w x b.m_dir) x (w x a.m_dir), tolerance), w = a.m_origin - b.m_origin:
/// each component within tolerance. Parallel lines and lines through one point pass.
ZEFCORE_API bool areCoplanar(const ZEFLine &a, const ZEFLine &b, float tolerance);
/// Returns true if p, taken in the plane of the triangle a, b, c, lies in the closed
/// triangle (edges and corners included): each ((next - v) x (p - v)).n >= 0 with
/// n = (b - a) x (c - a). Degenerate: false if n is exactly zero or not a number.
ZEFCORE_API bool pointInTriangle(const Vector3f &p, const Vector3f &a, const Vector3f &b, const Vector3f &c);

// ---- projections ----------------------------------------------------------

/// Returns e_geomProjected; sets t = d.w and out = o + d t. Aliasing: out may be p.
ZEFCORE_API e_geomInfo projectionOrtho(Vector3f &out, float &t, const Vector3f &p, const ZEFLine &line);
/// Returns interLinePlane of the line from p along direction (built by
/// ZEFLine(p, direction, true): a refused direction stays zero) and plane.
/// Unchanged on failure: out is written only on e_geomPoint.
ZEFCORE_API e_geomInfo projection(Vector3f &out, const Vector3f &p, const Plane &plane,
                                  const Vector3f &direction);
/// Returns projection(out, p, plane, plane.m_normal).
ZEFCORE_API e_geomInfo projectionOrtho(Vector3f &out, const Vector3f &p, const Plane &plane);

// ---- constructions --------------------------------------------------------

/// Sets out = e1 + e2 (a sum, not a cross product) with e1 = b - a, e2 = c - b, both
/// normalised first if normalizeEdges; out normalised if normalizeResult.
/// Aliasing: out may be a, b or c.
ZEFCORE_API void normal3Pts(Vector3f &out, const Vector3f &a, const Vector3f &b, const Vector3f &c,
                            bool normalizeEdges, bool normalizeResult);
/// As above with a = points[i], b = points[j], c = points[k]; no bound test.
ZEFCORE_API void normal3Pts(Vector3f &out, const Vector3f *points, int i, int j, int k, bool normalizeEdges,
                            bool normalizeResult);
/// Sets out = p * (radius / |p|), the factor rounded to float.
/// Degenerate: p = 0 gives non-finite coordinates.
ZEFCORE_API void spherisePoint(Vector3f &out, const Vector3f &p, float radius);
/// Sets out = p * (radius / n), n = pow(x^e + y^e + z^e, 1 / e) on the signed components.
/// Precision: n in double, rounded once; the factor rounded to float.
/// Degenerate: n = 0 gives non-finite coordinates; a fractional e on a negative component NaN.
ZEFCORE_API void spherisePoint(Vector3f &out, const Vector3f &p, float radius, float exponent);
/// Sets out = p * (radius / n), n = |x|^ex + |y|^ey + |z|^ez, no root.
/// Precision: n in double, rounded once; the factor rounded to float.
ZEFCORE_API void spherisePoint(Vector3f &out, const Vector3f &p, float radius, const Vector3f &exponents);
/// Returns radius / tan(h), h = a.angle(b) * 0.5; sets halfAngle = h always.
/// Degenerate: 0 if |h - pi/2| <= float 0.01 (pi/2 as a double) or |tan(h)| <= float 0.01.
ZEFCORE_API float Cote(const Vector3f &a, const Vector3f &b, float radius, float &halfAngle);

/// Sets out = matrix * p with the homogeneous divide (the kernel's multMatrixVec3f; a zero
/// w gives (0, 0, 0)). If out.z > depthLimit the point is behind the camera and x, y are
/// negated, undoing the mirror of a negative w; z is kept. At equality, or for a NaN
/// depth, the point is in front. Aliasing: out may be p.
ZEFCORE_API void cameraProjPoint(Vector3f &out, const Vector3f &p, const Matrix4f &matrix, float depthLimit);
/// As above; out takes x and y only.
ZEFCORE_API void cameraProjPoint(Vector2f &out, const Vector3f &p, const Matrix4f &matrix, float depthLimit);

/// \file
/// Intersections in space: lines, segments, planes, triangles, a box and a six-plane
/// volume. Outputs come first; each is written only in the cases its comment names.
/// o, d are a line's m_origin and m_dir, n, k a plane's m_normal and m_d; a line's
/// parameter is in units of d, and no function assumes a unit d unless it says so.
/// Precision: see zefcore/kernel/EnhancedMathFunctions.h; named vectors are rounded per
/// element, dot products once, parameters where they are stored.
#pragma once

#include "zefcore/ZEFExport.h"
#include "zefcore/geometry/BoundingBox.h"
#include "zefcore/geometry/GeomInfo.h"
#include "zefcore/geometry/Plane.h"
#include "zefcore/geometry/ZEFLine.h"
#include "zefcore/geometry/ZEFSegment.h"
#include "zefcore/math/Vector3f.h"

/// Returns e_geomPoint if the lines meet, e_geomNone if skew, e_geomParallel if each
/// component of c = d1 x d2 (computed here, not by the kernel) is within 0.0001 (double
/// bound), coincident lines included. ta, tb solve the two coordinates other than c's
/// largest component; point = o1 + d1 ta; they meet if point and o2 + d2 tb agree within
/// 0.0001 per component. Unchanged on failure: parallel writes nothing; skew lines keep
/// the outputs as computed.
ZEFCORE_API e_geomInfo interLineLine(Vector3f &point, float &ta, float &tb, const ZEFLine &a,
                                     const ZEFLine &b);
/// Returns e_geomPoint with point = o1 + d1 ta, using x and y only (the lines are trusted
/// to be coplanar). Degenerate: |d1.x d2.y - d2.x d1.y| <= 0.0001 (double bound):
/// e_geomParallel. Unchanged on failure: point, ta.
ZEFCORE_API e_geomInfo interTwoCoplanarLines(Vector3f &point, float &ta, const ZEFLine &a, const ZEFLine &b);
/// Returns e_geomPoint with t = -(n.o + k) / (n.d) and point = o + d t, if |n.d| > 0.0001
/// (double bound; NaN counts as crossing). Otherwise e_geomInPlane if |n.o + k| <= 0.0001,
/// else e_geomParallel. Unchanged on failure: point, t.
ZEFCORE_API e_geomInfo interLinePlane(Vector3f &point, float &t, const ZEFLine &line, const Plane &plane);
/// Returns e_geomPoint with t = (x - o.x) / d.x if |d.x| > tolerance (NaN counts as
/// crossing); otherwise e_geomInPlane if |o.x - x| <= tolerance, else e_geomParallel.
/// Unchanged on failure: t.
ZEFCORE_API e_geomInfo interLinePlaneYZ(float &t, const ZEFLine &line, float x, float tolerance);
/// As interLinePlaneYZ on the y axis, for the plane of constant y.
ZEFCORE_API e_geomInfo interLinePlaneXZ(float &t, const ZEFLine &line, float y, float tolerance);
/// As interLinePlaneYZ on the z axis, for the plane of constant z.
ZEFCORE_API e_geomInfo interLinePlaneXY(float &t, const ZEFLine &line, float z, float tolerance);
/// Returns e_geomPoint with s in [0, 1] along the segment and point on it; a crossing
/// with s in (-tolerance, 0) or (1, 1 + tolerance] snaps to that end. e_geomNone for
/// s <= -tolerance or s > 1 + tolerance, or a segment of length exactly 0; otherwise
/// what interLinePlane gives (e_geomParallel, e_geomInPlane).
/// Unchanged on failure: a zero-length segment, a parallel or in-plane segment write
/// nothing; e_geomNone out of range leaves point and s at the unsnapped crossing.
ZEFCORE_API e_geomInfo interSegmentPlane(Vector3f &point, float &s, const ZEFSegment &segment,
                                         const Plane &plane, float tolerance);
/// Returns interLineLine of the two segments' lines (unit directions, so ta is a length
/// from a.m_start), then e_geomNone if ta or tb is below -0.0001 or above its segment's
/// length + 0.0001 (double bound). No snapping: point and ta stay as computed.
ZEFCORE_API e_geomInfo interSegmentSegment(Vector3f &point, float &ta, const ZEFSegment &a,
                                           const ZEFSegment &b);
/// Returns e_geomPoint where the line meets the triangle's plane, with point = (a + u e1)
/// + v e2 (e1 = b - a, e2 = c - a) and inside = (u >= 0, v >= 0, u + v <= 1), exact
/// comparisons. Either side and either direction count alike; d may have any length.
/// Degenerate: det[e1; e2; d] (kernel det3, in double) exactly 0: inside = false,
/// e_geomNone, point, u, v unchanged. No tolerance: a near-parallel line gives a far point.
ZEFCORE_API e_geomInfo interLineTriangle(Vector3f &point, float &u, float &v, bool &inside,
                                         const ZEFLine &line, const Vector3f &a, const Vector3f &b,
                                         const Vector3f &c);
/// Returns e_geomPoint and sets line to the planes' line of intersection: m_origin the
/// point of it nearest the coordinate origin, m_dir = n1 x n2 written directly (not unit).
/// Degenerate: |c.c| <= 0.0001 (double bound; NaN counts as crossing): parallel; then
/// e_geomCoincident if |k1 - k2| <= 0.0001, else e_geomParallel. Unchanged on failure: line.
ZEFCORE_API e_geomInfo interPlanePlane(ZEFLine &line, const Plane &a, const Plane &b);
/// Sets [tIn, tOut], the line's parameter interval in box: the greatest low and smallest
/// high of the three slabs of opposite faces (interLinePlaneYZ, XZ, XY, tolerance float
/// 1e-7). A slab the line does not cross has no bound (-/+ the largest float).
/// Degenerate: tIn > tOut (a miss) sets both to 0.
ZEFCORE_API void interLineBoundingBox(float &tIn, float &tOut, const ZEFLine &line, const BoundingBox &box);
/// As above, and sets faceX, faceY, faceZ to the entry face: the first of the planes at
/// min.x, max.x, min.y, max.y, min.z, max.z whose parameter equals tIn exactly sets its
/// axis to -1 (min) or 1 (max), the others 0 (kept on a miss). Returns true unless
/// |tIn - tOut| < float 1e-7 (difference in double); a miss gives false.
ZEFCORE_API bool interLineBoundingBox(float &tIn, float &tOut, int &faceX, int &faceY, int &faceZ,
                                      const ZEFLine &line, const BoundingBox &box);
/// Sets [tIn, tOut] as interLineBoundingBox with the slabs (plane1, plane2), (plane3,
/// plane4), (plane5, plane6) by interLinePlane, and pointIn = o + d tIn, pointOut = o + d tOut.
/// Nothing is tested or cleared: a miss comes back with tIn > tOut.
ZEFCORE_API void interLineViewingVolume(Vector3f &pointIn, Vector3f &pointOut, float &tIn, float &tOut,
                                        const ZEFLine &line, const Plane &plane1, const Plane &plane2,
                                        const Plane &plane3, const Plane &plane4, const Plane &plane5,
                                        const Plane &plane6);

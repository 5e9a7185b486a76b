#include "zefcore/geometry/Intersections.h"

#include "zefcore/geometry/GeometryTolerances.h"
#include "zefcore/kernel/EnhancedMathFunctions.h"

#include <cmath>

namespace {

// The one-axis step of interLinePlaneYZ, XZ and XY: a is the direction's component on
// the axis, b the origin's, value the plane's coordinate.
e_geomInfo interLineAxisPlane(float &t, float a, float b, float value, float tolerance) {
    // Written as "not within" so that a NaN component counts as crossing.
    if (!(std::fabs(a) <= tolerance)) {
        t = float((double(value) - b) / a);
        return e_geomPoint;
    }
    if (std::fabs(double(b) - value) <= double(tolerance))
        return e_geomInPlane;
    return e_geomParallel;
}

// One slab: [low, high] between the parameters at two opposite surfaces, unbounded
// unless both are crossed.
struct Slab {
    float low;
    float high;
};

Slab makeSlab(e_geomInfo r1, float t1, e_geomInfo r2, float t2) {
    if (r1 == e_geomPoint && r2 == e_geomPoint)
        return (t2 < t1) ? Slab{t2, t1} : Slab{t1, t2};
    return Slab{-kGeomNoBound, kGeomNoBound};
}

// Sets tIn to the greatest low and tOut to the smallest high of the three slabs.
void intersectSlabs(float &tIn, float &tOut, const Slab (&slabs)[3]) {
    float in = slabs[0].low;
    float out = slabs[0].high;
    for (int i = 1; i < 3; ++i) {
        if (slabs[i].low > in)
            in = slabs[i].low;
        if (slabs[i].high < out)
            out = slabs[i].high;
    }
    tIn = in;
    tOut = out;
}

// The parameters of line at the six face planes of box, in the order min.x, max.x,
// min.y, max.y, min.z, max.z, and what each call gave.
struct BoxCrossing {
    float t[6];
    e_geomInfo r[6];
};

void crossBox(BoxCrossing &c, const ZEFLine &line, const BoundingBox &box) {
    const float tol = kGeomAxisPlaneTolerance;
    for (int i = 0; i < 6; ++i)
        c.t[i] = 0.0f;
    c.r[0] = interLinePlaneYZ(c.t[0], line, box.m_min.x(), tol);
    c.r[1] = interLinePlaneYZ(c.t[1], line, box.m_max.x(), tol);
    c.r[2] = interLinePlaneXZ(c.t[2], line, box.m_min.y(), tol);
    c.r[3] = interLinePlaneXZ(c.t[3], line, box.m_max.y(), tol);
    c.r[4] = interLinePlaneXY(c.t[4], line, box.m_min.z(), tol);
    c.r[5] = interLinePlaneXY(c.t[5], line, box.m_max.z(), tol);
}

void boxInterval(float &tIn, float &tOut, const BoxCrossing &c) {
    const Slab slabs[3] = {makeSlab(c.r[0], c.t[0], c.r[1], c.t[1]), makeSlab(c.r[2], c.t[2], c.r[3], c.t[3]),
                           makeSlab(c.r[4], c.t[4], c.r[5], c.t[5])};
    intersectSlabs(tIn, tOut, slabs);
}

} // namespace

e_geomInfo interLineLine(Vector3f &point, float &ta, float &tb, const ZEFLine &a, const ZEFLine &b) {
    const Vector3f &d1 = a.m_dir;
    const Vector3f &d2 = b.m_dir;
    const float cx = float(double(d1.y()) * d2.z() - double(d1.z()) * d2.y());
    const float cy = float(double(d1.z()) * d2.x() - double(d1.x()) * d2.z());
    const float cz = float(double(d1.x()) * d2.y() - double(d1.y()) * d2.x());
    const double tol = kGeomCrossComponentTolerance;
    if (std::fabs(cx) <= tol && std::fabs(cy) <= tol && std::fabs(cz) <= tol)
        return e_geomParallel;

    const Vector3f w = a.m_origin - b.m_origin;
    const float ax = std::fabs(cx);
    const float ay = std::fabs(cy);
    const float az = std::fabs(cz);
    float sa;
    float sb;
    // Solve on the largest component of c, in the two coordinates other than its axis.
    if (ax <= az && ay <= az) {
        sa = float((double(d2.x()) * w.y() - double(d2.y()) * w.x()) / cz);
        sb = float((double(d1.x()) * w.y() - double(d1.y()) * w.x()) / cz);
    } else if (ax >= az && ax >= ay) {
        sa = float((double(d2.y()) * w.z() - double(d2.z()) * w.y()) / cx);
        sb = float((double(d1.y()) * w.z() - double(d1.z()) * w.y()) / cx);
    } else {
        sa = float((double(d2.z()) * w.x() - double(d2.x()) * w.z()) / cy);
        sb = float((double(d1.z()) * w.x() - double(d1.x()) * w.z()) / cy);
    }
    const Vector3f p = a.m_origin + d1 * sa;
    const Vector3f q = b.m_origin + d2 * sb;
    const bool meet = isZero(q - p);
    point = p;
    ta = sa;
    tb = sb;
    return meet ? e_geomPoint : e_geomNone;
}

e_geomInfo interTwoCoplanarLines(Vector3f &point, float &ta, const ZEFLine &a, const ZEFLine &b) {
    const Vector3f &d1 = a.m_dir;
    const Vector3f &d2 = b.m_dir;
    const float det = float(double(d1.x()) * d2.y() - double(d2.x()) * d1.y());
    if (std::fabs(det) <= kGeomDeterminantTolerance)
        return e_geomParallel;
    const Vector3f w = b.m_origin - a.m_origin;
    const float t = float((double(w.x()) * d2.y() - double(d2.x()) * w.y()) / det);
    point = a.m_origin + d1 * t;
    ta = t;
    return e_geomPoint;
}

e_geomInfo interLinePlane(Vector3f &point, float &t, const ZEFLine &line, const Plane &plane) {
    const float q = Vector3f::dot(plane.m_normal, line.m_dir);
    const float no = Vector3f::dot(plane.m_normal, line.m_origin);
    // Written as "not within" so that NaN counts as crossing.
    if (!(std::fabs(q) <= kGeomLinePlaneTolerance)) {
        const float param = float(-(double(no) + plane.m_d) / q);
        point = line.m_origin + line.m_dir * param;
        t = param;
        return e_geomPoint;
    }
    if (std::fabs(double(no) + plane.m_d) <= kGeomLinePlaneTolerance)
        return e_geomInPlane;
    return e_geomParallel;
}

e_geomInfo interLinePlaneYZ(float &t, const ZEFLine &line, float x, float tolerance) {
    return interLineAxisPlane(t, line.m_dir.x(), line.m_origin.x(), x, tolerance);
}

e_geomInfo interLinePlaneXZ(float &t, const ZEFLine &line, float y, float tolerance) {
    return interLineAxisPlane(t, line.m_dir.y(), line.m_origin.y(), y, tolerance);
}

e_geomInfo interLinePlaneXY(float &t, const ZEFLine &line, float z, float tolerance) {
    return interLineAxisPlane(t, line.m_dir.z(), line.m_origin.z(), z, tolerance);
}

e_geomInfo interSegmentPlane(Vector3f &point, float &s, const ZEFSegment &segment, const Plane &plane,
                             float tolerance) {
    ZEFLine line;
    line.m_origin = segment.m_start;
    line.m_dir = segment.m_end - segment.m_start;
    const float length = line.m_dir.normalize();
    if (length == 0.0f) // exact zero test: no tolerance here
        return e_geomNone;
    float param;
    const e_geomInfo r = interLinePlane(point, param, line, plane);
    if (r != e_geomPoint)
        return r;
    const float sv = float(double(param) / length);
    s = sv;
    if (sv <= -tolerance || double(sv) > 1.0 + tolerance)
        return e_geomNone;
    if (sv < 0.0f) {
        s = 0.0f;
        point = segment.m_start;
    } else if (sv > 1.0f) {
        s = 1.0f;
        point = segment.m_end;
    }
    return e_geomPoint;
}

e_geomInfo interSegmentSegment(Vector3f &point, float &ta, const ZEFSegment &a, const ZEFSegment &b) {
    const ZEFLine lineA(a.m_start, a.m_end - a.m_start, true);
    const ZEFLine lineB(b.m_start, b.m_end - b.m_start, true);
    float tb;
    const e_geomInfo r = interLineLine(point, ta, tb, lineA, lineB);
    if (r != e_geomPoint)
        return r;
    const double tol = kGeomSegmentParamTolerance;
    const float lengthA = (a.m_end - a.m_start).norm();
    const float lengthB = (b.m_end - b.m_start).norm();
    if (double(ta) < -tol || double(ta) > double(lengthA) + tol)
        return e_geomNone;
    if (double(tb) < -tol || double(tb) > double(lengthB) + tol)
        return e_geomNone;
    return e_geomPoint;
}

e_geomInfo interLineTriangle(Vector3f &point, float &u, float &v, bool &inside, const ZEFLine &line,
                             const Vector3f &a, const Vector3f &b, const Vector3f &c) {
    const EnhancedMathFunctions *kernel = EnhancedMathFunctions::getCurrent();
    const Vector3f e1 = b - a;
    const Vector3f e2 = c - a;
    const Vector3f q = line.m_origin - a;
    const double det = kernel->det3(e1.getValue(), e2.getValue(), line.m_dir.getValue());
    if (det == 0.0) { // exact zero test: no tolerance here
        inside = false;
        return e_geomNone;
    }
    const float su = float(kernel->det3(q.getValue(), e2.getValue(), line.m_dir.getValue()) / det);
    const float sv = float(kernel->det3(e1.getValue(), q.getValue(), line.m_dir.getValue()) / det);
    point = (a + e1 * su) + e2 * sv;
    u = su;
    v = sv;
    inside = su >= 0.0f && sv >= 0.0f && double(su) + sv <= 1.0;
    return e_geomPoint;
}

e_geomInfo interPlanePlane(ZEFLine &line, const Plane &a, const Plane &b) {
    const Vector3f &n1 = a.m_normal;
    const Vector3f &n2 = b.m_normal;
    const Vector3f c = n1.cross(n2);
    const float cc = Vector3f::dot(c, c);
    // Written as "not within" so that NaN counts as crossing.
    if (!(std::fabs(cc) <= kGeomPlanePlaneTolerance)) {
        const float p = Vector3f::dot(n1, n2);
        const float s1 = Vector3f::dot(n1, n1);
        const float s2 = Vector3f::dot(n2, n2);
        const float det = float(double(s1) * s2 - double(p) * p);
        const double k1 = -double(a.m_d);
        const double k2 = -double(b.m_d);
        const float alpha = float((s2 * k1 - k2 * p) / det);
        const float beta = float((s1 * k2 - p * k1) / det);
        line.m_origin = n1 * alpha + n2 * beta;
        line.m_dir = c;
        return e_geomPoint;
    }
    if (std::fabs(double(a.m_d) - b.m_d) <= kGeomPlanePlaneTolerance)
        return e_geomCoincident;
    return e_geomParallel;
}

void interLineBoundingBox(float &tIn, float &tOut, const ZEFLine &line, const BoundingBox &box) {
    BoxCrossing c;
    crossBox(c, line, box);
    float in;
    float out;
    boxInterval(in, out, c);
    if (in > out) {
        in = 0.0f;
        out = 0.0f;
    }
    tIn = in;
    tOut = out;
}

bool interLineBoundingBox(float &tIn, float &tOut, int &faceX, int &faceY, int &faceZ, const ZEFLine &line,
                          const BoundingBox &box) {
    BoxCrossing c;
    crossBox(c, line, box);
    float in;
    float out;
    boxInterval(in, out, c);
    int face[3] = {0, 0, 0};
    for (int i = 0; i < 6; ++i) {
        // Exact comparison: tIn is one of these parameters unless its slab is unbounded.
        if (c.r[i] == e_geomPoint && c.t[i] == in) {
            face[i / 2] = (i % 2 == 0) ? -1 : 1;
            break;
        }
    }
    if (in > out) {
        in = 0.0f;
        out = 0.0f;
    }
    tIn = in;
    tOut = out;
    faceX = face[0];
    faceY = face[1];
    faceZ = face[2];
    // Written as "not below" so that a NaN difference counts as a crossing.
    return !(std::fabs(double(in) - out) < double(kGeomBoxCrossingTolerance));
}

void interLineViewingVolume(Vector3f &pointIn, Vector3f &pointOut, float &tIn, float &tOut,
                            const ZEFLine &line, const Plane &plane1, const Plane &plane2,
                            const Plane &plane3, const Plane &plane4, const Plane &plane5,
                            const Plane &plane6) {
    const Plane *planes[6] = {&plane1, &plane2, &plane3, &plane4, &plane5, &plane6};
    Slab slabs[3];
    for (int i = 0; i < 3; ++i) {
        Vector3f unused;
        float t1 = 0.0f;
        float t2 = 0.0f;
        const e_geomInfo r1 = interLinePlane(unused, t1, line, *planes[2 * i]);
        const e_geomInfo r2 = interLinePlane(unused, t2, line, *planes[2 * i + 1]);
        slabs[i] = makeSlab(r1, t1, r2, t2);
    }
    float in;
    float out;
    intersectSlabs(in, out, slabs);
    pointIn = line.m_origin + line.m_dir * in;
    pointOut = line.m_origin + line.m_dir * out;
    tIn = in;
    tOut = out;
}

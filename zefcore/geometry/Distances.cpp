#include "zefcore/geometry/Distances.h"

#include "zefcore/geometry/GeometryTolerances.h"
#include "zefcore/geometry/Intersections.h"
#include "zefcore/kernel/EnhancedMathFunctions.h"

#include <cmath>

namespace {

// pi / 2 as a double: Cote compares the half angle with it without narrowing.
constexpr double kHalfPi = 1.5707963267948966;

// v = w - d t for w = p - o and t = d.w: the vector from the foot to p. Sets t.
Vector3f offsetFromLine(const Vector3f &p, const Vector3f &origin, const Vector3f &dir, float &t) {
    const Vector3f w = p - origin;
    t = Vector3f::dot(dir, w);
    const Vector3f along = dir * t;
    return w - along;
}

// The distance between two lines, with the parameters of the nearest points when
// ta and tb are given.
float lineLineDistance(const ZEFLine &a, const ZEFLine &b, float *ta, float *tb) {
    const Vector3f &d1 = a.m_dir;
    const Vector3f &d2 = b.m_dir;
    const Vector3f w = b.m_origin - a.m_origin;
    const Vector3f c = d1.cross(d2);
    const float length = c.norm();
    // Written as "within the bound" so that a NaN length is not parallel.
    if (double(length) <= kGeomCrossLengthTolerance) {
        if (ta != nullptr) {
            *ta = Vector3f::dot(d1, w);
            *tb = 0.0f;
        }
        return d1.cross(w).norm();
    }
    if (ta != nullptr) {
        const float k = Vector3f::dot(d1, d2);
        const float e = Vector3f::dot(d1, w);
        const float f = Vector3f::dot(d2, w);
        const float q = float(double(k) * k - 1.0);
        *ta = float((double(k) * f - e) / q);
        *tb = float((double(f) - double(k) * e) / q);
    }
    const float v = Vector3f::dot(w, c);
    const float r = float(double(v) / length);
    if (r > 0.0f)
        return r;
    return float(-double(v) / length);
}

} // namespace

float distancePointPoint(const Vector3f &a, const Vector3f &b) {
    return (a - b).norm();
}

float distancePointLine(const Vector3f &p, const ZEFLine &line, Vector3f &foot) {
    float t;
    const Vector3f v = offsetFromLine(p, line.m_origin, line.m_dir, t);
    const float result = v.norm();
    foot = p - v;
    return result;
}

float distance2PointLine(const Vector3f &p, const ZEFLine &line, Vector3f &foot) {
    Vector3f u = line.m_dir;
    u.normalize();
    float t;
    const Vector3f v = offsetFromLine(p, line.m_origin, u, t);
    const float result = v.norm2();
    foot = p - v;
    return result;
}

float distancePointLine(const Vector3f &p, const ZEFLine &line, float &t) {
    float param;
    const Vector3f v = offsetFromLine(p, line.m_origin, line.m_dir, param);
    t = param;
    return v.norm();
}

float distance2PointLine(const Vector3f &p, const ZEFLine &line, float &t) {
    float param;
    const Vector3f v = offsetFromLine(p, line.m_origin, line.m_dir, param);
    t = param;
    return v.norm2();
}

float distancePointPlane(const Vector3f &p, const Plane &plane) {
    const float np = Vector3f::dot(plane.m_normal, p);
    const float length = plane.m_normal.norm();
    return float(std::fabs(double(np) + plane.m_d) / length);
}

float distanceLineLine(const ZEFLine &a, const ZEFLine &b) {
    return lineLineDistance(a, b, nullptr, nullptr);
}

float distanceLineLine(const ZEFLine &a, const ZEFLine &b, float &ta, float &tb) {
    return lineLineDistance(a, b, &ta, &tb);
}

float distanceLineSegment(const ZEFLine &line, const ZEFSegment &segment, float &t, float &s) {
    const Vector3f v = segment.m_end - segment.m_start;
    const float length = v.norm();
    ZEFLine local;
    local.m_origin = segment.m_start;
    // Exact zero test: no length rule here, unlike setDir.
    local.m_dir = (length != 0.0f) ? v / length : Vector3f(0.0f, 0.0f, 0.0f);
    const float r = distanceLineLine(line, local, t, s);
    if (length == 0.0f) {
        // The zero direction made the lines parallel: r is the distance of m_start.
        s = 0.0f;
        return r;
    }
    s = float(double(s) / length);
    if (s < 0.0f) {
        s = 0.0f;
        return distancePointLine(segment.m_start, line, t);
    }
    if (s > 1.0f) {
        s = 1.0f;
        return distancePointLine(segment.m_end, line, t);
    }
    return r;
}

float distancePointSegment(const Vector3f &p, const ZEFSegment &segment, Vector3f &nearest) {
    const Vector3f &a = segment.m_start;
    const Vector3f &b = segment.m_end;
    const Vector3f e = b - a;
    const float s0 = Vector3f::dot(e, p - a);
    if (double(s0) < kGeomSegmentEndTolerance) {
        const float result = distancePointPoint(p, a);
        nearest = a;
        return result;
    }
    const float s1 = -Vector3f::dot(e, p - b);
    if (double(s1) < kGeomSegmentEndTolerance) {
        const float result = distancePointPoint(p, b);
        nearest = b;
        return result;
    }
    const ZEFLine line(a, e, true);
    return distancePointLine(p, line, nearest);
}

float distancePointSegment(const Vector3f &p, const Vector3f &a, const Vector3f &b, Vector3f &nearest) {
    return distancePointSegment(p, ZEFSegment(a, b), nearest);
}

float distancePointPointSet(const Vector3f &p, const ZEFArray<Vector3f> &points, int &index) {
    const int count = points.size();
    if (count == 0)
        return 0.0f;
    const Vector3f *data = points.begin();
    int bestIndex = 0;
    float best = distancePointPoint(p, data[0]);
    for (int i = 1; i < count; ++i) {
        const float d = distancePointPoint(p, data[i]);
        if (best <= d)
            continue;
        best = d;
        bestIndex = i;
    }
    index = bestIndex;
    return best;
}

bool pointOnLine(const Vector3f &p, const ZEFLine &line, float tolerance) {
    const Vector3f c = (line.m_origin - p).cross(line.m_dir);
    const float cc = Vector3f::dot(c, c);
    return std::fabs(cc) <= tolerance;
}

bool pointOnPlane(const Vector3f &p, const Plane &plane, float /*tolerance*/) {
    const float np = Vector3f::dot(plane.m_normal, p);
    return std::fabs(double(np) + plane.m_d) <= double(kGeomPointOnPlaneTolerance);
}

bool pointOnSegment(const Vector3f &p, const ZEFSegment &segment, float tolerance) {
    const Vector3f e = segment.m_end - segment.m_start;
    const Vector3f pa = p - segment.m_start;
    const float q = Vector3f::dot(pa, e);
    const float l2 = Vector3f::dot(e, e);
    if (q < -tolerance)
        return false;
    // Squared distance from the line times l2, against tolerance^2 times l2: no root and
    // no division. Written as "not within" so that NaN is refused.
    const Vector3f c = pa.cross(e);
    const float cc = Vector3f::dot(c, c);
    if (!(double(cc) <= double(tolerance) * tolerance * l2))
        return false;
    return !(q > l2);
}

bool areCoplanar(const ZEFLine &a, const ZEFLine &b, float tolerance) {
    const Vector3f w = a.m_origin - b.m_origin;
    const Vector3f wb = w.cross(b.m_dir);
    const Vector3f wa = w.cross(a.m_dir);
    return isZero(wb.cross(wa), tolerance);
}

bool pointInTriangle(const Vector3f &p, const Vector3f &a, const Vector3f &b, const Vector3f &c) {
    const Vector3f n = (b - a).cross(c - a);
    // Exact zero test: a degenerate triangle has no inside.
    if (n.x() == 0.0f && n.y() == 0.0f && n.z() == 0.0f)
        return false;
    const Vector3f *corners[3] = {&a, &b, &c};
    for (int i = 0; i < 3; ++i) {
        const Vector3f &v = *corners[i];
        const Vector3f &next = *corners[(i + 1) % 3];
        const Vector3f side = (next - v).cross(p - v);
        // The component of p along n drops out of this sign. NaN is refused.
        if (!(Vector3f::dot(side, n) >= 0.0f))
            return false;
    }
    return true;
}

e_geomInfo projectionOrtho(Vector3f &out, float &t, const Vector3f &p, const ZEFLine &line) {
    const Vector3f w = p - line.m_origin;
    const float param = Vector3f::dot(line.m_dir, w);
    out = line.m_origin + line.m_dir * param;
    t = param;
    return e_geomProjected;
}

e_geomInfo projection(Vector3f &out, const Vector3f &p, const Plane &plane, const Vector3f &direction) {
    const ZEFLine line(p, direction, true);
    float t;
    return interLinePlane(out, t, line, plane);
}

e_geomInfo projectionOrtho(Vector3f &out, const Vector3f &p, const Plane &plane) {
    return projection(out, p, plane, plane.m_normal);
}

void normal3Pts(Vector3f &out, const Vector3f &a, const Vector3f &b, const Vector3f &c, bool normalizeEdges,
                bool normalizeResult) {
    Vector3f e1 = b - a;
    Vector3f e2 = c - b;
    if (normalizeEdges) {
        e1.normalize();
        e2.normalize();
    }
    out = e1 + e2;
    if (normalizeResult)
        out.normalize();
}

void normal3Pts(Vector3f &out, const Vector3f *points, int i, int j, int k, bool normalizeEdges,
                bool normalizeResult) {
    normal3Pts(out, points[i], points[j], points[k], normalizeEdges, normalizeResult);
}

void spherisePoint(Vector3f &out, const Vector3f &p, float radius) {
    const float length = p.norm();
    const float factor = float(double(radius) / length);
    out = p * factor;
}

void spherisePoint(Vector3f &out, const Vector3f &p, float radius, float exponent) {
    const double e = exponent;
    const float n = float(std::pow(
        std::pow(double(p.x()), e) + std::pow(double(p.y()), e) + std::pow(double(p.z()), e), 1.0 / e));
    const float factor = float(double(radius) / n);
    out = p * factor;
}

void spherisePoint(Vector3f &out, const Vector3f &p, float radius, const Vector3f &exponents) {
    const float n = float(std::pow(std::fabs(double(p.x())), double(exponents.x())) +
                          std::pow(std::fabs(double(p.y())), double(exponents.y())) +
                          std::pow(std::fabs(double(p.z())), double(exponents.z())));
    const float factor = float(double(radius) / n);
    out = p * factor;
}

float Cote(const Vector3f &a, const Vector3f &b, float radius, float &halfAngle) {
    const float angle = a.angle(b);
    const float h = float(double(angle) * 0.5);
    halfAngle = h;
    if (std::fabs(double(h) - kHalfPi) <= double(kGeomCoteTolerance))
        return 0.0f;
    const float t = float(std::tan(double(h)));
    if (std::fabs(t) <= kGeomCoteTolerance)
        return 0.0f;
    return float(double(radius) / t);
}

void cameraProjPoint(Vector3f &out, const Vector3f &p, const Matrix4f &matrix, float depthLimit) {
    EnhancedMathFunctions::getCurrent()->multMatrixVec3f(out.getValue(), matrix.getValue(), p.getValue());
    // At exactly depthLimit, or for a NaN depth, the point stays in front.
    if (out.z() > depthLimit) {
        out.x() = -out.x();
        out.y() = -out.y();
    }
}

void cameraProjPoint(Vector2f &out, const Vector3f &p, const Matrix4f &matrix, float depthLimit) {
    Vector3f q;
    cameraProjPoint(q, p, matrix, depthLimit);
    out.setValue(q.x(), q.y());
}

#include "zefcore/geometry/PlaneFigureQueries.h"

#include "zefcore/geometry/GeometryTolerances.h"

#include <cmath>

namespace {

// z of the cross product of (ux, uy) and (vx, vy), rounded to float.
float cross2(float ux, float uy, float vx, float vy) {
    return static_cast<float>(double(ux) * vy - double(uy) * vx);
}

// The shared step of the four axis-parallel forms. c0, c1 are the coordinates of the
// segment's ends across the axis line, e0, e1 those along it.
e_geomInfo interSegmentAxisLine(float c0, float c1, float e0, float e1, float value, float &out) {
    const float d = static_cast<float>(double(c1) - c0);
    if (d == 0.0f) // exact zero test: no tolerance here
        return c0 == value ? e_geomCoincident : e_geomNone;
    if (!((c0 <= value && value <= c1) || (c1 <= value && value <= c0)))
        return e_geomNone;
    out = static_cast<float>(double(e0) + (double(value) - c0) * (double(e1) - e0) / d);
    return e_geomPoint;
}

e_geomInfo limitToRange(e_geomInfo info, float out, float low, float high) {
    if (info != e_geomPoint)
        return info;
    return (low <= out && out <= high) ? e_geomPoint : e_geomNone;
}

float xOf(const Vector3f &v) {
    return v.x();
}
float yOf(const Vector3f &v) {
    return v.y();
}
float xOf(const Vector2f &v) {
    return v.x();
}
float yOf(const Vector2f &v) {
    return v.y();
}

// Even-odd count over count vertices; vertexAt(i) gives vertex i of the ring.
template <class VertexAt>
bool evenOddInside(const float *p, long count, VertexAt vertexAt) {
    if (count < 2)
        return false;
    const float px = p[0];
    const float py = p[1];
    int crossings = 0;
    float prevX = xOf(vertexAt(count - 1));
    float prevY = yOf(vertexAt(count - 1));
    for (long i = 0; i < count; ++i) {
        const float curX = xOf(vertexAt(i));
        const float curY = yOf(vertexAt(i));
        // One half-open comparison at both ends: a vertex at p.x counts as left of the
        // ray at both of its edges, so it is counted once; a vertical edge never counts.
        if ((prevX <= px) != (curX <= px)) {
            const float y = static_cast<float>(
                (double(curY) - prevY) * (double(px) - prevX) / (double(curX) - prevX) + prevY);
            if (py <= y)
                ++crossings;
        }
        prevX = curX;
        prevY = curY;
    }
    return (crossings & 1) != 0;
}

template <class V>
bool pointInRing(const float *p, const V *first, const V *last) {
    const long count = (first != nullptr && last != nullptr) ? static_cast<long>(last - first) : 0;
    return evenOddInside(p, count, [first](long i) -> const V & { return first[i]; });
}

template <class V>
bool pointInIndexedRing(const float *p, const V *vertices, const int *first, const int *last) {
    const long count = (first != nullptr && last != nullptr) ? static_cast<long>(last - first) : 0;
    return evenOddInside(p, count, [vertices, first](long i) -> const V & { return vertices[first[i]]; });
}

} // namespace

float distance2PointSegment2D(float &t, Vector2f &nearest, const float *a, const float *b, const float *p) {
    const float abx = static_cast<float>(double(b[0]) - a[0]);
    const float aby = static_cast<float>(double(b[1]) - a[1]);
    const float apx = static_cast<float>(double(p[0]) - a[0]);
    const float apy = static_cast<float>(double(p[1]) - a[1]);
    const float num = static_cast<float>(double(apy) * aby + double(apx) * abx);
    const float den = static_cast<float>(double(aby) * aby + double(abx) * abx);
    t = static_cast<float>(double(num) / den);
    float nx;
    float ny;
    if (t > 1.0f) {
        t = 1.0f;
        nx = b[0];
        ny = b[1];
    } else if (t < 0.0f) {
        t = 0.0f;
        nx = a[0];
        ny = a[1];
    } else {
        // A NaN t (a == b) lands here and makes the result NaN.
        nx = static_cast<float>(double(a[0]) + double(t) * abx);
        ny = static_cast<float>(double(a[1]) + double(t) * aby);
    }
    nearest = Vector2f(nx, ny);
    const float dx = static_cast<float>(double(nx) - p[0]);
    const float dy = static_cast<float>(double(ny) - p[1]);
    return static_cast<float>(double(dy) * dy + double(dx) * dx);
}

e_geomInfo inter2dLineLine(float *point, float &t1, float &t2, const float *p1, const float *d1,
                           const float *p2, const float *d2) {
    const float det = static_cast<float>(double(d1[0]) * d2[1] - double(d1[1]) * d2[0]);
    // Raw determinant, not scaled by the lengths; a NaN determinant is not parallel.
    if (std::fabs(det) <= kGeomDeterminantTolerance)
        return e_geomParallel;
    const float wx = static_cast<float>(double(p2[0]) - p1[0]);
    const float wy = static_cast<float>(double(p2[1]) - p1[1]);
    const float s1 = static_cast<float>((double(wx) * d2[1] - double(wy) * d2[0]) / det);
    const float s2 = static_cast<float>((double(wx) * d1[1] - double(wy) * d1[0]) / det);
    t1 = s1;
    t2 = s2;
    point[0] = static_cast<float>(double(p1[0]) + double(s1) * d1[0]);
    point[1] = static_cast<float>(double(p1[1]) + double(s1) * d1[1]);
    return e_geomPoint;
}

e_geomInfo inter2dSegmentSegment(float *point, float &t1, float &t2, const float *p1, const float *d1,
                                 const float *p2, const float *d2) {
    const e_geomInfo info = inter2dLineLine(point, t1, t2, p1, d1, p2, d2);
    if (info != e_geomPoint)
        return info;
    if (0.0f <= t1 && t1 <= 1.0f && 0.0f <= t2 && t2 <= 1.0f)
        return e_geomPoint;
    return e_geomNone;
}

e_geomInfo inter2dSegmentSegment(const float *a, const float *b, const float *c, const float *d) {
    const float abx = static_cast<float>(double(b[0]) - a[0]);
    const float aby = static_cast<float>(double(b[1]) - a[1]);
    const float acx = static_cast<float>(double(c[0]) - a[0]);
    const float acy = static_cast<float>(double(c[1]) - a[1]);
    const float adx = static_cast<float>(double(d[0]) - a[0]);
    const float ady = static_cast<float>(double(d[1]) - a[1]);
    const float s1 = cross2(abx, aby, acx, acy);
    const float s2 = cross2(abx, aby, adx, ady);
    if (!((s1 >= 0.0f && s2 <= 0.0f) || (s2 >= 0.0f && s1 <= 0.0f)))
        return e_geomNone;

    const float cdx = static_cast<float>(double(d[0]) - c[0]);
    const float cdy = static_cast<float>(double(d[1]) - c[1]);
    const float cax = static_cast<float>(double(a[0]) - c[0]);
    const float cay = static_cast<float>(double(a[1]) - c[1]);
    const float cbx = static_cast<float>(double(b[0]) - c[0]);
    const float cby = static_cast<float>(double(b[1]) - c[1]);
    const float s3 = cross2(cdx, cdy, cax, cay);
    const float s4 = cross2(cdx, cdy, cbx, cby);
    if ((s3 >= 0.0f && s4 <= 0.0f) || (s4 >= 0.0f && s3 <= 0.0f))
        return e_geomPoint;
    return e_geomNone;
}

e_geomInfo inter2dSegmentVerticalLine(const float *a, const float *b, float value, float &out) {
    return interSegmentAxisLine(a[0], b[0], a[1], b[1], value, out);
}

e_geomInfo inter2dSegmentHorizontalLine(const float *a, const float *b, float value, float &out) {
    return interSegmentAxisLine(a[1], b[1], a[0], b[0], value, out);
}

e_geomInfo inter2dSegmentVerticalSegment(const float *a, const float *b, float value, float low, float high,
                                         float &out) {
    const e_geomInfo info = interSegmentAxisLine(a[0], b[0], a[1], b[1], value, out);
    return limitToRange(info, out, low, high);
}

e_geomInfo inter2dSegmentHorizontalSegment(const float *a, const float *b, float value, float low, float high,
                                           float &out) {
    const e_geomInfo info = interSegmentAxisLine(a[1], b[1], a[0], b[0], value, out);
    return limitToRange(info, out, low, high);
}

e_geomInfo inter2dSegmentBBox(const float *a, const float *b, const BoundingBox &box, bool &aInside,
                              bool &bInside) {
    const float minX = box.m_min.x();
    const float minY = box.m_min.y();
    const float maxX = box.m_max.x();
    const float maxY = box.m_max.y();
    aInside = minX <= a[0] && a[0] <= maxX && minY <= a[1] && a[1] <= maxY;
    bInside = minX <= b[0] && b[0] <= maxX && minY <= b[1] && b[1] <= maxY;
    if (aInside != bInside)
        return e_geomPoint;

    if ((a[0] < minX && b[0] < minX) || (a[0] > maxX && b[0] > maxX) || (a[1] < minY && b[1] < minY) ||
        (a[1] > maxY && b[1] > maxY))
        return e_geomNone;

    float out = 0.0f;
    if (inter2dSegmentVerticalSegment(a, b, minX, minY, maxY, out) == e_geomPoint ||
        inter2dSegmentVerticalSegment(a, b, maxX, minY, maxY, out) == e_geomPoint ||
        inter2dSegmentHorizontalSegment(a, b, minY, minX, maxX, out) == e_geomPoint ||
        inter2dSegmentHorizontalSegment(a, b, maxY, minX, maxX, out) == e_geomPoint)
        return e_geomPoint;
    return e_geomNone;
}

bool pointIn2DPolygon(const float *p, const Vector3f *first, const Vector3f *last) {
    return pointInRing(p, first, last);
}

bool pointIn2DPolygon(const float *p, const Vector2f *first, const Vector2f *last) {
    return pointInRing(p, first, last);
}

bool pointIn2DPolygon(const float *p, const Vector3f *vertices, const int *first, const int *last) {
    return pointInIndexedRing(p, vertices, first, last);
}

bool pointIn2DPolygon(const float *p, const Vector2f *vertices, const int *first, const int *last) {
    return pointInIndexedRing(p, vertices, first, last);
}

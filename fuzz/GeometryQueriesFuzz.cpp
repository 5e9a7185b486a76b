// Fuzz target: the geometry queries on arbitrary floats (NaN, infinities,
// subnormals, and small fractions so that figures really meet). Checked: no
// undefined behaviour; the outcome values each query may give; outputs that a
// case leaves "not written" keep sentinels; the forms of one query agree with
// each other (line and segment forms, index and vertex rings, aliased outputs).
#include "FuzzCheck.h"
#include "FuzzInput.h"
#include "zefcore/geometry/BoundingBoxAlgo.h"
#include "zefcore/geometry/Distances.h"
#include "zefcore/geometry/Intersections.h"
#include "zefcore/geometry/PlaneFigureQueries.h"
#include "zefcore/geometry/PlaneProjector.h"

#include <cmath>
#include <cstring>
#include <initializer_list>
#include <memory>
#include <vector>

namespace {

// A float that no query computes from the inputs below by chance.
float sentinel() {
    const uint32_t bits = 0xDEADBEEFu;
    float f;
    std::memcpy(&f, &bits, sizeof f);
    return f;
}
bool isSentinel(float f) {
    const float s = sentinel();
    return sameBits(&f, &s, 1);
}
bool isSentinel(const Vector3f &v) {
    return isSentinel(v.x()) && isSentinel(v.y()) && isSentinel(v.z());
}
Vector3f sentinel3() {
    return Vector3f(sentinel(), sentinel(), sentinel());
}
bool same(const Vector3f &a, const Vector3f &b) {
    return sameValues(a.getValue(), b.getValue(), 3);
}

struct Inputs {
    FuzzInput &in;
    float f() { return in.anyFloat(); }
    Vector3f v() { return Vector3f(f(), f(), f()); }
    ZEFLine line() {
        ZEFLine l;
        l.m_origin = v();
        if (in.flag())
            l.setDir(v()); // a unit direction, or the old one
        else
            l.m_dir = v();
        return l;
    }
    Plane plane() {
        Plane p;
        p.m_normal = v();
        p.m_d = f();
        return p;
    }
    BoundingBox box() {
        BoundingBox b;
        const int n = in.range(0, 3);
        for (int k = 0; k < n; ++k)
            b.add(v());
        if (in.range(0, 7) == 0) { // any six floats
            b.m_min = v();
            b.m_max = v();
        }
        return b;
    }
    Matrix4f matrix() {
        Matrix4f m;
        for (int i = 0; i < 16; ++i)
            m.getValue()[i] = in.range(0, 3) == 0 ? f() : (i % 5 == 0 ? 1.0f : 0.0f) + in.smallFloat() / 8.0f;
        return m;
    }
};

bool oneOf(int value, std::initializer_list<int> allowed) {
    for (int a : allowed)
        if (value == a)
            return true;
    return false;
}

void planeFigures(Inputs &g) {
    float p1[2] = {g.f(), g.f()}, d1[2] = {g.f(), g.f()}, p2[2] = {g.f(), g.f()}, d2[2] = {g.f(), g.f()};
    float point[2] = {sentinel(), sentinel()};
    float t1 = sentinel(), t2 = sentinel();
    const int r = inter2dLineLine(point, t1, t2, p1, d1, p2, d2);
    FUZZ_CHECK(oneOf(r, {e_geomPoint, e_geomParallel}));
    if (r == e_geomParallel)
        FUZZ_CHECK(isSentinel(point[0]) && isSentinel(point[1]) && isSentinel(t1) && isSentinel(t2));
    float sp[2] = {sentinel(), sentinel()};
    float s1 = sentinel(), s2 = sentinel();
    const int rs = inter2dSegmentSegment(sp, s1, s2, p1, d1, p2, d2);
    FUZZ_CHECK(r == e_geomPoint ? oneOf(rs, {e_geomPoint, e_geomNone}) : rs == r);
    FUZZ_CHECK(sameValues(sp, point, 2) && sameValue(s1, t1) && sameValue(s2, t2));
    if (rs == e_geomPoint)
        FUZZ_CHECK(s1 >= 0.0f && s1 <= 1.0f && s2 >= 0.0f && s2 <= 1.0f);
    FUZZ_CHECK(oneOf(inter2dSegmentSegment(p1, d1, p2, d2), {e_geomNone, e_geomPoint}));

    float t = sentinel();
    Vector2f nearest(sentinel(), sentinel());
    distance2PointSegment2D(t, nearest, p1, d1, p2);
    FUZZ_CHECK(std::isnan(t) || (t >= 0.0f && t <= 1.0f));

    // The line forms write only on e_geomPoint; the segment forms add the range test.
    const float value = g.f(), low = g.f(), high = g.f();
    for (int horizontal = 0; horizontal < 2; ++horizontal) {
        float onLine = sentinel(), onSegment = sentinel();
        const int rl = horizontal ? inter2dSegmentHorizontalLine(p1, p2, value, onLine)
                                  : inter2dSegmentVerticalLine(p1, p2, value, onLine);
        const int rg = horizontal ? inter2dSegmentHorizontalSegment(p1, p2, value, low, high, onSegment)
                                  : inter2dSegmentVerticalSegment(p1, p2, value, low, high, onSegment);
        FUZZ_CHECK(oneOf(rl, {e_geomNone, e_geomPoint, e_geomCoincident}));
        FUZZ_CHECK(rl == e_geomPoint || isSentinel(onLine));
        FUZZ_CHECK(sameValue(onLine, onSegment));
        if (rl == e_geomPoint)
            FUZZ_CHECK(rg == (low <= onLine && onLine <= high ? e_geomPoint : e_geomNone));
        else
            FUZZ_CHECK(rg == rl);
    }

    const BoundingBox box = g.box();
    bool aInside = !g.in.flag(), bInside = !g.in.flag();
    const int rb = inter2dSegmentBBox(p1, p2, box, aInside, bInside);
    const auto inside = [&](const float *q) {
        return box.m_min.x() <= q[0] && q[0] <= box.m_max.x() && box.m_min.y() <= q[1] &&
               q[1] <= box.m_max.y();
    };
    FUZZ_CHECK(oneOf(rb, {e_geomNone, e_geomPoint}));
    FUZZ_CHECK(aInside == inside(p1) && bInside == inside(p2));
    if (aInside != bInside)
        FUZZ_CHECK(rb == e_geomPoint);

    // The four ring forms agree; exact-size vertex arrays.
    const int n = g.in.range(0, 9);
    std::unique_ptr<Vector3f[]> v3(new Vector3f[size_t(n + 1)]);
    std::unique_ptr<Vector2f[]> v2(new Vector2f[size_t(n + 1)]);
    std::unique_ptr<int[]> idx(new int[size_t(n + 1)]);
    for (int i = 0; i < n; ++i) {
        v3[size_t(i)] = Vector3f(g.f(), g.f(), g.f());
        v2[size_t(i)] = Vector2f(v3[size_t(i)].x(), v3[size_t(i)].y());
    }
    // The index ring visits the vertices backwards from the end of a larger array.
    std::unique_ptr<Vector3f[]> w3(new Vector3f[size_t(n + 1)]);
    std::unique_ptr<Vector2f[]> w2(new Vector2f[size_t(n + 1)]);
    for (int i = 0; i < n; ++i) {
        idx[size_t(i)] = n - i;
        w3[size_t(n - i)] = v3[size_t(i)];
        w2[size_t(n - i)] = v2[size_t(i)];
    }
    const bool in3 = pointIn2DPolygon(p1, v3.get(), v3.get() + n);
    FUZZ_CHECK(pointIn2DPolygon(p1, v2.get(), v2.get() + n) == in3);
    FUZZ_CHECK(pointIn2DPolygon(p1, w3.get(), idx.get(), idx.get() + n) == in3);
    FUZZ_CHECK(pointIn2DPolygon(p1, w2.get(), idx.get(), idx.get() + n) == in3);
    if (n < 2)
        FUZZ_CHECK(!in3);
}

void intersections(Inputs &g) {
    const ZEFLine a = g.line(), b = g.line();
    const Plane plane = g.plane();
    Vector3f point = sentinel3();
    float ta = sentinel(), tb = sentinel();
    int r = interLineLine(point, ta, tb, a, b);
    FUZZ_CHECK(oneOf(r, {e_geomNone, e_geomPoint, e_geomParallel}));
    if (r == e_geomParallel)
        FUZZ_CHECK(isSentinel(point) && isSentinel(ta) && isSentinel(tb));

    point = sentinel3(), ta = sentinel();
    r = interTwoCoplanarLines(point, ta, a, b);
    FUZZ_CHECK(oneOf(r, {e_geomPoint, e_geomParallel}));
    if (r == e_geomParallel)
        FUZZ_CHECK(isSentinel(point) && isSentinel(ta));

    Vector3f onPlane = sentinel3();
    float t = sentinel();
    const int rp = interLinePlane(onPlane, t, a, plane);
    FUZZ_CHECK(oneOf(rp, {e_geomPoint, e_geomParallel, e_geomInPlane}));
    if (rp != e_geomPoint)
        FUZZ_CHECK(isSentinel(onPlane) && isSentinel(t));
    PlaneProjector projector(plane);
    Vector3f projected = sentinel3();
    FUZZ_CHECK(projector.project(projected, a) == (rp == e_geomPoint));
    FUZZ_CHECK(rp == e_geomPoint ? same(projected, onPlane) : isSentinel(projected));

    const float tolerance = g.f(), at = g.f();
    for (int axis = 0; axis < 3; ++axis) {
        float ts = sentinel();
        const int ra = axis == 0   ? interLinePlaneYZ(ts, a, at, tolerance)
                       : axis == 1 ? interLinePlaneXZ(ts, a, at, tolerance)
                                   : interLinePlaneXY(ts, a, at, tolerance);
        FUZZ_CHECK(oneOf(ra, {e_geomPoint, e_geomParallel, e_geomInPlane}));
        FUZZ_CHECK(ra == e_geomPoint || isSentinel(ts));
    }

    const ZEFSegment sa(g.v(), g.v()), sb(g.v(), g.v());
    point = sentinel3();
    float s = sentinel();
    r = interSegmentPlane(point, s, sa, plane, tolerance);
    FUZZ_CHECK(oneOf(r, {e_geomNone, e_geomPoint, e_geomParallel, e_geomInPlane}));
    if (r == e_geomParallel || r == e_geomInPlane)
        FUZZ_CHECK(isSentinel(point) && isSentinel(s));
    if (r == e_geomPoint && !std::isnan(s))
        FUZZ_CHECK(s >= 0.0f && s <= 1.0f);

    point = sentinel3(), ta = sentinel();
    r = interSegmentSegment(point, ta, sa, sb);
    FUZZ_CHECK(oneOf(r, {e_geomNone, e_geomPoint, e_geomParallel}));
    if (r == e_geomParallel)
        FUZZ_CHECK(isSentinel(point) && isSentinel(ta));

    point = sentinel3();
    float u = sentinel(), v = sentinel();
    bool inside = true;
    r = interLineTriangle(point, u, v, inside, a, g.v(), g.v(), g.v());
    FUZZ_CHECK(oneOf(r, {e_geomNone, e_geomPoint}));
    if (r == e_geomNone)
        FUZZ_CHECK(!inside && isSentinel(point) && isSentinel(u) && isSentinel(v));
    else if (inside)
        FUZZ_CHECK(u >= 0.0f && v >= 0.0f);

    ZEFLine crossing;
    crossing.m_origin = sentinel3(), crossing.m_dir = sentinel3();
    r = interPlanePlane(crossing, plane, g.plane());
    FUZZ_CHECK(oneOf(r, {e_geomPoint, e_geomParallel, e_geomCoincident}));
    if (r != e_geomPoint)
        FUZZ_CHECK(isSentinel(crossing.m_origin) && isSentinel(crossing.m_dir));

    const BoundingBox box = g.box();
    float tIn = sentinel(), tOut = sentinel(), tIn2 = sentinel(), tOut2 = sentinel();
    int faces[3] = {7, 7, 7};
    interLineBoundingBox(tIn, tOut, a, box);
    const bool crosses = interLineBoundingBox(tIn2, tOut2, faces[0], faces[1], faces[2], a, box);
    FUZZ_CHECK(sameValue(tIn, tIn2) && sameValue(tOut, tOut2));
    FUZZ_CHECK(!(tIn > tOut));
    FUZZ_CHECK(crosses == !(std::fabs(double(tIn) - double(tOut)) < double(1e-7f)));
    int nonZero = 0;
    for (int f : faces) {
        FUZZ_CHECK(f == -1 || f == 0 || f == 1);
        nonZero += f != 0;
    }
    FUZZ_CHECK(nonZero <= 1);

    Vector3f pIn = sentinel3(), pOut = sentinel3();
    tIn = sentinel(), tOut = sentinel();
    const Plane p3 = g.plane(), p4 = g.plane();
    interLineViewingVolume(pIn, pOut, tIn, tOut, a, plane, p3, p4, plane, p3, p4);
    FUZZ_CHECK(!isSentinel(tIn) && !isSentinel(tOut));
}

void distances(Inputs &g) {
    const ZEFLine line = g.line(), other = g.line();
    const Plane plane = g.plane();
    const Vector3f p = g.v(), a = g.v(), b = g.v();
    Vector3f foot;
    distancePointLine(p, line, foot);
    Vector3f aliased = p; // foot may be p
    FUZZ_CHECK(sameValue(distancePointLine(aliased, line, aliased), distancePointLine(p, line, foot)));
    FUZZ_CHECK(same(aliased, foot));
    float t = 0.0f, s = 0.0f, t2 = 0.0f;
    distance2PointLine(p, line, foot);
    distancePointLine(p, line, t);
    distance2PointLine(p, line, t2);
    FUZZ_CHECK(sameValue(t, t2));
    const float dpp = distancePointPlane(p, plane);
    FUZZ_CHECK(std::isnan(dpp) || dpp >= 0.0f);
    distanceLineLine(line, other);
    distanceLineLine(line, other, t, t2);
    distanceLineSegment(line, ZEFSegment(a, b), t, s);
    FUZZ_CHECK(std::isnan(s) || (s >= 0.0f && s <= 1.0f));

    Vector3f nearest, nearest2;
    const float d1 = distancePointSegment(p, ZEFSegment(a, b), nearest);
    FUZZ_CHECK(sameValue(d1, distancePointSegment(p, a, b, nearest2)) && same(nearest, nearest2));
    aliased = p; // nearest may be p
    FUZZ_CHECK(sameValue(distancePointSegment(aliased, a, b, aliased), d1) && same(aliased, nearest));

    ZEFArray<Vector3f> points;
    const int n = g.in.range(0, 4);
    for (int k = 0; k < n; ++k)
        points.push_back(g.v());
    int index = -5;
    const float dset = distancePointPointSet(p, points, index);
    if (n == 0)
        FUZZ_CHECK(dset == 0.0f && index == -5);
    else
        FUZZ_CHECK(index >= 0 && index < n);

    const float tolerance = g.f();
    pointOnLine(p, line, tolerance);
    FUZZ_CHECK(pointOnPlane(p, plane, tolerance) == pointOnPlane(p, plane, g.f()));
    pointOnSegment(p, ZEFSegment(a, b), tolerance);
    areCoplanar(line, other, tolerance);
    pointInTriangle(p, a, b, g.v());

    Vector3f out = sentinel3();
    FUZZ_CHECK(projectionOrtho(out, t, p, line) == e_geomProjected);
    Vector3f aliasedOut = p;
    float t3 = 0.0f;
    projectionOrtho(aliasedOut, t3, aliasedOut, line);
    FUZZ_CHECK(same(aliasedOut, out) && sameValue(t, t3));
    out = sentinel3();
    int r = projection(out, p, plane, a);
    FUZZ_CHECK(oneOf(r, {e_geomPoint, e_geomParallel, e_geomInPlane}));
    FUZZ_CHECK(r == e_geomPoint || isSentinel(out));
    out = sentinel3();
    r = projectionOrtho(out, p, plane);
    FUZZ_CHECK(oneOf(r, {e_geomPoint, e_geomParallel, e_geomInPlane}));
    FUZZ_CHECK(r == e_geomPoint || isSentinel(out));

    Vector3f sum, sum2;
    const bool edges = g.in.flag(), result = g.in.flag();
    const Vector3f pts[3] = {a, b, p};
    normal3Pts(sum, a, b, p, edges, result);
    normal3Pts(sum2, pts, 0, 1, 2, edges, result);
    FUZZ_CHECK(same(sum, sum2));
    Vector3f aliasedSum = a; // out may be an input
    normal3Pts(aliasedSum, aliasedSum, b, p, edges, result);
    FUZZ_CHECK(same(aliasedSum, sum));

    const float radius = g.f();
    spherisePoint(out, p, radius);
    spherisePoint(out, p, radius, g.f());
    spherisePoint(out, p, radius, g.v());
    float half = sentinel();
    Cote(a, b, radius, half);
    FUZZ_CHECK(!isSentinel(half));

    // Projection through a camera: the 2-D form is x and y of the 3-D form; out may be p.
    const Matrix4f camera = g.matrix();
    const float depth = g.f();
    Vector3f q;
    Vector2f q2(sentinel(), sentinel());
    cameraProjPoint(q, p, camera, depth);
    cameraProjPoint(q2, p, camera, depth);
    FUZZ_CHECK(sameValue(q2.x(), q.x()) && sameValue(q2.y(), q.y()));
    Vector3f aliasedQ = p;
    cameraProjPoint(aliasedQ, aliasedQ, camera, depth);
    FUZZ_CHECK(same(aliasedQ, q));
}

void boxes(Inputs &g) {
    const BoundingBox box = g.box();
    MatAff4f affine;
    for (int i = 0; i < 16; ++i)
        if (i % 4 != 3)
            affine.getValue()[i] =
                g.in.range(0, 3) == 0 ? g.f() : (i % 5 == 0 ? 1.0f : 0.0f) + g.in.smallFloat();
    BoundingBox moved, aliased = box;
    BoundingBoxAlgo::transformBBox(moved, box, affine);
    BoundingBoxAlgo::transformBBox(aliased, aliased, affine);
    FUZZ_CHECK(same(moved.m_min, aliased.m_min) && same(moved.m_max, aliased.m_max));
    const Vector3f p = g.v();
    const float d2 = BoundingBoxAlgo::BBox3DDistance2(box, affine, p);
    FUZZ_CHECK(std::isnan(d2) || d2 >= 0.0f);
    const Vector3f qa = g.v(), qb = g.v(), qc = g.v(), qd = g.v();
    const float q2 = BoundingBoxAlgo::QuadDistance2(qa, qb, qc, qd, affine, p);
    FUZZ_CHECK(std::isnan(q2) || q2 >= 0.0f);

    // Into a fresh 3-D box and into a 2-D box: the same position and rectangle.
    const Matrix4f camera = g.matrix();
    const float depth = g.f();
    BoundingBox out3;
    const BoundingBox fresh = out3;
    const int pos3 = BoundingBoxAlgo::cameraProjBBox(out3, box, camera, depth);
    BoundingBox2D out2;
    out2.m_min = Vector2f(sentinel(), sentinel());
    out2.m_max = Vector2f(sentinel(), sentinel());
    const int pos2 = BoundingBoxAlgo::cameraProjBBox(out2, box, camera, depth);
    FUZZ_CHECK(pos3 == pos2 && pos3 >= 0 && pos3 <= 3);
    FUZZ_CHECK(sameValue(out2.m_min.x(), out3.m_min.x()) && sameValue(out2.m_min.y(), out3.m_min.y()) &&
               sameValue(out2.m_max.x(), out3.m_max.x()) && sameValue(out2.m_max.y(), out3.m_max.y()));
    if (pos3 == BoundingBoxAlgo::BBoxBehind)
        FUZZ_CHECK(same(out3.m_min, fresh.m_min) && same(out3.m_max, fresh.m_max));

    BoundingBox2D rect;
    rect.set(g.box());
    if (g.in.range(0, 3) == 0) {
        rect.m_min = Vector2f(g.f(), g.f());
        rect.m_max = Vector2f(g.f(), g.f());
    }
    bool cleared = true, entirely = true;
    const bool meets = BoundingBoxAlgo::BBox3DIntersectBBox2D(box, rect, camera, depth, cleared, entirely);
    FUZZ_CHECK(!cleared && (!entirely || meets));
    if (pos3 == BoundingBoxAlgo::BBoxBehind)
        FUZZ_CHECK(!meets);
    cleared = true;
    BoundingBoxAlgo::QuadIntersectBBox2D(qa, qb, qc, qd, rect, camera, depth, cleared);
    FUZZ_CHECK(!cleared);

    // A box built by add holds each point added (non-NaN points).
    BoundingBox built;
    Vector3f added[3];
    for (Vector3f &v : added) {
        v = Vector3f(g.in.smallFloat(), g.in.smallFloat(), g.in.smallFloat());
        built.add(v);
    }
    for (const Vector3f &v : added)
        FUZZ_CHECK(built.contains(v));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    FuzzInput in(data, size);
    Inputs g{in};
    for (int steps = 0; !in.empty() && steps < 32; ++steps) {
        switch (in.range(0, 3)) {
        case 0:
            planeFigures(g);
            break;
        case 1:
            intersections(g);
            break;
        case 2:
            distances(g);
            break;
        default:
            boxes(g);
            break;
        }
    }
    return 0;
}

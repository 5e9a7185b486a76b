// Fuzz target: the geometry queries on arbitrary floats (NaN, infinities, subnormals,
// and small fractions so that figures really meet). Checked: no undefined behaviour; the
// outcomes each query may give; outputs a case leaves unwritten keep a sentinel; the forms
// of one query agree (line and segment, index and vertex rings, 2-D and 3-D, aliased outputs).
#include "FuzzInput.h"
#include "zefcore/geometry/BoundingBoxAlgo.h"
#include "zefcore/geometry/Distances.h"
#include "zefcore/geometry/Intersections.h"
#include "zefcore/geometry/PlaneFigureQueries.h"
#include "zefcore/geometry/PlaneProjector.h"

#include <algorithm>
#include <initializer_list>
#include <vector>

namespace {

const float S = FuzzInput::bitCast<float>(0xDEADBEEFu); // no query computes it from these inputs by chance
const Vector3f S3(S, S, S);

bool unset(float f) {
    return sameBits(&f, &S, 1);
}
bool unset(const Vector3f &v) {
    return sameBits(v.getValue(), S3.getValue(), 3);
}
bool same(const Vector3f &a, const Vector3f &b) {
    return sameValues(a.getValue(), b.getValue(), 3);
}
bool oneOf(int value, std::initializer_list<int> allowed) {
    return std::find(allowed.begin(), allowed.end(), value) != allowed.end();
}

struct Inputs {
    FuzzInput &in;
    float f() { return in.anyFloat(); }
    Vector3f v() { return Vector3f(f(), f(), f()); }
    ZEFLine line() {
        ZEFLine l;
        l.m_origin = v();
        in.flag() ? l.setDir(v()) : void(l.m_dir = v()); // a unit direction, or any
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
        for (int k = in.range(0, 3); k > 0; --k)
            b.add(v());
        if (in.range(0, 7) == 0) // any six floats
            b.m_min = v(), b.m_max = v();
        return b;
    }
    Matrix4f matrix() { // near the identity, or any
        Matrix4f m;
        for (int i = 0; i < 16; ++i)
            m.getValue()[i] = in.range(0, 3) == 0 ? f() : float(i % 5 == 0) + in.smallFloat() / 8.0f;
        return m;
    }
};

void planeFigures(Inputs &g) {
    float p1[2] = {g.f(), g.f()}, d1[2] = {g.f(), g.f()}, p2[2] = {g.f(), g.f()}, d2[2] = {g.f(), g.f()};
    float point[2] = {S, S}, t1 = S, t2 = S, sp[2] = {S, S}, s1 = S, s2 = S;
    const int r = inter2dLineLine(point, t1, t2, p1, d1, p2, d2);
    const int rs = inter2dSegmentSegment(sp, s1, s2, p1, d1, p2, d2);
    FUZZ_CHECK(r == e_geomPoint
                   ? oneOf(rs, {e_geomPoint, e_geomNone})
                   : r == e_geomParallel && rs == r && unset(point[0]) && unset(t1) && unset(t2));
    FUZZ_CHECK(sameValues(sp, point, 2) && sameValue(s1, t1) && sameValue(s2, t2));
    FUZZ_CHECK(rs != e_geomPoint || (s1 >= 0.0f && s1 <= 1.0f && s2 >= 0.0f && s2 <= 1.0f));
    FUZZ_CHECK(oneOf(inter2dSegmentSegment(p1, d1, p2, d2), {e_geomNone, e_geomPoint}));
    Vector2f nearest;
    distance2PointSegment2D(t1, nearest, p1, d1, p2);
    FUZZ_CHECK(std::isnan(t1) || (t1 >= 0.0f && t1 <= 1.0f));

    // The line forms write only on e_geomPoint; the segment forms add the range test.
    const float value = g.f(), low = g.f(), high = g.f();
    for (int horizontal = 0; horizontal < 2; ++horizontal) {
        float onLine = S, onSegment = S;
        const int rl = horizontal ? inter2dSegmentHorizontalLine(p1, p2, value, onLine)
                                  : inter2dSegmentVerticalLine(p1, p2, value, onLine);
        const int rg = horizontal ? inter2dSegmentHorizontalSegment(p1, p2, value, low, high, onSegment)
                                  : inter2dSegmentVerticalSegment(p1, p2, value, low, high, onSegment);
        FUZZ_CHECK(rl == e_geomPoint
                       ? rg == (low <= onLine && onLine <= high ? e_geomPoint : e_geomNone)
                       : oneOf(rl, {e_geomNone, e_geomCoincident}) && rg == rl && unset(onLine));
        FUZZ_CHECK(sameValue(onLine, onSegment));
    }

    const BoundingBox box = g.box();
    bool aInside = !g.in.flag(), bInside = !g.in.flag();
    const int rb = inter2dSegmentBBox(p1, p2, box, aInside, bInside);
    const auto inside = [&](const float *q) {
        return box.m_min.x() <= q[0] && q[0] <= box.m_max.x() && box.m_min.y() <= q[1] &&
               q[1] <= box.m_max.y();
    };
    FUZZ_CHECK(aInside == inside(p1) && bInside == inside(p2) &&
               (aInside == bInside ? oneOf(rb, {e_geomNone, e_geomPoint}) : rb == e_geomPoint));

    // The four ring forms agree; the index forms visit a larger array backwards. Exact sizes.
    const int n = g.in.range(0, 9);
    const size_t count = size_t(n);
    std::vector<Vector3f> v3(count), w3(count + 1);
    std::vector<Vector2f> v2(count), w2(count + 1);
    std::vector<int> idx(count);
    for (int i = 0; i < n; ++i) {
        w3[size_t(n - i)] = v3[size_t(i)] = g.v();
        w2[size_t(n - i)] = v2[size_t(i)] = Vector2f(v3[size_t(i)].x(), v3[size_t(i)].y());
        idx[size_t(i)] = n - i;
    }
    const bool in3 = pointIn2DPolygon(p1, v3.data(), v3.data() + n);
    FUZZ_CHECK(pointIn2DPolygon(p1, v2.data(), v2.data() + n) == in3 && (n >= 2 || !in3));
    FUZZ_CHECK(pointIn2DPolygon(p1, w3.data(), idx.data(), idx.data() + n) == in3);
    FUZZ_CHECK(pointIn2DPolygon(p1, w2.data(), idx.data(), idx.data() + n) == in3);
}

void intersections(Inputs &g) {
    const ZEFLine a = g.line(), b = g.line();
    const Plane plane = g.plane(), p3 = g.plane(), p4 = g.plane();
    const float tolerance = g.f(), at = g.f();
    Vector3f point = S3, onPlane = S3, projected = S3;
    float t = S, ta = S, tb = S;
    int r = interLineLine(point, ta, tb, a, b);
    FUZZ_CHECK(oneOf(r, {e_geomNone, e_geomPoint}) ||
               (r == e_geomParallel && unset(point) && unset(ta) && unset(tb)));
    point = S3, ta = S;
    r = interTwoCoplanarLines(point, ta, a, b);
    FUZZ_CHECK(r == e_geomPoint || (r == e_geomParallel && unset(point) && unset(ta)));

    const int rp = interLinePlane(onPlane, t, a, plane);
    FUZZ_CHECK(rp == e_geomPoint ||
               (oneOf(rp, {e_geomParallel, e_geomInPlane}) && unset(onPlane) && unset(t)));
    FUZZ_CHECK(PlaneProjector(plane).project(projected, a) == (rp == e_geomPoint));
    FUZZ_CHECK(rp == e_geomPoint ? same(projected, onPlane) : unset(projected));
    for (int axis = 0; axis < 3; ++axis) {
        t = S;
        r = axis == 0   ? interLinePlaneYZ(t, a, at, tolerance)
            : axis == 1 ? interLinePlaneXZ(t, a, at, tolerance)
                        : interLinePlaneXY(t, a, at, tolerance);
        FUZZ_CHECK(r == e_geomPoint || (oneOf(r, {e_geomParallel, e_geomInPlane}) && unset(t)));
    }

    const ZEFSegment sa(g.v(), g.v()), sb(g.v(), g.v());
    point = S3, t = S;
    r = interSegmentPlane(point, t, sa, plane, tolerance);
    FUZZ_CHECK(r == e_geomNone || (r == e_geomPoint && !(t < 0.0f || t > 1.0f)) ||
               (oneOf(r, {e_geomParallel, e_geomInPlane}) && unset(point) && unset(t)));
    point = S3, ta = S;
    r = interSegmentSegment(point, ta, sa, sb);
    FUZZ_CHECK(oneOf(r, {e_geomNone, e_geomPoint}) || (r == e_geomParallel && unset(point) && unset(ta)));
    point = S3, ta = S, tb = S;
    bool inside = true;
    r = interLineTriangle(point, ta, tb, inside, a, g.v(), g.v(), g.v());
    FUZZ_CHECK(r == e_geomPoint ? !inside || (ta >= 0.0f && tb >= 0.0f)
                                : r == e_geomNone && !inside && unset(point) && unset(ta) && unset(tb));
    ZEFLine crossing;
    crossing.m_origin = crossing.m_dir = S3;
    r = interPlanePlane(crossing, plane, g.plane());
    FUZZ_CHECK(r == e_geomPoint || (oneOf(r, {e_geomParallel, e_geomCoincident}) &&
                                    unset(crossing.m_origin) && unset(crossing.m_dir)));

    const BoundingBox box = g.box();
    float tIn = S, tOut = S, tIn2 = S, tOut2 = S;
    int faces[3] = {7, 7, 7};
    interLineBoundingBox(tIn, tOut, a, box);
    const bool crosses = interLineBoundingBox(tIn2, tOut2, faces[0], faces[1], faces[2], a, box);
    FUZZ_CHECK(sameValue(tIn, tIn2) && sameValue(tOut, tOut2) && !(tIn > tOut));
    FUZZ_CHECK(crosses == !(std::fabs(double(tIn) - double(tOut)) < double(1e-7f)));
    FUZZ_CHECK(std::count(faces, faces + 3, 0) + std::count(faces, faces + 3, 1) +
                       std::count(faces, faces + 3, -1) ==
                   3 &&
               std::count(faces, faces + 3, 0) >= 2);
    Vector3f pIn = S3, pOut = S3;
    tIn = S, tOut = S;
    interLineViewingVolume(pIn, pOut, tIn, tOut, a, plane, p3, p4, plane, p3, p4);
    FUZZ_CHECK(!unset(tIn) && !unset(tOut));
}

void distances(Inputs &g) {
    const ZEFLine line = g.line(), other = g.line();
    const Plane plane = g.plane();
    const Vector3f p = g.v(), a = g.v(), b = g.v(), c = g.v();
    const float tolerance = g.f(), radius = g.f();
    Vector3f foot, nearest, out = S3, aliased = p; // outputs that may be p
    float t = 0.0f, t2 = 0.0f, s = 0.0f;
    FUZZ_CHECK(sameValue(distancePointLine(aliased, line, aliased), distancePointLine(p, line, foot)) &&
               same(aliased, foot));
    distance2PointLine(p, line, foot);
    distancePointLine(p, line, t);
    distance2PointLine(p, line, t2);
    const float dpp = distancePointPlane(p, plane);
    FUZZ_CHECK(sameValue(t, t2) && !(dpp < 0.0f));
    distanceLineLine(line, other);
    distanceLineLine(line, other, t, t2);
    distanceLineSegment(line, ZEFSegment(a, b), t, s);
    FUZZ_CHECK(!(s < 0.0f || s > 1.0f));
    const float d1 = distancePointSegment(p, ZEFSegment(a, b), nearest);
    FUZZ_CHECK(sameValue(d1, distancePointSegment(p, a, b, foot)) && same(nearest, foot));
    aliased = p;
    FUZZ_CHECK(sameValue(distancePointSegment(aliased, a, b, aliased), d1) && same(aliased, nearest));

    ZEFArray<Vector3f> points;
    for (int k = g.in.range(0, 4); k > 0; --k)
        points.push_back(g.v());
    int index = -5;
    const float dset = distancePointPointSet(p, points, index);
    FUZZ_CHECK(points.empty() ? dset == 0.0f && index == -5 : index >= 0 && index < points.size());
    pointOnLine(p, line, tolerance);
    FUZZ_CHECK(pointOnPlane(p, plane, tolerance) == pointOnPlane(p, plane, g.f())); // no tolerance here
    pointOnSegment(p, ZEFSegment(a, b), tolerance);
    areCoplanar(line, other, tolerance);
    pointInTriangle(p, a, b, c);

    FUZZ_CHECK(projectionOrtho(out, t, p, line) == e_geomProjected);
    aliased = p;
    projectionOrtho(aliased, t2, aliased, line);
    FUZZ_CHECK(same(aliased, out) && sameValue(t, t2));
    for (int form = 0; form < 2; ++form) {
        out = S3;
        const int r = form ? projection(out, p, plane, a) : projectionOrtho(out, p, plane);
        FUZZ_CHECK(r == e_geomPoint || (oneOf(r, {e_geomParallel, e_geomInPlane}) && unset(out)));
    }
    const bool edges = g.in.flag(), normalize = g.in.flag();
    const Vector3f pts[3] = {a, b, p};
    normal3Pts(out, a, b, p, edges, normalize);
    normal3Pts(foot, pts, 0, 1, 2, edges, normalize);
    aliased = a;
    normal3Pts(aliased, aliased, b, p, edges, normalize);
    FUZZ_CHECK(same(out, foot) && same(aliased, out));
    spherisePoint(out, p, radius);
    spherisePoint(out, p, radius, g.f());
    spherisePoint(out, p, radius, g.v());
    float half = S;
    Cote(a, b, radius, half);
    FUZZ_CHECK(!unset(half));

    // Through a camera: the 2-D form is x and y of the 3-D form; out may be p.
    const Matrix4f camera = g.matrix();
    const float depth = g.f();
    Vector2f q2(S, S);
    cameraProjPoint(out, p, camera, depth);
    cameraProjPoint(q2, p, camera, depth);
    aliased = p;
    cameraProjPoint(aliased, aliased, camera, depth);
    FUZZ_CHECK(sameValues(q2.getValue(), out.getValue(), 2) && same(aliased, out));
}

void boxes(Inputs &g) {
    const BoundingBox box = g.box();
    MatAff4f affine;
    for (int i = 0; i < 16; ++i)
        if (i % 4 != 3)
            affine.getValue()[i] = g.in.range(0, 3) == 0 ? g.f() : float(i % 5 == 0) + g.in.smallFloat();
    BoundingBox moved, aliased = box;
    BoundingBoxAlgo::transformBBox(moved, box, affine);
    BoundingBoxAlgo::transformBBox(aliased, aliased, affine);
    FUZZ_CHECK(same(moved.m_min, aliased.m_min) && same(moved.m_max, aliased.m_max));
    const Vector3f p = g.v(), qa = g.v(), qb = g.v(), qc = g.v(), qd = g.v();
    FUZZ_CHECK(!(BoundingBoxAlgo::BBox3DDistance2(box, affine, p) < 0.0f) &&
               !(BoundingBoxAlgo::QuadDistance2(qa, qb, qc, qd, affine, p) < 0.0f));

    // Into a fresh 3-D box and into a 2-D box: the same position and rectangle; behind: untouched.
    const Matrix4f camera = g.matrix();
    const float depth = g.f();
    const BoundingBox fresh;
    BoundingBox out3;
    BoundingBox2D out2;
    out2.m_min = out2.m_max = Vector2f(S, S);
    const int pos = BoundingBoxAlgo::cameraProjBBox(out3, box, camera, depth);
    FUZZ_CHECK(BoundingBoxAlgo::cameraProjBBox(out2, box, camera, depth) == pos && pos >= 0 && pos <= 3);
    FUZZ_CHECK(sameValues(out2.m_min.getValue(), out3.m_min.getValue(), 2) &&
               sameValues(out2.m_max.getValue(), out3.m_max.getValue(), 2));
    FUZZ_CHECK(pos != BoundingBoxAlgo::BBoxBehind ||
               (same(out3.m_min, fresh.m_min) && same(out3.m_max, fresh.m_max)));
    BoundingBox2D rect;
    rect.set(g.box());
    if (g.in.range(0, 3) == 0)
        rect.m_min = Vector2f(g.f(), g.f()), rect.m_max = Vector2f(g.f(), g.f());
    bool cleared = true, entirely = true;
    const bool meets = BoundingBoxAlgo::BBox3DIntersectBBox2D(box, rect, camera, depth, cleared, entirely);
    FUZZ_CHECK(!cleared && (!entirely || meets) && (pos != BoundingBoxAlgo::BBoxBehind || !meets));
    cleared = true;
    BoundingBoxAlgo::QuadIntersectBBox2D(qa, qb, qc, qd, rect, camera, depth, cleared);
    FUZZ_CHECK(!cleared);
    BoundingBox built; // holds each (non-NaN) point added
    Vector3f added[3];
    for (Vector3f &v : added)
        built.add(v = Vector3f(g.in.smallFloat(), g.in.smallFloat(), g.in.smallFloat()));
    for (const Vector3f &v : added)
        FUZZ_CHECK(built.contains(v));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    FuzzInput in(data, size);
    Inputs g{in};
    void (*const queries[])(Inputs &) = {planeFigures, intersections, distances, boxes};
    for (int steps = 0; !in.empty() && steps < 32; ++steps)
        queries[in.range(0, 3)](g);
    return 0;
}

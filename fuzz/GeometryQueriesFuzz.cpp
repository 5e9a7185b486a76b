// Fuzz target: the geometry queries on arbitrary floats (NaN, infinities, subnormals, and
// small fractions so that figures really meet). Checked: no undefined behaviour; the
// outcomes each query may give; outputs an outcome leaves unwritten keep a sentinel; the
// forms of one query agree (line and segment, 2-D and 3-D, index and vertex rings, aliased outputs).
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

bool unset(float f) {
    return sameBits(&f, &S, 1);
}
bool unset(const Vector3f &v) {
    return unset(v.x()) && unset(v.y()) && unset(v.z());
}
bool same(const Vector3f &a, const Vector3f &b) {
    return sameValues(a.getValue(), b.getValue(), 3);
}
bool oneOf(int value, std::initializer_list<int> allowed) {
    return std::count(allowed.begin(), allowed.end(), value) > 0;
}
// r is an outcome that writes, or one that refuses with every output left unset.
template <class... T>
bool outcome(int r, std::initializer_list<int> writes, std::initializer_list<int> refuses, const T &...outs) {
    return oneOf(r, writes) || (oneOf(r, refuses) && (unset(outs) && ...));
}
struct Outs { // fresh sentinels for one query
    Vector3f p{S, S, S};
    float t = S, u = S, v = S;
};

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
    void nearIdentity(float *m, bool affine) {
        for (int i = 0; i < 16; ++i)
            if (!affine || i % 4 != 3)
                m[i] = in.range(0, 3) == 0 ? f() : float(i % 5 == 0) + in.smallFloat() / 8.0f;
    }
};

void planeFigures(Inputs &g) {
    float p1[2] = {g.f(), g.f()}, d1[2] = {g.f(), g.f()}, p2[2] = {g.f(), g.f()}, d2[2] = {g.f(), g.f()};
    Outs o[3];
    float point[2] = {S, S}, segmentPoint[2] = {S, S};
    const int r = inter2dLineLine(point, o[0].t, o[0].u, p1, d1, p2, d2);
    const int rs = inter2dSegmentSegment(segmentPoint, o[1].t, o[1].u, p1, d1, p2, d2);
    FUZZ_CHECK(outcome(r, {e_geomPoint}, {e_geomParallel}, point[0], point[1], o[0].t, o[0].u));
    FUZZ_CHECK(r == e_geomPoint ? oneOf(rs, {e_geomPoint, e_geomNone}) : rs == r);
    FUZZ_CHECK(sameValues(segmentPoint, point, 2) && sameValue(o[1].t, o[0].t) && sameValue(o[1].u, o[0].u));
    FUZZ_CHECK(rs != e_geomPoint || (o[1].t >= 0.0f && o[1].t <= 1.0f && o[1].u >= 0.0f && o[1].u <= 1.0f));
    FUZZ_CHECK(oneOf(inter2dSegmentSegment(p1, d1, p2, d2), {e_geomNone, e_geomPoint}));
    Vector2f nearest;
    distance2PointSegment2D(o[2].t, nearest, p1, d1, p2);
    FUZZ_CHECK(!(o[2].t < 0.0f || o[2].t > 1.0f));

    // The line forms write only on e_geomPoint; the segment forms add the range test.
    const float value = g.f(), low = g.f(), high = g.f();
    for (int horizontal = 0; horizontal < 2; ++horizontal) {
        Outs h;
        const int rl = horizontal ? inter2dSegmentHorizontalLine(p1, p2, value, h.t)
                                  : inter2dSegmentVerticalLine(p1, p2, value, h.t);
        const int rg = horizontal ? inter2dSegmentHorizontalSegment(p1, p2, value, low, high, h.u)
                                  : inter2dSegmentVerticalSegment(p1, p2, value, low, high, h.u);
        FUZZ_CHECK(outcome(rl, {e_geomPoint}, {e_geomNone, e_geomCoincident}, h.t) && sameValue(h.t, h.u));
        FUZZ_CHECK(rg == (rl != e_geomPoint ? rl : low <= h.t && h.t <= high ? e_geomPoint : e_geomNone));
    }
    bool aInside = true, bInside = true;
    const int rb = inter2dSegmentBBox(p1, p2, g.box(), aInside, bInside);
    FUZZ_CHECK(aInside == bInside ? oneOf(rb, {e_geomNone, e_geomPoint}) : rb == e_geomPoint);

    // The four ring forms agree; the index forms visit a larger array backwards. Exact sizes.
    const size_t n = size_t(g.in.range(0, 9));
    std::vector<Vector3f> v3(n), w3(n + 1);
    std::vector<Vector2f> v2(n), w2(n + 1);
    std::vector<int> idx(n);
    for (size_t i = 0; i < n; ++i) {
        w3[n - i] = v3[i] = g.v();
        w2[n - i] = v2[i] = Vector2f(v3[i].x(), v3[i].y());
        idx[i] = int(n - i);
    }
    const bool in3 = pointIn2DPolygon(p1, v3.data(), v3.data() + n);
    FUZZ_CHECK(pointIn2DPolygon(p1, v2.data(), v2.data() + n) == in3 && (n >= 2 || !in3));
    FUZZ_CHECK(pointIn2DPolygon(p1, w3.data(), idx.data(), idx.data() + n) == in3);
    FUZZ_CHECK(pointIn2DPolygon(p1, w2.data(), idx.data(), idx.data() + n) == in3);
}

void intersections(Inputs &g) {
    const ZEFLine a = g.line(), b = g.line();
    const Plane plane = g.plane(), p3 = g.plane(), p4 = g.plane();
    const ZEFSegment sa(g.v(), g.v()), sb(g.v(), g.v());
    const float tolerance = g.f(), at = g.f();
    Outs o[9];
    FUZZ_CHECK(outcome(interLineLine(o[0].p, o[0].t, o[0].u, a, b), {e_geomNone, e_geomPoint},
                       {e_geomParallel}, o[0].p, o[0].t, o[0].u));
    FUZZ_CHECK(outcome(interTwoCoplanarLines(o[1].p, o[1].t, a, b), {e_geomPoint}, {e_geomParallel}, o[1].p,
                       o[1].t));
    const int rp = interLinePlane(o[2].p, o[2].t, a, plane);
    FUZZ_CHECK(outcome(rp, {e_geomPoint}, {e_geomParallel, e_geomInPlane}, o[2].p, o[2].t));
    FUZZ_CHECK(PlaneProjector(plane).project(o[3].p, a) == (rp == e_geomPoint) &&
               sameValues(o[3].p.getValue(), o[2].p.getValue(), 3));
    for (const auto axisPlane : {interLinePlaneYZ, interLinePlaneXZ, interLinePlaneXY}) {
        Outs h;
        FUZZ_CHECK(
            outcome(axisPlane(h.t, a, at, tolerance), {e_geomPoint}, {e_geomParallel, e_geomInPlane}, h.t));
    }
    const int rs = interSegmentPlane(o[4].p, o[4].t, sa, plane, tolerance);
    FUZZ_CHECK(outcome(rs, {e_geomNone, e_geomPoint}, {e_geomParallel, e_geomInPlane}, o[4].p, o[4].t));
    FUZZ_CHECK(rs != e_geomPoint || !(o[4].t < 0.0f || o[4].t > 1.0f));
    FUZZ_CHECK(outcome(interSegmentSegment(o[5].p, o[5].t, sa, sb), {e_geomNone, e_geomPoint},
                       {e_geomParallel}, o[5].p, o[5].t));
    bool inside = true;
    const int rt = interLineTriangle(o[6].p, o[6].t, o[6].u, inside, a, g.v(), g.v(), g.v());
    FUZZ_CHECK(rt == e_geomPoint ? !inside || (o[6].t >= 0.0f && o[6].u >= 0.0f)
                                 : outcome(rt, {}, {e_geomNone}, o[6].p, o[6].t, o[6].u) && !inside);
    ZEFLine crossing;
    crossing.m_origin = crossing.m_dir = o[7].p;
    FUZZ_CHECK(outcome(interPlanePlane(crossing, plane, g.plane()), {e_geomPoint},
                       {e_geomParallel, e_geomCoincident}, crossing.m_origin, crossing.m_dir));

    // Both forms give the same range; the faces say which slab was entered last, at most one.
    const BoundingBox box = g.box();
    int faces[3] = {7, 7, 7};
    interLineBoundingBox(o[7].t, o[7].u, a, box);
    const bool crosses = interLineBoundingBox(o[8].t, o[8].u, faces[0], faces[1], faces[2], a, box);
    FUZZ_CHECK(sameValue(o[7].t, o[8].t) && sameValue(o[7].u, o[8].u) && !(o[7].t > o[7].u));
    FUZZ_CHECK(crosses == !(std::fabs(double(o[7].t) - double(o[7].u)) < double(1e-7f)));
    FUZZ_CHECK(std::count(faces, faces + 3, 0) >= 2 &&
               std::all_of(faces, faces + 3, [](int f) { return f >= -1 && f <= 1; }));
    Outs in, out;
    interLineViewingVolume(in.p, out.p, in.t, out.t, a, plane, p3, p4, plane, p3, p4);
    FUZZ_CHECK(!unset(in.t) && !unset(out.t));
}

void distances(Inputs &g) {
    const ZEFLine line = g.line(), other = g.line();
    const Plane plane = g.plane();
    const Vector3f p = g.v(), a = g.v(), b = g.v(), c = g.v();
    const float tolerance = g.f(), radius = g.f();
    Vector3f foot, nearest, out, aliased = p; // outputs that may be p
    float t = 0.0f, t2 = 0.0f, s = 0.0f;
    FUZZ_CHECK(sameValue(distancePointLine(aliased, line, aliased), distancePointLine(p, line, foot)) &&
               same(aliased, foot));
    distance2PointLine(p, line, foot);
    distancePointLine(p, line, t);
    distance2PointLine(p, line, t2);
    FUZZ_CHECK(sameValue(t, t2) && !(distancePointPlane(p, plane) < 0.0f));
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
    pointOnSegment(p, ZEFSegment(a, b), tolerance);
    areCoplanar(line, other, tolerance);
    pointInTriangle(p, a, b, c);
    FUZZ_CHECK(projectionOrtho(out, t, p, line) == e_geomProjected);
    aliased = p;
    projectionOrtho(aliased, t2, aliased, line);
    FUZZ_CHECK(same(aliased, out) && sameValue(t, t2));
    Outs o[2];
    FUZZ_CHECK(
        outcome(projection(o[0].p, p, plane, a), {e_geomPoint}, {e_geomParallel, e_geomInPlane}, o[0].p));
    FUZZ_CHECK(
        outcome(projectionOrtho(o[1].p, p, plane), {e_geomPoint}, {e_geomParallel, e_geomInPlane}, o[1].p));

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
    Cote(a, b, radius, o[0].t);
    FUZZ_CHECK(!unset(o[0].t));

    // Through a camera: the 2-D form is x and y of the 3-D form; out may be p.
    Matrix4f camera;
    g.nearIdentity(camera.getValue(), false);
    const float depth = g.f();
    Vector2f q2;
    cameraProjPoint(out, p, camera, depth);
    cameraProjPoint(q2, p, camera, depth);
    aliased = p;
    cameraProjPoint(aliased, aliased, camera, depth);
    FUZZ_CHECK(sameValues(q2.getValue(), out.getValue(), 2) && same(aliased, out));
}

void boxes(Inputs &g) {
    const BoundingBox box = g.box();
    MatAff4f affine;
    g.nearIdentity(affine.getValue(), true);
    BoundingBox moved, aliased = box;
    BoundingBoxAlgo::transformBBox(moved, box, affine);
    BoundingBoxAlgo::transformBBox(aliased, aliased, affine);
    FUZZ_CHECK(same(moved.m_min, aliased.m_min) && same(moved.m_max, aliased.m_max));
    const Vector3f p = g.v(), qa = g.v(), qb = g.v(), qc = g.v(), qd = g.v();
    FUZZ_CHECK(!(BoundingBoxAlgo::BBox3DDistance2(box, affine, p) < 0.0f));
    FUZZ_CHECK(!(BoundingBoxAlgo::QuadDistance2(qa, qb, qc, qd, affine, p) < 0.0f));

    // Into a fresh 3-D box and into a 2-D box: the same position and rectangle; behind: untouched.
    Matrix4f camera;
    g.nearIdentity(camera.getValue(), false);
    const float depth = g.f();
    const BoundingBox fresh;
    BoundingBox out3;
    BoundingBox2D out2;
    const int pos = BoundingBoxAlgo::cameraProjBBox(out3, box, camera, depth);
    FUZZ_CHECK(BoundingBoxAlgo::cameraProjBBox(out2, box, camera, depth) == pos && pos >= 0 && pos <= 3);
    FUZZ_CHECK(sameValues(out2.m_min.getValue(), out3.m_min.getValue(), 2) &&
               sameValues(out2.m_max.getValue(), out3.m_max.getValue(), 2));
    if (pos == BoundingBoxAlgo::BBoxBehind)
        FUZZ_CHECK(same(out3.m_min, fresh.m_min) && same(out3.m_max, fresh.m_max));
    BoundingBox2D rect;
    rect.set(g.box());
    bool cleared = true, entirely = true;
    const bool meets = BoundingBoxAlgo::BBox3DIntersectBBox2D(box, rect, camera, depth, cleared, entirely);
    FUZZ_CHECK(!cleared && (!entirely || meets) && (pos != BoundingBoxAlgo::BBoxBehind || !meets));
    cleared = true;
    BoundingBoxAlgo::QuadIntersectBBox2D(qa, qb, qc, qd, rect, camera, depth, cleared);
    FUZZ_CHECK(!cleared);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    FuzzInput in(data, size);
    Inputs g{in};
    do { // every group at least once: past the end of the input every float is 0
        planeFigures(g);
        intersections(g);
        distances(g);
        boxes(g);
    } while (!in.empty());
    return 0;
}

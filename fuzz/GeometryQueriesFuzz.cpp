// Fuzz target: the geometry queries on arbitrary floats, and small fractions so that figures meet.
// Checked: no undefined behaviour; the outcomes each query may give; outputs an outcome leaves unwritten
// keep a sentinel; the forms of one query agree (line and segment, 2-D and 3-D, rings, aliased outputs).
#include "FuzzInput.h"
#include "zefcore/geometry/BoundingBoxAlgo.h"
#include "zefcore/geometry/Distances.h"
#include "zefcore/geometry/Intersections.h"
#include "zefcore/geometry/PlaneFigureQueries.h"
#include "zefcore/geometry/PlaneProjector.h"

#include <algorithm>
#include <vector>

using List = std::initializer_list<int>;
using BBA = BoundingBoxAlgo;
constexpr int None = e_geomNone, Pt = e_geomPoint, Par = e_geomParallel, Coin = e_geomCoincident,
              InPl = e_geomInPlane;
const float S = FuzzInput::bitCast<float>(0xDEADBEEFu), S3[3] = {S, S, S}; // no query computes it by chance

struct Outs { // fresh sentinels for one query
    Vector3f p{S, S, S};
    float t = S, u = S;
};

// Draws the figures; checks the outcomes. The queries run in the three groups below.
struct Geo {
    FuzzInput &in;
    // True if every float of x (a float or a Vector3f) still holds the sentinel.
    template <class T>
    static bool unset(const T &x) {
        return sameBits(reinterpret_cast<const float *>(&x), S3, int(sizeof x / 4));
    }
    static bool same(const Vector3f &x, const Vector3f &y) {
        return sameValues(x.getValue(), y.getValue(), 3);
    }
    static bool oneOf(int r, List l) { return std::count(l.begin(), l.end(), r) > 0; }
    // r is an outcome that writes, or one that refuses with every output left unset.
    template <class... T>
    static bool outcome(int r, List writes, List refuses, const T &...outs) {
        return oneOf(r, writes) || (oneOf(r, refuses) && (unset(outs) && ...));
    }
    float f() { return in.anyFloat(); }
    Vector3f v() { return Vector3f(f(), f(), f()); }
    ZEFLine ln() { // a unit direction, or any
        ZEFLine l;
        l.m_origin = v();
        in.flag() ? l.setDir(v()) : void(l.m_dir = v());
        return l;
    }
    Plane pl() {
        Plane p;
        p.m_normal = v(), p.m_d = f();
        return p;
    }
    BoundingBox bx() { // up to three points, or any six floats
        BoundingBox b;
        for (int k = in.range(0, 3); k > 0; --k)
            b.add(v());
        in.range(0, 7) == 0 ? void(b.m_min = v()), void(b.m_max = v()) : void();
        return b;
    }
    template <class M>
    M nearIdentity(bool affine) {
        M m;
        for (int i = 0; i < 16; ++i)
            if (!affine || i % 4 != 3)
                m.getValue()[i] = in.range(0, 3) == 0 ? f() : float(i % 5 == 0) + in.smallFloat() / 8.0f;
        return m;
    }
    void planeFigures();
    void intersections();
    void distancesAndBoxes();
};

void Geo::planeFigures() {
    float p1[2] = {f(), f()}, d1[2] = {f(), f()}, p2[2] = {f(), f()}, d2[2] = {f(), f()};
    Outs o[3];
    float xl[2] = {S, S}, xs[2] = {S, S};
    const int r = inter2dLineLine(xl, o[0].t, o[0].u, p1, d1, p2, d2);
    const int rs = inter2dSegmentSegment(xs, o[1].t, o[1].u, p1, d1, p2, d2);
    FUZZ_CHECK(outcome(r, {Pt}, {Par}, xl[0], xl[1], o[0].t, o[0].u) &&
               (r == Pt ? oneOf(rs, {Pt, None}) : rs == r));
    FUZZ_CHECK(sameValues(xs, xl, 2) && sameValue(o[1].t, o[0].t) && sameValue(o[1].u, o[0].u));
    FUZZ_CHECK(rs != Pt || (o[1].t >= 0.0f && o[1].t <= 1.0f && o[1].u >= 0.0f && o[1].u <= 1.0f));
    FUZZ_CHECK(oneOf(inter2dSegmentSegment(p1, d1, p2, d2), {None, Pt}));
    Vector2f nearest;
    distance2PointSegment2D(o[2].t, nearest, p1, d1, p2);
    // The line forms write only on a point; the segment forms add the range test.
    const float value = f(), low = f(), high = f();
    for (int across = 0; across < 2; ++across) {
        Outs h;
        const int rl = across ? inter2dSegmentHorizontalLine(p1, p2, value, h.t)
                              : inter2dSegmentVerticalLine(p1, p2, value, h.t);
        const int rg = across ? inter2dSegmentHorizontalSegment(p1, p2, value, low, high, h.u)
                              : inter2dSegmentVerticalSegment(p1, p2, value, low, high, h.u);
        FUZZ_CHECK(outcome(rl, {Pt}, {None, Coin}, h.t) && sameValue(h.t, h.u));
        FUZZ_CHECK(rg == (rl != Pt ? rl : low <= h.t && h.t <= high ? Pt : None));
    }
    bool aIn = true, bIn = true;
    const int rb = inter2dSegmentBBox(p1, p2, bx(), aIn, bIn);
    FUZZ_CHECK(aIn == bIn ? oneOf(rb, {None, Pt}) : rb == Pt);
    // The ring forms agree: 3-D vertices, and 2-D ones visited backwards through indexes. Exact sizes.
    const int n = in.range(0, 9);
    std::vector<Vector3f> v3(n);
    std::vector<Vector2f> w2(n + 1);
    std::vector<int> idx(n);
    for (int i = 0; i < n; ++i)
        v3[i] = v(), w2[n - i] = Vector2f(v3[i].x(), v3[i].y()), idx[i] = n - i;
    const bool in3 = pointIn2DPolygon(p1, v3.data(), v3.data() + n);
    FUZZ_CHECK(pointIn2DPolygon(p1, w2.data(), idx.data(), idx.data() + n) == in3 && (n >= 2 || !in3));
}

void Geo::intersections() {
    const ZEFLine a = ln(), b = ln();
    const Plane plane = pl();
    const ZEFSegment sa(v(), v()), sb(v(), v());
    const float tol = f(), at = f();
    Outs o[9];
    FUZZ_CHECK(
        outcome(interLineLine(o[0].p, o[0].t, o[0].u, a, b), {None, Pt}, {Par}, o[0].p, o[0].t, o[0].u));
    FUZZ_CHECK(outcome(interTwoCoplanarLines(o[1].p, o[1].t, a, b), {Pt}, {Par}, o[1].p, o[1].t));
    const int rp = interLinePlane(o[2].p, o[2].t, a, plane);
    FUZZ_CHECK(outcome(rp, {Pt}, {Par, InPl}, o[2].p, o[2].t));
    FUZZ_CHECK(PlaneProjector(plane).project(o[3].p, a) == (rp == Pt) && same(o[3].p, o[2].p));
    for (const auto axisPlane : {interLinePlaneYZ, interLinePlaneXZ, interLinePlaneXY}) {
        Outs h;
        FUZZ_CHECK(outcome(axisPlane(h.t, a, at, tol), {Pt}, {Par, InPl}, h.t));
    }
    const int rs = interSegmentPlane(o[4].p, o[4].t, sa, plane, tol);
    FUZZ_CHECK(outcome(rs, {None, Pt}, {Par, InPl}, o[4].p, o[4].t) &&
               (rs != Pt || !(o[4].t < 0 || o[4].t > 1)));
    FUZZ_CHECK(outcome(interSegmentSegment(o[5].p, o[5].t, sa, sb), {None, Pt}, {Par}, o[5].p, o[5].t));
    bool inside = true;
    const int rt = interLineTriangle(o[6].p, o[6].t, o[6].u, inside, a, v(), v(), v());
    FUZZ_CHECK(rt == Pt ? !inside || (o[6].t >= 0.0f && o[6].u >= 0.0f)
                        : outcome(rt, {}, {None}, o[6].p, o[6].t, o[6].u) && !inside);
    ZEFLine cut;
    cut.m_origin = cut.m_dir = o[7].p;
    FUZZ_CHECK(outcome(interPlanePlane(cut, plane, pl()), {Pt}, {Par, Coin}, cut.m_origin, cut.m_dir));
    // Both forms give the same range, in order; all faces are set, at most one not 0.
    const BoundingBox box = bx();
    int faces[3] = {7, 7, 7};
    interLineBoundingBox(o[7].t, o[7].u, a, box);
    interLineBoundingBox(o[8].t, o[8].u, faces[0], faces[1], faces[2], a, box);
    FUZZ_CHECK(sameValue(o[7].t, o[8].t) && sameValue(o[7].u, o[8].u) && !(o[7].t > o[7].u));
    FUZZ_CHECK(std::count(faces, faces + 3, 0) >= 2 && std::count(faces, faces + 3, 7) == 0);
}

void Geo::distancesAndBoxes() {
    const ZEFLine line = ln(), other = ln();
    const Plane plane = pl();
    const Vector3f p = v(), a = v(), b = v(), c = v();
    const float tol = f(), radius = f();
    Vector3f foot, nearest, out, alias = p; // alias: an output that is also the point
    float t = 0.0f, t2 = 0.0f, s = 0.0f;
    FUZZ_CHECK(sameValue(distancePointLine(alias, line, alias), distancePointLine(p, line, foot)) &&
               same(alias, foot));
    distance2PointLine(p, line, foot), distancePointLine(p, line, t), distance2PointLine(p, line, t2);
    FUZZ_CHECK(sameValue(t, t2) && !(distancePointPlane(p, plane) < 0.0f));
    distanceLineSegment(line, {a, b}, t, s), areCoplanar(line, other, tol), pointInTriangle(p, a, b, c);
    const float d1 = distancePointSegment(p, ZEFSegment(a, b), nearest);
    alias = p;
    FUZZ_CHECK(sameValue(distancePointSegment(alias, a, b, alias), d1) && same(alias, nearest));
    FUZZ_CHECK(projectionOrtho(out, t, p, line) == e_geomProjected);
    alias = p;
    projectionOrtho(alias, t2, alias, line);
    FUZZ_CHECK(same(alias, out) && sameValue(t, t2));
    Outs o[2];
    FUZZ_CHECK(outcome(projection(o[0].p, p, plane, a), {Pt}, {Par, InPl}, o[0].p) &&
               outcome(projectionOrtho(o[1].p, p, plane), {Pt}, {Par, InPl}, o[1].p));
    const bool edges = in.flag(), normalize = in.flag();
    const Vector3f pts[3] = {a, b, p};
    normal3Pts(out, a, b, p, edges, normalize);
    normal3Pts(foot, pts, 0, 1, 2, edges, normalize), Cote(a, b, radius, t);
    alias = a;
    normal3Pts(alias, alias, b, p, edges, normalize);
    FUZZ_CHECK(same(out, foot) && same(alias, out));
    spherisePoint(out, p, radius), spherisePoint(out, p, radius, f()), spherisePoint(out, p, radius, v());
    // Through a camera: the 2-D form is x and y of the 3-D form; out may be p.
    const Matrix4f camera = nearIdentity<Matrix4f>(false);
    const float depth = f();
    Vector2f q2;
    alias = p;
    cameraProjPoint(out, p, camera, depth), cameraProjPoint(q2, p, camera, depth);
    cameraProjPoint(alias, alias, camera, depth);
    FUZZ_CHECK(sameValues(q2.getValue(), out.getValue(), 2) && same(alias, out));
    const BoundingBox box = bx(), fresh;
    const MatAff4f affine = nearIdentity<MatAff4f>(true);
    BoundingBox moved, boxAlias = box;
    BBA::transformBBox(moved, box, affine);
    BBA::transformBBox(boxAlias, boxAlias, affine);
    FUZZ_CHECK(same(moved.m_min, boxAlias.m_min) && same(moved.m_max, boxAlias.m_max));
    FUZZ_CHECK(!(BBA::BBox3DDistance2(box, affine, p) < 0) &&
               !(BBA::QuadDistance2(a, b, c, p, affine, p) < 0));
    // Into a fresh 3-D box and into a 2-D box: the same position; behind: untouched.
    BoundingBox out3;
    BoundingBox2D out2, rect;
    const int pos = BBA::cameraProjBBox(out3, box, camera, depth);
    FUZZ_CHECK(BBA::cameraProjBBox(out2, box, camera, depth) == pos && pos >= 0 && pos <= 3);
    FUZZ_CHECK(pos != BBA::BBoxBehind || (same(out3.m_min, fresh.m_min) && same(out3.m_max, fresh.m_max)));
    rect.set(bx());
    bool cleared = true, entirely = true;
    const bool meets = BBA::BBox3DIntersectBBox2D(box, rect, camera, depth, cleared, entirely);
    FUZZ_CHECK(!cleared && (!entirely || meets) && (pos != BBA::BBoxBehind || !meets));
    BBA::QuadIntersectBBox2D(a, b, c, p, rect, camera, depth, cleared);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    FuzzInput in(data, size);
    Geo g{in};
    do { // every group at least once: past the end of the input every float is 0
        g.planeFigures(), g.intersections(), g.distancesAndBoxes();
    } while (!in.empty());
    return 0;
}

#include "zefcore/geometry/BoundingBoxAlgo.h"
#include "zefcore/geometry/Det2.h"
#include "zefcore/geometry/Distances.h"
#include "zefcore/geometry/GeometryTolerances.h"
#include "zefcore/geometry/Intersections.h"
#include "zefcore/geometry/PlaneFigureQueries.h"
#include "zefcore/geometry/PlaneProjector.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

namespace {

using V = Vector3f;
using Algo = BoundingBoxAlgo;
using Seg = ZEFSegment;
const float S = -777.0f, kTol = 1e-4f; // the float nearest the double 0.0001 lies below it
const V S3(S, S, S), O, X(1, 0, 0), Y(0, 1, 0), Z(0, 0, 1);
const auto up = [](float x) { return std::nextafter(x, INFINITY); };
const auto down = [](float x) { return std::nextafter(x, -INFINITY); };
const auto nearly = [](double a, double b, double tol) { return std::fabs(a - b) < tol; };

// A double 3-vector for references computed without rounding to float.
struct D3 {
    double x, y, z;
    D3(double a, double b, double c) : x(a), y(b), z(c) {}
    D3(const V &v) : x(v.x()), y(v.y()), z(v.z()) {}
    D3 operator+(D3 b) const { return {x + b.x, y + b.y, z + b.z}; }
    D3 operator-(D3 b) const { return {x - b.x, y - b.y, z - b.z}; }
    D3 operator*(double t) const { return {x * t, y * t, z * t}; }
    double dot(D3 b) const { return x * b.x + y * b.y + z * b.z; }
    D3 cross(D3 b) const { return {y * b.z - z * b.y, z * b.x - x * b.z, x * b.y - y * b.x}; }
    double len() const { return std::sqrt(dot(*this)); }
};
const auto nearly3 = [](D3 a, D3 b, double tol) { return (a - b).len() < tol; };
V rnd(std::mt19937 &g, float r) {
    std::uniform_real_distribution<float> u(-r, r);
    return V(u(g), u(g), u(g));
}
struct Pl : Plane {
    Pl(const V &n, const V &p) { setFromNormalPoint(n, p); }
};
struct Box : BoundingBox {
    Box(const V &lo, const V &hi) { set(lo), add(hi); }
};
struct Rect : BoundingBox2D {
    Rect(float x0, float y0, float x1, float y1) { set(Box(V(x0, y0, 0), V(x1, y1, 0))); }
};
const auto spans = [](const BoundingBox &b, const V &lo, const V &hi) {
    return b.m_min.equals(lo) && b.m_max.equals(hi);
};

// A perspective camera looking down -z: 90 degrees, near 1, far 100; eye depths map to -1..1
// in front, behind the eye above 1.
const float kA = float(-101.0 / 99.0), kB = float(-200.0 / 99.0), kLimit = 1.0f;
const Matrix4f kCamera(1, 0, 0, 0, 0, 1, 0, 0, 0, 0, kA, -1, 0, 0, kB, 0);

// Sets lo, hi to the range of the eight corners projected in double, behind ones flipped back.
void projectCorners(double lo[3], double hi[3], const BoundingBox &b) {
    std::fill(lo, lo + 3, 1e30), std::fill(hi, hi + 3, -1e30);
    for (int k = 0; k < 8; ++k) {
        const double x = k & 4 ? b.m_max.x() : b.m_min.x(), y = k & 2 ? b.m_max.y() : b.m_min.y(),
                     z = k & 1 ? b.m_max.z() : b.m_min.z(), s = z > 0 ? -1.0 : 1.0;
        const double q[3] = {-s * x / z, -s * y / z, -(double(kA) * z + kB) / z};
        for (int i = 0; i < 3; ++i)
            lo[i] = std::min(lo[i], q[i]), hi[i] = std::max(hi[i], q[i]);
    }
}

// Exact side of c against a-b, for small integer coordinates.
double orient(const float *a, const float *b, const float *c) {
    return double(b[0] - a[0]) * (c[1] - a[1]) - double(b[1] - a[1]) * (c[0] - a[0]);
}
// Closed segments a-b and c-d meet, by exact parameters; collinear pairs count as meeting.
bool segmentsMeet(const float *a, const float *b, const float *c, const float *d) {
    const float o[2] = {0, 0}, u[2] = {b[0] - a[0], b[1] - a[1]}, v[2] = {d[0] - c[0], d[1] - c[1]};
    const double den = orient(o, u, v), sign = den < 0 ? -1 : 1;
    if (den == 0) // parallel or a point: they meet only when all four sides are zero
        return !orient(a, b, c) && !orient(a, b, d) && !orient(c, d, a) && !orient(c, d, b);
    const double t = sign * orient(a, c, d), s = -sign * orient(a, b, c);
    return 0 <= t && t <= sign * den && 0 <= s && s <= sign * den;
}

} // namespace

// Lengths up to the double 0.0001 are refused, NaN kept; findPoint rounds n.n to float;
// findUVAxis starts from the axis of the smallest |n_i|, x on a tie.
TEST(Plane, Det2DirectionBoundAndFrames) {
    const float a = 1.0f + 1.0f / 4096.0f; // a*a - 1 = 2^-11 + 2^-24
    EXPECT_EQ(det2(a, 1.0f, 1.0f, a), 1.0f / 2048.0f + 1.0f / 16777216.0f);
    const V p(0, 2, 0), old(7, 8, 9);
    EXPECT_TRUE(ZEFLine(p, p, false).m_dir.equals(O) && ZEFLine(p, -p, false).m_dir.equals(-Y));
    for (const float s : {kTol, up(kTol), NAN}) {
        ZEFLine l;
        Plane pl;
        l.m_dir = pl.m_normal = old;
        l.setDir(V(0, s, 0)), pl.setNormal(V(0, s, 0));
        const V want = s == kTol ? old : Y;
        EXPECT_TRUE(s != s ? std::isnan(l.m_dir.y()) && std::isnan(pl.m_normal.y())
                           : l.m_dir.equals(want) && pl.m_normal.equals(want));
    }
    Plane pl;
    const float x = 5.5f, y = 6.0f, z = 4.3f, d = 9.3f;
    pl.m_normal = V(x, y, z), pl.m_d = d;
    const float k = float(-double(d) / float((double(y) * y + double(x) * x) + double(z) * z));
    V q;
    pl.findPoint(q);
    EXPECT_TRUE(q.equals(V(float(double(x) * k), float(double(y) * k), float(double(z) * k))));
    pl.setMediator(O, V(0, 0, 2));
    EXPECT_TRUE(pl.m_normal.equals(Z) && pl.m_d == -1.0f);
    const V normals[4] = {Z, {0.6f, 0, 0.8f}, {0.8f, 0.6f, 0}, {0.6f, 0.8f, 0}}, axes[4] = {X, Y, Z, Z};
    for (int i = 0; i < 4; ++i) {
        ZEFLine u, v;
        pl.m_normal = normals[i];
        pl.findUVAxis(u, v), pl.findPoint(q);
        const V ud = axes[i].cross(normals[i]), vd = normals[i].cross(ud);
        EXPECT_TRUE(u.m_dir.equals(ZEFLine(O, ud, true).m_dir) &&
                    v.m_dir.equals(ZEFLine(O, vd, true).m_dir) && u.m_origin.equals(q) &&
                    v.m_origin.equals(q));
    }
}

// Bounds at the value and the next float, NaN never within: a segment's end (s0 against the
// double 0.0001), c.c on a line, 4 p.y^2 and 2 p.x on (0, 0, 0)-(2, 0, 0), |z| on a plane with
// its own bound. Closed triangles of either winding; ties in a point set go to the first;
// Cote is 0 near pi/2 or a small tangent; the camera flips x and y only beyond the limit.
TEST(Distances, BoundsAndSpecialCases) {
    const ZEFLine xAxis(O, X, true);
    V n0, n1;
    distancePointSegment(V(kTol, 1, 0), ZEFSegment(O, X), n0);
    distancePointSegment(V(up(kTol), 1, 0), ZEFSegment(O, X), n1);
    EXPECT_TRUE(n0.x() == 0.0f && n1.x() == up(kTol));
    const V p(7, 0.3f, 0), a(0, 0, 0), b(4, 0, 0), c(0, 4, 0);
    EXPECT_TRUE(pointOnLine(p, xAxis, 0.3f * 0.3f) && !pointOnLine(p, xAxis, down(0.3f * 0.3f)) &&
                !pointOnLine(V(NAN, 0, 0), xAxis, 1e30f));
    EXPECT_TRUE(pointOnPlane(V(3, 4, 1e-8f), Plane(), 0) &&
                !pointOnPlane(V(3, 4, up(1e-8f)), Plane(), 1e30f));
    const auto on = [](float x, float y) { return pointOnSegment(V(x, y, 0), ZEFSegment(O, 2 * X), 0.5f); };
    EXPECT_TRUE(on(1, 0.5f) && !on(1, up(0.5f)) && !on(1, NAN) && on(-0.25f, 0) && !on(down(-0.25f), 0) &&
                on(2, 0) && !on(up(2.0f), 0));
    for (const V &q : {a, b, c, V(2, 2, 0), V(1, 1, 9)})
        EXPECT_TRUE(pointInTriangle(q, a, b, c) && pointInTriangle(q, a, c, b) &&
                    !pointInTriangle(q, a, b, 2 * b));
    float t, s, h = S;
    EXPECT_TRUE(distanceLineSegment(xAxis, ZEFSegment(V(2, 3, 0), V(2, 3, 0)), t, s) == 3.0f && t == 2.0f &&
                s == 0.0f);
    ZEFArray<V> points;
    int index = 42;
    EXPECT_TRUE(distancePointPointSet(O, points, index) == 0.0f && index == 42);
    for (const V &v : {b, V(0, 3, 0), V(0, -3, 0)})
        points.push_back(v);
    EXPECT_TRUE(distancePointPointSet(O, points, index) == 3.0f && index == 1);
    EXPECT_TRUE(Cote(X, -X, 3, h) == 0.0f && h == float(M_PI / 2) && Cote(X, X, 3, h) == 0.0f && h == 0.0f);
    EXPECT_NEAR(Cote(X, Y, 3, h), 3.0f, 1e-6f);
    const Matrix4f m(1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, -1, 0, 0, 0, 0); // (4, 6, -2) to (2, 3, -1)
    Vector2f q2;
    cameraProjPoint(n0, V(4, 6, -2), m, -1.0f);
    cameraProjPoint(q2, V(4, 6, -2), m, down(-1.0f));
    EXPECT_TRUE(n0.equals(V(2, 3, -1)) && q2.x() == -2.0f && q2.y() == -3.0f);
}

// Each tolerance at its value and the next float, NaN never within; outputs untouched on failure.
TEST(Intersections, BoundsNaNAndUntouchedOutputs) {
    V p = S3;
    float t = S, tb = S, v = S;
    const ZEFLine xAxis(O, X, true);
    ZEFLine l = xAxis; // against the x axis the cross product is (0, -dir.z, 0)
    const auto lineLine = [&](float dz) { return l.m_dir.z() = dz, interLineLine(p, t, tb, xAxis, l); };
    EXPECT_TRUE(lineLine(kTol) == e_geomParallel && p.equals(S3) && t == S && tb == S);
    EXPECT_TRUE(lineLine(up(kTol)) == e_geomPoint && lineLine(NAN) != e_geomParallel);
    const auto linePlane = [&](float oz, float dz) {
        l.m_origin = V(0, 0, oz), l.m_dir = V(1, 0, dz);
        return interLinePlane(p, t, l, Plane());
    };
    p = S3, t = S;
    EXPECT_TRUE(linePlane(1, -kTol) == e_geomParallel && p.equals(S3) && t == S);
    EXPECT_TRUE(linePlane(0.00005f, -kTol) == e_geomInPlane && linePlane(1, -up(kTol)) == e_geomPoint &&
                linePlane(1, NAN) == e_geomPoint);
    PlaneProjector projector; // its plane x = 5 set from an unnormalised normal
    projector.setPlane(Pl(2 * X, 5 * X));
    EXPECT_TRUE(projector.project(p, ZEFLine(V(0, 1, 1), X, true)) && p.equals(V(5, 1, 1)));
    l = ZEFLine(V(0, 5, 0), Y, true); // z: the component, then the distance
    EXPECT_TRUE(interLinePlaneXY(t, l, 0, 0) == e_geomInPlane &&
                interLinePlaneXY(t, l, up(0), 0) == e_geomParallel);
    l.m_dir.y() = 0.25f;
    EXPECT_TRUE(interLinePlaneXZ(t, l, 9, 0.25f) == e_geomParallel &&
                interLinePlaneXZ(t, l, 9, down(0.25f)) == e_geomPoint && t == 16.0f);
    // s = (z + 1) / 4: within the tolerance beyond an end snaps to that end; 0 <= -0, 1 is in.
    const ZEFSegment seg(V(1, 2, -1), V(1, 2, 3));
    p = S3, t = S;
    EXPECT_TRUE(interSegmentPlane(p, t, ZEFSegment(O, O), Plane(), 0.5f) == e_geomNone && p.equals(S3) &&
                t == S);
    const auto segPlane = [&](float at, float tol) {
        return interSegmentPlane(p, t, seg, Pl(Z, at * Z), tol);
    };
    EXPECT_TRUE(segPlane(4, 0.5f) == e_geomPoint && t == 1.0f && p.equals(seg.m_end)); // s = 1.25
    EXPECT_TRUE(segPlane(-2, 0.5f) == e_geomPoint && t == 0.0f && p.equals(seg.m_start));
    EXPECT_TRUE(segPlane(-4, 0.5f) == e_geomNone && segPlane(6, 0.5f) == e_geomNone &&
                segPlane(-1, 0.0f) == e_geomNone && segPlane(3, 0.0f) == e_geomPoint);
    bool in = false; // through a vertex: exact coordinates, and inside
    EXPECT_TRUE(interLineTriangle(p, t, v, in, ZEFLine(V(2, 0, 7), -Z, true), O, 2 * X, 2 * Y) ==
                    e_geomPoint &&
                in && t == 1.0f && v == 0.0f);
    // Opposite normals are parallel; an unnormalised pair crosses along n1 x n2.
    const Plane z1 = Pl(Z, Z);
    Plane y2 = Pl(Y, 2 * Y);
    y2.m_normal *= 3.0f, y2.m_d *= 3.0f;
    l = ZEFLine(S3, X, true);
    EXPECT_TRUE(interPlanePlane(l, Plane(), z1) == e_geomParallel &&
                interPlanePlane(l, z1, Pl(-Z, Z)) == e_geomParallel);
    EXPECT_TRUE(interPlanePlane(l, z1, z1) == e_geomCoincident && l.m_origin.equals(S3));
    EXPECT_TRUE(interPlanePlane(l, z1, y2) == e_geomPoint && l.m_origin.equals(V(0, 2, 1)) &&
                l.m_dir.equals(V(-3, 0, 0)));
}

// The entry face is the first slab whose parameter is tIn (a miss keeps it, with 0, 0).
// Random figures against double: lines through a common point meet there and, moved along
// their common normal, pass at that distance; segments meet only within their lengths; the
// minimum of |seg(q) - line|^2 on [0, 1]; the foot on a segment; t on a plane rounded once;
// points of a triangle lifted off it, (u, v) on it; box slabs, alone and as six planes.
TEST(Intersections, BoxFacesAndRandomFiguresAgainstDouble) {
    const BoundingBox bx = Box(V(-1, -2, -3), V(1, 2, 3));
    float ta, tb, t, s, u, v, tIn = S, tOut = S;
    int fx = 9, fy = 9, fz = 9;
    const auto enter = [&](const V &o, const V &d) {
        return interLineBoundingBox(tIn, tOut, fx, fy, fz, ZEFLine(o, d, true), bx);
    };
    EXPECT_TRUE(enter(V(-5, 0, 0), X) && tIn == 4.0f && tOut == 6.0f && fx == -1 && fy == 0);
    EXPECT_TRUE(enter(V(5, 0, 0), -X) && fx == 1 && fy == 0 && fz == 0);
    EXPECT_TRUE(enter(V(-5, -6, 0), X + Y) && fx == -1 && fy == 0); // an edge: x first
    EXPECT_TRUE(enter(V(-5, 10, 0), X) && tIn == 4.0f);             // only the x slab bounds it
    EXPECT_TRUE(!enter(V(-5, 0, 0), X + Y) && tIn == 0.0f && tOut == 0.0f && fx == -1);
    const Plane x0 = Pl(X, bx.m_min), x1 = Pl(-X, bx.m_max), y0 = Pl(Y, bx.m_min), y1 = Pl(-Y, bx.m_max),
                z0 = Pl(Z, bx.m_min), z1 = Pl(-Z, bx.m_max);
    V p, in, out;
    bool inside;
    std::mt19937 g(21);
    std::uniform_real_distribution<double> w(-0.5, 1.5);
    const double tol = 1e-3;
    int floatSumDiffers = 0;
    for (int i = 0; i < 2000; ++i) {
        const V common = rnd(g, 5), d = rnd(g, 1), p0 = rnd(g, 5), p1 = rnd(g, 5), p2 = rnd(g, 5);
        ZEFLine a(common, rnd(g, 1), true), b(common, d, true);
        a.m_origin = common - a.m_dir * 3.0f;
        b.m_origin = common + b.m_dir * 2.0f;
        const V ao = a.m_origin, bo = b.m_origin, ad = a.m_dir, bd = b.m_dir;
        const D3 d1 = ad, e1 = D3(p1) - p0, e2 = D3(p2) - p0, n = e1.cross(e2);
        if (std::fabs(V::dot(ad, bd)) < 0.9f) {
            const ZEFLine skew(bo + ad.cross(bd) * float(w(g)), bd, true); // nearest points stay put
            const D3 c = d1.cross(bd);
            const double gap = std::fabs((D3(skew.m_origin) - ao).dot(c)) / c.len();
            EXPECT_TRUE(interLineLine(p, ta, tb, a, b) == e_geomPoint && nearly3(p, common, tol) &&
                        nearly(ta, 3, tol) && nearly(tb, -2, tol) &&
                        (gap < tol || interLineLine(p, ta, tb, a, skew) == e_geomNone));
            EXPECT_TRUE(nearly(distanceLineLine(a, skew, ta, tb), gap, tol) && nearly(ta, 3, tol) &&
                        distanceLineLine(a, skew) == distanceLineLine(a, skew, ta, tb) &&
                        nearly(tb, -2, tol));
            const Seg sa(ao, common), sb(bo, bo - bd * 3.0f); // the end of sa is in
            EXPECT_TRUE(interSegmentSegment(p, ta, sa, sb) == e_geomPoint &&
                        interSegmentSegment(p, ta, sa, Seg(bo, bo - bd)) == e_geomNone &&
                        interSegmentSegment(p, ta, Seg(ao, ao + ad * 2.0f), sb) == e_geomNone);
        }
        const D3 ap = (D3(p0) - ao) - d1 * (D3(p0) - ao).dot(d1), bp = e1 - d1 * e1.dot(d1);
        const double q = std::fmin(1, std::fmax(0, -ap.dot(bp) / bp.dot(bp))), dq = (ap + bp * q).len();
        EXPECT_TRUE(nearly(distanceLineSegment(a, Seg(p0, p1), t, s), dq, tol) &&
                    nearly((ap + bp * s).len(), dq, tol) && nearly(t, (D3(p0) + e1 * s - ao).dot(d1), tol));
        const D3 foot = D3(p0) + e1 * std::fmin(1, std::fmax(0, (D3(p2) - p0).dot(e1) / e1.dot(e1)));
        EXPECT_TRUE(nearly(distancePointSegment(p2, p0, p1, out), (D3(p2) - foot).len(), tol) &&
                    nearly3(out, foot, tol));
        const Plane pl = Pl(d, p0);
        const float dn = V::dot(pl.m_normal, ad), no = V::dot(pl.m_normal, ao);
        if (std::fabs(dn) > 0.2f) {
            EXPECT_TRUE(interLinePlane(p, ta, a, pl) == e_geomPoint &&
                        ta == float(-(double(no) + pl.m_d) / dn));
            floatSumDiffers += ta != -(no + pl.m_d) / dn;
        }
        const double su = w(g), sv = w(g), m = std::fmin(std::fmin(su, sv), 1 - su - sv);
        if (n.len() > 1 && std::fabs(m) > 1e-3) {
            const D3 lifted = D3(p0) + e1 * su + e2 * sv + n * (w(g) * 3 / n.len());
            const V hit = p0 + (p1 - p0) * float(su) + (p2 - p0) * float(sv);
            EXPECT_EQ(pointInTriangle(V(float(lifted.x), float(lifted.y), float(lifted.z)), p0, p1, p2),
                      m > 0);
            EXPECT_TRUE(std::fabs(n.dot(d)) < 0.3 * n.len() * D3(d).len() ||
                        (interLineTriangle(p, u, v, inside, ZEFLine(hit - d * 4.0f, d, true), p0, p1, p2) ==
                             e_geomPoint &&
                         inside == (m > 0) && nearly(u, su, tol) && nearly(v, sv, tol) &&
                         nearly3(p, hit, 0.01)));
        }
        double lo = -1e30, hi = 1e30; // the slabs in double
        for (int k = 0; k < 3; ++k) {
            const double t1 = (bx.m_min[k] - ao[k]) / ad[k], t2 = (bx.m_max[k] - ao[k]) / ad[k];
            lo = std::fmax(lo, std::fmin(t1, t2)), hi = std::fmin(hi, std::fmax(t1, t2));
        }
        if (std::fabs(hi - lo) < 1e-3)
            continue;
        interLineBoundingBox(tIn, tOut, a, bx);
        EXPECT_TRUE(nearly(tIn, lo < hi ? lo : 0, tol) && nearly(tOut, lo < hi ? hi : 0, tol));
        interLineViewingVolume(in, out, tIn, tOut, a, x0, x1, y0, y1, z0, z1);
        EXPECT_TRUE(nearly(tIn, lo, tol) && nearly(tOut, hi, tol) && nearly3(in, ao + ad * tIn, tol));
    }
    EXPECT_GT(floatSumDiffers, 0);
}

// The empty marker is judged by x alone, read as coordinates by the fast path. Random points,
// boxes and clears against a model on integer coordinates (borders hit), with the rectangle.
TEST(BoundingBox, EmptyMarkerAndRandomSequencesMatchAModel) {
    BoundingBox bx;
    EXPECT_TRUE(!bx.isInitialized() && spans(bx, X, O));
    bx.addInitialized(V(5, 6, -7));
    EXPECT_TRUE(spans(bx, V(1, 0, -7), V(5, 6, 0)));
    bx.m_min = V(0, 9, 9); // y and z out of order
    EXPECT_TRUE(bx.isInitialized());
    bx.clear();
    std::mt19937 rng(4);
    auto coord = [&] { return float(int(rng() % 13) - 6); };
    bool empty = true;
    float lo[3] = {}, hi[3] = {};
    for (int step = 0; step < 30000; ++step) {
        const int op = int(rng() % 10);
        const V p(coord(), coord(), coord()), q(coord(), coord(), coord()), s(coord(), coord(), coord());
        BoundingBox other = Box(q, s), old = bx;
        if (op == 1)
            other.clear();
        if (op == 0)
            bx.clear(), empty = true;
        else if (op <= 2)
            bx.add(other);
        else
            op == 3 && !empty ? bx.addInitialized(p) : bx.add(p);
        for (int i = 0; i < 3 && op >= 2; ++i) {
            const float a = op == 2 ? std::min(q[i], s[i]) : p[i], b = op == 2 ? std::max(q[i], s[i]) : p[i];
            lo[i] = empty ? a : std::min(lo[i], a);
            hi[i] = empty ? b : std::max(hi[i], b);
        }
        empty = empty && op < 2;
        ASSERT_TRUE(bx.isInitialized() == !empty && (op != 0 || spans(bx, V(1, old.m_min.y(), old.m_min.z()),
                                                                      V(0, old.m_max.y(), old.m_max.z()))));
        BoundingBox2D r, o;
        r.set(bx), o.set(other);
        if (step % 5 == 0)
            r.clear(); // x only
        bool in3 = !empty, in2 = !empty && step % 5 != 0, meet = in2 && op != 1;
        for (int i = 0; i < 3; ++i) {
            ASSERT_TRUE(empty || (bx.m_min[i] == lo[i] && bx.m_max[i] == hi[i])) << step;
            in3 = in3 && lo[i] <= q[i] && q[i] <= hi[i];
            in2 = in2 && (i == 2 || (lo[i] <= s[i] && s[i] <= hi[i]));
            meet = meet && (i == 2 || (lo[i] <= std::max(q[i], s[i]) && std::min(q[i], s[i]) <= hi[i]));
        }
        ASSERT_TRUE(bx.contains(q) == in3 && r.contains(V(s.x(), s.y(), 99)) == in2 &&
                    r.intersect(o) == meet && o.intersect(r) == meet && r.m_min.y() == bx.m_min.y() &&
                    r.m_max.y() == bx.m_max.y());
    }
}

// All corners move (out may be box); distances to the nearest corner per axis. Wholly behind:
// an empty output is untouched, a filled one gains the behind rectangle at depth 2^-23, as do
// boxes across; a corner at the limit is in front; NaN corners on no side. entirelyInside only
// for a rectangle wider than float 0.05. Random boxes in front against their corners projected
// in double, and against random rectangles.
TEST(BoundingBoxAlgo, TransformsDistancesCameraProjectionAndIntersection) {
    const float c = float(std::sqrt(0.5));
    MatAff4f rot; // 45 degrees about z
    rot.setValue(c, c, 0, 0, -c, c, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1);
    BoundingBox b = Box(V(-1, -1, -2), V(1, 1, 3)), out;
    Algo::transformBBox(out, b, rot);
    Algo::transformBBox(b, b, rot);
    EXPECT_TRUE(nearly(out.m_max.x(), std::sqrt(2.0), 1e-6) && out.m_min.y() == -out.m_max.x() &&
                spans(b, out.m_min, out.m_max));
    const MatAff4f moved = MatAff4f::translate(V(10, 0, 0));
    EXPECT_TRUE(Algo::BBox3DDistance2(Box(O, V(1, 1, 1)), MatAff4f(), V(0.5f, 0.5f, 2)) == 1.5f &&
                Algo::BBox3DDistance2(Box(O, V(1, 1, 1)), moved, V(11, 0.5f, 0.5f)) == 0.0f);
    EXPECT_EQ(Algo::QuadDistance2(O, X, X + Y, Y, moved, V(13, 2, 0)), 5.0f); // the third is nearest
    const BoundingBox behind = Box(V(-1, -1, 2), V(4, 4, 3));
    BoundingBox empty, gathered = Box(V(0, 0, 0.5f), V(0, 0, 0.5f)), across;
    empty.m_min = V(1, 5, 6);
    BoundingBox2D r2;
    const auto proj = [&](auto &o, const BoundingBox &bx, float limit) {
        return Algo::cameraProjBBox(o, bx, kCamera, limit);
    };
    EXPECT_TRUE(proj(empty, behind, kLimit) == Algo::BBoxBehind && spans(empty, V(1, 5, 6), O));
    double lo[3], hi[3];
    projectCorners(lo, hi, behind);
    EXPECT_TRUE(proj(gathered, behind, kLimit) == Algo::BBoxBehind &&
                nearly(gathered.m_min.x(), lo[0], 1e-4) && nearly(gathered.m_max.y(), hi[1], 1e-4) &&
                gathered.m_min.z() == kGeomBehindDepth && gathered.m_max.z() == 0.5f);
    EXPECT_TRUE(proj(across, Box(V(-1, -1, -5), V(1, 1, 5)), kLimit) == Algo::BBoxAcross &&
                across.m_min.z() == kGeomBehindDepth && across.m_max.z() > 0.5f);
    const BoundingBox flat = Box(V(-1, -1, -5), V(1, 1, -5)), nan = Box(V(NAN, NAN, NAN), V(NAN, NAN, NAN));
    V p;
    cameraProjPoint(p, V(1, 1, -5), kCamera, kLimit);
    EXPECT_TRUE(proj(r2, flat, p.z()) == Algo::BBoxInFront &&
                proj(r2, flat, down(p.z())) == Algo::BBoxBehind &&
                proj(r2, nan, kLimit) == Algo::BBoxUnknown);
    const BoundingBox small = Box(V(0.25f, -0.25f, -5), V(0.5f, 0.25f, -5)); // x 0.05..0.1
    bool cleared = true, inside = true;
    const auto test = [&](const BoundingBox &bb, const BoundingBox2D &r) {
        cleared = true;
        return Algo::BBox3DIntersectBBox2D(bb, r, kCamera, kLimit, cleared, inside) && !cleared;
    };
    EXPECT_FALSE(test(Box(V(-1, -1, 2), V(1, 1, 4)), Rect(-1, -1, 1, 1)) || cleared ||
                 test(small, BoundingBox2D()));
    EXPECT_TRUE(test(small, Rect(0.05f, -1, 0.1f, 1)) && !inside &&
                test(small, Rect(0.05f, -1, up(0.1f), 1)) && inside);
    const V qa(-1, -1, 2), qb(1, -1, 2), qc(1, 1, 2), qd(-1, 1, 2), qe(0, 0, -5);
    EXPECT_TRUE(
        !Algo::QuadIntersectBBox2D(qa, qb, qc, qd, Rect(-1, -1, 1, 1), kCamera, kLimit, cleared) &&
        Algo::QuadIntersectBBox2D(qa, qb, qe, qd, Rect(-0.1f, -0.1f, 0.1f, 0.1f), kCamera, kLimit, cleared));
    std::mt19937 g(32);
    std::uniform_real_distribution<float> xy(-3, 3), depth(-9, -2), r(-1, 1);
    for (int i = 0; i < 2000; ++i) {
        const BoundingBox bx = Box(V(xy(g), xy(g), depth(g)), V(xy(g), xy(g), depth(g)));
        const BoundingBox2D re = Rect(r(g), r(g), r(g), r(g));
        BoundingBox pb;
        projectCorners(lo, hi, bx);
        ASSERT_EQ(proj(pb, bx, kLimit), Algo::BBoxInFront);
        for (int k = 0; k < 3; ++k)
            ASSERT_TRUE(nearly(pb.m_min[k], lo[k], 1e-4) && nearly(pb.m_max[k], hi[k], 1e-4)) << i;
        const double gx = std::min(hi[0], double(re.m_max.x())) - std::max(lo[0], double(re.m_min.x()));
        const double gy = std::min(hi[1], double(re.m_max.y())) - std::max(lo[1], double(re.m_min.y()));
        if (std::fabs(gx) < 1e-4 || std::fabs(gy) < 1e-4)
            continue; // too near touching for float work
        const bool allIn =
            re.m_min.x() <= lo[0] && hi[0] <= re.m_max.x() && re.m_min.y() <= lo[1] && hi[1] <= re.m_max.y();
        EXPECT_TRUE(Algo::BBox3DIntersectBBox2D(bx, re, kCamera, kLimit, cleared, inside) ==
                        (gx > 0 && gy > 0) &&
                    (re.m_max.x() - re.m_min.x() <= 0.06f || inside == allIn));
    }
}

// Each value bit for bit against double-then-round. The nearest point on a segment: clamped
// (t exactly 1 is not beyond: a + (b - a) may miss b), NaN when a == b. The line crossing: the
// raw determinant against the double 0.0001, outputs untouched when parallel, NaN crosses.
// Axis lines: an end on the line counts, the segment forms keep a crossing out of their range.
TEST(PlaneFigureQueries, HandCasesBoundsAndRounding) {
    const float a[2] = {0, 0}, b[2] = {4, 0}, ps[3][2] = {{6, 1}, {-3, -4}, {1, 3}},
                want[3][3] = {{5, 1, 4}, {25, 0, 0}, {9, 0.25f, 1}};
    float t = S;
    Vector2f n;
    for (int i = 0; i < 3; ++i)
        EXPECT_TRUE(distance2PointSegment2D(t, n, a, b, ps[i]) == want[i][0] && t == want[i][1] &&
                    n.x() == want[i][2]);
    EXPECT_TRUE(std::isnan(distance2PointSegment2D(t, n, a, a, b)) && std::isnan(t));
    const float big[2] = {3, 0}, tiny[2] = {1.0f / 1073741824.0f, 0};
    EXPECT_TRUE(distance2PointSegment2D(t, n, big, tiny, tiny) == tiny[0] * tiny[0] && t == 1.0f &&
                n.x() == 0.0f);
    const float s0[2] = {9.0f, 8.5f}, s1[2] = {1.1f, -5.9f}, p[2] = {8.3f, -9.8f};
    distance2PointSegment2D(t, n, s0, s1, p);
    const float abx = float(double(s1[0]) - s0[0]), want0 = float(s0[0] + double(t) * abx);
    EXPECT_TRUE(n.x() == want0 && want0 != float(s0[0] + double(t) * (double(s1[0]) - s0[0])) &&
                want0 != s0[0] + t * abx);
    const float p1[2] = {0, 0}, p2[2] = {1, -2}, d2[2] = {0, 1}, at[2] = {kTol, 0}, above[2] = {up(kTol), 0},
                nanDir[2] = {NAN, 0}, small1[2] = {0.005f, 0},
                small2[2] = {0, 0.005f}; // not scaled by lengths
    float pt[2] = {S, S}, t1 = S, t2 = S, out = S;
    EXPECT_TRUE(inter2dLineLine(pt, t1, t2, p1, at, p2, d2) == e_geomParallel &&
                inter2dLineLine(pt, t1, t2, p1, small1, p2, small2) == e_geomParallel && pt[0] == S &&
                pt[1] == S && t1 == S && t2 == S);
    EXPECT_TRUE(inter2dLineLine(pt, t1, t2, p1, above, p2, d2) == e_geomPoint &&
                inter2dLineLine(pt, t1, t2, p1, nanDir, p2, d2) == e_geomPoint && std::isnan(t1));
    const float q1[2] = {5.6f, -5.5f}, e1[2] = {2.3f, 4.2f}, q2[2] = {-9.2f, 1.2f}, e2[2] = {3.1f, -9.7f};
    const float det = float(double(e1[0]) * e2[1] - double(e1[1]) * e2[0]);
    const float wx = float(double(q2[0]) - q1[0]), wy = float(double(q2[1]) - q1[1]);
    const float r1 = float((double(wx) * e2[1] - double(wy) * e2[0]) / det);
    const float r2 = float((double(wx) * e1[1] - double(wy) * e1[0]) / det);
    EXPECT_TRUE(inter2dLineLine(pt, t1, t2, q1, e1, q2, e2) == e_geomPoint && t1 == r1 && t2 == r2 &&
                t1 != (wx * e2[1] - wy * e2[0]) / det);
    EXPECT_TRUE(pt[0] == float(q1[0] + double(r1) * e1[0]) && pt[0] != q1[0] + r1 * e1[0] &&
                pt[1] == float(q1[1] + double(r1) * e1[1]));
    const float v0[2] = {1, 0}, v1[2] = {1, 5}, c[2] = {0, 0}, d[2] = {2, 4};
    EXPECT_TRUE(inter2dSegmentVerticalLine(v0, v1, 1, out) == e_geomCoincident &&
                inter2dSegmentVerticalLine(v0, v1, 2, out) == e_geomNone &&
                inter2dSegmentVerticalLine(c, d, up(2.0f), out) == e_geomNone && out == S);
    EXPECT_TRUE(inter2dSegmentVerticalLine(d, c, 2, out) == e_geomPoint && out == 4.0f &&
                inter2dSegmentHorizontalLine(c, d, 3, out) == e_geomPoint && out == 1.5f);
    EXPECT_TRUE(inter2dSegmentHorizontalSegment(c, d, 2, 1, 1, out) == e_geomPoint && out == 1.0f);
    out = S;
    EXPECT_TRUE(inter2dSegmentHorizontalSegment(c, d, 2, -1, down(1.0f), out) == e_geomNone && out == 1.0f);
    const float e[2] = {7.7f, 2.7f}, f[2] = {-2.7f, -8.2f}, x = 2.5f, dx = float(double(f[0]) - e[0]);
    const float want1 = float(double(e[1]) + (double(x) - e[0]) * (double(f[1]) - e[1]) / dx);
    EXPECT_TRUE(inter2dSegmentVerticalLine(e, f, x, out) == e_geomPoint && out == want1 &&
                out != e[1] + (x - e[0]) * (f[1] - e[1]) / dx);
}

// Integer points, so that every step is exact: segment pairs against exact parameters; a segment
// crosses a box outline if the end flags differ or it meets a side it is not parallel to.
TEST(PlaneFigureQueries, SegmentQueriesOnRandomIntegerPoints) {
    const BoundingBox box = Box(V(-2, -1, 0), V(3, 2, 0));
    const float corner[4][2] = {{-2, -1}, {3, -1}, {3, 2}, {-2, 2}};
    std::mt19937 rng(9);
    for (int i = 0; i < 20000; ++i) {
        float q[4][2], pt[2], t1, t2;
        for (auto &v : q)
            v[0] = float(int(rng() % 11) - 5), v[1] = float(int(rng() % 11) - 5);
        const bool meet = segmentsMeet(q[0], q[1], q[2], q[3]);
        const float e[2] = {q[1][0] - q[0][0], q[1][1] - q[0][1]},
                    f[2] = {q[3][0] - q[2][0], q[3][1] - q[2][1]};
        const int want = e[0] * f[1] - e[1] * f[0] == 0.0f ? e_geomParallel : meet ? e_geomPoint : e_geomNone;
        ASSERT_TRUE((inter2dSegmentSegment(q[0], q[1], q[2], q[3]) == e_geomPoint) == meet &&
                    inter2dSegmentSegment(pt, t1, t2, q[0], e, q[2], f) == want);
        const bool aIn = box.contains(V(q[0][0], q[0][1], 0)), bIn = box.contains(V(q[1][0], q[1][1], 0));
        bool expected = aIn != bIn, gotA = !aIn, gotB = !bIn;
        for (int s = 0; s < 4; ++s) {
            const float *c = corner[s], *d = corner[(s + 1) % 4];
            const bool parallel = (c[0] == d[0]) ? q[0][0] == q[1][0] : q[0][1] == q[1][1];
            expected = expected || (!parallel && segmentsMeet(q[0], q[1], c, d));
        }
        ASSERT_TRUE((inter2dSegmentBBox(q[0], q[1], box, gotA, gotB) == e_geomPoint) == expected &&
                    gotA == aIn && gotB == bIn);
    }
}

// On an upper edge inside, on a lower edge outside, a vertex at p.x counted once, z ignored,
// even-odd for a self-crossing ring; random star-shaped rings against the winding in double.
TEST(PlaneFigureQueries, PointInPolygonRulesAndWinding) {
    std::vector<Vector2f> ring = {{0, 0}, {1, 0}, {1, 1}, {0, 1}};
    const float in[2] = {0.5f, 0.5f}, right[2] = {1.5f, 0.5f}, top[2] = {0.5f, 1}, bottom[2] = {0.5f, 0};
    const Vector2f *f = ring.data();
    EXPECT_TRUE(pointIn2DPolygon(in, f, f + 4) && pointIn2DPolygon(top, f, f + 4));
    EXPECT_FALSE(pointIn2DPolygon(right, f, f + 4) || pointIn2DPolygon(bottom, f, f + 4) ||
                 pointIn2DPolygon(in, f, f + 1));
    const V tri[3] = {{-1, 0, 5}, {1, 0, -5}, {0, 1, 0}};
    const int back[3] = {2, 1, 0}; // the index form, backwards
    const float mid[2] = {0, 0.5f}, apexAbove[2] = {0, 1.5f}, centre[2] = {0.01f, 0.02f};
    EXPECT_TRUE(pointIn2DPolygon(mid, tri, tri + 3) && pointIn2DPolygon(mid, tri, back, back + 3) &&
                !pointIn2DPolygon(apexAbove, tri, tri + 3));
    ring.clear();
    for (int k = 0; k < 5; ++k)
        ring.emplace_back(float(std::cos(k * 4 * M_PI / 5)), float(std::sin(k * 4 * M_PI / 5)));
    EXPECT_FALSE(pointIn2DPolygon(centre, ring.data(), ring.data() + 5));
    std::mt19937 rng(21);
    std::uniform_real_distribution<float> unit(0.0f, 1.0f);
    for (int ringNo = 0; ringNo < 200; ++ringNo) {
        const int n = 3 + ringNo % 9;
        ring.clear();
        for (int k = 0; k < n; ++k) { // vertices sorted by angle
            const double ang = 2 * M_PI * (k + 0.8 * unit(rng)) / n, r = 0.2 + unit(rng);
            ring.emplace_back(float(r * std::cos(ang)), float(r * std::sin(ang)));
        }
        for (int q = 0; q < 100; ++q) {
            const float p[2] = {2.4f * unit(rng) - 1.2f, 2.4f * unit(rng) - 1.2f};
            double winding = 0.0; // the angles the edges subtend
            for (int k = 0; k < n; ++k) {
                const Vector2f &s = ring[k], &e = ring[(k + 1) % n];
                const double da = std::atan2(double(e.y()) - p[1], double(e.x()) - p[0]) -
                                  std::atan2(double(s.y()) - p[1], double(s.x()) - p[0]);
                winding += da > M_PI ? da - 2 * M_PI : da < -M_PI ? da + 2 * M_PI : da;
            }
            ASSERT_EQ(pointIn2DPolygon(p, ring.data(), ring.data() + n), std::fabs(winding) > M_PI) << ringNo;
        }
    }
}

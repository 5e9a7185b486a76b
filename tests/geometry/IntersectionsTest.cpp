#include "zefcore/geometry/Intersections.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

namespace {

const float kSentinel = -777.0f;
const float kTolBound = 1e-4f;  // the float nearest the double 0.0001 lies below it
const double kRandomTol = 1e-3; // float work against a double reference

Vector3f randomVec(std::mt19937 &g, float r) {
    std::uniform_real_distribution<float> u(-r, r);
    return Vector3f(u(g), u(g), u(g));
}
ZEFLine line(const Vector3f &o, const Vector3f &d) {
    return ZEFLine(o, d, true);
}
Plane plane(const Vector3f &n, const Vector3f &p) {
    Plane pl;
    pl.setFromNormalPoint(n, p);
    return pl;
}

} // namespace

TEST(Intersections, LinesAndSegmentsBoundsAndRandom) {
    Vector3f p(kSentinel, kSentinel, kSentinel);
    float ta = kSentinel, tb = kSentinel;
    // c.y = -d2.z: the float below the double 0.0001 is parallel, the next one is not; NaN is not.
    const ZEFLine xAxis = line(Vector3f(0, 0, 0), Vector3f(1, 0, 0));
    ZEFLine tilted = xAxis;
    tilted.m_dir = Vector3f(1, 0, kTolBound);
    EXPECT_EQ(interLineLine(p, ta, tb, xAxis, tilted), e_geomParallel);
    EXPECT_TRUE(p.x() == kSentinel && ta == kSentinel && tb == kSentinel);
    tilted.m_dir.z() = std::nextafter(kTolBound, 1.0f);
    EXPECT_EQ(interLineLine(p, ta, tb, xAxis, tilted), e_geomPoint);
    tilted.m_dir.z() = NAN;
    EXPECT_NE(interLineLine(p, ta, tb, xAxis, tilted), e_geomParallel);

    std::mt19937 g(21);
    for (int i = 0; i < 500; ++i) { // a meets b at common, 3 along a and 2 back along b
        const Vector3f common = randomVec(g, 5);
        ZEFLine a = line(common, randomVec(g, 1)), b = line(common, randomVec(g, 1));
        a.m_origin = common - a.m_dir * 3.0f;
        b.m_origin = common + b.m_dir * 2.0f;
        if (std::fabs(Vector3f::dot(a.m_dir, b.m_dir)) > 0.9f)
            continue;
        EXPECT_EQ(interLineLine(p, ta, tb, a, b), e_geomPoint);
        EXPECT_TRUE((p - common).normD() < kRandomTol && std::fabs(ta - 3) < kRandomTol &&
                    std::fabs(tb + 2) < kRandomTol);
        EXPECT_EQ(interLineLine(p, ta, tb, a, line(b.m_origin + a.m_dir.cross(b.m_dir), b.m_dir)),
                  e_geomNone);
        const ZEFSegment sa(a.m_origin, a.m_origin + a.m_dir * 4.0f),
            sb(b.m_origin, b.m_origin - b.m_dir * 3.0f);
        EXPECT_EQ(interSegmentSegment(p, ta, sa, sb), e_geomPoint);
        EXPECT_EQ(interSegmentSegment(p, ta, ZEFSegment(sa.m_start, common), sb), e_geomPoint); // end in
        EXPECT_EQ(interSegmentSegment(p, ta, sa, ZEFSegment(sb.m_start, sb.m_start - b.m_dir)), e_geomNone);
        EXPECT_EQ(interSegmentSegment(p, ta, ZEFSegment(sa.m_start, sa.m_start + a.m_dir * 2.0f), sb),
                  e_geomNone);
    }
}

TEST(Intersections, LinePlaneBoundsRoundingAndAxisPlanes) {
    const Plane z0;
    Vector3f p(kSentinel, kSentinel, kSentinel);
    float t = kSentinel;
    ZEFLine l = line(Vector3f(0, 0, 1), Vector3f(1, 0, 0));
    l.m_dir.z() = -kTolBound; // |n.d| at the bound: parallel, outputs untouched
    EXPECT_TRUE(interLinePlane(p, t, l, z0) == e_geomParallel && p.x() == kSentinel && t == kSentinel);
    l.m_origin.z() = 0.00005f;
    EXPECT_EQ(interLinePlane(p, t, l, z0), e_geomInPlane);
    l.m_dir.z() = std::nextafter(-kTolBound, -1.0f);
    EXPECT_EQ(interLinePlane(p, t, l, z0), e_geomPoint);
    l.m_dir.z() = NAN;
    EXPECT_EQ(interLinePlane(p, t, l, z0), e_geomPoint);

    // t = -(n.o + k) / q with both dot products rounded and the rest in double, rounded once.
    std::mt19937 g(22);
    int floatSumDiffers = 0;
    for (int i = 0; i < 500; ++i) {
        const Plane pl = plane(randomVec(g, 1), randomVec(g, 5));
        const ZEFLine ln = line(randomVec(g, 5), randomVec(g, 1));
        const float q = Vector3f::dot(pl.m_normal, ln.m_dir), no = Vector3f::dot(pl.m_normal, ln.m_origin);
        if (std::fabs(q) < 0.2f)
            continue;
        ASSERT_EQ(interLinePlane(p, t, ln, pl), e_geomPoint);
        EXPECT_EQ(t, float(-(double(no) + pl.m_d) / q));
        floatSumDiffers += t != -(no + pl.m_d) / q;
        EXPECT_NEAR(Vector3f::dotD(pl.m_normal, p) + pl.m_d, 0.0, kRandomTol);
    }
    EXPECT_GT(floatSumDiffers, 0);

    l = line(Vector3f(0, 5, 0), Vector3f(0, 1, 0));
    EXPECT_EQ(interLinePlaneXY(t, l, 0.0f, 0.0f), e_geomInPlane); // exact zero with tolerance 0
    EXPECT_EQ(interLinePlaneXY(t, l, std::nextafter(0.0f, 1.0f), 0.0f), e_geomParallel);
    l.m_dir.y() = 0.25f;
    EXPECT_EQ(interLinePlaneXZ(t, l, 9.0f, 0.25f), e_geomParallel);
    EXPECT_TRUE(interLinePlaneXZ(t, l, 9.0f, std::nextafter(0.25f, 0.0f)) == e_geomPoint && t == 16.0f);
}

TEST(Intersections, SegmentPlaneSnapsWithinTolerance) {
    const ZEFSegment seg(Vector3f(1, 2, -1), Vector3f(1, 2, 3)); // s = (z + 1) / 4
    Vector3f p(kSentinel, kSentinel, kSentinel);
    float s = kSentinel;
    EXPECT_EQ(interSegmentPlane(p, s, ZEFSegment(seg.m_start, seg.m_start), Plane(), 0.5f), e_geomNone);
    EXPECT_TRUE(p.x() == kSentinel && s == kSentinel);
    const auto at = [&](float z, float tol) {
        return interSegmentPlane(p, s, seg, plane(Vector3f(0, 0, 1), Vector3f(0, 0, z)), tol);
    };
    EXPECT_TRUE(at(4, 0.5f) == e_geomPoint && s == 1.0f && p.equals(seg.m_end)); // s = 1.25
    EXPECT_TRUE(at(-2, 0.5f) == e_geomPoint && s == 0.0f && p.equals(seg.m_start));
    EXPECT_TRUE(at(-4, 0.5f) == e_geomNone && at(6, 0.5f) == e_geomNone);
    EXPECT_TRUE(at(-1, 0.0f) == e_geomNone && at(3, 0.0f) == e_geomPoint); // 0 <= -0; 1 is in
}

TEST(Intersections, LineTriangleAndPlanePlane) {
    const Vector3f a(0, 0, 0), b(2, 0, 0), c(0, 2, 0);
    Vector3f p(kSentinel, kSentinel, kSentinel);
    float u = kSentinel, v = kSentinel;
    bool inside = true;
    EXPECT_EQ(interLineTriangle(p, u, v, inside, line(Vector3f(5, 5, 0), Vector3f(1, 2, 0)), a, b, c),
              e_geomNone);
    EXPECT_TRUE(!inside && p.x() == kSentinel && u == kSentinel && v == kSentinel);
    EXPECT_EQ(interLineTriangle(p, u, v, inside, line(Vector3f(2, 0, 7), Vector3f(0, 0, -3)), a, b, c),
              e_geomPoint);
    EXPECT_TRUE(inside && u == 1.0f && v == 0.0f); // through a vertex
    std::mt19937 g(23);
    std::uniform_real_distribution<double> w(-0.5, 1.5);
    for (int i = 0; i < 1000; ++i) {
        const Vector3f p0 = randomVec(g, 5), p1 = randomVec(g, 5), p2 = randomVec(g, 5), d = randomVec(g, 1);
        const Vector3f n = (p1 - p0).cross(p2 - p0);
        const double su = w(g), sv = w(g), m = std::fmin(std::fmin(su, sv), 1 - su - sv);
        if (n.norm() < 1.0f || std::fabs(Vector3f::dot(n, d)) < 0.3f * n.norm() * d.norm() ||
            std::fabs(m) < 1e-3)
            continue;
        const Vector3f hit = p0 + (p1 - p0) * float(su) + (p2 - p0) * float(sv);
        ASSERT_EQ(interLineTriangle(p, u, v, inside, line(hit - d * 4.0f, d), p0, p1, p2), e_geomPoint);
        EXPECT_EQ(inside, m > 0);
        EXPECT_TRUE(std::fabs(u - su) < kRandomTol && std::fabs(v - sv) < kRandomTol &&
                    (p - hit).normD() < 0.01);
    }

    const Plane z1 = plane(Vector3f(0, 0, 1), Vector3f(0, 0, 1));
    Plane flipped = z1; // the same points, opposite normal: the constants differ
    flipped.m_normal = Vector3f(0, 0, -1);
    flipped.m_d = 1;
    ZEFLine l = line(Vector3f(kSentinel, 0, 0), Vector3f(1, 0, 0));
    EXPECT_TRUE(interPlanePlane(l, Plane(), z1) == e_geomParallel &&
                interPlanePlane(l, z1, flipped) == e_geomParallel);
    EXPECT_TRUE(interPlanePlane(l, z1, z1) == e_geomCoincident && l.m_origin.x() == kSentinel);
    Plane y2 = plane(Vector3f(0, 1, 0), Vector3f(0, 2, 0)); // unnormalised normal, scaled constant
    y2.m_normal *= 3.0f;
    y2.m_d *= 3.0f;
    EXPECT_EQ(interPlanePlane(l, z1, y2), e_geomPoint);
    EXPECT_TRUE(l.m_origin.equals(Vector3f(0, 2, 1)) && l.m_dir.equals(Vector3f(-3, 0, 0)));
}

TEST(Intersections, LineBoxFacesViewingVolumeAndRandom) {
    BoundingBox box;
    box.set(Vector3f(-1, -2, -3));
    box.add(Vector3f(1, 2, 3));
    float tIn = kSentinel, tOut = kSentinel, vIn, vOut;
    int fx = 9, fy = 9, fz = 9;
    const auto enter = [&](const Vector3f &o, const Vector3f &d) {
        return interLineBoundingBox(tIn, tOut, fx, fy, fz, line(o, d), box);
    };
    EXPECT_TRUE(enter(Vector3f(-5, 0, 0), Vector3f(1, 0, 0)) && tIn == 4.0f && tOut == 6.0f && fx == -1 &&
                fy == 0);
    EXPECT_TRUE(enter(Vector3f(5, 0, 0), Vector3f(-1, 0, 0)) && fx == 1 && fy == 0 && fz == 0);
    EXPECT_TRUE(enter(Vector3f(-5, -6, 0), Vector3f(1, 1, 0)) && fx == -1 && fy == 0); // an edge: x first
    EXPECT_TRUE(enter(Vector3f(-5, 10, 0), Vector3f(1, 0, 0)) && tIn == 4.0f); // only the x slab bounds it
    EXPECT_FALSE(enter(Vector3f(-5, 0, 0), Vector3f(1, 1, 0)));                // a miss: faces kept
    EXPECT_TRUE(tIn == 0.0f && tOut == 0.0f && fx == -1 && fy == 0);

    // The same box as six planes: the parameters agree; parallel pairs bound nothing.
    const Plane x0 = plane(Vector3f(1, 0, 0), box.m_min), x1 = plane(Vector3f(-1, 0, 0), box.m_max);
    const Plane y0 = plane(Vector3f(0, 1, 0), box.m_min), y1 = plane(Vector3f(0, -1, 0), box.m_max);
    const Plane z0 = plane(Vector3f(0, 0, 1), box.m_min), z1 = plane(Vector3f(0, 0, -1), box.m_max);
    Vector3f in, out;
    interLineViewingVolume(in, out, vIn, vOut, line(Vector3f(0, 0, 0), Vector3f(0, 1, 0)), x0, x1, x0, x1, z0,
                           z1);
    EXPECT_TRUE(vIn == -std::numeric_limits<float>::max() && vOut == std::numeric_limits<float>::max());
    std::mt19937 g(25);
    for (int i = 0; i < 1000; ++i) {
        const ZEFLine ln = line(randomVec(g, 6), randomVec(g, 1));
        double lo = -1e30, hi = 1e30; // the slabs in double
        for (int k = 0; k < 3; ++k) {
            const double t1 = (box.m_min[k] - ln.m_origin[k]) / ln.m_dir[k];
            const double t2 = (box.m_max[k] - ln.m_origin[k]) / ln.m_dir[k];
            lo = std::fmax(lo, std::fmin(t1, t2)), hi = std::fmin(hi, std::fmax(t1, t2));
        }
        if (std::fabs(hi - lo) < 1e-3)
            continue;
        interLineBoundingBox(tIn, tOut, ln, box);
        EXPECT_TRUE(std::fabs(tIn - (lo < hi ? lo : 0)) < kRandomTol &&
                    std::fabs(tOut - (lo < hi ? hi : 0)) < kRandomTol);
        interLineViewingVolume(in, out, vIn, vOut, ln, x0, x1, y0, y1, z0, z1);
        EXPECT_TRUE(std::fabs(vIn - lo) < kRandomTol && std::fabs(vOut - hi) < kRandomTol);
        EXPECT_LT((in - (ln.m_origin + ln.m_dir * vIn)).normD(), kRandomTol);
    }
}

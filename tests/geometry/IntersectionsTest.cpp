#include "zefcore/geometry/Intersections.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

namespace {

const float kSentinel = -777.0f, kTolBound = 1e-4f; // the float nearest the double 0.0001 lies below it
const double kRandomTol = 1e-3;                     // float work against a double reference

Vector3f randomVec(std::mt19937 &g, float r) {
    std::uniform_real_distribution<float> u(-r, r);
    return Vector3f(u(g), u(g), u(g));
}
Plane plane(const Vector3f &n, const Vector3f &p) {
    Plane pl;
    pl.setFromNormalPoint(n, p);
    return pl;
}
float up(float x) {
    return std::nextafter(x, INFINITY);
}

} // namespace

// Each tolerance at its value and the next float; NaN never counts as within; outputs stay
// untouched when nothing is found.
TEST(Intersections, BoundsNaNAndUntouchedOutputs) {
    const Vector3f s3(kSentinel, kSentinel, kSentinel), o(0, 0, 0), x(1, 0, 0), z(0, 0, 1);
    Vector3f p = s3;
    float t = kSentinel, tb = kSentinel, v = kSentinel;
    const ZEFLine xAxis(o, x, true);
    ZEFLine l = xAxis; // against the x axis the cross product is (0, -dir.z, 0)
    const auto lineLine = [&](float dz) { return l.m_dir.z() = dz, interLineLine(p, t, tb, xAxis, l); };
    EXPECT_TRUE(lineLine(kTolBound) == e_geomParallel && p.equals(s3) && t == kSentinel && tb == kSentinel);
    EXPECT_TRUE(lineLine(up(kTolBound)) == e_geomPoint && lineLine(NAN) != e_geomParallel);
    const auto linePlane = [&](float oz, float dz) {
        l.m_origin = Vector3f(0, 0, oz), l.m_dir = Vector3f(1, 0, dz);
        return interLinePlane(p, t, l, Plane());
    };
    p = s3, t = kSentinel;
    EXPECT_TRUE(linePlane(1, -kTolBound) == e_geomParallel && p.equals(s3) && t == kSentinel);
    EXPECT_TRUE(linePlane(0.00005f, -kTolBound) == e_geomInPlane &&
                linePlane(1, -up(kTolBound)) == e_geomPoint);
    EXPECT_EQ(linePlane(1, NAN), e_geomPoint);
    l = ZEFLine(Vector3f(0, 5, 0), Vector3f(0, 1, 0), true); // z: the component, then the distance
    EXPECT_TRUE(interLinePlaneXY(t, l, 0, 0) == e_geomInPlane &&
                interLinePlaneXY(t, l, up(0), 0) == e_geomParallel);
    l.m_dir.y() = 0.25f;
    EXPECT_EQ(interLinePlaneXZ(t, l, 9, 0.25f), e_geomParallel);
    EXPECT_TRUE(interLinePlaneXZ(t, l, 9, std::nextafter(0.25f, 0.0f)) == e_geomPoint && t == 16.0f);

    // s = (z + 1) / 4: within the tolerance beyond an end snaps to that end.
    const ZEFSegment seg(Vector3f(1, 2, -1), Vector3f(1, 2, 3));
    p = s3, t = kSentinel;
    EXPECT_TRUE(interSegmentPlane(p, t, ZEFSegment(o, o), Plane(), 0.5f) == e_geomNone && p.equals(s3) &&
                t == kSentinel);
    const auto segPlane = [&](float at, float tol) {
        return interSegmentPlane(p, t, seg, plane(z, Vector3f(0, 0, at)), tol);
    };
    EXPECT_TRUE(segPlane(4, 0.5f) == e_geomPoint && t == 1.0f && p.equals(seg.m_end)); // s = 1.25
    EXPECT_TRUE(segPlane(-2, 0.5f) == e_geomPoint && t == 0.0f && p.equals(seg.m_start));
    EXPECT_TRUE(segPlane(-4, 0.5f) == e_geomNone && segPlane(6, 0.5f) == e_geomNone);
    EXPECT_TRUE(segPlane(-1, 0.0f) == e_geomNone && segPlane(3, 0.0f) == e_geomPoint); // 0 <= -0; 1 is in

    // A line in the triangle's plane finds nothing; through a vertex, exact coordinates.
    const Vector3f a(0, 0, 0), b(2, 0, 0), c(0, 2, 0);
    bool inside = true;
    p = s3, t = kSentinel;
    EXPECT_EQ(
        interLineTriangle(p, t, v, inside, ZEFLine(Vector3f(5, 5, 0), Vector3f(1, 2, 0), true), a, b, c),
        e_geomNone);
    EXPECT_TRUE(!inside && p.equals(s3) && t == kSentinel && v == kSentinel);
    EXPECT_EQ(interLineTriangle(p, t, v, inside, ZEFLine(Vector3f(2, 0, 7), -z, true), a, b, c), e_geomPoint);
    EXPECT_TRUE(inside && t == 1.0f && v == 0.0f);

    // Planes: opposite normals through the same points are parallel; an unnormalised pair
    // crosses along n1 x n2, through the point found with the constants as given.
    const Plane z1 = plane(z, z);
    Plane flipped = plane(-z, z), y2 = plane(Vector3f(0, 1, 0), Vector3f(0, 2, 0));
    l = ZEFLine(s3, x, true);
    EXPECT_TRUE(interPlanePlane(l, Plane(), z1) == e_geomParallel &&
                interPlanePlane(l, z1, flipped) == e_geomParallel);
    EXPECT_TRUE(interPlanePlane(l, z1, z1) == e_geomCoincident && l.m_origin.equals(s3));
    y2.m_normal *= 3.0f, y2.m_d *= 3.0f;
    EXPECT_EQ(interPlanePlane(l, z1, y2), e_geomPoint);
    EXPECT_TRUE(l.m_origin.equals(Vector3f(0, 2, 1)) && l.m_dir.equals(Vector3f(-3, 0, 0)));
}

// The entry face is the first slab whose parameter is tIn (a miss keeps it, with 0, 0). Random
// figures against double references: lines through a common point meet there, segments only
// within their lengths; t on a plane rounded once from double; (u, v) on a triangle; the
// slabs of a box, alone and as six planes (parallel pairs bound nothing).
TEST(Intersections, BoxFacesAndRandomFiguresAgainstDouble) {
    BoundingBox box;
    box.set(Vector3f(-1, -2, -3));
    box.add(Vector3f(1, 2, 3));
    float ta, tb, u, v, tIn = kSentinel, tOut = kSentinel;
    int fx = 9, fy = 9, fz = 9;
    const auto enter = [&](const Vector3f &o, const Vector3f &d) {
        return interLineBoundingBox(tIn, tOut, fx, fy, fz, ZEFLine(o, d, true), box);
    };
    EXPECT_TRUE(enter(Vector3f(-5, 0, 0), Vector3f(1, 0, 0)) && tIn == 4.0f && tOut == 6.0f && fx == -1 &&
                fy == 0);
    EXPECT_TRUE(enter(Vector3f(5, 0, 0), Vector3f(-1, 0, 0)) && fx == 1 && fy == 0 && fz == 0);
    EXPECT_TRUE(enter(Vector3f(-5, -6, 0), Vector3f(1, 1, 0)) && fx == -1 && fy == 0); // an edge: x first
    EXPECT_TRUE(enter(Vector3f(-5, 10, 0), Vector3f(1, 0, 0)) && tIn == 4.0f); // only the x slab bounds it
    EXPECT_TRUE(!enter(Vector3f(-5, 0, 0), Vector3f(1, 1, 0)) && tIn == 0.0f && tOut == 0.0f && fx == -1);
    const Plane x0 = plane(Vector3f(1, 0, 0), box.m_min), x1 = plane(Vector3f(-1, 0, 0), box.m_max);
    const Plane y0 = plane(Vector3f(0, 1, 0), box.m_min), y1 = plane(Vector3f(0, -1, 0), box.m_max);
    const Plane z0 = plane(Vector3f(0, 0, 1), box.m_min), z1 = plane(Vector3f(0, 0, -1), box.m_max);
    Vector3f p, in, out;
    bool inside;
    interLineViewingVolume(in, out, tIn, tOut, ZEFLine(in, Vector3f(0, 1, 0), true), x0, x1, x0, x1, z0, z1);
    EXPECT_TRUE(tIn == -std::numeric_limits<float>::max() && tOut == std::numeric_limits<float>::max());
    std::mt19937 g(21);
    std::uniform_real_distribution<double> w(-0.5, 1.5);
    int floatSumDiffers = 0;
    for (int i = 0; i < 1000; ++i) {
        const Vector3f common = randomVec(g, 5), d = randomVec(g, 1), p0 = randomVec(g, 5),
                       p1 = randomVec(g, 5), p2 = randomVec(g, 5);
        ZEFLine a(common, randomVec(g, 1), true), b(common, d, true);
        a.m_origin = common - a.m_dir * 3.0f;
        b.m_origin = common + b.m_dir * 2.0f;
        if (std::fabs(Vector3f::dot(a.m_dir, b.m_dir)) < 0.9f) {
            EXPECT_TRUE(interLineLine(p, ta, tb, a, b) == e_geomPoint && (p - common).normD() < kRandomTol &&
                        std::fabs(ta - 3) < kRandomTol && std::fabs(tb + 2) < kRandomTol)
                << i;
            EXPECT_EQ(
                interLineLine(p, ta, tb, a, ZEFLine(b.m_origin + a.m_dir.cross(b.m_dir), b.m_dir, true)),
                e_geomNone);
            const ZEFSegment sa(a.m_origin, common), sb(b.m_origin, b.m_origin - b.m_dir * 3.0f);
            EXPECT_EQ(interSegmentSegment(p, ta, sa, sb), e_geomPoint); // the end of sa is in
            EXPECT_EQ(interSegmentSegment(p, ta, sa, ZEFSegment(sb.m_start, sb.m_start - b.m_dir)),
                      e_geomNone);
            EXPECT_EQ(interSegmentSegment(p, ta, ZEFSegment(sa.m_start, sa.m_start + a.m_dir * 2.0f), sb),
                      e_geomNone);
        }
        const Plane pl = plane(d, p0);
        const float q = Vector3f::dot(pl.m_normal, a.m_dir), no = Vector3f::dot(pl.m_normal, a.m_origin);
        if (std::fabs(q) > 0.2f) {
            ASSERT_EQ(interLinePlane(p, ta, a, pl), e_geomPoint);
            EXPECT_EQ(ta, float(-(double(no) + pl.m_d) / q));
            floatSumDiffers += ta != -(no + pl.m_d) / q;
        }
        const Vector3f n = (p1 - p0).cross(p2 - p0);
        const double su = w(g), sv = w(g), m = std::fmin(std::fmin(su, sv), 1 - su - sv);
        if (n.norm() > 1.0f && std::fabs(Vector3f::dot(n, d)) > 0.3f * n.norm() * d.norm() &&
            std::fabs(m) > 1e-3) {
            const Vector3f hit = p0 + (p1 - p0) * float(su) + (p2 - p0) * float(sv);
            ASSERT_EQ(interLineTriangle(p, u, v, inside, ZEFLine(hit - d * 4.0f, d, true), p0, p1, p2),
                      e_geomPoint);
            EXPECT_TRUE(inside == (m > 0) && std::fabs(u - su) < kRandomTol &&
                        std::fabs(v - sv) < kRandomTol && (p - hit).normD() < 0.01)
                << i;
        }
        double lo = -1e30, hi = 1e30; // the slabs in double
        for (int k = 0; k < 3; ++k) {
            const double t1 = (box.m_min[k] - a.m_origin[k]) / a.m_dir[k];
            const double t2 = (box.m_max[k] - a.m_origin[k]) / a.m_dir[k];
            lo = std::fmax(lo, std::fmin(t1, t2)), hi = std::fmin(hi, std::fmax(t1, t2));
        }
        if (std::fabs(hi - lo) < 1e-3)
            continue;
        interLineBoundingBox(tIn, tOut, a, box);
        EXPECT_TRUE(std::fabs(tIn - (lo < hi ? lo : 0)) < kRandomTol &&
                    std::fabs(tOut - (lo < hi ? hi : 0)) < kRandomTol);
        interLineViewingVolume(in, out, tIn, tOut, a, x0, x1, y0, y1, z0, z1);
        EXPECT_TRUE(std::fabs(tIn - lo) < kRandomTol && std::fabs(tOut - hi) < kRandomTol &&
                    (in - (a.m_origin + a.m_dir * tIn)).normD() < kRandomTol)
            << i;
    }
    EXPECT_GT(floatSumDiffers, 0);
}

#include "zefcore/geometry/Distances.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace {

const float kSentinel = -777.0f;
const double kRandomTol = 2e-4; // float work against a double reference, values up to ~20
const float kTolBound = 1e-4f;  // the float nearest the double 0.0001 lies below it

struct D3 {
    double x, y, z;
};
D3 d3(const Vector3f &v) {
    return {v.x(), v.y(), v.z()};
}
D3 sub(D3 a, D3 b) {
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}
D3 axpy(D3 o, double t, D3 d) {
    return {o.x + t * d.x, o.y + t * d.y, o.z + t * d.z};
}
double dot(D3 a, D3 b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}
D3 cross(D3 a, D3 b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
double len(D3 a) {
    return std::sqrt(dot(a, a));
}
Vector3f randomVec(std::mt19937 &g, float r) {
    std::uniform_real_distribution<float> u(-r, r);
    return Vector3f(u(g), u(g), u(g));
}

} // namespace

TEST(Distances, LineLineAndLineSegmentAgainstDouble) {
    float ta, tb, t, s;
    const ZEFLine xAxis(Vector3f(0, 0, 0), Vector3f(1, 0, 0), true);
    EXPECT_EQ(distanceLineSegment(xAxis, ZEFSegment(Vector3f(2, 3, 0), Vector3f(2, 3, 0)), t, s), 3.0f);
    EXPECT_TRUE(t == 2.0f && s == 0.0f); // zero length: m_start, nothing divided by zero
    std::mt19937 g(11);
    for (int i = 0; i < 500; ++i) {
        const ZEFLine a(randomVec(g, 10), randomVec(g, 1), true), b(randomVec(g, 10), randomVec(g, 1), true);
        const D3 d1 = d3(a.m_dir), d2 = d3(b.m_dir), w = sub(d3(b.m_origin), d3(a.m_origin)),
                 c = cross(d1, d2);
        if (len(c) > 0.1) { // nearest points: (pa - pb) orthogonal to both directions
            const double k = dot(d1, d2), e = dot(d1, w), f = dot(d2, w);
            EXPECT_NEAR(distanceLineLine(a, b, ta, tb), std::fabs(dot(w, c)) / len(c), kRandomTol);
            EXPECT_NEAR(ta, (e - k * f) / (1 - k * k), 50 * kRandomTol);
            EXPECT_NEAR(tb, (k * e - f) / (1 - k * k), 50 * kRandomTol);
        }
        const ZEFSegment seg(randomVec(g, 5), randomVec(g, 5));
        // |seg(q) - line|^2 is quadratic in q: its minimum on [0, 1] is the clamped vertex.
        const D3 p0 = d3(seg.m_start), v = sub(d3(seg.m_end), p0);
        const auto perp = [&](D3 x) { return axpy(x, -dot(x, d1), d1); };
        const D3 ap = perp(sub(p0, d3(a.m_origin))), bp = perp(v);
        const double q = std::fmin(1, std::fmax(0, -dot(ap, bp) / dot(bp, bp)));
        EXPECT_NEAR(distanceLineSegment(a, seg, t, s), len(axpy(ap, q, bp)), kRandomTol);
        EXPECT_NEAR(len(axpy(ap, s, bp)), len(axpy(ap, q, bp)), kRandomTol); // s names a nearest point
        EXPECT_NEAR(t, dot(sub(axpy(p0, s, v), d3(a.m_origin)), d1), kRandomTol);
    }
}

TEST(Distances, PointSegmentEndBoundAndPointSet) {
    const ZEFSegment seg(Vector3f(0, 0, 0), Vector3f(1, 0, 0));
    Vector3f nearest(kSentinel, kSentinel, kSentinel);
    // s0 = p.x: below the double 0.0001 gives m_start; the next float above reaches the foot.
    Vector3f p(kTolBound, 1, 0);
    distancePointSegment(p, seg, nearest);
    EXPECT_EQ(nearest.x(), 0.0f);
    p.x() = std::nextafter(kTolBound, 1.0f);
    distancePointSegment(p, seg, nearest);
    EXPECT_EQ(nearest.x(), p.x());
    std::mt19937 g(13);
    for (int i = 0; i < 500; ++i) {
        const Vector3f a = randomVec(g, 5), b = randomVec(g, 5), q = randomVec(g, 8);
        const D3 e = sub(d3(b), d3(a));
        const D3 foot = axpy(d3(a), std::fmin(1, std::fmax(0, dot(sub(d3(q), d3(a)), e) / dot(e, e))), e);
        EXPECT_NEAR(distancePointSegment(q, a, b, nearest), len(sub(d3(q), foot)), kRandomTol);
        EXPECT_NEAR(len(sub(d3(nearest), foot)), 0.0, kRandomTol);
    }
    ZEFArray<Vector3f> points;
    int index = 42;
    EXPECT_TRUE(distancePointPointSet(p, points, index) == 0.0f && index == 42);
    for (const Vector3f &v : {Vector3f(5, 0, 0), Vector3f(0, 3, 0), Vector3f(0, -3, 0)})
        points.push_back(v);
    EXPECT_TRUE(distancePointPointSet(Vector3f(0, 0, 0), points, index) == 3.0f && index == 1); // first wins
}

TEST(Distances, PointTestsAtTheirBounds) {
    const ZEFLine xAxis(Vector3f(0, 0, 0), Vector3f(1, 0, 0), true);
    const float cc = 0.3f * 0.3f; // c.c for p = (7, 0.3, 0): the tolerance bounds the square
    EXPECT_TRUE(pointOnLine(Vector3f(7, 0.3f, 0), xAxis, cc));
    EXPECT_FALSE(pointOnLine(Vector3f(7, 0.3f, 0), xAxis, std::nextafter(cc, 0.0f)));
    EXPECT_FALSE(pointOnLine(Vector3f(NAN, 0, 0), xAxis, 1e30f));
    const Plane z0;
    EXPECT_TRUE(pointOnPlane(Vector3f(3, 4, 1e-8f), z0, 0.0f));
    EXPECT_FALSE(pointOnPlane(Vector3f(3, 4, std::nextafter(1e-8f, 1.0f)), z0, 1e30f));

    // e = (2, 0, 0): q = 2 p.x, l2 = 4, and |(p - a) x e|^2 = 4 p.y^2 against 4 tolerance^2.
    const ZEFSegment seg(Vector3f(0, 0, 0), Vector3f(2, 0, 0));
    EXPECT_TRUE(pointOnSegment(Vector3f(1, 0.5f, 0), seg, 0.5f));
    EXPECT_FALSE(pointOnSegment(Vector3f(1, std::nextafter(0.5f, 1.0f), 0), seg, 0.5f));
    EXPECT_TRUE(pointOnSegment(Vector3f(-0.25f, 0, 0), seg, 0.5f)); // q = -tolerance
    EXPECT_FALSE(pointOnSegment(Vector3f(std::nextafter(-0.25f, -1.0f), 0, 0), seg, 0.5f));
    EXPECT_TRUE(pointOnSegment(Vector3f(2, 0, 0), seg, 0.5f));
    EXPECT_FALSE(pointOnSegment(Vector3f(std::nextafter(2.0f, 3.0f), 0, 0), seg, 0.5f)); // no tolerance
    EXPECT_FALSE(pointOnSegment(Vector3f(1, NAN, 0), seg, 0.5f));
}

TEST(Distances, PointInTriangleAgainstBarycentric) {
    const Vector3f a(0, 0, 0), b(4, 0, 0), c(0, 4, 0);
    for (const Vector3f &p : {a, b, c, Vector3f(2, 2, 0), Vector3f(1, 1, 9)})
        EXPECT_TRUE(pointInTriangle(p, a, b, c) && pointInTriangle(p, a, c, b)); // closed, either winding
    EXPECT_FALSE(pointInTriangle(Vector3f(1, 0, 0), a, b, Vector3f(8, 0, 0)));   // degenerate
    std::mt19937 g(14);
    std::uniform_real_distribution<double> u(-0.5, 1.5);
    for (int i = 0; i < 2000; ++i) {
        const Vector3f p0 = randomVec(g, 5), p1 = randomVec(g, 5), p2 = randomVec(g, 5);
        const D3 e1 = sub(d3(p1), d3(p0)), e2 = sub(d3(p2), d3(p0)), n = cross(e1, e2);
        const double s = u(g), t = u(g), lift = u(g) * 3, m = std::fmin(std::fmin(s, t), 1 - s - t);
        if (len(n) < 1.0 || std::fabs(m) < 1e-3)
            continue; // too near an edge for float work
        const D3 q = axpy(axpy(axpy(d3(p0), s, e1), t, e2), lift / len(n), n);
        EXPECT_EQ(pointInTriangle(Vector3f(float(q.x), float(q.y), float(q.z)), p0, p1, p2), m > 0);
    }
}

TEST(Distances, CoteLimitsAndCameraFlipsBeyondTheDepthLimit) {
    float h = kSentinel;
    EXPECT_TRUE(Cote(Vector3f(1, 0, 0), Vector3f(-1, 0, 0), 3, h) == 0.0f &&
                h == float(3.141592653589793 / 2));
    EXPECT_TRUE(Cote(Vector3f(1, 0, 0), Vector3f(1, 0, 0), 3, h) == 0.0f && h == 0.0f);
    EXPECT_NEAR(Cote(Vector3f(1, 0, 0), Vector3f(0, 1, 0), 3, h), 3.0f, 1e-6f);
    Vector3f out;
    // x' = x, y' = y, z' = z, w = -z: a point at z = -2 lands at (x / 2, y / 2, -1).
    const Matrix4f m(1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, -1, 0, 0, 0, 0);
    Vector2f q2;
    cameraProjPoint(out, Vector3f(4, 6, -2), m, -1.0f);
    EXPECT_TRUE(out.equals(Vector3f(2, 3, -1))); // at the limit: in front
    cameraProjPoint(q2, Vector3f(4, 6, -2), m, std::nextafter(-1.0f, -2.0f));
    EXPECT_TRUE(q2.x() == -2.0f && q2.y() == -3.0f);
}

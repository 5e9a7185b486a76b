#include "zefcore/geometry/Distances.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace {

const double kRandomTol = 2e-4; // float work against a double reference, values up to ~20
const float kTolBound = 1e-4f;  // the float nearest the double 0.0001 lies below it

// A double 3-vector for references computed without rounding to float.
struct D3 {
    double x, y, z;
    D3(double a, double b, double c) : x(a), y(b), z(c) {}
    D3(const Vector3f &v) : x(v.x()), y(v.y()), z(v.z()) {}
    D3 operator+(D3 b) const { return {x + b.x, y + b.y, z + b.z}; }
    D3 operator-(D3 b) const { return {x - b.x, y - b.y, z - b.z}; }
    D3 operator*(double t) const { return {x * t, y * t, z * t}; }
    double dot(D3 b) const { return x * b.x + y * b.y + z * b.z; }
    D3 cross(D3 b) const { return {y * b.z - z * b.y, z * b.x - x * b.z, x * b.y - y * b.x}; }
    double len() const { return std::sqrt(dot(*this)); }
};

Vector3f randomVec(std::mt19937 &g, float r) {
    std::uniform_real_distribution<float> u(-r, r);
    return Vector3f(u(g), u(g), u(g));
}

} // namespace

// Random lines, segments, points and triangles against double references: the distance of
// two lines and the parameters of their nearest points; |seg(q) - line|^2 is quadratic in q,
// its minimum on [0, 1] is the clamped vertex; the foot on a segment; points in a triangle
// by barycentric coordinates, lifted off its plane.
TEST(Distances, RandomFiguresAgainstDouble) {
    std::mt19937 g(11);
    std::uniform_real_distribution<double> u(-0.5, 1.5);
    float ta, tb, t, s;
    Vector3f nearest;
    for (int i = 0; i < 2000; ++i) {
        const ZEFLine a(randomVec(g, 10), randomVec(g, 1), true), b(randomVec(g, 10), randomVec(g, 1), true);
        const D3 d1 = a.m_dir, d2 = b.m_dir, w = D3(b.m_origin) - a.m_origin, c = d1.cross(d2);
        const double k = d1.dot(d2), e = d1.dot(w), f = d2.dot(w);
        EXPECT_TRUE(c.len() < 0.1 ||
                    (std::fabs(distanceLineLine(a, b, ta, tb) - std::fabs(w.dot(c)) / c.len()) < kRandomTol &&
                     std::fabs(ta - (e - k * f) / (1 - k * k)) < 50 * kRandomTol &&
                     std::fabs(tb - (k * e - f) / (1 - k * k)) < 50 * kRandomTol))
            << i;
        const Vector3f p0 = randomVec(g, 5), p1 = randomVec(g, 5), p2 = randomVec(g, 5);
        const D3 v = D3(p1) - p0, ap = (D3(p0) - a.m_origin) - d1 * (D3(p0) - a.m_origin).dot(d1),
                 bp = v - d1 * v.dot(d1);
        const double q = std::fmin(1, std::fmax(0, -ap.dot(bp) / bp.dot(bp)));
        EXPECT_TRUE(std::fabs(distanceLineSegment(a, ZEFSegment(p0, p1), t, s) - (ap + bp * q).len()) <
                        kRandomTol &&
                    std::fabs((ap + bp * s).len() - (ap + bp * q).len()) < kRandomTol &&
                    std::fabs(t - (D3(p0) + v * s - a.m_origin).dot(d1)) < kRandomTol)
            << i;
        const D3 foot = D3(p0) + v * std::fmin(1, std::fmax(0, (D3(p2) - p0).dot(v) / v.dot(v)));
        EXPECT_TRUE(std::fabs(distancePointSegment(p2, p0, p1, nearest) - (D3(p2) - foot).len()) <
                        kRandomTol &&
                    (D3(nearest) - foot).len() < kRandomTol)
            << i;
        const D3 e2 = D3(p2) - p0, n = v.cross(e2);
        const double su = u(g), sv = u(g), m = std::fmin(std::fmin(su, sv), 1 - su - sv);
        const D3 in = D3(p0) + v * su + e2 * sv + n * (u(g) * 3 / n.len());
        const bool inside = pointInTriangle(Vector3f(float(in.x), float(in.y), float(in.z)), p0, p1, p2);
        EXPECT_TRUE(n.len() < 1.0 || std::fabs(m) < 1e-3 || inside == (m > 0)) << i; // else too near an edge
    }
}

// Each bound at its value and the neighbouring float, NaN never within: the end of a segment
// (s0 = p.x against the double 0.0001); pointOnLine bounds c.c, here 0.3^2; pointOnSegment on
// (0, 0, 0)-(2, 0, 0) bounds 4 p.y^2 by 4 tolerance^2 and q = 2 p.x by -tolerance and 4;
// pointOnPlane ignores the tolerance given. Triangles are closed, of either winding, and
// empty when degenerate; a zero-length segment is its start.
TEST(Distances, BoundsAndSpecialCases) {
    const ZEFLine xAxis(Vector3f(0, 0, 0), Vector3f(1, 0, 0), true);
    const ZEFSegment unit(Vector3f(0, 0, 0), Vector3f(1, 0, 0));
    Vector3f n0, n1;
    distancePointSegment(Vector3f(kTolBound, 1, 0), unit, n0);
    distancePointSegment(Vector3f(std::nextafter(kTolBound, 1.0f), 1, 0), unit, n1);
    EXPECT_TRUE(n0.x() == 0.0f && n1.x() == std::nextafter(kTolBound, 1.0f));
    const Vector3f p(7, 0.3f, 0);
    const float cc = 0.3f * 0.3f;
    EXPECT_TRUE(pointOnLine(p, xAxis, cc) && !pointOnLine(p, xAxis, std::nextafter(cc, 0.0f)));
    EXPECT_FALSE(pointOnLine(Vector3f(NAN, 0, 0), xAxis, 1e30f));
    EXPECT_TRUE(pointOnPlane(Vector3f(3, 4, 1e-8f), Plane(), 0) &&
                !pointOnPlane(Vector3f(3, 4, std::nextafter(1e-8f, 1.0f)), Plane(), 1e30f));
    const auto on = [](float x, float y) {
        return pointOnSegment(Vector3f(x, y, 0), ZEFSegment(Vector3f(0, 0, 0), Vector3f(2, 0, 0)), 0.5f);
    };
    EXPECT_TRUE(on(1, 0.5f) && !on(1, std::nextafter(0.5f, 1.0f)) && !on(1, NAN));
    EXPECT_TRUE(on(-0.25f, 0) && !on(std::nextafter(-0.25f, -1.0f), 0) && on(2, 0) &&
                !on(std::nextafter(2.0f, 3.0f), 0));
    const Vector3f a(0, 0, 0), b(4, 0, 0), c(0, 4, 0);
    for (const Vector3f &q : {a, b, c, Vector3f(2, 2, 0), Vector3f(1, 1, 9)})
        EXPECT_TRUE(pointInTriangle(q, a, b, c) && pointInTriangle(q, a, c, b));
    EXPECT_FALSE(pointInTriangle(Vector3f(1, 0, 0), a, b, Vector3f(8, 0, 0)));
    float t, s;
    EXPECT_TRUE(distanceLineSegment(xAxis, ZEFSegment(Vector3f(2, 3, 0), Vector3f(2, 3, 0)), t, s) == 3.0f &&
                t == 2.0f && s == 0.0f);
    ZEFArray<Vector3f> points;
    int index = 42;
    EXPECT_TRUE(distancePointPointSet(p, points, index) == 0.0f && index == 42);
    for (const Vector3f &v : {Vector3f(5, 0, 0), Vector3f(0, 3, 0), Vector3f(0, -3, 0)})
        points.push_back(v);
    EXPECT_TRUE(distancePointPointSet(Vector3f(0, 0, 0), points, index) == 3.0f && index == 1); // first wins
}

// Cote is 0 near a half angle of pi/2 or a small tangent. The camera flips x and y only for a
// depth beyond the limit: x' = x, y' = y, z' = z, w = -z puts (4, 6, -2) at (2, 3, -1).
TEST(Distances, CoteLimitsAndCameraFlipsBeyondTheDepthLimit) {
    float h = -1.0f;
    EXPECT_TRUE(Cote(Vector3f(1, 0, 0), Vector3f(-1, 0, 0), 3, h) == 0.0f && h == float(M_PI / 2));
    EXPECT_TRUE(Cote(Vector3f(1, 0, 0), Vector3f(1, 0, 0), 3, h) == 0.0f && h == 0.0f);
    EXPECT_NEAR(Cote(Vector3f(1, 0, 0), Vector3f(0, 1, 0), 3, h), 3.0f, 1e-6f);
    const Matrix4f m(1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, -1, 0, 0, 0, 0);
    Vector3f out;
    Vector2f q2;
    cameraProjPoint(out, Vector3f(4, 6, -2), m, -1.0f);
    cameraProjPoint(q2, Vector3f(4, 6, -2), m, std::nextafter(-1.0f, -2.0f));
    EXPECT_TRUE(out.equals(Vector3f(2, 3, -1)) && q2.x() == -2.0f && q2.y() == -3.0f);
}

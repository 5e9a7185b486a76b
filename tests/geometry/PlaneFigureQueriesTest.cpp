#include "zefcore/geometry/PlaneFigureQueries.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

namespace {
const float kSentinel = -777.0f;

// Exact side of c against a-b, for small integer coordinates.
long long orient(const float *a, const float *b, const float *c) {
    return (long long)(b[0] - a[0]) * (long long)(c[1] - a[1]) -
           (long long)(b[1] - a[1]) * (long long)(c[0] - a[0]);
}

// Closed segments a-b and c-d meet, by exact parameters; collinear pairs count as meeting.
bool segmentsMeet(const float *a, const float *b, const float *c, const float *d) {
    const float o[2] = {0, 0}, u[2] = {b[0] - a[0], b[1] - a[1]}, v[2] = {d[0] - c[0], d[1] - c[1]};
    const long long den = orient(o, u, v), sign = den < 0 ? -1 : 1;
    if (den == 0) // parallel or a point: they meet only when all four sides are zero
        return !orient(a, b, c) && !orient(a, b, d) && !orient(c, d, a) && !orient(c, d, b);
    const long long t = sign * orient(a, c, d), s = -sign * orient(a, b, c);
    return 0 <= t && t <= sign * den && 0 <= s && s <= sign * den;
}
} // namespace

// Clamped at both ends (t exactly 1 is not beyond: a + (b - a) may miss b); b - a rounded to
// float, then a + t (b - a) in double, rounded once; a zero-length segment gives NaN.
TEST(PlaneFigureQueries, Distance2PointSegment2DClampsAndRounds) {
    const float a[2] = {0, 0}, b[2] = {4, 0}, beyondB[2] = {6, 1}, beforeA[2] = {-3, -4}, above[2] = {1, 3};
    float t = kSentinel;
    Vector2f n;
    EXPECT_TRUE(distance2PointSegment2D(t, n, a, b, beyondB) == 5.0f && t == 1.0f && n.x() == 4.0f);
    EXPECT_TRUE(distance2PointSegment2D(t, n, a, b, beforeA) == 25.0f && t == 0.0f && n.x() == 0.0f);
    EXPECT_TRUE(distance2PointSegment2D(t, n, a, b, above) == 9.0f && t == 0.25f && n.x() == 1.0f);
    EXPECT_TRUE(std::isnan(distance2PointSegment2D(t, n, a, a, above)) && std::isnan(t));
    const float big[2] = {3, 0}, tinyEnd[2] = {1.0f / 1073741824.0f, 0};
    EXPECT_EQ(distance2PointSegment2D(t, n, big, tinyEnd, tinyEnd), tinyEnd[0] * tinyEnd[0]);
    EXPECT_TRUE(t == 1.0f && n.x() == 0.0f);
    const float s0[2] = {9.0f, 8.5f}, s1[2] = {1.1f, -5.9f}, p[2] = {8.3f, -9.8f};
    distance2PointSegment2D(t, n, s0, s1, p);
    const float abx = float(double(s1[0]) - s0[0]), expected = float(s0[0] + double(t) * abx);
    EXPECT_TRUE(n.x() == expected && expected != float(s0[0] + double(t) * (double(s1[0]) - s0[0])) &&
                expected != s0[0] + t * abx);
}

// The raw determinant against the double 0.0001 (outputs untouched when parallel), NaN
// crosses; then every step bit for bit against double-then-round.
TEST(PlaneFigureQueries, LineLineDeterminantBoundAndRounding) {
    const float p1[2] = {0, 0}, p2[2] = {1, -2}, d2[2] = {0, 1}, atBound[2] = {0.0001f, 0},
                above[2] = {std::nextafter(0.0001f, 1.0f), 0}, nanDir[2] = {NAN, 0};
    const float small1[2] = {0.005f, 0}, small2[2] = {0, 0.005f}; // not scaled by the lengths
    float point[2] = {kSentinel, kSentinel}, t1 = kSentinel, t2 = kSentinel;
    EXPECT_EQ(inter2dLineLine(point, t1, t2, p1, atBound, p2, d2), e_geomParallel);
    EXPECT_EQ(inter2dLineLine(point, t1, t2, p1, small1, p2, small2), e_geomParallel);
    EXPECT_TRUE(point[0] == kSentinel && point[1] == kSentinel && t1 == kSentinel && t2 == kSentinel);
    EXPECT_EQ(inter2dLineLine(point, t1, t2, p1, above, p2, d2), e_geomPoint);
    EXPECT_TRUE(inter2dLineLine(point, t1, t2, p1, nanDir, p2, d2) == e_geomPoint && std::isnan(t1));
    const float q1[2] = {5.6f, -5.5f}, e1[2] = {2.3f, 4.2f}, q2[2] = {-9.2f, 1.2f}, e2[2] = {3.1f, -9.7f};
    const float det = float(double(e1[0]) * e2[1] - double(e1[1]) * e2[0]);
    const float wx = float(double(q2[0]) - q1[0]), wy = float(double(q2[1]) - q1[1]);
    const float r1 = float((double(wx) * e2[1] - double(wy) * e2[0]) / det);
    const float r2 = float((double(wx) * e1[1] - double(wy) * e1[0]) / det);
    ASSERT_EQ(inter2dLineLine(point, t1, t2, q1, e1, q2, e2), e_geomPoint);
    EXPECT_TRUE(t1 == r1 && t2 == r2 && t1 != (wx * e2[1] - wy * e2[0]) / det);
    EXPECT_TRUE(point[0] == float(q1[0] + double(r1) * e1[0]) && point[0] != q1[0] + r1 * e1[0]);
    EXPECT_EQ(point[1], float(q1[1] + double(r1) * e1[1]));
}

// A coordinate of the crossing in double, rounded once; the segment forms keep the crossing
// when it falls outside their range; an end on the line counts.
TEST(PlaneFigureQueries, AxisParallelSegmentForms) {
    float out = kSentinel;
    const float a[2] = {1, 0}, b[2] = {1, 5}, c[2] = {0, 0}, d[2] = {2, 4};
    EXPECT_TRUE(inter2dSegmentVerticalLine(a, b, 1, out) == e_geomCoincident &&
                inter2dSegmentVerticalLine(a, b, 2, out) == e_geomNone);
    EXPECT_TRUE(inter2dSegmentVerticalLine(c, d, std::nextafter(2.0f, 3.0f), out) == e_geomNone &&
                out == kSentinel);
    EXPECT_TRUE(inter2dSegmentVerticalLine(d, c, 2, out) == e_geomPoint && out == 4.0f);
    EXPECT_TRUE(inter2dSegmentHorizontalSegment(c, d, 2, 1, 1, out) == e_geomPoint && out == 1.0f);
    out = kSentinel;
    EXPECT_TRUE(inter2dSegmentHorizontalSegment(c, d, 2, -1, std::nextafter(1.0f, 0.0f), out) == e_geomNone &&
                out == 1.0f);
    EXPECT_TRUE(inter2dSegmentHorizontalLine(c, d, 3, out) == e_geomPoint && out == 1.5f);
    const float e[2] = {7.7f, 2.7f}, f[2] = {-2.7f, -8.2f}, value = 2.5f, dx = float(double(f[0]) - e[0]);
    const float expected = float(double(e[1]) + (double(value) - e[0]) * (double(f[1]) - e[1]) / dx);
    ASSERT_EQ(inter2dSegmentVerticalLine(e, f, value, out), e_geomPoint);
    EXPECT_TRUE(out == expected && out != e[1] + (value - e[0]) * (f[1] - e[1]) / dx);
}

// Random integer points from -5 to 5, so that every step is exact: both segment-segment
// forms against exact parameters; a segment against the outline of (-2, -1)-(3, 2) crosses
// exactly if the end flags differ or it meets a side it is not parallel to.
TEST(PlaneFigureQueries, SegmentQueriesOnRandomIntegerPoints) {
    BoundingBox box;
    box.set(Vector3f(-2, -1, 0));
    box.add(Vector3f(3, 2, 0));
    const float corner[4][2] = {{-2, -1}, {3, -1}, {3, 2}, {-2, 2}};
    std::mt19937 rng(9);
    for (int i = 0; i < 20000; ++i) {
        float q[4][2], point[2], t1, t2;
        for (auto &v : q)
            v[0] = float(int(rng() % 11) - 5), v[1] = float(int(rng() % 11) - 5);
        const bool meet = segmentsMeet(q[0], q[1], q[2], q[3]);
        ASSERT_EQ(inter2dSegmentSegment(q[0], q[1], q[2], q[3]) == e_geomPoint, meet) << i;
        const float e[2] = {q[1][0] - q[0][0], q[1][1] - q[0][1]},
                    f[2] = {q[3][0] - q[2][0], q[3][1] - q[2][1]};
        ASSERT_EQ(inter2dSegmentSegment(point, t1, t2, q[0], e, q[2], f), e[0] * f[1] - e[1] * f[0] == 0.0f
                                                                              ? e_geomParallel
                                                                          : meet ? e_geomPoint
                                                                                 : e_geomNone)
            << i;
        const bool aIn = box.contains(Vector3f(q[0][0], q[0][1], 0)),
                   bIn = box.contains(Vector3f(q[1][0], q[1][1], 0));
        bool expected = aIn != bIn, gotA = !aIn, gotB = !bIn;
        for (int s = 0; s < 4; ++s) {
            const float *c = corner[s], *d = corner[(s + 1) % 4];
            const bool parallel = (c[0] == d[0]) ? q[0][0] == q[1][0] : q[0][1] == q[1][1];
            expected = expected || (!parallel && segmentsMeet(q[0], q[1], c, d));
        }
        ASSERT_EQ(inter2dSegmentBBox(q[0], q[1], box, gotA, gotB) == e_geomPoint, expected) << i;
        ASSERT_TRUE(gotA == aIn && gotB == bIn) << i;
    }
}

// On an upper edge inside, on a lower edge outside, a vertex at p.x counted once, parity for
// a self-crossing ring; random star-shaped rings (the index form on a reversed copy with a
// decoy vertex, z ignored) against the winding number summed in double.
TEST(PlaneFigureQueries, PointInPolygonRulesAndWinding) {
    const std::vector<Vector2f> square = {{0, 0}, {1, 0}, {1, 1}, {0, 1}};
    const float inside[2] = {0.5f, 0.5f}, right[2] = {1.5f, 0.5f}, top[2] = {0.5f, 1}, bottom[2] = {0.5f, 0};
    const Vector2f *f = square.data(), *l = f + 4;
    EXPECT_TRUE(pointIn2DPolygon(inside, f, l) && pointIn2DPolygon(top, f, l));
    EXPECT_FALSE(pointIn2DPolygon(right, f, l) || pointIn2DPolygon(bottom, f, l) ||
                 pointIn2DPolygon(inside, f, f + 1));
    const Vector3f tri[3] = {{-1, 0, 5}, {1, 0, -5}, {0, 1, 0}};
    const float mid[2] = {0, 0.5f}, apexAbove[2] = {0, 1.5f};
    EXPECT_TRUE(pointIn2DPolygon(mid, tri, tri + 3) && !pointIn2DPolygon(apexAbove, tri, tri + 3));
    std::vector<Vector2f> star;
    for (int k = 0; k < 5; ++k)
        star.emplace_back(float(std::cos(k * 4 * M_PI / 5)), float(std::sin(k * 4 * M_PI / 5)));
    const float centre[2] = {0.01f, 0.02f};
    EXPECT_FALSE(pointIn2DPolygon(centre, star.data(), star.data() + 5));
    std::mt19937 rng(21);
    std::uniform_real_distribution<float> unit(0.0f, 1.0f);
    for (int ringNo = 0; ringNo < 200; ++ringNo) {
        const int n = 3 + ringNo % 9;
        std::vector<Vector2f> ring;
        std::vector<Vector3f> store(1, Vector3f(0.1f, 0.1f, 0));
        std::vector<int> idx;
        for (int k = 0; k < n; ++k) { // vertices sorted by angle
            const double ang = 2 * M_PI * (k + 0.8 * unit(rng)) / n, r = 0.2 + unit(rng);
            ring.emplace_back(float(r * std::cos(ang)), float(r * std::sin(ang)));
            store.insert(store.begin() + 1, Vector3f(ring.back().x(), ring.back().y(), unit(rng)));
            idx.insert(idx.begin(), k + 1);
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
            ASSERT_EQ(pointIn2DPolygon(p, ring.data(), ring.data() + n), std::fabs(winding) > M_PI);
            ASSERT_EQ(pointIn2DPolygon(p, store.data(), idx.data(), idx.data() + n),
                      std::fabs(winding) > M_PI);
        }
    }
}

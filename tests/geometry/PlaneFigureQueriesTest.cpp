#include "zefcore/geometry/PlaneFigureQueries.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <vector>

namespace {

const float kNaN = std::numeric_limits<float>::quiet_NaN();
const float kSentinel = -777.0f;

// Exact side of c against a-b for small integer coordinates.
long long orient(const float *a, const float *b, const float *c) {
    return (long long)(b[0] - a[0]) * (long long)(c[1] - a[1]) -
           (long long)(b[1] - a[1]) * (long long)(c[0] - a[0]);
}

// Closed segments a-b and c-d meet, by exact parameters; collinear pairs count as meeting.
bool segmentsMeet(const float *a, const float *b, const float *c, const float *d) {
    const long long ux = (long long)(b[0] - a[0]), uy = (long long)(b[1] - a[1]);
    const long long vx = (long long)(d[0] - c[0]), vy = (long long)(d[1] - c[1]);
    const long long wx = (long long)(c[0] - a[0]), wy = (long long)(c[1] - a[1]);
    long long den = ux * vy - uy * vx;
    if (den == 0) // parallel or a point: meeting only when all four sides are zero
        return orient(a, b, c) == 0 && orient(a, b, d) == 0 && orient(c, d, a) == 0 &&
               orient(c, d, b) == 0;
    long long tn = wx * vy - wy * vx, sn = wx * uy - wy * ux;
    if (den < 0) {
        den = -den, tn = -tn, sn = -sn;
    }
    return 0 <= tn && tn <= den && 0 <= sn && sn <= den;
}

// Winding number of the ring around p, in double: the reference for simple rings.
bool insideByWinding(const float *p, const std::vector<Vector2f> &ring) {
    double sum = 0.0;
    for (size_t i = 0; i < ring.size(); ++i) {
        const Vector2f &s = ring[i], &e = ring[(i + 1) % ring.size()];
        const double a1 = std::atan2(double(s.y()) - p[1], double(s.x()) - p[0]);
        const double a2 = std::atan2(double(e.y()) - p[1], double(e.x()) - p[0]);
        double da = a2 - a1;
        if (da > M_PI)
            da -= 2 * M_PI;
        if (da < -M_PI)
            da += 2 * M_PI;
        sum += da;
    }
    return std::fabs(sum) > M_PI;
}

} // namespace

TEST(PlaneFigureQueries, Distance2PointSegment2D) {
    const float a[2] = {0.0f, 0.0f}, b[2] = {4.0f, 0.0f};
    float t = kSentinel;
    Vector2f nearest;
    const float beyondB[2] = {6.0f, 1.0f}, beforeA[2] = {-3.0f, -4.0f}, above[2] = {1.0f, 3.0f};
    EXPECT_EQ(distance2PointSegment2D(t, nearest, a, b, beyondB), 5.0f);
    EXPECT_EQ(t, 1.0f);
    EXPECT_EQ(nearest.x(), 4.0f);
    EXPECT_EQ(distance2PointSegment2D(t, nearest, a, b, beforeA), 25.0f);
    EXPECT_EQ(t, 0.0f);
    EXPECT_EQ(distance2PointSegment2D(t, nearest, a, b, above), 9.0f); // a square
    EXPECT_EQ(t, 0.25f);
    EXPECT_EQ(nearest.x(), 1.0f);
    EXPECT_TRUE(std::isnan(distance2PointSegment2D(t, nearest, a, a, above)));
    EXPECT_TRUE(std::isnan(t));
    // t exactly 1 is not beyond the end: nearest is a + (b - a), which rounds away from b.
    const float big[2] = {3.0f, 0.0f}, tinyEnd[2] = {1.0f / 1073741824.0f, 0.0f};
    EXPECT_EQ(distance2PointSegment2D(t, nearest, big, tinyEnd, tinyEnd), tinyEnd[0] * tinyEnd[0]);
    EXPECT_EQ(t, 1.0f);
    EXPECT_EQ(nearest.x(), 0.0f);

    // Random segments: no sampled point of the segment is nearer than the result.
    const double kRelTolerance = 1e-5;
    std::mt19937 rng(3);
    std::uniform_real_distribution<float> dist(-10.0f, 10.0f);
    for (int i = 0; i < 300; ++i) {
        const float s0[2] = {dist(rng), dist(rng)}, s1[2] = {dist(rng), dist(rng)};
        const float p[2] = {dist(rng), dist(rng)};
        const double r = distance2PointSegment2D(t, nearest, s0, s1, p);
        if (t > 0.0f && t < 1.0f) { // b - a rounded to float, then a + t (b - a) rounded once
            ASSERT_EQ(nearest.x(), float(s0[0] + double(t) * float(double(s1[0]) - s0[0])));
            ASSERT_EQ(nearest.y(), float(s0[1] + double(t) * float(double(s1[1]) - s0[1])));
        }
        double best = 1e30;
        for (int k = 0; k <= 1000; ++k) {
            const double x = s0[0] + (s1[0] - double(s0[0])) * k / 1000.0 - p[0];
            const double y = s0[1] + (s1[1] - double(s0[1])) * k / 1000.0 - p[1];
            best = std::min(best, x * x + y * y);
        }
        ASSERT_LE(r, best * (1 + kRelTolerance) + 1e-6);
        ASSERT_GE(r, best - 0.03 * std::sqrt(best) - 1e-3); // sampling step below 0.03
    }
}

TEST(PlaneFigureQueries, LineLineDeterminantBoundAndOutputs) {
    const float p1[2] = {0.0f, 0.0f}, p2[2] = {1.0f, -2.0f}, d2[2] = {0.0f, 1.0f};
    float point[2] = {kSentinel, kSentinel}, t1 = kSentinel, t2 = kSentinel;
    // d1 = (s, 0) against (0, 1): the determinant is s itself.
    const float atBound[2] = {0.0001f, 0.0f}; // the float nearest 0.0001 is below the double
    EXPECT_EQ(inter2dLineLine(point, t1, t2, p1, atBound, p2, d2), e_geomParallel);
    const float tiny[2] = {0.005f, 0.0f}, tinyUp[2] = {0.0f, 0.005f};
    EXPECT_EQ(inter2dLineLine(point, t1, t2, p1, tiny, p2, tinyUp), e_geomParallel);
    EXPECT_TRUE(point[0] == kSentinel && point[1] == kSentinel && t1 == kSentinel && t2 == kSentinel);

    const float above[2] = {std::nextafter(0.0001f, 1.0f), 0.0f};
    EXPECT_EQ(inter2dLineLine(point, t1, t2, p1, above, p2, d2), e_geomPoint);
    EXPECT_EQ(t1, float(1.0 / double(above[0])));
    EXPECT_EQ(t2, 2.0f);
    EXPECT_EQ(point[0], float(double(t1) * above[0]));
    EXPECT_EQ(point[1], 0.0f);

    // Random lines: bit for bit against the double-then-round formulas.
    std::mt19937 rng(6);
    std::uniform_real_distribution<float> dist(-10.0f, 10.0f);
    int floatArithmeticDiffers = 0;
    for (int i = 0; i < 2000; ++i) {
        const float q1[2] = {dist(rng), dist(rng)}, e1[2] = {dist(rng), dist(rng)};
        const float q2[2] = {dist(rng), dist(rng)}, e2[2] = {dist(rng), dist(rng)};
        const float det = float(double(e1[0]) * e2[1] - double(e1[1]) * e2[0]);
        if (std::fabs(det) <= 0.0001)
            continue;
        const float wx = float(double(q2[0]) - q1[0]), wy = float(double(q2[1]) - q1[1]);
        const float r1 = float((double(wx) * e2[1] - double(wy) * e2[0]) / det);
        const float r2 = float((double(wx) * e1[1] - double(wy) * e1[0]) / det);
        ASSERT_EQ(inter2dLineLine(point, t1, t2, q1, e1, q2, e2), e_geomPoint);
        ASSERT_TRUE(t1 == r1 && t2 == r2);
        ASSERT_EQ(point[0], float(q1[0] + double(r1) * e1[0]));
        ASSERT_EQ(point[1], float(q1[1] + double(r1) * e1[1]));
        if (point[0] != q1[0] + r1 * e1[0] || t1 != (wx * e2[1] - wy * e2[0]) / det)
            ++floatArithmeticDiffers;
    }
    EXPECT_GT(floatArithmeticDiffers, 0);

    const float nanDir[2] = {kNaN, 0.0f};
    EXPECT_EQ(inter2dLineLine(point, t1, t2, p1, nanDir, p2, d2), e_geomPoint);
    EXPECT_TRUE(std::isnan(t1));
}

TEST(PlaneFigureQueries, SegmentSegmentWithOutputs) {
    const float p1[2] = {0.0f, 0.0f}, d1[2] = {2.0f, 0.0f}, d2[2] = {0.0f, 4.0f};
    float point[2], t1, t2;
    const float atEnd[2] = {2.0f, -1.0f}; // crossing at t1 = 1
    EXPECT_EQ(inter2dSegmentSegment(point, t1, t2, p1, d1, atEnd, d2), e_geomPoint);
    EXPECT_EQ(t1, 1.0f);
    EXPECT_EQ(t2, 0.25f);
    const float beyond[2] = {3.0f, -1.0f}; // t1 = 1.5
    EXPECT_EQ(inter2dSegmentSegment(point, t1, t2, p1, d1, beyond, d2), e_geomNone);
    EXPECT_EQ(t1, 1.5f);
    EXPECT_EQ(point[0], 3.0f);
    EXPECT_EQ(inter2dSegmentSegment(point, t1, t2, p1, d1, beyond, d1), e_geomParallel);

    // Random integer segments: the outputs form agrees with exact parameters.
    std::mt19937 rng(8);
    std::uniform_int_distribution<int> dist(-6, 6);
    for (int i = 0; i < 5000; ++i) {
        const float a[2] = {float(dist(rng)), float(dist(rng))}, u[2] = {float(dist(rng)), float(dist(rng))};
        const float c[2] = {float(dist(rng)), float(dist(rng))}, v[2] = {float(dist(rng)), float(dist(rng))};
        const float b[2] = {a[0] + u[0], a[1] + u[1]}, d[2] = {c[0] + v[0], c[1] + v[1]};
        const e_geomInfo r = inter2dSegmentSegment(point, t1, t2, a, u, c, v);
        if (u[0] * v[1] - u[1] * v[0] == 0.0f) {
            ASSERT_EQ(r, e_geomParallel);
            continue;
        }
        ASSERT_EQ(r == e_geomPoint, segmentsMeet(a, b, c, d)) << i;
    }
}

TEST(PlaneFigureQueries, SegmentSegmentSideTest) {
    const float o[2] = {0, 0}, x1[2] = {1, 0}, x2[2] = {2, 0}, x3[2] = {3, 0}, up[2] = {1, 1};
    EXPECT_EQ(inter2dSegmentSegment(o, x1, x2, x3), e_geomPoint); // collinear, apart
    EXPECT_EQ(inter2dSegmentSegment(o, x1, x1, up), e_geomPoint); // touching
    const float nanP[2] = {kNaN, 0.5f};
    EXPECT_EQ(inter2dSegmentSegment(o, up, nanP, x2), e_geomNone);

    std::mt19937 rng(9);
    std::uniform_int_distribution<int> dist(-5, 5);
    for (int i = 0; i < 20000; ++i) {
        float pts[4][2];
        for (auto &pt : pts)
            pt[0] = float(dist(rng)), pt[1] = float(dist(rng));
        const bool expected = segmentsMeet(pts[0], pts[1], pts[2], pts[3]);
        ASSERT_EQ(inter2dSegmentSegment(pts[0], pts[1], pts[2], pts[3]) == e_geomPoint, expected) << i;
    }
}

TEST(PlaneFigureQueries, AxisParallelSegmentForms) {
    float out = kSentinel;
    const float a[2] = {1.0f, 0.0f}, b[2] = {1.0f, 5.0f};
    EXPECT_EQ(inter2dSegmentVerticalLine(a, b, 1.0f, out), e_geomCoincident);
    EXPECT_EQ(inter2dSegmentVerticalLine(a, b, 2.0f, out), e_geomNone);
    EXPECT_EQ(inter2dSegmentVerticalSegment(a, b, 1.0f, 100.0f, 200.0f, out), e_geomCoincident);
    EXPECT_EQ(out, kSentinel);
    const float c[2] = {0.0f, 0.0f}, d[2] = {2.0f, 4.0f};
    EXPECT_EQ(inter2dSegmentVerticalLine(c, d, 1.0f, out), e_geomPoint);
    EXPECT_EQ(out, 2.0f);
    out = kSentinel;
    EXPECT_EQ(inter2dSegmentVerticalLine(c, d, std::nextafter(2.0f, 3.0f), out), e_geomNone);
    EXPECT_EQ(out, kSentinel);
    EXPECT_EQ(inter2dSegmentVerticalLine(d, c, 2.0f, out), e_geomPoint); // end included, reversed
    EXPECT_EQ(out, 4.0f);
    EXPECT_EQ(inter2dSegmentHorizontalSegment(c, d, 2.0f, 1.0f, 1.0f, out), e_geomPoint);
    EXPECT_EQ(inter2dSegmentHorizontalSegment(c, d, 2.0f, -1.0f, std::nextafter(1.0f, 0.0f), out),
              e_geomNone);
    EXPECT_EQ(out, 1.0f); // the crossing, though outside the range
    EXPECT_EQ(inter2dSegmentHorizontalLine(c, d, 3.0f, out), e_geomPoint);
    EXPECT_EQ(out, 1.5f);

    // Rounding point: D rounded to float, the rest one double expression rounded once.
    std::mt19937 rng(2);
    std::uniform_real_distribution<float> dist(-10.0f, 10.0f);
    int floatArithmeticDiffers = 0;
    for (int i = 0; i < 2000; ++i) {
        const float e[2] = {dist(rng), dist(rng)}, f[2] = {dist(rng), dist(rng)};
        const float value = e[0] + (f[0] - e[0]) * 0.5f;
        const float dx = float(double(f[0]) - e[0]);
        ASSERT_EQ(inter2dSegmentVerticalLine(e, f, value, out), e_geomPoint);
        ASSERT_EQ(out, float(double(e[1]) + (double(value) - e[0]) * (double(f[1]) - e[1]) / dx));
        if (out != e[1] + (value - e[0]) * (f[1] - e[1]) / dx)
            ++floatArithmeticDiffers;
    }
    EXPECT_GT(floatArithmeticDiffers, 0);
}

TEST(PlaneFigureQueries, SegmentBoxOutline) {
    BoundingBox box;
    box.set(Vector3f(0.0f, 0.0f, 9.0f));
    box.add(Vector3f(2.0f, 1.0f, -9.0f));
    bool aIn = false, bIn = false;
    const float border[2] = {2.0f, 0.5f}, outside[2] = {3.0f, 0.5f};
    EXPECT_EQ(inter2dSegmentBBox(border, outside, box, aIn, bIn), e_geomPoint);
    EXPECT_TRUE(aIn && !bIn);
    const float in1[2] = {0.5f, 0.5f}, in2[2] = {1.5f, 0.5f};
    EXPECT_EQ(inter2dSegmentBBox(in1, in2, box, aIn, bIn), e_geomNone);
    EXPECT_TRUE(aIn && bIn);
    const float left[2] = {-1.0f, 0.5f};
    EXPECT_EQ(inter2dSegmentBBox(left, outside, box, aIn, bIn), e_geomPoint);
    EXPECT_TRUE(!aIn && !bIn);
    const float along1[2] = {-1.0f, 1.0f}, along2[2] = {3.0f, 1.0f}; // on the top side
    EXPECT_EQ(inter2dSegmentBBox(along1, along2, box, aIn, bIn), e_geomPoint);
    const float below1[2] = {-1.0f, -1.0f}, below2[2] = {3.0f, -1.0f};
    EXPECT_EQ(inter2dSegmentBBox(below1, below2, box, aIn, bIn), e_geomNone);

    // Random integer segments against the box (-2, -1)-(3, 2): crossing exactly if the
    // flags differ or the segment meets a side it is not parallel to.
    box.set(Vector3f(-2.0f, -1.0f, 0.0f));
    box.add(Vector3f(3.0f, 2.0f, 0.0f));
    const float corner[4][2] = {{-2, -1}, {3, -1}, {3, 2}, {-2, 2}};
    std::mt19937 rng(12);
    std::uniform_int_distribution<int> dist(-5, 5);
    for (int i = 0; i < 20000; ++i) {
        const float a[2] = {float(dist(rng)), float(dist(rng))}, b[2] = {float(dist(rng)), float(dist(rng))};
        bool expected = box.contains(Vector3f(a[0], a[1], 0)) != box.contains(Vector3f(b[0], b[1], 0));
        for (int s = 0; s < 4; ++s) {
            const float *c = corner[s], *d = corner[(s + 1) % 4];
            const bool parallel = (c[0] == d[0]) ? a[0] == b[0] : a[1] == b[1];
            if (!parallel && segmentsMeet(a, b, c, d))
                expected = true;
        }
        ASSERT_EQ(inter2dSegmentBBox(a, b, box, aIn, bIn) == e_geomPoint, expected) << i;
    }
}

TEST(PlaneFigureQueries, PointInPolygonBoundaryRules) {
    const std::vector<Vector2f> square = {{0, 0}, {1, 0}, {1, 1}, {0, 1}};
    const std::vector<Vector2f> reversed(square.rbegin(), square.rend());
    const float inside[2] = {0.5f, 0.5f}, right[2] = {1.5f, 0.5f}, high[2] = {0.5f, 2.0f};
    const float top[2] = {0.5f, 1.0f}, bottom[2] = {0.5f, 0.0f};
    for (const auto *ring : {&square, &reversed}) {
        const Vector2f *f = ring->data(), *l = f + ring->size();
        EXPECT_TRUE(pointIn2DPolygon(inside, f, l));
        EXPECT_FALSE(pointIn2DPolygon(right, f, l));
        EXPECT_FALSE(pointIn2DPolygon(high, f, l));
        EXPECT_TRUE(pointIn2DPolygon(top, f, l));
        EXPECT_FALSE(pointIn2DPolygon(bottom, f, l));
        EXPECT_FALSE(pointIn2DPolygon(inside, f, f + 1));
        EXPECT_FALSE(pointIn2DPolygon(inside, f, f));
    }
    EXPECT_FALSE(pointIn2DPolygon(inside, static_cast<const Vector3f *>(nullptr), nullptr));

    // A vertex at p.x above p is counted once; the triangle holds (0, 0.5).
    const Vector3f tri[3] = {{-1, 0, 5}, {1, 0, -5}, {0, 1, 0}};
    const float mid[2] = {0.0f, 0.5f}, apexAbove[2] = {0.0f, 1.5f};
    EXPECT_TRUE(pointIn2DPolygon(mid, tri, tri + 3));
    EXPECT_FALSE(pointIn2DPolygon(apexAbove, tri, tri + 3));
    // The index forms follow the index array: a sub-ring of a larger array, z ignored.
    const Vector3f big[6] = {{9, 9, 1}, {0, 1, 2}, {7, 7, 3}, {1, 1, 4}, {1, 0, 5}, {0, 0, 6}};
    const int idx[4] = {5, 4, 3, 1};
    EXPECT_TRUE(pointIn2DPolygon(inside, big, idx, idx + 4));
    EXPECT_FALSE(pointIn2DPolygon(right, big, idx, idx + 4));
    EXPECT_FALSE(pointIn2DPolygon(inside, big, idx, idx + 1));
    // A self-crossing ring by parity: the centre of a pentagram is outside.
    std::vector<Vector2f> star;
    for (int k = 0; k < 5; ++k)
        star.emplace_back(float(std::cos(k * 4 * M_PI / 5)), float(std::sin(k * 4 * M_PI / 5)));
    const float centre[2] = {0.01f, 0.02f};
    EXPECT_FALSE(pointIn2DPolygon(centre, star.data(), star.data() + 5));
}

TEST(PlaneFigureQueries, PointInPolygonAgreesWithWindingOnRandomRings) {
    std::mt19937 rng(21);
    std::uniform_real_distribution<float> unit(0.0f, 1.0f);
    for (int ringNo = 0; ringNo < 200; ++ringNo) {
        // A star-shaped simple ring: vertices sorted by angle around the origin.
        const int n = 3 + ringNo % 9;
        std::vector<Vector2f> ring;
        std::vector<Vector3f> ring3;
        std::vector<int> idx;
        for (int k = 0; k < n; ++k) {
            const double ang = 2 * M_PI * (k + 0.8 * unit(rng)) / n, r = 0.2 + unit(rng);
            ring.emplace_back(float(r * std::cos(ang)), float(r * std::sin(ang)));
            ring3.emplace_back(ring.back().x(), ring.back().y(), unit(rng));
            idx.push_back(k);
        }
        for (int q = 0; q < 100; ++q) {
            const float p[2] = {2.4f * unit(rng) - 1.2f, 2.4f * unit(rng) - 1.2f};
            const bool expected = insideByWinding(p, ring);
            ASSERT_EQ(pointIn2DPolygon(p, ring.data(), ring.data() + n), expected);
            ASSERT_EQ(pointIn2DPolygon(p, ring3.data(), ring3.data() + n), expected);
            ASSERT_EQ(pointIn2DPolygon(p, ring.data(), idx.data(), idx.data() + n), expected);
            ASSERT_EQ(pointIn2DPolygon(p, ring3.data(), idx.data(), idx.data() + n), expected);
        }
    }
}

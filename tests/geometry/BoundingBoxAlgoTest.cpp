#include "zefcore/geometry/BoundingBoxAlgo.h"

#include "zefcore/geometry/Distances.h"
#include "zefcore/geometry/GeometryTolerances.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

namespace {

using Algo = BoundingBoxAlgo;
const double kRandomTol = 1e-4; // float work against a double reference

BoundingBox box(const Vector3f &lo, const Vector3f &hi) {
    BoundingBox b;
    b.set(lo);
    b.add(hi);
    return b;
}
BoundingBox2D rect(float x0, float y0, float x1, float y1) {
    BoundingBox2D r;
    r.set(box(Vector3f(x0, y0, 0), Vector3f(x1, y1, 0)));
    return r;
}

// A perspective camera looking down -z: 90 degrees, near 1, far 100. Eye depths map to -1..1
// in front; points behind the eye get depths above 1.
const float kA = float(-101.0 / 99.0), kB = float(-200.0 / 99.0), kDepthLimit = 1.0f;
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

} // namespace

// All eight corners move (out may be box); distances go to the nearest corner per axis, not
// to the surface, and borders are inside.
TEST(BoundingBoxAlgo, MovedBoxAndDistances) {
    const float c = float(std::sqrt(0.5));
    MatAff4f rot; // 45 degrees about z
    rot.setValue(c, c, 0, 0, -c, c, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1);
    BoundingBox b = box(Vector3f(-1, -1, -2), Vector3f(1, 1, 3)), out;
    Algo::transformBBox(out, b, rot);
    Algo::transformBBox(b, b, rot);
    EXPECT_NEAR(out.m_max.x(), std::sqrt(2.0), 1e-6);
    EXPECT_TRUE(out.m_min.y() == -out.m_max.x() && b.m_min.equals(out.m_min) && b.m_max.equals(out.m_max));
    const MatAff4f moved = MatAff4f::translate(Vector3f(10, 0, 0));
    const BoundingBox unit = box(Vector3f(0, 0, 0), Vector3f(1, 1, 1));
    EXPECT_EQ(Algo::BBox3DDistance2(unit, MatAff4f(), Vector3f(0.5f, 0.5f, 2)), 1.5f);
    EXPECT_EQ(Algo::BBox3DDistance2(unit, moved, Vector3f(11, 0.5f, 0.5f)), 0.0f);
    const Vector3f qa(0, 0, 0), qb(1, 0, 0), qc(1, 1, 0), qd(0, 1, 0);
    EXPECT_EQ(Algo::QuadDistance2(qa, qb, qc, qd, moved, Vector3f(13, 2, 0)), 5.0f); // the third is nearest
}

// Wholly behind: an empty output stays empty bit for bit, a filled one gains the behind
// rectangle at depth 2^-23. Across: the merged depths reach 2^-23. A corner exactly at the
// limit is in front, just beyond it behind; NaN corners are on no side.
TEST(BoundingBoxAlgo, CameraProjectionBehindAcrossAndDepthLimit) {
    const BoundingBox behind = box(Vector3f(-1, -1, 2), Vector3f(4, 4, 3));
    BoundingBox empty, gathered = box(Vector3f(0, 0, 0.5f), Vector3f(0, 0, 0.5f)), across;
    empty.m_min = Vector3f(1, 5, 6);
    BoundingBox2D r2 = rect(-1, -1, 1, 1);
    EXPECT_TRUE(Algo::cameraProjBBox(empty, behind, kCamera, kDepthLimit) == Algo::BBoxBehind &&
                empty.m_min.equals(Vector3f(1, 5, 6)) && empty.m_max.equals(Vector3f()));
    EXPECT_TRUE(Algo::cameraProjBBox(r2, behind, kCamera, kDepthLimit) == Algo::BBoxBehind &&
                !r2.isInitialized() && r2.m_min.y() == 0 && r2.m_max.y() == 0);
    EXPECT_EQ(Algo::cameraProjBBox(gathered, behind, kCamera, kDepthLimit), Algo::BBoxBehind);
    double lo[3], hi[3];
    projectCorners(lo, hi, behind);
    EXPECT_TRUE(std::fabs(gathered.m_min.x() - lo[0]) < kRandomTol &&
                std::fabs(gathered.m_max.y() - hi[1]) < kRandomTol);
    EXPECT_TRUE(gathered.m_min.z() == kGeomBehindDepth && gathered.m_max.z() == 0.5f);
    EXPECT_EQ(
        Algo::cameraProjBBox(across, box(Vector3f(-1, -1, -5), Vector3f(1, 1, 5)), kCamera, kDepthLimit),
        Algo::BBoxAcross);
    EXPECT_TRUE(across.m_min.z() == kGeomBehindDepth && across.m_max.z() > 0.5f);
    const BoundingBox flat = box(Vector3f(-1, -1, -5), Vector3f(1, 1, -5)),
                      nan = box(Vector3f(NAN, NAN, NAN), Vector3f(NAN, NAN, NAN));
    Vector3f p;
    cameraProjPoint(p, Vector3f(1, 1, -5), kCamera, kDepthLimit);
    EXPECT_EQ(Algo::cameraProjBBox(r2, flat, kCamera, p.z()), Algo::BBoxInFront);
    EXPECT_EQ(Algo::cameraProjBBox(r2, flat, kCamera, std::nextafter(p.z(), 0.0f)), Algo::BBoxBehind);
    EXPECT_EQ(Algo::cameraProjBBox(r2, nan, kCamera, kDepthLimit), Algo::BBoxUnknown);
}

// entirelyInside only for a rectangle wider than float 0.05 (the small way at exactly 0.05);
// corners all behind, or an empty rectangle, meet nothing; clearedFlag is always lowered.
TEST(BoundingBoxAlgo, IntersectionWidthBoundAndBehind) {
    const BoundingBox small = box(Vector3f(0.25f, -0.25f, -5), Vector3f(0.5f, 0.25f, -5)); // x 0.05..0.1
    bool cleared = true, inside = true;
    const auto test = [&](const BoundingBox &b, const BoundingBox2D &r) {
        cleared = true;
        return Algo::BBox3DIntersectBBox2D(b, r, kCamera, kDepthLimit, cleared, inside) && !cleared;
    };
    EXPECT_FALSE(test(box(Vector3f(-1, -1, 2), Vector3f(1, 1, 4)), rect(-1, -1, 1, 1)) || cleared);
    EXPECT_FALSE(test(small, BoundingBox2D()));
    EXPECT_TRUE(test(small, rect(0.05f, -1, 0.1f, 1)) && !inside);
    EXPECT_TRUE(test(small, rect(0.05f, -1, std::nextafter(0.1f, 1.0f), 1)) && inside);
    const Vector3f a(-1, -1, 2), b(1, -1, 2), c(1, 1, 2), d(-1, 1, 2), e(0, 0, -5);
    EXPECT_FALSE(Algo::QuadIntersectBBox2D(a, b, c, d, rect(-1, -1, 1, 1), kCamera, kDepthLimit, cleared));
    EXPECT_TRUE(
        Algo::QuadIntersectBBox2D(a, b, e, d, rect(-0.1f, -0.1f, 0.1f, 0.1f), kCamera, kDepthLimit, cleared));
}

// Boxes in front against the corners projected in double: the projected box, and whether it
// meets a random rectangle (entirely inside only when the rectangle is wide).
TEST(BoundingBoxAlgo, ProjectionAndIntersectionAgreeWithDoubleOnRandomBoxes) {
    std::mt19937 g(32);
    std::uniform_real_distribution<float> xy(-3, 3), depth(-9, -2), r(-1, 1);
    for (int i = 0; i < 2000; ++i) {
        const BoundingBox b = box(Vector3f(xy(g), xy(g), depth(g)), Vector3f(xy(g), xy(g), depth(g)));
        const BoundingBox2D re = rect(r(g), r(g), r(g), r(g));
        double lo[3], hi[3];
        projectCorners(lo, hi, b);
        BoundingBox out;
        ASSERT_EQ(Algo::cameraProjBBox(out, b, kCamera, kDepthLimit), Algo::BBoxInFront);
        for (int k = 0; k < 3; ++k)
            ASSERT_TRUE(std::fabs(out.m_min[k] - lo[k]) < kRandomTol &&
                        std::fabs(out.m_max[k] - hi[k]) < kRandomTol);
        const double gx = std::min(hi[0], double(re.m_max.x())) - std::max(lo[0], double(re.m_min.x()));
        const double gy = std::min(hi[1], double(re.m_max.y())) - std::max(lo[1], double(re.m_min.y()));
        if (std::fabs(gx) < 1e-4 || std::fabs(gy) < 1e-4)
            continue; // too near touching for float work
        bool cleared, inside;
        EXPECT_EQ(Algo::BBox3DIntersectBBox2D(b, re, kCamera, kDepthLimit, cleared, inside),
                  gx > 0 && gy > 0);
        const bool allIn =
            re.m_min.x() <= lo[0] && hi[0] <= re.m_max.x() && re.m_min.y() <= lo[1] && hi[1] <= re.m_max.y();
        EXPECT_TRUE(re.m_max.x() - re.m_min.x() <= 0.06f || inside == allIn) << i;
    }
}

#include "zefcore/geometry/BoundingBoxAlgo.h"

#include "zefcore/geometry/Distances.h"
#include "zefcore/geometry/GeometryTolerances.h"
#include "zefcore/kernel/EnhancedMathFunctions.h"

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
bool same(const BoundingBox &a, const BoundingBox &b) {
    return a.m_min.equals(b.m_min) && a.m_max.equals(b.m_max);
}

// A perspective camera looking down -z: 90 degrees, near 1, far 100. Eye depths map to
// -1..1 in front; points behind the eye get depths above 1.
const float kA = float(-101.0 / 99.0), kB = float(-200.0 / 99.0), kDepthLimit = 1.0f;
const Matrix4f kCamera(1, 0, 0, 0, 0, 1, 0, 0, 0, 0, kA, -1, 0, 0, kB, 0);

// The projection in double, with the signs of a point behind the eye flipped back.
void project(double out[3], const Vector3f &p) {
    const double w = -double(p.z()), s = w < 0 ? -1.0 : 1.0;
    out[0] = s * p.x() / w, out[1] = s * p.y() / w, out[2] = (double(kA) * p.z() + kB) / w;
}
// The rectangle (and depth range) of the eight projected corners.
void projectCorners(double lo[3], double hi[3], const BoundingBox &b) {
    for (int i = 0; i < 3; ++i)
        lo[i] = 1e30, hi[i] = -1e30;
    for (int k = 0; k < 8; ++k) { // the corners in any order
        double q[3];
        project(q, Vector3f(k & 4 ? b.m_max.x() : b.m_min.x(), k & 2 ? b.m_max.y() : b.m_min.y(),
                            k & 1 ? b.m_max.z() : b.m_min.z()));
        for (int i = 0; i < 3; ++i)
            lo[i] = std::min(lo[i], q[i]), hi[i] = std::max(hi[i], q[i]);
    }
}

int g_projections = 0; // the kernel's point projections while CountingKernel is installed
class CountingKernel : public EnhancedMathFunctions {
public:
    void multMatrixVec3f(float *const out, float const *const m, float const *const v) const override {
        ++g_projections;
        EnhancedMathFunctions::multMatrixVec3f(out, m, v);
    }
};

} // namespace

TEST(BoundingBoxAlgo, MovedBoxAndDistances) {
    const float c = float(std::sqrt(0.5));
    MatAff4f rot; // 45 degrees about z
    rot.setValue(c, c, 0, 0, -c, c, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1);
    BoundingBox b = box(Vector3f(-1, -1, -2), Vector3f(1, 1, 3)), out;
    Algo::transformBBox(out, b, rot);
    EXPECT_TRUE(std::fabs(out.m_max.x() - std::sqrt(2.0)) < 1e-6 &&
                std::fabs(out.m_min.y() + std::sqrt(2.0)) < 1e-6);
    EXPECT_TRUE(out.m_min.z() == -2.0f && out.m_max.z() == 3.0f);
    Algo::transformBBox(b, b, rot); // out may be box
    EXPECT_TRUE(same(b, out));

    const MatAff4f identity, moved = MatAff4f::translate(Vector3f(10, 0, 0));
    const BoundingBox unit = box(Vector3f(0, 0, 0), Vector3f(1, 1, 1));
    EXPECT_EQ(Algo::BBox3DDistance2(unit, identity, Vector3f(0.5f, 0.5f, 2)), 1.5f); // to a corner
    EXPECT_EQ(Algo::BBox3DDistance2(unit, moved, Vector3f(11, 0.5f, 0.5f)), 0.0f);   // on a face
    EXPECT_EQ(Algo::BBox3DDistance2(unit, moved, Vector3f(8, 0.25f, 1)), 4.0625f);
    const Vector3f qa(0, 0, 0), qb(1, 0, 0), qc(1, 1, 0), qd(0, 1, 0);
    EXPECT_EQ(Algo::QuadDistance2(qa, qb, qc, qd, moved, Vector3f(13, 2, 0)), 5.0f); // the third is nearest
}

TEST(BoundingBoxAlgo, CameraProjectionFrontBehindAcross) {
    const BoundingBox front = box(Vector3f(-1, -2, -8), Vector3f(3, 1, -4));
    BoundingBox out;
    double lo[3], hi[3];
    EXPECT_EQ(Algo::cameraProjBBox(out, front, kCamera, kDepthLimit), Algo::BBoxInFront);
    projectCorners(lo, hi, front);
    for (int i = 0; i < 3; ++i)
        EXPECT_TRUE(std::fabs(out.m_min[i] - lo[i]) < kRandomTol &&
                    std::fabs(out.m_max[i] - hi[i]) < kRandomTol);

    // Wholly behind: an empty output stays empty, bit for bit; a filled one gains two points.
    const BoundingBox behind = box(Vector3f(-1, -1, 2), Vector3f(4, 4, 3));
    BoundingBox empty, gathered = out;
    empty.m_min = Vector3f(1, 5, 6);
    const BoundingBox before = empty;
    BoundingBox2D r2 = rect(-1, -1, 1, 1);
    EXPECT_EQ(Algo::cameraProjBBox(empty, behind, kCamera, kDepthLimit), Algo::BBoxBehind);
    EXPECT_EQ(Algo::cameraProjBBox(r2, behind, kCamera, kDepthLimit), Algo::BBoxBehind);
    EXPECT_TRUE(same(empty, before) && !r2.isInitialized() && r2.m_min.y() == 0 && r2.m_max.y() == 0);
    EXPECT_EQ(Algo::cameraProjBBox(gathered, behind, kCamera, kDepthLimit), Algo::BBoxBehind);
    projectCorners(lo, hi, behind);
    EXPECT_TRUE(std::fabs(gathered.m_max.x() - hi[0]) < kRandomTol &&
                std::fabs(gathered.m_max.y() - hi[1]) < kRandomTol);
    EXPECT_TRUE(gathered.m_min.z() == kGeomBehindDepth && gathered.m_max.z() == out.m_max.z());

    // Across the limit: front depths all exceed 2^-23, the merged range still reaches it.
    BoundingBox across;
    EXPECT_EQ(
        Algo::cameraProjBBox(across, box(Vector3f(-1, -1, -5), Vector3f(1, 1, 5)), kCamera, kDepthLimit),
        Algo::BBoxAcross);
    EXPECT_TRUE(across.m_min.z() == kGeomBehindDepth && across.m_max.z() > 0.5f);

    // A corner exactly at the limit is in front; just beyond it, behind.
    const BoundingBox flat = box(Vector3f(-1, -1, -5), Vector3f(1, 1, -5));
    Vector3f p;
    cameraProjPoint(p, Vector3f(1, 1, -5), kCamera, kDepthLimit);
    EXPECT_EQ(Algo::cameraProjBBox(r2, flat, kCamera, p.z()), Algo::BBoxInFront);
    EXPECT_EQ(Algo::cameraProjBBox(r2, flat, kCamera, std::nextafter(p.z(), 0.0f)), Algo::BBoxBehind);
    EXPECT_EQ(
        Algo::cameraProjBBox(r2, box(Vector3f(NAN, NAN, NAN), Vector3f(NAN, NAN, NAN)), kCamera, kDepthLimit),
        Algo::BBoxUnknown);
}

TEST(BoundingBoxAlgo, IntersectionTestsCasesWidthBoundAndEarlyExit) {
    const BoundingBox small = box(Vector3f(0.25f, -0.25f, -5), Vector3f(0.5f, 0.25f, -5)); // x 0.05..0.1
    bool cleared = true, inside = true;
    const auto test = [&](const BoundingBox &b, const BoundingBox2D &r) {
        cleared = true;
        const bool result = Algo::BBox3DIntersectBBox2D(b, r, kCamera, kDepthLimit, cleared, inside);
        return result && !cleared;
    };
    EXPECT_TRUE(test(small, rect(0, -1, 0.5f, 1)) && inside);    // all in
    EXPECT_TRUE(test(small, rect(0, -1, 0.075f, 1)) && !inside); // some in
    EXPECT_TRUE(test(box(Vector3f(-10, -10, -5), Vector3f(10, 10, -4)), rect(-0.5f, -0.5f, 0.5f, 0.5f)) &&
                !inside);
    EXPECT_TRUE(!test(small, rect(0.2f, -1, 0.5f, 1)) && !cleared && !inside);           // apart
    EXPECT_FALSE(test(box(Vector3f(-1, -1, 2), Vector3f(1, 1, 4)), rect(-1, -1, 1, 1))); // behind
    EXPECT_FALSE(test(small, BoundingBox2D()));
    // Width exactly float 0.05: the small way, no entirelyInside; the next float: the wide way.
    EXPECT_TRUE(test(small, rect(0.05f, -1, 0.1f, 1)) && !inside);
    EXPECT_TRUE(test(small, rect(0.05f, -1, std::nextafter(0.1f, 1.0f), 1)) && inside);

    const Vector3f a(-1, -1, 2), b(1, -1, 2), c(1, 1, 2), d(-1, 1, 2), e(0, 0, -5);
    EXPECT_TRUE(!Algo::QuadIntersectBBox2D(a, b, c, d, rect(-1, -1, 1, 1), kCamera, kDepthLimit, cleared) &&
                !cleared);
    EXPECT_TRUE(
        Algo::QuadIntersectBBox2D(a, b, e, d, rect(-0.1f, -0.1f, 0.1f, 0.1f), kCamera, kDepthLimit, cleared));

    // The first corner in a small rect settles the answer before any other projection.
    (new CountingKernel)->setDefault();
    g_projections = 0;
    EXPECT_TRUE(test(box(Vector3f(0, 0, -5), Vector3f(1, 1, -4)), rect(-0.01f, -0.01f, 0.01f, 0.01f)));
    EXPECT_EQ(g_projections, 1);
    (new EnhancedMathFunctions)->setDefault();
}

TEST(BoundingBoxAlgo, IntersectionAgreesWithProjectedRectangleOnRandomBoxes) {
    std::mt19937 g(32);
    std::uniform_real_distribution<float> xy(-3, 3), depth(-9, -2), r(-1, 1);
    for (int i = 0; i < 2000; ++i) {
        const BoundingBox b = box(Vector3f(xy(g), xy(g), depth(g)), Vector3f(xy(g), xy(g), depth(g)));
        const BoundingBox2D re = rect(r(g), r(g), r(g), r(g));
        double lo[3], hi[3];
        projectCorners(lo, hi, b);
        const double gx = std::min(hi[0], double(re.m_max.x())) - std::max(lo[0], double(re.m_min.x()));
        const double gy = std::min(hi[1], double(re.m_max.y())) - std::max(lo[1], double(re.m_min.y()));
        if (std::fabs(gx) < 1e-4 || std::fabs(gy) < 1e-4)
            continue; // too near touching for float work
        bool cleared, inside;
        EXPECT_EQ(Algo::BBox3DIntersectBBox2D(b, re, kCamera, kDepthLimit, cleared, inside),
                  gx > 0 && gy > 0);
        const bool allIn =
            re.m_min.x() <= lo[0] && hi[0] <= re.m_max.x() && re.m_min.y() <= lo[1] && hi[1] <= re.m_max.y();
        if (re.m_max.x() - re.m_min.x() > 0.06f) {
            EXPECT_EQ(inside, allIn);
        }
    }
}

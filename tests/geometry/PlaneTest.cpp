#include "zefcore/geometry/Plane.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

namespace {

const Vector3f kSentinel(7.0f, 8.0f, 9.0f);

bool same(const Vector3f &a, const Vector3f &b) { return a.equals(b); }

} // namespace

TEST(Plane, SettersFollowTheStatedExamples) {
    Plane plane;
    plane.setFromNormalPoint(Vector3f(0.0f, 2.0f, 0.0f), Vector3f(7.0f, 3.0f, 9.0f));
    EXPECT_TRUE(same(plane.m_normal, Vector3f(0.0f, 1.0f, 0.0f)));
    EXPECT_EQ(plane.m_d, -3.0f);
    Vector3f p = kSentinel;
    plane.findPoint(p);
    EXPECT_TRUE(same(p, Vector3f(0.0f, 3.0f, 0.0f)));

    plane.setMediator(Vector3f(0.0f, 0.0f, 0.0f), Vector3f(0.0f, 0.0f, 2.0f));
    EXPECT_TRUE(same(plane.m_normal, Vector3f(0.0f, 0.0f, 1.0f)));
    EXPECT_EQ(plane.m_d, -1.0f);

    // Too short: the old normal stays and goes through the new point / the midpoint.
    plane.setFromNormalPoint(Vector3f(0.0f, 0.0f, 0.0f), Vector3f(1.0f, 1.0f, 4.0f));
    EXPECT_TRUE(same(plane.m_normal, Vector3f(0.0f, 0.0f, 1.0f)));
    EXPECT_EQ(plane.m_d, -4.0f);
    plane.setMediator(Vector3f(1.0f, 2.0f, 6.0f), Vector3f(1.0f, 2.00005f, 6.0f));
    EXPECT_TRUE(same(plane.m_normal, Vector3f(0.0f, 0.0f, 1.0f)));
    EXPECT_EQ(plane.m_d, -6.0f);

    plane.setNormal(Vector3f(0.0f, std::numeric_limits<float>::quiet_NaN(), 0.0f));
    EXPECT_TRUE(std::isnan(plane.m_normal.y())); // NaN is not within the bound
}

TEST(Plane, FindPointRoundsTheSquaredLengthAndK) {
    std::mt19937 rng(11);
    std::uniform_real_distribution<float> dist(-3.0f, 3.0f);
    int unroundedDiffers = 0;
    for (int i = 0; i < 2000; ++i) {
        Plane plane;
        const float x = dist(rng), y = dist(rng), z = dist(rng), d = dist(rng);
        plane.m_normal = Vector3f(x, y, z); // not a unit vector: no normalisation here
        plane.m_d = d;
        const double nnD = (double(y) * y + double(x) * x) + double(z) * z;
        const float k = static_cast<float>(-double(d) / static_cast<float>(nnD));
        Vector3f p;
        plane.findPoint(p);
        ASSERT_EQ(p.x(), float(double(x) * k));
        ASSERT_EQ(p.y(), float(double(y) * k));
        ASSERT_EQ(p.z(), float(double(z) * k));
        if (static_cast<float>(-double(d) / nnD) != k)
            ++unroundedDiffers;
    }
    EXPECT_GT(unroundedDiffers, 0);
}

TEST(Plane, FindUVAxisGivesARightHandedFrameInThePlane) {
    Plane plane;
    ZEFLine u, v;
    plane.findUVAxis(u, v);
    EXPECT_TRUE(same(u.m_dir, Vector3f(0.0f, -1.0f, 0.0f)));
    EXPECT_TRUE(same(v.m_dir, Vector3f(1.0f, 0.0f, 0.0f)));
    EXPECT_TRUE(same(u.m_origin, Vector3f(0.0f, 0.0f, 0.0f)));

    // |n.y| is smallest: the helper axis is y, so U = y x n.
    plane.m_normal = Vector3f(0.6f, 0.0f, 0.8f);
    plane.findUVAxis(u, v);
    EXPECT_TRUE(same(u.m_dir, ZEFLine(Vector3f(), Vector3f(0.8f, 0.0f, -0.6f), true).m_dir));

    const double kOrthoTolerance = 1e-6;
    std::mt19937 rng(5);
    std::uniform_real_distribution<float> dist(-1.0f, 1.0f);
    for (int i = 0; i < 500; ++i) {
        plane.setFromNormalPoint(Vector3f(dist(rng), dist(rng), dist(rng)),
                                 Vector3f(dist(rng), dist(rng), dist(rng)));
        u.m_origin = v.m_origin = kSentinel;
        plane.findUVAxis(u, v);
        Vector3f o;
        plane.findPoint(o);
        ASSERT_TRUE(same(u.m_origin, o) && same(v.m_origin, o));
        const Vector3f &n = plane.m_normal;
        EXPECT_NEAR(u.m_dir.dotD(n), 0.0, kOrthoTolerance);
        EXPECT_NEAR(v.m_dir.dotD(n), 0.0, kOrthoTolerance);
        EXPECT_NEAR(u.m_dir.dotD(v.m_dir), 0.0, kOrthoTolerance);
        EXPECT_NEAR(u.m_dir.norm(), 1.0, kOrthoTolerance);
        EXPECT_GT(u.m_dir.cross(v.m_dir).dotD(n), 0.99); // right-handed
    }
}

#include "zefcore/geometry/Plane.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

TEST(Plane, SettersAndFindPoint) {
    Plane plane;
    plane.setFromNormalPoint(Vector3f(0, 2, 0), Vector3f(7, 3, 9));
    EXPECT_TRUE(plane.m_normal.equals(Vector3f(0, 1, 0)) && plane.m_d == -3.0f);
    Vector3f p(7, 8, 9);
    plane.findPoint(p);
    EXPECT_TRUE(p.equals(Vector3f(0, 3, 0)));
    plane.setMediator(Vector3f(0, 0, 0), Vector3f(0, 0, 2));
    EXPECT_TRUE(plane.m_normal.equals(Vector3f(0, 0, 1)) && plane.m_d == -1.0f);
    // Too short: the old normal stays and goes through the new point / the midpoint.
    plane.setFromNormalPoint(Vector3f(0, 0, 0), Vector3f(1, 1, 4));
    EXPECT_TRUE(plane.m_normal.equals(Vector3f(0, 0, 1)) && plane.m_d == -4.0f);
    plane.setMediator(Vector3f(1, 2, 6), Vector3f(1, 2.00005f, 6));
    EXPECT_TRUE(plane.m_normal.equals(Vector3f(0, 0, 1)) && plane.m_d == -6.0f);
    plane.setNormal(Vector3f(0, std::numeric_limits<float>::quiet_NaN(), 0));
    EXPECT_TRUE(std::isnan(plane.m_normal.y())); // NaN is not within the bound

    // findPoint rounds n . n to float before k: a non-unit normal where that shows.
    const float x = 5.5f, y = 6.0f, z = 4.3f, d = 9.3f;
    plane.m_normal = Vector3f(x, y, z);
    plane.m_d = d;
    const double nn = (double(y) * y + double(x) * x) + double(z) * z;
    const float k = float(-double(d) / float(nn));
    ASSERT_NE(k, float(-double(d) / nn));
    plane.findPoint(p);
    EXPECT_TRUE(p.equals(Vector3f(float(double(x) * k), float(double(y) * k), float(double(z) * k))));
}

TEST(Plane, FindUVAxisGivesARightHandedFrameInThePlane) {
    Plane plane;
    ZEFLine u, v;
    plane.findUVAxis(u, v);
    EXPECT_TRUE(u.m_dir.equals(Vector3f(0, -1, 0)) && v.m_dir.equals(Vector3f(1, 0, 0)));
    plane.m_normal = Vector3f(0.6f, 0.0f, 0.8f); // |n.y| smallest: U = y x n
    plane.findUVAxis(u, v);
    EXPECT_TRUE(u.m_dir.equals(ZEFLine(Vector3f(), Vector3f(0.8f, 0, -0.6f), true).m_dir));

    const double kOrthoTolerance = 1e-6;
    std::mt19937 rng(5);
    std::uniform_real_distribution<float> dist(-1.0f, 1.0f);
    for (int i = 0; i < 500; ++i) {
        plane.setFromNormalPoint(Vector3f(dist(rng), dist(rng), dist(rng)), Vector3f(dist(rng), 0, 1));
        u.m_origin = v.m_origin = Vector3f(7, 8, 9);
        plane.findUVAxis(u, v);
        Vector3f o;
        plane.findPoint(o);
        ASSERT_TRUE(u.m_origin.equals(o) && v.m_origin.equals(o));
        const Vector3f &n = plane.m_normal;
        EXPECT_NEAR(u.m_dir.dotD(n), 0.0, kOrthoTolerance);
        EXPECT_NEAR(v.m_dir.dotD(n), 0.0, kOrthoTolerance);
        EXPECT_NEAR(u.m_dir.dotD(v.m_dir), 0.0, kOrthoTolerance);
        EXPECT_GT(u.m_dir.cross(v.m_dir).dotD(n), 1.0 - kOrthoTolerance); // right-handed, unit
    }
}

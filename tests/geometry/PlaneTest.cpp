#include "zefcore/geometry/Det2.h"
#include "zefcore/geometry/PlaneProjector.h"

#include <gtest/gtest.h>

#include <cmath>

// a*a - 1 = 2^-11 + 2^-24 needs the products in double; float products would lose the 2^-24.
TEST(Det2, ProductsAreNotRoundedBeforeTheDifference) {
    const float a = 1.0f + 1.0f / 4096.0f;
    EXPECT_EQ(det2(a, 1.0f, 1.0f, a), 1.0f / 2048.0f + 1.0f / 16777216.0f);
}

// Lengths up to the double 0.0001 are refused, the old value staying (the float 1e-4 lies
// below it, the next float above); NaN is accepted.
TEST(ZEFLine, SetDirAndSetNormalBoundAndNaN) {
    const Vector3f p(0, 2, 0), old(7, 8, 9);
    EXPECT_TRUE(ZEFLine(p, p, false).m_dir.equals(Vector3f()) &&
                ZEFLine(p, Vector3f(0, -2, 0), false).m_dir.equals(Vector3f(0, -1, 0)));
    for (const float s : {1e-4f, std::nextafter(1e-4f, 1.0f), NAN}) {
        ZEFLine line;
        Plane plane;
        line.m_dir = plane.m_normal = old;
        line.setDir(Vector3f(0, s, 0));
        plane.setNormal(Vector3f(0, s, 0));
        const Vector3f want = s == 1e-4f ? old : Vector3f(0, 1, 0);
        EXPECT_TRUE(s != s ? std::isnan(line.m_dir.y()) && std::isnan(plane.m_normal.y())
                           : line.m_dir.equals(want) && plane.m_normal.equals(want))
            << s;
    }
}

// findPoint rounds n.n to float before k = -d / n.n; the mediator goes through the midpoint;
// findUVAxis crosses the axis of the smallest normal component (x on a tie) with n, then n
// with that.
TEST(Plane, FindPointMediatorAndUVFrame) {
    Plane plane;
    const float x = 5.5f, y = 6.0f, z = 4.3f, d = 9.3f;
    plane.m_normal = Vector3f(x, y, z), plane.m_d = d;
    const float k = float(-double(d) / float((double(y) * y + double(x) * x) + double(z) * z));
    Vector3f p;
    plane.findPoint(p);
    EXPECT_TRUE(p.equals(Vector3f(float(double(x) * k), float(double(y) * k), float(double(z) * k))));
    plane.setMediator(Vector3f(0, 0, 0), Vector3f(0, 0, 2));
    EXPECT_TRUE(plane.m_normal.equals(Vector3f(0, 0, 1)) && plane.m_d == -1.0f);
    ZEFLine u, v;
    plane.findUVAxis(u, v);
    EXPECT_TRUE(u.m_dir.equals(Vector3f(0, -1, 0)) && v.m_dir.equals(Vector3f(1, 0, 0)) &&
                u.m_origin.equals(Vector3f(0, 0, 1)) && v.m_origin.equals(u.m_origin));
    const Vector3f normals[3] = {{0.6f, 0, 0.8f}, {0.8f, 0.6f, 0}, {0.6f, 0.8f, 0}},
                   axes[3] = {{0, 1, 0}, {0, 0, 1}, {0, 0, 1}};
    for (int i = 0; i < 3; ++i) {
        plane.m_normal = normals[i];
        plane.findUVAxis(u, v);
        EXPECT_TRUE(u.m_dir.equals(ZEFLine(Vector3f(), axes[i].cross(normals[i]), true).m_dir)) << i;
    }
}

TEST(PlaneProjector, FailureLeavesTheOutputUntouched) {
    const Vector3f sentinel(-777.0f, -777.0f, -777.0f);
    Vector3f out = sentinel;
    PlaneProjector projector; // the plane z = 0
    EXPECT_TRUE(!projector.project(out, ZEFLine(Vector3f(0, 0, 1), Vector3f(1, 0, 0), true)) &&
                out.equals(sentinel));
    Plane x5;
    x5.setFromNormalPoint(Vector3f(2, 0, 0), Vector3f(5, 0, 0));
    projector.setPlane(x5);
    EXPECT_TRUE(projector.project(out, ZEFLine(Vector3f(0, 1, 1), Vector3f(1, 0, 0), true)) &&
                out.equals(Vector3f(5, 1, 1)));
}

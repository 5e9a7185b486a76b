#include "zefcore/geometry/ZEFLine.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

TEST(ZEFLine, ConstructionAndStatedDirections) {
    const Vector3f p(1, 2, 3);
    const ZEFLine same(p, p, false); // refused: stays at the constructor's zero
    EXPECT_TRUE(same.m_origin.equals(p) && same.m_dir.equals(Vector3f(0, 0, 0)));
    EXPECT_TRUE(ZEFLine(p, Vector3f(1, -1, 3), false).m_dir.equals(Vector3f(0, -1, 0)));
    EXPECT_TRUE(ZEFLine(p, Vector3f(0, -3, 0), true).m_dir.equals(Vector3f(0, -1, 0)));
    ZEFLine line;
    line.setDir(Vector3f(std::numeric_limits<float>::quiet_NaN(), 0, 0));
    EXPECT_TRUE(std::isnan(line.m_dir.x())); // NaN is not within the bound
}

TEST(ZEFLine, SetDirBoundAndRounding) {
    // Lengths around the bound: refused up to the double 0.0001, which the float
    // nearest 0.0001 lies below; the next float is accepted.
    int refused = 0, accepted = 0;
    float s = std::nextafter(0.0001f, 0.0f);
    for (int i = 0; i < 6; ++i, s = std::nextafter(s, 1.0f)) {
        const Vector3f d(0.0f, s, 0.0f);
        ZEFLine line;
        line.m_dir = Vector3f(7, 8, 9); // sentinel
        line.setDir(d);
        const bool refuse = double(d.norm()) <= 0.0001;
        (refuse ? refused : accepted) += 1;
        EXPECT_TRUE(line.m_dir.equals(refuse ? Vector3f(7, 8, 9) : Vector3f(0, 1, 0))) << s;
    }
    EXPECT_TRUE(refused > 0 && accepted > 0);

    // Reciprocal of the rounded length, then products: other bits than a division here.
    const float v[3] = {-6.2f, -2.2f, -3.1f};
    ZEFLine line;
    line.setDir(Vector3f(v));
    const float n2 = float((double(v[1]) * v[1] + double(v[0]) * v[0]) + double(v[2]) * v[2]);
    const float n = float(std::sqrt(double(n2))), r = float(1.0 / n);
    for (int k = 0; k < 3; ++k)
        EXPECT_TRUE(line.m_dir[k] == float(double(v[k]) * r) && line.m_dir[k] != float(double(v[k]) / n));
}

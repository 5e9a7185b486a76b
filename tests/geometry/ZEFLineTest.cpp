#include "zefcore/geometry/ZEFLine.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>

namespace {

std::uint32_t bits(float f) {
    std::uint32_t u;
    std::memcpy(&u, &f, sizeof u);
    return u;
}

// Independent: length with the square rounded to float, reciprocal rounded, products rounded.
Vector3f unitByReciprocal(float x, float y, float z) {
    const float n2 = static_cast<float>((double(y) * y + double(x) * x) + double(z) * z);
    const float n = static_cast<float>(std::sqrt(double(n2)));
    const float r = static_cast<float>(1.0 / n);
    return Vector3f(float(double(x) * r), float(double(y) * r), float(double(z) * r));
}

} // namespace

TEST(ZEFLine, ConstructionFromPointsAndDirections) {
    const Vector3f p(1.0f, 2.0f, 3.0f);
    const ZEFLine same(p, p, false);
    EXPECT_TRUE(same.m_origin.equals(p));
    EXPECT_TRUE(same.m_dir.equals(Vector3f(0.0f, 0.0f, 0.0f)));

    ZEFLine line;
    line.setDir(Vector3f(0.0f, 0.0f, 0.0f));
    EXPECT_TRUE(line.m_dir.equals(Vector3f(0.0f, 0.0f, 1.0f)));
    line.setDir(Vector3f(0.0f, 0.0f, 5.0f));
    EXPECT_TRUE(line.m_dir.equals(Vector3f(0.0f, 0.0f, 1.0f)));
    line.setDir(Vector3f(0.0002f, 0.0f, 0.0f));
    EXPECT_TRUE(line.m_dir.equals(Vector3f(1.0f, 0.0f, 0.0f)));
    line.setDir(Vector3f(0.0f, 0.00005f, 0.0f));
    EXPECT_TRUE(line.m_dir.equals(Vector3f(1.0f, 0.0f, 0.0f)));

    const ZEFLine byDir(p, Vector3f(0.0f, -3.0f, 0.0f), true);
    EXPECT_TRUE(byDir.m_dir.equals(Vector3f(0.0f, -1.0f, 0.0f)));
    const ZEFLine byPoint(p, Vector3f(1.0f, -1.0f, 3.0f), false);
    EXPECT_TRUE(byPoint.m_dir.equals(Vector3f(0.0f, -1.0f, 0.0f)));
}

TEST(ZEFLine, SetDirRefusesLengthsUpToTheDoubleBound) {
    const double bound = 0.0001; // the double constant, not its float
    int refused = 0;
    int accepted = 0;
    float s = std::nextafter(0.0001f, 0.0f);
    for (int i = 0; i < 8; ++i, s = std::nextafter(s, 1.0f)) {
        const Vector3f d(0.0f, s, 0.0f);
        ZEFLine line;
        line.m_dir = Vector3f(7.0f, 8.0f, 9.0f); // sentinel
        line.setDir(d);
        if (double(d.norm()) <= bound) {
            ++refused;
            EXPECT_TRUE(line.m_dir.equals(Vector3f(7.0f, 8.0f, 9.0f))) << s;
        } else {
            ++accepted;
            EXPECT_TRUE(line.m_dir.equals(Vector3f(0.0f, 1.0f, 0.0f))) << s;
        }
    }
    EXPECT_GT(refused, 0); // the float nearest 0.0001 lies below the bound
    EXPECT_GT(accepted, 0);

    ZEFLine nan;
    nan.setDir(Vector3f(std::numeric_limits<float>::quiet_NaN(), 0.0f, 0.0f));
    EXPECT_TRUE(std::isnan(nan.m_dir.x())); // NaN is not within the bound
}

TEST(ZEFLine, SetDirRoundsAsReciprocalTimesElements) {
    std::mt19937 rng(17);
    std::uniform_real_distribution<float> dist(-100.0f, 100.0f);
    int differsFromDivision = 0;
    for (int i = 0; i < 2000; ++i) {
        const float x = dist(rng), y = dist(rng), z = dist(rng);
        ZEFLine line;
        line.setDir(Vector3f(x, y, z));
        const Vector3f ref = unitByReciprocal(x, y, z);
        ASSERT_EQ(bits(line.m_dir.x()), bits(ref.x()));
        ASSERT_EQ(bits(line.m_dir.y()), bits(ref.y()));
        ASSERT_EQ(bits(line.m_dir.z()), bits(ref.z()));
        const float n = Vector3f(x, y, z).norm();
        if (bits(float(double(x) / n)) != bits(ref.x()))
            ++differsFromDivision;
    }
    EXPECT_GT(differsFromDivision, 0); // the inputs tell the two roundings apart
}

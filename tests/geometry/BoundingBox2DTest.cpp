#include "zefcore/geometry/BoundingBox2D.h"

#include <gtest/gtest.h>

#include <random>

TEST(BoundingBox2D, EmptyMarkerAndSetFromABox) {
    BoundingBox2D r;
    EXPECT_TRUE(!r.isInitialized() && r.getMin().x() == 1.0f && r.getMin().y() == 0.0f);
    EXPECT_TRUE(r.getMax().x() == 0.0f && r.getMax().y() == 0.0f && !r.contains(Vector3f(0.5f, 0, 0)));
    BoundingBox box;
    box.m_min.y() = 3.0f; // an empty box is copied as empty, y included
    r.set(box);
    EXPECT_TRUE(!r.isInitialized() && r.m_min.y() == 3.0f);
    box.set(Vector3f(-1, 2, 0));
    box.add(Vector3f(3, 4, 0));
    r.set(box);
    r.clear(); // x only
    EXPECT_TRUE(r.m_min.x() == 1.0f && r.m_max.x() == 0.0f && r.m_min.y() == 2.0f && r.m_max.y() == 4.0f);
}

// Random rectangles on integer corners (touching is frequent), some empty or cleared,
// against the closed-interval model of intersect and contains; z is ignored.
TEST(BoundingBox2D, RandomRectanglesMatchClosedIntervals) {
    std::mt19937 rng(8);
    auto coord = [&] { return float(int(rng() % 9) - 4); };
    for (int i = 0; i < 20000; ++i) {
        BoundingBox2D r[2];
        float lo[2][2], hi[2][2];
        bool empty[2];
        for (int k = 0; k < 2; ++k) {
            BoundingBox box;
            box.set(Vector3f(coord(), coord(), coord()));
            box.add(Vector3f(coord(), coord(), coord()));
            const unsigned kind = rng() % 8; // 0: from a cleared box, 1: cleared (y stays), else filled
            if (kind == 0)
                box.clear();
            r[k].set(box);
            if (kind == 1)
                r[k].clear();
            empty[k] = kind < 2;
            for (int a = 0; a < 2; ++a)
                lo[k][a] = box.m_min[a], hi[k][a] = box.m_max[a];
        }
        bool overlap = !empty[0] && !empty[1], inside = !empty[0];
        const Vector3f p(coord(), coord(), float(rng()));
        for (int a = 0; a < 2; ++a) {
            overlap = overlap && lo[0][a] <= hi[1][a] && lo[1][a] <= hi[0][a];
            inside = inside && lo[0][a] <= p[a] && p[a] <= hi[0][a];
        }
        ASSERT_EQ(r[0].isInitialized(), !empty[0]);
        ASSERT_TRUE(r[0].intersect(r[1]) == overlap && r[1].intersect(r[0]) == overlap) << i;
        ASSERT_EQ(r[0].intersect(r[0]), !empty[0]);
        ASSERT_EQ(r[0].contains(p), inside) << i;
    }
}

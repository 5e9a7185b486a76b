#include "zefcore/geometry/BoundingBox2D.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

BoundingBox2D rect(float x0, float y0, float x1, float y1) {
    BoundingBox box;
    box.set(Vector3f(x0, y0, 0.0f));
    box.add(Vector3f(x1, y1, 0.0f));
    BoundingBox2D r;
    r.set(box);
    return r;
}

} // namespace

TEST(BoundingBox2D, MarkerSetAndContains) {
    BoundingBox2D r;
    EXPECT_FALSE(r.isInitialized());
    EXPECT_EQ(r.getMin().x(), 1.0f);
    EXPECT_EQ(r.getMin().y(), 0.0f);
    EXPECT_EQ(r.getMax().x(), 0.0f);

    BoundingBox emptyBox;
    emptyBox.m_min.y() = 3.0f;
    r = rect(0, 0, 1, 1);
    r.set(emptyBox);
    EXPECT_FALSE(r.isInitialized());
    EXPECT_EQ(r.m_min.y(), 3.0f);

    r = rect(-1, 2, 3, 4);
    EXPECT_TRUE(r.contains(Vector3f(-1.0f, 4.0f, 1e30f))); // a corner; z ignored
    EXPECT_FALSE(r.contains(Vector3f(-1.0f, std::nextafter(4.0f, 5.0f), 0.0f)));
    r.clear();
    EXPECT_EQ(r.m_min.y(), 2.0f);
    EXPECT_EQ(r.m_max.y(), 4.0f);
    EXPECT_FALSE(r.contains(Vector3f(0.5f, 3.0f, 0.0f)));
}

TEST(BoundingBox2D, IntersectCountsTouchingAndRefusesEmpty) {
    const BoundingBox2D a = rect(0, 0, 1, 1);
    EXPECT_TRUE(a.intersect(rect(1, 1, 2, 2)));
    EXPECT_TRUE(rect(1, 1, 2, 2).intersect(a));
    EXPECT_FALSE(a.intersect(rect(1.5f, 0, 2, 1)));
    EXPECT_FALSE(a.intersect(rect(std::nextafter(1.0f, 2.0f), 0, 2, 1)));
    EXPECT_FALSE(a.intersect(rect(0, -2, 1, std::nextafter(0.0f, -1.0f))));
    EXPECT_FALSE(a.intersect(rect(0, std::nextafter(1.0f, 2.0f), 1, 3))); // above
    EXPECT_FALSE(rect(0, 2, 1, 3).intersect(a));
    EXPECT_FALSE(rect(-2, 0, std::nextafter(0.0f, -1.0f), 1).intersect(a)); // left
    EXPECT_TRUE(a.intersect(rect(-5, -5, 5, 5))); // around, no corner inside
    EXPECT_TRUE(a.intersect(rect(0.5f, -5, 0.6f, 5)));

    BoundingBox2D empty;
    EXPECT_FALSE(a.intersect(empty));
    EXPECT_FALSE(empty.intersect(a));
    EXPECT_FALSE(empty.intersect(empty));
    // An empty marker whose y range would overlap still refuses.
    BoundingBox2D cleared = rect(0, 0, 1, 1);
    cleared.clear();
    EXPECT_FALSE(cleared.intersect(a));
    EXPECT_FALSE(a.intersect(cleared));
}

#include "zefcore/geometry/BoundingBox2D.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

BoundingBox2D rect(float x0, float y0, float x1, float y1) {
    BoundingBox box;
    box.set(Vector3f(x0, y0, 0));
    box.add(Vector3f(x1, y1, 0));
    BoundingBox2D r;
    r.set(box);
    return r;
}

} // namespace

TEST(BoundingBox2D, MarkerSetAndContains) {
    BoundingBox2D r;
    EXPECT_TRUE(!r.isInitialized() && r.getMin().x() == 1.0f && r.getMin().y() == 0.0f && r.getMax().x() == 0.0f);
    BoundingBox emptyBox;
    emptyBox.m_min.y() = 3.0f;
    r = rect(0, 0, 1, 1);
    r.set(emptyBox);
    EXPECT_TRUE(!r.isInitialized() && r.m_min.y() == 3.0f);
    r = rect(-1, 2, 3, 4);
    EXPECT_TRUE(r.contains(Vector3f(-1, 4, 1e30f))); // a corner; z ignored
    EXPECT_FALSE(r.contains(Vector3f(-1, std::nextafter(4.0f, 5.0f), 0)));
    r.clear();
    EXPECT_TRUE(r.m_min.y() == 2.0f && r.m_max.y() == 4.0f && !r.contains(Vector3f(0.5f, 3, 0)));
}

TEST(BoundingBox2D, IntersectCountsTouchingAndRefusesEmpty) {
    const BoundingBox2D a = rect(0, 0, 1, 1);
    const float above1 = std::nextafter(1.0f, 2.0f), below0 = std::nextafter(0.0f, -1.0f);
    EXPECT_TRUE(a.intersect(rect(1, 1, 2, 2)) && rect(1, 1, 2, 2).intersect(a)); // a corner
    EXPECT_TRUE(a.intersect(rect(-5, -5, 5, 5)) && a.intersect(rect(0.5f, -5, 0.6f, 5)));
    EXPECT_FALSE(a.intersect(rect(1.5f, 0, 2, 1)) || a.intersect(rect(above1, 0, 2, 1)));
    EXPECT_FALSE(a.intersect(rect(0, -2, 1, below0)) || a.intersect(rect(0, above1, 1, 3)));
    EXPECT_FALSE(rect(-2, 0, below0, 1).intersect(a) || rect(0, 2, 1, 3).intersect(a));
    // Empty on either side, also where the marker's numbers would overlap.
    BoundingBox2D empty, cleared = rect(0, 0, 1, 1);
    cleared.clear();
    EXPECT_FALSE(a.intersect(empty) || empty.intersect(a) || empty.intersect(empty));
    EXPECT_FALSE(cleared.intersect(a) || a.intersect(cleared));
}

#include "zefcore/geometry/BoundingBox.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace {

bool same(const Vector3f &a, const Vector3f &b) { return a.equals(b); }

} // namespace

TEST(BoundingBox, EmptyMarkerAndFirstPoints) {
    BoundingBox box;
    EXPECT_FALSE(box.isInitialized());
    EXPECT_EQ(box.getMin().x(), 1.0f);
    EXPECT_EQ(box.getMax().x(), 0.0f);
    EXPECT_FALSE(box.contains(Vector3f(0.5f, 0.0f, 0.0f)));

    box.add(Vector3f(5.0f, 6.0f, 7.0f)); // the zeros of y and z take no part
    EXPECT_TRUE(same(box.m_min, Vector3f(5, 6, 7)) && same(box.m_max, Vector3f(5, 6, 7)));
    EXPECT_TRUE(box.isInitialized());
    box.add(Vector3f(1.0f, 9.0f, 7.0f));
    EXPECT_TRUE(same(box.m_min, Vector3f(1, 6, 7)) && same(box.m_max, Vector3f(5, 9, 7)));
    EXPECT_TRUE(box.contains(Vector3f(1, 9, 7)) && box.contains(Vector3f(5, 6, 7)));
    EXPECT_FALSE(box.contains(Vector3f(std::nextafter(5.0f, 6.0f), 6, 7)));

    // clear touches x only; the box contains nothing whatever y and z hold.
    box.clear();
    EXPECT_FALSE(box.isInitialized());
    EXPECT_TRUE(same(box.m_min, Vector3f(1, 6, 7)) && same(box.m_max, Vector3f(0, 9, 7)));
    EXPECT_FALSE(box.contains(Vector3f(0.5f, 7.0f, 7.0f)));
    box.m_min.y() = 100.0f; // y out of order: still initialised, x alone decides
    box.m_max.x() = 1.0f;
    EXPECT_TRUE(box.isInitialized());

    // The fast path does not test the state: the marker counts as coordinates.
    BoundingBox fast;
    fast.addInitialized(Vector3f(5.0f, 6.0f, -7.0f));
    EXPECT_TRUE(same(fast.m_min, Vector3f(1, 0, -7)) && same(fast.m_max, Vector3f(5, 6, 0)));
    BoundingBox below; // a coordinate below m_min moves m_min only
    below.addInitialized(Vector3f(0.5f, 0.0f, 0.0f));
    EXPECT_TRUE(same(below.m_min, Vector3f(0.5f, 0, 0)) && same(below.m_max, Vector3f(0, 0, 0)));
}

TEST(BoundingBox, AddingBoxes) {
    BoundingBox a, empty;
    a.set(Vector3f(1, 2, 3));
    a.add(Vector3f(4, 5, 6));
    BoundingBox copy = a;
    copy.add(empty);
    EXPECT_TRUE(same(copy.m_min, a.m_min) && same(copy.m_max, a.m_max));
    copy.add(copy); // aliasing
    EXPECT_TRUE(same(copy.m_min, a.m_min) && same(copy.m_max, a.m_max));

    BoundingBox target;
    target.m_min.y() = -50.0f; // leftovers of an empty box are replaced
    target.add(a);
    EXPECT_TRUE(same(target.m_min, a.m_min) && same(target.m_max, a.m_max));
    BoundingBox emptyCopy;
    emptyCopy.set(Vector3f(9, 9, 9));
    emptyCopy.set(empty);
    EXPECT_FALSE(emptyCopy.isInitialized());
}

TEST(BoundingBox, RandomSequencesMatchAModel) {
    std::mt19937 rng(4);
    std::uniform_real_distribution<float> coord(-50.0f, 50.0f);
    std::uniform_int_distribution<int> op(0, 9);
    BoundingBox box;
    bool modelEmpty = true;
    float lo[3] = {0, 0, 0}, hi[3] = {0, 0, 0};
    auto include = [&](const Vector3f &p, const Vector3f &q) {
        for (int i = 0; i < 3; ++i) {
            lo[i] = modelEmpty ? p[i] : std::min(lo[i], p[i]);
            hi[i] = modelEmpty ? q[i] : std::max(hi[i], q[i]);
        }
        modelEmpty = false;
    };
    for (int step = 0; step < 20000; ++step) {
        const int o = op(rng);
        const Vector3f p(coord(rng), coord(rng), coord(rng));
        if (o == 0) {
            box.clear();
            modelEmpty = true;
        } else if (o <= 2) {
            BoundingBox other;
            if (o == 2) {
                other.add(p);
                other.add(Vector3f(coord(rng), coord(rng), coord(rng)));
                include(other.m_min, other.m_max);
            }
            box.add(other);
        } else {
            box.add(p);
            include(p, p);
        }
        ASSERT_EQ(box.isInitialized(), !modelEmpty);
        if (modelEmpty)
            continue;
        for (int i = 0; i < 3; ++i)
            ASSERT_TRUE(box.m_min[i] == lo[i] && box.m_max[i] == hi[i]) << step;
        const bool inside = p.x() >= lo[0] && p.x() <= hi[0] && p.y() >= lo[1] && p.y() <= hi[1] &&
                            p.z() >= lo[2] && p.z() <= hi[2];
        ASSERT_EQ(box.contains(p), inside);
    }
}

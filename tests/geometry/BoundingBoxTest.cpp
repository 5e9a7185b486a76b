#include "zefcore/geometry/BoundingBox.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

namespace {

bool spans(const BoundingBox &box, const Vector3f &lo, const Vector3f &hi) {
    return box.m_min.equals(lo) && box.m_max.equals(hi);
}

} // namespace

TEST(BoundingBox, EmptyMarkerAndStatedCases) {
    BoundingBox box, empty;
    EXPECT_TRUE(!box.isInitialized() && box.getMin().x() == 1.0f && box.getMax().x() == 0.0f);
    box.add(Vector3f(5, 6, 7)); // the zeros of y and z take no part
    EXPECT_TRUE(spans(box, Vector3f(5, 6, 7), Vector3f(5, 6, 7)) && box.isInitialized());
    box.add(Vector3f(1, 9, 7));
    EXPECT_TRUE(spans(box, Vector3f(1, 6, 7), Vector3f(5, 9, 7)));
    EXPECT_TRUE(box.contains(Vector3f(1, 9, 7)) && box.contains(Vector3f(5, 6, 7)));
    EXPECT_FALSE(box.contains(Vector3f(std::nextafter(5.0f, 6.0f), 6, 7)));
    box.add(empty);
    box.add(box); // aliasing
    EXPECT_TRUE(spans(box, Vector3f(1, 6, 7), Vector3f(5, 9, 7)));
    BoundingBox target; // leftovers of an empty box are replaced by add(box)
    target.m_min.y() = -50.0f;
    target.add(box);
    EXPECT_TRUE(spans(target, Vector3f(1, 6, 7), Vector3f(5, 9, 7)));
    target.set(empty);
    EXPECT_FALSE(target.isInitialized());

    box.clear(); // x only; the box then contains nothing whatever y and z hold
    EXPECT_TRUE(spans(box, Vector3f(1, 6, 7), Vector3f(0, 9, 7)) && !box.isInitialized());
    EXPECT_FALSE(box.contains(Vector3f(0.5f, 7, 7)));
    box.m_min.y() = 100.0f; // y out of order: x alone decides
    box.m_max.x() = 1.0f;
    EXPECT_TRUE(box.isInitialized());

    // The fast path does not test the state: the marker counts as coordinates.
    BoundingBox fast, below;
    fast.addInitialized(Vector3f(5, 6, -7));
    EXPECT_TRUE(spans(fast, Vector3f(1, 0, -7), Vector3f(5, 6, 0)));
    below.addInitialized(Vector3f(0.5f, 0, 0)); // below m_min: m_min moves, m_max does not
    EXPECT_TRUE(spans(below, Vector3f(0.5f, 0, 0), Vector3f(0, 0, 0)));
}

TEST(BoundingBox, RandomSequencesMatchAModel) {
    std::mt19937 rng(4);
    std::uniform_real_distribution<float> coord(-50.0f, 50.0f);
    BoundingBox box;
    bool modelEmpty = true;
    float lo[3] = {}, hi[3] = {};
    for (int step = 0; step < 20000; ++step) {
        const int op = int(rng() % 10);
        const Vector3f p(coord(rng), coord(rng), coord(rng)), q(coord(rng), coord(rng), coord(rng));
        BoundingBox other; // empty unless op == 2
        if (op == 2)
            other.add(p), other.add(q);
        if (op == 0)
            box.clear(), modelEmpty = true;
        else if (op <= 2)
            box.add(other);
        else
            box.add(p);
        for (int i = 0; i < 3 && op >= 2; ++i) {
            const float a = op == 2 ? std::min(p[i], q[i]) : p[i], b = op == 2 ? std::max(p[i], q[i]) : p[i];
            lo[i] = modelEmpty ? a : std::min(lo[i], a);
            hi[i] = modelEmpty ? b : std::max(hi[i], b);
        }
        modelEmpty = modelEmpty && op < 2;
        ASSERT_EQ(box.isInitialized(), !modelEmpty);
        for (int i = 0; i < 3 && !modelEmpty; ++i)
            ASSERT_TRUE(box.m_min[i] == lo[i] && box.m_max[i] == hi[i]) << step;
        bool inside = !modelEmpty;
        for (int i = 0; i < 3; ++i)
            inside = inside && lo[i] <= q[i] && q[i] <= hi[i];
        ASSERT_EQ(box.contains(q), inside);
    }
}

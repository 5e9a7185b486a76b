#include "zefcore/geometry/BoundingBox.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace {
bool spans(const BoundingBox &box, const Vector3f &lo, const Vector3f &hi) {
    return box.m_min.equals(lo) && box.m_max.equals(hi);
}
} // namespace

TEST(BoundingBox, EmptyMarkerAndFastPath) {
    BoundingBox box, empty;
    EXPECT_TRUE(!box.isInitialized() && spans(box, Vector3f(1, 0, 0), Vector3f(0, 0, 0)));
    box.add(Vector3f(5, 6, 7)); // the zeros of y and z take no part
    box.add(Vector3f(1, 9, 7));
    box.add(empty);
    box.add(box); // aliasing
    EXPECT_TRUE(spans(box, Vector3f(1, 6, 7), Vector3f(5, 9, 7)));
    box.clear(); // x only
    EXPECT_TRUE(spans(box, Vector3f(1, 6, 7), Vector3f(0, 9, 7)));
    empty.m_min.y() = 50.0f;
    box.set(empty); // an empty box is copied as empty
    EXPECT_TRUE(!box.isInitialized() && box.m_min.y() == 50.0f);
    box.m_max.x() = 1.0f; // y out of order: x alone decides
    EXPECT_TRUE(box.isInitialized());

    // The fast path does not test the state: the marker counts as coordinates.
    BoundingBox fast, below;
    fast.addInitialized(Vector3f(5, 6, -7));
    EXPECT_TRUE(spans(fast, Vector3f(1, 0, -7), Vector3f(5, 6, 0)));
    below.addInitialized(Vector3f(0.5f, 0, 0)); // below m_min: m_min moves, m_max does not
    EXPECT_TRUE(spans(below, Vector3f(0.5f, 0, 0), Vector3f(0, 0, 0)));
}

// Points, boxes (empty or not) and clears, which leave y and z behind, against a model;
// contains on integer coordinates, so that borders are hit.
TEST(BoundingBox, RandomSequencesMatchAModel) {
    std::mt19937 rng(4);
    auto coord = [&] { return float(int(rng() % 21) - 10); };
    BoundingBox box;
    bool modelEmpty = true;
    float lo[3] = {}, hi[3] = {};
    for (int step = 0; step < 20000; ++step) {
        const int op = int(rng() % 10);
        const Vector3f p(coord(), coord(), coord()), q(coord(), coord(), coord());
        BoundingBox other; // empty unless op == 2
        if (op == 2)
            other.add(p), other.add(q);
        if (op == 0)
            box.clear(), modelEmpty = true;
        else
            op <= 2 ? box.add(other) : box.add(p);
        for (int i = 0; i < 3 && op >= 2; ++i) {
            const float a = op == 2 ? std::min(p[i], q[i]) : p[i], b = op == 2 ? std::max(p[i], q[i]) : p[i];
            lo[i] = modelEmpty ? a : std::min(lo[i], a);
            hi[i] = modelEmpty ? b : std::max(hi[i], b);
        }
        modelEmpty = modelEmpty && op < 2;
        ASSERT_EQ(box.isInitialized(), !modelEmpty);
        bool inside = !modelEmpty;
        for (int i = 0; i < 3; ++i) {
            ASSERT_TRUE(modelEmpty || (box.m_min[i] == lo[i] && box.m_max[i] == hi[i])) << step;
            inside = inside && lo[i] <= q[i] && q[i] <= hi[i];
        }
        ASSERT_EQ(box.contains(q), inside);
    }
}

#include "zefcore/geometry/BoundingBox2D.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace {
bool spans(const BoundingBox &box, const Vector3f &lo, const Vector3f &hi) {
    return box.m_min.equals(lo) && box.m_max.equals(hi);
}
} // namespace

// The marker (1, 0, 0)-(0, 0, 0) is judged by x alone; the fast path reads it as coordinates
// and moves m_max only for a coordinate not below m_min.
TEST(BoundingBox, EmptyMarkerAndFastPath) {
    BoundingBox box, below;
    EXPECT_TRUE(!box.isInitialized() && spans(box, Vector3f(1, 0, 0), Vector3f(0, 0, 0)));
    box.addInitialized(Vector3f(5, 6, -7));
    below.addInitialized(Vector3f(0.5f, 0, 0));
    EXPECT_TRUE(spans(box, Vector3f(1, 0, -7), Vector3f(5, 6, 0)) &&
                spans(below, Vector3f(0.5f, 0, 0), Vector3f()));
    box.m_min = Vector3f(0, 9, 9); // y and z out of order
    EXPECT_TRUE(box.isInitialized());
}

// Points (by add or the fast path), boxes (empty or not) and clears, which leave y and z
// behind, against a model on integer coordinates, so that borders are hit. Each step also
// checks the box's rectangle (set, clear, contains, intersect) against closed intervals.
TEST(BoundingBox, RandomSequencesMatchAModel) {
    std::mt19937 rng(4);
    auto coord = [&] { return float(int(rng() % 13) - 6); };
    BoundingBox box;
    bool empty = true;
    float lo[3] = {}, hi[3] = {};
    for (int step = 0; step < 30000; ++step) {
        const int op = int(rng() % 10);
        const Vector3f p(coord(), coord(), coord()), q(coord(), coord(), coord()),
            s(coord(), coord(), coord());
        BoundingBox other, old = box;
        other.set(q), other.add(s);
        if (op == 1)
            other.clear();
        if (op == 0)
            box.clear(), empty = true;
        else if (op <= 2)
            box.add(other);
        else
            op == 3 && !empty ? box.addInitialized(p) : box.add(p);
        for (int i = 0; i < 3 && op >= 2; ++i) {
            const float a = op == 2 ? std::min(q[i], s[i]) : p[i], b = op == 2 ? std::max(q[i], s[i]) : p[i];
            lo[i] = empty ? a : std::min(lo[i], a);
            hi[i] = empty ? b : std::max(hi[i], b);
        }
        empty = empty && op < 2;
        ASSERT_EQ(box.isInitialized(), !empty);
        ASSERT_TRUE(op != 0 || spans(box, Vector3f(1, old.m_min.y(), old.m_min.z()),
                                     Vector3f(0, old.m_max.y(), old.m_max.z())));
        BoundingBox2D r, o;
        r.set(box), o.set(other);
        if (step % 5 == 0)
            r.clear(); // x only
        ASSERT_TRUE(r.m_min.y() == box.m_min.y() && r.m_max.y() == box.m_max.y());
        bool in3 = !empty, in2 = !empty && step % 5 != 0, meet = in2 && op != 1;
        for (int i = 0; i < 3; ++i) {
            ASSERT_TRUE(empty || (box.m_min[i] == lo[i] && box.m_max[i] == hi[i])) << step;
            in3 = in3 && lo[i] <= q[i] && q[i] <= hi[i];
            in2 = in2 && (i == 2 || (lo[i] <= s[i] && s[i] <= hi[i]));
            meet = meet && (i == 2 || (lo[i] <= std::max(q[i], s[i]) && std::min(q[i], s[i]) <= hi[i]));
        }
        ASSERT_EQ(box.contains(q), in3);
        ASSERT_TRUE(r.contains(Vector3f(s.x(), s.y(), 99)) == in2 && r.intersect(o) == meet &&
                    o.intersect(r) == meet)
            << step;
    }
}

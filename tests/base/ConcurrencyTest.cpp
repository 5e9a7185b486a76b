// Several threads use the shared kernel at once, each on its own values, while also
// reading shared const objects and the timer. Each thread's results must equal, bit
// for bit, those computed first on one thread. Built under the thread sanitizer, any
// hidden shared write in these paths is reported as a race.
#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <random>
#include <thread>
#include <vector>

#include "zefcore/base/ZEFTimer.h"
#include "zefcore/geometry/BoundingBox.h"
#include "zefcore/geometry/BoundingBoxAlgo.h"
#include "zefcore/geometry/Distances.h"
#include "zefcore/geometry/Intersections.h"
#include "zefcore/geometry/Plane.h"
#include "zefcore/geometry/PlaneFigureQueries.h"
#include "zefcore/kernel/EnhancedMathFunctions.h"
#include "zefcore/math/Matrix4f.h"
#include "zefcore/math/Quaternion.h"
#include "zefcore/math/Vector2f.h"
#include "zefcore/math/Vector3f.h"

namespace {

constexpr int kThreads = 4;
constexpr int kRounds = 40;
constexpr int kCasesPerRound = 40;

// Read by every thread, written by none after start.
struct Shared {
    Matrix4f view;
    BoundingBox box;
    std::vector<Vector2f> ring;
};

Shared makeShared() {
    Shared s;
    float values[16] = {0.8f,  0.1f,   -0.3f, 0.0f, -0.2f, 0.9f,  0.25f, 0.0f,
                        0.35f, -0.15f, 0.7f,  0.0f, 1.5f,  -2.0f, 3.25f, 1.0f};
    s.view = Matrix4f(values);
    s.box.set(Vector3f(-1.0f, -1.0f, -1.0f));
    s.box.add(Vector3f(1.0f, 2.0f, 0.5f));
    s.ring = {Vector2f(0.0f, 0.0f), Vector2f(2.0f, -1.0f), Vector2f(3.0f, 1.5f), Vector2f(1.0f, 3.0f),
              Vector2f(-1.0f, 1.0f)};
    return s;
}

// Appends the bits of every result of one batch of operations on values drawn from seed.
void runBatch(std::uint32_t seed, const Shared &shared, std::vector<std::uint32_t> &out) {
    std::mt19937 rng(seed);
    std::uniform_real_distribution<float> unit(-1.0f, 1.0f);
    auto push = [&out](const float *v, int n) {
        for (int i = 0; i < n; ++i) {
            std::uint32_t bits;
            std::memcpy(&bits, &v[i], sizeof bits);
            out.push_back(bits);
        }
    };
    const EnhancedMathFunctions *kernel = EnhancedMathFunctions::getCurrent();

    for (int c = 0; c < kCasesPerRound; ++c) {
        float m[16];
        for (float &x : m)
            x = unit(rng) * 4.0f;
        Matrix4f a(m);
        Matrix4f product = shared.view * a;
        push(product.getValue(), 16);
        Matrix4f inv = a;
        bool ok = false;
        inv.inverse(ok);
        out.push_back(ok ? 1u : 0u);
        push(inv.getValue(), 16);
        float det = kernel->det4(m);
        push(&det, 1);

        Quaternion q(unit(rng) * 3.0f, unit(rng) * 1.5f, unit(rng) * 3.0f);
        Quaternion r(Vector3f(unit(rng), unit(rng), unit(rng)), unit(rng) * 3.0f);
        Quaternion qr = q * r;
        push(qr.getValue(), 4);
        float ex = 0.0f, ey = 0.0f, ez = 0.0f;
        qr.getValue(ex, ey, ez);
        float euler[3] = {ex, ey, ez};
        push(euler, 3);
        float rot[16];
        kernel->quaternionToMatrix(rot, qr.getValue());
        push(rot, 16);
        float back[4];
        int branch = kernel->RotMatrixToQuaternion(back, rot);
        out.push_back(std::uint32_t(branch));
        push(back, 4);

        Vector3f u(unit(rng), unit(rng), unit(rng));
        Vector3f v(unit(rng), unit(rng), unit(rng));
        Vector3f w = u ^ v;
        push(w.getValue(), 3);
        Vector3f moved = shared.view * w;
        push(moved.getValue(), 3);

        Plane plane;
        plane.setFromNormalPoint(u, v);
        Vector3f foot;
        plane.findPoint(foot);
        push(foot.getValue(), 3);
        ZEFLine lu, lv;
        plane.findUVAxis(lu, lv);
        push(lu.m_dir.getValue(), 3);
        push(lv.m_dir.getValue(), 3);
        const ZEFLine line(v, u, true);
        Vector3f hit;
        float t = 0.0f;
        out.push_back(std::uint32_t(interLinePlane(hit, t, line, plane)));
        push(hit.getValue(), 3);
        Vector3f nearest;
        const float gap = distancePointLine(w, line, nearest);
        push(&gap, 1);
        push(nearest.getValue(), 3);
        BoundingBox seen;
        out.push_back(std::uint32_t(BoundingBoxAlgo::cameraProjBBox(seen, shared.box, shared.view, 0.1f)));
        push(seen.getMin().getValue(), 3);
        push(seen.getMax().getValue(), 3);

        float p1[2] = {unit(rng), unit(rng)}, d1[2] = {unit(rng), unit(rng)};
        float p2[2] = {unit(rng), unit(rng)}, d2[2] = {unit(rng), unit(rng)};
        float point[2] = {0.0f, 0.0f}, t1 = 0.0f, t2 = 0.0f;
        out.push_back(std::uint32_t(inter2dLineLine(point, t1, t2, p1, d1, p2, d2)));
        push(point, 2);
        float probe[2] = {unit(rng) * 3.0f, unit(rng) * 3.0f};
        out.push_back(pointIn2DPolygon(probe, shared.ring.data(), shared.ring.data() + shared.ring.size()));
        out.push_back(shared.box.contains(u * 2.0f));

        float evalues[3], evectors[3][3];
        int rots = 0;
        float sym[16] = {m[0], m[1], m[2],  0.0f, m[1], m[5], m[6], 0.0f,
                         m[2], m[6], m[10], 0.0f, 0.0f, 0.0f, 0.0f, 1.0f};
        kernel->jacobi3(evalues, evectors, rots, sym);
        out.push_back(std::uint32_t(rots));
        push(evalues, 3);
        push(&evectors[0][0], 9);
        float root = kernel->invSqrt(std::fabs(m[3]) + 0.5f, 2);
        push(&root, 1);
    }
}

TEST(Concurrency, KernelAndConstReadsMatchTheSingleThreadedReference) {
    ASSERT_TRUE(ZEFTimer::initTimingTools());
    const Shared shared = makeShared();

    std::vector<std::vector<std::uint32_t>> reference(kThreads);
    for (int t = 0; t < kThreads; ++t)
        runBatch(1000u + std::uint32_t(t), shared, reference[t]);

    std::vector<int> mismatches(kThreads, 0);
    std::vector<int> clockFaults(kThreads, 0);
    std::atomic<int> waiting{kThreads};
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&, t] {
            // Start together, so that the batches overlap.
            waiting.fetch_sub(1);
            while (waiting.load() > 0)
                std::this_thread::yield();
            double previous = ZEFTimer::getElapsedTime();
            for (int round = 0; round < kRounds; ++round) {
                std::vector<std::uint32_t> mine;
                runBatch(1000u + std::uint32_t(t), shared, mine);
                if (mine != reference[t])
                    ++mismatches[t];
                double now = ZEFTimer::getElapsedTime();
                if (!(now >= previous) || !(now > 0.0))
                    ++clockFaults[t];
                previous = now;
            }
        });
    }
    for (std::thread &th : threads)
        th.join();

    for (int t = 0; t < kThreads; ++t) {
        EXPECT_EQ(mismatches[t], 0) << "thread " << t;
        EXPECT_EQ(clockFaults[t], 0) << "thread " << t;
    }
    // The batches differ between seeds, so a thread reading another's values would show.
    EXPECT_NE(reference[0], reference[1]);
}

} // namespace

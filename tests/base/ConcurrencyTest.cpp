// Several threads use the shared kernel at once, each on its own values, while reading
// shared const objects and the timer. Each thread's results must equal, bit for bit,
// those computed first on one thread; under the thread sanitizer any hidden shared
// write in these paths shows as a race.
#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <cstring>
#include <random>
#include <thread>
#include <vector>

#include "zefcore/base/ZEFTimer.h"
#include "zefcore/geometry/BoundingBox.h"
#include "zefcore/geometry/BoundingBoxAlgo.h"
#include "zefcore/kernel/EnhancedMathFunctions.h"
#include "zefcore/math/Matrix4f.h"
#include "zefcore/math/Quaternion.h"

namespace {
constexpr int kThreads = 4, kRounds = 40, kCases = 40;

struct Shared { // read by every thread, written by none after start
    Matrix4f view;
    BoundingBox box;
};

// Returns every result of a batch of operations on values drawn from seed.
std::vector<float> runBatch(unsigned seed, const Shared &shared) {
    std::mt19937 rng(seed);
    std::uniform_real_distribution<float> unit(-1.0f, 1.0f);
    std::vector<float> out;
    auto push = [&out](const float *v, int n) { out.insert(out.end(), v, v + n); };
    const EnhancedMathFunctions *kernel = EnhancedMathFunctions::getCurrent();
    for (int c = 0; c < kCases; ++c) {
        float m[16], rot[16], back[4], evalues[3], evectors[3][3], ex, ey, ez;
        for (float &x : m)
            x = unit(rng) * 4.0f;
        Matrix4f inv(m);
        bool ok = false;
        inv.inverse(ok);
        push((shared.view * Matrix4f(m)).getValue(), 16), push(inv.getValue(), 16);
        const Quaternion q = Quaternion(unit(rng) * 3.0f, unit(rng) * 1.5f, unit(rng) * 3.0f) *
                             Quaternion(Vector3f(unit(rng), unit(rng), unit(rng)), unit(rng) * 3.0f);
        q.getValue(ex, ey, ez);
        kernel->quaternionToMatrix(rot, q.getValue());
        out.insert(out.end(),
                   {float(ok), kernel->det4(m), ex, ey, ez, float(kernel->RotMatrixToQuaternion(back, rot))});
        push(q.getValue(), 4), push(rot, 16), push(back, 4);
        const Vector3f u(unit(rng), unit(rng), unit(rng)), w = u ^ Vector3f(unit(rng), unit(rng), unit(rng));
        BoundingBox seen;
        out.insert(out.end(), {float(BoundingBoxAlgo::cameraProjBBox(seen, shared.box, shared.view, 0.1f)),
                               float(shared.box.contains(u * 2.0f))});
        push((shared.view * w).getValue(), 3), push(seen.getMin().getValue(), 3);
        push(seen.getMax().getValue(), 3);
        int rots = 0;
        const float sym[16] = {m[0], m[1], m[2], 0, m[1], m[5], m[6], 0, m[2], m[6], m[10], 0, 0, 0, 0, 1};
        kernel->jacobi3(evalues, evectors, rots, sym);
        out.insert(out.end(), {float(rots), kernel->invSqrt(std::fabs(m[3]) + 0.5f, 2)});
        push(evalues, 3), push(&evectors[0][0], 9);
    }
    return out;
}
} // namespace

TEST(Concurrency, KernelAndConstReadsMatchTheSingleThreadedReference) {
    ASSERT_TRUE(ZEFTimer::initTimingTools());
    Shared shared;
    const float view[16] = {0.8f,  0.1f,   -0.3f, 0, -0.2f, 0.9f, 0.25f, 0,
                            0.35f, -0.15f, 0.7f,  0, 1.5f,  -2,   3.25f, 1};
    shared.view = Matrix4f(view);
    shared.box.set(Vector3f(-1.0f, -1.0f, -1.0f));
    shared.box.add(Vector3f(1.0f, 2.0f, 0.5f));
    std::vector<std::vector<float>> reference;
    for (int t = 0; t < kThreads; ++t)
        reference.push_back(runBatch(1000u + unsigned(t), shared));
    // The batches differ between seeds, so a thread reading another's values would show.
    ASSERT_NE(std::memcmp(reference[0].data(), reference[1].data(), reference[0].size() * 4), 0);
    std::vector<int> mismatches(kThreads, 0), clockFaults(kThreads, 0);
    std::atomic<int> waiting{kThreads};
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t)
        threads.emplace_back([&, t] {
            for (waiting.fetch_sub(1); waiting.load() > 0;) // start together: the batches overlap
                std::this_thread::yield();
            double previous = ZEFTimer::getElapsedTime();
            for (int round = 0; round < kRounds; ++round) {
                const std::vector<float> mine = runBatch(1000u + unsigned(t), shared);
                mismatches[t] += mine.size() != reference[t].size() ||
                                 std::memcmp(mine.data(), reference[t].data(), mine.size() * sizeof(float));
                const double now = ZEFTimer::getElapsedTime();
                clockFaults[t] += !(now >= previous && now > 0.0);
                previous = now;
            }
        });
    for (std::thread &th : threads)
        th.join();
    EXPECT_EQ(mismatches, std::vector<int>(kThreads, 0));
    EXPECT_EQ(clockFaults, std::vector<int>(kThreads, 0));
}

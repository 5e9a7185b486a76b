// Helpers shared by the benchmark programs: the fixed seed, row naming and the
// check that a route and its peers computed the same thing before any is timed.
// Rows are named "<case>/zef:<route>" for ours and "<case>/<peer>:<route>" for a
// peer; bench/run.py pairs them by case. Every row counts items (one product,
// one point, one sort of the whole table, ...) and labels what an item is.
#pragma once

#include "zefcore/math/MatRot4f.h"
#include "zefcore/math/Matrix4f.h"
#include "zefcore/math/Vector3f.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <utility>

namespace zefbench {

// One seed for every data set, so every run and every route sees the same data.
constexpr std::uint32_t kSeed = 0x5EED2024u;

// Registers fn as the row "<caseName>/<route>". The row reports items per
// second through the function's own SetItemsProcessed.
template <class Fn>
benchmark::internal::Benchmark *add(const std::string &caseName, const std::string &route, Fn &&fn) {
    const std::string name = caseName + "/" + route;
    return benchmark::RegisterBenchmark(name.c_str(), std::forward<Fn>(fn));
}

// Registers a row for a peer this build does not have: it reports an error that
// run.py prints as a skipped peer, and times nothing.
inline void missing(const std::string &caseName, const std::string &route, const char *peer) {
    const std::string why = std::string(peer) + " not found when the benchmark was configured";
    add(caseName, route, [why](benchmark::State &state) {
        state.SkipWithError(why.c_str());
        for (auto _ : state) {
        }
    });
}

// Marks the row failed when a route disagrees with ours on the shared data; the
// loop then times nothing. Returns ok.
inline bool agree(benchmark::State &state, bool ok, const char *what) {
    if (!ok)
        state.SkipWithError(what);
    return ok;
}

// Keeps value, and all memory, from being optimised away. Only ever reads value:
// GCC can lose the write-back of the read-write form of DoNotOptimize.
template <class T>
inline void consume(const T &value) {
    benchmark::DoNotOptimize(value);
}

// Counts one item per element of a batch, and names the item.
inline void perItem(benchmark::State &state, std::int64_t itemsPerIteration, const char *item) {
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()) * itemsPerIteration);
    state.SetLabel(item);
}

// Sets out to a camera: a perspective projection (60 degrees, aspect 4/3, near
// 0.1, far 100; depth in [-1, 1] in front, above 1 behind the eye) times a view
// from about (3, 2, 10) towards the origin. Sixteen floats in storage order.
inline void cameraMatrix(float *out) {
    Matrix4f perspective(0);
    const float f = 1.0f / std::tan(0.5f * 1.0471976f);
    const float nearZ = 0.1f, farZ = 100.0f;
    float *p = perspective.getValue();
    p[0] = f / (4.0f / 3.0f);
    p[5] = f;
    p[10] = (farZ + nearZ) / (nearZ - farZ);
    p[11] = -1.0f;
    p[14] = 2.0f * farZ * nearZ / (nearZ - farZ);
    const MatRot4f view(Vector3f(0.3f, -0.4f, 0.1f), 0.35f, Vector3f(-3.0f, -2.0f, -10.0f));
    const Matrix4f camera = perspective * view;
    std::memcpy(out, camera.getValue(), 16 * sizeof(float));
}

} // namespace zefbench

// Projecting 100k boxes through a camera and testing them against a screen
// rectangle: BoundingBoxAlgo::cameraProjBBox (both forms) and
// BBox3DIntersectBBox2D with a wide and a small rectangle. No peer offers this
// test, so these rows report boxes per second only. The boxes lie in front of,
// across and behind the camera, so every path of the classification runs.
#include "BenchSupport.h"

#include "zefcore/geometry/BoundingBox.h"
#include "zefcore/geometry/BoundingBox2D.h"
#include "zefcore/geometry/BoundingBoxAlgo.h"
#include "zefcore/math/Matrix4f.h"
#include "zefcore/math/Vector2f.h"
#include "zefcore/math/Vector3f.h"

#include <random>
#include <vector>

namespace {

using zefbench::agree;
using zefbench::perItem;

constexpr int kBoxes = 100000;
// Beyond this projected depth a corner is behind the eye (the camera maps the
// visible depths to [-1, 1]).
constexpr float kDepthLimit = 1.0f;

const std::vector<BoundingBox> &boxes() {
    static const std::vector<BoundingBox> b = [] {
        std::mt19937 rng(zefbench::kSeed);
        std::uniform_real_distribution<float> centre(-25.0f, 25.0f);
        std::uniform_real_distribution<float> half(0.05f, 2.0f);
        std::vector<BoundingBox> out(kBoxes);
        for (BoundingBox &box : out) {
            const Vector3f c(centre(rng), centre(rng), centre(rng));
            const Vector3f h(half(rng), half(rng), half(rng));
            box.set(c - h);
            box.add(c + h);
        }
        return out;
    }();
    return b;
}

Matrix4f camera() {
    float m[16];
    zefbench::cameraMatrix(m);
    return Matrix4f(m);
}

BoundingBox2D rectangle(float x0, float y0, float x1, float y1) {
    BoundingBox2D r;
    r.m_min = Vector2f(x0, y0);
    r.m_max = Vector2f(x1, y1);
    return r;
}

// Fails the row unless the boxes met every side of the camera.
bool allSides(const int (&positions)[4]) {
    return positions[1] > 0 && positions[2] > 0 && positions[3] > 0;
}

void projectInto3D(benchmark::State &state) {
    const Matrix4f m = camera();
    const std::vector<BoundingBox> &in = boxes();
    std::vector<BoundingBox> out(in.size());
    int positions[4] = {};
    for (auto _ : state) {
        for (std::size_t i = 0; i < in.size(); ++i) {
            out[i] = BoundingBox();
            ++positions[BoundingBoxAlgo::cameraProjBBox(out[i], in[i], m, kDepthLimit) & 3];
        }
        zefbench::consume(out.data());
        benchmark::ClobberMemory();
    }
    agree(state, allSides(positions), "the boxes do not meet every side of the camera");
    perItem(state, kBoxes, "box");
}

void projectInto2D(benchmark::State &state) {
    const Matrix4f m = camera();
    const std::vector<BoundingBox> &in = boxes();
    std::vector<BoundingBox2D> out(in.size());
    int positions[4] = {};
    for (auto _ : state) {
        for (std::size_t i = 0; i < in.size(); ++i)
            ++positions[BoundingBoxAlgo::cameraProjBBox(out[i], in[i], m, kDepthLimit) & 3];
        zefbench::consume(out.data());
        benchmark::ClobberMemory();
    }
    agree(state, allSides(positions), "the boxes do not meet every side of the camera");
    perItem(state, kBoxes, "box");
}

void intersect(benchmark::State &state, const BoundingBox2D rect) {
    const Matrix4f m = camera();
    const std::vector<BoundingBox> &in = boxes();
    int hits = 0;
    for (auto _ : state) {
        hits = 0;
        for (const BoundingBox &box : in) {
            bool cleared = false, inside = false;
            hits +=
                BoundingBoxAlgo::BBox3DIntersectBBox2D(box, rect, m, kDepthLimit, cleared, inside) ? 1 : 0;
        }
        zefbench::consume(hits);
    }
    agree(state, hits > 0 && hits < kBoxes, "every box or no box meets the rectangle");
    perItem(state, kBoxes, "box");
}

const bool registered = [] {
    using zefbench::add;
    add("bbox_100k_cameraProjBBox_3D", "zef:cameraProjBBox(BoundingBox&)", projectInto3D)
        ->Unit(benchmark::kMicrosecond);
    add("bbox_100k_cameraProjBBox_2D", "zef:cameraProjBBox(BoundingBox2D&)", projectInto2D)
        ->Unit(benchmark::kMicrosecond);
    const BoundingBox2D wide = rectangle(-0.5f, -0.4f, 0.3f, 0.5f);
    const BoundingBox2D small = rectangle(-0.02f, -0.02f, 0.02f, 0.02f);
    add("bbox_100k_intersect_wide_rect", "zef:BBox3DIntersectBBox2D", [wide](benchmark::State &s) {
        intersect(s, wide);
    })->Unit(benchmark::kMicrosecond);
    add("bbox_100k_intersect_small_rect", "zef:BBox3DIntersectBBox2D", [small](benchmark::State &s) {
        intersect(s, small);
    })->Unit(benchmark::kMicrosecond);
    return true;
}();

} // namespace

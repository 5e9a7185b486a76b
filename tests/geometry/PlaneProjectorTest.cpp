#include "zefcore/geometry/PlaneProjector.h"

#include <gtest/gtest.h>

#include <memory>

namespace {

// An application's projector: refuses lines going up, else projects as the base does.
class DownwardProjector : public PlaneProjector {
public:
    using PlaneProjector::PlaneProjector;
    bool project(Vector3f &out, const ZEFLine &line) override {
        return line.m_dir.z() < 0.0f && PlaneProjector::project(out, line);
    }
};

} // namespace

TEST(PlaneProjector, ProjectsOnlyCrossingLinesAndDispatchesVirtually) {
    const Vector3f sentinel(-777.0f, -777.0f, -777.0f);
    Vector3f out = sentinel;
    PlaneProjector projector; // the plane z = 0
    EXPECT_FALSE(projector.project(out, ZEFLine(Vector3f(0, 0, 1), Vector3f(1, 0, 0), true)));
    EXPECT_FALSE(projector.project(out, ZEFLine(Vector3f(0, 0, 0), Vector3f(1, 0, 0), true))); // in the plane
    EXPECT_TRUE(out.equals(sentinel));
    Plane x5;
    x5.setFromNormalPoint(Vector3f(1, 0, 0), Vector3f(5, 0, 0));
    projector.setPlane(x5);
    EXPECT_TRUE(projector.project(out, ZEFLine(Vector3f(0, 1, 1), Vector3f(1, 0, 0), true)));
    EXPECT_TRUE(out.equals(Vector3f(5, 1, 1)));

    const std::unique_ptr<PlaneProjector> derived(new DownwardProjector(Plane()));
    EXPECT_NE(dynamic_cast<DownwardProjector *>(derived.get()), nullptr);
    EXPECT_FALSE(derived->project(out, ZEFLine(Vector3f(1, 2, -3), Vector3f(0, 0, 1), true)));
    EXPECT_TRUE(derived->project(out, ZEFLine(Vector3f(1, 2, 3), Vector3f(0, 0, -1), true)));
    EXPECT_TRUE(out.equals(Vector3f(1, 2, 0)));
}

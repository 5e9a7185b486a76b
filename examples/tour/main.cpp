// zefcore-tour: walks the library's central road as an application module would.
// On a scene made from a seed it composes transforms, projects every box through
// a perspective camera and tests it against a screen rectangle, picks a triangle
// with a ray, takes transforms apart and puts them back, solves a small system,
// deduplicates vertices and recycles identifiers, timing every stage. It prints a
// summary and draws tour.svg.
#include <cstdio>
#include <cwchar>

#include "SvgPicture.h"
#include "TourOptions.h"
#include "TourScene.h"
#include "TourStages.h"

#include "zefcore/ZEFVersion.h"
#include "zefcore/base/ZEFTimer.h"

namespace {

// The timer's report arrives as wide text without a line end; stdout is a byte
// stream here, so the (ASCII) text is narrowed character by character.
void printReportLine(const wchar_t *line) {
    char narrow[128];
    std::size_t n = 0;
    for (; line[n] != L'\0' && n + 1 < sizeof narrow; ++n)
        narrow[n] = (line[n] >= 0x20 && line[n] < 0x7F) ? static_cast<char>(line[n]) : '?';
    narrow[n] = '\0';
    std::printf("  %s\n", narrow);
}

const char *rotationCount(const TourScene &scene, TourRotation which, int &count) {
    count = 0;
    for (const TourBox &box : scene.boxes)
        count += box.rotation == which ? 1 : 0;
    return which == TourRotation::Euler       ? "Euler angles"
           : which == TourRotation::AxisAngle ? "axis and angle"
                                              : "quaternions";
}

} // namespace

int main(int argc, char **argv) {
    TourOptions options;
    const TourParse parsed = parseTourOptions(argc, argv, options);
    if (parsed != TourParse::Run)
        return parsed == TourParse::Help ? 0 : 2;

    ZEFTimer::m_outFunction = printReportLine;
    ZEFTimer timer;
    timer.reset(L"tour");

    TourScene scene;
    buildTourScene(scene, options.seed, options.boxes);
    timer.pushTime(L"scene");
    const TourProjection projection = projectBoxes(scene);
    timer.pushTime(L"projection");
    const TourPick pick = pickTriangle(scene);
    timer.pushTime(L"pick");
    const TourDecomposition decomposition = decomposeTransforms(scene);
    timer.pushTime(L"getTransform");
    const TourSolve solve = fitGroundPlane(scene);
    timer.pushTime(L"solver");
    const TourDedup dedup = deduplicateVertices(scene);
    timer.pushTime(L"dedup");
    const TourIds ids = recycleIds(scene);
    timer.pushTime(L"ids");
    const bool written = writeTourSvg(options.output, scene, projection, pick);
    timer.pushTime(L"svg");

    const TourCamera &camera = scene.camera;
    std::printf("ZEFCore %s tour: seed %u, %d boxes\n", ZEFCORE_VERSION, static_cast<unsigned>(options.seed),
                options.boxes);
    int euler = 0, axis = 0, quaternion = 0;
    const char *eulerName = rotationCount(scene, TourRotation::Euler, euler);
    const char *axisName = rotationCount(scene, TourRotation::AxisAngle, axis);
    const char *quaternionName = rotationCount(scene, TourRotation::Quaternion, quaternion);
    std::printf("scene       rotations from %s %d, %s %d, %s %d; ids %d to %d\n", eulerName, euler, axisName,
                axis, quaternionName, quaternion, scene.boxes.front().id, scene.boxes.back().id);
    std::printf("camera      eye (%.1f, %.1f, %.1f), %.0f degrees high, depth limit %.6f\n",
                double(camera.eye.x()), double(camera.eye.y()), double(camera.eye.z()),
                double(camera.fovY) * 180.0 / 3.14159265358979323846, double(camera.depthLimit));
    std::printf("projection  %d in front, %d across the eye plane, %d behind", projection.inFront,
                projection.across, projection.behind);
    if (projection.unknown > 0)
        std::printf(", %d unknown", projection.unknown);
    std::printf("\n");
    std::printf("rectangle   (%.2f, %.2f) to (%.2f, %.2f): %d boxes meet it, %d wholly inside\n",
                double(scene.rect.m_min.x()), double(scene.rect.m_min.y()), double(scene.rect.m_max.x()),
                double(scene.rect.m_max.y()), projection.meetRect, projection.entirelyInside);
    if (pick.found) {
        const TourBox &aim = scene.boxes[static_cast<std::size_t>(pick.aimBox)];
        const TourBox &hit = scene.boxes[static_cast<std::size_t>(pick.box)];
        std::printf(
            "pick        ray at box #%d crosses %d boxes, %d triangles tested: triangle %d of box #%d,\n"
            "            %.3f from the eye at (%.3f, %.3f, %.3f), u %.4f, v %.4f\n",
            aim.id, pick.boxesCrossed, pick.trianglesTested, pick.triangle, hit.id, double(pick.distance),
            double(pick.point.x()), double(pick.point.y()), double(pick.point.z()), double(pick.u),
            double(pick.v));
    } else {
        std::printf("pick        no box in front meets the rectangle: nothing to pick\n");
    }
    std::printf("transforms  %d split by getTransform and rebuilt, largest element error %.3g\n",
                decomposition.count, double(decomposition.largestError));
    std::printf("            box #%d: scale made (%.4f, %.4f, %.4f), found (%.4f, %.4f, %.4f)\n",
                scene.boxes.front().id, double(decomposition.scaleMade.x()),
                double(decomposition.scaleMade.y()), double(decomposition.scaleMade.z()),
                double(decomposition.scaleFound.x()), double(decomposition.scaleFound.y()),
                double(decomposition.scaleFound.z()));
    if (solve.ok)
        std::printf(
            "solver      ground plane y = %.5f x %+.5f z %+.4f through the box centres, residual %.3g\n",
            solve.a, solve.b, solve.c, solve.residual);
    else
        std::printf("solver      too few boxes for a ground plane: the system is singular\n");
    std::printf("vertices    %d triangle corners, %d distinct after BinarySort\n", dedup.vertices,
                dedup.distinct);
    std::printf("ids         %d boxes behind the eye gave their ids back; the next new object gets id %d\n",
                ids.freed, ids.next);
    std::printf("timer (seconds from the start, [since the previous stage]):\n");
    timer.print();

    if (!written) {
        std::fprintf(stderr, "zefcore-tour: cannot write %s\n", options.output.c_str());
        return 1;
    }
    std::printf("wrote %s\n", options.output.c_str());
    return 0;
}

#include "TourStages.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "zefcore/base/BinarySort.h"
#include "zefcore/base/ZEFArray.h"
#include "zefcore/geometry/GeomInfo.h"
#include "zefcore/geometry/Intersections.h"
#include "zefcore/geometry/ZEFLine.h"
#include "zefcore/math/LUDecomp.h"

TourProjection projectBoxes(TourScene &scene) {
    TourProjection counts;
    const float limit = scene.camera.depthLimit;
    for (TourBox &box : scene.boxes) {
        box.position = BoundingBoxAlgo::cameraProjBBox(box.screen, box.local, box.toScreen, limit);
        bool cleared = false;
        box.meetsRect = BoundingBoxAlgo::BBox3DIntersectBBox2D(box.local, scene.rect, box.toScreen, limit,
                                                               cleared, box.entirelyInside);
        switch (box.position) {
        case BoundingBoxAlgo::BBoxInFront:
            ++counts.inFront;
            break;
        case BoundingBoxAlgo::BBoxAcross:
            ++counts.across;
            break;
        case BoundingBoxAlgo::BBoxBehind:
            ++counts.behind;
            break;
        default:
            ++counts.unknown;
            break;
        }
        counts.meetRect += box.meetsRect ? 1 : 0;
        counts.entirelyInside += box.entirelyInside ? 1 : 0;
    }
    return counts;
}

TourPick pickTriangle(const TourScene &scene) {
    TourPick pick;
    // Aim at the nearest box wholly inside the rectangle, else the nearest one in
    // front that meets it.
    for (int pass = 0; pass < 2 && pick.aimBox < 0; ++pass) {
        float nearest = 0.f;
        for (std::size_t i = 0; i < scene.boxes.size(); ++i) {
            const TourBox &box = scene.boxes[i];
            const bool wanted = box.position == BoundingBoxAlgo::BBoxInFront &&
                                (pass == 0 ? box.entirelyInside : box.meetsRect);
            if (wanted && (pick.aimBox < 0 || box.viewDepth < nearest)) {
                pick.aimBox = static_cast<int>(i);
                nearest = box.viewDepth;
            }
        }
    }
    if (pick.aimBox < 0)
        return pick;

    const Vector3f &eye = scene.camera.eye;
    const MatAff4f &aimModel = scene.boxes[static_cast<std::size_t>(pick.aimBox)].model;
    const Vector3f target(aimModel.getValue() + 12);
    const ZEFLine ray(eye, target, false); // unit direction from the eye

    for (std::size_t i = 0; i < scene.boxes.size(); ++i) {
        const TourBox &box = scene.boxes[i];
        float tIn = 0.f, tOut = 0.f;
        int faceX = 0, faceY = 0, faceZ = 0;
        if (!interLineBoundingBox(tIn, tOut, faceX, faceY, faceZ, ray, box.world) || tOut < 0.f)
            continue;
        ++pick.boxesCrossed;
        for (int t = 0; t < 12; ++t) {
            const Vector3f &a = box.corners[kTourBoxTriangles[t][0]];
            const Vector3f &b = box.corners[kTourBoxTriangles[t][1]];
            const Vector3f &c = box.corners[kTourBoxTriangles[t][2]];
            Vector3f point;
            float u = 0.f, v = 0.f;
            bool inside = false;
            ++pick.trianglesTested;
            if (interLineTriangle(point, u, v, inside, ray, a, b, c) != e_geomPoint || !inside)
                continue;
            const float distance = Vector3f(eye, point).dot(ray.m_dir);
            if (distance <= 0.f || (pick.found && distance >= pick.distance))
                continue;
            pick.found = true;
            pick.box = static_cast<int>(i);
            pick.triangle = t;
            pick.a = a;
            pick.b = b;
            pick.c = c;
            pick.point = point;
            pick.u = u;
            pick.v = v;
            pick.distance = distance;
        }
    }
    return pick;
}

TourDecomposition decomposeTransforms(const TourScene &scene) {
    TourDecomposition result;
    const std::size_t count = std::min<std::size_t>(scene.boxes.size(), 6);
    for (std::size_t i = 0; i < count; ++i) {
        const MatAff4f &model = scene.boxes[i].model;
        Vector3f translation, scale;
        MatRot4f rotation, scaleOrientation;
        model.getTransform(translation, rotation, scale, scaleOrientation, nullptr);

        // The 3x3 block is R * Q^T * S * Q, Q the scale's orientation.
        MatRot4f orientationBack = scaleOrientation;
        orientationBack.transpose3();
        MatAff4f rebuilt = MatAff4f::translate(translation);
        rebuilt.multRightBy(rotation);
        rebuilt.multRightBy(orientationBack);
        rebuilt.multRightBy(MatAff4f::scale(scale));
        rebuilt.multRightBy(scaleOrientation);

        for (int k = 0; k < 16; ++k) {
            const float error = float(std::fabs(double(rebuilt.getValue()[k]) - model.getValue()[k]));
            if (!(error <= result.largestError))
                result.largestError = error; // a NaN shows as the largest error
        }
        if (i == 0) {
            result.scaleFound = scale;
            result.scaleMade = scene.boxes[i].halfSize;
        }
        ++result.count;
    }
    return result;
}

TourSolve fitGroundPlane(const TourScene &scene) {
    // Normal equations of y = a x + b z + c over the box centres, rows in order.
    double matrix[9] = {};
    double rhs[3] = {};
    for (const TourBox &box : scene.boxes) {
        const float *centre = box.model.getValue() + 12;
        const double row[3] = {centre[0], centre[2], 1.0};
        for (int r = 0; r < 3; ++r) {
            for (int c = 0; c < 3; ++c)
                matrix[r * 3 + c] += row[r] * row[c];
            rhs[r] += row[r] * centre[1];
        }
    }
    double a[9], b[3];
    std::copy(matrix, matrix + 9, a);
    std::copy(rhs, rhs + 3, b);

    TourSolve result;
    bool ok = LUDecomp::Triangularise_matrice(a, b, 3);
    const double *x = ok ? LUDecomp::Resoud_matrice(a, b, 3, &ok) : nullptr;
    if (!ok || !x)
        return result;
    result.ok = true;
    result.a = x[0];
    result.b = x[1];
    result.c = x[2];
    for (int r = 0; r < 3; ++r) {
        const double lhs = matrix[r * 3] * x[0] + matrix[r * 3 + 1] * x[1] + matrix[r * 3 + 2] * x[2];
        result.residual = std::max(result.residual, std::fabs(lhs - rhs[r]));
    }
    return result;
}

TourDedup deduplicateVertices(const TourScene &scene) {
    // The triangle soup: three corners per triangle, as a renderer would receive it.
    ZEFArray<Vector3f> soup;
    soup.reserve(scene.boxes.size() * 36);
    for (const TourBox &box : scene.boxes)
        for (const auto &triangle : kTourBoxTriangles)
            for (int corner : triangle)
                soup.push_back(box.corners[corner]);

    TourDedup result;
    result.vertices = soup.size();
    if (result.vertices == 0)
        return result;
    BinarySort sorter;
    // Twelve byte columns, one per byte of x, y and z: equal points have equal rows.
    sorter.addItem(reinterpret_cast<const unsigned char *>(soup.begin()), sizeof(Vector3f));
    std::vector<int> order(static_cast<std::size_t>(result.vertices));
    sorter.sort(result.vertices, order.data());
    std::vector<unsigned char> firstOfRun(static_cast<std::size_t>((result.vertices + 7) / 8));
    result.distinct = sorter.getUniqueRows(result.vertices, order.data(), firstOfRun.data());
    return result;
}

TourIds recycleIds(TourScene &scene) {
    // The boxes keep their numbers for the report; the generator no longer holds them.
    TourIds result;
    for (TourBox &box : scene.boxes) {
        if (box.position == BoundingBoxAlgo::BBoxBehind && scene.ids.freeID(box.id))
            ++result.freed;
    }
    result.next = scene.ids.generateID();
    return result;
}

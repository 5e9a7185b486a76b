#include "zefcore/geometry/BoundingBoxAlgo.h"

#include "zefcore/geometry/Distances.h"
#include "zefcore/geometry/GeometryTolerances.h"

namespace {

// Corner i of the walk: bit 2 picks max.x, bit 1 max.y, bit 0 max.z.
Vector3f corner(int i, const Vector3f &lo, const Vector3f &hi) {
    return Vector3f((i & 4) ? hi.x() : lo.x(), (i & 2) ? hi.y() : lo.y(), (i & 1) ? hi.z() : lo.z());
}

// Front and behind corners of one projection.
struct Sides {
    BoundingBox front;
    BoundingBox behind;
};

// Projects point, sets q, and returns true if it lies behind the camera.
bool projectAndClass(Vector3f &q, const Vector3f &point, const Matrix4f &matrix, float depthLimit) {
    cameraProjPoint(q, point, matrix, depthLimit);
    // At exactly depthLimit, or for a NaN depth, the point is in front.
    return q.z() > depthLimit;
}

// Merges the two sides into result; returns the position bits.
BoundingBoxAlgo::BBoxPosition merge(BoundingBox &result, const Sides &sides) {
    int position = 0;
    if (sides.front.isInitialized()) {
        result.add(sides.front);
        position = 1;
    }
    if (sides.behind.isInitialized()) {
        if (result.isInitialized()) {
            // Behind corners widen the rectangle; their own depths are not used.
            result.add(Vector3f(sides.behind.m_min.x(), sides.behind.m_min.y(), kGeomBehindDepth));
            result.add(Vector3f(sides.behind.m_max.x(), sides.behind.m_max.y(), kGeomBehindDepth));
        }
        position |= 2;
    }
    return static_cast<BoundingBoxAlgo::BBoxPosition>(position);
}

// The closing steps of the intersection tests, when no corner settled the answer.
bool closeIntersection(const Sides &sides, const BoundingBox2D &rect) {
    BoundingBox result;
    if (merge(result, sides) == BoundingBoxAlgo::BBoxBehind)
        return false;
    BoundingBox2D projected;
    projected.set(result);
    return rect.intersect(projected);
}

// The small-rectangle way over count points: a front point in rect answers true at once.
bool smallRectWalk(Sides &sides, const Vector3f *const *points, int count, const BoundingBox2D &rect,
                   const Matrix4f &matrix, float depthLimit) {
    for (int i = 0; i < count; ++i) {
        Vector3f q;
        if (projectAndClass(q, *points[i], matrix, depthLimit)) {
            sides.behind.add(q);
            continue;
        }
        if (rect.contains(q))
            return true;
        sides.front.add(q);
    }
    return false;
}

} // namespace

void BoundingBoxAlgo::transformBBox(BoundingBox &out, const BoundingBox &box, const MatAff4fBase &matrix) {
    // Copies first: out may be box.
    const Vector3f lo = box.m_min;
    const Vector3f hi = box.m_max;
    Vector3f q;
    matrix.multRightVec3f(q, corner(0, lo, hi));
    out.set(q);
    for (int i = 1; i < 8; ++i) {
        matrix.multRightVec3f(q, corner(i, lo, hi));
        out.addInitialized(q);
    }
}

float BoundingBoxAlgo::BBox3DDistance2(const BoundingBox &box, const MatAff4f &matrix, const Vector3f &p) {
    BoundingBox t;
    transformBBox(t, box, matrix);
    if (t.contains(p))
        return 0.0f;
    float nearest[3];
    for (int i = 0; i < 3; ++i) {
        const float toMin = float(double(t.m_min[i]) - p[i]);
        const float toMax = float(double(t.m_max[i]) - p[i]);
        const float min2 = float(double(toMin) * toMin);
        const float max2 = float(double(toMax) * toMax);
        nearest[i] = (max2 < min2) ? max2 : min2;
    }
    return float((double(nearest[0]) + nearest[1]) + nearest[2]);
}

float BoundingBoxAlgo::QuadDistance2(const Vector3f &a, const Vector3f &b, const Vector3f &c,
                                     const Vector3f &d, const MatAff4f &matrix, const Vector3f &p) {
    const Vector3f *points[4] = {&a, &b, &c, &d};
    float best = 0.0f;
    for (int i = 0; i < 4; ++i) {
        Vector3f q;
        matrix.multRightVec3f(q, *points[i]);
        const float d2 = (q - p).norm2();
        if (i == 0 || d2 < best)
            best = d2;
    }
    return best;
}

BoundingBoxAlgo::BBoxPosition BoundingBoxAlgo::cameraProjBBox(BoundingBox &out, const BoundingBox &box,
                                                              const Matrix4f &matrix, float depthLimit) {
    Sides sides;
    for (int i = 0; i < 8; ++i) {
        Vector3f q;
        if (projectAndClass(q, corner(i, box.m_min, box.m_max), matrix, depthLimit))
            sides.behind.add(q);
        else
            sides.front.add(q);
    }
    return merge(out, sides);
}

BoundingBoxAlgo::BBoxPosition BoundingBoxAlgo::cameraProjBBox(BoundingBox2D &out, const BoundingBox &box,
                                                              const Matrix4f &matrix, float depthLimit) {
    BoundingBox result;
    const BBoxPosition position = cameraProjBBox(result, box, matrix, depthLimit);
    out.set(result);
    return position;
}

bool BoundingBoxAlgo::BBox3DIntersectBBox2D(const BoundingBox &box, const BoundingBox2D &rect,
                                            const Matrix4f &matrix, float depthLimit, bool &clearedFlag,
                                            bool &entirelyInside) {
    clearedFlag = false;
    entirelyInside = false;
    const double width = double(rect.m_max.x()) - rect.m_min.x();
    Sides sides;
    // Written as "not above" so that a NaN width takes the small way.
    if (!(width > double(kGeomSmallRectWidth))) {
        Vector3f corners[8];
        const Vector3f *points[8];
        for (int i = 0; i < 8; ++i) {
            corners[i] = corner(i, box.m_min, box.m_max);
            points[i] = &corners[i];
        }
        if (smallRectWalk(sides, points, 8, rect, matrix, depthLimit))
            return true;
        return closeIntersection(sides, rect);
    }
    bool reference = false;
    for (int i = 0; i < 8; ++i) {
        Vector3f q;
        if (projectAndClass(q, corner(i, box.m_min, box.m_max), matrix, depthLimit)) {
            sides.behind.add(q);
            continue;
        }
        const bool in = rect.contains(q);
        if (i == 0)
            reference = in;
        else if (in != reference)
            return true; // one corner in and another out, or in while the first lay behind
        sides.front.add(q);
    }
    if (reference) {
        entirelyInside = true;
        return true;
    }
    return closeIntersection(sides, rect);
}

bool BoundingBoxAlgo::QuadIntersectBBox2D(const Vector3f &a, const Vector3f &b, const Vector3f &c,
                                          const Vector3f &d, const BoundingBox2D &rect,
                                          const Matrix4f &matrix, float depthLimit, bool &clearedFlag) {
    clearedFlag = false;
    const Vector3f *points[4] = {&a, &b, &c, &d};
    Sides sides;
    if (smallRectWalk(sides, points, 4, rect, matrix, depthLimit))
        return true;
    return closeIntersection(sides, rect);
}

/// \file
/// BoundingBox2D: an axis-aligned rectangle, m_min then m_max, four floats. Empty is
/// marked as in BoundingBox, by x alone: initialised exactly if m_max.x >= m_min.x;
/// the empty marker is m_min.x = 1, m_max.x = 0. It has no add: a rectangle comes
/// from set, or from a camera projection of a box.
#pragma once

#include "zefcore/ZEFExport.h"
#include "zefcore/geometry/BoundingBox.h"
#include "zefcore/math/Vector2f.h"
#include "zefcore/math/Vector3f.h"

#include <type_traits>

/// An axis-aligned rectangle; initialised exactly when m_max.x >= m_min.x.
class ZEFCORE_API BoundingBox2D {
public:
    /// Sets m_min = (1, 0), m_max = (0, 0): empty.
    BoundingBox2D();

    /// Sets m_min.x = 1, m_max.x = 0; the two y values keep theirs.
    void clear();
    /// Returns m_max.x >= m_min.x (false if either is NaN).
    bool isInitialized() const { return m_max.x() >= m_min.x(); }
    /// Returns the low corner.
    const Vector2f &getMin() const { return m_min; }
    /// Returns the high corner.
    const Vector2f &getMax() const { return m_max; }

    /// Sets the rectangle to x and y of box's corners, dropping z. An empty box gives
    /// an empty rectangle.
    void set(const BoundingBox &box);
    /// Returns m_min.x <= x <= m_max.x and m_min.y <= y <= m_max.y, borders included;
    /// z of point is ignored. An empty rectangle contains nothing.
    bool contains(const Vector3f &point) const;
    /// Returns true if both rectangles are initialised and overlap; touching at a side
    /// or a corner counts. Degenerate: false if either is empty, also with itself.
    bool intersect(const BoundingBox2D &other) const;

    Vector2f m_min; ///< low corner
    Vector2f m_max; ///< high corner
};

static_assert(sizeof(BoundingBox2D) == 4 * sizeof(float), "BoundingBox2D is four floats");
static_assert(std::is_standard_layout<BoundingBox2D>::value, "BoundingBox2D is a plain value");
static_assert(!std::is_polymorphic<BoundingBox2D>::value, "BoundingBox2D has no virtual operation");

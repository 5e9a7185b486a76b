/// \file
/// BoundingBox: an axis-aligned box in space, m_min then m_max, six floats.
/// Empty is marked by the order of the x coordinates alone: the box is initialised
/// exactly if m_max.x >= m_min.x; clear() writes m_min.x = 1, m_max.x = 0. No infinity
/// or largest-float sentinel is used, and y and z take no part in the marker.
#pragma once

#include "zefcore/ZEFExport.h"
#include "zefcore/math/Vector3f.h"

#include <type_traits>

/// An axis-aligned box; initialised exactly when m_max.x >= m_min.x.
class ZEFCORE_API BoundingBox {
public:
    /// Sets all six coordinates to 0, then m_min.x = 1: empty.
    BoundingBox();

    /// Sets m_min.x = 1, m_max.x = 0; the other four coordinates keep their values.
    void clear();
    /// Returns m_max.x >= m_min.x (false if either is NaN).
    bool isInitialized() const { return m_max.x() >= m_min.x(); }
    /// Returns the low corner; an empty box gives the marker values.
    const Vector3f &getMin() const { return m_min; }
    /// Returns the high corner; an empty box gives the marker values.
    const Vector3f &getMax() const { return m_max; }

    /// Sets m_min = m_max = point.
    void set(const Vector3f &point);
    /// Sets all six coordinates from box: an empty box is copied as empty.
    void set(const BoundingBox &box);
    /// Sets the box to point if it is empty, else as addInitialized(point).
    void add(const Vector3f &point);
    /// Adds box: nothing if box is empty; its six coordinates if this box is empty;
    /// else as addInitialized(box). Aliasing: box may be this box.
    void add(const BoundingBox &box);
    /// Per axis: m_min takes the coordinate if above it, otherwise m_max takes it if
    /// below it. Does not test the state: on an empty box the marker values count as
    /// coordinates. A NaN coordinate changes nothing.
    void addInitialized(const Vector3f &point);
    /// Per axis: m_min takes the smaller of the two minima, m_max the larger of the
    /// two maxima. Does not test either state. Aliasing: box may be this box.
    void addInitialized(const BoundingBox &box);
    /// Returns m_min <= point <= m_max on all three axes, borders included. An empty
    /// box fails on x and so contains nothing.
    bool contains(const Vector3f &point) const;

    Vector3f m_min; ///< low corner
    Vector3f m_max; ///< high corner
};

static_assert(sizeof(BoundingBox) == 6 * sizeof(float), "BoundingBox is six floats");
static_assert(std::is_standard_layout<BoundingBox>::value, "BoundingBox is a plain value");
static_assert(!std::is_polymorphic<BoundingBox>::value, "BoundingBox has no virtual operation");

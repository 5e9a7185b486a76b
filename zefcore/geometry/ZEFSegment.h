/// \file
/// ZEFSegment: the segment from m_start to m_end, six floats in this order. It has no
/// operation of its own; the library's functions read its two points and build a
/// local ZEFLine where they need one.
#pragma once

#include "zefcore/ZEFExport.h"
#include "zefcore/math/Vector3f.h"

#include <type_traits>

/// The segment from m_start to m_end.
class ZEFCORE_API ZEFSegment {
public:
    /// Sets both end points to the origin.
    ZEFSegment() : m_start(0.0f, 0.0f, 0.0f), m_end(0.0f, 0.0f, 0.0f) {}
    /// Sets the two end points.
    ZEFSegment(const Vector3f &start, const Vector3f &end) : m_start(start), m_end(end) {}

    Vector3f m_start; ///< first end point
    Vector3f m_end;   ///< second end point
};

static_assert(sizeof(ZEFSegment) == 6 * sizeof(float), "ZEFSegment is six floats");
static_assert(std::is_standard_layout<ZEFSegment>::value, "ZEFSegment is a plain value");
static_assert(!std::is_polymorphic<ZEFSegment>::value, "ZEFSegment has no virtual operation");

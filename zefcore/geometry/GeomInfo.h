/// \file
/// e_geomInfo: the outcome of the geometry layer's intersection and projection
/// queries. The numeric values are part of the interface (callers compare against
/// them); no query gives 0.
#pragma once

/// The outcome of an intersection or projection query.
enum e_geomInfo {
    e_geomNone = 1,       ///< tested, the figures do not meet within their extent
    e_geomPoint = 2,      ///< met in one point (two planes: in one line); outputs hold it
    e_geomParallel = 3,   ///< parallel, no single meeting point
    e_geomCoincident = 4, ///< the same plane, or a 2-D segment on the axis line tested
    e_geomInPlane = 5,    ///< the line lies in the plane
    e_geomProjected = 6   ///< the orthogonal projection of a point on a line was computed
};

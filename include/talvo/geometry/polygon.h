#pragma once

/// @file
/// A ray against a segment in the plane, and a point in a polygon.

#include <talvo/core/vec2.h>
#include <talvo/export.h>

namespace Talvo {

/// The point where a ray meets a segment.
///
/// The ray is origin + s·direction with s >= 0, the segment a + u·(b - a) with 0 <= u <= 1. The ends belong to both, so
/// a ray through a vertex meets each of the two segments that share it.
///
/// @param direction  any length; only the parallel test depends on it, and zero counts as parallel.
/// @param[out] hit   the meeting point; untouched when there is none. It may be any of the arguments.
/// @return false when the ray misses the segment or is parallel to it. Parallel means |(b - a) × direction| < 1e-10, an
///         absolute bound: it also holds for a very short segment, and for a segment that lies on the ray.
///
/// Both parameters come from Cramer's rule for origin + s·direction = a + u·(b - a).
TALVO_EXPORT bool LineIntersect(Vec2<double> const& origin, Vec2<double> const& a, Vec2<double> const& b,
                                Vec2<double> const& direction, Vec2<double>& hit);

/// The same without the point.
TALVO_EXPORT bool LineIntersect(Vec2<double> const& origin, Vec2<double> const& a, Vec2<double> const& b,
                                Vec2<double> const& direction);

/// Whether the point lies strictly inside the polygon of `count` vertices, closed from the last one to the first.
///
/// Counts how often a ray from the point meets an edge. Vertices may run either way round; where a polygon crosses
/// itself, parity decides. False for a count below 1.
///
/// @param tolerance  a length: a point nearer than this to an edge is outside. It also serves the choice of the ray.
///
/// @warning The closing edge, from the last vertex to the first, is not part of that boundary test: a point on it may
/// count as inside or outside, and so may the last vertex. Repeat the first vertex at the end to have it tested.
/// @warning An edge shorter than 2.220446049250313e-16, but not of length 0, makes every point count as outside, with a
/// positive tolerance: remove vertices that all but coincide. So does an edge longer than about 1e154, whose square
/// overflows.
///
/// The ray: the first direction from the point to the middle of an edge from which every vertex keeps at least
/// `tolerance` to its left, else (sqrt(3), sqrt(5)). The ends of an edge lie on both sides of its middle, so that a
/// positive tolerance always gives the latter, which seldom meets a vertex; where it does, that vertex counts twice.
///
/// The time is linear in the number of vertices but for contrived tolerances of 0 and below.
TALVO_EXPORT bool IsInside(Vec2<double> const& point, int count, Vec2<double> const* polygon, double tolerance);

}  // namespace Talvo

#pragma once

/// @file
/// Two lines in space, each through two points. Both functions keep results that other programs are built on; read
/// the warnings before using them for geometry.

#include <talvo/core/vec3.h>
#include <talvo/export.h>

#include <utility>

namespace Talvo {

/// @name How far two lines are apart
/// @warning The result is the distance only for parallel lines, where it is (NaN, NaN, distance). Otherwise it is
/// w.x·d1 - w.y·d2 + w.z·n, with d1 = q1 - p1, d2 = q2 - p2, n = d1 × d2 and w = p2 - p1: not a distance. For lines
/// that are not parallel take |w · n| / |n|.
///
/// Parallel means |n| < 1e-10, absolutely: also for two very short segments. w is 0.
/// @{
TALVO_EXPORT Vec3<double> DistanceBetweenLines(Vec3<double> const& p1, Vec3<double> const& q1, Vec3<double> const& p2,
                                               Vec3<double> const& q2);
/// The points are widened to double and the result is narrowed.
TALVO_EXPORT Vec3<float> DistanceBetweenLines(Vec3<float> const& p1, Vec3<float> const& q1, Vec3<float> const& p2,
                                              Vec3<float> const& q2);
/// @}

/// A pair of near points: the first of the line through p1 and q1, the second of the line through p2 and q2.
///
/// @warning Lines that are not parallel have no answer here: both points are then (1.7976931348623157e308, ...) in x, y
/// and z, for every finite input. That value is how to tell "no unique answer" from a pair. For the near points of skew
/// lines solve the 2x2 system of the two parameters.
///
/// Parallel (|d1 × d2| < 1e-10, absolutely): the ends are projected on the other segment in the order p1, q1 on the
/// second, p2, q2 on the first, and the first projection that falls within that segment is taken.
/// @warning The foot is p + a·d with a the length along the segment, while d = q - p is not normalised: the true foot
/// only for segments of length 1.
///
/// When none falls within: for lines (`segments` false) p1 and its foot on line 2, (p1, p1) when they are the same
/// line; for segments the nearest pair of ends, tried in the order (p1, p2), (q1, p2), (p1, q2), (q1, q2), the earlier
/// one on a tie.
///
/// The results' w is 0. Input with NaN or infinities that is not parallel gives NaN as a rule.
TALVO_EXPORT std::pair<Vec3<double>, Vec3<double>> ClosestPoints(Vec3<double> const& p1, Vec3<double> const& q1,
                                                                 Vec3<double> const& p2, Vec3<double> const& q2,
                                                                 bool segments);

}  // namespace Talvo

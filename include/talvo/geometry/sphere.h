#pragma once

/// @file
/// The sphere through four points in space.

#include <talvo/core/vec3.h>
#include <talvo/export.h>

namespace Talvo {

/// The centre of the sphere through four points.
///
/// @return true, always: look at the centre instead. It is not finite when there is no unique sphere.
///
/// Points that coincide are left out, every one of them: two equal points both go.
/// | left over | centre                                                                          |
/// |-----------|---------------------------------------------------------------------------------|
/// | 4         | the centre; infinite or NaN when the points lie in a plane                      |
/// | 2         | the middle of the two                                                           |
/// | 0, 1      | (+inf, +inf, +inf)                                                              |
///
/// Coincident means that each coordinate differs by less than 1e-6 of the mean distance of the two points from the
/// origin, or that both are the origin: points close together but far from the origin coincide. Move such points
/// towards the origin first.
///
/// @param[out] centre  its w is 0. It may be any of the points.
///
/// Source: quotients of 4x4 determinants, from the equation of the sphere through the points.
TALVO_EXPORT bool SphereCentre(Vec3<double> const& p0, Vec3<double> const& p1, Vec3<double> const& p2,
                               Vec3<double> const& p3, Vec3<double>& centre);

}  // namespace Talvo

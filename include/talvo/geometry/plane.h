#pragma once

/// @file
/// A plane in space, given by a point and a normal of any length.

#include <talvo/core/vec3.h>
#include <talvo/export.h>

namespace Talvo {

/// The signed distance from the point to the plane: positive when the plane lies on the side towards which the normal
/// points. So it is the negative of the usual height of the point over the plane.
///
/// 0 for a normal shorter than 2.220446049250313e-16: test the normal to tell that from a point in the plane.
TALVO_EXPORT double DistFromPlane(Vec3<double> const& point, Vec3<double> const& normal,
                                  Vec3<double> const& planePoint);

/// The point where a line meets a plane.
///
/// @param direction  of the line through `linePoint`, any length.
/// @param[out] hit   the point, w = 0; untouched when there is none. It may be any of the arguments.
/// @return false when the line is parallel to the plane, ParallelToPlane(direction, normal).
TALVO_EXPORT bool IntersectPlane(Vec3<double> const& planePoint, Vec3<double> const& normal,
                                 Vec3<double> const& linePoint, Vec3<double> const& direction, Vec3<double>& hit);

/// Whether |direction · normal| < 1e-10.
///
/// An absolute bound on vectors as they are: two short ones always count as parallel. Normalise them for an angle.
TALVO_EXPORT bool ParallelToPlane(Vec3<double> const& direction, Vec3<double> const& normal);

}  // namespace Talvo

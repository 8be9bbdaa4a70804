#pragma once

/// @file
/// The hole's local axes at a point: x away from the hole's centre, y around the hole, z out of the plate.

#include <talvo/core/tens2.h>
#include <talvo/core/vec3.h>
#include <talvo/transform/dir_cos.h>

namespace plate {

/// A stress in the hole's axes.
struct HoleStress {
  double radial;
  double tangential;
  double shear;
};

/// The axes at a point off the z axis; y runs counter-clockwise, as the angle of polar coordinates does.
Talvo::Util::CDirCos hole_axes(Vec3<double> const& point);

/// A stress in x and y, turned into the hole's axes at a point.
HoleStress in_hole_axes(Tens2<double> const& stress, Vec3<double> const& point);

}  // namespace plate

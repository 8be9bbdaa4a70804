#include "hole_axes.h"

#include <talvo/core/tens_sym3.h>

namespace plate {
namespace {

/// Plane stress as a tensor in space: nothing acts on the faces of the plate.
TensSym3<double> in_space(Tens2<double> const& stress) {
  TensSym3<double> tensor;
  tensor(0, 0) = stress.xx;
  tensor(1, 1) = stress.yy;
  tensor(0, 1) = tensor(1, 0) = stress.xy;  // both: the tensor does not mirror an entry
  tensor(3, 3) = 1;
  return tensor;
}

}  // namespace

Talvo::Util::CDirCos hole_axes(Vec3<double> const& point) {
  const Vec3<double> outwards{point.x, point.y, 0};
  const Vec3<double> around{-point.y, point.x, 0};
  Talvo::Util::CDirCos axes;
  axes.Create(outwards, around);
  return axes;
}

HoleStress in_hole_axes(Tens2<double> const& stress, Vec3<double> const& point) {
  const TensSym3<double> local = hole_axes(point).GtoL(in_space(stress));
  return {local(0, 0), local(1, 1), local(0, 1)};
}

}  // namespace plate

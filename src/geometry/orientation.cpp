#include "core/square.h"

#include <talvo/geometry/orientation.h>

namespace Talvo {

using talvo::square;

bool IsHorizontal(Vec3<double> const& v, double ratio) {
  return square(ratio * v.y) + square(ratio * v.x) > square(v.z);
}

bool IsVertical(Vec3<double> const& v, double ratio) { return square(ratio * v.z) > square(v.y) + square(v.x); }

bool IsGlobalX(Vec3<double> const& v, double ratio) { return square(ratio * v.x) > square(v.z) + square(v.y); }

bool IsGlobalY(Vec3<double> const& v, double ratio) { return square(ratio * v.y) > square(v.z) + square(v.x); }

}  // namespace Talvo

#include "kirsch.h"

#include <cmath>

namespace plate {

Tens2<double> kirsch_polar(double r, double theta) {
  constexpr double half = tension / 2;
  const double q = (hole_radius / r) * (hole_radius / r);  // a²/r²
  const double c = std::cos(2 * theta);
  const double s = std::sin(2 * theta);
  const double radial = half * (1 - q) + half * (1 - 4 * q + 3 * q * q) * c;
  const double around = half * (1 + q) - half * (1 + 3 * q * q) * c;
  const double shear = -half * (1 + 2 * q - 3 * q * q) * s;
  return {radial, shear, shear, around};
}

Tens2<double> kirsch(Vec3<double> const& point) {
  const double theta = std::atan2(point.y, point.x);
  return kirsch_polar(std::hypot(point.x, point.y), theta).RotateTo(-theta);
}

}  // namespace plate

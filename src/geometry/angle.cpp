#include "core/square.h"

#include <talvo/geometry/angle.h>
#include <cmath>

namespace Talvo {
namespace {

constexpr double pi = 3.141592653589793;
constexpr double turn = 6.283185307179586;

}  // namespace

double FormatAngle(double angle) {
  if (std::fabs(angle) < 1e-10) return 0.0;
  if (angle > pi) return angle - turn;
  if (angle < -pi) return angle + turn;
  return angle;
}

double sin2(double x) { return talvo::square(std::sin(x)); }

double cos2(double x) { return talvo::square(std::cos(x)); }

}  // namespace Talvo

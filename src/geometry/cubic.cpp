#include "core/arc.h"

#include <talvo/geometry/cubic.h>
#include <cmath>

namespace Talvo {
namespace {

constexpr double third = 0.3333333333333333;

double signed_cube_root(double v) {
  const double root = std::pow(std::fabs(v), third);
  return v < 0.0 ? -root : root;
}

}  // namespace

bool CubicSolve(double d, double c, double b, double a, double& x1, double& x2, double& x3) {
  // The depressed cubic y³ + f·y + g = 0 with x = y + P, and its discriminant h.
  const double P = -b / (3.0 * a);
  const double f = (3.0 * c / a - b * b / (a * a)) * third;
  const double g = (2.0 * std::pow(b / a, 3.0) - 9.0 * b * c / (a * a) + 27.0 * d / a) * 0.037037037037037035;
  const double h = 0.25 * (g * g) + f * f * f / 27.0;

  if (f == 0.0 && g == 0.0 && h == 0.0) {
    x1 = x2 = x3 = -signed_cube_root(d / a);
    return true;
  }
  if (h <= 0.0) {
    const double i = std::sqrt(0.25 * (g * g) - h);
    const double j = signed_cube_root(i);
    const double k = talvo::arc_cos(-0.5 * g / i);
    const double m = std::cos(k / 3.0);
    const double n = std::sqrt(3.0) * std::sin(k / 3.0);
    const double l = -j;
    x1 = 2.0 * j * m + P;
    x2 = l * (m + n) + P;
    x3 = l * (m - n) + P;
    return true;
  }
  const double r = std::sqrt(h);
  const double S = signed_cube_root(r - 0.5 * g);
  const double U = signed_cube_root(-0.5 * g - r);
  x1 = U + S + P;
  return false;
}

}  // namespace Talvo

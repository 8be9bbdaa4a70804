#include "core/vec3_kernels.h"

#include <talvo/geometry/measure.h>
#include <talvo/geometry/sphere.h>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>

namespace Talvo {
namespace {

using Point = Vec3<double>;

// A difference below this part of the mean distance from the origin does not tell two points apart.
constexpr double relative_tolerance = 1e-6;

double taxicab(Point const& p) { return std::fabs(p.x) + std::fabs(p.y) + std::fabs(p.z); }

bool is_origin(Point const& p) { return p.x == 0.0 && p.y == 0.0 && p.z == 0.0; }

bool coincide_exactly(Point const& p, Point const& q) {
  if (is_origin(p) && is_origin(q)) return true;
  const double mean = (talvo::length(p) + talvo::length(q)) / 2.0;
  return std::fabs(p.x - q.x) / mean < relative_tolerance && std::fabs(p.y - q.y) / mean < relative_tolerance &&
         std::fabs(p.z - q.z) / mean < relative_tolerance;
}

// The taxicab distances are not smaller than the distances themselves. A coordinate that exceeds the tolerance for them
// by more than any rounding exceeds it for the true mean; so most points are told apart without a root. (Not where the
// squares of the lengths overflow: the mean is then infinite and everything coincides.)
bool coincide(Point const& p, Point const& q) {
  const double sum = taxicab(p) + taxicab(q);
  if (sum < 1e150) {
    const double surely_apart = sum * (0.5 * relative_tolerance * 1.000001);
    if (std::fabs(p.x - q.x) > surely_apart || std::fabs(p.y - q.y) > surely_apart ||
        std::fabs(p.z - q.z) > surely_apart) {
      return false;
    }
  }
  return coincide_exactly(p, q);
}

// Cramer's rule for the sphere x² + y² + z² + ... = 0 through the four points.
Point circumcentre(std::array<Point, 4> const& p) {
  const auto volume = [](std::array<Point, 4> const& r) {
    return TetrahedronVolume(r[0].x, r[0].y, r[0].z, r[1].x, r[1].y, r[1].z,  //
                             r[2].x, r[2].y, r[2].z, r[3].x, r[3].y, r[3].z);
  };
  std::array<Point, 4> with_x = p;
  std::array<Point, 4> with_y = p;
  std::array<Point, 4> with_z = p;
  for (std::size_t i = 0; i < 4; ++i) {
    const double s = -(p[i].y * p[i].y + p[i].x * p[i].x + p[i].z * p[i].z);
    with_x[i].x = s;
    with_y[i].y = s;
    with_z[i].z = s;
  }
  const double f = -0.5 / volume(p);
  return {f * volume(with_x), f * volume(with_y), f * volume(with_z), 0.0};
}

}  // namespace

bool SphereCentre(Vec3<double> const& p0, Vec3<double> const& p1, Vec3<double> const& p2, Vec3<double> const& p3,
                  Vec3<double>& centre) {
  const std::array<Point, 4> points{p0, p1, p2, p3};
  std::array<bool, 4> is_distinct{true, true, true, true};
  for (std::size_t i = 0; i < 4; ++i) {
    for (std::size_t j = i + 1; j < 4; ++j) {
      if (coincide(points[i], points[j])) is_distinct[i] = is_distinct[j] = false;
    }
  }
  std::array<Point, 4> distinct{};
  std::size_t count = 0;
  for (std::size_t i = 0; i < 4; ++i) {
    if (is_distinct[i]) distinct[count++] = points[i];
  }
  switch (count) {
    case 4:
      centre = circumcentre(distinct);
      break;
    case 3:  // cannot come: points leave two at a time. The centre would stay as it is.
      break;
    case 2:
      centre = (distinct[0] + distinct[1]) * 0.5;
      break;
    default: {
      constexpr double infinity = std::numeric_limits<double>::infinity();
      centre = {infinity, infinity, infinity, 0.0};
    }
  }
  return true;
}

}  // namespace Talvo

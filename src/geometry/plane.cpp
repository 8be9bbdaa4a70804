#include "core/vec3_kernels.h"

#include <talvo/geometry/plane.h>
#include <cmath>

namespace Talvo {
namespace {

// a · b in the order y, x, z, which is this family's.
double dot_yxz(Vec3<double> const& a, Vec3<double> const& b) { return a.y * b.y + a.x * b.x + a.z * b.z; }

// Below this |direction · normal| a direction lies in the plane.
constexpr double parallel = 1e-10;

}  // namespace

double DistFromPlane(Vec3<double> const& point, Vec3<double> const& normal, Vec3<double> const& planePoint) {
  const double n = std::sqrt(dot_yxz(normal, normal));
  const Vec3<double> unit_normal = n < talvo::null_length ? Vec3<double>{0.0, 0.0, 0.0, 0.0}
                                                          : Vec3<double>{normal.x / n, normal.y / n, normal.z / n, 0.0};
  return dot_yxz(planePoint - point, unit_normal);
}

bool IntersectPlane(Vec3<double> const& planePoint, Vec3<double> const& normal, Vec3<double> const& linePoint,
                    Vec3<double> const& direction, Vec3<double>& hit) {
  const double den = dot_yxz(normal, direction);
  if (std::fabs(den) < parallel) return false;
  const double s = dot_yxz(linePoint - planePoint, normal) / den;
  hit = linePoint - s * direction;
  return true;
}

bool ParallelToPlane(Vec3<double> const& direction, Vec3<double> const& normal) {
  return std::fabs(dot_yxz(direction, normal)) < parallel;
}

}  // namespace Talvo

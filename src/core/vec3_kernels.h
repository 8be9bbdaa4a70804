#pragma once

#include <talvo/core/vec3.h>
#include <cmath>

/// @file
/// The geometry of x, y, z that the rooms above share. They live here and not in the public header because their bits
/// are promised: a caller's flags must not compile them again.

namespace talvo {

/// Below this length a vector counts as null and normalises to zero: the double machine epsilon.
inline constexpr double null_length = 2.220446049250313e-16;

/// a · b, from left to right.
inline double dot(Vec3<double> const& a, Vec3<double> const& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }

/// a × b; w is 0.
inline Vec3<double> cross(Vec3<double> const& a, Vec3<double> const& b) {
  return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x, 0.0};
}

/// sqrt(x² + y² + z²).
inline double length(Vec3<double> const& v) { return std::sqrt(dot(v, v)); }

/// v / |v|, each component divided; (0, 0, 0) when |v| < null_length. w is 0.
inline Vec3<double> unit(Vec3<double> const& v) {
  const double n = length(v);
  if (n < null_length) return {0.0, 0.0, 0.0, 0.0};
  return {v.x / n, v.y / n, v.z / n, 0.0};
}

}  // namespace talvo

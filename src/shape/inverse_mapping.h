#pragma once

/// @file
/// The inverse mapping of one element, in fixed sizes: Newton's method, then the test whether the point lies inside.

#include "interpolation/elements/hexahedron8.h"
#include "interpolation/elements/quadrilateral4.h"
#include "interpolation/elements/quadrilateral8.h"
#include "interpolation/elements/triangle3.h"
#include "interpolation/elements/triangle6.h"
#include "shape/mapping.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace talvo::shape {

inline constexpr int max_newton_steps = 100;

/// Whether every |d_i| is within the tolerance. A NaN never is.
template <std::size_t N>
TALVO_ALWAYS_INLINE bool is_within(std::array<double, N> const& d, double tolerance) {
  for (const double value : d) {
    if (!(std::fabs(value) <= tolerance)) return false;
  }
  return true;
}

/// ξ - J⁻ᵀ d, or nothing when det J is exactly 0. J(i, j) is dx_j/dξ_i, so that it is the transpose that is solved
/// with.
TALVO_ALWAYS_INLINE std::optional<Point<double, 2>> newton_step(Point<double, 2> const& xi, Jacobian<2> const& J,
                                                                std::array<double, 2> const& d) {
  const double det = J[1][1] * J[0][0] - J[1][0] * J[0][1];
  if (det == 0.0) return std::nullopt;
  const double inv = 1.0 / det;
  const auto& [dx, dy] = d;
  return Point<double, 2>{xi[0] - (J[1][1] * inv * dx - J[1][0] * inv * dy),
                          xi[1] - (-J[0][1] * inv * dx + J[0][0] * inv * dy)};
}

TALVO_ALWAYS_INLINE std::optional<Point<double, 3>> newton_step(Point<double, 3> const& xi, Jacobian<3> const& J,
                                                                std::array<double, 3> const& d) {
  // Cofactors of the first row, as they stand in the determinant.
  const double c00 = J[2][2] * J[1][1] - J[2][1] * J[1][2];
  const double c01 = J[2][2] * J[1][0] - J[2][0] * J[1][2];
  const double c02 = J[2][1] * J[1][0] - J[2][0] * J[1][1];
  const double det = c00 * J[0][0] - c01 * J[0][1] + c02 * J[0][2];
  if (det == 0.0) return std::nullopt;
  // K = J⁻¹, each cofactor divided by the determinant.
  const double k00 = c00 / det;
  const double k10 = -c01 / det;
  const double k20 = c02 / det;
  const double k01 = (J[2][1] * J[0][2] - J[2][2] * J[0][1]) / det;
  const double k11 = (J[2][2] * J[0][0] - J[2][0] * J[0][2]) / det;
  const double k21 = (J[2][0] * J[0][1] - J[2][1] * J[0][0]) / det;
  const double k02 = (J[1][2] * J[0][1] - J[1][1] * J[0][2]) / det;
  const double k12 = (J[1][0] * J[0][2] - J[1][2] * J[0][0]) / det;
  const double k22 = (J[1][1] * J[0][0] - J[1][0] * J[0][1]) / det;
  const auto& [dx, dy, dz] = d;
  return Point<double, 3>{xi[0] - (k00 * dx + k10 * dy + k20 * dz),  //
                          xi[1] - (k01 * dx + k11 * dy + k21 * dz),  //
                          xi[2] - (k02 * dx + k12 * dy + k22 * dz)};
}

/// x(ξ) - point, in as many components as the element has natural directions.
template <class Element>
TALVO_ALWAYS_INLINE std::array<double, Element::dimension> residual(const Vec3<double>* X,
                                                                    Point<double, Element::dimension> const& xi,
                                                                    Vec3<double> const& point) {
  const Vec3<double> x = mapped_point<Element>(X, xi);
  if constexpr (Element::dimension == 2) {
    return {x.x - point.x, x.y - point.y};
  } else {
    return {x.x - point.x, x.y - point.y, x.z - point.z};
  }
}

/// The natural point at which the mapping reaches `point`, or nothing.
template <class Element>
TALVO_ALWAYS_INLINE std::optional<Point<double, Element::dimension>> newton(const Vec3<double>* X,
                                                                            Vec3<double> const& point,
                                                                            double tolerance) {
  Point<double, Element::dimension> xi{};
  auto d = residual<Element>(X, xi, point);
  for (int step = 0; !is_within(d, tolerance); ++step) {
    if (step == max_newton_steps) return std::nullopt;
    const auto next = newton_step(xi, jacobian<Element>(X, xi), d);
    if (!next) return std::nullopt;
    xi = *next;
    d = residual<Element>(X, xi, point);
  }
  return xi;
}

inline double distance(Vec3<double> const& a, Vec3<double> const& b) { return length(b - a); }

/// How far a natural coordinate may go beyond ±1: 2 tol/L + 1, with L the distance between the middles of the two sides
/// (faces) where it is -1 and +1.
template <class Element>
double natural_limit(const Vec3<double>* X, std::size_t direction, double two_tolerances) {
  Point<double, Element::dimension> low{};
  Point<double, Element::dimension> high{};
  low[direction] = -1.0;
  high[direction] = 1.0;
  return two_tolerances / distance(mapped_point<Element>(X, low), mapped_point<Element>(X, high)) + 1.0;
}

/// The converged point clamped onto the square or cube, or nothing when it lies outside.
///
/// The tolerance is not negative here, since the residual was within it. So the limit is 1 or more, infinite, or NaN
/// (0/0 for a zero length), none of which rejects a coordinate in [-1, 1]: the lengths are measured only for one that
/// is not.
template <class Element>
std::optional<Point<double, Element::dimension>> clamp_to_cube(const Vec3<double>* X,
                                                               Point<double, Element::dimension> xi,
                                                               double two_tolerances) {
  for (std::size_t i = 0; i < Element::dimension; ++i) {
    if (std::fabs(xi[i]) <= 1.0) continue;
    const double limit = natural_limit<Element>(X, i, two_tolerances);
    if (xi[i] < -limit || xi[i] > limit) return std::nullopt;
    xi[i] = std::min(1.0, std::max(-1.0, xi[i]));
  }
  return xi;
}

/// The converged point clamped onto the triangle r, s >= 0, r + s <= 1, or nothing when it lies outside.
///
/// The r tolerance is a natural one (the global tolerance over the length of a unit vector), the s tolerance is the
/// global one over the height of node 2. That asymmetry is part of the answer.
inline std::optional<Point<double, 2>> clamp_to_triangle(const Vec3<double>* X, Point<double, 2> const& xi,
                                                         double tolerance) {
  const auto& [r, s] = xi;
  // As above: no tolerance rejects a point in the triangle.
  const bool inside = r >= 0.0 && s >= 0.0 && r + s <= 1.0;
  if (!inside) {
    const Vec3<double> u = unit(X[1] - X[0]);
    const Vec3<double> w = X[2] - X[0];
    const double tolerance_r = tolerance / length(u);
    const double height = length(dot(u, w) * u - w);
    const double tolerance_s = tolerance / height;
    if (r < -tolerance_r || s < -tolerance_s || r + s > 1.0 + tolerance_r + tolerance_s) return std::nullopt;
  }
  const double clamped_r = std::min(1.0, std::max(0.0, r));
  return Point<double, 2>{clamped_r, std::min(1.0 - clamped_r, std::max(0.0, s))};
}

}  // namespace talvo::shape

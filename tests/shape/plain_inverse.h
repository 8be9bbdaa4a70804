#pragma once

/// @file
/// The inverse mapping written out step by step, in the order whose rounding the library keeps.

#include <algorithm>
#include <array>
#include <cmath>
#include <stdexcept>

#include "shape/plain_mapping.h"
#include "support/elements.h"

namespace talvo::test {

/// What a search gave: the result with the natural point, or zeros.
struct Located {
  bool found = false;
  Vec3<double> natural{0.0, 0.0, 0.0};
};

inline constexpr int kMostSteps = 100;

inline Vec3<double> plain_coor_at_rs(Nodes const& nodes, double r, double s) {
  return sum_over_nodes(plain_area(static_cast<int>(nodes.size()), r, s), nodes);
}

inline Vec3<double> plain_coor_at_rst(Nodes const& nodes, double r, double s, double t) {
  return sum_over_nodes(plain_volume(static_cast<int>(nodes.size()), r, s, t), nodes);
}

inline double plain_distance(Vec3<double> const& a, Vec3<double> const& b) { return plain_norm(b - a); }

inline Located inside_quadrilateral(Nodes const& nodes, double r, double s, double tol) {
  const double length_r = plain_distance(plain_coor_at_rs(nodes, -1, 0), plain_coor_at_rs(nodes, 1, 0));
  const double length_s = plain_distance(plain_coor_at_rs(nodes, 0, -1), plain_coor_at_rs(nodes, 0, 1));
  const double limit_r = (2.0 * tol) / length_r + 1.0;
  if (r < -limit_r || r > limit_r) return {};
  const double limit_s = (2.0 * tol) / length_s + 1.0;
  if (s < -limit_s || s > limit_s) return {};
  return {true, {std::min(1.0, std::max(-1.0, r)), std::min(1.0, std::max(-1.0, s)), 0.0}};
}

inline Located inside_triangle(Nodes const& nodes, double r, double s, double tol) {
  const Vec3<double> u = plain_unit(nodes[1] - nodes[0]);
  // u has length 1, or 0: the tolerance in r is not divided by the length of the side.
  const double tol_r = tol / plain_norm(u);
  const Vec3<double> w = nodes[2] - nodes[0];
  const double along = u.x * w.x + u.y * w.y + u.z * w.z;
  const double height = plain_norm(Vec3<double>{along * u.x, along * u.y, along * u.z} - w);
  const double tol_s = tol / height;
  if (r < -tol_r || s < -tol_s || r + s > 1.0 + tol_r + tol_s) return {};
  const double clamped_r = std::min(1.0, std::max(0.0, r));
  return {true, {clamped_r, std::min(1.0 - clamped_r, std::max(0.0, s)), 0.0}};
}

inline Located plain_find_rs(Nodes const& nodes, Vec3<double> const& point, double tol) {
  const int count = static_cast<int>(nodes.size());
  double r = 0, s = 0;
  Vec3<double> d = plain_coor_at_rs(nodes, r, s) - point;
  auto converged = [&] { return std::fabs(d.x) <= tol && std::fabs(d.y) <= tol; };
  for (int step = 0; step < kMostSteps && !converged(); ++step) {
    const auto derivatives = plain_area_derivatives(count, r, s);
    const Vec3<double> j0 = sum_over_nodes(derivatives[0], nodes);
    const Vec3<double> j1 = sum_over_nodes(derivatives[1], nodes);
    const double det = j1.y * j0.x - j1.x * j0.y;
    if (det == 0) return {};
    const double inv = 1.0 / det;
    const double next_r = r - (j1.y * inv * d.x - j1.x * inv * d.y);
    const double next_s = s - (-j0.y * inv * d.x + j0.x * inv * d.y);
    r = next_r;
    s = next_s;
    d = plain_coor_at_rs(nodes, r, s) - point;
  }
  if (!converged()) return {};
  return count == 3 || count == 6 ? inside_triangle(nodes, r, s, tol) : inside_quadrilateral(nodes, r, s, tol);
}

inline Located plain_find_rst(Nodes const& nodes, Vec3<double> const& point, int most_steps = kMostSteps) {
  const int count = static_cast<int>(nodes.size());
  const double tol = 1e-06;
  std::array<double, 3> xi{0, 0, 0};
  Vec3<double> d = plain_coor_at_rst(nodes, 0, 0, 0) - point;
  auto converged = [&] { return std::fabs(d.x) <= tol && std::fabs(d.y) <= tol && std::fabs(d.z) <= tol; };
  for (int step = 0; step < most_steps && !converged(); ++step) {
    const auto derivatives = plain_volume_derivatives(count, xi[0], xi[1], xi[2]);
    double j[3][3];
    for (std::size_t i = 0; i < 3; ++i) {
      const Vec3<double> row = sum_over_nodes(derivatives[i], nodes);
      j[i][0] = row.x;
      j[i][1] = row.y;
      j[i][2] = row.z;
    }
    const double det = (j[2][2] * j[1][1] - j[2][1] * j[1][2]) * j[0][0] -
                       (j[2][2] * j[1][0] - j[2][0] * j[1][2]) * j[0][1] +
                       (j[2][1] * j[1][0] - j[2][0] * j[1][1]) * j[0][2];
    if (det == 0) return {};
    // K(a, b) is the cofactor of J(b, a), over the determinant; the cyclic order takes care of the signs.
    double k[3][3];
    for (std::size_t a = 0; a < 3; ++a) {
      for (std::size_t b = 0; b < 3; ++b) {
        const std::size_t b1 = (b + 1) % 3, b2 = (b + 2) % 3, a1 = (a + 1) % 3, a2 = (a + 2) % 3;
        k[a][b] = (j[b1][a1] * j[b2][a2] - j[b1][a2] * j[b2][a1]) / det;
      }
    }
    for (std::size_t i = 0; i < 3; ++i) xi[i] = xi[i] - (k[0][i] * d.x + k[1][i] * d.y + k[2][i] * d.z);
    d = plain_coor_at_rst(nodes, xi[0], xi[1], xi[2]) - point;
  }
  if (!converged()) return {};
  if (count != 8) throw std::logic_error("invalid number of topology items");
  const std::array<double, 3> length{
      plain_distance(plain_coor_at_rst(nodes, -1, 0, 0), plain_coor_at_rst(nodes, 1, 0, 0)),
      plain_distance(plain_coor_at_rst(nodes, 0, -1, 0), plain_coor_at_rst(nodes, 0, 1, 0)),
      plain_distance(plain_coor_at_rst(nodes, 0, 0, -1), plain_coor_at_rst(nodes, 0, 0, 1))};
  for (std::size_t i = 0; i < 3; ++i) {
    const double limit = 2e-06 / length[i] + 1.0;
    if (!(-limit <= xi[i] && xi[i] <= limit)) return {};
    xi[i] = std::min(1.0, std::max(-1.0, xi[i]));
  }
  return {true, {xi[0], xi[1], xi[2]}};
}

}  // namespace talvo::test

#pragma once

/// @file
/// The interpolation functions in the form of the textbooks, products over the natural coordinates of the nodes, in
/// long double and with exact derivatives. They share no formula with the library, which subtracts mid-side functions
/// from corner functions and writes each derivative out.
///
/// Source: O.C. Zienkiewicz, R.L. Taylor, The Finite Element Method, vol. 1, chapters on standard and mapped element
/// functions; P. Bettess, Infinite Elements (mapped infinite elements).

#include <array>
#include <cstddef>
#include <vector>

#include "support/elements.h"

namespace talvo::test {

/// A value with its derivatives with respect to r, s and t. Arithmetic carries the derivatives along.
struct Dual {
  long double value = 0;
  std::array<long double, 3> d{};

  Dual(long double v) : value(v) {}  // NOLINT(google-explicit-constructor): constants stand in formulas as they are
  Dual(long double v, std::array<long double, 3> derivatives) : value(v), d(derivatives) {}

  friend Dual operator+(Dual a, Dual const& b) {
    a.value += b.value;
    for (std::size_t i = 0; i < 3; ++i) a.d[i] += b.d[i];
    return a;
  }
  friend Dual operator*(Dual const& a, Dual const& b) {
    Dual product(a.value * b.value);
    for (std::size_t i = 0; i < 3; ++i) product.d[i] = a.d[i] * b.value + a.value * b.d[i];
    return product;
  }
  friend Dual operator-(Dual const& a, Dual const& b) { return a + b * Dual(-1); }
  friend Dual operator/(Dual const& a, Dual const& b) {
    Dual inverse(1 / b.value);
    for (std::size_t i = 0; i < 3; ++i) inverse.d[i] = -b.d[i] / (b.value * b.value);
    return a * inverse;
  }
};

struct NaturalPoint {
  explicit NaturalPoint(Vec3<double> const& p) : r(p.x, {1, 0, 0}), s(p.y, {0, 1, 0}), t(p.z, {0, 0, 1}) {}
  Dual r, s, t;
};

/// The trilinear function of the cube's corner at c.
inline Dual corner_of_cube(NaturalPoint const& p, Vec3<double> const& c) {
  return (1 + p.r * c.x) * (1 + p.s * c.y) * (1 + p.t * c.z) * Dual(0.125L);
}

inline Dual textbook_triangle(int nodes, std::size_t k, NaturalPoint const& p) {
  const std::array<Dual, 3> area{1 - p.r - p.s, p.r, p.s};
  if (nodes == 3) return area[k];
  if (k < 3) return area[k] * (2 * area[k] - 1);
  return 4 * area[k - 3] * area[(k - 2) % 3];
}

inline Dual textbook_quadrilateral(int nodes, Vec3<double> const& at, NaturalPoint const& p) {
  const Dual along_r = 1 + p.r * at.x;
  const Dual along_s = 1 + p.s * at.y;
  if (at.x == 0) return (1 - p.r * p.r) * along_s * Dual(0.5L);
  if (at.y == 0) return along_r * (1 - p.s * p.s) * Dual(0.5L);
  const Dual bilinear = along_r * along_s * Dual(0.25L);
  return nodes == 4 ? bilinear : bilinear * (p.r * at.x + p.s * at.y - 1);
}

inline Dual textbook_line(int nodes, double at, NaturalPoint const& p) {
  if (nodes == 2) return (1 + p.r * at) * Dual(0.5L);
  return at == 0 ? 1 - p.r * p.r : p.r * at * (1 + p.r * at) * Dual(0.5L);
}

/// Node k of a solid: the functions of the cube's corners that it merges. A node with a natural coordinate of 0 stands
/// for the corners on both sides.
inline Dual textbook_solid(Vec3<double> const& at, NaturalPoint const& p) {
  Dual sum(0);
  for (double r : {-1.0, 1.0}) {
    for (double s : {-1.0, 1.0}) {
      if ((at.x == 0 || at.x == r) && (at.y == 0 || at.y == s)) sum = sum + corner_of_cube(p, {r, s, at.z});
    }
  }
  return sum;
}

inline std::vector<Dual> textbook_functions(Topology const& topology, Vec3<double> const& natural) {
  const NaturalPoint p(natural);
  std::vector<Dual> values;
  for (std::size_t k = 0; k < topology.natural.size(); ++k) {
    Vec3<double> const& at = topology.natural[k];
    if (topology.type == Talvo::Line) {
      values.push_back(textbook_line(topology.nodes(), at.x, p));
    } else if (topology.is_triangle()) {
      values.push_back(textbook_triangle(topology.nodes(), k, p));
    } else if (topology.type == Talvo::Area) {
      values.push_back(textbook_quadrilateral(topology.nodes(), at, p));
    } else {
      values.push_back(textbook_solid(at, p));
    }
  }
  return values;
}

/// The geometry functions of the infinite element: the face of the wedge or hexahedron, times -2t/(1 - t) for the first
/// layer and (1 + t)/(1 - t) for the second.
inline std::vector<Dual> textbook_infinite_functions(Topology const& topology, Vec3<double> const& natural) {
  const NaturalPoint p(natural);
  NaturalPoint on_face = p;
  on_face.t = Dual(-1);
  std::vector<Dual> values;
  for (Vec3<double> at : topology.natural) {
    const Dual decay = at.z < 0 ? Dual(-2) * p.t / (1 - p.t) : (1 + p.t) / (1 - p.t);
    at.z = -1;
    values.push_back(textbook_solid(at, on_face) * decay);
  }
  return values;
}

}  // namespace talvo::test

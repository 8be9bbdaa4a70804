#pragma once

/// @file
/// The mapping of an element written out term by term: one product after the other, one node after the other. The order
/// is the one whose rounding the library keeps, so that results can be compared bit for bit.

#include <array>
#include <cmath>
#include <cstddef>
#include <stdexcept>
#include <vector>

#include "support/elements.h"

namespace talvo::test {

/// One value per node.
using Row = std::vector<double>;

[[noreturn]] inline void no_such_topology() { throw std::invalid_argument("no such topology"); }

inline Row plain_line(int nodes, double r) {
  const double bubble = 1.0 - r * r;
  switch (nodes) {
    case 2:
      return {(1.0 - r) * 0.5, (1.0 + r) * 0.5};
    case 3:
      return {(1.0 - r) * 0.5 - bubble * 0.5, (r + 1.0) * 0.5 - bubble * 0.5, bubble};
    default:
      no_such_topology();
  }
}

inline Row plain_area(int nodes, double r, double s) {
  const double u = 1.0 - r - s;
  // Mid-sides of the triangle, and of the quadrilateral.
  const double t4 = r * 4.0 * u, t5 = 4.0 * r * s, t6 = 4.0 * s * u;
  const double m5 = (1.0 - r * r) / 2.0 * (1.0 - s), m6 = (1.0 - s * s) / 2.0 * (1.0 + r);
  const double m7 = (1.0 - r * r) / 2.0 * (1.0 + s), m8 = (1.0 - s * s) / 2.0 * (1.0 - r);
  Row corners{(1.0 - r) * 0.25 * (1.0 - s), (1.0 + r) * 0.25 * (1.0 - s), (1.0 + r) * 0.25 * (1.0 + s),
              (1.0 - r) * 0.25 * (1.0 + s)};
  switch (nodes) {
    case 3:
      return {u, r, s};
    case 4:
      return corners;
    case 6:
      return {u - (t4 + t6) * 0.5, r - (t5 + t4) * 0.5, s - (t5 + t6) * 0.5, t4, t5, t6};
    case 8:
      return {corners[0] - (m8 + m5) / 2.0,
              corners[1] - (m6 + m5) / 2.0,
              corners[2] - (m7 + m6) / 2.0,
              corners[3] - (m8 + m7) / 2.0,
              m5,
              m6,
              m7,
              m8};
    default:
      no_such_topology();
  }
}

inline Row plain_volume(int nodes, double r, double s, double t) {
  // Corners 1 to 8 of the hexahedron, the merged edges of the wedge, the merged face of tetrahedron and pyramid.
  const double h1 = (1.0 - r) * 0.125 * (1.0 - s) * (1.0 - t), h5 = (1.0 - r) * 0.125 * (1.0 - s) * (1.0 + t);
  const double h2 = (1.0 + r) * 0.125 * (1.0 - s) * (1.0 - t), h6 = (1.0 + r) * 0.125 * (1.0 - s) * (1.0 + t);
  const double h3 = (1.0 + r) * 0.125 * (1.0 + s) * (1.0 - t), h7 = (1.0 + r) * 0.125 * (1.0 + s) * (1.0 + t);
  const double h4 = (1.0 - r) * 0.125 * (1.0 + s) * (1.0 - t), h8 = (1.0 - r) * 0.125 * (1.0 + s) * (1.0 + t);
  const double edge34 = (1.0 + s) * 0.25 * (1.0 - t), edge78 = (1.0 + s) * 0.25 * (1.0 + t);
  const double top = (1.0 + t) * 0.5;
  switch (nodes) {
    case 4:
      return {h1, h2, edge34, top};
    case 5:
      return {h1, h2, h3, h4, top};
    case 6:
      return {h1, h2, edge34, h5, h6, edge78};
    case 8:
      return {h1, h2, h3, h4, h5, h6, h7, h8};
    default:
      no_such_topology();
  }
}

/// d/dr, as rows.
inline std::array<Row, 1> plain_line_derivatives(int nodes, double r) {
  switch (nodes) {
    case 2:
      return {Row{-0.5, 0.5}};
    case 3:
      return {Row{r - 0.5, r + 0.5, -2.0 * r}};
    default:
      no_such_topology();
  }
}

/// d/dr and d/ds.
inline std::array<Row, 2> plain_area_derivatives(int nodes, double r, double s) {
  switch (nodes) {
    case 3:
      return {Row{-1.0, 1.0, 0.0}, Row{-1.0, 0.0, 1.0}};
    case 4:
      return {Row{-(1.0 - s) / 4.0, (1.0 - s) / 4.0, (1.0 + s) / 4.0, -(1.0 + s) / 4.0},
              Row{-(1.0 - r) / 4.0, -(1.0 + r) / 4.0, (1.0 + r) / 4.0, (1.0 - r) / 4.0}};
    case 6: {
      const double r4 = 4.0 - 8.0 * r - 4.0 * s, r5 = 4.0 * s, r6 = -4.0 * s;
      const double s4 = -4.0 * r, s5 = 4.0 * r, s6 = 4.0 - 8.0 * s - 4.0 * r;
      return {Row{-1.0 - (r4 + r6) / 2.0, 1.0 - (r4 + r5) / 2.0, -(r6 + r5) / 2.0, r4, r5, r6},
              Row{-1.0 - (s6 + s4) / 2.0, -(s5 + s4) / 2.0, 1.0 - (s6 + s5) / 2.0, s4, s5, s6}};
    }
    case 8: {
      const double r5 = -r * (1.0 - s), r6 = (1.0 - s * s) / 2.0, r7 = -r * (1.0 + s), r8 = -(1.0 - s * s) / 2.0;
      const double s5 = -(1.0 - r * r) / 2.0, s6 = -s * (1.0 + r), s7 = (1.0 - r * r) / 2.0, s8 = -s * (1.0 - r);
      return {Row{-(1.0 - s) / 4.0 - (r5 + r8) / 2.0, (1.0 - s) / 4.0 - (r5 + r6) / 2.0,
                  (1.0 + s) / 4.0 - (r7 + r6) / 2.0, -(1.0 + s) / 4.0 - (r7 + r8) / 2.0, r5, r6, r7, r8},
              Row{-(1.0 - r) / 4.0 - (s8 + s5) / 2.0, -(1.0 + r) / 4.0 - (s6 + s5) / 2.0,
                  (1.0 + r) / 4.0 - (s6 + s7) / 2.0, (1.0 - r) / 4.0 - (s8 + s7) / 2.0, s5, s6, s7, s8}};
    }
    default:
      no_such_topology();
  }
}

/// d/dr, d/ds and d/dt. Each derivative of a corner is a product of two factors and 1/8.
inline std::array<Row, 3> plain_volume_derivatives(int nodes, double r, double s, double t) {
  const double rm = 1.0 - r, rp = 1.0 + r, sm = 1.0 - s, sp = 1.0 + s, tm = 1.0 - t, tp = 1.0 + t;
  switch (nodes) {
    case 4:
      return {Row{-sm / 8.0 * tm, sm / 8.0 * tm, 0.0, 0.0}, Row{-rm / 8.0 * tm, -rp / 8.0 * tm, tm / 4.0, 0.0},
              Row{-rm / 8.0 * sm, -rp / 8.0 * sm, -sp / 4.0, 0.5}};
    case 5:
      return {Row{-sm / 8.0 * tm, sm / 8.0 * tm, sp / 8.0 * tm, -sp / 8.0 * tm, 0.0},
              Row{-rm / 8.0 * tm, -rp / 8.0 * tm, rp / 8.0 * tm, rm / 8.0 * tm, 0.0},
              Row{-rm / 8.0 * sm, -rp / 8.0 * sm, -rp / 8.0 * sp, -rm / 8.0 * sp, 0.5}};
    case 6:
      return {Row{-sm / 8.0 * tm, sm / 8.0 * tm, 0.0, -sm / 8.0 * tp, sm / 8.0 * tp, 0.0},
              Row{-rm / 8.0 * tm, -rp / 8.0 * tm, tm / 4.0, -rm / 8.0 * tp, -rp / 8.0 * tp, tp / 4.0},
              Row{-rm / 8.0 * sm, -rp / 8.0 * sm, -sp / 4.0, rm / 8.0 * sm, rp / 8.0 * sm, sp / 4.0}};
    case 8:
      return {Row{-sm / 8.0 * tm, sm / 8.0 * tm, sp / 8.0 * tm, -sp / 8.0 * tm, -sm / 8.0 * tp, sm / 8.0 * tp,
                  sp / 8.0 * tp, -sp / 8.0 * tp},
              Row{-rm / 8.0 * tm, -rp / 8.0 * tm, rp / 8.0 * tm, rm / 8.0 * tm, -rm / 8.0 * tp, -rp / 8.0 * tp,
                  rp / 8.0 * tp, rm / 8.0 * tp},
              Row{-rm / 8.0 * sm, -rp / 8.0 * sm, -rp / 8.0 * sp, -rm / 8.0 * sp, rm / 8.0 * sm, rp / 8.0 * sm,
                  rp / 8.0 * sp, rm / 8.0 * sp}};
    default:
      no_such_topology();
  }
}

/// d/dr, d/ds and d/dt of the geometry functions of the infinite element, of 6 or 8 nodes.
inline std::array<Row, 3> plain_infinite_derivatives(int nodes, double r, double s, double t) {
  if (nodes != 6 && nodes != 8) no_such_topology();
  const double rm = 1.0 - r, rp = 1.0 + r, sm = 1.0 - s, sp = 1.0 + s;
  // The bilinear factor of each node of one layer, and its derivatives.
  const bool merged = nodes == 6;
  const Row f = merged ? Row{sm * rm, sm * rp, sp + sp} : Row{sm * rm, sm * rp, sp * rp, sp * rm};
  const Row f_r = merged ? Row{-sm, sm, 0.0} : Row{-sm, sm, sp, -sp};
  const Row f_s = merged ? Row{-rm, -rp, 2.0} : Row{-rm, -rp, rp, rm};
  const double p = -t, d1 = (1.0 - t) + (1.0 - t), d2 = (1.0 - t) * 4.0, q = t + 1.0;
  const double e = ((t - 1.0) + (t - 1.0)) * (t - 1.0);
  const std::size_t layer = f.size();
  std::array<Row, 3> d{Row(2 * layer), Row(2 * layer), Row(2 * layer)};
  for (std::size_t k = 0; k < layer; ++k) {
    // A merged node does not move with r, not even at t = +1, where 0 / 0 stands.
    const bool constant = merged && k == 2;
    d[0][k] = constant ? 0.0 : (f_r[k] * p) / d1;
    d[0][k + layer] = constant ? 0.0 : (q * f_r[k]) / d2;
    d[1][k] = (f_s[k] * p) / d1;
    d[1][k + layer] = (q * f_s[k]) / d2;
    d[2][k] = -f[k] / e;
    d[2][k + layer] = f[k] / e;
  }
  return d;
}

/// The sum over the nodes of values[k] X_k, from +0.0 on, in node order.
inline Vec3<double> sum_over_nodes(Row const& values, Nodes const& nodes) {
  Vec3<double> sum{0.0, 0.0, 0.0};
  for (std::size_t k = 0; k < nodes.size(); ++k) {
    sum.x = sum.x + values[k] * nodes[k].x;
    sum.y = sum.y + values[k] * nodes[k].y;
    sum.z = sum.z + values[k] * nodes[k].z;
  }
  return sum;
}

inline double plain_norm(Vec3<double> const& v) { return std::sqrt(v.x * v.x + v.y * v.y + v.z * v.z); }

/// v / |v|, or zero where the length is below the machine epsilon.
inline Vec3<double> plain_unit(Vec3<double> const& v) {
  const double length = plain_norm(v);
  if (length < 2.220446049250313e-16) return {0.0, 0.0, 0.0};
  return {v.x / length, v.y / length, v.z / length};
}

}  // namespace talvo::test

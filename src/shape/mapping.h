#pragma once

/// @file
/// The isoparametric mapping of one element, in fixed sizes. Sums over the nodes start from +0.0 and run in node order.

#include "core/always_inline.h"
#include "core/lanes.h"
#include "core/vec3_kernels.h"
#include "interpolation/elements/element.h"
#include "interpolation/elements/line2.h"
#include "interpolation/elements/line3.h"

namespace talvo::shape {

using elements::Point;

/// Rows: natural directions. Columns: global components.
template <std::size_t Dimension, std::size_t Components = Dimension>
using Jacobian = std::array<std::array<double, Components>, Dimension>;

/// Σ d_k X_k over any number of nodes; w is 0.
TALVO_ALWAYS_INLINE Vec3<double> accumulate(const double* d, const Vec3<double>* X, std::size_t nodes) {
  Pair xy = both(0.0);
  Pair zw = both(0.0);  // w goes along for the ride
  for (std::size_t k = 0; k < nodes; ++k) {
    xy += both(d[k]) * load_xy(X[k]);
    zw += both(d[k]) * load_zw(X[k]);
  }
  return {xy[0], xy[1], zw[0], 0.0};
}

/// x = Σ N_k(ξ) X_k.
template <class Element>
TALVO_ALWAYS_INLINE Vec3<double> mapped_point(const Vec3<double>* X, Point<double, Element::dimension> const& xi) {
  const auto N = Element::values(xi);
  return accumulate(N.data(), X, Element::node_count);
}

/// J(i, j) = Σ dN_k/dξ_i X_k[j] of given derivatives, in the global components x and y, or x, y and z.
template <std::size_t Nodes>
TALVO_ALWAYS_INLINE Jacobian<2> jacobian_of(elements::Derivatives<double, 2, Nodes> const& dN, const Vec3<double>* X) {
  Pair dr = both(0.0);
  Pair ds = both(0.0);
  for (std::size_t k = 0; k < Nodes; ++k) {
    const Pair xy = load_xy(X[k]);
    dr += both(dN[0][k]) * xy;
    ds += both(dN[1][k]) * xy;
  }
  return {{{dr[0], dr[1]}, {ds[0], ds[1]}}};
}

template <std::size_t Nodes>
TALVO_ALWAYS_INLINE Jacobian<3> jacobian_of(elements::Derivatives<double, 3, Nodes> const& dN, const Vec3<double>* X) {
  Jacobian<3> J;
  for (std::size_t i = 0; i < 3; ++i) {
    const Vec3<double> row = accumulate(dN[i].data(), X, Nodes);
    J[i] = {row.x, row.y, row.z};
  }
  return J;
}

/// The Jacobian of an area or volume element of dimension n in the first n global components.
template <class Element>
TALVO_ALWAYS_INLINE Jacobian<Element::dimension> jacobian(const Vec3<double>* X,
                                                          Point<double, Element::dimension> const& xi) {
  return jacobian_of(Element::derivatives(xi), X);
}

/// dx/dr of a line. Its own forms, equal to the sum over the nodes: the difference of two nodes, and for three nodes
/// derivatives that stay finite where -2r overflows.
inline double line_jacobian(elements::Line2, const Vec3<double>* X, double) { return (X[1].x - X[0].x) * 0.5; }

inline double line_jacobian(elements::Line3, const Vec3<double>* X, double r) {
  return 0.0 + (r - 0.5) * X[0].x + (r + 0.5) * X[1].x + -2.0 * r * X[2].x;
}

}  // namespace talvo::shape

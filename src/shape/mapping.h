#pragma once

/// @file
/// The isoparametric mapping of one element, in fixed sizes. Sums over the nodes start from +0.0 and run in node order.

#include "core/vec3_kernels.h"
#include "interpolation/elements/element.h"

namespace talvo::shape {

using elements::Point;

/// Rows: natural directions. Columns: global components.
template <std::size_t Dimension, std::size_t Components = Dimension>
using Jacobian = std::array<std::array<double, Components>, Dimension>;

/// Σ d_k X_k over any number of nodes.
inline Vec3<double> accumulate(const double* d, const Vec3<double>* X, std::size_t nodes) {
  Vec3<double> sum{0.0, 0.0, 0.0, 0.0};
  for (std::size_t k = 0; k < nodes; ++k) {
    sum.x += d[k] * X[k].x;
    sum.y += d[k] * X[k].y;
    sum.z += d[k] * X[k].z;
  }
  return sum;
}

/// x = Σ N_k(ξ) X_k.
template <class Element>
Vec3<double> mapped_point(const Vec3<double>* X, Point<double, Element::dimension> const& xi) {
  const auto N = Element::values(xi);
  return accumulate(N.data(), X, Element::node_count);
}

/// J(i, j) = Σ dN_k/dξ_i X_k[j] of given derivatives, in the first `Components` global components.
template <std::size_t Components, std::size_t Dimension, std::size_t Nodes>
Jacobian<Dimension, Components> jacobian_of(elements::Derivatives<double, Dimension, Nodes> const& dN,
                                            const Vec3<double>* X) {
  Jacobian<Dimension, Components> J{};
  for (std::size_t k = 0; k < Nodes; ++k) {
    for (std::size_t i = 0; i < Dimension; ++i) {
      J[i][0] += dN[i][k] * X[k].x;
      if constexpr (Components > 1) J[i][1] += dN[i][k] * X[k].y;
      if constexpr (Components > 2) J[i][2] += dN[i][k] * X[k].z;
    }
  }
  return J;
}

/// The Jacobian of an element of dimension n in the first n global components.
template <class Element>
Jacobian<Element::dimension> jacobian(const Vec3<double>* X, Point<double, Element::dimension> const& xi) {
  return jacobian_of<Element::dimension>(Element::derivatives(xi), X);
}

}  // namespace talvo::shape

#pragma once

/// @file
/// Interpolation (shape) functions of line elements.
///
/// r runs over [-1, +1]. Nodes: 1 at r = -1, 2 at r = +1, and in the 3-node element 3 at r = 0. Each function is 1 at
/// its own node and 0 at the others, and they add up to 1. r is not checked against the element.

#include <talvo/export.h>
#include <talvo/interpolation/order_type.h>

#include <Eigen/Core>
#include <vector>

namespace Talvo::Util::Interpolate1d {

namespace detail {
/// nNodes, or the exception that the functions below throw for it.
TALVO_EXPORT int KnownNodes(int nNodes);
/// Writes the nNodes derivatives to `out`.
TALVO_EXPORT void HDerivatives(int nNodes, double r, OrderType order, double* out);
}  // namespace detail

/// The values at r, one per node.
///
/// @param nNodes  2 or 3.
/// @param order   `Constant` evaluates the 2-node line at its centre; the 3-node line ignores it.
///
/// Throws std::logic_error "invalid number of nodes" for any other node count.
TALVO_EXPORT std::vector<double> H(int nNodes, double r, OrderType order);

/// The derivatives dH/dr at r: 1 row, one column per node.
///
/// Parameters and failures are those of H(). The 2-node line's are constant, whatever the order.
inline Eigen::Matrix<double, 1, Eigen::Dynamic, Eigen::RowMajor> HDerivatives(int nNodes, double r, OrderType order) {
  Eigen::Matrix<double, 1, Eigen::Dynamic, Eigen::RowMajor> result(1, detail::KnownNodes(nNodes));
  detail::HDerivatives(nNodes, r, order, result.data());
  return result;
}

}  // namespace Talvo::Util::Interpolate1d

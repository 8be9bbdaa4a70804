#pragma once

/// @file
/// Interpolation (shape) functions of plane elements: 3- and 6-node triangles, 4- and 8-node quadrilaterals.
///
/// Triangles use area coordinates r, s >= 0 with r + s <= 1, quadrilaterals [-1, +1] in each direction. Corners come
/// first, counter-clockwise from (0, 0) or (-1, -1), then the mid-sides in the order of the edges 1-2, 2-3, ...:
///
///       3                        4 --- 7 --- 3
///       | \                      |           |
///       6   5                    8           6
///       |     \                  |           |
///       1 - 4 - 2                1 --- 5 --- 2
///
/// The 8-node quadrilateral is the serendipity element; there is no 9-node one. Each function is 1 at its own node and
/// 0 at the others, and they add up to 1. The point is not checked against the element.

#include <talvo/core/vec2.h>
#include <talvo/export.h>
#include <talvo/interpolation/order_type.h>

#include <Eigen/Core>
#include <vector>

namespace Talvo::Util::Interpolate2d {

namespace detail {
/// nNodes, or the exception that the functions below throw for it.
TALVO_EXPORT int KnownNodes(int nNodes);
/// Writes the 2 x nNodes derivatives to `out`, column by column.
TALVO_EXPORT void HDerivatives(int nNodes, Vec2<double> const& rs, OrderType order, double* out);
}  // namespace detail

/// The values at (r, s), one per node.
///
/// @param nNodes  3, 4, 6 or 8.
/// @param order   `Constant` evaluates the 4-node quadrilateral at its centre; the others ignore it.
///
/// Throws std::logic_error "invalid number of nodes" for any other node count.
TALVO_EXPORT std::vector<double> H(int nNodes, Vec2<double> const& rs, OrderType order);

/// The derivatives at (r, s): row 0 is d/dr, row 1 is d/ds, one column per node.
///
/// Parameters and failures are those of H().
inline Eigen::Matrix<double, 2, Eigen::Dynamic> HDerivatives(int nNodes, Vec2<double> const& rs, OrderType order) {
  Eigen::Matrix<double, 2, Eigen::Dynamic> result(2, detail::KnownNodes(nNodes));
  detail::HDerivatives(nNodes, rs, order, result.data());
  return result;
}

}  // namespace Talvo::Util::Interpolate2d

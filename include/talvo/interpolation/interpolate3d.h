#pragma once

/// @file
/// Interpolation (shape) functions of solid elements: tetrahedron (4 nodes), pyramid (5), wedge (6), hexahedron (8).
///
/// All four live on the cube [-1, +1]^3. The hexahedron is trilinear; the others are that hexahedron with corners
/// merged, and a merged node's function is the sum of those of its corners. Hexahedron corners: 1 to 4 on t = -1,
/// counter-clockwise from (-1, -1), and 5 to 8 above them on t = +1.
///
/// | element     | node: corners                                     |
/// |-------------|---------------------------------------------------|
/// | tetrahedron | 1: 1, 2: 2, 3: 3 and 4, 4: 5 to 8                  |
/// | pyramid     | 1 to 4: the same, 5: 5 to 8                        |
/// | wedge       | 1: 1, 2: 2, 3: 3 and 4, 4: 5, 5: 6, 6: 7 and 8     |
///
/// So (r, s, t) are not area or volume coordinates of a tetrahedron or wedge. The functions add up to 1. The point is
/// not checked against the element. There are no quadratic solids.

#include <talvo/core/vec3.h>
#include <talvo/export.h>
#include <talvo/interpolation/order_type.h>

#include <Eigen/Core>
#include <vector>

namespace Talvo::Util::Interpolate3d {

namespace detail {
/// nNodes, or the exception that the functions below throw for it.
TALVO_EXPORT int KnownNodes(int nNodes);
/// Writes the 3 x nNodes derivatives to `out`, column by column.
TALVO_EXPORT void HDerivatives(int nNodes, Vec3<double> const& rst, OrderType order, double* out);
}  // namespace detail

/// The values at (r, s, t), one per node.
///
/// @param nNodes  4, 5, 6 or 8.
/// @param order   `Constant` evaluates every element at the centre of the cube, (0, 0, 0). For a merged element that
///                does not give equal weights: a tetrahedron has 0.125, 0.125, 0.25, 0.5.
///
/// Throws std::logic_error "invalid number of nodes" for any other node count.
TALVO_EXPORT std::vector<double> H(int nNodes, Vec3<double> const& rst, OrderType order);

/// The derivatives at (r, s, t): rows d/dr, d/ds, d/dt, one column per node.
///
/// Parameters and failures are those of H(). A merged node's derivative along a merged direction is 0.0 everywhere.
inline Eigen::Matrix<double, 3, Eigen::Dynamic> HDerivatives(int nNodes, Vec3<double> const& rst, OrderType order) {
  Eigen::Matrix<double, 3, Eigen::Dynamic> result(3, detail::KnownNodes(nNodes));
  detail::HDerivatives(nNodes, rst, order, result.data());
  return result;
}

}  // namespace Talvo::Util::Interpolate3d

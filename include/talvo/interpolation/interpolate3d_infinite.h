#pragma once

/// @file
/// Functions of solid infinite elements, which run from a finite face (t = -1) out to infinity (t = +1).
///
/// Two families: H interpolates the field and vanishes at t = +1; M maps the geometry and grows without bound there.
/// r and s run over [-1, +1] on the finite face. The nodes come in two layers, first those on t = -1, then those on
/// t = 0, each in the order of a quadrilateral's corners, counter-clockwise from (-1, -1). The 6-node element merges
/// the two corners on s = +1 of each layer.
///
/// t is not checked. The element's own domain is t < 1.

#include <talvo/core/vec3.h>
#include <talvo/export.h>

#include <Eigen/Core>
#include <vector>

namespace Talvo::Util::Interpolate3dInfinite {

namespace detail {
/// nNodes, or the exception that the functions below throw for it.
TALVO_EXPORT int KnownNodes(int nNodes);
/// Each writes the 3 x nNodes derivatives to `out`, column by column.
TALVO_EXPORT void HDerivatives(int nNodes, Vec3<double> const& rst, double* out);
TALVO_EXPORT void MDerivatives(int nNodes, Vec3<double> const& rst, double* out);
}  // namespace detail

/// The field functions at (r, s, t), one per node.
///
/// Bilinear in r and s; along t the parabola t² - t for the face's layer and 1 - t² for the layer on t = 0. Each is 1
/// at its own node and 0 at the others, but they add up to 1 only at t = -1 and t = 0: the sum is 1 - (t + t²)/2, which
/// falls to 0 at infinity.
///
/// @param nNodes  6 or 8.
/// Throws std::logic_error "invalid number of nodes" for any other count; std::length_error "vector too long" for a
/// negative one.
TALVO_EXPORT std::vector<double> H(int nNodes, Vec3<double> const& rst);

/// The geometry functions at (r, s, t), one per node.
///
/// F·(-t) / (2(1 - t)) for the first layer and F·(1 + t) / (4(1 - t)) for the second, F the bilinear factor of the
/// node. They add up to 1. At t = +1 they divide by zero, and infinities or NaN come back; nothing is thrown.
///
/// Failures are those of H().
TALVO_EXPORT std::vector<double> M(int nNodes, Vec3<double> const& rst);

/// The derivatives of H: rows d/dr, d/ds, d/dt, one column per node.
///
/// @param nNodes  6 or 8.
/// Throws std::logic_error "invalid number of nodes" for any other count, negative ones included.
inline Eigen::Matrix<double, 3, Eigen::Dynamic> HDerivatives(int nNodes, Vec3<double> const& rst) {
  Eigen::Matrix<double, 3, Eigen::Dynamic> result(3, detail::KnownNodes(nNodes));
  detail::HDerivatives(nNodes, rst, result.data());
  return result;
}

/// The derivatives of M: rows d/dr, d/ds, d/dt, one column per node.
///
/// Failures are those of HDerivatives(); at t = +1 infinities or NaN come back, except the r derivative of a merged
/// node, which is 0.0 everywhere.
inline Eigen::Matrix<double, 3, Eigen::Dynamic> MDerivatives(int nNodes, Vec3<double> const& rst) {
  Eigen::Matrix<double, 3, Eigen::Dynamic> result(3, detail::KnownNodes(nNodes));
  detail::MDerivatives(nNodes, rst, result.data());
  return result;
}

}  // namespace Talvo::Util::Interpolate3dInfinite

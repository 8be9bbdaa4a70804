#pragma once

#include <cstddef>
#include <vector>

namespace talvo::fitting {

/// How many sums run side by side. The bits are the same for all.
enum class Lanes {
  one,
  two,    ///< SSE2, which every x86-64 has
  four,   ///< AVX2
  eight,  ///< AVX-512
};

/// The most lanes that this machine and compiler offer.
Lanes most_lanes();

/// y_i = Σ_j w_|i-j| x_j over the samples that exist, each sum from 0.0 in the order of j.
///
/// @param x        the samples.
/// @param count    how many there are.
/// @param weights  w_0, w_1, ..., at least one.
/// @param y        `count` results.
/// @param lanes    at most most_lanes().
void convolve(const double* x, std::size_t count, std::vector<double> const& weights, double* y,
              Lanes lanes = most_lanes());

}  // namespace talvo::fitting

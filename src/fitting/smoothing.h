#pragma once

#include <cstddef>
#include <vector>

namespace talvo::fitting {

/// y_i = Σ_j w_|i-j| x_j over the samples that exist, each sum from 0.0 in the order of j.
///
/// @param x        the samples.
/// @param count    how many there are.
/// @param weights  w_0, w_1, ..., at least one.
/// @param y        `count` results.
void convolve(const double* x, std::size_t count, std::vector<double> const& weights, double* y);

}  // namespace talvo::fitting

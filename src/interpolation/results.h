#pragma once

/// @file
/// From the fixed-size results of the element kernels to what the public functions hand out.

#include "core/always_inline.h"
#include "interpolation/elements/element.h"

#include <vector>

namespace talvo::elements {

template <std::size_t Nodes>
std::vector<double> to_vector(Values<double, Nodes> const& values) {
  return {values.begin(), values.end()};
}

/// Column by column: the derivatives of node 1 in all directions, then those of node 2, and so on.
template <std::size_t Dimension, std::size_t Nodes>
TALVO_ALWAYS_INLINE void write_columns(Derivatives<double, Dimension, Nodes> const& rows, double* out) {
  for (std::size_t node = 0; node < Nodes; ++node) {
    for (std::size_t direction = 0; direction < Dimension; ++direction) *out++ = rows[direction][node];
  }
}

}  // namespace talvo::elements

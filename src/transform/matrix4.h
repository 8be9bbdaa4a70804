#pragma once

/// @file
/// Products of row-major 4x4 matrices, given as sixteen plain numbers. Each entry is the sum of four products from left
/// to right, starting from the first one; two entries of a row are computed side by side.

#include "core/always_inline.h"
#include "core/lanes.h"

#include <array>
#include <cstddef>

namespace talvo::transform {

using Matrix4 = std::array<double, 16>;

/// Row `row` of a · b: Σ_k a_k b(k, ·) with a_k the four factors of that row.
TALVO_ALWAYS_INLINE void combine_rows(double a0, double a1, double a2, double a3, const double* b, double* row) {
  for (int half = 0; half < 4; half += 2) {
    const Pair sum = both(a0) * load(b + half) + both(a1) * load(b + 4 + half) + both(a2) * load(b + 8 + half) +
                     both(a3) * load(b + 12 + half);
    store(sum, row + half);
  }
}

/// A · B.
TALVO_ALWAYS_INLINE Matrix4 product(const double* a, const double* b) {
  Matrix4 c;
  for (std::size_t i = 0; i < 16; i += 4) combine_rows(a[i], a[i + 1], a[i + 2], a[i + 3], b, &c[i]);
  return c;
}

/// Aᵀ · B.
TALVO_ALWAYS_INLINE Matrix4 transposed_product(const double* a, const double* b) {
  Matrix4 c;
  for (std::size_t i = 0; i < 4; ++i) combine_rows(a[i], a[4 + i], a[8 + i], a[12 + i], b, &c[4 * i]);
  return c;
}

TALVO_ALWAYS_INLINE Matrix4 transposed(const double* a) {
  return {a[0], a[4], a[8],  a[12], a[1], a[5], a[9],  a[13],  //
          a[2], a[6], a[10], a[14], a[3], a[7], a[11], a[15]};
}

}  // namespace talvo::transform

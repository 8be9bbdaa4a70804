#pragma once

#include <cstddef>
#include <vector>

namespace talvo::fitting {

/// The solution of a square system and the rank of its matrix. The solution means something only for a full rank.
struct Solution {
  std::ptrdiff_t rank;
  std::vector<double> values;
};

/// Solves A x = b by LU decomposition with full pivoting.
///
/// @param A  n x n, row by row.
/// @param b  n values; their number is n. For n = 0 the rank is 0 and there are no values.
Solution solve(std::vector<double> const& A, std::vector<double> const& b);

}  // namespace talvo::fitting

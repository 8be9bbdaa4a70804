#pragma once

/// @file
/// A symmetric tensor in space, held as a homogeneous 4x4 matrix.

/// Sixteen components, row by row; used with `double`.
///
/// The upper left 3x3 block is the tensor (indices 0, 1, 2 for x, y, z). As the library builds it, the homogeneous row
/// and column 3 are zero except entry (3, 3), which is 1, so that it transforms by the same 4x4 arithmetic as a frame.
/// Default-built all sixteen are zero, (3, 3) included.
///
/// Symmetry is the caller's: `t(r, c) = v` writes one entry, not its mirror.
template <class T>
struct TensSym3 {
  T components[16]{};

  /// Entry (row, column), both 0 to 3 and unchecked.
  constexpr T& operator()(int row, int column) { return components[4 * row + column]; }
  constexpr T const& operator()(int row, int column) const { return components[4 * row + column]; }

  /// All sixteen components equal.
  friend constexpr bool operator==(TensSym3 const&, TensSym3 const&) = default;
};

#pragma once

/// @file
/// A matrix of a size that is known when the program is compiled, with checked rows.

#include <talvo/core/error.h>

#include <array>
#include <cassert>
#include <cstddef>
#include <cstdint>

namespace talvo::core {

/// R rows and C columns of T, all value-initialised at first.
///
/// `m(r, c)` checks the row always and the column only in debug builds: a wrong column in a release build is the
/// caller's undefined behaviour.
template <class T, std::size_t R, std::size_t C>
class FixedMatrix {
 public:
  FixedMatrix() = default;

  static constexpr std::size_t rows() noexcept { return R; }
  static constexpr std::size_t columns() noexcept { return C; }

  /// Entry (row, column), counted from 0.
  /// Throws error_in_talvo_core "Index 3 is invalid for FixedMatrix with 3 rows!" for a wrong row.
  T& operator()(std::int64_t row, std::int64_t column) { return entries_[place(row, column)]; }
  T const& operator()(std::int64_t row, std::int64_t column) const { return entries_[place(row, column)]; }

  /// Throws error_in_talvo_core "Index 3 is invalid for FixedMatrix with 3 rows!" unless 0 <= index < R.
  void ensure_valid_index(std::int64_t index) const {
    // As an unsigned number a negative index is beyond every matrix.
    if (static_cast<std::uint64_t>(index) >= R) {
      throw error_in_talvo_core(message::invalid_row(index, static_cast<std::int64_t>(R)), source_location::current());
    }
  }

  friend bool operator==(FixedMatrix const&, FixedMatrix const&) = default;

 private:
  std::size_t place(std::int64_t row, std::int64_t column) const {
    ensure_valid_index(row);
    assert(static_cast<std::uint64_t>(column) < C);
    return static_cast<std::size_t>(row) * C + static_cast<std::size_t>(column);
  }

  std::array<T, R * C> entries_{};
};

}  // namespace talvo::core

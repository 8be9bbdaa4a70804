#pragma once

/// @file
/// A vector of a size that is known when the program is compiled.

#include <talvo/core/vector_backend_wrapper.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace talvo::core {

/// Exactly N elements of T, all value-initialised at first.
///
/// @code
/// talvo::core::FixedVector<double, 3> v(std::vector<double>{1, 2, 3});
/// v /= 2;  // (0.5, 1, 1.5)
/// @endcode
///
/// `operator[]` is unchecked in release builds; use at() where an index may be wrong.
template <class T, std::size_t N>
class FixedVector : public VectorBackendWrapper<std::array<T, N>, "FixedVector", error_in_talvo_core, std::uint64_t> {
  using Base = VectorBackendWrapper<std::array<T, N>, "FixedVector", error_in_talvo_core, std::uint64_t>;

 public:
  FixedVector() = default;

  /// Copies the elements of a list of exactly N.
  /// Throws error_in_talvo_core "It is not sensible to create a FixedVector<3, ...> from a list of size 2!" otherwise.
  explicit FixedVector(std::vector<T> const& list) : Base(copy_checked(list)) {}

  /// Throws error_in_talvo_core "It is not sensible to create a FixedVector<3, ...> from a list of size 2!" unless
  /// `size` is N. @param what  the words between "..." and "of size", for example "from a list".
  static void ensure_valid_size(std::int64_t size, std::string_view what) {
    if (size != static_cast<std::int64_t>(N)) {
      throw error_in_talvo_core(message::invalid_size(static_cast<std::int64_t>(N), what, size),
                                source_location::current());
    }
  }

  FixedVector& operator+=(FixedVector const& other) {
    for (std::size_t i = 0; i < N; ++i) (*this)[i] += other[i];
    return *this;
  }
  FixedVector& operator-=(FixedVector const& other) {
    for (std::size_t i = 0; i < N; ++i) (*this)[i] -= other[i];
    return *this;
  }
  FixedVector& operator*=(T const& factor) {
    const T f = factor;  // `factor` may be one of the elements
    for (T& element : *this) element *= f;
    return *this;
  }

  /// Divides every element by d.
  /// Throws error_in_talvo_core "Division by zero in FixedVector operator/=" when d is +0.0 or -0.0, and leaves the
  /// vector as it was. Nothing else is refused: 1e-300 and NaN divide.
  FixedVector& operator/=(T const& d) {
    if (d == T{}) throw error_in_talvo_core(message::division_by_zero(), source_location::current());
    const T divisor = d;  // `d` may be one of the elements
    for (T& element : *this) element /= divisor;
    return *this;
  }

  friend FixedVector operator+(FixedVector a, FixedVector const& b) { return a += b; }
  friend FixedVector operator-(FixedVector a, FixedVector const& b) { return a -= b; }
  friend FixedVector operator*(FixedVector a, T const& factor) { return a *= factor; }
  friend FixedVector operator*(T const& factor, FixedVector a) { return a *= factor; }
  /// Throws as operator/= does.
  friend FixedVector operator/(FixedVector a, T const& d) { return a /= d; }

  friend bool operator==(FixedVector const& a, FixedVector const& b) {
    return std::equal(a.begin(), a.end(), b.begin());
  }

 private:
  static std::array<T, N> copy_checked(std::vector<T> const& list) {
    ensure_valid_size(static_cast<std::int64_t>(list.size()), "from a list");
    std::array<T, N> elements{};
    std::copy_n(list.begin(), N, elements.begin());
    return elements;
  }
};

}  // namespace talvo::core

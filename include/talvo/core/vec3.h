#pragma once

/// @file
/// A point or direction in space, held four wide.

#include <limits>
#include <type_traits>

/// Four components of one number type: x, y, z and the homogeneous w; used with `double` and `float`.
///
/// A plain aggregate without padding, so that x, y and z, w load as two vectors: `Vec3<double>{1, 2, 3}` has w = 0.
/// As a geometric quantity it is (x, y, z); every result of the library has w = 0 unless its documentation says that w
/// is carried.
///
/// Default-built it is (NaN, NaN, NaN, 0), not the origin: a point that nobody set must not pass for one. Write
/// `Vec3<double>{0, 0, 0}` for the origin. A component left out of a braced list is NaN too (w: 0).
template <class T>
struct Vec3 {
  T x = std::numeric_limits<T>::quiet_NaN();
  T y = std::numeric_limits<T>::quiet_NaN();
  T z = std::numeric_limits<T>::quiet_NaN();
  T w = T{0};

  /// All four components equal, w included. -0.0 equals +0.0, and NaN equals nothing, itself included.
  friend constexpr bool operator==(Vec3 const&, Vec3 const&) = default;
};

/// @name Component by component on x, y, z; the result's w is 0
/// @{
template <class T>
constexpr Vec3<T> operator+(Vec3<T> const& a, Vec3<T> const& b) {
  return {a.x + b.x, a.y + b.y, a.z + b.z, T{0}};
}
template <class T>
constexpr Vec3<T> operator-(Vec3<T> const& a, Vec3<T> const& b) {
  return {a.x - b.x, a.y - b.y, a.z - b.z, T{0}};
}
template <class T>
constexpr Vec3<T> operator*(Vec3<T> const& a, std::type_identity_t<T> factor) {
  return {a.x * factor, a.y * factor, a.z * factor, T{0}};
}
template <class T>
constexpr Vec3<T> operator*(std::type_identity_t<T> factor, Vec3<T> const& a) {
  return a * factor;
}
/// @}

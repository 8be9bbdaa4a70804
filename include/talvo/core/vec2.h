#pragma once

/// @file
/// A point or direction in the plane.

#include <type_traits>

/// Two components of one number type; used with `double` and `float`.
///
/// A plain aggregate without padding: `Vec2<double>{1, 2}`. Default-built it is (0, 0).
template <class T>
struct Vec2 {
  T x{};
  T y{};

  /// All components equal. -0.0 equals +0.0, and NaN equals nothing, itself included.
  friend constexpr bool operator==(Vec2 const&, Vec2 const&) = default;
};

/// @name Component by component
/// @{
template <class T>
constexpr Vec2<T> operator+(Vec2<T> const& a, Vec2<T> const& b) {
  return {a.x + b.x, a.y + b.y};
}
template <class T>
constexpr Vec2<T> operator-(Vec2<T> const& a, Vec2<T> const& b) {
  return {a.x - b.x, a.y - b.y};
}
template <class T>
constexpr Vec2<T> operator*(Vec2<T> const& a, std::type_identity_t<T> factor) {
  return {a.x * factor, a.y * factor};
}
template <class T>
constexpr Vec2<T> operator*(std::type_identity_t<T> factor, Vec2<T> const& a) {
  return a * factor;
}
/// @}

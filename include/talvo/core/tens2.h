#pragma once

/// @file
/// A symmetric tensor in the plane: stress, strain or second moment of area.

#include <talvo/core/vec2.h>
#include <talvo/export.h>

/// Components xx, xy, yx, yy, row by row; used with `double` and `float`.
///
/// A plain aggregate without padding: `Tens2<double>{1, 2, 2, 4}`. Default-built it is zero. The shear component is
/// `xy`; only RotateTo() reads `yx`. Wherever the library builds a Tens2, `yx` equals `xy`.
template <class T>
struct Tens2 {
  T xx{};
  T xy{};
  T yx{};
  T yy{};

  /// The principal values: `xx` the larger, `yy` the smaller, no shear.
  ///
  /// a ± h with the mean a = (xx + yy) / 2 and h = hypot((xx - yy) / 2, xy). `yx` is never read. All arithmetic is in
  /// T. Mohr's circle.
  /// Defined for `double` and `float`.
  Tens2 Principal() const;

  /// The two principal directions as unit vectors, in this library's own angle convention.
  ///
  /// With theta = -atan2(2 xy, |xx - yy|) / 2, `*dir1` is (cos theta, sin theta) and `*dir2` is that turned by +pi/2.
  /// Mind the leading minus and the absolute value: they differ from the usual convention, so `dir1` of
  /// [[1, 0.5], [0.5, 0]] is (cos pi/8, -sin pi/8). To have the direction in which a stress acts, mirror it:
  /// (cos theta, -sin theta).
  ///
  /// Only when yy > xx is theta reflected, to pi/2 - theta for theta > 0 and to -theta - pi/2 otherwise. A diagonal
  /// that is equal to a relative 1e-6 of the larger magnitude, |yy - xx| / max(|xx|, |yy|) < 1e-6, is not reflected.
  ///
  /// @param[out] dir1, dir2  both are always written and must be valid.
  /// `yx` is never read. Defined for `double`.
  void PrincipalPlane(Vec2<T>* dir1, Vec2<T>* dir2) const;

  /// The components in axes that are turned counter-clockwise by `angle` (radians).
  ///
  /// The matrix product (R^T M) R with R = [[c, -s], [s, c]]; `yx` is read as it stands, and the result's `xy` and `yx`
  /// are both the upper off-diagonal entry of the product.
  /// Defined for `double`.
  Tens2 RotateTo(T const& angle) const;

  /// All four components equal, yx included.
  friend constexpr bool operator==(Tens2 const&, Tens2 const&) = default;
};

template <>
TALVO_EXPORT Tens2<double> Tens2<double>::Principal() const;
template <>
TALVO_EXPORT Tens2<float> Tens2<float>::Principal() const;
template <>
TALVO_EXPORT void Tens2<double>::PrincipalPlane(Vec2<double>* dir1, Vec2<double>* dir2) const;
template <>
TALVO_EXPORT Tens2<double> Tens2<double>::RotateTo(double const& angle) const;

#pragma once

#include "interpolation/elements/element.h"

namespace talvo::elements {

/// Infinite wedge: the infinite hexahedron with the two corners on s = +1 of each layer merged.
///
/// The field functions are those of `values` and `derivatives`, the geometry functions those of `mapping_values` and
/// `mapping_derivatives`.
struct Infinite6 {
  static constexpr std::size_t dimension = 3;
  static constexpr std::size_t node_count = 6;

  static constexpr std::array<Point<double, 3>, 6> nodes{{
      {-1.0, -1.0, -1.0}, {+1.0, -1.0, -1.0}, { 0.0, +1.0, -1.0},
      {-1.0, -1.0,  0.0}, {+1.0, -1.0,  0.0}, { 0.0, +1.0,  0.0},
  }};

  template <class T>
  static constexpr Values<T, 6> values(Point<T, 3> const& point) {
    const auto& [r, s, t] = point;
    const T q = t * t;
    const T A = q - t;    // 2 at the face, 0 at t = 0 and at infinity
    const T B = 1.0 - q;  // 1 at t = 0, 0 at the face and at infinity
    return {(1.0 - r) * 0.125 * (1.0 - s) * A, (1.0 + r) * 0.125 * (1.0 - s) * A, (1.0 + s) * 0.25 * A,
            (1.0 - r) * 0.25 * (1.0 - s) * B,  (1.0 + r) * 0.25 * (1.0 - s) * B,  (1.0 + s) * 0.5 * B};
  }

  template <class T>
  static constexpr Derivatives<T, 3, 6> derivatives(Point<T, 3> const& point) {
    const auto& [r, s, t] = point;
    const T q = t * t;
    const T A = q - t;
    const T B = 1.0 - q;
    const T dA = t + t - 1.0;
    const T dB = -2.0 * t;
    const T zero = number<T>(0.0);
    return {{{-0.125 * (1.0 - s) * A, 0.125 * (1.0 - s) * A, zero,
              -0.25 * (1.0 - s) * B,  0.25 * (1.0 - s) * B,  zero},
             {(1.0 - r) * -0.125 * A, (1.0 + r) * -0.125 * A, 0.25 * A,
              (1.0 - r) * -0.25 * B,  (1.0 + r) * -0.25 * B,  0.5 * B},
             {(1.0 - r) * 0.125 * (1.0 - s) * dA, (1.0 + r) * 0.125 * (1.0 - s) * dA, (1.0 + s) * 0.25 * dA,
              (1.0 - r) * 0.25 * (1.0 - s) * dB,  (1.0 + r) * 0.25 * (1.0 - s) * dB,  (1.0 + s) * 0.5 * dB}}};
  }

  template <class T>
  static constexpr Values<T, 6> mapping_values(Point<T, 3> const& point) {
    const auto& [r, s, t] = point;
    const T P = -t;
    const T Q = t + 1.0;
    const T D1 = (1.0 - t) + (1.0 - t);
    const T D2 = (1.0 - t) * 4.0;
    const T F1 = (1.0 - s) * (1.0 - r);
    const T F2 = (1.0 - s) * (1.0 + r);
    const T F3 = (1.0 + s) + (1.0 + s);
    return {F1 * P / D1, F2 * P / D1, F3 * P / D1,
            Q * F1 / D2, Q * F2 / D2, Q * F3 / D2};
  }

  template <class T>
  static constexpr Derivatives<T, 3, 6> mapping_derivatives(Point<T, 3> const& point) {
    const auto& [r, s, t] = point;
    const T P = -t;
    const T Q = t + 1.0;
    const T D1 = (1.0 - t) + (1.0 - t);
    const T D2 = (1.0 - t) * 4.0;
    const T E = ((t - 1.0) + (t - 1.0)) * (t - 1.0);
    const T F1 = (1.0 - s) * (1.0 - r);
    const T F2 = (1.0 - s) * (1.0 + r);
    const T F3 = (1.0 + s) + (1.0 + s);
    // The merged node's r derivative is 0.0 at t = +1 too, where the others are infinite.
    const T zero = number<T>(0.0);
    return {{{-(1.0 - s) * P / D1, (1.0 - s) * P / D1, zero,
              Q * -(1.0 - s) / D2, Q * (1.0 - s) / D2, zero},
             {-(1.0 - r) * P / D1, -(1.0 + r) * P / D1, 2.0 * P / D1,
              Q * -(1.0 - r) / D2, Q * -(1.0 + r) / D2, Q * 2.0 / D2},
             {-F1 / E, -F2 / E, -F3 / E,
              F1 / E, F2 / E, F3 / E}}};
  }
};

static_assert(is_kronecker<Infinite6>());

}  // namespace talvo::elements

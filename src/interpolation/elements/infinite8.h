#pragma once

#include "interpolation/elements/element.h"

namespace talvo::elements {

/// Infinite hexahedron: nodes 1 to 4 on the finite face t = -1, 5 to 8 on t = 0, infinity at t = +1.
///
/// The field functions are those of `values` and `derivatives`, the geometry functions those of `mapping_values` and
/// `mapping_derivatives`.
struct Infinite8 {
  static constexpr std::size_t dimension = 3;
  static constexpr std::size_t node_count = 8;

  static constexpr std::array<Point<double, 3>, 8> nodes{{
      {-1.0, -1.0, -1.0}, {+1.0, -1.0, -1.0}, {+1.0, +1.0, -1.0}, {-1.0, +1.0, -1.0},
      {-1.0, -1.0,  0.0}, {+1.0, -1.0,  0.0}, {+1.0, +1.0,  0.0}, {-1.0, +1.0,  0.0},
  }};

  template <class T>
  static constexpr Values<T, 8> values(Point<T, 3> const& point) {
    const auto& [r, s, t] = point;
    const T q = t * t;
    const T A = q - t;    // 2 at the face, 0 at t = 0 and at infinity
    const T B = 1.0 - q;  // 1 at t = 0, 0 at the face and at infinity
    return {(1.0 - r) * 0.125 * (1.0 - s) * A, (1.0 + r) * 0.125 * (1.0 - s) * A,
            (1.0 + r) * 0.125 * (1.0 + s) * A, (1.0 - r) * 0.125 * (1.0 + s) * A,
            (1.0 - r) * 0.25 * (1.0 - s) * B,  (1.0 + r) * 0.25 * (1.0 - s) * B,
            (1.0 + r) * 0.25 * (1.0 + s) * B,  (1.0 - r) * 0.25 * (1.0 + s) * B};
  }

  template <class T>
  static constexpr Derivatives<T, 3, 8> derivatives(Point<T, 3> const& point) {
    const auto& [r, s, t] = point;
    const T q = t * t;
    const T A = q - t;
    const T B = 1.0 - q;
    const T dA = t + t - 1.0;
    const T dB = -2.0 * t;
    return {{{-0.125 * (1.0 - s) * A, 0.125 * (1.0 - s) * A, 0.125 * (1.0 + s) * A, -0.125 * (1.0 + s) * A,
              -0.25 * (1.0 - s) * B,  0.25 * (1.0 - s) * B,  0.25 * (1.0 + s) * B,  -0.25 * (1.0 + s) * B},
             {(1.0 - r) * -0.125 * A, (1.0 + r) * -0.125 * A, (1.0 + r) * 0.125 * A, (1.0 - r) * 0.125 * A,
              (1.0 - r) * -0.25 * B,  (1.0 + r) * -0.25 * B,  (1.0 + r) * 0.25 * B,  (1.0 - r) * 0.25 * B},
             {(1.0 - r) * 0.125 * (1.0 - s) * dA, (1.0 + r) * 0.125 * (1.0 - s) * dA,
              (1.0 + r) * 0.125 * (1.0 + s) * dA, (1.0 - r) * 0.125 * (1.0 + s) * dA,
              (1.0 - r) * 0.25 * (1.0 - s) * dB,  (1.0 + r) * 0.25 * (1.0 - s) * dB,
              (1.0 + r) * 0.25 * (1.0 + s) * dB,  (1.0 - r) * 0.25 * (1.0 + s) * dB}}};
  }

  template <class T>
  static constexpr Values<T, 8> mapping_values(Point<T, 3> const& point) {
    const auto& [r, s, t] = point;
    const T P = -t;
    const T Q = t + 1.0;
    const T D1 = (1.0 - t) + (1.0 - t);
    const T D2 = (1.0 - t) * 4.0;
    const T F1 = (1.0 - s) * (1.0 - r);
    const T F2 = (1.0 - s) * (1.0 + r);
    const T F3 = (1.0 + s) * (1.0 + r);
    const T F4 = (1.0 + s) * (1.0 - r);
    return {F1 * P / D1, F2 * P / D1, F3 * P / D1, F4 * P / D1,
            Q * F1 / D2, Q * F2 / D2, Q * F3 / D2, Q * F4 / D2};
  }

  template <class T>
  static constexpr Derivatives<T, 3, 8> mapping_derivatives(Point<T, 3> const& point) {
    const auto& [r, s, t] = point;
    const T P = -t;
    const T Q = t + 1.0;
    const T D1 = (1.0 - t) + (1.0 - t);
    const T D2 = (1.0 - t) * 4.0;
    const T E = ((t - 1.0) + (t - 1.0)) * (t - 1.0);
    const T F1 = (1.0 - s) * (1.0 - r);
    const T F2 = (1.0 - s) * (1.0 + r);
    const T F3 = (1.0 + s) * (1.0 + r);
    const T F4 = (1.0 + s) * (1.0 - r);
    return {{{-(1.0 - s) * P / D1, (1.0 - s) * P / D1, (1.0 + s) * P / D1, -(1.0 + s) * P / D1,
              Q * -(1.0 - s) / D2, Q * (1.0 - s) / D2, Q * (1.0 + s) / D2, Q * -(1.0 + s) / D2},
             {-(1.0 - r) * P / D1, -(1.0 + r) * P / D1, (1.0 + r) * P / D1, (1.0 - r) * P / D1,
              Q * -(1.0 - r) / D2, Q * -(1.0 + r) / D2, Q * (1.0 + r) / D2, Q * (1.0 - r) / D2},
             {-F1 / E, -F2 / E, -F3 / E, -F4 / E,
              F1 / E, F2 / E, F3 / E, F4 / E}}};
  }
};

static_assert(is_kronecker<Infinite8>());

}  // namespace talvo::elements

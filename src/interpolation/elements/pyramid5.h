#pragma once

#include "interpolation/elements/element.h"

namespace talvo::elements {

/// Pyramid: the hexahedron with corners 5 to 8 merged into the apex, node 5.
struct Pyramid5 {
  static constexpr std::size_t dimension = 3;
  static constexpr std::size_t node_count = 5;

  static constexpr std::array<Point<double, 3>, 5> nodes{{
      {-1.0, -1.0, -1.0}, {+1.0, -1.0, -1.0}, {+1.0, +1.0, -1.0}, {-1.0, +1.0, -1.0},
      { 0.0,  0.0, +1.0},
  }};
  /// Face k has its centre in row k.
  static constexpr std::array<Point<double, 3>, 5> face_centres{{
      { 0.0,  0.0, -1.0},
      { 0.0, -1.0,  0.0}, {+1.0,  0.0,  0.0}, { 0.0, +1.0,  0.0}, {-1.0,  0.0,  0.0},
  }};
  static constexpr Point<double, 3> centre{0.0, 0.0, 0.0};

  template <class T>
  static constexpr Values<T, 5> values(Point<T, 3> const& point) {
    const auto& [r, s, t] = point;
    const T a = (1.0 - r) * 0.125;
    const T b = (1.0 + r) * 0.125;
    return {a * (1.0 - s) * (1.0 - t), b * (1.0 - s) * (1.0 - t), b * (1.0 + s) * (1.0 - t), a * (1.0 + s) * (1.0 - t),
            (1.0 + t) * 0.5};
  }

  template <class T>
  static constexpr Derivatives<T, 3, 5> derivatives(Point<T, 3> const& point) {
    const auto& [r, s, t] = point;
    const T a = (1.0 - r) * 0.125;
    const T b = (1.0 + r) * 0.125;
    const T c = (1.0 - s) * 0.125;
    const T d = (1.0 + s) * 0.125;
    const T c_low = c * (1.0 - t), d_low = d * (1.0 - t);
    const T a_low = a * (1.0 - t), b_low = b * (1.0 - t);
    const T n1 = a * (1.0 - s), n2 = b * (1.0 - s), n3 = b * (1.0 + s), n4 = a * (1.0 + s);
    const T zero = number<T>(0.0);
    return {{{-c_low,  c_low,  d_low, -d_low, zero},
             {-a_low, -b_low,  b_low,  a_low, zero},
             {-n1,    -n2,    -n3,    -n4,    number<T>(0.5)}}};
  }
};

static_assert(is_kronecker<Pyramid5>());

}  // namespace talvo::elements

#pragma once

#include "interpolation/elements/element.h"

namespace talvo::elements {

/// Wedge: the hexahedron with corners 3 and 4 merged into node 3, and 7 and 8 into node 6.
struct Wedge6 {
  static constexpr std::size_t dimension = 3;
  static constexpr std::size_t node_count = 6;

  static constexpr std::array<Point<double, 3>, 6> nodes{{
      {-1.0, -1.0, -1.0}, {+1.0, -1.0, -1.0}, { 0.0, +1.0, -1.0},
      {-1.0, -1.0, +1.0}, {+1.0, -1.0, +1.0}, { 0.0, +1.0, +1.0},
  }};
  /// Face k has its centre in row k. r = +1 comes before r = -1, unlike in the pyramid.
  static constexpr std::array<Point<double, 3>, 5> face_centres{{
      { 0.0,  0.0, -1.0}, { 0.0,  0.0, +1.0},
      { 0.0, -1.0,  0.0}, {+1.0,  0.0,  0.0}, {-1.0,  0.0,  0.0},
  }};
  static constexpr Point<double, 3> centre{0.0, 0.0, 0.0};

  template <class T>
  static constexpr Values<T, 6> values(Point<T, 3> const& point) {
    const auto& [r, s, t] = point;
    const T a = (1.0 - r) * 0.125;
    const T b = (1.0 + r) * 0.125;
    const T m = (1.0 + s) * 0.25;
    return {a * (1.0 - s) * (1.0 - t), b * (1.0 - s) * (1.0 - t), m * (1.0 - t),
            a * (1.0 - s) * (1.0 + t), b * (1.0 - s) * (1.0 + t), m * (1.0 + t)};
  }

  template <class T>
  static constexpr Derivatives<T, 3, 6> derivatives(Point<T, 3> const& point) {
    const auto& [r, s, t] = point;
    const T a = (1.0 - r) * 0.125;
    const T b = (1.0 + r) * 0.125;
    const T c = (1.0 - s) * 0.125;
    const T m = (1.0 + s) * 0.25;
    const T c_low = c * (1.0 - t), c_high = c * (1.0 + t);
    const T a_low = a * (1.0 - t), b_low = b * (1.0 - t), m_low = (1.0 - t) * 0.25;
    const T a_high = a * (1.0 + t), b_high = b * (1.0 + t), m_high = (1.0 + t) * 0.25;
    const T n1 = a * (1.0 - s), n2 = b * (1.0 - s);
    const T zero = number<T>(0.0);
    return {{{-c_low,  c_low, zero,  -c_high,  c_high, zero},
             {-a_low, -b_low, m_low, -a_high, -b_high, m_high},
             {-n1,    -n2,    -m,     n1,      n2,     m}}};
  }
};

static_assert(is_kronecker<Wedge6>());

}  // namespace talvo::elements

#pragma once

#include "interpolation/elements/element.h"

namespace talvo::elements {

/// Trilinear hexahedron: corners 1 to 4 on t = -1, counter-clockwise, 5 to 8 above them.
struct Hexahedron8 {
  static constexpr std::size_t dimension = 3;
  static constexpr std::size_t node_count = 8;

  static constexpr std::array<Point<double, 3>, 8> nodes{{
      {-1.0, -1.0, -1.0}, {+1.0, -1.0, -1.0}, {+1.0, +1.0, -1.0}, {-1.0, +1.0, -1.0},
      {-1.0, -1.0, +1.0}, {+1.0, -1.0, +1.0}, {+1.0, +1.0, +1.0}, {-1.0, +1.0, +1.0},
  }};
  /// Face k has its centre in row k.
  static constexpr std::array<Point<double, 3>, 6> face_centres{{
      { 0.0,  0.0, -1.0}, { 0.0,  0.0, +1.0},
      { 0.0, -1.0,  0.0}, {+1.0,  0.0,  0.0}, { 0.0, +1.0,  0.0}, {-1.0,  0.0,  0.0},
  }};
  static constexpr Point<double, 3> centre{0.0, 0.0, 0.0};

  template <class T>
  static constexpr Values<T, 8> values(Point<T, 3> const& point) {
    const auto& [r, s, t] = point;
    const T a = (1.0 - r) * 0.125;
    const T b = (1.0 + r) * 0.125;
    return {a * (1.0 - s) * (1.0 - t), b * (1.0 - s) * (1.0 - t), b * (1.0 + s) * (1.0 - t), a * (1.0 + s) * (1.0 - t),
            a * (1.0 - s) * (1.0 + t), b * (1.0 - s) * (1.0 + t), b * (1.0 + s) * (1.0 + t), a * (1.0 + s) * (1.0 + t)};
  }

  template <class T>
  static constexpr Derivatives<T, 3, 8> derivatives(Point<T, 3> const& point) {
    const auto& [r, s, t] = point;
    const T a = (1.0 - r) * 0.125;
    const T b = (1.0 + r) * 0.125;
    const T c = (1.0 - s) * 0.125;
    const T d = (1.0 + s) * 0.125;
    // The magnitudes of each row; a face has the sign of its outward direction.
    const T c_low = c * (1.0 - t), d_low = d * (1.0 - t), c_high = c * (1.0 + t), d_high = d * (1.0 + t);
    const T a_low = a * (1.0 - t), b_low = b * (1.0 - t), a_high = a * (1.0 + t), b_high = b * (1.0 + t);
    const T n1 = a * (1.0 - s), n2 = b * (1.0 - s), n3 = b * (1.0 + s), n4 = a * (1.0 + s);
    return {{{-c_low,  c_low,  d_low, -d_low, -c_high,  c_high, d_high, -d_high},
             {-a_low, -b_low,  b_low,  a_low, -a_high, -b_high, b_high,  a_high},
             {-n1,    -n2,    -n3,    -n4,     n1,      n2,     n3,      n4}}};
  }
};

static_assert(is_kronecker<Hexahedron8>());

}  // namespace talvo::elements

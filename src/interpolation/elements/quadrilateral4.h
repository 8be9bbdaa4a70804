#pragma once

#include "interpolation/elements/element.h"

namespace talvo::elements {

/// Bilinear quadrilateral.
struct Quadrilateral4 {
  static constexpr std::size_t dimension = 2;
  static constexpr std::size_t node_count = 4;

  static constexpr std::array<Point<double, 2>, 4> nodes{{{-1.0, -1.0}, {+1.0, -1.0}, {+1.0, +1.0}, {-1.0, +1.0}}};
  static constexpr Point<double, 2> centre{0.0, 0.0};

  template <class T>
  static constexpr Values<T, 4> values(Point<T, 2> const& point) {
    const auto& [r, s] = point;
    return {(1.0 - r) * 0.25 * (1.0 - s),  //
            (1.0 + r) * 0.25 * (1.0 - s),  //
            (1.0 + r) * 0.25 * (1.0 + s),  //
            (1.0 - r) * 0.25 * (1.0 + s)};
  }

  template <class T>
  static constexpr Derivatives<T, 2, 4> derivatives(Point<T, 2> const& point) {
    const auto& [r, s] = point;
    const T a = (1.0 - r) * 0.25;
    const T b = (1.0 + r) * 0.25;
    const T c = (1.0 - s) * 0.25;
    const T d = (1.0 + s) * 0.25;
    return {{{-c,  c, d, -d},
             {-a, -b, b,  a}}};
  }
};

static_assert(is_kronecker<Quadrilateral4>());

}  // namespace talvo::elements

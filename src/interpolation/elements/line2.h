#pragma once

#include "interpolation/elements/element.h"

namespace talvo::elements {

/// Linear line.
struct Line2 {
  static constexpr std::size_t dimension = 1;
  static constexpr std::size_t node_count = 2;

  static constexpr std::array<Point<double, 1>, 2> nodes{{{-1.0}, {+1.0}}};
  static constexpr Point<double, 1> centre{0.0};

  template <class T>
  static constexpr Values<T, 2> values(Point<T, 1> const& point) {
    const T r = point[0];
    return {(1.0 - r) * 0.5, (1.0 + r) * 0.5};
  }

  template <class T>
  static constexpr Derivatives<T, 1, 2> derivatives(Point<T, 1> const&) {
    return {{{number<T>(-0.5), number<T>(0.5)}}};
  }
};

static_assert(is_kronecker<Line2>());

}  // namespace talvo::elements

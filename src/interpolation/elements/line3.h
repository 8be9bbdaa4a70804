#pragma once

#include "interpolation/elements/element.h"

namespace talvo::elements {

/// Quadratic line, third node in the middle.
struct Line3 {
  static constexpr std::size_t dimension = 1;
  static constexpr std::size_t node_count = 3;

  static constexpr std::array<Point<double, 1>, 3> nodes{{{-1.0}, {+1.0}, {0.0}}};
  static constexpr Point<double, 1> centre{0.0};

  template <class T>
  static constexpr Values<T, 3> values(Point<T, 1> const& point) {
    const T r = point[0];
    // An end is its linear function less half of the middle one, so that it vanishes there.
    const T middle = 1.0 - r * r;
    const T half = middle * 0.5;
    return {(1.0 - r) * 0.5 - half, (r + 1.0) * 0.5 - half, middle};
  }

  template <class T>
  static constexpr Derivatives<T, 1, 3> derivatives(Point<T, 1> const& point) {
    const T r = point[0];
    const T d = -2.0 * r;
    return {{{-0.5 - d * 0.5, 0.5 - d * 0.5, d}}};
  }
};

static_assert(is_kronecker<Line3>());

}  // namespace talvo::elements

#pragma once

#include "interpolation/elements/element.h"

namespace talvo::elements {

/// Linear triangle in area coordinates, right angle at node 1.
struct Triangle3 {
  static constexpr std::size_t dimension = 2;
  static constexpr std::size_t node_count = 3;

  static constexpr std::array<Point<double, 2>, 3> nodes{{{0.0, 0.0}, {1.0, 0.0}, {0.0, 1.0}}};
  static constexpr Point<double, 2> centre{1.0 / 3.0, 1.0 / 3.0};

  template <class T>
  static constexpr Values<T, 3> values(Point<T, 2> const& point) {
    const auto& [r, s] = point;
    return {1.0 - r - s, r, s};
  }

  template <class T>
  static constexpr Derivatives<T, 2, 3> derivatives(Point<T, 2> const&) {
    return {{{number<T>(-1.0), number<T>(1.0), number<T>(0.0)},  //
             {number<T>(-1.0), number<T>(0.0), number<T>(1.0)}}};
  }
};

static_assert(is_kronecker<Triangle3>());

}  // namespace talvo::elements

#pragma once

#include "interpolation/elements/element.h"

namespace talvo::elements {

/// Quadratic triangle in area coordinates: corners, then the mid-sides 1-2, 2-3, 3-1.
struct Triangle6 {
  static constexpr std::size_t dimension = 2;
  static constexpr std::size_t node_count = 6;

  static constexpr std::array<Point<double, 2>, 6> nodes{{
      {0.0, 0.0}, {1.0, 0.0}, {0.0, 1.0},  // corners
      {0.5, 0.0}, {0.5, 0.5}, {0.0, 0.5},  // mid-sides
  }};
  static constexpr Point<double, 2> centre{1.0 / 3.0, 1.0 / 3.0};

  template <class T>
  static constexpr Values<T, 6> values(Point<T, 2> const& point) {
    const auto& [r, s] = point;
    const T u = 1.0 - r - s;
    const T m4 = r * 4.0 * u;
    const T m5 = 4.0 * r * s;
    const T m6 = 4.0 * s * u;
    // A corner is its linear function less half of the two mid-sides it touches, so that it vanishes there.
    return {u - (m4 + m6) * 0.5, r - (m5 + m4) * 0.5, s - (m5 + m6) * 0.5, m4, m5, m6};
  }

  template <class T>
  static constexpr Derivatives<T, 2, 6> derivatives(Point<T, 2> const& point) {
    const auto& [r, s] = point;
    const T dm4_dr = 4.0 - 8.0 * r - 4.0 * s;
    const T dm5_dr = 4.0 * s;
    const T dm6_dr = -4.0 * s;

    const T dm4_ds = -4.0 * r;
    const T dm5_ds = 4.0 * r;
    const T dm6_ds = 4.0 - 8.0 * s - 4.0 * r;

    return {{{-1.0 - (dm4_dr + dm6_dr) * 0.5, 1.0 - (dm4_dr + dm5_dr) * 0.5, -(dm6_dr + dm5_dr) * 0.5,  //
              dm4_dr, dm5_dr, dm6_dr},
             {-1.0 - (dm6_ds + dm4_ds) * 0.5, -(dm5_ds + dm4_ds) * 0.5, 1.0 - (dm6_ds + dm5_ds) * 0.5,  //
              dm4_ds, dm5_ds, dm6_ds}}};
  }
};

static_assert(is_kronecker<Triangle6>());

}  // namespace talvo::elements

#pragma once

#include "interpolation/elements/element.h"

namespace talvo::elements {

/// Serendipity quadrilateral: corners, then the mid-sides 1-2, 2-3, 3-4, 4-1.
struct Quadrilateral8 {
  static constexpr std::size_t dimension = 2;
  static constexpr std::size_t node_count = 8;

  static constexpr std::array<Point<double, 2>, 8> nodes{{
      {-1.0, -1.0}, {+1.0, -1.0}, {+1.0, +1.0}, {-1.0, +1.0},  // corners
      { 0.0, -1.0}, {+1.0,  0.0}, { 0.0, +1.0}, {-1.0,  0.0},  // mid-sides
  }};
  static constexpr Point<double, 2> centre{0.0, 0.0};

  template <class T>
  static constexpr Values<T, 8> values(Point<T, 2> const& point) {
    const auto& [r, s] = point;
    // A mid-side is the bubble along its side times the blend across the element.
    const T bubble_r = (1.0 - r * r) * 0.5;
    const T bubble_s = (1.0 - s * s) * 0.5;
    const T m5 = bubble_r * (1.0 - s);
    const T m6 = bubble_s * (1.0 + r);
    const T m7 = bubble_r * (1.0 + s);
    const T m8 = bubble_s * (1.0 - r);
    // A corner is its bilinear function less half of the two mid-sides it touches, so that it vanishes there.
    return {(1.0 - r) * 0.25 * (1.0 - s) - (m8 + m5) * 0.5,
            (1.0 + r) * 0.25 * (1.0 - s) - (m6 + m5) * 0.5,
            (1.0 + r) * 0.25 * (1.0 + s) - (m7 + m6) * 0.5,
            (1.0 - r) * 0.25 * (1.0 + s) - (m8 + m7) * 0.5,
            m5, m6, m7, m8};
  }

  template <class T>
  static constexpr Derivatives<T, 2, 8> derivatives(Point<T, 2> const& point) {
    const auto& [r, s] = point;
    const T bubble_r = (1.0 - r * r) * 0.5;
    const T bubble_s = (1.0 - s * s) * 0.5;
    const T a = (1.0 - r) * 0.25;
    const T b = (1.0 + r) * 0.25;
    const T c = (1.0 - s) * 0.25;
    const T d = (1.0 + s) * 0.25;

    const T dm5_dr = -r * (1.0 - s);
    const T dm6_dr = bubble_s;
    const T dm7_dr = -r * (1.0 + s);
    const T dm8_dr = -bubble_s;

    const T dm5_ds = -bubble_r;
    const T dm6_ds = -s * (1.0 + r);
    const T dm7_ds = bubble_r;
    const T dm8_ds = -s * (1.0 - r);

    return {{{-c - (dm5_dr + dm8_dr) * 0.5,
               c - (dm5_dr + dm6_dr) * 0.5,
               d - (dm7_dr + dm6_dr) * 0.5,
              -d - (dm7_dr + dm8_dr) * 0.5,
              dm5_dr, dm6_dr, dm7_dr, dm8_dr},
             {-a - (dm8_ds + dm5_ds) * 0.5,
              -b - (dm6_ds + dm5_ds) * 0.5,
               b - (dm6_ds + dm7_ds) * 0.5,
               a - (dm8_ds + dm7_ds) * 0.5,
              dm5_ds, dm6_ds, dm7_ds, dm8_ds}}};
  }
};

static_assert(is_kronecker<Quadrilateral8>());

}  // namespace talvo::elements

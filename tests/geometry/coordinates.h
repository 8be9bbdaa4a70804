#pragma once

/// @file
/// Coordinates for random tests of geometry.

#include <talvo/core/vec2.h>
#include <talvo/core/vec3.h>

#include <cmath>

#include "support/random.h"

namespace talvo::test {

/// Coordinates of one kind for a whole case, so that its points relate to each other: anything at all, ordinary
/// numbers, a small grid (where points coincide and lie in lines), a grid far from the origin, a grid of tiny cells,
/// and ordinary numbers times one power of two of any size.
class Coordinates {
 public:
  explicit Coordinates(Random& random)
      : random_(random), kind_(random.below(6)), exponent_(static_cast<int>(random.below(2000)) - 1000) {}

  double operator()() {
    constexpr double kFar = 1e8;
    constexpr double kTinyCell = 1e-10;
    switch (kind_) {
      case 0:
        return random_.any_double();
      case 1:
        return random_.uniform(-2.0, 2.0);
      case 2:
        return on_grid();
      case 3:
        return kFar + on_grid();
      case 4:
        return on_grid() * kTinyCell;
      default:
        return std::ldexp(random_.uniform(-2.0, 2.0), exponent_);
    }
  }

  Vec2<double> point2() { return {(*this)(), (*this)()}; }
  /// With a `w` that nothing may look at.
  Vec3<double> point3() { return {(*this)(), (*this)(), (*this)(), 3.0}; }

 private:
  double on_grid() { return static_cast<double>(random_.below(7)) - 3.0; }

  Random& random_;
  std::uint64_t kind_;
  int exponent_;
};

/// The nearest float, or the double itself. Volatile because g++ 12 drops a narrowing that is widened again where it
/// vectorises two neighbours, as tests in both precisions do.
template <class T>
T narrowed(double value) {
  const volatile T rounded = static_cast<T>(value);
  return rounded;
}

/// An integer from -limit to limit.
inline double integer(Random& random, int limit) {
  return static_cast<double>(random.below(2 * static_cast<std::uint64_t>(limit) + 1)) - limit;
}

inline Vec2<double> integer_point2(Random& random, int limit) {
  return {integer(random, limit), integer(random, limit)};
}
inline Vec3<double> integer_point3(Random& random, int limit) {
  return {integer(random, limit), integer(random, limit), integer(random, limit)};
}

}  // namespace talvo::test

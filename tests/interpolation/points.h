#pragma once

/// @file
/// Natural coordinates to evaluate the interpolation functions at.

#include <array>
#include <initializer_list>
#include <iomanip>
#include <sstream>
#include <string>

#include "support/random.h"

namespace talvo::test {

/// A coordinate in the element, at or beside one of its distinguished places (ends, middle, half), far outside, or any
/// double at all, in equal shares.
inline double mixed_coordinate(Random& random) {
  constexpr std::array<double, 7> places{-1.0, -0.5, -0.0, 0.0, 1.0 / 3, 0.5, 1.0};
  switch (random.below(4)) {
    case 0:
      return random.uniform(-1, 1);
    case 1:
      return random.near(places[random.below(places.size())], 1);
    case 2:
      return random.uniform(-1000, 1000);
    default:
      return random.any_double();
  }
}

/// Enough to repeat one case of a random test.
inline std::string describe_case(int seed, int number, std::initializer_list<double> point) {
  std::ostringstream out;
  out << "seed " << seed << ", case " << number << ", point" << std::setprecision(17);
  for (const double coordinate : point) out << ' ' << coordinate;
  return out.str();
}

}  // namespace talvo::test

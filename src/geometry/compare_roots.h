#pragma once

#include <cmath>
#include <limits>

namespace talvo {

/// sqrt(a) > sqrt(b), for the rounded roots, without taking them where the radicands tell.
///
/// a <= b decides it, since the rounded root is monotonic. So does a > b·(1 + 4 eps): the exact roots are then more
/// than 2 eps·(1 - eps) apart, relatively, which is more than one unit in the last place, so that they round to
/// different numbers. In between, and for NaN, the roots are taken.
template <class T>
bool root_exceeds(T a, T b) {
  constexpr T one_and_a_little = T{1} + 5 * std::numeric_limits<T>::epsilon();
  if (a <= b) return false;
  if (a > b * one_and_a_little) return true;
  return std::sqrt(a) > std::sqrt(b);
}

}  // namespace talvo

#pragma once

namespace talvo {

/// x². The one way the library squares a number: the correctly rounded product, in every build. (Optimisers turn
/// pow(x, 2.0) into it, debug builds do not, and the two differ in the last bit now and then.)
template <class T>
constexpr T square(T x) {
  return x * x;
}

}  // namespace talvo

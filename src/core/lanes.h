#pragma once

/// @file
/// Two doubles side by side, computed with one instruction where the compiler offers it. Each lane keeps its own order
/// of operations, so that the bits are those of two single sums.

#include <talvo/core/vec3.h>
#include <cstring>

namespace talvo {

#if defined(__GNUC__)

/// Two doubles in one register.
using Pair = double __attribute__((vector_size(16)));

inline Pair both(double value) { return Pair{value, value}; }

#else

/// Two doubles; the same operations without the compiler's vectors.
struct Pair {
  double lane[2];

  double operator[](int i) const { return lane[i]; }
  Pair& operator+=(Pair const& other) {
    lane[0] += other.lane[0];
    lane[1] += other.lane[1];
    return *this;
  }
  friend Pair operator+(Pair const& a, Pair const& b) { return {{a.lane[0] + b.lane[0], a.lane[1] + b.lane[1]}}; }
  friend Pair operator*(Pair const& a, Pair const& b) { return {{a.lane[0] * b.lane[0], a.lane[1] * b.lane[1]}}; }
};

inline Pair both(double value) { return Pair{{value, value}}; }

#endif

inline Pair load(const double* two) {
  Pair pair;
  std::memcpy(&pair, two, sizeof pair);
  return pair;
}

inline void store(Pair const& pair, double* two) { std::memcpy(two, &pair, sizeof pair); }

/// Components x and y. A Vec3 is four wide, so that each of its halves is one load.
inline Pair load_xy(Vec3<double> const& v) {
  Pair xy;
  std::memcpy(&xy, &v, sizeof xy);
  return xy;
}

/// Components z and w.
inline Pair load_zw(Vec3<double> const& v) {
  Pair zw;
  std::memcpy(&zw, reinterpret_cast<const char*>(&v) + sizeof zw, sizeof zw);
  return zw;
}

}  // namespace talvo

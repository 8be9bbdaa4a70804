#pragma once

/// @file
/// Numbers for property tests: the same sequence for the same seed with every compiler and standard library.

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>

namespace talvo::test {

/// A seeded source of ordinary, extreme and awkward doubles.
///
/// The engine is fixed by the language standard, the distributions of <random> are not: hence the arithmetic here.
/// Draw in statements or braced lists, `Vec2<double>{random.any_double(), random.any_double()}`: the order of a
/// function call's arguments is the compiler's.
/// @code
/// talvo::test::Random random(17);
/// for (int i = 0; i < 1000; ++i) {
///   SCOPED_TRACE(::testing::Message() << "seed 17, case " << i);
///   const double x = random.any_double();
/// @endcode
class Random {
 public:
  explicit Random(std::uint64_t seed) : engine_(seed) {}

  /// Evenly spread over [a, b].
  double uniform(double a, double b) { return a + (b - a) * (static_cast<double>(engine_() >> 11U) * 0x1p-53); }

  /// One of 0, 1, ..., count - 1; count must not be 0.
  std::uint64_t below(std::uint64_t count) { return engine_() % count; }

  /// Any double at all: in equal shares a special value (zeros of both signs, infinities, NaN, the ends of the normal
  /// and denormal ranges, 1 and its neighbours), a denormal, a number with an exponent from -8 to 8, and a number with
  /// any exponent.
  double any_double() {
    switch (below(4)) {
      case 0:
        return with_random_sign(kSpecial[below(kSpecial.size())]);
      case 1:
        return from_parts(0);
      case 2:
        return from_parts(kExponentOfOne - 8 + below(17));
      default:
        return from_parts(1 + below(kLargestExponent));
    }
  }

  /// As any_double(), without infinities and NaN.
  double finite_double() {
    double value = any_double();
    while (!std::isfinite(value)) value = any_double();
    return value;
  }

  /// x or a neighbour of it, at most `steps` representable numbers away. Nearly equal arguments find cancellation and
  /// the wrong side of a threshold, which independent numbers never do.
  double near(double x, int steps = 4) {
    const double target = with_random_sign(Limits::infinity());
    for (std::uint64_t i = below(static_cast<std::uint64_t>(steps) + 1); i > 0; --i) x = std::nextafter(x, target);
    return x;
  }

 private:
  using Limits = std::numeric_limits<double>;

  // Biased exponents of the IEEE 754 double.
  static constexpr std::uint64_t kExponentOfOne = 1023;
  static constexpr std::uint64_t kLargestExponent = 2046;

  static constexpr std::array<double, 11> kSpecial{
      0.0,           Limits::denorm_min(), Limits::min(), Limits::max(), Limits::infinity(), Limits::quiet_NaN(), 1.0,
      1.0 - 0x1p-53, 1.0 + 0x1p-52,        0.5,           2.0,
  };

  double with_random_sign(double value) { return below(2) == 0 ? value : -value; }

  double from_parts(std::uint64_t biased_exponent) {
    constexpr std::uint64_t kSignAndFraction = 0x800F'FFFF'FFFF'FFFF;
    return std::bit_cast<double>((engine_() & kSignAndFraction) | (biased_exponent << 52U));
  }

  std::mt19937_64 engine_;
};

}  // namespace talvo::test

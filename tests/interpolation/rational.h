#pragma once

/// @file
/// Exact arithmetic: fractions, and dual numbers that carry a derivative along.

#include <cstdint>
#include <numeric>
#include <ostream>
#include <stdexcept>

namespace talvo::test {

/// A fraction in lowest terms with a positive denominator. Exact: what does not fit 64 bits throws.
class Rational {
 public:
  /// The value of a double, which is a fraction itself: its denominator is a power of two.
  Rational(double value = 0) {
    while (value != static_cast<double>(static_cast<std::int64_t>(value))) {
      value *= 2;
      denominator_ = times(denominator_, 2);
    }
    numerator_ = static_cast<std::int64_t>(value);
  }

  Rational(std::int64_t numerator, std::int64_t denominator) : numerator_(numerator), denominator_(denominator) {
    if (denominator_ == 0) throw std::domain_error("division by zero");
    const std::int64_t divisor = std::gcd(numerator_, denominator_) * (denominator_ < 0 ? -1 : 1);
    numerator_ /= divisor;
    denominator_ /= divisor;
  }

  friend Rational operator-(Rational const& a) { return {-a.numerator_, a.denominator_}; }

  friend Rational operator+(Rational const& a, Rational const& b) {
    const std::int64_t common = std::gcd(a.denominator_, b.denominator_);
    return {plus(times(a.numerator_, b.denominator_ / common), times(b.numerator_, a.denominator_ / common)),
            times(a.denominator_ / common, b.denominator_)};
  }
  friend Rational operator-(Rational const& a, Rational const& b) { return a + -b; }

  // Common factors go first, to keep the products small.
  friend Rational operator*(Rational const& a, Rational const& b) {
    const Rational left(a.numerator_, b.denominator_), right(b.numerator_, a.denominator_);
    return {times(left.numerator_, right.numerator_), times(left.denominator_, right.denominator_)};
  }
  friend Rational operator/(Rational const& a, Rational const& b) { return a * Rational(b.denominator_, b.numerator_); }

  friend bool operator==(Rational const&, Rational const&) = default;

  friend std::ostream& operator<<(std::ostream& out, Rational const& a) {
    return out << a.numerator_ << '/' << a.denominator_;
  }

 private:
  static std::int64_t times(std::int64_t a, std::int64_t b) {
    std::int64_t product = 0;
    if (__builtin_mul_overflow(a, b, &product)) throw std::overflow_error("fraction too large");
    return product;
  }
  static std::int64_t plus(std::int64_t a, std::int64_t b) {
    std::int64_t sum = 0;
    if (__builtin_add_overflow(a, b, &sum)) throw std::overflow_error("fraction too large");
    return sum;
  }

  std::int64_t numerator_ = 0;
  std::int64_t denominator_ = 1;
};

/// A value with its derivative along one direction. Arithmetic on it is exact differentiation: sum, product and
/// quotient rule, nothing else.
struct Dual {
  Rational value, slope;

  Dual(double constant = 0) : value(constant) {}
  Dual(Rational const& constant) : value(constant) {}
  Dual(Rational const& value_, Rational const& slope_) : value(value_), slope(slope_) {}

  friend Dual operator-(Dual const& a) { return {-a.value, -a.slope}; }
  friend Dual operator+(Dual const& a, Dual const& b) { return {a.value + b.value, a.slope + b.slope}; }
  friend Dual operator-(Dual const& a, Dual const& b) { return {a.value - b.value, a.slope - b.slope}; }
  friend Dual operator*(Dual const& a, Dual const& b) {
    return {a.value * b.value, a.slope * b.value + a.value * b.slope};
  }
  friend Dual operator/(Dual const& a, Dual const& b) {
    return {a.value / b.value, (a.slope * b.value - a.value * b.slope) / (b.value * b.value)};
  }

  friend bool operator==(Dual const&, Dual const&) = default;
};

}  // namespace talvo::test

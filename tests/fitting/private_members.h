#pragma once

/// @file
/// The state of a fit and its private operations, for tests: the coefficients have no other way out than three digits
/// of text, and no fit fills the abscissa limits.

#include <talvo/core/vec2.h>
#include <talvo/fitting/least_squares.h>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace talvo::test {

using Talvo::Util::LeastSquares;

/// An explicit instantiation may name private members; the friend that it defines hands them on.
template <class Key, typename Key::Pointer Member>
struct Reveal {
  friend typename Key::Pointer reveal(Key /*key*/) { return Member; }
};

template <class Key, class Type>
struct PrivateMember {
  using Pointer = Type;
};

struct FitMember : PrivateMember<FitMember, LeastSquares::Fit LeastSquares::*> {
  friend Pointer reveal(FitMember key);
};
struct OrderMember : PrivateMember<OrderMember, std::uint64_t LeastSquares::*> {
  friend Pointer reveal(OrderMember key);
};
struct LimitsMember : PrivateMember<LimitsMember, std::pair<double, double> LeastSquares::*> {
  friend Pointer reveal(LimitsMember key);
};
struct CoefficientsMember : PrivateMember<CoefficientsMember, std::vector<double> LeastSquares::*> {
  friend Pointer reveal(CoefficientsMember key);
};
struct SincMember : PrivateMember<SincMember, double (LeastSquares::*)(double) const> {
  friend Pointer reveal(SincMember key);
};
struct FractionMember : PrivateMember<FractionMember, double (*)(unsigned long long, unsigned long long)> {
  friend Pointer reveal(FractionMember key);
};
struct CheckSizeMember : PrivateMember<CheckSizeMember, void (*)(std::vector<Vec2<double>> const&, int)> {
  friend Pointer reveal(CheckSizeMember key);
};
struct CheckNonsingularMember : PrivateMember<CheckNonsingularMember, void (*)(long long, int)> {
  friend Pointer reveal(CheckNonsingularMember key);
};

template struct Reveal<FitMember, &LeastSquares::m_fit>;
template struct Reveal<OrderMember, &LeastSquares::m_order>;
template struct Reveal<LimitsMember, &LeastSquares::m_abscissaLimits>;
template struct Reveal<CoefficientsMember, &LeastSquares::m_coefficients>;
template struct Reveal<SincMember, &LeastSquares::sinc>;
template struct Reveal<FractionMember, &LeastSquares::Fraction>;
template struct Reveal<CheckSizeMember, &LeastSquares::CheckSize>;
template struct Reveal<CheckNonsingularMember, &LeastSquares::CheckNonsingular>;

/// The protected operations in public, and the state in both directions.
class OpenLeastSquares : public LeastSquares {
 public:
  OpenLeastSquares() = default;

  /// As after a fit that gave these coefficients.
  OpenLeastSquares(Fit fit, std::uint64_t order, std::vector<double> coefficients) {
    set_fit(fit);
    this->*reveal(OrderMember{}) = order;
    this->*reveal(CoefficientsMember{}) = std::move(coefficients);
  }

  using LeastSquares::CalculatePoly;
  using LeastSquares::CalculateSine;
  using LeastSquares::EquationPoly;
  using LeastSquares::EquationSine;
  using LeastSquares::PolyOrdinate;
  using LeastSquares::SineOrdinate;

  double sinc(double x) const { return (this->*reveal(SincMember{}))(x); }
  static double fraction(unsigned long long a, unsigned long long b) { return reveal(FractionMember{})(a, b); }
  static void check_size(std::vector<Vec2<double>> const& points, int order) {
    reveal(CheckSizeMember{})(points, order);
  }
  static void check_nonsingular(long long rank, int expected) { reveal(CheckNonsingularMember{})(rank, expected); }

  Fit fit() const { return this->*reveal(FitMember{}); }
  std::uint64_t order() const { return this->*reveal(OrderMember{}); }
  std::pair<double, double> limits() const { return this->*reveal(LimitsMember{}); }
  std::vector<double> const& coefficients() const { return this->*reveal(CoefficientsMember{}); }

  void set_fit(Fit fit) { this->*reveal(FitMember{}) = fit; }
  void set_limits(double min, double max) { this->*reveal(LimitsMember{}) = {min, max}; }
};

}  // namespace talvo::test

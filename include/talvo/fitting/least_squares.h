#pragma once

/// @file
/// Least-squares fits of a polynomial or a sine series, with their equation as text.

#include <talvo/core/vec2.h>
#include <talvo/export.h>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace Talvo::Util {

/// A curve y = f(x) through measured points, by linear least squares.
///
/// | Fit        | curve                                                                                     |
/// |------------|-------------------------------------------------------------------------------------------|
/// | Polynomial | c0 + c1·x + ... + cn·x^n, n = order                                                         |
/// | Sine       | c1·sin(t) + ... + cm·sin(m·t), m = order, t = pi·(x - xmin)/(xmax - xmin) over the data       |
///
/// @code
/// Talvo::Util::LeastSquares fit;
/// fit.CalculateCoeff({{0, 1}, {1, 3}, {2, 5}}, Talvo::Util::LeastSquares::Polynomial, 1);  // R² = 1
/// fit.Ordinate(3);        // 7
/// fit.Equation(false);    // "2x + 1"
/// @endcode
///
/// Method: normal equations of the powers or sines as they stand, solved by LU decomposition with full pivoting. The
/// condition number is the square of the problem's: abscissae far from 0, or an order beyond about 6, lose digits or
/// are refused as singular. Shift and scale the abscissae to about [-1, 1] first.
class TALVO_EXPORT LeastSquares {
 public:
  /// What is fitted. Any other value is refused.
  enum Fit : std::int32_t {
    Polynomial = 0,
    Sine = 1,
  };

  /// Fits the curve and returns R squared.
  ///
  /// R² = 1 - SSR/SST, from the sums of squares of the residuals and about the mean. It is not guarded: for data with
  /// all y equal it is -infinity, or NaN when the fit is perfect too. For a sine fit, which has no constant term, it
  /// may be negative.
  ///
  /// A fit that throws leaves the new fit type and order in the object, no coefficients, and R² and norm 0.
  ///
  /// @param order  a polynomial has order + 1 coefficients, a sine series `order`. An order of 0 fits no sine at all.
  ///
  /// Throws std::invalid_argument "Unknown fit type"; then "Insufficient points for selected order" unless there are at
  /// least order + 1 points, and for a negative order; std::runtime_error "Singular matrix - cannot fit curve" when the
  /// points do not determine the coefficients.
  double CalculateCoeff(std::vector<Vec2<double>> const& points, Fit fit, int order);

  /// The fitted curve at x.
  ///
  /// @warning A sine fit is not evaluated by this: the highest harmonic is left out, and the abscissa limits are those
  /// of the object, which no fit fills, so that the result is NaN for an order of 2 or more and 0.0 below. Sum the
  /// series yourself, with AbscissaLimits() of the points, for the curve that was fitted.
  ///
  /// Powers run up to the order, not to the number of coefficients: in an object never fitted, or whose fit failed, the
  /// coefficient that is not there throws std::out_of_range "invalid vector subscript". 1.7976931348623157e308 for an
  /// unknown fit type.
  double Ordinate(double x) const;

  /// R squared of the last fit; 0.0 before one and after one that failed.
  double Rsquared() const { return m_rSquared; }
  /// The square root of the residual sum of squares of the last fit; 0.0 before one and after one that failed.
  double Norm() const { return m_norm; }

  /// (smallest x, largest x). A NaN does not count, unless it comes first.
  /// Throws std::invalid_argument "No data points supplied for least squares fit" for an empty list.
  static std::pair<double, double> AbscissaLimits(std::vector<Vec2<double>> const& points);

  /// The fitted curve as one line of text, each number with three significant digits.
  ///
  /// Polynomials run from the highest power, "3x^2 + -2x + 1", or with `html` "3x<sup>2</sup> + -2x + 1"; sines from
  /// the first harmonic, "2sin(x) + 0.5sin(2x)", where x stands for t above. Coefficients below 1e-10 in magnitude are
  /// left out; a negative one reads "+ -2x", and one reads "1x". Empty without a fit and for an unknown fit type.
  std::string Equation(bool html) const;

 protected:
  /// @name The steps of CalculateCoeff() and Ordinate(), for derived classes
  /// @{
  double CalculatePoly(std::vector<Vec2<double>> const& points, int order);
  double CalculateSine(std::vector<Vec2<double>> const& points, int order);
  double PolyOrdinate(double x) const;
  double SineOrdinate(double x) const;
  std::string EquationPoly(bool html) const;
  std::string EquationSine() const;
  /// @}

 private:
  double sinc(double x) const;
  static double Fraction(unsigned long long a, unsigned long long b);
  static void CheckSize(std::vector<Vec2<double>> const& points, int order);
  static void CheckNonsingular(long long rank, int expected);

  double Coefficient(std::uint64_t index) const;

  Fit m_fit = Polynomial;
  std::uint64_t m_order = 1;
  std::pair<double, double> m_abscissaLimits{0.0, 0.0};
  std::vector<double> m_coefficients;
  double m_rSquared = 0.0;
  double m_norm = 0.0;
};

}  // namespace Talvo::Util

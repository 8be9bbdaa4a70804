#include "core/square.h"
#include "fitting/equation.h"
#include "fitting/normal_equations.h"

#include <talvo/fitting/least_squares.h>
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <stdexcept>

namespace Talvo::Util {

using talvo::square;

namespace {

using Points = std::vector<Vec2<double>>;

constexpr double pi = 3.141592653589793;
constexpr const char* no_points = "No data points supplied for least squares fit";

// The abscissa of a sine series: the span of the data becomes half a period.
double phase(double x, std::pair<double, double> const& limits) {
  return (x - limits.first) * pi / (limits.second - limits.first);
}

// x^k as `pow` gives it. It gives x^0 = 1 and x^1 = x exactly, so that it need not be asked.
double power(double x, std::size_t k) {
  if (k == 0) return 1.0;
  if (k == 1) return x;
  return std::pow(x, static_cast<double>(k));
}

// What a fit needs of its basis functions: their values at each point, point by point.
struct Basis {
  std::size_t functions;
  std::vector<double> values;

  const double* at(std::size_t point) const { return values.data() + point * functions; }
};

struct Quality {
  double r_squared;
  double norm;
};

// Sums run in the order of the points, f(x) in the order of the coefficients; all start from 0.0.
Quality quality_of(Points const& points, Basis const& basis, std::vector<double> const& coefficients) {
  double sum = 0.0;
  for (auto const& point : points) sum += point.y;
  const double mean = sum / static_cast<double>(points.size());
  double total = 0.0;
  double residual = 0.0;
  for (std::size_t p = 0; p < points.size(); ++p) {
    const double* values = basis.at(p);
    double f = 0.0;
    for (std::size_t k = 0; k < coefficients.size(); ++k) f += coefficients[k] * values[k];
    total += square(points[p].y - mean);
    residual += square(points[p].y - f);
  }
  return {1.0 - residual / total, std::sqrt(residual)};
}

// Σ over the points of value k times y, for the first `unknowns` functions.
std::vector<double> right_side(Points const& points, Basis const& basis, std::size_t unknowns) {
  std::vector<double> b(unknowns, 0.0);
  for (std::size_t p = 0; p < points.size(); ++p) {
    const double* values = basis.at(p);
    for (std::size_t i = 0; i < unknowns; ++i) b[i] += values[i] * points[p].y;
  }
  return b;
}

// The powers 0 to 2n - 2 of each abscissa: entry (i, j) of the normal matrix is the sum of power i + j.
Basis powers(Points const& points, std::size_t unknowns) {
  Basis basis{2 * unknowns - 1, {}};
  basis.values.reserve(points.size() * basis.functions);
  for (auto const& point : points) {
    for (std::size_t k = 0; k < basis.functions; ++k) basis.values.push_back(power(point.x, k));
  }
  return basis;
}

std::vector<double> normal_matrix_of_powers(Points const& points, Basis const& basis, std::size_t unknowns) {
  std::vector<double> sums(basis.functions, 0.0);
  for (std::size_t p = 0; p < points.size(); ++p) {
    for (std::size_t k = 0; k < basis.functions; ++k) sums[k] += basis.at(p)[k];
  }
  std::vector<double> A;
  A.reserve(unknowns * unknowns);
  for (std::size_t i = 0; i < unknowns; ++i) {
    for (std::size_t j = 0; j < unknowns; ++j) A.push_back(sums[i + j]);
  }
  return A;
}

// sin(1·t) to sin(m·t) of each point.
Basis sines(Points const& points, std::pair<double, double> const& limits, std::size_t harmonics) {
  Basis basis{harmonics, {}};
  basis.values.reserve(points.size() * harmonics);
  for (auto const& point : points) {
    const double t = phase(point.x, limits);
    for (std::size_t k = 1; k <= harmonics; ++k) basis.values.push_back(std::sin(static_cast<double>(k) * t));
  }
  return basis;
}

std::vector<double> normal_matrix_of_sines(Points const& points, Basis const& basis) {
  const std::size_t m = basis.functions;
  std::vector<double> A(m * m, 0.0);
  for (std::size_t p = 0; p < points.size(); ++p) {
    const double* values = basis.at(p);
    for (std::size_t i = 0; i < m; ++i) {
      for (std::size_t j = 0; j < m; ++j) A[i * m + j] += values[i] * values[j];
    }
  }
  return A;
}

}  // namespace

double LeastSquares::CalculateCoeff(Points const& points, Fit fit, int order) {
  m_fit = fit;
  m_order = static_cast<std::uint64_t>(static_cast<std::int64_t>(order));
  m_coefficients.clear();
  m_rSquared = 0.0;
  m_norm = 0.0;
  switch (fit) {
    case Polynomial:
      return CalculatePoly(points, order);
    case Sine:
      return CalculateSine(points, order);
  }
  throw std::invalid_argument("Unknown fit type");
}

double LeastSquares::CalculatePoly(Points const& points, int order) {
  m_coefficients.clear();
  CheckSize(points, order);
  const std::size_t unknowns = static_cast<std::size_t>(order) + 1;
  const Basis basis = powers(points, unknowns);
  const auto solution =
      talvo::fitting::solve(normal_matrix_of_powers(points, basis, unknowns), right_side(points, basis, unknowns));
  CheckNonsingular(solution.rank, order + 1);
  m_coefficients = solution.values;
  const Quality quality = quality_of(points, basis, m_coefficients);
  m_rSquared = quality.r_squared;
  m_norm = quality.norm;
  return m_rSquared;
}

double LeastSquares::CalculateSine(Points const& points, int order) {
  m_coefficients.clear();
  CheckSize(points, order);
  const auto limits = AbscissaLimits(points);
  const Basis basis = sines(points, limits, static_cast<std::size_t>(order));
  const auto solution =
      talvo::fitting::solve(normal_matrix_of_sines(points, basis), right_side(points, basis, basis.functions));
  CheckNonsingular(solution.rank, order);
  m_coefficients = solution.values;
  const Quality quality = quality_of(points, basis, m_coefficients);
  m_rSquared = quality.r_squared;
  m_norm = quality.norm;
  return m_rSquared;
}

double LeastSquares::Ordinate(double x) const {
  switch (m_fit) {
    case Polynomial:
      return PolyOrdinate(x);
    case Sine:
      return SineOrdinate(x);
  }
  return std::numeric_limits<double>::max();
}

double LeastSquares::PolyOrdinate(double x) const {
  double sum = 0.0;
  // Ends for every order: the first coefficient that is not there throws.
  for (std::uint64_t k = 0;; ++k) {
    sum += Coefficient(k) * power(x, static_cast<std::size_t>(k));
    if (k == m_order) return sum;
  }
}

double LeastSquares::SineOrdinate(double x) const {
  const double w = phase(x, m_abscissaLimits);
  double sum = 0.0;
  if (m_order <= 1) return sum;
  // The highest harmonic is left out, and no fit fills the limits. Callers rely on both.
  for (std::uint64_t k = 1; k < m_order; ++k) sum += std::sin(static_cast<double>(k) * w) * Coefficient(k - 1);
  return sum;
}

double LeastSquares::Coefficient(std::uint64_t index) const {
  // Not vector::at, whose text differs between standard libraries.
  if (index >= m_coefficients.size()) throw std::out_of_range("invalid vector subscript");
  return m_coefficients[static_cast<std::size_t>(index)];
}

std::pair<double, double> LeastSquares::AbscissaLimits(Points const& points) {
  if (points.empty()) throw std::invalid_argument(no_points);
  double smallest = points.front().x;
  double largest = smallest;
  for (auto const& point : points) {
    if (point.x < smallest) smallest = point.x;
    if (point.x > largest) largest = point.x;
  }
  return {smallest, largest};
}

std::string LeastSquares::Equation(bool html) const {
  switch (m_fit) {
    case Polynomial:
      return EquationPoly(html);
    case Sine:
      return EquationSine();
  }
  return {};
}

std::string LeastSquares::EquationPoly(bool html) const {
  return talvo::fitting::polynomial_text(m_coefficients, html);
}

std::string LeastSquares::EquationSine() const { return talvo::fitting::sine_text(m_coefficients); }

double LeastSquares::sinc(double x) const {
  if (std::isinf(x)) return 0.0;
  // Below this the next term of the series, x⁴/120, is less than an ulp of 1.
  if (std::fabs(x) >= 0.00040283203125) return std::sin(x) / x;
  return 1.0 - x * x / 6.0;
}

double LeastSquares::Fraction(unsigned long long a, unsigned long long b) {
  return static_cast<double>(a) / static_cast<double>(b);
}

void LeastSquares::CheckSize(Points const& points, int order) {
  // A negative order becomes a number beyond every list.
  if (static_cast<std::uint64_t>(static_cast<std::int64_t>(order)) >= points.size()) {
    throw std::invalid_argument("Insufficient points for selected order");
  }
}

void LeastSquares::CheckNonsingular(long long rank, int expected) {
  if (rank != expected) throw std::runtime_error("Singular matrix - cannot fit curve");
}

}  // namespace Talvo::Util

#pragma once

/// @file
/// The fits written down literally, term by term, for comparison bit by bit.

#ifndef EIGEN_DONT_VECTORIZE
#error "Eigen's vector code adds in another order than the library"
#endif

#include <talvo/core/vec2.h>

#include <Eigen/LU>
#include <cmath>
#include <cstddef>
#include <functional>
#include <optional>
#include <vector>

namespace talvo::test {

using Points = std::vector<Vec2<double>>;

struct PlainFit {
  std::vector<double> coefficients;
  double r_squared = 0.0;
  double norm = 0.0;
};

/// x^k by pow. The compiler must not see the exponent: it would replace a second power by x * x, which is not the same
/// number.
inline double plain_power(double x, std::size_t k) {
  volatile auto exponent = static_cast<double>(k);
  return std::pow(x, exponent);
}

/// The k-th function of the fit, counted from 0, at x.
using Basis = std::function<double(double x, std::size_t k)>;

inline double plain_curve(std::vector<double> const& coefficients, Basis const& basis, double x) {
  double sum = 0.0;
  for (std::size_t k = 0; k < coefficients.size(); ++k) sum += coefficients[k] * basis(x, k);
  return sum;
}

inline Eigen::Index eigen_index(std::size_t i) { return static_cast<Eigen::Index>(i); }

/// R² and norm of coefficients.
inline PlainFit plain_quality(Points const& points, std::vector<double> coefficients, Basis const& basis) {
  double sum = 0.0;
  for (Vec2<double> const& p : points) sum += p.y;
  const double mean = sum / static_cast<double>(points.size());
  double total = 0.0;
  double residual = 0.0;
  for (Vec2<double> const& p : points) {
    total += (p.y - mean) * (p.y - mean);
    const double r = p.y - plain_curve(coefficients, basis, p.x);
    residual += r * r;
  }
  return {std::move(coefficients), 1.0 - residual / total, std::sqrt(residual)};
}

/// Coefficients of A c = b; none if the rank of A is not its size.
inline std::optional<std::vector<double>> plain_solution(Eigen::MatrixXd const& a, Eigen::VectorXd const& b) {
  if (a.rows() == 0) return std::vector<double>{};
  const Eigen::FullPivLU<Eigen::MatrixXd> lu(a);
  if (lu.rank() != a.rows()) return std::nullopt;
  const Eigen::VectorXd c = lu.solve(b);
  return std::vector<double>(c.begin(), c.end());
}

/// y = Σ c_k x^k, k = 0..order; nothing if the normal equations are singular.
inline std::optional<PlainFit> plain_polynomial(Points const& points, int order) {
  const auto n = static_cast<std::size_t>(order) + 1;
  Eigen::MatrixXd a = Eigen::MatrixXd::Zero(eigen_index(n), eigen_index(n));
  Eigen::VectorXd b = Eigen::VectorXd::Zero(eigen_index(n));
  for (std::size_t i = 0; i < n; ++i) {
    for (std::size_t j = 0; j < n; ++j) {
      for (Vec2<double> const& p : points) a(eigen_index(i), eigen_index(j)) += plain_power(p.x, i + j);
    }
    for (Vec2<double> const& p : points) b(eigen_index(i)) += plain_power(p.x, i) * p.y;
  }
  auto coefficients = plain_solution(a, b);
  if (!coefficients) return std::nullopt;
  return plain_quality(points, *std::move(coefficients), plain_power);
}

/// y = Σ c_k sin(k t), k = 1..order, with t from 0 to π over the points; nothing if the normal equations are singular.
inline std::optional<PlainFit> plain_sine(Points const& points, int order) {
  double min = points[0].x;
  double max = points[0].x;
  for (Vec2<double> const& p : points) {
    if (p.x < min) min = p.x;
    if (p.x > max) max = p.x;
  }
  const Basis sine = [=](double x, std::size_t k) {
    const double t = ((x - min) * 3.141592653589793) / (max - min);
    return std::sin(static_cast<double>(k + 1) * t);
  };
  const auto m = static_cast<std::size_t>(order);
  Eigen::MatrixXd a = Eigen::MatrixXd::Zero(eigen_index(m), eigen_index(m));
  Eigen::VectorXd b = Eigen::VectorXd::Zero(eigen_index(m));
  for (std::size_t i = 0; i < m; ++i) {
    for (std::size_t j = 0; j < m; ++j) {
      for (Vec2<double> const& p : points) a(eigen_index(i), eigen_index(j)) += sine(p.x, i) * sine(p.x, j);
    }
    for (Vec2<double> const& p : points) b(eigen_index(i)) += sine(p.x, i) * p.y;
  }
  auto coefficients = plain_solution(a, b);
  if (!coefficients) return std::nullopt;
  return plain_quality(points, *std::move(coefficients), sine);
}

}  // namespace talvo::test

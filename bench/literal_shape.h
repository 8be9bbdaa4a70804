#pragma once

/// @file
/// The element operations as they read, without any thought of speed: each step makes its lists and matrices anew. The
/// results have the same bits as the library's.

#include <talvo/talvo.h>
#include <algorithm>
#include <cmath>
#include <vector>

namespace talvo::bench::literal {

using Talvo::Full;
using Talvo::Util::CShape;

inline Vec3<double> sum(std::vector<double> const& N, std::vector<Vec3<double>> const& X) {
  Vec3<double> result{0, 0, 0};
  for (std::size_t k = 0; k < X.size(); ++k) result = result + N[k] * X[k];
  return result;
}

inline Vec3<double> CoorAtRS(CShape const& shape, Vec2<double> const& rs) {
  return sum(Talvo::Util::Interpolate2d::H(shape.NumTopo(), rs, Full), shape.Coor());
}

inline Vec3<double> CoorAtRST(CShape const& shape, Vec3<double> const& rst) {
  return sum(Talvo::Util::Interpolate3d::H(shape.NumTopo(), rst, Full), shape.Coor());
}

template <int N, class Derivatives>
Eigen::Matrix<double, N, N> jacobian(Derivatives const& D, std::vector<Vec3<double>> const& X) {
  talvo::core::FixedMatrix<double, N, N> sum;
  for (std::size_t k = 0; k < X.size(); ++k) {
    const std::vector<double> x{X[k].x, X[k].y, X[k].z};
    for (int i = 0; i < N; ++i) {
      for (int j = 0; j < N; ++j) sum(i, j) += D(i, static_cast<int>(k)) * x[static_cast<std::size_t>(j)];
    }
  }
  Eigen::Matrix<double, N, N> J;
  for (int i = 0; i < N; ++i) {
    for (int j = 0; j < N; ++j) J(i, j) = sum(i, j);
  }
  return J;
}

inline Eigen::Matrix<double, 2, 2> Jacobian(CShape const& shape, Vec2<double> const& rs) {
  return jacobian<2>(Talvo::Util::Interpolate2d::HDerivatives(shape.NumTopo(), rs, Full), shape.Coor());
}

inline Eigen::Matrix<double, 3, 3> Jacobian(CShape const& shape, Vec3<double> const& rst) {
  return jacobian<3>(Talvo::Util::Interpolate3d::HDerivatives(shape.NumTopo(), rst, Full), shape.Coor());
}

template <class Derivatives>
Vec3<double> tangent(Derivatives const& D, int row, std::vector<Vec3<double>> const& X, bool normalise) {
  Vec3<double> v{0, 0, 0};
  for (std::size_t k = 0; k < X.size(); ++k) v = v + D(row, static_cast<int>(k)) * X[k];
  if (!normalise) return v;
  const double length = std::sqrt(v.x * v.x + v.y * v.y + v.z * v.z);
  if (length < 2.220446049250313e-16) return {0, 0, 0};
  return {v.x / length, v.y / length, v.z / length};
}

inline Vec3<double> VectorR(CShape const& shape, Vec2<double> const& rs, bool normalise) {
  return tangent(Talvo::Util::Interpolate2d::HDerivatives(shape.NumTopo(), rs, Full), 0, shape.Coor(), normalise);
}

inline Vec3<double> VectorS(CShape const& shape, Vec2<double> const& rs, bool normalise) {
  return tangent(Talvo::Util::Interpolate2d::HDerivatives(shape.NumTopo(), rs, Full), 1, shape.Coor(), normalise);
}

inline Vec3<double> Normal(CShape const& shape, Vec2<double> const& rs) {
  const Vec3<double> b = VectorS(shape, rs, true);
  const Vec3<double> a = VectorR(shape, rs, true);
  return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

inline Vec3<double> VectorT(CShape const& shape, Vec3<double> const& rst, bool normalise) {
  return tangent(Talvo::Util::Interpolate3d::HDerivatives(shape.NumTopo(), rst, Full), 2, shape.Coor(), normalise);
}

inline double distance(Vec3<double> const& a, Vec3<double> const& b) {
  const Vec3<double> d = b - a;
  return std::sqrt(d.x * d.x + d.y * d.y + d.z * d.z);
}

inline bool FindRS(CShape const& shape, Vec3<double> const& point, Vec2<double>& rs, double tol) {
  rs = {0, 0};
  double r = 0;
  double s = 0;
  Vec3<double> d = CoorAtRS(shape, {r, s}) - point;
  for (int step = 0; step < 100; ++step) {
    if (std::fabs(d.x) <= tol && std::fabs(d.y) <= tol) break;
    const Eigen::Matrix<double, 2, 2> J = Jacobian(shape, Vec2<double>{r, s});
    const double det = J(1, 1) * J(0, 0) - J(1, 0) * J(0, 1);
    if (det == 0) return false;
    const double inv = 1 / det;
    r = r - (J(1, 1) * inv * d.x - J(1, 0) * inv * d.y);
    s = s - (-J(0, 1) * inv * d.x + J(0, 0) * inv * d.y);
    d = CoorAtRS(shape, {r, s}) - point;
  }
  if (!(std::fabs(d.x) <= tol && std::fabs(d.y) <= tol)) return false;
  if (shape.NumTopo() == 4 || shape.NumTopo() == 8) {
    const double limit_r = 2 * tol / distance(CoorAtRS(shape, {-1, 0}), CoorAtRS(shape, {1, 0})) + 1;
    if (r < -limit_r || r > limit_r) return false;
    const double limit_s = 2 * tol / distance(CoorAtRS(shape, {0, -1}), CoorAtRS(shape, {0, 1})) + 1;
    if (s < -limit_s || s > limit_s) return false;
    rs = {std::min(1.0, std::max(-1.0, r)), std::min(1.0, std::max(-1.0, s))};
    return true;
  }
  const Vec3<double> e = shape.Coor(1) - shape.Coor(0);
  const double length = std::sqrt(e.x * e.x + e.y * e.y + e.z * e.z);
  const Vec3<double> u =
      length < 2.220446049250313e-16 ? Vec3<double>{0, 0, 0} : Vec3<double>{e.x / length, e.y / length, e.z / length};
  const Vec3<double> w = shape.Coor(2) - shape.Coor(0);
  const double tol_r = tol / std::sqrt(u.x * u.x + u.y * u.y + u.z * u.z);
  const Vec3<double> h = (u.x * w.x + u.y * w.y + u.z * w.z) * u - w;
  const double tol_s = tol / std::sqrt(h.x * h.x + h.y * h.y + h.z * h.z);
  if (r < -tol_r || s < -tol_s || r + s > 1 + tol_r + tol_s) return false;
  const double clamped = std::min(1.0, std::max(0.0, r));
  rs = {clamped, std::min(1 - clamped, std::max(0.0, s))};
  return true;
}

inline bool FindRST(CShape const& shape, Vec3<double> const& point, Vec3<double>& rst) {
  rst = {0, 0, 0};
  double r = 0;
  double s = 0;
  double t = 0;
  const auto converged = [](Vec3<double> const& d) {
    return std::fabs(d.x) <= 1e-06 && std::fabs(d.y) <= 1e-06 && std::fabs(d.z) <= 1e-06;
  };
  Vec3<double> d = CoorAtRST(shape, {r, s, t}) - point;
  for (int step = 0; step < 100; ++step) {
    if (converged(d)) break;
    const Eigen::Matrix<double, 3, 3> J = Jacobian(shape, Vec3<double>{r, s, t});
    const double det = (J(2, 2) * J(1, 1) - J(2, 1) * J(1, 2)) * J(0, 0) -
                       (J(2, 2) * J(1, 0) - J(2, 0) * J(1, 2)) * J(0, 1) +
                       (J(2, 1) * J(1, 0) - J(2, 0) * J(1, 1)) * J(0, 2);
    if (det == 0) return false;
    Eigen::Matrix<double, 3, 3> K;
    for (int i = 0; i < 3; ++i) {
      for (int j = 0; j < 3; ++j) {
        const int a = (i + 1) % 3;
        const int b = (i + 2) % 3;
        const int m = (j + 1) % 3;
        const int n = (j + 2) % 3;
        K(i, j) = (J(m, a) * J(n, b) - J(m, b) * J(n, a)) / det;
      }
    }
    r = r - (K(0, 0) * d.x + K(1, 0) * d.y + K(2, 0) * d.z);
    s = s - (K(0, 1) * d.x + K(1, 1) * d.y + K(2, 1) * d.z);
    t = t - (K(0, 2) * d.x + K(1, 2) * d.y + K(2, 2) * d.z);
    d = CoorAtRST(shape, {r, s, t}) - point;
  }
  if (!converged(d)) return false;
  const auto at = [&](double x, double y, double z) { return CoorAtRST(shape, {x, y, z}); };
  const double limit_r = 2e-06 / distance(at(-1, 0, 0), at(1, 0, 0)) + 1;
  const double limit_s = 2e-06 / distance(at(0, -1, 0), at(0, 1, 0)) + 1;
  const double limit_t = 2e-06 / distance(at(0, 0, -1), at(0, 0, 1)) + 1;
  if (r < -limit_r || r > limit_r || s < -limit_s || s > limit_s || t < -limit_t || t > limit_t) return false;
  rst = {std::min(1.0, std::max(-1.0, r)), std::min(1.0, std::max(-1.0, s)), std::min(1.0, std::max(-1.0, t))};
  return true;
}

}  // namespace talvo::bench::literal

#include "core/square.h"

#include <talvo/core/tens2.h>
#include <algorithm>
#include <cmath>

namespace {

constexpr double half_pi = 1.5707963267948966;

template <class T>
Tens2<T> principal(Tens2<T> const& t) {
  const T half = static_cast<T>(0.5);
  const T mean = (t.xx + t.yy) * half;
  const T radius = std::hypot((t.xx - t.yy) * half, t.xy);
  return {mean + radius, T{0}, T{0}, mean - radius};
}

// The reflection of PrincipalPlane applies only above a real difference of the diagonal.
bool is_clearly_larger(double yy, double xx) {
  if (!(yy > xx)) return false;
  const double relative = std::fabs(yy - xx) / std::max(std::fabs(xx), std::fabs(yy));
  return !(relative < 1e-6);  // a NaN (infinite components) reflects
}

}  // namespace

template <>
Tens2<double> Tens2<double>::Principal() const {
  return principal(*this);
}

template <>
Tens2<float> Tens2<float>::Principal() const {
  return principal(*this);
}

template <>
void Tens2<double>::PrincipalPlane(Vec2<double>* dir1, Vec2<double>* dir2) const {
  double theta = -0.5 * std::atan2(2.0 * xy, std::fabs(xx - yy));
  if (is_clearly_larger(yy, xx)) theta = theta > 0.0 ? half_pi - theta : -theta - half_pi;
  *dir1 = {std::cos(theta), std::sin(theta)};
  *dir2 = {std::cos(theta + half_pi), std::sin(theta + half_pi)};
}

template <>
Tens2<double> Tens2<double>::RotateTo(double const& angle) const {
  const double c = std::cos(angle);
  const double s = std::sin(angle);
  // P = R^T M with R = [[c, -s], [s, c]], then Q = P R. Only the upper off-diagonal of Q is used.
  const double p00 = c * xx + s * yx;
  const double p01 = c * xy + s * yy;
  const double p10 = -s * xx + c * yx;
  const double p11 = -s * xy + c * yy;
  const double q01 = p00 * -s + p01 * c;
  return {p00 * c + p01 * s, q01, q01, p10 * -s + p11 * c};
}

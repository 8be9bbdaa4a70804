#include "core/private_eigen.h"
#include "core/square.h"

#include <talvo/geometry/parabola.h>
#include <algorithm>

namespace Talvo::Util {
namespace {

using talvo::square;
using Vector = talvo_eigen::Vector3d;

double squared_norm(Vector const& v) { return square(v[0]) + square(v[1]) + square(v[2]); }

// Whether a and b agree to a relative 1e-12 of the smaller one.
bool is_approximately(Vector const& a, Vector const& b) {
  const Vector difference(a[0] - b[0], a[1] - b[1], a[2] - b[2]);
  return squared_norm(difference) <= 1e-12 * 1e-12 * std::min(squared_norm(a), squared_norm(b));
}

}  // namespace

bool Parabola(double* const x, double* const y, double* const coeff) {
  const Vector ordinates(y[0], y[1], y[2]);
  // Fixed sizes: the dynamic solve answers differently for repeated abscissae.
  talvo_eigen::Matrix3d A;
  for (int i = 0; i < 3; ++i) A.row(i) << 1.0, x[i], square(x[i]);
  const Vector c = A.partialPivLu().solve(ordinates);
  const auto row = [&](int i) { return A(i, 0) * c[0] + A(i, 1) * c[1] + A(i, 2) * c[2]; };
  const Vector reproduced(row(0), row(1), row(2));
  for (int i = 0; i < 3; ++i) coeff[i] = c[i];
  return is_approximately(reproduced, ordinates);
}

}  // namespace Talvo::Util

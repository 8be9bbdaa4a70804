#pragma once

#include <talvo/core/tens2.h>

#include <complex>

namespace plate::test {

/// The stress of the closed solution by another way: Kolosov's formulas
///
///     sigma_x + sigma_y = 4 Re phi'(z),   sigma_y - sigma_x + 2i tau_xy = 2 (conj(z) phi''(z) + psi'(z))
///
/// with phi = S/4 (z + 2a²/z) and psi = -S/2 (z + a²/z - a⁴/z³), here for S = a = 1 and in long double. Source: N. I.
/// Muskhelishvili, "Some Basic Problems of the Mathematical Theory of Elasticity", sections 32 and 56a.
inline Tens2<double> stress_by_potentials(double x, double y) {
  using Complex = std::complex<long double>;
  const Complex z(x, y);
  const Complex z2 = z * z;
  const Complex dphi = 0.25L * (1.0L - 2.0L / z2);
  const Complex ddphi = 1.0L / (z2 * z);
  const Complex dpsi = -0.5L * (1.0L - 1.0L / z2 + 3.0L / (z2 * z2));
  const long double sum = 4.0L * dphi.real();
  const Complex difference = 2.0L * (std::conj(z) * ddphi + dpsi);
  const auto xx = static_cast<double>((sum - difference.real()) / 2.0L);
  const auto yy = static_cast<double>((sum + difference.real()) / 2.0L);
  const auto xy = static_cast<double>(difference.imag() / 2.0L);
  return {xx, xy, xy, yy};
}

}  // namespace plate::test

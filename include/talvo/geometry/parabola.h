#pragma once

/// @file
/// The parabola through three points.

#include <talvo/export.h>

namespace Talvo::Util {

/// Coefficients of y = coeff[0] + coeff[1]·x + coeff[2]·x² through (x[i], y[i]), i = 0, 1, 2.
///
/// @param x, y   three numbers each.
/// @param coeff  three numbers, always written. It may be x or y.
/// @return whether the parabola passes through the points to a relative 1e-12, in the norm of the three ordinates.
///
/// Where two abscissae are equal the result is false and the coefficients are whatever the elimination yields (NaN or
/// infinities as a rule): ask for the result before using them.
///
/// Method: LU decomposition with partial pivoting of the 3x3 matrix (1, x, x²).
TALVO_EXPORT bool Parabola(double* const x, double* const y, double* const coeff);

}  // namespace Talvo::Util

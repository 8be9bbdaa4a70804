#pragma once

/// @file
/// Real roots of a cubic polynomial.

#include <talvo/export.h>

namespace Talvo {

/// The real roots of a·x³ + b·x² + c·x + d = 0.
///
/// @warning The constant term comes first and the cubic one last: x³ - 6x² + 11x - 6 is CubicSolve(-6, 11, -6, 1, ...).
///
/// @param[out] x1  a real root.
/// @param[out] x2, x3  the other two real roots; untouched when there is only one.
/// @return true when three real roots were written (a triple root three times), false when one.
///
/// The three roots are not sorted: they come as 2j·cos(k/3), then -j·(cos(k/3) ± sqrt(3)·sin(k/3)), each shifted by
/// -b/(3a), so that the first is the largest one. Whether there are one or three is decided by the sign of a
/// rounded discriminant: of a double root either answer may come, and the case of a triple root is only seen where the
/// three quantities f, g and h are exactly 0.
///
/// Accuracy, measured against 512-bit arithmetic over 100,000 cubics, in ulps of the largest root: for well separated
/// roots 10 as a rule and 21 at worst; for coefficients of like magnitude 8 as a rule, 800 in the worst of a hundred.
/// Where the closed formula cancels, near a triple root or when one coefficient rules the others, the relative error of
/// any root can reach 4e-6. One or two Newton steps on the polynomial restore the digits, where a caller needs them.
///
/// a = 0 is not refused and gives infinities or NaN: solve the quadratic instead. When NaN comes in, x1 is NaN and the
/// result false.
///
/// Throws std::runtime_error "ArcCos: function value out of range" when rounding drives the cosine of the trigonometric
/// form beyond ±1.000001; nothing is written then.
///
/// Source: Cardano's formula in Viète's trigonometric form, with h = g²/4 + f³/27.
TALVO_EXPORT bool CubicSolve(double d, double c, double b, double a, double& x1, double& x2, double& x3);

}  // namespace Talvo

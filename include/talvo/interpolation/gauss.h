#pragma once

/// @file
/// Gauss quadrature: points and weights of the line rules with 1 to 4 points and the triangle rules with 1, 3 or 7.
///
/// @code
/// double sum = 0;
/// for (int i = 1; i <= n; ++i) sum += Talvo::GaussWgt(n, i) * f(Talvo::GaussPos(n, i));
/// @endcode
///
/// Points count from 1. The constants are short decimals (12 to 15 digits), kept on purpose: the weights of the 3-point
/// line rule add up to 1.999999999999998, those of the 7-point triangle rule to 0.9999999999999. Nothing throws: a rule
/// or point that does not exist gives 0, except where GaussWgt() says otherwise.

#include <talvo/core/vec2.h>
#include <talvo/export.h>

namespace Talvo {

/// Natural coordinate, in [-1, +1], of point i of the n-point line rule.
///
/// Points run from the positive end to the negative one: GaussPos(2, 1) is positive. 0.0 for any n outside 1 to 4 and
/// any i outside 1 to n (also GaussPos(1, 7), which is the 1-point rule's own coordinate).
TALVO_EXPORT double GaussPos(int n, int i);

/// Weight of point i of the n-point line rule; the weights of a rule add up to 2.
///
/// @warning The rules of 2 and 3 points carry on into the next larger ones when i is too large: GaussWgt(2, 3) is
/// 0.555555555555555 and GaussWgt(2, 4) and GaussWgt(3, 4) are 0.347854845137454. Callers rely on it; loop from 1 to n
/// and it never shows. Any other n or i that does not exist gives 0.0.
TALVO_EXPORT double GaussWgt(int n, int i);

/// Natural coordinates (r, s) of point i of the n-point rule, n = 1, 3 or 7, on the triangle (0,0), (1,0), (0,1).
/// (0, 0) for any other n or i.
TALVO_EXPORT Vec2<double> Gauss3Pos(int n, int i);

/// Weight of point i of the n-point triangle rule; the weights of a rule add up to 1.
///
/// An integral is the weighted sum times the triangle's area, so in natural coordinates times half the Jacobian's
/// determinant. The rules are exact for degree 1, 2 and 5. 0.0 for any other n or i.
TALVO_EXPORT double Gauss3Wgt(int n, int i);

}  // namespace Talvo

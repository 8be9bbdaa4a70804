#pragma once

/// @file
/// Round drawing scales and logarithmic intervals.

#include <talvo/export.h>

#include <vector>

namespace Talvo {

/// A round factor by which `value`·`size` becomes a drawing of convenient size, divided by `size`.
///
/// The product is brought into [0.1, 1] by powers of ten and answered with a round part of that power.
///
/// @param first   divides the product by sqrt(2/3) = 0.816496580927726 before, and multiplies the result by it after:
/// for
///                isometric drawings.
/// @param second  selects the ladder 0.5, 0.25, 0.2, 0.125, 0.1; without it the ladder is 1, 0.5, 0.25, 0.2, 0.125. For
///                a product above 0.5, 0.25, 0.2, 0.125 and below.
///
/// 0 for a value or size that is 0 (below the smallest normal double), an infinite value, and a product that is
/// negative, 0 or infinite: there is no scale then. NaN follows the steps and gives the last rung.
TALVO_EXPORT double EngScale(double value, double size, bool first, bool second);

/// log10(x) / log10(base). Nothing is checked: a base of 1 gives an infinity or NaN.
TALVO_EXPORT double logn(double const& x, double const& base);

/// Appends count + 1 values from `start` to `end` at equal distances of their logarithm.
///
/// `out` is not cleared. A negative count appends nothing.
/// @warning A count of 0 appends one NaN, not `start`: the distance is then a division by zero.
///
/// start, end and base must be positive for the values to be numbers.
TALVO_EXPORT void IntervalsLogScale(double const& start, double const& end, int count, double const& base,
                                    std::vector<double>& out);

}  // namespace Talvo

#pragma once

/// @file
/// Angles and squares of their sine and cosine.

#include <talvo/export.h>

namespace Talvo {

/// An angle (radians) brought into (-pi, pi] by at most one turn.
///
/// @warning Only one turn is added or taken away: beyond ±3 pi the result is still outside. Call it again, or use
/// std::remainder(angle, 2 pi), for such angles. -pi stays -pi; a magnitude below 1e-10 gives 0.
TALVO_EXPORT double FormatAngle(double angle);

/// sin²(x), the square of the rounded sine.
TALVO_EXPORT double sin2(double x);

/// cos²(x), the square of the rounded cosine.
TALVO_EXPORT double cos2(double x);

}  // namespace Talvo

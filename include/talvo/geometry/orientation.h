#pragma once

/// @file
/// Whether a direction lies near a global axis or plane. The Z axis is the vertical one.

#include <talvo/core/vec3.h>
#include <talvo/export.h>

namespace Talvo {

/// @name Direction tests
/// `ratio` is the factor by which the part along the axis (or in the plane) is multiplied before it must exceed the
/// rest: the larger, the more lenient. With ratio = 1 the border is at 45 degrees, and with 0 nothing passes. Strict,
/// so that the null vector is none of them; false for NaN. The length of v does not matter.
/// @{

/// (ratio·y)² + (ratio·x)² > z²
TALVO_EXPORT bool IsHorizontal(Vec3<double> const& v, double ratio);
/// (ratio·z)² > y² + x²
TALVO_EXPORT bool IsVertical(Vec3<double> const& v, double ratio);
/// (ratio·x)² > z² + y²
TALVO_EXPORT bool IsGlobalX(Vec3<double> const& v, double ratio);
/// (ratio·y)² > z² + x²
TALVO_EXPORT bool IsGlobalY(Vec3<double> const& v, double ratio);
/// @}

}  // namespace Talvo

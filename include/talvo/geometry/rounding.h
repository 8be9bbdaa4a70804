#pragma once

/// @file
/// Rounding to significant figures and to decimal places.

#include <talvo/core/vec3.h>
#include <talvo/export.h>

namespace Talvo {

/// @name To significant figures
/// Halves go away from zero: Round(123.456, 2) is 120, Round(-0.0123456, 3) is -0.0123.
///
/// A magnitude below 1e-10 gives 0.0, and so does an infinity; NaN gives NaN. The value is scaled by repeated
/// multiplication with 10 and 0.1, so that the last bits may differ from those of the decimal literal.
///
/// @param figures  any number. 0 gives 0 or the next power of ten (Round(600, 0) is 1000), a negative number gives 0,
/// or
///                 NaN where it is so low that the scale overflows.
/// @{
TALVO_EXPORT double Round(double value, int figures);
/// By the rule for double, converted back; 0 below 1.1754944e-38 and beyond 3.4028235e38.
TALVO_EXPORT float Round(float value, int figures);
/// Component by component; w is 0.
TALVO_EXPORT Vec3<double> Round(Vec3<double> const& v, int figures);
TALVO_EXPORT Vec3<float> Round(Vec3<float> const& v, int figures);
/// @}

/// To decimal places: round(10^places · value) / 10^places, halves away from zero.
///
/// A negative number of places returns the value as it is. With so many places that 10^places · value overflows the
/// result is infinite or NaN.
TALVO_EXPORT double RoundDecimalPlace(double value, int places);

}  // namespace Talvo

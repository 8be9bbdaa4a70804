#pragma once

namespace talvo {

/// The inverse sine and cosine of a value that may exceed 1 by rounding: beyond ±1.000001 they throw std::runtime_error
/// "ArcSin: function value out of range" or "ArcCos: function value out of range", within it the value is clamped to
/// [-1, 1]. NaN gives NaN.
double arc_sin(double sine);
double arc_cos(double cosine);

/// The checks alone.
void ensure_sine(double sine);
void ensure_cosine(double cosine);

}  // namespace talvo

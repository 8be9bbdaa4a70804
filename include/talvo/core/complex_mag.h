#pragma once

/// @file
/// Component-wise modulus of complex-valued quantities, such as the amplitudes of a harmonic response.

#include <talvo/core/tens2.h>
#include <talvo/core/tens_sym3.h>
#include <talvo/core/vec2.h>
#include <talvo/core/vec3.h>
#include <talvo/export.h>

/// @name sqrt(re² + im²), component by component
/// `re` and `im` are the real and imaginary parts. The squares are formed as they stand: a component beyond about
/// 1e154 overflows to infinity, one below about 1e-162 gives 0.
/// @{
TALVO_EXPORT Vec2<double> ComplexMag(Vec2<double> const& re, Vec2<double> const& im);

/// x, y and z; the result's w is 0 whatever the arguments hold.
TALVO_EXPORT Vec3<double> ComplexMag(Vec3<double> const& re, Vec3<double> const& im);

/// Both off-diagonal entries of the result come from the arguments' `xy`; `yx` is never read.
TALVO_EXPORT Tens2<double> ComplexMag(Tens2<double> const& re, Tens2<double> const& im);

/// The lower triangle is read and the result is symmetric; its row and column 3 are those of the unit matrix, whatever
/// the arguments hold there.
TALVO_EXPORT TensSym3<double> ComplexMag(TensSym3<double> const& re, TensSym3<double> const& im);
/// @}

namespace Talvo {
using ::ComplexMag;
}  // namespace Talvo

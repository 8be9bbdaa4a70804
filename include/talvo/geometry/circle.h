#pragma once

/// @file
/// The circle through three points in a plane.

#include <talvo/core/vec2.h>
#include <talvo/export.h>

namespace Talvo {

/// @name Circumcentre of a triangle
/// @param[out] centre  the centre; untouched when there is none. It may be any of the points.
/// @return false when the points are on one line, or nearly: twice the area below 1e-10. That is an absolute bound on a
///         squared length: a triangle with sides below about 1e-5 is always refused. Scale such points up.
///
/// The middle of one side is moved along the side's normal; which side depends on the longest one, so that the result
/// never rests on the longest side's bisector alone.
/// @{
TALVO_EXPORT bool CircleCentre(Vec2<double> const& a, Vec2<double> const& b, Vec2<double> const& c,
                               Vec2<double>& centre);
/// All in single precision but the comparison with 1e-10.
TALVO_EXPORT bool CircleCentre(Vec2<float> const& a, Vec2<float> const& b, Vec2<float> const& c, Vec2<float>& centre);
/// @}

}  // namespace Talvo

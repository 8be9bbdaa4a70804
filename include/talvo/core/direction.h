#pragma once

/// @file
/// The six degrees of freedom of a node.

#include <talvo/export.h>

#include <cstdint>

namespace Talvo {

/// A translation along an axis, or the rotation about it.
///
/// The numbering starts at 1, and a rotation is its translation plus 3. Any other value is not a direction, and the
/// mappings below refuse it.
enum Direction : std::int32_t {
  X = 1,   ///< translation along x
  Y = 2,   ///< translation along y
  Z = 3,   ///< translation along z
  XX = 4,  ///< rotation about x
  YY = 5,  ///< rotation about y
  ZZ = 6,  ///< rotation about z
};

/// The next value, unchecked and without wrap-around: after ZZ comes 7, so that `for (d = X; d <= ZZ; ++d)` ends.
TALVO_EXPORT Direction& operator++(Direction& d);

/// The difference of the two numbers: `d - X` is the place of d in a block of six.
TALVO_EXPORT int operator-(Direction a, Direction b);

/// @name Between the two halves
/// Each throws std::runtime_error "Unknown axis" for a value outside 1 to 6.
/// @{

/// The translation along the axis of d: X for X and XX.
TALVO_EXPORT Direction ToTrans(Direction d);
/// The rotation about the axis of d: XX for X and XX.
TALVO_EXPORT Direction ToRot(Direction d);
/// Whether d is X, Y or Z.
TALVO_EXPORT bool IsTrans(Direction d);
/// Whether d is XX, YY or ZZ.
TALVO_EXPORT bool IsRot(Direction d);
/// @}

}  // namespace Talvo

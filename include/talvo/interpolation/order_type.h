#pragma once

/// @file
/// Where the interpolation functions are evaluated.

namespace Talvo {

/// Whether the interpolation functions are taken at the point given or at the element's centre.
///
/// `Constant` replaces the point by the centre for the 2-node line, the 4-node quadrilateral and every solid, so that
/// the element interpolates a constant; the other elements ignore it. Any `int` may be cast to it: every value other
/// than 0 behaves as `Full`.
enum OrderType : int {
  Constant = 0,  ///< at the centre of the natural domain, for the elements named above
  Full = 1,      ///< at the point given
};

}  // namespace Talvo

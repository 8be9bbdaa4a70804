#pragma once

/// @file
/// The dimensionality of an element.

#include <cstdint>

namespace Talvo {

/// How many natural coordinates an element has.
enum SpaceType : std::int32_t {
  Line = 1,    ///< r
  Area = 2,    ///< r, s
  Volume = 3,  ///< r, s, t
};

}  // namespace Talvo

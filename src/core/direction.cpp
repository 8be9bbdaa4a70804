#include <talvo/core/direction.h>
#include <cstdint>
#include <stdexcept>

namespace Talvo {
namespace {

// The rotation about an axis is its translation plus this.
constexpr int rotation_offset = 3;

Direction known(Direction d) {
  if (d < X || d > ZZ) throw std::runtime_error("Unknown axis");
  return d;
}

}  // namespace

// Any int may be cast to a Direction: unsigned arithmetic is defined at both ends too.
Direction& operator++(Direction& d) { return d = static_cast<Direction>(static_cast<std::uint32_t>(d) + 1U); }

int operator-(Direction a, Direction b) {
  return static_cast<int>(static_cast<std::uint32_t>(a) - static_cast<std::uint32_t>(b));
}

bool IsTrans(Direction d) { return known(d) <= Z; }

bool IsRot(Direction d) { return known(d) > Z; }

Direction ToTrans(Direction d) { return IsTrans(d) ? d : static_cast<Direction>(d - rotation_offset); }

Direction ToRot(Direction d) { return IsRot(d) ? d : static_cast<Direction>(d + rotation_offset); }

}  // namespace Talvo

#include <talvo/core/direction.h>
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

Direction& operator++(Direction& d) { return d = static_cast<Direction>(static_cast<int>(d) + 1); }

int operator-(Direction a, Direction b) { return static_cast<int>(a) - static_cast<int>(b); }

bool IsTrans(Direction d) { return known(d) <= Z; }

bool IsRot(Direction d) { return known(d) > Z; }

Direction ToTrans(Direction d) { return IsTrans(d) ? d : static_cast<Direction>(d - rotation_offset); }

Direction ToRot(Direction d) { return IsRot(d) ? d : static_cast<Direction>(d + rotation_offset); }

}  // namespace Talvo

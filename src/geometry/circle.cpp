#include "geometry/compare_roots.h"

#include <talvo/geometry/circle.h>
#include <cmath>

namespace Talvo {
namespace {

// The middle of the side from p to q, moved along its normal (-side.y, side.x) by t/2, with t = t_numerator / d.
template <class T>
bool from_bisector(Vec2<T> const& p, Vec2<T> const& q, Vec2<T> const& side, T d, T t_numerator, Vec2<T>& centre) {
  if (static_cast<double>(std::fabs(d)) < 1e-10) return false;
  const T t = t_numerator / d;
  const T half = static_cast<T>(0.5);
  centre = {(p.x + q.x - t * side.y) * half, (p.y + q.y + t * side.x) * half};
  return true;
}

template <class T>
T squared_length(Vec2<T> const& v) {
  return v.x * v.x + v.y * v.y;
}

template <class T>
T dot(Vec2<T> const& a, Vec2<T> const& b) {
  return a.x * b.x + a.y * b.y;
}

template <class T>
bool circle_centre(Vec2<T> const& a, Vec2<T> const& b, Vec2<T> const& c, Vec2<T>& centre) {
  const Vec2<T> ab = b - a;
  const Vec2<T> bc = c - b;
  const Vec2<T> ca = a - c;
  const T ab2 = squared_length(ab);
  const T bc2 = squared_length(bc);
  const T ca2 = squared_length(ca);
  const bool ab_exceeds_bc = talvo::root_exceeds(ab2, bc2);

  if (!ab_exceeds_bc && talvo::root_exceeds(bc2, ca2)) {
    return from_bisector(a, c, ca, ab.x * ca.y - ab.y * ca.x, dot(ab, bc), centre);
  }
  if (ab_exceeds_bc && talvo::root_exceeds(ab2, ca2)) {
    return from_bisector(b, c, bc, bc.y * ca.x - bc.x * ca.y, dot(ab, ca), centre);
  }
  return from_bisector(b, a, ab, ab.y * bc.x - ab.x * bc.y, dot(bc, ca), centre);
}

}  // namespace

bool CircleCentre(Vec2<double> const& a, Vec2<double> const& b, Vec2<double> const& c, Vec2<double>& centre) {
  return circle_centre(a, b, c, centre);
}

bool CircleCentre(Vec2<float> const& a, Vec2<float> const& b, Vec2<float> const& c, Vec2<float>& centre) {
  return circle_centre(a, b, c, centre);
}

}  // namespace Talvo

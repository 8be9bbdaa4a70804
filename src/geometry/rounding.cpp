#include <talvo/geometry/rounding.h>
#include <cmath>
#include <limits>

namespace Talvo {
namespace {

template <class T>
bool is_beyond_normal(T magnitude) {
  return magnitude < std::numeric_limits<T>::min() || magnitude > std::numeric_limits<T>::max();
}

// Halves up, for a value that is not negative.
double rounded(double v) {
  double integer = 0.0;
  const double fraction = std::modf(v, &integer);
  return fraction >= 0.5 ? integer + 1.0 : integer;
}

template <class T>
Vec3<T> rounded_components(Vec3<T> const& v, int figures) {
  return {Round(v.x, figures), Round(v.y, figures), Round(v.z, figures), T{0}};
}

}  // namespace

double Round(double value, int figures) {
  double v = std::fabs(value);
  if (is_beyond_normal(v) || v < 1e-10) return 0.0;
  // Both loops end for every p: a finite v reaches 0 or infinity within 650 steps, where no comparison holds any more.
  const double p = std::pow(10.0, figures);
  double scale = 1.0;
  while (v > p) {
    v = v * 0.1;
    scale = scale * 10.0;
  }
  while (v < p * 0.1) {
    v = v * 10.0;
    scale = scale * 0.1;
  }
  const double result = rounded(v) * scale;
  return value < 0.0 ? -result : result;
}

float Round(float value, int figures) {
  if (is_beyond_normal(std::fabs(value))) return 0.0F;
  return static_cast<float>(Round(static_cast<double>(value), figures));
}

Vec3<double> Round(Vec3<double> const& v, int figures) { return rounded_components(v, figures); }

Vec3<float> Round(Vec3<float> const& v, int figures) { return rounded_components(v, figures); }

double RoundDecimalPlace(double value, int places) {
  if (places < 0) return value;
  const double p = std::pow(10.0, places);
  return std::round(p * value) / p;
}

}  // namespace Talvo

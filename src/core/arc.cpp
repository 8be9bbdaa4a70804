#include "core/arc.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace talvo {
namespace {

bool is_out_of_range(double value) { return value > 1.000001 || value < -1.000001; }

double clamped(double value) { return std::clamp(value, -1.0, 1.0); }

}  // namespace

void ensure_sine(double sine) {
  if (is_out_of_range(sine)) throw std::runtime_error("ArcSin: function value out of range");
}

void ensure_cosine(double cosine) {
  if (is_out_of_range(cosine)) throw std::runtime_error("ArcCos: function value out of range");
}

double arc_sin(double sine) {
  ensure_sine(sine);
  return std::asin(clamped(sine));
}

double arc_cos(double cosine) {
  ensure_cosine(cosine);
  return std::acos(clamped(cosine));
}

}  // namespace talvo

#include "fitting/equation.h"

#include <cmath>
#include <cstddef>
#include <string_view>
#include <version>

#if defined(__cpp_lib_format)
#include <format>
#else
#include <fmt/format.h>
#endif

namespace talvo::fitting {
namespace {

// The standard library's formatting where it has it. {fmt} writes the same text for the format strings used here.
#if defined(__cpp_lib_format)
using std::format;
#else
using fmt::format;
#endif

// Below this magnitude a coefficient is left out.
bool is_left_out(double coefficient) { return std::fabs(coefficient) < 1e-10; }

void append_term(std::string& text, std::string_view term) {
  if (!text.empty()) text += " + ";
  text += term;
}

std::string power_term(double c, std::size_t power, bool html) {
  if (power == 0) return format("{:.3g}", c);
  if (power == 1) return format("{:.3g}x", c);
  return html ? format("{:.3g}x<sup>{}</sup>", c, power) : format("{:.3g}x^{}", c, power);
}

std::string harmonic_term(double c, std::size_t harmonic) {
  return harmonic == 1 ? format("{:.3g}sin(x)", c) : format("{:.3g}sin({}x)", c, harmonic);
}

}  // namespace

std::string polynomial_text(std::vector<double> const& coefficients, bool html) {
  std::string text;
  for (std::size_t k = coefficients.size(); k-- > 0;) {
    if (!is_left_out(coefficients[k])) append_term(text, power_term(coefficients[k], k, html));
  }
  return text;
}

std::string sine_text(std::vector<double> const& coefficients) {
  std::string text;
  for (std::size_t i = 0; i < coefficients.size(); ++i) {
    if (!is_left_out(coefficients[i])) append_term(text, harmonic_term(coefficients[i], i + 1));
  }
  return text;
}

}  // namespace talvo::fitting

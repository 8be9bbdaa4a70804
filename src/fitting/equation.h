#pragma once

#include <string>
#include <vector>

namespace talvo::fitting {

/// c0, c1, ... as "3x^2 + -2x + 1", or with `html` "3x<sup>2</sup> + -2x + 1".
std::string polynomial_text(std::vector<double> const& coefficients, bool html);

/// c1, c2, ... as "2sin(x) + 0.5sin(2x)".
std::string sine_text(std::vector<double> const& coefficients);

}  // namespace talvo::fitting

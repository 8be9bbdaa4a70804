#pragma once

/// @file
/// The stress profile of the section as an equation.

#include "section.h"

#include <talvo/fitting/least_squares.h>

#include <optional>
#include <string>

namespace plate {

/// The tangential stress of the closed solution along the section, cos 2θ = -1, with x = (a/r)².
inline constexpr const char* exact_equation = "1.5x^2 + 0.5x + 1";

/// The tangential stress of the located points, fitted by a polynomial of the closed solution's form.
struct ProfileFit {
  std::optional<Talvo::Util::LeastSquares> curve;  ///< stress over (a/r)²; nothing when the points determine none
  std::string why_not;                             ///< what was wrong with the points; empty with a curve
};

ProfileFit fit_profile(Section const& section);

}  // namespace plate

#include "profile.h"

#include "kirsch.h"

#include <exception>
#include <vector>

namespace plate {

ProfileFit fit_profile(Section const& section) {
  // Over r the closed solution is no polynomial. Over (a/r)² it is one of order 2, and these abscissae, all between 0
  // and 1, suit the powers that LeastSquares sums.
  constexpr int order = 2;
  std::vector<Vec2<double>> points;
  for (SectionPoint const& point : section.points) {
    const double ratio = hole_radius / point.position.y;
    if (point.computed) points.push_back({ratio * ratio, point.computed->stress.tangential});
  }
  Talvo::Util::LeastSquares curve;
  try {
    curve.CalculateCoeff(points, Talvo::Util::LeastSquares::Polynomial, order);
  } catch (std::exception const& error) {  // too few points, or too close together
    return {std::nullopt, error.what()};
  }
  return {curve, ""};
}

}  // namespace plate

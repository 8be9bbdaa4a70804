#include "profile.h"

#include "complex_potentials.h"
#include "mesh_file.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <string>
#include <utility>
#include <vector>

namespace {

using plate::fit_profile;
using plate::ProfileFit;
using plate::Section;
using plate::SectionPoint;
using Talvo::Util::LeastSquares;

using Coefficients = std::array<double, 3>;  // of 1, x and x²
using Column = std::vector<long double>;

constexpr Coefficients exact{1, 0.5, 1.5};

long double dot(Column const& a, Column const& b) {
  long double sum = 0;
  for (std::size_t i = 0; i < a.size(); ++i) sum += a[i] * b[i];
  return sum;
}

void subtract(Column& a, long double factor, Column const& b) {
  for (std::size_t i = 0; i < a.size(); ++i) a[i] -= factor * b[i];
}

/// Row k of the pseudo-inverse of the columns 1, x, x²: the coefficient k of the best fit is its product with the
/// stresses. It is column k without what the other two have in common with it, over its square.
Column pseudo_inverse_row(Section const& section, std::size_t k) {
  std::array<Column, 3> columns;
  for (SectionPoint const& point : section.points) {
    if (!point.computed) continue;
    const long double x = 1 / (static_cast<long double>(point.position.y) * point.position.y);
    columns[0].push_back(1);
    columns[1].push_back(x);
    columns[2].push_back(x * x);
  }
  std::swap(columns[k], columns[2]);
  subtract(columns[1], dot(columns[1], columns[0]) / dot(columns[0], columns[0]), columns[0]);
  for (int pass = 0; pass < 2; ++pass) {  // what rounding left of the first goes with the second
    for (std::size_t i = 0; i < 2; ++i) {
      subtract(columns[2], dot(columns[2], columns[i]) / dot(columns[i], columns[i]), columns[i]);
    }
  }
  const long double square = dot(columns[2], columns[2]);
  for (long double& value : columns[2]) value /= square;
  return columns[2];
}

Column stresses_of(Section const& section) {
  Column stresses;
  for (SectionPoint const& point : section.points) {
    if (point.computed) stresses.push_back(point.computed->stress.tangential);
  }
  return stresses;
}

Coefficients best_fit(Section const& section) {
  Coefficients best;
  for (std::size_t k = 0; k < 3; ++k) {
    best[k] = static_cast<double>(dot(pseudo_inverse_row(section, k), stresses_of(section)));
  }
  return best;
}

Coefficients coefficients_of(LeastSquares const& curve) {
  const double at_0 = curve.Ordinate(0);
  const double at_1 = curve.Ordinate(1);
  const double at_minus_1 = curve.Ordinate(-1);
  return {at_0, (at_1 - at_minus_1) / 2, (at_1 + at_minus_1) / 2 - at_0};
}

Section section_of(std::string const& mesh_name) {
  const plate::Mesh mesh = plate::read_mesh(PLATE_MESHES + mesh_name + ".msh");
  return plate::evaluate_section(mesh, plate::StressField(mesh), 31);
}

// Normal equations lose the condition number of their matrix, 714 for these 31 abscissae in the maximum norm, on sums
// of 31 terms: 714 * 31 * 2^-53 = 2.5e-12 of a coefficient of up to 1.5.
constexpr double fit_rounding = 5e-12;

class ProfileTest : public ::testing::TestWithParam<std::string> {};

TEST_P(ProfileTest, IsTheBestPolynomialOfOrderTwoInTheSquaredRatio) {
  const Section section = section_of(GetParam());
  const Coefficients fitted = coefficients_of(fit_profile(section).curve.value());
  const Coefficients best = best_fit(section);
  for (std::size_t k = 0; k < 3; ++k) EXPECT_NEAR(fitted[k], best[k], fit_rounding) << k;
}

// The fit of the closed solution is the closed solution itself, and a fit is linear in what is fitted. The coefficients
// therefore differ from the exact ones by the fit of the errors, which the pseudo-inverse bounds.
TEST_P(ProfileTest, ErrsNoMoreThanTheStressesAllow) {
  const Section section = section_of(GetParam());
  const Coefficients fitted = coefficients_of(fit_profile(section).curve.value());
  const double error = section.max_error(&plate::HoleStress::tangential).value();
  for (std::size_t k = 0; k < 3; ++k) {
    long double magnification = 0;
    for (const long double value : pseudo_inverse_row(section, k)) magnification += std::fabs(value);
    EXPECT_NEAR(fitted[k], exact[k], error * static_cast<double>(magnification) + fit_rounding) << k;
  }
}

TEST_P(ProfileTest, IsWrittenWithThreeFiguresFromTheHighestPower) {
  const LeastSquares curve = fit_profile(section_of(GetParam())).curve.value();
  const auto [c0, c1, c2] = coefficients_of(curve);
  char expected[64];
  std::snprintf(expected, sizeof expected, "%.3gx^2 + %.3gx + %.3g", c2, c1, c0);
  EXPECT_EQ(curve.Equation(false), expected);
}

TEST_P(ProfileTest, ReportsWhatTheCurveLeavesOver) {
  const Section section = section_of(GetParam());
  const LeastSquares curve = fit_profile(section).curve.value();
  const Coefficients best = best_fit(section);
  const Column stresses = stresses_of(section);
  Column deviations = stresses;
  long double mean = 0;
  for (const long double stress : stresses) mean += stress / static_cast<long double>(stresses.size());
  for (long double& deviation : deviations) deviation -= mean;
  Column residuals = stresses;
  for (std::size_t i = 0; i < residuals.size(); ++i) {
    const long double y = section.points[i].position.y;
    residuals[i] -= best[0] + (best[1] + best[2] / (y * y)) / (y * y);
  }
  EXPECT_NEAR(curve.Norm(), static_cast<double>(std::sqrt(dot(residuals, residuals))), fit_rounding);
  EXPECT_NEAR(curve.Rsquared(), static_cast<double>(1 - dot(residuals, residuals) / dot(deviations, deviations)),
              fit_rounding);
}

INSTANTIATE_TEST_SUITE_P(Profile, ProfileTest,
                         ::testing::Values("tri3_coarse", "tri3_medium", "tri3_fine", "tri6_coarse", "tri6_medium",
                                           "tri6_fine", "quad4_coarse", "quad4_medium", "quad4_fine", "quad8_coarse",
                                           "quad8_medium", "quad8_fine", "hex8_coarse", "hex8_medium", "hex8_fine"),
                         [](const auto& test) { return test.param; });

class ProfileConvergesTest : public ::testing::TestWithParam<const char*> {};

// The closed formula comes out with the mesh. The greatest error of a coefficient at least halves from one mesh to the
// next: the elements are 9/5 and 17/9 times as many, and even linear ones err with the square of their size.
TEST_P(ProfileConvergesTest, ToTheClosedFormula) {
  const auto error = [&](const char* size) {
    const Coefficients fitted = coefficients_of(fit_profile(section_of(GetParam() + std::string(size))).curve.value());
    double greatest = 0;
    for (std::size_t k = 0; k < 3; ++k) greatest = std::fmax(greatest, std::fabs(fitted[k] - exact[k]));
    return greatest;
  };
  EXPECT_LT(error("_medium"), error("_coarse") / 2);
  EXPECT_LT(error("_fine"), error("_medium") / 2);
}

TEST_P(ProfileConvergesTest, WithLessAndLessLeftOver) {
  const auto norm = [&](const char* size) {
    return fit_profile(section_of(GetParam() + std::string(size))).curve.value().Norm();
  };
  EXPECT_LT(norm("_medium"), norm("_coarse") / 2);
  EXPECT_LT(norm("_fine"), norm("_medium") / 2);
}

INSTANTIATE_TEST_SUITE_P(Profile, ProfileConvergesTest, ::testing::Values("tri3", "tri6", "quad4", "quad8", "hex8"),
                         [](const auto& test) { return std::string(test.param); });

/// A section with the closed solution at the given distances.
Section section_without_error(std::vector<double> const& distances) {
  Section section;
  for (const double y : distances) {
    const Tens2<double> stress = plate::test::stress_by_potentials(0, y);
    const plate::HoleStress local{stress.yy, stress.xx, 0};
    section.points.push_back({{0, y, 0}, local, SectionPoint::Computed{local, {}}});
  }
  return section;
}

TEST(Profile, RecoversTheClosedFormulaFromTheClosedSolution) {
  const ProfileFit fit = fit_profile(section_without_error({1, 1.25, 1.5, 2, 2.5, 3, 4}));
  ASSERT_TRUE(fit.curve);
  EXPECT_EQ(fit.why_not, "");
  EXPECT_EQ(fit.curve->Equation(false), "1.5x^2 + 0.5x + 1");
  EXPECT_EQ(fit.curve->Equation(false), plate::exact_equation);
  EXPECT_NEAR(fit.curve->Rsquared(), 1, fit_rounding);
  EXPECT_NEAR(fit.curve->Norm(), 0, fit_rounding);
  const Coefficients fitted = coefficients_of(*fit.curve);
  for (std::size_t k = 0; k < 3; ++k) EXPECT_NEAR(fitted[k], exact[k], fit_rounding) << k;
}

TEST(Profile, LeavesOutPointsOutsideTheMesh) {
  Section section = section_without_error({1, 1.5, 2, 3, 4});
  section.points[1].computed.reset();
  EXPECT_EQ(fit_profile(section).curve.value().Equation(false), "1.5x^2 + 0.5x + 1");
  section.points[0].computed.reset();
  EXPECT_TRUE(fit_profile(section).curve);
  section.points[2].computed.reset();
  EXPECT_FALSE(fit_profile(section).curve);
}

TEST(Profile, SaysWhyThereIsNone) {
  const ProfileFit of_two = fit_profile(section_without_error({1, 4}));
  EXPECT_FALSE(of_two.curve);
  EXPECT_EQ(of_two.why_not, "Insufficient points for selected order");

  const ProfileFit of_one_place = fit_profile(section_without_error({2, 2, 2, 2}));
  EXPECT_FALSE(of_one_place.curve);
  EXPECT_EQ(of_one_place.why_not, "Singular matrix - cannot fit curve");
}

}  // namespace

#include "hole_axes.h"

#include "complex_potentials.h"
#include "kirsch.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>
#include <random>

namespace {

using plate::hole_axes;
using plate::HoleStress;
using plate::in_hole_axes;
using std::numbers::pi;

constexpr double u = std::numeric_limits<double>::epsilon() / 2;

// An axis is a quotient and a length, or products of two such: a few roundings.
constexpr double axis_rounding = 8 * u;
// A component in the hole's axes is a sum of nine products of magnitude up to 3 with two axes each, both rounded.
constexpr double stress_rounding = 64 * 3 * u;

void expect_axis(Vec3<double> const& axis, double x, double y, double z) {
  EXPECT_NEAR(axis.x, x, axis_rounding);
  EXPECT_NEAR(axis.y, y, axis_rounding);
  EXPECT_NEAR(axis.z, z, axis_rounding);
}

TEST(HoleAxes, RunOutwardsAroundAndOutOfThePlane) {
  for (int degrees = 0; degrees < 360; degrees += 5) {
    SCOPED_TRACE(degrees);
    const double c = std::cos(degrees * pi / 180);
    const double s = std::sin(degrees * pi / 180);
    // Neither the distance nor the height of the point matters.
    const auto axes = hole_axes({2.5 * c, 2.5 * s, -7});
    expect_axis(axes.AxisVec(Talvo::X, true), c, s, 0);
    expect_axis(axes.AxisVec(Talvo::Y, true), -s, c, 0);
    expect_axis(axes.AxisVec(Talvo::Z, true), 0, 0, 1);
  }
}

// On the axes of the plate the hole's axes are those of the plate, turned by quarters: components only change places,
// and the shear its sign.
TEST(HoleAxes, ExchangeTheComponentsAboveTheHole) {
  const Tens2<double> stress{3, 5, 5, 7};
  const struct {
    Vec3<double> point;
    HoleStress expected;
  } cases[] = {
      {{1, 0, 0}, {3, 7, 5}},
      {{0, 1, 0}, {7, 3, -5}},
      {{-1, 0, 0}, {3, 7, 5}},
      {{0, -1, 0}, {7, 3, -5}},
  };
  for (auto const& [point, expected] : cases) {
    const HoleStress local = in_hole_axes(stress, point);
    EXPECT_EQ(local.radial, expected.radial) << point.x << ' ' << point.y;
    EXPECT_EQ(local.tangential, expected.tangential) << point.x << ' ' << point.y;
    EXPECT_EQ(local.shear, expected.shear) << point.x << ' ' << point.y;
  }
}

// A pull of 1 along x, seen at 30 degrees: cos² 30, sin² 30 and -sin 30 cos 30.
TEST(HoleAxes, TurnAUniformTension) {
  const HoleStress local = in_hole_axes({1, 0, 0, 0}, {std::sqrt(3), 1, 0});
  EXPECT_NEAR(local.radial, 0.75, stress_rounding);
  EXPECT_NEAR(local.tangential, 0.25, stress_rounding);
  EXPECT_NEAR(local.shear, -std::sqrt(3) / 4, stress_rounding);
}

TEST(HoleAxes, TurnTheClosedSolutionIntoItsPolarForm) {
  std::mt19937_64 random(1898);
  std::uniform_real_distribution<double> radius(1, 6);
  std::uniform_real_distribution<double> angle(-pi, pi);
  for (int i = 0; i < 1000; ++i) {
    const double r = radius(random);
    const double theta = angle(random);
    const double x = r * std::cos(theta);
    const double y = r * std::sin(theta);
    const HoleStress local = in_hole_axes(plate::test::stress_by_potentials(x, y), {x, y, 0});
    const Tens2<double> polar = plate::kirsch_polar(r, theta);
    EXPECT_NEAR(local.radial, polar.xx, stress_rounding) << r << ' ' << theta;
    EXPECT_NEAR(local.tangential, polar.yy, stress_rounding) << r << ' ' << theta;
    EXPECT_NEAR(local.shear, polar.xy, stress_rounding) << r << ' ' << theta;
  }
}

}  // namespace

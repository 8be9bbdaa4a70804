#include "kirsch.h"

#include "complex_potentials.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>
#include <random>

namespace {

using std::numbers::pi;

// A component is a sum of about ten products of magnitude up to 3, each rounded, and a rotation of it.
constexpr double rounding = 32 * 3 * std::numeric_limits<double>::epsilon() / 2;

TEST(Kirsch, LeavesTheEdgeOfTheHoleFreeOfTraction) {
  for (int degrees = 0; degrees < 360; degrees += 5) {
    const Tens2<double> stress = plate::kirsch_polar(1, degrees * pi / 180);
    EXPECT_NEAR(stress.xx, 0, rounding) << degrees;
    EXPECT_NEAR(stress.xy, 0, rounding) << degrees;
  }
}

TEST(Kirsch, ConcentratesTheStressThreefoldBesideTheHole) {
  EXPECT_NEAR(plate::kirsch_polar(1, pi / 2).yy, 3, rounding);
  EXPECT_NEAR(plate::kirsch({0, 1, 0}).xx, 3, rounding);
  EXPECT_NEAR(plate::kirsch({0, -1, 0}).xx, 3, rounding);
}

TEST(Kirsch, PressesBeforeAndBehindTheHole) {
  EXPECT_NEAR(plate::kirsch_polar(1, 0).yy, -1, rounding);
  EXPECT_NEAR(plate::kirsch({1, 0, 0}).yy, -1, rounding);
  EXPECT_NEAR(plate::kirsch({-1, 0, 0}).yy, -1, rounding);
}

TEST(Kirsch, BecomesUniformTensionFarAway) {
  // What is left of the hole at r = 1e6 is 2.5 a²/r² at most.
  for (int degrees = 0; degrees < 360; degrees += 15) {
    const double theta = degrees * pi / 180;
    const Tens2<double> stress = plate::kirsch({1e6 * std::cos(theta), 1e6 * std::sin(theta), 0});
    EXPECT_NEAR(stress.xx, 1, 2.6e-12) << degrees;
    EXPECT_NEAR(stress.xy, 0, 2.6e-12) << degrees;
    EXPECT_NEAR(stress.yy, 0, 2.6e-12) << degrees;
  }
}

TEST(Kirsch, AgreesWithTheComplexPotentials) {
  std::mt19937_64 random(1898);
  std::uniform_real_distribution<double> radius(1, 6);
  std::uniform_real_distribution<double> angle(-pi, pi);
  for (int i = 0; i < 1000; ++i) {
    const double r = radius(random);
    const double theta = angle(random);
    const double x = r * std::cos(theta);
    const double y = r * std::sin(theta);
    const Tens2<double> stress = plate::kirsch({x, y, 0});
    const Tens2<double> expected = plate::test::stress_by_potentials(x, y);
    EXPECT_NEAR(stress.xx, expected.xx, rounding) << x << ' ' << y;
    EXPECT_NEAR(stress.xy, expected.xy, rounding) << x << ' ' << y;
    EXPECT_NEAR(stress.yy, expected.yy, rounding) << x << ' ' << y;
    EXPECT_EQ(stress.xy, stress.yx);
  }
}

}  // namespace

#include <talvo/geometry/angle.h>

#include <gtest/gtest.h>

#include <cmath>
#include <iomanip>
#include <limits>

#include "support/bits.h"
#include "support/random.h"

namespace {

using Talvo::cos2;
using Talvo::FormatAngle;
using Talvo::sin2;
using talvo::test::equal_bits;
using talvo::test::Random;

constexpr double kPi = 3.141592653589793;
constexpr double kTwoPi = 6.283185307179586;
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

// The unit roundoff: one rounding to nearest changes a normal number by at most this much of itself. Bounds count it.
constexpr double kRoundoff = 0x1p-53;

double plain_format(double angle) {
  if (std::fabs(angle) < 1e-10) return 0.0;
  if (angle > kPi) return angle - kTwoPi;
  if (angle < 0.0 && std::fabs(angle) > kPi) return angle + kTwoPi;
  return angle;
}

TEST(FormatAngle, TakesAwayOrAddsOneTurn) {
  EXPECT_EQ(FormatAngle(4.0), 4.0 - kTwoPi);
  EXPECT_EQ(FormatAngle(-4.0), -4.0 + kTwoPi);
}

TEST(FormatAngle, TakesAwayOneTurnOnly) {
  EXPECT_EQ(FormatAngle(10.0), 10.0 - kTwoPi);
  EXPECT_GT(FormatAngle(10.0), kPi);
  EXPECT_EQ(FormatAngle(-10.0), -10.0 + kTwoPi);
  EXPECT_LT(FormatAngle(-10.0), -kPi);
}

TEST(FormatAngle, KeepsAnAngleWithinHalfATurn) {
  for (double angle : {3.0, 1.0, -1.0, -3.0}) EXPECT_EQ(FormatAngle(angle), angle);
}

TEST(FormatAngle, CountsLessThan1em10AsZero) {
  EXPECT_TRUE(equal_bits(FormatAngle(5e-11), 0.0));
  EXPECT_TRUE(equal_bits(FormatAngle(-5e-11), 0.0));
  EXPECT_TRUE(equal_bits(FormatAngle(-0.0), 0.0));
  for (double sign : {1.0, -1.0}) {
    EXPECT_TRUE(equal_bits(FormatAngle(sign * std::nextafter(1e-10, 0.0)), 0.0));
    EXPECT_EQ(FormatAngle(sign * 1e-10), sign * 1e-10);
  }
}

TEST(FormatAngle, KeepsHalfATurnOfEitherSign) {
  EXPECT_EQ(FormatAngle(kPi), kPi);
  EXPECT_EQ(FormatAngle(-kPi), -kPi);
  const double beyond = std::nextafter(kPi, 4.0);
  EXPECT_EQ(FormatAngle(beyond), beyond - kTwoPi);
  EXPECT_EQ(FormatAngle(-beyond), -beyond + kTwoPi);
}

TEST(FormatAngle, PassesInfinityAndNaNThrough) {
  EXPECT_EQ(FormatAngle(kInfinity), kInfinity);
  EXPECT_EQ(FormatAngle(-kInfinity), -kInfinity);
  EXPECT_TRUE(std::isnan(FormatAngle(kNan)));
}

TEST(FormatAngle, EqualsItsStepsBitForBit) {
  Random random(71);
  for (int i = 0; i < 20000; ++i) {
    const double angle = random.below(2) == 0 ? random.any_double() : random.near(random.uniform(-4.0, 4.0) * kPi);
    ASSERT_TRUE(equal_bits(FormatAngle(angle), plain_format(angle))) << std::setprecision(17) << angle;
  }
}

// Up to three half turns the result is in the interval, and differs by a whole number of turns.
TEST(FormatAngle, BringsAnAngleIntoTheIntervalUpToThreeHalfTurns) {
  Random random(72);
  for (int i = 0; i < 2000; ++i) {
    const double angle = random.uniform(-3.0, 3.0) * kPi;
    const double formatted = FormatAngle(angle);
    ASSERT_LE(std::fabs(formatted), kPi) << std::setprecision(17) << angle;
    ASSERT_NEAR(std::remainder(angle - formatted, kTwoPi), 0.0, 16 * kRoundoff) << std::setprecision(17) << angle;
  }
}

TEST(SquaresOfSineAndCosine, OfAFewAngles) {
  EXPECT_TRUE(equal_bits(sin2(0.0), 0.0));
  EXPECT_TRUE(equal_bits(sin2(-0.0), 0.0));
  EXPECT_EQ(cos2(0.0), 1.0);
  EXPECT_EQ(sin2(kPi / 2), 1.0);
  EXPECT_NEAR(sin2(kPi / 6), 0.25, 2 * kRoundoff);
  EXPECT_NEAR(cos2(kPi / 3), 0.25, 2 * kRoundoff);
  // The double π/2 is 6.123e-17 short of a right angle.
  EXPECT_NEAR(cos2(kPi / 2), 3.749399456654644e-33, 1e-47);
}

TEST(SquaresOfSineAndCosine, AreNaNForInfinityAndNaN) {
  for (double x : {kInfinity, -kInfinity, kNan}) {
    EXPECT_TRUE(std::isnan(sin2(x)));
    EXPECT_TRUE(std::isnan(cos2(x)));
  }
}

// The power with the exponent 2 is the correctly rounded square.
TEST(SquaresOfSineAndCosine, AreTheSquaresOfTheRoundedFunctions) {
  Random random(73);
  for (int i = 0; i < 20000; ++i) {
    const double x = random.below(2) == 0 ? random.any_double() : random.uniform(-7.0, 7.0);
    ASSERT_TRUE(equal_bits(sin2(x), std::sin(x) * std::sin(x))) << std::setprecision(17) << x;
    ASSERT_TRUE(equal_bits(cos2(x), std::cos(x) * std::cos(x))) << std::setprecision(17) << x;
  }
}

// A sine within 1 ulp, two roundoffs at most, counts twice in its square, which adds one.
TEST(SquaresOfSineAndCosine, AgreeWithLongDouble) {
  Random random(74);
  for (int i = 0; i < 20000; ++i) {
    const double x = random.uniform(-100.0, 100.0);
    const long double s = std::sin(static_cast<long double>(x));
    const long double c = std::cos(static_cast<long double>(x));
    ASSERT_LE(std::fabs(static_cast<double>(sin2(x) - s * s)), 5 * kRoundoff * static_cast<double>(s * s)) << x;
    ASSERT_LE(std::fabs(static_cast<double>(cos2(x) - c * c)), 5 * kRoundoff * static_cast<double>(c * c)) << x;
    ASSERT_NEAR(sin2(x) + cos2(x), 1.0, 6 * kRoundoff) << x;
  }
}

}  // namespace

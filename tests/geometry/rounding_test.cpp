#include <talvo/geometry/rounding.h>

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <iomanip>
#include <limits>
#include <ostream>
#include <string>

#include "support/bits.h"
#include "support/random.h"

namespace {

using Talvo::Round;
using Talvo::RoundDecimalPlace;
using talvo::test::equal_bits;
using talvo::test::Random;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr float kFloatInfinity = std::numeric_limits<float>::infinity();
constexpr int kLeastInt = std::numeric_limits<int>::min();
constexpr int kLargestInt = std::numeric_limits<int>::max();

// The unit roundoff: one rounding to nearest changes a normal number by at most this much of itself. Bounds count it.
constexpr double kRoundoff = 0x1p-53;

// ---------------------------------------------------------------- the rules, written out in their order

double plain_round(double value, int figures) {
  const double magnitude = std::fabs(value);
  if (magnitude < 2.2250738585072014e-308 || magnitude > 1.7976931348623157e308 || magnitude < 1e-10) return 0.0;
  const double power = std::pow(10.0, figures);
  double v = magnitude;
  double scale = 1.0;
  while (v > power) {
    v = v * 0.1;
    scale = scale * 10.0;
  }
  while (v < power * 0.1) {
    v = v * 10.0;
    scale = scale * 0.1;
  }
  double whole = 0.0;
  const double fraction = std::modf(v, &whole);
  const double rounded = (fraction >= 0.5 ? whole + 1.0 : whole) * scale;
  return value < 0.0 ? -rounded : rounded;
}

float plain_round(float value, int figures) {
  const float magnitude = std::fabs(value);
  if (magnitude < 1.1754944e-38F || magnitude > 3.4028235e38F) return 0.0F;
  return static_cast<float>(plain_round(static_cast<double>(value), figures));
}

double plain_round_decimal_place(double value, int places) {
  if (places < 0) return value;
  const double power = std::pow(10.0, places);
  return std::round(power * value) / power;
}

/// Numbers of figures or places: mostly few, now and then so many that the power overflows or vanishes.
int any_count(Random& random) {
  static constexpr std::array<int, 12> kSpecial{kLeastInt, kLeastInt + 1, -400, -325, -324, -323,
                                                -309,      308,           309,  400,  1000, kLargestInt};
  switch (random.below(4)) {
    case 0:
      return kSpecial[random.below(kSpecial.size())];
    case 1:
      return static_cast<int>(random.below(800)) - 400;
    default:
      return static_cast<int>(random.below(24)) - 4;
  }
}

// ---------------------------------------------------------------- significant figures

struct RoundCase {
  const char* name;
  double value;
  int figures;
  double expected;

  friend std::ostream& operator<<(std::ostream& out, RoundCase const& c) {
    return out << std::setprecision(17) << c.value << " to " << c.figures << " figures";
  }
};

class RoundExactly : public ::testing::TestWithParam<RoundCase> {};

TEST_P(RoundExactly, GivesTheNumber) {
  EXPECT_TRUE(equal_bits(Round(GetParam().value, GetParam().figures), GetParam().expected));
}

// 600 comes down to 0.6, whose nearest whole number is 1, and 400 to 0.4.
INSTANTIATE_TEST_SUITE_P(Values, RoundExactly,
                         ::testing::Values(RoundCase{"half_is_kept", 0.5, 1, 0.5},                        //
                                           RoundCase{"whole_number", 120.0, 3, 120.0},                    //
                                           RoundCase{"half_goes_up", 2.5, 1, 3.0},                        //
                                           RoundCase{"negative_half_goes_down", -2.5, 1, -3.0},           //
                                           RoundCase{"below_half_is_cut", 2.25, 1, 2.0},                  //
                                           RoundCase{"one_power_is_kept", 10.0, 1, 10.0},                 //
                                           RoundCase{"no_figures_up", 600.0, 0, 1000.0},                  //
                                           RoundCase{"no_figures_down", 400.0, 0, 0.0},                   //
                                           RoundCase{"no_figures_down_negative", -400.0, 0, -0.0},        //
                                           RoundCase{"less_than_none", 600.0, -1, 0.0},                   //
                                           RoundCase{"zero", 0.0, 3, 0.0},                                //
                                           RoundCase{"minus_zero", -0.0, 3, 0.0},                         //
                                           RoundCase{"tiny_becomes_zero", 5e-11, 3, 0.0},                 //
                                           RoundCase{"tiny_negative_becomes_plus_zero", -5e-11, 3, 0.0},  //
                                           RoundCase{"infinity", kInfinity, 3, 0.0},                      //
                                           RoundCase{"minus_infinity", -kInfinity, 3, 0.0},               //
                                           RoundCase{"nan", kNan, 3, kNan}),
                         [](auto const& round) { return std::string(round.param.name); });

// Two multiplications each way, of numbers that are within one rounding.
TEST(Round, KeepsTwoFiguresOf123_456) { EXPECT_NEAR(Round(123.456, 2), 120.0, 120 * 4 * kRoundoff); }

TEST(Round, KeepsThreeFiguresOfMinus0_0123456) { EXPECT_NEAR(Round(-0.0123456, 3), -0.0123, 0.0123 * 10 * kRoundoff); }

TEST(Round, CountsMagnitudesBelow1em10AsZero) {
  for (double sign : {1.0, -1.0}) {
    EXPECT_TRUE(equal_bits(Round(sign * std::nextafter(1e-10, 0.0), 3), 0.0));
    // The scale gains a rounding, and the error of the literal 0.1, with each of 12 steps.
    EXPECT_NEAR(Round(sign * 1e-10, 3), sign * 1e-10, 1e-10 * 50 * kRoundoff);
  }
}

TEST(Round, TakesTheLargestNumberAndNotInfinity) {
  const double largest = std::numeric_limits<double>::max();
  // 303 steps, each with a rounding and the error of 0.1 in the value, and a rounding in the scale.
  EXPECT_NEAR(Round(largest, 6) / 1e308, 1.79769, 1.8 * 1000 * kRoundoff);
  EXPECT_EQ(Round(largest, 3), kInfinity) << "1.80e308 is beyond";
  EXPECT_TRUE(equal_bits(Round(kInfinity, 3), 0.0));
}

// The scale is a product of factors 0.1, each a little above a tenth: three of them are not the literal 0.001.
TEST(Round, BuildsItsScaleByRepeatedMultiplication) {
  const double scale = 0.1 * 0.1 * 0.1;
  ASSERT_NE(scale, 0.001);
  EXPECT_EQ(Round(0.007, 1), 7.0 * scale);
}

// v moves by factors of 0.1 as well, and those are a little above a tenth: a number just below a half goes up.
TEST(Round, MovesItsValueByRepeatedMultiplication) {
  EXPECT_LT(2499999999999999.5 / 1e15, 2.5);
  EXPECT_EQ(Round(2499999999999999.5, 1), 3e15);
}

TEST(Round, GivesNaNForNaNWithAnyFigures) {
  for (int figures : {kLeastInt, -400, -1, 0, 1, 17, 309, kLargestInt}) {
    EXPECT_TRUE(std::isnan(Round(kNan, figures))) << figures;
  }
}

// The power is 0: v falls to 0 and the scale rises to infinity.
TEST(Round, GivesNaNWhereTheScaleOverflows) {
  EXPECT_TRUE(std::isnan(Round(123.456, kLeastInt)));
  EXPECT_TRUE(std::isnan(Round(-123.456, -400)));
}

// The power is infinite: v rises until it is so too.
TEST(Round, EndsWhereThePowerOverflows) {
  for (double value : {1e-10, 1.0, 123.456, -123.456, 1.7e308}) {
    for (int figures : {309, 400, kLargestInt}) {
      EXPECT_TRUE(equal_bits(Round(value, figures), plain_round(value, figures))) << value << ' ' << figures;
    }
  }
}

TEST(Round, EqualsItsStepsBitForBit) {
  Random random(61);
  for (int i = 0; i < 20000; ++i) {
    const double value = random.below(2) == 0 ? random.any_double() : random.uniform(-1000.0, 1000.0);
    const int figures = any_count(random);
    ASSERT_TRUE(equal_bits(Round(value, figures), plain_round(value, figures)))
        << "seed 61, case " << i << ": " << std::setprecision(17) << value << " to " << figures;
  }
}

// Powers of ten and their neighbours, where the loops start and stop.
TEST(Round, EqualsItsStepsNextToPowersOfTen) {
  Random random(62);
  for (int exponent = -11; exponent <= 308; ++exponent) {
    for (int figures = -2; figures <= 18; ++figures) {
      const double value = random.near(std::pow(10.0, exponent));
      ASSERT_TRUE(equal_bits(Round(value, figures), plain_round(value, figures)))
          << std::setprecision(17) << value << " to " << figures;
    }
  }
}

// The C library prints the exact binary value, rounded correctly. With n steps the value and the scale carry up to 2n
// roundoffs each (the step's rounding and the error of the literal 0.1); a value within that of a tie may go either
// way.
TEST(Round, AgreesWithTheDecimalRoundingOfTheCLibrary) {
  Random random(63);
  int compared = 0;
  for (int i = 0; i < 20000; ++i) {
    const int exponent = static_cast<int>(random.below(40)) - 9;
    const double value = random.uniform(1.0, 10.0) * std::pow(10.0, exponent) * (random.below(2) == 0 ? 1 : -1);
    const int figures = 1 + static_cast<int>(random.below(12));
    std::array<char, 64> text;
    std::snprintf(text.data(), text.size(), "%.*e", figures - 1, value);
    const double expected = std::strtod(text.data(), nullptr);
    const int steps = std::abs(exponent + 1 - figures) + 1;
    const double error = 2 * steps * kRoundoff;
    const double unit = std::pow(10.0, exponent + 1 - figures);
    const double from_tie = std::fabs(std::fabs(value - expected) - unit / 2);
    if (from_tie < std::fabs(value) * 2 * error) continue;
    ++compared;
    ASSERT_LE(std::fabs(Round(value, figures) - expected), std::fabs(expected) * (error + 4 * kRoundoff))
        << "seed 63, case " << i << ": " << std::setprecision(17) << value << " to " << figures;
  }
  EXPECT_GT(compared, 19000);
}

// ---------------------------------------------------------------- single precision

TEST(RoundFloat, RoundsAsDoubleAndConvertsBack) {
  EXPECT_EQ(Round(123.456F, 2), 120.0F);
  EXPECT_EQ(Round(-0.0123456F, 3), -0.0123F);
  EXPECT_EQ(Round(0.5F, 1), 0.5F);
}

TEST(RoundFloat, CountsWhatDoubleCountsAsZero) {
  EXPECT_TRUE(equal_bits(Round(5e-11F, 3), 0.0F));
  EXPECT_TRUE(equal_bits(Round(-5e-11F, 3), 0.0F));
  EXPECT_TRUE(equal_bits(Round(std::numeric_limits<float>::min(), 3), 0.0F));
  EXPECT_TRUE(equal_bits(Round(-std::numeric_limits<float>::denorm_min(), 3), 0.0F));
}

TEST(RoundFloat, TakesTheLargestNumberAndNotInfinity) {
  const float largest = std::numeric_limits<float>::max();
  EXPECT_EQ(Round(largest, 3), 3.4e38F);
  EXPECT_EQ(Round(-largest, 1), -3e38F);
  EXPECT_EQ(Round(largest, 4), kFloatInfinity) << "3.403e38 is beyond";
  EXPECT_TRUE(equal_bits(Round(kFloatInfinity, 3), 0.0F));
  EXPECT_TRUE(equal_bits(Round(-kFloatInfinity, 3), 0.0F));
}

TEST(RoundFloat, GivesNaNForNaN) { EXPECT_TRUE(std::isnan(Round(std::numeric_limits<float>::quiet_NaN(), 3))); }

TEST(RoundFloat, EqualsItsStepsBitForBit) {
  Random random(64);
  for (int i = 0; i < 20000; ++i) {
    const double wide = random.below(2) == 0 ? random.any_double() : random.uniform(-1000.0, 1000.0);
    const float value = static_cast<float>(std::fabs(wide) > 1e38 ? std::ldexp(wide, -896) : wide);
    const int figures = any_count(random);
    ASSERT_TRUE(equal_bits(Round(value, figures), plain_round(value, figures)))
        << "seed 64, case " << i << ": " << std::setprecision(9) << value << " to " << figures;
  }
}

// ---------------------------------------------------------------- vectors

TEST(RoundVector, RoundsEachComponentAndSetsWToZero) {
  const Vec3<double> v = Round(Vec3<double>{123.456, -2.5, 5e-11, 9.0}, 1);
  EXPECT_TRUE(equal_bits(v.x, plain_round(123.456, 1)));
  EXPECT_TRUE(equal_bits(v.y, -3.0));
  EXPECT_TRUE(equal_bits(v.z, 0.0));
  EXPECT_TRUE(equal_bits(v.w, 0.0));
}

// 0.0123 as a float is not what double gives for the same number.
TEST(RoundVector, OfFloatsFollowsTheRuleForFloats) {
  const Vec3<float> v = Round(Vec3<float>{-0.0123456F, kFloatInfinity, 2.5F, 9.0F}, 3);
  EXPECT_TRUE(equal_bits(v.x, -0.0123F));
  EXPECT_TRUE(equal_bits(v.y, 0.0F));
  EXPECT_TRUE(equal_bits(v.z, plain_round(2.5F, 3)));
  EXPECT_TRUE(equal_bits(v.w, 0.0F));
}

TEST(RoundVector, KeepsNaNInItsComponent) {
  const Vec3<double> v = Round(Vec3<double>{1.0, kNan, -kInfinity, kNan}, 1);
  EXPECT_EQ(v.x, 1.0);
  EXPECT_TRUE(std::isnan(v.y));
  EXPECT_TRUE(equal_bits(v.z, 0.0));
  EXPECT_TRUE(equal_bits(v.w, 0.0));
}

TEST(RoundVector, EqualsTheScalarRuleBitForBit) {
  Random random(65);
  for (int i = 0; i < 2000; ++i) {
    SCOPED_TRACE(::testing::Message() << "seed 65, case " << i);
    const Vec3<double> v{random.any_double(), random.any_double(), random.any_double(), random.any_double()};
    const int figures = any_count(random);
    const Vec3<double> rounded = Round(v, figures);
    ASSERT_TRUE(equal_bits(rounded.x, plain_round(v.x, figures)));
    ASSERT_TRUE(equal_bits(rounded.y, plain_round(v.y, figures)));
    ASSERT_TRUE(equal_bits(rounded.z, plain_round(v.z, figures)));
    ASSERT_TRUE(equal_bits(rounded.w, 0.0));
  }
}

// ---------------------------------------------------------------- decimal places

TEST(RoundDecimalPlace, ReturnsTheValueForNegativePlaces) {
  EXPECT_EQ(RoundDecimalPlace(2.345, -1), 2.345);
  EXPECT_EQ(RoundDecimalPlace(1e300, kLeastInt), 1e300);
  EXPECT_TRUE(equal_bits(RoundDecimalPlace(-0.0, -1), -0.0));
  EXPECT_TRUE(equal_bits(RoundDecimalPlace(-kInfinity, -1), -kInfinity));
  EXPECT_TRUE(std::isnan(RoundDecimalPlace(kNan, -1)));
}

TEST(RoundDecimalPlace, RoundsHalvesAwayFromZero) {
  EXPECT_EQ(RoundDecimalPlace(2.5, 0), 3.0);
  EXPECT_EQ(RoundDecimalPlace(-2.5, 0), -3.0);
  EXPECT_EQ(RoundDecimalPlace(0.125, 2), 0.13);
  EXPECT_EQ(RoundDecimalPlace(-0.125, 2), -0.13);
}

TEST(RoundDecimalPlace, CutsBelowAHalf) {
  EXPECT_EQ(RoundDecimalPlace(std::nextafter(2.5, 0.0), 0), 2.0);
  EXPECT_EQ(RoundDecimalPlace(1.0625, 2), 1.06);
}

TEST(RoundDecimalPlace, KeepsTheSignOfZero) {
  EXPECT_TRUE(equal_bits(RoundDecimalPlace(-0.25, 0), -0.0));
  EXPECT_TRUE(equal_bits(RoundDecimalPlace(-0.0, 3), -0.0));
}

TEST(RoundDecimalPlace, OverflowsWithItsPower) {
  EXPECT_TRUE(equal_bits(RoundDecimalPlace(1e300, 300), kInfinity));
  EXPECT_TRUE(std::isnan(RoundDecimalPlace(1.0, 309))) << "infinity over infinity";
  EXPECT_TRUE(std::isnan(RoundDecimalPlace(0.0, kLargestInt))) << "infinity times zero";
  EXPECT_TRUE(equal_bits(RoundDecimalPlace(kInfinity, 3), kInfinity));
  EXPECT_TRUE(std::isnan(RoundDecimalPlace(kNan, 3)));
}

TEST(RoundDecimalPlace, EqualsItsFormulaBitForBit) {
  Random random(66);
  for (int i = 0; i < 20000; ++i) {
    const double value = random.below(2) == 0 ? random.any_double() : random.uniform(-1000.0, 1000.0);
    const int places = any_count(random);
    ASSERT_TRUE(equal_bits(RoundDecimalPlace(value, places), plain_round_decimal_place(value, places)))
        << "seed 66, case " << i << ": " << std::setprecision(17) << value << " to " << places;
  }
}

}  // namespace

#include <talvo/geometry/scale.h>

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <iomanip>
#include <limits>
#include <ostream>
#include <string>
#include <vector>

#include "support/bits.h"
#include "support/random.h"

namespace {

using Talvo::EngScale;
using Talvo::IntervalsLogScale;
using Talvo::logn;
using talvo::test::equal_bits;
using talvo::test::Random;

constexpr double kRootOfTwoThirds = 0.816496580927726;
constexpr double kLeastNormal = 2.2250738585072014e-308;
constexpr double kLargest = std::numeric_limits<double>::max();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

// The unit roundoff: one rounding to nearest changes a normal number by at most this much of itself. Bounds count it.
constexpr double kRoundoff = 0x1p-53;

// ---------------------------------------------------------------- drawing scales

double plain_eng_scale(double value, double size, bool first, bool second) {
  if (std::fabs(value) < kLeastNormal || std::fabs(value) > kLargest || std::fabs(size) < kLeastNormal) return 0.0;
  double t = value * size;
  if (first) t = t / kRootOfTwoThirds;
  // There is no scale for it, and the loops below would not end; NaN does not enter them.
  if (t <= 0.0 || std::isinf(t)) return 0.0;
  double up = 1.0;
  double down = 1.0;
  while (t > 1.0) {
    t = t * 0.1;
    up = up * 10.0;
  }
  while (t < 0.1) {
    t = t * 10.0;
    down = down * 10.0;
  }
  double s = up / down;
  if (second) {
    s = s * (t > 0.5 ? 0.5 : t > 0.25 ? 0.25 : t > 0.2 ? 0.2 : t > 0.125 ? 0.125 : 0.1);
  } else {
    s = s * (t > 0.5 ? 1.0 : t > 0.25 ? 0.5 : t > 0.2 ? 0.25 : t > 0.125 ? 0.2 : 0.125);
  }
  if (first) s = s * kRootOfTwoThirds;
  return s / size;
}

TEST(EngScale, Of3IsFiveAndWithTheOtherLadderTwoAndAHalf) {
  EXPECT_EQ(EngScale(3, 1, false, false), 5.0);
  EXPECT_EQ(EngScale(3, 1, false, true), 2.5);
}

// A product from 0.1 to 1 meets the ladders directly.
struct Rung {
  const char* name;
  double product;
  double without_second, with_second;

  friend std::ostream& operator<<(std::ostream& out, Rung const& rung) { return out << rung.name; }
};

double above(double x) { return std::nextafter(x, kInfinity); }

class EngScaleLadders : public ::testing::TestWithParam<Rung> {};

TEST_P(EngScaleLadders, GiveTheFactor) {
  EXPECT_EQ(EngScale(GetParam().product, 1, false, false), GetParam().without_second);
  EXPECT_EQ(EngScale(GetParam().product, 1, false, true), GetParam().with_second);
}

TEST_P(EngScaleLadders, AreDividedByTheSize) {
  EXPECT_EQ(EngScale(GetParam().product / 4, 4, false, false), GetParam().without_second / 4);
  EXPECT_EQ(EngScale(GetParam().product / 4, 4, false, true), GetParam().with_second / 4);
}

INSTANTIATE_TEST_SUITE_P(Rungs, EngScaleLadders,
                         ::testing::Values(Rung{"one", 1.0, 1.0, 0.5},                     //
                                           Rung{"above_0_5", above(0.5), 1.0, 0.5},        //
                                           Rung{"at_0_5", 0.5, 0.5, 0.25},                 //
                                           Rung{"above_0_25", above(0.25), 0.5, 0.25},     //
                                           Rung{"at_0_25", 0.25, 0.25, 0.2},               //
                                           Rung{"above_0_2", above(0.2), 0.25, 0.2},       //
                                           Rung{"at_0_2", 0.2, 0.2, 0.125},                //
                                           Rung{"above_0_125", above(0.125), 0.2, 0.125},  //
                                           Rung{"at_0_125", 0.125, 0.125, 0.1},            //
                                           Rung{"at_0_1", 0.1, 0.125, 0.1}),
                         [](auto const& rung) { return std::string(rung.param.name); });

// 1 stays, the next number is divided by ten; 0.1 stays, the number below it is multiplied by ten.
TEST(EngScale, StepsByTenBeyondOneAndBelowATenth) {
  EXPECT_EQ(EngScale(above(1.0), 1, false, false), 10 * 0.125);
  EXPECT_EQ(EngScale(above(1.0), 1, false, true), 10 * 0.1);
  EXPECT_EQ(EngScale(std::nextafter(0.1, 0.0), 1, false, false), 1.0 / 10);
  EXPECT_EQ(EngScale(std::nextafter(0.1, 0.0), 1, false, true), 0.5 / 10);
}

// 0.3·0.8165 / 0.8165 = 0.3: the factor 0.5 of an isometric drawing is 0.5·0.8165.
TEST(EngScale, OfAnIsometricDrawingIsShortened) {
  EXPECT_NEAR(EngScale(0.3 * kRootOfTwoThirds, 1, true, false), 0.5 * kRootOfTwoThirds, kRoundoff);
  EXPECT_NEAR(EngScale(0.3 * kRootOfTwoThirds, 1, true, true), 0.25 * kRootOfTwoThirds, kRoundoff);
}

// The division comes before the ladder: 0.45 is below a half, 0.45 / 0.8165 = 0.551 is not.
TEST(EngScale, DividesByTheShorteningBeforeTheLadder) {
  EXPECT_EQ(EngScale(0.45, 1, false, false), 0.5);
  EXPECT_EQ(EngScale(0.45, 1, true, false), 1.0 * kRootOfTwoThirds);
}

TEST(EngScale, IsZeroWithoutAValue) {
  for (bool first : {false, true}) {
    for (bool second : {false, true}) {
      for (double sign : {1.0, -1.0}) {
        EXPECT_TRUE(equal_bits(EngScale(sign * 0.0, 1, first, second), 0.0));
        EXPECT_TRUE(equal_bits(EngScale(sign * std::nextafter(kLeastNormal, 0.0), 1e300, first, second), 0.0));
        EXPECT_TRUE(equal_bits(EngScale(sign * kInfinity, 1, first, second), 0.0));
      }
    }
  }
}

TEST(EngScale, IsZeroWithoutASize) {
  for (bool first : {false, true}) {
    for (bool second : {false, true}) {
      for (double sign : {1.0, -1.0}) {
        EXPECT_TRUE(equal_bits(EngScale(1, sign * 0.0, first, second), 0.0));
        EXPECT_TRUE(equal_bits(EngScale(1e300, sign * std::nextafter(kLeastNormal, 0.0), first, second), 0.0));
        EXPECT_TRUE(equal_bits(EngScale(1, sign * kInfinity, first, second), 0.0)) << "the product is infinite";
      }
    }
  }
}

// The product is an ordinary number again.
TEST(EngScale, TakesTheSmallestNormalAndTheLargestNumber) {
  EXPECT_GT(EngScale(kLeastNormal, 0x1p1022, false, false), 0.0);
  EXPECT_GT(EngScale(kLargest, 0x1p-1022, false, false), 0.0);
  EXPECT_GT(EngScale(0x1p1022, kLeastNormal, false, false), 0.0);
}

TEST(EngScale, IsZeroForAProductThatIsNotPositive) {
  EXPECT_TRUE(equal_bits(EngScale(-3, 1, false, false), 0.0));
  EXPECT_TRUE(equal_bits(EngScale(3, -1, true, true), 0.0));
  EXPECT_TRUE(equal_bits(EngScale(1e-200, 1e-200, false, false), 0.0)) << "underflow";
}

TEST(EngScale, IsZeroForAProductThatOverflows) {
  EXPECT_TRUE(equal_bits(EngScale(1e200, 1e200, false, false), 0.0));
  EXPECT_TRUE(equal_bits(EngScale(kLargest, 1, true, false), 0.0)) << "by the division";
  EXPECT_GT(EngScale(1e308, 1, false, false), 0.0);
}

TEST(EngScale, TakesTwoNegativeNumbersAsAPositiveProduct) {
  EXPECT_EQ(EngScale(-3, -1, false, false), -5.0);
  EXPECT_EQ(EngScale(-3, -1, false, true), -2.5);
}

// A NaN value passes all tests and ends on the last rung; a NaN size divides.
TEST(EngScale, GivesTheLastRungForNaN) {
  EXPECT_EQ(EngScale(kNan, 4, false, false), 0.125 / 4);
  EXPECT_EQ(EngScale(kNan, 4, false, true), 0.1 / 4);
  EXPECT_EQ(EngScale(kNan, 4, true, true), 0.1 * kRootOfTwoThirds / 4);
  EXPECT_TRUE(std::isnan(EngScale(4, kNan, false, false)));
}

TEST(EngScale, EqualsItsStepsBitForBit) {
  Random random(81);
  for (int i = 0; i < 40000; ++i) {
    const bool ordinary = random.below(2) == 0;
    const double value = ordinary ? random.uniform(-100.0, 1000.0) : random.any_double();
    const double size = ordinary ? random.uniform(0.0, 2.0) : random.any_double();
    const bool first = random.below(2) == 0, second = random.below(2) == 0;
    ASSERT_TRUE(equal_bits(EngScale(value, size, first, second), plain_eng_scale(value, size, first, second)))
        << "seed 81, case " << i << ": " << std::setprecision(17) << value << ' ' << size << ' ' << first << second;
  }
}

// Rungs and powers of ten and their neighbours, where repeated multiplication decides.
TEST(EngScale, EqualsItsStepsNextToItsBounds) {
  Random random(82);
  for (int exponent = -307; exponent <= 308; ++exponent) {
    for (double rung : {0.1, 0.125, 0.2, 0.25, 0.5}) {
      const double value = random.near(rung * std::pow(10.0, exponent));
      for (bool first : {false, true}) {
        for (bool second : {false, true}) {
          ASSERT_TRUE(equal_bits(EngScale(value, 1, first, second), plain_eng_scale(value, 1, first, second)))
              << std::setprecision(17) << value << ' ' << first << second;
        }
      }
    }
  }
}

// Times the size, the scale is the least number of the series 1, 1.25, 2, 2.5, 5, 10 that is not below the product, and
// on the other ladder the greatest of them below it. Products within 1e-12 of a member may go either way.
TEST(EngScale, EnclosesTheProductBetweenRoundNumbers) {
  Random random(83);
  const std::array<double, 6> series{1.0, 1.25, 2.0, 2.5, 5.0, 10.0};
  for (int i = 0; i < 4000; ++i) {
    const double mantissa = random.uniform(1.0, 10.0);
    const int exponent = static_cast<int>(random.below(21)) - 10;
    const double power = std::pow(10.0, exponent);
    const double size = random.uniform(0.1, 10.0);
    std::size_t k = 1;
    while (series[k] < mantissa) ++k;
    if (series[k] - mantissa < 1e-11 || mantissa - series[k - 1] < 1e-11) continue;
    const double value = mantissa * power / size;
    // Up to eleven steps, and the quotients.
    ASSERT_NEAR(EngScale(value, size, false, false) * size / power, series[k], 200 * kRoundoff) << value << ' ' << size;
    ASSERT_NEAR(EngScale(value, size, false, true) * size / power, series[k - 1], 200 * kRoundoff)
        << value << ' ' << size;
  }
}

// ---------------------------------------------------------------- logarithms

TEST(Logn, ToAnyBase) {
  EXPECT_EQ(logn(1000.0, 10.0), std::log10(1000.0));
  EXPECT_NEAR(logn(8.0, 2.0), 3.0, 8 * kRoundoff);
  EXPECT_NEAR(logn(2.0, 8.0), 1.0 / 3.0, kRoundoff);
  EXPECT_NEAR(logn(0.25, 2.0), -2.0, 8 * kRoundoff);
  EXPECT_EQ(logn(7.0, 7.0), 1.0);
}

TEST(Logn, ChecksNothing) {
  EXPECT_EQ(logn(2.0, 1.0), kInfinity);
  EXPECT_EQ(logn(0.5, 1.0), -kInfinity);
  EXPECT_TRUE(std::isnan(logn(1.0, 1.0)));
  EXPECT_EQ(logn(0.0, 10.0), -kInfinity);
  EXPECT_TRUE(equal_bits(logn(10.0, 0.0), -0.0));
  EXPECT_TRUE(std::isnan(logn(-1.0, 10.0)));
  EXPECT_TRUE(std::isnan(logn(10.0, -1.0)));
  EXPECT_TRUE(std::isnan(logn(kNan, 10.0)));
}

TEST(Logn, IsTheQuotientOfTwoDecimalLogarithms) {
  Random random(84);
  for (int i = 0; i < 20000; ++i) {
    const double x = random.any_double();
    const double base = random.below(2) == 0 ? random.any_double() : random.uniform(0.0, 20.0);
    ASSERT_TRUE(equal_bits(logn(x, base), std::log10(x) / std::log10(base))) << std::setprecision(17) << x << base;
  }
}

// ---------------------------------------------------------------- logarithmic intervals

std::vector<double> plain_intervals(double start, double end, int count, double base, std::vector<double> out) {
  const double from = std::log10(start) / std::log10(base);
  const double to = std::log10(end) / std::log10(base);
  const double step = (to - from) / count;
  for (int i = 0; i <= count; ++i) out.push_back(std::pow(base, from + i * step));
  return out;
}

void expect_equal_bits(std::vector<double> const& actual, std::vector<double> const& expected) {
  ASSERT_EQ(actual.size(), expected.size());
  for (std::size_t i = 0; i < expected.size(); ++i) EXPECT_TRUE(equal_bits(actual[i], expected[i])) << "value " << i;
}

TEST(IntervalsLogScale, OfThreeDecades) {
  std::vector<double> out;
  IntervalsLogScale(1, 1000, 3, 10, out);
  ASSERT_EQ(out.size(), 4U);
  // The power multiplies a rounding of its exponent, below 3, by ln 10 = 2.3.
  EXPECT_NEAR(out[0], 1.0, 8 * kRoundoff);
  EXPECT_NEAR(out[1], 10.0, 10 * 8 * kRoundoff);
  EXPECT_NEAR(out[2], 100.0, 100 * 16 * kRoundoff);
  EXPECT_NEAR(out[3], 1000.0, 1000 * 16 * kRoundoff);
}

TEST(IntervalsLogScale, GoDownwardsAsWell) {
  std::vector<double> out;
  IntervalsLogScale(8, 1, 3, 2, out);
  ASSERT_EQ(out.size(), 4U);
  for (std::size_t i = 0; i < 4; ++i) EXPECT_NEAR(out[i], std::ldexp(8.0, -static_cast<int>(i)), 8 * 16 * kRoundoff);
}

TEST(IntervalsLogScale, AreAppended) {
  std::vector<double> out{-1, -2};
  IntervalsLogScale(1, 100, 2, 10, out);
  ASSERT_EQ(out.size(), 5U);
  EXPECT_EQ(out[0], -1);
  EXPECT_EQ(out[1], -2);
  EXPECT_NEAR(out[2], 1.0, 8 * kRoundoff);
}

TEST(IntervalsLogScale, AppendNothingForANegativeCount) {
  std::vector<double> out{7};
  for (int count : {-1, -2, std::numeric_limits<int>::min()}) {
    IntervalsLogScale(1, 1000, count, 10, out);
    EXPECT_EQ(out, std::vector<double>{7});
  }
}

TEST(IntervalsLogScale, AppendOneNaNForACountOfZero) {
  std::vector<double> out{7};
  IntervalsLogScale(1, 1000, 0, 10, out);
  ASSERT_EQ(out.size(), 2U);
  EXPECT_EQ(out[0], 7);
  EXPECT_TRUE(std::isnan(out[1]));
  IntervalsLogScale(5, 5, 0, 10, out);
  ASSERT_EQ(out.size(), 3U);
  EXPECT_TRUE(std::isnan(out[2])) << "0 / 0";
}

// Every place where the vector may have to grow: full, and with room for some.
TEST(IntervalsLogScale, TakeTheirNumbersFromTheVectorItself) {
  for (std::size_t room : {0U, 1U, 3U, 50U}) {
    SCOPED_TRACE(room);
    std::vector<double> out{2.0, 512.0, 3.0};
    out.shrink_to_fit();
    if (room > 0) out.reserve(out.size() + room);
    IntervalsLogScale(out[0], out[1], 20, out[2], out);
    expect_equal_bits(out, plain_intervals(2.0, 512.0, 20, 3.0, {2.0, 512.0, 3.0}));
  }
}

TEST(IntervalsLogScale, EqualTheirFormulaBitForBit) {
  Random random(85);
  for (int i = 0; i < 4000; ++i) {
    SCOPED_TRACE(::testing::Message() << "seed 85, case " << i);
    const bool ordinary = random.below(2) == 0;
    const double start = ordinary ? random.uniform(0.0, 10.0) : random.any_double();
    const double end = ordinary ? random.uniform(0.0, 1e6) : random.any_double();
    const double base = ordinary ? random.uniform(0.1, 20.0) : random.any_double();
    const int count = static_cast<int>(random.below(12)) - 1;
    std::vector<double> out{1.0};
    IntervalsLogScale(start, end, count, base, out);
    expect_equal_bits(out, plain_intervals(start, end, count, base, {1.0}));
    if (HasFailure()) return;
  }
}

// Neighbours stand in one ratio: both ends to a few roundings of the exponent, which a power multiplies by its size.
TEST(IntervalsLogScale, HaveOneRatio) {
  Random random(86);
  for (int i = 0; i < 500; ++i) {
    SCOPED_TRACE(::testing::Message() << "seed 86, case " << i);
    const double start = random.uniform(0.1, 10.0), end = random.uniform(10.5, 1e4);
    const int count = 1 + static_cast<int>(random.below(20));
    const double base = random.uniform(1.5, 20.0);
    std::vector<double> out;
    IntervalsLogScale(start, end, count, base, out);
    const double ratio = std::pow(end / start, 1.0 / count);
    // The natural logarithms of all values are below 10, with some five roundings.
    const double bound = 10 * 8 * kRoundoff;
    ASSERT_NEAR(out.front() / start, 1.0, bound);
    ASSERT_NEAR(out.back() / end, 1.0, bound);
    for (std::size_t k = 1; k < out.size(); ++k) ASSERT_NEAR(out[k] / out[k - 1] / ratio, 1.0, 2 * bound);
  }
}

}  // namespace

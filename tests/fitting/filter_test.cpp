#include <talvo/fitting/filter.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstddef>
#include <functional>
#include <limits>
#include <numbers>
#include <ostream>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <typeinfo>
#include <vector>

#include "fitting/plain_smoothing.h"
#include "support/bits.h"
#include "support/random.h"

namespace {

using talvo::test::equal_bits;
using talvo::test::equal_records;
using talvo::test::plain_smoothing;
using talvo::test::Random;
using talvo::test::random_record;
using Talvo::Util::Filter;
using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

using Limits = std::numeric_limits<double>;
using Record = std::vector<double>;
constexpr double kNaN = Limits::quiet_NaN();
constexpr double kInfinity = Limits::infinity();
constexpr double kEps = Limits::epsilon();

int count_of(Record const& record) { return static_cast<int>(record.size()); }

/// The whole record by all weights, every sample kept.
Record smoothed(Record const& data, double time_step, Record const& weights, int step = 1) {
  return Filter().Smoot(data, count_of(data), time_step, weights, count_of(weights), step);
}

/// The weights written down literally.
Record plain_weights(double roll_off, double cut_off, double time_step) {
  const double a = roll_off * time_step;
  const auto n = static_cast<std::size_t>(1.0 / a);
  const double fa = (cut_off - roll_off) * time_step;
  const double fb = a + fa;
  Record w(n, 0.0);
  w[0] = fb + fa;
  double sum = 0.0;
  for (std::size_t i = 1; i < n; ++i) {
    const auto k = static_cast<double>(i);
    w[i] = (std::cos((k * 6.283185307179586) * fa) - std::cos((k * 6.283185307179586) * fb)) /
           (((k * 3.141592653589793) * (2 * a)) * (k * 3.141592653589793));
    sum += w[i];
  }
  const double scale = 2 * sum + w[0];
  for (double& each : w) each /= scale;
  return w;
}

TEST(Filter, HasNoStateAndIsNotChanged) {
  static_assert(std::is_empty_v<Filter>);
  static_assert(
      std::is_invocable_r_v<Record, decltype(&Filter::HighPass), Filter const&, double, Record const&, double, double>);
  static_assert(
      std::is_invocable_r_v<Record, decltype(&Filter::LowPass), Filter const&, double, Record const&, double, double>);
  static_assert(std::is_invocable_r_v<Record, decltype(&Filter::Weights), Filter const&, double, double, double>);
  static_assert(std::is_invocable_r_v<Record, decltype(&Filter::Smoot), Filter const&, Record const&, int, double,
                                      Record const&, int, int>);
  static_assert(std::is_copy_assignable_v<Filter> && std::is_move_assignable_v<Filter>);
}

// --- Weights ---

TEST(Weights, AreThoseOfTheTrapezoid) {
  // a = 0.25, n = 4, fa·Δt = 0.125, fb·Δt = 0.375. Before the division by D:
  // w0 = 0.5, w1 = (cos 45° - cos 135°)/(π²/2) = sqrt(2)·2/π² = 0.28658, w2 = (cos 90° - cos 270°)/(2π²) = 0,
  // w3 = (cos 135° - cos 405°)/(4.5·π²) = -sqrt(2)/(4.5·π²) = -0.031842. D = 0.5 + 2·(w1 + w2 + w3) = 1.0094748.
  const double pi_squared = std::numbers::pi * std::numbers::pi;
  const double w1 = 2 * std::numbers::sqrt2 / pi_squared;
  const double w3 = -std::numbers::sqrt2 / (4.5 * pi_squared);
  const double d = 0.5 + 2 * (w1 + w3);
  EXPECT_NEAR(w1, 0.28658, 5e-6);
  EXPECT_NEAR(w3, -0.031842, 5e-7);
  EXPECT_NEAR(d, 1.0094748, 5e-8);

  const Record w = Filter().Weights(2.0, 3.0, 0.125);
  ASSERT_THAT(w, SizeIs(4));
  EXPECT_NEAR(0.5 / w[0], d, 8 * kEps);
  EXPECT_NEAR(w[0], 0.5 / d, 4 * kEps);
  EXPECT_NEAR(w[1], w1 / d, 4 * kEps);
  EXPECT_NEAR(w[3], w3 / d, 4 * kEps);
  EXPECT_NEAR(w[0], 0.4953071, 5e-8);
  EXPECT_NEAR(w[1], 0.2838898, 5e-8);
  EXPECT_NEAR(w[3], -0.0315433, 5e-8);
  // Not 0: the cosines of the doubles next to π/2 and 3π/2 are 6.1e-17 and -1.8e-16.
  EXPECT_NEAR(w[2], 1.2e-17, 5e-19);
}

TEST(Weights, AreThreeTapsForAHalf) {
  // rollOff·timeStep = 0.5: n = 2, and the filter is w1, w0, w1.
  const Record w = Filter().Weights(1.0, 1.0, 0.5);
  // fa = 0, fb = 0.5: w0 = 0.5, w1 = (1 + 1)/π²; D = 0.5 + 4/π².
  const double d = 0.5 + 4 / (std::numbers::pi * std::numbers::pi);
  ASSERT_THAT(w, SizeIs(2));
  EXPECT_NEAR(w[0], 0.5 / d, 4 * kEps);
  EXPECT_NEAR(w[1], 2 / (std::numbers::pi * std::numbers::pi) / d, 4 * kEps);
  const Record y = smoothed({0, 0, 1, 0, 0}, 0.5, w);
  EXPECT_THAT(y, ElementsAre(0.0, w[1], w[0], w[1], 0.0));
}

TEST(Weights, AcceptACutOffBelowTheRollOff) {
  // a = 0.25, fa·Δt = -0.0625, fb·Δt = 0.1875: the pass band ends below zero. Before the division w0 = 0.125 and
  // w1 = (cos 22.5° - cos 67.5°)/(π²/2).
  const Record w = Filter().Weights(2.0, 1.5, 0.125);
  ASSERT_THAT(w, SizeIs(4));
  const double pi = std::numbers::pi;
  EXPECT_NEAR(w[1] / w[0], (std::cos(pi / 8) - std::cos(3 * pi / 8)) / (pi * pi / 2) / 0.125, 8 * kEps);
  EXPECT_NEAR(w[0] + 2 * (w[1] + w[2] + w[3]), 1.0, 8 * kEps);
}

TEST(Weights, OfATriangleAroundZeroAreNoNumbers) {
  // A cutOff of half the rollOff: fa = -fb, all weights are 0, and so is their sum.
  for (const double weight : Filter().Weights(2.0, 1.0, 0.125)) EXPECT_TRUE(std::isnan(weight));
}

TEST(Weights, AreOneNumberWhenTheRollOffIsTheSamplingRate) {
  EXPECT_THAT(Filter().Weights(8.0, 3.0, 0.125), ElementsAre(1.0));
  // n is truncated: 1/0.51 = 1.96.
  EXPECT_THAT(Filter().Weights(0.51, 3.0, 1.0), ElementsAre(1.0));
}

TEST(Weights, AreAsManyAsTheQuotientTruncated) {
  EXPECT_THAT(Filter().Weights(0.25, 0.3, 1.0), SizeIs(4));
  EXPECT_THAT(Filter().Weights(std::nextafter(0.25, 1.0), 0.3, 1.0), SizeIs(3));
  EXPECT_THAT(Filter().Weights(0.5, 3.0, 0.02), SizeIs(100));
  // 0.1·0.01 is a little more than 1/1000, or not: the quotient of the doubles counts.
  EXPECT_THAT(Filter().Weights(0.1, 3.0, 0.01), SizeIs(static_cast<std::size_t>(1.0 / (0.1 * 0.01))));
}

TEST(Weights, OfTheTruncatedSeriesHaveAGainOfOne) {
  Random random(81);
  for (int i = 0; i < 300; ++i) {
    const double time_step = random.uniform(0.001, 0.05);
    const double roll_off = 1.0 / (random.uniform(1.0, 200.0) * time_step);
    const double cut_off = random.uniform(roll_off, 0.5 / time_step);
    const Record w = Filter().Weights(roll_off, cut_off, time_step);
    long double gain = static_cast<long double>(w[0]);
    long double magnitude = std::abs(gain);
    for (std::size_t k = 1; k < w.size(); ++k) {
      gain += 2 * static_cast<long double>(w[k]);
      magnitude += 2 * std::abs(static_cast<long double>(w[k]));
    }
    // n roundings in the sum and one in each quotient.
    const double bound = static_cast<double>(magnitude) * static_cast<double>(w.size() + 2) * kEps;
    EXPECT_NEAR(static_cast<double>(gain), 1.0, bound) << "seed 81, case " << i;
  }
}

/// The response that the weights stand for: 1 up to fa, then a straight flank to 0 at fb.
double trapezoid(double f, double fa, double fb) { return std::clamp((fb - f) / (fb - fa), 0.0, 1.0); }

TEST(Weights, AreTheFourierCoefficientsOfTheTrapezoid) {
  // w_k·D = 2·∫ H(f)·cos(2πkf) df over 0..1/2, integrated here by Simpson's rule on the pass band and on the flank.
  const double roll_off = 2.0;
  const double cut_off = 7.0;
  const double time_step = 0.02;
  const double fa = 0.1;
  const double fb = 0.14;
  const auto integral = [](double from, double to, std::function<double(double)> const& function) {
    constexpr int kIntervals = 4000;
    const double h = (to - from) / kIntervals;
    double sum = function(from) + function(to);
    for (int i = 1; i < kIntervals; ++i) sum += (i % 2 == 0 ? 2 : 4) * function(from + h * i);
    return sum * h / 3;
  };
  const Record w = Filter().Weights(roll_off, cut_off, time_step);
  ASSERT_THAT(w, SizeIs(25));
  const double d = (fa + fb) / w[0];
  for (std::size_t k = 0; k < w.size(); ++k) {
    const auto integrand = [&](double f) {
      return 2 * trapezoid(f, fa, fb) * std::cos(2 * std::numbers::pi * static_cast<double>(k) * f);
    };
    // Simpson's error is below (b - a)·h⁴/180·(2πk)⁴, 2e-13 for k = 24; the rest is rounding.
    EXPECT_NEAR(w[k] * d, integral(0.0, fa, integrand) + integral(fa, fb, integrand), 1e-12) << k;
  }
}

TEST(Weights, HaveTheBitsOfTheLiteralForm) {
  Random random(82);
  for (int i = 0; i < 1000; ++i) {
    const double time_step = std::exp(random.uniform(-8.0, 2.0));
    const double roll_off = 1.0 / (random.uniform(1.0, 300.0) * time_step);
    const double cut_off = random.uniform(-1.0, 6.0) * (random.below(2) == 0 ? roll_off : 0.2 / time_step);
    EXPECT_TRUE(
        equal_records(Filter().Weights(roll_off, cut_off, time_step), plain_weights(roll_off, cut_off, time_step)))
        << "seed 82, case " << i;
  }
}

// --- Smoothing by hand ---

TEST(Smoot, AddsTheSamplesInTheirOrder) {
  // (1e16 + 1) - 1e16 is 0, the 1 being lost; with the neighbours added first it would be 1. With two weights the
  // middle sample has no correction.
  EXPECT_EQ(smoothed({1e16, 1.0, -1e16}, 0.0, {1.0, 1.0})[1], 0.0);
}

TEST(Smoot, MirrorsAndDampsTheStart) {
  // y1 = w0·x1 + w1·x2 + w2·x3, then x2·w1·e^(-3Δt) for x0 and x3·w2·e^(-6Δt) for x(-1).
  // y2 = w1·x1 + w0·x2 + w1·x3 + w2·x4, then x2·w2·e^(-3Δt) for x0.
  const double time_step = 0.25;
  const Record x{2, 3, 5, 7, 11, 13, 17};
  const Record y = smoothed(x, time_step, {0.5, 0.25, 0.125});
  EXPECT_DOUBLE_EQ(y[0], 1.0 + 0.75 + 0.625 + 0.75 * std::exp(-0.75) + 0.625 * std::exp(-1.5));
  EXPECT_DOUBLE_EQ(y[1], 0.5 + 1.5 + 1.25 + 0.875 + 0.375 * std::exp(-0.75));
  EXPECT_DOUBLE_EQ(y[2], 0.25 + 0.75 + 2.5 + 1.75 + 1.375);
}

TEST(Smoot, MirrorsAndDampsTheEnd) {
  // The same record backwards.
  const double time_step = 0.25;
  const Record y = smoothed({17, 13, 11, 7, 5, 3, 2}, time_step, {0.5, 0.25, 0.125});
  EXPECT_DOUBLE_EQ(y[6], 1.0 + 0.75 + 0.625 + 0.75 * std::exp(-0.75) + 0.625 * std::exp(-1.5));
  EXPECT_DOUBLE_EQ(y[5], 0.5 + 1.5 + 1.25 + 0.875 + 0.375 * std::exp(-0.75));
  EXPECT_DOUBLE_EQ(y[4], 0.25 + 0.75 + 2.5 + 1.75 + 1.375);
}

TEST(Smoot, AddsTheImagesBeforeTheStartFromTheNearestOutwards) {
  // y1 = -2e16 + 1e16 + 1 = -1e16, the 1 being lost. Then the images, 1e16 first: 0, and 1. The other way round, or
  // with the images added up beforehand, the second 1 would be lost too.
  EXPECT_EQ(smoothed({-2e16, 1e16, 1.0}, 0.0, {1.0, 1.0, 1.0})[0], 1.0);
}

TEST(Smoot, AddsTheImagesBehindTheEndFromTheFarthestInwards) {
  // y3 = 1 + 1e16 - 2e16 = -1e16, the 1 being lost. Then the images: 1 is lost, and 1e16 makes 0.
  EXPECT_EQ(smoothed({1.0, 1e16, -2e16}, 0.0, {1.0, 1.0, 1.0})[2], 0.0);
}

TEST(Smoot, UsesNoMoreImagesThanThereAreSamples) {
  // Two samples, four weights, no damping: M = 2. y1 = w0·x1 + w1·x2 + x2·w1, y2 = w1·x1 + w0·x2 + x1·w1.
  EXPECT_THAT(smoothed({3.0, 5.0}, 0.0, {1.0, 10.0, 100.0, 1000.0}), ElementsAre(103.0, 65.0));
  // One sample has no image at all.
  EXPECT_THAT(smoothed({3.0}, 0.0, {1.0, 10.0, 100.0, 1000.0}), ElementsAre(3.0));
}

TEST(Smoot, OfOneSampleByOneWeightOfOneIsTheSample) {
  const Record w = Filter().Weights(8.0, 3.0, 0.125);
  EXPECT_THAT(w, ElementsAre(1.0));
  EXPECT_THAT(smoothed({0.1}, 0.125, w), ElementsAre(0.1));
  EXPECT_THAT(Filter().HighPass(0.125, {0.1}, 3.0, 8.0), ElementsAre(0.1));
  EXPECT_THAT(Filter().LowPass(0.125, {0.1}, 3.0, 8.0), ElementsAre(0.0));
}

TEST(Smoot, OfNoSamplesIsEmpty) {
  EXPECT_THAT(smoothed({}, 0.01, {1.0}), IsEmpty());
  EXPECT_THAT(smoothed({}, 0.01, {1.0, 2.0, 3.0}, 2), IsEmpty());
  EXPECT_THAT(Filter().Smoot({1.0, 2.0}, 0, 0.01, {1.0, 2.0}, 2, 1), IsEmpty());
  EXPECT_THAT(Filter().HighPass(0.02, {}, 5.0, 2.0), IsEmpty());
  EXPECT_THAT(Filter().LowPass(0.02, {}, 5.0, 2.0), IsEmpty());
}

TEST(Smoot, UsesOnlyTheFirstSamplesAndWeights) {
  EXPECT_THAT(Filter().Smoot({3.0, 5.0, kNaN}, 2, 0.0, {1.0, 10.0, kNaN}, 2, 1), ElementsAre(103.0, 65.0));
}

TEST(Smoot, MovesEveryStepthValueToTheFrontAndLeavesTheRest) {
  const Record x{0, 1, 2, 3, 4, 5, 6};
  const Record one{1.0};
  EXPECT_THAT(smoothed(x, 0.0, one, 1), ElementsAre(0, 1, 2, 3, 4, 5, 6));
  EXPECT_THAT(smoothed(x, 0.0, one, 2), ElementsAre(0, 2, 4, 6, 4, 5, 6));
  EXPECT_THAT(smoothed(x, 0.0, one, 3), ElementsAre(0, 3, 6, 3, 4, 5, 6));
  EXPECT_THAT(smoothed(x, 0.0, one, 6), ElementsAre(0, 6, 2, 3, 4, 5, 6));
  for (const int step : {7, 8, 1000, INT_MAX}) {
    EXPECT_THAT(smoothed(x, 0.0, one, step), ElementsAre(0, 1, 2, 3, 4, 5, 6)) << step;
  }
  EXPECT_THAT(smoothed({5.0}, 0.0, one, 2), ElementsAre(5.0));
}

TEST(Smoot, IsLinear) {
  // Powers of two scale without rounding.
  Random random(83);
  const Record w = random_record(random, 12);
  Record x = random_record(random, 100);
  const Record y = smoothed(x, 0.02, w);
  for (double& sample : x) sample *= -4.0;
  const Record scaled = smoothed(x, 0.02, w);
  for (std::size_t i = 0; i < y.size(); ++i) EXPECT_TRUE(equal_bits(scaled[i], -4.0 * y[i])) << i;
}

TEST(Smoot, ShiftsNothingInTheInterior) {
  // The response to a single sample is the weights on both sides of it.
  const Record w{0.5, 0.25, -0.125, 0.0625};
  Record x(15, 0.0);
  x[7] = 1.0;
  EXPECT_THAT(smoothed(x, 0.02, w),
              ElementsAre(0, 0, 0, 0, 0.0625, -0.125, 0.25, 0.5, 0.25, -0.125, 0.0625, 0, 0, 0, 0));
}

// --- The two filters ---

TEST(HighPass, IsTheSmoothedRecord) {
  Random random(84);
  for (int i = 0; i < 100; ++i) {
    const double time_step = random.uniform(0.001, 0.05);
    const double roll_off = 1.0 / (random.uniform(1.0, 60.0) * time_step);
    const double cut_off = random.uniform(0.0, 0.5 / time_step);
    const Record x = random_record(random, random.below(300));
    const Record w = plain_weights(roll_off, cut_off, time_step);
    const Record slow = plain_smoothing(x, count_of(x), time_step, w, count_of(w), 1);
    EXPECT_TRUE(equal_records(Filter().HighPass(time_step, x, cut_off, roll_off), slow)) << "seed 84, case " << i;

    Record fast(x.size());
    for (std::size_t k = 0; k < x.size(); ++k) fast[k] = x[k] - slow[k];
    EXPECT_TRUE(equal_records(Filter().LowPass(time_step, x, cut_off, roll_off), fast)) << "seed 84, case " << i;
  }
}

/// A sine of `frequency` cycles per sample.
Record sine_record(double frequency, std::size_t count) {
  Record record(count);
  for (std::size_t i = 0; i < count; ++i) {
    record[i] = std::sin(2 * std::numbers::pi * frequency * static_cast<double>(i) + 0.3);
  }
  return record;
}

/// The amplitude of `output` relative to the sine `input` away from the ends, where it has the same phase.
double gain(Record const& output, Record const& input, std::size_t end) {
  double product = 0.0;
  double square = 0.0;
  for (std::size_t i = end; i + end < input.size(); ++i) {
    product += output[i] * input[i];
    square += input[i] * input[i];
  }
  return product / square;
}

TEST(Naming, HighPassKeepsTheSlowPartAndLowPassTheFastOne) {
  // Pass band up to 4 Hz, nothing above 5 Hz, 200 samples a second: n = 200.
  const double time_step = 0.005;
  const Record slow = sine_record(1.0 * time_step, 3000);
  const Record fast = sine_record(20.0 * time_step, 3000);
  const Filter filter;
  // The truncated series ripples; here only matters which is which.
  EXPECT_NEAR(gain(filter.HighPass(time_step, slow, 5.0, 1.0), slow, 200), 1.0, 0.1);
  EXPECT_NEAR(gain(filter.HighPass(time_step, fast, 5.0, 1.0), fast, 200), 0.0, 0.1);
  EXPECT_NEAR(gain(filter.LowPass(time_step, slow, 5.0, 1.0), slow, 200), 0.0, 0.1);
  EXPECT_NEAR(gain(filter.LowPass(time_step, fast, 5.0, 1.0), fast, 200), 1.0, 0.1);
}

TEST(FrequencyResponse, IsTheTrapezoidLessTheTermsThatTheTruncationLeavesOut) {
  // The full Fourier series is the trapezoid: D·measured(f) + 2·Σ w_k·cos(2πkf) over k >= n = H(f).
  const double time_step = 0.01;
  const double roll_off = 4.0;
  const double cut_off = 14.0;
  const double fa = 0.10;
  const double fb = 0.14;
  const Filter filter;
  const Record w = filter.Weights(roll_off, cut_off, time_step);
  ASSERT_THAT(w, SizeIs(25));
  const double d = (fa + fb) / w[0];
  for (const double f :
       {0.001, 0.02, 0.05, 0.08, 0.1, 0.105, 0.11, 0.12, 0.13, 0.135, 0.14, 0.15, 0.2, 0.3, 0.45, 0.499}) {
    const Record x = sine_record(f, 2000);
    const double measured = gain(filter.HighPass(time_step, x, cut_off, roll_off), x, w.size());
    double rest = 0.0;
    constexpr int kTerms = 200000;
    for (int k = kTerms; k >= static_cast<int>(w.size()); --k) {
      const double angle = 2 * std::numbers::pi * k;
      rest += 2 * (std::cos(angle * fa) - std::cos(angle * fb)) / (angle * angle / 2 * (fb - fa)) * std::cos(angle * f);
    }
    // Beyond the last term, less than Σ 2·2/(2·π²·k²·(fb - fa)) = 2/(π²·200000·0.04).
    EXPECT_NEAR(d * measured + rest, trapezoid(f, fa, fb), 2.6e-5) << f;
  }
}

TEST(FrequencyResponse, IsThatOfTheWeightsInEverySampleOfTheInterior) {
  Random random(85);
  const Filter filter;
  for (int i = 0; i < 30; ++i) {
    const double roll_off = random.uniform(0.01, 0.3);
    const double cut_off = random.uniform(roll_off, 0.5);
    const double f = random.uniform(0.0, 0.5);
    const Record w = filter.Weights(roll_off, cut_off, 1.0);
    double response = w[0];
    for (std::size_t k = 1; k < w.size(); ++k) {
      response += 2 * w[k] * std::cos(2 * std::numbers::pi * static_cast<double>(k) * f);
    }
    const Record x = sine_record(f, 400);
    const Record y = filter.HighPass(1.0, x, cut_off, roll_off);
    // Arguments up to 2π·200 carry an error of 1257·eps, and 200 terms add up.
    for (std::size_t s = w.size(); s + w.size() < x.size(); ++s) {
      EXPECT_NEAR(y[s], response * x[s], 1e-11) << "seed 85, case " << i << ", sample " << s;
    }
  }
}

TEST(ConstantRecord, PassesUnchangedInTheInterior) {
  const double time_step = 0.02;
  const Record x(300, 7.5);
  const Filter filter;
  const Record w = filter.Weights(1.0, 5.0, time_step);
  ASSERT_THAT(w, SizeIs(50));
  const Record slow = filter.HighPass(time_step, x, 5.0, 1.0);
  const Record fast = filter.LowPass(time_step, x, 5.0, 1.0);
  // 99 products, whose magnitudes add up to less than 3.
  const double bound = 100 * 3 * 7.5 * kEps;
  for (std::size_t i = w.size() - 1; i + w.size() <= x.size(); ++i) {
    EXPECT_NEAR(slow[i], 7.5, bound) << i;
    EXPECT_NEAR(fast[i], 0.0, bound) << i;
  }
}

TEST(ConstantRecord, IsDampedAtTheEnds) {
  // Of the missing samples of y1, the k-th has the weight w_k and the factor e^(-3kΔt).
  const double time_step = 0.02;
  const Record x(300, 1.0);
  const Record w = plain_weights(1.0, 5.0, time_step);
  double expected = w[0];
  for (std::size_t k = 1; k < w.size(); ++k) expected += w[k] * (1 + std::exp(-3 * static_cast<double>(k) * time_step));
  ASSERT_GT(std::abs(expected - 1.0), 1e-3);
  const Record slow = Filter().HighPass(time_step, x, 5.0, 1.0);
  EXPECT_NEAR(slow.front(), expected, 1e-13);
  EXPECT_NEAR(slow.back(), expected, 1e-13);
}

TEST(ConstantRecord, PassesUnchangedUpToTheEndsWithoutDamping) {
  const Record x(300, 7.5);
  const Record w = plain_weights(1.0, 5.0, 0.02);
  const double bound = 100 * 3 * 7.5 * kEps;
  for (const double sample : smoothed(x, 0.0, w)) EXPECT_NEAR(sample, 7.5, bound);
}

// --- Refusals ---

/// The text of the std::invalid_argument that `call` throws; anything else is a failure.
template <class Call>
std::string refusal(Call call) {
  try {
    call();
  } catch (std::invalid_argument const& error) {
    EXPECT_EQ(typeid(error), typeid(std::invalid_argument));
    return error.what();
  }
  ADD_FAILURE() << "threw nothing";
  return {};
}

struct RefusedWeights {
  const char* name;
  double roll_off;
  double time_step;
  const char* roll_off_text;
  const char* time_step_text;

  friend void PrintTo(RefusedWeights const& c, std::ostream* out) { *out << c.name; }
};

class WeightsOf : public ::testing::TestWithParam<RefusedWeights> {};

TEST_P(WeightsOf, AreRefusedByNameAndValue) {
  RefusedWeights const& c = GetParam();
  const Filter filter;
  for (Record const& data : {Record{1.0, 2.0}, Record{}}) {
    for (std::string const& message : {refusal([&] { filter.Weights(c.roll_off, 3.0, c.time_step); }),
                                       refusal([&] { filter.HighPass(c.time_step, data, 3.0, c.roll_off); }),
                                       refusal([&] { filter.LowPass(c.time_step, data, 3.0, c.roll_off); })}) {
      EXPECT_THAT(message, AllOf(HasSubstr("rollOff"), HasSubstr(c.roll_off_text)));
      EXPECT_THAT(message, AllOf(HasSubstr("timeStep"), HasSubstr(c.time_step_text)));
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Quotients, WeightsOf,
                         ::testing::Values(RefusedWeights{"product_above_one", 5.5, 0.75, "5.5", "0.75"},
                                           RefusedWeights{"no_time_step", 4.5, 0.0, "4.5", "0"},
                                           RefusedWeights{"no_roll_off", 0.0, 0.75, "0", "0.75"},
                                           RefusedWeights{"negative_time_step", 1.5, -0.25, "1.5", "-0.25"},
                                           RefusedWeights{"negative_roll_off", -0.5, 0.25, "-0.5", "0.25"},
                                           RefusedWeights{"more_weights_than_an_int_counts", 0x1p-31, 1.0, "4.65", "1"},
                                           RefusedWeights{"product_that_underflows", 1e-200, 1e-250, "1e-200",
                                                          "1e-250"},
                                           RefusedWeights{"product_that_overflows", 1e200, 1e250, "1e+200", "1e+250"},
                                           RefusedWeights{"infinite_roll_off", kInfinity, 0.75, "inf", "0.75"},
                                           RefusedWeights{"no_number", kNaN, 0.75, "nan", "0.75"}),
                         [](auto const& row) { return std::string(row.param.name); });

TEST(WeightsOf, JustAboveOneAreRefused) {
  EXPECT_NO_THROW(Filter().Weights(1.0, 3.0, 1.0));
  // The quotient is what counts: that of the next double above 1 is below 1.
  EXPECT_THROW(Filter().Weights(std::nextafter(1.0, 2.0), 3.0, 1.0), std::invalid_argument);
}

struct RefusedSmoothing {
  const char* name;
  int count;
  int n;
  int step;
  const char* argument;
  const char* value;

  friend void PrintTo(RefusedSmoothing const& c, std::ostream* out) { *out << c.name; }
};

class SmoothingOf : public ::testing::TestWithParam<RefusedSmoothing> {};

TEST_P(SmoothingOf, IsRefusedByNameAndValue) {
  RefusedSmoothing const& c = GetParam();
  const Record data{1.0, 2.0, 3.0};
  const Record weights{0.5, 0.25};
  const std::string message = refusal([&] { Filter().Smoot(data, c.count, 0.01, weights, c.n, c.step); });
  EXPECT_THAT(message, AllOf(HasSubstr(c.argument), HasSubstr(c.value)));
}

// Three samples, two weights.
INSTANTIATE_TEST_SUITE_P(Arguments, SmoothingOf,
                         ::testing::Values(RefusedSmoothing{"count_beyond_the_samples", 4, 2, 1, "count", "4"},
                                           RefusedSmoothing{"largest_count", INT_MAX, 2, 1, "count", "2147483647"},
                                           RefusedSmoothing{"negative_count", -7, 2, 1, "count", "-7"},
                                           RefusedSmoothing{"smallest_count", INT_MIN, 2, 1, "count", "-2147483648"},
                                           RefusedSmoothing{"more_weights_than_there_are", 3, 9, 1, "nWeights", "9"},
                                           RefusedSmoothing{"no_weights", 3, 0, 1, "nWeights", "0"},
                                           RefusedSmoothing{"no_weights_for_no_samples", 0, 0, 1, "nWeights", "0"},
                                           RefusedSmoothing{"negative_weights", 3, -6, 1, "nWeights", "-6"},
                                           RefusedSmoothing{"largest_number_of_weights", 3, INT_MAX, 1, "nWeights",
                                                            "2147483647"},
                                           RefusedSmoothing{"step_of_zero", 3, 2, 0, "step", "0"},
                                           RefusedSmoothing{"step_of_zero_for_no_samples", 0, 2, 0, "step", "0"},
                                           RefusedSmoothing{"negative_step", 3, 2, -5, "step", "-5"},
                                           RefusedSmoothing{"smallest_step", 3, 2, INT_MIN, "step", "-2147483648"}),
                         [](auto const& row) { return std::string(row.param.name); });

TEST(SmoothingOf, ExactlyAllSamplesAndWeightsIsAccepted) {
  EXPECT_THAT(Filter().Smoot({1.0, 2.0, 3.0}, 3, 0.01, {0.5, 0.25}, 2, 1), SizeIs(3));
  EXPECT_THAT(Filter().Smoot({1.0, 2.0, 3.0}, 1, 0.01, {0.5, 0.25}, 1, INT_MAX), ElementsAre(0.5));
}

}  // namespace

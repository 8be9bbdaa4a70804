#include <talvo/fitting/filter.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <limits>
#include <string>
#include <vector>

#include "fitting/plain_smoothing.h"
#include "support/random.h"

// The fast loop works on several outputs at once. Whatever it does with lengths that fill no vector, with records
// shorter than the weights and with values that are no numbers, every bit is that of the plain loop.

namespace {

using talvo::test::equal_records;
using talvo::test::plain_smoothing;
using talvo::test::Random;
using talvo::test::random_record;
using Talvo::Util::Filter;

using Limits = std::numeric_limits<double>;

/// Most samples are numbers between -1 and 1; `rarity` is the share of special ones, 1 in how many.
std::vector<double> special_record(Random& random, std::size_t count, std::uint64_t rarity) {
  std::vector<double> record = random_record(random, count);
  for (double& sample : record) {
    if (random.below(rarity) == 0) sample = random.any_double();
  }
  return record;
}

::testing::AssertionResult smooths_as_the_plain_loop(std::vector<double> const& data, double time_step,
                                                     std::vector<double> const& weights, int step = 1) {
  const int count = static_cast<int>(data.size());
  const int n = static_cast<int>(weights.size());
  return equal_records(Filter().Smoot(data, count, time_step, weights, n, step),
                       plain_smoothing(data, count, time_step, weights, n, step))
         << ", " << count << " samples, " << n << " weights, time step " << time_step;
}

class EveryNumberOfWeights : public ::testing::TestWithParam<int> {};

TEST_P(EveryNumberOfWeights, SmoothsEveryShortRecordAsThePlainLoop) {
  const auto n = static_cast<std::size_t>(GetParam());
  Random random(8000 + n);
  const std::vector<double> weights = random_record(random, n);
  for (std::size_t length = 0; length <= 300; ++length) {
    ASSERT_TRUE(smooths_as_the_plain_loop(random_record(random, length), 0.02, weights)) << "seed 8000 + " << n;
  }
}

TEST_P(EveryNumberOfWeights, SmoothsSpecialValuesAsThePlainLoop) {
  const auto n = static_cast<std::size_t>(GetParam());
  Random random(9000 + n);
  for (const std::size_t length : {0U,  1U,  2U,  3U,  5U,   8U,   13U,  16U,  31U,  47U,  64U,
                                   79U, 80U, 81U, 97U, 128U, 159U, 160U, 161U, 257U, 300U, 511U}) {
    // Single ones, whose spread shows, and so many that hardly a number is left.
    for (const std::uint64_t rarity : {200U, 40U, 3U}) {
      const std::vector<double> weights = special_record(random, n, rarity);
      ASSERT_TRUE(smooths_as_the_plain_loop(special_record(random, length, rarity), 0.02, weights))
          << "seed 9000 + " << n << ", rarity " << rarity;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Weights, EveryNumberOfWeights, ::testing::Range(1, 81),
                         [](auto const& row) { return std::to_string(row.param); });

TEST(Smoothing, SpreadsASingleSpecialSampleAsThePlainLoop) {
  Random random(91);
  const std::vector<double> weights = random_record(random, 7);
  for (const double special :
       {Limits::quiet_NaN(), Limits::infinity(), -Limits::infinity(), -0.0, Limits::max(), Limits::denorm_min()}) {
    for (std::size_t place = 0; place < 170; ++place) {
      std::vector<double> data = random_record(random, 170);
      data[place] = special;
      ASSERT_TRUE(smooths_as_the_plain_loop(data, 0.02, weights)) << special << " at " << place << ", seed 91";
    }
  }
}

TEST(Smoothing, OfNegativeZerosIsZero) {
  // Sums start at +0, and 0 + -0 = +0.
  constexpr int kCount = 400;
  const std::vector<double> data(kCount, -0.0);
  for (const std::size_t n : {1U, 2U, 9U, 70U, 500U}) {
    const std::vector<double> smoothed =
        Filter().Smoot(data, kCount, 0.02, std::vector<double>(n, 1.0), static_cast<int>(n), 1);
    EXPECT_TRUE(equal_records(smoothed, std::vector<double>(kCount, 0.0))) << n << " weights";
  }
}

TEST(Smoothing, HandlesLongRecordsAsThePlainLoop) {
  Random random(92);
  for (const std::size_t n : {64U, 100U, 1000U}) {
    const std::vector<double> weights = random_record(random, n);
    ASSERT_TRUE(smooths_as_the_plain_loop(random_record(random, 5000), 0.02, weights)) << "seed 92";
    ASSERT_TRUE(smooths_as_the_plain_loop(special_record(random, 5000, 1000), 0.02, weights)) << "seed 92";
  }
}

TEST(Smoothing, HandlesLengthsAroundPowersOfTwoAsThePlainLoop) {
  Random random(93);
  for (const std::size_t power : {512U, 1024U, 2048U, 4096U, 8192U, 65536U}) {
    for (const std::size_t length : {power - 1, power, power + 1}) {
      for (const std::size_t n : {1U, 2U, 7U, 16U}) {
        ASSERT_TRUE(smooths_as_the_plain_loop(random_record(random, length), 0.02, random_record(random, n)))
            << "seed 93";
      }
    }
  }
}

TEST(Smoothing, HandlesMoreWeightsThanSamplesAsThePlainLoop) {
  Random random(94);
  for (const std::size_t length : {1U, 2U, 15U, 16U, 17U, 63U, 64U, 65U, 500U, 999U}) {
    ASSERT_TRUE(smooths_as_the_plain_loop(random_record(random, length), 0.02, random_record(random, 1000)))
        << "seed 94";
  }
}

TEST(Smoothing, DampsEveryTimeStepAsThePlainLoop) {
  Random random(95);
  const std::vector<double> data = random_record(random, 90);
  const std::vector<double> weights = random_record(random, 33);
  for (const double time_step : {0.0, -0.0, 1e-300, 1e-5, 0.005, 0.7, 10.0, 1e300, -0.01, -1e3, Limits::infinity(),
                                 -Limits::infinity(), Limits::quiet_NaN()}) {
    EXPECT_TRUE(smooths_as_the_plain_loop(data, time_step, weights)) << "seed 95";
  }
}

TEST(Smoothing, DecimatesAsThePlainLoop) {
  Random random(96);
  const std::vector<double> weights = random_record(random, 9);
  for (std::size_t length = 0; length <= 40; ++length) {
    const std::vector<double> data = random_record(random, length);
    for (const int step : {1, 2, 3, 7, 20, 39, 40, 41, std::numeric_limits<int>::max()}) {
      EXPECT_TRUE(smooths_as_the_plain_loop(data, 0.02, weights, step)) << "step " << step << ", seed 96";
    }
  }
}

TEST(Smoothing, ReadsTheFirstSamplesAndWeightsOnly) {
  Random random(97);
  for (int i = 0; i < 500; ++i) {
    const std::size_t length = random.below(120);
    const std::size_t n = 1 + random.below(40);
    std::vector<double> data = random_record(random, length);
    std::vector<double> weights = random_record(random, n);
    const std::vector<double> expected =
        plain_smoothing(data, static_cast<int>(length), 0.02, weights, static_cast<int>(n), 1);
    data.resize(length + random.below(20), Limits::quiet_NaN());
    weights.resize(n + random.below(20), Limits::quiet_NaN());
    ASSERT_TRUE(
        equal_records(Filter().Smoot(data, static_cast<int>(length), 0.02, weights, static_cast<int>(n), 1), expected))
        << "seed 97, case " << i;
  }
}

}  // namespace

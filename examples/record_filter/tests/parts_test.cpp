#include "parts.h"

#include "record_file.h"

#include <gtest/gtest.h>
#include <talvo/fitting/filter.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <numbers>
#include <ostream>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using record::Parts;
using record::Record;
using record::RecordError;
using record::split;
using record::Trapezoid;

constexpr double step = 0.01;
constexpr std::size_t samples = 1001;
constexpr Trapezoid trapezoid{5, 1};
constexpr std::size_t weights = 100;  // 1/(step·roll_off)

constexpr long double pi = std::numbers::pi_v<long double>;

/// Half a rounding of a number of size 1.
constexpr double unit = std::numeric_limits<double>::epsilon() / 2;

/// A sine of 1 m/s² that is not 0 at the start, nor for the frequency 0. In long double, so that the samples are true
/// to half a rounding also at high frequencies.
double sine(double frequency, std::size_t i) {
  return static_cast<double>(std::sin(2 * pi * frequency * static_cast<long double>(i) / 100 + 0.3L));
}

Record record_of_sines(std::vector<double> const& frequencies) {
  Record record{"sines.txt", step, std::vector<double>(samples, 0.0)};
  for (const double frequency : frequencies) {
    for (std::size_t i = 0; i < samples; ++i) record.samples[i] += sine(frequency, i);
  }
  return record;
}

/// What the filter lets through of a frequency: the Fourier series of the trapezoid with as many terms as there are
/// weights, and divided by its value at the frequency 0.
long double gain(double frequency) {
  const long double fa = (trapezoid.cut_off - trapezoid.roll_off) / 100.0L;  // in cycles per sample
  const long double fb = trapezoid.cut_off / 100.0L;
  long double sum = fa + fb;
  long double at_zero = fa + fb;
  for (std::size_t k = 1; k < weights; ++k) {
    const auto m = static_cast<long double>(k);
    const long double w = (std::cos(2 * pi * m * fa) - std::cos(2 * pi * m * fb)) / (2 * pi * pi * m * m * (fb - fa));
    sum += 2 * w * std::cos(2 * pi * m * frequency / 100);
    at_zero += 2 * w;
  }
  return sum / at_zero;
}

/// Bound for |gain - trapezoid|.
///
/// The whole series is the trapezoid, so the error is the rest from n on, with n = 1/a and a = step·roll_off:
///   1/(2 π² a) |Σ_{k≥n} (cos kα + cos kβ - cos kγ - cos kδ) / k²|,  with α, β = 2π (fa ± f) and γ, δ = 2π (fb ± f).
/// The sums of cos kα from n to any end stay within 1/|sin(α/2)|, so that by Abel's summation the sum with the falling
/// factors 1/k² stays within 1/(n² |sin(α/2)|). Division by the sum at the frequency 0, which is off in the same way,
/// adds its error to that at f.
double gain_bound(double frequency) {
  const double a = step * trapezoid.roll_off;
  const double fa = step * (trapezoid.cut_off - trapezoid.roll_off);
  const double fb = step * trapezoid.cut_off;
  const auto rest = [&](double f) {
    double sum = 0;
    for (const double edge : {fa + f, fa - f, fb + f, fb - f}) sum += 1 / std::fabs(std::sin(std::numbers::pi * edge));
    return a / (2 * std::numbers::pi * std::numbers::pi) * sum;
  };
  return (rest(step * frequency) + rest(0)) / (1 - rest(0));
}

TEST(Parts, ASymmetricFilterOnlyScalesASine) {
  // Each of the 199 products, its sum and the cosines in its weight are off by about a rounding each.
  constexpr double bound = 1000 * unit;
  for (const double frequency : {0.0, 0.5, 3.9, 4.5, 5.1, 10.0, 49.0}) {
    const Parts parts = split(record_of_sines({frequency}), trapezoid);
    const auto slow_share = static_cast<double>(gain(frequency));
    for (std::size_t i = weights; i + weights < samples; ++i) {
      ASSERT_NEAR(parts.slow[i], slow_share * sine(frequency, i), bound) << frequency << " Hz, sample " << i;
      ASSERT_NEAR(parts.fast[i], (1 - slow_share) * sine(frequency, i), bound) << frequency << " Hz, sample " << i;
    }
  }
}

TEST(Parts, TheSlowSineAndTheFastOneAreSeparated) {
  const Parts parts = split(record_of_sines({0.5, 10}), trapezoid);
  const double bound = gain_bound(0.5) + gain_bound(10);
  EXPECT_LT(bound, 0.06);  // of sines of the amplitude 1; otherwise the bound would say little
  // Within a filter's length of the ends the missing samples make themselves felt.
  for (std::size_t i = weights; i + weights < samples; ++i) {
    ASSERT_NEAR(parts.slow[i], sine(0.5, i), bound) << "sample " << i;
    ASSERT_NEAR(parts.fast[i], sine(10, i), bound) << "sample " << i;
  }
}

TEST(Parts, AddUpToTheRecord) {
  std::mt19937_64 random(20240611);
  std::uniform_real_distribution<double> uniform(-10, 10);
  Record noise{"noise.txt", step, {}};
  for (std::size_t i = 0; i < samples; ++i) noise.samples.push_back(uniform(random));

  for (Record const& record : {noise, record::read_record(RECORD_SYNTHETIC)}) {
    const Parts parts = split(record, trapezoid);
    ASSERT_EQ(parts.slow.size(), record.samples.size());
    ASSERT_EQ(parts.fast.size(), record.samples.size());
    double greatest = 0;
    for (std::size_t i = 0; i < record.samples.size(); ++i) {
      const double sample = record.samples[i];
      ASSERT_EQ(parts.fast[i], sample - parts.slow[i]) << "sample " << i;
      // One rounding in the subtraction, one in the sum; the factor is for what they add to each other.
      const double gap = std::fabs(sample - (parts.slow[i] + parts.fast[i]));
      ASSERT_LE(gap, 1.001 * unit * (std::fabs(parts.fast[i]) + std::fabs(sample))) << "sample " << i;
      greatest = std::max(greatest, gap);
    }
    EXPECT_EQ(greatest_gap(record, parts), greatest);
    EXPECT_GT(greatest, 0);  // a bound of roundings that never happen would prove nothing
  }
}

TEST(Parts, TheGapIsTheGreatestOfAllSamples) {
  const Record record{"gap.txt", step, {1, 2, 3}};
  EXPECT_EQ(greatest_gap(record, {{1, 1, 1}, {0, 1, 2}}), 0);
  EXPECT_EQ(greatest_gap(record, {{1, 1, 1}, {0.5, 3, 1}}), 2);  // gaps 0.5, 2 and 1
}

TEST(Trapezoid, IsOneThenFallsLinearlyThenZero) {
  constexpr Trapezoid flank{3, 2};
  EXPECT_EQ(flank.at(0), 1);
  EXPECT_EQ(flank.at(1), 1);
  EXPECT_EQ(flank.at(1.5), 0.75);
  EXPECT_EQ(flank.at(2), 0.5);
  EXPECT_EQ(flank.at(3), 0);
  EXPECT_EQ(flank.at(4), 0);
}

TEST(Response, IsThatOfTheWeights) {
  const std::vector<double> w = Talvo::Util::Filter().Weights(trapezoid.roll_off, trapezoid.cut_off, step);
  ASSERT_EQ(w.size(), weights);
  // 199 terms, each with a cosine of a rounded angle of up to 2π·50 (at the weight 100 and half the sampling rate) but
  // with weights that fall as 1/k².
  constexpr double bound = 1000 * unit;
  for (const double frequency : {0.0, 1.0, 3.9, 4.5, 5.1, 20.0, 50.0}) {
    EXPECT_NEAR(record::response(w, step, frequency), static_cast<double>(gain(frequency)), bound) << frequency;
  }
  EXPECT_NEAR(record::response({0.5, 0.25}, 1, 0.25), 0.5, unit);  // 0.5 + 2·0.25·cos 90°
}

/// The message with which a record of this many samples is refused; empty when it is split.
std::string refusal(std::size_t count, Trapezoid const& asked) {
  try {
    split({"short.txt", step, std::vector<double>(count, 1.0)}, asked);
  } catch (RecordError const& error) {
    return error.what();
  }
  return "";
}

TEST(Parts, RefusesWhatTheLibraryRefusesInItsWords) {
  for (const double roll_off : {0.0, -0.5, 101.0}) {
    std::string words;
    try {
      Talvo::Util::Filter().Weights(roll_off, 20, step);
    } catch (std::invalid_argument const& error) {
      words = error.what();
    }
    ASSERT_NE(words, "") << roll_off;
    EXPECT_EQ(refusal(300, {20, roll_off}), "short.txt: " + words);
  }
}

TEST(Parts, RefusesARecordThatIsShorterThanTheFilter) {
  EXPECT_EQ(refusal(200, {1, 0.5}), "");  // 1/(0.01·0.5) = 200
  EXPECT_EQ(refusal(199, {1, 0.5}),
            "short.txt: the roll-off 0.5 Hz needs 200 samples to either side, and the record has 199");
  EXPECT_EQ(refusal(199, {1, 1e-9}),
            "short.txt: the roll-off 1e-09 Hz needs 1e+11 samples to either side, and the record has 199");
}

TEST(Parts, RefusesACutOffOutsideTheTrapezoidsLimits) {
  EXPECT_EQ(refusal(200, {50, 1}), "");
  EXPECT_EQ(refusal(200, {50.5, 1}), "short.txt: the cut-off 50.5 Hz is above 50 Hz, half the sampling rate");
  EXPECT_EQ(refusal(200, {1, 1}), "");
  EXPECT_EQ(refusal(200, {0.9, 1}), "short.txt: the cut-off 0.9 Hz is below the roll-off 1 Hz");
  EXPECT_EQ(refusal(200, {-2, 1}), "short.txt: the cut-off -2 Hz is below the roll-off 1 Hz");
}

}  // namespace

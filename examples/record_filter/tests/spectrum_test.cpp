#include "spectrum.h"

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <cstddef>
#include <limits>
#include <numbers>
#include <random>
#include <vector>

namespace {

using record::Spectrum;
using record::spectrum_of;

constexpr double epsilon = std::numeric_limits<double>::epsilon();

TEST(Spectrum, IsTheSumThatDefinesIt) {
  std::mt19937_64 random(20240612);
  std::uniform_real_distribution<double> uniform(-1, 1);
  constexpr double step = 0.02;
  for (const std::size_t count : {1u, 2u, 3u, 4u, 5u, 13u, 100u, 128u, 129u}) {
    std::vector<double> samples;
    for (std::size_t i = 0; i < count; ++i) samples.push_back(uniform(random));
    const Spectrum spectrum = spectrum_of(samples, step);
    for (std::size_t k = 0; k < spectrum.amplitudes.size(); ++k) {
      std::complex<long double> sum = 0;
      for (std::size_t i = 0; i < count; ++i) {
        const auto time = static_cast<long double>(step) * static_cast<long double>(i);
        const auto frequency = static_cast<long double>(spectrum.frequency(k));
        const auto angle = -2 * std::numbers::pi_v<long double> * frequency * time;
        sum += static_cast<long double>(samples[i]) * std::polar(1.0L, angle);
      }
      // The transform of 256 numbers has 8 stages, each with a few roundings of terms that are at most count together;
      // the frequency is rounded once, in an angle of up to π count.
      EXPECT_NEAR(spectrum.amplitudes[k], static_cast<double>(std::abs(sum)) * step,
                  40 * epsilon * static_cast<double>(count) * step)
          << count << " samples, frequency " << k;
    }
  }
}

TEST(Spectrum, OfASineReachesHalfItsAmplitudeTimesItsDuration) {
  // 256 samples are 4 s, a whole number of cycles, and lengthened to 512 they are 8 s: 3 Hz is the 24th frequency.
  std::vector<double> samples(256);
  for (std::size_t i = 0; i < samples.size(); ++i) {
    samples[i] = 2 * std::sin(2 * std::numbers::pi * 3 * static_cast<double>(i) / 64);
  }
  const Spectrum spectrum = spectrum_of(samples, 1.0 / 64);
  EXPECT_EQ(spectrum.step, 0.125);
  EXPECT_EQ(spectrum.dominant(), 3);
  EXPECT_NEAR(spectrum.amplitudes.at(24), 2 * 4 / 2.0, 40 * epsilon * 4);
}

TEST(Spectrum, EndsAtHalfTheSamplingRate) {
  for (const std::size_t count : {1u, 2u, 3u, 4001u}) {
    const Spectrum spectrum = spectrum_of(std::vector<double>(count, 1.0), 0.25);
    EXPECT_EQ(spectrum.frequency(spectrum.amplitudes.size() - 1), 2) << count;
    EXPECT_LE(spectrum.step, 1 / (2 * 0.25 * static_cast<double>(count))) << count;
  }
}

TEST(Spectrum, OfAConstantIsGreatestAtZero) {
  const Spectrum spectrum = spectrum_of({3, 3, 3, 3, 3}, 0.5);
  EXPECT_EQ(spectrum.dominant(), 0);
  EXPECT_EQ(spectrum.amplitudes.front(), 7.5);  // 3 m/s² for 5 steps
}

TEST(Spectrum, OfNothingHasNoDominantFrequency) { EXPECT_FALSE(spectrum_of({0, 0, 0}, 0.5).dominant()); }

TEST(Spectrum, TheFirstOfEqualAmplitudesIsDominant) { EXPECT_EQ((Spectrum{0.5, {1, 4, 2, 4}}).dominant(), 0.5); }

}  // namespace

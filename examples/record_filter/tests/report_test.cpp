#include "report.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using record::Figures;
using record::figures_of;

TEST(Figures, ThePeakHasItsSignAndTheTimeWhenItIsFirstReached) {
  const Figures figures = figures_of({1, -3, 2, 3}, 0.5);
  EXPECT_EQ(figures.peak, -3);
  EXPECT_EQ(figures.peak_time, 0.5);
}

TEST(Figures, TheRootMeanSquareIsThatOfAllSamples) {
  EXPECT_EQ(figures_of({1, -3, 2, 3, 1}, 0.5).rms, std::sqrt(24.0 / 5));
  EXPECT_EQ(figures_of({-2}, 0.5).rms, 2);
}

TEST(Figures, OfAnAlternatingRecordHaveHalfTheSamplingRateAsDominantFrequency) {
  EXPECT_EQ(figures_of({1, -1, 1, -1, 1, -1, 1, -1}, 0.5).spectrum.dominant(), 1);
}

}  // namespace

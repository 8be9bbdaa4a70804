#pragma once

/// @file
/// Smoothing written down literally, sample by sample, for comparison bit by bit.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

#include "support/bits.h"
#include "support/random.h"

namespace talvo::test {

/// The first `count` samples, numbered from 1 as x(1) .. x(N), by the first n weights w(0) .. w(n - 1).
inline std::vector<double> plain_smoothing(std::vector<double> const& data, int count, double time_step,
                                           std::vector<double> const& weights, int n, int step) {
  const auto x = [&](int i) { return data[static_cast<std::size_t>(i) - 1]; };
  const auto w = [&](int k) { return weights[static_cast<std::size_t>(k)]; };
  const auto damping = [&](int k) { return std::exp((static_cast<double>(k) * 3.0) * time_step); };
  std::vector<double> output(static_cast<std::size_t>(count), 0.0);
  const auto y = [&](int i) -> double& { return output[static_cast<std::size_t>(i) - 1]; };

  for (int i = 1; i <= count; ++i) {
    for (int j = std::max(1, i - n + 1); j <= i - 1; ++j) y(i) += x(j) * w(i - j);
    for (int j = i; j <= std::min(i + n - 1, count); ++j) y(i) += w(j - i) * x(j);
  }
  const int mirrored = std::min(n, count);
  for (int i = 1; i <= mirrored - 1; ++i) {
    for (int k = 1; k <= mirrored - i; ++k) y(i) += (x(1 + k) * w(i - 1 + k)) / damping(k);
  }
  for (int o = count; o >= count - mirrored + 2; --o) {
    for (int k = mirrored - 1 - (count - o); k >= 1; --k) y(o) += (x(count - k) * w(count - o + k)) / damping(k);
  }
  if (step != 1) {
    for (long long from = 1, to = 1; from <= count; from += step, ++to) {
      y(static_cast<int>(to)) = y(static_cast<int>(from));
    }
  }
  return output;
}

/// Bit for bit; a failure names the first sample that differs.
inline ::testing::AssertionResult equal_records(std::vector<double> const& actual,
                                                std::vector<double> const& expected) {
  if (actual.size() != expected.size()) {
    return ::testing::AssertionFailure() << actual.size() << " samples instead of " << expected.size();
  }
  for (std::size_t i = 0; i < expected.size(); ++i) {
    if (!same_bits(actual[i], expected[i])) return equal_bits(actual[i], expected[i]) << " at sample " << i;
  }
  return ::testing::AssertionSuccess();
}

inline std::vector<double> random_record(Random& random, std::size_t count) {
  std::vector<double> record(count);
  for (double& sample : record) sample = random.uniform(-1.0, 1.0);
  return record;
}

}  // namespace talvo::test

#pragma once

/// @file
/// Comparison of results bit for bit, signs of zeros included; any NaN equals any other.

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <iomanip>

namespace talvo::test {

inline bool same_bits(double a, double b) {
  if (std::isnan(a) || std::isnan(b)) return std::isnan(a) && std::isnan(b);
  return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

inline bool same_bits(float a, float b) {
  if (std::isnan(a) || std::isnan(b)) return std::isnan(a) && std::isnan(b);
  return std::bit_cast<std::uint32_t>(a) == std::bit_cast<std::uint32_t>(b);
}

/// For EXPECT_TRUE: a failure prints both numbers with 17 digits.
template <class T>
::testing::AssertionResult equal_bits(T actual, T expected) {
  if (same_bits(actual, expected)) return ::testing::AssertionSuccess();
  return ::testing::AssertionFailure() << std::setprecision(17) << actual << " instead of " << expected;
}

}  // namespace talvo::test

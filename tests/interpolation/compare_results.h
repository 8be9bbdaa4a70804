#pragma once

/// @file
/// Comparison of whole results of the interpolation functions, bit for bit.

#include <gtest/gtest.h>

#include <Eigen/Core>
#include <array>
#include <cstddef>
#include <vector>

#include "support/bits.h"

namespace talvo::test {

/// As many values as expected, each with the expected bits.
inline ::testing::AssertionResult equal_values(std::vector<double> const& actual, std::vector<double> const& expected) {
  if (actual.size() != expected.size()) {
    return ::testing::AssertionFailure() << actual.size() << " values instead of " << expected.size();
  }
  for (std::size_t i = 0; i < expected.size(); ++i) {
    const auto same = equal_bits(actual[i], expected[i]);
    if (!same) return ::testing::AssertionFailure() << "node " << i + 1 << ": " << same.message();
  }
  return ::testing::AssertionSuccess();
}

/// One row per natural direction, each with the expected bits.
template <class Matrix, std::size_t Directions>
::testing::AssertionResult equal_rows(Matrix const& actual,
                                      std::array<std::vector<double>, Directions> const& expected) {
  if (static_cast<std::size_t>(actual.rows()) != Directions) {
    return ::testing::AssertionFailure() << actual.rows() << " rows instead of " << Directions;
  }
  for (std::size_t direction = 0; direction < Directions; ++direction) {
    std::vector<double> row;
    for (Eigen::Index node = 0; node < actual.cols(); ++node) {
      row.push_back(actual(static_cast<Eigen::Index>(direction), node));
    }
    const auto same = equal_values(row, expected[direction]);
    if (!same) return ::testing::AssertionFailure() << "row " << direction << ", " << same.message();
  }
  return ::testing::AssertionSuccess();
}

/// The matrix as it lies in memory: `Directions` rows, a column per node, the expected bits node by node.
template <class Matrix, std::size_t Directions>
::testing::AssertionResult equal_storage(Matrix const& actual,
                                         std::array<std::vector<double>, Directions> const& expected) {
  const auto nodes = static_cast<Eigen::Index>(expected[0].size());
  if (actual.rows() != static_cast<Eigen::Index>(Directions) || actual.cols() != nodes) {
    return ::testing::AssertionFailure() << actual.rows() << " x " << actual.cols();
  }
  std::vector<double> node_by_node;
  for (std::size_t node = 0; node < expected[0].size(); ++node) {
    for (auto const& row : expected) node_by_node.push_back(row[node]);
  }
  return equal_values({actual.data(), actual.data() + actual.size()}, node_by_node);
}

}  // namespace talvo::test

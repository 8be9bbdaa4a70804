#pragma once

/// @file
/// Failures, checked to the letter.

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <exception>
#include <initializer_list>
#include <string_view>
#include <typeinfo>
#include <vector>

namespace talvo::test {

/// Success when `call` throws an `Error`, not a class derived from it, that says `message` and nothing else.
template <class Error, class Call>
::testing::AssertionResult throws_exactly(Call call, std::string_view message) {
  try {
    call();
  } catch (std::exception const& error) {
    if (typeid(error) == typeid(Error) && error.what() == message) return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << "threw " << typeid(error).name() << ": " << error.what();
  }
  return ::testing::AssertionFailure() << "threw nothing";
}

/// Node counts that no element of a family has: all small ones but the family's own, both ends of `int`, and what is
/// left of a good count when it passes through a narrower or an unsigned type.
inline std::vector<int> wrong_node_counts(std::initializer_list<int> supported) {
  std::vector<int> counts{INT_MIN, INT_MIN + 1, INT_MIN + 8, -65536, INT_MAX - 1, INT_MAX};
  for (const int count : supported) {
    counts.insert(counts.end(), {-count, 256 + count, 65536 + count});
  }
  for (int count = -1; count <= 30; ++count) {
    if (std::find(supported.begin(), supported.end(), count) == supported.end()) counts.push_back(count);
  }
  return counts;
}

}  // namespace talvo::test

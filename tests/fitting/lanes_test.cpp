// The smoothing with every number of lanes that this machine has, not only with the one that the library picks: all
// give the bits of one sum after the other.

#include "fitting/smoothing.h"
#include "support/bits.h"
#include "support/random.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

namespace {

using talvo::fitting::Lanes;
using talvo::test::Random;

struct LanesCase {
  const char* name;
  Lanes lanes;
};

class LanesTest : public ::testing::TestWithParam<LanesCase> {};

std::vector<double> numbers(Random& random, std::size_t count) {
  std::vector<double> result(count);
  for (double& value : result) value = random.below(50) == 0 ? random.any_double() : random.uniform(-1, 1);
  return result;
}

std::vector<double> one_after_the_other(std::vector<double> const& x, std::vector<double> const& w) {
  std::vector<double> y(x.size(), 0.0);
  for (std::size_t i = 0; i < x.size(); ++i) {
    for (std::size_t j = i + 1 > w.size() ? i + 1 - w.size() : 0; j < i; ++j) y[i] += x[j] * w[i - j];
    for (std::size_t j = i; j < x.size() && j < i + w.size(); ++j) y[i] += w[j - i] * x[j];
  }
  return y;
}

// 17 and 100 samples are shorter than one block of some lanes, 5000 fill several blocks and leave a rest, 20000 need
// more than one stretch of the longest runs.
TEST_P(LanesTest, GiveTheBitsOfOneSumAfterTheOther) {
  if (GetParam().lanes > talvo::fitting::most_lanes()) GTEST_SKIP() << "this machine does not have them";
  Random random(31);
  for (const std::size_t samples : {1U, 17U, 100U, 700U, 5000U, 20000U}) {
    for (const std::size_t weights : {1U, 2U, 9U, 64U, 150U}) {
      const std::vector<double> x = numbers(random, samples);
      const std::vector<double> w = numbers(random, weights);
      const std::vector<double> expected = one_after_the_other(x, w);
      std::vector<double> y(samples, -1.0);
      talvo::fitting::convolve(x.data(), samples, w, y.data(), GetParam().lanes);
      for (std::size_t i = 0; i < samples; ++i) {
        ASSERT_TRUE(talvo::test::equal_bits(y[i], expected[i]))
            << "seed 31, " << samples << " samples, " << weights << " weights, value " << i;
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Every, LanesTest,
                         ::testing::Values(LanesCase{"one", Lanes::one}, LanesCase{"two", Lanes::two},
                                           LanesCase{"four", Lanes::four}, LanesCase{"eight", Lanes::eight}),
                         [](auto const& one) { return std::string(one.param.name); });

}  // namespace

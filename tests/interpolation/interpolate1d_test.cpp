#include <gtest/gtest.h>
#include <talvo/interpolation/interpolate1d.h>

#include <Eigen/Core>
#include <array>
#include <climits>
#include <limits>
#include <stdexcept>
#include <type_traits>
#include <vector>

#include "interpolation/compare_results.h"
#include "interpolation/points.h"
#include "support/failures.h"

namespace {

using Talvo::Constant;
using Talvo::Full;
using Talvo::OrderType;
using talvo::test::describe_case;
using talvo::test::equal_rows;
using talvo::test::equal_values;
using talvo::test::mixed_coordinate;
using talvo::test::Random;
using talvo::test::throws_exactly;
using talvo::test::wrong_node_counts;
using Talvo::Util::Interpolate1d::H;
using Talvo::Util::Interpolate1d::HDerivatives;

using Row = std::vector<double>;
using Rows = std::array<Row, 1>;

static_assert(std::is_same_v<decltype(H(2, 0.0, Full)), std::vector<double>>);
static_assert(
    std::is_same_v<decltype(HDerivatives(2, 0.0, Full)), Eigen::Matrix<double, 1, Eigen::Dynamic, Eigen::RowMajor>>);

static_assert(std::is_same_v<std::underlying_type_t<OrderType>, int>);
static_assert(static_cast<int>(Constant) == 0 && static_cast<int>(Full) == 1);

const double kNaN = std::numeric_limits<double>::quiet_NaN();
const double kInfinity = std::numeric_limits<double>::infinity();

// The functions in the order of operations that the library promises.
Row line2(double r) { return {(1.0 - r) * 0.5, (1.0 + r) * 0.5}; }

Row line3(double r) {
  const double b = (1.0 - r * r) * 0.5;
  return {(1.0 - r) * 0.5 - b, (r + 1.0) * 0.5 - b, 1.0 - r * r};
}

Rows line3_derivatives(double r) {
  const double d = -2.0 * r;
  return {Row{-0.5 - d * 0.5, 0.5 - d * 0.5, d}};
}

const Rows line2_derivatives{Row{-0.5, 0.5}};

TEST(Interpolate1dEdgeCases, TwoNodeLineIsTakenAtItsCentreForConstant) {
  EXPECT_TRUE(equal_values(H(2, 0.3, Constant), {0.5, 0.5}));
  EXPECT_TRUE(equal_values(H(2, 0.3, Full), {0.35, 0.65}));  // 0.7 and 1.3, halved exactly
}

TEST(Interpolate1dEdgeCases, ThreeNodeLineIsTakenAtThePointForConstantToo) {
  EXPECT_TRUE(equal_values(H(3, 0.3, Constant), H(3, 0.3, Full)));
  EXPECT_TRUE(equal_rows(HDerivatives(3, 0.3, Constant), line3_derivatives(0.3)));
  // -0.3 * 0.7 / 2, 0.3 * 1.3 / 2 and 1 - 0.09, each within the four roundings of numbers below 2.
  const auto values = H(3, 0.3, Constant);
  constexpr double bound = 4 * std::numeric_limits<double>::epsilon();
  EXPECT_NEAR(values[0], -0.105, bound);
  EXPECT_NEAR(values[1], 0.195, bound);
  EXPECT_NEAR(values[2], 0.91, bound);
}

TEST(Interpolate1dEdgeCases, ThreeNodeLineIsOneAtItsOwnNode) {
  for (const OrderType order : {Constant, Full}) {
    EXPECT_TRUE(equal_values(H(3, 0, order), {0, 0, 1}));
    EXPECT_TRUE(equal_values(H(3, -1, order), {1, 0, 0}));
    EXPECT_TRUE(equal_values(H(3, 1, order), {0, 1, 0}));
  }
}

TEST(Interpolate1dEdgeCases, TwoNodeLineIsOneAtItsOwnNode) {
  EXPECT_TRUE(equal_values(H(2, -1, Full), {1, 0}));
  EXPECT_TRUE(equal_values(H(2, 1, Full), {0, 1}));
}

TEST(Interpolate1dEdgeCases, OneFourAndNoNodesAreRefused) {
  EXPECT_TRUE(throws_exactly<std::logic_error>([] { H(1, 0, Full); }, "invalid number of nodes"));
  EXPECT_TRUE(throws_exactly<std::logic_error>([] { H(4, 0, Full); }, "invalid number of nodes"));
  EXPECT_TRUE(throws_exactly<std::logic_error>([] { HDerivatives(0, 0, Full); }, "invalid number of nodes"));
}

TEST(Interpolate1dEdgeCases, EveryOrderButZeroIsFull) {
  for (const int order : {7, 2, -1, 256, 65536, INT_MAX, INT_MIN}) {
    EXPECT_TRUE(equal_values(H(2, 0.3, static_cast<OrderType>(order)), {0.35, 0.65})) << "order " << order;
  }
}

TEST(Interpolate1d, EveryOtherNodeCountIsRefused) {
  for (const int count : wrong_node_counts({2, 3})) {
    for (const OrderType order : {Constant, Full}) {
      EXPECT_TRUE(throws_exactly<std::logic_error>([=] { H(count, 0.3, order); }, "invalid number of nodes"))
          << "count " << count;
      EXPECT_TRUE(throws_exactly<std::logic_error>([=] { HDerivatives(count, 0.3, order); }, "invalid number of nodes"))
          << "count " << count;
    }
  }
}

TEST(Interpolate1d, DerivativesAreOneRowWithAColumnPerNode) {
  for (const int count : {2, 3}) {
    EXPECT_EQ(HDerivatives(count, 0.3, Full).rows(), 1);
    EXPECT_EQ(HDerivatives(count, 0.3, Full).cols(), count);
  }
}

TEST(Interpolate1d, DerivativesOfTheTwoNodeLineAreConstant) {
  for (const double r : {-0.3, -0.0, 1.0, 1e300, kInfinity, kNaN}) {
    for (const OrderType order : {Constant, Full}) {
      EXPECT_TRUE(equal_rows(HDerivatives(2, r, order), line2_derivatives)) << "r " << r;
    }
  }
}

TEST(Interpolate1d, ConstantDoesNotLookAtThePoint) {
  for (const double r : {-0.0, 1e300, -kInfinity, kNaN}) {
    EXPECT_TRUE(equal_values(H(2, r, Constant), {0.5, 0.5})) << "r " << r;
  }
}

TEST(Interpolate1d, KeepsTheSignsOfZeros) {
  EXPECT_TRUE(equal_rows(HDerivatives(3, 0.0, Full), Rows{Row{-0.5, 0.5, -0.0}}));
  EXPECT_TRUE(equal_rows(HDerivatives(3, -0.0, Full), Rows{Row{-0.5, 0.5, 0.0}}));
  EXPECT_TRUE(equal_rows(HDerivatives(3, 0.5, Full), Rows{Row{0.0, 1.0, -1.0}}));
  EXPECT_TRUE(equal_rows(HDerivatives(3, -0.5, Full), Rows{Row{-1.0, 0.0, 1.0}}));
}

TEST(Interpolate1d, OperationsAreDoneInThePromisedOrderAtAnyPoint) {
  constexpr int seed = 421;
  Random random(seed);
  for (int i = 0; i < 20000; ++i) {
    const double r = mixed_coordinate(random);
    SCOPED_TRACE(describe_case(seed, i, {r}));
    ASSERT_TRUE(equal_values(H(2, r, Full), line2(r)));
    for (const OrderType order : {Constant, Full}) {
      ASSERT_TRUE(equal_values(H(3, r, order), line3(r)));
      ASSERT_TRUE(equal_rows(HDerivatives(3, r, order), line3_derivatives(r)));
    }
  }
}

}  // namespace

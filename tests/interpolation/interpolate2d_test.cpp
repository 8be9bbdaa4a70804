#include <gtest/gtest.h>
#include <talvo/interpolation/interpolate2d.h>

#include <Eigen/Core>
#include <array>
#include <climits>
#include <cstddef>
#include <limits>
#include <numeric>
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
using talvo::test::equal_storage;
using talvo::test::equal_values;
using talvo::test::mixed_coordinate;
using talvo::test::Random;
using talvo::test::throws_exactly;
using talvo::test::wrong_node_counts;
using Talvo::Util::Interpolate2d::H;
using Talvo::Util::Interpolate2d::HDerivatives;

using Point = Vec2<double>;
using Row = std::vector<double>;
using Rows = std::array<Row, 2>;

static_assert(std::is_same_v<decltype(H(3, Point{}, Full)), std::vector<double>>);
static_assert(std::is_same_v<decltype(HDerivatives(3, Point{}, Full)), Eigen::Matrix<double, 2, Eigen::Dynamic>>);

const double kNaN = std::numeric_limits<double>::quiet_NaN();
const double kInfinity = std::numeric_limits<double>::infinity();

// The functions in the order of operations that the library promises.
Row triangle3(Point const& p) { return {1.0 - p.x - p.y, p.x, p.y}; }

Row triangle6(Point const& p) {
  const double r = p.x, s = p.y, u = 1.0 - r - s;
  const double m4 = r * 4.0 * u, m5 = 4.0 * r * s, m6 = 4.0 * s * u;
  return {u - (m4 + m6) * 0.5, r - (m5 + m4) * 0.5, s - (m5 + m6) * 0.5, m4, m5, m6};
}

Row quadrilateral4(Point const& p) {
  const double r = p.x, s = p.y;
  return {(1.0 - r) * 0.25 * (1.0 - s), (1.0 + r) * 0.25 * (1.0 - s),  //
          (1.0 + r) * 0.25 * (1.0 + s), (1.0 - r) * 0.25 * (1.0 + s)};
}

Row quadrilateral8(Point const& p) {
  const double r = p.x, s = p.y;
  const double m5 = (1.0 - r * r) / 2.0 * (1.0 - s), m6 = (1.0 - s * s) / 2.0 * (1.0 + r);
  const double m7 = (1.0 - r * r) / 2.0 * (1.0 + s), m8 = (1.0 - s * s) / 2.0 * (1.0 - r);
  return {(1.0 - r) / 4.0 * (1.0 - s) - (m8 + m5) / 2.0,
          (1.0 + r) / 4.0 * (1.0 - s) - (m6 + m5) / 2.0,
          (1.0 + r) / 4.0 * (1.0 + s) - (m7 + m6) / 2.0,
          (1.0 - r) / 4.0 * (1.0 + s) - (m8 + m7) / 2.0,
          m5,
          m6,
          m7,
          m8};
}

Rows triangle3_derivatives(Point const&) { return {Row{-1.0, 1.0, 0.0}, Row{-1.0, 0.0, 1.0}}; }

Rows triangle6_derivatives(Point const& p) {
  const double r = p.x, s = p.y;
  const double m4_r = 4.0 - 8.0 * r - 4.0 * s, m5_r = 4.0 * s, m6_r = -4.0 * s;
  const double m4_s = -4.0 * r, m5_s = 4.0 * r, m6_s = 4.0 - 8.0 * s - 4.0 * r;
  return {Row{-1.0 - (m4_r + m6_r) / 2.0, 1.0 - (m4_r + m5_r) / 2.0, -(m6_r + m5_r) / 2.0, m4_r, m5_r, m6_r},
          Row{-1.0 - (m6_s + m4_s) / 2.0, -(m5_s + m4_s) / 2.0, 1.0 - (m6_s + m5_s) / 2.0, m4_s, m5_s, m6_s}};
}

Rows quadrilateral4_derivatives(Point const& p) {
  const double r = p.x, s = p.y;
  return {Row{-(1.0 - s) / 4.0, (1.0 - s) / 4.0, (1.0 + s) / 4.0, -(1.0 + s) / 4.0},
          Row{-(1.0 - r) / 4.0, -(1.0 + r) / 4.0, (1.0 + r) / 4.0, (1.0 - r) / 4.0}};
}

Rows quadrilateral8_derivatives(Point const& p) {
  const double r = p.x, s = p.y;
  const double m5_r = -r * (1.0 - s), m6_r = (1.0 - s * s) / 2.0;
  const double m7_r = -r * (1.0 + s), m8_r = -(1.0 - s * s) / 2.0;
  const double m5_s = -(1.0 - r * r) / 2.0, m6_s = -s * (1.0 + r);
  const double m7_s = (1.0 - r * r) / 2.0, m8_s = -s * (1.0 - r);
  return {Row{-(1.0 - s) / 4.0 - (m5_r + m8_r) / 2.0, (1.0 - s) / 4.0 - (m5_r + m6_r) / 2.0,
              (1.0 + s) / 4.0 - (m7_r + m6_r) / 2.0, -(1.0 + s) / 4.0 - (m7_r + m8_r) / 2.0, m5_r, m6_r, m7_r, m8_r},
          Row{-(1.0 - r) / 4.0 - (m8_s + m5_s) / 2.0, -(1.0 + r) / 4.0 - (m6_s + m5_s) / 2.0,
              (1.0 + r) / 4.0 - (m6_s + m7_s) / 2.0, (1.0 - r) / 4.0 - (m8_s + m7_s) / 2.0, m5_s, m6_s, m7_s, m8_s}};
}

struct Element {
  int nodes;
  Row (*values)(Point const&);
  Rows (*derivatives)(Point const&);
};

constexpr Element elements[] = {
    {3, triangle3, triangle3_derivatives},
    {4, quadrilateral4, quadrilateral4_derivatives},
    {6, triangle6, triangle6_derivatives},
    {8, quadrilateral8, quadrilateral8_derivatives},
};

TEST(Interpolate2dEdgeCases, FourNodeQuadrilateralIsTakenAtItsCentreForConstant) {
  EXPECT_TRUE(equal_values(H(4, {0.5, 0.5}, Constant), {0.25, 0.25, 0.25, 0.25}));
  EXPECT_TRUE(equal_values(H(4, {0.5, 0.5}, Full), {0.0625, 0.1875, 0.5625, 0.1875}));
  EXPECT_TRUE(equal_rows(HDerivatives(4, {0.5, 0.5}, Constant),
                         Rows{Row{-0.25, 0.25, 0.25, -0.25}, Row{-0.25, -0.25, 0.25, 0.25}}));
  EXPECT_TRUE(equal_rows(HDerivatives(4, {0.5, 0.5}, Full),
                         Rows{Row{-0.125, 0.125, 0.375, -0.375}, Row{-0.125, -0.375, 0.375, 0.125}}));
}

TEST(Interpolate2dEdgeCases, ThreeNodeTriangleIsTakenAtThePointForConstantToo) {
  EXPECT_TRUE(equal_values(H(3, {0.2, 0.3}, Constant), {0.5, 0.2, 0.3}));
}

TEST(Interpolate2dEdgeCases, EightNodeQuadrilateralIsOneAtItsOwnNode) {
  const Point nodes[] = {{-1, -1}, {1, -1}, {1, 1}, {-1, 1}, {0, -1}, {1, 0}, {0, 1}, {-1, 0}};
  for (std::size_t node = 0; node < 8; ++node) {
    Row expected(8, 0.0);
    expected[node] = 1.0;
    EXPECT_EQ(H(8, nodes[node], Full), expected) << "node " << node + 1;
  }
}

TEST(Interpolate2dEdgeCases, NineAndFiveNodesAreRefused) {
  EXPECT_TRUE(throws_exactly<std::logic_error>([] { H(9, {0, 0}, Full); }, "invalid number of nodes"));
  EXPECT_TRUE(throws_exactly<std::logic_error>([] { HDerivatives(5, {0, 0}, Full); }, "invalid number of nodes"));
}

// With r and s multiples of 1/8 every product fits a double, so that nothing is rounded.
TEST(Interpolate2dEdgeCases, ValuesAddUpToOneAndDerivativesToZero) {
  for (auto const& element : elements) {
    for (int i = -16; i <= 16; ++i) {
      for (int j = -16; j <= 16; ++j) {
        const Point p{i / 8.0, j / 8.0};
        const Row values = H(element.nodes, p, Full);
        EXPECT_EQ(std::accumulate(values.begin(), values.end(), 0.0), 1.0) << element.nodes << " nodes";
        EXPECT_EQ(HDerivatives(element.nodes, p, Full).rowwise().sum(), Eigen::Vector2d::Zero())
            << element.nodes << " nodes";
      }
    }
  }
}

TEST(Interpolate2d, EveryOtherNodeCountIsRefused) {
  for (const int count : wrong_node_counts({3, 4, 6, 8})) {
    for (const OrderType order : {Constant, Full}) {
      EXPECT_TRUE(throws_exactly<std::logic_error>(
          [=] {
            H(count, {0.2, 0.3}, order);
          },
          "invalid number of nodes"))
          << "count " << count;
      EXPECT_TRUE(throws_exactly<std::logic_error>(
          [=] {
            HDerivatives(count, {0.2, 0.3}, order);
          },
          "invalid number of nodes"))
          << "count " << count;
    }
  }
}

TEST(Interpolate2d, DerivativesAreTwoRowsWithAColumnPerNodeStoredColumnByColumn) {
  for (auto const& element : elements) {
    const Point p{0.2, 0.3};
    EXPECT_TRUE(equal_storage(HDerivatives(element.nodes, p, Full), element.derivatives(p)))
        << element.nodes << " nodes";
  }
}

TEST(Interpolate2d, EveryOrderButZeroIsFull) {
  for (const int order : {7, 2, -1, 256, 65536, INT_MAX, INT_MIN}) {
    const auto any = static_cast<OrderType>(order);
    EXPECT_TRUE(equal_values(H(4, {0.5, 0.5}, any), {0.0625, 0.1875, 0.5625, 0.1875})) << "order " << order;
    EXPECT_TRUE(equal_rows(HDerivatives(4, {0.5, 0.5}, any), quadrilateral4_derivatives({0.5, 0.5})))
        << "order " << order;
  }
}

TEST(Interpolate2d, ConstantDoesNotLookAtThePoint) {
  for (const double r : {-0.0, 1e300, -kInfinity, kNaN}) {
    EXPECT_TRUE(equal_values(H(4, {r, -r}, Constant), {0.25, 0.25, 0.25, 0.25})) << "r " << r;
    EXPECT_TRUE(equal_rows(HDerivatives(4, {-r, r}, Constant), quadrilateral4_derivatives({0.0, 0.0}))) << "r " << r;
  }
}

// -(1 - s) is -0.0 on the side s = 1, where s - 1 would be +0.0; likewise on the other sides.
TEST(Interpolate2d, KeepsTheSignsOfZeros) {
  EXPECT_TRUE(equal_rows(HDerivatives(4, {1, 1}, Full), Rows{Row{-0.0, 0.0, 0.5, -0.5}, Row{-0.0, -0.5, 0.5, 0.0}}));
  EXPECT_TRUE(equal_rows(HDerivatives(4, {-1, -1}, Full), Rows{Row{-0.5, 0.5, 0.0, -0.0}, Row{-0.5, -0.0, 0.0, 0.5}}));
}

TEST(Interpolate2d, OperationsAreDoneInThePromisedOrderAtAnyPoint) {
  constexpr int seed = 431;
  Random random(seed);
  for (int i = 0; i < 20000; ++i) {
    const Point p{mixed_coordinate(random), mixed_coordinate(random)};
    SCOPED_TRACE(describe_case(seed, i, {p.x, p.y}));
    for (auto const& element : elements) {
      for (const OrderType order : {Constant, Full}) {
        if (element.nodes == 4 && order == Constant) continue;  // taken at the centre
        ASSERT_TRUE(equal_values(H(element.nodes, p, order), element.values(p))) << element.nodes << " nodes";
        ASSERT_TRUE(equal_rows(HDerivatives(element.nodes, p, order), element.derivatives(p)))
            << element.nodes << " nodes";
      }
    }
  }
}

}  // namespace

#include <gtest/gtest.h>
#include <talvo/interpolation/interpolate3d.h>

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
using talvo::test::equal_bits;
using talvo::test::equal_rows;
using talvo::test::equal_storage;
using talvo::test::equal_values;
using talvo::test::mixed_coordinate;
using talvo::test::Random;
using talvo::test::throws_exactly;
using talvo::test::wrong_node_counts;
using Talvo::Util::Interpolate3d::H;
using Talvo::Util::Interpolate3d::HDerivatives;

using Point = Vec3<double>;
using Row = std::vector<double>;
using Rows = std::array<Row, 3>;

static_assert(std::is_same_v<decltype(H(8, Point{}, Full)), std::vector<double>>);
static_assert(std::is_same_v<decltype(HDerivatives(8, Point{}, Full)), Eigen::Matrix<double, 3, Eigen::Dynamic>>);

const double kNaN = std::numeric_limits<double>::quiet_NaN();
const double kInfinity = std::numeric_limits<double>::infinity();

// The functions in the order of operations that the library promises.
struct Factors {
  double r, s, t, a, b;
};
Factors factors(Point const& p) { return {p.x, p.y, p.z, (1.0 - p.x) / 8.0, (1.0 + p.x) / 8.0}; }

Row hexahedron(Point const& p) {
  const auto [r, s, t, a, b] = factors(p);
  return {a * (1.0 - s) * (1.0 - t), b * (1.0 - s) * (1.0 - t), b * (1.0 + s) * (1.0 - t), a * (1.0 + s) * (1.0 - t),
          a * (1.0 - s) * (1.0 + t), b * (1.0 - s) * (1.0 + t), b * (1.0 + s) * (1.0 + t), a * (1.0 + s) * (1.0 + t)};
}

Row wedge(Point const& p) {
  const auto [r, s, t, a, b] = factors(p);
  return {a * (1.0 - s) * (1.0 - t), b * (1.0 - s) * (1.0 - t), (1.0 + s) / 4.0 * (1.0 - t),
          a * (1.0 - s) * (1.0 + t), b * (1.0 - s) * (1.0 + t), (1.0 + s) / 4.0 * (1.0 + t)};
}

Row pyramid(Point const& p) {
  const auto [r, s, t, a, b] = factors(p);
  return {a * (1.0 - s) * (1.0 - t), b * (1.0 - s) * (1.0 - t), b * (1.0 + s) * (1.0 - t), a * (1.0 + s) * (1.0 - t),
          (1.0 + t) / 2.0};
}

Row tetrahedron(Point const& p) {
  const auto [r, s, t, a, b] = factors(p);
  return {a * (1.0 - s) * (1.0 - t), b * (1.0 - s) * (1.0 - t), (1.0 + s) / 4.0 * (1.0 - t), (1.0 + t) / 2.0};
}

// The eight columns of the hexahedron, by hand from its functions; the merged elements share some of them.
Rows hexahedron_derivatives(Point const& p) {
  const auto [r, s, t, a, b] = factors(p);
  return {Row{-(1.0 - s) / 8.0 * (1.0 - t), (1.0 - s) / 8.0 * (1.0 - t), (1.0 + s) / 8.0 * (1.0 - t),
              -(1.0 + s) / 8.0 * (1.0 - t), -(1.0 - s) / 8.0 * (1.0 + t), (1.0 - s) / 8.0 * (1.0 + t),
              (1.0 + s) / 8.0 * (1.0 + t), -(1.0 + s) / 8.0 * (1.0 + t)},
          Row{-a * (1.0 - t), -b * (1.0 - t), b * (1.0 - t), a * (1.0 - t),  //
              -a * (1.0 + t), -b * (1.0 + t), b * (1.0 + t), a * (1.0 + t)},
          Row{-a * (1.0 - s), -b * (1.0 - s), -b * (1.0 + s), -a * (1.0 + s),  //
              a * (1.0 - s), b * (1.0 - s), b * (1.0 + s), a * (1.0 + s)}};
}

// d/dr, d/ds, d/dt of one node.
using Column = std::array<double, 3>;

// (1 + t)/2: corners 5 to 8 in one node.
constexpr Column apex{0.0, 0.0, 0.5};

// (1 + s)/4 (1 - t): corners 3 and 4 in one node.
Column near_edge(Point const& p) { return {0.0, (1.0 - p.z) / 4.0, -(1.0 + p.y) / 4.0}; }

// (1 + s)/4 (1 + t): corners 7 and 8 in one node.
Column far_edge(Point const& p) { return {0.0, (1.0 + p.z) / 4.0, (1.0 + p.y) / 4.0}; }

// Column `corner`, counted from 1, of the hexahedron.
Column corner_column(Rows const& hexahedron_rows, std::size_t corner) {
  return {hexahedron_rows[0][corner - 1], hexahedron_rows[1][corner - 1], hexahedron_rows[2][corner - 1]};
}

Rows from_columns(std::vector<Column> const& columns) {
  Rows rows;
  for (auto const& column : columns) {
    for (std::size_t direction = 0; direction < 3; ++direction) rows[direction].push_back(column[direction]);
  }
  return rows;
}

Rows wedge_derivatives(Point const& p) {
  const Rows hex = hexahedron_derivatives(p);
  return from_columns({corner_column(hex, 1), corner_column(hex, 2), near_edge(p), corner_column(hex, 5),
                       corner_column(hex, 6), far_edge(p)});
}

Rows pyramid_derivatives(Point const& p) {
  const Rows hex = hexahedron_derivatives(p);
  return from_columns(
      {corner_column(hex, 1), corner_column(hex, 2), corner_column(hex, 3), corner_column(hex, 4), apex});
}

Rows tetrahedron_derivatives(Point const& p) {
  const Rows hex = hexahedron_derivatives(p);
  return from_columns({corner_column(hex, 1), corner_column(hex, 2), near_edge(p), apex});
}

struct Element {
  int nodes;
  Row (*values)(Point const&);
  Rows (*derivatives)(Point const&);
};

constexpr Element elements[] = {
    {4, tetrahedron, tetrahedron_derivatives},
    {5, pyramid, pyramid_derivatives},
    {6, wedge, wedge_derivatives},
    {8, hexahedron, hexahedron_derivatives},
};

TEST(Interpolate3dEdgeCases, HexahedronWeighsItsCornersEquallyAtTheCentre) {
  const Row eighths(8, 0.125);
  for (const OrderType order : {Constant, Full}) EXPECT_TRUE(equal_values(H(8, {0, 0, 0}, order), eighths));
}

TEST(Interpolate3dEdgeCases, HexahedronIsOneAtNodeSevenOnly) {
  EXPECT_EQ(H(8, {1, 1, 1}, Full), (Row{0, 0, 0, 0, 0, 0, 1, 0}));
}

TEST(Interpolate3dEdgeCases, PyramidIsOneAtItsApexWhateverRAndSAre) {
  EXPECT_EQ(H(5, {0.3, -0.2, 1}, Full), (Row{0, 0, 0, 0, 1}));
  for (const double r : {-1.0, -0.25, 0.0, 1.0, 17.0, -1e100}) {
    for (const double s : {-1.0, 0.75, 1.0, -3.0}) {
      EXPECT_EQ(H(5, {r, s, 1}, Full), (Row{0, 0, 0, 0, 1})) << "r " << r << ", s " << s;
    }
  }
}

TEST(Interpolate3dEdgeCases, TetrahedronIsOneAtItsThirdNodeAllAlongTheMergedEdge) {
  EXPECT_EQ(H(4, {0.7, 1, -1}, Full), (Row{0, 0, 1, 0}));
  EXPECT_EQ(H(4, {-0.2, 1, -1}, Full), (Row{0, 0, 1, 0}));
}

TEST(Interpolate3dEdgeCases, MergedElementsDoNotWeighTheirNodesEquallyForConstant) {
  for (const Point p : {Point{0.3, -0.2, 0.9}, Point{-0.0, 5.0, 1.0}, Point{kNaN, kInfinity, -1e300}}) {
    EXPECT_TRUE(equal_values(H(4, p, Constant), {0.125, 0.125, 0.25, 0.5}));
    EXPECT_TRUE(equal_values(H(5, p, Constant), {0.125, 0.125, 0.125, 0.125, 0.5}));
    EXPECT_TRUE(equal_values(H(6, p, Constant), {0.125, 0.125, 0.25, 0.125, 0.125, 0.25}));
    EXPECT_TRUE(equal_values(H(8, p, Constant), Row(8, 0.125)));
  }
}

TEST(Interpolate3dEdgeCases, TenNodesAreRefused) {
  EXPECT_TRUE(throws_exactly<std::logic_error>([] { H(10, {0, 0, 0}, Full); }, "invalid number of nodes"));
  EXPECT_TRUE(throws_exactly<std::logic_error>([] { HDerivatives(10, {0, 0, 0}, Full); }, "invalid number of nodes"));
}

// With coordinates that are multiples of 1/4 every product fits a double, so that nothing is rounded.
TEST(Interpolate3dEdgeCases, ValuesAddUpToOneAndDerivativesToZero) {
  for (auto const& element : elements) {
    for (const OrderType order : {Constant, Full}) {
      for (int i = 0; i < 17 * 17 * 17; ++i) {
        const int steps[] = {i % 17, i / 17 % 17, i / (17 * 17)};
        const Point p{steps[0] * 0.25 - 2.0, steps[1] * 0.25 - 2.0, steps[2] * 0.25 - 2.0};
        const Row values = H(element.nodes, p, order);
        EXPECT_EQ(std::accumulate(values.begin(), values.end(), 0.0), 1.0) << element.nodes << " nodes";
        EXPECT_EQ(HDerivatives(element.nodes, p, order).rowwise().sum(), Eigen::Vector3d::Zero())
            << element.nodes << " nodes";
      }
    }
  }
}

TEST(Interpolate3d, EveryOtherNodeCountIsRefused) {
  for (const int count : wrong_node_counts({4, 5, 6, 8})) {
    for (const OrderType order : {Constant, Full}) {
      EXPECT_TRUE(throws_exactly<std::logic_error>(
          [=] {
            H(count, {0.1, 0.2, 0.3}, order);
          },
          "invalid number of nodes"))
          << "count " << count;
      EXPECT_TRUE(throws_exactly<std::logic_error>(
          [=] {
            HDerivatives(count, {0.1, 0.2, 0.3}, order);
          },
          "invalid number of nodes"))
          << "count " << count;
    }
  }
}

TEST(Interpolate3d, DerivativesAreThreeRowsWithAColumnPerNodeStoredColumnByColumn) {
  for (auto const& element : elements) {
    const Point p{0.1, 0.2, 0.3};
    EXPECT_TRUE(equal_storage(HDerivatives(element.nodes, p, Full), element.derivatives(p)))
        << element.nodes << " nodes";
  }
}

TEST(Interpolate3d, DerivativesAreTakenAtTheCentreForConstant) {
  for (const Point p : {Point{0.3, -0.2, 0.9}, Point{kNaN, kInfinity, -1e300}}) {
    for (auto const& element : elements) {
      EXPECT_TRUE(equal_rows(HDerivatives(element.nodes, p, Constant), element.derivatives({0.0, 0.0, 0.0})))
          << element.nodes << " nodes";
    }
  }
}

TEST(Interpolate3d, EveryOrderButZeroIsFull) {
  const Point p{0.1, 0.2, 0.3};
  for (const int order : {7, 2, -1, 256, 65536, INT_MAX, INT_MIN}) {
    for (auto const& element : elements) {
      const auto any = static_cast<OrderType>(order);
      EXPECT_TRUE(equal_values(H(element.nodes, p, any), element.values(p))) << "order " << order;
      EXPECT_TRUE(equal_rows(HDerivatives(element.nodes, p, any), element.derivatives(p))) << "order " << order;
    }
  }
}

TEST(Interpolate3d, FourthComponentPlaysNoPart) {
  for (auto const& element : elements) {
    const Point p{0.1, 0.2, 0.3}, with_w{0.1, 0.2, 0.3, kNaN};
    EXPECT_TRUE(equal_values(H(element.nodes, with_w, Full), element.values(p)));
    EXPECT_TRUE(equal_rows(HDerivatives(element.nodes, with_w, Full), element.derivatives(p)));
  }
}

TEST(Interpolate3d, DerivativesOfMergedNodesAlongTheMergedDirectionsAreZeroEverywhere) {
  for (const double x : {-0.0, -1.0, 1.0, -1e300, kInfinity, -kInfinity, kNaN}) {
    SCOPED_TRACE(x);
    const Point p{x, x, x};
    EXPECT_TRUE(equal_bits(HDerivatives(4, p, Full)(0, 2), 0.0));
    EXPECT_TRUE(equal_bits(HDerivatives(6, p, Full)(0, 2), 0.0));
    EXPECT_TRUE(equal_bits(HDerivatives(6, p, Full)(0, 5), 0.0));
    for (const int nodes : {4, 5}) {
      EXPECT_TRUE(equal_bits(HDerivatives(nodes, p, Full)(0, nodes - 1), 0.0));
      EXPECT_TRUE(equal_bits(HDerivatives(nodes, p, Full)(1, nodes - 1), 0.0));
      EXPECT_TRUE(equal_bits(HDerivatives(nodes, p, Full)(2, nodes - 1), 0.5));
    }
  }
}

// At corner 7 all factors 1 - s and 1 - t vanish; a leading minus makes its zero negative, where s - 1 would not.
TEST(Interpolate3d, KeepsTheSignsOfZeros) {
  EXPECT_TRUE(equal_rows(HDerivatives(8, {1, 1, 1}, Full), Rows{Row{-0.0, 0.0, 0.0, -0.0, -0.0, 0.0, 0.5, -0.5},
                                                                Row{-0.0, -0.0, 0.0, 0.0, -0.0, -0.5, 0.5, 0.0},
                                                                Row{-0.0, -0.0, -0.5, -0.0, 0.0, 0.0, 0.5, 0.0}}));
}

TEST(Interpolate3d, OperationsAreDoneInThePromisedOrderAtAnyPoint) {
  constexpr int seed = 441;
  Random random(seed);
  for (int i = 0; i < 20000; ++i) {
    const Point p{mixed_coordinate(random), mixed_coordinate(random), mixed_coordinate(random)};
    SCOPED_TRACE(describe_case(seed, i, {p.x, p.y, p.z}));
    for (auto const& element : elements) {
      ASSERT_TRUE(equal_values(H(element.nodes, p, Full), element.values(p))) << element.nodes << " nodes";
      ASSERT_TRUE(equal_rows(HDerivatives(element.nodes, p, Full), element.derivatives(p)))
          << element.nodes << " nodes";
    }
  }
}

}  // namespace

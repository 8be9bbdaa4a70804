#include <gtest/gtest.h>
#include <talvo/interpolation/interpolate3d_infinite.h>

#include <Eigen/Core>
#include <array>
#include <cstddef>
#include <limits>
#include <stdexcept>
#include <type_traits>
#include <vector>

#include "interpolation/compare_results.h"
#include "interpolation/points.h"
#include "support/failures.h"

namespace {

using talvo::test::describe_case;
using talvo::test::equal_bits;
using talvo::test::equal_rows;
using talvo::test::equal_storage;
using talvo::test::equal_values;
using talvo::test::mixed_coordinate;
using talvo::test::Random;
using talvo::test::throws_exactly;
using talvo::test::wrong_node_counts;
using Talvo::Util::Interpolate3dInfinite::H;
using Talvo::Util::Interpolate3dInfinite::HDerivatives;
using Talvo::Util::Interpolate3dInfinite::M;
using Talvo::Util::Interpolate3dInfinite::MDerivatives;

using Point = Vec3<double>;
using Row = std::vector<double>;
using Rows = std::array<Row, 3>;

static_assert(std::is_same_v<decltype(H(8, Point{})), std::vector<double>>);
static_assert(std::is_same_v<decltype(M(8, Point{})), std::vector<double>>);
static_assert(std::is_same_v<decltype(HDerivatives(8, Point{})), Eigen::Matrix<double, 3, Eigen::Dynamic>>);
static_assert(std::is_same_v<decltype(MDerivatives(8, Point{})), Eigen::Matrix<double, 3, Eigen::Dynamic>>);

const double kNaN = std::numeric_limits<double>::quiet_NaN();
const double kInfinity = std::numeric_limits<double>::infinity();

// The functions in the order of operations that the library promises; the square of t is t * t.
Row field8(Point const& p) {
  const double r = p.x, s = p.y, t = p.z, q = t * t, A = q - t, B = 1.0 - q;
  return {(1.0 - r) * 0.125 * (1.0 - s) * A, (1.0 + r) * 0.125 * (1.0 - s) * A,  //
          (1.0 + r) * 0.125 * (1.0 + s) * A, (1.0 - r) * 0.125 * (1.0 + s) * A,  //
          (1.0 - r) * 0.25 * (1.0 - s) * B,  (1.0 + r) * 0.25 * (1.0 - s) * B,   //
          (1.0 + r) * 0.25 * (1.0 + s) * B,  (1.0 - r) * 0.25 * (1.0 + s) * B};
}

Row field6(Point const& p) {
  const double r = p.x, s = p.y, t = p.z, q = t * t, A = q - t, B = 1.0 - q;
  return {(1.0 - r) * 0.125 * (1.0 - s) * A, (1.0 + r) * 0.125 * (1.0 - s) * A, (1.0 + s) * 0.25 * A,
          (1.0 - r) * 0.25 * (1.0 - s) * B,  (1.0 + r) * 0.25 * (1.0 - s) * B,  (1.0 + s) * 0.5 * B};
}

Rows field8_derivatives(Point const& p) {
  const double r = p.x, s = p.y, t = p.z, q = t * t, A = q - t, B = 1.0 - q;
  const double A_t = t + t - 1.0, B_t = -2.0 * t;
  return {
      Row{-0.125 * (1.0 - s) * A, 0.125 * (1.0 - s) * A, 0.125 * (1.0 + s) * A, -0.125 * (1.0 + s) * A,
          -0.25 * (1.0 - s) * B, 0.25 * (1.0 - s) * B, 0.25 * (1.0 + s) * B, -0.25 * (1.0 + s) * B},
      Row{-(1.0 - r) * 0.125 * A, -(1.0 + r) * 0.125 * A, (1.0 + r) * 0.125 * A, (1.0 - r) * 0.125 * A,
          -(1.0 - r) * 0.25 * B, -(1.0 + r) * 0.25 * B, (1.0 + r) * 0.25 * B, (1.0 - r) * 0.25 * B},
      Row{(1.0 - r) * 0.125 * (1.0 - s) * A_t, (1.0 + r) * 0.125 * (1.0 - s) * A_t, (1.0 + r) * 0.125 * (1.0 + s) * A_t,
          (1.0 - r) * 0.125 * (1.0 + s) * A_t, (1.0 - r) * 0.25 * (1.0 - s) * B_t, (1.0 + r) * 0.25 * (1.0 - s) * B_t,
          (1.0 + r) * 0.25 * (1.0 + s) * B_t, (1.0 - r) * 0.25 * (1.0 + s) * B_t}};
}

Rows field6_derivatives(Point const& p) {
  const double r = p.x, s = p.y, t = p.z, q = t * t, A = q - t, B = 1.0 - q;
  const double A_t = t + t - 1.0, B_t = -2.0 * t;
  return {Row{-0.125 * (1.0 - s) * A, 0.125 * (1.0 - s) * A, 0.0, -0.25 * (1.0 - s) * B, 0.25 * (1.0 - s) * B, 0.0},
          Row{-(1.0 - r) * 0.125 * A, -(1.0 + r) * 0.125 * A, 0.25 * A, -(1.0 - r) * 0.25 * B, -(1.0 + r) * 0.25 * B,
              0.5 * B},
          Row{(1.0 - r) * 0.125 * (1.0 - s) * A_t, (1.0 + r) * 0.125 * (1.0 - s) * A_t, (1.0 + s) * 0.25 * A_t,
              (1.0 - r) * 0.25 * (1.0 - s) * B_t, (1.0 + r) * 0.25 * (1.0 - s) * B_t, (1.0 + s) * 0.5 * B_t}};
}

// The bilinear factors F of one layer, and their derivatives.
Row factors8(double r, double s) {
  return {(1.0 - s) * (1.0 - r), (1.0 - s) * (1.0 + r), (1.0 + s) * (1.0 + r), (1.0 + s) * (1.0 - r)};
}
Row factors6(double r, double s) { return {(1.0 - s) * (1.0 - r), (1.0 - s) * (1.0 + r), (1.0 + s) + (1.0 + s)}; }

Row factors8_r(double, double s) { return {-(1.0 - s), 1.0 - s, 1.0 + s, -(1.0 + s)}; }
Row factors6_r(double, double s) { return {-(1.0 - s), 1.0 - s, 0.0}; }

Row factors8_s(double r, double) { return {-(1.0 - r), -(1.0 + r), 1.0 + r, 1.0 - r}; }
Row factors6_s(double r, double) { return {-(1.0 - r), -(1.0 + r), 2.0}; }

// The first layer carries (F P) / D1, the second (Q F) / D2.
Row both_layers(Row const& F, double t) {
  const double P = -t, D1 = (1.0 - t) + (1.0 - t), D2 = (1.0 - t) * 4.0, Q = t + 1.0;
  Row result;
  for (const double f : F) result.push_back(f * P / D1);
  for (const double f : F) result.push_back(Q * f / D2);
  return result;
}

// The derivative along t is -F / E in the first layer and F / E in the second.
Row both_layers_t(Row const& F, double t) {
  const double E = ((t - 1.0) + (t - 1.0)) * (t - 1.0);
  Row result;
  for (const double f : F) result.push_back(-f / E);
  for (const double f : F) result.push_back(f / E);
  return result;
}

Row mapping8(Point const& p) { return both_layers(factors8(p.x, p.y), p.z); }
Row mapping6(Point const& p) { return both_layers(factors6(p.x, p.y), p.z); }

Rows mapping8_derivatives(Point const& p) {
  return {both_layers(factors8_r(p.x, p.y), p.z), both_layers(factors8_s(p.x, p.y), p.z),
          both_layers_t(factors8(p.x, p.y), p.z)};
}

// The merged node does not depend on r: its derivative is 0, also where 0 times the layer's factor would be -0 or NaN.
Rows mapping6_derivatives(Point const& p) {
  Row along_r = both_layers(factors6_r(p.x, p.y), p.z);
  along_r[2] = along_r[5] = 0.0;
  return {along_r, both_layers(factors6_s(p.x, p.y), p.z), both_layers_t(factors6(p.x, p.y), p.z)};
}

struct Element {
  int nodes;
  Row (*field)(Point const&);
  Rows (*field_derivatives)(Point const&);
  Row (*mapping)(Point const&);
  Rows (*mapping_derivatives)(Point const&);
};

constexpr Element elements[] = {
    {6, field6, field6_derivatives, mapping6, mapping6_derivatives},
    {8, field8, field8_derivatives, mapping8, mapping8_derivatives},
};

TEST(Interpolate3dInfiniteEdgeCases, FieldVanishesAtInfinity) {
  for (const double r : {-1.0, 0.3, 1.0}) {
    for (const double s : {-1.0, -0.7, 1.0}) {
      EXPECT_TRUE(equal_values(H(8, {r, s, 1}), Row(8, 0.0))) << "r " << r << ", s " << s;
      EXPECT_TRUE(equal_values(H(6, {r, s, 1}), Row(6, 0.0))) << "r " << r << ", s " << s;
    }
  }
}

TEST(Interpolate3dInfiniteEdgeCases, FieldIsOneAtNodeThreeOnly) {
  EXPECT_EQ(H(8, {1, 1, -1}), (Row{0, 0, 1, 0, 0, 0, 0, 0}));
}

TEST(Interpolate3dInfiniteEdgeCases, FieldIsOneAtNodeEightOnly) {
  EXPECT_EQ(H(8, {-1, 1, 0}), (Row{0, 0, 0, 0, 0, 0, 0, 1}));
}

TEST(Interpolate3dInfiniteEdgeCases, MappingIsCarriedByTheFirstLayerOnTheFiniteFace) {
  EXPECT_EQ(M(8, {0, 0, -1}), (Row{0.25, 0.25, 0.25, 0.25, 0, 0, 0, 0}));
}

TEST(Interpolate3dInfiniteEdgeCases, MappingIsCarriedByTheSecondLayerAtTZero) {
  EXPECT_EQ(M(8, {0, 0, 0}), (Row{0, 0, 0, 0, 0.25, 0.25, 0.25, 0.25}));
}

TEST(Interpolate3dInfiniteEdgeCases, MappingGrowsTowardsInfinity) {
  EXPECT_EQ(M(8, {0, 0, 0.5}), (Row{-0.5, -0.5, -0.5, -0.5, 0.75, 0.75, 0.75, 0.75}));
}

TEST(Interpolate3dInfiniteEdgeCases, MappingOfSixNodesDoublesTheMergedOne) {
  EXPECT_EQ(M(6, {0, 0.5, -1}), (Row{0.125, 0.125, 0.75, 0, 0, 0}));
}

TEST(Interpolate3dInfiniteEdgeCases, SevenAndFourNodesAreRefused) {
  EXPECT_TRUE(throws_exactly<std::logic_error>([] { H(7, {0, 0, 0}); }, "invalid number of nodes"));
  EXPECT_TRUE(throws_exactly<std::logic_error>([] { M(4, {0, 0, 0}); }, "invalid number of nodes"));
}

TEST(Interpolate3dInfinite, EveryOtherNodeCountIsRefused) {
  for (const int count : wrong_node_counts({6, 8})) {
    SCOPED_TRACE(count);
    const Point p{0.1, 0.2, 0.3};
    if (count < 0) {
      EXPECT_TRUE(throws_exactly<std::length_error>([=] { H(count, p); }, "vector too long"));
      EXPECT_TRUE(throws_exactly<std::length_error>([=] { M(count, p); }, "vector too long"));
    } else {
      EXPECT_TRUE(throws_exactly<std::logic_error>([=] { H(count, p); }, "invalid number of nodes"));
      EXPECT_TRUE(throws_exactly<std::logic_error>([=] { M(count, p); }, "invalid number of nodes"));
    }
    EXPECT_TRUE(throws_exactly<std::logic_error>([=] { HDerivatives(count, p); }, "invalid number of nodes"));
    EXPECT_TRUE(throws_exactly<std::logic_error>([=] { MDerivatives(count, p); }, "invalid number of nodes"));
  }
}

TEST(Interpolate3dInfinite, DerivativesAreThreeRowsWithAColumnPerNodeStoredColumnByColumn) {
  const Point p{0.1, 0.2, 0.3};
  for (auto const& element : elements) {
    EXPECT_TRUE(equal_storage(HDerivatives(element.nodes, p), element.field_derivatives(p)))
        << element.nodes << " nodes";
    EXPECT_TRUE(equal_storage(MDerivatives(element.nodes, p), element.mapping_derivatives(p)))
        << element.nodes << " nodes";
  }
}

TEST(Interpolate3dInfinite, FourthComponentPlaysNoPart) {
  const Point p{0.1, 0.2, 0.3}, with_w{0.1, 0.2, 0.3, kNaN};
  for (auto const& element : elements) {
    EXPECT_TRUE(equal_values(H(element.nodes, with_w), element.field(p)));
    EXPECT_TRUE(equal_values(M(element.nodes, with_w), element.mapping(p)));
    EXPECT_TRUE(equal_rows(HDerivatives(element.nodes, with_w), element.field_derivatives(p)));
    EXPECT_TRUE(equal_rows(MDerivatives(element.nodes, with_w), element.mapping_derivatives(p)));
  }
}

// F (-1) / 0 and 2 F / 0 with every F = 1, and 4 for the merged node's F = 2.
TEST(Interpolate3dInfinite, MappingIsInfiniteAtInfinity) {
  const double inf = kInfinity;
  EXPECT_TRUE(equal_values(M(8, {0, 0, 1}), {-inf, -inf, -inf, -inf, inf, inf, inf, inf}));
  EXPECT_TRUE(equal_values(M(6, {0, 0, 1}), {-inf, -inf, -inf, inf, inf, inf}));
}

// Where F vanishes, 0 / 0.
TEST(Interpolate3dInfinite, MappingIsNaNAtInfinityWhereTheFaceFunctionVanishes) {
  const double inf = kInfinity, nan = kNaN;
  EXPECT_TRUE(equal_values(M(8, {1, 1, 1}), {nan, nan, -inf, nan, nan, nan, inf, nan}));
  EXPECT_TRUE(equal_values(M(6, {1, 1, 1}), {nan, nan, -inf, nan, nan, inf}));
}

// Outside the face some F are negative: at r = 2, s = 0 they are -1, 3, 3, -1.
TEST(Interpolate3dInfinite, MappingAtInfinityTakesTheSignOfTheFaceFunction) {
  const double inf = kInfinity;
  EXPECT_TRUE(equal_values(M(8, {2, 0, 1}), {inf, -inf, -inf, inf, -inf, inf, inf, -inf}));
}

// dF/dr = -1, 1, 1, -1 and dF/ds = -1, -1, 1, 1 times -1/0 and 2/0; along t -F/0 and F/0.
TEST(Interpolate3dInfinite, MappingDerivativesAreInfiniteAtInfinity) {
  const double inf = kInfinity;
  EXPECT_TRUE(equal_rows(MDerivatives(8, {0, 0, 1}), Rows{Row{inf, -inf, -inf, inf, -inf, inf, inf, -inf},
                                                          Row{inf, inf, -inf, -inf, -inf, -inf, inf, inf},
                                                          Row{-inf, -inf, -inf, -inf, inf, inf, inf, inf}}));
  EXPECT_TRUE(equal_rows(MDerivatives(6, {0, 0, 1}),
                         Rows{Row{inf, -inf, 0.0, -inf, inf, 0.0}, Row{inf, inf, -inf, -inf, -inf, inf},
                              Row{-inf, -inf, -inf, inf, inf, inf}}));
}

TEST(Interpolate3dInfinite, MappingDerivativesAreNaNAtInfinityWhereTheFactorVanishes) {
  const double inf = kInfinity, nan = kNaN;
  EXPECT_TRUE(equal_rows(MDerivatives(8, {1, 1, 1}), Rows{Row{nan, nan, -inf, inf, nan, nan, inf, -inf},
                                                          Row{nan, inf, -inf, nan, nan, -inf, inf, nan},
                                                          Row{nan, nan, -inf, nan, nan, nan, inf, nan}}));
}

TEST(Interpolate3dInfinite, NothingIsThrownAtInfinity) {
  for (auto const& element : elements) {
    EXPECT_NO_THROW(M(element.nodes, {1, 1, 1}));
    EXPECT_NO_THROW(MDerivatives(element.nodes, {1, 1, 1}));
  }
}

TEST(Interpolate3dInfinite, DerivativeOfTheMergedNodeAlongRIsZeroEverywhere) {
  for (const double t : {-1.0, -0.0, 0.0, 0.3, 1.0, 2.0, -1e300, kInfinity, -kInfinity, kNaN}) {
    for (const double s : {-1.0, 0.5, 1.0, 3.0, kInfinity, kNaN}) {
      SCOPED_TRACE(::testing::Message() << "s " << s << ", t " << t);
      for (const Eigen::Index node : {2, 5}) {
        EXPECT_TRUE(equal_bits(HDerivatives(6, {0.3, s, t})(0, node), 0.0));
        EXPECT_TRUE(equal_bits(MDerivatives(6, {0.3, s, t})(0, node), 0.0));
      }
    }
  }
}

// At t = 0 the first layer carries -0: P = -t.
TEST(Interpolate3dInfinite, KeepsTheSignsOfZeros) {
  EXPECT_TRUE(equal_values(M(8, {0, 0, 0}), {-0.0, -0.0, -0.0, -0.0, 0.25, 0.25, 0.25, 0.25}));
  EXPECT_TRUE(equal_values(M(8, {0, 0, -0.0}), {0.0, 0.0, 0.0, 0.0, 0.25, 0.25, 0.25, 0.25}));
  EXPECT_TRUE(equal_values(H(8, {2, 0, 0}), {-0.0, 0.0, 0.0, -0.0, -0.25, 0.75, 0.75, -0.25}));
}

TEST(Interpolate3dInfinite, OperationsAreDoneInThePromisedOrderAtAnyPoint) {
  constexpr int seed = 451;
  Random random(seed);
  for (int i = 0; i < 20000; ++i) {
    const Point p{mixed_coordinate(random), mixed_coordinate(random), mixed_coordinate(random)};
    SCOPED_TRACE(describe_case(seed, i, {p.x, p.y, p.z}));
    for (auto const& element : elements) {
      ASSERT_TRUE(equal_values(H(element.nodes, p), element.field(p))) << element.nodes << " nodes";
      ASSERT_TRUE(equal_values(M(element.nodes, p), element.mapping(p))) << element.nodes << " nodes";
      ASSERT_TRUE(equal_rows(HDerivatives(element.nodes, p), element.field_derivatives(p)))
          << element.nodes << " nodes";
      ASSERT_TRUE(equal_rows(MDerivatives(element.nodes, p), element.mapping_derivatives(p)))
          << element.nodes << " nodes";
    }
  }
}

}  // namespace

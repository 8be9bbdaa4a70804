#include <gtest/gtest.h>
#include <talvo/interpolation/gauss.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <limits>
#include <ostream>
#include <string>
#include <type_traits>

#include "support/bits.h"

namespace {

using Talvo::Gauss3Pos;
using Talvo::Gauss3Wgt;
using Talvo::GaussPos;
using Talvo::GaussWgt;
using talvo::test::equal_bits;

static_assert(std::is_same_v<decltype(GaussPos(1, 1)), double>);
static_assert(std::is_same_v<decltype(GaussWgt(1, 1)), double>);
static_assert(std::is_same_v<decltype(Gauss3Pos(1, 1)), Vec2<double>>);
static_assert(std::is_same_v<decltype(Gauss3Wgt(1, 1)), double>);

constexpr double kEpsilon = std::numeric_limits<double>::epsilon();

struct LinePoint {
  int n, i;
  double position, weight;
};

// Abramowitz and Stegun, Handbook of Mathematical Functions, table 25.4, to 15 decimals (the ninths are cut
// off, the others rounded).
constexpr LinePoint line_points[] = {
    {1, 1, +0.0, 2.0},

    {2, 1, +0.577350269189626, 1.0},
    {2, 2, -0.577350269189626, 1.0},

    {3, 1, +0.774596669241483, 0.555555555555555},
    {3, 2, +0.0, 0.888888888888888},
    {3, 3, -0.774596669241483, 0.555555555555555},

    {4, 1, +0.861136311594053, 0.347854845137454},
    {4, 2, +0.339981043584856, 0.652145154862546},
    {4, 3, -0.339981043584856, 0.652145154862546},
    {4, 4, -0.861136311594053, 0.347854845137454},
};

struct TrianglePoint {
  int n, i;
  double r, s, weight;
};

// Cowper, "Gaussian quadrature formulas for triangles", International Journal for Numerical Methods in Engineering 7
// (1973), to 13 decimals.
constexpr TrianglePoint triangle_points[] = {
    {1, 1, 0.3333333333333, 0.3333333333333, 1.0},

    {3, 1, 0.1666666666667, 0.1666666666667, 0.3333333333333},
    {3, 2, 0.6666666666667, 0.1666666666667, 0.3333333333333},
    {3, 3, 0.1666666666667, 0.6666666666667, 0.3333333333333},

    {7, 1, 0.1012865073235, 0.1012865073235, 0.1259391805448},
    {7, 2, 0.7974269853531, 0.1012865073235, 0.1259391805448},
    {7, 3, 0.1012865073235, 0.7974269853531, 0.1259391805448},
    {7, 4, 0.4701420641051, 0.0597158717898, 0.1323941527885},
    {7, 5, 0.4701420641051, 0.4701420641051, 0.1323941527885},
    {7, 6, 0.0597158717898, 0.4701420641051, 0.1323941527885},
    {7, 7, 0.3333333333333, 0.3333333333333, 0.225},
};

// Named in the report, and printed when a row fails.
void PrintTo(LinePoint const& point, std::ostream* out) { *out << "rule " << point.n << ", point " << point.i; }
void PrintTo(TrianglePoint const& point, std::ostream* out) { *out << "rule " << point.n << ", point " << point.i; }

template <class Point>
std::string row_name(::testing::TestParamInfo<Point> const& row) {
  return "rule_" + std::to_string(row.param.n) + "_point_" + std::to_string(row.param.i);
}

class GaussLineTable : public ::testing::TestWithParam<LinePoint> {};

TEST_P(GaussLineTable, PositionIsTheConstantAsWritten) {
  EXPECT_TRUE(equal_bits(GaussPos(GetParam().n, GetParam().i), GetParam().position));
}

TEST_P(GaussLineTable, WeightIsTheConstantAsWritten) {
  EXPECT_TRUE(equal_bits(GaussWgt(GetParam().n, GetParam().i), GetParam().weight));
}

INSTANTIATE_TEST_SUITE_P(EveryRow, GaussLineTable, ::testing::ValuesIn(line_points), row_name<LinePoint>);

class GaussTriangleTable : public ::testing::TestWithParam<TrianglePoint> {};

TEST_P(GaussTriangleTable, PositionIsTheConstantAsWritten) {
  const Vec2<double> position = Gauss3Pos(GetParam().n, GetParam().i);
  EXPECT_TRUE(equal_bits(position.x, GetParam().r));
  EXPECT_TRUE(equal_bits(position.y, GetParam().s));
}

TEST_P(GaussTriangleTable, WeightIsTheConstantAsWritten) {
  EXPECT_TRUE(equal_bits(Gauss3Wgt(GetParam().n, GetParam().i), GetParam().weight));
}

INSTANTIATE_TEST_SUITE_P(EveryRow, GaussTriangleTable, ::testing::ValuesIn(triangle_points), row_name<TrianglePoint>);

// The weight as a switch whose cases for 2 and 3 points carry on into the next.
double cascading_weight(int n, int i) {
  switch (n) {
    case 1:
      return i == 1 ? 2.0 : 0.0;
    case 2:
      if (i == 1 || i == 2) return 1.0;
      [[fallthrough]];
    case 3:
      if (i == 1 || i == 3) return 0.555555555555555;
      if (i == 2) return 0.888888888888888;
      [[fallthrough]];
    case 4:
      if (i == 1 || i == 4) return 0.347854845137454;
      if (i == 2 || i == 3) return 0.652145154862546;
      [[fallthrough]];
    default:
      return 0.0;
  }
}

// Calls check(n, i) for every pair around the rules, and with the ends of `int` in either place.
template <class Check>
void for_rules_and_points(Check check) {
  for (int n = -2; n <= 8; ++n) {
    for (int i = -2; i <= 9; ++i) check(n, i);
    for (const int i : {INT_MIN, INT_MAX}) check(n, i);
  }
  for (const int n : {INT_MIN, INT_MAX}) {
    for (int i = -2; i <= 9; ++i) check(n, i);
    for (const int i : {INT_MIN, INT_MAX}) check(n, i);
  }
}

// The row of rule n and point i; the end of the table when there is none.
template <class Point, std::size_t Rows>
Point const* row_of(Point const (&table)[Rows], int n, int i) {
  return std::find_if(std::begin(table), std::end(table), [n, i](Point const& p) { return p.n == n && p.i == i; });
}

TEST(GaussOutOfRange, LineWeightsCascadeIntoTheLargerRules) {
  for_rules_and_points([](int n, int i) {
    EXPECT_TRUE(equal_bits(GaussWgt(n, i), cascading_weight(n, i))) << "n " << n << ", i " << i;
  });
}

TEST(GaussOutOfRange, LinePositionsAreZeroAndDoNotCascade) {
  for_rules_and_points([](int n, int i) {
    const auto* row = row_of(line_points, n, i);
    const double expected = row == std::end(line_points) ? 0.0 : row->position;
    EXPECT_TRUE(equal_bits(GaussPos(n, i), expected)) << "n " << n << ", i " << i;
  });
}

TEST(GaussOutOfRange, TrianglePositionsAndWeightsAreZeroAndDoNotCascade) {
  for_rules_and_points([](int n, int i) {
    const auto* row = row_of(triangle_points, n, i);
    const auto expected = row == std::end(triangle_points) ? TrianglePoint{n, i, 0.0, 0.0, 0.0} : *row;
    const Vec2<double> position = Gauss3Pos(n, i);
    EXPECT_TRUE(equal_bits(position.x, expected.r)) << "n " << n << ", i " << i;
    EXPECT_TRUE(equal_bits(position.y, expected.s)) << "n " << n << ", i " << i;
    EXPECT_TRUE(equal_bits(Gauss3Wgt(n, i), expected.weight)) << "n " << n << ", i " << i;
  });
}

TEST(GaussEdgeCases, PointsRunFromThePositiveEndToTheNegativeOne) {
  EXPECT_EQ(GaussPos(2, 1), 0.577350269189626);
  EXPECT_EQ(GaussPos(2, 2), -0.577350269189626);
  for (int n = 2; n <= 4; ++n) {
    for (int i = 2; i <= n; ++i) EXPECT_LT(GaussPos(n, i), GaussPos(n, i - 1)) << "n " << n << ", i " << i;
  }
}

TEST(GaussEdgeCases, OnePointRuleIsAtZeroWhateverThePointAndWeighsOnlyItsOwn) {
  EXPECT_TRUE(equal_bits(GaussPos(1, 7), 0.0));
  EXPECT_TRUE(equal_bits(GaussWgt(1, 2), 0.0));
}

TEST(GaussEdgeCases, WeightsCascadeWherePositionsAreZero) {
  EXPECT_EQ(GaussWgt(2, 3), 0.555555555555555);
  EXPECT_EQ(GaussWgt(2, 4), 0.347854845137454);
  EXPECT_EQ(GaussWgt(3, 4), 0.347854845137454);
  EXPECT_TRUE(equal_bits(GaussPos(2, 3), 0.0));
  EXPECT_TRUE(equal_bits(GaussPos(3, 4), 0.0));
}

TEST(GaussEdgeCases, RulesAndPointsThatDoNotExistGiveZeros) {
  EXPECT_TRUE(equal_bits(GaussPos(5, 1), 0.0));
  EXPECT_TRUE(equal_bits(GaussWgt(0, 1), 0.0));
  EXPECT_EQ(Gauss3Pos(4, 1), (Vec2<double>{0.0, 0.0}));
  EXPECT_TRUE(equal_bits(Gauss3Wgt(7, 8), 0.0));
}

// Each literal is within half an ulp of its decimal, each partial sum rounds once more, and so does the expected value.
// For the line: three literals in [0.5, 1) with 2^-54 each, one partial sum and the result in [1, 2) and the expected
// value with 2^-53 each, together 9 * 2^-54. For the triangle: seven literals in [0.125, 0.25) with 2^-56 each, six
// partial sums and the expected value in [0, 1) with at most 2^-54 each, together 8.75 * 2^-54.
constexpr double kSumBound = 2.25 * kEpsilon;

TEST(GaussEdgeCases, ThreePointLineWeightsAddUpToAlmostTwo) {
  const double sum = GaussWgt(3, 1) + GaussWgt(3, 2) + GaussWgt(3, 3);
  EXPECT_NEAR(sum, 1.999999999999998, kSumBound);
  EXPECT_LT(sum, 2.0);
}

TEST(GaussEdgeCases, SevenPointTriangleWeightsAddUpToAlmostOne) {
  double sum = 0;
  for (int i = 1; i <= 7; ++i) sum += Gauss3Wgt(7, i);
  EXPECT_NEAR(sum, 0.9999999999999, kSumBound);
  EXPECT_LT(sum, 1.0);
}

double power(double base, int exponent) {
  double result = 1;
  for (int i = 0; i < exponent; ++i) result *= base;
  return result;
}

// What an n-point rule may miss an integral of degree k by. Positions are within the unit interval and the weights add
// up to at most 2, so a unit `digit` in the last decimal place of every constant moves the sum by no more than n digits
// (weights) plus 2 k digits (positions); the arithmetic rounds k + 1 factors and n terms of a sum that is at most 2.
double quadrature_bound(int n, int degree, double digit) {
  return (n + 2 * degree) * digit + (n + degree + 1) * kEpsilon;
}

TEST(GaussExactness, LineRulesIntegrateDegreeTwoNMinusOne) {
  for (int n = 1; n <= 4; ++n) {
    for (int degree = 0; degree <= 2 * n - 1; ++degree) {
      double sum = 0;
      for (int i = 1; i <= n; ++i) sum += GaussWgt(n, i) * power(GaussPos(n, i), degree);
      const double exact = degree % 2 == 0 ? 2.0 / (degree + 1) : 0.0;
      EXPECT_NEAR(sum, exact, quadrature_bound(n, degree, 1e-15)) << "n " << n << ", degree " << degree;
    }
  }
}

// The error of Gauss-Legendre quadrature for x^2n is 2^(2n+1) (n!)^4 / ((2n+1) ((2n)!)^2).
TEST(GaussExactness, LineRulesMissDegreeTwoNByTheKnownAmount) {
  constexpr double errors[] = {2.0 / 3, 8.0 / 45, 8.0 / 175, 128.0 / 11025};
  for (int n = 1; n <= 4; ++n) {
    double sum = 0;
    for (int i = 1; i <= n; ++i) sum += GaussWgt(n, i) * power(GaussPos(n, i), 2 * n);
    EXPECT_NEAR(2.0 / (2 * n + 1) - sum, errors[n - 1], quadrature_bound(n, 2 * n, 1e-15)) << "n " << n;
  }
}

// Twice the integral of r^a s^b over the triangle, since its area is one half and the weights add up to 1.
double triangle_moment(int a, int b) {
  return 2 * std::tgamma(a + 1.0) * std::tgamma(b + 1.0) / std::tgamma(a + b + 3.0);
}

double triangle_sum(int n, int a, int b) {
  double sum = 0;
  for (int i = 1; i <= n; ++i) {
    const Vec2<double> position = Gauss3Pos(n, i);
    sum += Gauss3Wgt(n, i) * power(position.x, a) * power(position.y, b);
  }
  return sum;
}

struct TriangleRule {
  int n, degree;
};
constexpr TriangleRule triangle_rules[] = {{1, 1}, {3, 2}, {7, 5}};

TEST(GaussExactness, TriangleRulesIntegrateDegreeOneTwoAndFive) {
  for (auto const& rule : triangle_rules) {
    for (int a = 0; a <= rule.degree; ++a) {
      for (int b = 0; a + b <= rule.degree; ++b) {
        EXPECT_NEAR(triangle_sum(rule.n, a, b), triangle_moment(a, b), quadrature_bound(rule.n, a + b, 1e-13))
            << "n " << rule.n << ", r^" << a << " s^" << b;
      }
    }
  }
}

TEST(GaussExactness, TriangleRulesMissTheNextDegree) {
  for (auto const& rule : triangle_rules) {
    EXPECT_GT(std::abs(triangle_sum(rule.n, rule.degree + 1, 0) - triangle_moment(rule.degree + 1, 0)), 1e-6)
        << "n " << rule.n;
  }
}

}  // namespace

#include <talvo/geometry/plane.h>

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>

#include "geometry/coordinates.h"
#include "geometry/exact.h"
#include "support/bits.h"
#include "support/elements.h"
#include "support/random.h"

namespace {

using Talvo::DistFromPlane;
using Talvo::IntersectPlane;
using Talvo::ParallelToPlane;
using talvo::test::Coordinates;
using talvo::test::dot;
using talvo::test::equal_bits;
using talvo::test::equal_points;
using talvo::test::error_of;
using talvo::test::Exact;
using talvo::test::exact;
using talvo::test::integer_point3;
using talvo::test::kRoundoff;
using talvo::test::print;
using talvo::test::Random;

using Point = Vec3<double>;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kShortestNormal = 2.220446049250313e-16;
constexpr double kParallel = 1e-10;

// With a w of its own, to see an untouched point.
constexpr Point kUntouched{11, 22, 33, 44};

double below(double x) { return std::nextafter(x, 0.0); }

double literal_distance(Point const& point, Point const& n, Point const& plane_point) {
  const double length = std::sqrt(n.y * n.y + n.x * n.x + n.z * n.z);
  const Point u = length < kShortestNormal ? Point{0, 0, 0} : Point{n.x / length, n.y / length, n.z / length};
  return (plane_point.y - point.y) * u.y + (plane_point.x - point.x) * u.x + (plane_point.z - point.z) * u.z;
}

bool literal_intersect(Point const& plane_point, Point const& n, Point const& line_point, Point const& d, Point& hit) {
  const double den = n.y * d.y + n.x * d.x + n.z * d.z;
  if (std::fabs(den) < kParallel) return false;
  const double num = (line_point.y - plane_point.y) * n.y + (line_point.x - plane_point.x) * n.x +
                     (line_point.z - plane_point.z) * n.z;
  const double s = num / den;
  hit = {line_point.x - s * d.x, line_point.y - s * d.y, line_point.z - s * d.z, 0.0};
  return true;
}

bool literal_parallel(Point const& d, Point const& n) {
  return std::fabs(d.y * n.y + d.x * n.x + d.z * n.z) < kParallel;
}

TEST(DistFromPlane, CountsFromThePointTowardsThePlane) {
  EXPECT_EQ(DistFromPlane({0, 0, 0}, {0, 0, 2}, {5, 5, 3}), 3.0);
  EXPECT_EQ(DistFromPlane({0, 0, 0}, {0, 0, 0}, {5, 5, 3}), 0.0);
}

TEST(DistFromPlane, IsNegativeWhenTheNormalPointsAwayFromThePlane) {
  EXPECT_EQ(DistFromPlane({0, 0, 0}, {0, 0, -2}, {5, 5, 3}), -3.0);
  EXPECT_EQ(DistFromPlane({0, 0, 7}, {0, 0, 2}, {5, 5, 3}), -4.0);
}

TEST(DistFromPlane, ANormalShorterThanTheRoundoffGivesZero) {
  for (const double sign : {1.0, -1.0}) {
    EXPECT_EQ(DistFromPlane({0, 0, 0}, {sign * kShortestNormal, 0, 0}, {3, 5, 7}), sign * 3.0);
    EXPECT_EQ(DistFromPlane({0, 0, 0}, {0, sign * kShortestNormal, 0}, {3, 5, 7}), sign * 5.0);
    EXPECT_EQ(DistFromPlane({0, 0, 0}, {0, 0, sign * kShortestNormal}, {3, 5, 7}), sign * 7.0);
    EXPECT_EQ(DistFromPlane({0, 0, 0}, {sign * below(kShortestNormal), 0, 0}, {3, 5, 7}), 0.0);
    EXPECT_EQ(DistFromPlane({0, 0, 0}, {0, sign * below(kShortestNormal), 0}, {3, 5, 7}), 0.0);
    EXPECT_EQ(DistFromPlane({0, 0, 0}, {0, 0, sign * below(kShortestNormal)}, {3, 5, 7}), 0.0);
  }
}

TEST(DistFromPlane, NanIsPassedOn) {
  EXPECT_TRUE(std::isnan(DistFromPlane({kNan, 0, 0}, {1, 1, 1}, {0, 0, 0})));
  EXPECT_TRUE(std::isnan(DistFromPlane({0, 0, 0}, {1, kNan, 1}, {0, 0, 0})));
  EXPECT_TRUE(std::isnan(DistFromPlane({0, 0, 0}, {1, 1, 1}, {0, 0, kNan})));
}

// The squares of the normal overflow to infinity, and a finite component over infinity is 0.
TEST(DistFromPlane, ANormalWhoseSquaresOverflowGivesZero) {
  EXPECT_EQ(DistFromPlane({0, 0, 0}, {1e200, 0, 0}, {3, 5, 7}), 0.0);
}

TEST(DistFromPlane, TheHomogeneousComponentsAreIgnored) {
  EXPECT_EQ(DistFromPlane({0, 0, 0, kNan}, {0, 0, 2, kNan}, {5, 5, 3, kNan}), 3.0);
}

// Normals of integer length, so that the distance is a fraction. The quotient for the unit normal, the product and the
// two sums: four roundings on each of the three terms.
TEST(DistFromPlane, IsWithinFourRoundingsOfTheExactDistance) {
  struct IntegerNormal {
    Point normal;
    double length;
  };
  constexpr std::array<IntegerNormal, 7> kNormals{{
      {{1, 2, 2}, 3},
      {{2, -3, 6}, 7},
      {{-1, 4, 8}, 9},
      {{4, 4, -7}, 9},
      {{2, 6, 9}, 11},
      {{-6, -6, 7}, 11},
      {{3, 4, 12}, 13},
  }};
  Random random(11);
  for (int i = 0; i < 5000; ++i) {
    auto const& [normal, length] = kNormals[random.below(kNormals.size())];
    const Point p = integer_point3(random, 1000);
    const Point q = integer_point3(random, 1000);
    const Point d = q - p;
    const Exact expected = Exact(d.x * normal.x + d.y * normal.y + d.z * normal.z) / Exact(length);
    const double terms = (std::fabs(d.x * normal.x) + std::fabs(d.y * normal.y) + std::fabs(d.z * normal.z)) / length;
    ASSERT_LE(error_of(DistFromPlane(p, normal, q), expected), 4.001 * kRoundoff * terms) << print({p, normal, q});
  }
}

TEST(DistFromPlane, FollowsItsFormulaBitForBit) {
  Random random(12);
  for (int i = 0; i < 300'000; ++i) {
    Coordinates coordinate(random);
    const Point p = coordinate.point3();
    const Point q = coordinate.point3();
    const Point n = random.below(2) == 0 ? coordinate.point3() : Coordinates(random).point3();
    ASSERT_TRUE(equal_bits(DistFromPlane(p, n, q), literal_distance(p, n, q)))
        << "case " << i << ' ' << print({p, n, q});
  }
}

TEST(IntersectPlane, MeetsThePlaneZ0) {
  Point hit = kUntouched;
  EXPECT_TRUE(IntersectPlane({0, 0, 0}, {0, 0, 1}, {1, 2, 5}, {0, 0, 1}, hit));
  EXPECT_TRUE(equal_points(hit, {1, 2, 0, 0}));
  EXPECT_FALSE(IntersectPlane({0, 0, 0}, {0, 0, 1}, {1, 2, 5}, {1, 0, 0}, hit));
}

// From (1, 1, 1) along (1, 2, 3) to x + y + z = 9: 3 + 6 s = 9, s = 1.
TEST(IntersectPlane, MeetsAnObliquePlane) {
  Point hit = kUntouched;
  EXPECT_TRUE(IntersectPlane({9, 0, 0}, {1, 1, 1}, {1, 1, 1}, {1, 2, 3}, hit));
  EXPECT_TRUE(equal_points(hit, {2, 3, 4, 0}));
}

TEST(IntersectPlane, ParallelIsBelow1em10OfTheProductOfTheVectorsAsTheyAre) {
  struct Case {
    Point normal, direction;
    bool meets;
  };
  const double b = below(kParallel);
  const std::array<Case, 9> cases{{
      {{0, 0, 1}, {0, 0, kParallel}, true},
      {{0, 0, 1}, {0, 0, -kParallel}, true},
      {{0, 0, 1}, {0, 0, b}, false},
      {{0, 0, 1}, {0, 0, -b}, false},
      {{b, 0, 0}, {1, 0, 0}, false},
      {{0, kParallel, 0}, {0, 1, 0}, true},
      {{0, b, 0}, {0, 1, 0}, false},
      {{0, 0, 1e-6}, {0, 0, 1e-6}, false},  // perpendicular, but short
      {{0, 0, 1e10}, {1, 0, 1e-15}, true},  // nearly parallel, but long
  }};
  for (auto const& [normal, direction, meets] : cases) {
    Point hit = kUntouched;
    EXPECT_EQ(IntersectPlane({0, 0, 0}, normal, {0, 0, 0}, direction, hit), meets) << print({normal, direction});
    EXPECT_EQ(ParallelToPlane(direction, normal), !meets) << print({normal, direction});
  }
}

TEST(IntersectPlane, LeavesThePointUntouchedWhenThereIsNone) {
  Point hit = kUntouched;
  EXPECT_FALSE(IntersectPlane({0, 0, 0}, {0, 0, 1}, {1, 2, 5}, {1, 0, 0}, hit));
  EXPECT_TRUE(equal_points(hit, kUntouched));
  EXPECT_FALSE(IntersectPlane({0, 0, 0}, {0, 0, 0}, {1, 2, 5}, {1, 2, 3}, hit));
  EXPECT_TRUE(equal_points(hit, kUntouched));
}

TEST(IntersectPlane, NanIsNotParallel) {
  Point hit = kUntouched;
  EXPECT_TRUE(IntersectPlane({0, 0, 0}, {0, 0, kNan}, {1, 2, 5}, {0, 0, 1}, hit));
  EXPECT_TRUE(std::isnan(hit.x) && std::isnan(hit.y) && std::isnan(hit.z));
  EXPECT_EQ(hit.w, 0.0);
  EXPECT_TRUE(IntersectPlane({0, 0, 0}, {0, 0, kInfinity}, {1, 2, 5}, {0, 1, 0}, hit));
  EXPECT_FALSE(ParallelToPlane({0, 1, 0}, {0, 0, kInfinity}));
}

TEST(IntersectPlane, TheHomogeneousComponentsAreIgnoredAndTheResultsIs0) {
  Point hit = kUntouched;
  EXPECT_TRUE(IntersectPlane({0, 0, 0, 5}, {0, 0, 1, kNan}, {1, 2, 5, 7}, {0, 0, 1, kNan}, hit));
  EXPECT_TRUE(equal_points(hit, {1, 2, 0, 0}));
}

TEST(IntersectPlane, ThePointMayBeAnyOfTheArguments) {
  Random random(13);
  for (int i = 0; i < 1000; ++i) {
    std::array<Point, 4> p{integer_point3(random, 5), integer_point3(random, 5), integer_point3(random, 5),
                           integer_point3(random, 5)};
    Point expected = kUntouched;
    const bool meets = IntersectPlane(p[0], p[1], p[2], p[3], expected);
    for (std::size_t k = 0; k < p.size(); ++k) {
      std::array<Point, 4> q = p;
      ASSERT_EQ(IntersectPlane(q[0], q[1], q[2], q[3], q[k]), meets) << "case " << i << ", argument " << k;
      ASSERT_TRUE(equal_points(q[k], meets ? expected : p[k])) << "case " << i << ", argument " << k;
    }
  }
}

// On integers numerator and denominator are exact. s is rounded once, its product with the direction once more, and
// then the difference.
TEST(IntersectPlane, IsWithinThreeRoundingsOfTheExactPoint) {
  Random random(14);
  int met = 0;
  for (int i = 0; i < 5000; ++i) {
    const Point q = integer_point3(random, 1000);
    const Point n = integer_point3(random, 30);
    const Point p = integer_point3(random, 1000);
    const Point d = integer_point3(random, 30);
    Point hit = kUntouched;
    const Exact den = dot(exact(n), exact(d));
    ASSERT_EQ(IntersectPlane(q, n, p, d, hit), den != 0) << print({q, n, p, d});
    if (den == 0) continue;
    ++met;
    const Exact s = dot(exact(p - q), exact(n)) / den;
    const auto expect_near = [&](double actual, double from, double along) {
      const Exact step = s * Exact(along);
      const Exact expected = Exact(from) - step;
      const double bound =
          2.001 * std::fabs(step.convert_to<double>()) + 1.001 * std::fabs(expected.convert_to<double>());
      EXPECT_LE(error_of(actual, expected), kRoundoff * bound) << "case " << i << ' ' << print({q, n, p, d});
    };
    expect_near(hit.x, p.x, d.x);
    expect_near(hit.y, p.y, d.y);
    expect_near(hit.z, p.z, d.z);
  }
  EXPECT_GT(met, 4000);
}

TEST(IntersectPlane, FollowsItsFormulaBitForBit) {
  Random random(15);
  int met = 0;
  for (int i = 0; i < 300'000; ++i) {
    Coordinates coordinate(random);
    const Point q = coordinate.point3();
    const Point p = coordinate.point3();
    const Point n = random.below(2) == 0 ? coordinate.point3() : Coordinates(random).point3();
    const Point d = random.below(2) == 0 ? coordinate.point3() : Coordinates(random).point3();
    Point hit = kUntouched;
    Point expected = kUntouched;
    const bool meets = literal_intersect(q, n, p, d, expected);
    met += meets ? 1 : 0;
    ASSERT_EQ(IntersectPlane(q, n, p, d, hit), meets) << "case " << i << ' ' << print({q, n, p, d});
    ASSERT_TRUE(equal_points(hit, expected)) << "case " << i << ' ' << print({q, n, p, d});
    ASSERT_EQ(ParallelToPlane(d, n), literal_parallel(d, n)) << "case " << i << ' ' << print({d, n});
    ASSERT_EQ(ParallelToPlane(d, n), !meets) << "case " << i << ' ' << print({d, n});
  }
  EXPECT_GT(met, 100'000);
  EXPECT_LT(met, 290'000);
}

TEST(ParallelToPlane, IsTrueForADirectionInThePlane) {
  EXPECT_TRUE(ParallelToPlane({1, -1, 0}, {1, 1, 1}));
  EXPECT_TRUE(ParallelToPlane({0, 0, 0}, {1, 1, 1}));
  EXPECT_FALSE(ParallelToPlane({1, 1, 1}, {1, 1, 1}));
}

TEST(ParallelToPlane, IsFalseForNan) {
  EXPECT_FALSE(ParallelToPlane({kNan, 0, 0}, {0, 0, 1}));
  EXPECT_FALSE(ParallelToPlane({0, 0, 0}, {0, kNan, 1}));
}

// Near the border the order of the sum decides: three products of about 1 that almost cancel.
TEST(ParallelToPlane, FollowsItsFormulaAtTheBorder) {
  Random random(16);
  int parallel = 0;
  for (int i = 0; i < 200'000; ++i) {
    const Point n{random.uniform(-1e6, 1e6), random.uniform(-1e6, 1e6), random.uniform(-1e6, 1e6)};
    Point d{random.uniform(-1.0, 1.0), random.uniform(-1.0, 1.0), 0.0};
    d.z = random.near(-(n.x * d.x + n.y * d.y) / n.z, 3);
    parallel += literal_parallel(d, n) ? 1 : 0;
    ASSERT_EQ(ParallelToPlane(d, n), literal_parallel(d, n)) << "case " << i << ' ' << print({d, n});
  }
  EXPECT_GT(parallel, 1000);
  EXPECT_LT(parallel, 199'000);
}

}  // namespace

#include <talvo/geometry/sphere.h>

#include <gtest/gtest.h>
#include <talvo/geometry/measure.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <vector>

#include "geometry/coordinates.h"
#include "geometry/exact.h"
#include "support/elements.h"
#include "support/random.h"

namespace {

using Talvo::SphereCentre;
using Talvo::TetrahedronVolume;
using talvo::test::Coordinates;
using talvo::test::cross;
using talvo::test::dot;
using talvo::test::equal_points;
using talvo::test::error_of;
using talvo::test::Exact;
using talvo::test::exact;
using talvo::test::integer_point3;
using talvo::test::kRoundoff;
using talvo::test::print;
using talvo::test::Random;

using Point = Vec3<double>;
using Points = std::array<Point, 4>;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kCoincident = 1e-6;
constexpr Point kUntouched{11, 22, 33, 44};
constexpr Point kNowhere{kInfinity, kInfinity, kInfinity, 0};

std::string show(Points const& p) { return print({p[0], p[1], p[2], p[3]}); }

double length(Point const& p) { return std::sqrt(p.x * p.x + p.y * p.y + p.z * p.z); }

bool literal_coincident(Point const& p, Point const& q) {
  if (p.x == 0.0 && p.y == 0.0 && p.z == 0.0 && q.x == 0.0 && q.y == 0.0 && q.z == 0.0) return true;
  const double m = (length(p) + length(q)) / 2;
  return std::fabs(p.x - q.x) / m < kCoincident && std::fabs(p.y - q.y) / m < kCoincident &&
         std::fabs(p.z - q.z) / m < kCoincident;
}

/// The points that coincide with no other.
std::vector<Point> literal_list(Points const& p) {
  std::vector<Point> listed;
  for (std::size_t i = 0; i < p.size(); ++i) {
    bool alone = true;
    for (std::size_t j = 0; j < p.size(); ++j) alone = alone && (i == j || !literal_coincident(p[i], p[j]));
    if (alone) listed.push_back(p[i]);
  }
  return listed;
}

Point literal_sphere_of_four(Points const& p) {
  const auto s = [](Point const& q) { return -(q.y * q.y + q.x * q.x + q.z * q.z); };
  std::array<Point, 4> dx = p, dy = p, dz = p;
  for (std::size_t i = 0; i < 4; ++i) dx[i].x = dy[i].y = dz[i].z = s(p[i]);
  const auto volume = [](Points const& q) {
    return TetrahedronVolume(q[0].x, q[0].y, q[0].z, q[1].x, q[1].y, q[1].z, q[2].x, q[2].y, q[2].z, q[3].x, q[3].y,
                             q[3].z);
  };
  const double f = -0.5 / volume(p);
  return {f * volume(dx), f * volume(dy), f * volume(dz), 0.0};
}

Point literal_centre(Points const& p) {
  const std::vector<Point> listed = literal_list(p);
  if (listed.size() < 2) return kNowhere;
  if (listed.size() == 2) return (listed[0] + listed[1]) * 0.5;
  return listed.size() == 4 ? literal_sphere_of_four(p) : kUntouched;
}

/// The centre; the result says nothing, and is always true.
Point centre_of(Points const& p) {
  Point centre = kUntouched;
  EXPECT_TRUE(SphereCentre(p[0], p[1], p[2], p[3], centre)) << show(p);
  return centre;
}

bool is_midpoint_of_last_two(Points const& p) {
  return static_cast<bool>(equal_points(centre_of(p), (p[2] + p[3]) * 0.5));
}

/// The centre of the sphere through four points that are not in a plane.
Vec3<Exact> exact_centre(Points const& p) {
  // The differences of |c - pi|² = |c - p0|², three linear equations, by Cramer's rule.
  const Vec3<Exact> a = exact(p[1]) - exact(p[0]), b = exact(p[2]) - exact(p[0]), c = exact(p[3]) - exact(p[0]);
  const Exact det = 2 * dot(a, cross(b, c));
  return exact(p[0]) + (cross(b, c) * dot(a, a) + cross(c, a) * dot(b, b) + cross(a, b) * dot(c, c)) * Exact(1 / det);
}

Exact distance2(Vec3<Exact> const& centre, Point const& p) {
  const Vec3<Exact> r = exact(p) - centre;
  return dot(r, r);
}

TEST(SphereCentre, OfAUnitSphereIsTheOriginWithNegativeZeros) {
  const Point centre = centre_of({{{1, 0, 0}, {-1, 0, 0}, {0, 1, 0}, {0, 0, 1}}});
  EXPECT_TRUE(equal_points(centre, {-0.0, -0.0, -0.0, 0.0}));
  EXPECT_EQ(centre, (Point{0, 0, 0}));
}

TEST(SphereCentre, TwoEqualPointsBothGo) {
  EXPECT_TRUE(equal_points(centre_of({{{1, 2, 3}, {1, 2, 3}, {5, 0, 0}, {0, 7, 4}}}), {2.5, 3.5, 2, 0}));
}

TEST(SphereCentre, ThreeEqualPointsAllGoAndOneIsNotEnough) {
  EXPECT_TRUE(equal_points(centre_of({{{1, 2, 3}, {1, 2, 3}, {1, 2, 3}, {0, 7, 4}}}), kNowhere));
}

TEST(SphereCentre, EveryPairOfEqualPointsLeavesTheOtherTwo) {
  for (std::size_t i = 0; i < 4; ++i) {
    for (std::size_t j = i + 1; j < 4; ++j) {
      Points p{{{1, 2, 3}, {-4, 0, 1}, {5, 5, -5}, {0, 7, 4}}};
      p[j] = p[i];
      std::vector<Point> rest;
      for (std::size_t k = 0; k < 4; ++k) {
        if (k != i && k != j) rest.push_back(p[k]);
      }
      EXPECT_TRUE(equal_points(centre_of(p), (rest[0] + rest[1]) * 0.5)) << i << " = " << j;
    }
  }
}

TEST(SphereCentre, EveryThreeEqualPointsLeaveOne) {
  for (std::size_t other = 0; other < 4; ++other) {
    Points p;
    p.fill({1, 2, 3});
    p[other] = {0, 7, 4};
    EXPECT_TRUE(equal_points(centre_of(p), kNowhere)) << other;
  }
}

TEST(SphereCentre, TwoPairsLeaveNone) {
  const Point p{1, 2, 3}, q{0, 7, 4};
  EXPECT_TRUE(equal_points(centre_of({p, p, q, q}), kNowhere));
  EXPECT_TRUE(equal_points(centre_of({p, q, p, q}), kNowhere));
  EXPECT_TRUE(equal_points(centre_of({p, q, q, p}), kNowhere));
  EXPECT_TRUE(equal_points(centre_of({p, p, p, p}), kNowhere));
}

// p0 - p1 and p1 - p2 are 0.75e-6 of their distance from the origin, p0 - p2 twice that. p1 coincides with both.
TEST(SphereCentre, ThreePointsGoWhenTheMiddleOneCoincidesWithTheOthers) {
  const Points p{{{1, 0, 0}, {1 + 0.75e-6, 0, 0}, {1 + 1.5e-6, 0, 0}, {0, 7, 4}}};
  ASSERT_FALSE(literal_coincident(p[0], p[2]));
  EXPECT_TRUE(equal_points(centre_of(p), kNowhere));
}

TEST(SphereCentre, AllZerosCoincideWhateverTheirSigns) {
  EXPECT_TRUE(is_midpoint_of_last_two({{{0, 0, 0}, {0, 0, 0}, {2, 0, 0}, {0, 4, 6}}}));
  EXPECT_TRUE(is_midpoint_of_last_two({{{0, -0.0, 0}, {-0.0, 0, -0.0}, {2, 0, 0}, {0, 4, 6}}}));
}

// The smallest number is 0 relative to nothing: |difference| / mean distance is 2.
TEST(SphereCentre, TheOriginCoincidesWithTheOriginOnly) {
  for (const double x : {1e-100, 1e-300, std::numeric_limits<double>::denorm_min()}) {
    const Points p{{{0, 0, 0}, {x, 0, 0}, {2, 0, 0}, {0, 4, 6}}};
    EXPECT_FALSE(is_midpoint_of_last_two(p)) << x;
    EXPECT_TRUE(equal_points(centre_of(p), literal_sphere_of_four(p))) << x;
  }
}

// At one million from the origin the bound is about 1. (1e6 + 1) - 1e6 = 1 over 1000000.5 is just below 1e-6;
// 1.000001 over 1000000.5000005 is just above.
TEST(SphereCentre, FarFromTheOriginCoincidentPointsMayBeFarApart) {
  for (const double sign : {1.0, -1.0}) {
    const Point p{sign * 1e6, 0, 0}, q{0, sign * 1e6, 0}, r{0, 0, sign * 1e6};
    const Point a{1, 2, 3}, b{5, 0, 4};
    EXPECT_TRUE(is_midpoint_of_last_two({p, {sign * 1000001, 0, 0}, a, b}));
    EXPECT_TRUE(is_midpoint_of_last_two({q, {0, sign * 1000001, 0}, a, b}));
    EXPECT_TRUE(is_midpoint_of_last_two({r, {0, 0, sign * 1000001}, a, b}));
    EXPECT_FALSE(is_midpoint_of_last_two({p, {sign * 1000001.000001, 0, 0}, a, b}));
    EXPECT_FALSE(is_midpoint_of_last_two({q, {0, sign * 1000001.000001, 0}, a, b}));
    EXPECT_FALSE(is_midpoint_of_last_two({r, {0, 0, sign * 1000001.000001}, a, b}));
  }
}

// Three coordinates each within the bound, though the points are farther apart than that.
TEST(SphereCentre, CoincidenceIsDecidedByCoordinate) {
  EXPECT_TRUE(is_midpoint_of_last_two({{{1e6, 1e6, 1e6}, {1e6 + 1.7, 1e6 - 1.7, 1e6 + 1.7}, {1, 2, 3}, {5, 0, 4}}}));
  EXPECT_FALSE(is_midpoint_of_last_two({{{1e6, 1e6, 1e6}, {1e6 + 1.7, 1e6 - 1.7, 1e6 + 1.8}, {1, 2, 3}, {5, 0, 4}}}));
}

// p = (0, 1, 0), q = (x, 1, 0): the squares of 1e-6 change the mean distance by 2.5e-13, so that the border lies there
// above 1e-6. Walks over it one number at a time: the quotient decides, strictly.
TEST(SphereCentre, TheBorderOfCoincidenceIsOneNumberWide) {
  const Point p{0, 1, 0}, a{1, 2, 3}, b{5, 0, 4};
  double low = 1e-6 * (1 + 1e-13);
  double high = 1e-6 * (1 + 4e-13);
  ASSERT_TRUE(literal_coincident(p, {low, 1, 0}));
  ASSERT_FALSE(literal_coincident(p, {high, 1, 0}));
  int coincident = 0;
  int apart = 0;
  for (double x = low; x < high; x = std::nextafter(x, 1.0)) {
    const bool expected = x / ((1.0 + std::sqrt(x * x + 1.0)) / 2) < 1e-6;
    (expected ? coincident : apart) += 1;
    ASSERT_EQ(is_midpoint_of_last_two({p, {x, 1, 0}, a, b}), expected) << x;
    ASSERT_EQ(is_midpoint_of_last_two({Point{x, 1, 0}, p, a, b}), expected) << x;
    ASSERT_EQ(is_midpoint_of_last_two({p, {-x, 1, 0}, a, b}), expected) << x;
  }
  EXPECT_GT(coincident, 500);
  EXPECT_GT(apart, 500);
}

// A quotient of exactly 1e-6 is not below it: p = (-x, y, 0), q = (x, y, 0) have the same distance m from the origin,
// which is the mean; y is chosen so that the difference 2x over m rounds to the double 1e-6.
TEST(SphereCentre, AQuotientOfExactly1em6DoesNotCoincide) {
  int met = 0;
  Random random(51);
  for (int i = 0; i < 20'000; ++i) {
    const double y = random.uniform(0.5, 2.0);
    const double x = random.near(0.5e-6 * std::hypot(0.5e-6 * y, y), 2);
    const Points p{{{-x, y, 0}, {x, y, 0}, {1, 2, 3}, {5, 0, 4}}};
    const double m = std::sqrt(x * x + y * y);
    if ((2 * x) / m != kCoincident) continue;
    ++met;
    ASSERT_FALSE(is_midpoint_of_last_two(p)) << show(p);
  }
  EXPECT_GT(met, 1000);
}

// The squares underflow, the mean distance becomes 0 and the quotient 0 / 0: equal points that do not coincide.
TEST(SphereCentre, EqualPointsWhoseSquaresUnderflowDoNotCoincide) {
  const Points p{{{1e-200, 0, 0}, {1e-200, 0, 0}, {2, 0, 0}, {0, 4, 6}}};
  EXPECT_FALSE(is_midpoint_of_last_two(p));
  EXPECT_TRUE(equal_points(centre_of(p), literal_sphere_of_four(p)));
}

// The squares overflow, and every finite difference over infinity is 0: such a point coincides with all others.
TEST(SphereCentre, APointWhoseSquaresOverflowCoincidesWithEverything) {
  EXPECT_TRUE(equal_points(centre_of({{{1e200, 0, 0}, {-1, 0, 0}, {2, 0, 0}, {0, 4, 6}}}), kNowhere));
}

// V is 0: the quotients are infinite, or NaN where 0 stands above as well.
TEST(SphereCentre, DistinctPointsInAPlaneGiveNoFiniteCentre) {
  const Point on_a_circle = centre_of({{{1, 0, 0}, {-1, 0, 0}, {0, 1, 0}, {0, -1, 0}}});
  EXPECT_FALSE(std::isfinite(on_a_circle.x) || std::isfinite(on_a_circle.y) || std::isfinite(on_a_circle.z));
  EXPECT_EQ(on_a_circle.w, 0.0);
  const Point anywhere = centre_of({{{1, 0, 0}, {-1, 0, 0}, {0, 1, 0}, {3, 5, 0}}});
  EXPECT_TRUE(std::isinf(anywhere.z));
  EXPECT_FALSE(std::isfinite(anywhere.x) || std::isfinite(anywhere.y));
}

TEST(SphereCentre, NanCoincidesWithNothing) {
  const Point q{kNan, 1, 1};
  const Point centre = centre_of({{q, q, {2, 0, 0}, {0, 4, 6}}});
  EXPECT_TRUE(std::isnan(centre.x) && std::isnan(centre.y) && std::isnan(centre.z));
  EXPECT_EQ(centre.w, 0.0);
}

TEST(SphereCentre, TheHomogeneousComponentsAreIgnoredAndTheResultsIs0) {
  EXPECT_TRUE(equal_points(centre_of({{{1, 0, 0, 5}, {-1, 0, 0, kNan}, {0, 1, 0, 7}, {0, 0, 1, kInfinity}}}),
                           {-0.0, -0.0, -0.0, 0.0}));
  EXPECT_TRUE(equal_points(centre_of({{{0, 0, 0, 5}, {0, 0, 0, 6}, {2, 4, 6, 7}, {4, 8, 2, 8}}}), {3, 6, 4, 0}));
}

TEST(SphereCentre, TheCentreMayBeAnyOfThePoints) {
  Random random(52);
  for (int i = 0; i < 2000; ++i) {
    const int limit = i % 2 == 0 ? 1 : 5;
    const Points p{integer_point3(random, limit), integer_point3(random, limit), integer_point3(random, limit),
                   integer_point3(random, limit)};
    const Point expected = centre_of(p);
    for (std::size_t k = 0; k < 4; ++k) {
      Points q = p;
      ASSERT_TRUE(SphereCentre(q[0], q[1], q[2], q[3], q[k]));
      ASSERT_TRUE(equal_points(q[k], expected)) << show(p) << ", argument " << k;
    }
  }
}

// On integers the determinants are exact. Their division by 6, the quotient -0.5 / V and the last product are rounded:
// four roundings, relative to each coordinate itself.
TEST(SphereCentre, IsEquidistantOnIntegersButForFourRoundings) {
  Random random(53);
  int found = 0;
  for (int i = 0; i < 5000; ++i) {
    const Points p{integer_point3(random, 300), integer_point3(random, 300), integer_point3(random, 300),
                   integer_point3(random, 300)};
    if (dot(exact(p[1] - p[0]), cross(exact(p[2] - p[0]), exact(p[3] - p[0]))) == 0) continue;
    ++found;
    const Vec3<Exact> expected = exact_centre(p);
    // The fraction is indeed equidistant: what follows compares with a true centre.
    for (std::size_t k = 1; k < 4; ++k) ASSERT_EQ(distance2(expected, p[k]), distance2(expected, p[0]));
    const Point actual = centre_of(p);
    const auto bound = [](Exact const& value) { return 4.001 * kRoundoff * std::fabs(value.convert_to<double>()); };
    ASSERT_LE(error_of(actual.x, expected.x), bound(expected.x)) << show(p);
    ASSERT_LE(error_of(actual.y, expected.y), bound(expected.y)) << show(p);
    ASSERT_LE(error_of(actual.z, expected.z), bound(expected.z)) << show(p);
  }
  EXPECT_GT(found, 4900);
}

/// The 24 products of a volume's determinant without their signs, over 6. The last factor, a column of 1, is one of
/// four to be left out.
double volume_terms(Points const& p) {
  double sum = 0.0;
  for (std::size_t out = 0; out < 4; ++out) {
    std::array<Point, 3> r{};
    for (std::size_t k = 0, row = 0; k < 4; ++k) {
      if (k != out) r[row++] = {std::fabs(p[k].x), std::fabs(p[k].y), std::fabs(p[k].z)};
    }
    sum += r[0].x * (r[1].y * r[2].z + r[1].z * r[2].y) + r[0].y * (r[1].x * r[2].z + r[1].z * r[2].x) +
           r[0].z * (r[1].x * r[2].y + r[1].y * r[2].x);
  }
  return sum / 6.0;
}

// A volume: 24 products of three roundings each, at most 23 in the sum, one in the division; where squares of distances
// stand in a column, three more. So δV <= 27e·(terms of V), δD <= 30e·(terms of D), and the centre -0.5·D / V has three
// roundings of its own: |δc| <= (δD/2 + |c|·δV) / (|V| - δV) + 3e·|c|.
TEST(SphereCentre, IsEquidistantWithinTheRoundingOfItsTerms) {
  Random random(54);
  int found = 0;
  for (int i = 0; i < 3000; ++i) {
    const double far = random.below(2) == 0 ? 0.0 : 100.0;
    const double flat = random.below(2) == 0 ? 1.0 : 1e-2;
    Points p;
    for (Point& q : p) {
      q = {far + random.uniform(-2.0, 2.0), far + random.uniform(-2.0, 2.0), far + flat * random.uniform(-2.0, 2.0)};
    }
    if (literal_list(p).size() != 4) continue;
    const Vec3<Exact> expected = exact_centre(p);
    const Point actual = centre_of(p);
    const double v = std::fabs(TetrahedronVolume(p[0].x, p[0].y, p[0].z, p[1].x, p[1].y, p[1].z, p[2].x, p[2].y, p[2].z,
                                                 p[3].x, p[3].y, p[3].z));
    const double v_error = 27 * kRoundoff * volume_terms(p);
    if (!(v > 10 * v_error)) continue;
    ++found;
    const auto expect_near = [&](double component, Exact const& exact_component, double Point::*replaced) {
      Points squares = p;
      for (Point& q : squares) {
        const double square = q.x * q.x + q.y * q.y + q.z * q.z;
        q.*replaced = square;
      }
      const double d_error = 30 * kRoundoff * volume_terms(squares);
      const double c = std::fabs(exact_component.convert_to<double>());
      // v itself is off by v_error.
      const double bound = (0.5 * d_error + c * v_error) / (v - 2 * v_error) + 3 * kRoundoff * c;
      ASSERT_LE(error_of(component, exact_component), 1.001 * bound) << show(p);
    };
    expect_near(actual.x, expected.x, &Point::x);
    expect_near(actual.y, expected.y, &Point::y);
    expect_near(actual.z, expected.z, &Point::z);
  }
  EXPECT_GT(found, 2500);
}

TEST(SphereCentre, FollowsItsStepsBitForBit) {
  Random random(55);
  std::array<int, 5> listed{};
  for (int i = 0; i < 300'000; ++i) {
    Coordinates coordinate(random);
    Points p{coordinate.point3(), coordinate.point3(), coordinate.point3(), coordinate.point3()};
    for (std::size_t k = 1; k < 4; ++k) {
      if (random.below(6) == 0) p[k] = p[random.below(k)];
    }
    ++listed[literal_list(p).size()];
    ASSERT_TRUE(equal_points(centre_of(p), literal_centre(p))) << "case " << i << ' ' << show(p);
  }
  EXPECT_GT(std::min({listed[0], listed[1], listed[2], listed[4]}), 5000);
  EXPECT_EQ(listed[3], 0);
}

// Pairs whose quotients stand within a few units of the last place of 1e-6, in each coordinate, at distances of every
// size: what decides is the rounded quotient by the rounded mean of rounded roots.
TEST(SphereCentre, FollowsItsStepsAtTheBorderOfCoincidence) {
  Random random(56);
  int coincident = 0;
  constexpr int kCases = 300'000;
  for (int i = 0; i < kCases; ++i) {
    const double scale = std::ldexp(1.0, static_cast<int>(random.below(300)) - 150);
    const auto coordinate = [&] { return scale * random.uniform(-2.0, 2.0); };
    // Near 0 a coordinate is fine enough to come close to the border; else it steps over it.
    double Point::*const moved = std::array{&Point::x, &Point::y, &Point::z}[random.below(3)];
    Points p{{{coordinate(), coordinate(), coordinate(), 3},
              {0, 0, 0},
              {coordinate(), coordinate(), coordinate(), 3},
              {coordinate(), coordinate(), coordinate(), 3}}};
    if (random.below(4) != 0) p[0].*moved = scale * random.uniform(-1e-6, 1e-6);
    p[1] = p[0];
    const double sign = random.below(2) == 0 ? 1.0 : -1.0;
    // The mean distance depends on the difference itself; once more makes it exact to all digits.
    for (int once = 0; once < 2; ++once) {
      p[1].*moved = p[0].*moved + sign * kCoincident * ((length(p[0]) + length(p[1])) / 2);
    }
    p[1].*moved = random.near(p[1].*moved, 3);
    std::swap(p[random.below(4)], p[random.below(4)]);
    coincident += literal_list(p).size() < 4 ? 1 : 0;
    ASSERT_TRUE(equal_points(centre_of(p), literal_centre(p))) << "case " << i << ' ' << show(p);
  }
  EXPECT_GT(coincident, kCases / 10);
  EXPECT_LT(coincident, kCases * 9 / 10);
}

}  // namespace

#include <talvo/geometry/lines.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <tuple>
#include <utility>

#include "geometry/coordinates.h"
#include "geometry/exact.h"
#include "support/elements.h"
#include "support/random.h"

namespace {

using Talvo::ClosestPoints;
using Talvo::DistanceBetweenLines;
using talvo::test::Coordinates;
using talvo::test::equal_points;
using talvo::test::integer;
using talvo::test::integer_point3;
using talvo::test::kRoundoff;
using talvo::test::narrowed;
using talvo::test::print;
using talvo::test::Random;

using Point = Vec3<double>;
using PointPair = std::pair<Point, Point>;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kLargest = 1.7976931348623157e308;
constexpr double kParallel = 1e-10;
constexpr double kShortest = 2.220446049250313e-16;
constexpr Point kNoAnswer{kLargest, kLargest, kLargest, 0};

double below(double x) { return std::nextafter(x, 0.0); }

double dot(Point const& a, Point const& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
double length(Point const& a) { return std::sqrt(dot(a, a)); }
Point cross(Point const& a, Point const& b) {
  return {b.z * a.y - b.y * a.z, b.x * a.z - b.z * a.x, b.y * a.x - b.x * a.y, 0};
}
Point over(Point const& a, double divisor) { return {a.x / divisor, a.y / divisor, a.z / divisor, 0}; }
Point unit(Point const& a) { return length(a) < kShortest ? Point{0, 0, 0, 0} : over(a, length(a)); }
Point without_w(Point const& a) { return {a.x, a.y, a.z, 0}; }

bool are_parallel(Point const& p1, Point const& q1, Point const& p2, Point const& q2) {
  return length(cross(q1 - p1, q2 - p2)) < kParallel;
}

Point literal_distance(Point const& p1, Point const& q1, Point const& p2, Point const& q2) {
  const Point d1 = q1 - p1;
  const Point d2 = q2 - p2;
  const Point w = p2 - p1;
  if (are_parallel(p1, q1, p2, q2)) return {kNan, kNan, length(cross(unit(d1), w)), 0};
  const Point n = cross(d1, d2);
  return d1 * w.x - d2 * w.y + n * w.z;
}

Vec3<float> literal_distance(Vec3<float> const& p1, Vec3<float> const& q1, Vec3<float> const& p2,
                             Vec3<float> const& q2) {
  const auto widened = [](Vec3<float> const& p) { return Point{p.x, p.y, p.z, 0}; };
  const Point d = literal_distance(widened(p1), widened(q1), widened(p2), widened(q2));
  return {narrowed<float>(d.x), narrowed<float>(d.y), narrowed<float>(d.z), 0.0F};
}

/// For parallel lines, and for finite input.
PointPair literal_closest(Point const& p1, Point const& q1, Point const& p2, Point const& q2, bool segments) {
  if (!are_parallel(p1, q1, p2, q2)) return {kNoAnswer, kNoAnswer};
  const Point d1 = q1 - p1;
  const Point d2 = q2 - p2;
  const Point u1 = unit(d1);
  const Point u2 = unit(d2);
  const auto within = [](double parameter, Point const& d) { return 0.0 <= parameter && parameter <= length(d); };
  const double a = dot(u2, p1 - p2);
  if (within(a, d2)) return {without_w(p1), p2 + d2 * a};
  const double b = dot(u2, q1 - p2);
  if (within(b, d2)) return {without_w(q1), p2 + d2 * b};
  const double c = dot(u1, p2 - p1);
  if (within(c, d1)) return {p1 + d1 * c, without_w(p2)};
  const double e = dot(u1, q2 - p1);
  if (within(e, d1)) return {p1 + d1 * e, without_w(q2)};
  if (!segments) {
    const Point g = p2 - p1;
    const Point m = cross(u1, g);
    const double h = length(m);
    if (length(g) < kParallel || h == 0.0) return {without_w(p1), without_w(p1)};
    return {without_w(p1), p1 + cross(over(m, h), u1) * h};
  }
  PointPair best{without_w(p1), without_w(p2)};
  for (PointPair const& ends : {PointPair{q1, p2}, PointPair{p1, q2}, PointPair{q1, q2}}) {
    if (length(ends.first - ends.second) < length(best.first - best.second)) {
      best = {without_w(ends.first), without_w(ends.second)};
    }
  }
  return best;
}

// Braced lists alone cannot choose between double and float.
Point distance_of(Point const& p1, Point const& q1, Point const& p2, Point const& q2) {
  return DistanceBetweenLines(p1, q1, p2, q2);
}

::testing::AssertionResult equal_pairs(PointPair const& actual, PointPair const& expected) {
  if (equal_points(actual.first, expected.first) && equal_points(actual.second, expected.second)) {
    return ::testing::AssertionSuccess();
  }
  return ::testing::AssertionFailure() << print({actual.first, actual.second}) << " instead of "
                                       << print({expected.first, expected.second});
}

TEST(DistanceBetweenLines, OfParallelLinesIsTheThirdComponent) {
  EXPECT_TRUE(equal_points(distance_of({0, 0, 0}, {1, 0, 0}, {0, 3, 0}, {1, 3, 0}), {kNan, kNan, 3, 0}));
}

// Direction (0, 3, 4)/5, offset (7, 4, -3): perpendicular, of length sqrt(74). Any point and any sense on the second.
TEST(DistanceBetweenLines, OfParallelLinesDoesNotDependOnTheirPointsAndSenses) {
  const Point p1{1, 2, 3};
  const Point q1 = p1 + Point{0, 3, 4};
  const Point p2 = p1 + Point{7, 4, -3};
  for (const double along : {-5.0, 0.0, 10.0}) {
    for (const double sense : {1.0, -2.0}) {
      const Point on2 = p2 + Point{0, 0.6 * along, 0.8 * along};
      const Point distance = distance_of(p1, q1, on2, on2 + Point{0, 3 * sense, 4 * sense});
      EXPECT_TRUE(std::isnan(distance.x) && std::isnan(distance.y));
      // The unit vector, the product and the length: no more than ten roundings of terms below 16.
      EXPECT_NEAR(distance.z, std::sqrt(74.0), 160 * kRoundoff);
    }
  }
}

TEST(DistanceBetweenLines, OfOneLineIsZero) {
  EXPECT_TRUE(equal_points(distance_of({0, 0, 0}, {1, 2, 2}, {3, 6, 6}, {-1, -2, -2}), {kNan, kNan, 0, 0}));
}

TEST(DistanceBetweenLines, ALineOfLengthZeroHasTheDistanceZero) {
  EXPECT_TRUE(equal_points(distance_of({1, 1, 1}, {1, 1, 1}, {5, 6, 7}, {9, 9, 9}), {kNan, kNan, 0, 0}));
}

// d1 = (1,0,0), d2 = (0,1,1), n = (0,-1,1), w = (2,3,5): w.x·d1 - w.y·d2 + w.z·n = (2, -3-5, -3+5).
TEST(DistanceBetweenLines, OfSkewLinesIsACombinationOfTheirDirectionsThatIsKeptOnPurpose) {
  EXPECT_TRUE(equal_points(distance_of({0, 0, 0}, {1, 0, 0}, {2, 3, 5}, {2, 4, 6}), {2, -8, 2, 0}));
}

// Lines that meet, in (1, 0, 0): w = (1, 0, 0), and the result is d1.
TEST(DistanceBetweenLines, OfLinesThatMeetIsNotZeroAndThatIsKeptOnPurpose) {
  EXPECT_TRUE(equal_points(distance_of({0, 0, 0}, {1, 0, 0}, {1, 0, 0}, {1, 1, 0}), {1, 0, 0, 0}));
}

// d1 = (1,0,0), d2 = (1,s,0): the product is (0,0,s).
TEST(DistanceBetweenLines, ParallelIsBelow1em10OfTheProduct) {
  for (const double sign : {1.0, -1.0}) {
    const Point at = distance_of({0, 0, 0}, {1, 0, 0}, {0, 0, 4}, {1, sign * kParallel, 4});
    EXPECT_TRUE(equal_points(at, {0, 0, 4 * sign * kParallel, 0}));
    const Point inside = distance_of({0, 0, 0}, {1, 0, 0}, {0, 0, 4}, {1, sign * below(kParallel), 4});
    EXPECT_TRUE(equal_points(inside, {kNan, kNan, 4, 0}));
  }
}

TEST(DistanceBetweenLines, ShortPerpendicularLinesCountAsParallel) {
  const Point distance = distance_of({0, 0, 0}, {1e-6, 0, 0}, {0, 0, 4}, {0, 1e-6, 4});
  EXPECT_TRUE(equal_points(distance, {kNan, kNan, 4, 0}));
}

TEST(DistanceBetweenLines, ADirectionBelowTheRoundoffCountsAsNone) {
  EXPECT_EQ(distance_of({0, 0, 0}, {kShortest, 0, 0}, {0, 3, 0}, {1, 3, 0}).z, 3.0);
  EXPECT_EQ(distance_of({0, 0, 0}, {below(kShortest), 0, 0}, {0, 3, 0}, {1, 3, 0}).z, 0.0);
}

TEST(DistanceBetweenLines, NanIsNotParallel) {
  const Point distance = distance_of({0, 0, 0}, {1, 0, kNan}, {0, 3, 0}, {1, 3, 0});
  EXPECT_TRUE(std::isnan(distance.x) && std::isnan(distance.y) && std::isnan(distance.z));
  EXPECT_EQ(distance.w, 0.0);
}

TEST(DistanceBetweenLines, TheHomogeneousComponentsAreIgnoredAndTheResultsIs0) {
  EXPECT_TRUE(equal_points(distance_of({0, 0, 0, 1}, {1, 0, 0, 2}, {0, 3, 0, 4}, {1, 3, 0, kNan}), {kNan, kNan, 3, 0}));
  EXPECT_TRUE(equal_points(distance_of({0, 0, 0, 1}, {1, 0, 0, 2}, {2, 3, 5, 4}, {2, 4, 6, kNan}), {2, -8, 2, 0}));
}

TEST(DistanceBetweenLines, FollowsItsFormulaBitForBit) {
  Random random(61);
  int parallel = 0;
  for (int i = 0; i < 300'000; ++i) {
    Coordinates coordinate(random);
    const Point p1 = coordinate.point3(), q1 = coordinate.point3();
    const Point p2 = coordinate.point3();
    const Point q2 = random.below(4) == 0 ? p2 + (q1 - p1) * integer(random, 2) : coordinate.point3();
    parallel += are_parallel(p1, q1, p2, q2) ? 1 : 0;
    ASSERT_TRUE(equal_points(distance_of(p1, q1, p2, q2), literal_distance(p1, q1, p2, q2)))
        << "case " << i << ' ' << print({p1, q1, p2, q2});
  }
  EXPECT_GT(parallel, 50'000);
}

/// A float of every kind, with a w that nothing may look at.
Vec3<float> float_point(Coordinates& coordinate) {
  const Point p = coordinate.point3();
  return {narrowed<float>(p.x), narrowed<float>(p.y), narrowed<float>(p.z), 5.0F};
}

::testing::AssertionResult equal_float_points(Vec3<float> const& actual, Vec3<float> const& expected) {
  return equal_points({actual.x, actual.y, actual.z, actual.w}, {expected.x, expected.y, expected.z, expected.w});
}

TEST(DistanceBetweenLinesFloat, IsTheDoubleOneNarrowed) {
  const Vec3<float> o{0, 0, 0}, x{1, 0, 0};
  const float nan = std::numeric_limits<float>::quiet_NaN();
  EXPECT_TRUE(equal_float_points(DistanceBetweenLines(o, x, {0, 3, 0}, {1, 3, 0}), {nan, nan, 3, 0}));
  EXPECT_TRUE(equal_float_points(DistanceBetweenLines(o, x, {2, 3, 5}, {2, 4, 6}), {2, -8, 2, 0}));
}

// d1 = s·(a, 1, 0), d2 = s·(1 + 2^-19, a, 0) with a = 1 + 2^-20: n.z = s²·(a² - 1 - 2^-19) = s²·2^-40 = 2^-20, where
// single precision has a² = 1 + 2^-19 and so parallel lines.
TEST(DistanceBetweenLinesFloat, ComputesInDouble) {
  const float s = 0x1p10F;
  const float a = 1.0F + 0x1p-20F;
  const Vec3<float> d =
      DistanceBetweenLines(Vec3<float>{0, 0, 0}, {s * a, s, 0}, {0, 0, 1}, {s * (1.0F + 0x1p-19F), s * a, 1});
  EXPECT_TRUE(equal_float_points(d, {0, 0, 0x1p-20F, 0}));
}

// w.x·d1.x = 1e60 does not fit.
TEST(DistanceBetweenLinesFloat, WhatDoesNotFitBecomesInfinite) {
  const Vec3<float> d = DistanceBetweenLines(Vec3<float>{0, 0, 0}, {1e30F, 0, 0}, {1e30F, 0, 0}, {1e30F, 1, 0});
  EXPECT_EQ(d.x, std::numeric_limits<float>::infinity());
}

TEST(DistanceBetweenLinesFloat, FollowsItsFormulaBitForBit) {
  Random random(62);
  for (int i = 0; i < 300'000; ++i) {
    Coordinates coordinate(random);
    const Vec3<float> p1 = float_point(coordinate), q1 = float_point(coordinate);
    const Vec3<float> p2 = float_point(coordinate);
    const Vec3<float> q2 = random.below(4) == 0 ? p2 + (q1 - p1) : float_point(coordinate);
    ASSERT_TRUE(equal_float_points(DistanceBetweenLines(p1, q1, p2, q2), literal_distance(p1, q1, p2, q2)))
        << "case " << i;
  }
}

TEST(ClosestPoints, OfSkewLinesIsTheLargestDoubleOnPurpose) {
  for (const bool segments : {true, false}) {
    const PointPair pair = ClosestPoints({0, 0, 0}, {1, 0, 0}, {0, 1, 1}, {0, 2, 1}, segments);
    EXPECT_TRUE(equal_pairs(pair, {kNoAnswer, kNoAnswer}));
  }
}

TEST(ClosestPoints, OfParallelSegmentsOfLengthTwoIsScaledByTheirLength) {
  const PointPair pair = ClosestPoints({0, 0, 0}, {2, 0, 0}, {1, 1, 0}, {3, 1, 0}, true);
  EXPECT_TRUE(equal_pairs(pair, {{2, 0, 0, 0}, {3, 1, 0, 0}}));
}

TEST(ClosestPoints, OfParallelLinesWithNoProjectionInRangeIsTheFootOfTheFirstPoint) {
  const PointPair pair = ClosestPoints({0, 0, 0}, {1, 0, 0}, {5, 2, 0}, {6, 2, 0}, false);
  EXPECT_TRUE(equal_pairs(pair, {{0, 0, 0, 0}, {0, 2, 0, 0}}));
}

// Lines that meet and lines that coincide but for 1e-9 have no answer either.
TEST(ClosestPoints, OfLinesThatMeetIsTheLargestDoubleToo) {
  for (const bool segments : {true, false}) {
    EXPECT_TRUE(
        equal_pairs(ClosestPoints({0, 0, 0}, {1, 0, 0}, {0, 0, 0}, {0, 1, 0}, segments), {kNoAnswer, kNoAnswer}));
    EXPECT_TRUE(
        equal_pairs(ClosestPoints({0, 0, 0}, {1, 0, 0}, {0, 0, 0}, {1, 1e-9, 0}, segments), {kNoAnswer, kNoAnswer}));
  }
}

TEST(ClosestPoints, ParallelIsBelow1em10OfTheProduct) {
  for (const double sign : {1.0, -1.0}) {
    EXPECT_TRUE(equal_pairs(ClosestPoints({0, 0, 0}, {1, 0, 0}, {0, 0, 4}, {1, sign * kParallel, 4}, true),
                            {kNoAnswer, kNoAnswer}));
    EXPECT_TRUE(equal_pairs(ClosestPoints({0, 0, 0}, {1, 0, 0}, {0, 0, 4}, {1, sign * below(kParallel), 4}, true),
                            {{0, 0, 0, 0}, {0, 0, 4, 0}}));
  }
}

// Products, differences and squares that overflow, in every place.
TEST(ClosestPoints, FiniteInputThatIsNotParallelAlwaysGivesTheLargestDouble) {
  const std::array<std::array<Point, 4>, 5> cases{{
      {{{0, 0, 0}, {1e200, 0, 0}, {0, 1, 1}, {0, 1e200, 1}}},            // the product
      {{{0, 0, 0}, {1e100, 0, 0}, {0, 1, 1}, {0, 1e100, 1}}},            // its square
      {{{-1e308, 0, 0}, {1e308, 0, 0}, {0, -1e308, 1}, {0, 1e308, 1}}},  // the differences
      {{{-1e308, 1, 2}, {1e308, 3, 4}, {-1e308, 0, 1}, {1e308, 7, 1}}},  // infinity - infinity
      {{{kLargest, kLargest, kLargest}, {-kLargest, kLargest, 0}, {0, 0, 0}, {1, 2, 3}}},
  }};
  for (auto const& [p1, q1, p2, q2] : cases) {
    for (const bool segments : {true, false}) {
      EXPECT_TRUE(equal_pairs(ClosestPoints(p1, q1, p2, q2, segments), {kNoAnswer, kNoAnswer}))
          << print({p1, q1, p2, q2});
    }
  }
}

TEST(ClosestPoints, NanAndInfinityReachTheSolveAndArePassedOn) {
  for (const double bad : {kNan, kInfinity}) {
    for (const bool segments : {true, false}) {
      EXPECT_TRUE(std::isnan(ClosestPoints({bad, 0, 0}, {1, 2, 3}, {0, 1, 1}, {0, 2, 1}, segments).first.x)) << bad;
      EXPECT_TRUE(std::isnan(ClosestPoints({0, 0, 0}, {1, 2, 3}, {0, bad, 1}, {0, 2, 1}, segments).second.y)) << bad;
    }
  }
}

struct ParallelCase {
  const char* name;
  Point p1, q1, p2, q2;
  Point first, second;
};

// Segments along x, on y = 0 and y = 1. The foot stands at p + parameter · d with d as it is.
const ParallelCase kProjections[] = {
    // a = 0.25 of [0, 1].
    {"a", {0.25, 0, 0}, {9, 0, 0}, {0, 1, 0}, {1, 1, 0}, {0.25, 0, 0, 0}, {0.25, 1, 0, 0}},
    {"a_at_its_lower_bound", {0, 0, 0}, {-9, 0, 0}, {0, 1, 0}, {1, 1, 0}, {0, 0, 0, 0}, {0, 1, 0, 0}},
    {"a_at_its_upper_bound", {1, 0, 0}, {9, 0, 0}, {0, 1, 0}, {1, 1, 0}, {1, 0, 0, 0}, {1, 1, 0, 0}},
    // a = -1; b = 1 of [0, 2], so that the foot is at 1 + 1·2.
    {"b", {0, 0, 0}, {2, 0, 0}, {1, 1, 0}, {3, 1, 0}, {2, 0, 0, 0}, {3, 1, 0, 0}},
    {"b_at_its_lower_bound", {-1, 0, 0}, {0, 0, 0}, {0, 1, 0}, {1, 1, 0}, {0, 0, 0, 0}, {0, 1, 0, 0}},
    {"b_at_its_upper_bound", {9, 0, 0}, {1, 0, 0}, {0, 1, 0}, {1, 1, 0}, {1, 0, 0, 0}, {1, 1, 0, 0}},
    // a = -1, b = 3 of [0, 1]; c = 1 of [0, 4], so that the foot is at 0 + 1·4.
    {"c", {0, 0, 0}, {4, 0, 0}, {1, 1, 0}, {2, 1, 0}, {4, 0, 0, 0}, {1, 1, 0, 0}},
    // The second runs the other way: c = 2, and the same answer is measured from the first.
    {"c_against_its_sense", {0, 0, 0}, {4, 0, 0}, {2, 1, 0}, {1, 1, 0}, {8, 0, 0, 0}, {2, 1, 0, 0}},
    // Length 2^-60 counts as none: u1 is 0, c = 0 is in range whatever p2.
    {"c_of_a_line_below_the_roundoff", {0, 0, 0}, {0x1p-60, 0, 0}, {5, 2, 0}, {6, 2, 0}, {0, 0, 0, 0}, {5, 2, 0, 0}},
    // A point, d2 = 0: u2 = 0, a = 0 of [0, 0].
    {"a_of_a_point", {0, 0, 0}, {1, 0, 0}, {5, 2, 0}, {5, 2, 0}, {0, 0, 0, 0}, {5, 2, 0, 0}},
};

TEST(ClosestPoints, ProjectsTheEndsInOrderAndTakesTheFirstWithin) {
  for (auto const& row : kProjections) {
    for (const bool segments : {true, false}) {
      EXPECT_TRUE(equal_pairs(ClosestPoints(row.p1, row.q1, row.p2, row.q2, segments), {row.first, row.second}))
          << row.name << (segments ? ", segments" : ", lines");
    }
  }
}

// An end of the second segment that stands above the first one, while neither end of the first stands above the second
// nor p2 above the first: between exactly parallel lines b would be within. It takes lines that only count as parallel.
TEST(ClosestPoints, TheFourthProjectionComesLast) {
  // d1 = (1e-5, 0, 0), d2 = (-2e-6, 2e-6, 0): the product is 2e-11. u2 = (-1, 1)/sqrt(2).
  // p2 = (1.1e-5, 2e-6, 0) is beyond q1, q2 = (0.9e-5, 4e-6, 0) is above the first segment.
  // a = u2·(-1.1e-5, -2e-6) = 9e-6/sqrt(2), more than |d2| = 2e-6·sqrt(2); b = u2·(-1e-6, -2e-6) < 0; c = 1.1e-5 is
  // beyond |d1|; e = 0.9e-5 is not.
  const Point p1{0, 0, 0}, q1{1e-5, 0, 0}, p2{1.1e-5, 2e-6, 0}, q2{0.9e-5, 4e-6, 0};
  for (const bool segments : {true, false}) {
    const PointPair pair = ClosestPoints(p1, q1, p2, q2, segments);
    // e = 0.9e-5 along a unit vector, times d1.
    EXPECT_TRUE(equal_points(pair.first, {0.9e-5 * 1e-5, 0, 0, 0}));
    EXPECT_TRUE(equal_points(pair.second, q2));
  }
}

// One number outside its range, a projection counts no more.
TEST(ClosestPoints, BoundsOfTheProjectionsAreSharp) {
  const double beyond = std::nextafter(1.0, 2.0);
  // a just above 1, b farther: c = -beyond and e = 1 - beyond are negative, and the ends decide.
  EXPECT_TRUE(equal_pairs(ClosestPoints({beyond, 0, 0}, {9, 0, 0}, {0, 1, 0}, {1, 1, 0}, true),
                          {{beyond, 0, 0, 0}, {1, 1, 0, 0}}));
  // The same with lines: the foot of p1.
  EXPECT_TRUE(equal_pairs(ClosestPoints({beyond, 0, 0}, {9, 0, 0}, {0, 1, 0}, {1, 1, 0}, false),
                          {{beyond, 0, 0, 0}, {beyond, 1, 0, 0}}));
  // a just below 0.
  const double negative = -std::numeric_limits<double>::denorm_min();
  EXPECT_TRUE(equal_pairs(ClosestPoints({negative, 0, 0}, {-9, 0, 0}, {0, 1, 0}, {1, 1, 0}, true),
                          {{negative, 0, 0, 0}, {0, 1, 0, 0}}));
}

// d1 = (-1,0,0), d2 = (1,0,0), p2 ahead of p1 by 1e-300: every projection is negative. g = (1e-300, s, 0).
TEST(ClosestPoints, LinesThroughPointsNearerThan1em10ShareTheFirst) {
  const auto pair = [](double s) { return ClosestPoints({0, 0, 0}, {-1, 0, 0}, {1e-300, s, 0}, {1, s, 0}, false); };
  EXPECT_TRUE(equal_pairs(pair(kParallel), {{0, 0, 0, 0}, {0, kParallel, 0, 0}}));
  EXPECT_TRUE(equal_pairs(pair(-kParallel), {{0, 0, 0, 0}, {0, -kParallel, 0, 0}}));
  EXPECT_TRUE(equal_pairs(pair(below(kParallel)), {{0, 0, 0, 0}, {0, 0, 0, 0}}));
  EXPECT_TRUE(equal_pairs(pair(-below(kParallel)), {{0, 0, 0, 0}, {0, 0, 0, 0}}));
}

TEST(ClosestPoints, OneAndTheSameLineGivesTheFirstPointTwice) {
  EXPECT_TRUE(
      equal_pairs(ClosestPoints({1, 2, 3}, {2, 2, 3}, {7, 2, 3}, {9, 2, 3}, false), {{1, 2, 3, 0}, {1, 2, 3, 0}}));
  // As it is, signs of zeros included.
  EXPECT_TRUE(equal_pairs(ClosestPoints({-0.0, -0.0, 0}, {1, -0.0, 0}, {7, -0.0, 0}, {9, -0.0, 0}, false),
                          {{-0.0, -0.0, 0, 0}, {-0.0, -0.0, 0, 0}}));
}

// The distance 1e-170 squared underflows: h is 0, and the lines are one.
TEST(ClosestPoints, LinesWhoseDistanceSquaredUnderflowsAreOne) {
  EXPECT_TRUE(equal_pairs(ClosestPoints({0, 0, 0}, {1, 0, 0}, {7, 1e-170, 0}, {9, 1e-170, 0}, false),
                          {{0, 0, 0, 0}, {0, 0, 0, 0}}));
}

TEST(ClosestPoints, ADirectionBelowTheRoundoffCountsAsNone) {
  EXPECT_TRUE(equal_pairs(ClosestPoints({0, 0, 0}, {kShortest, 0, 0}, {5, 2, 0}, {6, 2, 0}, false),
                          {{0, 0, 0, 0}, {0, 2, 0, 0}}));
  EXPECT_TRUE(equal_pairs(ClosestPoints({0, 0, 0}, {below(kShortest), 0, 0}, {5, 2, 0}, {6, 2, 0}, false),
                          {{0, 0, 0, 0}, {5, 2, 0, 0}}));
}

// Segments with a gap between them along x: each of the four pairs is the nearest one in turn.
TEST(ClosestPoints, OfParallelSegmentsApartIsTheNearestPairOfEnds) {
  const Point left{0, 0, 0, 0}, middle_left{1, 0, 0, 0}, middle_right{3, 1, 0, 0}, right{4, 1, 0, 0};
  EXPECT_TRUE(equal_pairs(ClosestPoints(middle_left, left, middle_right, right, true), {middle_left, middle_right}));
  EXPECT_TRUE(equal_pairs(ClosestPoints(left, middle_left, middle_right, right, true), {middle_left, middle_right}));
  EXPECT_TRUE(equal_pairs(ClosestPoints(middle_left, left, right, middle_right, true), {middle_left, middle_right}));
  EXPECT_TRUE(equal_pairs(ClosestPoints(left, middle_left, right, middle_right, true), {middle_left, middle_right}));
}

// Distances decide, not their squares. The ends are 3.5e8 apart in y and 3, 2, 4 and 3 in x: 3.5e8² = 1.225e17 is a
// double, and its neighbours are 16 away. Of the sums, 1.225e17 + 9 rounds to + 16 and 1.225e17 + 4 to + 0; but the
// root of + 16 is 3.5e8 + 2.3e-8, less than half the distance 6e-8 to the next number: a tie.
TEST(ClosestPoints, DistancesThatTieAreATieEvenWhereTheirSquaresDiffer) {
  const Point p1{0, 0, 0, 0}, q1{1, 0, 0, 0}, p2{3, 3.5e8, 0, 0}, q2{4, 3.5e8, 0, 0};
  ASSERT_GT(dot(p2 - p1, p2 - p1), dot(p2 - q1, p2 - q1));
  EXPECT_TRUE(equal_pairs(ClosestPoints(p1, q1, p2, q2, true), {p1, p2}));
}

// All four distances overflow.
TEST(ClosestPoints, OfEndsInfinitelyFarApartTheFirstPairIsTaken) {
  const Point p1{0, 0, 0, 0}, q1{1, 0, 0, 0}, p2{5, 1e200, 0, 0}, q2{6, 1e200, 0, 0};
  EXPECT_TRUE(equal_pairs(ClosestPoints(p1, q1, p2, q2, true), {p1, p2}));
}

// Ends that are nearly equally far, in all four orders of the segments' ends.
TEST(ClosestPoints, AmongNearlyEqualDistancesTheEarlierPairOfATieIsTaken) {
  Random random(63);
  int told = 0;
  for (int i = 0; i < 100'000; ++i) {
    const double y = random.uniform(1e8, 9e8);
    const double gap = random.uniform(0.1, 5.0);
    std::array<Point, 2> one{{{0, 0, 0, 0}, {random.uniform(0.1, 5.0), 0, 0, 0}}};
    const double start = one[1].x + gap;
    std::array<Point, 2> two{{{start, y, 0, 0}, {start + random.uniform(0.1, 5.0), y, 0, 0}}};
    if (random.below(2) == 0) std::swap(one[0], one[1]);
    if (random.below(2) == 0) std::swap(two[0], two[1]);
    const PointPair expected = literal_closest(one[0], one[1], two[0], two[1], true);
    // The nearest pair is known: where it is not chosen, a tie has decided.
    const bool nearest = expected.first.x == std::max(one[0].x, one[1].x) && expected.second.x == start;
    told += nearest ? 0 : 1;
    ASSERT_TRUE(equal_pairs(ClosestPoints(one[0], one[1], two[0], two[1], true), expected))
        << print({one[0], one[1], two[0], two[1]});
  }
  EXPECT_GT(told, 1000);
}

TEST(ClosestPoints, TheHomogeneousComponentsAreIgnoredAndTheResultsAre0) {
  Random random(64);
  for (int i = 0; i < 20'000; ++i) {
    const Point p1 = integer_point3(random, 3), p2 = integer_point3(random, 3);
    const Point d = integer_point3(random, 1);
    const Point q1 = p1 + d * integer(random, 2), q2 = p2 + d * integer(random, 2);
    const bool segments = random.below(2) == 0;
    const auto with_w = [](Point p, double w) {
      p.w = w;
      return p;
    };
    const PointPair expected = ClosestPoints(p1, q1, p2, q2, segments);
    EXPECT_EQ(expected.first.w, 0.0);
    EXPECT_EQ(expected.second.w, 0.0);
    ASSERT_TRUE(equal_pairs(
        ClosestPoints(with_w(p1, 3), with_w(q1, kNan), with_w(p2, -4), with_w(q2, kInfinity), segments), expected))
        << print({p1, q1, p2, q2});
  }
}

/// (x, y, z) with the axes exchanged so that x comes `turns` places later.
Point turned(Point const& p, std::uint64_t turns) {
  if (turns == 0) return p;
  return turned({p.z, p.x, p.y, p.w}, turns - 1);
}

// Segments of length 1 along an axis, on a grid of quarters: nothing is rounded but the foot on a distant line. The
// parameter is then a true one, and the pair is as near as the segments are.
TEST(ClosestPoints, OfParallelSegmentsOfLengthOneIsAsNearAsTheyAre) {
  Random random(65);
  const auto quarters = [&] { return integer(random, 16) * 0.25; };
  for (int i = 0; i < 50'000; ++i) {
    const double x1 = quarters(), x2 = quarters(), y = quarters(), z = quarters();
    const double sense1 = random.below(2) == 0 ? 1.0 : -1.0;
    const double sense2 = random.below(2) == 0 ? 1.0 : -1.0;
    const std::uint64_t turns = random.below(3);
    const Point p1 = turned({x1, 0, 0, 0}, turns), q1 = turned({x1 + sense1, 0, 0, 0}, turns);
    const Point p2 = turned({x2, y, z, 0}, turns), q2 = turned({x2 + sense2, y, z, 0}, turns);
    const double low1 = std::min(x1, x1 + sense1), low2 = std::min(x2, x2 + sense2);
    const double gap = std::max({0.0, low1 - (low2 + 1), low2 - (low1 + 1)});
    const auto [a, b] = ClosestPoints(p1, q1, p2, q2, true);
    ASSERT_EQ(dot(a - b, a - b), gap * gap + y * y + z * z) << print({p1, q1, p2, q2});
    // For lines the distance across: h, m/|m|, their product and the sum with p1, six roundings of at most 4·sqrt(2)
    // and one of a coordinate of at most 4.
    const auto [c, d] = ClosestPoints(p1, q1, p2, q2, false);
    const auto across = turned({0, y, z, 0}, turns);
    constexpr double kBound = (6 * 5.7 + 4) * kRoundoff;
    ASSERT_NEAR((d - c).x, across.x, kBound) << print({p1, q1, p2, q2});
    ASSERT_NEAR((d - c).y, across.y, kBound) << print({p1, q1, p2, q2});
    ASSERT_NEAR((d - c).z, across.z, kBound) << print({p1, q1, p2, q2});
  }
}

// The outputs are results, not arguments: a call may be assigned to what it was given.
TEST(ClosestPoints, TheResultMayBeAssignedToTheArguments) {
  Point p1{0, 0, 0}, q1{1, 0, 0}, p2{5, 2, 0}, q2{6, 2, 0};
  std::tie(p2, p1) = ClosestPoints(p1, q1, p2, q2, false);
  EXPECT_TRUE(equal_points(p2, {0, 0, 0, 0}));
  EXPECT_TRUE(equal_points(p1, {0, 2, 0, 0}));
}

TEST(ClosestPoints, OfFiniteInputFollowsItsStepsBitForBit) {
  Random random(66);
  int parallel = 0;
  for (int i = 0; i < 400'000; ++i) {
    Coordinates coordinate(random);
    const Point p1 = coordinate.point3(), q1 = coordinate.point3(), p2 = coordinate.point3();
    const Point q2 = random.below(4) != 0 ? p2 + (q1 - p1) * (integer(random, 8) * 0.25) : coordinate.point3();
    const auto finite = [](Point const& p) { return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z); };
    if (!finite(p1) || !finite(q1) || !finite(p2) || !finite(q2)) continue;
    parallel += are_parallel(p1, q1, p2, q2) ? 1 : 0;
    for (const bool segments : {true, false}) {
      ASSERT_TRUE(equal_pairs(ClosestPoints(p1, q1, p2, q2, segments), literal_closest(p1, q1, p2, q2, segments)))
          << "case " << i << (segments ? ", segments " : ", lines ") << print({p1, q1, p2, q2});
    }
  }
  EXPECT_GT(parallel, 100'000);
  EXPECT_LT(parallel, 350'000);
}

}  // namespace

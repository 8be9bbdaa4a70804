#include <talvo/geometry/polygon.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <climits>
#include <cmath>
#include <cstdint>
#include <iomanip>
#include <limits>
#include <numbers>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "geometry/coordinates.h"
#include "geometry/exact.h"
#include "support/elements.h"
#include "support/random.h"

namespace {

using Talvo::LineIntersect;
using talvo::test::Coordinates;
using talvo::test::cross;
using talvo::test::equal_points;
using talvo::test::error_of;
using talvo::test::Exact;
using talvo::test::exact;
using talvo::test::integer_point2;
using talvo::test::kRoundoff;
using talvo::test::Random;

using Point = Vec2<double>;
using Polygon = std::vector<Point>;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kDenormal = std::numeric_limits<double>::denorm_min();
constexpr double kParallel = 1e-10;
constexpr double kShortest = 2.220446049250313e-16;
constexpr double kTolerance = 0.000000001;
constexpr Point kUntouched{11, 22};

double below(double x) { return std::nextafter(x, 0.0); }
double above(double x) { return std::nextafter(x, kInfinity); }

std::string show(Polygon const& points) {
  std::ostringstream out;
  out << std::setprecision(17);
  for (auto const& [x, y] : points) out << '(' << x << ", " << y << ") ";
  return out.str();
}

double length(Point const& a) { return std::sqrt(a.x * a.x + a.y * a.y); }
Point unit(Point const& a) {
  const double l = length(a);
  return l < kShortest ? Point{0, 0} : Point{a.x / l, a.y / l};
}
Point fixed_direction() { return unit({std::sqrt(3.0), std::sqrt(5.0)}); }

bool literal_intersect(Point const& origin, Point const& a, Point const& b, Point const& direction, Point& hit) {
  const Point e = b - a;
  const Point w = origin - a;
  const double c = e.y * direction.x - e.x * direction.y;
  if (std::fabs(c) < kParallel) return false;
  const double r = 1.0 / c;
  const double u = (direction.x * w.y - direction.y * w.x) * r;
  const double s = (e.x * w.y - e.y * w.x) * r;
  if (!(s >= 0.0 && 0.0 <= u && u <= 1.0)) return false;
  hit = {e.x * u + a.x, e.y * u + a.y};
  return true;
}

enum class Decision { no_vertices, boundary, midpoint_ray, fixed_ray };

/// The answer step by step, and what decided it.
struct Literal {
  bool inside;
  Decision decision;
};

Literal literal_is_inside(Point const& p, Polygon const& polygon, double tolerance) {
  const std::size_t count = polygon.size();
  if (count < 1) return {false, Decision::no_vertices};
  for (std::size_t k = 1; k < count; ++k) {
    const Point edge = polygon[k] - polygon[k - 1];
    const double l = length(edge);
    const Point u = unit(edge);
    const Point w = p - polygon[k - 1];
    const double t = (u.x * w.x + u.y * w.y) / l;
    if (0.0 <= t && t <= 1.0 && std::fabs(w.x * u.y - w.y * u.x) < tolerance) return {false, Decision::boundary};
  }
  const auto previous = [&](std::size_t i) { return polygon[i == 0 ? count - 1 : i - 1]; };
  Point d{0, 0};
  for (std::size_t i = 0; i < count; ++i) {
    const Point candidate = unit((previous(i) + polygon[i]) * 0.5 - p);
    const bool accepted = std::all_of(polygon.begin(), polygon.end(), [&](Point const& v) {
      return (v.y - p.y) * candidate.x - (v.x - p.x) * candidate.y >= tolerance;
    });
    if (accepted) {
      d = candidate;
      break;
    }
  }
  const bool fixed = length(d) < 1e-10;
  if (fixed) d = fixed_direction();
  bool inside = false;
  for (std::size_t i = 0; i < count; ++i) {
    Point hit;
    if (literal_intersect(p, previous(i), polygon[i], d, hit)) inside = !inside;
  }
  return {inside, fixed ? Decision::fixed_ray : Decision::midpoint_ray};
}

bool is_inside(Point const& p, Polygon const& polygon, double tolerance = kTolerance) {
  return Talvo::IsInside(p, static_cast<int>(polygon.size()), polygon.data(), tolerance);
}

// ---- LineIntersect ----

TEST(LineIntersect, OfARayAlongXWithUprightSegments) {
  Point hit = kUntouched;
  EXPECT_TRUE(LineIntersect({0, 0}, {2, -1}, {2, 1}, {1, 0}, hit));
  EXPECT_TRUE(equal_points(hit, Point{2, 0}));
  EXPECT_FALSE(LineIntersect({0, 0}, {-2, -1}, {-2, 1}, {1, 0}, hit));  // behind the origin
  EXPECT_TRUE(LineIntersect({0, 0}, {2, 0}, {2, 1}, {1, 0}, hit));      // at the end point
  EXPECT_TRUE(equal_points(hit, Point{2, 0}));
}

// The segment x = 2 from y = a to y = b, and the ray y = 0 along x from x = 2 - s.
TEST(LineIntersect, AllBoundsAreIncludedAndSharp) {
  Point hit;
  const auto meets = [&](double a, double b) { return LineIntersect({0, 0}, {2, a}, {2, b}, {1, 0}, hit); };
  EXPECT_TRUE(meets(0, 1));
  EXPECT_TRUE(meets(-1, 0));
  EXPECT_FALSE(meets(kDenormal, 1));
  EXPECT_FALSE(meets(-1, -0x1p-52));
  EXPECT_TRUE(LineIntersect({2, 0}, {2, -1}, {2, 1}, {1, 0}, hit));  // s = 0
  EXPECT_TRUE(LineIntersect({2, 0}, {2, -1}, {2, 1}, {-1, 0}, hit));
  EXPECT_FALSE(LineIntersect({above(2), 0}, {2, -1}, {2, 1}, {1, 0}, hit));
  EXPECT_TRUE(LineIntersect({below(2), 0}, {2, -1}, {2, 1}, {1, 0}, hit));
}

TEST(LineIntersect, ARayThroughAVertexMeetsBothSegments) {
  Point hit;
  EXPECT_TRUE(LineIntersect({0, 0}, {2, 0}, {3, 5}, {1, 0}, hit));
  EXPECT_TRUE(LineIntersect({0, 0}, {1, -4}, {2, 0}, {1, 0}, hit));
}

TEST(LineIntersect, ParallelIsBelow1em10OfTheProduct) {
  for (const double sign : {1.0, -1.0}) {
    Point hit = kUntouched;
    EXPECT_TRUE(LineIntersect({0, 0}, {2, 0}, {2, sign * kParallel}, {1, 0}, hit));
    EXPECT_TRUE(equal_points(hit, Point{2, 0}));
    hit = kUntouched;
    EXPECT_FALSE(LineIntersect({0, 0}, {2, 0}, {2, sign * below(kParallel)}, {1, 0}, hit));
    EXPECT_TRUE(equal_points(hit, kUntouched));
    EXPECT_TRUE(LineIntersect({0, 0}, {2, -1}, {2, 1}, {sign * kParallel * 0.5, 0}, hit) == (sign > 0));
    EXPECT_FALSE(LineIntersect({0, 0}, {2, -1}, {2, 1}, {sign * below(kParallel * 0.5), 0}, hit));
  }
}

TEST(LineIntersect, ASegmentOnTheRayIsMissed) {
  EXPECT_FALSE(LineIntersect({0, 0}, {2, 0}, {5, 0}, {1, 0}));
  EXPECT_FALSE(LineIntersect({0, 0}, {2, 0}, {2, 0}, {1, 0}));   // a point on it
  EXPECT_FALSE(LineIntersect({0, 0}, {2, -1}, {2, 1}, {0, 0}));  // no direction
}

TEST(LineIntersect, LeavesThePointUntouchedWhenThereIsNone) {
  for (auto const& [a, b] : {std::pair{Point{-2, -1}, Point{-2, 1}},
                             {Point{2, 1}, Point{2, 2}},
                             {Point{2, -2}, Point{2, -1}},
                             {Point{2, 1}, Point{3, 1}}}) {
    Point hit = kUntouched;
    EXPECT_FALSE(LineIntersect({0, 0}, a, b, {1, 0}, hit));
    EXPECT_TRUE(equal_points(hit, kUntouched));
  }
}

TEST(LineIntersect, NanMeetsNothing) {
  const std::array<Point, 4> meeting{{{0, 0}, {2, -1}, {2, 1}, {1, 0}}};
  ASSERT_TRUE(LineIntersect(meeting[0], meeting[1], meeting[2], meeting[3]));
  for (std::size_t k = 0; k < 4; ++k) {
    for (double Point::*const component : {&Point::x, &Point::y}) {
      std::array<Point, 4> p = meeting;
      p[k].*component = kNan;
      Point hit = kUntouched;
      EXPECT_FALSE(LineIntersect(p[0], p[1], p[2], p[3], hit)) << k;
      EXPECT_TRUE(equal_points(hit, kUntouched)) << k;
    }
  }
}

TEST(LineIntersect, ThePointMayBeAnyOfTheArguments) {
  Random random(71);
  for (int i = 0; i < 5000; ++i) {
    const std::array<Point, 4> p{integer_point2(random, 3), integer_point2(random, 3), integer_point2(random, 3),
                                 integer_point2(random, 3)};
    Point expected = kUntouched;
    const bool meets = LineIntersect(p[0], p[1], p[2], p[3], expected);
    for (std::size_t k = 0; k < 4; ++k) {
      std::array<Point, 4> q = p;
      ASSERT_EQ(LineIntersect(q[0], q[1], q[2], q[3], q[k]), meets) << show({p[0], p[1], p[2], p[3]});
      ASSERT_TRUE(equal_points(q[k], meets ? expected : p[k])) << show({p[0], p[1], p[2], p[3]});
    }
  }
}

// On integers the products are exact, and the reciprocal of c cannot carry a quotient over 1: the answer is exact. The
// reciprocal, the parameter and its product with the edge are rounded, then the sum.
TEST(LineIntersect, IsExactOnIntegersAndThePointWithinFourRoundings) {
  Random random(72);
  int met = 0;
  for (int i = 0; i < 20'000; ++i) {
    const int limit = i % 2 == 0 ? 3 : 1000;
    const Point origin = integer_point2(random, limit), a = integer_point2(random, limit);
    const Point b = integer_point2(random, limit), direction = integer_point2(random, limit);
    const Vec2<Exact> e = exact(b - a), w = exact(origin - a), d = exact(direction);
    const Exact c = -cross(e, d);
    Point hit = kUntouched;
    const bool meets = LineIntersect(origin, a, b, direction, hit);
    const bool expected = c != 0 && -cross(w, d) / c >= 0 && -cross(w, d) / c <= 1 && cross(e, w) / c >= 0;
    ASSERT_EQ(meets, expected) << show({origin, a, b, direction});
    if (!meets) continue;
    ++met;
    const Vec2<Exact> along = e * Exact(-cross(w, d) / c);
    const auto bound = [](Exact const& step, Exact const& sum) {
      return kRoundoff * (3.001 * std::fabs(step.convert_to<double>()) + 1.001 * std::fabs(sum.convert_to<double>()));
    };
    const Vec2<Exact> point = exact(a) + along;
    ASSERT_LE(error_of(hit.x, point.x), bound(along.x, point.x)) << show({origin, a, b, direction});
    ASSERT_LE(error_of(hit.y, point.y), bound(along.y, point.y)) << show({origin, a, b, direction});
  }
  EXPECT_GT(met, 2000);
}

TEST(LineIntersect, FollowsItsFormulaBitForBit) {
  Random random(73);
  int met = 0;
  for (int i = 0; i < 400'000; ++i) {
    Coordinates coordinate(random);
    const Point a = coordinate.point2(), b = coordinate.point2();
    // Now and then aimed at an end of the segment, from anywhere or along it.
    const Point origin = random.below(4) == 0 ? a + (b - a) * random.uniform(-1.0, 2.0) : coordinate.point2();
    const Point direction = random.below(3) == 0 ? (random.below(2) == 0 ? a : b) - origin : coordinate.point2();
    Point expected = kUntouched;
    Point hit = kUntouched;
    const bool meets = literal_intersect(origin, a, b, direction, expected);
    met += meets ? 1 : 0;
    ASSERT_EQ(LineIntersect(origin, a, b, direction, hit), meets)
        << "case " << i << ' ' << show({origin, a, b, direction});
    ASSERT_TRUE(equal_points(hit, expected)) << "case " << i << ' ' << show({origin, a, b, direction});
    ASSERT_EQ(LineIntersect(origin, a, b, direction), meets) << "case " << i << ' ' << show({origin, a, b, direction});
  }
  EXPECT_GT(met, 40'000);
}

// ---- IsInside: values by hand ----

const Polygon kSquare{{0, 0}, {1, 0}, {1, 1}, {0, 1}};

TEST(IsInside, OfTheUnitSquare) {
  EXPECT_TRUE(is_inside({0.5, 0.5}, kSquare, 0.000000001));
  EXPECT_FALSE(is_inside({0.5, 0}, kSquare, 0.000000001));  // on an edge
  EXPECT_FALSE(is_inside({2, 2}, kSquare, 0.000000001));
}

TEST(IsInside, ForTheMiddleOfTheSquareTheFixedDirectionIsUsed) {
  EXPECT_EQ(literal_is_inside({0.5, 0.5}, kSquare, kTolerance).decision, Decision::fixed_ray);
}

TEST(IsInside, OfAnLShape) {
  const Polygon l{{0, 0}, {4, 0}, {4, 1}, {1, 1}, {1, 4}, {0, 4}};
  EXPECT_TRUE(is_inside({0.5, 0.5}, l));
  EXPECT_TRUE(is_inside({3.5, 0.5}, l));
  EXPECT_TRUE(is_inside({0.5, 3.5}, l));
  EXPECT_FALSE(is_inside({2, 2}, l));
  EXPECT_FALSE(is_inside({1, 1}, l));
}

TEST(IsInside, DoesNotDependOnTheSense) {
  const Polygon reversed(kSquare.rbegin(), kSquare.rend());
  EXPECT_TRUE(is_inside({0.5, 0.5}, reversed));
  EXPECT_FALSE(is_inside({1.5, 0.5}, reversed));
}

// A square run through twice: even everywhere.
TEST(IsInside, WhereAPolygonCoversAPointTwiceParityDecides) {
  Polygon twice = kSquare;
  twice.insert(twice.end(), kSquare.begin(), kSquare.end());
  EXPECT_FALSE(is_inside({0.5, 0.5}, twice));
}

TEST(IsInside, ACountBelowOneIsFalse) {
  for (const int count : {0, -1, INT_MIN}) {
    EXPECT_FALSE(Talvo::IsInside({0.5, 0.5}, count, kSquare.data(), kTolerance)) << count;
    EXPECT_FALSE(Talvo::IsInside({0.5, 0.5}, count, nullptr, kTolerance)) << count;
  }
}

TEST(IsInside, OneVertexHasNoInside) {
  for (const double tolerance : {kTolerance, 0.0, -1.0}) {
    EXPECT_FALSE(is_inside({0.5, 0.5}, {{0, 0}}, tolerance));
    EXPECT_FALSE(is_inside({0, 0}, {{0, 0}}, tolerance));
  }
}

// The edge and the closing edge are the same: a ray meets both or none.
TEST(IsInside, TwoVerticesHaveNoInside) {
  const Polygon two{{0, 0}, {1, 0}};
  EXPECT_FALSE(is_inside({0.5, -1}, two));
  EXPECT_FALSE(is_inside({0.5, 0}, two));
  EXPECT_FALSE(is_inside({0, 1}, two));
}

TEST(IsInside, OnlyTheFirstCountVerticesAreTaken) {
  EXPECT_TRUE(Talvo::IsInside({0.75, 0.25}, 3, kSquare.data(), kTolerance));
  EXPECT_FALSE(Talvo::IsInside({0.25, 0.75}, 3, kSquare.data(), kTolerance));
}

// The square with its right side as the closing edge. From (1, 0.5) the fixed ray leaves to the right: it meets the
// closing edge at its very start, nothing else, and one is odd.
TEST(IsInside, TheClosingEdgeIsNotTestedForTheBoundary) {
  const Polygon closing_right{{1, 1}, {0, 1}, {0, 0}, {1, 0}};
  EXPECT_TRUE(is_inside({1, 0.5}, closing_right));
  // With its first vertex repeated at the end it is an edge like the others.
  Polygon closed = closing_right;
  closed.push_back(closed.front());
  EXPECT_FALSE(is_inside({1, 0.5}, closed));
  EXPECT_TRUE(is_inside({0.5, 0.5}, closed));
}

// With its left side as the closing edge, the ray from (0, 0.5) meets that and the top: two.
TEST(IsInside, ThePositionOfTheClosingEdgeDecidesWhetherItsPointsCountAsInside) {
  EXPECT_FALSE(is_inside({0, 0.5}, kSquare));
}

TEST(IsInside, ToleranceIsADistanceFromAnEdgeAndSharp) {
  const double at = 0x1p-20;
  EXPECT_TRUE(is_inside({0.5, at}, kSquare, at));
  EXPECT_FALSE(is_inside({0.5, below(at)}, kSquare, at));
  EXPECT_TRUE(is_inside({1 - at, 0.5}, kSquare, at));
  EXPECT_FALSE(is_inside({above(1 - at), 0.5}, kSquare, at));
  // Perpendicular to an oblique edge: (0.5, 0.5 - d) is d/sqrt(2) from the diagonal.
  const Polygon triangle{{0, 0}, {1, 1}, {0, 1}};
  EXPECT_TRUE(is_inside({0.5, 0.75}, triangle, 0.17));
  EXPECT_FALSE(is_inside({0.5, 0.75}, triangle, 0.18));
}

// A point beyond both ends of an edge, though on its line, is not near it: at the inner corner of the L along the line
// of an edge.
TEST(IsInside, TheToleranceReachesOnlyWithinTheEndsOfAnEdge) {
  // The edge from (4, 1) to (2, 1) continued meets the inside of the polygon.
  const Polygon l{{0, 0}, {4, 0}, {4, 1}, {2, 1}, {2, 3}, {0, 3}};
  EXPECT_TRUE(is_inside({1, 1}, l, 0.25));
  EXPECT_TRUE(is_inside({1.9, 1}, l, 0.0625));        // beside the corner, 0.1 from it along the line
  EXPECT_TRUE(is_inside({1.999, 0.999}, l, 0.0625));  // within the tolerance of the corner, but of no edge
  EXPECT_FALSE(is_inside({2.001, 0.999}, l, 0.0625));
}

TEST(IsInside, ToleranceZeroHasNoBoundaryAndNanNeither) {
  for (const double tolerance : {0.0, -0.0, kNan}) {
    EXPECT_TRUE(is_inside({0.25, kDenormal}, kSquare, tolerance));
    EXPECT_FALSE(is_inside({0.25, -kDenormal}, kSquare, tolerance));
    // On the right side the fixed ray meets nothing but it.
    EXPECT_TRUE(is_inside({1, 0.5}, kSquare, tolerance));
  }
  EXPECT_FALSE(is_inside({1, 0.5}, kSquare, kDenormal));
  // On the lower side: the direction along it is accepted with 0, and that ray meets the right side in its end. NaN
  // accepts none; the fixed ray meets the lower side at its start and then the top.
  EXPECT_TRUE(is_inside({0.25, 0}, kSquare, 0.0));
  EXPECT_TRUE(is_inside({0.25, 0}, kSquare, -0.0));
  EXPECT_FALSE(is_inside({0.25, 0}, kSquare, kNan));
}

// Every point whose foot falls on an edge is within it.
TEST(IsInside, AnInfiniteToleranceLeavesNothing) { EXPECT_FALSE(is_inside({0.5, 0.5}, kSquare, kInfinity)); }

// -1: the first candidate is accepted, the middle of the left side. Its ray meets that side only.
TEST(IsInside, ANegativeToleranceAcceptsARayThroughTheMiddleOfAnEdge) {
  EXPECT_EQ(literal_is_inside({0.5, 0.5}, kSquare, -1).decision, Decision::midpoint_ray);
  EXPECT_TRUE(is_inside({0.5, 0.5}, kSquare, -1));
  EXPECT_FALSE(is_inside({-0.5, 0.5}, kSquare, -1));
  // On the lower side, which is no boundary now: the ray to the middle of the left side meets both of them.
  EXPECT_FALSE(is_inside({0.5, 0}, kSquare, -1));
}

// A point on the line of the first edge outside of the polygon, which is all to the left of it: with tolerance 0 that
// direction is accepted. The ray runs along the edge, which counts as parallel, and meets the two others in their ends.
TEST(IsInside, ToleranceZeroAcceptsARayAlongAnEdge) {
  const Polygon polygon{{1, 0}, {2, 0}, {2, 1}};
  EXPECT_EQ(literal_is_inside({0, 0}, polygon, 0).decision, Decision::midpoint_ray);
  EXPECT_FALSE(is_inside({0, 0}, polygon, 0));
}

// An edge of less than 2.2e-16 has the direction (0, 0): every point has the distance 0 from it.
TEST(IsInside, AnEdgeBelowTheRoundoffMakesEveryPointABoundaryPoint) {
  const auto with_first_edge = [](double size) { return Polygon{{0, 0}, {size, 0}, {1, 0}, {1, 1}, {0, 1}}; };
  EXPECT_TRUE(is_inside({0.5, 0.5}, with_first_edge(kShortest)));
  EXPECT_FALSE(is_inside({0.5, 0.5}, with_first_edge(below(kShortest))));
  EXPECT_FALSE(is_inside({0.5, 0.5}, with_first_edge(1e-100)));
  // 0 divided by a length of 0 is NaN, which is in no range; and no distance is below a tolerance of 0.
  EXPECT_TRUE(is_inside({0.5, 0.5}, with_first_edge(0)));
  EXPECT_TRUE(is_inside({0.5, 0.5}, with_first_edge(1e-100), 0));
}

TEST(IsInside, AClosingEdgeBelowTheRoundoffDoesNoHarm) {
  EXPECT_TRUE(is_inside({0.5, 0.5}, {{0, 0}, {1, 0}, {1, 1}, {0, 1}, {1e-100, 0}}));
}

// The other end: the square of 1e160 overflows, the edge over its infinite length is (0, 0) again.
TEST(IsInside, AnEdgeWhoseSquareOverflowsMakesEveryPointABoundaryPoint) {
  const auto square = [](double size) { return Polygon{{0, 0}, {size, 0}, {size, size}, {0, size}}; };
  EXPECT_TRUE(is_inside({0.5e150, 0.5e150}, square(1e150)));
  EXPECT_FALSE(is_inside({0.5e160, 0.5e160}, square(1e160)));
  EXPECT_TRUE(is_inside({0.5e160, 0.5e160}, square(1e160), 0));
}

TEST(IsInside, RepeatedVerticesDoNoHarm) {
  EXPECT_TRUE(is_inside({0.5, 0.5}, {{0, 0}, {0, 0}, {1, 0}, {1, 1}, {1, 1}, {1, 1}, {0, 1}, {0, 0}}));
  EXPECT_FALSE(is_inside({1.5, 0.5}, {{0, 0}, {0, 0}, {1, 0}, {1, 1}, {1, 1}, {1, 1}, {0, 1}, {0, 0}}));
}

TEST(IsInside, APolygonAlongALineHasNoInside) {
  for (const double y : {-0.5, 0.0, 0.5}) EXPECT_FALSE(is_inside({0.5, y}, {{0, 0}, {2, 0}, {1, 0}, {3, 0}}));
}

TEST(IsInside, NanIsOutside) {
  EXPECT_FALSE(is_inside({kNan, 0.5}, kSquare));
  EXPECT_FALSE(is_inside({0.5, kNan}, kSquare));
}

// A NaN vertex belongs to two edges that no ray meets. The ray from (0.5, 0.5) meets the top.
TEST(IsInside, AVertexOfNanTakesItsTwoEdgesOut) {
  EXPECT_TRUE(is_inside({0.5, 0.5}, {{kNan, 0}, {1, 0}, {1, 1}, {0, 1}}));
  EXPECT_FALSE(is_inside({0.5, 0.5}, {{0, 0}, {1, 0}, {kNan, 1}, {0, 1}}));
}

// Below the fixed ray from the origin runs a triangle's lower side, and one vertex stands on the ray: the ray meets
// both edges that share it, and an inside point counts as outside.
TEST(IsInside, AVertexOnTheRayCountsTwice) {
  const Point d = fixed_direction();
  const Point vertex = d * 4.0;  // exactly on the ray
  Random random(74);
  int met = 0;
  for (int i = 0; i < 1000; ++i) {
    const Point left{random.uniform(-4.0, -1.0), random.uniform(0.5, 4.0)};
    const Point low{random.uniform(-0.5, 0.5), random.uniform(-4.0, -1.0)};
    const Polygon triangle{vertex, left, low};
    ASSERT_TRUE(LineIntersect({0, 0}, vertex, left, d)) << show(triangle);
    // Towards the vertex the parameter is 1 up to rounding, and beyond 1 in some of the cases.
    const bool both = LineIntersect({0, 0}, low, vertex, d);
    met += both ? 1 : 0;
    ASSERT_EQ(is_inside({0, 0}, triangle), !both) << show(triangle);
  }
  EXPECT_GT(met, 300);
  EXPECT_LT(met, 1000);
}

// ---- IsInside against exact arithmetic ----

/// Twice the area of a, b, p: positive when p is to the left of a-b.
template <class Number>
Number left_of(Vec2<Number> const& a, Vec2<Number> const& b, Vec2<Number> const& p) {
  return (b.x - a.x) * (p.y - a.y) - (b.y - a.y) * (p.x - a.x);
}

/// How often the polygon runs around p, counted where it crosses the ray from p towards +x; an edge owns its lower end
/// and not its upper one. `crossings` counts them without their sense.
template <class Number>
std::pair<int, int> winding_and_crossings(Vec2<Number> const& p, std::vector<Vec2<Number>> const& polygon) {
  int winding = 0;
  int crossings = 0;
  for (std::size_t i = 0; i < polygon.size(); ++i) {
    auto const& a = polygon[i == 0 ? polygon.size() - 1 : i - 1];
    auto const& b = polygon[i];
    if ((a.y <= p.y) == (b.y <= p.y)) continue;
    const bool upwards = a.y <= p.y;
    if ((left_of(a, b, p) > 0) != upwards) continue;
    winding += upwards ? 1 : -1;
    ++crossings;
  }
  return {winding, crossings};
}

using Integer = std::int64_t;

std::vector<Vec2<Integer>> integers(Polygon const& polygon) {
  std::vector<Vec2<Integer>> result;
  for (Point const& p : polygon) result.push_back({static_cast<Integer>(p.x), static_cast<Integer>(p.y)});
  return result;
}
Vec2<Integer> integers(Point const& p) { return {static_cast<Integer>(p.x), static_cast<Integer>(p.y)}; }

bool on_segment(Vec2<Integer> const& a, Vec2<Integer> const& b, Vec2<Integer> const& p) {
  return left_of(a, b, p) == 0 && std::min(a.x, b.x) <= p.x && p.x <= std::max(a.x, b.x) && std::min(a.y, b.y) <= p.y &&
         p.y <= std::max(a.y, b.y);
}

/// What a point is to a polygon of integers, exactly.
struct Place {
  bool on_edge = false;  ///< of one but the closing edge
  bool on_closing_edge = false;
  int winding = 0;
  bool odd = false;
};

Place exact_place(Point const& point, Polygon const& polygon) {
  const auto p = integers(point);
  const auto q = integers(polygon);
  Place place;
  for (std::size_t k = 1; k < q.size(); ++k) {
    // Without its end, where rounding may put the parameter beyond 1: a vertex is the start of the next edge, and the
    // last one belongs to the closing edge.
    place.on_edge = place.on_edge || (p != q[k] && on_segment(q[k - 1], q[k], p));
  }
  place.on_closing_edge = on_segment(q.back(), q.front(), p);
  const auto [winding, crossings] = winding_and_crossings(p, q);
  place.winding = winding;
  place.odd = crossings % 2 != 0;
  return place;
}

/// Small grids, where points stand on vertices, on edges and on the lines of edges, vertices repeat and run in lines.
///
/// The library's answer must be exact here for these reasons. Differences and products of integers up to N = 1000 are
/// exact. A point that is on no edge is at least 1/(N·sqrt(8)) > 3e-4 from it, the tolerance is far below. The fixed
/// ray passes no grid point nearer than |x·sqrt(5) - y·sqrt(3)|/sqrt(8) = |5x² - 3y²|/(...) >= 1/(8N): 5x² = 3y² has no
/// solution but 0, since 15 is no square. And no ray but the fixed one is taken with a positive tolerance.
TEST(IsInside, IsExactOnIntegerGrids) {
  Random random(75);
  int inside = 0;
  int on_edge = 0;
  int on_closing_edge = 0;
  for (int i = 0; i < 300'000; ++i) {
    const int limit = std::array{2, 4, 30, 1000}[random.below(4)];
    Polygon polygon;
    const std::uint64_t count = 1 + random.below(12);
    while (polygon.size() < count) {
      // Repeated vertices, and steps along a line.
      Point next = integer_point2(random, limit);
      if (!polygon.empty() && random.below(6) == 0) next = polygon[random.below(polygon.size())];
      if (!polygon.empty() && random.below(6) == 0) next.y = polygon.back().y;
      polygon.push_back(next);
    }
    Point p = integer_point2(random, limit);
    if (random.below(16) == 0) p = polygon[random.below(count)];
    const Place place = exact_place(p, polygon);
    const bool actual = is_inside(p, polygon);
    Polygon closed = polygon;
    closed.push_back(closed.front());
    if (place.on_edge || place.on_closing_edge) {
      // On the closing edge alone the answer is left open; with the first vertex repeated it is not.
      on_edge += place.on_edge ? 1 : 0;
      on_closing_edge += place.on_edge ? 0 : 1;
      const bool is_a_point = std::count(polygon.begin(), polygon.end(), p) == static_cast<std::ptrdiff_t>(count);
      ASSERT_FALSE(place.on_edge && actual) << "case " << i << ' ' << show(polygon) << "from " << show({p});
      ASSERT_FALSE(!is_a_point && is_inside(p, closed)) << "case " << i << ' ' << show(closed) << "from " << show({p});
    } else {
      inside += place.odd ? 1 : 0;
      ASSERT_EQ(actual, place.odd) << "case " << i << ' ' << show(polygon) << "from " << show({p});
      ASSERT_EQ(is_inside(p, closed), place.odd) << "case " << i << ' ' << show(closed) << "from " << show({p});
      std::reverse(polygon.begin(), polygon.end());
      ASSERT_EQ(is_inside(p, polygon), place.odd) << "case " << i << ' ' << show(polygon) << "from " << show({p});
    }
  }
  EXPECT_GT(inside, 20'000);
  EXPECT_GT(on_edge, 30'000);
  EXPECT_GT(on_closing_edge, 2000);
}

bool properly_cross(Vec2<Integer> const& a, Vec2<Integer> const& b, Vec2<Integer> const& c, Vec2<Integer> const& d) {
  const auto sign = [](Integer value) { return (value > 0) - (value < 0); };
  return sign(left_of(a, b, c)) * sign(left_of(a, b, d)) < 0 && sign(left_of(c, d, a)) * sign(left_of(c, d, b)) < 0;
}

/// Random vertices whose crossing edges are exchanged until none cross: each exchange shortens the polygon. Touching
/// edges may remain.
Polygon uncrossed_polygon(Random& random, std::size_t count, int limit) {
  Polygon polygon;
  while (polygon.size() < count) polygon.push_back(integer_point2(random, limit));
  for (bool crossed = true; crossed;) {
    crossed = false;
    const auto q = integers(polygon);
    for (std::size_t i = 0; i + 1 < count && !crossed; ++i) {
      for (std::size_t j = i + 2; j < count && !crossed; ++j) {
        if (!properly_cross(q[i], q[i + 1], q[j], q[(j + 1) % count])) continue;
        crossed = true;
        std::reverse(polygon.begin() + static_cast<std::ptrdiff_t>(i) + 1,
                     polygon.begin() + static_cast<std::ptrdiff_t>(j) + 1);
      }
    }
  }
  return polygon;
}

// Inside is where the polygon runs around the point: once, in one sense or the other.
TEST(IsInside, OfASimplePolygonIsWhereItRunsAroundThePoint) {
  Random random(76);
  int inside = 0;
  for (int i = 0; i < 2000; ++i) {
    const Polygon polygon = uncrossed_polygon(random, 3 + random.below(25), 1000);
    for (int k = 0; k < 50; ++k) {
      const Point p = integer_point2(random, 1000);
      const Place place = exact_place(p, polygon);
      if (place.on_edge || place.on_closing_edge) continue;
      inside += place.winding != 0 ? 1 : 0;
      ASSERT_EQ(is_inside(p, polygon), place.winding != 0)
          << "case " << i << ' ' << show(polygon) << "from " << show({p});
    }
  }
  EXPECT_GT(inside, 20'000);
}

double distance_to_segment(Point const& a, Point const& b, Point const& p) {
  const Point e = b - a, w = p - a;
  const double t = std::clamp((e.x * w.x + e.y * w.y) / (e.x * e.x + e.y * e.y), 0.0, 1.0);
  return length(w - e * t);
}

// Stars about a centre, coordinates of all 53 digits, also far from the origin; exact fractions decide. Points within
// 1e-7 of an edge are left out: rounding at 1e6 moves a crossing by 1e-10·cot of the angle of incidence.
TEST(IsInside, AgreesWithExactFractionsAwayFromTheBoundary) {
  Random random(77);
  int inside = 0;
  int cases = 0;
  for (int i = 0; i < 3000; ++i) {
    const double far = std::array{0.0, 0.0, 1e3, 1e6}[random.below(4)];
    const std::uint64_t count = 3 + random.below(10);
    Polygon polygon;
    for (std::uint64_t k = 0; k < count; ++k) {
      // Half of the polygons run around twice and cross themselves.
      const double turns = i % 2 == 0 ? 1.0 : 2.0;
      const double angle = 2 * std::numbers::pi * turns * static_cast<double>(k) / static_cast<double>(count);
      const double radius = random.uniform(0.1, 2.0);
      polygon.push_back({far + radius * std::cos(angle), far + radius * std::sin(angle)});
    }
    std::vector<Vec2<Exact>> fractions;
    for (Point const& v : polygon) fractions.push_back(exact(v));
    for (int k = 0; k < 5; ++k) {
      const Point p{far + random.uniform(-1.5, 1.5), far + random.uniform(-1.5, 1.5)};
      double distance = distance_to_segment(polygon.back(), polygon.front(), p);
      for (std::size_t v = 1; v < count; ++v) {
        distance = std::min(distance, distance_to_segment(polygon[v - 1], polygon[v], p));
      }
      if (distance < 1e-7) continue;
      ++cases;
      const bool expected = winding_and_crossings(exact(p), fractions).second % 2 != 0;
      inside += expected ? 1 : 0;
      ASSERT_EQ(is_inside(p, polygon), expected) << "case " << i << ' ' << show(polygon) << "from " << show({p});
    }
  }
  EXPECT_GT(inside, 2000);
  EXPECT_GT(cases, 14'000);
}

// One hundred thousand vertices on a circle of radius 1: inside of it by more than their sagitta of 5e-10, or outside.
// Were the search for a ray quadratic, this would not end soon.
TEST(IsInside, OfAManySidedCircle) {
  constexpr int kCount = 100'000;
  Polygon circle;
  for (int k = 0; k < kCount; ++k) {
    const double angle = 2 * std::numbers::pi * k / kCount;
    circle.push_back({std::cos(angle), std::sin(angle)});
  }
  Random random(78);
  for (int i = 0; i < 200; ++i) {
    const double angle = random.uniform(-3.2, 3.2);
    const double radius = i % 4 == 0 ? 1 + (i % 8 == 0 ? 1e-6 : -1e-6) : random.uniform(0.0, 2.0);
    const Point p{radius * std::cos(angle), radius * std::sin(angle)};
    ASSERT_EQ(is_inside(p, circle), radius < 1) << "radius " << std::setprecision(17) << radius << ' ' << show({p});
  }
}

// ---- IsInside against its steps ----

/// Polygons that bring every rule to its limit, and points that bring them out.
class Adversary {
 public:
  Adversary(Random& random, std::uint64_t most_vertices)
      : random_(random), coordinate_(random), scale_(std::ldexp(1.0, scale_exponent(random))) {
    const std::uint64_t count = random.below(most_vertices + 1);
    while (polygon.size() < count) add_vertices();
    for (Point& v : polygon) v = v * scale_;
    point = choose_point();
    tolerance = choose_tolerance();
  }

  Polygon polygon;
  Point point;
  double tolerance;

 private:
  static int scale_exponent(Random& random) {
    switch (random.below(8)) {
      case 0:
        return static_cast<int>(random.below(80)) - 60;
      case 1:
        return static_cast<int>(random.below(2000)) - 1000;
      default:
        return 0;
    }
  }

  Point any_vertex() { return polygon.empty() ? Point{0, 0} : polygon[random_.below(polygon.size())]; }

  void add_vertices() {
    const Point last = polygon.empty() ? Point{0, 0} : polygon.back();
    switch (random_.below(12)) {
      case 0:  // repeated
        polygon.push_back(any_vertex());
        return;
      case 1: {  // a run along a line
        const Point next = coordinate_.point2();
        for (const double t : {0.25, 0.5, 0.75, 1.0}) polygon.push_back(last + (next - last) * t);
        return;
      }
      case 2: {  // a very short edge
        const double size = std::array{1e-16, kShortest, below(kShortest), above(kShortest),
                                       1e-10, 1e-300,    kDenormal,        1e-12}[random_.below(8)];
        const double angle = random_.uniform(-3.2, 3.2);
        const bool upright = random_.below(2) == 0;
        polygon.push_back(last +
                          Point{upright ? 0.0 : size * std::cos(angle), size * (upright ? 1.0 : std::sin(angle))});
        return;
      }
      case 3: {  // nearly along the fixed direction
        const Point d = fixed_direction() * random_.uniform(-2.0, 2.0);
        polygon.push_back(last + Point{random_.near(d.x, 3), d.y + random_.uniform(-1e-10, 1e-10)});
        return;
      }
      default:
        polygon.push_back(coordinate_.point2());
    }
  }

  Point choose_point() {
    const Point a = any_vertex(), b = any_vertex();
    const double t = static_cast<double>(random_.below(17)) / 8 - 0.5;
    switch (random_.below(8)) {
      case 0:
        return a;
      case 1:  // on the line of two vertices, which may be an edge
        return a + (b - a) * t;
      case 2: {  // beside an edge
        const Point n = unit({b.y - a.y, a.x - b.x}) * std::array{kTolerance, 0.1, 1e-16, 1e-300}[random_.below(4)];
        return a + (b - a) * t + n;
      }
      case 3:  // the fixed ray runs through a vertex, or nearly
        return a - fixed_direction() * (scale_ * random_.uniform(0.0, 2.0));
      case 4:
        return {random_.near(a.x, 2), random_.near(b.y, 2)};
      case 5:
        return (a + b) * 0.5;
      default:
        return coordinate_.point2() * scale_;
    }
  }

  double choose_tolerance() {
    constexpr std::array kTolerances{kTolerance, kTolerance, 0.0,        -0.0,   -kTolerance, -1.0,
                                     1.0,        1e-16,      -1e-16,     1e-300, -1e-300,     kDenormal,
                                     -kDenormal, kInfinity,  -kInfinity, kNan,   0.1,         -0.1};
    switch (random_.below(4)) {
      case 0: {  // exactly the distance from the line of an edge, or next to it
        if (polygon.size() < 2) return 0.0;
        const std::size_t k = 1 + random_.below(polygon.size() - 1);
        const Point u = unit(polygon[k] - polygon[k - 1]), w = point - polygon[k - 1];
        return random_.near(std::fabs(w.x * u.y - w.y * u.x), 1);
      }
      case 1:  // about the rounding error of the ray's test
        return scale_ * random_.uniform(-1e-15, 1e-15);
      default:
        return kTolerances[random_.below(kTolerances.size())];
    }
  }

  Random& random_;
  Coordinates coordinate_;
  double scale_;
};

struct DecisionCount {
  std::array<int, 4> cases{};
  std::array<int, 4> inside{};

  void add(Literal const& literal) {
    const auto decision = static_cast<std::size_t>(literal.decision);
    ++cases[decision];
    inside[decision] += literal.inside ? 1 : 0;
  }
  int decided_by(Decision decision) const { return cases[static_cast<std::size_t>(decision)]; }
  int inside_by(Decision decision) const { return inside[static_cast<std::size_t>(decision)]; }
};

TEST(IsInside, FollowsItsStepsForAwkwardPolygons) {
  Random random(79);
  DecisionCount count;
  for (int i = 0; i < 600'000; ++i) {
    const Adversary awkward(random, 9);
    const Literal expected = literal_is_inside(awkward.point, awkward.polygon, awkward.tolerance);
    count.add(expected);
    ASSERT_EQ(is_inside(awkward.point, awkward.polygon, awkward.tolerance), expected.inside)
        << "case " << i << ", tolerance " << std::setprecision(17) << awkward.tolerance << ' ' << show(awkward.polygon)
        << "from " << show({awkward.point});
  }
  EXPECT_GT(count.decided_by(Decision::boundary), 50'000);
  EXPECT_GT(count.decided_by(Decision::midpoint_ray), 50'000);
  EXPECT_GT(count.inside_by(Decision::midpoint_ray), 5000);
  EXPECT_GT(count.decided_by(Decision::fixed_ray), 100'000);
  EXPECT_GT(count.inside_by(Decision::fixed_ray), 20'000);
}

// Enough vertices for whole blocks and a rest, whatever the width that edges are looked at together.
TEST(IsInside, FollowsItsStepsForAwkwardPolygonsOfManyVertices) {
  Random random(80);
  DecisionCount count;
  for (int i = 0; i < 30'000; ++i) {
    const Adversary awkward(random, 150);
    const Literal expected = literal_is_inside(awkward.point, awkward.polygon, awkward.tolerance);
    count.add(expected);
    ASSERT_EQ(is_inside(awkward.point, awkward.polygon, awkward.tolerance), expected.inside)
        << "case " << i << ", tolerance " << std::setprecision(17) << awkward.tolerance << ' ' << show(awkward.polygon)
        << "from " << show({awkward.point});
  }
  EXPECT_GT(count.inside_by(Decision::midpoint_ray), 100);
  EXPECT_GT(count.inside_by(Decision::fixed_ray), 1000);
}

// Closed curves as they come from practice: a point near one of the edges, at about the tolerance; or on the ray
// through a vertex.
TEST(IsInside, FollowsItsStepsForOrdinaryPolygons) {
  Random random(81);
  DecisionCount count;
  for (int i = 0; i < 60'000; ++i) {
    const std::uint64_t vertices = 3 + random.below(98);
    const double far = std::array{0.0, 0.0, 1e3, 1e6, 1e9}[random.below(5)];
    const double tolerance = std::array{kTolerance, 1e-6, 1e-3, 1e-12}[random.below(4)];
    Polygon polygon;
    for (std::uint64_t k = 0; k < vertices; ++k) {
      const double angle = 2 * std::numbers::pi * static_cast<double>(k) / static_cast<double>(vertices);
      const double radius = i % 2 == 0 ? 1.0 : random.uniform(0.5, 1.0);
      polygon.push_back({far + radius * std::cos(angle), far - radius * std::sin(angle)});
    }
    const std::size_t k = 1 + random.below(vertices - 1);
    const Point edge = polygon[k] - polygon[k - 1];
    const Point normal = unit({-edge.y, edge.x});
    const double t = random.below(3) == 0 ? random.near(1.0, 4) : random.uniform(0.0, 1.0);
    Point p = polygon[k - 1] + edge * t + normal * (tolerance * random.near(random.below(2) == 0 ? 1.0 : -1.0, 8));
    if (random.below(3) == 0) p = polygon[k] - fixed_direction() * random.uniform(0.0, 2.0);
    if (random.below(3) == 0) p = {far + random.uniform(-1.0, 1.0), far + random.uniform(-1.0, 1.0)};
    const Literal expected = literal_is_inside(p, polygon, tolerance);
    count.add(expected);
    ASSERT_EQ(is_inside(p, polygon, tolerance), expected.inside)
        << "case " << i << ", tolerance " << std::setprecision(17) << tolerance << ' ' << show(polygon) << "from "
        << show({p});
  }
  EXPECT_GT(count.decided_by(Decision::boundary), 10'000);
  EXPECT_GT(count.inside_by(Decision::fixed_ray), 10'000);
}

// A positive tolerance leaves the two ends of an edge on both sides of the ray to its middle. Were it so exactly, no
// such ray would ever be taken; the test says for which polygons rounding makes an exception.
TEST(IsInside, WithAnOrdinaryToleranceTheFixedDirectionIsTaken) {
  Random random(82);
  for (int i = 0; i < 100'000; ++i) {
    Polygon polygon;
    const std::uint64_t count = 1 + random.below(8);
    while (polygon.size() < count) polygon.push_back(integer_point2(random, 5));
    const Decision decision = literal_is_inside(integer_point2(random, 5), polygon, kTolerance).decision;
    ASSERT_NE(decision, Decision::midpoint_ray) << "case " << i << ' ' << show(polygon);
  }
}

}  // namespace

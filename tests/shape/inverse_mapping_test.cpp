#include <gtest/gtest.h>
#include <talvo/shape/shape.h>

#include <Eigen/LU>
#include <algorithm>
#include <cmath>
#include <iomanip>
#include <limits>
#include <stdexcept>
#include <string>
#include <vector>

#include "shape/plain_inverse.h"
#include "shape/plain_mapping.h"
#include "support/bits.h"
#include "support/elements.h"
#include "support/failures.h"
#include "support/random.h"

namespace {

using namespace talvo::test;
using Talvo::Util::CShape;

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
// What a search in a solid converges to, whatever tolerance the caller gives.
constexpr double kSolidTol = 1e-06;

double after(double x) { return std::nextafter(x, kInf); }

// What came of a search. `natural` is the output argument, which held the sentinel before the call.
struct Outcome {
  bool found = false;
  Vec3<double> natural{};
  std::string thrown;
};

const Vec3<double> kSentinel{7, 8, 9, 10};
const Vec3<double> kZero{0, 0, 0, 0};

Outcome find(CShape const& shape, Topology const& topology, Vec3<double> const& point, double tol) {
  Outcome outcome;
  Vec2<double> rs{kSentinel.x, kSentinel.y};
  Vec3<double> rst = kSentinel;
  try {
    outcome.found = topology.type == Talvo::Area ? shape.FindRS(point, rs, tol) : shape.FindRST(point, rst, tol);
  } catch (std::logic_error const& e) {
    outcome.thrown = e.what();
  }
  outcome.natural = topology.type == Talvo::Area ? Vec3<double>{rs.x, rs.y, 0} : rst;
  return outcome;
}

Outcome plain_find(Topology const& topology, Nodes const& nodes, Vec3<double> const& point, double tol) {
  Located located;
  std::string thrown;
  try {
    located = topology.type == Talvo::Area ? plain_find_rs(nodes, point, tol) : plain_find_rst(nodes, point);
  } catch (std::logic_error const& e) {
    thrown = e.what();
  }
  return {located.found, located.natural, thrown};
}

::testing::AssertionResult equal_outcomes(Outcome const& actual, Outcome const& expected) {
  if (actual.thrown != expected.thrown) return ::testing::AssertionFailure() << "threw \"" << actual.thrown << '"';
  if (actual.found != expected.found) return ::testing::AssertionFailure() << "returned " << actual.found;
  return equal_points(actual.natural, expected.natural);
}

// For EXPECT_TRUE: found, with these natural coordinates to the bit; or not found, with zeros.
::testing::AssertionResult finds(CShape const& area, Vec3<double> const& point, double tol, Vec2<double> expected) {
  Vec2<double> rs{7, 8};
  if (!area.FindRS(point, rs, tol)) return ::testing::AssertionFailure() << "not found";
  return equal_points(rs, expected);
}
::testing::AssertionResult misses(CShape const& area, Vec3<double> const& point, double tol) {
  Vec2<double> rs{7, 8};
  if (area.FindRS(point, rs, tol)) return ::testing::AssertionFailure() << "found at " << rs.x << ", " << rs.y;
  return equal_points(rs, Vec2<double>{0, 0});
}
::testing::AssertionResult finds(CShape const& volume, Vec3<double> const& point, Vec3<double> const& expected) {
  Vec3<double> rst = kSentinel;
  if (!volume.FindRST(point, rst, 0.0)) return ::testing::AssertionFailure() << "not found";
  return equal_points(rst, expected);
}
::testing::AssertionResult misses(CShape const& volume, Vec3<double> const& point) {
  Vec3<double> rst = kSentinel;
  if (volume.FindRST(point, rst, 0.0)) return ::testing::AssertionFailure() << "found at " << print(rst);
  return equal_points(rst, kZero);
}

CShape area(Nodes const& nodes) { return {Talvo::Area, nodes}; }
CShape volume(Nodes const& nodes) { return {Talvo::Volume, nodes}; }

Topology const& topology_named(std::string const& name) {
  return *std::ranges::find_if(topologies(), [&](Topology const& t) { return t.name == name; });
}

// The natural nodes stretched per direction. With factors that are powers of two, natural = global / factor exactly.
Nodes stretched(std::string const& name, double x, double y, double z) {
  Nodes nodes = topology_named(name).natural;
  for (Vec3<double>& node : nodes) node = {node.x * x, node.y * y, node.z * z};
  return nodes;
}

const CShape kSquareOfTwo(Talvo::Area, {{0, 0, 0}, {2, 0, 0}, {2, 2, 0}, {0, 2, 0}});
const CShape kUnitTriangle(Talvo::Area, {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}});
// x = r, y = s, z = t.
const CShape kCube(Talvo::Volume, topology_named("hexahedron").natural);
const CShape kSquare(Talvo::Area, topology_named("quadrilateral_4").natural);

// ---- Values by hand: areas

TEST(FindRSTest, TheMappedOriginTakesNoStep) {
  // A step would end the search here: all nodes lie on one line, so the determinant is 0.
  const CShape flat = area({{0, 0, 0}, {1, 1, 0}, {3, 3, 0}, {2, 2, 0}});
  EXPECT_TRUE(finds(flat, flat.CoorAtRS(0, 0), 1e-9, {0, 0}));
  EXPECT_TRUE(finds(flat, flat.CoorAtRS(0, 0), 0.0, {0, 0}));
  EXPECT_TRUE(finds(kSquareOfTwo, kSquareOfTwo.CoorAtRS(0, 0), 1e-9, {0, 0}));
}

TEST(FindRSTest, ZPlaysNoPart) {
  EXPECT_TRUE(finds(kSquareOfTwo, {1.5, 0.5, 7}, 1e-9, {0.5, -0.5}));
  EXPECT_TRUE(finds(kSquareOfTwo, {1.5, 0.5, kNaN}, 1e-9, {0.5, -0.5}));
  EXPECT_TRUE(finds(kSquareOfTwo, {1.5, 0.5, -kInf, kNaN}, 1e-9, {0.5, -0.5}));
}

TEST(FindRSTest, APointOutsideByLessThanTheToleranceIsClampedOntoTheElement) {
  EXPECT_TRUE(finds(kSquareOfTwo, {2.0000001, 1, 0}, 1e-6, {1, 0}));
  EXPECT_TRUE(misses(kSquareOfTwo, {2.01, 1, 0}, 1e-6));
}

TEST(FindRSTest, ATriangleIsSearchedInAreaCoordinates) {
  EXPECT_TRUE(finds(kUnitTriangle, {0.25, 0.25, 0}, 1e-9, {0.25, 0.25}));
  EXPECT_TRUE(misses(kUnitTriangle, {0.6, 0.6, 0}, 1e-9));
}

TEST(FindRSTest, NodesOnOneLineAreNotFound) {
  EXPECT_TRUE(misses(area({{0, 0, 0}, {1, 0, 0}, {3, 0, 0}, {2, 0, 0}}), {1, 0, 0}, 1e-9));
  EXPECT_TRUE(misses(area({{0, 0, 0}, {1, 1, 0}, {2, 2, 0}}), {1, 1, 0}, 1e-9));
  EXPECT_TRUE(misses(area(Nodes(8, {0, 0, 0})), {1, 1, 0}, 1e-9));
  // Perpendicular to the plane that is searched: the projection is a line.
  EXPECT_TRUE(misses(area({{0, 0, 0}, {2, 0, 0}, {2, 0, 2}, {0, 0, 2}}), {1.5, 0, 0.5}, 1e-9));
}

TEST(FindRSTest, ClockwiseNodesAreFoundToo) {
  EXPECT_TRUE(finds(area({{0, 0, 0}, {0, 2, 0}, {2, 2, 0}, {2, 0, 0}}), {1.5, 0.5, 0}, 1e-9, {-0.5, 0.5}));
}

TEST(FindRSTest, ABilinearElementTakesSeveralSteps) {
  // x = 2 + r + s + r s / 4 and y = s: at s = 0.5, x = 3 gives r (1 + 1/8) = 1/2, r = 4/9.
  const CShape shape = area({{0.25, -1, 0}, {1.75, -1, 0}, {4.25, 1, 0}, {1.75, 1, 0}});
  Vec2<double> rs{7, 8};
  ASSERT_TRUE(shape.FindRS({3, 0.5, 0}, rs, 1e-14));
  EXPECT_NEAR(rs.x, 4.0 / 9, 2e-14);
  EXPECT_NEAR(rs.y, 0.5, 2e-14);
}

// ---- Limits of the tolerance: areas

TEST(FindRSToleranceTest, AResidualOfExactlyTheToleranceHasConverged) {
  const double tol = 0x1p-10;
  EXPECT_TRUE(finds(kSquare, {tol, -tol, 0}, tol, {0, 0}));
  EXPECT_TRUE(finds(kSquare, {after(tol), 0, 0}, tol, {after(tol), 0}));
  EXPECT_TRUE(finds(kSquare, {0, -after(tol), 0}, tol, {0, -after(tol)}));
  EXPECT_TRUE(finds(kUnitTriangle, {tol, tol, 0}, tol, {0, 0}));
  EXPECT_TRUE(finds(kUnitTriangle, {after(tol), 0, 0}, tol, {after(tol), 0}));
}

TEST(FindRSToleranceTest, QuadrilateralsReachToTwiceTheToleranceOverTheDistanceOfTheSides) {
  const double tol = 0x1p-10;
  for (const char* name : {"quadrilateral_4", "quadrilateral_8"}) {
    SCOPED_TRACE(name);
    // Sides 8 and 1 apart.
    const CShape shape = area(stretched(name, 4, 0.5, 1));
    const double limit_r = 2 * tol / 8 + 1;
    const double limit_s = 2 * tol / 1 + 1;
    for (double sign : {1.0, -1.0}) {
      EXPECT_TRUE(finds(shape, {sign * 4 * limit_r, 0, 0}, tol, {sign, 0}));
      EXPECT_TRUE(misses(shape, {sign * 4 * after(limit_r), 0, 0}, tol));
      EXPECT_TRUE(finds(shape, {0, sign * 0.5 * limit_s, 0}, tol, {0, sign}));
      EXPECT_TRUE(misses(shape, {0, sign * 0.5 * after(limit_s), 0}, tol));
      EXPECT_TRUE(finds(shape, {sign * 4 * limit_r, -sign * 0.5 * limit_s, 0}, tol, {sign, -sign}));
    }
  }
}

TEST(FindRSToleranceTest, TheDistanceOfTheSidesIsTakenInSpace) {
  // Inclined: 8 apart in x and 6 in z, so 10 in space.
  const CShape shape = area({{-4, -1, -3}, {4, -1, 3}, {4, 1, 3}, {-4, 1, -3}});
  const double tol = 0x1p-10;
  const double limit = 2 * tol / 10 + 1;
  EXPECT_TRUE(finds(shape, {4 * limit, 0, 0}, tol, {1, 0}));
  EXPECT_TRUE(misses(shape, {4 * after(limit), 0, 0}, tol));
}

TEST(FindRSToleranceTest, TrianglesTakeTheToleranceAsItIsForRAndOverTheHeightForS) {
  const double tol = 0x1p-10;
  for (const char* name : {"triangle_3", "triangle_6"}) {
    SCOPED_TRACE(name);
    // Node 2 stands 4 above a side of 8. In global units r may fall short by 8 tol, s by tol.
    const CShape shape = area(stretched(name, 8, 4, 1));
    EXPECT_TRUE(finds(shape, {8 * -tol, 1, 0}, tol, {0, 0.25}));
    EXPECT_TRUE(misses(shape, {8 * -after(tol), 1, 0}, tol));
    const double tol_s = tol / 4;
    EXPECT_TRUE(misses(shape, {2, 4 * -tol_s, 0}, tol / 2));
    EXPECT_TRUE(finds(shape, {2, 4 * -tol_s, 0}, tol, {0.25, 0}));
    EXPECT_TRUE(misses(shape, {2, 4 * -after(tol_s), 0}, tol));
    // Both tolerances add up along the third side.
    const double limit = 1 + tol + tol_s;
    EXPECT_TRUE(finds(shape, {8 * 0.5, 4 * (limit - 0.5), 0}, tol, {0.5, 0.5}));
    EXPECT_TRUE(misses(shape, {8 * 0.5, 4 * (after(limit) - 0.5), 0}, tol));
  }
}

TEST(FindRSToleranceTest, TheCornersOfATriangleAreClampedRFirst) {
  const double tol = 0x1p-10;
  // r + s = 1 + 2 tol is just inside; r is cut to 1, and nothing is left for s.
  EXPECT_TRUE(finds(kUnitTriangle, {1 + tol, tol, 0}, tol, {1, 0}));
  EXPECT_TRUE(misses(kUnitTriangle, {1 + tol, tol + 0x1p-52, 0}, tol));
  EXPECT_TRUE(finds(kUnitTriangle, {-tol, 1 + tol, 0}, tol, {0, 1}));
  EXPECT_TRUE(finds(kUnitTriangle, {0.75, 0.25 + tol, 0}, tol, {0.75, 0.25}));
  EXPECT_TRUE(finds(kUnitTriangle, {-tol, -tol, 0}, tol, {0, 0}));
}

TEST(FindRSToleranceTest, TheHeightOfATriangleIsTakenInSpace) {
  // Side along (3, 0, 4); node 2 at (0, 4, 3) relative to it, whose height over the side is not its length:
  // u = (3, 0, 4)/5, u.w = 12/5, so h^2 = 25 - 144/25 = 481/25.
  const CShape shape = area({{0, 0, 0}, {3, 0, 4}, {0, 4, 3}});
  const double tol = 0x1p-10;
  const double tol_s = tol / (std::sqrt(481.0) / 5);
  // s = y / 4, exact; the height itself is rounded a few times.
  EXPECT_TRUE(finds(shape, {1.5, -4 * tol_s * (1 - 1e-14), 0}, tol, {0.5, 0}));
  EXPECT_TRUE(misses(shape, {1.5, -4 * tol_s * (1 + 1e-14), 0}, tol));
}

TEST(FindRSToleranceTest, ZeroAsksForTheExactPoint) {
  EXPECT_TRUE(finds(kSquare, {0.5, -0.25, 0}, 0.0, {0.5, -0.25}));
  EXPECT_TRUE(finds(kSquare, {1, -1, 0}, 0.0, {1, -1}));
  EXPECT_TRUE(misses(kSquare, {after(1), 0, 0}, 0.0));
  EXPECT_TRUE(finds(kUnitTriangle, {0.5, 0.5, 0}, 0.0, {0.5, 0.5}));
  EXPECT_TRUE(misses(kUnitTriangle, {0.5, 0.5 + 0x1p-52, 0}, 0.0));
  EXPECT_TRUE(misses(kUnitTriangle, {-0x1p-1000, 0.5, 0}, 0.0));
  EXPECT_TRUE(finds(kSquare, {0.5, -0.25, 0}, -0.0, {0.5, -0.25}));
}

TEST(FindRSToleranceTest, NaNAndNegativeNeverConverge) {
  for (double tol : {kNaN, -1e-300, -1.0, -kInf}) {
    EXPECT_TRUE(misses(kSquare, {0, 0, 0}, tol)) << tol;
    EXPECT_TRUE(misses(kSquare, {0.5, 0.25, 0}, tol)) << tol;
    EXPECT_TRUE(misses(kUnitTriangle, {0, 0, 0}, tol)) << tol;
  }
}

TEST(FindRSToleranceTest, InfiniteIsMetByEveryPointButNaN) {
  EXPECT_TRUE(finds(kSquare, {100, -200, 0}, kInf, {0, 0}));
  EXPECT_TRUE(finds(kUnitTriangle, {100, -200, 0}, kInf, {0, 0}));
  EXPECT_TRUE(finds(kSquare, {kInf, 0, 0}, kInf, {0, 0}));
  EXPECT_TRUE(misses(kSquare, {kNaN, 0, 0}, kInf));
  EXPECT_TRUE(misses(kUnitTriangle, {0, kNaN, 0}, kInf));
}

// ---- Degenerate areas

TEST(FindRSDegenerateTest, SidesWithOneMiddleAcceptTheirOwnMiddle) {
  // A bow tie: the middles of both sides in r coincide, 2 tol / 0 is infinite, and the search starts at the point.
  const CShape bow_tie = area({{1, -1, 0}, {-1, -1, 0}, {1, 1, 0}, {-1, 1, 0}});
  EXPECT_TRUE(finds(bow_tie, {0, 0, 0}, 1e-9, {0, 0}));
  EXPECT_TRUE(finds(bow_tie, {0, 0, 0}, 0.0, {0, 0}));
  // Any other point needs a step from the origin, where r moves nothing.
  EXPECT_TRUE(misses(bow_tie, {0.25, 0.5, 0}, 1e-9));
}

TEST(FindRSDegenerateTest, ATriangleWhoseFirstSideHasNoLengthTakesAnyR) {
  // Nodes 0 and 1 coincide, the mid-sides do not: x = 4 r (1 - r - s), y = s. At y = 0, x = -3 there is r = -1/2, since
  // 4 (-1/2)(3/2) = -3; the tolerance in r is tol / 0.
  const CShape shape = area({{0, 0, 0}, {0, 0, 0}, {0, 1, 0}, {1, 0, 0}, {0, 0.5, 0}, {0, 0.5, 0}});
  EXPECT_TRUE(finds(shape, {-3, 0, 0}, 1e-9, {0, 0}));
  // With a first side just long enough to have a direction the same point is outside.
  const CShape proper = area({{0, 0, 0}, {1e-15, 0, 0}, {0, 1, 0}, {1, 0, 0}, {0, 0.5, 0}, {0, 0.5, 0}});
  EXPECT_TRUE(misses(proper, {-3, 0, 0}, 1e-9));
}

TEST(FindRSDegenerateTest, TheFirstSideHasADirectionFromTheMachineEpsilonOn) {
  const double shortest = 2.220446049250313e-16;
  auto shape = [](double side) {
    return area({{0, 0, 0}, {side, 0, 0}, {0, 1, 0}, {1, 0, 0}, {0, 0.5, 0}, {0, 0.5, 0}});
  };
  EXPECT_TRUE(misses(shape(shortest), {-3, 0, 0}, 1e-9));
  EXPECT_TRUE(finds(shape(std::nextafter(shortest, 0.0)), {-3, 0, 0}, 1e-9, {0, 0}));
}

TEST(FindRSDegenerateTest, OnlyADeterminantOfExactlyZeroIsSingular) {
  // J = diag(h, h). 2^-1022 is the smallest normal determinant; 2^-1076 is not representable and becomes 0.
  for (double h : {0x1p-511, 0x1p-300, 0x1p+300}) {
    EXPECT_TRUE(finds(area(stretched("quadrilateral_4", h, h, 1)), {h / 2, -h / 4, 0}, h * 1e-9, {0.5, -0.25})) << h;
  }
  const double h = 0x1p-538;
  EXPECT_TRUE(misses(area(stretched("quadrilateral_4", h, h, 1)), {h / 2, -h / 4, 0}, h * 1e-9));
}

// ---- One hundred steps

// x = K (r^2 + r), y = K s (1 + r^2) in the 8-node quadrilateral. For the point (1, 0), s stays 0 and r is the root of
// r^2 + r = 1/K; Newton's method from 0 is r' = (r^2 + 1/K) / (2 r + 1): first 1/K, then half of it with every step
// down to the square root. (y grows with r so that its derivative survives beside numbers as large as r^2.)
CShape slow_quadrilateral(double k) {
  Nodes nodes;
  for (Vec3<double> const& n : topology_named("quadrilateral_8").natural) {
    nodes.push_back({k * (n.x * n.x + n.x), k * n.y * (1 + n.x * n.x), 0});
  }
  return area(nodes);
}

// The number of steps until the residual is at most tol, in one unknown and extended precision. The last residuals are
// 1.4e-2, 4.9e-5, 6e-10 or 7.6e-2, 1.3e-3, 4.5e-7, as 1/K is an odd or an even power of 2: none is so near to the
// tolerance of 1e-6 that rounding could matter.
int steps_needed(long double k, long double tol) {
  const long double c = 1 / k;
  long double r = 0;
  int steps = 0;
  while (k * std::fabs(r * r + r - c) > tol) {
    r = (r * r + c) / (2 * r + 1);
    ++steps;
  }
  return steps;
}

// The K for which so many steps are needed.
double slowness(int steps) {
  double k = 1;
  while (steps_needed(k, kSolidTol) < steps) k /= 2;
  return k;
}

TEST(StepLimitTest, TheHundredthStepInAnAreaMayConverge) {
  for (int steps : {40, 60, 99, 100}) {
    const double k = slowness(steps);
    ASSERT_EQ(steps_needed(k, kSolidTol), steps);
    // The element is so small that the tolerance reaches far beyond it: the natural point 1/sqrt(K) is clamped.
    Vec2<double> rs{7, 8};
    EXPECT_TRUE(slow_quadrilateral(k).FindRS({1, 0, 0}, rs, kSolidTol)) << steps;
    EXPECT_EQ(rs.x, 1.0);
    EXPECT_NEAR(rs.y, 0.0, 1e-14);
  }
}

TEST(StepLimitTest, AHundredAndFirstStepInAnAreaIsNotTaken) {
  for (int steps : {101, 102, 120}) {
    const double k = slowness(steps);
    ASSERT_EQ(steps_needed(k, kSolidTol), steps);
    EXPECT_TRUE(misses(slow_quadrilateral(k), {1, 0, 0}, kSolidTol)) << steps;
  }
}

TEST(StepLimitTest, ASearchWithoutASolutionEnds) {
  // x = r^2 + r has its minimum of -1/4; the iterates wander for ever.
  EXPECT_TRUE(misses(slow_quadrilateral(1), {-1, 0, 0}, 1e-9));
}

// Tangled hexahedra in which the search wanders for long and then happens upon the point; looked for among some million
// of random ones with the written-out search.
struct LongSearch {
  int steps;
  Nodes nodes;
  Vec3<double> point;
};

std::vector<LongSearch> long_searches() {
  // clang-format off
  return {
      {100, {{0.5, -1.25, 0.25}, {0.75, 0.25, -1.75}, {-0.5, 1, 0.75}, {-1.25, -1.25, -1.25},
             {0.5, 2, 0.25}, {1, -0.25, -2}, {0.75, 0.75, -0.75}, {0.25, 0.5, 0.75}}, {0.5, 0.5, -0.25}},
      {100, {{-0.25, -1.25, -1.5}, {-1, 1, -2}, {-1.75, -1.75, 1.25}, {-1, -0.75, 2},
             {1, 1.25, -1.75}, {1, -1, -1.25}, {0.75, -1.5, -1}, {-1.75, 1, 1.5}}, {-1, 1, -2}},
      {101, {{0.75, 1, -1}, {0.5, 1.25, 0.25}, {-0.75, 1.75, 2}, {2, 1.75, -0.5},
             {-0.5, -2, 0.25}, {1, -2, 1.5}, {-0.75, 0.75, -0.25}, {0, -0.75, -0.75}}, {-0.25, -1.75, 0.25}},
      {101, {{1, 0.25, 2}, {1, 0.5, 0.75}, {-0.25, 2, 1.5}, {-1.75, -2, -0.5},
             {-0.75, -1.75, -1.75}, {-1, -0.5, -1.25}, {1, -1.5, 1}, {-0.25, 1, 0.25}}, {0.25, -0.25, 1}},
  };
  // clang-format on
}

TEST(StepLimitTest, TheHundredthStepInAHexahedronMayConvergeAndNoLaterOne) {
  for (LongSearch const& search : long_searches()) {
    SCOPED_TRACE(print(search.nodes));
    ASSERT_FALSE(plain_find_rst(search.nodes, search.point, search.steps - 1).found);
    const Located located = plain_find_rst(search.nodes, search.point, search.steps);
    ASSERT_TRUE(located.found);
    if (search.steps <= 100) {
      EXPECT_TRUE(finds(volume(search.nodes), search.point, located.natural));
    } else {
      EXPECT_TRUE(misses(volume(search.nodes), search.point));
    }
  }
}

// ---- Values by hand: volumes

Nodes unit_cube() {
  Nodes nodes = topology_named("hexahedron").natural;
  for (Vec3<double>& node : nodes) node = (node + Vec3<double>{1, 1, 1}) * 0.5;
  return nodes;
}

TEST(FindRSTTest, TheUnitCubeWithAToleranceOfOneStillConvergesToAMillionth) {
  const CShape cube = volume(unit_cube());
  Vec3<double> rst = kSentinel;
  ASSERT_TRUE(cube.FindRST({0.501, 0.5, 0.499}, rst, 1.0));
  EXPECT_NEAR(rst.x, 0.002, 2e-6);
  EXPECT_NEAR(rst.z, -0.002, 2e-6);
  // 5e-7 beyond a face is 1e-6 in natural length, within 2e-6; 2e-6 beyond is not.
  EXPECT_TRUE(cube.FindRST({1 + 5e-7, 0.5, 0.5}, rst, 1.0));
  EXPECT_EQ(rst.x, 1.0);
  rst = kSentinel;
  EXPECT_FALSE(cube.FindRST({1 + 2e-6, 0.5, 0.5}, rst, 1.0));
  EXPECT_TRUE(equal_points(rst, kZero));
}

TEST(FindRSTTest, IgnoresTheTolerance) {
  const CShape cube = volume(unit_cube());
  for (Vec3<double> const& point :
       {Vec3<double>{0.25, 0.75, 0.125}, {0.5, 0.5, 0.5}, {1 + 5e-7, 0, 0}, {1.1, 0.5, 0.5}, {kNaN, 0, 0}}) {
    const Outcome expected = find(cube, topology_named("hexahedron"), point, 1e-6);
    for (double tol : {kNaN, -1.0, 0.0, 1e-300, 1e-3, 1.0, 1e300, kInf, -kInf}) {
      EXPECT_TRUE(equal_outcomes(find(cube, topology_named("hexahedron"), point, tol), expected)) << tol;
    }
  }
}

TEST(FindRSTTest, AResidualOfExactlyAMillionthHasConverged) {
  EXPECT_TRUE(finds(kCube, {1e-06, -1e-06, 1e-06}, {0, 0, 0}));
  EXPECT_TRUE(finds(kCube, {after(1e-06), 0, 0}, {after(1e-06), 0, 0}));
  EXPECT_TRUE(finds(kCube, {0, -after(1e-06), 0}, {0, -after(1e-06), 0}));
  EXPECT_TRUE(finds(kCube, {0, 0, after(1e-06)}, {0, 0, after(1e-06)}));
}

TEST(FindRSTTest, HexahedraReachToTwoMillionthsOverTheDistanceOfTheFaces) {
  // Faces 8, 1 and 4 apart.
  const CShape shape = volume(stretched("hexahedron", 4, 0.5, 2));
  const double limit_r = 2e-06 / 8 + 1, limit_s = 2e-06 / 1 + 1, limit_t = 2e-06 / 4 + 1;
  for (double sign : {1.0, -1.0}) {
    EXPECT_TRUE(finds(shape, {sign * 4 * limit_r, 0, 0}, {sign, 0, 0}));
    EXPECT_TRUE(misses(shape, {sign * 4 * after(limit_r), 0, 0}));
    EXPECT_TRUE(finds(shape, {0, sign * 0.5 * limit_s, 0}, {0, sign, 0}));
    EXPECT_TRUE(misses(shape, {0, sign * 0.5 * after(limit_s), 0}));
    EXPECT_TRUE(finds(shape, {0, 0, sign * 2 * limit_t}, {0, 0, sign}));
    EXPECT_TRUE(misses(shape, {0, 0, sign * 2 * after(limit_t)}));
  }
}

TEST(FindRSTTest, ATetrahedronWhoseSearchConvergesThrows) {
  const CShape tetrahedron = volume({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}});
  Vec3<double> rst = kSentinel;
  EXPECT_TRUE(throws_exactly<std::logic_error>(
      [&] {
        tetrahedron.FindRST({0.2, 0.2, 0.2}, rst, 1e-6);
      },
      "invalid number of topology items"));
  EXPECT_TRUE(equal_points(rst, kZero));
}

TEST(FindRSTTest, OtherSolidsThrowWhenConvergedAndReturnFalseWhenNot) {
  for (const char* name : {"tetrahedron", "pyramid", "wedge"}) {
    SCOPED_TRACE(name);
    Topology const& topology = topology_named(name);
    const char* text = "invalid number of topology items";
    auto outcome = [&](Nodes const& nodes, Vec3<double> const& point) {
      return find(volume(nodes), topology, point, 1e-6);
    };
    const Vec3<double> centre = volume(topology.natural).CoorAtRST(0, 0, 0);
    EXPECT_TRUE(equal_outcomes(outcome(topology.natural, centre), {false, kZero, text})) << "no step";
    EXPECT_TRUE(equal_outcomes(outcome(topology.natural, {0, 0.25, 0.5}), {false, kZero, text})) << "inside";
    EXPECT_TRUE(equal_outcomes(outcome(topology.natural, {0, 3, 0}), {false, kZero, text})) << "outside";
    EXPECT_TRUE(equal_outcomes(outcome(topology.natural, {0, kNaN, 0}), {false, kZero, ""})) << "NaN";
    EXPECT_TRUE(equal_outcomes(outcome(topology.natural, {0, kInf, 0}), {false, kZero, ""})) << "infinite";
    // All nodes in the plane z = 0.
    const Nodes flat = stretched(name, 1, 1, 0);
    EXPECT_TRUE(equal_outcomes(outcome(flat, {0, 0, 1}), {false, kZero, ""})) << "singular";
    EXPECT_TRUE(equal_outcomes(outcome(flat, volume(flat).CoorAtRST(0, 0, 0)), {false, kZero, text}))
        << "flat, no step";
  }
}

TEST(FindRSTTest, OnlyADeterminantOfExactlyZeroIsSingular) {
  // x = h r (1 - s)/2, y = h s, z = h t. The determinant at the origin is h^3/2: 2^-1021, or 0 for 2^-1081.
  const Vec3<double> far{0, 1, 0};
  Topology const& wedge = topology_named("wedge");
  const double small = 0x1p-340, tiny = 0x1p-360;
  EXPECT_TRUE(equal_outcomes(find(volume(stretched("wedge", small, small, small)), wedge, far, 0),
                             {false, kZero, "invalid number of topology items"}));
  EXPECT_TRUE(equal_outcomes(find(volume(stretched("wedge", tiny, tiny, tiny)), wedge, far, 0), {false, kZero, ""}));
}

TEST(FindRSTTest, AHexahedronWithoutExtentIsFoundAtItsOwnPlaceOnly) {
  const CShape point = volume(Nodes(8, {1, 2, 3}));
  EXPECT_TRUE(finds(point, {1, 2, 3}, {0, 0, 0}));
  EXPECT_TRUE(misses(point, {1, 2, 3.5}));
  const CShape flat = volume(stretched("hexahedron", 1, 1, 0));
  EXPECT_TRUE(finds(flat, {0, 0, 1e-07}, {0, 0, 0}));
  EXPECT_TRUE(misses(flat, {0.5, 0.5, 0}));
}

TEST(FindRSTTest, PointAndResultMayBeOneObject) {
  Random random(5401);
  for (int i = 0; i < 500; ++i) {
    Topology const& hexahedron = topology_named("hexahedron");
    const CShape shape = volume(distorted_element(random, hexahedron, 0.2));
    const Vec3<double> p = point_inside(random, hexahedron);
    Vec3<double> both = shape.CoorAtRST(p.x, p.y, p.z);
    Vec3<double> rst = kSentinel;
    ASSERT_TRUE(shape.FindRST(both, rst, 0));
    both.w = 5;
    ASSERT_TRUE(shape.FindRST(both, both, 0));
    ASSERT_TRUE(equal_points(both, rst));
  }
  Vec3<double> outside{9, 9, 9, 9};
  EXPECT_FALSE(kCube.FindRST(outside, outside, 0));
  EXPECT_TRUE(equal_points(outside, kZero));
}

// ---- Points and nodes that are not numbers

TEST(NotANumberTest, NoPointWithNaNOrInfinityIsFound) {
  for (double bad : {kNaN, kInf, -kInf}) {
    for (Topology const& topology : topologies(Talvo::Area)) {
      const CShape shape = area(topology.natural);
      for (double tol : {0.0, 1e-9, 1.0, 1e300}) {
        EXPECT_TRUE(misses(shape, {bad, 0.25, 0}, tol)) << topology << ' ' << bad;
        EXPECT_TRUE(misses(shape, {0.25, bad, 0}, tol)) << topology << ' ' << bad;
        EXPECT_TRUE(misses(shape, {bad, bad, 0}, tol)) << topology << ' ' << bad;
      }
    }
    for (Topology const& topology : topologies(Talvo::Volume)) {
      const CShape shape = volume(topology.natural);
      EXPECT_TRUE(misses(shape, {bad, 0.25, 0})) << topology << ' ' << bad;
      EXPECT_TRUE(misses(shape, {0.25, bad, 0})) << topology << ' ' << bad;
      EXPECT_TRUE(misses(shape, {0.25, 0.25, bad})) << topology << ' ' << bad;
      EXPECT_TRUE(misses(shape, {bad, bad, bad})) << topology << ' ' << bad;
    }
  }
}

TEST(NotANumberTest, NothingIsFoundInAnElementWithABadNode) {
  for (double bad : {kNaN, kInf, -kInf}) {
    for (Topology const& topology : topologies(Talvo::Area)) {
      for (std::size_t k = 0; k < topology.natural.size(); ++k) {
        for (double Vec3<double>::*component : {&Vec3<double>::x, &Vec3<double>::y}) {
          Nodes nodes = topology.natural;
          nodes[k].*component = bad;
          EXPECT_TRUE(misses(area(nodes), {0.25, 0.25, 0}, 1e-9)) << topology << ' ' << bad << " at node " << k;
        }
      }
    }
    for (Topology const& topology : topologies(Talvo::Volume)) {
      for (std::size_t k = 0; k < topology.natural.size(); ++k) {
        for (double Vec3<double>::*component : {&Vec3<double>::x, &Vec3<double>::y, &Vec3<double>::z}) {
          Nodes nodes = topology.natural;
          nodes[k].*component = bad;
          EXPECT_TRUE(misses(volume(nodes), {0.25, 0.25, 0.25})) << topology << ' ' << bad << " at node " << k;
        }
      }
    }
  }
}

// ---- What every topology promises

// A tolerance from 1e-13 to 1.
double any_tolerance(Random& random) { return std::pow(10.0, random.uniform(-13.0, 0.0)); }

Vec3<double> map(Nodes const& nodes, Topology const& topology, Vec3<double> const& p) {
  return topology.type == Talvo::Area ? plain_coor_at_rs(nodes, p.x, p.y) : plain_coor_at_rst(nodes, p.x, p.y, p.z);
}

std::vector<Topology> areas_and_volumes() {
  std::vector<Topology> all = topologies(Talvo::Area);
  for (Topology const& topology : topologies(Talvo::Volume)) all.push_back(topology);
  return all;
}

class FindTest : public ::testing::TestWithParam<Topology> {
 protected:
  // One search against the written-out one. A failure prints all that is needed to repeat it.
  static void expect_equal(Nodes const& nodes, Vec3<double> const& point, double tol) {
    const CShape shape(GetParam().type, nodes);
    const Outcome expected = plain_find(GetParam(), nodes, point, tol);
    ASSERT_TRUE(equal_outcomes(find(shape, GetParam(), point, tol), expected))
        << "expected " << expected.found << ' ' << print(expected.natural) << " \"" << expected.thrown << "\" for "
        << print(point) << ", tolerance " << std::setprecision(17) << tol << ", " << print(nodes);
  }
};
INSTANTIATE_TEST_SUITE_P(Every, FindTest, ::testing::ValuesIn(areas_and_volumes()), name_of_topology);

TEST_P(FindTest, EqualsTheWrittenOutSearchInAndAroundElements) {
  Random random(5402);
  for (int i = 0; i < 5000; ++i) {
    const Nodes nodes = distorted_element(random, GetParam(), 0.3);
    const Vec3<double> p = i % 2 == 0 ? point_inside(random, GetParam()) : point_around(random);
    ASSERT_NO_FATAL_FAILURE(expect_equal(nodes, map(nodes, GetParam(), p), any_tolerance(random)));
  }
}

TEST_P(FindTest, EqualsTheWrittenOutSearchOnTheRimOfElements) {
  Random random(5403);
  for (int i = 0; i < 5000; ++i) {
    const Nodes nodes = distorted_element(random, GetParam(), 0.2);
    // A node, or a point near a side, at a distance about the tolerance.
    const double tol = any_tolerance(random);
    Vec3<double> p = GetParam().natural[random.below(GetParam().natural.size())];
    if (i % 2 == 0) p.y = point_inside(random, GetParam()).y;
    p = p + Vec3<double>{random.uniform(-3, 3) * tol, random.uniform(-3, 3) * tol, random.uniform(-3, 3) * tol};
    ASSERT_NO_FATAL_FAILURE(expect_equal(nodes, map(nodes, GetParam(), p), tol));
  }
}

TEST_P(FindTest, EqualsTheWrittenOutSearchInTangledElements) {
  // Most of these searches wander for a hundred steps, over which a single different rounding would grow.
  Random random(5404);
  for (int i = 0; i < 5000; ++i) {
    const Nodes nodes = tangled_element(random, GetParam().nodes());
    const Vec3<double> point{random.uniform(-2, 2), random.uniform(-2, 2), random.uniform(-2, 2)};
    const Vec3<double> mapped = map(nodes, GetParam(), point_inside(random, GetParam()));
    ASSERT_NO_FATAL_FAILURE(expect_equal(nodes, i % 2 == 0 ? point : mapped, any_tolerance(random)));
  }
}

TEST_P(FindTest, EqualsTheWrittenOutSearchForAwkwardNumbers) {
  Random random(5405);
  for (int i = 0; i < 5000; ++i) {
    // Awkward nodes alone would leave nothing to be found, so they get ordinary points and ordinary nodes get theirs.
    const Nodes nodes =
        i % 2 == 0 ? awkward_element(random, GetParam().nodes()) : distorted_element(random, GetParam(), 0.3);
    const Vec3<double> point{awkward(random), awkward(random), awkward(random), awkward(random)};
    ASSERT_NO_FATAL_FAILURE(expect_equal(nodes, point, i % 3 == 0 ? awkward(random) : any_tolerance(random)));
  }
}

TEST_P(FindTest, EqualsTheWrittenOutSearchForElementsOfAnySize) {
  Random random(5406);
  for (int i = 0; i < 3000; ++i) {
    Nodes nodes = distorted_element(random, GetParam(), 0.2);
    const double size = std::ldexp(1.0, static_cast<int>(random.below(2000)) - 1000);
    for (Vec3<double>& node : nodes) node = node * size;
    const Vec3<double> point = map(nodes, GetParam(), point_inside(random, GetParam()));
    ASSERT_NO_FATAL_FAILURE(expect_equal(nodes, point, size * any_tolerance(random)));
  }
}

TEST_P(FindTest, SaysTrueOnlyForAPointThatWasReached) {
  Random random(5407);
  int reached = 0;
  for (int i = 0; i < 5000; ++i) {
    const bool ordinary = i % 2 == 0;
    const Nodes nodes =
        ordinary ? distorted_element(random, GetParam(), 0.3) : awkward_element(random, GetParam().nodes());
    const double tol = GetParam().type == Talvo::Area ? any_tolerance(random) : kSolidTol;
    const Vec3<double> point = map(nodes, GetParam(), point_inside(random, GetParam()));
    const CShape shape(GetParam().type, nodes);
    const Outcome outcome = find(shape, GetParam(), point, tol);
    if (!outcome.found) {
      ASSERT_TRUE(equal_points(outcome.natural, kZero));
      continue;
    }
    // Strictly inside nothing was clamped, and the natural point maps to the point within the tolerance.
    Vec3<double> const& p = outcome.natural;
    const bool clamped = GetParam().is_triangle() ? p.x <= 0 || p.y <= 0 || p.x + p.y >= 1
                                                  : std::max({std::fabs(p.x), std::fabs(p.y), std::fabs(p.z)}) >= 1;
    if (clamped) continue;
    ++reached;
    const Vec3<double> d = map(nodes, GetParam(), p) - point;
    ASSERT_LE(std::fabs(d.x), tol) << print(nodes);
    ASSERT_LE(std::fabs(d.y), tol) << print(nodes);
    ASSERT_TRUE(GetParam().type == Talvo::Area || std::fabs(d.z) <= tol) << print(nodes);
  }
  // Collapsed solids are never located.
  const bool collapsed = GetParam().type == Talvo::Volume && GetParam().nodes() != 8;
  EXPECT_EQ(reached == 0, collapsed);
}

TEST_P(FindTest, LeavesTheShapeAndTheNextSearchAlone) {
  Random random(5408);
  const Nodes nodes = distorted_element(random, GetParam(), 0.2);
  const CShape shape(GetParam().type, nodes);
  const Vec3<double> inside = map(nodes, GetParam(), point_inside(random, GetParam()));
  const Outcome first = find(shape, GetParam(), inside, 1e-9);
  find(shape, GetParam(), {1e6, 1e6, 1e6}, 1e-9);
  EXPECT_TRUE(equal_outcomes(find(shape, GetParam(), inside, 1e-9), first));
  for (std::size_t k = 0; k < nodes.size(); ++k) EXPECT_TRUE(equal_points(shape.Coor()[k], nodes[k]));
}

TEST_P(FindTest, IgnoresWAndReturnsZeroThere) {
  Random random(5409);
  Nodes nodes = distorted_element(random, GetParam(), 0.2);
  Vec3<double> point = map(nodes, GetParam(), point_inside(random, GetParam()));
  const Outcome expected = find(CShape(GetParam().type, nodes), GetParam(), point, 1e-9);
  EXPECT_TRUE(equal_bits(expected.natural.w, 0.0));
  for (Vec3<double>& node : nodes) node.w = kNaN;
  point.w = kNaN;
  EXPECT_TRUE(equal_outcomes(find(CShape(GetParam().type, nodes), GetParam(), point, 1e-9), expected));
}

// The elements that can be located.
class RoundTripTest : public ::testing::TestWithParam<Topology> {};
INSTANTIATE_TEST_SUITE_P(Every, RoundTripTest,
                         ::testing::Values(topology_named("triangle_3"), topology_named("triangle_6"),
                                           topology_named("quadrilateral_4"), topology_named("quadrilateral_8"),
                                           topology_named("hexahedron")),
                         name_of_topology);

// The greatest natural distance that a residual of 1 in every global component may stand for at p.
double natural_per_global(CShape const& shape, Topology const& topology, Vec3<double> const& p) {
  if (topology.type == Talvo::Area) {
    const Eigen::Matrix2d k = shape.Jacobian(Vec2<double>{p.x, p.y}).inverse();
    return k.transpose().cwiseAbs().rowwise().sum().maxCoeff();
  }
  const Eigen::Matrix3d k = shape.Jacobian(p).inverse();
  return k.transpose().cwiseAbs().rowwise().sum().maxCoeff();
}

TEST_P(RoundTripTest, ReturnsToThePointThatWasMapped) {
  // The functions of the quadratic elements change twice as fast near a node as those of the linear ones, so that half
  // the distortion leaves the same safety from folding.
  const bool quadratic = GetParam().natural.size() > 4 && GetParam().type == Talvo::Area;
  const Vec3<double> centre = GetParam().is_triangle() ? Vec3<double>{1.0 / 3, 1.0 / 3, 0} : Vec3<double>{0, 0, 0};
  Random random(5410);
  for (int i = 0; i < 5000; ++i) {
    const Nodes nodes = distorted_element(random, GetParam(), quadratic ? 0.1 : 0.2);
    const CShape shape(GetParam().type, nodes);
    // Not quite on the rim: there a residual within the tolerance may stand for a natural point just outside.
    const Vec3<double> p = centre + (point_inside(random, GetParam()) - centre) * 0.9999;
    const double tol = GetParam().type == Talvo::Area ? 1e-9 : kSolidTol;
    const Outcome outcome = find(shape, GetParam(), map(nodes, GetParam(), p), tol);
    ASSERT_TRUE(outcome.found) << print(p) << ", " << print(nodes);
    // A residual of tol in natural length, doubled for the change of the Jacobian on the way.
    const double bound = 2 * tol * natural_per_global(shape, GetParam(), p);
    ASSERT_NEAR(outcome.natural.x, p.x, bound) << print(nodes);
    ASSERT_NEAR(outcome.natural.y, p.y, bound) << print(nodes);
    ASSERT_NEAR(outcome.natural.z, p.z, bound) << print(nodes);
    ASSERT_TRUE(equal_bits(outcome.natural.w, 0.0));
  }
}

TEST_P(RoundTripTest, ReturnsToTheNodesOfAnAffineElement) {
  // The mapping is linear, so that one step arrives up to rounding, and the rim itself is found.
  Random random(5412);
  for (int i = 0; i < 2000; ++i) {
    const Nodes nodes = distorted_element(random, GetParam(), 0.0);
    const std::size_t k = random.below(nodes.size());
    Vec3<double> const& p = GetParam().natural[k];
    const Outcome outcome = find(CShape(GetParam().type, nodes), GetParam(), nodes[k], kSolidTol);
    ASSERT_TRUE(outcome.found) << "node " << k << ", " << print(nodes);
    // Coordinates up to 10 and lengths from 0.25 on; some twenty roundings.
    ASSERT_NEAR(outcome.natural.x, p.x, 1e-13) << print(nodes);
    ASSERT_NEAR(outcome.natural.y, p.y, 1e-13) << print(nodes);
    ASSERT_NEAR(outcome.natural.z, p.z, 1e-13) << print(nodes);
  }
}

TEST_P(RoundTripTest, StaysInTheElement) {
  Random random(5411);
  int found = 0;
  for (int i = 0; i < 5000; ++i) {
    const Nodes nodes = distorted_element(random, GetParam(), 0.1);
    const Vec3<double> natural = point_around(random);
    // A wide tolerance lets many points from outside in.
    const Outcome outcome = find(CShape(GetParam().type, nodes), GetParam(), map(nodes, GetParam(), natural), 0.5);
    if (!outcome.found) continue;
    ++found;
    Vec3<double> const& p = outcome.natural;
    if (GetParam().is_triangle()) {
      ASSERT_TRUE(p.x >= 0 && p.y >= 0 && p.x <= 1 && p.y <= 1.0 - p.x) << print(p);
    } else {
      ASSERT_LE(std::max({std::fabs(p.x), std::fabs(p.y), std::fabs(p.z)}), 1.0) << print(p);
    }
  }
  EXPECT_GT(found, 100);
}

// ---- Failures

// A shape of every space type and node count, all nodes in one place, and a point there.
template <class Check>
void for_every_shape(Check const& check) {
  for (int type : {-1, 0, 1, 2, 3, 4}) {
    for (int count = 0; count <= 21; ++count) {
      SCOPED_TRACE(::testing::Message() << "space type " << type << ", " << count << " nodes");
      check(CShape(static_cast<Talvo::SpaceType>(type), Nodes(static_cast<std::size_t>(count), {1, 2, 3})), type,
            count);
    }
  }
}

TEST(FindFailureTest, FindRSChecksTheSpaceTypeThenZeroesThenTheNodeCount) {
  for_every_shape([](CShape const& shape, int type, int count) {
    for (double x : {1.0, 5.0, kNaN}) {
      Vec2<double> rs{7, 8};
      auto call = [&] { return shape.FindRS({x, 2, 3}, rs, 1e-9); };
      if (type != 2) {
        EXPECT_TRUE(throws_exactly<std::logic_error>(call, "invalid SpaceType specified"));
        EXPECT_TRUE(equal_points(rs, Vec2<double>{7, 8})) << "untouched";
        continue;
      }
      if (count == 3 || count == 4 || count == 6 || count == 8) {
        EXPECT_EQ(call(), x == 1.0);
      } else {
        EXPECT_TRUE(throws_exactly<std::logic_error>(call, "invalid number of values for 2D element"));
      }
      EXPECT_TRUE(equal_points(rs, Vec2<double>{0, 0}));
    }
  });
}

TEST(FindFailureTest, FindRSTChecksTheSpaceTypeThenZeroesThenTheNodeCount) {
  for_every_shape([](CShape const& shape, int type, int count) {
    for (double x : {1.0, 5.0, kNaN}) {
      Vec3<double> rst = kSentinel;
      auto call = [&] { return shape.FindRST({x, 2, 3}, rst, 1e-9); };
      if (type != 3) {
        EXPECT_TRUE(throws_exactly<std::logic_error>(call, "invalid SpaceType specified"));
        EXPECT_TRUE(equal_points(rst, kSentinel)) << "untouched";
        continue;
      }
      if (count != 4 && count != 5 && count != 6 && count != 8) {
        EXPECT_TRUE(throws_exactly<std::logic_error>(call, "invalid number of values for 3D element"));
      } else if (x == 1.0 && count != 8) {
        EXPECT_TRUE(throws_exactly<std::logic_error>(call, "invalid number of topology items"));
      } else {
        EXPECT_EQ(call(), x == 1.0);
      }
      EXPECT_TRUE(equal_points(rst, kZero));
    }
  });
}

}  // namespace

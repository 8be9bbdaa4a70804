#include <gtest/gtest.h>
#include <talvo/shape/shape.h>

#include <array>
#include <cmath>
#include <limits>
#include <stdexcept>
#include <string>
#include <vector>

#include "shape/plain_mapping.h"
#include "shape/textbook_mapping.h"
#include "support/bits.h"
#include "support/elements.h"
#include "support/failures.h"
#include "support/random.h"

namespace {

using namespace talvo::test;
using Talvo::Util::CShape;

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kEps = std::numeric_limits<double>::epsilon();
// The shortest vector that still has a direction is 2^-52 long.
constexpr double kShortest = 2.220446049250313e-16;
static_assert(kShortest == 0x1p-52);
const double kTooShort = std::nextafter(kShortest, 0.0);

// The three vectors of a shape at a natural point.
struct Frame {
  Vec3<double> r, s, t;
};

Frame frame_of(CShape const& shape, Topology const& topology, Vec3<double> const& p, bool normalise) {
  if (topology.type == Talvo::Volume) {
    return {shape.VectorR(p, normalise), shape.VectorS(p, normalise), shape.VectorT(p, normalise)};
  }
  const Vec2<double> rs{p.x, p.y};
  return {shape.VectorR(rs, normalise), shape.VectorS(rs, normalise), shape.VectorT(rs, normalise)};
}

Frame plain_frame(Topology const& topology, Nodes const& nodes, Vec3<double> const& p, bool normalise) {
  auto finish = [&](Vec3<double> const& v) { return normalise ? plain_unit(v) : v; };
  if (topology.type == Talvo::Volume) {
    const auto d = plain_volume_derivatives(topology.nodes(), p.x, p.y, p.z);
    return {finish(sum_over_nodes(d[0], nodes)), finish(sum_over_nodes(d[1], nodes)),
            finish(sum_over_nodes(d[2], nodes))};
  }
  const auto d = plain_area_derivatives(topology.nodes(), p.x, p.y);
  const Vec3<double> r = sum_over_nodes(d[0], nodes);
  const Vec3<double> s = sum_over_nodes(d[1], nodes);
  const Vec3<double> a = plain_unit(r);
  const Vec3<double> b = plain_unit(s);
  const Vec3<double> n{a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
  return {finish(r), finish(s), finish(n)};
}

::testing::AssertionResult equal_frames(Frame const& actual, Frame const& expected) {
  auto r = equal_points(actual.r, expected.r);
  if (!r) return r << " in VectorR";
  auto s = equal_points(actual.s, expected.s);
  if (!s) return s << " in VectorS";
  auto t = equal_points(actual.t, expected.t);
  if (!t) return t << " in VectorT";
  return ::testing::AssertionSuccess();
}

std::string where(Nodes const& nodes, Vec3<double> const& p) { return "at " + print(p) + ", " + print(nodes); }

// ---- Values by hand

TEST(AreaTangentsTest, OfASquareOfSideTwoAreTheAxes) {
  const CShape square(Talvo::Area, {{0, 0, 0}, {2, 0, 0}, {2, 2, 0}, {0, 2, 0}});
  const Vec2<double> middle{0, 0};
  EXPECT_TRUE(equal_points(square.VectorR(middle, false), {1, 0, 0}));
  EXPECT_TRUE(equal_points(square.VectorS(middle, false), {0, 1, 0}));
  EXPECT_TRUE(equal_points(square.VectorT(middle, false), {0, 0, 1}));
}

TEST(AreaTangentsTest, FollowTheElementOutOfTheXYPlane) {
  const CShape square(Talvo::Area, {{0, 0, 0}, {0, 2, 0}, {0, 2, 2}, {0, 0, 2}});
  for (bool normalise : {false, true}) {
    EXPECT_TRUE(equal_points(square.VectorR(Vec2<double>{0, 0}, normalise), {0, 1, 0}));
    EXPECT_TRUE(equal_points(square.VectorS(Vec2<double>{0, 0}, normalise), {0, 0, 1}));
    EXPECT_TRUE(equal_points(square.VectorT(Vec2<double>{0, 0}, normalise), {1, 0, 0}));
  }
}

TEST(AreaTangentsTest, TheRawNormalHasTheSineOfTheAngleAsItsLength) {
  // A parallelogram with a side of 6 along x and one of 4 at 30 degrees to it. The normal's length knows neither.
  const double c = std::sqrt(3.0) / 2;
  const CShape shape(Talvo::Area, {{0, 0, 0}, {6, 0, 0}, {6 + 4 * c, 2, 0}, {4 * c, 2, 0}});
  const Vec3<double> raw = shape.VectorT(Vec2<double>{0.3, -0.4}, false);
  EXPECT_EQ(raw.x, 0);
  EXPECT_EQ(raw.y, 0);
  // sqrt(3), the nodes, the tangent, its length and the quotient: 8 roundings of 1/2 ulp each.
  EXPECT_NEAR(raw.z, 0.5, 4 * kEps);
  EXPECT_TRUE(equal_points(shape.VectorT(Vec2<double>{0.3, -0.4}, true), {0, 0, 1}));
}

TEST(AreaTangentsTest, TheNormalPointsAwayFromTheSideOnWhichTheNodesRunClockwise) {
  const CShape clockwise(Talvo::Area, {{0, 0, 0}, {0, 2, 0}, {2, 2, 0}, {2, 0, 0}});
  EXPECT_TRUE(equal_points(clockwise.VectorT(Vec2<double>{0, 0}, true), {0, 0, -1}));
}

TEST(VolumeTangentsTest, OfACubeOfSideTwoAreTheAxes) {
  const CShape cube(Talvo::Volume,
                    {{0, 0, 0}, {2, 0, 0}, {2, 2, 0}, {0, 2, 0}, {0, 0, 2}, {2, 0, 2}, {2, 2, 2}, {0, 2, 2}});
  const Vec3<double> middle{0, 0, 0};
  EXPECT_TRUE(equal_points(cube.VectorR(middle, false), {1, 0, 0}));
  EXPECT_TRUE(equal_points(cube.VectorS(middle, false), {0, 1, 0}));
  EXPECT_TRUE(equal_points(cube.VectorT(middle, false), {0, 0, 1}));
}

TEST(VolumeTangentsTest, TheTTangentOfASolidIsNoNormal) {
  // A sheared cube: t leans by (3, 0, 4), and keeps its length of 5 unless it is to be normalised.
  Nodes nodes = topologies().back().natural;
  for (Vec3<double>& node : nodes) node = {node.x + 3 * node.z, node.y, 4 * node.z};
  const CShape shape(Talvo::Volume, nodes);
  EXPECT_TRUE(equal_points(shape.VectorT(Vec3<double>{0.5, 0, -0.25}, false), {3, 0, 4}));
  EXPECT_TRUE(equal_points(shape.VectorT(Vec3<double>{0.5, 0, -0.25}, true), {3.0 / 5, 0, 4.0 / 5}));
}

// ---- Lengths at the limits. The r tangent of a 3-node triangle is node 1 minus node 0.

CShape triangle(Vec3<double> const& along_r, Vec3<double> const& along_s) {
  return {Talvo::Area, {{0, 0, 0}, along_r, along_s}};
}

const Vec2<double> kOrigin{0, 0};

TEST(UnitTangentTest, BelowTheMachineEpsilonIsZero) {
  const std::array<Vec3<double>, 3> axes{{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};
  for (Vec3<double> const& axis : axes) {
    for (double sign : {1.0, -1.0}) {
      SCOPED_TRACE(print(axis * sign));
      const CShape has_direction = triangle(axis * (sign * kShortest), {1, 1, 1});
      EXPECT_EQ(has_direction.VectorR(kOrigin, true), axis * sign);
      EXPECT_EQ(has_direction.VectorR(kOrigin, false), axis * (sign * kShortest));
      const CShape too_short = triangle(axis * (sign * kTooShort), {1, 1, 1});
      EXPECT_TRUE(equal_points(too_short.VectorR(kOrigin, true), {0, 0, 0}));
      EXPECT_EQ(too_short.VectorR(kOrigin, false), axis * (sign * kTooShort));
    }
  }
}

TEST(UnitTangentTest, TheSameLimitHoldsForSAndForSolids) {
  EXPECT_EQ(triangle({1, 1, 1}, {0, kShortest, 0}).VectorS(kOrigin, true), (Vec3<double>{0, 1, 0}));
  EXPECT_TRUE(equal_points(triangle({1, 1, 1}, {0, kTooShort, 0}).VectorS(kOrigin, true), {0, 0, 0}));
  for (double length : {kShortest, kTooShort}) {
    Nodes nodes = topologies().back().natural;
    for (Vec3<double>& node : nodes) node = node * length;
    const CShape shape(Talvo::Volume, nodes);
    const double unit = length < kShortest ? 0.0 : 1.0;
    EXPECT_EQ(shape.VectorR(Vec3<double>{0, 0, 0}, true), (Vec3<double>{unit, 0, 0}));
    EXPECT_EQ(shape.VectorS(Vec3<double>{0, 0, 0}, true), (Vec3<double>{0, unit, 0}));
    EXPECT_EQ(shape.VectorT(Vec3<double>{0, 0, 0}, true), (Vec3<double>{0, 0, unit}));
  }
}

TEST(UnitTangentTest, TheSameLimitHoldsForTheNormal) {
  // Unit tangents (1, 0, 0) and (1, d, 0), whose length rounds to 1: the normal is (0, 0, d).
  for (double d : {kShortest, kTooShort}) {
    const CShape shape = triangle({1, 0, 0}, {1, d, 0});
    EXPECT_TRUE(equal_points(shape.VectorT(kOrigin, false), {0, 0, d}));
    EXPECT_TRUE(equal_points(shape.VectorT(kOrigin, true), {0, 0, d < kShortest ? 0.0 : 1.0}));
  }
}

TEST(UnitTangentTest, TheNormalOfATooShortTangentIsZero) {
  EXPECT_TRUE(equal_points(triangle({kTooShort, 0, 0}, {0, 1, 0}).VectorT(kOrigin, false), {0, 0, 0}));
  EXPECT_TRUE(equal_points(triangle({1, 0, 0}, {0, kTooShort, 0}).VectorT(kOrigin, true), {0, 0, 0}));
  EXPECT_TRUE(equal_points(triangle({kShortest, 0, 0}, {0, kShortest, 0}).VectorT(kOrigin, false), {0, 0, 1}));
}

TEST(UnitTangentTest, ALengthWhoseSquareOverflowsGivesZeroAndNaNStays) {
  // 1e200 squared is infinite, and 1e200 / inf is 0.
  EXPECT_TRUE(equal_points(triangle({1e200, 0, 0}, {0, 1, 0}).VectorR(kOrigin, true), {0, 0, 0}));
  EXPECT_TRUE(equal_points(triangle({1e200, 0, 0}, {0, 1, 0}).VectorR(kOrigin, false), {1e200, 0, 0}));
  EXPECT_TRUE(equal_points(triangle({kNaN, 0, 1}, {0, 1, 0}).VectorR(kOrigin, true), {kNaN, kNaN, kNaN}));
  EXPECT_TRUE(equal_points(triangle({kNaN, 0, 1}, {0, 1, 0}).VectorR(kOrigin, false), {kNaN, 0, 1}));
  EXPECT_TRUE(equal_points(triangle({kInf, 3, -1}, {0, 1, 0}).VectorR(kOrigin, true), {kNaN, 0, -0.0}));
}

// ---- What every topology promises

std::vector<Topology> areas_and_volumes() {
  std::vector<Topology> all = topologies(Talvo::Area);
  for (Topology const& topology : topologies(Talvo::Volume)) all.push_back(topology);
  return all;
}

class TangentsTest : public ::testing::TestWithParam<Topology> {};
INSTANTIATE_TEST_SUITE_P(Every, TangentsTest, ::testing::ValuesIn(areas_and_volumes()), name_of_topology);

TEST_P(TangentsTest, EqualTheWrittenOutSumsBitForBit) {
  Random random(5301);
  for (int i = 0; i < 4000; ++i) {
    const bool tangled = i % 2 == 0;
    const Nodes nodes =
        tangled ? tangled_element(random, GetParam().nodes()) : distorted_element(random, GetParam(), 0.2);
    const Vec3<double> p = i % 3 == 0 ? point_inside(random, GetParam()) : point_around(random);
    const CShape shape(GetParam().type, nodes);
    for (bool normalise : {false, true}) {
      ASSERT_TRUE(equal_frames(frame_of(shape, GetParam(), p, normalise), plain_frame(GetParam(), nodes, p, normalise)))
          << where(nodes, p);
    }
  }
}

TEST_P(TangentsTest, EqualTheWrittenOutSumsForAwkwardNumbers) {
  Random random(5302);
  for (int i = 0; i < 4000; ++i) {
    const Nodes nodes = awkward_element(random, GetParam().nodes());
    const Vec3<double> p{awkward(random), awkward(random), awkward(random)};
    const CShape shape(GetParam().type, nodes);
    for (bool normalise : {false, true}) {
      ASSERT_TRUE(equal_frames(frame_of(shape, GetParam(), p, normalise), plain_frame(GetParam(), nodes, p, normalise)))
          << where(nodes, p);
    }
  }
}

using Wide = std::array<long double, 3>;

long double length(Wide const& v) { return std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]); }

Wide unit(Wide v) {
  const long double l = length(v);
  for (long double& c : v) c /= l;
  return v;
}

// The tangent along one natural direction in extended precision.
Wide textbook_tangent(std::vector<Dual> const& functions, Nodes const& nodes, std::size_t direction) {
  Wide v{};
  for (std::size_t k = 0; k < nodes.size(); ++k) {
    v[0] += functions[k].d[direction] * nodes[k].x;
    v[1] += functions[k].d[direction] * nodes[k].y;
    v[2] += functions[k].d[direction] * nodes[k].z;
  }
  return v;
}

void expect_near(Vec3<double> const& actual, Wide const& expected, double bound, std::string const& place) {
  ASSERT_NEAR(actual.x, static_cast<double>(expected[0]), bound) << place;
  ASSERT_NEAR(actual.y, static_cast<double>(expected[1]), bound) << place;
  ASSERT_NEAR(actual.z, static_cast<double>(expected[2]), bound) << place;
}

TEST_P(TangentsTest, AgreeWithTheTextbookInExtendedPrecision) {
  Random random(5303);
  for (int i = 0; i < 2000; ++i) {
    const Nodes nodes = distorted_element(random, GetParam(), 0.1);
    const Vec3<double> p = point_inside(random, GetParam());
    const CShape shape(GetParam().type, nodes);
    const Frame raw = frame_of(shape, GetParam(), p, false);
    const Frame units = frame_of(shape, GetParam(), p, true);
    const std::vector<Dual> functions = textbook_functions(GetParam(), p);
    const Wide r = textbook_tangent(functions, nodes, 0);
    const Wide s = textbook_tangent(functions, nodes, 1);
    // Inside the element no product in a derivative exceeds 4; at most 10 roundings of a term and 8 of the sum.
    double sum = 0;
    for (Vec3<double> const& n : nodes) sum += 4 * (std::fabs(n.x) + std::fabs(n.y) + std::fabs(n.z));
    const double bound = 16 * kEps * sum;
    const std::string place = where(nodes, p);
    expect_near(raw.r, r, bound, place);
    expect_near(raw.s, s, bound, place);
    // A direction is as uncertain as its vector over its length; length and quotient add less than 4 eps.
    auto unit_bound = [&](Wide const& v) { return 2 * bound / static_cast<double>(length(v)) + 4 * kEps; };
    // A merged element has points without an r tangent.
    if (static_cast<double>(length(r)) > 1e-3) expect_near(units.r, unit(r), unit_bound(r), place);
    if (static_cast<double>(length(s)) > 1e-3) expect_near(units.s, unit(s), unit_bound(s), place);
    if (GetParam().type == Talvo::Volume) {
      const Wide t = textbook_tangent(functions, nodes, 2);
      expect_near(raw.t, t, bound, place);
      expect_near(units.t, unit(t), unit_bound(t), place);
      continue;
    }
    const Wide a = unit(r), b = unit(s);
    const Wide n{a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
    const double normal_bound = 2 * (unit_bound(r) + unit_bound(s)) + 4 * kEps;
    expect_near(raw.t, n, normal_bound, place);
    expect_near(units.t, unit(n), 2 * normal_bound / static_cast<double>(length(n)) + 4 * kEps, place);
  }
}

TEST_P(TangentsTest, OfOnePlaceAreZeroNormalisedOrNot) {
  const CShape at_origin(GetParam().type, Nodes(GetParam().natural.size(), Vec3<double>{0, 0, 0}));
  // Away from the origin only derivatives without rounding add up to exactly 0: at this point they are multiples of
  // 1/64.
  const CShape elsewhere(GetParam().type, Nodes(GetParam().natural.size(), Vec3<double>{3, -5, 7}));
  for (bool normalise : {false, true}) {
    const Vec3<double> zero{0, 0, 0, 0};
    EXPECT_TRUE(equal_frames(frame_of(at_origin, GetParam(), {0.3, 0.2, 0.1}, normalise), {zero, zero, zero}));
    EXPECT_TRUE(equal_frames(frame_of(elsewhere, GetParam(), {0.25, 0.5, -0.5}, normalise), {zero, zero, zero}));
  }
}

TEST_P(TangentsTest, IgnoreWAndReturnZeroThere) {
  Random random(5304);
  Nodes nodes = distorted_element(random, GetParam(), 0.2);
  const Vec3<double> p = point_inside(random, GetParam());
  for (Vec3<double>& node : nodes) node.w = 0;
  const CShape plain(GetParam().type, nodes);
  for (Vec3<double>& node : nodes) node.w = kNaN;
  const CShape with_w(GetParam().type, nodes);
  for (bool normalise : {false, true}) {
    const Frame frame = frame_of(with_w, GetParam(), {p.x, p.y, p.z, kNaN}, normalise);
    EXPECT_TRUE(equal_frames(frame, frame_of(plain, GetParam(), p, normalise)));
    for (Vec3<double> const& v : {frame.r, frame.s, frame.t}) EXPECT_TRUE(equal_bits(v.w, 0.0));
  }
}

// ---- Failures

// Every space type and node count, known or not: the space type is checked first and is a runtime_error.
TEST(TangentsFailureTest, CheckTheSpaceTypeAndThenTheNodeCount) {
  for (int type : {-1, 0, 1, 2, 3, 4}) {
    for (int count = 0; count <= 21; ++count) {
      const CShape shape(static_cast<Talvo::SpaceType>(type), Nodes(static_cast<std::size_t>(count), {1, 2, 3}));
      auto expect = [&](auto const& call, int wanted, const char* text, bool count_fits) {
        SCOPED_TRACE(::testing::Message() << "space type " << type << ", " << count << " nodes, " << text);
        if (type != wanted) {
          EXPECT_TRUE(throws_exactly<std::runtime_error>(call, text));
        } else if (!count_fits) {
          EXPECT_TRUE(throws_exactly<std::logic_error>(call, "invalid number of nodes"));
        } else {
          EXPECT_NO_THROW(call());
        }
      };
      for (bool normalise : {false, true}) {
        const Vec2<double> rs{0.1, 0.2};
        const bool area = count == 3 || count == 4 || count == 6 || count == 8;
        expect([&] { shape.VectorR(rs, normalise); }, 2, "Not area", area);
        expect([&] { shape.VectorS(rs, normalise); }, 2, "Not area", area);
        expect([&] { shape.VectorT(rs, normalise); }, 2, "Not area", area);
        const Vec3<double> rst{0.1, 0.2, 0.3};
        const bool volume = count == 4 || count == 5 || count == 6 || count == 8;
        expect([&] { shape.VectorR(rst, normalise); }, 3, "Not volume", volume);
        expect([&] { shape.VectorS(rst, normalise); }, 3, "Not volume", volume);
        expect([&] { shape.VectorT(rst, normalise); }, 3, "Not volume", volume);
      }
    }
  }
}

TEST(TangentsFailureTest, APointOfTheWrongDimensionIsARuntimeError) {
  const CShape volume(Talvo::Volume, Nodes(8, {0, 0, 0}));
  const CShape area(Talvo::Area, Nodes(8, {0, 0, 0}));
  EXPECT_TRUE(throws_exactly<std::runtime_error>([&] { volume.VectorR(Vec2<double>{0, 0}, false); }, "Not area"));
  EXPECT_TRUE(throws_exactly<std::runtime_error>([&] { area.VectorR(Vec3<double>{0, 0, 0}, false); }, "Not volume"));
}

}  // namespace

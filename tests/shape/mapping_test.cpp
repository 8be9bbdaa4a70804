#include <gtest/gtest.h>
#include <talvo/shape/shape.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "shape/accumulate_derivatives.h"
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

// The mapping of the topology's own dimension.
Vec3<double> map(CShape const& shape, Topology const& topology, Vec3<double> const& p) {
  if (topology.type == Talvo::Line) return shape.CoorAtR(p.x);
  if (topology.type == Talvo::Area) return shape.CoorAtRS(p.x, p.y);
  return shape.CoorAtRST(p.x, p.y, p.z);
}

Row plain_functions(Topology const& topology, Vec3<double> const& p) {
  if (topology.type == Talvo::Line) return plain_line(topology.nodes(), p.x);
  if (topology.type == Talvo::Area) return plain_area(topology.nodes(), p.x, p.y);
  return plain_volume(topology.nodes(), p.x, p.y, p.z);
}

// A Jacobian of any size, row by row.
using Rows = std::vector<std::vector<double>>;

template <int N>
Rows rows_of(Eigen::Matrix<double, N, N> const& j) {
  Rows rows(N, std::vector<double>(N));
  for (int i = 0; i < N; ++i) {
    for (int k = 0; k < N; ++k) rows[static_cast<std::size_t>(i)][static_cast<std::size_t>(k)] = j(i, k);
  }
  return rows;
}

Rows jacobian(CShape const& shape, Topology const& topology, Vec3<double> const& p) {
  if (topology.type == Talvo::Line) return rows_of<1>(shape.Jacobian(p.x));
  if (topology.type == Talvo::Area) return rows_of<2>(shape.Jacobian(Vec2<double>{p.x, p.y}));
  return rows_of<3>(shape.Jacobian(p));
}

// The first N components of the sums with each row of derivatives.
template <std::size_t N>
Rows sums_over_nodes(std::array<Row, N> const& derivatives, Nodes const& nodes) {
  Rows rows;
  for (Row const& d : derivatives) {
    const Vec3<double> sum = sum_over_nodes(d, nodes);
    const std::array<double, 3> components{sum.x, sum.y, sum.z};
    rows.emplace_back(components.begin(), components.begin() + N);
  }
  return rows;
}

Rows plain_jacobian(Topology const& topology, Nodes const& nodes, Vec3<double> const& p) {
  // The straight line is a difference, not a sum: its zero keeps a sign.
  if (topology.nodes() == 2) return {{(nodes[1].x - nodes[0].x) * 0.5}};
  if (topology.type == Talvo::Line) return sums_over_nodes(plain_line_derivatives(3, p.x), nodes);
  if (topology.type == Talvo::Area) return sums_over_nodes(plain_area_derivatives(topology.nodes(), p.x, p.y), nodes);
  return sums_over_nodes(plain_volume_derivatives(topology.nodes(), p.x, p.y, p.z), nodes);
}

::testing::AssertionResult equal_rows(Rows const& actual, Rows const& expected) {
  if (actual.size() != expected.size()) return ::testing::AssertionFailure() << actual.size() << " rows";
  for (std::size_t i = 0; i < actual.size(); ++i) {
    for (std::size_t j = 0; j < actual.size(); ++j) {
      auto same = equal_bits(actual[i][j], expected[i][j]);
      if (!same) return same << " at (" << i << ", " << j << ")";
    }
  }
  return ::testing::AssertionSuccess();
}

Rows diagonal(std::size_t n, double value) {
  Rows rows(n, std::vector<double>(n, 0.0));
  for (std::size_t i = 0; i < n; ++i) rows[i][i] = value;
  return rows;
}

Topology const& topology_named(std::string const& name) {
  return *std::ranges::find_if(topologies(), [&](Topology const& t) { return t.name == name; });
}

// Corners at 0 and `size`, in the order of the natural nodes.
Nodes cube(double size) {
  Nodes nodes = topology_named("hexahedron").natural;
  for (Vec3<double>& node : nodes) node = (node + Vec3<double>{1, 1, 1}) * (0.5 * size);
  return nodes;
}

std::string where(Nodes const& nodes, Vec3<double> const& p) { return "at " + print(p) + ", " + print(nodes); }

// ---- Values by hand

TEST(LineJacobianTest, IsHalfTheLengthAlongXEverywhere) {
  const CShape line(Talvo::Line, {{1, 0, 0}, {5, 0, 0}});
  for (double r : {-1.0, 0.0, 0.3, 1.0, 17.0, kInf, kNaN}) EXPECT_TRUE(equal_bits(line.Jacobian(r)(0, 0), 2.0)) << r;
}

TEST(LineJacobianTest, IsZeroForALineAlongYOrZ) {
  EXPECT_TRUE(equal_bits(CShape(Talvo::Line, {{0, 0, 0}, {0, 4, 0}}).Jacobian(0.5)(0, 0), 0.0));
  EXPECT_TRUE(equal_bits(CShape(Talvo::Line, {{0, 0, 0}, {0, 0, 4}}).Jacobian(0.5)(0, 0), 0.0));
  EXPECT_TRUE(equal_bits(CShape(Talvo::Line, {{2, 0, 1}, {2, 1, 4}, {2, 5, 5}}).Jacobian(0.5)(0, 0), 0.0));
}

TEST(LineJacobianTest, OfThreeNodesFollowsTheCurve) {
  // x = 1 + 2r + 3r^2 goes through 2, 6 and 1; dx/dr = 2 + 6r.
  const CShape line(Talvo::Line, {{2, 9, 9}, {6, 9, 9}, {1, 9, 9}});
  EXPECT_EQ(line.Jacobian(-1.0)(0, 0), -4.0);
  EXPECT_EQ(line.Jacobian(0.0)(0, 0), 2.0);
  EXPECT_EQ(line.Jacobian(0.5)(0, 0), 5.0);
}

TEST(LineJacobianTest, OfTwoNodesIsADifferenceSoItsZeroKeepsItsSign) {
  // -0.0 - 0.0 is -0.0. A sum that starts from +0.0 would give +0.0.
  EXPECT_TRUE(equal_bits(CShape(Talvo::Line, {{0.0, 0, 0}, {-0.0, 0, 0}}).Jacobian(0.0)(0, 0), -0.0));
  EXPECT_TRUE(equal_bits(CShape(Talvo::Line, {{-0.0, 0, 0}, {-0.0, 0, 0}}).Jacobian(0.0)(0, 0), 0.0));
}

TEST(AreaJacobianTest, OfASquareOfSideTwoIsTheIdentity) {
  const CShape square(Talvo::Area, {{0, 0, 0}, {2, 0, 0}, {2, 2, 0}, {0, 2, 0}});
  Random random(5201);
  for (int i = 0; i < 100; ++i) {
    // Multiples of 1/8 keep every product exact.
    const Vec2<double> rs{static_cast<double>(random.below(33)) / 8 - 2, static_cast<double>(random.below(33)) / 8 - 2};
    EXPECT_TRUE(equal_rows(rows_of<2>(square.Jacobian(rs)), diagonal(2, 1.0))) << rs.x << ", " << rs.y;
  }
}

TEST(AreaJacobianTest, OfNodesThatDifferOnlyInZIsZero) {
  for (Topology const& topology : topologies(Talvo::Area)) {
    Nodes nodes;
    for (int k = 0; k < topology.nodes(); ++k) nodes.push_back({0, 0, 1.0 + k * k});
    const CShape shape(Talvo::Area, nodes);
    EXPECT_TRUE(equal_rows(jacobian(shape, topology, {0.25, 0.5, 0}), diagonal(2, 0.0))) << topology;
  }
}

TEST(AreaJacobianTest, OfTheUnitTriangleIsTheIdentity) {
  const CShape triangle(Talvo::Area, {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}});
  const double third = 1.0 / 3.0;
  const Vec3<double> centroid = triangle.CoorAtRS(third, third);
  EXPECT_TRUE(equal_points(centroid, {third, third, 0}));
  EXPECT_TRUE(equal_rows(rows_of<2>(triangle.Jacobian(Vec2<double>{third, third})), diagonal(2, 1.0)));
}

TEST(AreaJacobianTest, HasTheNaturalDirectionInTheRowAndTheGlobalOneInTheColumn) {
  // x = 2r + 3s and y = 5r + 7s, at the corners (-1, -1), (1, -1), (1, 1), (-1, 1).
  const CShape shape(Talvo::Area, {{-5, -12, 0}, {-1, -2, 0}, {5, 12, 0}, {1, 2, 0}});
  const Eigen::Matrix<double, 2, 2> j = shape.Jacobian(Vec2<double>{0.5, -0.25});
  EXPECT_EQ(j(0, 0), 2.0);  // dx/dr
  EXPECT_EQ(j(0, 1), 5.0);  // dy/dr
  EXPECT_EQ(j(1, 0), 3.0);  // dx/ds
  EXPECT_EQ(j(1, 1), 7.0);  // dy/ds
  EXPECT_EQ(j.data()[1], 3.0) << "columns lie one after the other in memory";
}

TEST(AreaJacobianTest, OfTheQuadraticElementsFollowsTheCurve) {
  // x = r + 2 r s^2 has dx/dr = 1 + 2 s^2, dx/ds = 4 r s; y = s + r^2 has dy/dr = 2r, dy/ds = 1. Both functions lie in
  // the span of the 8-node quadrilateral.
  Nodes quadrilateral;
  for (Vec3<double> const& n : topology_named("quadrilateral_8").natural) {
    quadrilateral.push_back({n.x + 2 * n.x * n.y * n.y, n.y + n.x * n.x, 0});
  }
  EXPECT_TRUE(equal_rows(rows_of<2>(CShape(Talvo::Area, quadrilateral).Jacobian(Vec2<double>{0.5, -0.25})),
                         {{1.125, 1.0}, {-0.5, 1.0}}));
  // x = r + r s, y = s^2 in the 6-node triangle.
  Nodes triangle;
  for (Vec3<double> const& n : topology_named("triangle_6").natural) {
    triangle.push_back({n.x + n.x * n.y, n.y * n.y, 0});
  }
  EXPECT_TRUE(equal_rows(rows_of<2>(CShape(Talvo::Area, triangle).Jacobian(Vec2<double>{0.5, 0.25})),
                         {{1.25, 0.0}, {0.5, 0.5}}));
}

TEST(CoorAtRSTTest, OfTheUnitCubeHasItsMiddleAtTheOrigin) {
  const CShape shape(Talvo::Volume, cube(1));
  EXPECT_TRUE(equal_points(shape.CoorAtRST(0, 0, 0), {0.5, 0.5, 0.5}));
  EXPECT_TRUE(equal_rows(rows_of<3>(shape.Jacobian(Vec3<double>{0, 0, 0})), diagonal(3, 0.5)));
  EXPECT_TRUE(equal_rows(rows_of<3>(shape.Jacobian(Vec3<double>{0.25, -0.5, 0.75})), diagonal(3, 0.5)));
}

TEST(VolumeJacobianTest, HasTheNaturalDirectionInTheRowAndTheGlobalOneInTheColumn) {
  // X = A xi with rows of A for x, y, z; the Jacobian is the transpose of A.
  Nodes nodes;
  for (Vec3<double> const& n : topology_named("hexahedron").natural) {
    nodes.push_back({2 * n.x + 3 * n.y + 5 * n.z, 7 * n.x + 11 * n.y + 13 * n.z, 17 * n.x + 19 * n.y + 23 * n.z});
  }
  EXPECT_TRUE(equal_rows(rows_of<3>(CShape(Talvo::Volume, nodes).Jacobian(Vec3<double>{0.5, -0.25, 0.125})),
                         {{2, 7, 17}, {3, 11, 19}, {5, 13, 23}}));
}

TEST(CoorAtRSTTest, OfAPyramidReturnsItsNodes) {
  const Nodes nodes{{0, 0, 0}, {4, 0.1, 0}, {5, 6, 0.3}, {0.7, 5, 0}, {1.3, 2.1, 7}};
  const CShape pyramid(Talvo::Volume, nodes);
  EXPECT_TRUE(equal_points(pyramid.CoorAtRST(0, 0, 1), nodes[4]));
  EXPECT_TRUE(equal_points(pyramid.CoorAtRST(1, 1, -1), nodes[2]));
}

TEST(InfiniteJacobianTest, FollowsTheMappingOfTheTwoLayers) {
  // Face nodes at z = 1 and second layer at z = 2 above a square of side 2: x = r and y = s at every t, and
  // z = (-2t + 2(1 + t))/(1 - t) = 2/(1 - t), so dz/dt = 2/(1 - t)^2.
  Nodes nodes = topology_named("hexahedron").natural;
  for (Vec3<double>& node : nodes) node.z = node.z < 0 ? 1 : 2;
  const CShape shape(Talvo::Volume, nodes);
  for (double t : {-1.0, 0.0, 0.5}) {
    Rows expected = diagonal(3, 1.0);
    expected[2][2] = 2 / ((1 - t) * (1 - t));
    EXPECT_TRUE(equal_rows(rows_of<3>(shape.JacobianInfinity(Vec3<double>{0.5, -0.25, t})), expected)) << t;
  }
}

TEST(InfiniteJacobianTest, IsNotFiniteAtInfinity) {
  for (const char* name : {"wedge", "hexahedron"}) {
    Random random(5202);
    const Topology& topology = topology_named(name);
    const CShape shape(Talvo::Volume, distorted_element(random, topology, 0.2));
    const Eigen::Matrix<double, 3, 3> j = shape.JacobianInfinity(Vec3<double>{0.25, 0.5, 1.0});
    for (int k = 0; k < 3; ++k) EXPECT_FALSE(std::isfinite(j(2, k))) << name;
  }
}

// ---- What every topology promises

class MappingTest : public ::testing::TestWithParam<Topology> {};
INSTANTIATE_TEST_SUITE_P(Every, MappingTest, ::testing::ValuesIn(topologies()), name_of_topology);

TEST_P(MappingTest, ReturnsEachNodeAtItsNaturalPlace) {
  Random random(5203);
  for (int i = 0; i < 200; ++i) {
    const Nodes nodes = tangled_element(random, GetParam().nodes());
    const CShape shape(GetParam().type, nodes);
    for (std::size_t k = 0; k < nodes.size(); ++k) {
      // All functions are exactly 0 or 1 there.
      const Vec3<double> expected{nodes[k].x, nodes[k].y, nodes[k].z};
      ASSERT_EQ(map(shape, GetParam(), GetParam().natural[k]), expected) << "node " << k << ", " << print(nodes);
    }
  }
}

TEST_P(MappingTest, ReturnsEachNodeAtThePlaceThatTheTablesGive) {
  Random random(5204);
  const Nodes nodes = distorted_element(random, GetParam(), 0.2);
  const CShape shape(GetParam().type, nodes);
  const int n = GetParam().nodes();
  for (int k = 0; k < n; ++k) {
    Vec3<double> p{0, 0, 0};
    if (GetParam().type == Talvo::Line) p.x = CShape::R(k);
    if (GetParam().type == Talvo::Area) p = {CShape::RS(n, k).x, CShape::RS(n, k).y, 0};
    if (GetParam().type == Talvo::Volume) p = CShape::RST(n, k);
    EXPECT_EQ(map(shape, GetParam(), p), shape.Coor(k)) << k;
  }
}

TEST_P(MappingTest, EqualsTheWrittenOutSumBitForBit) {
  Random random(5205);
  for (int i = 0; i < 4000; ++i) {
    const Nodes nodes =
        i % 2 == 0 ? tangled_element(random, GetParam().nodes()) : distorted_element(random, GetParam(), 0.2);
    const Vec3<double> p = i % 3 == 0 ? point_inside(random, GetParam()) : point_around(random);
    const CShape shape(GetParam().type, nodes);
    const Vec3<double> expected = sum_over_nodes(plain_functions(GetParam(), p), nodes);
    ASSERT_TRUE(equal_points(map(shape, GetParam(), p), expected)) << where(nodes, p);
  }
}

TEST_P(MappingTest, EqualsTheWrittenOutSumForAwkwardNumbers) {
  Random random(5206);
  for (int i = 0; i < 4000; ++i) {
    const Nodes nodes = awkward_element(random, GetParam().nodes());
    const Vec3<double> p{awkward(random), awkward(random), awkward(random)};
    const CShape shape(GetParam().type, nodes);
    const Vec3<double> expected = sum_over_nodes(plain_functions(GetParam(), p), nodes);
    ASSERT_TRUE(equal_points(map(shape, GetParam(), p), expected)) << where(nodes, p);
  }
}

TEST_P(MappingTest, JacobianEqualsTheWrittenOutSumBitForBit) {
  Random random(5207);
  for (int i = 0; i < 4000; ++i) {
    const Nodes nodes =
        i % 2 == 0 ? tangled_element(random, GetParam().nodes()) : distorted_element(random, GetParam(), 0.2);
    const Vec3<double> p = i % 3 == 0 ? point_inside(random, GetParam()) : point_around(random);
    const CShape shape(GetParam().type, nodes);
    ASSERT_TRUE(equal_rows(jacobian(shape, GetParam(), p), plain_jacobian(GetParam(), nodes, p))) << where(nodes, p);
  }
}

TEST_P(MappingTest, JacobianEqualsTheWrittenOutSumForAwkwardNumbers) {
  Random random(5208);
  for (int i = 0; i < 4000; ++i) {
    const Nodes nodes = awkward_element(random, GetParam().nodes());
    const Vec3<double> p{awkward(random), awkward(random), awkward(random)};
    const CShape shape(GetParam().type, nodes);
    ASSERT_TRUE(equal_rows(jacobian(shape, GetParam(), p), plain_jacobian(GetParam(), nodes, p))) << where(nodes, p);
  }
}

// The functions and derivatives below are sums of at most three products of at most four roundings each; with m the
// largest coordinate's magnitude or 1, no product exceeds (1 + m)^3. Product with the node and sum over 8 nodes add 9
// roundings. 16 eps is more than the half of all of them.
double rounding_bound(Nodes const& nodes, Vec3<double> const& p, double Vec3<double>::*component) {
  const double m = std::max({1.0, std::fabs(p.x), std::fabs(p.y), std::fabs(p.z)});
  double sum = 0;
  for (Vec3<double> const& node : nodes) sum += std::fabs(node.*component);
  return 16 * kEps * (1 + m) * (1 + m) * (1 + m) * sum;
}

constexpr std::array<double Vec3<double>::*, 3> kComponents{&Vec3<double>::x, &Vec3<double>::y, &Vec3<double>::z};

TEST_P(MappingTest, AgreesWithTheTextbookInExtendedPrecision) {
  Random random(5209);
  for (int i = 0; i < 2000; ++i) {
    const Nodes nodes = tangled_element(random, GetParam().nodes());
    const Vec3<double> p = i % 2 == 0 ? point_inside(random, GetParam()) : point_around(random);
    const CShape shape(GetParam().type, nodes);
    const Vec3<double> mapped = map(shape, GetParam(), p);
    const Rows j = jacobian(shape, GetParam(), p);
    const std::vector<Dual> functions = textbook_functions(GetParam(), p);
    for (std::size_t c = 0; c < 3; ++c) {
      Dual sum(0);
      for (std::size_t k = 0; k < nodes.size(); ++k) sum = sum + functions[k] * nodes[k].*kComponents[c];
      const double bound = rounding_bound(nodes, p, kComponents[c]);
      ASSERT_NEAR(mapped.*kComponents[c], static_cast<double>(sum.value), bound) << where(nodes, p);
      for (std::size_t d = 0; c < j.size() && d < j.size(); ++d) {
        ASSERT_NEAR(j[d][c], static_cast<double>(sum.d[d]), bound) << d << ", " << c << ' ' << where(nodes, p);
      }
    }
  }
}

TEST_P(MappingTest, OfOnePlaceIsThatPlaceWithZeroJacobian) {
  Random random(5210);
  const Vec3<double> place{3, -5, 7};
  const Nodes nodes(static_cast<std::size_t>(GetParam().nodes()), place);
  const CShape shape(GetParam().type, nodes);
  for (int i = 0; i < 200; ++i) {
    const Vec3<double> p = point_around(random);
    const Vec3<double> mapped = map(shape, GetParam(), p);
    const Rows j = jacobian(shape, GetParam(), p);
    for (std::size_t c = 0; c < 3; ++c) {
      // The functions add up to 1 and each row of derivatives to 0.
      const double bound = rounding_bound(nodes, p, kComponents[c]);
      ASSERT_NEAR(mapped.*kComponents[c], place.*kComponents[c], bound) << print(p);
      for (std::size_t d = 0; c < j.size() && d < j.size(); ++d) ASSERT_NEAR(j[d][c], 0.0, bound) << print(p);
    }
  }
}

TEST_P(MappingTest, NeverGivesANegativeZero) {
  // The sums start from +0.0, and +0.0 plus -0.0 is +0.0. (The 2-node line's Jacobian is not a sum.)
  const Nodes nodes(static_cast<std::size_t>(GetParam().nodes()), Vec3<double>{-0.0, -0.0, -0.0, -0.0});
  const CShape shape(GetParam().type, nodes);
  const Vec3<double> p{0.25, 0.25, 0.25};
  EXPECT_TRUE(equal_points(map(shape, GetParam(), p), {0.0, 0.0, 0.0, 0.0}));
  const Rows j = jacobian(shape, GetParam(), p);
  EXPECT_TRUE(equal_rows(j, diagonal(j.size(), 0.0)));
}

TEST_P(MappingTest, DoesNotLookAtTheSpaceType) {
  Random random(5211);
  const Nodes nodes = tangled_element(random, GetParam().nodes());
  const Vec3<double> p = point_inside(random, GetParam());
  const Vec3<double> expected = map(CShape(GetParam().type, nodes), GetParam(), p);
  for (int type : {-1, 0, 1, 2, 3, 4}) {
    EXPECT_TRUE(equal_points(map(CShape(static_cast<Talvo::SpaceType>(type), nodes), GetParam(), p), expected)) << type;
  }
}

TEST_P(MappingTest, IgnoresWAndReturnsZeroThere) {
  Random random(5212);
  Nodes nodes = distorted_element(random, GetParam(), 0.2);
  const Vec3<double> p = point_inside(random, GetParam());
  const Vec3<double> expected = map(CShape(GetParam().type, nodes), GetParam(), p);
  const Rows expected_jacobian = jacobian(CShape(GetParam().type, nodes), GetParam(), p);
  EXPECT_TRUE(equal_bits(expected.w, 0.0));
  for (Vec3<double>& node : nodes) node.w = kNaN;
  const CShape shape(GetParam().type, nodes);
  EXPECT_TRUE(equal_points(map(shape, GetParam(), p), expected));
  EXPECT_TRUE(equal_rows(jacobian(shape, GetParam(), {p.x, p.y, p.z, kNaN}), expected_jacobian));
}

TEST(CoorAtRSTest, AVolumeOfFourNodesPassesForAQuadrilateral) {
  const CShape shape(Talvo::Volume, {{0, 0, 0}, {2, 0, 4}, {2, 2, 4}, {0, 2, 0}});
  EXPECT_TRUE(equal_points(shape.CoorAtRS(0.5, -0.5), {1.5, 0.5, 3}));
}

// ---- Rows of the Jacobian and tangents

class AreaMappingTest : public ::testing::TestWithParam<Topology> {};
INSTANTIATE_TEST_SUITE_P(Every, AreaMappingTest, ::testing::ValuesIn(topologies(Talvo::Area)), name_of_topology);

TEST_P(AreaMappingTest, RowsOfTheJacobianAreTheTangentsInXAndY) {
  Random random(5213);
  for (int i = 0; i < 1000; ++i) {
    const Nodes nodes = tangled_element(random, GetParam().nodes());
    const CShape shape(Talvo::Area, nodes);
    const Vec2<double> rs{random.uniform(-2, 2), random.uniform(-2, 2)};
    const Vec3<double> along_r = shape.VectorR(rs, false);
    const Vec3<double> along_s = shape.VectorS(rs, false);
    ASSERT_TRUE(equal_rows(rows_of<2>(shape.Jacobian(rs)), {{along_r.x, along_r.y}, {along_s.x, along_s.y}}))
        << print(nodes);
  }
}

class VolumeMappingTest : public ::testing::TestWithParam<Topology> {};
INSTANTIATE_TEST_SUITE_P(Every, VolumeMappingTest, ::testing::ValuesIn(topologies(Talvo::Volume)), name_of_topology);

TEST_P(VolumeMappingTest, RowsOfTheJacobianAreTheTangents) {
  Random random(5214);
  for (int i = 0; i < 1000; ++i) {
    const Nodes nodes = tangled_element(random, GetParam().nodes());
    const CShape shape(Talvo::Volume, nodes);
    const Vec3<double> p = point_around(random);
    const Vec3<double> r = shape.VectorR(p, false), s = shape.VectorS(p, false), t = shape.VectorT(p, false);
    ASSERT_TRUE(equal_rows(rows_of<3>(shape.Jacobian(p)), {{r.x, r.y, r.z}, {s.x, s.y, s.z}, {t.x, t.y, t.z}}))
        << where(nodes, p);
  }
}

// ---- Infinite elements

class InfiniteMappingTest : public ::testing::TestWithParam<Topology> {};
INSTANTIATE_TEST_SUITE_P(Every, InfiniteMappingTest,
                         ::testing::Values(topology_named("wedge"), topology_named("hexahedron")), name_of_topology);

TEST_P(InfiniteMappingTest, JacobianEqualsTheWrittenOutSumBitForBit) {
  Random random(5215);
  for (int i = 0; i < 8000; ++i) {
    const Nodes nodes =
        i % 4 == 0 ? awkward_element(random, GetParam().nodes()) : tangled_element(random, GetParam().nodes());
    Vec3<double> p =
        i % 5 == 0 ? Vec3<double>{awkward(random), awkward(random), awkward(random)} : point_around(random);
    if (i % 7 == 0) p.z = random.near(1.0, 2);
    const Rows expected = sums_over_nodes(plain_infinite_derivatives(GetParam().nodes(), p.x, p.y, p.z), nodes);
    ASSERT_TRUE(equal_rows(rows_of<3>(CShape(Talvo::Volume, nodes).JacobianInfinity(p)), expected)) << where(nodes, p);
  }
}

TEST_P(InfiniteMappingTest, JacobianAgreesWithTheTextbookInExtendedPrecision) {
  Random random(5216);
  for (int i = 0; i < 2000; ++i) {
    const Nodes nodes = tangled_element(random, GetParam().nodes());
    Vec3<double> p = point_around(random);
    p.z = random.uniform(-1.0, 0.9);
    const Rows j = rows_of<3>(CShape(Talvo::Volume, nodes).JacobianInfinity(p));
    const std::vector<Dual> functions = textbook_infinite_functions(GetParam(), p);
    for (std::size_t c = 0; c < 3; ++c) {
      Dual sum(0);
      for (std::size_t k = 0; k < nodes.size(); ++k) sum = sum + functions[k] * nodes[k].*kComponents[c];
      // 1/(1 - t) is exact to one rounding for t in this range, and enters once or squared.
      const double far = 1 / ((1 - p.z) * (1 - p.z));
      const double bound = rounding_bound(nodes, p, kComponents[c]) * std::max(1.0, far);
      for (std::size_t d = 0; d < 3; ++d) {
        ASSERT_NEAR(j[d][c], static_cast<double>(sum.d[d]), bound) << d << ", " << c << ' ' << where(nodes, p);
      }
    }
  }
}

// ---- The sum with given derivatives

TEST(AccumulateDerivativesTest, SumsOverTheNodesOfAnyShape) {
  Random random(5217);
  for (int i = 0; i < 2000; ++i) {
    const int count = static_cast<int>(random.below(12));
    const Nodes nodes = i % 2 == 0 ? tangled_element(random, count) : awkward_element(random, count);
    const auto type = static_cast<Talvo::SpaceType>(random.below(5));
    // Values beyond the last node are not used.
    Eigen::Matrix<double, 1, Eigen::Dynamic, Eigen::RowMajor> d(count + 2);
    Row values;
    for (int k = 0; k < count; ++k) values.push_back(d[k] = awkward(random));
    d[count] = d[count + 1] = kNaN;
    ASSERT_TRUE(equal_points(accumulate_derivatives(CShape(type, nodes), d), sum_over_nodes(values, nodes)))
        << print(nodes);
  }
}

TEST(AccumulateDerivativesTest, WithoutNodesIsZero) {
  const Eigen::Matrix<double, 1, Eigen::Dynamic, Eigen::RowMajor> d(0);
  EXPECT_TRUE(equal_points(accumulate_derivatives(CShape(Talvo::Area, {}), d), {0.0, 0.0, 0.0, 0.0}));
}

TEST(AccumulateDerivativesTest, StartsFromPositiveZero) {
  const Eigen::Matrix<double, 1, Eigen::Dynamic, Eigen::RowMajor> one = Eigen::MatrixXd::Ones(1, 1);
  EXPECT_TRUE(equal_points(accumulate_derivatives(CShape(Talvo::Line, {{-0.0, -0.0, -0.0}}), one), {0.0, 0.0, 0.0}));
}

// ---- Failures

const std::vector<int> kSpaceTypes{-1, 0, 1, 2, 3, 4};
constexpr int kMostNodes = 21;

// Runs a check on a shape of every space type and node count, known or not.
template <class Check>
void for_every_shape(Check const& check) {
  for (int type : kSpaceTypes) {
    for (int count = 0; count <= kMostNodes; ++count) {
      SCOPED_TRACE(::testing::Message() << "space type " << type << ", " << count << " nodes");
      check(CShape(static_cast<Talvo::SpaceType>(type), Nodes(static_cast<std::size_t>(count), {1, 2, 3})), type,
            count);
    }
  }
}

bool is_line(int count) { return count == 2 || count == 3; }
bool is_area(int count) { return count == 3 || count == 4 || count == 6 || count == 8; }
bool is_volume(int count) { return count == 4 || count == 5 || count == 6 || count == 8; }

// A wrong space type is reported before a wrong node count; a shape with neither throws nothing.
template <class Call>
void expect_checks(Call const& call, bool type_fits, const char* type_text, bool count_fits) {
  if (!type_fits) {
    EXPECT_TRUE(throws_exactly<std::logic_error>(call, type_text));
  } else if (!count_fits) {
    EXPECT_TRUE(throws_exactly<std::logic_error>(call, "invalid number of nodes"));
  } else {
    EXPECT_NO_THROW(call());
  }
}

TEST(MappingFailureTest, CoorAtThrowsForUnknownNodeCountsOnly) {
  for_every_shape([](CShape const& shape, int, int count) {
    auto expect = [](auto const& call, bool known, const char* text) {
      if (known) {
        EXPECT_NO_THROW(call());
      } else {
        EXPECT_TRUE(throws_exactly<std::logic_error>(call, text));
      }
    };
    expect([&] { shape.CoorAtR(0); }, is_line(count), "invalid number of values for 1D element");
    expect([&] { shape.CoorAtRS(0, 0); }, is_area(count), "invalid number of values for 2D element");
    expect([&] { shape.CoorAtRST(0, 0, 0); }, is_volume(count), "invalid number of values for 3D element");
  });
}

TEST(MappingFailureTest, JacobianChecksTheSpaceTypeAndThenTheNodeCount) {
  for_every_shape([](CShape const& shape, int type, int count) {
    expect_checks([&] { shape.Jacobian(0.0); }, type == 1, "SpaceType error", is_line(count));
    expect_checks([&] { shape.Jacobian(Vec2<double>{0, 0}); }, type == 2, "SpaceType error", is_area(count));
    expect_checks([&] { shape.Jacobian(Vec3<double>{0, 0, 0}); }, type == 3, "SpaceType error", is_volume(count));
  });
}

TEST(MappingFailureTest, JacobianInfinityChecksTheSpaceTypeInOtherWordsAndThenTheNodeCount) {
  for_every_shape([](CShape const& shape, int type, int count) {
    expect_checks(
        [&] {
          shape.JacobianInfinity(Vec3<double>{0, 0, 0});
        },
        type == 3, "invalid SpaceType specified", count == 6 || count == 8);
  });
}

TEST(MappingFailureTest, JacobianOfAnAreaPointOnAVolumeIsASpaceTypeError) {
  const CShape shape(Talvo::Volume, cube(1));
  EXPECT_TRUE(throws_exactly<std::logic_error>([&] { shape.Jacobian(Vec2<double>{0, 0}); }, "SpaceType error"));
}

TEST(MappingFailureTest, JacobianInfinityOnAnAreaIsAnInvalidSpaceType) {
  const CShape shape(Talvo::Area, cube(1));
  EXPECT_TRUE(throws_exactly<std::logic_error>(
      [&] {
        shape.JacobianInfinity(Vec3<double>{0, 0, 0});
      },
      "invalid SpaceType specified"));
}

TEST(MappingFailureTest, JacobianOfALineWithFourNodesIsAnInvalidNumberOfNodes) {
  const CShape shape(Talvo::Line, Nodes(4, {0, 0, 0}));
  EXPECT_TRUE(throws_exactly<std::logic_error>([&] { shape.Jacobian(0.0); }, "invalid number of nodes"));
}

TEST(MappingFailureTest, CoorAtROfFourNodesIsAnInvalidNumberOfValues) {
  const CShape shape(Talvo::Line, Nodes(4, {0, 0, 0}));
  EXPECT_TRUE(throws_exactly<std::logic_error>([&] { shape.CoorAtR(0.0); }, "invalid number of values for 1D element"));
}

}  // namespace

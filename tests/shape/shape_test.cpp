#include <cxxabi.h>
#include <gtest/gtest.h>
#include <talvo/shape/shape.h>

#include <algorithm>
#include <array>
#include <climits>
#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <typeinfo>
#include <utility>
#include <vector>

#include "support/bits.h"
#include "support/elements.h"
#include "support/failures.h"
#include "support/random.h"

namespace {

using talvo::test::equal_bits;
using talvo::test::equal_points;
using talvo::test::Nodes;
using talvo::test::Random;
using talvo::test::throws_exactly;
using Talvo::Util::CShape;

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kAboveOne = 1.0 + 0x1p-52;
constexpr double kBelowOne = 1.0 - 0x1p-53;

const char* const kInvalidTopology = "invalid topology specified";
const char* const kInvalidSubscript = "invalid vector subscript";

Nodes three_nodes() { return {{1, 2, 3, 4}, {5, 6, 7, 8}, {-0.0, kNaN, kInf, -9}}; }

::testing::AssertionResult equal_nodes(Nodes const& actual, Nodes const& expected) {
  if (actual.size() != expected.size()) return ::testing::AssertionFailure() << actual.size() << " nodes";
  for (std::size_t k = 0; k < actual.size(); ++k) {
    auto same = equal_points(actual[k], expected[k]);
    if (!same) return same << " at node " << k;
  }
  return ::testing::AssertionSuccess();
}

// A shape shows its space type only through the operations that want a certain one.
bool is_area(CShape const& shape) {
  try {
    shape.VectorR(Vec2<double>{0, 0}, false);
  } catch (std::runtime_error const&) {
    return false;
  } catch (std::logic_error const&) {
    // The node count comes after the space type.
  }
  return true;
}

// ---- SpaceType and the class itself

TEST(SpaceTypeTest, IsTheNumberOfNaturalCoordinates) {
  static_assert(std::is_same_v<std::underlying_type_t<Talvo::SpaceType>, std::int32_t>);
  static_assert(sizeof(Talvo::SpaceType) == 4);
  EXPECT_EQ(static_cast<int>(Talvo::Line), 1);
  EXPECT_EQ(static_cast<int>(Talvo::Area), 2);
  EXPECT_EQ(static_cast<int>(Talvo::Volume), 3);
}

TEST(ShapeTest, IsPolymorphicWithAVirtualDestructorAndNoBase) {
  static_assert(std::is_polymorphic_v<CShape>);
  static_assert(std::has_virtual_destructor_v<CShape>);
  static_assert(!std::is_abstract_v<CShape>);
  static_assert(!std::is_final_v<CShape>);
  // In the Itanium ABI the type_info of a class without bases is of this very type.
  EXPECT_EQ(typeid(typeid(CShape)).name(), std::string(typeid(abi::__class_type_info).name()));
}

TEST(ShapeTest, IsDestroyedThroughItsBaseWhenDerivedFrom) {
  struct Derived : CShape {
    explicit Derived(bool& gone) : CShape(Talvo::Line, {}), gone_(gone) {}
    Derived(Derived const&) = delete;
    Derived& operator=(Derived const&) = delete;
    ~Derived() override { gone_ = true; }
    bool& gone_;
  };
  bool gone = false;
  { const std::unique_ptr<CShape> shape = std::make_unique<Derived>(gone); }
  EXPECT_TRUE(gone);
}

// ---- Construction, copying and nodes

TEST(ShapeTest, KeepsACopyOfTheNodesWithTheirW) {
  Nodes nodes = three_nodes();
  const CShape shape(Talvo::Area, nodes);
  nodes[0] = {0, 0, 0};
  nodes.pop_back();
  EXPECT_EQ(shape.NumTopo(), 3);
  EXPECT_TRUE(equal_nodes(shape.Coor(), three_nodes()));
}

TEST(ShapeTest, AcceptsAnyNodeCountAndAnySpaceType) {
  for (int type : {-1, 0, 1, 2, 3, 4, INT_MAX, INT_MIN}) {
    for (std::size_t count : {0U, 1U, 5U, 7U, 9U, 100U}) {
      const CShape shape(static_cast<Talvo::SpaceType>(type), Nodes(count));
      EXPECT_EQ(shape.NumTopo(), static_cast<int>(count));
      EXPECT_EQ(shape.Coor().size(), count);
      EXPECT_EQ(is_area(shape), type == 2);
    }
  }
}

TEST(ShapeTest, CopiesAreDeep) {
  CShape original(Talvo::Area, three_nodes());
  const CShape copy(original);
  original.SetCoor({{0, 0, 0}});
  EXPECT_TRUE(is_area(copy));
  EXPECT_TRUE(equal_nodes(copy.Coor(), three_nodes()));
  EXPECT_EQ(original.NumTopo(), 1);
}

TEST(ShapeTest, AssignmentTakesTypeAndNodesAndReturnsTheTarget) {
  CShape source(Talvo::Area, three_nodes());
  CShape target(Talvo::Volume, {{9, 9, 9}});
  CShape& result = (target = source);
  EXPECT_EQ(&result, &target);
  source.SetCoor({});
  EXPECT_TRUE(is_area(target));
  EXPECT_TRUE(equal_nodes(target.Coor(), three_nodes()));
}

TEST(ShapeTest, AssignmentToItselfChangesNothing) {
  CShape shape(Talvo::Area, three_nodes());
  CShape const& itself = shape;
  CShape& result = (shape = itself);
  EXPECT_EQ(&result, &shape);
  EXPECT_TRUE(is_area(shape));
  EXPECT_TRUE(equal_nodes(shape.Coor(), three_nodes()));
}

TEST(ShapeTest, SetCoorReplacesTheNodesAndKeepsTheType) {
  for (std::size_t count : {0U, 2U, 3U, 20U}) {
    CShape shape(Talvo::Area, three_nodes());
    const Nodes other(count, Vec3<double>{1, -1, 0.5, 2});
    shape.SetCoor(other);
    EXPECT_TRUE(is_area(shape));
    EXPECT_EQ(shape.NumTopo(), static_cast<int>(count));
    EXPECT_TRUE(equal_nodes(shape.Coor(), other));
  }
}

TEST(ShapeTest, SetCoorWithItsOwnNodesChangesNothing) {
  CShape shape(Talvo::Area, three_nodes());
  shape.SetCoor(shape.Coor());
  EXPECT_TRUE(is_area(shape));
  EXPECT_TRUE(equal_nodes(shape.Coor(), three_nodes()));
}

TEST(ShapeTest, CoorGivesEachNodeByReference) {
  const CShape shape(Talvo::Line, three_nodes());
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(&shape.Coor(i), shape.Coor().data() + i);
    EXPECT_TRUE(equal_points(shape.Coor(i), three_nodes()[static_cast<std::size_t>(i)]));
  }
}

TEST(ShapeTest, CoorMinusOneAndNumTopoThrow) {
  const CShape shape(Talvo::Line, three_nodes());
  EXPECT_TRUE(throws_exactly<std::out_of_range>([&] { shape.Coor(-1); }, kInvalidSubscript));
  EXPECT_TRUE(throws_exactly<std::out_of_range>([&] { shape.Coor(shape.NumTopo()); }, kInvalidSubscript));
}

TEST(ShapeTest, CoorFarOutOfRangeThrows) {
  const CShape shape(Talvo::Line, three_nodes());
  const CShape empty(Talvo::Line, {});
  for (int i : {INT_MIN, -4, 4, INT_MAX}) {
    EXPECT_TRUE(throws_exactly<std::out_of_range>([&] { shape.Coor(i); }, kInvalidSubscript)) << i;
    EXPECT_TRUE(throws_exactly<std::out_of_range>([&] { empty.Coor(i); }, kInvalidSubscript)) << i;
  }
  EXPECT_TRUE(throws_exactly<std::out_of_range>([&] { empty.Coor(0); }, kInvalidSubscript));
}

// ---- Tables of natural coordinates

struct PlaneRow {
  int i;
  double r, s;
};
struct SpaceRow {
  int i;
  double r, s, t;
};

const double kThird = 1.0 / 3.0;

// One table for 3 and 6 nodes, and one for 4 and 8: the smaller element knows only the rows up to its own count.
const std::vector<PlaneRow> kTriangle{
    {-1, kThird, kThird}, {0, 0, 0}, {1, 1, 0}, {2, 0, 1}, {3, 0.5, 0}, {4, 0.5, 0.5}, {5, 0, 0.5},
};
const std::vector<PlaneRow> kQuadrilateral{
    {-1, 0, 0}, {0, -1, -1}, {1, +1, -1}, {2, +1, +1}, {3, -1, +1}, {4, 0, -1}, {5, +1, 0}, {6, 0, +1}, {7, -1, 0},
};
const std::vector<SpaceRow> kTetrahedron{
    {0, -1, -1, -1}, {1, +1, -1, -1}, {2, 0, +1, -1},  {3, 0, 0, +1},   {-1, 0, 0, 0},
    {-10, 0, 0, -1}, {-11, 0, -1, 0}, {-12, +1, 0, 0}, {-13, -1, 0, 0},
};
const std::vector<SpaceRow> kPyramid{
    {0, -1, -1, -1}, {1, +1, -1, -1}, {2, +1, +1, -1}, {3, -1, +1, -1}, {4, 0, 0, +1},   {-1, 0, 0, 0},
    {-10, 0, 0, -1}, {-11, 0, -1, 0}, {-12, +1, 0, 0}, {-13, 0, +1, 0}, {-14, -1, 0, 0},
};
const std::vector<SpaceRow> kWedge{
    {0, -1, -1, -1}, {1, +1, -1, -1}, {2, 0, +1, -1},  {3, -1, -1, +1}, {4, +1, -1, +1}, {5, 0, +1, +1},
    {-1, 0, 0, 0},   {-10, 0, 0, -1}, {-11, 0, 0, +1}, {-12, 0, -1, 0}, {-13, +1, 0, 0}, {-14, -1, 0, 0},
};
const std::vector<SpaceRow> kHexahedron{
    {0, -1, -1, -1}, {1, +1, -1, -1}, {2, +1, +1, -1}, {3, -1, +1, -1}, {4, -1, -1, +1},
    {5, +1, -1, +1}, {6, +1, +1, +1}, {7, -1, +1, +1}, {-1, 0, 0, 0},   {-10, 0, 0, -1},
    {-11, 0, 0, +1}, {-12, 0, -1, 0}, {-13, +1, 0, 0}, {-14, 0, +1, 0}, {-15, -1, 0, 0},
};

template <class Table>
auto find_row(Table const& table, int i) {
  return std::ranges::find_if(table, [&](auto const& row) { return row.i == i; });
}

// Indices on both sides of everything that a table might hold, and the ends of int.
std::vector<int> all_indices() {
  std::vector<int> indices{INT_MIN, INT_MIN + 1, INT_MAX - 1, INT_MAX};
  for (int i = -40; i <= 40; ++i) indices.push_back(i);
  return indices;
}

TEST(NaturalOfLineTest, HasEveryRow) {
  EXPECT_TRUE(equal_bits(CShape::R(0), -1.0));
  EXPECT_TRUE(equal_bits(CShape::R(1), 1.0));
  EXPECT_TRUE(equal_bits(CShape::R(2), 0.0));
  EXPECT_TRUE(equal_bits(CShape::R(-1), 0.0));
}

TEST(NaturalOfLineTest, TwoAndMinusOneAreTheMiddleAndThreeThrows) {
  EXPECT_EQ(CShape::R(2), 0.0);
  EXPECT_EQ(CShape::R(-1), 0.0);
  EXPECT_TRUE(throws_exactly<std::logic_error>([] { CShape::R(3); }, kInvalidTopology));
}

TEST(NaturalOfLineTest, EveryOtherIndexThrows) {
  for (int i : all_indices()) {
    if (i >= -1 && i <= 2) continue;
    EXPECT_TRUE(throws_exactly<std::logic_error>([&] { CShape::R(i); }, kInvalidTopology)) << i;
  }
}

TEST(NaturalOfAreaTest, HasEveryRowAndThrowsForEveryOther) {
  for (int nodes : {3, 6, 4, 8}) {
    auto const& table = nodes % 3 == 0 ? kTriangle : kQuadrilateral;
    for (int i : all_indices()) {
      SCOPED_TRACE(::testing::Message() << "RS(" << nodes << ", " << i << ")");
      // The count itself is the centre; beyond it nothing is known, even where the larger element has a row.
      const auto row = find_row(table, i == nodes ? -1 : i);
      if (i > nodes || row == table.end()) {
        EXPECT_TRUE(throws_exactly<std::logic_error>([&] { CShape::RS(nodes, i); }, kInvalidTopology));
      } else {
        EXPECT_TRUE(equal_points(CShape::RS(nodes, i), Vec2<double>{row->r, row->s}));
      }
    }
  }
}

TEST(NaturalOfAreaTest, EveryOtherNodeCountThrows) {
  for (int nodes : all_indices()) {
    if (nodes == 3 || nodes == 4 || nodes == 6 || nodes == 8) continue;
    for (int i : {-10, -1, 0, 1, 3, nodes}) {
      EXPECT_TRUE(throws_exactly<std::logic_error>([&] { CShape::RS(nodes, i); }, kInvalidTopology))
          << nodes << ", " << i;
    }
  }
}

TEST(NaturalOfAreaTest, TheCountIsTheCentroidOfTriangles) {
  EXPECT_TRUE(equal_points(CShape::RS(3, 3), Vec2<double>{kThird, kThird}));
  EXPECT_TRUE(equal_points(CShape::RS(6, 6), Vec2<double>{kThird, kThird}));
  EXPECT_TRUE(throws_exactly<std::logic_error>([] { CShape::RS(3, 4); }, kInvalidTopology));
  EXPECT_TRUE(equal_points(CShape::RS(6, 3), Vec2<double>{0.5, 0}));
}

TEST(NaturalOfAreaTest, TheCentroidIsTheDoubleNearestOneThird) {
  // 1/3 = 0x1.5555...p-2 in binary; the cut-off part is 1/3 of the last place, so it is rounded down.
  EXPECT_TRUE(equal_points(CShape::RS(3, -1), Vec2<double>{0x1.5555555555555p-2, 0x1.5555555555555p-2}));
}

TEST(NaturalOfAreaTest, TheCountIsTheCentreOfQuadrilaterals) {
  EXPECT_TRUE(equal_points(CShape::RS(4, 4), Vec2<double>{0, 0}));
  EXPECT_TRUE(throws_exactly<std::logic_error>([] { CShape::RS(4, 5); }, kInvalidTopology));
  EXPECT_TRUE(equal_points(CShape::RS(8, 7), Vec2<double>{-1, 0}));
  EXPECT_TRUE(equal_points(CShape::RS(8, 8), Vec2<double>{0, 0}));
}

TEST(NaturalOfVolumeTest, HasEveryRowAndThrowsForEveryOther) {
  for (auto const& [nodes, table] : {std::pair(4, kTetrahedron), {5, kPyramid}, {6, kWedge}, {8, kHexahedron}}) {
    for (int i : all_indices()) {
      SCOPED_TRACE(::testing::Message() << "RST(" << nodes << ", " << i << ")");
      const auto row = find_row(table, i == nodes ? -1 : i);
      if (row == table.end()) {
        EXPECT_TRUE(throws_exactly<std::logic_error>([&, n = nodes] { CShape::RST(n, i); }, kInvalidTopology));
      } else {
        EXPECT_TRUE(equal_points(CShape::RST(nodes, i), Vec3<double>{row->r, row->s, row->t, 0.0}));
      }
    }
  }
}

TEST(NaturalOfVolumeTest, EveryOtherNodeCountThrows) {
  for (int nodes : all_indices()) {
    if (nodes == 4 || nodes == 5 || nodes == 6 || nodes == 8) continue;
    for (int i : {-11, -10, -1, 0, 1, 4, nodes}) {
      EXPECT_TRUE(throws_exactly<std::logic_error>([&] { CShape::RST(nodes, i); }, kInvalidTopology))
          << nodes << ", " << i;
    }
  }
}

TEST(NaturalOfVolumeTest, TheCentreOfTheHexahedronHasTwoIndices) {
  EXPECT_TRUE(equal_points(CShape::RST(8, 8), {0, 0, 0}));
  EXPECT_TRUE(equal_points(CShape::RST(8, -1), {0, 0, 0}));
}

TEST(NaturalOfVolumeTest, TheFacesOfTheHexahedronEndAtMinusFifteen) {
  EXPECT_TRUE(equal_points(CShape::RST(8, -15), {-1, 0, 0}));
  EXPECT_TRUE(throws_exactly<std::logic_error>([] { CShape::RST(8, -9); }, kInvalidTopology));
  EXPECT_TRUE(throws_exactly<std::logic_error>([] { CShape::RST(8, -16); }, kInvalidTopology));
  EXPECT_TRUE(throws_exactly<std::logic_error>([] { CShape::RST(7, 0); }, kInvalidTopology));
}

TEST(NaturalOfVolumeTest, TheTetrahedronStandsOnTheCubeAndNotInAreaCoordinates) {
  EXPECT_TRUE(equal_points(CShape::RST(4, 2), {0, 1, -1}));
}

TEST(NaturalOfVolumeTest, TheSideFacesOfWedgeAndPyramidComeInDifferentOrders) {
  // Both after s = -1 and r = +1: the wedge has no face on s = +1, the pyramid goes round by it.
  EXPECT_TRUE(equal_points(CShape::RST(6, -14), {-1, 0, 0}));
  EXPECT_TRUE(equal_points(CShape::RST(6, -13), {1, 0, 0}));
  EXPECT_TRUE(equal_points(CShape::RST(5, -13), {0, 1, 0}));
  EXPECT_TRUE(equal_points(CShape::RST(5, -14), {-1, 0, 0}));
}

TEST(NaturalOfVolumeTest, AFaceCentreOfTheHexahedronIsTheMiddleOfItsFourNodes) {
  for (int face = -15; face <= -10; ++face) {
    const Vec3<double> centre = CShape::RST(8, face);
    Vec3<double> sum{0, 0, 0};
    int on_face = 0;
    for (int i = 0; i < 8; ++i) {
      const Vec3<double> node = CShape::RST(8, i);
      if (node.x * centre.x + node.y * centre.y + node.z * centre.z != 1.0) continue;
      sum = sum + node;
      ++on_face;
    }
    EXPECT_EQ(on_face, 4);
    EXPECT_EQ(sum * 0.25, centre) << face;
  }
}

// ---- Pulling a point back into the square or cube

struct ClampCase {
  const char* name;
  Vec2<double> point, expected;
};
class ClampRangeTest : public ::testing::TestWithParam<ClampCase> {};

TEST_P(ClampRangeTest, GivesTheExpectedPoint) {
  EXPECT_TRUE(equal_points(CShape::ClampRange(GetParam().point), GetParam().expected));
}

// Each quotient that is written out below is one correctly rounded division, as the compiler folds it.
INSTANTIATE_TEST_SUITE_P(
    Plane, ClampRangeTest,
    ::testing::Values(ClampCase{"r_beyond", {2, 1}, {1, 0.5}}, ClampCase{"s_beyond", {0.5, 4}, {0.125, 1}},
                      ClampCase{"both_beyond_in_two_scalings", {3, 6}, {0.5, 1}},
                      ClampCase{"corner_is_kept", {1, -1}, {1, -1}},
                      ClampCase{"r_scaling_may_leave_s_inside", {6, 3}, {1, 0.5}},
                      ClampCase{"signs_are_kept", {-2, -8}, {-0.25, -1}},
                      ClampCase{"just_inside", {kBelowOne, -kBelowOne}, {kBelowOne, -kBelowOne}},
                      ClampCase{"r_just_beyond", {kAboveOne, 0.5}, {1, 0.5 / kAboveOne}},
                      ClampCase{"s_just_beyond", {0.5, -kAboveOne}, {0.5 / kAboveOne, -1}},
                      ClampCase{"negative_r_just_beyond", {-kAboveOne, 1}, {-1, 1 / kAboveOne}},
                      // 3 / 3 = 1 exactly, so that s no longer exceeds 1 after r was scaled.
                      ClampCase{"s_equal_to_r", {3, 3}, {1, 1}}, ClampCase{"inside", {0.25, -0.75}, {0.25, -0.75}},
                      ClampCase{"zeros_keep_their_signs", {-0.0, 0.0}, {-0.0, 0.0}},
                      ClampCase{"scaled_zeros_keep_their_signs", {-0.0, 5}, {-0.0, 1}},
                      ClampCase{"nan_r_divides_nothing", {kNaN, 0.5}, {kNaN, 0.5}},
                      ClampCase{"nan_s_divides_nothing", {0.5, kNaN}, {0.5, kNaN}},
                      ClampCase{"nan_r_leaves_s_to_be_scaled", {kNaN, 4}, {kNaN, 1}},
                      ClampCase{"nan_s_leaves_r_to_be_scaled", {-4, kNaN}, {-1, kNaN}},
                      ClampCase{"infinite_r", {kInf, 7}, {kNaN, 0}},   // inf / inf, 7 / inf
                      ClampCase{"infinite_s", {2, -kInf}, {0, kNaN}},  // (1, -inf), then 1 / inf and inf / inf
                      ClampCase{"both_infinite", {kInf, kInf}, {kNaN, kNaN}},
                      ClampCase{"tiny_beside_huge", {0x1p-1000, 0x1p+1000}, {0, 1}}),  // 2^-2000 underflows
    [](auto const& param) { return std::string(param.param.name); });

TEST(ClampRangeTest3d, ScalesInTheOrderRST) {
  // (3, 6, 12), by 3: (1, 2, 4), by 2: (0.5, 1, 2), by 2: (0.25, 0.5, 1).
  EXPECT_TRUE(equal_points(CShape::ClampRange(Vec3<double>{3, 6, 12}), {0.25, 0.5, 1}));
  // (5, 1, 7), by 5: (1, 0.2, 1.4), by 1.4. Scaling by 7 alone would round once instead of twice.
  EXPECT_TRUE(equal_points(CShape::ClampRange(Vec3<double>{5, 1, 7}),
                           {1 / (7.0 / 5), (1.0 / 5) / (7.0 / 5), (7.0 / 5) / (7.0 / 5)}));
  EXPECT_TRUE(equal_points(CShape::ClampRange(Vec3<double>{-1, 1, -1}), {-1, 1, -1}));
  EXPECT_TRUE(equal_points(CShape::ClampRange(Vec3<double>{0.5, -0.0, kAboveOne}), {0.5 / kAboveOne, -0.0, 1}));
  EXPECT_TRUE(equal_points(CShape::ClampRange(Vec3<double>{0.5, kNaN, -2}), {0.25, kNaN, -1}));
  EXPECT_TRUE(equal_points(CShape::ClampRange(Vec3<double>{kNaN, kNaN, kNaN}), {kNaN, kNaN, kNaN}));
  EXPECT_TRUE(equal_points(CShape::ClampRange(Vec3<double>{kInf, 1, 2}), {kNaN, 0, 0}));
}

TEST(ClampRangeTest3d, CarriesWUnscaled) {
  for (double w : {0.0, -0.0, 1.0, 7.5, -1e300, kInf, kNaN}) {
    EXPECT_TRUE(equal_points(CShape::ClampRange(Vec3<double>{0.5, 0.5, 0.5, w}), {0.5, 0.5, 0.5, w}));
    EXPECT_TRUE(equal_points(CShape::ClampRange(Vec3<double>{2, 4, 8, w}), {0.25, 0.5, 1, w}));
  }
}

// The rule as it reads, with one loop for both dimensions.
template <std::size_t N>
std::array<double, N> plain_clamp(std::array<double, N> p) {
  for (std::size_t i = 0; i < N; ++i) {
    const double magnitude = std::fabs(p[i]);
    if (magnitude > 1.0) {
      for (double& coordinate : p) coordinate = coordinate / magnitude;
    }
  }
  return p;
}

TEST(ClampRangeTest2d, EqualsTheRuleBitForBit) {
  Random random(5101);
  for (int i = 0; i < 20000; ++i) {
    const Vec2<double> p{i % 2 == 0 ? random.any_double() : random.near(1.0, 3) * (i % 4 == 1 ? 1 : -1),
                         i % 3 == 0 ? random.any_double() : random.uniform(-3, 3)};
    const auto expected = plain_clamp<2>({p.x, p.y});
    ASSERT_TRUE(equal_points(CShape::ClampRange(p), Vec2<double>{expected[0], expected[1]})) << "seed 5101, case " << i;
  }
}

TEST(ClampRangeTest3d, EqualsTheRuleBitForBit) {
  Random random(5102);
  for (int i = 0; i < 20000; ++i) {
    auto coordinate = [&] { return random.below(2) == 0 ? random.any_double() : random.uniform(-3, 3); };
    const Vec3<double> p{coordinate(), coordinate(), coordinate(), random.any_double()};
    const auto expected = plain_clamp<3>({p.x, p.y, p.z});
    ASSERT_TRUE(equal_points(CShape::ClampRange(p), {expected[0], expected[1], expected[2], p.w}))
        << "seed 5102, case " << i << ", " << talvo::test::print(p);
  }
}

TEST(ClampRangeTest3d, LandsInTheCubeOnTheSameRayAndStaysThere) {
  Random random(5103);
  for (int i = 0; i < 20000; ++i) {
    const Vec3<double> p{random.uniform(-9, 9), random.uniform(-9, 9), random.uniform(-9, 9)};
    const Vec3<double> c = CShape::ClampRange(p);
    const double largest = std::max({std::fabs(c.x), std::fabs(c.y), std::fabs(c.z)});
    ASSERT_LE(largest, 1.0) << talvo::test::print(p);
    // The last division leaves its own coordinate at exactly 1; a point inside is not touched at all.
    ASSERT_TRUE(largest == 1.0 || c == p) << talvo::test::print(p);
    // Three divisions and two products of half an ulp each on either side: 10 * 2^-53 of a product of at most 9.
    const double bound = 10 * 0x1p-53 * 9;
    ASSERT_NEAR(c.x * p.y, c.y * p.x, bound) << talvo::test::print(p);
    ASSERT_NEAR(c.y * p.z, c.z * p.y, bound) << talvo::test::print(p);
    ASSERT_TRUE(equal_points(CShape::ClampRange(c), c)) << talvo::test::print(p);
  }
}

}  // namespace

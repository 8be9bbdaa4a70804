#include "locator.h"

#include "content.h"
#include "mesh_file.h"
#include "mesh_text.h"
#include "section.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <iomanip>
#include <numbers>
#include <random>
#include <sstream>
#include <string>

namespace {

using plate::Location;
using plate::Locator;
using plate::Mesh;
using plate::test::mesh_text;
using plate::test::TemporaryFile;
using std::numbers::pi;

/// Without any index: the first of all elements that holds the point.
std::optional<Location> find_among_all(Mesh const& mesh, Vec3<double> const& point) {
  for (std::size_t i = 0; i < mesh.elements.size(); ++i) {
    const Talvo::Util::CShape shape = plate::shape_of(mesh, mesh.elements[i]);
    Vec2<double> rs;
    Vec3<double> rst;
    if (mesh.dimension == 2 && shape.FindRS(point, rs, Locator::plane_tolerance)) return Location{i, {rs.x, rs.y, 0}};
    if (mesh.dimension == 3 && shape.FindRST(point, rst, Locator::solid_tolerance)) return Location{i, rst};
  }
  return std::nullopt;
}

class LocatorTest : public ::testing::TestWithParam<const char*> {
 protected:
  Mesh mesh = plate::read_mesh(std::string(PLATE_MESHES) + GetParam() + "_coarse.msh");
  Locator locator{mesh};
};

TEST_P(LocatorTest, FindsWhatTryingAllElementsFinds) {
  std::mt19937_64 random(41);
  std::uniform_real_distribution<double> x(-4.5, 4.5);
  std::uniform_real_distribution<double> y(-0.5, 4.5);
  std::uniform_real_distribution<double> z(mesh.dimension == 3 ? -0.1 : 0.0, mesh.dimension == 3 ? 0.6 : 0.0);
  int inside = 0;
  for (int i = 0; i < 1000; ++i) {
    const Vec3<double> point{x(random), y(random), z(random)};
    const auto expected = find_among_all(mesh, point);
    const auto found = locator.find(point);
    ASSERT_EQ(found.has_value(), expected.has_value()) << point.x << ' ' << point.y << ' ' << point.z;
    if (!found) continue;
    ++inside;
    EXPECT_EQ(found->element, expected->element);
    EXPECT_EQ(found->natural, expected->natural);
  }
  EXPECT_GT(inside, 400);
}

// Many nodes lie on the edge of the mesh, where no neighbour makes up for an element that just misses its own node.
TEST_P(LocatorTest, FindsEveryNode) {
  for (const char* size : {"_coarse", "_medium", "_fine"}) {
    const Mesh sized = plate::read_mesh(std::string(PLATE_MESHES) + GetParam() + size + ".msh");
    const Locator sized_locator(sized);
    for (plate::Element const& element : sized.elements) {
      for (std::size_t k = 0; k < element.kind->nodes; ++k) {
        EXPECT_TRUE(sized_locator.find(sized.nodes[element.nodes[k]]))
            << size << ": element of line " << element.line << ", node " << k;
      }
    }
  }
}

TEST_P(LocatorTest, GivesASharedNodeToTheFirstElementThatHoldsIt) {
  for (Vec3<double> const& node : mesh.nodes) {
    const auto expected = find_among_all(mesh, node);
    if (!expected) continue;  // on the edge, see above
    EXPECT_EQ(locator.find(node).value().element, expected->element) << node.x << ' ' << node.y;
  }
}

TEST_P(LocatorTest, FindsNothingOutside) {
  const double z = mesh.dimension == 3 ? 0.25 : 0.0;
  EXPECT_FALSE(locator.find({0, 0.5, z}));   // in the hole
  EXPECT_FALSE(locator.find({0, 4.01, z}));  // beyond the edge
  EXPECT_FALSE(locator.find({2, -0.01, z}));
  EXPECT_FALSE(locator.find({100, 100, z}));
}

INSTANTIATE_TEST_SUITE_P(Locator, LocatorTest, ::testing::Values("tri3", "tri6", "quad4", "quad8", "hex8"),
                         [](const auto& test) { return std::string(test.param); });

TEST(Locator, CountsAPointWithinTheToleranceAsInside) {
  const Mesh mesh = plate::read_mesh(PLATE_MESHES "quad4_coarse.msh");
  const Locator locator(mesh);
  EXPECT_TRUE(locator.find({0, 4 + 0.5 * Locator::plane_tolerance, 0}));
  EXPECT_FALSE(locator.find({0, 4 + 4 * Locator::plane_tolerance, 0}));  // beyond the box of any element
}

TEST(Locator, FindsAPointInABulgeThatLeavesTheBoxOfTheNodes) {
  // The right side runs from (2, 1) through (2.25, 1.5) to (2.2, 2): x = 2.25 + 0.1 s - 0.15 s², y = 1.5 + s/2. Its
  // greatest x, at s = 1/3, is 2.2666..., beyond that of all nodes.
  const TemporaryFile file(mesh_text(16, 8, "1 1 0\n2 1 0\n2.2 2 0\n1 2 0\n1.5 1 0\n2.25 1.5 0\n1.6 2 0\n1 1.5 0\n", 1,
                                     "1 1 2 3 4 5 6 7 8\n"));
  const Mesh mesh = plate::read_mesh(file.name());
  const auto found = Locator(mesh).find({2.266, 1.5 + 1.0 / 6, 0});
  ASSERT_TRUE(found);
  EXPECT_NEAR(found->natural.x, 1, 0.01);
  EXPECT_NEAR(found->natural.y, 1.0 / 3, 0.01);
  EXPECT_FALSE(Locator(mesh).find({2.267, 1.5 + 1.0 / 6, 0}));
}

TEST(Locator, OfTheSolidElementsOnlyHexahedraCanBeSearched) {
  const Mesh wedges = plate::read_mesh(PLATE_MESHES "wedge6_coarse.msh");
  EXPECT_FALSE(plate::can_locate(wedges));
  EXPECT_THROW(Locator{wedges}, plate::MeshError);
  EXPECT_TRUE(plate::can_locate(plate::read_mesh(PLATE_MESHES "hex8_coarse.msh")));
}

/// A mesh of the upper half of the plate, of `around` x `across` 4-node quadrilaterals in polar order.
std::string polar_mesh(int around, int across) {
  std::ostringstream nodes;
  std::ostringstream elements;
  nodes << std::setprecision(17);
  const auto node = [&](int i, int j) { return 1 + i * (across + 1) + j; };
  for (int i = 0; i <= around; ++i) {
    const double c = std::cos(pi * i / around);
    const double s = std::sin(pi * i / around);
    const double edge = 4 / std::max(std::fabs(c), std::fabs(s));  // the edge of the plate in this direction
    for (int j = 0; j <= across; ++j) {
      const double r = 1 + (edge - 1) * j / across;
      nodes << r * c << ' ' << r * s << " 0\n";
    }
  }
  int tag = 0;
  for (int i = 0; i < around; ++i) {
    for (int j = 0; j < across; ++j) {
      elements << ++tag << ' ' << node(i, j) << ' ' << node(i, j + 1) << ' ' << node(i + 1, j + 1) << ' '
               << node(i + 1, j) << '\n';
    }
  }
  return mesh_text(3, (around + 1) * (across + 1), nodes.str(), tag, elements.str());
}

TEST(Locator, ServesAMeshOfAHundredThousandElements) {
  constexpr int around = 500;
  constexpr int across = 200;
  const TemporaryFile file(polar_mesh(around, across));
  const Mesh mesh = plate::read_mesh(file.name());
  ASSERT_EQ(mesh.elements.size(), 100000u);

  // The hole is half of a polygon with sides over the angle pi/500.
  const double hole = around / 2.0 * std::sin(pi / around);
  EXPECT_NEAR(plate::gauss_content(mesh), 32 - hole, 1e-10);

  const plate::StressField field(mesh);
  const plate::Section section = plate::evaluate_section(mesh, field, 10000);
  EXPECT_EQ(section.located(), 10000);
  // The section runs along element sides of the length h = 3/200. Linear interpolation there errs by h²/8 times the
  // second derivative of sigma = 1 + 1/(2r²) + 3/(2r⁴), which is 3/r⁴ + 30/r⁶, 33 at the hole.
  const double h = 3.0 / across;
  EXPECT_LT(section.max_error(&plate::HoleStress::tangential).value(), h * h / 8 * 33);
  EXPECT_GT(section.max_error(&plate::HoleStress::tangential).value(), h * h / 8 * 25);
}

}  // namespace

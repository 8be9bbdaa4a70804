#include "stress_field.h"

#include "complex_potentials.h"
#include "mesh_file.h"
#include "mesh_text.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

namespace {

using plate::principal_state;
using plate::PrincipalState;

// The principal directions of [[1, 1/2], [1/2, 0]] stand at half the angle of atan2(1, 1): 22.5 degrees.
TEST(PrincipalStateTest, PointsWhereTheStressActs) {
  const double pi_8 = std::atan(1.0) / 2;
  const PrincipalState state = principal_state({1, 0.5, 0.5, 0});
  EXPECT_DOUBLE_EQ(state.values.xx, 0.5 + std::sqrt(0.5));
  EXPECT_DOUBLE_EQ(state.values.yy, 0.5 - std::sqrt(0.5));
  EXPECT_DOUBLE_EQ(state.first.x, std::cos(pi_8));
  EXPECT_DOUBLE_EQ(state.first.y, std::sin(pi_8));
}

// sigma d = lambda d for both directions, in each of the four quadrants of (xx - yy, xy) and on their borders.
TEST(PrincipalStateTest, HoldsEigenvectors) {
  const Tens2<double> stresses[] = {{3, 1, 1, -2}, {3, -1, -1, -2}, {-2, 1, 1, 3}, {-2, -1, -1, 3},
                                    {3, 0, 0, -2}, {-2, 0, 0, 3},   {1, 2, 2, 1},  {1, -2, -2, 1}};
  for (Tens2<double> const& s : stresses) {
    const auto& [values, first, second] = principal_state(s);
    EXPECT_GE(values.xx, values.yy);
    for (const auto& [direction, value] : {std::pair{first, values.xx}, std::pair{second, values.yy}}) {
      EXPECT_NEAR(s.xx * direction.x + s.xy * direction.y, value * direction.x, 4e-15) << s.xx << ' ' << s.xy;
      EXPECT_NEAR(s.xy * direction.x + s.yy * direction.y, value * direction.y, 4e-15) << s.xx << ' ' << s.xy;
      EXPECT_DOUBLE_EQ(std::hypot(direction.x, direction.y), 1);
    }
  }
}

class StressFieldTest : public ::testing::TestWithParam<const char*> {};

TEST_P(StressFieldTest, IsTheClosedSolutionAtEveryNode) {
  const plate::Mesh mesh = plate::read_mesh(std::string(PLATE_MESHES) + GetParam() + "_coarse.msh");
  const plate::StressField field(mesh);
  for (plate::Element const& element : mesh.elements) {
    for (std::size_t k = 0; k < element.kind->nodes; ++k) {
      Vec3<double> const& node = mesh.nodes[element.nodes[k]];
      const auto stress = field.at(node);
      ASSERT_TRUE(stress);
      const Tens2<double> expected = plate::test::stress_by_potentials(node.x, node.y);
      // The natural point is as good as the location's tolerance, at worst 1e-6 for a gradient of about 10 here.
      EXPECT_NEAR(stress->xx, expected.xx, 1e-5);
      EXPECT_NEAR(stress->xy, expected.xy, 1e-5);
      EXPECT_NEAR(stress->yy, expected.yy, 1e-5);
      EXPECT_EQ(stress->yx, stress->xy);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(StressField, StressFieldTest, ::testing::Values("tri3", "tri6", "quad4", "quad8", "hex8"),
                         [](const auto& test) { return std::string(test.param); });

TEST(StressField, IsNothingOutsideTheMesh) {
  const plate::Mesh mesh = plate::read_mesh(PLATE_MESHES "quad8_coarse.msh");
  EXPECT_FALSE(plate::StressField(mesh).at({0, 0.9, 0}));
}

TEST(StressField, ANodeInsideTheHoleIsRefusedWithTheLineOfItsElement) {
  const plate::test::TemporaryFile file(plate::test::mesh_text(2, 3, "0 0.5 0\n2 2 0\n0 3 0\n", 1, "1 1 2 3\n"));
  const plate::Mesh mesh = plate::read_mesh(file.name());
  try {
    const plate::StressField field(mesh);
    FAIL();
  } catch (plate::MeshError const& error) {
    EXPECT_EQ(error.what(), file.name() + ":17: a node of the element lies inside the hole of radius 1");
  }
}

}  // namespace

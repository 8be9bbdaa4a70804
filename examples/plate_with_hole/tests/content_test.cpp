#include "content.h"

#include "mesh_file.h"
#include "mesh_text.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <ostream>
#include <string>

namespace {

using plate::Mesh;
using plate::test::mesh_text;
using plate::test::TemporaryFile;
using std::numbers::pi;

struct OneElement {
  const char* name;
  int gmsh_type;
  int nodes;
  const char* coordinates;
  const char* element;
  double content;
  friend void PrintTo(OneElement const& self, std::ostream* out) { *out << self.name; }
};

class OneElementTest : public ::testing::TestWithParam<OneElement> {};

TEST_P(OneElementTest, HasItsAreaOrVolume) {
  auto const& [name, type, nodes, coordinates, element, content] = GetParam();
  const TemporaryFile file(mesh_text(type, nodes, coordinates, 1, element));
  // The triangle rule's constants have 12 digits.
  EXPECT_NEAR(plate::gauss_content(plate::read_mesh(file.name())), content, 1e-12 * content);
}

INSTANTIATE_TEST_SUITE_P(
    Content, OneElementTest,
    ::testing::Values(
        OneElement{"tri3", 2, 3, "1 1 0\n5 1 0\n2 4 0\n", "1 1 2 3\n", 4.0 * 3 / 2},
        // A side becomes a parabola when its middle moves by d: the area grows by -2/3 (side x d). Here that of the
        // lower side, (4, 0), moves by (0, 0.3) and that of the left one, (-1, -3), by (-0.3, 0.1).
        OneElement{"tri6", 9, 6, "1 1 0\n5 1 0\n2 4 0\n3 1.3 0\n3.5 2.5 0\n1.2 2.6 0\n", "1 1 2 3 4 5 6\n",
                   6 - 2.0 / 3 * (4 * 0.3) + 2.0 / 3 * (1 * 0.1 + 3 * 0.3)},
        OneElement{"quad4", 3, 4, "0 2 0\n4 2 0\n3 4 0\n1 4 0\n", "1 1 2 3 4\n", (4.0 + 2) / 2 * 2},
        // The same trapezium. The middle of the lower side, (4, 0), moves by (0, 0.3), that of the right one, (-1, 2),
        // by (0.3, 0.1).
        OneElement{"quad8", 16, 8, "0 2 0\n4 2 0\n3 4 0\n1 4 0\n2 2.3 0\n3.8 3.1 0\n2 4 0\n0.5 3 0\n",
                   "1 1 2 3 4 5 6 7 8\n", 6 - 2.0 / 3 * (4 * 0.3) + 2.0 / 3 * (1 * 0.1 + 2 * 0.3)},
        OneElement{"tet4", 4, 4, "2 2 0\n4 2 0\n2 5 0\n2 2 7\n", "1 1 2 3 4\n", 2.0 * 3 * 7 / 6},
        OneElement{"pyramid5", 7, 5, "2 2 0\n4 2 0\n4 5 0\n2 5 0\n3 3 7\n", "1 1 2 3 4 5\n", 2.0 * 3 * 7 / 3},
        OneElement{"wedge6", 6, 6, "2 2 0\n4 2 0\n2 5 0\n2 2 7\n4 2 7\n2 5 7\n", "1 1 2 3 4 5 6\n", 2.0 * 3 / 2 * 7},
        OneElement{"hex8", 5, 8, "2 2 0\n4 2 0\n4 5 0\n2 5 0\n2 2 7\n4 2 7\n4 5 7\n2 5 7\n", "1 1 2 3 4 5 6 7 8\n",
                   2.0 * 3 * 7}),
    [](const auto& test) { return std::string(test.param.name); });

TEST(Content, AnElementThatIsTurnedOverIsRefusedWithItsLine) {
  const TemporaryFile file(mesh_text(2, 3, "1 1 0\n5 1 0\n2 4 0\n", 1, "1 1 3 2\n"));
  try {
    plate::gauss_content(plate::read_mesh(file.name()));
    FAIL();
  } catch (plate::MeshError const& error) {
    // The determinant is twice the area, 6, turned over.
    EXPECT_EQ(error.what(),
              file.name() + ":17: the element is turned over or folded (Jacobian determinant -12.000000)");
  }
}

TEST(Content, AnElementWithoutAreaIsRefused) {
  const TemporaryFile file(mesh_text(2, 3, "1 1 0\n2 2 0\n3 3 0\n", 1, "1 1 2 3\n"));
  EXPECT_THROW(plate::gauss_content(plate::read_mesh(file.name())), plate::MeshError);
}

TEST(Content, TheExactOneLeavesOutTheHole) {
  EXPECT_DOUBLE_EQ(plate::exact_content({{0, 0, 0}, {4, 4, 0}}), 16 - pi / 4);
  EXPECT_DOUBLE_EQ(plate::exact_content({{6e-17, -2e-17, 0}, {4, 4, 0}}), 16 - pi / 4);
  EXPECT_DOUBLE_EQ(plate::exact_content({{-4, 0, 2}, {4, 4, 2}}), 32 - pi / 2);
  EXPECT_DOUBLE_EQ(plate::exact_content({{-4, -4, 0}, {0, 4, 0.5}}), (32 - pi / 2) * 0.5);
  EXPECT_DOUBLE_EQ(plate::exact_content({{-4, -4, 0}, {4, 4, 0}}), 64 - pi);
  EXPECT_DOUBLE_EQ(plate::exact_content({{2, 0, 0}, {4, 4, 0}}), 8);
}

struct Family {
  const char* name;
  double order;
  friend void PrintTo(Family const& self, std::ostream* out) { *out << self.name; }
};

class ContentConvergesTest : public ::testing::TestWithParam<Family> {};

// Straight sides cut the circle off by an area of the order h², parabolas by one of h⁴.
TEST_P(ContentConvergesTest, WithTheOrderOfTheSides) {
  const std::string family = std::string(PLATE_MESHES) + GetParam().name;
  const auto error = [&](const char* size) {
    const Mesh mesh = plate::read_mesh(family + size + ".msh");
    const double thickness = mesh.dimension == 3 ? 0.5 : 1;
    return std::fabs(plate::gauss_content(mesh) / thickness - (32 - pi / 2));
  };
  const double coarse = error("_coarse");
  const double medium = error("_medium");
  const double fine = error("_fine");
  // The top of the hole has 5, 9 and 17 elements, the rest of it 4, 8 and 16: h falls by less than 2.
  EXPECT_LT(medium, coarse / std::pow(9.0 / 5.0, GetParam().order));
  EXPECT_LT(fine, medium / std::pow(17.0 / 9.0, GetParam().order));
}

INSTANTIATE_TEST_SUITE_P(Content, ContentConvergesTest,
                         ::testing::Values(Family{"tri3", 2}, Family{"quad4", 2}, Family{"hex8", 2}, Family{"tri6", 4},
                                           Family{"quad8", 4}),
                         [](const auto& test) { return std::string(test.param.name); });

}  // namespace

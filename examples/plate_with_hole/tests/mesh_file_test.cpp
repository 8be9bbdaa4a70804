#include "mesh_file.h"

#include "mesh_text.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <vector>

namespace {

using plate::Mesh;
using plate::MeshError;
using plate::read_mesh;
using plate::test::TemporaryFile;

// A triangle, its boundary point and a section that is passed over. Node numbers have gaps.
const std::vector<std::string> triangle_41 = {
    /*  1 */ "$MeshFormat",
    /*  2 */ "4.1 0 8",
    /*  3 */ "$EndMeshFormat",
    /*  4 */ "$PhysicalNames",
    /*  5 */ "1",
    /*  6 */ "2 1 \"plate\"",
    /*  7 */ "$EndPhysicalNames",
    /*  8 */ "$Nodes",
    /*  9 */ "2 3 5 900",
    /* 10 */ "0 1 0 1",
    /* 11 */ "5",
    /* 12 */ "1 1 0",
    /* 13 */ "2 1 0 2",
    /* 14 */ "70",
    /* 15 */ "900",
    /* 16 */ "3 1 0",
    /* 17 */ "1 2.5 0",
    /* 18 */ "$EndNodes",
    /* 19 */ "$Elements",
    /* 20 */ "2 2 1 2",
    /* 21 */ "0 1 15 1",
    /* 22 */ "1 5",
    /* 23 */ "2 1 2 1",
    /* 24 */ "2 5 70 900",
    /* 25 */ "$EndElements",
};

const std::vector<std::string> triangle_22 = {
    /*  1 */ "$MeshFormat",
    /*  2 */ "2.2 0 8",
    /*  3 */ "$EndMeshFormat",
    /*  4 */ "$Nodes",
    /*  5 */ "3",
    /*  6 */ "5 1 1 0",
    /*  7 */ "70 3 1 0",
    /*  8 */ "900 1 2.5 0",
    /*  9 */ "$EndNodes",
    /* 10 */ "$Elements",
    /* 11 */ "2",
    /* 12 */ "1 15 2 1 1 5",
    /* 13 */ "2 2 2 1 1 5 70 900",
    /* 14 */ "$EndElements",
};

std::string joined(std::vector<std::string> const& lines, std::string const& end = "\n") {
  std::string text;
  for (std::string const& line : lines) text += line + end;
  return text;
}

/// The message with which a file of this text is refused, without the file's name; empty when it is read.
std::string refusal(std::string const& text) {
  const TemporaryFile file(text);
  try {
    read_mesh(file.name());
  } catch (MeshError const& error) {
    const std::string message = error.what();
    EXPECT_EQ(message.substr(0, file.name().size() + 1), file.name() + ":");
    return message.substr(file.name().size() + 1);
  }
  return "";
}

void expect_the_triangle(std::string const& text) {
  const TemporaryFile file(text);
  const Mesh mesh = read_mesh(file.name());
  EXPECT_EQ(mesh.file, file.name());
  EXPECT_EQ(mesh.dimension, 2);
  ASSERT_EQ(mesh.elements.size(), 1u);
  plate::Element const& element = mesh.elements.front();
  EXPECT_STREQ(element.kind->name, "tri3");
  EXPECT_EQ(mesh.nodes.at(element.nodes[0]), (Vec3<double>{1, 1, 0}));
  EXPECT_EQ(mesh.nodes.at(element.nodes[1]), (Vec3<double>{3, 1, 0}));
  EXPECT_EQ(mesh.nodes.at(element.nodes[2]), (Vec3<double>{1, 2.5, 0}));
}

TEST(MeshFile, ReadsBothFormats) {
  expect_the_triangle(joined(triangle_41));
  expect_the_triangle(joined(triangle_22));
}

TEST(MeshFile, ReadsFilesWithCarriageReturns) {
  expect_the_triangle(joined(triangle_41, "\r\n"));
  expect_the_triangle(joined(triangle_22, "\r\n"));
}

TEST(MeshFile, ReadsParametricNodes) {
  auto lines = triangle_41;
  lines[12] = "2 1 1 2";
  lines[15] += " 0.25 0.75";
  lines[16] += " 0.5 0.5";
  expect_the_triangle(joined(lines));
}

TEST(MeshFile, RemembersTheLineOfAnElement) {
  const TemporaryFile file(joined(triangle_41));
  EXPECT_EQ(read_mesh(file.name()).elements.front().line, 24u);
}

TEST(MeshFile, LeavesOutTheSurfacesOfASolid) {
  const Mesh mesh = read_mesh(PLATE_MESHES "hex8_coarse.msh");
  EXPECT_EQ(mesh.dimension, 3);
  EXPECT_EQ(mesh.elements.size(), 27u);  // (2 + 5 + 2) around, 3 across, 1 through the thickness
  for (plate::Element const& element : mesh.elements) EXPECT_STREQ(element.kind->name, "hex8");
}

TEST(MeshFile, BothFormatsHoldTheSameMesh) {
  const Mesh v41 = read_mesh(PLATE_MESHES "quad8_medium.msh");
  const Mesh v22 = read_mesh(PLATE_MESHES "quad8_medium_msh22.msh");
  ASSERT_EQ(v41.elements.size(), v22.elements.size());
  for (std::size_t i = 0; i < v41.elements.size(); ++i) {
    ASSERT_EQ(v41.elements[i].kind, v22.elements[i].kind);
    for (std::size_t k = 0; k < 8; ++k) {
      EXPECT_EQ(v41.nodes[v41.elements[i].nodes[k]], v22.nodes[v22.elements[i].nodes[k]]);
    }
  }
}

struct BadLine {
  const char* name;
  std::vector<std::string> const* mesh;
  std::size_t line;  // counts from 1
  const char* text;  // stands there instead
  const char* refusal;
  friend void PrintTo(BadLine const& self, std::ostream* out) { *out << self.name; }
};

class BadLineTest : public ::testing::TestWithParam<BadLine> {};

TEST_P(BadLineTest, IsRefusedWithItsPlace) {
  auto lines = *GetParam().mesh;
  lines.at(GetParam().line - 1) = GetParam().text;
  EXPECT_EQ(refusal(joined(lines)), GetParam().refusal);
}

constexpr auto* v41 = &triangle_41;
constexpr auto* v22 = &triangle_22;

INSTANTIATE_TEST_SUITE_P(
    MeshFile, BadLineTest,
    ::testing::Values(
        // The head of the file.
        BadLine{"another_format", v41, 1, "solid plate", "1: not a Gmsh mesh: the first line has to be $MeshFormat"},
        BadLine{"old_version", v41, 2, "4.0 0 8", "2: version '4.0' of the format; 4.1 and 2.2 are read"},
        BadLine{"binary", v41, 2, "4.1 1 8", "2: a binary mesh; only Gmsh's text format is read"},
        BadLine{"no_file_type", v41, 2, "4.1", "2: the file type is missing"},
        BadLine{"no_end_of_format", v41, 3, "$Nodes", "3: $EndMeshFormat expected, not '$Nodes'"},
        // Nodes of 4.1.
        BadLine{"no_section", v41, 8, "Nodes", "8: a section ($...) expected, not 'Nodes'"},
        BadLine{"no_number", v41, 9, "two 3 5 900", "9: the number of node blocks is not a whole number: 'two'"},
        BadLine{"negative_count", v41, 9, "2 -3 5 900", "9: the number of nodes cannot be -3"},
        BadLine{"fractional_count", v41, 9, "2 3.5 5 900", "9: the number of nodes is not a whole number: '3.5'"},
        BadLine{"huge_count", v41, 9, "2 99999999999999999999 5 900",
                "9: the number of nodes is out of range: '99999999999999999999'"},
        BadLine{"too_many_announced", v41, 9, "2 4000000000000000000 5 900",
                "17: 3999999999999999997 of the nodes announced are not in any block"},
        BadLine{"large_block", v41, 13, "2 1 0 4000000000000000000",
                "13: a block of 4000000000000000000 nodes, but only 2 are left of those announced"},
        BadLine{"more_on_the_block_line", v41, 13, "2 1 0 2 7", "13: more on the line than expected: '7'"},
        BadLine{"short_block_line", v41, 13, "2 1 0", "13: the size of the block is missing"},
        BadLine{"node_0", v41, 14, "0", "14: the node tag cannot be 0"},
        BadLine{"node_twice", v41, 15, "5", "15: node 5 stands here again"},
        BadLine{"letters_in_a_coordinate", v41, 16, "3 1x 0", "16: a coordinate is not a number: '1x'"},
        BadLine{"missing_coordinate", v41, 16, "3 1", "16: a coordinate is missing"},
        BadLine{"fourth_coordinate", v41, 16, "3 1 0 0", "16: more on the line than expected: '0'"},
        BadLine{"nan", v41, 16, "3 nan 0", "16: a coordinate is not finite"},
        BadLine{"infinity", v41, 16, "3 -inf 0", "16: a coordinate is not finite"},
        BadLine{"overflow", v41, 16, "3 1e999 0", "16: a coordinate is out of range: '1e999'"},
        BadLine{"control_characters", v41, 16, "3 \x1b[31m\xff 0", "16: a coordinate is not a number: '?[31m?'"},
        BadLine{"endless_word", v41, 16, "3 12345678901234567890123456789012345z 0",
                "16: a coordinate is not a number: '123456789012345678901234567890...'"},
        BadLine{"out_of_plane", v41, 17, "1 2.5 0.1", "24: the plane mesh does not lie in one plane z = constant"},
        // Elements of 4.1.
        BadLine{"unknown_type", v41, 23, "2 1 10 1", "23: talvo has no element of Gmsh's type 10"},
        BadLine{"unknown_boundary_type", v41, 21, "1 1 26 1", "21: talvo has no element of Gmsh's type 26"},
        BadLine{"missing_node", v41, 24, "2 5 70 901", "24: no node 901 stands above this element"},
        BadLine{"short_element", v41, 24, "2 5 70", "24: a node of the element is missing"},
        BadLine{"long_element", v41, 24, "2 5 70 900 5", "24: more on the line than expected: '5'"},
        BadLine{"fewer_elements", v41, 20, "2 3 1 3", "24: 1 of the elements announced are not in any block"},
        BadLine{"no_end_of_elements", v41, 25, "$EndNodes", "25: $EndElements expected, not '$EndNodes'"},
        // Nodes and elements of 2.2.
        BadLine{"v22_missing_coordinate", v22, 7, "70 3 1", "7: a coordinate is missing"},
        BadLine{"v22_node_twice", v22, 7, "5 3 1 0", "7: node 5 stands here again"},
        BadLine{"v22_huge_count", v22, 5, "4000000000000000000", "9: the node tag is not a whole number: '$EndNodes'"},
        BadLine{"v22_unknown_type", v22, 13, "2 10 2 1 1 5 70 900", "13: talvo has no element of Gmsh's type 10"},
        BadLine{"v22_missing_node", v22, 13, "2 2 2 1 1 5 70 901", "13: no node 901 stands above this element"},
        BadLine{"v22_huge_tag_count", v22, 13, "2 2 4000000000000000000 1 1 5 70 900", "13: a tag is missing"},
        BadLine{"v22_fewer_elements", v22, 11, "1", "13: $EndElements expected, not '2'"}),
    [](const auto& test) { return std::string(test.param.name); });

TEST(MeshFile, AFileThatIsNotThereIsRefused) {
  try {
    read_mesh("no_such.msh");
    FAIL();
  } catch (MeshError const& error) {
    EXPECT_STREQ(error.what(), "no_such.msh: cannot be opened: No such file or directory");
  }
}

TEST(MeshFile, AnEmptyFileIsRefused) {
  EXPECT_EQ(refusal(""), "1: not a Gmsh mesh: the first line has to be $MeshFormat");
}

TEST(MeshFile, AMeshOfBoundaryOnlyIsRefused) {
  EXPECT_EQ(refusal("$MeshFormat\n4.1 0 8\n$EndMeshFormat\n"), "3: the file ends without a plane or solid element");
  auto lines = triangle_41;
  lines[22] = "0 2 15 1";
  lines[23] = "2 5";
  EXPECT_EQ(refusal(joined(lines)), "25: the file ends without a plane or solid element");
}

TEST(MeshFile, ElementsAboveTheirNodesAreRefused) {
  std::vector<std::string> lines(triangle_41.begin(), triangle_41.begin() + 3);
  lines.insert(lines.end(), triangle_41.begin() + 18, triangle_41.end());
  EXPECT_EQ(refusal(joined(lines)), "7: no node 5 stands above this element");
}

TEST(MeshFile, TheMessageSaysWhatATruncatedFileLacks) {
  const auto refusal_after = [](std::size_t count) {
    return refusal(joined({triangle_41.begin(), triangle_41.begin() + static_cast<std::ptrdiff_t>(count)}));
  };
  EXPECT_EQ(refusal_after(1), "1: the file ends where the version of the format is expected");
  EXPECT_EQ(refusal_after(5), "5: the file ends where $EndPhysicalNames is expected");
  EXPECT_EQ(refusal_after(12), "12: the file ends where a node block is expected");
  EXPECT_EQ(refusal_after(14), "14: the file ends where a node tag is expected");
  EXPECT_EQ(refusal_after(16), "16: the file ends where a node's place is expected");
  EXPECT_EQ(refusal_after(23), "23: the file ends where an element is expected");
  EXPECT_EQ(refusal_after(24), "24: the file ends where $EndElements is expected");
}

TEST(MeshFile, EveryTruncationIsNoticed) {
  for (auto const* lines : {&triangle_41, &triangle_22}) {
    const std::string text = joined(*lines);
    const std::size_t complete = text.size() - 1;  // the last line need not end
    EXPECT_EQ(refusal(text.substr(0, complete)), "");
    for (std::size_t size = 0; size < complete; ++size) EXPECT_NE(refusal(text.substr(0, size)), "") << size;
  }
}

}  // namespace

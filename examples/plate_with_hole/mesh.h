#pragma once

/// @file
/// A finite-element mesh as the program holds it: nodes, and elements that name them.

#include <talvo/core/vec3.h>
#include <talvo/shape/shape.h>

#include <array>
#include <cstddef>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace plate {

/// One kind of element, under the number that Gmsh gives it.
struct ElementKind {
  int gmsh_type;
  const char* name;
  int dimension;        ///< 0 point, 1 line, 2 plane, 3 solid
  std::size_t nodes;    ///< Gmsh and talvo count them in the same order
  std::size_t corners;  ///< the first of the nodes; the rest are the mid-side nodes
};

/// The kind of a Gmsh element type, or null for one that talvo does not know.
const ElementKind* find_kind(long long gmsh_type);

struct Element {
  const ElementKind* kind;
  std::array<std::size_t, 8> nodes;  ///< indices into Mesh::nodes; the first kind->nodes count
  std::size_t line;                  ///< where the element stands in the mesh file, for messages
};

struct Mesh {
  std::string file;
  int dimension = 0;  ///< 2 for a plane mesh, 3 for a solid one; all elements have it
  std::vector<Vec3<double>> nodes;
  std::vector<Element> elements;
};

/// A mesh that cannot be used. The message says where: "plate.msh:12: what is wrong".
class MeshError : public std::runtime_error {
 public:
  MeshError(std::string const& file, std::string const& what) : std::runtime_error(file + ": " + what) {}
  MeshError(std::string const& file, std::size_t line, std::string const& what)
      : MeshError(file + ":" + std::to_string(line), what) {}
};

/// The element as talvo's shape.
Talvo::Util::CShape shape_of(Mesh const& mesh, Element const& element);

/// One side of a plane element, or one edge of a hexahedron.
struct Side {
  std::size_t from, to;               ///< indices into Mesh::nodes
  std::optional<std::size_t> middle;  ///< the mid-side node of a quadratic element
};

/// The sides of a plane element or the edges of a hexahedron; none for the other solids.
std::vector<Side> sides_of(Element const& element);

/// An axis-parallel box.
struct Bounds {
  Vec3<double> low;
  Vec3<double> high;

  /// Grows just so far that it holds the point. A box without corners yet (NaN) becomes the point.
  void include(Vec3<double> const& point);
};

/// Around all nodes of all elements.
Bounds bounds_of(Mesh const& mesh);

}  // namespace plate

#pragma once

/// @file
/// Finding the element that holds a point.

#include "mesh.h"

#include <talvo/core/vec3.h>

#include <cstddef>
#include <memory>
#include <optional>

namespace plate {

/// Where a point lies in a mesh.
struct Location {
  std::size_t element;   ///< index into Mesh::elements
  Vec3<double> natural;  ///< r, s and t; t is 0 in a plane element
};

/// Whether points can be found in every element of the mesh: talvo's inverse mapping knows all plane elements, but of
/// the solids only hexahedra.
bool can_locate(Mesh const& mesh);

/// Finds points in a mesh, in a time that hardly grows with the number of elements: a tree of bounding boxes names the
/// few elements that may hold a point, and only these are asked.
class Locator {
 public:
  /// How exactly a point is found, and how far outside an element it still counts, in hole radii. The second is
  /// FindRST's own, whatever it is given.
  static constexpr double plane_tolerance = 1e-9;
  static constexpr double solid_tolerance = 1e-6;

  /// Keeps a reference to the mesh. Throws MeshError unless can_locate().
  explicit Locator(Mesh const& mesh);
  ~Locator();

  /// The element that holds the point, of several the first in the file; nothing for a point outside the mesh.
  std::optional<Location> find(Vec3<double> const& point) const;

 private:
  struct Tree;  // keeps Boost's headers, which take seconds to compile, out of this one

  /// The natural coordinates of the point in one element, if it holds it.
  std::optional<Vec3<double>> find_in(std::size_t element, Vec3<double> const& point) const;

  Mesh const& mesh_;
  double tolerance_;
  std::unique_ptr<Tree> tree_;
};

}  // namespace plate

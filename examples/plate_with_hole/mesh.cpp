#include "mesh.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace plate {
namespace {

constexpr ElementKind kinds[] = {
    // Boundary of a plate or solid.
    {15, "point", 0, 1, 1},
    {1, "line2", 1, 2, 2},
    {8, "line3", 1, 3, 2},
    // Plane.
    {2, "tri3", 2, 3, 3},
    {9, "tri6", 2, 6, 3},
    {3, "quad4", 2, 4, 4},
    {16, "quad8", 2, 8, 4},
    // Solid.
    {4, "tet4", 3, 4, 4},
    {7, "pyramid5", 3, 5, 5},
    {6, "wedge6", 3, 6, 6},
    {5, "hex8", 3, 8, 8},
};

constexpr std::pair<std::size_t, std::size_t> hexahedron_edges[] = {
    {0, 1}, {1, 2}, {2, 3}, {3, 0},  // the face t = -1
    {4, 5}, {5, 6}, {6, 7}, {7, 4},  // the face t = +1
    {0, 4}, {1, 5}, {2, 6}, {3, 7},
};

}  // namespace

const ElementKind* find_kind(long long gmsh_type) {
  const auto* found = std::find_if(std::begin(kinds), std::end(kinds),
                                   [&](ElementKind const& kind) { return kind.gmsh_type == gmsh_type; });
  return found == std::end(kinds) ? nullptr : found;
}

Talvo::Util::CShape shape_of(Mesh const& mesh, Element const& element) {
  std::vector<Vec3<double>> coor(element.kind->nodes);
  for (std::size_t i = 0; i < coor.size(); ++i) coor[i] = mesh.nodes[element.nodes[i]];
  return {static_cast<Talvo::SpaceType>(element.kind->dimension), coor};
}

std::vector<Side> sides_of(Element const& element) {
  const auto& [gmsh_type, name, dimension, nodes, corners] = *element.kind;
  std::vector<Side> sides;
  if (dimension == 2) {
    for (std::size_t i = 0; i < corners; ++i) {
      Side side{element.nodes[i], element.nodes[(i + 1) % corners], std::nullopt};
      if (nodes > corners) side.middle = element.nodes[corners + i];
      sides.push_back(side);
    }
  } else if (nodes == 8) {
    for (const auto& [from, to] : hexahedron_edges) {
      sides.push_back({element.nodes[from], element.nodes[to], std::nullopt});
    }
  }
  return sides;
}

void Bounds::include(Vec3<double> const& point) {
  // fmin and fmax pass over a NaN.
  low = {std::fmin(low.x, point.x), std::fmin(low.y, point.y), std::fmin(low.z, point.z)};
  high = {std::fmax(high.x, point.x), std::fmax(high.y, point.y), std::fmax(high.z, point.z)};
}

Bounds bounds_of(Mesh const& mesh) {
  Bounds bounds;
  for (Element const& element : mesh.elements) {
    for (std::size_t i = 0; i < element.kind->nodes; ++i) bounds.include(mesh.nodes[element.nodes[i]]);
  }
  return bounds;
}

}  // namespace plate

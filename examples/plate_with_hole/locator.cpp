#include "locator.h"

#include <algorithm>
#include <boost/geometry.hpp>
#include <boost/geometry/index/rtree.hpp>
#include <cmath>
#include <iterator>
#include <utility>
#include <vector>

namespace plate {
namespace {

namespace geometry = boost::geometry;

using Point = geometry::model::point<double, 3, geometry::cs::cartesian>;
using Box = geometry::model::box<Point>;
using Entry = std::pair<Box, std::size_t>;  // an element's box and its index
using RTree = geometry::index::rtree<Entry, geometry::index::rstar<16>>;

Box box_of(Mesh const& mesh, Element const& element, double tolerance) {
  Bounds bounds;
  for (std::size_t i = 0; i < element.kind->corners; ++i) bounds.include(mesh.nodes[element.nodes[i]]);
  // A curved side is a parabola through its three nodes. It stays within the triangle of its ends and the point where
  // their tangents meet (its Bezier point), while it may well leave the box of the nodes.
  for (Side const& side : sides_of(element)) {
    if (!side.middle) continue;
    bounds.include(2.0 * mesh.nodes[*side.middle] - 0.5 * (mesh.nodes[side.from] + mesh.nodes[side.to]));
  }
  const Vec3<double> margin{tolerance, tolerance, tolerance};
  const Vec3<double> low = bounds.low - margin;
  const Vec3<double> high = bounds.high + margin;
  return {Point(low.x, low.y, low.z), Point(high.x, high.y, high.z)};
}

/// The mean of the nodes.
Vec3<double> centre_of(Talvo::Util::CShape const& shape) {
  Vec3<double> sum{0, 0, 0};
  for (Vec3<double> const& node : shape.Coor()) sum = sum + node;
  return 1.0 / shape.NumTopo() * sum;
}

std::vector<Entry> boxes_of(Mesh const& mesh, double tolerance) {
  std::vector<Entry> entries;
  entries.reserve(mesh.elements.size());
  for (std::size_t i = 0; i < mesh.elements.size(); ++i) {
    entries.emplace_back(box_of(mesh, mesh.elements[i], tolerance), i);
  }
  return entries;
}

}  // namespace

struct Locator::Tree {
  RTree boxes;
};

bool can_locate(Mesh const& mesh) {
  return mesh.dimension == 2 || std::all_of(mesh.elements.begin(), mesh.elements.end(),
                                            [](Element const& element) { return element.kind->nodes == 8; });
}

Locator::Locator(Mesh const& mesh) : mesh_(mesh), tolerance_(mesh.dimension == 2 ? plane_tolerance : solid_tolerance) {
  if (!can_locate(mesh)) throw MeshError(mesh.file, "of the solid elements, points can be found in hexahedra only");
  tree_ = std::make_unique<Tree>(Tree{RTree(boxes_of(mesh, tolerance_))});
}

Locator::~Locator() = default;

std::optional<Location> Locator::find(Vec3<double> const& point) const {
  std::vector<Entry> candidates;
  tree_->boxes.query(geometry::index::intersects(Point(point.x, point.y, point.z)), std::back_inserter(candidates));
  // On a side that two elements share, the answer must not depend on how the tree was built.
  std::sort(candidates.begin(), candidates.end(), [](Entry const& a, Entry const& b) { return a.second < b.second; });

  for (const auto& [box, element] : candidates) {
    if (const auto natural = find_in(element, point)) return Location{element, *natural};
  }
  // The tolerance is both where the inverse mapping stops and how far outside an element its result may be. A point on
  // the very edge of the mesh can therefore be reached just outside, within the one and beyond the other. A few
  // tolerances further in there is no doubt.
  for (const auto& [box, element] : candidates) {
    const Vec3<double> inwards = centre_of(shape_of(mesh_, mesh_.elements[element])) - point;
    const double distance = std::hypot(inwards.x, inwards.y, inwards.z);
    if (const auto natural = find_in(element, point + 4 * tolerance_ / distance * inwards)) {
      return Location{element, *natural};
    }
  }
  return std::nullopt;
}

std::optional<Vec3<double>> Locator::find_in(std::size_t element, Vec3<double> const& point) const {
  const Talvo::Util::CShape shape = shape_of(mesh_, mesh_.elements[element]);
  Vec2<double> rs;
  Vec3<double> rst;
  if (mesh_.dimension == 2 && shape.FindRS(point, rs, tolerance_)) return Vec3<double>{rs.x, rs.y, 0};
  if (mesh_.dimension == 3 && shape.FindRST(point, rst, tolerance_)) return rst;
  return std::nullopt;
}

}  // namespace plate

#include "stress_field.h"

#include "kirsch.h"

#include <talvo/interpolation/interpolate2d.h>
#include <talvo/interpolation/interpolate3d.h>

#include <cmath>

namespace plate {
namespace {

/// Node coordinates in a file are rounded, and a node on the edge of the hole may stand this much too near its centre.
constexpr double rounding = 1e-6 * hole_radius;

std::vector<Tens2<double>> sample_at_nodes(Mesh const& mesh) {
  std::vector<Tens2<double>> stresses(mesh.nodes.size());
  for (Element const& element : mesh.elements) {
    for (std::size_t i = 0; i < element.kind->nodes; ++i) {
      Vec3<double> const& node = mesh.nodes[element.nodes[i]];
      if (std::hypot(node.x, node.y) < hole_radius - rounding) {
        throw MeshError(mesh.file, element.line, "a node of the element lies inside the hole of radius 1");
      }
      stresses[element.nodes[i]] = kirsch(node);
    }
  }
  return stresses;
}

/// The interpolation functions of the element's nodes at a natural point.
std::vector<double> H(Element const& element, Vec3<double> const& natural) {
  const int nodes = static_cast<int>(element.kind->nodes);
  if (element.kind->dimension == 3) return Talvo::Util::Interpolate3d::H(nodes, natural, Talvo::Full);
  return Talvo::Util::Interpolate2d::H(nodes, {natural.x, natural.y}, Talvo::Full);
}

}  // namespace

PrincipalState principal_state(Tens2<double> const& stress) {
  PrincipalState state;
  state.values = stress.Principal();
  stress.PrincipalPlane(&state.first, &state.second);
  // The library's angle runs the other way round: mirrored at the x axis, the vectors are those in which the stresses
  // act.
  state.first.y = -state.first.y;
  state.second.y = -state.second.y;
  return state;
}

StressField::StressField(Mesh const& mesh) : mesh_(mesh), locator_(mesh), nodal_(sample_at_nodes(mesh)) {}

std::optional<Tens2<double>> StressField::at(Vec3<double> const& point) const {
  const std::optional<Location> location = locator_.find(point);
  if (!location) return std::nullopt;
  Element const& element = mesh_.elements[location->element];
  const std::vector<double> h = H(element, location->natural);
  Tens2<double> stress;
  for (std::size_t k = 0; k < h.size(); ++k) {
    Tens2<double> const& node = nodal_[element.nodes[k]];
    stress.xx += h[k] * node.xx;
    stress.xy += h[k] * node.xy;
    stress.yy += h[k] * node.yy;
  }
  stress.yx = stress.xy;
  return stress;
}

}  // namespace plate

#include "section.h"

#include "kirsch.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace plate {
namespace {

/// The greatest of a quantity over the points that were located.
template <class Quantity>
std::optional<double> max_over_located(Section const& section, Quantity quantity) {
  std::optional<double> greatest;
  for (SectionPoint const& point : section.points) {
    if (point.computed) greatest = std::max(greatest.value_or(0), quantity(point));
  }
  return greatest;
}

SectionPoint evaluate(StressField const& field, Vec3<double> const& position) {
  const Tens2<double> exact = kirsch_polar(position.y, std::numbers::pi / 2);
  SectionPoint point{position, {exact.xx, exact.yy, exact.xy}, std::nullopt};
  if (const auto stress = field.at(position)) {
    point.computed = {in_hole_axes(*stress, position), principal_state(*stress)};
  }
  return point;
}

}  // namespace

int Section::located() const {
  return static_cast<int>(
      std::count_if(points.begin(), points.end(), [](SectionPoint const& p) { return p.computed.has_value(); }));
}

std::optional<double> Section::max_error(double HoleStress::*component) const {
  return max_over_located(
      *this, [&](SectionPoint const& p) { return std::fabs(p.computed->stress.*component - p.exact.*component); });
}

std::optional<double> Section::max_tilt() const {
  // On the y axis the tangent of the hole is the x axis. A direction and its opposite are the same.
  return max_over_located(*this, [](SectionPoint const& p) {
    Vec2<double> const& first = p.computed->principal.first;
    return std::atan2(std::fabs(first.y), std::fabs(first.x)) * 180 / std::numbers::pi;
  });
}

std::optional<double> Section::concentration() const {
  if (!points.front().computed) return std::nullopt;
  return points.front().computed->stress.tangential / tension;
}

std::optional<double> Section::radial_at_hole() const {
  if (!points.front().computed) return std::nullopt;
  return points.front().computed->stress.radial;
}

Section evaluate_section(Mesh const& mesh, StressField const& field, int count) {
  const Bounds bounds = bounds_of(mesh);
  if (bounds.high.y <= hole_radius) throw MeshError(mesh.file, "the mesh has no section above the hole");
  const Vec3<double> from{0, hole_radius, (bounds.low.z + bounds.high.z) / 2};
  const double length = bounds.high.y - hole_radius;
  Section section;
  for (int i = 0; i < count; ++i) {
    section.points.push_back(evaluate(field, from + Vec3<double>{0, length * i / (count - 1), 0}));
  }
  return section;
}

}  // namespace plate

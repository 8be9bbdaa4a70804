#pragma once

/// @file
/// The stress along the section beside the hole: the y axis from the hole to the edge of the plate.

#include "hole_axes.h"
#include "mesh.h"
#include "stress_field.h"

#include <optional>
#include <vector>

namespace plate {

/// One point of the section.
struct SectionPoint {
  Vec3<double> position;
  HoleStress exact;  ///< by the closed solution

  /// What the mesh gives.
  struct Computed {
    HoleStress stress;
    PrincipalState principal;
  };
  std::optional<Computed> computed;  ///< nothing when the point lies outside the mesh
};

/// The points of a section, from the hole outwards.
struct Section {
  std::vector<SectionPoint> points;

  /// How many points lie in the mesh.
  int located() const;
  /// Greatest difference between computed and exact stress in a component, as in max_error(&HoleStress::radial);
  /// nothing when no point was located.
  std::optional<double> max_error(double HoleStress::*component) const;
  /// Greatest angle, in degrees, between the first principal direction and the hole's tangent, along which it acts
  /// here; nothing when no point was located.
  std::optional<double> max_tilt() const;
  /// The stress concentration, from the first point; nothing when that lies outside the mesh.
  std::optional<double> concentration() const;
  /// The radial stress at the edge of the hole, from the first point; nothing when that lies outside the mesh.
  std::optional<double> radial_at_hole() const;
};

/// The section through `count` points at equal distance, halfway through the thickness of a solid.
///
/// @param count  at least 2.
/// Throws MeshError when the mesh does not reach beyond the hole.
Section evaluate_section(Mesh const& mesh, StressField const& field, int count);

}  // namespace plate

#pragma once

/// @file
/// The stress along the section beside the hole: the y axis from the hole to the edge of the plate.

#include "mesh.h"
#include "stress_field.h"

#include <optional>
#include <vector>

namespace plate {

/// One point of the section.
struct SectionPoint {
  Vec3<double> position;
  double exact;  ///< tangential stress by the closed solution

  /// What the mesh gives.
  struct Computed {
    double tangential;
    PrincipalState principal;
  };
  std::optional<Computed> computed;  ///< nothing when the point lies outside the mesh
};

/// The points of a section, from the hole outwards.
struct Section {
  std::vector<SectionPoint> points;

  /// How many points lie in the mesh.
  int located() const;
  /// Greatest difference between computed and exact tangential stress; nothing when no point was located.
  std::optional<double> max_error() const;
  /// Greatest angle, in degrees, between the first principal direction and the hole's tangent, along which it acts
  /// here; nothing when no point was located.
  std::optional<double> max_tilt() const;
  /// The stress concentration, from the first point; nothing when that lies outside the mesh.
  std::optional<double> concentration() const;
};

/// The section through `count` points at equal distance, halfway through the thickness of a solid.
///
/// @param count  at least 2.
/// Throws MeshError when the mesh does not reach beyond the hole.
Section evaluate_section(Mesh const& mesh, StressField const& field, int count);

}  // namespace plate

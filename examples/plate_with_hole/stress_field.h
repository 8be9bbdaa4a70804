#pragma once

/// @file
/// The stress at any point of a mesh, interpolated between its nodes.

#include "locator.h"
#include "mesh.h"

#include <talvo/core/tens2.h>
#include <talvo/core/vec2.h>

#include <optional>
#include <vector>

namespace plate {

/// The two principal stresses and the directions in which they act.
struct PrincipalState {
  Tens2<double> values;  ///< xx the larger, yy the smaller
  Vec2<double> first;    ///< unit vector along which values.xx acts
  Vec2<double> second;   ///< unit vector along which values.yy acts
};

PrincipalState principal_state(Tens2<double> const& stress);

/// A stress at every node, as a finite-element program has it from its solution; here it is sampled from the closed
/// one.
class StressField {
 public:
  /// Keeps a reference to the mesh. Throws MeshError for a mesh with a node inside the hole, and unless can_locate().
  explicit StressField(Mesh const& mesh);

  /// The stress in x and y at a point; nothing outside the mesh.
  std::optional<Tens2<double>> at(Vec3<double> const& point) const;

 private:
  Mesh const& mesh_;
  Locator locator_;
  std::vector<Tens2<double>> nodal_;
};

}  // namespace plate

#pragma once

/// @file
/// The area of a plane mesh, or the volume of a solid one.

#include "mesh.h"

namespace plate {

/// By the Gauss rules and Jacobians, element by element.
///
/// Throws MeshError for an element that is turned over or folded: one with a Jacobian determinant that is not positive.
double gauss_content(Mesh const& mesh);

/// Of the rectangle (box) that the plate fills, less the share of the hole in it: none, a quarter, half or all of it,
/// as the plate ends at the x or y axis or goes on beyond the hole.
double exact_content(Bounds const& bounds);

}  // namespace plate

#pragma once

/// @file
/// Reading meshes that Gmsh wrote.

#include "mesh.h"

#include <string>

namespace plate {

/// Reads a mesh in Gmsh's text format, version 4.1 or 2.2.
///
/// Kept are the solid elements or, if there are none, the plane ones; what has fewer dimensions is their boundary and
/// is left out. Node numbers may have gaps.
///
/// Throws MeshError, with the line, for a file that is not such a mesh or is not complete, for an element type that
/// talvo does not know, for a number that is none or not finite, and for a plane mesh that does not lie in a plane
/// z = constant, because talvo looks for points of plane elements in x and y alone.
Mesh read_mesh(std::string const& file);

}  // namespace plate

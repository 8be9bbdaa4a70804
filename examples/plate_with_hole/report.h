#pragma once

/// @file
/// The results in the terminal.

#include "profile.h"
#include "section.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace plate {

/// What was found out about one mesh.
struct Result {
  std::string file;
  std::size_t elements;
  std::string kinds;  ///< "quad4", or "tri3+quad4" for a mixed mesh
  double content;     ///< area or volume by the Gauss rules
  double exact_content;
  std::optional<Section> section;  ///< nothing for a mesh in which points cannot be found
  ProfileFit profile;              ///< of the section
};

/// Everything about one mesh; `field` is null for a mesh in which points cannot be found.
Result evaluate(Mesh const& mesh, const StressField* field, int points);

/// Prints two tables with a row for each mesh, and below them a line for whatever is missing in them.
void print_report(std::vector<Result> const& results);

}  // namespace plate

#pragma once

/// @file
/// A picture of the plate and of the stress beside the hole, drawn by gnuplot.

#include "mesh.h"
#include "report.h"
#include "stress_field.h"

#include <ostream>
#include <string>
#include <vector>

namespace plate {

/// The two principal stresses at a point of the plate.
struct Cross {
  Vec3<double> position;
  PrincipalState state;
};

/// The plate as the picture shows it.
struct PlateDrawing {
  std::string file;
  std::vector<std::vector<Vec3<double>>> sides;  ///< polylines along the sides of the elements
  std::vector<Cross> crosses;                    ///< on rings about the hole and on the section
};

PlateDrawing draw_plate(Mesh const& mesh, StressField const& field, Section const& section);

/// Writes the gnuplot commands that draw the plate, and the section of each result that has one, into the file
/// `picture` (.png, and SVG for any other name).
void write_gnuplot(std::ostream& script, PlateDrawing const& plate, std::vector<Result> const& results,
                   std::string const& picture);

/// Draws the picture with gnuplot. Returns false when gnuplot is not installed.
/// Throws std::runtime_error when the file cannot be written.
bool draw_picture(PlateDrawing const& plate, std::vector<Result> const& results, std::string const& picture);

}  // namespace plate

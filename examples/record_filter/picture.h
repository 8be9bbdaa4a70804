#pragma once

/// @file
/// A picture of a record, its parts and their spectra, drawn by gnuplot.

#include "parts.h"
#include "report.h"

#include <ostream>
#include <string>

namespace record {

/// Writes the gnuplot commands that draw the result into the file `picture` (.png, and SVG for any other name).
void write_gnuplot(std::ostream& script, Result const& result, Trapezoid const& trapezoid, std::string const& picture);

/// Draws the picture with gnuplot. Returns false when gnuplot is not installed.
/// Throws std::runtime_error when the file cannot be written.
bool draw_picture(Result const& result, Trapezoid const& trapezoid, std::string const& picture);

}  // namespace record

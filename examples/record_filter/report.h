#pragma once

/// @file
/// The results in the terminal.

#include "parts.h"
#include "record.h"
#include "spectrum.h"

#include <vector>

namespace record {

/// What is said about a record or a part of it.
struct Figures {
  double peak;       ///< the sample of the greatest magnitude, in m/s²
  double peak_time;  ///< when it is reached first, in s
  double rms;        ///< root of the mean square, in m/s²
  Spectrum spectrum;
};

Figures figures_of(std::vector<double> const& samples, double step);

/// A record, its parts, and the figures of all three.
struct Result {
  Record record;
  Parts parts;
  Figures of_record;
  Figures of_slow;
  Figures of_fast;
};

/// Throws what split() throws.
Result evaluate(Record record, Trapezoid const& trapezoid);

/// Prints three rows for each record: itself, its slow and its fast part.
void print_report(std::vector<Result> const& results, Trapezoid const& trapezoid);

}  // namespace record

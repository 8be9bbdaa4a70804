#pragma once

/// @file
/// The slow and the fast part of a record.

#include "record.h"

#include <vector>

namespace record {

/// What the filter is asked for: to let pass all up to cut_off - roll_off, less and less from there to cut_off, and
/// nothing above.
struct Trapezoid {
  double cut_off;   ///< Hz
  double roll_off;  ///< Hz, the width of the flank

  /// What is let through of a frequency in Hz, 0 to 1.
  double at(double frequency) const;
};

/// A record, sample by sample, is the sum of both.
struct Parts {
  std::vector<double> slow;  ///< m/s²
  std::vector<double> fast;  ///< m/s²
};

/// Splits a record.
///
/// Throws RecordError for a trapezoid that the library refuses (in its words), that has its foot above half the
/// sampling rate or its shoulder below zero, or whose flank is so steep that the filter needs more samples to either
/// side than the record has.
Parts split(Record const& record, Trapezoid const& trapezoid);

/// What the filter really lets through of a frequency in Hz. It follows the trapezoid as far as its finite number of
/// weights allows.
double response(std::vector<double> const& weights, double step, double frequency);

/// The largest |record - (slow + fast)|, in m/s²: a few roundings.
double greatest_gap(Record const& record, Parts const& parts);

}  // namespace record

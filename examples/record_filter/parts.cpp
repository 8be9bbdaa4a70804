#include "parts.h"

#include <talvo/fitting/filter.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <numbers>
#include <stdexcept>
#include <string>

namespace record {
namespace {

/// The number as "%g" writes it.
std::string text(double number) {
  char buffer[32];
  std::snprintf(buffer, sizeof buffer, "%g", number);
  return buffer;
}

/// With fewer samples than weights not even a constant would pass unchanged.
void ensure_length(Record const& record, Trapezoid const& trapezoid) {
  const double needed = 1 / (trapezoid.roll_off * record.step);
  if (trapezoid.roll_off > 0 && needed > static_cast<double>(record.samples.size())) {
    throw RecordError(record.file, "the roll-off " + text(trapezoid.roll_off) + " Hz needs " + text(std::ceil(needed)) +
                                       " samples to either side, and the record has " +
                                       std::to_string(record.samples.size()));
  }
}

/// The library takes any cut-off, but only in these limits is the filter the trapezoid that was asked for.
void ensure_trapezoid(Record const& record, Trapezoid const& trapezoid) {
  const double highest = 0.5 / record.step;
  if (trapezoid.cut_off > highest) {
    throw RecordError(record.file, "the cut-off " + text(trapezoid.cut_off) + " Hz is above " + text(highest) +
                                       " Hz, half the sampling rate");
  }
  if (trapezoid.cut_off < trapezoid.roll_off) {
    throw RecordError(record.file, "the cut-off " + text(trapezoid.cut_off) + " Hz is below the roll-off " +
                                       text(trapezoid.roll_off) + " Hz");
  }
}

}  // namespace

double Trapezoid::at(double frequency) const { return std::clamp((cut_off - frequency) / roll_off, 0.0, 1.0); }

Parts split(Record const& record, Trapezoid const& trapezoid) {
  const auto [cut_off, roll_off] = trapezoid;
  const Talvo::Util::Filter filter;
  ensure_length(record, trapezoid);
  try {
    Parts parts;
    parts.slow = filter.HighPass(record.step, record.samples, cut_off, roll_off);  // the library's name for it
    parts.fast = filter.LowPass(record.step, record.samples, cut_off, roll_off);
    ensure_trapezoid(record, trapezoid);
    return parts;
  } catch (std::invalid_argument const& error) {
    throw RecordError(record.file, error.what());
  }
}

double response(std::vector<double> const& weights, double step, double frequency) {
  double sum = weights[0];
  for (std::size_t k = 1; k < weights.size(); ++k) {
    sum += 2 * weights[k] * std::cos(2 * std::numbers::pi * frequency * static_cast<double>(k) * step);
  }
  return sum;
}

double greatest_gap(Record const& record, Parts const& parts) {
  double greatest = 0;
  for (std::size_t i = 0; i < record.samples.size(); ++i) {
    greatest = std::max(greatest, std::fabs(record.samples[i] - (parts.slow[i] + parts.fast[i])));
  }
  return greatest;
}

}  // namespace record

#pragma once

/// @file
/// Which frequencies a record holds.

#include <cstddef>
#include <optional>
#include <vector>

namespace record {

/// Fourier amplitudes |∫ a(t) exp(-2πi f t) dt| at the frequencies 0, step, 2 step, ... up to half the sampling rate.
/// A sine of amplitude A that lasts for the time T reaches A T / 2.
struct Spectrum {
  double step;                     ///< Hz
  std::vector<double> amplitudes;  ///< m/s, for samples in m/s²

  double frequency(std::size_t i) const { return static_cast<double>(i) * step; }
  /// The frequency in Hz of the greatest amplitude; nothing when all are 0.
  std::optional<double> dominant() const;
};

/// The spectrum of samples at equal time steps (s). Zeros lengthen them to at least twice their number, a power of two,
/// so that the frequencies are close together and any number of samples is transformed fast.
Spectrum spectrum_of(std::vector<double> const& samples, double time_step);

}  // namespace record

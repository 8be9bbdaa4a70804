#include "spectrum.h"

#include <algorithm>
#include <bit>
#include <complex>
#include <iterator>
#include <unsupported/Eigen/FFT>

namespace record {

std::optional<double> Spectrum::dominant() const {
  const auto greatest = std::max_element(amplitudes.begin(), amplitudes.end());
  if (greatest == amplitudes.end() || *greatest == 0) return std::nullopt;
  return frequency(static_cast<std::size_t>(std::distance(amplitudes.begin(), greatest)));
}

Spectrum spectrum_of(std::vector<double> const& samples, double time_step) {
  std::vector<double> padded = samples;
  padded.resize(2 * std::bit_ceil(samples.size()));
  std::vector<std::complex<double>> transformed;
  Eigen::FFT<double> fft;
  fft.SetFlag(Eigen::FFT<double>::HalfSpectrum);
  fft.fwd(transformed, padded);

  Spectrum spectrum{1 / (static_cast<double>(padded.size()) * time_step), {}};
  spectrum.amplitudes.reserve(transformed.size());
  for (std::complex<double> const& value : transformed) spectrum.amplitudes.push_back(std::abs(value) * time_step);
  return spectrum;
}

}  // namespace record

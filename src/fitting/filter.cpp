#include "fitting/smoothing.h"

#include <fmt/format.h>

#include <talvo/fitting/filter.h>
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <stdexcept>
#include <string>

namespace Talvo::Util {
namespace {

constexpr double pi = 3.141592653589793;
constexpr double two_pi = 6.283185307179586;

// How fast the mirror images at the ends fade, per unit of time.
constexpr double damping = 3.0;

// The number of weights: 1/(rollOff·timeStep), truncated.
int number_of_weights(double rollOff, double timeStep) {
  const double a = rollOff * timeStep;
  const double n = 1.0 / a;
  const double beyond_int = static_cast<double>(std::numeric_limits<int>::max()) + 1.0;
  if (!(n >= 1.0 && n < beyond_int)) {
    throw std::invalid_argument(
        fmt::format("Filter: 1/(timeStep*rollOff) must be from 1 to {}, but timeStep is {} and rollOff is {}",
                    std::numeric_limits<int>::max(), timeStep, rollOff));
  }
  return static_cast<int>(n);
}

void ensure_range(const char* name, int value, int least, std::size_t most, const char* what) {
  if (value >= least && static_cast<std::size_t>(value) <= most) return;
  throw std::invalid_argument(
      fmt::format("Filter: {} is {}, but must be from {} to {}, {}", name, value, least, most, what));
}

// exp(3 k Δt) for k = 0, 1, ...
std::vector<double> damping_factors(std::size_t count, double timeStep) {
  std::vector<double> factors(count);
  for (std::size_t k = 0; k < count; ++k) factors[k] = std::exp(static_cast<double>(k) * damping * timeStep);
  return factors;
}

// The samples missing before the first one are its damped mirror image. All indices count from 0 at the first sample.
void add_start_mirror(std::vector<double> const& x, std::vector<double> const& w, std::vector<double> const& factors,
                      std::size_t reach, std::vector<double>& y) {
  for (std::size_t i = 0; i + 1 < reach; ++i) {
    for (std::size_t k = 1; k + i < reach; ++k) y[i] += x[k] * w[i + k] / factors[k];
  }
}

// The samples missing after the last one, likewise; from the last sample back.
void add_end_mirror(std::vector<double> const& x, std::vector<double> const& w, std::vector<double> const& factors,
                    std::size_t reach, std::vector<double>& y) {
  const std::size_t last = y.size() - 1;
  for (std::size_t i = 0; i + 1 < reach; ++i) {
    for (std::size_t k = reach - 1 - i; k > 0; --k) y[last - i] += x[last - k] * w[i + k] / factors[k];
  }
}

// Every step-th value, from the first on, moves to the front; what stands behind them stays.
void decimate(std::vector<double>& y, std::size_t step) {
  std::size_t to = 0;
  for (std::size_t from = 0; from < y.size(); from += step) y[to++] = y[from];
}

}  // namespace

std::vector<double> Filter::HighPass(double timeStep, std::vector<double> const& data, double cutOff,
                                     double rollOff) const {
  const std::vector<double> weights = Weights(rollOff, cutOff, timeStep);
  return Smoot(data, static_cast<int>(data.size()), timeStep, weights, static_cast<int>(weights.size()), 1);
}

std::vector<double> Filter::LowPass(double timeStep, std::vector<double> const& data, double cutOff,
                                    double rollOff) const {
  std::vector<double> result = HighPass(timeStep, data, cutOff, rollOff);
  for (std::size_t i = 0; i < result.size(); ++i) result[i] = data[i] - result[i];
  return result;
}

std::vector<double> Filter::Weights(double rollOff, double cutOff, double timeStep) const {
  const auto n = static_cast<std::size_t>(number_of_weights(rollOff, timeStep));
  const double a = rollOff * timeStep;
  const double fa = (cutOff - rollOff) * timeStep;  // upper edge of the pass band, in cycles per sample
  const double fb = a + fa;                         // where the response reaches zero

  // Fourier coefficients of the trapezoid.
  std::vector<double> w(n, 0.0);
  w[0] = fb + fa;
  double sum = 0.0;
  for (std::size_t i = 1; i < n; ++i) {
    const auto k = static_cast<double>(i);
    w[i] = (std::cos(k * two_pi * fa) - std::cos(k * two_pi * fb)) / (k * pi * (2.0 * a) * (k * pi));
    sum += w[i];
  }
  const double gain = 2.0 * sum + w[0];  // at zero frequency
  for (double& weight : w) weight /= gain;
  return w;
}

std::vector<double> Filter::Smoot(std::vector<double> const& data, int count, double timeStep,
                                  std::vector<double> const& weights, int nWeights, int step) const {
  ensure_range("count", count, 0, data.size(), "the number of samples");
  ensure_range("nWeights", nWeights, 1, weights.size(), "the number of weights");
  ensure_range("step", step, 1, static_cast<std::size_t>(std::numeric_limits<int>::max()), "the largest int");

  const auto samples = static_cast<std::size_t>(count);
  std::vector<double> y(samples, 0.0);
  if (samples == 0) return y;

  const std::vector<double> w(weights.begin(), weights.begin() + nWeights);
  talvo::fitting::convolve(data.data(), samples, w, y.data());

  const std::size_t reach = std::min(w.size(), samples);
  const std::vector<double> factors = damping_factors(reach, timeStep);
  add_start_mirror(data, w, factors, reach, y);
  add_end_mirror(data, w, factors, reach, y);

  if (step != 1) decimate(y, static_cast<std::size_t>(step));
  return y;
}

}  // namespace Talvo::Util

#pragma once

/// @file
/// Smoothing of records of equally spaced samples.

#include <talvo/export.h>

#include <vector>

namespace Talvo::Util {

/// A symmetric non-recursive filter whose frequency response is a trapezoid: 1 up to cutOff - rollOff, falling linearly
/// to 0 at cutOff.
///
/// Frequencies are in cycles per unit of `timeStep`. The filter has 2n - 1 weights, n = 1/(timeStep·rollOff) truncated:
/// the steeper the flank, the longer. It shifts no phase. The samples that are missing before the first and after the
/// last are the record's mirror image at that end, damped by exp(-3·k·timeStep) at the k-th missing sample.
///
/// @warning HighPass() gives the slow part and LowPass() the fast one. Other programs rely on these names.
///
/// The operations depend on their arguments alone.
class TALVO_EXPORT Filter {
 public:
  /// The smoothed record: what varies slowly, below about cutOff.
  ///
  /// Throws what Weights() throws.
  std::vector<double> HighPass(double timeStep, std::vector<double> const& data, double cutOff, double rollOff) const;

  /// The record less its smoothed part: what varies fast, above about cutOff.
  ///
  /// Throws what Weights() throws.
  std::vector<double> LowPass(double timeStep, std::vector<double> const& data, double cutOff, double rollOff) const;

  /// The n weights w0, w1, ... of the filter ... w1, w0, w1 ..., scaled so that a constant record passes unchanged.
  ///
  /// A cutOff below rollOff is not refused: it only changes the weights.
  ///
  /// Throws std::invalid_argument, which names timeStep and rollOff with their values, unless 1/(timeStep·rollOff) is a
  /// number from 1 to the largest int.
  std::vector<double> Weights(double rollOff, double cutOff, double timeStep) const;

  /// The first `count` samples smoothed by the first `nWeights` weights; `count` values.
  ///
  /// @param timeStep  only damps the mirror images at the ends; with 0 they are not damped.
  /// @param step      1 keeps every value. A larger step moves every step-th value, from the first on, to the front,
  ///                  while the values behind them stay where they are: the result keeps its length.
  ///
  /// Throws std::invalid_argument, which names the argument and its value, for a `count` that is negative or more than
  /// the samples, for `nWeights` below 1 or more than the weights, and for a `step` below 1.
  ///
  /// Cost: count·(2·nWeights - 1) multiplications and additions, each value summed in sample order. A fast Fourier
  /// transform would need fewer from some hundred weights on, but its sums run in another order: other last bits.
  std::vector<double> Smoot(std::vector<double> const& data, int count, double timeStep,
                            std::vector<double> const& weights, int nWeights, int step) const;
};

}  // namespace Talvo::Util

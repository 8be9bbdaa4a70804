#include "fitting/smoothing.h"

#include "core/always_inline.h"

#include <algorithm>
#include <cstdint>

// Every value is a sum of its own, in the order of the samples; what runs side by side are the sums of several values.
// The instruction set decides how many, not how they are added: the bits are the same everywhere. (FMA is not among the
// instruction sets, since it would round a product and a sum at once.)

namespace talvo::fitting {
namespace {

// One value, from the samples that exist.
double value_at(std::size_t i, const double* x, std::size_t count, const double* w, std::size_t n) {
  const std::size_t first = i + 1 > n ? i + 1 - n : 0;
  const std::size_t last = std::min(i + n, count);
  double sum = 0.0;
  for (std::size_t j = first; j < i; ++j) sum += x[j] * w[i - j];
  for (std::size_t j = i; j < last; ++j) sum += w[j - i] * x[j];
  return sum;
}

#if defined(__GNUC__) && defined(__x86_64__)
#define TALVO_HAS_LANES 1

// The values whose samples all exist, lane by lane: a stretch of lanes·length values is cut into as many runs as a
// vector has lanes, and run l goes into lane l. Row k then holds sample k of every run, so that a tap of the filter is
// one aligned load, one product and one sum for all runs. Neighbouring runs overlap by the reach of the filter.

// Sums that a register file holds beside the row and the weight: enough to hide the time that an addition takes.
constexpr std::size_t rows_at_once = 8;

// Rows of a stretch. Long enough that copying is little beside the taps, short enough to stay in the second-level
// cache.
std::size_t longest_run(std::size_t n) {
  const std::size_t length = std::clamp<std::size_t>(2 * n, 512, 4096);
  return length / rows_at_once * rows_at_once;
}

template <class Vector>
TALVO_ALWAYS_INLINE void smooth_rows(const Vector* rows, const double* w, std::size_t n, Vector* out) {
  Vector sums[rows_at_once] = {};
  const auto tap = [&](const Vector* row, double weight) __attribute__((always_inline)) {
    for (std::size_t k = 0; k < rows_at_once; ++k) sums[k] += row[k] * weight;
  };
  for (std::size_t d = n - 1; d > 0; --d) tap(rows++, w[d]);
  for (std::size_t d = 0; d < n; ++d) tap(rows++, w[d]);
  for (std::size_t k = 0; k < rows_at_once; ++k) out[k] = sums[k];
}

// Smooths values from `begin` on, in stretches; returns where fewer than one block of rows was left.
template <class Vector>
TALVO_ALWAYS_INLINE std::size_t smooth(std::size_t begin, std::size_t end, const double* x, const double* w,
                                       std::size_t n, double* y, double* aligned_space) {
  constexpr std::size_t lanes = sizeof(Vector) / sizeof(double);
  const std::size_t longest = longest_run(n);
  auto* rows = reinterpret_cast<Vector*>(aligned_space);
  while (end - begin >= lanes * rows_at_once) {
    const std::size_t length = std::min(longest, (end - begin) / lanes / rows_at_once * rows_at_once);
    const std::size_t samples = length + 2 * (n - 1);
    Vector* out = rows + samples;
    const double* first = x + begin - (n - 1);
    for (std::size_t k = 0; k < samples; ++k) {
      for (std::size_t lane = 0; lane < lanes; ++lane) rows[k][lane] = first[lane * length + k];
    }
    for (std::size_t k = 0; k < length; k += rows_at_once) smooth_rows(rows + k, w, n, out + k);
    for (std::size_t lane = 0; lane < lanes; ++lane) {
      for (std::size_t k = 0; k < length; ++k) y[begin + lane * length + k] = out[k][lane];
    }
    begin += lanes * length;
  }
  return begin;
}

using Two = double __attribute__((vector_size(16)));
using Four = double __attribute__((vector_size(32)));
using Eight = double __attribute__((vector_size(64)));

using Smooth = std::size_t(std::size_t, std::size_t, const double*, const double*, std::size_t, double*, double*);

std::size_t smooth_sse2(std::size_t begin, std::size_t end, const double* x, const double* w, std::size_t n, double* y,
                        double* space) {
  return smooth<Two>(begin, end, x, w, n, y, space);
}

__attribute__((target("avx2"))) std::size_t smooth_avx2(std::size_t begin, std::size_t end, const double* x,
                                                        const double* w, std::size_t n, double* y, double* space) {
  return smooth<Four>(begin, end, x, w, n, y, space);
}

__attribute__((target("avx512f"))) std::size_t smooth_avx512(std::size_t begin, std::size_t end, const double* x,
                                                             const double* w, std::size_t n, double* y, double* space) {
  return smooth<Eight>(begin, end, x, w, n, y, space);
}

Smooth& smooth_with(Lanes lanes) {
  if (lanes == Lanes::eight) return smooth_avx512;
  if (lanes == Lanes::four) return smooth_avx2;
  return smooth_sse2;
}

std::size_t smooth_in_lanes(Lanes lanes, std::size_t begin, std::size_t end, const double* x, const double* w,
                            std::size_t n, double* y) {
  constexpr std::size_t widest = 8;
  constexpr std::size_t alignment = widest * sizeof(double);
  // The samples and the values of one stretch.
  std::vector<double> space((2 * longest_run(n) + 2 * (n - 1)) * widest + widest);
  auto* aligned = space.data();
  while (reinterpret_cast<std::uintptr_t>(aligned) % alignment != 0) ++aligned;
  return smooth_with(lanes)(begin, end, x, w, n, y, aligned);
}
#endif

}  // namespace

Lanes most_lanes() {
#if defined(TALVO_HAS_LANES)
  if (__builtin_cpu_supports("avx512f")) return Lanes::eight;
  if (__builtin_cpu_supports("avx2")) return Lanes::four;
  return Lanes::two;
#else
  return Lanes::one;
#endif
}

void convolve(const double* x, std::size_t count, std::vector<double> const& weights, double* y,
              [[maybe_unused]] Lanes lanes) {
  const std::size_t n = weights.size();
  const double* w = weights.data();
  std::size_t i = 0;
  for (; i < std::min(n - 1, count); ++i) y[i] = value_at(i, x, count, w, n);
#if defined(TALVO_HAS_LANES)
  // From here to n - 1 before the end every sample exists.
  if (lanes != Lanes::one && i + n <= count) i = smooth_in_lanes(lanes, i, count - n + 1, x, w, n, y);
#endif
  for (; i < count; ++i) y[i] = value_at(i, x, count, w, n);
}

}  // namespace talvo::fitting

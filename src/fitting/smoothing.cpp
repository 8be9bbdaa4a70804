#include "fitting/smoothing.h"

#include "core/always_inline.h"

#include <algorithm>
#include <cstring>

// Every value is a sum of its own, in the order of the samples; what runs side by side are the sums of neighbouring
// values. The instruction set decides how many, not how they are added: the bits are the same everywhere. (FMA is
// not among the instruction sets, since it would round a product and a sum at once.)

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
#define TALVO_HAS_WIDE_SUMS 1

// `Vectors` times `Lanes` neighbouring values, all of whose samples exist; x points to the first one's own sample.
template <class Vector, int Vectors>
TALVO_ALWAYS_INLINE void wide_sums(const double* x, const double* w, std::size_t n, double* y) {
  constexpr std::size_t lanes = sizeof(Vector) / sizeof(double);
  Vector sums[Vectors] = {};
  const auto add = [&](const double* first, double weight) __attribute__((always_inline)) {
    for (std::size_t v = 0; v < Vectors; ++v) {
      Vector samples;
      std::memcpy(&samples, first + v * lanes, sizeof samples);
      sums[v] += samples * weight;
    }
  };
  for (std::size_t d = n - 1; d > 0; --d) add(x - d, w[d]);
  for (std::size_t d = 0; d < n; ++d) add(x + d, w[d]);
  std::memcpy(y, sums, sizeof sums);
}

template <class Vector, int Vectors>
TALVO_ALWAYS_INLINE std::size_t all_wide_sums(std::size_t begin, std::size_t end, const double* x, const double* w,
                                              std::size_t n, double* y) {
  constexpr std::size_t block = Vectors * sizeof(Vector) / sizeof(double);
  for (; begin + block <= end; begin += block) wide_sums<Vector, Vectors>(x + begin, w, n, y + begin);
  return begin;
}

using Two = double __attribute__((vector_size(16)));
using Four = double __attribute__((vector_size(32)));
using Eight = double __attribute__((vector_size(64)));

std::size_t sums_sse2(std::size_t begin, std::size_t end, const double* x, const double* w, std::size_t n, double* y) {
  return all_wide_sums<Two, 8>(begin, end, x, w, n, y);
}

__attribute__((target("avx2"))) std::size_t sums_avx2(std::size_t begin, std::size_t end, const double* x,
                                                      const double* w, std::size_t n, double* y) {
  return all_wide_sums<Four, 8>(begin, end, x, w, n, y);
}

__attribute__((target("avx512f"))) std::size_t sums_avx512(std::size_t begin, std::size_t end, const double* x,
                                                           const double* w, std::size_t n, double* y) {
  return all_wide_sums<Eight, 8>(begin, end, x, w, n, y);
}

// The values from `begin` on in whole blocks; returns where it stopped.
std::size_t wide_sums_of_this_machine(std::size_t begin, std::size_t end, const double* x, const double* w,
                                      std::size_t n, double* y) {
  if (__builtin_cpu_supports("avx512f")) begin = sums_avx512(begin, end, x, w, n, y);
  if (__builtin_cpu_supports("avx2")) begin = sums_avx2(begin, end, x, w, n, y);
  return sums_sse2(begin, end, x, w, n, y);
}
#endif

}  // namespace

void convolve(const double* x, std::size_t count, std::vector<double> const& weights, double* y) {
  const std::size_t n = weights.size();
  const double* w = weights.data();
  std::size_t i = 0;
  for (; i < std::min(n - 1, count); ++i) y[i] = value_at(i, x, count, w, n);
#if defined(TALVO_HAS_WIDE_SUMS)
  // From here to n - 1 before the end every sample exists.
  if (i + n <= count) i = wide_sums_of_this_machine(i, count - n + 1, x, w, n, y);
#endif
  for (; i < count; ++i) y[i] = value_at(i, x, count, w, n);
}

}  // namespace talvo::fitting

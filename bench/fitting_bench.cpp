/// @file
/// Fits, curves and filters. Forms and method are those of compare.h. For the smoothing "limit" is a hand-written loop
/// for each instruction set that this machine has, named after it; the time is per sample.
///
///     fitting_bench --benchmark_filter=Smoot

#include "compare.h"

#include <talvo/talvo.h>
#include <cmath>
#include <cstdint>
#include <random>

namespace {

using namespace talvo::bench;
using Points = std::vector<Vec2<double>>;

Numbers numbers(std::vector<double> const& values) { return values; }
Numbers numbers(Vec3<double> const& v) { return {v.x, v.y, v.z}; }

// --- Polynomial fit of order 3 through 1000 points ---

constexpr int order = 3;

std::vector<Points> point_lists() {
  std::mt19937_64 engine(20260106);
  std::uniform_real_distribution<double> u(-1, 1);
  Points points;
  for (int i = 0; i < 1000; ++i) {
    const double x = u(engine);
    points.push_back({x, 1 + x * (2 + x * (3 - x)) + 0.1 * u(engine)});
  }
  return {points};
}

/// Everything but the solution of the 4x4 system, each power taken where it stands.
std::vector<double> literal_fit(Points const& points) {
  // The coefficients come from the library: their solution is not what is timed.
  static const std::vector<double> coefficients = [&] {
    Talvo::Util::LeastSquares fit;
    fit.CalculateCoeff(points, Talvo::Util::LeastSquares::Polynomial, order);
    return std::vector<double>{fit.Rsquared(), fit.Norm()};
  }();
  double checksum = 0;
  for (int i = 0; i <= order; ++i) {
    for (int j = 0; j <= order; ++j) {
      double sum = 0;
      for (auto const& p : points) sum += std::pow(p.x, static_cast<double>(i + j));
      checksum += sum;
    }
    double sum = 0;
    for (auto const& p : points) sum += std::pow(p.x, static_cast<double>(i)) * p.y;
    checksum += sum;
  }
  for (auto const& p : points) {
    double f = 0;
    for (int k = 0; k <= order; ++k) f += std::pow(p.x, static_cast<double>(k));
    checksum += (p.y - f) * (p.y - f);
  }
  benchmark::DoNotOptimize(checksum);
  return coefficients;
}

std::vector<double> library_fit(Points const& points) {
  Talvo::Util::LeastSquares fit;
  fit.CalculateCoeff(points, Talvo::Util::LeastSquares::Polynomial, order);
  return {fit.Rsquared(), fit.Norm()};
}

// --- A curve through 12 points ---

struct Curve {
  std::vector<Vec3<double>> points;
  std::vector<double> denominators;
  Talvo::Util::CLagrange curve;
  double t;
};

std::vector<Curve> curves() {
  std::mt19937_64 engine(20260107);
  std::uniform_real_distribution<double> u(0, 1);
  std::vector<Curve> result;
  for (int c = 0; c < 32; ++c) {
    Curve item;
    for (int i = 0; i < 12; ++i) item.points.push_back({u(engine), u(engine), u(engine)});
    for (auto const& p : item.points) item.curve.AddPoint(p);
    item.t = u(engine);
    item.curve.Function(0);
    for (int i = 0; i < 12; ++i) {
      double product = 1;
      for (int j = 0; j < 12; ++j) {
        if (j != i) product *= i / 11.0 - j / 11.0;
      }
      item.denominators.push_back(product);
    }
    result.push_back(item);
  }
  return result;
}

Vec3<double> literal_curve(Curve const& item) {
  Vec3<double> sum{0, 0, 0};
  const std::size_t n = item.points.size();
  const auto parameter = [&](std::size_t k) { return static_cast<double>(k) / static_cast<double>(n - 1); };
  static const std::vector<double> t = [&] {
    std::vector<double> values;
    for (std::size_t k = 0; k < n; ++k) values.push_back(parameter(k));
    return values;
  }();
  for (std::size_t i = 0; i < n; ++i) {
    double product = 1;
    for (std::size_t j = 0; j < n; ++j) {
      if (j != i) product *= item.t - t[j];
    }
    sum = sum + (product / item.denominators[i]) * item.points[i];
  }
  return sum;
}

// --- Smoothing ---

std::vector<double> record(std::size_t samples) {
  std::mt19937_64 engine(20260108);
  std::uniform_real_distribution<double> u(-1, 1);
  std::vector<double> result(samples);
  for (double& x : result) x = u(engine);
  return result;
}

constexpr std::size_t samples = 1000000;

// Rows of samples that the hand-written lanes go through.
constexpr std::size_t row_count = 4096;

void set_time_per_sample(benchmark::State& state) {
  state.counters["ns_per_item"] = benchmark::Counter(static_cast<double>(state.iterations()) * samples * 1e-9,
                                                     benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void time_smoothing(benchmark::State& state, std::size_t weights, auto smooth) {
  const std::vector<double> x = record(samples);
  const std::vector<double> w = record(weights);
  for (auto _ : state) {
    auto y = smooth(x, w);
    benchmark::DoNotOptimize(y.data());
  }
  set_time_per_sample(state);
}

void time_arithmetic(benchmark::State& state, std::size_t weights, auto arithmetic_of) {
  const std::vector<double> w = record(weights);
  const std::vector<double> values = record(row_count * 8 + 8);
  const double* x = values.data();
  while (reinterpret_cast<std::uintptr_t>(x) % 64 != 0) ++x;
  for (auto _ : state) {
    double sum = arithmetic_of(samples, w, x);
    benchmark::DoNotOptimize(sum);
  }
  set_time_per_sample(state);
}

std::vector<double> plain(std::vector<double> const& x, std::vector<double> const& w) {
  std::vector<double> y(x.size());
  for (std::size_t i = 0; i < x.size(); ++i) {
    for (std::size_t j = i + 1 > w.size() ? i + 1 - w.size() : 0; j < i; ++j) y[i] += x[j] * w[i - j];
    for (std::size_t j = i; j < std::min(i + w.size(), x.size()); ++j) y[i] += w[j - i] * x[j];
  }
  return y;
}

// Eight rows of sums at once over samples that are already stored lane by lane: what the arithmetic alone takes. A few
// rows are gone through again and again, so that the values are not those of the record; no time depends on that.
template <class Lanes>
__attribute__((always_inline)) inline double arithmetic(std::size_t count, std::vector<double> const& w,
                                                        const Lanes* rows, std::size_t available) {
  constexpr std::size_t lanes = sizeof(Lanes) / sizeof(double);
  const std::size_t n = w.size();
  const std::size_t period = available - 2 * n - 8;
  Lanes total{};
  for (std::size_t i = 0; i < count; i += 8 * lanes) {
    const Lanes* row = rows + (i / lanes) % period;
    Lanes sums[8]{};
    for (std::size_t tap = 0; tap < 2 * n - 1; ++tap) {
      const double weight = w[tap < n ? n - 1 - tap : tap - (n - 1)];
      for (std::size_t k = 0; k < 8; ++k) sums[k] += row[tap + k] * weight;
    }
    for (Lanes const& sum : sums) total += sum;
  }
  return total[0];
}

using Two = double __attribute__((vector_size(16)));
using Four = double __attribute__((vector_size(32)));
using Eight = double __attribute__((vector_size(64)));

double lanes_sse2(std::size_t count, std::vector<double> const& w, const double* x) {
  return arithmetic(count, w, reinterpret_cast<const Two*>(x), row_count);
}
__attribute__((target("avx2"))) double lanes_avx2(std::size_t count, std::vector<double> const& w, const double* x) {
  return arithmetic(count, w, reinterpret_cast<const Four*>(x), row_count);
}
__attribute__((target("avx512f"))) double lanes_avx512(std::size_t count, std::vector<double> const& w,
                                                       const double* x) {
  return arithmetic(count, w, reinterpret_cast<const Eight*>(x), row_count);
}

void add_smoothing(std::size_t weights) {
  const std::string name = "Smoot/" + std::to_string(weights) + "/";
  const auto add = [&](const char* form, auto smooth) {
    benchmark::RegisterBenchmark((name + form).c_str(),
                                 [=](benchmark::State& state) { time_smoothing(state, weights, smooth); });
  };
  const auto add_arithmetic = [&](const char* set, auto arithmetic_of) {
    benchmark::RegisterBenchmark((name + set).c_str(),
                                 [=](benchmark::State& state) { time_arithmetic(state, weights, arithmetic_of); });
  };
  add("literal", plain);
  add("talvo", [](std::vector<double> const& x, std::vector<double> const& w) {
    return Talvo::Util::Filter().Smoot(x, static_cast<int>(x.size()), 0.01, w, static_cast<int>(w.size()), 1);
  });
  add_arithmetic("sse2", lanes_sse2);
  if (__builtin_cpu_supports("avx2")) add_arithmetic("avx2", lanes_avx2);
  if (__builtin_cpu_supports("avx512f")) add_arithmetic("avx512", lanes_avx512);
}

}  // namespace

int main(int argc, char** argv) {
  const auto to_numbers = [](auto const& result) { return numbers(result); };
  compare("CalculateCoeff/1000x3", point_lists(), to_numbers, literal_fit, library_fit);
  compare("Function/12", curves(), to_numbers, literal_curve,
          [](Curve const& item) { return const_cast<Talvo::Util::CLagrange&>(item.curve).Function(item.t); });
  add_smoothing(64);
  add_smoothing(1000);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
}

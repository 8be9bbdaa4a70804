#include <talvo/geometry/scale.h>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>

namespace Talvo {
namespace {

constexpr double smallest = std::numeric_limits<double>::min();
constexpr double largest = std::numeric_limits<double>::max();

// The square root of 2/3: the foreshortening of an isometric drawing.
constexpr double isometric = 0.816496580927726;

// A rung applies above its limit; the last one below all of them. The two ladders are one rung apart on purpose.
struct Rung {
  double above;
  double with_second;
  double without_second;
};
constexpr std::array<Rung, 4> ladder{{
    {0.5, 0.5, 1.0},
    {0.25, 0.25, 0.5},
    {0.2, 0.2, 0.25},
    {0.125, 0.125, 0.2},
}};

double round_part(double t, bool second) {
  for (Rung const& rung : ladder) {
    if (t > rung.above) return second ? rung.with_second : rung.without_second;
  }
  return second ? 0.1 : 0.125;
}

}  // namespace

double EngScale(double value, double size, bool first, bool second) {
  const double magnitude = std::fabs(value);
  if (magnitude < smallest || magnitude > largest || std::fabs(size) < smallest) return 0.0;

  double t = first ? value * size / isometric : value * size;
  if (t <= 0.0 || t > largest) return 0.0;  // no number of tens leads to 0.1 ... 1; a NaN goes on

  double up = 1.0;
  double down = 1.0;
  while (t > 1.0) {
    t = t * 0.1;
    up = up * 10.0;
  }
  while (t < 0.1) {
    t = t * 10.0;
    down = down * 10.0;
  }
  double s = up / down * round_part(t, second);
  if (first) s = s * isometric;
  return s / size;
}

double logn(double const& x, double const& base) { return std::log10(x) / std::log10(base); }

void IntervalsLogScale(double const& start, double const& end, int count, double const& base,
                       std::vector<double>& out) {
  const double base_value = base;  // the arguments may be elements of `out`, which moves when it grows
  const double low = logn(start, base);
  const double high = logn(end, base);
  const double step = (high - low) / count;
  if (count < 0) return;
  const std::size_t first = out.size();
  const std::size_t values = static_cast<std::size_t>(count) + 1;
  out.resize(first + values);
  // i·step also for i = 0: with a count of 0 that is NaN, which is the result.
  for (std::size_t i = 0; i < values; ++i) out[first + i] = std::pow(base_value, low + static_cast<double>(i) * step);
}

}  // namespace Talvo

#include "report.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <iterator>
#include <optional>
#include <string>
#include <utility>

namespace record {
namespace {

constexpr const char* record_head = "%-*s %8s %8s %9s ";
constexpr const char* part_head = " %-6s %10s %8s %10s %10s";

void print_head(int file_width, Trapezoid const& trapezoid) {
  std::printf("Accelerations in m/s², times in s, frequencies in Hz\n");
  std::printf("The slow part has all up to %g Hz, less and less from there to %g Hz, and nothing above\n\n",
              trapezoid.cut_off - trapezoid.roll_off, trapezoid.cut_off);
  std::printf(record_head, file_width, "", "", "time", "");
  std::printf(part_head, "", "", "at", "", "dominant");
  std::printf(" %13s\n", "record -");
  std::printf(record_head, file_width, "record", "samples", "step", "duration");
  std::printf(part_head, "part", "peak", "time", "rms", "frequency");
  std::printf(" %13s\n", "(slow + fast)");
}

void print_figures(const char* part, Figures const& figures) {
  std::printf(" %-6s %10.4g %8g %10.4g", part, figures.peak, figures.peak_time, figures.rms);
  if (const std::optional<double> dominant = figures.spectrum.dominant()) {
    std::printf(" %10.4g", *dominant);
  } else {
    std::printf(" %10s", "-");
  }
}

void print_result(Result const& result, int file_width) {
  Record const& record = result.record;
  std::printf("%-*s %8zu %8g %9g ", file_width, record.file.c_str(), record.samples.size(), record.step,
              record.duration());
  print_figures("record", result.of_record);
  std::printf(" %13.2e\n", greatest_gap(record, result.parts));
  std::printf(record_head, file_width, "", "", "", "");
  print_figures("slow", result.of_slow);
  std::printf("\n");
  std::printf(record_head, file_width, "", "", "", "");
  print_figures("fast", result.of_fast);
  std::printf("\n");
}

}  // namespace

Figures figures_of(std::vector<double> const& samples, double step) {
  const auto peak =
      std::max_element(samples.begin(), samples.end(), [](double a, double b) { return std::fabs(a) < std::fabs(b); });
  double squares = 0;
  for (const double sample : samples) squares += sample * sample;
  return {*peak, static_cast<double>(std::distance(samples.begin(), peak)) * step,
          std::sqrt(squares / static_cast<double>(samples.size())), spectrum_of(samples, step)};
}

Result evaluate(Record record, Trapezoid const& trapezoid) {
  Parts parts = split(record, trapezoid);
  Figures of_record = figures_of(record.samples, record.step);
  Figures of_slow = figures_of(parts.slow, record.step);
  Figures of_fast = figures_of(parts.fast, record.step);
  return {std::move(record), std::move(parts), std::move(of_record), std::move(of_slow), std::move(of_fast)};
}

void print_report(std::vector<Result> const& results, Trapezoid const& trapezoid) {
  std::size_t longest = std::string("record").size();
  for (Result const& result : results) longest = std::max(longest, result.record.file.size());
  const int file_width = static_cast<int>(longest);

  print_head(file_width, trapezoid);
  for (Result const& result : results) print_result(result, file_width);
}

}  // namespace record

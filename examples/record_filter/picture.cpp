#include "picture.h"

#include "thinned.h"

#include <talvo/fitting/filter.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <vector>

namespace record {
namespace {

constexpr int time_columns = 450;       // a little more than two pixels each
constexpr int columns_per_decade = 70;  // of the frequency axis; about four pixels each
constexpr int response_points = 150;
constexpr double decades_shown = 4;  // of the spectra, below their top

// The fixed parts of the gnuplot commands.

constexpr const char* common_style = R"(
record_colour = '#8c8c8c'
slow_colour = '#0072b2'
fast_colour = '#d55e00'
set border lw 0.8 lc '#606060'
set tics nomirror out scale 0.6
set grid lc '#e4e4e4' lw 0.6
set lmargin at screen 0.075
set rmargin at screen 0.92
set multiplot
)";

constexpr const char* time_panels = R"(
set xrange [0:duration]
set yrange [-1.2 * peak:1.2 * peak]
set key at graph 0.99, graph 0.93 top right horizontal samplen 2
set label 1 picture_title at screen 0.5, screen 0.975 center noenhanced
set label 2 'acceleration [m/s²]' at screen 0.02, screen 0.688 center rotate

set tmargin at screen 0.95
set bmargin at screen 0.785
set format x ''
plot $record using 1:2 with lines lw 0.9 lc rgb record_colour title 'record', \
     $slow using 1:2 with lines lw 1.8 lc rgb slow_colour title 'its slow part'
unset label

set tmargin at screen 0.77
set bmargin at screen 0.605
set yrange [-1.2 * slow_peak:1.2 * slow_peak]
plot $slow using 1:2 with lines lw 1.8 lc rgb slow_colour title 'slow part (Filter::HighPass), enlarged'

set tmargin at screen 0.59
set bmargin at screen 0.425
set yrange [-1.2 * peak:1.2 * peak]
set format x '%g'
set xlabel 'time [s]' offset 0, 0.3
plot $fast using 1:2 with lines lw 0.9 lc rgb fast_colour title 'fast part (Filter::LowPass)'
)";

constexpr const char* spectrum_panel = R"(
set tmargin at screen 0.34
set bmargin at screen 0.055
set xlabel 'frequency [Hz]' offset 0, 0.3
set label 'Fourier amplitude [m/s]' at screen 0.02, screen 0.198 center rotate
set y2label 'share let through into the slow part' offset -0.5, 0
unset mytics
set format y '10^{%T}'
set xrange [lowest:highest]
set yrange [amplitude / 10**decades:amplitude]
set logscale x
set logscale y
set y2range [0:1.15]
set y2tics 0, 0.25, 1
set key at screen 0.5, screen 0.357 center center horizontal samplen 2 font ',13'
plot $response using 1:2 axes x1y2 with filledcurves y1=0 fc rgb '#dcebf5' title 'trapezoid', \
     $response using 1:3 axes x1y2 with lines lw 1.2 dt 3 lc rgb '#303030' title 'response of the weights', \
     $record_spectrum using 1:2 with lines lw 2.4 lc rgb '#c4c4c4' title 'record', \
     $slow_spectrum using 1:2 with lines lw 1.2 lc rgb slow_colour title 'slow part', \
     $fast_spectrum using 1:2 with lines lw 1.2 lc rgb fast_colour title 'fast part'
unset multiplot
)";

/// Data that gnuplot knows as $name.
void write_data(std::ostream& script, std::string const& name, std::vector<Point> const& points) {
  script << "$" << name << " << END\n";
  for (auto const& [x, y] : points) script << x << ' ' << y << '\n';
  script << "END\n";
}

/// A gnuplot string: between single quotes only these are special, and are doubled.
std::string quoted(std::string const& text) {
  std::string result = "'";
  for (const char c : text) result += c == '\'' ? "''" : std::string(1, c);
  return result + "'";
}

std::vector<Point> time_curve(std::vector<double> const& samples, double step) {
  std::vector<Point> points;
  for (std::size_t i = 0; i < samples.size(); ++i) points.push_back({static_cast<double>(i) * step, samples[i]});
  const double width = static_cast<double>(samples.size()) * step / time_columns;
  return thinned(points, [=](double time) { return static_cast<int>(time / width); });
}

/// Without the frequency 0, which a logarithmic axis does not have.
std::vector<Point> spectrum_curve(Spectrum const& spectrum) {
  std::vector<Point> points;
  for (std::size_t i = 1; i < spectrum.amplitudes.size(); ++i) {
    points.push_back({spectrum.frequency(i), spectrum.amplitudes[i]});
  }
  return thinned(points, [](double f) { return static_cast<int>(std::floor(std::log10(f) * columns_per_decade)); });
}

/// Frequency, trapezoid, and what the weights make of it.
void write_response(std::ostream& script, Trapezoid const& trapezoid, double step, double lowest, double highest) {
  const std::vector<double> weights = Talvo::Util::Filter().Weights(trapezoid.roll_off, trapezoid.cut_off, step);
  script << "$response << END\n";
  for (int i = 0; i <= response_points; ++i) {
    const double frequency = lowest * std::pow(highest / lowest, static_cast<double>(i) / response_points);
    script << frequency << ' ' << trapezoid.at(frequency) << ' ' << response(weights, step, frequency) << '\n';
  }
  script << "END\n";
}

/// A number to scale an axis with: 1 when there is nothing to show.
double or_one(double size) { return size > 0 ? size : 1; }

}  // namespace

void write_gnuplot(std::ostream& script, Result const& result, Trapezoid const& trapezoid, std::string const& picture) {
  Record const& record = result.record;
  const auto& [step, amplitudes] = result.of_record.spectrum;
  const double lowest = 2 * step;  // the zeros behind the record add no lower frequency
  const double highest = 0.5 / record.step;
  const double top = *std::max_element(amplitudes.begin() + 1, amplitudes.end());

  write_data(script, "record", time_curve(record.samples, record.step));
  write_data(script, "slow", time_curve(result.parts.slow, record.step));
  write_data(script, "fast", time_curve(result.parts.fast, record.step));
  write_data(script, "record_spectrum", spectrum_curve(result.of_record.spectrum));
  write_data(script, "slow_spectrum", spectrum_curve(result.of_slow.spectrum));
  write_data(script, "fast_spectrum", spectrum_curve(result.of_fast.spectrum));
  write_response(script, trapezoid, record.step, lowest, highest);

  std::ostringstream title;
  title << "The record " << std::filesystem::path(record.file).filename().string() << ", split at " << trapezoid.cut_off
        << " Hz with the roll-off " << trapezoid.roll_off << " Hz";
  script << "set terminal " << (picture.ends_with(".png") ? "pngcairo" : "svg")
         << " size 1200,1200 enhanced font 'Helvetica,14' background '#ffffff'\n"
         << "set output " << quoted(picture) << "\n"
         << "picture_title = " << quoted(title.str()) << "\n"
         << "duration = " << or_one(record.duration()) << "\n"
         << "peak = " << or_one(std::fabs(result.of_record.peak)) << "\n"
         << "slow_peak = " << or_one(std::fabs(result.of_slow.peak)) << "\n"
         << "lowest = " << lowest << "\nhighest = " << highest << "\n"
         << "amplitude = " << 2 * or_one(top) << "\ndecades = " << decades_shown << "\n"
         << common_style << time_panels << spectrum_panel;
}

bool draw_picture(Result const& result, Trapezoid const& trapezoid, std::string const& picture) {
  if (std::system("command -v gnuplot >/dev/null 2>&1") != 0) return false;
  if (!std::ofstream(picture, std::ios::app)) {
    throw std::runtime_error(picture + ": cannot be written: " + std::strerror(errno));
  }
  std::FILE* gnuplot = popen("gnuplot", "w");
  if (gnuplot == nullptr) throw std::runtime_error(std::string("gnuplot does not start: ") + std::strerror(errno));
  std::ostringstream script;
  write_gnuplot(script, result, trapezoid, picture);
  std::fputs(script.str().c_str(), gnuplot);
  if (pclose(gnuplot) != 0) throw std::runtime_error(picture + ": gnuplot could not draw the picture");
  return true;
}

}  // namespace record

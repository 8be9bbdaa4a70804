#include "picture.h"

#include "kirsch.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <numbers>
#include <set>
#include <sstream>
#include <stdexcept>
#include <utility>

namespace plate {
namespace {

constexpr double cross_spacing = 0.36;     // along and between the rings of crosses, in hole radii
constexpr double cross_scale = 0.115;      // half an arm, in hole radii per unit of stress
constexpr double cross_reach = 8;          // no crosses farther than this from the centre, in hole radii
constexpr double section_spacing = 0.099;  // at least this far from one to the next on the section, in hole radii
constexpr int curve_points = 300;          // along the exact curve
constexpr int side_pieces = 6;             // straight pieces for a curved side
constexpr int line_styles = 8;             // as many as common_style sets

std::vector<Vec3<double>> polyline(Mesh const& mesh, Side const& side) {
  Vec3<double> const& from = mesh.nodes[side.from];
  Vec3<double> const& to = mesh.nodes[side.to];
  if (!side.middle) return {from, to};
  const Talvo::Util::CShape line(Talvo::Line, {from, to, mesh.nodes[*side.middle]});
  std::vector<Vec3<double>> points;
  for (int i = 0; i <= side_pieces; ++i) points.push_back(line.CoorAtR(-1 + 2.0 * i / side_pieces));
  return points;
}

/// Every side once; of a solid only the edges on its upper face, as seen from above.
std::vector<std::vector<Vec3<double>>> sides_from_above(Mesh const& mesh, double top) {
  constexpr double tolerance = 1e-9;  // hole radii
  const auto is_seen = [&](std::size_t node) { return std::fabs(mesh.nodes[node].z - top) <= tolerance; };
  std::set<std::pair<std::size_t, std::size_t>> drawn;
  std::vector<std::vector<Vec3<double>>> sides;
  for (Element const& element : mesh.elements) {
    for (Side const& side : sides_of(element)) {
      if (!is_seen(side.from) || !is_seen(side.to)) continue;
      if (drawn.insert(std::minmax(side.from, side.to)).second) sides.push_back(polyline(mesh, side));
    }
  }
  return sides;
}

/// Crosses on rings about the hole, as far as they lie in the mesh; none beside the section, which has its own.
std::vector<Cross> crosses_on_rings(Bounds const& bounds, StressField const& field) {
  std::vector<Cross> crosses;
  const double z = (bounds.low.z + bounds.high.z) / 2;
  const double farthest = std::hypot(std::max(-bounds.low.x, bounds.high.x), std::max(-bounds.low.y, bounds.high.y));
  for (double r = hole_radius + cross_spacing / 4; r < std::min(farthest, cross_reach); r += cross_spacing) {
    const int count = 4 * static_cast<int>(std::numbers::pi / 2 * r / cross_spacing);  // the quarters look alike
    for (int i = 0; i < count; ++i) {
      const double theta = 2 * std::numbers::pi * (i + 0.5) / count;
      const Vec3<double> position{r * std::cos(theta), r * std::sin(theta), z};
      if (position.y > 0 && std::fabs(position.x) < cross_spacing) continue;
      if (const auto stress = field.at(position)) crosses.push_back({position, principal_state(*stress)});
    }
  }
  return crosses;
}

/// Crosses at the located points of the section, as many as stand clear of each other.
void add_crosses_on(Section const& section, std::vector<Cross>& crosses) {
  double next = 0;
  for (SectionPoint const& point : section.points) {
    if (!point.computed || point.position.y < next) continue;
    crosses.push_back({point.position, point.computed->principal});
    next = point.position.y + section_spacing;
  }
}

// The fixed parts of the gnuplot commands. Each panel ends with a plot command to which the meshes' curves are added.

constexpr const char* common_style = R"(
rounding = 1e-9  # smaller errors would only stretch the axis
set style line 1 lc '#0072b2' pt 7 ps 0.6
set style line 2 lc '#d55e00' pt 4 ps 0.9
set style line 3 lc '#009e73' pt 8 ps 0.9
set style line 4 lc '#cc79a7' pt 6 ps 1.1
set style line 5 lc '#8a6d00' pt 2 ps 0.9
set style line 6 lc '#56b4e9' pt 5 ps 0.5
set style line 7 lc '#5b3a8e' pt 12 ps 1.0
set style line 8 lc '#7f7f7f' pt 1 ps 0.9
set style increment user
set border lw 0.8 lc '#606060'
set tics nomirror out scale 0.6
set multiplot
)";

constexpr const char* plate_panel = R"(
set lmargin at screen 0.07
set rmargin at screen 0.98
set bmargin at screen 0.49
set tmargin at screen 0.93
set size ratio -1
set xlabel 'x / a  (a: radius of the hole)'
set ylabel 'y / a'
set xrange [*:*] noextend
set yrange [*:*] noextend
set offsets graph 0.02, graph 0.02, graph 0.02, graph 0.02
set key at screen 0.53, screen 0.952 center center horizontal samplen 2
set title plate_title offset 0, 1.5 noenhanced
plot $sides using 1:2 with lines lc '#cccccc' lw 0.8 notitle, \
     $section1 using (0):1 with points pt 7 ps 0.3 lc '#202020' title 'located points', \
     $crosses using ($1 - $3):($2 - $4):(2 * $3):(2 * $4):($5 >= 0 ? 0x1f5fa8 : 0xc8371b) \
       with vectors nohead lw 1.8 lc rgb variable notitle, \
     NaN with lines lc '#1f5fa8' lw 2 title 'tension', \
     NaN with lines lc '#c8371b' lw 2 title 'compression'
set size noratio
unset offsets
)";

constexpr const char* stress_panel = R"(
set rmargin at screen 0.48
set bmargin at screen 0.06
set tmargin at screen 0.39
set xlabel 'distance from the centre of the hole, y / a'
set ylabel 'stress, σ / S'
set xrange [1:outer]
set yrange [-0.1:3.1]
set key default
set key top right vertical samplen 1.5 font ',12' noenhanced
set grid lc '#e4e4e4' lw 0.6
set title 'Stress in the hole''s axes along the section' offset 0, 0 enhanced
set label 1 'tangential' at graph 0.97, first 1.2 right
set label 2 'radial' at graph 0.97, first 0.27 right
plot $exact using 1:2 with lines lw 1.6 lc '#202020' title 'closed solution', \
     $exact using 1:3 with lines lw 1.6 lc '#202020' notitle)";

constexpr const char* error_panel = R"(
unset label 1
unset label 2
set lmargin at screen 0.58
set rmargin at screen 0.98
set ylabel 'error, |σ - σ_{exact}| / S'
set logscale y
set format y '10^{%T}'
set yrange [*:*]
set title 'Error of the tangential stress'
plot )";

/// Data that gnuplot knows as $name.
void write_data(std::ostream& script, std::string const& name, std::string const& lines) {
  script << "$" << name << " << END\n" << lines << "END\n";
}

/// A gnuplot string: between single quotes only these are special, and are doubled.
std::string quoted(std::string const& text) {
  std::string result = "'";
  for (const char c : text) result += c == '\'' ? "''" : std::string(1, c);
  return result + "'";
}

std::string base_name(std::string const& file) { return std::filesystem::path(file).filename().string(); }

std::string side_lines(PlateDrawing const& plate) {
  std::ostringstream lines;
  for (auto const& side : plate.sides) {
    for (Vec3<double> const& point : side) lines << point.x << ' ' << point.y << '\n';
    lines << '\n';
  }
  return lines.str();
}

/// One arm for each principal stress: its middle, half of it as a vector, and the stress for its colour.
std::string cross_lines(PlateDrawing const& plate) {
  std::ostringstream lines;
  const auto arm = [&](Vec3<double> const& at, Vec2<double> const& direction, double stress) {
    const double half = cross_scale * std::fabs(stress);
    lines << at.x << ' ' << at.y << ' ' << direction.x * half << ' ' << direction.y * half << ' ' << stress << '\n';
  };
  for (auto const& [position, state] : plate.crosses) {
    arm(position, state.first, state.values.xx);
    arm(position, state.second, state.values.yy);
  }
  return lines.str();
}

std::string exact_lines(double outer) {
  std::ostringstream lines;
  for (int i = 0; i <= curve_points; ++i) {
    const double r = hole_radius + (outer - hole_radius) * i / curve_points;
    const Tens2<double> stress = kirsch_polar(r, std::numbers::pi / 2);
    lines << r << ' ' << stress.yy << ' ' << stress.xx << '\n';
  }
  return lines.str();
}

std::string section_lines(Section const& section) {
  std::ostringstream lines;
  for (SectionPoint const& point : section.points) {
    if (!point.computed) continue;
    HoleStress const& stress = point.computed->stress;
    const double error = std::fabs(stress.tangential - point.exact.tangential);
    lines << point.position.y << ' ' << stress.tangential << ' ' << error << ' ' << stress.radial << '\n';
  }
  return lines.str();
}

}  // namespace

PlateDrawing draw_plate(Mesh const& mesh, StressField const& field, Section const& section) {
  const Bounds bounds = bounds_of(mesh);
  PlateDrawing plate{mesh.file, sides_from_above(mesh, bounds.high.z), crosses_on_rings(bounds, field)};
  add_crosses_on(section, plate.crosses);
  return plate;
}

void write_gnuplot(std::ostream& script, PlateDrawing const& plate, std::vector<Result> const& results,
                   std::string const& picture) {
  write_data(script, "sides", side_lines(plate));
  write_data(script, "crosses", cross_lines(plate));
  double outer = hole_radius;
  int curves = 0;
  std::ostringstream stresses;
  std::ostringstream errors;
  for (Result const& result : results) {
    if (!result.section) continue;
    const std::string name = "section" + std::to_string(++curves);
    write_data(script, name, section_lines(*result.section));
    outer = std::max(outer, result.section->points.back().position.y);
    const std::string style = " ls " + std::to_string((curves - 1) % line_styles + 1);
    const std::string title = " title " + quoted(base_name(result.file));
    stresses << ", $" << name << " using 1:2 with points" << style << title  //
             << ", $" << name << " using 1:4 with points" << style << " notitle";
    errors << (curves > 1 ? ", $" : "$") << name << " using 1:($3 > rounding ? $3 : NaN) with linespoints" << style
           << " notitle";
  }
  write_data(script, "exact", exact_lines(outer));

  script << "set terminal " << (picture.ends_with(".png") ? "pngcairo" : "svg")
         << " size 1200,1200 enhanced font 'Helvetica,14' background '#ffffff'\n"
         << "set output " << quoted(picture) << "\n"
         << "outer = " << outer << "\n"
         << "plate_title = "
         << quoted("Principal stresses under the tension S along x, in the mesh " + base_name(plate.file))
         << common_style << plate_panel << stress_panel << stresses.str() << error_panel << errors.str()
         << "\nunset multiplot\n";
}

bool draw_picture(PlateDrawing const& plate, std::vector<Result> const& results, std::string const& picture) {
  if (std::system("command -v gnuplot >/dev/null 2>&1") != 0) return false;
  if (!std::ofstream(picture, std::ios::app)) {
    throw std::runtime_error(picture + ": cannot be written: " + std::strerror(errno));
  }
  std::FILE* gnuplot = popen("gnuplot", "w");
  if (gnuplot == nullptr) throw std::runtime_error(std::string("gnuplot does not start: ") + std::strerror(errno));
  std::ostringstream script;
  write_gnuplot(script, plate, results, picture);
  std::fputs(script.str().c_str(), gnuplot);
  if (pclose(gnuplot) != 0) throw std::runtime_error(picture + ": gnuplot could not draw the picture");
  return true;
}

}  // namespace plate

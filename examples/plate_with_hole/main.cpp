#include "locator.h"
#include "mesh_file.h"
#include "picture.h"
#include "report.h"
#include "stress_field.h"

#include <charconv>
#include <csignal>
#include <cstdio>
#include <exception>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr const char* usage =
    "Usage: plate_with_hole [--picture FILE] [--points N] MESH...\n"
    "\n"
    "Compares the stress beside a circular hole, interpolated in finite-element meshes, with the closed solution.\n"
    "A mesh is a file in Gmsh's text format, 4.1 or 2.2: a plate about a hole of radius 1 around the origin.\n"
    "\n"
    "  --picture FILE  draw the first mesh and the stresses of all into FILE (.svg or .png); needs gnuplot\n"
    "  --points N      number of points along the section, 2 to 10000 (31)\n"
    "  --help          show this text\n"
    "\n"
    "Exit status: 0 done (also when gnuplot is missing), 1 a file cannot be used, 2 wrong command line.\n";

struct UsageError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

struct Options {
  std::vector<std::string> meshes;
  std::string picture;
  int points = 31;
  bool help = false;
};

int number_of_points(std::string_view text) {
  int points = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), points);
  if (error != std::errc() || end != text.data() + text.size() || points < 2 || points > 10000) {
    throw UsageError("--points needs a whole number from 2 to 10000");
  }
  return points;
}

Options parse(int argc, char** argv) {
  Options options;
  for (int i = 1; i < argc; ++i) {
    const std::string argument = argv[i];
    const auto value = [&]() -> std::string {
      if (++i == argc) throw UsageError(argument + " needs a value");
      return argv[i];
    };
    if (argument == "--help") {
      options.help = true;
    } else if (argument == "--points") {
      options.points = number_of_points(value());
    } else if (argument == "--picture") {
      options.picture = value();
      if (!options.picture.ends_with(".svg") && !options.picture.ends_with(".png")) {
        throw UsageError("--picture needs a name that ends with .svg or .png");
      }
    } else if (argument.starts_with("-")) {
      throw UsageError("unknown option " + argument);
    } else {
      options.meshes.push_back(argument);
    }
  }
  if (options.meshes.empty() && !options.help) throw UsageError("no mesh given");
  return options;
}

void run(Options const& options) {
  std::vector<plate::Result> results;
  std::optional<plate::PlateDrawing> drawing;
  for (std::string const& file : options.meshes) {
    const plate::Mesh mesh = plate::read_mesh(file);
    std::optional<plate::StressField> field;
    if (plate::can_locate(mesh)) field.emplace(mesh);
    plate::Result const& result =
        results.emplace_back(plate::evaluate(mesh, field ? &*field : nullptr, options.points));
    if (result.section && !drawing && !options.picture.empty()) {
      drawing = plate::draw_plate(mesh, *field, *result.section);
    }
  }
  plate::print_report(results);
  std::fflush(stdout);

  if (drawing && !plate::draw_picture(*drawing, results, options.picture)) {
    std::fprintf(stderr, "plate_with_hole: gnuplot is not installed; no picture drawn\n");
  }
}

}  // namespace

int main(int argc, char** argv) {
  // When gnuplot gives up early, writing to it fails instead of ending this program.
  std::signal(SIGPIPE, SIG_IGN);
  try {
    const Options options = parse(argc, argv);
    if (options.help) {
      std::fputs(usage, stdout);
    } else {
      run(options);
    }
    return 0;
  } catch (UsageError const& error) {
    std::fprintf(stderr, "plate_with_hole: %s\n%s", error.what(), usage);
    return 2;
  } catch (std::exception const& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}

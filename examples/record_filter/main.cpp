#include "picture.h"
#include "record_file.h"
#include "report.h"

#include <charconv>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <exception>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

constexpr const char* usage =
    "Usage: record_filter [--cut-off HZ] [--roll-off HZ] [--picture FILE] RECORD...\n"
    "\n"
    "Filters accelerograms into a slow and a fast part.\n"
    "A record is a text file: a line 'dt' and the time step in s, then the samples in m/s²; # begins a comment.\n"
    "\n"
    "  --cut-off HZ    the slow part has nothing above this frequency (1)\n"
    "  --roll-off HZ   and everything that is slower than the cut-off by this much or more (0.5)\n"
    "  --picture FILE  draw the first record, its parts and their spectra into FILE (.svg or .png); needs gnuplot\n"
    "  --help          show this text\n"
    "\n"
    "Exit status: 0 done (also when gnuplot is missing), 1 a record cannot be used or not be filtered like this,\n"
    "2 wrong command line.\n";

struct UsageError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

struct Options {
  std::vector<std::string> records;
  std::string picture;
  record::Trapezoid trapezoid{1, 0.5};
  bool help = false;
};

double frequency(std::string const& option, std::string const& text) {
  double value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size() || !std::isfinite(value)) {
    throw UsageError(option + " needs a frequency in Hz");
  }
  return value;
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
    } else if (argument == "--cut-off") {
      options.trapezoid.cut_off = frequency(argument, value());
    } else if (argument == "--roll-off") {
      options.trapezoid.roll_off = frequency(argument, value());
    } else if (argument == "--picture") {
      options.picture = value();
      if (!options.picture.ends_with(".svg") && !options.picture.ends_with(".png")) {
        throw UsageError("--picture needs a name that ends with .svg or .png");
      }
    } else if (argument.starts_with("-")) {
      throw UsageError("unknown option " + argument);
    } else {
      options.records.push_back(argument);
    }
  }
  if (options.records.empty() && !options.help) throw UsageError("no record given");
  return options;
}

void run(Options const& options) {
  std::vector<record::Result> results;
  for (std::string const& file : options.records) {
    results.push_back(record::evaluate(record::read_record(file), options.trapezoid));
  }
  record::print_report(results, options.trapezoid);
  std::fflush(stdout);

  if (!options.picture.empty() && !record::draw_picture(results.front(), options.trapezoid, options.picture)) {
    std::fprintf(stderr, "record_filter: gnuplot is not installed; no picture drawn\n");
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
    std::fprintf(stderr, "record_filter: %s\n%s", error.what(), usage);
    return 2;
  } catch (std::exception const& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}

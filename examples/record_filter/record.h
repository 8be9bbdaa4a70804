#pragma once

/// @file
/// A record of ground or floor acceleration.

#include <cstddef>
#include <stdexcept>
#include <string>
#include <vector>

namespace record {

/// Samples at the times 0, step, 2 step, ...
struct Record {
  std::string file;
  double step;                  ///< s
  std::vector<double> samples;  ///< m/s²

  /// From the first sample to the last, in s.
  double duration() const { return static_cast<double>(samples.size() - 1) * step; }
};

/// A record that cannot be used. The message says where: "record.txt:12: what is wrong".
class RecordError : public std::runtime_error {
 public:
  RecordError(std::string const& file, std::string const& what) : std::runtime_error(file + ": " + what) {}
  RecordError(std::string const& file, std::size_t line, std::string const& what)
      : RecordError(file + ":" + std::to_string(line), what) {}
};

}  // namespace record

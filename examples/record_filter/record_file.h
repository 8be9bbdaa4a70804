#pragma once

/// @file
/// Reading a record from a text file.

#include "record.h"

#include <string>

namespace record {

/// Reads a record. A `#` begins a comment that runs to the end of its line. The first line with anything else on it is
/// `dt` and the time step in seconds; all numbers after it are samples in m/s², any number of them on a line.
///
/// Throws RecordError, with the line, for a file that cannot be read, does not begin with a time step, has a time step
/// that is not positive, has no samples, or has one that is no finite number.
Record read_record(std::string const& file);

}  // namespace record
